// Building the topology of an ASIC.
#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "tests/support/expected.h"
#include "topology/serdes_topology.h"

namespace recording {
namespace {

// Three lines of a core whose counts are those of the platform's default.
std::string coreLines(unsigned asic, unsigned core, unsigned firstPort, unsigned type) {
  return "asicNum:" + std::to_string(asic) + ", coreNum:" + std::to_string(core) +
         ", firstPort:" + std::to_string(firstPort) + ", serDesType:" + std::to_string(type) +
         ":\npllRegisterCount:3, rxRegisterCount:6, txRegisterCount:5\nrxParamCount:4, txParamCount:7\n";
}

Calls portCalls(unsigned asic, unsigned port) {
  const std::string a = std::to_string(asic), p = std::to_string(port);
  return {"GetPortHwConfig(65535/" + a + "/" + p + ")", "GetSerDesInfo(" + a + ", " + p + ", rx)",
          "GetSerDesInfo(" + a + ", " + p + ", tx)"};
}

// All of the model but the record of the switch.
std::string modelBytes() {
  const auto* bytes = reinterpret_cast<const char*>(&serdesTopology);
  return {bytes, offsetof(SerdesTopology, switchHwConfig)};
}

// The platform's switch with 12 ports and 6 cores, of which nothing is known yet.
class Discovery : public ToolTest {};

const Outcome& wholeDiscovery() {
  static const Outcome whole = [] {
    Outcome outcome =
        printed("", perNumber("GetSerDesInfo(%)", {0}) + perNumber("GetSerDesInfo(0, %)", {0, 1, 2, 3, 4, 5}));
    for (unsigned core = 0; core < 6; ++core)
      outcome.out += coreLines(0, core, 4 * core, 2 + core / 2);
    for (unsigned port = 0; port < 12; ++port)
      outcome.calls = outcome.calls + portCalls(0, port);
    outcome.out += "current asicNum:0, coreCount:6, portCount:12\n";
    return outcome;
  }();
  return whole;
}

TEST_F(Discovery, AsksForCoresThenPortsAndPrintsTheCores) {
  EXPECT_EQ(run("setAsicNum 0"), wholeDiscovery());
}

TEST_F(Discovery, FillsTheModel) {
  EXPECT_EQ(run("setAsicNum 0").status, CMD_OK);
  EXPECT_EQ(serdesTopology.asicNum, 0u);
  EXPECT_EQ(serdesTopology.portCount, 12u);
  EXPECT_EQ(serdesTopology.coreCount, 6u);
  EXPECT_EQ(serdesTopology.glPortList, 0x03Fu);
  EXPECT_EQ(serdesTopology.xgPortList, 0x0C0u);
  EXPECT_EQ(serdesTopology.exgPortList, 0xF00u);
  EXPECT_EQ(serdesTopology.glCoreMask, 0x03u);
  EXPECT_EQ(serdesTopology.xgCoreMask, 0x0Cu);
  EXPECT_EQ(serdesTopology.exgCoreMask, 0x20u);  // the transmit core alone
  EXPECT_EQ(serdesTopology.coreConfig[0].rxPortMask, 0x00Fu);
  EXPECT_EQ(serdesTopology.coreConfig[0].txPortMask, 0x00Fu);
  EXPECT_EQ(serdesTopology.coreConfig[1].rxPortMask, 0x030u);
  EXPECT_EQ(serdesTopology.coreConfig[2].txPortMask, 0x040u);
  EXPECT_EQ(serdesTopology.coreConfig[3].rxPortMask, 0x080u);
  EXPECT_EQ(serdesTopology.coreConfig[4].rxPortMask, 0xF00u);
  EXPECT_EQ(serdesTopology.coreConfig[4].txPortMask, 0u);
  EXPECT_EQ(serdesTopology.coreConfig[5].rxPortMask, 0u);
  EXPECT_EQ(serdesTopology.coreConfig[5].txPortMask, 0xF00u);
  EXPECT_EQ(serdesTopology.portConfig[6].rx.linkCount, 4u);
  EXPECT_EQ(serdesTopology.portConfig[6].rx.serDesType, 3u);
  EXPECT_EQ(serdesTopology.portConfig[6].rx.coreId, 2u);
  EXPECT_EQ(serdesTopology.portConfig[8].rx.coreId, 4u);
  EXPECT_EQ(serdesTopology.portConfig[8].tx.coreId, 5u);
  EXPECT_EQ(serdesTopology.portHwConfig[9].portId.userPort, 0xFFFFu);
  EXPECT_EQ(serdesTopology.portHwConfig[11].portId.userPort, 111u);
}

TEST_F(Discovery, CountsPortSidesPerSerDesType) {
  platform.ports[0].tx.type = 6;
  platform.ports[1].rx.type = 0;
  EXPECT_EQ(run("setAsicNum 0").status, CMD_OK);
  const std::array<unsigned, 7> expected = {1, 0, 10, 4, 8, 0, 1};
  for (std::size_t type = 0; type < expected.size(); ++type)
    EXPECT_EQ(serdesTopology.serdesConfig[type].useCount, expected[type]) << "type " << type;
}

TEST_F(Discovery, KeepsTheCountsOfEachCoreAndPrintsThemAsSignedNumbers) {
  platform.coreCount = 2;
  platform.portCount = 0;
  platform.cores[0] = {.firstPort = 65535,
                       .type = 7,
                       .pllRegisters = 11,
                       .rxRegisters = 12,
                       .txRegisters = 13,
                       .rxParams = 14,
                       .txParams = 15};
  platform.cores[1] = {.firstPort = 0,
                       .type = 0xFFFFFFFF,
                       .pllRegisters = 0xFFFFFFFF,
                       .rxRegisters = 0xFFFFFFFE,
                       .txRegisters = 0xFFFFFFFD,
                       .rxParams = 0xFFFFFFFC,
                       .txParams = 0xFFFFFFFB};
  EXPECT_EQ(run("setAsicNum 0").out,
            "asicNum:0, coreNum:0, firstPort:65535, serDesType:7:\n"
            "pllRegisterCount:11, rxRegisterCount:12, txRegisterCount:13\n"
            "rxParamCount:14, txParamCount:15\n"
            "asicNum:0, coreNum:1, firstPort:0, serDesType:-1:\n"
            "pllRegisterCount:-1, rxRegisterCount:-2, txRegisterCount:-3\n"
            "rxParamCount:-4, txParamCount:-5\n"
            "current asicNum:0, coreCount:2, portCount:0\n");
  const CoreConfig& core = serdesTopology.coreConfig[0];
  EXPECT_EQ(core.serDesType, 7u);
  EXPECT_EQ(core.pllRegisterCount, 11u);
  EXPECT_EQ(core.rxRegisterCount, 12u);
  EXPECT_EQ(core.txRegisterCount, 13u);
  EXPECT_EQ(core.rxParamCount, 14u);
  EXPECT_EQ(core.txParamCount, 15u);
}

TEST_F(Discovery, TypeOfACoreIsThatOfTheLastPortSideItServes) {
  platform.cores[0].type = 0;
  platform.cores[5].type = 1;
  platform.ports[2].rx.type = 5;
  platform.ports[3].rx.type = 5;
  platform.ports[3].tx.type = 6;
  platform.ports[8].tx.core = 4;
  platform.ports[9].tx.core = platform.ports[10].tx.core = platform.ports[11].tx.core = 4;
  const Outcome outcome = run("setAsicNum 0");
  EXPECT_NE(outcome.out.find("coreNum:0, firstPort:0, serDesType:0:\n"), std::string::npos);
  EXPECT_EQ(serdesTopology.coreConfig[0].serDesType, 6u);
  EXPECT_EQ(serdesTopology.coreConfig[5].serDesType, 1u);
}

TEST_F(Discovery, PortOnACoreBeyondTheReportedOnesStillCounts) {
  platform.coreCount = 0;
  platform.portCount = 1;
  platform.ports[0].rx.core = platform.ports[0].tx.core = 17;
  EXPECT_EQ(run("setAsicNum 0"),
            printed("current asicNum:0, coreCount:0, portCount:1\n", Calls{"GetSerDesInfo(0)"} + portCalls(0, 0)));
  EXPECT_EQ(serdesTopology.coreConfig[17].rxPortMask, 1u);
  EXPECT_EQ(serdesTopology.glCoreMask, 0x20000u);
}

TEST_F(Discovery, AsicWithoutPortsPrintsItsCoresOnly) {
  platform.portCount = 0;
  platform.coreCount = 1;
  EXPECT_EQ(run("setAsicNum 0"), printed(coreLines(0, 0, 0, 2) + "current asicNum:0, coreCount:1, portCount:0\n",
                                         {"GetSerDesInfo(0)", "GetSerDesInfo(0, 0)"}));
  EXPECT_EQ(serdesTopology.glPortList, 0u);
  EXPECT_EQ(serdesTopology.xgPortList, 0u);
  EXPECT_EQ(serdesTopology.exgPortList, 0u);
}

TEST_F(Discovery, SecondAsicIsAskedByItsNumber) {
  platform.coreCount = 1;
  platform.portCount = 1;
  EXPECT_EQ(run("setAsicNum 1"), printed(coreLines(1, 0, 0, 2) + "current asicNum:1, coreCount:1, portCount:1\n",
                                         {"GetSerDesInfo(1)", "GetSerDesInfo(1, 0)", "GetPortHwConfig(65535/1/0)",
                                          "GetSerDesInfo(1, 0, rx)", "GetSerDesInfo(1, 0, tx)"}));
  EXPECT_EQ(serdesTopology.asicNum, 1u);
}

TEST_F(Discovery, TwiceGivesTheSameModel) {
  EXPECT_EQ(run("setAsicNum 0").status, CMD_OK);
  const std::string once = modelBytes();
  EXPECT_EQ(run("setAsicNum 0"), wholeDiscovery());
  EXPECT_TRUE(modelBytes() == once);
  EXPECT_EQ(serdesTopology.serdesConfig[2].useCount, 12u);
}

TEST_F(Discovery, SmallerAsicLeavesNothingOfTheLargerOneBehind) {
  EXPECT_EQ(run("setAsicNum 0").status, CMD_OK);
  platform.portCount = 1;
  platform.coreCount = 1;
  EXPECT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(serdesTopology.portConfig[1].rx.linkCount, 0u);
  EXPECT_EQ(serdesTopology.portConfig[8].tx.coreId, 0u);
  EXPECT_EQ(serdesTopology.coreConfig[0].rxPortMask, 1u);
  EXPECT_EQ(serdesTopology.coreConfig[4].serDesType, 0u);
  EXPECT_EQ(serdesTopology.coreConfig[4].rxPortMask, 0u);
  EXPECT_EQ(serdesTopology.serdesConfig[2].useCount, 2u);
  EXPECT_EQ(serdesTopology.serdesConfig[3].useCount, 0u);
  EXPECT_EQ(serdesTopology.glPortList, 1u);
  EXPECT_EQ(serdesTopology.xgPortList, 0u);
  EXPECT_EQ(serdesTopology.exgPortList, 0u);
  EXPECT_EQ(serdesTopology.glCoreMask, 1u);
  EXPECT_EQ(serdesTopology.xgCoreMask, 0u);
  EXPECT_EQ(serdesTopology.exgCoreMask, 0u);
}

TEST_F(Discovery, HardwareRecordsOfPortsThatAreGoneAreKept) {
  EXPECT_EQ(run("setAsicNum 0").status, CMD_OK);
  platform.portCount = 1;
  EXPECT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(serdesTopology.portHwConfig[11].portId.userPort, 111u);
}

TEST_F(Discovery, PortWithoutPresenceIsInNoListAndIsStillReachedByNumber) {
  platform.ports[2].hwConfig.presence = 0;
  platform.ports[6].hwConfig.presence = platform.ports[7].hwConfig.presence = 0;
  EXPECT_EQ(run("setAsicNum 0").status, CMD_OK);
  EXPECT_EQ(serdesTopology.glPortList, 0x03Bu);
  EXPECT_EQ(serdesTopology.xgPortList, 0u);
  EXPECT_EQ(serdesTopology.xgCoreMask, 0u);
  EXPECT_EQ(serdesTopology.coreConfig[2].rxPortMask, 0x040u);
  EXPECT_EQ(run("setRate 4G xg"), done({}));
  EXPECT_EQ(run("setRate 4G 2"), done({"SetPortCfgSpeed(102/0/2, 3)"}));
}

TEST_F(Discovery, AnyPresenceButZeroCounts) {
  platform.ports[2].hwConfig.presence = 0x80000000;
  EXPECT_EQ(run("setAsicNum 0").status, CMD_OK);
  EXPECT_EQ(serdesTopology.glPortList, 0x03Fu);
}

TEST_F(Discovery, PortOfAnotherTypeIsInNoList) {
  platform.ports[0].hwConfig.portType = 0;
  platform.ports[1].hwConfig.portType = 4;
  platform.ports[2].hwConfig.portType = 0xFFFFFFFF;
  EXPECT_EQ(run("setAsicNum 0").status, CMD_OK);
  EXPECT_EQ(serdesTopology.glPortList, 0x038u);
  EXPECT_EQ(serdesTopology.xgPortList, 0x0C0u);
  EXPECT_EQ(serdesTopology.exgPortList, 0xF00u);
}

TEST_F(Discovery, AsicBeyondTheSwitchIsRefused) {
  serdesTopology.switchHwConfig.NumASICs = 1;
  EXPECT_EQ(run("setAsicNum 1"), refused(CMD_BAD_PARAM));
  serdesTopology.switchHwConfig.NumASICs = 0;
  EXPECT_EQ(run("setAsicNum 0"), refused(CMD_BAD_PARAM));
}

TEST_F(Discovery, AsicAboveOneIsRefusedOnAnySwitch) {
  serdesTopology.switchHwConfig.NumASICs = 0xFFFFFFFF;
  EXPECT_EQ(run("setAsicNum 2"), refused(CMD_BAD_PARAM));
  EXPECT_EQ(run("setAsicNum -1"), refused(CMD_BAD_PARAM));
  EXPECT_EQ(run("setAsicNum 0xFFFFFFFF"), refused(CMD_BAD_PARAM));
  EXPECT_EQ(run("setAsicNum 1").status, CMD_OK);
}

TEST_F(Discovery, RefusalLeavesTheModelAlone) {
  discover();
  const std::string before = modelBytes();
  EXPECT_EQ(run("setAsicNum 2"), refused(CMD_BAD_PARAM));
  EXPECT_EQ(run("setAsicNum x"), refused(CMD_BAD_PARAM));
  EXPECT_TRUE(modelBytes() == before);
}

TEST_F(Discovery, FailureToCountKeepsAsicAndCountsAndClearsTheRest) {
  discover();
  platform.fail("GetSerDesInfo", -5);
  platform.portCount = 3;
  EXPECT_EQ(run("setAsicNum 1"), failed("setAsicNumCmdHandler: serdes err -5\n", {"GetSerDesInfo(1)"}));
  EXPECT_EQ(serdesTopology.asicNum, 0u);
  EXPECT_EQ(serdesTopology.portCount, 12u);
  EXPECT_EQ(serdesTopology.coreCount, 6u);
  EXPECT_EQ(serdesTopology.glPortList, 0u);
  EXPECT_EQ(serdesTopology.xgPortList, 0u);
  EXPECT_EQ(serdesTopology.exgPortList, 0u);
  EXPECT_EQ(serdesTopology.glCoreMask, 0u);
  EXPECT_EQ(serdesTopology.xgCoreMask, 0u);
  EXPECT_EQ(serdesTopology.exgCoreMask, 0u);
  EXPECT_EQ(serdesTopology.portConfig[0].rx.linkCount, 0u);
  EXPECT_EQ(serdesTopology.coreConfig[0].txRegisterCount, 0u);
  EXPECT_EQ(serdesTopology.coreConfig[0].rxPortMask, 0u);
  EXPECT_EQ(serdesTopology.serdesConfig[2].useCount, 0u);
  EXPECT_EQ(serdesTopology.portHwConfig[5].portId.userPort, 105u);
}

TEST_F(Discovery, FailureHalfWayKeepsWhatWasStoredBefore) {
  platform.fail("GetPortHwConfig", -5, 3);
  EXPECT_EQ(run("setAsicNum 1").status, CMD_EXEC_ERROR);
  EXPECT_EQ(serdesTopology.asicNum, 1u);
  EXPECT_EQ(serdesTopology.portCount, 12u);
  EXPECT_EQ(serdesTopology.coreCount, 6u);
  EXPECT_EQ(serdesTopology.glPortList, 0x3u);
  EXPECT_EQ(serdesTopology.serdesConfig[2].useCount, 4u);
  EXPECT_EQ(serdesTopology.coreConfig[5].serDesType, 4u);
}

TEST_F(Discovery, FailureBetweenTheSidesOfAPortLeavesItInNoList) {
  platform.failCall(9 + 3, -5);  // after 1 + 6 calls for the cores: port 1, transmit
  EXPECT_EQ(run("setAsicNum 0").calls.back(), "GetSerDesInfo(0, 1, rx)");
  EXPECT_EQ(serdesTopology.glPortList, 0x1u);
  platform.failCall(10 + 3, -5);
  EXPECT_EQ(run("setAsicNum 0").calls.back(), "GetSerDesInfo(0, 1, tx)");
  EXPECT_EQ(serdesTopology.glPortList, 0x1u);
  EXPECT_EQ(serdesTopology.coreConfig[0].rxPortMask, 0x3u);
  EXPECT_EQ(serdesTopology.coreConfig[0].txPortMask, 0x1u);
  EXPECT_EQ(serdesTopology.serdesConfig[2].useCount, 3u);
}

TEST_F(Discovery, ReceiveCoreAbove17FailsInSilence) {
  platform.coreCount = 0;
  platform.ports[1].rx.core = 18;
  EXPECT_EQ(run("setAsicNum 0"), failed("", Calls{"GetSerDesInfo(0)"} + portCalls(0, 0) +
                                                Calls{"GetPortHwConfig(65535/0/1)", "GetSerDesInfo(0, 1, rx)"}));
  EXPECT_EQ(serdesTopology.portConfig[1].rx.linkCount, 0u);
  EXPECT_EQ(serdesTopology.serdesConfig[2].useCount, 2u);
}

TEST_F(Discovery, TransmitCoreAbove17FailsInSilence) {
  platform.coreCount = 0;
  platform.ports[1].tx.core = 0xFFFFFFFF;
  EXPECT_EQ(run("setAsicNum 0"), failed("", Calls{"GetSerDesInfo(0)"} + portCalls(0, 0) + portCalls(0, 1)));
  EXPECT_EQ(serdesTopology.portConfig[1].rx.linkCount, 1u);
  EXPECT_EQ(serdesTopology.portConfig[1].tx.linkCount, 0u);
}

TEST_F(Discovery, CoreIdIsTheModelsAndNotTheReportedLimit) {
  platform.coreCount = 1;
  platform.ports[0].tx.core = 17;
  EXPECT_EQ(run("setAsicNum 0").status, CMD_OK);
  EXPECT_EQ(serdesTopology.coreConfig[17].txPortMask, 1u);
}

TEST_F(Discovery, SerDesTypeBeyondTheTableIsKeptAndCountsNowhere) {
  platform.portCount = 2;
  platform.ports[0].rx.type = 7;
  platform.ports[0].tx.type = 250;
  platform.ports[1].rx.type = 0xFFFFFFFF;
  EXPECT_EQ(run("setAsicNum 0").status, CMD_OK);
  EXPECT_EQ(serdesTopology.portConfig[0].rx.serDesType, 7u);
  EXPECT_EQ(serdesTopology.portConfig[0].tx.serDesType, 250u);
  unsigned counted = 0;
  for (const SerdesConfig& type : serdesTopology.serdesConfig)
    counted += type.useCount;
  EXPECT_EQ(counted, 1u);
  EXPECT_EQ(serdesTopology.serdesConfig[2].useCount, 1u);
}

class DiscoveryOfTooMuch : public ToolTest, public testing::WithParamInterface<unsigned> {};

TEST_P(DiscoveryOfTooMuch, MorePortsAreCountedAndOnly24Walked) {
  platform.coreCount = 0;
  platform.portCount = GetParam();
  Calls calls = {"GetSerDesInfo(0)"};
  for (unsigned port = 0; port < 24; ++port)
    calls = calls + portCalls(0, port);
  EXPECT_EQ(run("setAsicNum 0"),
            printed("current asicNum:0, coreCount:0, portCount:" + std::to_string(static_cast<int>(GetParam())) + "\n",
                    calls));
  EXPECT_EQ(serdesTopology.portCount, GetParam());
  EXPECT_EQ(serdesTopology.exgPortList, 0xFFFF00u);
}

TEST_P(DiscoveryOfTooMuch, PortCountThatIsHeldFailsTheNextDiscoveryInSilence) {
  platform.coreCount = 0;
  platform.portCount = GetParam();
  EXPECT_EQ(run("setAsicNum 0").status, CMD_OK);
  platform.portCount = 1;
  // The model is cleared and keeps the count, so that there is no way back.
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(run("setAsicNum 1"), failed("", {"GetSerDesInfo(1)"}));
    EXPECT_EQ(serdesTopology.asicNum, 0u);
    EXPECT_EQ(serdesTopology.portCount, GetParam());
    EXPECT_EQ(serdesTopology.exgPortList, 0u);
  }
}

TEST_P(DiscoveryOfTooMuch, MoreCoresAreCountedAndOnly18Walked) {
  platform.portCount = 0;
  platform.coreCount = GetParam();
  Calls calls = {"GetSerDesInfo(0)"};
  for (unsigned core = 0; core < 18; ++core)
    calls.push_back("GetSerDesInfo(0, " + std::to_string(core) + ")");
  const Outcome outcome = run("setAsicNum 0");
  EXPECT_EQ(outcome.status, CMD_OK);
  EXPECT_EQ(outcome.calls, calls);
  EXPECT_EQ(outcome.out.substr(outcome.out.find("asicNum:0, coreNum:17,")),
            coreLines(0, 17, 68, 4) + "current asicNum:0, coreCount:" + std::to_string(static_cast<int>(GetParam())) +
                ", portCount:0\n");
  EXPECT_EQ(serdesTopology.coreCount, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Counts, DiscoveryOfTooMuch, testing::Values(25u, 30u, 40u, 0xFFFFFFFFu));

TEST_F(Discovery, FailureOfTheCountBeforeTheHeldCountIsTestedIsReported) {
  serdesTopology.portCount = 25;
  platform.fail("GetSerDesInfo", -5);
  EXPECT_EQ(run("setAsicNum 0"), failed("setAsicNumCmdHandler: serdes err -5\n", {"GetSerDesInfo(0)"}));
}

TEST_F(Discovery, FullSizeIsHeldWithoutHarm) {
  platform.portCount = 24;
  platform.coreCount = 18;
  EXPECT_EQ(run("setAsicNum 0").status, CMD_OK);
  EXPECT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(serdesTopology.exgPortList, 0xFFFF00u);
  EXPECT_EQ(serdesTopology.coreConfig[17].txParamCount, 7u);
}

}  // namespace
}  // namespace recording
