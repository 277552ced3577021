#include "tests/unit/simulator/switch/switch_bench.h"

namespace simulator {
namespace {

using Discovery = SwitchTest;

TEST_F(Discovery, TellsPortsCoresAndUserPorts) {
  Switch_HW_Config_t config;
  config.reserved.fill(0xaa);
  ASSERT_EQ(sw.getSwitchConfig(&config), kOk);
  EXPECT_EQ(config.reserved, decltype(config.reserved){});
  EXPECT_EQ(config.NumSlots, 1);
  EXPECT_EQ(config.NumUserPorts, 7);
  EXPECT_EQ(config.NumAuxPorts, 0);
  EXPECT_EQ(config.NumASICs, 1U);
  unsigned ports = 0;
  unsigned cores = 0;
  ASSERT_EQ(sw.getAsicInfo(0, &ports, &cores), kOk);
  EXPECT_EQ(ports, 9U);
  EXPECT_EQ(cores, 5U);
  EXPECT_EQ(sw.getAsicInfo(1, &ports, &cores), kBadAsic);
}

TEST_F(Discovery, TellsACore) {
  unsigned short firstPort = 0;
  SerDesType type{};
  std::array<unsigned, 5> counts{};
  const std::array<unsigned*, 5> places = {&counts[0], &counts[1], &counts[2], &counts[3], &counts[4]};
  ASSERT_EQ(sw.getCoreInfo(0, 2, &firstPort, &type, places), kOk);
  EXPECT_EQ(firstPort, 6);
  EXPECT_EQ(type, 3U);
  EXPECT_EQ(counts, (std::array<unsigned, 5>{10, 18, 12, 5, 7}));
  EXPECT_EQ(sw.getCoreInfo(0, 5, &firstPort, &type, places), kBadCore);
  EXPECT_EQ(sw.getCoreInfo(7, 0, &firstPort, &type, places), kBadAsic);
}

TEST_F(Discovery, TellsTheSidesOfAPort) {
  unsigned links = 0;
  SerDesType type{};
  unsigned core = 0;
  ASSERT_EQ(sw.getPortSideInfo(0, 7, SERDES_LINK_TX, &links, &type, &core), kOk);
  EXPECT_EQ(links, 1U);
  EXPECT_EQ(type, 4U);
  EXPECT_EQ(core, 4U);
  ASSERT_EQ(sw.getPortSideInfo(0, 7, SERDES_LINK_RX, &links, &type, &core), kOk);
  EXPECT_EQ(core, 3U);
  ASSERT_EQ(sw.getPortSideInfo(0, 6, SERDES_LINK_RX, &links, &type, &core), kOk);
  EXPECT_EQ(links, 4U);
  EXPECT_EQ(sw.getPortSideInfo(0, 9, SERDES_LINK_RX, &links, &type, &core), kBadPort);
  EXPECT_EQ(sw.getPortSideInfo(0, 6, static_cast<SerDesLinkType>(2), &links, &type, &core), kOutOfRange);
}

TEST_F(Discovery, TellsWhatAPortIs) {
  Port_HW_Config_t config;
  config.rest.fill(0xaa);
  ASSERT_EQ(sw.getPortHwConfig(id(6), &config), kOk);
  EXPECT_EQ(config.rest, decltype(config.rest){});
  EXPECT_EQ(config.portId.userPort, 46);
  EXPECT_EQ(config.portId.asic, 0);
  EXPECT_EQ(config.portId.asicPort, 6);
  EXPECT_NE(config.presence, 0U);
  EXPECT_EQ(config.portType, kPortTypeXg);
  ASSERT_EQ(sw.getPortHwConfig(id(5), &config), kOk);
  EXPECT_EQ(config.portId.userPort, kNoUserPort);
}

TEST_F(Discovery, APortGoesByItsOwnUserPortOrByNone) {
  Port_HW_Config_t config;
  port_id_t port = id(2);
  port.userPort = 42;
  EXPECT_EQ(sw.getPortHwConfig(port, &config), kOk);
  port.userPort = 43;
  EXPECT_EQ(sw.getPortHwConfig(port, &config), kBadPort);
  port = id(9);
  EXPECT_EQ(sw.getPortHwConfig(port, &config), kBadPort);
  port = id(0);
  port.asic = 1;
  EXPECT_EQ(sw.getPortHwConfig(port, &config), kBadAsic);
}

TEST_F(Discovery, TellsTheNamesOfTheSevenTypes) {
  EXPECT_STREQ(sw.typeName(static_cast<SerDesType>(2)), "SERDES_11G");
  EXPECT_STREQ(sw.typeName(static_cast<SerDesType>(6)), "SERDES_1GE");
  EXPECT_STREQ(sw.typeName(static_cast<SerDesType>(7)), kUnknownType);
  EXPECT_STREQ(sw.typeName(static_cast<SerDesType>(0xffffffff)), kUnknownType);
}

TEST_F(Discovery, BuildingTheSwitchWorksOutNoLink) {
  EXPECT_EQ(sw.evaluations(), 0U);
}

class AbsentPort : public SwitchTest {
 protected:
  AbsentPort() : SwitchTest("[[asics.ports]]\nports = 1\npresent = false\n") {}
};

TEST_F(AbsentPort, HasNoPresence) {
  Port_HW_Config_t config;
  ASSERT_EQ(sw.getPortHwConfig(id(1), &config), kOk);
  EXPECT_EQ(config.presence, 0U);
}

}  // namespace
}  // namespace simulator
