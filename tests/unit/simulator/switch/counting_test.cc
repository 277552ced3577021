#include <cmath>

#include "tests/unit/simulator/switch/switch_bench.h"

namespace simulator {
namespace {

using Counters = SwitchTest;

constexpr FfeSettings kTuned = {.mode = FFE_3, .k = 115, .c = {-4, 55, -25, 0}};

TEST_F(Counters, CountDecodeAndCrcErrorsOverTime) {
  ASSERT_EQ(statusOf(1), kPortStateRunning);
  EXPECT_EQ(decodeErrors(1), 0U);
  passSeconds(1);
  const std::uint64_t aSecond = decodeErrors(1);
  EXPECT_GT(aSecond, 1000U);
  EXPECT_GT(crcErrors(1), 1000U);
  passSeconds(9);
  const double expected = 10.0 * static_cast<double>(aSecond);
  EXPECT_NEAR(static_cast<double>(decodeErrors(1)), expected, 20 * std::sqrt(expected));  // arriving at random
}

TEST_F(Counters, DoNotDependOnHowOftenTheyAreRead) {
  Switch other(readDescription(kBenchSwitch, "bench.toml"));
  for (int i = 0; i < 100; ++i) {
    (void)other.beginCall({});
    passSeconds(1);
    (void)decodeErrors(1);
  }
  drv_counters_t counters;
  ASSERT_EQ(other.getCounters(id(1), &counters), kOk);
  EXPECT_EQ(whole(counters.decodeErrors), decodeErrors(1));
  EXPECT_EQ(whole(counters.crcErrors), crcErrors(1));
}

TEST_F(Counters, TuningTakesTheErrorsToNone) {
  passSeconds(10);
  EXPECT_GT(decodeErrors(1), 10000U);
  ASSERT_EQ(sw.setTxFfe(0, 1, -1, kTuned), kOk);
  ASSERT_EQ(sw.setTxSlew(0, 1, -1, true, SLEW_36PS), kOk);
  const std::uint64_t soFar = decodeErrors(1);
  passSeconds(10);
  EXPECT_EQ(decodeErrors(1), soFar);
}

TEST_F(Counters, WhatWasBadUntilAChangeIsCountedEvenIfNobodyLooked) {
  passSeconds(10);
  ASSERT_EQ(sw.setTxFfe(0, 1, -1, kTuned), kOk);
  ASSERT_EQ(sw.setTxSlew(0, 1, -1, true, SLEW_36PS), kOk);
  EXPECT_GT(decodeErrors(1), 10000U);
}

TEST_F(Counters, StandStillWithoutSignal) {
  ASSERT_EQ(sw.setStream(id(1), false), kOk);
  passSeconds(10);
  EXPECT_EQ(decodeErrors(1), 0U);
  EXPECT_EQ(crcErrors(1), 0U);
  EXPECT_LT(statsOf(1).Ap, 5);
}

TEST_F(Counters, OfALinkWithoutLockCountCodeViolationsAndNoFrames) {
  ASSERT_EQ(sw.setPortSpeed(id(2), SPEED_4G), kOk);
  ASSERT_EQ(sw.setPortSpeed(id(3), SPEED_8G), kOk);
  ASSERT_EQ(statusOf(2), kStatusNoSpeed);
  ASSERT_EQ(readRx(2, 2) & 0x3U, 0x1U);  // a signal without lock
  const std::uint64_t before = decodeErrors(2);
  passSeconds(1);
  const double invalid = 560.0 / 1024 * 4.25e9 / 10;
  EXPECT_NEAR(static_cast<double>(decodeErrors(2) - before), invalid, 0.001 * invalid);
  EXPECT_EQ(crcErrors(2), 0U);
}

TEST_F(Counters, OfALinkThatHearsTooLittleCountCodeViolations) {
  for (const int k : {0, 2}) {
    ASSERT_EQ(sw.setTxFfe(0, 2, -1, {.mode = FFE_3, .k = k, .c = {-2, 58, -10, 0}}), kOk);
    EXPECT_EQ(readRx(3, 2) & 0x3U, 0U);
    const std::uint64_t before = decodeErrors(3);
    passSeconds(1);
    EXPECT_GT(decodeErrors(3) - before, 100'000'000U) << k;
    EXPECT_EQ(crcErrors(3), 0U);
  }
}

TEST_F(Counters, StandStillWhileThePortIsDown) {
  passSeconds(1);
  const std::uint64_t soFar = decodeErrors(1);
  ASSERT_EQ(sw.writePllRegister(0, 0, 1, 0), kOk);
  passSeconds(10);
  EXPECT_EQ(decodeErrors(1), soFar);
  ASSERT_EQ(sw.writePllRegister(0, 0, 1, 1), kOk);
  passSeconds(1);
  EXPECT_GT(decodeErrors(1), soFar);
}

TEST_F(Counters, AreClearedByThePort) {
  passSeconds(1);
  ASSERT_GT(decodeErrors(1), 0U);
  ASSERT_EQ(sw.clearCounters(id(1)), kOk);
  EXPECT_EQ(decodeErrors(1), 0U);
  EXPECT_EQ(crcErrors(1), 0U);
  EXPECT_EQ(sw.clearCounters(id(9)), kBadPort);
}

TEST_F(Counters, ClearedHaveNothingOfTheTimeBefore) {
  passSeconds(5);
  ASSERT_EQ(sw.clearCounters(id(1)), kOk);
  EXPECT_EQ(decodeErrors(1), 0U);
  EXPECT_EQ(crcErrors(1), 0U);
}

TEST_F(Counters, FillTheWholeRecord) {
  drv_counters_t counters;
  counters.beforeDecodeErrors.fill(0xaa);
  counters.rest.fill(0xaa);
  passSeconds(1);
  ASSERT_EQ(sw.getCounters(id(1), &counters), kOk);
  for (const std::uint8_t byte : counters.rest)
    ASSERT_EQ(byte, 0);
  for (const std::uint8_t byte : counters.beforeDecodeErrors)
    ASSERT_EQ(byte, 0);
  EXPECT_EQ(counters.decodeErrors.high, 0U);
  EXPECT_GT(counters.decodeErrors.low, 0U);
}

TEST_F(Counters, GoBeyond32Bits) {
  // Sixteen milliard and more: over a million errors a second for hours, with an hour a call.
  Switch slow(readDescription("clock = { kind = \"virtual\", step = 3600000000 }\n" +
                                  kBenchSwitch.substr(kBenchSwitch.find("[settings.good]")) +
                                  "[[asics.ports]]\nports = 1\nlive = \"slack\"\ncache = { 10G = \"slack\" }\n",
                              "slow.toml"));
  for (int i = 0; i < 200; ++i)
    (void)slow.beginCall({});
  drv_counters_t counters;
  ASSERT_EQ(slow.getCounters(id(1), &counters), kOk);
  EXPECT_GT(whole(counters.decodeErrors), std::uint64_t{UINT32_MAX});
  EXPECT_GT(counters.decodeErrors.high, 0U);
}

class IdlePort : public SwitchTest {
 protected:
  IdlePort() : SwitchTest("[[asics.ports]]\nports = 1\nload = 0\n") {}
};

TEST_F(IdlePort, CountsDecodeErrorsButNoFrames) {
  passSeconds(5);
  EXPECT_GT(decodeErrors(1), 0U);
  EXPECT_EQ(crcErrors(1), 0U);
}

// A microsecond a call: one end of the cable without lock, which counts 232.4 violations in it.
class ManyReads : public SwitchTest {
 protected:
  static Switch unlocked(unsigned seed) {
    Switch made(readDescription("seed = " + std::to_string(seed) + "\nclock = { kind = \"virtual\", step = 1 }\n" +
                                    kBenchSwitch.substr(kBenchSwitch.find("[settings.good]")),
                                "bench.toml"));
    EXPECT_EQ(made.setPortSpeed(id(2), SPEED_4G), kOk);
    EXPECT_EQ(made.setPortSpeed(id(3), SPEED_8G), kOk);
    return made;
  }
  // How many came in each of so many microseconds.
  static std::vector<double> readEach(Switch& from, unsigned port, int reads) {
    std::vector<double> counts;
    std::uint64_t before = 0;
    for (int i = 0; i < reads; ++i) {
      (void)from.beginCall({});
      drv_counters_t counters;
      EXPECT_EQ(from.getCounters(id(port), &counters), kOk);
      counts.push_back(static_cast<double>(whole(counters.decodeErrors) - before));
      before = whole(counters.decodeErrors);
    }
    return counts;
  }
  static constexpr double kExpected = 560.0 / 1024 * 425;
};

TEST_F(ManyReads, HaveTheMeanAndVarianceOfAPoissonProcess) {
  Switch made = unlocked(1);
  const std::vector<double> counts = readEach(made, 2, 10000);
  double sum = 0;
  double squares = 0;
  for (const double count : counts) {
    sum += count;
    squares += (count - kExpected) * (count - kExpected);
  }
  EXPECT_NEAR(sum / static_cast<double>(counts.size()), kExpected, 0.01 * kExpected);
  EXPECT_NEAR(squares / sum, 1, 0.1);
}

TEST_F(ManyReads, AddUpToWhatOneReadGives) {
  Switch often = unlocked(1);
  Switch once = unlocked(1);
  double sum = 0;
  for (const double count : readEach(often, 2, 1000))
    sum += count;
  for (int i = 0; i < 999; ++i)
    (void)once.beginCall({});
  EXPECT_EQ(readEach(once, 2, 1).front(), sum);
}

TEST_F(ManyReads, HaveAHistoryOfTheirOwnForEachSeedAndPort) {
  Switch first = unlocked(1);
  Switch again = unlocked(1);
  Switch other = unlocked(2);
  const std::vector<double> counts = readEach(first, 2, 20);
  EXPECT_EQ(readEach(again, 2, 20), counts);
  EXPECT_NE(readEach(other, 2, 20), counts);
  ASSERT_EQ(first.setPortSpeed(id(2), SPEED_8G), kOk);
  ASSERT_EQ(first.setPortSpeed(id(3), SPEED_4G), kOk);  // now the other end has none
  EXPECT_NE(readEach(first, 3, 20), counts);
}

TEST_F(ManyReads, AfterAClearAreNotThoseOfBeforeAgain) {
  Switch made = unlocked(1);
  const std::vector<double> counts = readEach(made, 2, 20);
  ASSERT_EQ(made.clearCounters(id(2)), kOk);
  EXPECT_NE(readEach(made, 2, 20), counts);
}

TEST_F(ManyReads, GoOnInAnotherSessionAsInThisOne) {
  Switch made = unlocked(1);
  (void)readEach(made, 2, 20);
  Switch next = unlocked(1);
  ASSERT_TRUE(next.importState(made.exportState()));
  for (Switch* each : {&made, &next})
    ASSERT_EQ(each->clearCounters(id(2)), kOk);
  EXPECT_EQ(readEach(next, 2, 20), readEach(made, 2, 20));
}

// Port 2 and port 3 at the ends of a noisy cable, each with a core of its own for either side.
const std::string kNoisyCable = R"(
[[asics.cores]]
cores = "5-8"
type = 2

[[asics.ports]]
ports = "2-3"
channel = "long"
cache = "slack"

[[asics.ports]]
ports = 2
rx_core = 5
tx_core = 6

[[asics.ports]]
ports = 3
rx_core = 7
tx_core = 8
)";

// Something that is done to port 2.
struct Change {
  const char* what;
  int (*make)(Switch& sw);
};

constexpr port_id_t kPort2 = {.userPort = kNoUserPort, .asic = 0, .asicPort = 2, .unused = {}};

int setRate(Switch& sw, unsigned speed) {
  return sw.setPortSpeed(kPort2, speed);
}
int write(Switch& sw, SerDesLinkType side, unsigned address, std::uint16_t value) {
  return sw.writeLinkRegister(0, 2, 0, side, address, value);
}

// All that changes how many errors come at either end: each way in, each side, each way round.
constexpr Change kChanges[] = {
    {"FFE", [](Switch& sw) { return sw.setTxFfe(0, 2, kAllLinks, kTuned); }},
    {"slew", [](Switch& sw) { return sw.setTxSlew(0, 2, 0, true, SLEW_36PS); }},
    {"DFE", [](Switch& sw) { return sw.setRxDfe(0, 2, kAllLinks, DFE_NONE); }},
    {"VGA", [](Switch& sw) { return sw.setRxVga(0, 2, 0, {.pole = 7, .peak = 7, .amax = 0x4e}); }},
    {"DFE state",
     [](Switch& sw) {
       const SerDesRxDFEState state = {.leadingWord = 0, .mode = DFE_5, .h = {30, 30}, .reserved = {}};
       return sw.setRxDfeState(0, 2, kAllLinks, &state);
     }},
    {"another speed", [](Switch& sw) { return setRate(sw, SPEED_2G); }},
    {"caches by the same speed",
     [](Switch& sw) {
       const int code = sw.setTxRateParams(0, 2, SPEED_8G, {115, SLEW_36PS, FFE_3, -4, 55, -25, 0});
       return code != kOk ? code : setRate(sw, SPEED_8G);
     }},
    {"stream off", [](Switch& sw) { return sw.setStream(kPort2, false); }},
    {"PLL of the receive core", [](Switch& sw) { return sw.writePllRegister(0, 5, 1, 0); }},
    {"PLL of the transmit core", [](Switch& sw) { return sw.writePllRegister(0, 6, 1, 0); }},
    {"transmit register", [](Switch& sw) { return write(sw, SERDES_LINK_TX, 3, 0x000a); }},
    {"transmit enable bit", [](Switch& sw) { return write(sw, SERDES_LINK_TX, 1, 0x0000); }},
    {"receive register", [](Switch& sw) { return write(sw, SERDES_LINK_RX, 3, 0x003f); }},
    {"receive enable bit", [](Switch& sw) { return write(sw, SERDES_LINK_RX, 1, 0x0000); }},
    {"tap register", [](Switch& sw) { return write(sw, SERDES_LINK_RX, 5, 0x3030); }},
    {"loopback by register", [](Switch& sw) { return write(sw, SERDES_LINK_RX, 1, 0x0011); }},
    {"loopback by option", [](Switch& sw) { return sw.setTestOption(0, 2, 0, kTestLoopback, 1); }},
    {"pattern", [](Switch& sw) { return sw.setTestOption(0, 2, 0, kTestSendPattern, 2); }},
};

class CountedUpToAChange : public SwitchTest {
 protected:
  CountedUpToAChange() : SwitchTest(kNoisyCable) {}

