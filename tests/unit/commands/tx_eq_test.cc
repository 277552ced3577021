// Live transmit equalisation.
#include <string>

#include "arguments/keywords.h"
#include "commands/tx_eq.h"
#include "tests/support/expected.h"

namespace recording {
namespace {

// The heads of tables of port 0 alone.
const std::string kFFEHeadOfPort0 =
    "\n"
    "show FFE            \n"
    "=================== ==== \n"
    "ASIC port              0 \n"
    "user port            100 \n"
    "link num               0 \n"
    "running rate          8G\n"
    "media type           OPT\n"
    "=================== ==== \n";

const std::string kSlewHeadOfPort0 =
    "\n"
    "show slew           \n"
    "=================== ==== \n"
    "ASIC port              0 \n"
    "user port            100 \n"
    "link num               0 \n"
    "running rate          8G\n"
    "media type           OPT\n"
    "=================== ==== \n";

const std::string kTxParamsHeadOfPort0 =
    "\n"
    "show tx params      \n"
    "=================== ==== \n"
    "ASIC port              0 \n"
    "user port            100 \n"
    "link num               0 \n"
    "running rate          8G\n"
    "media type           OPT\n"
    "=================== ==== \n";

using SetFFE = TopologyTest;
using SetSlew = TopologyTest;
using SetTxParams = TopologyTest;
using ShowFFE = TopologyTest;
using ShowSlew = TopologyTest;
using ShowTxParams = TopologyTest;

TEST(ParseFFEMode, TakesFFE2ToFFE4WithoutRegardToCase) {
  SerDesTxFFEMode mode = FFE_NONE;
  EXPECT_EQ(parseFFEMode("FFE2", mode), CMD_OK);
  EXPECT_EQ(mode, FFE_2);
  EXPECT_EQ(parseFFEMode("ffe3", mode), CMD_OK);
  EXPECT_EQ(mode, FFE_3);
  EXPECT_EQ(parseFFEMode("FfE4", mode), CMD_OK);
  EXPECT_EQ(mode, FFE_4);
}

TEST(ParseFFEMode, RefusalLeavesTheModeUnwritten) {
  for (const char* word : {"FFENone", "ffenone", "FFE", "FFE1", "FFE5", "FFE22", "2", "UNK", ""}) {
    SerDesTxFFEMode mode = FFE_3;
    EXPECT_EQ(parseFFEMode(word, mode), CMD_BAD_PARAM) << word;
    EXPECT_EQ(mode, FFE_3) << word;
  }
}

struct SlewWords {
  const char* longWord;
  const char* shortWord;
  SerDesTxSlewRate slew;
};

class ParseSlewRate : public testing::TestWithParam<SlewWords> {};

TEST_P(ParseSlewRate, TakesBothFormsOfARate) {
  SerDesTxSlewRate slew = SLEW_UNKNOWN;
  EXPECT_EQ(parseSlewRate(GetParam().longWord, slew), CMD_OK);
  EXPECT_EQ(slew, GetParam().slew);
  slew = SLEW_UNKNOWN;
  EXPECT_EQ(parseSlewRate(GetParam().shortWord, slew), CMD_OK);
  EXPECT_EQ(slew, GetParam().slew);
}

INSTANTIATE_TEST_SUITE_P(, ParseSlewRate,
                         testing::Values(SlewWords{"24ps", "24", SLEW_24PS}, SlewWords{"30ps", "30", SLEW_30PS},
                                         SlewWords{"36PS", "36", SLEW_36PS}, SlewWords{"50Ps", "50", SLEW_50PS},
                                         SlewWords{"60ps", "60", SLEW_60PS}, SlewWords{"75ps", "75", SLEW_75PS},
                                         SlewWords{"100ps", "100", SLEW_100PS}));

TEST(ParseSlewRateWord, RefusalLeavesTheRateUnwritten) {
  for (const char* word : {"UNK", "unk", "37", "36 ps", " 36", "36p", "ps", "0", "2", "100 ", ""}) {
    SerDesTxSlewRate slew = SLEW_50PS;
    EXPECT_EQ(parseSlewRate(word, slew), CMD_BAD_PARAM) << word;
    EXPECT_EQ(slew, SLEW_50PS) << word;
  }
}

TEST_F(SetFFE, SetsAllLinksOfEveryPortInAscendingOrder) {
  EXPECT_EQ(
      run("setFFE FFE3 115 -4 55 -25 0 gl"),
      done({"SetSerDesTxFFE(0, 0, -1, 2, 115, -4, 55, -25, 0)", "SetSerDesTxFFE(0, 1, -1, 2, 115, -4, 55, -25, 0)",
            "SetSerDesTxFFE(0, 2, -1, 2, 115, -4, 55, -25, 0)", "SetSerDesTxFFE(0, 3, -1, 2, 115, -4, 55, -25, 0)",
            "SetSerDesTxFFE(0, 4, -1, 2, 115, -4, 55, -25, 0)", "SetSerDesTxFFE(0, 5, -1, 2, 115, -4, 55, -25, 0)"}));
}

TEST_F(SetFFE, ModeIsTakenWithoutRegardToCase) {
  EXPECT_EQ(run("setFFE ffe3 115 -4 55 -25 0 0"), done({"SetSerDesTxFFE(0, 0, -1, 2, 115, -4, 55, -25, 0)"}));
}

TEST_F(SetFFE, AnswersToItsShortcut) {
  EXPECT_EQ(run("sffe FFE4 0x10 1 2 3 4 6"), done({"SetSerDesTxFFE(0, 6, -1, 3, 16, 1, 2, 3, 4)"}));
}

TEST_F(SetFFE, NumbersBeyondEightBitsAreCutWithoutComplaint) {
  EXPECT_EQ(run("setFFE FFE2 300 -200 0 0 0 0"), done({"SetSerDesTxFFE(0, 0, -1, 1, 44, 56, 0, 0, 0)"}));
  EXPECT_EQ(run("setFFE FFE2 256 200 128 -129 0x1ff 0"), done({"SetSerDesTxFFE(0, 0, -1, 1, 0, -56, -128, 127, -1)"}));
  EXPECT_EQ(run("setFFE FFE2 -1 -128 127 255 256 0"), done({"SetSerDesTxFFE(0, 0, -1, 1, 255, -128, 127, -1, 0)"}));
}

TEST_F(SetFFE, SetsPortsOfAnyOneType) {
  EXPECT_EQ(run("setFFE FFE2 1 2 3 4 5 10-11"),
            done({"SetSerDesTxFFE(0, 10, -1, 1, 1, 2, 3, 4, 5)", "SetSerDesTxFFE(0, 11, -1, 1, 1, 2, 3, 4, 5)"}));
}

TEST_F(SetFFE, SetsPortWithoutLinksToo) {
  platform.ports[0].tx.linkCount = 0;
  discover();
  EXPECT_EQ(run("setFFE FFE2 1 2 3 4 5 0"), done({"SetSerDesTxFFE(0, 0, -1, 1, 1, 2, 3, 4, 5)"}));
}

TEST_F(SetFFE, SetsOnTheCurrentAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("setFFE FFE2 1 2 3 4 5 0"), done({"SetSerDesTxFFE(1, 0, -1, 1, 1, 2, 3, 4, 5)"}));
}

TEST_F(SetFFE, FailureOnFirstPortChangesNothing) {
  platform.fail("SetSerDesTxFFE", -1);
  EXPECT_EQ(run("setFFE FFE2 1 2 3 4 5 0 1"),
            failed("setFFECmdHandler: serdes err -1\n", {"SetSerDesTxFFE(0, 0, -1, 1, 1, 2, 3, 4, 5)"}));
}

TEST_F(SetFFE, FailureOnThirdPortLeavesFirstTwoChanged) {
  platform.fail("SetSerDesTxFFE", -22, 3);
  EXPECT_EQ(run("setFFE FFE2 1 2 3 4 5 0-4"),
            failed("setFFECmdHandler: serdes err -22\n",
                   {"SetSerDesTxFFE(0, 0, -1, 1, 1, 2, 3, 4, 5)", "SetSerDesTxFFE(0, 1, -1, 1, 1, 2, 3, 4, 5)",
                    "SetSerDesTxFFE(0, 2, -1, 1, 1, 2, 3, 4, 5)"}));
}

TEST_F(SetFFE, PositivePlatformResultIsSuccess) {
  platform.fail("SetSerDesTxFFE", 2);
  EXPECT_EQ(run("setFFE FFE2 1 2 3 4 5 0"), done({"SetSerDesTxFFE(0, 0, -1, 1, 1, 2, 3, 4, 5)"}));
}

TEST_F(SetFFE, EmptySelectionSetsNothing) {
  EXPECT_EQ(run("setFFE FFE2 1 2 3 4 5 5-2"), done({}));
  EXPECT_EQ(run("setFFE FFE2 1 2 3 4 5 12-31"), done({}));
}

TEST_F(SetSlew, SetsAllLinksOfEveryPort) {
  EXPECT_EQ(run("setSlew 36 0 1"), done({"SetSerDesTxSlew(0, 0, -1, 1, 2)", "SetSerDesTxSlew(0, 1, -1, 1, 2)"}));
}

TEST_F(SetSlew, RateMayBearItsUnit) {
  EXPECT_EQ(run("setSlew 36PS 0 1"), done({"SetSerDesTxSlew(0, 0, -1, 1, 2)", "SetSerDesTxSlew(0, 1, -1, 1, 2)"}));
}

TEST_F(SetSlew, AnswersToItsShortcut) {
  EXPECT_EQ(run("sslew 100ps xg"), done({"SetSerDesTxSlew(0, 6, -1, 1, 6)", "SetSerDesTxSlew(0, 7, -1, 1, 6)"}));
}

TEST_F(SetSlew, SetsOnTheCurrentAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("setSlew 24 0"), done({"SetSerDesTxSlew(1, 0, -1, 1, 0)"}));
}

