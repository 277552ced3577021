// The command list, and the loop command where it does not come to wait.
#include "shell/help_and_loop.h"

#include "shell/command_reader.h"
#include "tests/support/expected.h"
#include "tests/support/fake_waiting.h"
#include "tests/support/tool_test.h"

namespace recording {
namespace {

// clang-format off
const std::string kCommandList =
    "command              command arguments                                  shortcut/alt command\n"
    "==================== ================================================== ====================\n"
    "setAsicNum           asicNum                                            san \n"
    "setRate              rate [portList]                                    sr \n"
    "setTxEnable          enable [portList]                                  stx \n"
    "showRate             [portlist]                                         dr \n"
    "showConfig                                                              dcfg \n"
    "showFFE              [portlist]                                         dffe \n"
    "setFFE               mode k c0 c1 c2 c3 [portlist]                      sffe \n"
    "showSlew             [portlist]                                         dslew \n"
    "setSlew              slewRate [portlist]                                sslew \n"
    "showTxParams         [portlist]                                         dtxp \n"
    "setTxParams          mode k c0 c1 c2 c3 slew [portlist]                 stxp \n"
    "showRxParams         [portlist]                                         drxp \n"
    "setRxParams          mode pole peak amax [portlist]                     srxp \n"
    "showTxParamsCache    [portlist]                                         dtxpc \n"
    "setTxParamsCache     rate mode k c0 c1 c2 c3 slew [portlist]            stxpc \n"
    "showTxParamsRaw      interface rate [portlist]                          dtxpr \n"
    "setTxParamsRaw       interface rate slew mode p0 p1 p2 p3 [portlist]    stxpr \n"
    "eshowTxParamsCache   [portlist]                                         edt \n"
    "esetTxParamsCache    rate power pre-emph [portlist]                     est \n"
    "showRxParamsCache    [portlist]                                         drxpc \n"
    "setRxParamsCache     rate mode p0 p1 p2 [portlist]                      srxpc \n"
    "showRxParamsRaw      interface rate [portlist]                          drxpr \n"
    "setRxParamsRaw       interface rate mode p0 p1 p2 p3 [portlist]         srxpr \n"
    "eshowRxParamsCache   [portlist]                                         edr \n"
    "esetRxParamsCache    rate cdr_mode eq_mode [portlist]                   esr \n"
    "showDFE              [portlist]                                         ddfe \n"
    "setDFE               mode [portlist]                                    sdfe \n"
    "setDFEState          port link mode H1ev H1odd..H5ev H5odd              sdfestate \n"
    "showDFEStats         [portlist]                                         ddfestats \n"
    "showVGA              [portlist]                                         dvga \n"
    "setVGA               pole peak amax [portlist]                          svga \n"
    "showPLL              [corelist]                                         dpll \n"
    "writePLL             coreId addr value                                  wpll \n"
    "readPLL              coreId addr                                        rpll \n"
    "showTx               [portList]                                         dtx \n"
    "writeTx              portNum LinkNum addr value                         wtx \n"
    "readTx               portNum LinkNum addr                               rtx \n"
    "showRx               [portList]                                         drx \n"
    "writeRx              portNum LinkNum addr value                         wrx \n"
    "readRx               portNum LinkNum addr                               rrx \n"
    "runTest              port link option mode                              rt \n"
    "getTest              port link option                                   gt \n"
    "clearErrors          [portList]                                         ce \n"
    "loop                 cmd args ...                                       lp \n"
    "help                 (see 'help ?' '<cmd> ?' for details)               ? \n"
    "exit                                                                    quit \n"
    "\n"
    "NOTES:\n"
    " *If [portList] is empty, the command will be rejected\n"
    " *Detailed command help can be displayed by entering <cmd> help or <cmd> ?\n"
    " *When addressing links, -1 can be used to broadcast to all links per port\n"
    " *Set/Write commands are rejected if more than one port type is selected (GL,XG,EXG)\n"
    " *Commands beginning with 'e' are specific to ethernet ports (e.g. eset...)\n";
// clang-format on

class Help : public ToolTest {};

TEST_F(Help, ListsAllCommandsAndTheNotes) {
  EXPECT_EQ(run("help"), printed(kCommandList, {}));
  EXPECT_EQ(run("?"), printed(kCommandList, {}));
  EXPECT_EQ(run("HELP"), printed(kCommandList, {}));
}

TEST_F(Help, HandlerNeedsNoWords) {
  EXPECT_EQ(printedBy([] { EXPECT_EQ(helpCmdHandler(0, nullptr), CMD_OK); }), kCommandList);
}

TEST_F(Help, TakesNoArgument) {
  EXPECT_EQ(run("help x"), refused(CMD_TOO_MANY_ARGS));
  EXPECT_EQ(run("? readRx"), refused(CMD_TOO_MANY_ARGS));
}

const std::string kHelpOfHelp =
    "\nshow the command list/menu, for detailed help use <cmd> ?\n\nExample: showRx ?\n"
    "(example will give the detailed help for showRx)\n";

TEST_F(Help, HasDetailedHelpOfItsOwn) {
  EXPECT_EQ(run("help ?"), printed(kHelpOfHelp, {}));
  EXPECT_EQ(run("? ?"), printed(kHelpOfHelp, {}));
  EXPECT_EQ(run("help help"), printed(kHelpOfHelp, {}));
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

TEST_F(LoopedCommand, NeedsACommand) {
  EXPECT_EQ(run("loop"), refused(CMD_TOO_FEW_ARGS));
  EXPECT_EQ(run("lp"), refused(CMD_TOO_FEW_ARGS));
}

TEST_F(LoopedCommand, UnknownCommandEndsItAtOnceWithoutAPassLine) {
  EXPECT_EQ(run("loop bogus"), refused(CMD_UNKNOWN));
}

TEST_F(LoopedCommand, WrongNumberOfWordsEndsItAtOnce) {
  EXPECT_EQ(run("loop readRx 4 0"), refused(CMD_TOO_FEW_ARGS));
  EXPECT_EQ(run("loop showConfig x"), refused(CMD_TOO_MANY_ARGS));
}

TEST_F(LoopedCommand, RefusedArgumentEndsItAtOnce) {
  EXPECT_EQ(run("loop readRx 4 0 x"), refused(CMD_BAD_PARAM));
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

TEST_F(LoopedCommand, QuestionMarkBehindLoopIsTheHelpOfLoop) {
  EXPECT_EQ(run("loop ?"), printed("\nloop on a command\n\nExample: loop readRx 4 0 3\n"
                                   "(example reads port 4, link 0, reg 3 continuously at 2 sec rate)\n",
                                   {}));
}

TEST_F(LoopedCommand, RunsTheRowOfTheCommandAndNotItsOwn) {
  EXPECT_EQ(run("loop readRx 4 0 x"), refused(CMD_BAD_PARAM));
  EXPECT_EQ(currentCommandIndex, 39u);
}

}  // namespace
}  // namespace recording
