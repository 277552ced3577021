// The two platform classes as the tool sees them: opening, refusals, environment, absurd arguments.
#include <climits>

#include "tests/unit/simulator/calls/platform_bench.h"

namespace simulator {
namespace {

TEST_F(Platform, EveryOperationSucceedsWithGoodArguments) {
  open();
  for (const OperationInfo& info : allOperations()) {
    if (opensOrCloses(info.operation)) continue;
    EXPECT_GE(call(info.operation, good(info.operation)), 0) << info.name;
  }
}

TEST_F(Platform, NothingButOpeningAndNamingWorksUntilItIsOpen) {
  for (const OperationInfo& info : allOperations()) {
    if (info.operation == Operation::kAsicCtlOpen || info.operation == Operation::kPortCtlOpen) continue;
    const int expected = info.operation == Operation::kToString ? 1 : kNotOpen;
    EXPECT_EQ(call(info.operation, good(info.operation)), expected) << info.name;
  }
}

TEST_F(Platform, EachClassOpensAndClosesForItself) {
  describe(kSmall);
  unsigned speed = 0;
  Switch_HW_Config_t config;
  ASSERT_EQ(PortControl::PortCtlOpen(), kOk);
  EXPECT_EQ(PortControl::GetPortCfgSpeed(id(0), &speed), kOk);
  EXPECT_EQ(AsicControl::GetSwitchConfig(&config), kNotOpen);
  ASSERT_EQ(AsicControl::AsicCtlOpen(), kOk);
  EXPECT_EQ(AsicControl::GetSwitchConfig(&config), kOk);
  ASSERT_EQ(PortControl::PortCtlClose(), kOk);
  EXPECT_EQ(PortControl::GetPortCfgSpeed(id(0), &speed), kNotOpen);
  EXPECT_EQ(AsicControl::GetSwitchConfig(&config), kOk);
  EXPECT_EQ(PortControl::PortCtlClose(), kNotOpen);
}

TEST_F(Platform, BothClassesWorkOnOneSwitchThatGoesWithTheLast) {
  open();
  SerDesRxDFEMode mode{};
  ASSERT_EQ(AsicControl::SetSerDesRxDFE(0, 0, -1, DFE_1), kOk);
  ASSERT_EQ(PortControl::SetPortCfgSpeed(id(0), SPEED_8G), kOk);
  ASSERT_EQ(AsicControl::GetSerDesRxDFE(0, 0, 0, &mode), kOk);
  EXPECT_EQ(mode, DFE_3);  // the cache's
  ASSERT_EQ(AsicControl::SetSerDesRxDFE(0, 0, -1, DFE_1), kOk);
  ASSERT_EQ(AsicControl::AsicCtlClose(), kOk);
  ASSERT_EQ(AsicControl::AsicCtlOpen(), kOk);
  ASSERT_EQ(AsicControl::GetSerDesRxDFE(0, 0, 0, &mode), kOk);
  EXPECT_EQ(mode, DFE_1);
  ASSERT_EQ(AsicControl::AsicCtlClose(), kOk);
  ASSERT_EQ(PortControl::PortCtlClose(), kOk);
  ASSERT_EQ(AsicControl::AsicCtlOpen(), kOk);
  ASSERT_EQ(AsicControl::GetSerDesRxDFE(0, 0, 0, &mode), kOk);
  EXPECT_EQ(mode, DFE_3);
}

TEST_F(Platform, OpeningTwiceIsAsOpeningOnce) {
  open();
  EXPECT_EQ(AsicControl::AsicCtlOpen(), kOk);
  EXPECT_EQ(AsicControl::AsicCtlClose(), kOk);
  EXPECT_EQ(AsicControl::AsicCtlClose(), kNotOpen);
}

TEST_F(Platform, EveryOperationRefusesAPlaceThatIsNotThere) {
  open();
  for (const OperationInfo& info : allOperations()) {
    const auto code = [&](const Ask& place) {
      Ask ask = good(info.operation);
      ask.asic = place.asic;
      ask.port = place.port;
      ask.link = place.link;
      ask.core = place.core;
      return call(info.operation, ask);
    };
    const Addressed named = info.addressed;
    EXPECT_TRUE(!named.asic || code({.asic = 1}) == kBadAsic) << info.name;
    EXPECT_TRUE(!named.port || code({.port = 2}) == kBadPort) << info.name;
    EXPECT_TRUE(!named.link || code({.link = 1}) == kBadLink) << info.name;
    EXPECT_TRUE(!named.core || code({.core = 1}) == kBadCore) << info.name;
  }
}

TEST_F(Platform, NullPointersAreRefused) {
  open();
  for (const OperationInfo& info : allOperations()) {
    if (info.outputs.empty() || info.operation == Operation::kToString) continue;
    Ask ask = good(info.operation);
    ask.nulls = true;
    EXPECT_EQ(call(info.operation, ask), kBadArgument) << info.name;
  }
  EXPECT_EQ(AsicControl::SetSerDesRxDFEState(0, 0, 0, nullptr), kBadArgument);
}

TEST_F(Platform, ASingleNullPointerIsRefusedAndNothingIsAnswered) {
  open();
  unsigned count = 77;
  unsigned short first = 77;
  auto type = static_cast<SerDesType>(77);
  EXPECT_EQ(AsicControl::GetSerDesInfo(0, &count, nullptr), kBadArgument);
  EXPECT_EQ(AsicControl::GetSerDesInfo(0, nullptr, &count), kBadArgument);
  EXPECT_EQ(AsicControl::GetSerDesInfo(0, 0, nullptr, &type, &count, &count, &count, &count, &count), kBadArgument);
  EXPECT_EQ(AsicControl::GetSerDesInfo(0, 0, &first, nullptr, &count, &count, &count, &count, &count), kBadArgument);
  EXPECT_EQ(AsicControl::GetSerDesInfo(0, 0, &first, &type, &count, &count, &count, &count, nullptr), kBadArgument);
  EXPECT_EQ(AsicControl::GetSerDesInfo(0, 0, SERDES_LINK_RX, nullptr, &type, &count), kBadArgument);
  EXPECT_EQ(AsicControl::GetSerDesInfo(0, 0, SERDES_LINK_RX, &count, nullptr, &count), kBadArgument);
  EXPECT_EQ(AsicControl::GetSerDesInfo(0, 0, SERDES_LINK_RX, &count, &type, nullptr), kBadArgument);
  bool enable = true;
  auto slew = static_cast<SerDesTxSlewRate>(77);
  EXPECT_EQ(AsicControl::GetSerDesTxSlew(0, 0, 0, nullptr, &slew), kBadArgument);
  EXPECT_EQ(AsicControl::GetSerDesTxSlew(0, 0, 0, &enable, nullptr), kBadArgument);
  auto mode = static_cast<SerDesTxFFEMode>(77);
  unsigned char k = 77;
  signed char c = 77;
  EXPECT_EQ(AsicControl::GetSerDesTxFFE(0, 0, 0, nullptr, &k, &c, &c, &c, &c), kBadArgument);
  EXPECT_EQ(AsicControl::GetSerDesTxFFE(0, 0, 0, &mode, nullptr, &c, &c, &c, &c), kBadArgument);
  EXPECT_EQ(AsicControl::GetSerDesTxFFE(0, 0, 0, &mode, &k, nullptr, &c, &c, &c), kBadArgument);
  EXPECT_EQ(AsicControl::GetSerDesTxFFE(0, 0, 0, &mode, &k, &c, nullptr, &c, &c), kBadArgument);
  EXPECT_EQ(AsicControl::GetSerDesTxFFE(0, 0, 0, &mode, &k, &c, &c, nullptr, &c), kBadArgument);
  EXPECT_EQ(AsicControl::GetSerDesTxFFE(0, 0, 0, &mode, &k, &c, &c, &c, nullptr), kBadArgument);
  EXPECT_EQ(AsicControl::GetSerDesRxVGA(0, 0, 0, nullptr, &c, &c), kBadArgument);
  EXPECT_EQ(AsicControl::GetSerDesRxVGA(0, 0, 0, &c, nullptr, &c), kBadArgument);
  EXPECT_EQ(AsicControl::GetSerDesRxVGA(0, 0, 0, &c, &c, nullptr), kBadArgument);
  EXPECT_EQ(count, 77U);
  EXPECT_EQ(first, 77);
  EXPECT_EQ(static_cast<int>(type), 77);
  EXPECT_TRUE(enable);
  EXPECT_EQ(static_cast<int>(slew), 77);
  EXPECT_EQ(static_cast<int>(mode), 77);
  EXPECT_EQ(k, 77);
  EXPECT_EQ(c, 77);
}

TEST_F(Platform, AbsurdArgumentsAreRefusedOrTakenAndNeverCrash) {
  open();
  const std::vector<unsigned> places = {0, 1, 2, 23, 24, 31, 32, 255, 65535, 65536, 0x7fffffff, 0x80000000, 0xffffffff};
  const std::vector<int> links = {-1, 0, 1, 3, 4, -2, INT_MAX, INT_MIN};
  const std::vector<int> values = {0, 1, 63, 127, 128, 255, -1, -128, INT_MAX, INT_MIN};
  int calls = 0;
  for (const OperationInfo& info : allOperations()) {
    if (opensOrCloses(info.operation)) continue;
    for (const unsigned place : places) {
      for (const int link : links) {
        for (const int value : values) {
          const Ask where{.asic = place, .port = 0, .link = link, .core = 0, .number = 0, .value = value};
          EXPECT_LE(call(info.operation, where), 1);
          const Ask what{.asic = 0, .port = place, .link = link, .core = place, .number = place, .value = value};
          EXPECT_LE(call(info.operation, what), 1);
          const Ask how{.asic = 0, .port = 0, .link = link, .core = 0, .number = place, .value = value};
          EXPECT_LE(call(info.operation, how), 1);
          calls += 3;
        }
      }
    }
  }
  EXPECT_GT(calls, 100000);
  unsigned long state = 0;
  EXPECT_EQ(PortControl::GetPortInfo(id(0), PORT_INFO_STATE, &state), kOk);
}

TEST_F(Platform, LongRunsOfRegistersAreRefused) {
  open();
  std::array<unsigned short, 256> values{};
  EXPECT_EQ(AsicControl::ReadSerDesLinkRegister(0, 0, 0, SERDES_LINK_RX, 0, values.data(), 255), kBadRegister);
  EXPECT_EQ(AsicControl::ReadSerDesLinkRegister(0, 0, 0, SERDES_LINK_RX, 255, values.data(), 255), kBadRegister);
  EXPECT_EQ(AsicControl::ReadSerDesPLLRegister(0, 0, 250, values.data(), 10), kBadRegister);
  EXPECT_EQ(AsicControl::ReadSerDesPLLRegister(0, 0, 0, values.data(), 0), kOk);
}

TEST_F(Platform, NothingSetMeansTheBuiltInSwitch) {
  ASSERT_EQ(AsicControl::AsicCtlOpen(), kOk);
  unsigned ports = 0;
  unsigned cores = 0;
  ASSERT_EQ(AsicControl::GetSerDesInfo(0, &ports, &cores), kOk);
  EXPECT_EQ(ports, 24U);
}

TEST_F(Platform, ADescriptionWithAMistakeFailsTheOpeningAndSaysWhere) {
  describe(kSmall + "load = 101\n");
  testing::internal::CaptureStderr();
  EXPECT_EQ(AsicControl::AsicCtlOpen(), kBadDescription);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "simulated switch: " + file("switch.toml") +
                ":11: asics[0].ports[0].load: must be a whole number from 0 to 100\n");
  Switch_HW_Config_t config;
  EXPECT_EQ(AsicControl::GetSwitchConfig(&config), kNotOpen);
}

TEST_F(Platform, AMissingDescriptionFailsTheOpening) {
  (void)setenv(kSwitch, file("missing.toml").c_str(), 1);
  testing::internal::CaptureStderr();
  EXPECT_EQ(PortControl::PortCtlOpen(), kBadDescription);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "simulated switch: " + file("missing.toml") + ": cannot be read: No such file or directory\n");
}

