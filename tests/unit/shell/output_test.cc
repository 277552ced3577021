// The report of lost output. It is made once in a process, so that each test has a process of its own.
#include "shell/output.h"

#include <fcntl.h>

#include <algorithm>

#include "shell/command_reader.h"
#include "tests/support/own_process.h"

namespace recording {
namespace {

const std::string kReport = "Error writing output: No space left on device\n";

// Makes standard output lose all that is written to it.
void fillTheDisk() {
  const int full = open("/dev/full", O_WRONLY);
  dup2(full, STDOUT_FILENO);
  close(full);
}

TEST(LostOutput, WrittenOutputIsNotReported) {
  const ProcessOutcome outcome = inOwnProcess([] {
    std::printf("kept");
    flushOutput(stdout);
    reportLostOutput(stdout);
    return outputLost() ? 1 : 0;
  });
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.out, "kept");
  EXPECT_EQ(outcome.err, "");
}

TEST(LostOutput, FlushWritesWhatIsBuffered) {
  std::FILE* const file = fileWith("");
  std::fprintf(file, "text");
  flushOutput(file);
  EXPECT_EQ(contentOf(file), "text");
}

TEST(LostOutput, FlushReportsIt) {
  const ProcessOutcome outcome = inOwnProcess([] {
    fillTheDisk();
    std::printf("lost");
    flushOutput(stdout);
    return outputLost() ? 1 : 0;
  });
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, kReport);
}

TEST(LostOutput, IsReportedOnce) {
  const ProcessOutcome outcome = inOwnProcess([] {
    fillTheDisk();
    for (int i = 0; i < 3; ++i) {
      std::printf("lost");
      flushOutput(stdout);
      reportLostOutput(stdout);
    }
    return outputLost() ? 1 : 0;
  });
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.err, kReport);
}

TEST(LostOutput, ReportDoesNotFlush) {
  const ProcessOutcome outcome = inOwnProcess([] {
    fillTheDisk();
    std::FILE* const buffered = fdopen(dup(STDOUT_FILENO), "w");
    std::fprintf(buffered, "lost, but not yet");
    reportLostOutput(buffered);
    const bool before = outputLost();
    flushOutput(buffered);
    return (before ? 1 : 0) + (outputLost() ? 2 : 0);
  });
  EXPECT_EQ(outcome.result, 2);
  EXPECT_EQ(outcome.err, kReport);
}

class LostOutputOfCommands : public TopologyTest {};

// More than any buffer holds, so that the loss shows before anything is flushed.
TEST_F(LostOutputOfCommands, CommandsRunOnAndItIsReportedOnceMeanwhile) {
  std::string lines;
  for (int i = 0; i < 2000; ++i)
    lines += "setRate 4G 0\nreadRx 4 0 3\n";
  std::FILE* const script = fileWith(lines);
  const ProcessOutcome outcome = inOwnProcess([&] {
    fillTheDisk();
    const int result = runCommandStream(script, stdout);
    return outputLost() ? result + 1 : result;
  });
  std::fclose(script);
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, kReport);
  EXPECT_EQ(outcome.calls.size(), 4000u);
  EXPECT_EQ(std::count(outcome.calls.begin(), outcome.calls.end(), "SetPortCfgSpeed(100/0/0, 3)"), 2000);
}

TEST_F(LostOutputOfCommands, PromptIsWrittenBeforeALineIsReadAndItsLossReported) {
  const ProcessOutcome outcome = inOwnProcess([] {
    fillTheDisk();
    interactive = true;
    std::FILE* const broken = std::fopen("/", "r");
    return runCommandStream(broken, stdout);
  });
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.err, kReport + "Error reading commands: Is a directory\n");
}

}  // namespace
}  // namespace recording
