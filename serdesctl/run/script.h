// Scripts as the strict runner reads them: the tool's own lines, and comments that the tool ignores:
//   #: wait 5s     a pause here, or after the command of the same line
//   #: expect 6    the status that the command of this line, or the next one, must give
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "arguments/cmd_status.h"
#include "serdesctl/base/waiting.h"
#include "serdesctl/rehearsal/rehearsal.h"

namespace serdesctl {

// Something to do: a command or, without words, a pause.
struct Step {
  std::string file;
  std::size_t line = 0;  // 0: the file as a whole
  std::string fault;     // why the line, or the file, could not be read
  Words words;
  CmdStatus expected = CMD_OK;
  Seconds pause{0};
  bool changes = false;  // the hardware, as rehearsed, or which ASIC is meant by other changes

  std::string command() const;
  std::string place() const;  // "FILE:LINE"
};

using Script = std::vector<Step>;

// Reads a script, "-" for standard input. What cannot be read is a step with a fault.
Script readScript(const std::string& file);

// The ASICs that scripts select, whatever else is wrong with them.
std::set<std::uint32_t> selectedAsics(const std::vector<Script>& scripts);

struct CheckedScripts {
  Script steps;                       // all that would be run, in order, each script up to its exit
  std::vector<std::string> problems;  // "FILE:LINE: reason"
};

CheckedScripts checkScripts(const std::vector<Script>& scripts, Rehearsal& rehearsal);

}  // namespace serdesctl
