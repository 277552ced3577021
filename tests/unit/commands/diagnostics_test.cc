// Self-tests and clearing of error counters.
#include "commands/diagnostics.h"

#include <array>
#include <cstring>

#include "tests/support/expected.h"
#include "tests/support/handlers.h"

namespace recording {
namespace {

class RunTest : public TopologyTest {};

TEST_F(RunTest, PassesPortLinkOptionAndMode) {
  EXPECT_EQ(run("runTest 4 0 0 1"), done({"SetSerDesTestOption(0, 4, 0, 0, 1)"}));
  EXPECT_EQ(run("rt 4 0 0 1"), done({"SetSerDesTestOption(0, 4, 0, 0, 1)"}));
  EXPECT_EQ(run("RUNTEST 0x4 0 0 1"), done({"SetSerDesTestOption(0, 4, 0, 0, 1)"}));
}

TEST_F(RunTest, OptionsUpTo9But5ArePassed) {
  EXPECT_EQ(run("rt 1 2 0 3"), done({"SetSerDesTestOption(0, 1, 2, 0, 3)"}));
  EXPECT_EQ(run("rt 1 2 1 3"), done({"SetSerDesTestOption(0, 1, 2, 1, 3)"}));
  EXPECT_EQ(run("rt 1 2 2 3"), done({"SetSerDesTestOption(0, 1, 2, 2, 3)"}));
  EXPECT_EQ(run("rt 1 2 3 3"), done({"SetSerDesTestOption(0, 1, 2, 3, 3)"}));
  EXPECT_EQ(run("rt 1 2 4 3"), done({"SetSerDesTestOption(0, 1, 2, 4, 3)"}));
  EXPECT_EQ(run("rt 1 2 6 3"), done({"SetSerDesTestOption(0, 1, 2, 6, 3)"}));
  EXPECT_EQ(run("rt 1 2 7 3"), done({"SetSerDesTestOption(0, 1, 2, 7, 3)"}));
  EXPECT_EQ(run("rt 1 2 8 3"), done({"SetSerDesTestOption(0, 1, 2, 8, 3)"}));
  EXPECT_EQ(run("rt 1 2 9 3"), done({"SetSerDesTestOption(0, 1, 2, 9, 3)"}));
}

TEST_F(RunTest, OtherOptionsAreRefused) {
  for (const char* option : {"5", "10", "11", "99", "102", "255", "0x7fffffff", "-1", "-5", "-100", "-2147483648",
                             "0x80000000", "0xffffffff"})
    EXPECT_EQ(run(std::string("runTest 4 0 ") + option + " 1"), refused(CMD_BAD_PARAM)) << option;
}

TEST_F(RunTest, PortLinkAndModeAreNotChecked) {
  EXPECT_EQ(run("runTest 99 -1 2 -7"), done({"SetSerDesTestOption(0, 99, -1, 2, -7)"}));
  EXPECT_EQ(run("runTest -1 0x7fffffff 2 0x80000000"),
            done({"SetSerDesTestOption(0, 4294967295, 2147483647, 2, -2147483648)"}));
}

TEST_F(RunTest, AddressesTheSelectedAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("runTest 4 0 0 1"), done({"SetSerDesTestOption(1, 4, 0, 0, 1)"}));
}

TEST_F(RunTest, PositiveResultIsSuccess) {
  platform.fail("SetSerDesTestOption", 12);
  EXPECT_EQ(run("runTest 4 0 0 1"), done({"SetSerDesTestOption(0, 4, 0, 0, 1)"}));
}

TEST_F(RunTest, PlatformFailureIsReported) {
  expectEachFailureEnds("runTest 4 0 0 1", {"SetSerDesTestOption(0, 4, 0, 0, 1)"}, "runTestCmdHandler: serdes err");
}

const Calls kResets = {"SetSerDesTestOption(0, 0, -1, 2, 0)",  "SetSerDesTestOption(0, 1, -1, 2, 0)",
                       "SetSerDesTestOption(0, 2, -1, 2, 0)",  "SetSerDesTestOption(0, 3, -1, 2, 0)",
                       "SetSerDesTestOption(0, 4, -1, 2, 0)",  "SetSerDesTestOption(0, 5, -1, 2, 0)",
                       "SetSerDesTestOption(0, 6, -1, 2, 0)",  "SetSerDesTestOption(0, 7, -1, 2, 0)",
                       "SetSerDesTestOption(0, 8, -1, 2, 0)",  "SetSerDesTestOption(0, 9, -1, 2, 0)",
                       "SetSerDesTestOption(0, 10, -1, 2, 0)", "SetSerDesTestOption(0, 11, -1, 2, 0)",
                       "SetSerDesTestOption(0, 12, -1, 2, 0)", "SetSerDesTestOption(0, 13, -1, 2, 0)",
                       "SetSerDesTestOption(0, 14, -1, 2, 0)", "SetSerDesTestOption(0, 15, -1, 2, 0)",
                       "SetSerDesTestOption(0, 16, -1, 2, 0)", "SetSerDesTestOption(0, 17, -1, 2, 0)",
                       "SetSerDesTestOption(0, 18, -1, 2, 0)", "SetSerDesTestOption(0, 19, -1, 2, 0)"};

TEST_F(RunTest, Option100ResetsOption2OnTwentyPortsWhateverElseIsTyped) {
  EXPECT_EQ(run("runTest 0 0 100 0"), done(kResets));
  EXPECT_EQ(run("rt 99 3 0x64 -8"), done(kResets));
}

TEST_F(RunTest, Option100ResetsTwentyPortsWhateverThePortCount) {
  for (const unsigned portCount : {0u, 1u, 24u}) {
    platform.portCount = portCount;
    discover();
    EXPECT_EQ(run("runTest 0 0 100 0"), done(kResets)) << portCount;
  }
}

TEST_F(RunTest, Option100StillWantsItsNumbers) {
  EXPECT_EQ(run("runTest x 0 100 0"), refused(CMD_BAD_PARAM));
  EXPECT_EQ(run("runTest 0 x 100 0"), refused(CMD_BAD_PARAM));
  EXPECT_EQ(run("runTest 0 0 100 x"), refused(CMD_BAD_PARAM));
}

TEST_F(RunTest, Option100FailureOnPort7LeavesPorts0To6Reset) {
  platform.fail("SetSerDesTestOption", -9, 8);
  EXPECT_EQ(run("runTest 0 0 100 0"),
            failed("runTestCmdHandler: serdes err -9\n",
                   {"SetSerDesTestOption(0, 0, -1, 2, 0)", "SetSerDesTestOption(0, 1, -1, 2, 0)",
                    "SetSerDesTestOption(0, 2, -1, 2, 0)", "SetSerDesTestOption(0, 3, -1, 2, 0)",
                    "SetSerDesTestOption(0, 4, -1, 2, 0)", "SetSerDesTestOption(0, 5, -1, 2, 0)",
                    "SetSerDesTestOption(0, 6, -1, 2, 0)", "SetSerDesTestOption(0, 7, -1, 2, 0)"}));
}

TEST_F(RunTest, Option100EndsAtEachFailure) {
  expectEachFailureEnds("runTest 0 0 100 0", kResets, "runTestCmdHandler: serdes err");
}

// The statistics of port 6 link 2, whose DFE mode is 1.
void setAdaptedDfe() {
  RxLink& link = platform.ports[6].rxLinks[2];
  link.mode = DFE_5;
  link.stats.leadingWord = 0x01020304;
  link.stats.h = {-32768, 32767, -1, 1, 200, -200, 7, 8, 9, 10};
  link.stats.Ap = 71;
  link.stats.Amin = 72;
  link.stats.An = 73;
  link.stats.trailingHalfword = 74;
  link.stats.reserved.fill(0xA5);
}

TEST_F(RunTest, Option101LoadsTheCurrentDfeAsState) {
  setAdaptedDfe();
  EXPECT_EQ(run("runTest 6 2 101 0"),
            done({"GetSerDesRxDFE(0, 6, 2)", "GetSerDesRxDFEStats(0, 6, 2)",
                  "SetSerDesRxDFEState(0, 6, 2, 16909060, 1, -32768, 32767, -1, 1, 200, -200, 7, 8, 9, 10)"}));
}

TEST_F(RunTest, Option101HandsOverNothingBehindTheTaps) {
  setAdaptedDfe();
  ASSERT_EQ(run("runTest 6 2 101 5").status, CMD_OK);
  std::array<std::uint8_t, sizeof(SerDesRxDFEState)> bytes;
  std::memcpy(bytes.data(), &platform.lastDfeState, bytes.size());
  for (std::size_t offset = 28; offset < bytes.size(); ++offset)
    EXPECT_EQ(bytes[offset], 0) << offset;
}

TEST_F(RunTest, Option101PassesModesBeyondTheTable) {
  platform.ports[0].rxLinks[0].mode = 250;
  EXPECT_EQ(run("rt 0 0 0x65 0"), done({"GetSerDesRxDFE(0, 0, 0)", "GetSerDesRxDFEStats(0, 0, 0)",
                                        "SetSerDesRxDFEState(0, 0, 0, 0, 250, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)"}));
}

TEST_F(RunTest, Option101ChecksNeitherPortNorLink) {
  EXPECT_EQ(run("runTest 39 -4 101 0"), done({"GetSerDesRxDFE(0, 39, -4)", "GetSerDesRxDFEStats(0, 39, -4)",
                                              "SetSerDesRxDFEState(0, 39, -4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)"}));
}

TEST_F(RunTest, Option101FailingModeReadStopsBeforeTheStatistics) {
  platform.fail("GetSerDesRxDFE", -2);
  EXPECT_EQ(run("runTest 6 2 101 0"), failed("runTestCmdHandler: serdes err -2\n", {"GetSerDesRxDFE(0, 6, 2)"}));
}

TEST_F(RunTest, Option101EndsAtEachFailure) {
  setAdaptedDfe();
  expectEachFailureEnds("runTest 6 2 101 0",
                        {"GetSerDesRxDFE(0, 6, 2)", "GetSerDesRxDFEStats(0, 6, 2)",
                         "SetSerDesRxDFEState(0, 6, 2, 16909060, 1, -32768, 32767, -1, 1, 200, -200, 7, 8, 9, 10)"},
                        "runTestCmdHandler: serdes err");
}

class GetTest : public TopologyTest {};

TEST_F(GetTest, PrintsTheStatusOfTheOption) {
  platform.testStatus = 17;
  EXPECT_EQ(run("getTest 4 0 0"), printed("status: 17\n", {"GetSerDesTestStatus(0, 4, 0, 0)"}));
  EXPECT_EQ(run("gt 4 0 0"), printed("status: 17\n", {"GetSerDesTestStatus(0, 4, 0, 0)"}));
  EXPECT_EQ(run("GETTEST 4 0 0x0"), printed("status: 17\n", {"GetSerDesTestStatus(0, 4, 0, 0)"}));
}

TEST_F(GetTest, StatusIsSigned) {
  platform.testStatus = -2147483647;
  EXPECT_EQ(run("getTest 4 0 1"), printed("status: -2147483647\n", {"GetSerDesTestStatus(0, 4, 0, 1)"}));
  platform.testStatus = 2147483647;
  EXPECT_EQ(run("getTest 4 0 1"), printed("status: 2147483647\n", {"GetSerDesTestStatus(0, 4, 0, 1)"}));
}

TEST_F(GetTest, Options0To4And9CanBeAskedFor) {
  EXPECT_EQ(run("gt 1 2 1"), printed("status: 0\n", {"GetSerDesTestStatus(0, 1, 2, 1)"}));
  EXPECT_EQ(run("gt 1 2 2"), printed("status: 0\n", {"GetSerDesTestStatus(0, 1, 2, 2)"}));
  EXPECT_EQ(run("gt 1 2 3"), printed("status: 0\n", {"GetSerDesTestStatus(0, 1, 2, 3)"}));
  EXPECT_EQ(run("gt 1 2 4"), printed("status: 0\n", {"GetSerDesTestStatus(0, 1, 2, 4)"}));
  EXPECT_EQ(run("gt 1 2 9"), printed("status: 0\n", {"GetSerDesTestStatus(0, 1, 2, 9)"}));
}

TEST_F(GetTest, OtherOptionsAreRefused) {
  for (const char* option :
       {"5", "6", "7", "8", "10", "100", "101", "-1", "-9", "0x7fffffff", "0x80000000", "0xffffffff"})
    EXPECT_EQ(run(std::string("getTest 4 0 ") + option), refused(CMD_BAD_PARAM)) << option;
}

TEST_F(GetTest, PortAndLinkAreNotChecked) {
  EXPECT_EQ(run("getTest 99 -1 2"), printed("status: 0\n", {"GetSerDesTestStatus(0, 99, -1, 2)"}));
  EXPECT_EQ(run("getTest -1 64 2"), printed("status: 0\n", {"GetSerDesTestStatus(0, 4294967295, 64, 2)"}));
}

TEST_F(GetTest, AddressesTheSelectedAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("getTest 4 0 0"), printed("status: 0\n", {"GetSerDesTestStatus(1, 4, 0, 0)"}));
}

