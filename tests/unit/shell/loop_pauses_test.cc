// The loop command's passes and pauses, with waiting that takes no time.
#include <gtest/gtest.h>
#include <unistd.h>

#include "shell/command_reader.h"
#include "tests/support/fake_waiting.h"
#include "tests/support/tool_test.h"

namespace {

using recording::Calls;
using recording::run;
using recording::TypedInput;
using recording::waits;

class Loop : public recording::TopologyTest {
 protected:
  void SetUp() override {
    TopologyTest::SetUp();
    recording::resetWaiting();
  }
};

const std::string kLine = "Port 4 (user port 104), link 0 at Rx address 0x03= 0x0403 \n";

TEST_F(Loop, InAScriptRunsTheCommandTenTimesWithTwoSecondsBetween) {
  std::string expected;
  for (int pass = 1; pass <= 10; ++pass) {
    expected += kLine + "That is " + std::to_string(pass) + " passes.\n" + (pass < 10 ? "\n" : "");
  }
  const auto outcome = run("loop readRx 4 0 3");
  EXPECT_EQ(outcome.status, CMD_OK);
  EXPECT_EQ(outcome.out, expected);
  EXPECT_EQ(outcome.calls, Calls(10, "ReadSerDesLinkRegister(0, 4, 0, 0, 3, 1)"));
  EXPECT_EQ(waits, Calls(9, "sleep 2"));
}

TEST_F(Loop, InAScriptEndsWithTheFirstFailureAndItsStatus) {
  recording::platform.fail("ReadSerDesLinkRegister", -5, 3);
  const auto outcome = run("lp readRx 4 0 3");
  EXPECT_EQ(outcome.status, CMD_EXEC_ERROR);
  EXPECT_EQ(outcome.out,
            kLine + "That is 1 passes.\n\n" + kLine + "That is 2 passes.\n\nreadRxRegisterCmdHandler: serdes err -5\n");
  EXPECT_EQ(waits, Calls(2, "sleep 2"));
}

TEST_F(Loop, ShowsHelpOnceThenFindsAnEmptyWord) {
  const auto outcome = run("loop showRate ?");
  EXPECT_EQ(outcome.status, CMD_BAD_PARAM);
  EXPECT_EQ(outcome.out,
            "\nshow port rate/enable\n\nExample: showRate all\n(example displays rates for all ports\n"
            "That is 1 passes.\n\n");
  EXPECT_EQ(outcome.calls, Calls{});
  EXPECT_EQ(waits, Calls{"sleep 2"});
}

TEST_F(Loop, AtThePromptGoesOnUntilALineIsTyped) {
  interactive = true;
  TypedInput input("rest of the line\nnext command\n");
  int looks = 0;
  recording::selectResult = [&] { return ++looks == 12 ? 1 : 0; };
  const auto outcome = run("loop readRx 4 0 3");
  std::string expected;
  for (int pass = 1; pass <= 12; ++pass) {
    expected +=
        kLine + "That is " + std::to_string(pass) + " passes. To stop looping, enter <cr>.\n" + (pass < 12 ? "\n" : "");
  }
  EXPECT_EQ(outcome.status, CMD_OK);
  EXPECT_EQ(outcome.out, expected);
  EXPECT_EQ(waits, Calls(12, "select 0 2.000000"));
  EXPECT_EQ(input.rest(), "next command\n");
}

TEST_F(Loop, AtThePromptAFailedWaitGoesOn) {
  interactive = true;
  TypedInput input("\n");
  int looks = 0;
  recording::selectResult = [&] { return ++looks == 2 ? 1 : -1; };
  EXPECT_EQ(run("loop readRx 4 0 3").calls.size(), 2u);
}

TEST_F(Loop, AtThePromptANulEndsTheDiscardingToo) {
  interactive = true;
  TypedInput input(std::string("ab\0cd\n", 6));
  recording::selectResult = [] { return 1; };
  EXPECT_EQ(run("loop readRx 4 0 3").status, CMD_OK);
  EXPECT_EQ(input.rest(), "cd\n");
}

TEST_F(Loop, TheEndOfInputDoesNotEndTheDiscarding) {
  interactive = true;
  TypedInput input("no newline");
  recording::selectResult = [] { return 1; };
  int sleeps = 0;
  recording::onSleep = [&] {
    if (++sleeps == 5) input.append("\nnext");
  };
  EXPECT_EQ(run("loop readRx 4 0 3").status, CMD_OK);
  EXPECT_EQ(waits, (Calls{"select 0 2.000000", "sleep 1", "sleep 1", "sleep 1", "sleep 1", "sleep 1"}));
  EXPECT_EQ(input.rest(), "next");
}

TEST_F(Loop, WhatIsPrintedIsVisibleBeforeEachWait) {
  // Standard output is a file while it is captured, so only what was flushed counts there.
  recording::onSleep = [] { EXPECT_NE(lseek(STDOUT_FILENO, 0, SEEK_CUR), 0); };
  EXPECT_EQ(run("loop readRx 4 0 3").status, CMD_OK);
  interactive = true;
  TypedInput input("\n");
  recording::selectResult = [] {
    EXPECT_NE(lseek(STDOUT_FILENO, 0, SEEK_CUR), 0);
    return 1;
  };
  EXPECT_EQ(run("loop readRx 4 0 3").status, CMD_OK);
}

TEST_F(Loop, ExitEndsTheLoopAndItsStream) {
  EXPECT_EQ(recording::runStream("loop exit\nbogus\n"), "\n\n");
  EXPECT_EQ(waits, Calls{});
}

TEST_F(Loop, LoopsNest) {
  const auto outcome = run("loop loop readRx 4 0 3");
  EXPECT_EQ(outcome.status, CMD_OK);
  EXPECT_EQ(outcome.calls.size(), 100u);
  EXPECT_EQ(waits.size(), 99u);
}

}  // namespace
