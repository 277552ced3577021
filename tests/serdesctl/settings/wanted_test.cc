// From settings to a wanted state: selecting, refining, and what stays as it is.
#include "serdesctl/settings/wanted.h"

#include <gtest/gtest.h>

#include <string>

#include "serdesctl/base/errors.h"
#include "serdesctl/settings/as_settings.h"
#include "serdesctl/state/compare.h"
#include "tests/serdesctl/state/random_state.h"

namespace serdesctl {
namespace {

constexpr int kStates = 100;

// Ports 0 and 1 gl, 2 xg with four links, 3 exg, 4 gl without links; 8G, FFE3.
SwitchState smallSwitch() {
  SwitchState state;
  AsicState& asic = state.asics.emplace_back();
  asic.config.glPorts = 0b10011;
  asic.config.xgPorts = 0b00100;
  asic.config.exgPorts = 0b01000;
  for (std::uint32_t number = 0; number < 5; ++number) {
    ConfigPort& config = asic.config.ports.emplace_back();
    config.port = number;
    config.rx.links = config.tx.links = number == 2 ? 4 : number == 4 ? 0 : 1;
    config.rx.serDesType = config.tx.serDesType = number < 2 ? "SERDES_11G" : "OTHER";
    if (number != 1) config.userPort = 100 + number;
    PortState& port = asic.ports.emplace_back();
    port.port = number;
    if (config.tx.links == 0) continue;
    port.configRate = number == 0 ? "AUTO" : "8G";
    port.streamEnabled = true;
    port.observed = {.runningRate = "8G", .media = number == 0 ? "OPT" : "COP", .links = {}, .unread = {}};
    LiveTx tx;
    static_cast<FfeValues&>(tx) = {.ffeMode = "FFE3", .k = 115, .c0 = -2, .c1 = 58, .c2 = -10, .c3 = 0};
    tx.slewPs = 36;
    LiveRx rx;
    rx.dfeMode = "DFE3";
    static_cast<VgaValues&>(rx) = {.pole = 6, .peak = 4, .amax = 78};
    port.tx.assign(config.tx.links, tx);
    port.rx.assign(config.rx.links, rx);
    for (std::size_t rate = SPEED_1G; rate < rateNames.size(); ++rate) {
      port.txCaches[rateNames[rate].name] = {.power = 100, .slew = 7, .mode = 1, .p = {0, 50, -5, 9}};
      port.rxCaches[rateNames[rate].name] = {.mode = 1, .p = {5, 3, 70, 8}};
    }
  }
  return state;
}

SwitchState wanted(const std::string& entries, const SwitchState& now = smallSwitch()) {
  return wantedState(parseSettings(entries, "lab.toml"), now);
}

PortState wantedPort(const std::string& lines, std::uint32_t port, const SwitchState& now = smallSwitch()) {
  const SwitchState state = wanted("[[settings]]\nports = " + std::to_string(port) + "\n" + lines, now);
  return state.asics.at(0).ports.at(0);
}

std::string refusal(const std::string& entries, const SwitchState& now = smallSwitch()) {
  try {
    (void)wanted(entries, now);
  } catch (const UsageError& error) {
    return error.what();
  }
  return "taken";
}

// The ports that an entry with these lines selects, as a mask.
std::uint32_t selected(const std::string& lines) {
  const auto ports = selectPorts(
      parseSettings("[[settings]]\noptional = true\n" + lines + "\nstream = true\n", "lab.toml"), smallSwitch());
  return ports.at(0).contains(0) ? ports.at(0).at(0) : 0;
}

TEST(Wanted, Selectors) {
  EXPECT_EQ(selected(""), 0b11111U);
  EXPECT_EQ(selected("ports = \"1-2\""), 0b00110U);
  EXPECT_EQ(selected("asic = 1"), 0U);
  EXPECT_EQ(selected("user_ports = \"101-103\""), 0b01100U);
  EXPECT_EQ(selected("kind = \"gl\""), 0b10011U);
  EXPECT_EQ(selected("kind = [\"xg\", \"exg\"]"), 0b01100U);
  EXPECT_EQ(selected("serdes_type = \"SERDES_11G\""), 0b00011U);
  EXPECT_EQ(selected("media = \"COP\""), 0b01110U);
  EXPECT_EQ(selected("rate = \"AUTO\""), 0b00001U);
  EXPECT_EQ(selected("running_rate = \"8G\""), 0b01111U);
  EXPECT_EQ(selected("running_rate = \"8G\"\nkind = \"gl\"\nmedia = \"COP\""), 0b00010U);
}

TEST(Wanted, WhoSaysSomethingAboutLinksMeansPortsThatHaveSome) {
  EXPECT_EQ(selected("kind = \"gl\"\nreceive = { pole = 1 }"), 0b00011U);
  EXPECT_EQ(selected("ports = \"0-4\"\nkind = \"gl\"\nreceive = { pole = 1 }"), 0b10011U);
  for (const std::string setting : {"power", "pre_emphasis", "cdr_mode", "eq_mode"})
    EXPECT_EQ(selected("kind = \"exg\"\nto = \"8G\"\nethernet = { " + setting + " = 1 }"), 0b01000U) << setting;
  EXPECT_EQ(refusal("[[settings]]\nports = 4\nreceive = { pole = 1 }\n"),
            "lab.toml:1: port 4 of ASIC 0 has no receive links, or they could not be read");
  EXPECT_EQ(refusal("[[settings]]\nports = 4\ntransmit = { k = 1 }\n"),
            "lab.toml:1: port 4 of ASIC 0 has no transmit links, or they could not be read");
}

TEST(Wanted, ASelectorThatSelectsNothing) {
  EXPECT_EQ(refusal("[[settings]]\nmedia = \"10GE\"\nstream = true\n"),
            "lab.toml:1: media: no port has it: there are COP, OPT; with optional = true it may select none");
  EXPECT_EQ(refusal("[[settings]]\nmedia = \"OPT\"\nkind = \"exg\"\nstream = true\n"),
            "lab.toml:1: selects no port: none has all of this; with optional = true it may select none");
  EXPECT_EQ(refusal("[[settings]]\nmedia = \"10GE\"\nstream = true\noptional = true\n"), "taken");
  EXPECT_EQ(refusal("\n[[settings]]\nports = \"0,5\"\nstream = true\n"), "lab.toml:2: ports: no port 5 of ASIC 0");
  EXPECT_EQ(refusal("[[settings]]\nuser_ports = \"100-101\"\nstream = true\n"),
            "lab.toml:1: user_ports: no user port 101");
  EXPECT_EQ(refusal("[[settings]]\nasic = 1\nstream = true\n"), "lab.toml:1: asic: the switch has no ASIC 1");
  SwitchState two = smallSwitch();
  two.asics.push_back(two.asics[0]);
  two.asics[1].asic = 1;
  two.asics[0].ports[0].observed.media = "10GE";
  EXPECT_EQ(refusal("[[settings]]\nasic = 1\nmedia = \"10GE\"\nstream = true\n", two),
            "lab.toml:1: media: no port has it: there are COP, OPT; with optional = true it may select none");
}

TEST(Wanted, OnlyWhatIsSaid) {
  const SwitchState state = wanted("[[settings]]\nports = 1\nstream = false\n");
  ASSERT_EQ(state.asics.size(), 1U);
  ASSERT_EQ(state.asics[0].ports.size(), 1U);
  const PortState& port = state.asics[0].ports[0];
  EXPECT_EQ(port.port, 1U);
  EXPECT_EQ(port.streamEnabled, false);
  EXPECT_FALSE(port.configRate);
  EXPECT_TRUE(port.tx.empty() && port.rx.empty() && port.txCaches.empty() && port.rxCaches.empty());
}

TEST(Wanted, LaterEntriesRefine) {
  const SwitchState state = wanted(
      "[[settings]]\nkind = \"gl\"\nspeed = \"8G\"\ntransmit = { k = 90, c2 = -20 }\n"
      "[[settings]]\nports = 1\nspeed = \"4G\"\ntransmit = { k = 80 }\n"
      "[[settings]]\nports = 0\ntransmit = { slew = 24 }\n");
  ASSERT_EQ(state.asics[0].ports.size(), 2U);
  const PortState &first = state.asics[0].ports[0], &second = state.asics[0].ports[1];
  EXPECT_EQ(first.tx[0].k, 90);
  EXPECT_EQ(first.tx[0].slewPs, 24);
  EXPECT_EQ(second.tx[0].k, 80);
  EXPECT_EQ(second.tx[0].c2, -20);
  EXPECT_FALSE(second.tx[0].slewPs);
  EXPECT_EQ(second.configRate, "4G");
}

TEST(Wanted, GroupsOfALinkAreWhole) {
  const PortState tx = wantedPort("transmit = { c2 = -20 }\n", 2);
  ASSERT_EQ(tx.tx.size(), 4U);
  for (const LiveTx& link : tx.tx) {
    EXPECT_EQ(link.ffeMode, "FFE3");
    EXPECT_EQ(link.k, 115);
    EXPECT_EQ(link.c2, -20);
    EXPECT_FALSE(link.slewPs);
  }
  EXPECT_TRUE(tx.rx.empty());
  const PortState rx = wantedPort("receive = { peak = 1 }\n", 1);
  EXPECT_EQ(rx.rx[0].pole, 6);
  EXPECT_EQ(rx.rx[0].peak, 1);
  EXPECT_FALSE(rx.rx[0].dfeMode);
  const PortState modes = wantedPort("transmit = { slew = 24 }\nreceive = { mode = \"DFE5\" }\n", 1);
  EXPECT_FALSE(modes.tx[0].k);
  EXPECT_FALSE(modes.rx[0].pole);
}

TEST(Wanted, ANewSpeedBringsItsCache) {
  const PortState said = wantedPort("speed = \"4G\"\ntransmit = { c2 = -20 }\nreceive = { peak = 1 }\n", 1);
  EXPECT_EQ(said.tx[0].ffeMode, "FFE2");
  EXPECT_EQ(said.tx[0].k, 100);
  EXPECT_EQ(said.tx[0].c2, -20);
  EXPECT_EQ(said.tx[0].c3, 9);
  EXPECT_EQ(said.rx[0].pole, 5);
  EXPECT_EQ(said.rx[0].amax, 70);
  EXPECT_TRUE(wantedPort("speed = \"4G\"\n", 1).tx.empty());
  // Nobody knows what AUTO will bring, and the same speed brings nothing.
  EXPECT_EQ(wantedPort("speed = \"AUTO\"\ntransmit = { c2 = -20 }\n", 1).tx[0].k, 115);
  EXPECT_EQ(wantedPort("speed = \"8G\"\ntransmit = { c2 = -20 }\n", 1).tx[0].k, 115);
}

TEST(Wanted, ACacheThatIsDeclaredTooIsTheOneThatANewSpeedBrings) {
  const SwitchState state = wanted(
      "[[settings]]\nports = 1\nto = \"4G\"\ntransmit = { k = 70 }\n"
      "[[settings]]\nports = 1\nspeed = \"4G\"\ntransmit = { c2 = -20 }\n");
  EXPECT_EQ(state.asics[0].ports[0].tx[0].k, 70);
}

TEST(Wanted, WhatNoLinkCanHaveStaysAsItIs) {
  SwitchState now = smallSwitch();
  now.asics[0].ports[1].txCaches["4G"] = {.power = 70000, .slew = 0, .mode = 9, .p = {-2, 58, -300, 0}};
  const PortState port = wantedPort("speed = \"4G\"\ntransmit = { c0 = 1 }\n", 1, now);
  EXPECT_EQ(port.tx[0].k, 115);
  EXPECT_EQ(port.tx[0].ffeMode, "FFE3");
  EXPECT_EQ(port.tx[0].c2, -10);
}

TEST(Wanted, CachesInThePlatformsNumbers) {
  const PortState port = wantedPort(
      "to = [\"8G\", \"10G\"]\ntransmit = { mode = \"FFENone\", k = 300, c1 = 63, slew = 100 }\n"
      "receive = { mode = \"DFE1\", amax = -1 }\n",
      1);
  ASSERT_EQ(port.txCaches.size(), 2U);
  const TxRawValues& tx = port.txCaches.at("8G");
  EXPECT_EQ(tx.power, 300);
  EXPECT_EQ(tx.slew, 6);
  EXPECT_EQ(tx.mode, 0);
  EXPECT_EQ(tx.p, (std::array<std::int32_t, 4>{0, 63, -5, 9}));
  const RxRawValues& rx = port.rxCaches.at("10G");
  EXPECT_EQ(rx.mode, 3);
  EXPECT_EQ(rx.p, (std::array<std::int32_t, 4>{5, 3, -1, 8}));
  EXPECT_TRUE(port.tx.empty());
}

TEST(Wanted, EthernetPorts) {
  const PortState port = wantedPort("to = \"10G\"\nethernet = { pre_emphasis = 5, cdr_mode = 2 }\n", 3);
  EXPECT_EQ(port.txCaches.at("10G").power, 100);
  EXPECT_EQ(port.txCaches.at("10G").p[0], 5);
  EXPECT_EQ(port.txCaches.at("10G").p[1], 50);
  EXPECT_EQ(port.rxCaches.at("10G").mode, 2);
  EXPECT_EQ(port.rxCaches.at("10G").p[0], 5);
  EXPECT_EQ(refusal("[[settings]]\nports = \"2-3\"\nto = \"10G\"\nethernet = { power = 5 }\n"),
            "lab.toml:1: ethernet: port 2 of ASIC 0 is no ethernet port");
  EXPECT_EQ(
      refusal("[[settings]]\nto = \"10G\"\ntransmit = { k = 5 }\n"),
      "lab.toml:1: transmit, receive: port 3 of ASIC 0 is an ethernet port, whose caches have ethernet settings alone");
}

TEST(Wanted, WhatMustStayMustBeKnown) {
  SwitchState now = smallSwitch();
  static_cast<FfeValues&>(now.asics[0].ports[1].tx[0]) = {};
  now.asics[0].ports[1].txCaches.erase("8G");
  now.asics[0].ports[1].rx.clear();
  EXPECT_EQ(
      refusal("[[settings]]\nports = 1\ntransmit = { k = 1 }\n", now),
      "lab.toml:1: port 1 of ASIC 0 keeps k, c0 to c3 or the mode as it is, which could not be read: say all of it");
  EXPECT_EQ(
      refusal("[[settings]]\nports = 1\ntransmit = { mode = \"FFE2\", k = 1, c0 = 0, c1 = 1, c2 = 0, c3 = 0 }\n", now),
      "taken");
  EXPECT_EQ(refusal("[[settings]]\nports = 1\nto = \"8G\"\ntransmit = { k = 1 }\n", now),
            "lab.toml:1: port 1 of ASIC 0 has no 8G cache on that side, or it could not be read");
  EXPECT_EQ(refusal("[[settings]]\nports = 1\nreceive = { mode = \"DFE1\" }\n", now),
            "lab.toml:1: port 1 of ASIC 0 has no receive links, or they could not be read");
  now.asics[0].ports[0].rx[0].amax.reset();
  EXPECT_EQ(refusal("[[settings]]\nports = 0\nreceive = { pole = 1 }\n", now),
            "lab.toml:1: port 0 of ASIC 0 keeps pole, peak or amax as it is, which could not be read: say all of it");
}

// As settings and back.

std::string asSettings(const SwitchState& state) {
  return settingsText({.state = state, .origin = {.target = "sim", .time = "2025-11-21T21:13:05Z"}});
}

// Nothing where there is nothing to say.
std::optional<SwitchState> backFromSettings(const SwitchState& written, const SwitchState& now) {
  const std::string text = asSettings(written);
  if (text.find("[[settings]]") == std::string::npos) return std::nullopt;
  return wanted(text, now);
}

TEST(AsSettings, WantNothingOfTheSameSwitch) {
  int said = 0;
  for (std::uint32_t seed = 0; seed < kStates; ++seed) {
    Random random(seed);
    const SwitchState state = randomSave(random).state;
    const auto back = backFromSettings(state, state);
    if (!back) continue;
    ++said;
    const Comparison comparison = compare(state, *back);
    ASSERT_TRUE(comparison.settings.empty())
        << seed << " " << textOf(comparison.settings[0].place) << " " << comparison.settings[0].parameter;
    ASSERT_TRUE(comparison.hardware.empty() && comparison.notInFirst.empty());
  }
  EXPECT_GT(said, kStates / 2);
}

// What was said brings back what somebody changed.
TEST(AsSettings, WantWhatWas) {
  SwitchState before = smallSwitch();
  SwitchState now = before;
  PortState& port = now.asics[0].ports[1];
  port.streamEnabled = false;
  port.tx[0].c2 = 5;
  port.rx[0].dfeMode = "NONE";
  port.txCaches["4G"].power = 1;
  port.rxCaches["20G"].p[1] = 1;
  now.asics[0].ports[3].txCaches["10G"].p[0] = 77;
  now.asics[0].ports[3].rxCaches["10G"].mode = 77;
  const SwitchState back = wanted(asSettings(before), now);
  const Comparison there = compare(now, before), comparison = compare(now, back);
  EXPECT_EQ(there.settings.size(), 7U);
  EXPECT_EQ(comparison.settings, there.settings);
}

TEST(AsSettings, PortsThatShareSomethingAreTogether) {
  SwitchState state = smallSwitch();
  state.asics[0].ports[2].tx[1].k = 1;
  state.asics[0].ports[1].tx[0].slewUnnamed = true;
  state.asics[0].ports[1].tx[0].slewPs.reset();
  state.unread = {{0, 3, "tx_cache_raw 8G", "showTxParamsRaw asic 8G 3: refused"}};
  for (auto& [rate, cache] : state.asics[0].ports[0].txCaches)
    cache.slew = 2;
  EXPECT_EQ(asSettings(state),
            "# Settings of sim, 2025-11-21T21:13:05Z. Entries without \"to\" are of settings in use.\n"
            "# Left out of ports 1 of ASIC 0: a live transmit setting without a name\n"
            "# Left out of ports 1-2 of ASIC 0: a setting without a name in the caches for 1G, 2G, 4G, 8G, 10G, 20G\n"
            "# Left out of ports 2 of ASIC 0: live transmit settings, since its links differ\n"
            "\n[[settings]]\nports = \"0\"\nspeed = \"AUTO\"\nstream = true\n"
            "transmit = { mode = \"FFE3\", k = 115, c0 = -2, c1 = 58, c2 = -10, c3 = 0, slew = 36 }\n"
            "receive = { mode = \"DFE3\", pole = 6, peak = 4, amax = 0x4e }\n"
            "\n[[settings]]\nports = \"0\"\nto = \"caches\"\n"
            "transmit = { mode = \"FFE2\", k = 100, c0 = 0, c1 = 50, c2 = -5, c3 = 9, slew = 36 }\n"
            "receive = { mode = \"DFE5\", pole = 5, peak = 3, amax = 0x46 }\n"
            "\n[[settings]]\nports = \"1\"\nspeed = \"8G\"\nstream = true\n"
            "transmit = { mode = \"FFE3\", k = 115, c0 = -2, c1 = 58, c2 = -10, c3 = 0 }\n"
            "receive = { mode = \"DFE3\", pole = 6, peak = 4, amax = 0x4e }\n"
            "\n[[settings]]\nports = \"1-2\"\nto = \"caches\"\n"
            "transmit = { mode = \"FFE2\", k = 100, c0 = 0, c1 = 50, c2 = -5, c3 = 9 }\n"
            "receive = { mode = \"DFE5\", pole = 5, peak = 3, amax = 0x46 }\n"
            "\n[[settings]]\nports = \"2\"\nspeed = \"8G\"\nstream = true\n"
            "receive = { mode = \"DFE3\", pole = 6, peak = 4, amax = 0x4e }\n"
            "\n[[settings]]\nports = \"3\"\nspeed = \"8G\"\nstream = true\n"
            "\n[[settings]]\nports = \"3\"\nto = \"caches\"\n"
            "ethernet = { power = 100, pre_emphasis = 0, cdr_mode = 1, eq_mode = 5 }\n"
            "# Not read: tx_cache_raw 8G: showTxParamsRaw asic 8G 3: refused\n");
}

}  // namespace
}  // namespace serdesctl