TEST_F(GetTest, PositiveResultIsSuccess) {
  platform.testStatus = 3;
  platform.fail("GetSerDesTestStatus", 1);
  EXPECT_EQ(run("getTest 4 0 0"), printed("status: 3\n", {"GetSerDesTestStatus(0, 4, 0, 0)"}));
}

TEST_F(GetTest, PlatformFailureIsReported) {
  expectEachFailureEnds("getTest 4 0 9", {"GetSerDesTestStatus(0, 4, 0, 9)"}, "getTestCmdHandler: serdes err");
}

class ClearErrors : public TopologyTest {};

TEST_F(ClearErrors, ClearsEachPortOfTheListInSilence) {
  const Outcome cleared = done({"ClrFrameStatCntrs(100/0/0)", "ClrFrameStatCntrs(101/0/1)",
                                "ClrFrameStatCntrs(102/0/2)", "ClrFrameStatCntrs(65535/0/3)"});
  EXPECT_EQ(run("clearErrors 0 1 2 3"), cleared);
  EXPECT_EQ(run("ce 3 2-0 0-2"), cleared);
  EXPECT_EQ(run("CLEARERRORS 3 2 1 0"), cleared);
}

TEST_F(ClearErrors, TypesMayBeMixed) {
  EXPECT_EQ(run("clearErrors 5 6 8"),
            done({"ClrFrameStatCntrs(105/0/5)", "ClrFrameStatCntrs(106/0/6)", "ClrFrameStatCntrs(108/0/8)"}));
}

