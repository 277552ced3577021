// What the built-in switch promises: a topology with all kinds of ports, links to learn on, and every example of the
// commands' help.
#include "simulator/calls/default_switch.h"

#include <gtest/gtest.h>

#include <set>

#include "simulator/switch/switch.h"

namespace simulator {
namespace {

class DefaultSwitch : public testing::Test {
 protected:
  DefaultSwitch() : sw(virtualSwitch()) {}

  // As it is built in, but with a clock that a test can follow.
  static SwitchDescription virtualSwitch() {
    SwitchDescription description = readDescription(kDefaultSwitchToml, "default.toml");
    description.clock = {.isVirtual = true, .step = 1'000'000};
    return description;
  }

  static port_id_t id(unsigned port, unsigned asic = 0) {
    return {.userPort = kNoUserPort,
            .asic = static_cast<std::uint16_t>(asic),
            .asicPort = static_cast<std::uint16_t>(port),
            .unused = {}};
  }
  void passSeconds(int seconds) {
    for (int i = 0; i < seconds; ++i)
      (void)sw.beginCall({});
  }
  Port_HW_Config_t config(unsigned port, unsigned asic = 0) {
    Port_HW_Config_t config;
    EXPECT_EQ(sw.getPortHwConfig(id(port, asic), &config), kOk);
    return config;
  }
  unsigned typeOf(unsigned port, unsigned asic = 0) {
    return sideOf(port, SERDES_LINK_RX, asic).type;
  }
  struct SideInfo {
    unsigned links = 0;
    unsigned type = 0;
    unsigned core = 0;
  };
  SideInfo sideOf(unsigned port, SerDesLinkType side, unsigned asic = 0) {
    SideInfo info;
    SerDesType type{};
    EXPECT_EQ(sw.getPortSideInfo(asic, port, side, &info.links, &type, &info.core), kOk);
    info.type = type;
    return info;
  }
  bool runs(unsigned port, unsigned asic = 0) {
    unsigned long value = 0;
    EXPECT_EQ(sw.getPortInfo(id(port, asic), PORT_INFO_STATE, &value), kOk);
    return value == kPortStateRunning;
  }
  unsigned speedOf(unsigned port) {
    unsigned speed = 0;
    EXPECT_EQ(sw.getRunningSpeed(id(port), &speed), kOk);
    return speed;
  }
  unsigned configuredOf(unsigned port) {
    unsigned speed = 0;
    EXPECT_EQ(sw.getConfiguredSpeed(id(port), &speed), kOk);
    return speed;
  }
  // Decode errors in a second from now on.
  std::uint64_t errorsInASecond(unsigned port) {
    drv_counters_t counters;
    EXPECT_EQ(sw.clearCounters(id(port)), kOk);
    passSeconds(1);
    EXPECT_EQ(sw.getCounters(id(port), &counters), kOk);
    return (std::uint64_t{counters.decodeErrors.high} << 32) | counters.decodeErrors.low;
  }
  // The receive link's error rate is below `decades` decimal places, or the link is down.
  int decadesOf(unsigned port) {
    int status = 0;
    EXPECT_EQ(sw.setTestOption(0, port, 0, kTestMargin, 1), kOk);
    EXPECT_EQ(sw.getTestStatus(0, port, 0, kTestMargin, &status), kOk);
    return status;
  }
  int setTx(unsigned port, const FfeSettings& ffe, SerDesTxSlewRate slew) {
    const int code = sw.setTxFfe(0, port, -1, ffe);
    return code != kOk ? code : sw.setTxSlew(0, port, -1, true, slew);
  }
  int setRx(unsigned port, SerDesRxDFEMode mode, const VgaSettings& vga) {
    const int code = sw.setRxDfe(0, port, -1, mode);
    return code != kOk ? code : sw.setRxVga(0, port, -1, vga);
  }

