// Setting and showing the live DFE and VGA.
#include <cstring>

#include "tests/support/expected.h"
#include "tests/support/handlers.h"
#include "topology/serdes_topology.h"

namespace recording {
namespace {

void setLink(unsigned port, unsigned link, std::uint32_t mode, int pole, int peak, int amax) {
  platform.ports[port].rxLinks[link] = {.mode = mode,
                                        .pole = static_cast<signed char>(pole),
                                        .peak = static_cast<signed char>(peak),
                                        .amax = static_cast<signed char>(amax),
                                        .stats = {}};
}

// Port 0, which does not run, and port 6 with more receive links than transmit links, and port 7 with fewer: each mode
// and two beyond them, and the limits of a signed byte.
void setLinksOfPorts0And6And7() {
  makeIdle(platform.ports[0]);
  platform.ports[6].tx.linkCount = 1;
  platform.ports[7].tx.linkCount = 2;
  platform.ports[7].rx.linkCount = 1;
  setLink(0, 0, DFE_5, 6, 4, 0x4e);
  setLink(6, 0, DFE_3, 0, 1, 0);
  setLink(6, 1, DFE_1, 127, -1, 127);
  setLink(6, 2, DFE_NONE, -128, 100, -128);
  setLink(6, 3, 4, -100, 99, -1);
  setLink(7, 0, 0xFFFFFFFF, 1, 2, 3);
}

Calls readsOfPorts0And6And7(const std::string& operation) {
  return Calls{operation + "(0, 0, 0)"} + perNumber(operation + "(0, 6, %)", {0, 1, 2, 3}) +
         Calls{operation + "(0, 7, 0)"};
}

using SetDFE = TopologyTest;
using SetVGA = TopologyTest;
using SetRxParams = TopologyTest;
using ShowDFE = TopologyTest;
using ShowVGA = TopologyTest;
using ShowRxParams = TopologyTest;

TEST_F(SetDFE, SetsAllLinksOfEveryPortInAscendingOrder) {
  EXPECT_EQ(run("setDFE none gl"), done(perNumber("SetSerDesRxDFE(0, %, -1, 2)", {0, 1, 2, 3, 4, 5})));
  EXPECT_EQ(run("setDFE DFE3 xg"), done(perNumber("SetSerDesRxDFE(0, %, -1, 0)", {6, 7})));
  EXPECT_EQ(run("setDFE DFE3 11 10"), done(perNumber("SetSerDesRxDFE(0, %, -1, 0)", {10, 11})));
}

TEST_F(SetDFE, EachKeywordInAnyCaseIsItsMode) {
  const std::vector<std::vector<const char*>> words = {
      {"DFE3", "dfe3"}, {"DFE5", "Dfe5"}, {"NONE", "None", "none"}, {"DFE1", "dFE1"}};
  for (unsigned mode = 0; mode < words.size(); ++mode) {
    for (const char* word : words[mode])
      EXPECT_EQ(run(std::string("setDFE ") + word + " 0"), done(perNumber("SetSerDesRxDFE(0, 0, -1, %)", {mode})))
          << word;
  }
}

TEST_F(SetDFE, OtherWordsAreRefused) {
  for (const char* word : {"DFE", "DFE0", "DFE2", "DFE4", "DFE7", "DFE33", "NON", "NONEX", "INV", "0", "3", "FFE3"})
    EXPECT_EQ(run(std::string("setDFE ") + word + " gl"), refused(CMD_BAD_PARAM)) << word;
}

TEST_F(SetDFE, TwentyFourWordsAreTaken) {
  EXPECT_EQ(run("setDFE DFE3 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 1"),
            done(perNumber("SetSerDesRxDFE(0, %, -1, 0)", {0, 1})));
}

TEST_F(SetVGA, PassesPolePeakAndAmaxToEveryPort) {
  EXPECT_EQ(run("setVGA 6 4 0x4e gl"), done(perNumber("SetSerDesRxVGA(0, %, -1, 6, 4, 78)", {0, 1, 2, 3, 4, 5})));
}

TEST_F(SetVGA, LowEightBitsArriveSigned) {
  EXPECT_EQ(run("setVGA 200 0x1ff 0xb0 0"), done({"SetSerDesRxVGA(0, 0, -1, -56, -1, -80)"}));
  EXPECT_EQ(run("setVGA 127 128 256 0"), done({"SetSerDesRxVGA(0, 0, -1, 127, -128, 0)"}));
  EXPECT_EQ(run("setVGA -129 0xffffff7f 65535 8"), done({"SetSerDesRxVGA(0, 8, -1, 127, 127, -1)"}));
}

TEST_F(SetRxParams, SetsModeThenVgaPortByPort) {
  EXPECT_EQ(run("setRxParams dfe5 6 4 0x4e xg"),
            done({"SetSerDesRxDFE(0, 6, -1, 1)", "SetSerDesRxVGA(0, 6, -1, 6, 4, 78)", "SetSerDesRxDFE(0, 7, -1, 1)",
                  "SetSerDesRxVGA(0, 7, -1, 6, 4, 78)"}));
  EXPECT_EQ(run("setRxParams DFE1 200 0x1ff -1 0"),
            done({"SetSerDesRxDFE(0, 0, -1, 3)", "SetSerDesRxVGA(0, 0, -1, -56, -1, -1)"}));
}

class SetDFEState : public TopologyTest {
 protected:
  template <typename Value>
  static Value handedOverAt(std::size_t offset) {
    Value value;
    std::memcpy(&value, reinterpret_cast<const char*>(&platform.lastDfeState) + offset, sizeof value);
    return value;
  }
};

TEST_F(SetDFEState, HandsTheStateToOneLink) {
  EXPECT_EQ(run("setDFEState 4 0 dfe3 0 1 0 1 0 1 0 1 0 1"),
            done({"SetSerDesRxDFEState(0, 4, 0, 0, 0, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1)"}));
  EXPECT_EQ(run("setDFEState 5 3 DFE1 11 12 13 14 15 16 17 18 19 20"),
            done({"SetSerDesRxDFEState(0, 5, 3, 0, 3, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20)"}));
}

TEST_F(SetDFEState, LowSixteenBitsOfEachValueAreKept) {
  EXPECT_EQ(run("setDFEState 4 0 DFE3 65537 -1 0x8000 0x1fff0 -32769 65536 0xffff 32767 -32768 70000"),
            done({"SetSerDesRxDFEState(0, 4, 0, 0, 0, 1, -1, -32768, -16, 32767, 0, -1, 32767, -32768, 4464)"}));
}

TEST_F(SetDFEState, RecordIsAWordTheModeTenHalfwordsAndZeros) {
  ASSERT_EQ(run("setDFEState 4 0 None 0x1122 0x2233 0x3344 0x4455 0x5566 0x6677 0x7788 0x8899 0x99aa 0xaabb").status,
            CMD_OK);
  EXPECT_EQ(handedOverAt<std::uint32_t>(0), 0u);
  EXPECT_EQ(handedOverAt<std::uint32_t>(4), 2u);
  for (std::uint16_t tap = 0; tap < 10; ++tap)
    EXPECT_EQ(handedOverAt<std::uint16_t>(8u + 2u * tap), 0x1122 + tap * 0x1111) << tap;
  for (std::size_t offset = 28; offset < sizeof(SerDesRxDFEState); ++offset)
    EXPECT_EQ(handedOverAt<std::uint8_t>(offset), 0) << offset;
}

TEST_F(SetDFEState, LinkIsPassedAsTyped) {
  EXPECT_EQ(run("setDFEState 4 -1 DFE5 0 0 0 0 0 0 0 0 0 0"),
            done({"SetSerDesRxDFEState(0, 4, -1, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)"}));
  EXPECT_EQ(run("setDFEState 4 0x63 DFE5 0 0 0 0 0 0 0 0 0 0"),
            done({"SetSerDesRxDFEState(0, 4, 99, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)"}));
}

TEST_F(SetDFEState, ReceiveTypes2And5AreTakenWhateverTheTransmitType) {
  for (const std::uint32_t type : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 250u, 0xFFFFFFFFu}) {
    platform.ports[4].rx.type = type;
    discover();
    const Outcome taken = done({"SetSerDesRxDFEState(0, 4, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)"});
    EXPECT_EQ(run("setDFEState 4 0 DFE5 0 0 0 0 0 0 0 0 0 0"), type == 2 || type == 5 ? taken : refused(CMD_BAD_PARAM))
        << type;
  }
}

TEST_F(SetDFEState, PortWithoutLinksOrPresenceIsTaken) {
  platform.ports[4].rx.linkCount = 0;
  platform.ports[4].hwConfig.presence = 0;
  discover();
  EXPECT_EQ(run("setDFEState 4 0 DFE3 0 1 0 1 0 1 0 1 0 1"),
            done({"SetSerDesRxDFEState(0, 4, 0, 0, 0, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1)"}));
}

// The port count is compared as a signed number.
TEST_F(SetDFEState, PortMustBeBelowThePortCountAndInTheModel) {
  const struct {
    unsigned portCount;
    const char* port;
    bool isTaken;
  } rows[] = {{12, "11", true},          {12, "12", false}, {12, "23", false},          {12, "24", false},
              {12, "0x7fffffff", false}, {12, "-1", false}, {12, "-2147483648", false}, {12, "0xffffffff", false},
              {0xFFFFFFFF, "0", false},  {40, "23", true},  {40, "24", false},          {40, "39", false}};
  for (const auto& row : rows) {
    ToolTest::SetUp();
    platform.portCount = row.portCount;
    discover();
    for (PortConfig& port : serdesTopology.portConfig)
      port.rx.serDesType = 2;  // also beyond the port count
    const Outcome taken =
        done({std::string("SetSerDesRxDFEState(0, ") + row.port + ", 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)"});
    EXPECT_EQ(run(std::string("setDFEState ") + row.port + " 0 DFE3 0 0 0 0 0 0 0 0 0 0"),
              row.isTaken ? taken : refused(CMD_BAD_PARAM))
        << row.port << " of " << row.portCount;
  }
}

TEST_F(SetDFEState, PortLinkAndTypeAreJudgedBeforeTheWordCountAndThatBeforeModeAndValues) {
  expectRefusals({{"setDFEState 99 0", CMD_TOO_FEW_ARGS},
                  {"setDFEState 99 0 DFE3", CMD_BAD_PARAM},
                  {"setDFEState 4x 0 DFE3", CMD_BAD_PARAM},
                  {"setDFEState 4 x DFE3", CMD_BAD_PARAM},
                  {"setDFEState 6 0 DFE3", CMD_BAD_PARAM},
                  {"setDFEState 6 0 DFE3 0 1 0 1 0 1 0 1 0 1 0", CMD_BAD_PARAM},
                  {"setDFEState 4 0 DFE7", CMD_TOO_FEW_ARGS},
                  {"setDFEState 4 0 DFE7 x x x x x x x x x", CMD_TOO_FEW_ARGS},
                  {"setDFEState 4 0 DFE7 x x x x x x x x x x x", CMD_TOO_MANY_ARGS},
                  {"setDFEState 4 0 DFE3 0 1 0 1 0 1 0 1 0 1 0 1 2 3 4 5 6 7 8 9", CMD_TOO_MANY_ARGS},
                  {"setDFEState 4 0 DFE7 0 1 0 1 0 1 0 1 0 1", CMD_BAD_PARAM},
                  {"setDFEState 4 0 DFE3 0 1 0 1 0 1 0 1 0 1.5", CMD_BAD_PARAM}});
  EXPECT_EQ(runPastItsRow("setDFEState 99 0"), refused(CMD_BAD_PARAM));
  EXPECT_EQ(runPastItsRow("setDFEState 4 0"), refused(CMD_TOO_FEW_ARGS));
}

// A table has the columns of the transmit links and the cells of the receive links.
TEST_F(ShowDFE, EachReceiveLinkHasItsCellWhetherItRunsOrNot) {
  setLinksOfPorts0And6And7();
  discover();
  EXPECT_EQ(run("showDFE 0 6 7"), table("show DFE", {0, 6, 7}, readsOfPorts0And6And7("GetSerDesRxDFE"),
                                        "dfe mode            DFE5 DFE3 DFE1 NONE UNK  UNK  \n"));
}

TEST_F(ShowVGA, EachReceiveLinkHasItsCellsAndNegativeAmaxEightDigits) {
  setLinksOfPorts0And6And7();
  discover();
  EXPECT_EQ(run("showVGA 0 6 7"), table("show VGA", {0, 6, 7}, readsOfPorts0And6And7("GetSerDesRxVGA"),
                                        "pole                   6    0  127 -128 -100    1 \n"
                                        "peak                   4    1   -1  100   99    2 \n"
                                        "amax                0x4e 0x00 0x7f 0xffffff80 0xffffffff 0x03 \n"));
}

Calls paramReads(unsigned port, const Numbers& links) {
  Calls reads;
  for (const unsigned link : links) {
    const std::string at = "(0, " + std::to_string(port) + ", " + std::to_string(link) + ")";
    reads = reads + Calls{"GetSerDesRxVGA" + at, "GetSerDesRxDFE" + at};
  }
  return reads;
}

TEST_F(ShowRxParams, PortThatDoesNotRunIsReadAndHasBlankCells) {
  setLinksOfPorts0And6And7();
  discover();
  EXPECT_EQ(run("showRxParams 0 6 7"),
            table("show rx params", {0, 6, 7}, paramReads(0, {0}) + paramReads(6, {0, 1, 2, 3}) + paramReads(7, {0}),
                  "dfe mode                 DFE3 DFE1 NONE UNK  UNK  \n"
                  "pole                        0  127 -128 -100    1 \n"
                  "peak                        1   -1  100   99    2 \n"
                  "amax                     0x00 0x7f 0xffffff80 0xffffffff 0x03 \n"));
}

TEST_F(ShowRxParams, PortThatRunsAgainShowsItsValuesAgain) {
  makeIdle(platform.ports[0]);
  ASSERT_EQ(run("showRxParams 0").status, CMD_OK);
  platform.ports[0].state = kPortStateRunning;
  EXPECT_EQ(run("showRxParams 0"), table("show rx params", {0}, paramReads(0, {0}),
                                         "dfe mode            DFE3 \n"
                                         "pole                   0 \n"
                                         "peak                   0 \n"
                                         "amax                0x00 \n"));
}

}  // namespace
}  // namespace recording