TEST_F(Platform, AnUnknownClockFailsTheOpening) {
  (void)setenv(kClock, "sundial", 1);
  testing::internal::CaptureStderr();
  EXPECT_EQ(AsicControl::AsicCtlOpen(), kBadDescription);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "simulated switch: SERDES_SIMULATOR_CLOCK: \"sundial\" is not monotonic, virtual or "
            "virtual:MICROSECONDS (1 to 3600000000)\n");
}

TEST_F(Platform, ATraceThatCannotBeWrittenFailsTheOpening) {
  (void)setenv(kTrace, file("no/such/folder").c_str(), 1);
  testing::internal::CaptureStderr();
  EXPECT_EQ(AsicControl::AsicCtlOpen(), kBadDescription);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "simulated switch: SERDES_SIMULATOR_TRACE: " + file("no/such/folder") + " cannot be written\n");
}

TEST_F(Platform, TheEnvironmentsClockReplacesTheDescriptions) {
  const auto decodeErrorsAfterACall = [&](const char* clock) -> std::uint32_t {
    (void)setenv(kClock, clock, 1);
    open("settings.slack = { slew = 100 }\nchannels.long = { fr4_inches = 32, connectors = 2 }\n" + kSmall +
         "channel = \"long\"\ncache = \"slack\"\n");
    drv_counters_t counters;
    EXPECT_EQ(PortControl::GetFrameStatCntrs(id(0), &counters), kOk);
    EXPECT_EQ(AsicControl::AsicCtlClose(), kOk);
    EXPECT_EQ(PortControl::PortCtlClose(), kOk);
    return counters.decodeErrors.low;
  };
  const std::uint32_t slow = decodeErrorsAfterACall("virtual:1000000");
  EXPECT_GT(slow, 1000U);
  EXPECT_NEAR(decodeErrorsAfterACall("virtual:2000000"), 2.0 * slow, 0.1 * slow);
}

}  // namespace
}  // namespace simulator