TEST_F(SetSlew, FailureOnSecondPortLeavesFirstChanged) {
  platform.fail("SetSerDesTxSlew", -3, 2);
  EXPECT_EQ(run("setSlew 75 0-2"), failed("setSlewCmdHandler: serdes err -3\n",
                                          {"SetSerDesTxSlew(0, 0, -1, 1, 5)", "SetSerDesTxSlew(0, 1, -1, 1, 5)"}));
}

TEST_F(SetSlew, EmptySelectionSetsNothing) {
  EXPECT_EQ(run("setSlew 36 5-2"), done({}));
}

TEST_F(SetTxParams, SetsFFEThenSlewPortByPort) {
  EXPECT_EQ(run("setTxParams FFE3 115 -4 55 -25 0 36 0 1"),
            done({"SetSerDesTxFFE(0, 0, -1, 2, 115, -4, 55, -25, 0)", "SetSerDesTxSlew(0, 0, -1, 1, 2)",
                  "SetSerDesTxFFE(0, 1, -1, 2, 115, -4, 55, -25, 0)", "SetSerDesTxSlew(0, 1, -1, 1, 2)"}));
}

TEST_F(SetTxParams, AnswersToItsShortcut) {
  EXPECT_EQ(run("stxp ffe2 300 -200 1 2 3 60ps 11"),
            done({"SetSerDesTxFFE(0, 11, -1, 1, 44, 56, 1, 2, 3)", "SetSerDesTxSlew(0, 11, -1, 1, 4)"}));
}

TEST_F(SetTxParams, SetsOnTheCurrentAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("setTxParams FFE4 1 2 3 4 5 30 0"),
            done({"SetSerDesTxFFE(1, 0, -1, 3, 1, 2, 3, 4, 5)", "SetSerDesTxSlew(1, 0, -1, 1, 1)"}));
}

TEST_F(SetTxParams, FailingFFELeavesThatPortAndLaterOnesUntouched) {
  platform.fail("SetSerDesTxFFE", -5, 2);
  EXPECT_EQ(run("setTxParams FFE2 1 2 3 4 5 50 3 4-5"),
            failed("setTxParamsCmdHandler: serdes err -5\n",
                   {"SetSerDesTxFFE(0, 3, -1, 1, 1, 2, 3, 4, 5)", "SetSerDesTxSlew(0, 3, -1, 1, 3)",
                    "SetSerDesTxFFE(0, 4, -1, 1, 1, 2, 3, 4, 5)"}));
}

TEST_F(SetTxParams, FailingFFEOfPortFiveLeavesPortThreeWithBoth) {
  platform.fail("SetSerDesTxFFE", -5, 2);
  EXPECT_EQ(run("setTxParams FFE2 1 2 3 4 5 50 5 3"),
            failed("setTxParamsCmdHandler: serdes err -5\n",
                   {"SetSerDesTxFFE(0, 3, -1, 1, 1, 2, 3, 4, 5)", "SetSerDesTxSlew(0, 3, -1, 1, 3)",
                    "SetSerDesTxFFE(0, 5, -1, 1, 1, 2, 3, 4, 5)"}));
}

TEST_F(SetTxParams, FailingSlewLeavesThatPortWithItsNewFFE) {
  platform.fail("SetSerDesTxSlew", -6);
  EXPECT_EQ(run("setTxParams FFE2 1 2 3 4 5 50 3 5"),
            failed("setTxParamsCmdHandler: serdes err -6\n",
                   {"SetSerDesTxFFE(0, 3, -1, 1, 1, 2, 3, 4, 5)", "SetSerDesTxSlew(0, 3, -1, 1, 3)"}));
}

TEST_F(SetTxParams, EmptySelectionSetsNothing) {
  EXPECT_EQ(run("setTxParams FFE2 1 2 3 4 5 50 40"), done({}));
}

