// The command list, and the loop command where it does not come to wait.
#include "shell/help_and_loop.h"

#include "shell/command_reader.h"
#include "shell/command_table.h"
#include "tests/support/expected.h"
#include "tests/support/fake_waiting.h"
#include "tests/support/tool_test.h"

namespace recording {
namespace {

// A line per row of the table between the heading and the notes.
std::string commandList() {
  std::string list =
      "command              command arguments                                  shortcut/alt command\n"
      "==================== ================================================== ====================\n";
  for (const CmdTableEntry* row = cmdTable.data(); row->name != nullptr; ++row) {
    std::string line = row->name;
    line.resize(21, ' ');
    line += row->argHelp;
    line.resize(72, ' ');
    list += line + row->shortcut + " \n";
  }
  return list +
         "\n"
         "NOTES:\n"
         " *If [portList] is empty, the command will be rejected\n"
         " *Detailed command help can be displayed by entering <cmd> help or <cmd> ?\n"
         " *When addressing links, -1 can be used to broadcast to all links per port\n"
         " *Set/Write commands are rejected if more than one port type is selected (GL,XG,EXG)\n"
         " *Commands beginning with 'e' are specific to ethernet ports (e.g. eset...)\n";
}

class Help : public ToolTest {};

TEST_F(Help, ListsAllCommandsAndTheNotes) {
  const Outcome outcome = run("help");
  EXPECT_EQ(outcome, printed(commandList(), {}));
  EXPECT_NE(outcome.out.find("\nsetTxParamsCache     rate mode k c0 c1 c2 c3 slew [portlist]            stxpc \n"
                             "showTxParamsRaw      interface rate [portlist]                          dtxpr \n"),
            std::string::npos);
}

TEST_F(Help, HandlerNeedsNoWords) {
  EXPECT_EQ(printedBy([] { EXPECT_EQ(helpCmdHandler(0, nullptr), CMD_OK); }), commandList());
}

// Nothing here may wait; the passes and pauses of loops that do have tests of their own.
class LoopedCommand : public TopologyTest {
 protected:
  void SetUp() override {
    TopologyTest::SetUp();
    resetWaiting();
  }

  void TearDown() override {
    EXPECT_EQ(waits, Calls{});
  }
};

TEST_F(LoopedCommand, UnknownCommandEndsItAtOnceWithoutAPassLine) {
  EXPECT_EQ(run("loop bogus"), refused(CMD_UNKNOWN));
}

TEST_F(LoopedCommand, WrongNumberOfWordsEndsItAtOnce) {
  EXPECT_EQ(run("loop readRx 4 0"), refused(CMD_TOO_FEW_ARGS));
  EXPECT_EQ(run("loop showConfig x"), refused(CMD_TOO_MANY_ARGS));
}

TEST_F(LoopedCommand, PlatformFailureInTheFirstPassEndsIt) {
  platform.fail("ReadSerDesLinkRegister", -5);
  EXPECT_EQ(run("loop readRx 4 0 3"),
            failed("readRxRegisterCmdHandler: serdes err -5\n", {"ReadSerDesLinkRegister(0, 4, 0, 0, 3, 1)"}));
}

TEST_F(LoopedCommand, FailureInTheFirstPassEndsItAtThePromptToo) {
  interactive = true;
  EXPECT_EQ(run("loop bogus"), refused(CMD_UNKNOWN));
  EXPECT_EQ(run("loop readRx 4 0"), refused(CMD_TOO_FEW_ARGS));
}

TEST_F(LoopedCommand, SetCommandWithinALoopRefusesMixedTypes) {
  EXPECT_EQ(run("loop setRate 4G all"), refused(CMD_MIXED_PORT_TYPES));
}

TEST_F(LoopedCommand, ExitWithinALoopEndsIt) {
  EXPECT_EQ(run("loop exit"), refused(CMD_EXIT));
  EXPECT_EQ(run("loop loop quit"), refused(CMD_EXIT));
}

TEST_F(LoopedCommand, RunsTheRowOfTheCommandAndNotItsOwn) {
  EXPECT_EQ(run("loop readRx 4 0 x"), refused(CMD_BAD_PARAM));
  EXPECT_STREQ(cmdTable[currentCommandIndex].name, "readRx");
}

}  // namespace
}  // namespace recording
