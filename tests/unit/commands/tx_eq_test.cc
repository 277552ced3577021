// Live transmit equalisation.
#include "tests/support/expected.h"

namespace recording {
namespace {

using SetFFE = TopologyTest;
using SetSlew = TopologyTest;
using SetTxParams = TopologyTest;
using ShowFFE = TopologyTest;
using ShowSlew = TopologyTest;
using ShowTxParams = TopologyTest;

// Ports 5 to 7 with 1, 2 and 3 transmit links that differ, other receive links, and port 6 not running.
void setLinksOfPorts5To7() {
  platform.ports[5].rx.linkCount = 4;
  platform.ports[6].tx.linkCount = 2;
  platform.ports[7].tx.linkCount = 3;
  makeIdle(platform.ports[6]);
  platform.ports[5].txLinks[0] = {.mode = FFE_3, .k = 115, .c = {-4, 55, -25, 0}, .slew = SLEW_36PS};
  platform.ports[6].txLinks[0] = {.mode = FFE_4, .k = 1, .c = {2, 3, 4, 5}, .slew = SLEW_24PS};
  platform.ports[6].txLinks[1] = {.mode = FFE_2, .k = 6, .c = {7, 8, 9, 10}, .slew = SLEW_30PS};
  platform.ports[7].txLinks[0] = {.mode = FFE_NONE, .k = 255, .c = {-128, 127, -1, -100}, .slew = SLEW_100PS};
  platform.ports[7].txLinks[1] = {.mode = 4, .k = 0, .c = {127, -128, 100, 1}, .slew = 8};
  platform.ports[7].txLinks[2] = {.mode = 0xFFFFFFFF, .k = 128, .c = {0, 1, 2, 3}, .slew = 0xFFFFFFFF};
}

TEST_F(SetFFE, SetsAllLinksOfEveryPortInAscendingOrder) {
  EXPECT_EQ(run("setFFE FFE3 115 -4 55 -25 0 gl"),
            done(perNumber("SetSerDesTxFFE(0, %, -1, 2, 115, -4, 55, -25, 0)", {0, 1, 2, 3, 4, 5})));
  EXPECT_EQ(run("setFFE FFE2 1 2 3 4 5 10-11"),
            done(perNumber("SetSerDesTxFFE(0, %, -1, 1, 1, 2, 3, 4, 5)", {10, 11})));
}

TEST_F(SetFFE, ModeIsTakenWithoutRegardToCase) {
  EXPECT_EQ(run("setFFE FFE2 0x10 1 2 3 4 6"), done({"SetSerDesTxFFE(0, 6, -1, 1, 16, 1, 2, 3, 4)"}));
  EXPECT_EQ(run("setFFE ffe3 0x10 1 2 3 4 6"), done({"SetSerDesTxFFE(0, 6, -1, 2, 16, 1, 2, 3, 4)"}));
  EXPECT_EQ(run("setFFE FfE4 0x10 1 2 3 4 6"), done({"SetSerDesTxFFE(0, 6, -1, 3, 16, 1, 2, 3, 4)"}));
}

TEST_F(SetFFE, OtherModesAreRefused) {
  for (const char* mode : {"FFENone", "ffenone", "FFE", "FFE1", "FFE5", "FFE22", "2", "UNK"})
    EXPECT_EQ(run("setFFE " + std::string(mode) + " 115 -4 55 -25 0 gl"), refused(CMD_BAD_PARAM)) << mode;
}

TEST_F(SetFFE, NumbersBeyondEightBitsAreCutWithoutComplaint) {
  EXPECT_EQ(run("setFFE FFE2 300 -200 0 0 0 0"), done({"SetSerDesTxFFE(0, 0, -1, 1, 44, 56, 0, 0, 0)"}));
  EXPECT_EQ(run("setFFE FFE2 256 200 128 -129 0x1ff 0"), done({"SetSerDesTxFFE(0, 0, -1, 1, 0, -56, -128, 127, -1)"}));
  EXPECT_EQ(run("setFFE FFE2 -1 -128 127 255 256 0"), done({"SetSerDesTxFFE(0, 0, -1, 1, 255, -128, 127, -1, 0)"}));
}

TEST_F(SetSlew, EachRateIsItsNumberWithOrWithoutItsUnit) {
  const char* const rates[] = {"24", "30", "36", "50", "60", "75", "100"};
  for (unsigned rate = 0; rate < 7; ++rate) {
    const Calls calls = perNumber("SetSerDesTxSlew(0, 7, -1, 1, %)", {rate});
    for (const char* unit : {"", "ps", "PS", "Ps"})
      EXPECT_EQ(run(std::string("setSlew ") + rates[rate] + unit + " 7"), done(calls)) << rates[rate] << unit;
  }
}

TEST_F(SetSlew, SetsAllLinksOfEveryPort) {
  EXPECT_EQ(run("setSlew 36 0 1"), done(perNumber("SetSerDesTxSlew(0, %, -1, 1, 2)", {0, 1})));
}

TEST_F(SetSlew, OtherRatesAreRefused) {
  for (const char* rate : {"UNK", "unk", "37", "36 ps", "36p", "ps", "0", "2"})
    EXPECT_EQ(run("setSlew " + std::string(rate) + " 0"), refused(CMD_BAD_PARAM)) << rate;
}

TEST_F(SetTxParams, SetsFFEThenSlewPortByPort) {
  EXPECT_EQ(run("setTxParams FFE3 115 -4 55 -25 0 36ps 1 0"),
            done({"SetSerDesTxFFE(0, 0, -1, 2, 115, -4, 55, -25, 0)", "SetSerDesTxSlew(0, 0, -1, 1, 2)",
                  "SetSerDesTxFFE(0, 1, -1, 2, 115, -4, 55, -25, 0)", "SetSerDesTxSlew(0, 1, -1, 1, 2)"}));
  EXPECT_EQ(run("setTxParams ffe2 300 -200 1 2 3 60 11"),
            done({"SetSerDesTxFFE(0, 11, -1, 1, 44, 56, 1, 2, 3)", "SetSerDesTxSlew(0, 11, -1, 1, 4)"}));
}

TEST_F(SetTxParams, RefusesModesAndRatesThatHaveNoWord) {
  expectRefusals({{"setTxParams FFENone 115 -4 55 -25 0 36 0", CMD_BAD_PARAM},
                  {"setTxParams FFE3 115 -4 55 -25 0 UNK 0", CMD_BAD_PARAM},
                  {"setTxParams FFE3 115 -4 55 -25 0 0 0", CMD_BAD_PARAM}});
}

// "FFENone" overruns its cell, and only the names of the table's modes have one.
TEST_F(ShowFFE, EveryTransmitLinkHasItsColumnWhetherItRunsOrNot) {
  setLinksOfPorts5To7();
  discover();
  EXPECT_EQ(run("showFFE 5-7"), table("show FFE", {5, 6, 7},
                                      Calls{"GetSerDesTxFFE(0, 5, 0)"} + perNumber("GetSerDesTxFFE(0, 6, %)", {0, 1}) +
                                          perNumber("GetSerDesTxFFE(0, 7, %)", {0, 1, 2}),
                                      "ffe mode            FFE3 FFE4 FFE2 FFENone UNK  UNK  \n"
                                      "k (power)            115    1    6  255    0  128 \n"
                                      "c0 (precursor)        -4    2    7 -128  127    0 \n"
                                      "c1 (main)             55    3    8  127 -128    1 \n"
                                      "c2 (postcursor)      -25    4    9   -1  100    2 \n"
                                      "c3 (postcursor)        0    5   10 -100    1    3 \n"));
}

TEST_F(ShowSlew, EveryTransmitLinkHasItsCellBelowAnEmptyLineWhetherItRunsOrNot) {
  setLinksOfPorts5To7();
  discover();
  EXPECT_EQ(run("showSlew 5-7"),
            table("show slew", {5, 6, 7},
                  Calls{"GetSerDesTxSlew(0, 5, 0)"} + perNumber("GetSerDesTxSlew(0, 6, %)", {0, 1}) +
                      perNumber("GetSerDesTxSlew(0, 7, %)", {0, 1, 2}),
                  "\n"
                  "slew rate (ps)        36   24   30  100  UNK  UNK\n"));
}

TEST_F(ShowSlew, EveryRateHasItsNameAndTheEighthIsUnknown) {
  for (unsigned link = 0; link < 4; ++link) {
    platform.ports[6].txLinks[link].slew = link;
    platform.ports[7].txLinks[link].slew = 4 + link;
  }
  EXPECT_EQ(run("showSlew xg"), table("show slew", {6, 7},
                                      perNumber("GetSerDesTxSlew(0, 6, %)", {0, 1, 2, 3}) +
                                          perNumber("GetSerDesTxSlew(0, 7, %)", {0, 1, 2, 3}),
                                      "\n"
                                      "slew rate (ps)        24   30   36   50   60   75  100  UNK\n"));
}

TEST_F(ShowSlew, EnableFlagIsNeitherShownNorRead) {
  platform.corrupt = [](std::span<std::byte> value) {
    if (value.size() == sizeof(bool)) value[0] = std::byte{0xff};
  };
  EXPECT_EQ(run("showSlew 0"), table("show slew", {0}, {"GetSerDesTxSlew(0, 0, 0)"}, "\nslew rate (ps)        24\n"));
}

// What showTxParams asks before its head.
Calls paramReads(unsigned port, const Numbers& links) {
  Calls reads;
  for (const unsigned link : links) {
    const std::string at = "(0, " + std::to_string(port) + ", " + std::to_string(link) + ")";
    reads = reads + Calls{"GetSerDesTxFFE" + at, "GetSerDesTxSlew" + at};
  }
  return reads;
}

TEST_F(ShowTxParams, PortThatDoesNotRunIsReadAndHasBlankColumns) {
  setLinksOfPorts5To7();
  discover();
  EXPECT_EQ(run("showTxParams 5-7"),
            table("show tx params", {5, 6, 7}, paramReads(5, {0}) + paramReads(6, {0, 1}) + paramReads(7, {0, 1, 2}),
                  "ffe mode            FFE3           FFENone UNK  UNK  \n"
                  "k (power)            115            255    0  128 \n"
                  "c0 (precursor)        -4           -128  127    0 \n"
                  "c1 (main)             55            127 -128    1 \n"
                  "c2 (postcursor)      -25             -1  100    2 \n"
                  "c3 (postcursor)        0           -100    1    3 \n"
                  "slew rate (ps)        36            100  UNK  UNK\n"));
}

const std::string kPlainColumn =
    "ffe mode            FFE2 \n"
    "k (power)              0 \n"
    "c0 (precursor)         0 \n"
    "c1 (main)              0 \n"
    "c2 (postcursor)        0 \n"
    "c3 (postcursor)        0 \n"
    "slew rate (ps)        24\n";

TEST_F(ShowTxParams, PortThatRunsAgainShowsItsValuesAgain) {
  platform.ports[0].txLinks[0].mode = FFE_2;
  makeIdle(platform.ports[0]);
  ASSERT_EQ(run("showTxParams 0").status, CMD_OK);
  platform.ports[0].state = kPortStateRunning;
  EXPECT_EQ(run("showTxParams 0"), table("show tx params", {0}, paramReads(0, {0}), kPlainColumn));
}

// A port counts as running as soon as its rate is asked for.
TEST_F(ShowTxParams, PortWhoseRunningRateCannotBeReadShowsItsValues) {
  platform.ports[0].txLinks[0].mode = FFE_2;
  platform.fail("GetPortSpeed", -1);
  Outcome expected = table("show tx params", {0}, paramReads(0, {0}), kPlainColumn);
  expected.out.replace(expected.out.find("   8G\n"), 5, "  INV");
  EXPECT_EQ(run("showTxParams 0"), expected);
}

TEST_F(ShowTxParams, PortWhoseStateAndSpeedCannotBeReadHasBlankColumns) {
  platform.fail("GetPortInfo", -1);
  platform.fail("GetPortCfgSpeed", -1);
  const Outcome outcome = run("showTxParams 0");
  makeIdle(platform.ports[0]);
  EXPECT_EQ(outcome, table("show tx params", {0}, paramReads(0, {0}),
                           "ffe mode                 \n"
                           "k (power)                \n"
                           "c0 (precursor)           \n"
                           "c1 (main)                \n"
                           "c2 (postcursor)          \n"
                           "c3 (postcursor)          \n"
                           "slew rate (ps)          \n"));
}

}  // namespace
}  // namespace recording
