// Status messages and the report of a failed platform call.
#include "arguments/cmd_status.h"

#include <gtest/gtest.h>

#include <climits>

#include "tests/support/tool_test.h"

namespace recording {
namespace {

TEST(CmdStatusMessages, SuccessAndExitSayNothing) {
  EXPECT_STREQ(statusMessage(CMD_OK), "");
  EXPECT_STREQ(statusMessage(CMD_EXIT), "");
}

TEST(CmdStatusMessages, EveryFailureHasItsText) {
  EXPECT_STREQ(statusMessage(CMD_TOO_LONG), "command too long");
  EXPECT_STREQ(statusMessage(CMD_TOO_FEW_ARGS), "too few command args");
  EXPECT_STREQ(statusMessage(CMD_TOO_MANY_ARGS), "too many command args");
  EXPECT_STREQ(statusMessage(CMD_UNKNOWN), "unknown command");
  EXPECT_STREQ(statusMessage(CMD_BAD_PARAM), "invalid command parameter");
  EXPECT_STREQ(statusMessage(CMD_MIXED_PORT_TYPES), "invalid port list, no mixed types");
  EXPECT_STREQ(statusMessage(CMD_ETHERNET_ONLY), "invalid port list, ethernet only");
  EXPECT_STREQ(statusMessage(CMD_FC_ONLY), "invalid port list, fibre channel only");
  EXPECT_STREQ(statusMessage(CMD_EXEC_ERROR), "error during command execution");
}

TEST(CmdStatusMessages, TableEndsWithAnEmptyTextThatNothingReturns) {
  EXPECT_STREQ(statusMessage(static_cast<CmdStatus>(11)), "");
}

TEST(CmdStatusCodes, AreTheNumbersThatIndexTheMessages) {
  EXPECT_EQ(static_cast<int>(CMD_OK), 0);
  EXPECT_EQ(static_cast<int>(CMD_EXIT), 1);
  EXPECT_EQ(static_cast<int>(CMD_TOO_LONG), 2);
  EXPECT_EQ(static_cast<int>(CMD_TOO_FEW_ARGS), 3);
  EXPECT_EQ(static_cast<int>(CMD_TOO_MANY_ARGS), 4);
  EXPECT_EQ(static_cast<int>(CMD_UNKNOWN), 5);
  EXPECT_EQ(static_cast<int>(CMD_BAD_PARAM), 6);
  EXPECT_EQ(static_cast<int>(CMD_MIXED_PORT_TYPES), 7);
  EXPECT_EQ(static_cast<int>(CMD_ETHERNET_ONLY), 8);
  EXPECT_EQ(static_cast<int>(CMD_FC_ONLY), 9);
  EXPECT_EQ(static_cast<int>(CMD_EXEC_ERROR), 10);
  EXPECT_EQ(sizeof(CmdStatus), 4u);
}

TEST(SerdesError, NamesThePlaceAndTheResult) {
  EXPECT_EQ(printedBy([] { printSerdesError(-5, "setFFECmdHandler"); }), "setFFECmdHandler: serdes err -5\n");
  EXPECT_EQ(printedBy([] { printSerdesError(INT_MIN, "openSerdes"); }), "openSerdes: serdes err -2147483648\n");
  EXPECT_EQ(printedBy([] { printSerdesError(-1, "main()->openSerdes()"); }), "main()->openSerdes(): serdes err -1\n");
}

TEST(SerdesError, PlatformFailureIsReportedOnceAndEndsTheCommand) {
  CmdStatus status = CMD_OK;
  const std::string out = printedBy([&] { status = platformFailure(-77, "setRateCmdHandler"); });
  EXPECT_EQ(status, CMD_EXEC_ERROR);
  EXPECT_EQ(out, "setRateCmdHandler: serdes err -77\n");
}

}  // namespace
}  // namespace recording
