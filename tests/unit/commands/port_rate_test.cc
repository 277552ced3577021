// Port speed and transmit stream.
#include "tests/support/expected.h"

namespace recording {
namespace {

using SetRate = TopologyTest;
using SetTxEnable = TopologyTest;
using ShowRate = TopologyTest;

TEST_F(SetRate, EachKeywordGoesToThePlatformAsItsIndex) {
  const std::vector<std::vector<const char*>> words = {{"AUTO", "auto"}, {"1G", "1"},   {"2G", "2"},  {"4G", "4g", "4"},
                                                       {"8G", "8"},      {"10G", "10"}, {"20G", "20"}};
  for (unsigned rate = 0; rate < words.size(); ++rate) {
    for (const char* word : words[rate])
      EXPECT_EQ(run(std::string("setRate ") + word + " 0"), done(perNumber("SetPortCfgSpeed(100/0/0, %)", {rate})))
          << word;
  }
}

TEST_F(SetRate, OtherRatesAreRefused) {
  expectRefusals({{"setRate 3G 0", CMD_BAD_PARAM}, {"setRate INV 0", CMD_BAD_PARAM}, {"setRate 16G", CMD_BAD_PARAM}});
}

TEST_F(SetRate, SetsPortsOfAnyOneTypeInAscendingOrder) {
  EXPECT_EQ(run("setRate AUTO gl"),
            done({"SetPortCfgSpeed(100/0/0, 0)", "SetPortCfgSpeed(101/0/1, 0)", "SetPortCfgSpeed(102/0/2, 0)",
                  "SetPortCfgSpeed(65535/0/3, 0)", "SetPortCfgSpeed(104/0/4, 0)", "SetPortCfgSpeed(105/0/5, 0)"}));
  EXPECT_EQ(run("setRate 10G 11 8-9"),
            done({"SetPortCfgSpeed(108/0/8, 5)", "SetPortCfgSpeed(65535/0/9, 5)", "SetPortCfgSpeed(111/0/11, 5)"}));
}

TEST_F(SetRate, PortIsAddressedByTheIdentifierOfItsRecord) {
  platform.ports[2].hwConfig.portId = {.userPort = 7, .asic = 8, .asicPort = 9, .unused = {}};
  discover();
  EXPECT_EQ(run("setRate 2G 2"), done({"SetPortCfgSpeed(7/8/9, 2)"}));
}

TEST_F(SetRate, AllNamesPortsOfOneTypeAndNoneWithoutAType) {
  platform.portCount = 3;
  platform.ports[1].hwConfig.presence = 0;
  discover();
  EXPECT_EQ(run("setRate 4G all"), done({"SetPortCfgSpeed(100/0/0, 3)", "SetPortCfgSpeed(102/0/2, 3)"}));
  EXPECT_EQ(run("setRate 4G 1"), done({"SetPortCfgSpeed(101/0/1, 3)"}));
}

TEST_F(SetTxEnable, AnyNumberButZeroEnables) {
  for (const std::string number : {"7", "1", "-1", "256", "0x80000000"})
    EXPECT_EQ(run("setTxEnable " + number + " 4"), done({"TxStreamEnable(104/0/4, 1)"})) << number;
}

TEST_F(SetTxEnable, ZeroDisablesEveryListedPort) {
  EXPECT_EQ(run("setTxEnable 0x0 2 4"), done({"TxStreamEnable(102/0/2, 0)", "TxStreamEnable(104/0/4, 0)"}));
}

TEST_F(SetTxEnable, KeywordsAreRefused) {
  expectRefusals({{"setTxEnable en 4", CMD_BAD_PARAM}, {"setTxEnable on", CMD_BAD_PARAM}});
}

// What showRate asks about ports before its header does.
Calls rateQuestions(const Numbers& ports) {
  Calls calls;
  for (const unsigned port : ports)
    calls = calls + Calls{"GetPortCfgSpeed(" + idOf(port) + ")", "TxStreamState(" + idOf(port) + ")"};
  return calls;
}

TEST_F(ShowRate, PrintsConfiguredRateAndStreamBelowAnEmptyLine) {
  platform.ports[4].hwConfig.portId.userPort = 12;
  platform.ports[5].hwConfig.portId.userPort = kNoUserPort;
  platform.ports[5].media = MEDIA_UNKNOWN;
  platform.ports[5].streamState = 0;
  makeIdle(platform.ports[5]);
  discover();
  EXPECT_EQ(run("showRate 4 5"),
            printed("\n"
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
                    rateQuestions({4, 5}) + headerQuestions({"12/0/4"}) + idleHeaderQuestions("65535/0/5")));
}

// A port on automatic speed, and a configured one in another state than that of a running port.
TEST_F(ShowRate, RunningRateIsShownBesidesTheConfiguredOne) {
  platform.ports[0].configuredSpeed = SPEED_AUTO;
  platform.ports[0].runningSpeed = SPEED_4G;
  platform.ports[1].state = 10;
  platform.ports[1].configuredSpeed = SPEED_2G;
  platform.ports[1].runningSpeed = SPEED_1G;
  EXPECT_EQ(run("showRate 0 1"), printed("\n"
                                         "show rate           \n"
                                         "=================== ==== ==== \n"
                                         "ASIC port              0    1 \n"
                                         "user port            100  101 \n"
                                         "link num               0    0 \n"
                                         "running rate          4G   1G\n"
                                         "media type           OPT  OPT\n"
                                         "=================== ==== ==== \n"
                                         "\n"
                                         "config rate (gb/s)  AUTO   2G\n"
                                         "stream enable        yes  yes\n",
                                         rateQuestions({0, 1}) + headerQuestions({"100/0/0", "101/0/1"})));
}

TEST_F(ShowRate, EveryRateAndMediumHasItsNameAndOthersAreInvalidAndUnknown) {
  platform.portCount = 10;
  for (unsigned port = 0; port < 10; ++port) {
    platform.ports[port].tx.linkCount = 1;
    platform.ports[port].configuredSpeed = port == 9 ? 0xFFFFFFFF : port;
    platform.ports[port].runningSpeed = port == 9 ? 0xFFFFFFFF : 8 - port;
    platform.ports[port].media = port == 8 ? 9 : port == 9 ? 0xFFFFFFFF : port;
  }
  discover();
  EXPECT_EQ(run("showRate all"),
            printed("\n"
                    "show rate           \n"
                    "=================== ==== ==== ==== ==== ==== ==== ==== ==== ==== ==== \n"
                    "ASIC port              0    1    2    3    4    5    6    7    8    9 \n"
                    "user port            100  101  102  N/A  104  105  106  107  108  N/A \n"
                    "link num               0    0    0    0    0    0    0    0    0    0 \n"
                    "running rate         INV  INV  20G  10G   8G   4G   2G   1G AUTO  INV\n"
                    "media type          NONE  N/A  UNK  OPT  ELC  COP  COP 10GE  UNK  UNK\n"
                    "=================== ==== ==== ==== ==== ==== ==== ==== ==== ==== ==== \n"
                    "\n"
                    "config rate (gb/s)  AUTO   1G   2G   4G   8G  10G  20G  INV  INV  INV\n"
                    "stream enable        yes  yes  yes  yes  yes  yes  yes  yes  yes  yes\n",
                    rateQuestions({0, 1, 2, 3, 4, 5, 6, 7, 8, 9}) + headQuestions({0, 1, 2, 3, 4, 5, 6, 7, 8, 9})));
}

TEST_F(ShowRate, EachTransmitLinkRepeatsItsPortsValues) {
  platform.ports[0].rx.linkCount = 3;
  platform.ports[0].tx.linkCount = 2;
  platform.ports[1].tx.linkCount = 0;
  platform.ports[6].configuredSpeed = SPEED_20G;
  platform.ports[7].tx.linkCount = 1;
  platform.ports[7].streamState = 0;
  discover();
  EXPECT_EQ(run("showRate 0 1 6 7"), table("show rate", {0, 1, 6, 7}, rateQuestions({0, 1, 6, 7}),
                                           "\n"
                                           "config rate (gb/s)    8G   8G  20G  20G  20G  20G   8G\n"
                                           "stream enable        yes  yes  yes  yes  yes  yes   no\n"));
}

TEST_F(ShowRate, StreamStateIsOnWhateverTheByteThatIsNotZero) {
  platform.ports[0].streamState = 0xff;
  platform.ports[1].streamState = 2;
  platform.ports[2].streamState = 0;
  EXPECT_EQ(run("showRate 0-2"), table("show rate", {0, 1, 2}, rateQuestions({0, 1, 2}),
                                       "\n"
                                       "config rate (gb/s)    8G   8G   8G\n"
                                       "stream enable        yes  yes   no\n"));
}

// Of the configured speed the header needs the second answer, the command the first.
TEST_F(ShowRate, RowsStayWholeWhereTheHeaderDoesWithoutItsAnswers) {
  platform.fail("GetPortInfo", -1);
  platform.fail("GetPortCfgSpeed", -1, 2);
  const Outcome outcome = run("showRate 0");
  const Calls reads = rateQuestions({0});
  makeIdle(platform.ports[0]);
  EXPECT_EQ(outcome, table("show rate", {0}, reads,
                           "\n"
                           "config rate (gb/s)    8G\n"
                           "stream enable        yes\n"));
}

}  // namespace
}  // namespace recording
