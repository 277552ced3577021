// What a description cannot say is named, and texts are quoted as TOML has them.
#include "serdesctl/twin/description.h"

#include <gtest/gtest.h>

#include "display/name_tables.h"

namespace serdesctl {
namespace {

// A port of SerDes type 2 at 8G, alone on its core.
SwitchState onePort() {
  SwitchState state;
  state.hardware = {.slots = 1, .userPorts = 1, .auxPorts = 0, .asics = 1};
  AsicState& asic = state.asics.emplace_back();
  asic.config.portCount = asic.config.coreCount = 1;
  asic.config.glPorts = 1;
  const ConfigSide side = {.links = 1, .serDesType = "T2", .core = 0};
  asic.config.ports.push_back({.port = 0, .rx = side, .tx = side, .userPort = 4});
  for (const char* name : {"T0", "T1", "T2", "T3", "T4", "T5", "T6"})
    asic.config.types.push_back({.name = name, .useCount = 0});
  asic.cores.push_back({.asic = 0,
                        .core = 0,
                        .firstPort = 0,
                        .serDesType = 2,
                        .pllRegisters = 12,
                        .rxRegisters = 24,
                        .txRegisters = 16,
                        .rxParams = 5,
                        .txParams = 7});
  PortState& port = asic.ports.emplace_back();
  port.configRate = "8G";
  port.streamEnabled = true;
  port.observed.media = "ELC";
  port.txCaches["8G"] = {.power = 115, .slew = 2, .mode = 1, .p = {0, 58, -8, 0}};
  port.rxCaches["8G"] = {.mode = 0, .p = {6, 4, 78, 0}};
  return state;
}

Description describe(const SwitchState& state) {
  const SwitchModel model = modelOf(state);
  return descriptionOf(state, model, fitPorts(model), "a test");
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
}

TEST(Description, NamesWhatItCannotSay) {
  SwitchState state = onePort();
  state.asics[0].config.types[6].name = "a name of more than nineteen characters";
  state.asics[0].cores[0].rxRegisters = 99;
  state.asics[0].ports[0].tx.emplace_back().ffeMode = kUnnamed;
  state.unread.push_back({.asic = 0, .port = 0, .what = "vga", .why = "it said no"});
  const Description description = describe(state);
  ASSERT_EQ(description.notes.size(), 4U);
  EXPECT_EQ(description.notes[0], "port 0 of ASIC 0 tx link 0: settings that its SerDes cannot have");
  EXPECT_EQ(description.notes[1], "core 0 of ASIC 0: rx_registers of 99 is 32 here");
  EXPECT_EQ(description.notes[2], "port 0 of ASIC 0: vga could not be read");
  EXPECT_TRUE(says(description, "# Not said here: port 0 of ASIC 0: vga could not be read"));
}

TEST(Description, RegistersOfAnotherLayoutAreLeftOut) {
  SwitchState state = onePort();
  state.asics[0].ports[0].tx.emplace_back().k = 115;
  state.asics[0].registers.emplace().tx[0] = {std::vector<std::uint16_t>(16, 0xffff)};
  const Description description = describe(state);
  EXPECT_EQ(description.text.find("tx_values"), std::string::npos);
  ASSERT_EQ(description.notes.size(), 1U);
  EXPECT_NE(description.notes[0].find("lie otherwise"), std::string::npos);
}

TEST(TomlText, IsQuotedAndWhole) {
  EXPECT_EQ(tomlText("plain"), "\"plain\"");
  EXPECT_EQ(tomlText("a\"b\\c"), "\"a\\\"b\\\\c\"");
  EXPECT_EQ(tomlText("a\nb\x7f"), "\"a\\u000ab\\u007f\"");
  EXPECT_EQ(tomlText("\xc3\xa4\xe2\x82\xac\xf0\x9f\x8c\x8a"), "\"\xc3\xa4\xe2\x82\xac\xf0\x9f\x8c\x8a\"");
  // Cut off, overlong, a surrogate, beyond the last character, and a stray byte.
  EXPECT_EQ(tomlText("\xc3"), "\"?\"");
  EXPECT_EQ(tomlText("\xc0\xaf"), "\"\?\?\"");
  EXPECT_EQ(tomlText("\xed\xa0\x80"), "\"\?\?\?\"");
  EXPECT_EQ(tomlText("\xf4\x90\x80\x80"), "\"\?\?\?\?\"");
  EXPECT_EQ(tomlText("\x80x"), "\"?x\"");
}

}  // namespace
}  // namespace serdesctl
