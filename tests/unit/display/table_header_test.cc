// Table heads and the separator row.
#include "display/table_header.h"

#include <array>
#include <climits>
#include <functional>
#include <string>

#include "tests/support/expected.h"

namespace recording {
namespace {

constexpr auto kType2 = static_cast<SerDesType>(2);
constexpr auto kType3 = static_cast<SerDesType>(3);
constexpr auto kType4 = static_cast<SerDesType>(4);
constexpr auto kType6 = static_cast<SerDesType>(6);
constexpr auto kType250 = static_cast<SerDesType>(250);

// Ports 0 to 5 have one link of type 2, 6 and 7 four of type 3, 8 to 11 one of type 4; 3 and 9 have no user port.
class TableHeader : public TopologyTest {
 protected:
  static Outcome printedTable(const std::function<void()>& print) {
    Outcome outcome;
    platform.calls.clear();
    outcome.out = printedBy(print);
    outcome.calls = platform.calls;
    return outcome;
  }

  static Outcome portHeader(const char* title, std::uint32_t portMask) {
    return printedTable([=] { printPortTableHeader(title, portMask); });
  }

  static Outcome linkHeader(SerDesType type, SerDesLinkType side, std::uint32_t portMask) {
    return printedTable([=] { printLinkTableHeader(type, side, portMask); });
  }

  static Outcome separator(SerDesType type, SerDesLinkType side, std::uint32_t portMask) {
    return printedTable([=] { printLinkSeparatorRow(type, side, portMask); });
  }

  static std::string rateRow(const Outcome& outcome) {
    const std::size_t start = outcome.out.find("running rate");
    return outcome.out.substr(start, outcome.out.find('\n', start) - start);
  }

