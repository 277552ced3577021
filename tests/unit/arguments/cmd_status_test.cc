// Status messages and the report of a failed platform call.
#include "arguments/cmd_status.h"

#include <climits>

#include "tests/support/tool_test.h"

namespace recording {
namespace {

TEST(CmdStatusMessages, EveryStatusHasItsNumberAndText) {
  const struct {
    CmdStatus status;
    int number;
    const char* text;
  } rows[] = {{CMD_OK, 0, ""},
              {CMD_EXIT, 1, ""},
              {CMD_TOO_LONG, 2, "command too long"},
              {CMD_TOO_FEW_ARGS, 3, "too few command args"},
              {CMD_TOO_MANY_ARGS, 4, "too many command args"},
              {CMD_UNKNOWN, 5, "unknown command"},
              {CMD_BAD_PARAM, 6, "invalid command parameter"},
              {CMD_MIXED_PORT_TYPES, 7, "invalid port list, no mixed types"},
              {CMD_ETHERNET_ONLY, 8, "invalid port list, ethernet only"},
              {CMD_FC_ONLY, 9, "invalid port list, fibre channel only"},
              {CMD_EXEC_ERROR, 10, "error during command execution"},
              {static_cast<CmdStatus>(11), 11, ""}};  // nothing returns it
  for (const auto& row : rows) {
    EXPECT_EQ(static_cast<int>(row.status), row.number);
    EXPECT_STREQ(statusMessage(row.status), row.text);
  }
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
