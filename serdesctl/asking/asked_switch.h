// A running tool, asked for records instead of text.
#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <vector>

#include "arguments/cmd_status.h"
#include "serdesctl/base/command_words.h"
#include "serdesctl/base/errors.h"
#include "serdesctl/base/tool_facts.h"
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

  // The cores as found when the ASIC became the current one.
  const DiscoveryText& discovery() const {
    return discovery_;
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
  DiscoveryText discovery_;
  ConfigText config_;
};

// "0-3 5": a port list of these ports.
std::string listOf(std::uint32_t ports);

// The ports of a list that people write, with blanks or commas: "gl", "0-3,8". Throws UsageError for what is no list,
// and for ports that the ASIC does not have.
std::uint32_t portsOfList(const std::string& list, const ConfigText& config);

// Calls read(ports) for all of the ports at once or, where the tool refuses that, for each by itself; refused(port,
// why) for those that it refuses even so.
template <typename Read, typename Refused>
void readTogether(std::uint32_t ports, Read&& read, Refused&& refused) {
  if (ports == 0) return;
  try {
    read(ports);
    return;
  } catch (const RefusedError& error) {
    if (std::has_single_bit(ports)) {
      refused(lowestPort(ports), std::string(error.what()));
      return;
    }
  }
  for (std::uint32_t rest = ports; rest != 0; rest &= rest - 1)
    readTogether(rest & (~rest + 1), read, refused);
}

}  // namespace serdesctl