  Switch sw;
};

constexpr FfeSettings kHelpFfe = {.mode = FFE_3, .k = 115, .c = {-4, 55, -25, 0}};

TEST_F(DefaultSwitch, HasTwoAsics) {
  Switch_HW_Config_t config;
  ASSERT_EQ(sw.getSwitchConfig(&config), kOk);
  EXPECT_EQ(config.NumASICs, 2U);
  unsigned ports = 0;
  unsigned cores = 0;
  ASSERT_EQ(sw.getAsicInfo(0, &ports, &cores), kOk);
  EXPECT_EQ(ports, 24U);
  EXPECT_GE(cores, 10U);
  ASSERT_EQ(sw.getAsicInfo(1, &ports, &cores), kOk);
  EXPECT_EQ(ports, 12U);
}

TEST_F(DefaultSwitch, FirstAsicHasPortsOfAllKindsInTheirPlaces) {
  for (unsigned port = 0; port < 16; ++port) {
    EXPECT_EQ(config(port).portType, kPortTypeGl) << port;
    EXPECT_EQ(sideOf(port, SERDES_LINK_RX).core, port / 4) << port;
    EXPECT_EQ(sideOf(port, SERDES_LINK_TX).core, port / 4) << port;
    EXPECT_EQ(sideOf(port, SERDES_LINK_TX).links, 1U) << port;
    EXPECT_EQ(typeOf(port), port < 8 ? 2U : 5U) << port;
  }
  std::set<unsigned> cores;
  for (unsigned port = 16; port < 20; ++port) {
    EXPECT_EQ(config(port).portType, kPortTypeXg) << port;
    EXPECT_EQ(sideOf(port, SERDES_LINK_RX).links, 4U) << port;
    EXPECT_EQ(typeOf(port), 3U) << port;
    cores.insert(sideOf(port, SERDES_LINK_RX).core);
  }
  EXPECT_EQ(cores.size(), 4U);
  int withoutUserPort = 0;
  for (unsigned port = 20; port < 24; ++port) {
    EXPECT_EQ(config(port).portType, kPortTypeExg) << port;
    EXPECT_EQ(sideOf(port, SERDES_LINK_RX).links, 1U) << port;
    EXPECT_NE(sideOf(port, SERDES_LINK_RX).core, sideOf(port, SERDES_LINK_TX).core) << port;
    withoutUserPort += config(port).portId.userPort == kNoUserPort ? 1 : 0;
  }
  EXPECT_EQ(withoutUserPort, 2);
}

TEST_F(DefaultSwitch, SecondAsicHasAllKindsAnAbsentPortAndOneWithoutLinks) {
  std::set<unsigned> kinds;
  int absent = 0;
  int withoutLinks = 0;
  for (unsigned port = 0; port < 12; ++port) {
    kinds.insert(config(port, 1).portType);
    absent += config(port, 1).presence == 0 ? 1 : 0;
    withoutLinks += sideOf(port, SERDES_LINK_TX, 1).links == 0 ? 1 : 0;
  }
  EXPECT_EQ(kinds, (std::set<unsigned>{kPortTypeGl, kPortTypeXg, kPortTypeExg}));
  EXPECT_EQ(absent, 1);
  EXPECT_EQ(withoutLinks, 1);
}

TEST_F(DefaultSwitch, EveryUserPortBelongsToOnePort) {
  std::set<unsigned> seen;
  for (unsigned asic = 0; asic < 2; ++asic) {
    for (unsigned port = 0; port < (asic == 0 ? 24U : 12U); ++port) {
      const unsigned userPort = config(port, asic).portId.userPort;
      EXPECT_TRUE(userPort == kNoUserPort || seen.insert(userPort).second) << userPort;
    }
  }
}

TEST_F(DefaultSwitch, SomePortsRunAt8GSomeAt10GSomeFindTheirSpeed) {
  EXPECT_TRUE(runs(0));
  EXPECT_EQ(configuredOf(0), SPEED_8G);
  EXPECT_TRUE(runs(4));
  EXPECT_TRUE(runs(5));
  EXPECT_EQ(speedOf(5), SPEED_10G);
  for (const unsigned port : {3U, 6U, 7U}) {
    EXPECT_TRUE(runs(port)) << port;
    EXPECT_EQ(configuredOf(port), SPEED_AUTO) << port;
    EXPECT_EQ(speedOf(port), SPEED_8G) << port;
  }
  EXPECT_TRUE(runs(14));
  EXPECT_EQ(speedOf(14), SPEED_4G);
  for (const unsigned port : {16U, 17U, 18U, 20U, 21U})
    EXPECT_TRUE(runs(port)) << port;
}

TEST_F(DefaultSwitch, SomePortsAreDown) {
  for (const unsigned port : {9U, 11U, 12U, 22U}) {
    EXPECT_FALSE(runs(port)) << port;
    EXPECT_EQ(configuredOf(port), SPEED_AUTO) << port;
    EXPECT_EQ(speedOf(port), SPEED_INVALID) << port;
  }
  EXPECT_FALSE(runs(19));
  MediaHwFcXmtrType media{};
  ASSERT_EQ(sw.getMedia(id(12), &media), kOk);
  EXPECT_EQ(media, MEDIA_NONE);
}

TEST_F(DefaultSwitch, PortsThatNeedNoTuningHaveNoErrors) {
  for (const unsigned port : {0U, 3U, 4U, 5U, 6U, 7U, 14U, 16U, 17U, 18U, 20U, 21U}) {
    EXPECT_EQ(errorsInASecond(port), 0U) << port;
  }
}

TEST_F(DefaultSwitch, TuningTheTransmitterOfPort2EndsThousandsOfErrors) {
  EXPECT_GT(errorsInASecond(2), 1000U);
  ASSERT_EQ(setTx(2, kHelpFfe, SLEW_36PS), kOk);
  EXPECT_EQ(errorsInASecond(2), 0U);
}

TEST_F(DefaultSwitch, TuningTheReceiversOfPorts1And8EndsThousandsOfErrors) {
  for (const unsigned port : {1U, 8U}) {
    EXPECT_GT(errorsInASecond(port), 1000U) << port;
    ASSERT_EQ(setRx(port, DFE_5, {.pole = 6, .peak = 4, .amax = 0x4e}), kOk);
    EXPECT_EQ(errorsInASecond(port), 0U) << port;
  }
}

TEST_F(DefaultSwitch, Port13IsTunedBadlyAndCanBeTunedWell) {
  EXPECT_GT(errorsInASecond(13), 1000U);
  ASSERT_EQ(setTx(13, {.mode = FFE_3, .k = 115, .c = {-2, 58, -10, 0}}, SLEW_36PS), kOk);
  EXPECT_EQ(errorsInASecond(13), 0U);
}

// Of all settings of c2 and k, by their errors alone: a link without lock has more than any that locks.
TEST_F(DefaultSwitch, ASweepThatLooksAtErrorsAloneNeverPrefersADeadSetting) {
  int dead = 0;
  for (const unsigned port : {1U, 2U, 3U, 8U, 10U, 13U}) {
    std::uint64_t mostOfTheLiving = 0;
    std::uint64_t leastOfTheDead = UINT64_MAX;
    for (const int k : {0, 1, 5, 20, 60, 115, 180, 255}) {
      for (int c2 = 0; c2 >= -42; c2 -= 6) {
        ASSERT_EQ(setTx(port, {.mode = FFE_3, .k = k, .c = {-4, 54, c2, 0}}, SLEW_36PS), kOk);
        const std::uint64_t errors = errorsInASecond(port);
        if (runs(port)) {
          mostOfTheLiving = std::max(mostOfTheLiving, errors);
        } else {
          leastOfTheDead = std::min(leastOfTheDead, errors);
          ++dead;
        }
      }
    }
    EXPECT_LT(mostOfTheLiving, leastOfTheDead) << port;
  }
  EXPECT_GT(dead, 50);
}

TEST_F(DefaultSwitch, PortsWithASignalAndNoLockCountCodeViolations) {
  for (const unsigned port : {10U, 19U}) {
    EXPECT_FALSE(runs(port));
    EXPECT_GT(errorsInASecond(port), 70'000'000U) << port;
  }
}

TEST_F(DefaultSwitch, NoSettingRescuesPort10) {
  int best = 0;
  for (const int c2 : {0, -10, -18, -25, -32}) {
    for (const int c0 : {0, -5, -10}) {
      for (const int peak : {0, 4, 7}) {
        ASSERT_EQ(setTx(10, {.mode = FFE_4, .k = 255, .c = {c0, 55, c2, -2}}, SLEW_24PS), kOk);
        ASSERT_EQ(setRx(10, DFE_5, {.pole = 7, .peak = peak, .amax = 0x4e}), kOk);
        best = std::max(best, decadesOf(10));
      }
    }
  }
  EXPECT_LE(best, 5);  // a hundred thousand errors a second at the very best
  EXPECT_GE(best, 4);
}

TEST_F(DefaultSwitch, EthernetCacheOfTheHelpTakesTheErrorsFromPort23) {
  EXPECT_GT(errorsInASecond(23), 10U);
  ASSERT_EQ(sw.setTxRateParams(0, 23, SPEED_10G, {6, SLEW_UNKNOWN, 0, 5, 0, 0, 0}), kOk);
  ASSERT_EQ(sw.setPortSpeed(id(23), SPEED_10G), kOk);
  EXPECT_EQ(errorsInASecond(23), 0U);
}

TEST_F(DefaultSwitch, HelpExamplesOfTheLiveSettingsWork) {
  for (unsigned port = 0; port < 16; ++port) {
    EXPECT_EQ(setTx(port, kHelpFfe, SLEW_36PS), kOk) << port;
    EXPECT_EQ(setRx(port, DFE_5, {.pole = 6, .peak = 4, .amax = 0x4e}), kOk) << port;
    FfeSettings ffe{};
    EXPECT_EQ(sw.getTxFfe(0, port, 0, &ffe), kOk) << port;
    EXPECT_EQ(ffe.c, kHelpFfe.c) << port;
  }
  SerDesRxDFEState state{};
  state.mode = DFE_3;
  for (std::size_t i = 1; i < kDfeTapCount; i += 2)
    state.h[i] = 1;
  EXPECT_EQ(sw.setRxDfeState(0, 4, 0, &state), kOk);
}

TEST_F(DefaultSwitch, HelpExamplesOfTheCachesWork) {
  for (unsigned port = 0; port < 16; ++port) {
    const SerDesTxRateParams raw{0, 2, 115, -4, 55, -25, 0};
    EXPECT_EQ(sw.setTxRateParams(0, port, SPEED_8G, raw), kOk);
    EXPECT_EQ(sw.setRxRateParams(0, port, SPEED_8G, {DFE_5, 7, 0, 0x4e, 0}), kOk);
    EXPECT_EQ(sw.setPortSpeed(id(port), SPEED_4G), kOk) << port;
    EXPECT_EQ(configuredOf(port), SPEED_4G);
  }
  for (unsigned port = 20; port < 24; ++port) {
    EXPECT_EQ(sw.setTxRateParams(0, port, SPEED_10G, {6, SLEW_UNKNOWN, 0, 5, 0, 0, 0}), kOk);
    EXPECT_EQ(sw.setRxRateParams(0, port, SPEED_10G, {2, 1, 0, 0, 0}), kOk);
  }
}

TEST_F(DefaultSwitch, HelpExamplesOfTheRegistersWork) {
  unsigned short value = 0;
  ASSERT_EQ(sw.writePllRegister(0, 1, 7, 0xff), kOk);
  ASSERT_EQ(sw.readPllRegisters(0, 1, 7, &value, 1), kOk);
  EXPECT_EQ(value, 0xff);
  EXPECT_TRUE(runs(4));
  ASSERT_EQ(sw.writeLinkRegister(0, 4, 0, SERDES_LINK_TX, 3, 0x1c), kOk);
  ASSERT_EQ(sw.readLinkRegisters(0, 4, 0, SERDES_LINK_TX, 3, &value, 1), kOk);
  EXPECT_EQ(value, 0x1c);
  ASSERT_EQ(sw.writeLinkRegister(0, 4, 0, SERDES_LINK_RX, 3, 0x1d), kOk);
  ASSERT_EQ(sw.readLinkRegisters(0, 4, 0, SERDES_LINK_RX, 3, &value, 1), kOk);
  EXPECT_EQ(value, 0x1d);
}

TEST_F(DefaultSwitch, HelpExamplesOfTheTestsWork) {
  int status = 0;
  ASSERT_EQ(sw.setTestOption(0, 4, 0, 0, 1), kOk);
  ASSERT_EQ(sw.getTestStatus(0, 4, 0, 0, &status), kOk);
  EXPECT_EQ(status, 1);
  // What the maintenance option 100 asks of the first twenty ports.
  for (unsigned port = 0; port < 20; ++port)
    EXPECT_EQ(sw.setTestOption(0, port, -1, 2, 0), kOk) << port;
}

TEST_F(DefaultSwitch, DisablingStreamsAsInTheHelpTakesThosePortsDown) {
  for (const unsigned port : {4U, 6U, 8U, 10U})
    EXPECT_EQ(sw.setStream(id(port), false), kOk);
  EXPECT_FALSE(runs(4));
  EXPECT_FALSE(runs(7));
  EXPECT_TRUE(runs(5));
}

TEST_F(DefaultSwitch, NamesOfTypesFitTheTables) {
  for (std::uint32_t type = 0; type < kSerDesTypes; ++type) {
    const std::string name = sw.typeName(static_cast<SerDesType>(type));
    EXPECT_FALSE(name.empty());
    EXPECT_LE(name.size(), kMaxTypeName);
  }
}

}  // namespace
}  // namespace simulator
