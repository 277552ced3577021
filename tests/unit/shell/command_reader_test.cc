// The command reader and the dispatcher.
#include "shell/command_reader.h"

#include <cstring>

#include "shell/command_table.h"
#include "tests/support/expected.h"
#include "tests/support/own_process.h"

namespace recording {
namespace {

// What the stream's end prints.
const std::string kEnd = "\n\n";
const std::string kSuccess = "\n\n";
const std::string kTooLong = "command too long\n\n";
const std::string kTooFew = "too few command args\n\n";
const std::string kTooMany = "too many command args\n\n";
const std::string kUnknown = "unknown command\n\n";
// What a line shows that is run although its argument is wrong.
const std::string kRan = "invalid command parameter\n\n";

// "san 9" and as many blanks as the length asks for.
std::string commandOfLength(std::size_t length) {
  std::string line = "san 9";
  line.resize(length, ' ');
  return line;
}

std::string repeated(int times, const std::string& text) {
  std::string all;
  for (int i = 0; i < times; ++i)
    all += text;
  return all;
}

class CommandReader : public TopologyTest {};

TEST_F(CommandReader, EndOfInputPrintsTheMessageOfExit) {
  EXPECT_EQ(runStream(""), "\n\n");
}

TEST_F(CommandReader, EmptyLinePrintsTwoNewlines) {
  EXPECT_EQ(runStream("\n"), "\n\n" + kEnd);
}

TEST_F(CommandReader, BlanksAndACommentPrintTwoNewlines) {
  EXPECT_EQ(runStream(" \t  # san 9\n"), "\n\n" + kEnd);
  EXPECT_EQ(runStream("#\n"), "\n\n" + kEnd);
  EXPECT_EQ(platform.calls, Calls{});
}

TEST_F(CommandReader, CommentEndsTheWordItStandsIn) {
  EXPECT_EQ(runStream("sa#n 9\n"), kUnknown + kEnd);
  EXPECT_EQ(runStream("san#9\n"), kTooFew + kEnd);
  EXPECT_EQ(runStream("san 9#1 2 3\n"), kRan + kEnd);
}

TEST_F(CommandReader, CommentDropsTheWordItBegins) {
  EXPECT_EQ(runStream("san #9\n"), kTooFew + kEnd);
  EXPECT_EQ(runStream("san 9 # 9 # 9\n"), kRan + kEnd);
}

TEST_F(CommandReader, EveryBlankSeparatesWords) {
  EXPECT_EQ(runStream("\t san\v\f9 \r\n"), kRan + kEnd);
}

TEST_F(CommandReader, CharactersBeyondAsciiBelongToWords) {
  EXPECT_EQ(runStream("san\xA0"
                      "9\n"),
            kUnknown + kEnd);
  EXPECT_EQ(runStream("san \xFF\n"), kRan + kEnd);
}

TEST_F(CommandReader, NulEndsTheTextOfItsLine) {
  EXPECT_EQ(runStream(std::string("san 9\0 9 9\nsan\n", 15)), kRan + kTooFew + kEnd);
}

TEST_F(CommandReader, LastLineNeedsNoNewline) {
  EXPECT_EQ(runStream("san"), kTooFew + kEnd);
}

TEST_F(CommandReader, LineOf125CharactersRuns) {
  EXPECT_EQ(runStream(commandOfLength(125) + "\nsan\n"), kRan + kTooFew + kEnd);
}

TEST_F(CommandReader, LineOf126CharactersIsTooLongAndLeavesNothingBehind) {
  EXPECT_EQ(runStream(commandOfLength(126) + "\nsan\n"), kTooLong + kTooFew + kEnd);
}

TEST_F(CommandReader, LineOf127CharactersLeavesItsNewlineAsALine) {
  EXPECT_EQ(runStream(commandOfLength(127) + "\nsan\n"), kTooLong + kSuccess + kTooFew + kEnd);
}

TEST_F(CommandReader, RestOfALongerLineIsTheNextLine) {
  EXPECT_EQ(runStream(commandOfLength(127) + "bogus\nsan\n"), kTooLong + kUnknown + kTooFew + kEnd);
  EXPECT_EQ(runStream(commandOfLength(127) + commandOfLength(127) + "san\n"), kTooLong + kTooLong + kTooFew + kEnd);
}

TEST_F(CommandReader, LongCommentIsTooLongTooAndItsRestIsACommand) {
  EXPECT_EQ(runStream(std::string(127, '#') + "san 9\n"), kTooLong + kRan + kEnd);
}

TEST_F(CommandReader, LastLineOf126CharactersWithoutNewlineRuns) {
  EXPECT_EQ(runStream(commandOfLength(126)), kRan + kEnd);
  EXPECT_EQ(runStream(commandOfLength(127)), kTooLong + kEnd);
}

TEST_F(CommandReader, LineOf24WordsRuns) {
  EXPECT_EQ(runStream("showRate" + repeated(22, " 0") + " x\n"), kRan + kEnd);
}

TEST_F(CommandReader, LineOf25WordsRunsNothing) {
  EXPECT_EQ(runStream("help ?" + repeated(23, " x") + "\n"), kTooMany + kEnd);
  EXPECT_EQ(runStream("bogus" + repeated(40, " x") + "\n"), kTooMany + kEnd);
  EXPECT_EQ(platform.calls, Calls{});
}

TEST_F(CommandReader, CommentedWordsDoNotCount) {
  EXPECT_EQ(runStream("showRate" + repeated(22, " 0") + " x # x x\n"), kRan + kEnd);
  EXPECT_EQ(runStream("showRate" + repeated(22, " 0") + " x#x x x\n"), kRan + kEnd);
}

TEST_F(CommandReader, NoErrorEndsTheStream) {
  platform.fail("WriteSerDesLinkRegister", -5);
  EXPECT_EQ(runStream("bogus\nsan\nsan 0 0\nsan 9\nsetRate 4G all\nest 10G 6 5 gl\nsrxpc 8G DFE3 7 0 0x4e exg\nwrx 0 0 "
                      "1 2\nwrx 0 0 1 2\n"),
            "unknown command\n\n"
            "too few command args\n\n"
            "too many command args\n\n"
            "invalid command parameter\n\n"
            "invalid port list, no mixed types\n\n"
            "invalid port list, ethernet only\n\n"
            "invalid port list, fibre channel only\n\n"
            "writeRxRegisterCmdHandler: serdes err -5\nerror during command execution\n\n"
            "\n\n" +
                kEnd);
}

TEST_F(CommandReader, ExitEndsTheStreamWithoutReadingOn) {
  EXPECT_EQ(runStream("san\nexit\nsan\n"), kTooFew + kEnd);
  EXPECT_EQ(runStream("QUIT now\nsan\n"), kEnd);
}

TEST_F(CommandReader, ExitWithTooManyWordsDoesNotEndTheStream) {
  EXPECT_EQ(runStream("exit a b\nsan\n"), kTooMany + kTooFew + kEnd);
}

TEST_F(CommandReader, HelpOfExitDoesNotEndTheStream) {
  EXPECT_EQ(runStream("exit ?\nsan\n"), "\nexit/quit the serdes utility program\n\n\n\n" + kSuccess + kTooFew + kEnd);
}

TEST_F(CommandReader, ScriptHasNoPromptAndNoEcho) {
  EXPECT_EQ(runStream("readRx 4 0 3\n"),
            "Port 4 (user port 104), link 0 at Rx address 0x03= 0x0403 \n" + kSuccess + kEnd);
}

TEST_F(CommandReader, PromptStandsBeforeEveryLine) {
  interactive = true;
  EXPECT_EQ(runStream("\nsan\nexit\nsan\n"), "serdes: \n\nserdes: too few command args\n\nserdes: \n\n");
}

TEST_F(CommandReader, PromptStandsBeforeTheRestOfALongLineToo) {
  interactive = true;
  EXPECT_EQ(runStream(commandOfLength(127) + "san\n"),
            "serdes: command too long\n\nserdes: too few command args\n\nserdes: \n\n");
}

TEST_F(CommandReader, PromptsAndMessagesGoToItsOutputAndTablesToStandardOutput) {
  interactive = true;
  std::FILE* const input = fileWith("readRx 4 0 3\nbogus\n");
  std::FILE* const output = fileWith("");
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(runCommandStream(input, output), 0); }),
            "Port 4 (user port 104), link 0 at Rx address 0x03= 0x0403 \n");
  std::fflush(output);
  EXPECT_EQ(contentOf(output), "serdes: \n\nserdes: unknown command\n\nserdes: \n\n");
  std::fclose(input);
}

