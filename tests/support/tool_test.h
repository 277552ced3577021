// The fixture of the tool's tests, and running commands on the recording platform.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "arguments/cmd_status.h"
#include "tests/support/recording_platform.h"

namespace recording {

using Calls = std::vector<std::string>;

// What a command did.
struct Outcome {
  CmdStatus status = CMD_OK;
  std::string out;  // everything printed on standard output
  Calls calls;      // every platform call made

  bool operator==(const Outcome&) const = default;
};

// Shows an outcome in a failure message.
void PrintTo(const Outcome& outcome, std::ostream* stream);

// Gives what `action` printed on standard output.
std::string printedBy(const std::function<void()>& action);

// Dispatches one command line, its words separated by blanks.
Outcome run(const std::string& line);

// Runs command lines through the command reader, as a script or as typed at the prompt.
std::string runStream(const std::string& lines);

// Starts every test on a fresh tool and the platform of resetPlatform().
class ToolTest : public testing::Test {
 protected:
  void SetUp() override;

  // Selects ASIC 0 and forgets the calls that it took.
  static void discover();
};

// As ToolTest, with ASIC 0 selected.
class TopologyTest : public ToolTest {
 protected:
  void SetUp() override;
};

}  // namespace recording
