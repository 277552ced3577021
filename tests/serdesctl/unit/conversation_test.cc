// What an answer's end says, and what is no answer.
#include "serdesctl/session/conversation.h"

#include <gtest/gtest.h>

#include <string>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/waiting.h"

namespace serdesctl {
namespace {

TEST(ReadAnswer, EveryStatusIsKnownByItsMessageAtTheEnd) {
  for (int status = CMD_TOO_LONG; status <= CMD_EXEC_ERROR; ++status) {
    const std::string message = statusMessage(static_cast<CmdStatus>(status));
    const auto answer = readAnswer("handler: serdes err -5\n" + message + "\n\n");
    ASSERT_TRUE(answer) << message;
    EXPECT_EQ(answer->status, status);
    EXPECT_EQ(answer->output, "handler: serdes err -5\n");
    EXPECT_EQ(answer->text(), "handler: serdes err -5\n" + message + "\n\n");
  }
}

TEST(ReadAnswer, OutputWithoutMessageIsSuccess) {
  for (const std::string output : {"", "\n", "a table\n\n", "unknown command\n"}) {
    const auto answer = readAnswer(output + "\n\n");
    ASSERT_TRUE(answer) << output;
    EXPECT_EQ(answer->status, CMD_OK);
    EXPECT_EQ(answer->output, output);
    EXPECT_EQ(answer->text(), output + "\n\n");
  }
}

TEST(ReadAnswer, OtherEndsAreNone) {
  for (const char* text : {"", "\n", "text\n\n", "unknown command\n", "unknown  command\n\n", "Unknown command\n\n",
                           "a\nunknown command \n\n", "serdes: \n\n", "serdes: \n\n\n", "a\n\nserdes: b\n\n\n"}) {
    EXPECT_FALSE(readAnswer(text)) << text;
  }
}

// A tool that starts as serdes does, and then does this.
Target toolThat(const std::string& acts) {
  const std::string start = "printf 'switchHwConfig.NumSlots:4\ncurrent asicNum:0\n\n\nserdes: '; ";
  return {
      .name = "tool", .tool = {.words = {"sh", "-c", start + acts}, .environment = {}}, .reach = {}, .lockFile = {}};
}

TEST(Conversation, OnlyWhatTheToolAnswersIsSent) {
  Conversation tool(toolThat("read -r line; exit 9"), Seconds(20));
  for (const std::string& command : {std::string("loop showRate 0"), std::string("LP x"), std::string("exit"),
                                     std::string("quit 1"), std::string(), std::string("  "), std::string("# x"),
                                     std::string("showRate 0\nx"), std::string("\x7f"), std::string(126, 'x')}) {
    EXPECT_THROW((void)tool.ask(command), UsageError) << command;
  }
  EXPECT_THROW((void)tool.ask("loop ?"), ConnectionError);
}

TEST(Conversation, AnEndMayBeWrong) {
  std::string lastWords;
  Conversation well(toolThat("read -r line; echo bye; echo why >&2; exit 3"), Seconds(20));
  EXPECT_EQ(well.close(lastWords).exitStatus, 3);
  EXPECT_EQ(lastWords, "bye; why");
  Conversation prompting(toolThat("read -r line; echo; echo 'serdes: '"), Seconds(20));
  EXPECT_THROW((void)prompting.close(lastWords), AnswerError);
  Conversation endless(toolThat("read -r line; exec cat /dev/zero"), Seconds(20));
  EXPECT_THROW((void)endless.close(lastWords), AnswerError);
  Conversation lingering(toolThat("read -r line; exec >&- 2>&-; exec sleep 1000"), Seconds(0.5));
  EXPECT_THROW((void)lingering.close(lastWords), TimeoutError);
}

TEST(Conversation, AToolThatTakesNoMoreCommandsHasEnded) {
  const SignalWatch brokenPipesAreErrors;
  Conversation tool(toolThat("exec <&-; sleep 0.1; exec >&- 2>&-; exec sleep 1000"), Seconds(20));
  EXPECT_THROW((void)tool.ask("showRate 0"), ConnectionError);
}

TEST(Conversation, OfMuchThatIsComplainedTheEndIsTold) {
  try {
    Conversation tool(toolThat("for i in 1 2 3 4 5; do printf '%01000d\n' $i >&2; done; read -r line; exit 1"),
                      Seconds(20));
    (void)tool.ask("showRate 0");
    ADD_FAILURE();
  } catch (const ConnectionError& error) {
    const std::string message = error.what();
    EXPECT_LT(message.size(), 2200U);
    EXPECT_TRUE(message.ends_with("00005")) << message;
  }
}

}  // namespace
}  // namespace serdesctl