  static std::string mediaRow(const Outcome& outcome) {
    const std::size_t start = outcome.out.find("media type");
    return outcome.out.substr(start, outcome.out.find('\n', start) - start);
  }
};

TEST_F(TableHeader, ShowsPortsUserPortsLinksRatesAndMedia) {
  platform.ports[5].hwConfig.portId.userPort = kNoUserPort;
  discover();
  makeIdle(platform.ports[5]);
  platform.ports[5].media = MEDIA_UNKNOWN;
  EXPECT_EQ(portHeader("show rate", 0x30), printed("\n"
                                                   "show rate           \n"
                                                   "=================== ==== ==== \n"
                                                   "ASIC port              4    5 \n"
                                                   "user port            104  N/A \n"
                                                   "link num               0    0 \n"
                                                   "running rate          8G  INV\n"
                                                   "media type           OPT  UNK\n"
                                                   "=================== ==== ==== \n",
                                                   headerQuestions({"104/0/4"}) + idleHeaderQuestions("65535/0/5")));
}

// What other tests expect of heads is built from the ports as they are.
TEST_F(TableHeader, HeadsThatTestsBuildAreTheLiteralOnes) {
  platform.ports[5].tx.linkCount = 0;
  platform.ports[6].tx.linkCount = 9;
  platform.ports[10].hwConfig.portId.userPort = 12345;
  makeIdle(platform.ports[10]);
  EXPECT_EQ(tableHead("show rate", {3, 5, 6, 10}),
            "\n"
            "show rate           \n"
            "=================== ==== ==== ==== ==== ==== ==== \n"
            "ASIC port              3    6    6    6    6   10 \n"
            "user port            N/A  106  106  106  106 12345 \n"
            "link num               0    0    1    2    3    0 \n"
            "running rate          8G   8G   8G   8G   8G  INV\n"
            "media type           OPT  OPT  OPT  OPT  OPT  OPT\n"
            "=================== ==== ==== ==== ==== ==== ==== \n");
  EXPECT_EQ(headQuestions({3, 10}),
            (Calls{"GetPortInfo(65535/0/3, 0)", "GetPortCfgSpeed(65535/0/3)", "GetPortSpeed(65535/0/3)",
                   "GetMediaHwFcXmtrType(65535/0/3)", "GetPortInfo(12345/0/10, 0)", "GetPortCfgSpeed(12345/0/10)",
                   "GetMediaHwFcXmtrType(12345/0/10)"}));
  EXPECT_EQ(tableHead("a title beyond its cell", {}),
            "\n"
            "a title beyond its cell \n"
            "=================== \n"
            "ASIC port           \n"
            "user port           \n"
            "link num            \n"
            "running rate       \n"
            "media type         \n"
            "=================== \n");
}

TEST_F(TableHeader, EmptyMaskPrintsLabelsWithoutCellsAndAsksNothing) {
  EXPECT_EQ(portHeader("show rate", 0), table("show rate", {}, {}, ""));
}

// One column per transmit link up to the fourth, whatever the receive links; ports without links are asked too.
TEST_F(TableHeader, EveryTransmitLinkOfAPortHasAColumn) {
  platform.ports[0].rx.linkCount = 4;
  platform.ports[0].tx.linkCount = 2;
  platform.ports[1].tx.linkCount = 0;
  platform.ports[2].tx.linkCount = 9;
  platform.ports[7].tx.linkCount = 0xFFFFFFFF;
  platform.ports[10].hwConfig.portId.userPort = 12345;
  platform.ports[11].hwConfig.portId.userPort = 0;
  discover();
  EXPECT_EQ(portHeader("links", 0xCE7), table("links", {0, 1, 2, 5, 6, 7, 10, 11}, {}, ""));
}

TEST_F(TableHeader, LongTitleIsPrintedWhole) {
  const std::string title(150, 't');
  EXPECT_EQ(portHeader(title.c_str(), 0).out.substr(0, 153), "\n" + title + " \n");
  EXPECT_EQ(portHeader("19 characters title", 0).out.substr(0, 22), "\n19 characters title \n");
}

TEST_F(TableHeader, PercentSignsInATitleAreText) {
  EXPECT_EQ(portHeader("100%s%d", 0).out.substr(0, 22), "\n100%s%d             \n");
}

TEST_F(TableHeader, AllRatesAndMediaFillTheirCells) {
  for (unsigned port = 0; port < 6; ++port) {
    platform.ports[port].runningSpeed = port;
    platform.ports[port].media = port;
  }
  for (unsigned port = 8; port < 11; ++port) {
    platform.ports[port].runningSpeed = port - 2;
    platform.ports[port].media = port - 2;
  }
  const Outcome outcome = portHeader("names", 0x73F);
  EXPECT_EQ(rateRow(outcome), "running rate        AUTO   1G   2G   4G   8G  10G  20G  INV  INV");
  EXPECT_EQ(mediaRow(outcome), "media type          NONE  N/A  UNK  OPT  ELC  COP  COP 10GE  1GE");
}

TEST_F(TableHeader, RatesAndMediaOutsideTheTablesAreInvalidAndUnknown) {
  platform.ports[0].runningSpeed = 8;
  platform.ports[0].media = 9;
  platform.ports[1].runningSpeed = 0xFFFFFFFF;
  platform.ports[1].media = 0xFFFFFFFF;
  const Outcome outcome = portHeader("names", 0x3);
  EXPECT_EQ(rateRow(outcome), "running rate         INV  INV");
  EXPECT_EQ(mediaRow(outcome), "media type           UNK  UNK");
  EXPECT_EQ(portRunning[0], 1);
  EXPECT_EQ(portRunning[1], 1);
}

TEST_F(TableHeader, PortOnAutoShowsItsRateInState11Only) {
  platform.ports[0].configuredSpeed = platform.ports[1].configuredSpeed = platform.ports[2].configuredSpeed =
      SPEED_AUTO;
  platform.ports[0].state = 11;
  platform.ports[1].state = 10;
  platform.ports[2].state = 12;
  const Outcome outcome = portHeader("auto", 0x7);
  EXPECT_EQ(rateRow(outcome), "running rate          8G  INV  INV");
  EXPECT_EQ(outcome.calls,
            headerQuestions({"100/0/0"}) + idleHeaderQuestions("101/0/1") + idleHeaderQuestions("102/0/2"));
  EXPECT_EQ(portRunning[0], 1);
  EXPECT_EQ(portRunning[1], 0);
  EXPECT_EQ(portRunning[2], 0);
}

TEST_F(TableHeader, PortWithAConfiguredSpeedShowsItsRunningOneInAnyState) {
  platform.ports[0].state = 0;
  platform.ports[0].configuredSpeed = SPEED_4G;
  platform.ports[0].runningSpeed = SPEED_2G;
  const Outcome outcome = portHeader("state 0", 0x1);
  EXPECT_EQ(rateRow(outcome), "running rate          2G");
  EXPECT_EQ(outcome.calls, headerQuestions({"100/0/0"}));
  EXPECT_EQ(portRunning[0], 1);
}

TEST_F(TableHeader, StateThatOnlyEndsIn11IsAnotherState) {
  platform.ports[0].configuredSpeed = SPEED_AUTO;
  platform.ports[0].state = 0x10B;
  EXPECT_EQ(rateRow(portHeader("state", 0x1)), "running rate         INV");
}

TEST_F(TableHeader, PortWhoseStateCannotBeReadIsTakenAsNotRunning) {
  platform.ports[0].configuredSpeed = SPEED_AUTO;
  platform.ports[0].state = 11;
  platform.fail("GetPortInfo", -5);
  const Outcome outcome = portHeader("no state", 0x1);
  EXPECT_EQ(rateRow(outcome), "running rate         INV");
  EXPECT_EQ(outcome.calls, idleHeaderQuestions("100/0/0"));
  EXPECT_EQ(portRunning[0], 0);
}

TEST_F(TableHeader, PortWhoseStateCannotBeReadShowsItsRateWithAConfiguredSpeed) {
  platform.fail("GetPortInfo", -5);
  const Outcome outcome = portHeader("no state", 0x1);
  EXPECT_EQ(rateRow(outcome), "running rate          8G");
  EXPECT_EQ(outcome.calls, headerQuestions({"100/0/0"}));
  EXPECT_EQ(portRunning[0], 1);
}

TEST_F(TableHeader, ConfiguredSpeedThatCannotBeReadIsTakenAsAuto) {
  platform.ports[0].state = 10;
  platform.fail("GetPortCfgSpeed", -5);
  EXPECT_EQ(rateRow(portHeader("no speed", 0x1)), "running rate         INV");
  EXPECT_EQ(portRunning[0], 0);
  platform.ports[0].state = 11;
  platform.fail("GetPortCfgSpeed", -5);
  EXPECT_EQ(rateRow(portHeader("no speed", 0x1)), "running rate          8G");
  EXPECT_EQ(portRunning[0], 1);
}

TEST_F(TableHeader, RunningSpeedThatCannotBeReadIsInvalidAndThePortCountsAsRunning) {
  platform.fail("GetPortSpeed", -5);
  const Outcome outcome = portHeader("no rate", 0x1);
  EXPECT_EQ(rateRow(outcome), "running rate         INV");
  EXPECT_EQ(outcome.calls, headerQuestions({"100/0/0"}));
  EXPECT_EQ(portRunning[0], 1);
}

TEST_F(TableHeader, MediumThatCannotBeReadIsUnknown) {
  platform.fail("GetMediaHwFcXmtrType", -5);
  EXPECT_EQ(mediaRow(portHeader("no medium", 0x3)), "media type           UNK  OPT");
}

TEST_F(TableHeader, EveryQuestionMayFailAndTheHeaderIsStillWhole) {
  platform.failCall(1, -5, true);
  const Outcome outcome = portHeader("dead", 0x41);
  EXPECT_EQ(rateRow(outcome), "running rate         INV  INV  INV  INV  INV");
  EXPECT_EQ(mediaRow(outcome), "media type           UNK  UNK  UNK  UNK  UNK");
  EXPECT_EQ(outcome.calls, idleHeaderQuestions("100/0/0") + idleHeaderQuestions("106/0/6"));
}

TEST_F(TableHeader, AnswersOfQuestionsThatFailDoNotCount) {
  for (const int code : {-1, INT_MIN}) {
    platform.answersThoughFailing = true;
    platform.failCall(1, code, true);
    portRunning = {1};
    (void)portHeader("dead", 0x1);
    EXPECT_EQ(portRunning[0], 0) << code;
    platform.faults.clear();
  }
}

TEST_F(TableHeader, RunningFlagsOfOtherPortsStay) {
  portRunning = {};
  portRunning[4] = 1;
  portRunning[5] = 1;
  makeIdle(platform.ports[5]);
  (void)portHeader("flags", 0x23);
  const std::array<std::uint8_t, 24> expected = {1, 1, 0, 0, 1};
  EXPECT_EQ(portRunning, expected);
}

TEST_F(TableHeader, PortsBeyondTheTopologyAreAskedAndHaveNoColumns) {
  EXPECT_EQ(portHeader("beyond", 0xFF801000), printed(tableHead("beyond", {}), headerQuestions({"0/0/0", "0/0/0"})));
}

TEST_F(TableHeader, LinkTableIsEntitledByTheTypeAndListsOnlyItsPorts) {
  EXPECT_EQ(linkHeader(kType3, SERDES_LINK_TX, 0x0E0), typeTable(3, {6, 7}, "", {5, 6, 7}));
}

TEST_F(TableHeader, LinkTableLooksAtTheTypeOfItsOwnSideAndCountsTheTransmitLinks) {
  platform.ports[1].rx = {.linkCount = 4, .type = 6, .core = 0};
  platform.ports[1].tx.linkCount = 2;
  discover();
  EXPECT_EQ(linkHeader(kType6, SERDES_LINK_RX, 0x3), typeTable(6, {1}, "", {0, 1}));
  EXPECT_EQ(linkHeader(kType6, SERDES_LINK_TX, 0x3), typeTable(6, {}, "", {0, 1}));
  EXPECT_EQ(linkHeader(kType2, SERDES_LINK_TX, 0x3), typeTable(2, {0, 1}, ""));
}

TEST_F(TableHeader, LinkTableOfATypeWithoutANameIsUnknown) {
  platform.ports[0].rx.type = 250;
  discover();
  EXPECT_EQ(linkHeader(kType250, SERDES_LINK_RX, 0x1), typeTable(250, {0}, ""));
}

TEST_F(TableHeader, LinkTableCutsALongTypeName) {
  platform.typeNames[2] = std::string(256, 'n');
  EXPECT_EQ(linkHeader(kType2, SERDES_LINK_RX, 0).out.substr(0, 258), "\n" + std::string(255, 'n') + " \n");
}

TEST_F(TableHeader, LinkTableSetsTheRunningFlagsOfItsWholeMask) {
  portRunning = {};
  portRunning[8] = 1;
  makeIdle(platform.ports[8]);
  (void)linkHeader(kType3, SERDES_LINK_RX, 0x141);
  EXPECT_EQ(portRunning[0], 1);
  EXPECT_EQ(portRunning[6], 1);
  EXPECT_EQ(portRunning[8], 0);
}

TEST_F(TableHeader, SeparatorHasADashCellPerLinkAndAsksNothing) {
  EXPECT_EQ(separator(kType2, SERDES_LINK_RX, 0x0FF),
            printed("------------------- ---- ---- ---- ---- ---- ---- \n", {}));
  EXPECT_EQ(separator(kType3, SERDES_LINK_TX, 0x040), printed("------------------- ---- ---- ---- ---- \n", {}));
}

TEST_F(TableHeader, SeparatorIsCountedByTheLinksOfItsOwnSide) {
  serdesTopology.portConfig[0].rx.linkCount = 3;
  serdesTopology.portConfig[0].tx.linkCount = 1;
  EXPECT_EQ(separator(kType2, SERDES_LINK_RX, 0x1).out, "------------------- ---- ---- ---- \n");
  EXPECT_EQ(separator(kType2, SERDES_LINK_TX, 0x1).out, "------------------- ---- \n");
}

TEST_F(TableHeader, SeparatorLooksAtTheTypeOfItsOwnSide) {
  serdesTopology.portConfig[8].rx.serDesType = 6;
  EXPECT_EQ(separator(kType4, SERDES_LINK_RX, 0x300).out, "------------------- ---- \n");
  EXPECT_EQ(separator(kType4, SERDES_LINK_TX, 0x300).out, "------------------- ---- ---- \n");
  EXPECT_EQ(separator(kType6, SERDES_LINK_RX, 0x300).out, "------------------- ---- \n");
}

TEST_F(TableHeader, SeparatorShowsNoMoreThanFourLinksOfAPort) {
  serdesTopology.portConfig[0].rx.linkCount = 9;
  EXPECT_EQ(separator(kType2, SERDES_LINK_RX, 0x1).out, "------------------- ---- ---- ---- ---- \n");
}

TEST_F(TableHeader, SeparatorOfNoPortsIsItsLabel) {
  EXPECT_EQ(separator(kType2, SERDES_LINK_RX, 0).out, "------------------- \n");
  EXPECT_EQ(separator(kType2, SERDES_LINK_RX, 0xFF000000).out, "------------------- \n");
}

TEST_F(TableHeader, AllTwentyFourPortsHaveColumns) {
  platform.portCount = 24;
  discover();
  const Outcome outcome = portHeader("full", 0xFFFFFFFF);
  EXPECT_EQ(outcome.calls.size(), 4u * 24);
  EXPECT_EQ(rateRow(outcome).size(), 19u + 5 * (22 + 2 * 4));
  EXPECT_EQ(portRunning[23], 1);
}

}  // namespace
}  // namespace recording
