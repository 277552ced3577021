// A platform that says success and hands back nothing: the tool shows zeros, or that it does not know.
#include <gtest/gtest.h>

#include "shell/session.h"
#include "tests/support/tool_test.h"
#include "topology/serdes_topology.h"

namespace {

using recording::platform;
using recording::run;

class SilentPlatform : public recording::TopologyTest {
 protected:
  void SetUp() override {
    TopologyTest::SetUp();
    platform.silent = true;
  }

  // What a show command prints under its header.
  static std::string rowsOf(const std::string& command) {
    const std::string out = run(command).out;
    const std::string rule = "=================== ==== \n";
    return out.substr(out.rfind(rule) + rule.size());
  }
};

TEST_F(SilentPlatform, HasNoPortsAndNoCores) {
  const auto outcome = run("setAsicNum 0");
  EXPECT_EQ(outcome.status, CMD_OK);
  EXPECT_EQ(outcome.out, "current asicNum:0, coreCount:0, portCount:0\n");
}

TEST_F(SilentPlatform, HasCoresAndPortsOfTypeZeroWithoutLinks) {
  // The first two answers are given, so that there is something to ask about.
  platform.silent = false;
  platform.portCount = 1;
  platform.coreCount = 1;
  platform.corrupt = [](std::span<std::byte>) { platform.silent = true; };
  const auto outcome = run("setAsicNum 0");
  EXPECT_EQ(outcome.status, CMD_OK);
  EXPECT_EQ(outcome.out,
            "asicNum:0, coreNum:0, firstPort:0, serDesType:0:\n"
            "pllRegisterCount:0, rxRegisterCount:0, txRegisterCount:0\n"
            "rxParamCount:0, txParamCount:0\n"
            "current asicNum:0, coreCount:1, portCount:1\n");
  EXPECT_EQ(serdesTopology.portConfig[0].rx.linkCount, 0u);
  EXPECT_EQ(serdesTopology.portConfig[0].tx.coreId, 0u);
  EXPECT_EQ(serdesTopology.serdesConfig[0].useCount, 2u);
}

TEST_F(SilentPlatform, GivesPortsWithoutAKnownRateOrMedium) {
  EXPECT_EQ(run("showRate 0").out,
            "\nshow rate           \n=================== ==== \nASIC port              0 \nuser port            100 \n"
            "link num               0 \nrunning rate         INV\nmedia type           UNK\n"
            "=================== ==== \n\nconfig rate (gb/s)  AUTO\nstream enable         no\n");
  EXPECT_EQ(run("showTxParams 0").calls.size(), 5u);  // FFE, slew, state, configured speed, media; no running speed
}

TEST_F(SilentPlatform, GivesRegistersOfZero) {
  EXPECT_EQ(run("readRx 4 0 3").out, "Port 4 (user port 104), link 0 at Rx address 0x03= 0x0000 \n");
  EXPECT_EQ(run("readPLL 1 7").out, "Core ID 1 at PLL address 0x07= 0x0000 \n");
  EXPECT_EQ(run("getTest 4 0 0").out, "status: 0\n");
}

TEST_F(SilentPlatform, GivesSettingsAndStatisticsOfZero) {
  EXPECT_EQ(rowsOf("showFFE 0"),
            "ffe mode            FFENone \nk (power)              0 \nc0 (precursor)         0 \n"
            "c1 (main)              0 \nc2 (postcursor)        0 \nc3 (postcursor)        0 \n");
  EXPECT_EQ(rowsOf("showSlew 0"), "\nslew rate (ps)        24\n");
  EXPECT_EQ(rowsOf("showVGA 0"), "pole                   0 \npeak                   0 \namax                0x00 \n");
  EXPECT_EQ(rowsOf("showRxParamsRaw asic 8G 0"),
            "Mode                   0 \nP0                     0 \nP1                     0 \n"
            "P2                     0 \nP3                     0 \n");
  const std::string stats = rowsOf("showDFEStats 0");
  EXPECT_NE(stats.find("Ap                     0 \n"), std::string::npos) << stats;
  EXPECT_NE(stats.find("CRC Errors             0 \n\n"), std::string::npos) << stats;
}

TEST_F(SilentPlatform, LoadsZerosAsTheDfeState) {
  EXPECT_EQ(run("runTest 4 0 101 0").calls.back(), "SetSerDesRxDFEState(0, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)");
}

class TypeBeyondTheModel : public recording::ToolTest {};

TEST_F(TypeBeyondTheModel, IsCountedNowhere) {
  for (auto& port : platform.ports)
    port.rx.type = port.tx.type = 7;
  // What lies behind the counts in the model.
  discover();
  for (const SerdesConfig& config : serdesTopology.serdesConfig)
    EXPECT_EQ(config.useCount, 0u);
  EXPECT_EQ(serdesTopology.glCoreMask, 0x3u);
}

}  // namespace