TEST_F(ClearErrors, AllClearsEveryPortWithAType) {
  platform.ports[1].hwConfig.presence = 0;
  discover();
  EXPECT_EQ(run("clearErrors all"),
            done({"ClrFrameStatCntrs(100/0/0)", "ClrFrameStatCntrs(102/0/2)", "ClrFrameStatCntrs(65535/0/3)",
                  "ClrFrameStatCntrs(104/0/4)", "ClrFrameStatCntrs(105/0/5)", "ClrFrameStatCntrs(106/0/6)",
                  "ClrFrameStatCntrs(107/0/7)", "ClrFrameStatCntrs(108/0/8)", "ClrFrameStatCntrs(65535/0/9)",
                  "ClrFrameStatCntrs(110/0/10)", "ClrFrameStatCntrs(111/0/11)"}));
}

TEST_F(ClearErrors, PortWithoutLinksOrTypeIsStillCleared) {
  platform.ports[1].rx.linkCount = platform.ports[1].tx.linkCount = 0;
  platform.ports[1].hwConfig.presence = 0;
  discover();
  EXPECT_EQ(run("clearErrors 1"), done({"ClrFrameStatCntrs(101/0/1)"}));
}

TEST_F(ClearErrors, PassesTheIdentifierThatThePortReported) {
  platform.ports[4].hwConfig.portId = {.userPort = 7, .asic = 1, .asicPort = 33, .unused = {}};
  discover();
  EXPECT_EQ(run("clearErrors 4"), done({"ClrFrameStatCntrs(7/1/33)"}));
}

