// Self-tests and clearing of error counters.
#include <array>
#include <cstring>

#include "tests/support/expected.h"

namespace recording {
namespace {

using RunTest = TopologyTest;
using GetTest = TopologyTest;
using ClearErrors = TopologyTest;

TEST_F(RunTest, OptionsUpTo9But5ArePassedWithPortLinkAndMode) {
  for (const unsigned option : {0u, 1u, 2u, 3u, 4u, 6u, 7u, 8u, 9u})
    EXPECT_EQ(run("runTest 1 2 " + std::to_string(option) + " 3"),
              done(perNumber("SetSerDesTestOption(0, 1, 2, %, 3)", {option})));
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

TEST_F(RunTest, Option100ResetsOption2OnTwentyPortsWhateverElseIsTypedAndWhateverThePortCount) {
  const Numbers ports = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19};
  const Outcome reset = done(perNumber("SetSerDesTestOption(0, %, -1, 2, 0)", ports));
  EXPECT_EQ(run("runTest 99 3 0x64 -8"), reset);
  for (const unsigned portCount : {0u, 1u, 24u, 0xFFFFFFFFu}) {
    platform.portCount = portCount;
    discover();
    EXPECT_EQ(run("runTest 0 0 100 0"), reset) << portCount;
  }
}

// The statistics of port 6 link 2, whose DFE mode is beyond the table.
TEST_F(RunTest, Option101LoadsTheCurrentDfeAsStateAndNothingBehindTheTaps) {
  RxLink& link = platform.ports[6].rxLinks[2];
  link.mode = 250;
  link.stats.leadingWord = 0x01020304;
  link.stats.h = {-32768, 32767, -1, 1, 200, -200, 7, 8, 9, 10};
  link.stats.Ap = 71;
  link.stats.Amin = 72;
  link.stats.An = 73;
  link.stats.trailingHalfword = 74;
  link.stats.reserved.fill(0xA5);
  EXPECT_EQ(run("runTest 6 2 101 5"),
            done({"GetSerDesRxDFE(0, 6, 2)", "GetSerDesRxDFEStats(0, 6, 2)",
                  "SetSerDesRxDFEState(0, 6, 2, 16909060, 250, -32768, 32767, -1, 1, 200, -200, 7, 8, 9, 10)"}));
  std::array<std::uint8_t, sizeof(SerDesRxDFEState)> bytes;
  std::memcpy(bytes.data(), &platform.lastDfeState, bytes.size());
  for (std::size_t offset = 28; offset < bytes.size(); ++offset)
    EXPECT_EQ(bytes[offset], 0) << offset;
}

TEST_F(RunTest, Option101ChecksNeitherPortNorLink) {
  EXPECT_EQ(run("runTest 39 -4 101 0"), done({"GetSerDesRxDFE(0, 39, -4)", "GetSerDesRxDFEStats(0, 39, -4)",
                                              "SetSerDesRxDFEState(0, 39, -4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)"}));
}

TEST_F(GetTest, PrintsTheStatusOfOptions0To4And9AsASignedNumber) {
  for (const unsigned option : {0u, 1u, 2u, 3u, 4u, 9u}) {
    platform.testStatus = -2147483647;
    EXPECT_EQ(run("getTest 1 2 " + std::to_string(option)),
              printed("status: -2147483647\n", perNumber("GetSerDesTestStatus(0, 1, 2, %)", {option})));
  }
  platform.testStatus = 17;
  EXPECT_EQ(run("getTest 4 0 0x0"), printed("status: 17\n", {"GetSerDesTestStatus(0, 4, 0, 0)"}));
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

TEST_F(ClearErrors, ClearsEachPortInAscendingOrderWhateverItsType) {
  EXPECT_EQ(run("clearErrors 8 6 3 2-0 0-2"),
            done({"ClrFrameStatCntrs(100/0/0)", "ClrFrameStatCntrs(101/0/1)", "ClrFrameStatCntrs(102/0/2)",
                  "ClrFrameStatCntrs(65535/0/3)", "ClrFrameStatCntrs(106/0/6)", "ClrFrameStatCntrs(108/0/8)"}));
}

TEST_F(ClearErrors, AllClearsEveryPortWithATypeAndANumberAnyPort) {
  platform.portCount = 3;
  platform.ports[1].hwConfig.presence = 0;
  discover();
  EXPECT_EQ(run("clearErrors all"), done({"ClrFrameStatCntrs(100/0/0)", "ClrFrameStatCntrs(102/0/2)"}));
  EXPECT_EQ(run("clearErrors 1"), done({"ClrFrameStatCntrs(101/0/1)"}));
}

TEST_F(ClearErrors, PassesTheIdentifierThatThePortReported) {
  platform.ports[4].hwConfig.portId = {.userPort = 7, .asic = 1, .asicPort = 33, .unused = {}};
  discover();
  EXPECT_EQ(run("clearErrors 4"), done({"ClrFrameStatCntrs(7/1/33)"}));
}

}  // namespace
}  // namespace recording
