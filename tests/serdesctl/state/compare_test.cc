// What differs is named where it differs, and nothing else is.
#include "serdesctl/state/compare.h"

#include <gtest/gtest.h>

#include <string>

#include "serdesctl/state/diff_report.h"
#include "tests/serdesctl/state/random_state.h"

namespace serdesctl {
namespace {

constexpr int kStates = 50;

SwitchState randomState(std::uint32_t seed) {
  Random random(seed);
  SwitchState state = randomSave(random).state;
  while (state.asics.empty() || state.asics[0].ports.empty() || state.asics[0].ports[0].tx.empty() ||
         state.asics[0].ports[0].rx.empty()) {
    state = randomSave(random).state;
  }
  return state;
}

SettingPlace firstPlace(const SwitchState& state) {
  const AsicState& asic = state.asics[0];
  const ConfigPort& port = asic.config.ports[asic.ports[0].port];
  SettingPlace place;
  place.asic = asic.asic;
  place.port = port.port;
  place.userPort = port.userPort;
  return place;
}

// The one difference, in words.
std::string onlyDifference(const SwitchState& before, const SwitchState& after) {
  const Comparison comparison = compare(before, after);
  EXPECT_TRUE(comparison.hardware.empty() && comparison.registers.empty() && comparison.observations.empty());
  if (comparison.settings.size() != 1) return std::to_string(comparison.settings.size()) + " differences";
  const Difference& difference = comparison.settings[0];
  SettingPlace place = difference.place;
  EXPECT_EQ(place.port, firstPlace(before).port);
  return (place.side ? *place.side + " " : "") + (place.link ? std::to_string(*place.link) + " " : "") +
         (place.rate ? *place.rate + " " : "") + difference.parameter + " " + textOf(difference.before) + " " +
         textOf(difference.after);
}

TEST(Compare, AStateDoesNotDifferFromItself) {
  for (std::uint32_t seed = 0; seed < kStates; ++seed) {
    const SwitchState state = randomState(seed);
    EXPECT_TRUE(isSame(compare(state, state))) << seed;
  }
}

TEST(Compare, EachSettingIsNamed) {
  for (std::uint32_t seed = 0; seed < kStates; ++seed) {
    const SwitchState before = randomState(seed);
    SwitchState after = before;
    PortState& port = after.asics[0].ports[0];
    const auto check = [&](const std::string& expected) {
      EXPECT_EQ(onlyDifference(before, after), expected) << seed;
      port = before.asics[0].ports[0];
    };
    const PortState& old = before.asics[0].ports[0];
    port.configRate = old.configRate == "4G" ? "2G" : "4G";
    check("config_rate " + *old.configRate + " " + *port.configRate);
    port.streamEnabled = !*old.streamEnabled;
    check(std::string("stream_enabled ") + (*old.streamEnabled ? "yes no" : "no yes"));
    port.rx.back().peak = *old.rx.back().peak ^ 1;
    check("rx " + std::to_string(old.rx.size() - 1) + " peak " + std::to_string(*old.rx.back().peak) + " " +
          std::to_string(*old.rx.back().peak ^ 1));
    port.tx[0].slewPs = old.tx[0].slewPs == 36 ? 24 : 36;
    port.tx[0].slewUnnamed = false;
    check("tx 0 slew_ps " + (old.tx[0].slewUnnamed ? "UNK" : std::to_string(*old.tx[0].slewPs)) + " " +
          (old.tx[0].slewPs == 36 ? "24" : "36"));
    port.txCaches["10G"].p[3] ^= 1;
    check("tx 10G p3 " + std::to_string(old.txCaches.at("10G").p[3]) + " " +
          std::to_string(old.txCaches.at("10G").p[3] ^ 1));
    port.rxCaches["1G"].mode ^= 1;
    check("rx 1G mode " + std::to_string(old.rxCaches.at("1G").mode) + " " +
          std::to_string(old.rxCaches.at("1G").mode ^ 1));
  }
}

TEST(Compare, WhatTheSecondDoesNotTellIsNoDifference) {
  for (std::uint32_t seed = 0; seed < kStates; ++seed) {
    const SwitchState before = randomState(seed);
    SwitchState wanted = before;
    for (AsicState& asic : wanted.asics) {
      for (PortState& port : asic.ports) {
        const std::uint32_t number = port.port;
        port = {};
        port.port = number;
      }
      asic.registers.reset();
    }
    EXPECT_TRUE(isSame(compare(before, wanted))) << seed;
    wanted.asics[0].ports[0].tx = {{}, {}, {}, {}};
    EXPECT_TRUE(isSame(compare(before, wanted))) << seed;
  }
}

TEST(Compare, WhatTheFirstDoesNotTellDiffersFromNothing) {
  const SwitchState after = randomState(3);
  SwitchState before = after;
  before.asics[0].ports[0].configRate.reset();
  EXPECT_EQ(onlyDifference(before, after), "config_rate - " + *after.asics[0].ports[0].configRate);
  before = after;
  before.asics[0].ports[0].tx.clear();
  before.asics[0].ports[0].rxCaches.clear();
  EXPECT_EQ(compare(before, after).settings.size(), after.asics[0].ports[0].tx.size() * 7 + 6 * 5);
}

TEST(Compare, PortsThatAreOthersAreNotCompared) {
  const SwitchState before = randomState(4);
  SwitchState after = before;
  AsicState& asic = after.asics[0];
  ConfigPort& config = asic.config.ports[asic.ports[0].port];
  asic.ports[0].streamEnabled = !*asic.ports[0].streamEnabled;
  config.tx.serDesType += "X";
  Comparison comparison = compare(before, after);
  ASSERT_EQ(comparison.hardware.size(), 1U);
  EXPECT_EQ(comparison.hardware[0].parameter, "tx_serdes_type");
  EXPECT_TRUE(comparison.settings.empty());

  // A user port is a name: the port is the same.
  config = before.asics[0].config.ports[asic.ports[0].port];
  config.userPort = 999;
  comparison = compare(before, after);
  ASSERT_EQ(comparison.hardware.size(), 1U);
  EXPECT_EQ(comparison.hardware[0].parameter, "user_port");
  EXPECT_EQ(comparison.settings.size(), 1U);
}

TEST(Compare, PortsOfOneStateAloneAreNamed) {
  const SwitchState whole = randomState(5);
  SwitchState part = whole;
  part.asics[0].ports.erase(part.asics[0].ports.begin());
  const Comparison comparison = compare(whole, part);
  ASSERT_EQ(comparison.notInSecond.size(), 1U);
  EXPECT_EQ(comparison.notInSecond[0], firstPlace(whole));
  EXPECT_TRUE(comparison.notInFirst.empty());
  EXPECT_EQ(compare(part, whole).notInFirst.size(), 1U);
  part.asics.erase(part.asics.begin());
  EXPECT_EQ(compare(whole, part).notInSecond.size(), 1U);
  EXPECT_FALSE(compare(whole, part).notInSecond[0].port);
}

TEST(Compare, RegistersAndObservationsStandApart) {
  SwitchState before = randomState(6);
  AsicState& asic = before.asics[0];
  const std::uint32_t port = asic.ports[0].port;
  asic.registers = RegisterDumps{.pll = {{2, {1, 2}}}, .tx = {{port, {{3}}}}, .rx = {{port, {{4, 5}}}}};
  SwitchState after = before;
  after.asics[0].registers->pll[2][1] = 7;
  after.asics[0].registers->rx[port][0][0] = 8;
  after.asics[0].ports[0].observed.media = "10GE";
  before.asics[0].ports[0].observed.media = "OPT";
  const Comparison comparison = compare(before, after);
  EXPECT_TRUE(comparison.settings.empty());
  ASSERT_EQ(comparison.registers.size(), 2U);
  EXPECT_EQ(comparison.registers[0].place.side, "rx");
  EXPECT_EQ(comparison.registers[1].place.core, 2U);
  EXPECT_EQ(comparison.registers[1].parameter, "register 1");
  ASSERT_EQ(comparison.observations.size(), 1U);
  EXPECT_EQ(comparison.observations[0].parameter, "media");

  // Registers that only one of them has are not compared.
  after.asics[0].registers = RegisterDumps{.pll = {{3, {7}}}, .tx = {{port, {{9}}}}, .rx = {}};
  const std::vector<Difference> registers = compare(before, after).registers;
  ASSERT_EQ(registers.size(), 1U);
  EXPECT_EQ(textOf(registers[0].after), "9");
}

TEST(Compare, PlacesReadAsPeopleSayThem) {
  EXPECT_EQ(textOf(SettingPlace()), "the switch");
  EXPECT_EQ(textOf(SettingPlace{.asic = 1, .core = 2}), "ASIC 1 core 2");
  EXPECT_EQ(textOf(SettingPlace{.asic = 1, .port = 2, .userPort = 3, .side = "tx", .link = 0}),
            "ASIC 1 port 2 (user 3) tx link 0");
}

TEST(Compare, APortOfNoTopologyHasNoUserPort) {
  SwitchState after;
  after.asics.emplace_back().ports.emplace_back().port = 3;
  SwitchState before = after;
  before.asics[0].ports.clear();
  const Comparison comparison = compare(before, after);
  ASSERT_EQ(comparison.notInFirst.size(), 1U);
  EXPECT_EQ(textOf(comparison.notInFirst[0]), "ASIC 0 port 3");
}

TEST(DiffReport, TextHasAHeadingForEachPlace) {
  Comparison comparison;
  SettingPlace place;
  place.asic = 0;
  place.port = 4;
  place.userPort = 12;
  place.side = "tx";
  place.link = 0;
  comparison.settings = {{place, "k", std::int64_t{115}, std::int64_t{120}},
                         {place, "ffe_mode", std::string("FFE2"), std::string("FFE3")}};
  place.link.reset();
  place.rate = "8G";
  comparison.settings.push_back({place, "power", {}, std::int64_t{7}});
  EXPECT_EQ(textDiff(comparison, {"a", "b"}, false),
            "--- a\n+++ b\nASIC 0 port 4 (user 12) tx link 0\n- k 115\n+ k 120\n- ffe_mode FFE2\n+ ffe_mode FFE3\n"
            "ASIC 0 port 4 (user 12) 8G tx cache\n- power -\n+ power 7\n");
  EXPECT_NE(textDiff(comparison, {"a", "b"}, true).find("\n\x1b[31m- k 115\x1b[0m\n\x1b[32m+ k 120\x1b[0m\n"),
            std::string::npos);
  EXPECT_EQ(textDiff({}, {"a", "b"}, true), "");
}

}  // namespace
}  // namespace serdesctl
