// Reading the topology back.
#include "serdesctl/tables/config_text.h"

#include <gtest/gtest.h>

#include <string>

#include "serdesctl/base/errors.h"

namespace serdesctl {
namespace {

const std::string kStart =
    "switchHwConfig.NumSlots:-1\nswitchHwConfig.NumUserPorts:2147483647\nswitchHwConfig.NumAuxPorts:0\n"
    "switchHwConfig.NumASICs:2\n"
    "asicNum:0, coreNum:0, firstPort:65535, serDesType:2:\npllRegisterCount:12, rxRegisterCount:-1, "
    "txRegisterCount:16\n"
    "rxParamCount:5, txParamCount:7\n"
    "current asicNum:0, coreCount:1, portCount:25\n";

const std::string kConfig =
    "current asicNum:1, coreCount:2, portCount:3\n\nportConfig:\n"
    "portNum 0  : RX(linkCount:1, SERDES, coreId:0) TX(linkCount:1, SERDES, coreId:0)\n"
    "portNum 1  : RX(linkCount:9, a, coreId:4, coreId:0) TX(linkCount:0,  , coreId:1)\n"
    "portNum 2  : RX(linkCount:1, , coreId:17) TX(linkCount:1, , coreId:17)\n"
    "\ncoreConfig:\n"
    "coreId 0  : SERDES              P0_TX_RX(8) P1_RX(N/A) \n"
    "coreId 1  : a name of more than 19 P1_TX(N/A) \n"
    "\nserdesConfig:\n useCount:0\nSERDES useCount:3\n  useCount:1\nx useCount:2 useCount:0\nUNK useCount:0\n"
    "%s%n useCount:0\na, coreId:4 useCount:1\n"
    "\nglPortList: 0x00000001\n\nxgPortList: 0x00000002\n\nexgPortList: 0x80000000\n";

TEST(ConfigText, StartIsReadWhole) {
  const StartText start = parseStart(kStart);
  EXPECT_EQ(start.hardware.slots, -1);
  EXPECT_EQ(start.hardware.userPorts, 2147483647);
  EXPECT_EQ(start.hardware.asics, 2U);
  ASSERT_EQ(start.discovery.cores.size(), 1U);
  EXPECT_EQ(start.discovery.cores[0].firstPort, 65535);
  EXPECT_EQ(start.discovery.cores[0].rxRegisters, 4294967295U);
  EXPECT_EQ(start.discovery.cores[0].txParams, 7U);
  EXPECT_EQ(start.discovery.portCount, 25U);
}

TEST(ConfigText, ConfigurationIsReadWhole) {
  const ConfigText config = parseConfig(kConfig);
  EXPECT_EQ(config.asic, 1U);
  ASSERT_EQ(config.ports.size(), 3U);
  EXPECT_EQ(config.ports[0].userPort, 8U);
  EXPECT_EQ(config.ports[1].rx.links, 9U);
  EXPECT_EQ(config.ports[1].rx.serDesType, "a, coreId:4");
  EXPECT_EQ(config.ports[1].tx.serDesType, " ");
  EXPECT_EQ(config.ports[1].userPort, std::nullopt);
  EXPECT_EQ(config.ports[2].rx.serDesType, "");
  EXPECT_EQ(config.ports[2].tx.core, 17U);
  ASSERT_EQ(config.cores.size(), 2U);
  EXPECT_EQ(config.cores[0].serDesType, "SERDES");
  EXPECT_EQ(config.cores[0].rxPorts, 3U);
  EXPECT_EQ(config.cores[0].txPorts, 1U);
  EXPECT_EQ(config.cores[1].serDesType, "a name of more than 19");
  ASSERT_EQ(config.types.size(), 7U);
  EXPECT_EQ(config.types[0].name, "");
  EXPECT_EQ(config.types[3].name, "x useCount:2");
  EXPECT_EQ(config.exgPorts, 0x80000000U);
}

template <typename Parse>
void expectEveryCutAndEveryExtraCharacterRefused(const std::string& text, Parse parse) {
  for (std::size_t length = 0; length < text.size(); ++length)
    EXPECT_THROW((void)parse(text.substr(0, length)), AnswerError) << length;
  EXPECT_THROW((void)parse(text + "\n"), AnswerError);
  EXPECT_THROW((void)parse("\n" + text), AnswerError);
}

TEST(ConfigText, NothingMayBeMissingOrLeftOver) {
  expectEveryCutAndEveryExtraCharacterRefused(kStart, parseStart);
  expectEveryCutAndEveryExtraCharacterRefused(kConfig, parseConfig);
}

}  // namespace
}  // namespace serdesctl
