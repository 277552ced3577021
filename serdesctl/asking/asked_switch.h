// A running tool, asked for records instead of text.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "arguments/cmd_status.h"
#include "serdesctl/base/command_words.h"
#include "serdesctl/base/errors.h"
#include "serdesctl/session/conversation.h"
#include "serdesctl/tables/records.h"

namespace serdesctl {

// The tool refused a command.
class RefusedError : public ErrorOfStatus<kFailed> {
 public:
  RefusedError(const std::string& command, const Answer& answer);
};

// What a command showed.
struct Shown {
  Records records;
  std::string text;  // as the tool printed it
};

class AskedSwitch {
 public:
  // Learns an ASIC's topology. In a new session ASIC 0 is the current one.
  AskedSwitch(Conversation& tool, std::uint32_t asic);

  // Makes the ASIC the current one again, after others have been asked. The tool learns its topology anew.
  void select();

  const ConfigText& config() const {
    return config_;
  }

  // Asks a command that shows something. Throws RefusedError, ParseError.
  Shown ask(const Words& words);

  // The tool ends its statistics at the first SerDes type that it cannot lay out, so each type is asked for by itself.
  // Links of types without a layout have records without values.
  std::vector<DfeStats> statistics(std::uint32_t ports);

  // The ports in sets whose statistics are of one layout; each port by itself where types share a name.
  std::vector<std::uint32_t> portsByType(std::uint32_t ports) const;

 private:
  Answer askToSucceed(const std::string& command);
  Shown showStatistics(std::uint32_t ports);
  Shown showStatisticsOfType(const std::string& list);

  Conversation& tool_;
  ConfigText config_;
};

// "0-3 5": a port list of these ports.
std::string listOf(std::uint32_t ports);

}  // namespace serdesctl
