// What an answer's end says, and what is no answer.
#include "serdesctl/session/conversation.h"

#include <gtest/gtest.h>

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
                           "a\nunknown command \n\n", "serdes: \n\n", "a\n\nserdes: b\n\n\n"}) {
    EXPECT_FALSE(readAnswer(text)) << text;
  }
}

}  // namespace
}  // namespace serdesctl
