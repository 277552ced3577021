// Judges commands by the tool's own dispatcher and handlers, on a platform that succeeds and records.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "arguments/cmd_status.h"
#include "serdesctl/base/command_words.h"
#include "serdesctl/base/files.h"
#include "serdesctl/rehearsal/learning.h"
#include "shell/command_table.h"

namespace serdesctl {

// The ASIC that a command selects, in a loop too; nothing for other commands.
std::optional<std::uint32_t> selectedAsic(const Words& words);

struct Forecast {
  CmdStatus status = CMD_OK;  // what the tool would answer if the platform did all it is asked
  bool changes = false;       // the hardware, if it runs
  std::string missing;        // what it names and the switch does not have, such as "port 24 of ASIC 0"
};

// The tool's topology is one for the process: one rehearsal at a time. Nothing reaches standard output.
class Rehearsal {
 public:
  // Without a switch: what no switch could do is refused.
  Rehearsal();
  explicit Rehearsal(const LearntSwitch& learnt);

  // Judges a command and what it does to the session: the current ASIC changes with setAsicNum.
  Forecast judge(const Words& words);

 private:
  void start();
  CmdStatus dispatch(const Words& words, int times) const;

  Fd nowhere_;
  Fd standardOutput_;
};

// Throws UsageError when a command that shows something names what the ASIC does not have: the tool answers all the
// same, with nothing or with the values of others. To be asked of a new session, whose current ASIC stays 0.
void refuseMissing(const Words& words, Conversation& tool, std::uint32_t asic);

}  // namespace serdesctl
