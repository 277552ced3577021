// The display of the topology.
#include "tests/support/expected.h"
#include "topology/serdes_topology.h"

namespace recording {
namespace {

// A switch of 2 cores and 4 ports. Port 0 is served by core 0 on both sides, ports 1 and 3 are received on one core and
// transmitted on the other. Ports 2 and 3 have no user port.
class ShowConfig : public ToolTest {
 protected:
  void SetUp() override {
    ToolTest::SetUp();
    platform.coreCount = 2;
    platform.portCount = 4;
    platform.ports[0].rx = platform.ports[0].tx = {.linkCount = 1, .type = 2, .core = 0};
    platform.ports[1].rx = {.linkCount = 1, .type = 2, .core = 0};
    platform.ports[1].tx = {.linkCount = 4, .type = 3, .core = 1};
    platform.ports[2].rx = platform.ports[2].tx = {.linkCount = 4, .type = 3, .core = 1};
    platform.ports[3].rx = {.linkCount = 0, .type = 3, .core = 1};
    platform.ports[3].tx = {.linkCount = 1, .type = 2, .core = 0};
    platform.ports[2].hwConfig.portId.userPort = kNoUserPort;
    platform.ports[2].hwConfig.portType = kPortTypeXg;
    platform.ports[3].hwConfig.portType = kPortTypeExg;
    discover();
  }
};

const std::string kOutput =
    "current asicNum:0, coreCount:2, portCount:4\n"
    "\n"
    "portConfig:\n"
    "portNum 0  : RX(linkCount:1, TYPE-2, coreId:0) TX(linkCount:1, TYPE-2, coreId:0)\n"
    "portNum 1  : RX(linkCount:1, TYPE-2, coreId:0) TX(linkCount:4, TYPE-3, coreId:1)\n"
    "portNum 2  : RX(linkCount:4, TYPE-3, coreId:1) TX(linkCount:4, TYPE-3, coreId:1)\n"
    "portNum 3  : RX(linkCount:0, TYPE-3, coreId:1) TX(linkCount:1, TYPE-2, coreId:0)\n"
    "\n"
    "coreConfig:\n"
    "coreId 0  : TYPE-2              P0_TX_RX(100) P1_RX(101) P3_TX(N/A) \n"
    "coreId 1  : TYPE-3              P1_TX(101) P2_TX_RX(N/A) P3_RX(N/A) \n"
    "\n"
    "serdesConfig:\n"
    "TYPE-0 useCount:0\n"
    "TYPE-1 useCount:0\n"
    "TYPE-2 useCount:4\n"
    "TYPE-3 useCount:4\n"
    "TYPE-4 useCount:0\n"
    "TYPE-5 useCount:0\n"
    "TYPE-6 useCount:0\n"
    "\n"
    "glPortList: 0x00000003\n"
    "\n"
    "xgPortList: 0x00000004\n"
    "\n"
    "exgPortList: 0x00000008\n";

const Calls kCalls = {"ToString(2)", "ToString(2)", "ToString(2)", "ToString(3)", "ToString(3)", "ToString(3)",
                      "ToString(3)", "ToString(2)", "ToString(2)", "ToString(3)", "ToString(0)", "ToString(1)",
                      "ToString(2)", "ToString(3)", "ToString(4)", "ToString(5)", "ToString(6)"};

TEST_F(ShowConfig, PrintsPortsCoresTypesAndLists) {
  EXPECT_EQ(run("showConfig"), printed(kOutput, kCalls));
}

TEST_F(ShowConfig, NumbersOfTwoDigitsKeepTheColumns) {
  resetPlatform();
  discover();
  const std::string out = run("showConfig").out;
  const std::size_t port = out.find("portNum 10");
  EXPECT_EQ(out.substr(port, out.find('\n', port) - port),
            "portNum 10 : RX(linkCount:1, TYPE-4, coreId:4) TX(linkCount:1, TYPE-4, coreId:5)");
}

TEST_F(ShowConfig, UserPortsPrintAsUnsignedNumbers) {
  platform.portCount = 1;
  platform.ports[0].hwConfig.portId.userPort = 0xFFFE;
  discover();
  EXPECT_NE(run("showConfig").out.find("coreId 0  : TYPE-2              P0_TX_RX(65534) \n"), std::string::npos);
  platform.ports[0].hwConfig.portId.userPort = 0;
  discover();
  EXPECT_NE(run("showConfig").out.find("coreId 0  : TYPE-2              P0_TX_RX(0) \n"), std::string::npos);
}

const std::string kNoUse =
    "\n"
    "serdesConfig:\n"
    "TYPE-0 useCount:0\n"
    "TYPE-1 useCount:0\n"
    "TYPE-2 useCount:0\n"
    "TYPE-3 useCount:0\n"
    "TYPE-4 useCount:0\n"
    "TYPE-5 useCount:0\n"
    "TYPE-6 useCount:0\n"
    "\n"
    "glPortList: 0x00000000\n"
    "\n"
    "xgPortList: 0x00000000\n"
    "\n"
    "exgPortList: 0x00000000\n";

const Calls kTypeCalls = {"ToString(0)", "ToString(1)", "ToString(2)", "ToString(3)",
                          "ToString(4)", "ToString(5)", "ToString(6)"};

TEST_F(ShowConfig, WithoutPortsTheHeadingsFollowEachOtherAndCoresShowTheirTypeOnly) {
  platform.portCount = 0;
  EXPECT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("showConfig"), printed("current asicNum:1, coreCount:2, portCount:0\n"
                                       "\n"
                                       "portConfig:\n"
                                       "\n"
                                       "coreConfig:\n"
                                       "coreId 0  : TYPE-2              \n"
                                       "coreId 1  : TYPE-2              \n" +
                                           kNoUse,
                                       Calls{"ToString(2)", "ToString(2)"} + kTypeCalls));
}

TEST_F(ShowConfig, BeforeAnyAsicWasFoundShowsAnEmptyModel) {
  serdesTopology = {};
  EXPECT_EQ(run("showConfig"), printed("current asicNum:0, coreCount:0, portCount:0\n"
                                       "\n"
                                       "portConfig:\n"
                                       "\n"
                                       "coreConfig:\n" +
                                           kNoUse,
                                       kTypeCalls));
}

TEST_F(ShowConfig, PortListsPrintAllTheirDigits) {
  serdesTopology.glPortList = 0x00ABCDEF;
  serdesTopology.xgPortList = 0x80000000;
  serdesTopology.exgPortList = 0x00000010;
  const std::string out = run("showConfig").out;
  EXPECT_EQ(out.substr(out.find("\nglPortList")),
            "\nglPortList: 0x00abcdef\n\nxgPortList: 0x80000000\n\nexgPortList: 0x00000010\n");
}

TEST_F(ShowConfig, CountsBeyondTheCapacityPrintAsTheyAreAndOnlyTheCapacityIsWalked) {
  resetPlatform();
  platform.portCount = 0xFFFFFFFF;
  platform.coreCount = 30;
  serdesTopology.portCount = 0;
  discover();
  const Outcome outcome = run("showConfig");
  EXPECT_EQ(outcome.status, CMD_OK);
  EXPECT_EQ(outcome.out.substr(0, outcome.out.find('\n')), "current asicNum:0, coreCount:30, portCount:-1");
  EXPECT_EQ(outcome.calls.size(), 24u * 2 + 18 + 7);
  EXPECT_NE(outcome.out.find("portNum 23 : "), std::string::npos);
  EXPECT_EQ(outcome.out.find("portNum 24"), std::string::npos);
  EXPECT_NE(outcome.out.find("coreId 17 : "), std::string::npos);
  EXPECT_EQ(outcome.out.find("coreId 18"), std::string::npos);
}

TEST_F(ShowConfig, TypeBeyondTheTableIsNamedByThePlatformOrUnknown) {
  platform.portCount = 1;
  platform.coreCount = 1;
  platform.ports[0].rx.type = 7;
  platform.ports[0].tx.type = 250;
  platform.typeNames[7] = "SEVEN";
  discover();
  const Outcome outcome = run("showConfig");
  EXPECT_EQ(outcome.out.substr(0, outcome.out.find("\nserdesConfig")),
            "current asicNum:0, coreCount:1, portCount:1\n"
            "\n"
            "portConfig:\n"
            "portNum 0  : RX(linkCount:1, SEVEN, coreId:0) TX(linkCount:1, UNK, coreId:0)\n"
            "\n"
            "coreConfig:\n"
            "coreId 0  : UNK                 P0_TX_RX(100) \n");
  EXPECT_EQ(outcome.calls, (Calls{"ToString(7)", "ToString(250)", "ToString(250)"} + kTypeCalls));
}

TEST_F(ShowConfig, LongTypeNameIsCutAndAnEmptyOneKeepsTheColumn) {
  platform.portCount = 0;
  platform.coreCount = 2;
  platform.cores[0].type = 0;
  platform.cores[1].type = 1;
  platform.typeNames[0] = "";
  platform.typeNames[1] = std::string(300, 'x');
  discover();
  const std::string out = run("showConfig").out;
  const std::string cut(255, 'x');
  EXPECT_EQ(out.substr(out.find("coreId"), out.find("TYPE-2") - out.find("coreId")),
            "coreId 0  :                     \ncoreId 1  : " + cut + " \n\nserdesConfig:\n useCount:0\n" + cut +
                " useCount:0\n");
}

TEST_F(ShowConfig, LinkCountsPrintAsReported) {
  platform.portCount = 1;
  platform.ports[0].rx.linkCount = 9;
  platform.ports[0].tx.linkCount = 0xFFFFFFFF;
  discover();
  EXPECT_NE(
      run("showConfig").out.find("portNum 0  : RX(linkCount:9, TYPE-2, coreId:0) TX(linkCount:-1, TYPE-2, coreId:0)\n"),
      std::string::npos);
}

}  // namespace
}  // namespace recording
