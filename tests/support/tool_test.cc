// Runs commands and captures what they print.
#include "tests/support/tool_test.h"

#include <unistd.h>

#include <cstdio>
#include <sstream>

#include "arguments/argument_parsers.h"
#include "commands/discovery.h"
#include "display/table_header.h"
#include "shell/command_reader.h"
#include "tests/support/fake_waiting.h"
#include "topology/serdes_topology.h"

namespace recording {

std::string printedBy(const std::function<void()>& action) {
  static std::FILE* const capture = std::tmpfile();
  std::fflush(stdout);
  const int terminal = dup(STDOUT_FILENO);
  std::rewind(capture);
  EXPECT_EQ(ftruncate(fileno(capture), 0), 0);
  dup2(fileno(capture), STDOUT_FILENO);
  action();
  std::fflush(stdout);
  dup2(terminal, STDOUT_FILENO);
  close(terminal);
  std::string text(static_cast<std::size_t>(lseek(fileno(capture), 0, SEEK_END)), '\0');
  EXPECT_EQ(pread(fileno(capture), text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
  return text;
}

Outcome run(const std::string& line) {
  std::istringstream stream(line);
  std::vector<std::string> words;
  for (std::string word; stream >> word;)
    words.push_back(word);
  std::vector<char*> pointers;
  for (std::string& word : words)
    pointers.push_back(word.data());
  platform.calls.clear();
  Outcome outcome;
  outcome.out =
      printedBy([&] { outcome.status = dispatchCommand(static_cast<int>(pointers.size()), pointers.data()); });
  outcome.calls = platform.calls;
  return outcome;
}

void PrintTo(const Outcome& outcome, std::ostream* stream) {
  *stream << "status " << static_cast<int>(outcome.status) << ", output " << testing::PrintToString(outcome.out)
          << ", calls " << testing::PrintToString(outcome.calls);
}

std::string runStream(const std::string& lines) {
  std::FILE* input = std::tmpfile();
  std::fwrite(lines.data(), 1, lines.size(), input);
  std::rewind(input);
  const std::string text = printedBy([&] { EXPECT_EQ(runCommandStream(input, stdout), 0); });
  std::fclose(input);
  return text;
}

void ToolTest::SetUp() {
  resetPlatform();
  serdesTopology = {};
  serdesTopology.switchHwConfig = platform.switchConfig;
  portRunning = {};
  currentCommandIndex = 0;
  currentCommandSets = false;
  interactive = false;
  resetWaiting();
}

void ToolTest::discover() {
  ASSERT_EQ(run("setAsicNum 0").status, CMD_OK);
  platform.calls.clear();
}

void TopologyTest::SetUp() {
  ToolTest::SetUp();
  discover();
}

}  // namespace recording
