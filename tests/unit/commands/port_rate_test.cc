// Port speed and transmit stream.
#include <string>

#include "tests/support/expected.h"

namespace recording {
namespace {

// The head of a table of port 0 alone.
const std::string kHeadOfPort0 =
    "\n"
    "show rate           \n"
    "=================== ==== \n"
    "ASIC port              0 \n"
    "user port            100 \n"
    "link num               0 \n"
    "running rate          8G\n"
    "media type           OPT\n"
    "=================== ==== \n";

using SetRate = TopologyTest;
using SetTxEnable = TopologyTest;
using ShowRate = TopologyTest;

// Makes every port a GL port.
void makeAllGl() {
  for (Port& port : platform.ports)
    port.hwConfig.portType = kPortTypeGl;
}

struct RateWord {
  const char* word;
  const char* call;
};

std::string rateWordName(const testing::TestParamInfo<RateWord>& info) {
  return std::string(info.param.word) + "_" + std::to_string(info.index);
}

class SetRateKeyword : public TopologyTest, public testing::WithParamInterface<RateWord> {};

TEST_P(SetRateKeyword, GoesToThePlatformAsItsIndex) {
  EXPECT_EQ(run(std::string("setRate ") + GetParam().word + " 0"), done({GetParam().call}));
}

INSTANTIATE_TEST_SUITE_P(
    , SetRateKeyword,
    testing::Values(RateWord{"AUTO", "SetPortCfgSpeed(100/0/0, 0)"}, RateWord{"auto", "SetPortCfgSpeed(100/0/0, 0)"},
                    RateWord{"1G", "SetPortCfgSpeed(100/0/0, 1)"}, RateWord{"1", "SetPortCfgSpeed(100/0/0, 1)"},
                    RateWord{"2G", "SetPortCfgSpeed(100/0/0, 2)"}, RateWord{"2", "SetPortCfgSpeed(100/0/0, 2)"},
                    RateWord{"4G", "SetPortCfgSpeed(100/0/0, 3)"}, RateWord{"4g", "SetPortCfgSpeed(100/0/0, 3)"},
                    RateWord{"4", "SetPortCfgSpeed(100/0/0, 3)"}, RateWord{"8G", "SetPortCfgSpeed(100/0/0, 4)"},
                    RateWord{"8", "SetPortCfgSpeed(100/0/0, 4)"}, RateWord{"10G", "SetPortCfgSpeed(100/0/0, 5)"},
                    RateWord{"10", "SetPortCfgSpeed(100/0/0, 5)"}, RateWord{"20G", "SetPortCfgSpeed(100/0/0, 6)"},
                    RateWord{"20", "SetPortCfgSpeed(100/0/0, 6)"}),
    rateWordName);

TEST_F(SetRate, AutoOnGlSetsEveryGlPort) {
  EXPECT_EQ(run("setRate AUTO gl"),
            done({"SetPortCfgSpeed(100/0/0, 0)", "SetPortCfgSpeed(101/0/1, 0)", "SetPortCfgSpeed(102/0/2, 0)",
                  "SetPortCfgSpeed(65535/0/3, 0)", "SetPortCfgSpeed(104/0/4, 0)", "SetPortCfgSpeed(105/0/5, 0)"}));
}

TEST_F(SetRate, AnswersToItsShortcutAndSetsPortsInAscendingOrder) {
  EXPECT_EQ(run("sr 10G 11 8-9"),
            done({"SetPortCfgSpeed(108/0/8, 5)", "SetPortCfgSpeed(65535/0/9, 5)", "SetPortCfgSpeed(111/0/11, 5)"}));
}

TEST_F(SetRate, PortIsAddressedByTheIdentifierOfItsRecord) {
  platform.ports[2].hwConfig.portId = {.userPort = 7, .asic = 8, .asicPort = 9, .unused = {}};
  discover();
  EXPECT_EQ(run("setRate 2G 2"), done({"SetPortCfgSpeed(7/8/9, 2)"}));
}

TEST_F(SetRate, AllIsAllowedWherePortsAreOfOneType) {
  platform.portCount = 2;
  discover();
  EXPECT_EQ(run("setRate 4G all"), done({"SetPortCfgSpeed(100/0/0, 3)", "SetPortCfgSpeed(101/0/1, 3)"}));
}

TEST_F(SetRate, PortOfNoTypeIsSetByNumberOnly) {
  platform.ports[1].hwConfig.presence = 0;
  platform.portCount = 2;
  discover();
  EXPECT_EQ(run("setRate 4G all"), done({"SetPortCfgSpeed(100/0/0, 3)"}));
  EXPECT_EQ(run("setRate 4G 1"), done({"SetPortCfgSpeed(101/0/1, 3)"}));
}

TEST_F(SetRate, FailureOnThirdOfFivePortsLeavesFirstTwoChanged) {
  platform.fail("SetPortCfgSpeed", -5, 3);
  EXPECT_EQ(run("setRate 8G 0-4"),
            failed("setRateCmdHandler: serdes err -5\n",
                   {"SetPortCfgSpeed(100/0/0, 4)", "SetPortCfgSpeed(101/0/1, 4)", "SetPortCfgSpeed(102/0/2, 4)"}));
}

TEST_F(SetRate, PositivePlatformResultDoesNotStopIt) {
  platform.fail("SetPortCfgSpeed", 3);
  EXPECT_EQ(run("setRate 8G 0 1"), done({"SetPortCfgSpeed(100/0/0, 4)", "SetPortCfgSpeed(101/0/1, 4)"}));
}

TEST_F(SetRate, EmptySelectionSetsNothing) {
  EXPECT_EQ(run("setRate 8G 5-2"), done({}));
  EXPECT_EQ(run("setRate 8G 32 63"), done({}));
}

TEST_F(SetRate, PortsBeyondTheTopologyAreIgnored) {
  EXPECT_EQ(run("setRate 8G 11-31"), done({"SetPortCfgSpeed(111/0/11, 4)"}));
}

TEST_F(SetTxEnable, AnyNumberButZeroEnables) {
  for (const char* line :
       {"setTxEnable 7 4", "setTxEnable 1 4", "setTxEnable -1 4", "setTxEnable 256 4", "setTxEnable 0x80000000 4"}) {
    EXPECT_EQ(run(line), done({"TxStreamEnable(104/0/4, 1)"})) << line;
  }
}

TEST_F(SetTxEnable, ZeroDisables) {
  EXPECT_EQ(run("setTxEnable 0x0 4"), done({"TxStreamEnable(104/0/4, 0)"}));
}

TEST_F(SetTxEnable, ZeroDisablesEveryListedPort) {
  makeAllGl();
  discover();
  EXPECT_EQ(run("setTxEnable 0 4 6 8 10"), done({"TxStreamEnable(104/0/4, 0)", "TxStreamEnable(106/0/6, 0)",
                                                 "TxStreamEnable(108/0/8, 0)", "TxStreamEnable(110/0/10, 0)"}));
}

TEST_F(SetTxEnable, AnswersToItsShortcut) {
  EXPECT_EQ(run("stx 1 exg"), done({"TxStreamEnable(108/0/8, 1)", "TxStreamEnable(65535/0/9, 1)",
                                    "TxStreamEnable(110/0/10, 1)", "TxStreamEnable(111/0/11, 1)"}));
}

TEST_F(SetTxEnable, FailureOnThirdOfFivePortsLeavesFirstTwoChanged) {
  platform.fail("TxStreamEnable", -12, 3);
  EXPECT_EQ(run("setTxEnable 1 0 1 2 3 4"),
            failed("setTxEnableCmdHandler: serdes err -12\n",
                   {"TxStreamEnable(100/0/0, 1)", "TxStreamEnable(101/0/1, 1)", "TxStreamEnable(102/0/2, 1)"}));
}

TEST_F(SetTxEnable, EmptySelectionSetsNothing) {
  EXPECT_EQ(run("setTxEnable 1 31"), done({}));
}

// What showRate asks about a port before its header does.
Calls rateQuestions(const std::string& port) {
  return {"GetPortCfgSpeed(" + port + ")", "TxStreamState(" + port + ")"};
}

TEST_F(ShowRate, PrintsConfiguredRateAndStreamBelowAnEmptyLine) {
  platform.ports[4].hwConfig.portId.userPort = 12;
  platform.ports[5].hwConfig.portId.userPort = kNoUserPort;
  platform.ports[5].media = MEDIA_UNKNOWN;
  platform.ports[5].streamState = 0;
  makeIdle(platform.ports[5]);
  discover();
  EXPECT_EQ(run("showRate 4 5"), printed("\n"
                                         "show rate           \n"
                                         "=================== ==== ==== \n"
                                         "ASIC port              4    5 \n"
                                         "user port             12  N/A \n"
                                         "link num               0    0 \n"
                                         "running rate          8G  INV\n"
                                         "media type           OPT  UNK\n"
                                         "=================== ==== ==== \n"
                                         "\n"
                                         "config rate (gb/s)    8G AUTO\n"
                                         "stream enable        yes   no\n",
                                         rateQuestions("12/0/4") + rateQuestions("65535/0/5") +
                                             headerQuestions({"12/0/4"}) + idleHeaderQuestions("65535/0/5")));
}

TEST_F(ShowRate, AnswersToItsShortcut) {
  EXPECT_EQ(run("dr 0"), printed(kHeadOfPort0 + "\n"
                                                "config rate (gb/s)    8G\n"
                                                "stream enable        yes\n",
                                 rateQuestions("100/0/0") + headerQuestions({"100/0/0"})));
}

TEST_F(ShowRate, AutoShowsTheRunningRateOfAPortThatRuns) {
  platform.ports[0].configuredSpeed = SPEED_AUTO;
  platform.ports[0].runningSpeed = SPEED_4G;
  EXPECT_EQ(run("showRate 0"), printed("\n"
                                       "show rate           \n"
                                       "=================== ==== \n"
                                       "ASIC port              0 \n"
                                       "user port            100 \n"
                                       "link num               0 \n"
                                       "running rate          4G\n"
                                       "media type           OPT\n"
                                       "=================== ==== \n"
                                       "\n"
                                       "config rate (gb/s)  AUTO\n"
                                       "stream enable        yes\n",
                                       rateQuestions("100/0/0") + headerQuestions({"100/0/0"})));
}

TEST_F(ShowRate, ConfiguredPortInAnotherStateShowsItsRunningRate) {
  platform.ports[0].state = 10;
  platform.ports[0].configuredSpeed = SPEED_2G;
  platform.ports[0].runningSpeed = SPEED_1G;
  EXPECT_EQ(run("showRate 0"), printed("\n"
                                       "show rate           \n"
                                       "=================== ==== \n"
                                       "ASIC port              0 \n"
                                       "user port            100 \n"
                                       "link num               0 \n"
                                       "running rate          1G\n"
                                       "media type           OPT\n"
                                       "=================== ==== \n"
                                       "\n"
                                       "config rate (gb/s)    2G\n"
                                       "stream enable        yes\n",
                                       rateQuestions("100/0/0") + headerQuestions({"100/0/0"})));
}

TEST_F(ShowRate, EveryRateHasItsName) {
  platform.portCount = 8;
  makeAllGl();
  for (unsigned p = 0; p < 8; ++p) {
    platform.ports[p].tx.linkCount = 1;
    platform.ports[p].configuredSpeed = p;
    platform.ports[p].runningSpeed = 7 - p;
    platform.ports[p].media = p;
  }
  discover();
  EXPECT_EQ(run("showRate gl"),
            printed("\n"
                    "show rate           \n"
                    "=================== ==== ==== ==== ==== ==== ==== ==== ==== \n"
                    "ASIC port              0    1    2    3    4    5    6    7 \n"
                    "user port            100  101  102  N/A  104  105  106  107 \n"
                    "link num               0    0    0    0    0    0    0    0 \n"
                    "running rate         INV  20G  10G   8G   4G   2G   1G AUTO\n"
                    "media type          NONE  N/A  UNK  OPT  ELC  COP  COP 10GE\n"
                    "=================== ==== ==== ==== ==== ==== ==== ==== ==== \n"
                    "\n"
                    "config rate (gb/s)  AUTO   1G   2G   4G   8G  10G  20G  INV\n"
                    "stream enable        yes  yes  yes  yes  yes  yes  yes  yes\n",
                    rateQuestions("100/0/0") + rateQuestions("101/0/1") + rateQuestions("102/0/2") +
                        rateQuestions("65535/0/3") + rateQuestions("104/0/4") + rateQuestions("105/0/5") +
                        rateQuestions("106/0/6") + rateQuestions("107/0/7") +
                        headerQuestions({"100/0/0", "101/0/1", "102/0/2", "65535/0/3", "104/0/4", "105/0/5", "106/0/6",
                                         "107/0/7"})));
}

TEST_F(ShowRate, ValuesBeyondTheNameTablesPrintInvalidAndUnknown) {
  platform.ports[0].configuredSpeed = platform.ports[0].runningSpeed = 8;
  platform.ports[0].media = 9;
  platform.ports[1].configuredSpeed = platform.ports[1].runningSpeed = 0xffffffff;
  platform.ports[1].media = 0xffffffff;
  EXPECT_EQ(run("showRate 0 1"),
            printed("\n"
                    "show rate           \n"
                    "=================== ==== ==== \n"
                    "ASIC port              0    1 \n"
                    "user port            100  101 \n"
                    "link num               0    0 \n"
                    "running rate         INV  INV\n"
                    "media type           UNK  UNK\n"
                    "=================== ==== ==== \n"
                    "\n"
                    "config rate (gb/s)   INV  INV\n"
                    "stream enable        yes  yes\n",
                    rateQuestions("100/0/0") + rateQuestions("101/0/1") + headerQuestions({"100/0/0", "101/0/1"})));
}

TEST_F(ShowRate, StreamStateIsOnWhateverTheByteThatIsNotZero) {
  platform.ports[0].streamState = 0xff;
  platform.ports[1].streamState = 2;
  platform.ports[2].streamState = 0;
  EXPECT_EQ(run("showRate 0-2"),
            printed("\n"
                    "show rate           \n"
                    "=================== ==== ==== ==== \n"
                    "ASIC port              0    1    2 \n"
                    "user port            100  101  102 \n"
                    "link num               0    0    0 \n"
                    "running rate          8G   8G   8G\n"
                    "media type           OPT  OPT  OPT\n"
                    "=================== ==== ==== ==== \n"
                    "\n"
                    "config rate (gb/s)    8G   8G   8G\n"
                    "stream enable        yes  yes   no\n",
                    rateQuestions("100/0/0") + rateQuestions("101/0/1") + rateQuestions("102/0/2") +
                        headerQuestions({"100/0/0", "101/0/1", "102/0/2"})));
}

TEST_F(ShowRate, EveryLinkOfAPortShowsThePortsValues) {
  platform.ports[6].configuredSpeed = SPEED_20G;
  platform.ports[7].streamState = 0;
  platform.ports[7].tx.linkCount = 2;
  discover();
  EXPECT_EQ(run("showRate xg"),
            printed("\n"
                    "show rate           \n"
                    "=================== ==== ==== ==== ==== ==== ==== \n"
                    "ASIC port              6    6    6    6    7    7 \n"
                    "user port            106  106  106  106  107  107 \n"
                    "link num               0    1    2    3    0    1 \n"
                    "running rate          8G   8G   8G   8G   8G   8G\n"
                    "media type           OPT  OPT  OPT  OPT  OPT  OPT\n"
                    "=================== ==== ==== ==== ==== ==== ==== \n"
                    "\n"
                    "config rate (gb/s)   20G  20G  20G  20G   8G   8G\n"
                    "stream enable        yes  yes  yes  yes   no   no\n",
                    rateQuestions("106/0/6") + rateQuestions("107/0/7") + headerQuestions({"106/0/6", "107/0/7"})));
}

TEST_F(ShowRate, ColumnsAreThoseOfTheTransmitLinks) {
  platform.ports[0].rx.linkCount = 3;
  platform.ports[0].tx.linkCount = 2;
  discover();
  EXPECT_EQ(run("showRate 0"), printed("\n"
                                       "show rate           \n"
                                       "=================== ==== ==== \n"
                                       "ASIC port              0    0 \n"
                                       "user port            100  100 \n"
                                       "link num               0    1 \n"
                                       "running rate          8G   8G\n"
                                       "media type           OPT  OPT\n"
                                       "=================== ==== ==== \n"
                                       "\n"
                                       "config rate (gb/s)    8G   8G\n"
                                       "stream enable        yes  yes\n",
                                       rateQuestions("100/0/0") + headerQuestions({"100/0/0"})));
}

TEST_F(ShowRate, PortWithoutLinksIsAskedButHasNoColumn) {
  platform.ports[1].tx.linkCount = 0;
  discover();
  EXPECT_EQ(run("showRate 0 1"),
            printed(kHeadOfPort0 + "\n"
                                   "config rate (gb/s)    8G\n"
                                   "stream enable        yes\n",
                    rateQuestions("100/0/0") + rateQuestions("101/0/1") + headerQuestions({"100/0/0", "101/0/1"})));
}

TEST_F(ShowRate, AllNamesPortsOfEveryType) {
  platform.portCount = 3;
  platform.ports[1] = platform.ports[8];
  platform.ports[2] = platform.ports[6];
  platform.ports[2].tx.linkCount = 1;
  discover();
  EXPECT_EQ(run("showRate all"),
            printed("\n"
                    "show rate           \n"
                    "=================== ==== ==== ==== \n"
                    "ASIC port              0    1    2 \n"
                    "user port            100  108  106 \n"
                    "link num               0    0    0 \n"
                    "running rate          8G   8G   8G\n"
                    "media type           OPT  OPT  OPT\n"
                    "=================== ==== ==== ==== \n"
                    "\n"
                    "config rate (gb/s)    8G   8G   8G\n"
                    "stream enable        yes  yes  yes\n",
                    rateQuestions("100/0/0") + rateQuestions("108/0/8") + rateQuestions("106/0/6") +
                        headerQuestions({"100/0/0", "108/0/8", "106/0/6"})));
}

TEST_F(ShowRate, EmptySelectionIsATableWithoutColumns) {
  EXPECT_EQ(run("showRate 5-2"), printed("\n"
                                         "show rate           \n"
                                         "=================== \n"
                                         "ASIC port           \n"
                                         "user port           \n"
                                         "link num            \n"
                                         "running rate       \n"
                                         "media type         \n"
                                         "=================== \n"
                                         "\n"
                                         "config rate (gb/s) \n"
                                         "stream enable      \n",
                                         {}));
}

// The command walks the ports of the ASIC, its header every port that a record could exist for.
TEST_F(ShowRate, PortBeyondTheTopologyIsAskedAboutByTheHeaderAloneAndHasNoColumn) {
  EXPECT_EQ(run("showRate 0 20 24-31"), printed(kHeadOfPort0 + "\n"
                                                               "config rate (gb/s)    8G\n"
                                                               "stream enable        yes\n",
                                                rateQuestions("100/0/0") + headerQuestions({"100/0/0", "0/0/0"})));
}

TEST_F(ShowRate, FailureOfTheConfiguredSpeedPrintsOnlyTheError) {
  platform.fail("GetPortCfgSpeed", -5, 2);
  EXPECT_EQ(run("showRate 0 1 2"), failed("showRateCmdHandler: serdes err -5\n",
                                          rateQuestions("100/0/0") + Calls{"GetPortCfgSpeed(101/0/1)"}));
}

TEST_F(ShowRate, FailureOfTheStreamStatePrintsOnlyTheError) {
  platform.fail("TxStreamState", -6);
  EXPECT_EQ(run("showRate 0 1"), failed("showRateCmdHandler: serdes err -6\n", rateQuestions("100/0/0")));
}

TEST_F(ShowRate, FailureOfTheLastPortsStreamStatePrintsOnlyTheError) {
  platform.fail("TxStreamState", -7, 2);
  EXPECT_EQ(run("showRate 0 1"),
            failed("showRateCmdHandler: serdes err -7\n", rateQuestions("100/0/0") + rateQuestions("101/0/1")));
}

// Of a configured and running port one lost answer changes nothing, since either of the two will do.
TEST_F(ShowRate, HeaderDoesWithoutThePortState) {
  platform.fail("GetPortInfo", -1);
  EXPECT_EQ(run("showRate 0"), printed(kHeadOfPort0 + "\n"
                                                      "config rate (gb/s)    8G\n"
                                                      "stream enable        yes\n",
                                       rateQuestions("100/0/0") + headerQuestions({"100/0/0"})));
}

TEST_F(ShowRate, HeaderDoesWithoutTheConfiguredSpeed) {
  platform.fail("GetPortCfgSpeed", -1, 2);
  EXPECT_EQ(run("showRate 0"), printed(kHeadOfPort0 + "\n"
                                                      "config rate (gb/s)    8G\n"
                                                      "stream enable        yes\n",
                                       rateQuestions("100/0/0") + headerQuestions({"100/0/0"})));
}

TEST_F(ShowRate, HeaderWithoutStateAndConfiguredSpeedShowsInvalid) {
  platform.fail("GetPortInfo", -1);
  platform.fail("GetPortCfgSpeed", -1, 2);
  EXPECT_EQ(run("showRate 0"), printed("\n"
                                       "show rate           \n"
                                       "=================== ==== \n"
                                       "ASIC port              0 \n"
                                       "user port            100 \n"
                                       "link num               0 \n"
                                       "running rate         INV\n"
                                       "media type           OPT\n"
                                       "=================== ==== \n"
                                       "\n"
                                       "config rate (gb/s)    8G\n"
                                       "stream enable        yes\n",
                                       rateQuestions("100/0/0") + idleHeaderQuestions("100/0/0")));
}

TEST_F(ShowRate, HeaderWithoutRunningRateShowsInvalid) {
  platform.fail("GetPortSpeed", -1);
  EXPECT_EQ(run("showRate 0"), printed("\n"
                                       "show rate           \n"
                                       "=================== ==== \n"
                                       "ASIC port              0 \n"
                                       "user port            100 \n"
                                       "link num               0 \n"
                                       "running rate         INV\n"
                                       "media type           OPT\n"
                                       "=================== ==== \n"
                                       "\n"
                                       "config rate (gb/s)    8G\n"
                                       "stream enable        yes\n",
                                       rateQuestions("100/0/0") + headerQuestions({"100/0/0"})));
}

TEST_F(ShowRate, HeaderWithoutMediaTypeShowsUnknown) {
  platform.fail("GetMediaHwFcXmtrType", -1);
  EXPECT_EQ(run("showRate 0"), printed("\n"
                                       "show rate           \n"
                                       "=================== ==== \n"
                                       "ASIC port              0 \n"
                                       "user port            100 \n"
                                       "link num               0 \n"
                                       "running rate          8G\n"
                                       "media type           UNK\n"
                                       "=================== ==== \n"
                                       "\n"
                                       "config rate (gb/s)    8G\n"
                                       "stream enable        yes\n",
                                       rateQuestions("100/0/0") + headerQuestions({"100/0/0"})));
}

class RateOversizedSwitch : public OversizedSwitchTest {};

INSTANTIATE_TEST_SUITE_P(, RateOversizedSwitch, testing::Values(40u, 0xFFFFFFFFu));

TEST_P(RateOversizedSwitch, SetsNoPortBeyondTheTwentyFourth) {
  EXPECT_EQ(run("setRate 8G 22-31"), done({"SetPortCfgSpeed(122/0/22, 4)", "SetPortCfgSpeed(123/0/23, 4)"}));
  EXPECT_EQ(run("setTxEnable 0 23-31"), done({"TxStreamEnable(123/0/23, 0)"}));
}

TEST_P(RateOversizedSwitch, ShowsNoPortBeyondTheTwentyFourth) {
  EXPECT_EQ(run("showRate 23-31"), printed("\n"
                                           "show rate           \n"
                                           "=================== ==== \n"
                                           "ASIC port             23 \n"
                                           "user port            123 \n"
                                           "link num               0 \n"
                                           "running rate          8G\n"
                                           "media type           OPT\n"
                                           "=================== ==== \n"
                                           "\n"
                                           "config rate (gb/s)    8G\n"
                                           "stream enable        yes\n",
                                           rateQuestions("123/0/23") + headerQuestions({"123/0/23"})));
}

TEST_F(ShowRate, LinksBeyondTheFourthHaveNoColumn) {
  platform.ports[0].tx.linkCount = 9;
  discover();
  EXPECT_EQ(run("showRate 0"), printed("\n"
                                       "show rate           \n"
                                       "=================== ==== ==== ==== ==== \n"
                                       "ASIC port              0    0    0    0 \n"
                                       "user port            100  100  100  100 \n"
                                       "link num               0    1    2    3 \n"
                                       "running rate          8G   8G   8G   8G\n"
                                       "media type           OPT  OPT  OPT  OPT\n"
                                       "=================== ==== ==== ==== ==== \n"
                                       "\n"
                                       "config rate (gb/s)    8G   8G   8G   8G\n"
                                       "stream enable        yes  yes  yes  yes\n",
                                       rateQuestions("100/0/0") + headerQuestions({"100/0/0"})));
}

class PortRateCommandsRefused : public RefusalTest {};

TEST_P(PortRateCommandsRefused, WithoutPlatformCall) {
  EXPECT_EQ(run(GetParam().line), refused(GetParam().status));
}

const Refusal kRefusals[] = {
    {"SetRateAlone", "setRate", CMD_TOO_FEW_ARGS},
    {"SetRateWithoutPorts", "setRate 4G", CMD_TOO_FEW_ARGS},
    {"SetRateUnknownRate", "setRate 3G 0", CMD_BAD_PARAM},
    {"SetRateInvalidRateByItsName", "setRate INV 0", CMD_BAD_PARAM},
    {"SetRateUnknownRateBeforeMissingPorts", "setRate 16G", CMD_BAD_PARAM},
    {"SetRateUnknownPorts", "setRate 4G ports", CMD_BAD_PARAM},
    {"SetRateKeywordAmongNumbers", "setRate 4G gl 3", CMD_BAD_PARAM},
    {"SetRateAllOfMixedTypes", "setRate 4G all", CMD_MIXED_PORT_TYPES},
    {"SetRateGlAndXgPort", "setRate 4G 0 6", CMD_MIXED_PORT_TYPES},
    {"SetRateXgAndExgPort", "setRate 4G 6-8", CMD_MIXED_PORT_TYPES},
    {"SetRateGlAndExgPort", "setRate 4G 0 11", CMD_MIXED_PORT_TYPES},
    {"SetRateTooManyPorts", "sr 4G 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22", CMD_TOO_MANY_ARGS},
    {"SetTxEnableAlone", "setTxEnable", CMD_TOO_FEW_ARGS},
    {"SetTxEnableWithoutPorts", "setTxEnable 1", CMD_TOO_FEW_ARGS},
    {"SetTxEnableKeyword", "setTxEnable en 4", CMD_BAD_PARAM},
    {"SetTxEnableNoNumberBeforeMissingPorts", "setTxEnable on", CMD_BAD_PARAM},
    {"SetTxEnableRangeBeyondThirtyOne", "setTxEnable 1 0-32", CMD_BAD_PARAM},
    {"SetTxEnableAllOfMixedTypes", "setTxEnable 1 all", CMD_MIXED_PORT_TYPES},
    {"SetTxEnableMixedTypes", "setTxEnable 0 4 6 8 10", CMD_MIXED_PORT_TYPES},
    {"SetTxEnableTooManyPorts", "stx 1 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22", CMD_TOO_MANY_ARGS},
    {"ShowRateWithoutPorts", "showRate", CMD_TOO_FEW_ARGS},
    {"ShowRateUnknownPorts", "showRate g", CMD_BAD_PARAM},
    {"ShowRateNegativePort", "showRate -1", CMD_BAD_PARAM},
    {"ShowRateKeywordAmongNumbers", "showRate 0 all", CMD_BAD_PARAM},
    {"ShowRateTooManyPorts", "dr 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23", CMD_TOO_MANY_ARGS},
};

INSTANTIATE_TEST_SUITE_P(, PortRateCommandsRefused, testing::ValuesIn(kRefusals), refusalName);

}  // namespace
}  // namespace recording