TEST_F(ClearErrors, EmptyListAndPortsBeyondThePortCountClearNothing) {
  EXPECT_EQ(run("clearErrors 3-0"), done({}));
  EXPECT_EQ(run("clearErrors 40"), done({}));
  EXPECT_EQ(run("clearErrors 12-31"), done({}));
}

TEST_F(ClearErrors, PositiveResultIsSuccess) {
  platform.fail("ClrFrameStatCntrs", 1);
  EXPECT_EQ(run("clearErrors 0 1"), done({"ClrFrameStatCntrs(100/0/0)", "ClrFrameStatCntrs(101/0/1)"}));
}

TEST_F(ClearErrors, FailureOnEachPortLeavesEarlierPortsCleared) {
  expectEachFailureEnds("clearErrors 2-4",
                        {"ClrFrameStatCntrs(102/0/2)", "ClrFrameStatCntrs(65535/0/3)", "ClrFrameStatCntrs(104/0/4)"},
                        "clearErrorsCmdHandler: serdes err");
}

class DiagnosticsRefusal : public RefusalTest {};

TEST_P(DiagnosticsRefusal, TouchesNothing) {
  EXPECT_EQ(run(GetParam().line), refused(GetParam().status));
}

INSTANTIATE_TEST_SUITE_P(RunTest, DiagnosticsRefusal,
                         testing::Values(Refusal{"Alone", "runTest", CMD_TOO_FEW_ARGS},
                                         Refusal{"WithoutMode", "runTest 4 0 0", CMD_TOO_FEW_ARGS},
                                         Refusal{"AnotherWord", "runTest 4 0 0 1 1", CMD_TOO_MANY_ARGS},
                                         Refusal{"PortNotANumber", "runTest p 0 0 1", CMD_BAD_PARAM},
                                         Refusal{"PortKeyword", "runTest gl 0 0 1", CMD_BAD_PARAM},
                                         Refusal{"LinkNotANumber", "runTest 4 l 0 1", CMD_BAD_PARAM},
                                         Refusal{"OptionNotANumber", "runTest 4 0 0x 1", CMD_BAD_PARAM},
                                         Refusal{"ModeNotANumber", "runTest 4 0 0 m", CMD_BAD_PARAM},
                                         Refusal{"ModeNotANumberForOption101", "runTest 4 0 101 m", CMD_BAD_PARAM}),
                         refusalName);