  static void pass(Switch& theSwitch, int seconds) {
    for (int i = 0; i < seconds; ++i)
      (void)theSwitch.beginCall({});
  }
  // What both ends and a neighbour have counted by now: decode errors, CRC errors, what a checker found.
  static std::vector<std::uint64_t> countsOf(Switch& theSwitch) {
    std::vector<std::uint64_t> counts;
    for (const unsigned port : {1U, 2U, 3U}) {
      drv_counters_t counters;
      EXPECT_EQ(theSwitch.getCounters(id(port), &counters), kOk);
      counts.push_back(whole(counters.decodeErrors));
      counts.push_back(whole(counters.crcErrors));
      for (const StateRecord& record : theSwitch.exportState()) {
        if (record.name == "asic0.port" + std::to_string(port) + ".rx0") counts.push_back(record.values[kMaxRegisters]);
      }
    }
    return counts;
  }
  // Each change, after five seconds that nobody looked at, leaves the counts that they gave, and changes what the next
  // five give; `begin` is done at first.
  void expectCountedUpTo(void (*begin)(Switch& sw)) {
    for (const Change& change : kChanges) {
      SCOPED_TRACE(change.what);
      Switch changed(readDescription(kBenchSwitch + kNoisyCable, "bench.toml"));
      Switch left(readDescription(kBenchSwitch + kNoisyCable, "bench.toml"));
      for (Switch* each : {&changed, &left}) {
        begin(*each);
        pass(*each, 5);
      }
      ASSERT_EQ(change.make(changed), kOk);
      EXPECT_EQ(countsOf(changed), countsOf(left));
      pass(changed, 5);
      pass(left, 5);
      EXPECT_NE(countsOf(changed), countsOf(left)) << "the change is none";
    }
  }
};

TEST_F(CountedUpToAChange, ErrorsGoOnAtAPortWhoseOwnStreamIsOff) {
  ASSERT_EQ(sw.setStream(id(2), false), kOk);
  ASSERT_EQ(statusOf(2), kStatusNotSending);
  const std::uint64_t decode = decodeErrors(2);
  const std::uint64_t crc = crcErrors(2);
  passSeconds(5);
  EXPECT_GT(decodeErrors(2), decode + 1000);
  EXPECT_GT(crcErrors(2), crc + 1000);
}

TEST_F(CountedUpToAChange, AreFrameErrorsOfBothEnds) {
  passSeconds(5);
  for (const unsigned port : {2U, 3U}) {
    ASSERT_EQ(statusOf(port), kPortStateRunning);
    ASSERT_GT(decodeErrors(port), 1000U);
  }
  expectCountedUpTo([](Switch&) {});
}

TEST_F(CountedUpToAChange, AreBitErrorsThatCheckersFind) {
  const auto begin = [](Switch& theSwitch) {
    for (const unsigned port : {2U, 3U}) {
      ASSERT_EQ(theSwitch.setTestOption(0, port, 0, kTestSendPattern, 1), kOk);
      ASSERT_EQ(theSwitch.setTestOption(0, port, 0, kTestCheckPattern, 1), kOk);
    }
  };
  begin(sw);
  passSeconds(5);
  for (const unsigned port : {2U, 3U})
    ASSERT_GT(testStatus(port, kTestCheckPattern), 1000);
  expectCountedUpTo(begin);
}

// 232.4 million violations a second.
TEST_F(Counters, CountBeyond32Bits) {
  ASSERT_EQ(sw.setPortSpeed(id(2), SPEED_4G), kOk);
  ASSERT_EQ(sw.setPortSpeed(id(3), SPEED_8G), kOk);
  passSeconds(100);
  EXPECT_GT(countersOf(2).decodeErrors.high, 0U);
  EXPECT_NEAR(static_cast<double>(decodeErrors(2)) / (560.0 / 1024 * 425e6 * 100), 1, 1e-4);
}

// The receiver follows what it hears at 8G, for which the medium is not made.
TEST(FrameErrors, AreNoneAtASpeedThatTheMediumDoesNotCarry) {
  Switch sw(readDescription(kBenchSwitch + "[[asics.ports]]\nports = 1\nmedia_speeds = [\"4G\"]\n", "bench.toml"));
  const port_id_t id = {.userPort = kNoUserPort, .asic = 0, .asicPort = 1, .unused = {}};
  unsigned long status = 0;
  ASSERT_EQ(sw.getPortInfo(id, PORT_INFO_STATE, &status), kOk);
  ASSERT_EQ(status, kStatusNoSpeed);
  for (int i = 0; i < 10; ++i)
    (void)sw.beginCall({});
  drv_counters_t counters;
  ASSERT_EQ(sw.getCounters(id, &counters), kOk);
  EXPECT_GT(counters.decodeErrors.low, 1000U);
  EXPECT_EQ(counters.crcErrors.low, 0U);
}

// A port without others, which would have its errors counted as well.
const std::string kLonePort = R"(
clock = { kind = "virtual", step = 1000000 }
[settings.slack]
slew = 100
[channels.long]
fr4_inches = 32
connectors = 2
[[asics]]
[[asics.cores]]
cores = "0-1"
type = 2
[[asics.ports]]
ports = 0
kind = "GL"
rx_core = 0
tx_core = 1
channel = "long"
far_end = "loop"
speed = "8G"
cache = "slack"
)";

TEST_F(CountedUpToAChange, OfThePllOfEitherCoreAreErrorsOfALonePort) {
  for (const unsigned core : {0U, 1U}) {
    Switch lone(readDescription(kLonePort, "lone.toml"));
    Switch left(readDescription(kLonePort, "lone.toml"));
    pass(lone, 5);
    pass(left, 5);
    ASSERT_EQ(lone.writePllRegister(0, core, 1, 0), kOk);
    drv_counters_t counted, expected;
    ASSERT_EQ(lone.getCounters(id(0), &counted), kOk);
    ASSERT_EQ(left.getCounters(id(0), &expected), kOk);
    EXPECT_GT(whole(expected.decodeErrors), 1000U);
    EXPECT_EQ(whole(counted.decodeErrors), whole(expected.decodeErrors)) << core;
  }
}

}  // namespace
}  // namespace simulator
