// What a description cannot say is named, and texts are quoted as TOML has them.
#include "serdesctl/twin/description.h"

#include <gtest/gtest.h>

#include <tuple>
#include <utility>

#include "display/name_tables.h"
#include "tests/serdesctl/twin/one_port.h"

namespace serdesctl {
namespace {

Description describe(const SwitchState& state) {
  const SwitchModel model = modelOf(state);
  return descriptionOf(state, model, fitPorts(model), "a test");
}

using Change = void (*)(AsicState& asic);

Description describeChanged(Change change) {
  SwitchState state = onePort();
  change(state.asics[0]);
  return describe(state);
}

using Notes = std::vector<std::string>;

// An ethernet port as it is after a reset.
void makeEthernet(AsicState& asic) {
  asic.config.glPorts = 0;
  asic.config.exgPorts = 1;
  asic.config.ports[0].rx.serDesType = asic.config.ports[0].tx.serDesType = "T4";
  asic.cores[0].serDesType = 4;
  asic.ports[0].configRate = "10G";
  asic.ports[0].txCaches.clear();
  asic.ports[0].rxCaches.clear();
}

bool says(const Description& description, const std::string& line) {
  return ("\n" + description.text).find("\n" + line + "\n") != std::string::npos;
}

TEST(Description, SaysWhatIsSaved) {
  const Description description = describe(onePort());
  EXPECT_EQ(description.notes, std::vector<std::string>());
  for (const char* line : {"kind = \"GL\"", "user_port = 4", "media = \"electrical\"", "speed = \"8G\"",
                           "ffe = \"FFE2\"", "taps = [0, 58, -8, 0]", "slew = 36", "far_end = \"loop\"",
                           "connectors = 2", "type_names = [\"T0\", \"T1\", \"T2\", \"T3\", \"T4\", \"T5\", \"T6\"]"})
    EXPECT_TRUE(says(description, line)) << line << "\n" << description.text;
  EXPECT_EQ(description.text.find("live"), std::string::npos);
}

TEST(Description, LiveSettingsBesideTheCacheHaveAName) {
  SwitchState state = onePort();
  LiveTx& tx = state.asics[0].ports[0].tx.emplace_back();
  tx.ffeMode = "FFE3";
  tx.k = 90;
  const Description description = describe(state);
  EXPECT_NE(description.text.find("live = \"set"), std::string::npos) << description.text;
  EXPECT_TRUE(says(description, "power = 90"));
  EXPECT_EQ(description.notes, std::vector<std::string>());
}

TEST(Description, EachLiveSettingCounts) {
  LiveTx tx;
  static_cast<FfeValues&>(tx) = {"FFE4", 115, -1, 58, -8, -2};
  tx.slewPs = 36;
  LiveRx rx;
  rx.dfeMode = "DFE3";
  static_cast<VgaValues&>(rx) = {.pole = 6, .peak = 4, .amax = 78};
  const auto described = [&](auto change) {
    SwitchState state = onePort();
    PortState& port = state.asics[0].ports[0];
    port.txCaches["8G"] = {.power = 115, .slew = 2, .mode = 3, .p = {-1, 58, -8, -2}};
    port.tx = {tx};
    port.rx = {rx};
    change(port.tx[0], port.rx[0]);
    return describe(state);
  };
  const std::vector<std::pair<void (*)(LiveTx&, LiveRx&), std::string>> cases = {
      {[](LiveTx& t, LiveRx&) { t.ffeMode = "FFE3"; }, "ffe = \"FFE3\""},
      {[](LiveTx& t, LiveRx&) { t.k = 90; }, "power = 90"},
      {[](LiveTx& t, LiveRx&) { t.c0 = -3; }, "taps = [-3, 58, -8, -2]"},
      {[](LiveTx& t, LiveRx&) { t.c1 = 50; }, "taps = [-1, 50, -8, -2]"},
      {[](LiveTx& t, LiveRx&) { t.c2 = -3; }, "taps = [-1, 58, -3, -2]"},
      {[](LiveTx& t, LiveRx&) { t.c3 = -3; }, "taps = [-1, 58, -8, -3]"},
      {[](LiveTx& t, LiveRx&) { t.slewPs = 50; }, "slew = 50"},
      {[](LiveTx&, LiveRx& r) { r.dfeMode = "DFE5"; }, "dfe = \"DFE5\""},
      {[](LiveTx&, LiveRx& r) { r.pole = 3; }, "pole = 3"},
      {[](LiveTx&, LiveRx& r) { r.peak = 6; }, "peak = 6"},
      {[](LiveTx&, LiveRx& r) { r.amax = 60; }, "amax = 60"},
  };
  for (const auto& [change, line] : cases) {
    const Description description = described(change);
    EXPECT_TRUE(says(description, line)) << line << "\n" << description.text;
    EXPECT_NE(description.text.find("\nlive = \"set"), std::string::npos) << line;
    EXPECT_EQ(description.notes, Notes()) << line;
  }
  EXPECT_EQ(described([](LiveTx&, LiveRx&) {}).text.find("live"), std::string::npos);
}

TEST(Description, EthernetHasTheSettingsThatShowSo) {
  const std::string shown = std::to_string(SLEW_UNKNOWN);
  const std::vector<std::tuple<Change, std::string, Notes>> cases = {
      {[](AsicState&) {}, "eq_mode = 2", {}},
      {[](AsicState& asic) { asic.ports[0].rx.emplace_back().peak = 5; }, "eq_mode = 5", {}},
      {[](AsicState& asic) { asic.ports[0].tx.emplace_back().k = 1; },
       "power = 7",
       {"port 0 of ASIC 0 tx link 0: settings that its SerDes cannot have"}},
      {[](AsicState& asic) {
         asic.ports[0].txCaches["1G"] = {9, SLEW_UNKNOWN, FFE_NONE, {3, 0, 0, 0}};
       },
       "pre_emphasis = 3",
       {}},
      {[](AsicState& asic) {
         asic.ports[0].txCaches["1G"] = {9, SLEW_UNKNOWN, FFE_NONE, {3, 0, 1, 0}};
       },
       "tx = [9, " + shown + ", 0, 3, 0, 1, 0]",
       {}},
  };
  for (const auto& [change, line, notes] : cases) {
    SwitchState state = onePort();
    makeEthernet(state.asics[0]);
    change(state.asics[0]);
    const Description description = describe(state);
    EXPECT_TRUE(says(description, "kind = \"EXG\""));
    EXPECT_TRUE(says(description, line)) << line << "\n" << description.text;
    EXPECT_EQ(description.notes, notes) << line;
  }
}

TEST(Description, ASideWithoutLinksHasNoLiveSettings) {
  for (const bool dumped : {false, true}) {
    SwitchState state = onePort();
    AsicState& asic = state.asics[0];
    asic.config.ports[0].tx.links = 0;
    asic.ports[0].rx.emplace_back().pole = 3;
    if (dumped) asic.registers.emplace();
    Description description = describe(state);
    EXPECT_EQ(says(description, "pole = 3"), !dumped) << description.text;
    EXPECT_EQ(description.text.find("rx_values = [[0x") != std::string::npos, dumped);
    EXPECT_EQ(description.text.find("tx_values"), std::string::npos);
    asic.config.ports[0] = onePort().asics[0].config.ports[0];
    asic.config.ports[0].rx.links = 0;
    asic.ports[0].rx.clear();
    asic.ports[0].tx.emplace_back().k = 90;
    description = describe(state);
    EXPECT_EQ(says(description, "power = 90"), !dumped) << description.text;
    EXPECT_EQ(description.text.find("tx_values = [[0x") != std::string::npos, dumped);
    EXPECT_EQ(description.notes, Notes());
  }
}

TEST(Description, WithoutMediaAutoFindsNoSpeedWhoseCacheSaysTheLiveSettings) {
  SwitchState state = onePort();
  PortState& port = state.asics[0].ports[0];
  port.configRate = "AUTO";
  port.streamEnabled = false;
  port.observed.media = mediaNames[MEDIA_NONE].name;
  LiveTx& tx = port.tx.emplace_back();
  static_cast<FfeValues&>(tx) = {"FFE2", 115, 0, 58, -8, 0};
  const Description description = describe(state);
  EXPECT_NE(description.text.find("live = \"set"), std::string::npos) << description.text;
}

TEST(Description, WhatTheDriverRefusesIsSaidByRegisters) {
  SwitchState state = onePort();
  LiveTx& tx = state.asics[0].ports[0].tx.emplace_back();
  tx.c1 = 63;
  tx.c2 = -63;
  const Description description = describe(state);
  EXPECT_NE(description.text.find("tx_values = [[0x"), std::string::npos) << description.text;
  EXPECT_EQ(description.notes, std::vector<std::string>());
}

TEST(Description, RawNumbersWithoutNamesStayNumbers) {
  SwitchState state = onePort();
  state.asics[0].ports[0].txCaches["2G"] = {.power = -1, .slew = 9, .mode = 7, .p = {1, 2, 3, 4}};
  EXPECT_TRUE(says(describe(state), "tx = [-1, 9, 7, 1, 2, 3, 4]"));
  state.asics[0].ports[0].txCaches["2G"] = state.asics[0].ports[0].txCaches["8G"];
  state.asics[0].ports[0].rxCaches["2G"] = {.mode = 4, .p = {6, 4, 78, 0}};
  EXPECT_TRUE(says(describe(state), "rx = [4, 6, 4, 78, 0]"));
  state.asics[0].ports[0].rxCaches["2G"] = {.mode = 0, .p = {6, 4, 78, 1}};
  EXPECT_TRUE(says(describe(state), "rx = [0, 6, 4, 78, 1]"));
}

TEST(Description, NamesWhatItCannotSay) {
  SwitchState state = onePort();
  state.asics[0].config.types[6].name = "a name of more than nineteen characters";
  state.asics[0].cores[0].rxRegisters = 99;
  state.asics[0].ports[0].tx.emplace_back().ffeMode = kUnnamed;
  state.unread = {{.asic = 0, .port = 0, .what = "vga", .why = "it said no"}, {.asic = 0, .what = "config", .why = ""}};
  const Description description = describe(state);
  ASSERT_EQ(description.notes.size(), 5U);
  EXPECT_EQ(description.notes[0], "port 0 of ASIC 0 tx link 0: settings that its SerDes cannot have");
  EXPECT_EQ(description.notes[1], "core 0 of ASIC 0: rx_registers of 99 is 32 here");
  EXPECT_EQ(description.notes[2], "port 0 of ASIC 0: vga could not be read");
  EXPECT_EQ(description.notes[3], "ASIC 0: config could not be read");
  EXPECT_TRUE(says(description, "# Not said here: port 0 of ASIC 0: vga could not be read"));
}

TEST(Description, RegistersOfAnotherLayoutAreLeftOut) {
  const std::vector<std::uint16_t> other(16, 0xffff);
  for (const bool tx : {true, false}) {
    SwitchState state = onePort();
    AsicState& asic = state.asics[0];
    asic.ports[0].tx.emplace_back().k = 115;
    asic.ports[0].rx.emplace_back().pole = 6;
    RegisterDumps& dumps = asic.registers.emplace();
    (tx ? dumps.tx : dumps.rx)[0] = {other};
    const Description description = describe(state);
    EXPECT_EQ(description.text.find("x_values"), std::string::npos);
    ASSERT_EQ(description.notes.size(), 1U);
    EXPECT_NE(description.notes[0].find("lie otherwise"), std::string::npos);
  }
}

// A twin adapts its taps itself, unless they are held.
TEST(Description, OfRegistersWhatStaysIsSaid) {
  using simulator::Field;
  const simulator::RegisterMap& map = simulator::serDesTraits(2).rx;
  const auto described = [&](auto change) {
    SwitchState state = onePort();
    simulator::RegisterFile registers = modelOf(state).asics[0].ports[0].rx[0];
    change(registers);
    state.asics[0].registers.emplace().rx[0] = {{registers.begin(), registers.end()}};
    return describe(state).text;
  };
  const auto adapted = [&](auto& registers) { map.write(registers, Field::kTap0, 9); };
  EXPECT_EQ(described(adapted).find("rx_values"), std::string::npos);
  const std::string held = described([&](auto& registers) {
    adapted(registers);
    map.write(registers, Field::kHold, 1);
  });
  EXPECT_NE(held.find("\nrx_values = [[0x0000, 0x0009, "), std::string::npos) << held;
  EXPECT_NE(held.find(", 0x0009, "), std::string::npos) << held;
  // Registers that the type does not have by itself are said up to the last that counts.
  const std::string beyond = described([](auto& registers) { registers[27] = 0x1234; });
  EXPECT_NE(beyond.find(", 0x0000, 0x1234]]\n"), std::string::npos) << beyond;
}

TEST(Description, ALinkThatIsMissingInADumpIsAsItsSettingsSay) {
  SwitchState state = onePort();
  AsicState& asic = state.asics[0];
  asic.config.ports[0].tx.links = 2;
  asic.ports[0].tx.resize(2);
  asic.ports[0].tx[1].k = 90;
  asic.registers.emplace().tx[0] = {{0, 1}};
  const Description description = describe(state);
  EXPECT_EQ(description.notes, Notes());
  EXPECT_NE(description.text.find(", 0x005a, "), std::string::npos) << description.text;
}

TEST(Description, PllsWithoutClocksAreLeftOut) {
  const auto described = [](std::uint32_t type, std::uint16_t enabled) {
    SwitchState state = onePort();
    state.asics[0].cores[0].serDesType = type;
    state.asics[0].registers.emplace().pll[0] = {0, enabled, 0, 0, 0x77};
    return describe(state);
  };
  EXPECT_TRUE(says(described(2, 1), "pll_values = [0x0000, 0x0001, 0x0000, 0x0000, 0x0077]"));
  EXPECT_EQ(described(2, 0).text.find("pll_values"), std::string::npos);
  const Description beyond = described(9, 1);
  EXPECT_EQ(beyond.text.find("pll_values"), std::string::npos);
  EXPECT_EQ(beyond.notes.back(), "core 0 of ASIC 0: type of 9 is 6 here");
}

TEST(Description, AUserPortIsThatOfOnePort) {
  for (const auto& [userPort, note] : {std::pair(5U, ""), std::pair(4U, " 4 is that of another port too"),
                                       std::pair(0xFFFFU, " 65535 is none"), std::pair(70000U, " 70000 is none")}) {
    SwitchState state = onePort();
    ConfigText& config = state.asics[0].config;
    config.glPorts = 3;
    config.ports.push_back(config.ports[0]);
    config.ports[1].port = 1;
    config.ports[1].userPort = userPort;
    state.asics[0].ports.push_back(state.asics[0].ports[0]);
    state.asics[0].ports[1].port = 1;
    const Description description = describe(state);
    EXPECT_EQ(says(description, "user_port = " + std::to_string(userPort)), userPort < 6);
    EXPECT_EQ(description.notes,
              *note == '\0' ? Notes() : Notes{std::string("port 1 of ASIC 0: its user port") + note});
  }
}

// What a switch says of a port need not fit together.
TEST(Description, OddPortsAreSaidAsTheyAre) {
  const std::vector<std::tuple<Change, Notes, Notes>> cases = {
      {[](AsicState& asic) {
         asic.cores.push_back(asic.cores[0]);
         asic.cores[1].core = 1;
         asic.cores[1].serDesType = 4;
         asic.config.ports[0].tx = {.links = 1, .serDesType = "T4", .core = 1};
       },
       {"kind = \"GL\"", "misplaced = true"},
       {}},
      {[](AsicState& asic) {
         makeEthernet(asic);
         asic.config.exgPorts = 0;
       },
       {"kind = \"EXG\"", "present = false"},
       {}},
      {[](AsicState& asic) { asic.config.glPorts = 0; }, {"kind = \"GL\"", "present = false"}, {}},
      {[](AsicState& asic) { asic.config.ports[0].tx = {.links = 1, .serDesType = "T0", .core = 7}; },
       {"tx_core = 7"},
       {}},
      {[](AsicState& asic) { asic.config.ports[0].rx.serDesType = "T3"; },
       {"rx_core = 0"},
       {"port 0 of ASIC 0: the name of its SerDes type, T3"}},
      {[](AsicState& asic) { asic.config.types.resize(2); }, {R"(type_names = ["T0", "T1", "", "", "", "", ""])"}, {}},
      {[](AsicState& asic) { asic.config.ports[0].tx.links = 4294967295; },
       {"tx_links = 4"},
       {"port 0 of ASIC 0: tx_links of 4294967295 is 4 here"}},
  };
  for (const auto& [change, lines, notes] : cases) {
    const Description description = describeChanged(change);
    for (const std::string& line : lines)
      EXPECT_TRUE(says(description, line)) << line << "\n" << description.text;
    EXPECT_EQ(description.notes, notes) << description.text;
  }
}

TEST(TomlText, IsQuotedAndWhole) {
  EXPECT_EQ(tomlText("plain"), "\"plain\"");
  EXPECT_EQ(tomlText("a\"b\\c"), "\"a\\\"b\\\\c\"");
  EXPECT_EQ(tomlText("a\nb\x7f"), "\"a\\u000ab\\u007f\"");
  EXPECT_EQ(tomlText("\xc3\xa4\xe2\x82\xac\xf0\x9f\x8c\x8a"), "\"\xc3\xa4\xe2\x82\xac\xf0\x9f\x8c\x8a\"");
  // Cut off, overlong, a surrogate, beyond the last character, longer than any, one that does not go on, and a stray
  // byte.
  EXPECT_EQ(tomlText("\xc3"), "\"?\"");
  EXPECT_EQ(tomlText("\xc0\xaf"), "\"\?\?\"");
  EXPECT_EQ(tomlText("\xed\xa0\x80"), "\"\?\?\?\"");
  EXPECT_EQ(tomlText("\xf4\x90\x80\x80"), "\"\?\?\?\?\"");
  EXPECT_EQ(tomlText("\xf8\x88\x80\x80\x80"), "\"\?\?\?\?\?\"");
  EXPECT_EQ(tomlText("\xc3("), "\"?(\"");
  EXPECT_EQ(tomlText("\x80x"), "\"?x\"");
}

}  // namespace
}  // namespace serdesctl