INSTANTIATE_TEST_SUITE_P(GetTest, DiagnosticsRefusal,
                         testing::Values(Refusal{"Alone", "getTest", CMD_TOO_FEW_ARGS},
                                         Refusal{"WithoutOption", "getTest 4 0", CMD_TOO_FEW_ARGS},
                                         Refusal{"AnotherWord", "getTest 4 0 0 1", CMD_TOO_MANY_ARGS},
                                         Refusal{"PortNotANumber", "getTest 4- 0 0", CMD_BAD_PARAM},
                                         Refusal{"LinkNotANumber", "getTest 4 zero 0", CMD_BAD_PARAM},
                                         Refusal{"OptionNotANumber", "getTest 4 0 0xg", CMD_BAD_PARAM}),
                         refusalName);

INSTANTIATE_TEST_SUITE_P(ClearErrors, DiagnosticsRefusal,
                         testing::Values(Refusal{"WithoutList", "clearErrors", CMD_TOO_FEW_ARGS},
                                         Refusal{"KeywordInALongerList", "clearErrors gl 1", CMD_BAD_PARAM},
                                         Refusal{"NegativePort", "clearErrors -1", CMD_BAD_PARAM},
                                         Refusal{"RangeBeyond31", "clearErrors 0-32", CMD_BAD_PARAM},
                                         Refusal{"BadWordBehindGoodOnes", "clearErrors 0 1 2x", CMD_BAD_PARAM},
                                         Refusal{"TooManyWords",
                                                 "clearErrors 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0",
                                                 CMD_TOO_MANY_ARGS}),
                         refusalName);

class DiagnosticsOnOversizedSwitch : public OversizedSwitchTest {};

TEST_P(DiagnosticsOnOversizedSwitch, NoPortBeyondTheModelIsCleared) {
  EXPECT_EQ(run("clearErrors 22-31"), done({"ClrFrameStatCntrs(122/0/22)", "ClrFrameStatCntrs(123/0/23)"}));
}

TEST_P(DiagnosticsOnOversizedSwitch, Option100StillResetsTwentyPorts) {
  EXPECT_EQ(run("runTest 0 0 100 0"), done(kResets));
}

INSTANTIATE_TEST_SUITE_P(PortCounts, DiagnosticsOnOversizedSwitch, testing::Values(40u, 0xFFFFFFFFu));

}  // namespace
}  // namespace recording