TEST_F(ShowFFE, PrintsSixRowsBelowTheHead) {
  platform.ports[0].txLinks[0] = {.mode = FFE_3, .k = 115, .c = {-4, 55, -25, 0}, .slew = SLEW_36PS};
  EXPECT_EQ(run("showFFE 0"), printed(kFFEHeadOfPort0 + "ffe mode            FFE3 \n"
                                                        "k (power)            115 \n"
                                                        "c0 (precursor)        -4 \n"
                                                        "c1 (main)             55 \n"
                                                        "c2 (postcursor)      -25 \n"
                                                        "c3 (postcursor)        0 \n",
                                      Calls{"GetSerDesTxFFE(0, 0, 0)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowFFE, AnswersToItsShortcut) {
  platform.ports[0].txLinks[0] = {.mode = FFE_4, .k = 1, .c = {2, 3, 4, 5}, .slew = SLEW_24PS};
  EXPECT_EQ(run("DFFE 0"), printed(kFFEHeadOfPort0 + "ffe mode            FFE4 \n"
                                                     "k (power)              1 \n"
                                                     "c0 (precursor)         2 \n"
                                                     "c1 (main)              3 \n"
                                                     "c2 (postcursor)        4 \n"
                                                     "c3 (postcursor)        5 \n",
                                   Calls{"GetSerDesTxFFE(0, 0, 0)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowFFE, EveryLinkHasItsOwnColumn) {
  for (unsigned l = 0; l < 4; ++l) {
    const auto tap = static_cast<signed char>(l);
    platform.ports[7].txLinks[l] = {.mode = FFE_2, .k = 200, .c = {tap, -1, -2, -3}, .slew = SLEW_24PS};
  }
  platform.ports[5].txLinks[0] = {.mode = FFE_3, .k = 9, .c = {10, 11, 12, 13}, .slew = SLEW_24PS};
  EXPECT_EQ(run("showFFE 7 5"),
            printed("\n"
                    "show FFE            \n"
                    "=================== ==== ==== ==== ==== ==== \n"
                    "ASIC port              5    7    7    7    7 \n"
                    "user port            105  107  107  107  107 \n"
                    "link num               0    0    1    2    3 \n"
                    "running rate          8G   8G   8G   8G   8G\n"
                    "media type           OPT  OPT  OPT  OPT  OPT\n"
                    "=================== ==== ==== ==== ==== ==== \n"
                    "ffe mode            FFE3 FFE2 FFE2 FFE2 FFE2 \n"
                    "k (power)              9  200  200  200  200 \n"
                    "c0 (precursor)        10    0    1    2    3 \n"
                    "c1 (main)             11   -1   -1   -1   -1 \n"
                    "c2 (postcursor)       12   -2   -2   -2   -2 \n"
                    "c3 (postcursor)       13   -3   -3   -3   -3 \n",
                    Calls{"GetSerDesTxFFE(0, 5, 0)", "GetSerDesTxFFE(0, 7, 0)", "GetSerDesTxFFE(0, 7, 1)",
                          "GetSerDesTxFFE(0, 7, 2)", "GetSerDesTxFFE(0, 7, 3)"} +
                        headerQuestions({"105/0/5", "107/0/7"})));
}

TEST_F(ShowFFE, TapsAreSignedAndPowerIsNot) {
  platform.ports[0].txLinks[0] = {.mode = FFE_2, .k = 255, .c = {-128, 127, -1, -100}, .slew = SLEW_24PS};
  EXPECT_EQ(run("showFFE 0"), printed(kFFEHeadOfPort0 + "ffe mode            FFE2 \n"
                                                        "k (power)            255 \n"
                                                        "c0 (precursor)      -128 \n"
                                                        "c1 (main)            127 \n"
                                                        "c2 (postcursor)       -1 \n"
                                                        "c3 (postcursor)     -100 \n",
                                      Calls{"GetSerDesTxFFE(0, 0, 0)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowFFE, ModeNoneOverrunsItsCellAndShiftsItsRow) {
  platform.ports[1].txLinks[0].mode = FFE_2;
  EXPECT_EQ(run("showFFE 0-2"),
            printed("\n"
                    "show FFE            \n"
                    "=================== ==== ==== ==== \n"
                    "ASIC port              0    1    2 \n"
                    "user port            100  101  102 \n"
                    "link num               0    0    0 \n"
                    "running rate          8G   8G   8G\n"
                    "media type           OPT  OPT  OPT\n"
                    "=================== ==== ==== ==== \n"
                    "ffe mode            FFENone FFE2 FFENone \n"
                    "k (power)              0    0    0 \n"
                    "c0 (precursor)         0    0    0 \n"
                    "c1 (main)              0    0    0 \n"
                    "c2 (postcursor)        0    0    0 \n"
                    "c3 (postcursor)        0    0    0 \n",
                    Calls{"GetSerDesTxFFE(0, 0, 0)", "GetSerDesTxFFE(0, 1, 0)", "GetSerDesTxFFE(0, 2, 0)"} +
                        headerQuestions({"100/0/0", "101/0/1", "102/0/2"})));
}

TEST_F(ShowFFE, ModesBeyondTheTablePrintUnknown) {
  platform.ports[0].txLinks[0].mode = 4;
  platform.ports[1].txLinks[0].mode = 0xffffffff;
  EXPECT_EQ(run("showFFE 0 1"), printed("\n"
                                        "show FFE            \n"
                                        "=================== ==== ==== \n"
                                        "ASIC port              0    1 \n"
                                        "user port            100  101 \n"
                                        "link num               0    0 \n"
                                        "running rate          8G   8G\n"
                                        "media type           OPT  OPT\n"
                                        "=================== ==== ==== \n"
                                        "ffe mode            UNK  UNK  \n"
                                        "k (power)              0    0 \n"
                                        "c0 (precursor)         0    0 \n"
                                        "c1 (main)              0    0 \n"
                                        "c2 (postcursor)        0    0 \n"
                                        "c3 (postcursor)        0    0 \n",
                                        Calls{"GetSerDesTxFFE(0, 0, 0)", "GetSerDesTxFFE(0, 1, 0)"} +
                                            headerQuestions({"100/0/0", "101/0/1"})));
}

TEST_F(ShowFFE, PortThatDoesNotRunShowsItsValues) {
  makeIdle(platform.ports[0]);
  platform.ports[0].txLinks[0] = {.mode = FFE_2, .k = 1, .c = {2, 3, 4, 5}, .slew = SLEW_24PS};
  EXPECT_EQ(run("showFFE 0"), printed("\n"
                                      "show FFE            \n"
                                      "=================== ==== \n"
                                      "ASIC port              0 \n"
                                      "user port            100 \n"
                                      "link num               0 \n"
                                      "running rate         INV\n"
                                      "media type           OPT\n"
                                      "=================== ==== \n"
                                      "ffe mode            FFE2 \n"
                                      "k (power)              1 \n"
                                      "c0 (precursor)         2 \n"
                                      "c1 (main)              3 \n"
                                      "c2 (postcursor)        4 \n"
                                      "c3 (postcursor)        5 \n",
                                      Calls{"GetSerDesTxFFE(0, 0, 0)"} + idleHeaderQuestions("100/0/0")));
}

TEST_F(ShowFFE, ReceiveLinkCountDoesNotMatter) {
  platform.ports[0].rx.linkCount = 3;
  platform.ports[0].tx.linkCount = 2;
  platform.ports[0].txLinks[0].mode = platform.ports[0].txLinks[1].mode = FFE_4;
  discover();
  EXPECT_EQ(run("showFFE 0"),
            printed("\n"
                    "show FFE            \n"
                    "=================== ==== ==== \n"
                    "ASIC port              0    0 \n"
                    "user port            100  100 \n"
                    "link num               0    1 \n"
                    "running rate          8G   8G\n"
                    "media type           OPT  OPT\n"
                    "=================== ==== ==== \n"
                    "ffe mode            FFE4 FFE4 \n"
                    "k (power)              0    0 \n"
                    "c0 (precursor)         0    0 \n"
                    "c1 (main)              0    0 \n"
                    "c2 (postcursor)        0    0 \n"
                    "c3 (postcursor)        0    0 \n",
                    Calls{"GetSerDesTxFFE(0, 0, 0)", "GetSerDesTxFFE(0, 0, 1)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowFFE, PortsWithoutTransmitLinksGiveHeadAndLabelsOnly) {
  platform.ports[0].tx.linkCount = platform.ports[1].tx.linkCount = 0;
  discover();
  EXPECT_EQ(run("showFFE 0 1"), printed("\n"
                                        "show FFE            \n"
                                        "=================== \n"
                                        "ASIC port           \n"
                                        "user port           \n"
                                        "link num            \n"
                                        "running rate       \n"
                                        "media type         \n"
                                        "=================== \n"
                                        "ffe mode            \n"
                                        "k (power)           \n"
                                        "c0 (precursor)      \n"
                                        "c1 (main)           \n"
                                        "c2 (postcursor)     \n"
                                        "c3 (postcursor)     \n",
                                        headerQuestions({"100/0/0", "101/0/1"})));
}

TEST_F(ShowFFE, EmptySelectionGivesHeadAndLabelsOnly) {
  EXPECT_EQ(run("showFFE 5-2"), printed("\n"
                                        "show FFE            \n"
                                        "=================== \n"
                                        "ASIC port           \n"
                                        "user port           \n"
                                        "link num            \n"
                                        "running rate       \n"
                                        "media type         \n"
                                        "=================== \n"
                                        "ffe mode            \n"
                                        "k (power)           \n"
                                        "c0 (precursor)      \n"
                                        "c1 (main)           \n"
                                        "c2 (postcursor)     \n"
                                        "c3 (postcursor)     \n",
                                        {}));
}

TEST_F(ShowFFE, ReadsOnTheCurrentAsic) {
  platform.ports[0].txLinks[0].mode = FFE_2;
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("showFFE 0"), printed(kFFEHeadOfPort0 + "ffe mode            FFE2 \n"
                                                        "k (power)              0 \n"
                                                        "c0 (precursor)         0 \n"
                                                        "c1 (main)              0 \n"
                                                        "c2 (postcursor)        0 \n"
                                                        "c3 (postcursor)        0 \n",
                                      Calls{"GetSerDesTxFFE(1, 0, 0)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowFFE, FailureOnFirstLinkPrintsOnlyTheError) {
  platform.fail("GetSerDesTxFFE", -1);
  EXPECT_EQ(run("showFFE all"), failed("showFFECmdHandler: serdes err -1\n", {"GetSerDesTxFFE(0, 0, 0)"}));
}

TEST_F(ShowFFE, FailureOnSecondLinkOfAPortPrintsOnlyTheError) {
  platform.fail("GetSerDesTxFFE", -2, 2);
  EXPECT_EQ(run("showFFE 6"),
            failed("showFFECmdHandler: serdes err -2\n", {"GetSerDesTxFFE(0, 6, 0)", "GetSerDesTxFFE(0, 6, 1)"}));
}

TEST_F(ShowFFE, LinksBeyondTheFourthAreNotRead) {
  platform.ports[0].tx.linkCount = 9;
  for (TxLink& link : platform.ports[0].txLinks)
    link.mode = FFE_3;
  discover();
  EXPECT_EQ(run("showFFE 0"), printed("\n"
                                      "show FFE            \n"
                                      "=================== ==== ==== ==== ==== \n"
                                      "ASIC port              0    0    0    0 \n"
                                      "user port            100  100  100  100 \n"
                                      "link num               0    1    2    3 \n"
                                      "running rate          8G   8G   8G   8G\n"
                                      "media type           OPT  OPT  OPT  OPT\n"
                                      "=================== ==== ==== ==== ==== \n"
                                      "ffe mode            FFE3 FFE3 FFE3 FFE3 \n"
                                      "k (power)              0    0    0    0 \n"
                                      "c0 (precursor)         0    0    0    0 \n"
                                      "c1 (main)              0    0    0    0 \n"
                                      "c2 (postcursor)        0    0    0    0 \n"
                                      "c3 (postcursor)        0    0    0    0 \n",
                                      Calls{"GetSerDesTxFFE(0, 0, 0)", "GetSerDesTxFFE(0, 0, 1)",
                                            "GetSerDesTxFFE(0, 0, 2)", "GetSerDesTxFFE(0, 0, 3)"} +
                                          headerQuestions({"100/0/0"})));
}

TEST_F(ShowSlew, RowStandsBelowAnEmptyLine) {
  platform.ports[0].txLinks[0].slew = SLEW_36PS;
  platform.ports[1].txLinks[0].slew = SLEW_100PS;
  EXPECT_EQ(run("showSlew 0 1"), printed("\n"
                                         "show slew           \n"
                                         "=================== ==== ==== \n"
                                         "ASIC port              0    1 \n"
                                         "user port            100  101 \n"
                                         "link num               0    0 \n"
                                         "running rate          8G   8G\n"
                                         "media type           OPT  OPT\n"
                                         "=================== ==== ==== \n"
                                         "\n"
                                         "slew rate (ps)        36  100\n",
                                         Calls{"GetSerDesTxSlew(0, 0, 0)", "GetSerDesTxSlew(0, 1, 0)"} +
                                             headerQuestions({"100/0/0", "101/0/1"})));
}

TEST_F(ShowSlew, AnswersToItsShortcut) {
  EXPECT_EQ(run("dslew 0"), printed(kSlewHeadOfPort0 + "\n"
                                                       "slew rate (ps)        24\n",
                                    Calls{"GetSerDesTxSlew(0, 0, 0)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowSlew, EveryRateHasItsNameAndTheEighthIsUnknown) {
  for (unsigned l = 0; l < 4; ++l) {
    platform.ports[6].txLinks[l].slew = l;
    platform.ports[7].txLinks[l].slew = 4 + l;
  }
  EXPECT_EQ(run("showSlew xg"),
            printed("\n"
                    "show slew           \n"
                    "=================== ==== ==== ==== ==== ==== ==== ==== ==== \n"
                    "ASIC port              6    6    6    6    7    7    7    7 \n"
                    "user port            106  106  106  106  107  107  107  107 \n"
                    "link num               0    1    2    3    0    1    2    3 \n"
                    "running rate          8G   8G   8G   8G   8G   8G   8G   8G\n"
                    "media type           OPT  OPT  OPT  OPT  OPT  OPT  OPT  OPT\n"
                    "=================== ==== ==== ==== ==== ==== ==== ==== ==== \n"
                    "\n"
                    "slew rate (ps)        24   30   36   50   60   75  100  UNK\n",
                    Calls{"GetSerDesTxSlew(0, 6, 0)", "GetSerDesTxSlew(0, 6, 1)", "GetSerDesTxSlew(0, 6, 2)",
                          "GetSerDesTxSlew(0, 6, 3)", "GetSerDesTxSlew(0, 7, 0)", "GetSerDesTxSlew(0, 7, 1)",
                          "GetSerDesTxSlew(0, 7, 2)", "GetSerDesTxSlew(0, 7, 3)"} +
                        headerQuestions({"106/0/6", "107/0/7"})));
}

TEST_F(ShowSlew, RatesBeyondTheTablePrintUnknown) {
  platform.ports[0].txLinks[0].slew = 8;
  platform.ports[1].txLinks[0].slew = 0xffffffff;
  EXPECT_EQ(run("showSlew 0 1"), printed("\n"
                                         "show slew           \n"
                                         "=================== ==== ==== \n"
                                         "ASIC port              0    1 \n"
                                         "user port            100  101 \n"
                                         "link num               0    0 \n"
                                         "running rate          8G   8G\n"
                                         "media type           OPT  OPT\n"
                                         "=================== ==== ==== \n"
                                         "\n"
                                         "slew rate (ps)       UNK  UNK\n",
                                         Calls{"GetSerDesTxSlew(0, 0, 0)", "GetSerDesTxSlew(0, 1, 0)"} +
                                             headerQuestions({"100/0/0", "101/0/1"})));
}

TEST_F(ShowSlew, EnableFlagIsNeitherShownNorRead) {
  platform.corrupt = [](std::span<std::byte> value) {
    if (value.size() == sizeof(bool)) value[0] = std::byte{0xff};
  };
  EXPECT_EQ(run("showSlew 0"), printed(kSlewHeadOfPort0 + "\n"
                                                          "slew rate (ps)        24\n",
                                       Calls{"GetSerDesTxSlew(0, 0, 0)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowSlew, PortThatDoesNotRunShowsItsValues) {
  makeIdle(platform.ports[0]);
  EXPECT_EQ(run("showSlew 0"), printed("\n"
                                       "show slew           \n"
                                       "=================== ==== \n"
                                       "ASIC port              0 \n"
                                       "user port            100 \n"
                                       "link num               0 \n"
                                       "running rate         INV\n"
                                       "media type           OPT\n"
                                       "=================== ==== \n"
                                       "\n"
                                       "slew rate (ps)        24\n",
                                       Calls{"GetSerDesTxSlew(0, 0, 0)"} + idleHeaderQuestions("100/0/0")));
}

TEST_F(ShowSlew, ReceiveLinkCountDoesNotMatter) {
  platform.ports[0].rx.linkCount = 4;
  discover();
  EXPECT_EQ(run("showSlew 0"), printed(kSlewHeadOfPort0 + "\n"
                                                          "slew rate (ps)        24\n",
                                       Calls{"GetSerDesTxSlew(0, 0, 0)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowSlew, PortWithoutTransmitLinksIsLeftOutBetweenOthers) {
  platform.ports[1].tx.linkCount = 0;
  discover();
  EXPECT_EQ(run("showSlew 0-2"), printed("\n"
                                         "show slew           \n"
                                         "=================== ==== ==== \n"
                                         "ASIC port              0    2 \n"
                                         "user port            100  102 \n"
                                         "link num               0    0 \n"
                                         "running rate          8G   8G\n"
                                         "media type           OPT  OPT\n"
                                         "=================== ==== ==== \n"
                                         "\n"
                                         "slew rate (ps)        24   24\n",
                                         Calls{"GetSerDesTxSlew(0, 0, 0)", "GetSerDesTxSlew(0, 2, 0)"} +
                                             headerQuestions({"100/0/0", "101/0/1", "102/0/2"})));
}

TEST_F(ShowSlew, PortsWithoutTransmitLinksGiveHeadAndLabelOnly) {
  platform.ports[0].tx.linkCount = 0;
  discover();
  EXPECT_EQ(run("showSlew 0"), printed("\n"
                                       "show slew           \n"
                                       "=================== \n"
                                       "ASIC port           \n"
                                       "user port           \n"
                                       "link num            \n"
                                       "running rate       \n"
                                       "media type         \n"
                                       "=================== \n"
                                       "\n"
                                       "slew rate (ps)     \n",
                                       headerQuestions({"100/0/0"})));
}

TEST_F(ShowSlew, ReadsOnTheCurrentAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("showSlew 0"), printed(kSlewHeadOfPort0 + "\n"
                                                          "slew rate (ps)        24\n",
                                       Calls{"GetSerDesTxSlew(1, 0, 0)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowSlew, FailureOnFirstLinkPrintsOnlyTheError) {
  platform.fail("GetSerDesTxSlew", -1);
  EXPECT_EQ(run("showSlew 6 7"), failed("showSlewCmdHandler: serdes err -1\n", {"GetSerDesTxSlew(0, 6, 0)"}));
}

TEST_F(ShowSlew, FailureOnSecondLinkOfAPortPrintsOnlyTheError) {
  platform.fail("GetSerDesTxSlew", -9, 2);
  EXPECT_EQ(run("showSlew 6 7"),
            failed("showSlewCmdHandler: serdes err -9\n", {"GetSerDesTxSlew(0, 6, 0)", "GetSerDesTxSlew(0, 6, 1)"}));
}

TEST_F(ShowSlew, LinksBeyondTheFourthAreNotRead) {
  platform.ports[0].tx.linkCount = 0xffffffff;
  discover();
  EXPECT_EQ(run("showSlew 0"), printed("\n"
                                       "show slew           \n"
                                       "=================== ==== ==== ==== ==== \n"
                                       "ASIC port              0    0    0    0 \n"
                                       "user port            100  100  100  100 \n"
                                       "link num               0    1    2    3 \n"
                                       "running rate          8G   8G   8G   8G\n"
                                       "media type           OPT  OPT  OPT  OPT\n"
                                       "=================== ==== ==== ==== ==== \n"
                                       "\n"
                                       "slew rate (ps)        24   24   24   24\n",
                                       Calls{"GetSerDesTxSlew(0, 0, 0)", "GetSerDesTxSlew(0, 0, 1)",
                                             "GetSerDesTxSlew(0, 0, 2)", "GetSerDesTxSlew(0, 0, 3)"} +
                                           headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParams, PrintsTheFFERowsAndTheSlewRow) {
  platform.ports[0].txLinks[0] = {.mode = FFE_3, .k = 115, .c = {-4, 55, -25, 0}, .slew = SLEW_36PS};
  platform.ports[1].txLinks[0] = {.mode = FFE_NONE, .k = 0, .c = {1, 2, 3, 4}, .slew = SLEW_UNKNOWN};
  EXPECT_EQ(run("showTxParams 0 1"), printed("\n"
                                             "show tx params      \n"
                                             "=================== ==== ==== \n"
                                             "ASIC port              0    1 \n"
                                             "user port            100  101 \n"
                                             "link num               0    0 \n"
                                             "running rate          8G   8G\n"
                                             "media type           OPT  OPT\n"
                                             "=================== ==== ==== \n"
                                             "ffe mode            FFE3 FFENone \n"
                                             "k (power)            115    0 \n"
                                             "c0 (precursor)        -4    1 \n"
                                             "c1 (main)             55    2 \n"
                                             "c2 (postcursor)      -25    3 \n"
                                             "c3 (postcursor)        0    4 \n"
                                             "slew rate (ps)        36  UNK\n",
                                             Calls{"GetSerDesTxFFE(0, 0, 0)", "GetSerDesTxSlew(0, 0, 0)",
                                                   "GetSerDesTxFFE(0, 1, 0)", "GetSerDesTxSlew(0, 1, 0)"} +
                                                 headerQuestions({"100/0/0", "101/0/1"})));
}

TEST_F(ShowTxParams, AnswersToItsShortcut) {
  platform.ports[0].txLinks[0].mode = FFE_2;
  EXPECT_EQ(run("dtxp 0"),
            printed(kTxParamsHeadOfPort0 + "ffe mode            FFE2 \n"
                                           "k (power)              0 \n"
                                           "c0 (precursor)         0 \n"
                                           "c1 (main)              0 \n"
                                           "c2 (postcursor)        0 \n"
                                           "c3 (postcursor)        0 \n"
                                           "slew rate (ps)        24\n",
                    Calls{"GetSerDesTxFFE(0, 0, 0)", "GetSerDesTxSlew(0, 0, 0)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParams, PortThatDoesNotRunHasBlankColumnsInAllRows) {
  for (unsigned port : {5u, 6u, 7u}) {
    for (TxLink& link : platform.ports[port].txLinks)
      link = {.mode = FFE_2, .k = 9, .c = {8, 7, 6, 5}, .slew = SLEW_75PS};
  }
  platform.ports[6].tx.linkCount = 2;
  makeIdle(platform.ports[6]);
  platform.ports[7].tx.linkCount = 1;
  discover();
  EXPECT_EQ(run("showTxParams 5-7"),
            printed("\n"
                    "show tx params      \n"
                    "=================== ==== ==== ==== ==== \n"
                    "ASIC port              5    6    6    7 \n"
                    "user port            105  106  106  107 \n"
                    "link num               0    0    1    0 \n"
                    "running rate          8G  INV  INV   8G\n"
                    "media type           OPT  OPT  OPT  OPT\n"
                    "=================== ==== ==== ==== ==== \n"
                    "ffe mode            FFE2           FFE2 \n"
                    "k (power)              9              9 \n"
                    "c0 (precursor)         8              8 \n"
                    "c1 (main)              7              7 \n"
                    "c2 (postcursor)        6              6 \n"
                    "c3 (postcursor)        5              5 \n"
                    "slew rate (ps)        75             75\n",
                    Calls{"GetSerDesTxFFE(0, 5, 0)", "GetSerDesTxSlew(0, 5, 0)", "GetSerDesTxFFE(0, 6, 0)",
                          "GetSerDesTxSlew(0, 6, 0)", "GetSerDesTxFFE(0, 6, 1)", "GetSerDesTxSlew(0, 6, 1)",
                          "GetSerDesTxFFE(0, 7, 0)", "GetSerDesTxSlew(0, 7, 0)"} +
                        headerQuestions({"105/0/5"}) + idleHeaderQuestions("106/0/6") + headerQuestions({"107/0/7"})));
}

TEST_F(ShowTxParams, PortThatRunsAgainShowsItsValuesAgain) {
  platform.ports[0].txLinks[0].mode = FFE_4;
  makeIdle(platform.ports[0]);
  ASSERT_EQ(run("showTxParams 0").status, CMD_OK);
  platform.ports[0].state = kPortStateRunning;
  EXPECT_EQ(run("showTxParams 0"),
            printed(kTxParamsHeadOfPort0 + "ffe mode            FFE4 \n"
                                           "k (power)              0 \n"
                                           "c0 (precursor)         0 \n"
                                           "c1 (main)              0 \n"
                                           "c2 (postcursor)        0 \n"
                                           "c3 (postcursor)        0 \n"
                                           "slew rate (ps)        24\n",
                    Calls{"GetSerDesTxFFE(0, 0, 0)", "GetSerDesTxSlew(0, 0, 0)"} + headerQuestions({"100/0/0"})));
}

// A port counts as running as soon as its rate is asked for.
TEST_F(ShowTxParams, PortWhoseRunningRateCannotBeReadShowsItsValues) {
  platform.ports[0].txLinks[0].mode = FFE_2;
  platform.fail("GetPortSpeed", -1);
  EXPECT_EQ(run("showTxParams 0"),
            printed("\n"
                    "show tx params      \n"
                    "=================== ==== \n"
                    "ASIC port              0 \n"
                    "user port            100 \n"
                    "link num               0 \n"
                    "running rate         INV\n"
                    "media type           OPT\n"
                    "=================== ==== \n"
                    "ffe mode            FFE2 \n"
                    "k (power)              0 \n"
                    "c0 (precursor)         0 \n"
                    "c1 (main)              0 \n"
                    "c2 (postcursor)        0 \n"
                    "c3 (postcursor)        0 \n"
                    "slew rate (ps)        24\n",
                    Calls{"GetSerDesTxFFE(0, 0, 0)", "GetSerDesTxSlew(0, 0, 0)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParams, PortWhoseStateAndSpeedCannotBeReadHasBlankColumns) {
  platform.fail("GetPortInfo", -1);
  platform.fail("GetPortCfgSpeed", -1);
  EXPECT_EQ(run("showTxParams 0"),
            printed("\n"
                    "show tx params      \n"
                    "=================== ==== \n"
                    "ASIC port              0 \n"
                    "user port            100 \n"
                    "link num               0 \n"
                    "running rate         INV\n"
                    "media type           OPT\n"
                    "=================== ==== \n"
                    "ffe mode                 \n"
                    "k (power)                \n"
                    "c0 (precursor)           \n"
                    "c1 (main)                \n"
                    "c2 (postcursor)          \n"
                    "c3 (postcursor)          \n"
                    "slew rate (ps)          \n",
                    Calls{"GetSerDesTxFFE(0, 0, 0)", "GetSerDesTxSlew(0, 0, 0)"} + idleHeaderQuestions("100/0/0")));
}

TEST_F(ShowTxParams, ReceiveLinkCountDoesNotMatter) {
  platform.ports[0].rx.linkCount = 0;
  platform.ports[0].tx.linkCount = 2;
  platform.ports[0].txLinks[0].mode = platform.ports[0].txLinks[1].mode = FFE_2;
  discover();
  EXPECT_EQ(run("showTxParams 0"), printed("\n"
                                           "show tx params      \n"
                                           "=================== ==== ==== \n"
                                           "ASIC port              0    0 \n"
                                           "user port            100  100 \n"
                                           "link num               0    1 \n"
                                           "running rate          8G   8G\n"
                                           "media type           OPT  OPT\n"
                                           "=================== ==== ==== \n"
                                           "ffe mode            FFE2 FFE2 \n"
                                           "k (power)              0    0 \n"
                                           "c0 (precursor)         0    0 \n"
                                           "c1 (main)              0    0 \n"
                                           "c2 (postcursor)        0    0 \n"
                                           "c3 (postcursor)        0    0 \n"
                                           "slew rate (ps)        24   24\n",
                                           Calls{"GetSerDesTxFFE(0, 0, 0)", "GetSerDesTxSlew(0, 0, 0)",
                                                 "GetSerDesTxFFE(0, 0, 1)", "GetSerDesTxSlew(0, 0, 1)"} +
                                               headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParams, PortsWithoutTransmitLinksGiveHeadAndLabelsOnly) {
  platform.ports[0].tx.linkCount = 0;
  discover();
  EXPECT_EQ(run("showTxParams 0"), printed("\n"
                                           "show tx params      \n"
                                           "=================== \n"
                                           "ASIC port           \n"
                                           "user port           \n"
                                           "link num            \n"
                                           "running rate       \n"
                                           "media type         \n"
                                           "=================== \n"
                                           "ffe mode            \n"
                                           "k (power)           \n"
                                           "c0 (precursor)      \n"
                                           "c1 (main)           \n"
                                           "c2 (postcursor)     \n"
                                           "c3 (postcursor)     \n"
                                           "slew rate (ps)     \n",
                                           headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParams, ValuesBeyondTheTablesPrintUnknown) {
  platform.ports[0].txLinks[0].mode = 250;
  platform.ports[0].txLinks[0].slew = 250;
  EXPECT_EQ(run("showTxParams 0"),
            printed(kTxParamsHeadOfPort0 + "ffe mode            UNK  \n"
                                           "k (power)              0 \n"
                                           "c0 (precursor)         0 \n"
                                           "c1 (main)              0 \n"
                                           "c2 (postcursor)        0 \n"
                                           "c3 (postcursor)        0 \n"
                                           "slew rate (ps)       UNK\n",
                    Calls{"GetSerDesTxFFE(0, 0, 0)", "GetSerDesTxSlew(0, 0, 0)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParams, ReadsOnTheCurrentAsic) {
  platform.ports[0].txLinks[0].mode = FFE_2;
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("showTxParams 0"),
            printed(kTxParamsHeadOfPort0 + "ffe mode            FFE2 \n"
                                           "k (power)              0 \n"
                                           "c0 (precursor)         0 \n"
                                           "c1 (main)              0 \n"
                                           "c2 (postcursor)        0 \n"
                                           "c3 (postcursor)        0 \n"
                                           "slew rate (ps)        24\n",
                    Calls{"GetSerDesTxFFE(1, 0, 0)", "GetSerDesTxSlew(1, 0, 0)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParams, FailingFFEOfASecondLinkPrintsOnlyTheError) {
  platform.fail("GetSerDesTxFFE", -4, 2);
  EXPECT_EQ(run("showTxParams 6"),
            failed("showTxParamsCmdHandler: serdes err -4\n",
                   {"GetSerDesTxFFE(0, 6, 0)", "GetSerDesTxSlew(0, 6, 0)", "GetSerDesTxFFE(0, 6, 1)"}));
}

TEST_F(ShowTxParams, FailingSlewPrintsOnlyTheError) {
  platform.fail("GetSerDesTxSlew", -5);
  EXPECT_EQ(run("showTxParams 0 1"),
            failed("showTxParamsCmdHandler: serdes err -5\n", {"GetSerDesTxFFE(0, 0, 0)", "GetSerDesTxSlew(0, 0, 0)"}));
}

TEST_F(ShowTxParams, FailureOnAPortThatDoesNotRunEndsTheCommandToo) {
  makeIdle(platform.ports[1]);
  platform.fail("GetSerDesTxFFE", -6, 2);
  EXPECT_EQ(run("showTxParams 0 1"),
            failed("showTxParamsCmdHandler: serdes err -6\n",
                   {"GetSerDesTxFFE(0, 0, 0)", "GetSerDesTxSlew(0, 0, 0)", "GetSerDesTxFFE(0, 1, 0)"}));
}

class TxEqOversizedSwitch : public OversizedSwitchTest {};

INSTANTIATE_TEST_SUITE_P(, TxEqOversizedSwitch, testing::Values(40u, 0xFFFFFFFFu));

TEST_P(TxEqOversizedSwitch, SetsNoPortBeyondTheTwentyFourth) {
  EXPECT_EQ(run("setFFE FFE2 1 2 3 4 5 23-31"), done({"SetSerDesTxFFE(0, 23, -1, 1, 1, 2, 3, 4, 5)"}));
  EXPECT_EQ(run("setSlew 24 23-31"), done({"SetSerDesTxSlew(0, 23, -1, 1, 0)"}));
  EXPECT_EQ(run("setTxParams FFE2 1 2 3 4 5 24 23-31"),
            done({"SetSerDesTxFFE(0, 23, -1, 1, 1, 2, 3, 4, 5)", "SetSerDesTxSlew(0, 23, -1, 1, 0)"}));
}

TEST_P(TxEqOversizedSwitch, ShowsNoPortBeyondTheTwentyFourth) {
  platform.ports[23].txLinks[0].mode = FFE_2;
  EXPECT_EQ(run("showTxParams 23-31"),
            printed("\n"
                    "show tx params      \n"
                    "=================== ==== \n"
                    "ASIC port             23 \n"
                    "user port            123 \n"
                    "link num               0 \n"
                    "running rate          8G\n"
                    "media type           OPT\n"
                    "=================== ==== \n"
                    "ffe mode            FFE2 \n"
                    "k (power)              0 \n"
                    "c0 (precursor)         0 \n"
                    "c1 (main)              0 \n"
                    "c2 (postcursor)        0 \n"
                    "c3 (postcursor)        0 \n"
                    "slew rate (ps)        24\n",
                    Calls{"GetSerDesTxFFE(0, 23, 0)", "GetSerDesTxSlew(0, 23, 0)"} + headerQuestions({"123/0/23"})));
}

class TxEqCommandsRefused : public RefusalTest {};

TEST_P(TxEqCommandsRefused, WithoutPlatformCall) {
  EXPECT_EQ(run(GetParam().line), refused(GetParam().status));
}

const Refusal kRefusals[] = {
    {"SetFFEWithoutLastTap", "setFFE FFE3 115 -4 55 -25", CMD_TOO_FEW_ARGS},
    {"SetFFEWithoutPorts", "setFFE FFE3 115 -4 55 -25 0", CMD_TOO_FEW_ARGS},
    {"SetFFEModeNone", "setFFE FFENone 0 0 0 0 0 gl", CMD_BAD_PARAM},
    {"SetFFEModeByNumber", "setFFE 2 115 -4 55 -25 0 gl", CMD_BAD_PARAM},
    {"SetFFEUnknownModeBeforeMissingPorts", "setFFE FFE5 115 -4 55 -25 0", CMD_BAD_PARAM},
    {"SetFFEPowerNoNumber", "setFFE FFE3 k -4 55 -25 0 gl", CMD_BAD_PARAM},
    {"SetFFEPrecursorNoNumber", "setFFE FFE3 115 --4 55 -25 0 gl", CMD_BAD_PARAM},
    {"SetFFEMainNoNumber", "setFFE FFE3 115 -4 5.5 -25 0 gl", CMD_BAD_PARAM},
    {"SetFFEPostcursorNoNumber", "setFFE FFE3 115 -4 55 - 0 gl", CMD_BAD_PARAM},
    {"SetFFELastTapNoNumber", "setFFE FFE3 115 -4 55 -25 gl gl", CMD_BAD_PARAM},
    {"SetFFELastTapNoNumberBeforeMissingPorts", "setFFE FFE3 115 -4 55 -25 gl", CMD_BAD_PARAM},
    {"SetFFEUnknownPorts", "setFFE FFE3 115 -4 55 -25 0 ports", CMD_BAD_PARAM},
    {"SetFFEAllOfMixedTypes", "setFFE FFE3 115 -4 55 -25 0 all", CMD_MIXED_PORT_TYPES},
    {"SetFFEMixedTypes", "setFFE FFE3 115 -4 55 -25 0 5-6", CMD_MIXED_PORT_TYPES},
    {"SetFFETooManyPorts", "setFFE FFE3 115 -4 55 -25 0 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17",
     CMD_TOO_MANY_ARGS},
    {"SetSlewAlone", "setSlew", CMD_TOO_FEW_ARGS},
    {"SetSlewWithoutPorts", "setSlew 36", CMD_TOO_FEW_ARGS},
    {"SetSlewUnknownRate", "setSlew 37 0", CMD_BAD_PARAM},
    {"SetSlewUnknownByItsName", "setSlew UNK 0", CMD_BAD_PARAM},
    {"SetSlewUnitApart", "setSlew 36 ps 0", CMD_BAD_PARAM},
    {"SetSlewUnknownRateBeforeMissingPorts", "setSlew 37", CMD_BAD_PARAM},
    {"SetSlewKeywordAmongNumbers", "setSlew 36 0 gl", CMD_BAD_PARAM},
    {"SetSlewAllOfMixedTypes", "setSlew 36 all", CMD_MIXED_PORT_TYPES},
    {"SetSlewMixedTypes", "setSlew 36 0 8", CMD_MIXED_PORT_TYPES},
    {"SetSlewTooManyPorts", "setSlew 36 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22", CMD_TOO_MANY_ARGS},
    {"SetTxParamsWithoutSlew", "setTxParams FFE3 115 -4 55 -25 0", CMD_TOO_FEW_ARGS},
    {"SetTxParamsWithoutPorts", "setTxParams FFE3 115 -4 55 -25 0 36", CMD_TOO_FEW_ARGS},
    {"SetTxParamsModeNone", "setTxParams FFENone 115 -4 55 -25 0 36 0", CMD_BAD_PARAM},
    {"SetTxParamsPowerNoNumber", "setTxParams FFE3 x -4 55 -25 0 36 0", CMD_BAD_PARAM},
    {"SetTxParamsPrecursorNoNumber", "setTxParams FFE3 115 x 55 -25 0 36 0", CMD_BAD_PARAM},
    {"SetTxParamsMainNoNumber", "setTxParams FFE3 115 -4 x -25 0 36 0", CMD_BAD_PARAM},
    {"SetTxParamsPostcursorNoNumber", "setTxParams FFE3 115 -4 55 x 0 36 0", CMD_BAD_PARAM},
    {"SetTxParamsLastTapNoNumber", "setTxParams FFE3 115 -4 55 -25 x 36 0", CMD_BAD_PARAM},
    {"SetTxParamsUnknownSlew", "setTxParams FFE3 115 -4 55 -25 0 0 0", CMD_BAD_PARAM},
    {"SetTxParamsUnknownSlewBeforeMissingPorts", "setTxParams FFE3 115 -4 55 -25 0 37", CMD_BAD_PARAM},
    {"SetTxParamsUnknownPorts", "setTxParams FFE3 115 -4 55 -25 0 36 0-32", CMD_BAD_PARAM},
    {"SetTxParamsMixedTypes", "setTxParams FFE3 115 -4 55 -25 0 36 all", CMD_MIXED_PORT_TYPES},
    {"SetTxParamsTooManyPorts", "setTxParams FFE3 115 -4 55 -25 0 36 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16",
     CMD_TOO_MANY_ARGS},
    {"ShowFFEWithoutPorts", "showFFE", CMD_TOO_FEW_ARGS},
    {"ShowFFEUnknownPorts", "showFFE FFE3", CMD_BAD_PARAM},
    {"ShowFFETooManyPorts", "showFFE 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23", CMD_TOO_MANY_ARGS},
    {"ShowSlewWithoutPorts", "showSlew", CMD_TOO_FEW_ARGS},
    {"ShowSlewUnknownPorts", "showSlew -1", CMD_BAD_PARAM},
    {"ShowSlewTooManyPorts", "showSlew 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23",
     CMD_TOO_MANY_ARGS},
    {"ShowTxParamsWithoutPorts", "showTxParams", CMD_TOO_FEW_ARGS},
    {"ShowTxParamsUnknownPorts", "showTxParams 0x", CMD_BAD_PARAM},
    {"ShowTxParamsTooManyPorts", "showTxParams 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23",
     CMD_TOO_MANY_ARGS},
};

INSTANTIATE_TEST_SUITE_P(, TxEqCommandsRefused, testing::ValuesIn(kRefusals), refusalName);

}  // namespace
}  // namespace recording
