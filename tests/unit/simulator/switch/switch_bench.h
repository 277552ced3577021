// A small switch to test on, with a clock that goes a second with each call that a test declares.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "simulator/switch/switch.h"

namespace simulator {

// Ports of every kind and far end on one ASIC; entries that a test adds refine them.
inline const std::string kBenchSwitch = R"(
clock = { kind = "virtual", step = 1000000 }

[settings.good]
ffe = "FFE3"
taps = [-2, 58, -10, 0]

[settings.slack]
slew = 100

[settings.ether]
power = 7
pre_emphasis = 2
cdr_mode = 1
eq_mode = 2

[channels.short]
fr4_inches = 8
connectors = 1

[channels.long]
fr4_inches = 32
connectors = 2

[[asics]]

[[asics.cores]]
cores = 0
type = 2

[[asics.cores]]
cores = 1
type = 5

[[asics.cores]]
cores = 2
type = 3

[[asics.cores]]
cores = "3-4"
type = 4

[[asics.ports]]        # 0: loop-back plug  1: the same on a long line  2, 3: a cable
ports = "0-3"
kind = "GL"
user_port = 40
core = 0
channel = "short"
far_end = "loop"
speed = "8G"
cache = "good"

[[asics.ports]]
ports = 1
channel = "long"
cache = { 8G = "slack" }

[[asics.ports]]
ports = "2-3"
far_end = "pair"
speed = "AUTO"
media_speeds = ["2G", "4G", "8G"]

[[asics.ports]]        # 4: a partner  5: nothing
ports = "4-5"
kind = "GL"
user_port = -1
core = 1
channel = "short"
cache = "good"

[[asics.ports]]
ports = 4
partner = { settings = "good" }

[[asics.ports]]        # 6: four links
ports = 6
kind = "XG"
user_port = 46
core = 2
channel = "short"
far_end = "loop"
speed = "10G"

[[asics.ports]]        # 7: ethernet  8: no links
ports = "7-8"
kind = "EXG"
user_port = 47
rx_core = 3
tx_core = 4
channel = "short"
far_end = "loop"
speed = "10G"
cache = "ether"

[[asics.ports]]
ports = 8
links = 0
)";

class SwitchTest : public testing::Test {
 protected:
  explicit SwitchTest(const std::string& more = "") : sw(readDescription(kBenchSwitch + more, "bench.toml")) {}

  static port_id_t id(unsigned port) {
    return {.userPort = kNoUserPort, .asic = 0, .asicPort = static_cast<std::uint16_t>(port), .unused = {}};
  }
  void passSeconds(int seconds) {
    for (int i = 0; i < seconds; ++i)
      (void)sw.beginCall({});
  }
  unsigned long statusOf(unsigned port) {
    unsigned long value = 999;
    EXPECT_EQ(sw.getPortInfo(id(port), PORT_INFO_STATE, &value), kOk);
    return value;
  }
  unsigned speedOf(unsigned port) {
    unsigned speed = 999;
    EXPECT_EQ(sw.getRunningSpeed(id(port), &speed), kOk);
    return speed;
  }
  drv_counters_t countersOf(unsigned port) {
    drv_counters_t counters;
    EXPECT_EQ(sw.getCounters(id(port), &counters), kOk);
    return counters;
  }
  static std::uint64_t whole(const WordPairCounter& counter) {
    return (std::uint64_t{counter.high} << 32) | counter.low;
  }
  std::uint64_t decodeErrors(unsigned port) {
    return whole(countersOf(port).decodeErrors);
  }
  std::uint64_t crcErrors(unsigned port) {
    return whole(countersOf(port).crcErrors);
  }
  SerDesRxDFEStats statsOf(unsigned port, int link = 0) {
    SerDesRxDFEStats stats;
    EXPECT_EQ(sw.getRxDfeStats(0, port, link, &stats), kOk);
    return stats;
  }
  FfeSettings ffeAt(unsigned port, int link = 0) {
    FfeSettings settings{};
    EXPECT_EQ(sw.getTxFfe(0, port, link, &settings), kOk);
    return settings;
  }
  VgaSettings vgaAt(unsigned port, int link = 0) {
    VgaSettings settings{};
    EXPECT_EQ(sw.getRxVga(0, port, link, &settings), kOk);
    return settings;
  }
  SerDesRxDFEMode dfeAt(unsigned port, int link = 0) {
    SerDesRxDFEMode mode{};
    EXPECT_EQ(sw.getRxDfe(0, port, link, &mode), kOk);
    return mode;
  }
  SerDesTxSlewRate slewAt(unsigned port, int link = 0) {
    bool enable = false;
    SerDesTxSlewRate slew{};
    EXPECT_EQ(sw.getTxSlew(0, port, link, &enable, &slew), kOk);
    return slew;
  }
  unsigned readRx(unsigned port, unsigned address, int link = 0) {
    unsigned short value = 0;
    EXPECT_EQ(sw.readLinkRegisters(0, port, link, SERDES_LINK_RX, address, &value, 1), kOk);
    return value;
  }
  unsigned readTx(unsigned port, unsigned address, int link = 0) {
    unsigned short value = 0;
    EXPECT_EQ(sw.readLinkRegisters(0, port, link, SERDES_LINK_TX, address, &value, 1), kOk);
    return value;
  }
  int writeRx(unsigned port, unsigned address, unsigned value, int link = 0) {
    return sw.writeLinkRegister(0, port, link, SERDES_LINK_RX, address, static_cast<std::uint16_t>(value));
  }
  int writeTx(unsigned port, unsigned address, unsigned value, int link = 0) {
    return sw.writeLinkRegister(0, port, link, SERDES_LINK_TX, address, static_cast<std::uint16_t>(value));
  }
  int testStatus(unsigned port, std::uint32_t option, int link = 0) {
    int status = -999;
    EXPECT_EQ(sw.getTestStatus(0, port, link, option, &status), kOk);
    return status;
  }

  Switch sw;
};

inline bool operator==(const FfeSettings& a, const FfeSettings& b) {
  return a.mode == b.mode && a.k == b.k && a.c == b.c;
}
inline bool operator==(const VgaSettings& a, const VgaSettings& b) {
  return a.pole == b.pole && a.peak == b.peak && a.amax == b.amax;
}

}  // namespace simulator