TEST_F(CommandReader, InputThatCannotBeReadIsReportedAndEndsTheStream) {
  std::FILE* const directory = std::fopen("/", "r");
  ASSERT_NE(directory, nullptr);
  const ProcessOutcome outcome = inOwnProcess([&] { return runCommandStream(directory, stdout); });
  std::fclose(directory);
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.out, kEnd);
  EXPECT_EQ(outcome.err, "Error reading commands: Is a directory\n");
}

class Dispatcher : public TopologyTest {
 protected:
  static const char* currentRow() {
    return cmdTable[currentCommandIndex].name;
  }
};

TEST_F(Dispatcher, FindsNamesAndShortcutsInAnyCase) {
  const Outcome config = run("showConfig");
  EXPECT_EQ(config.status, CMD_OK);
  EXPECT_NE(config.out, "");
  EXPECT_EQ(run("SHOWCONFIG"), config);
  EXPECT_EQ(run("DCFG"), config);
  EXPECT_EQ(run("dcfg"), config);
  EXPECT_STREQ(currentRow(), "showConfig");
}

TEST_F(Dispatcher, UnknownWordIsRefused) {
  EXPECT_EQ(run("bogus"), refused(CMD_UNKNOWN));
  EXPECT_EQ(run("showConf"), refused(CMD_UNKNOWN));
  EXPECT_EQ(run("showConfigs"), refused(CMD_UNKNOWN));
  EXPECT_EQ(run("bogus ?"), refused(CMD_UNKNOWN));
}

TEST_F(Dispatcher, EmptyWordIsUnknown) {
  char empty[] = "";
  char* words[] = {empty};
  EXPECT_EQ(dispatchCommand(1, words), CMD_UNKNOWN);
}

TEST_F(Dispatcher, LeavesTheIndexAtTheRowFound) {
  EXPECT_EQ(run("rrx 4 0 3").status, CMD_OK);
  EXPECT_STREQ(currentRow(), "readRx");
  EXPECT_EQ(run("setAsicNum 9"), refused(CMD_BAD_PARAM));
  EXPECT_STREQ(currentRow(), "setAsicNum");
  EXPECT_EQ(run("readPLL"), refused(CMD_TOO_FEW_ARGS));
  EXPECT_STREQ(currentRow(), "readPLL");
}

const std::string kReadRxHelp =
    "\nread a single Rx register\n\nExample: readRx 4 0 3\n(example reads port 4, link 0, Rx register address 3)\n";

TEST_F(Dispatcher, QuestionMarkOrHelpPrintsTheDetailedHelp) {
  EXPECT_EQ(run("readRx ?"), printed(kReadRxHelp, {}));
  EXPECT_EQ(run("rrx help"), printed(kReadRxHelp, {}));
  EXPECT_EQ(run("READRX HELP"), printed(kReadRxHelp, {}));
  EXPECT_EQ(run("readRx Help"), printed(kReadRxHelp, {}));
}

TEST_F(Dispatcher, HelpComesBeforeTheNumberOfWordsIsChecked) {
  EXPECT_EQ(run("setRate ?").status, CMD_OK);
  EXPECT_EQ(run("readRx ? 1 2 3 4 5"), printed(kReadRxHelp, {}));
}

TEST_F(Dispatcher, OnlyTheWholeFirstArgumentAsksForHelp) {
  EXPECT_EQ(run("readRx ?? 0 3"), refused(CMD_BAD_PARAM));
  EXPECT_EQ(run("readRx helps 0 3"), refused(CMD_BAD_PARAM));
  EXPECT_EQ(run("readRx 4 ? 3"), refused(CMD_BAD_PARAM));
}

TEST_F(Dispatcher, HelpBlanksTheWordThatAskedForIt) {
  char command[] = "readRx";
  char question[] = "?";
  char help[] = "help";
  char* words[] = {command, question};
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(dispatchCommand(2, words), CMD_OK); }), kReadRxHelp);
  EXPECT_STREQ(question, "");
  words[1] = help;
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(dispatchCommand(2, words), CMD_OK); }), kReadRxHelp);
  EXPECT_STREQ(help, "");
  EXPECT_EQ(std::memcmp(help, "\0elp", 5), 0);
  EXPECT_STREQ(command, "readRx");
}

}  // namespace
}  // namespace recording
