// Settings files: what they say, and what is wrong with them.
#include "serdesctl/settings/settings_file.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "serdesctl/base/errors.h"

namespace serdesctl {
namespace {

SettingsEntry entryOf(const std::string& lines) {
  return parseSettings("[[settings]]\n" + lines, "lab.toml").entries.at(0);
}

// What is said of an entry with these lines.
std::string refusal(const std::string& text) {
  try {
    (void)parseSettings(text, "lab.toml");
  } catch (const UsageError& error) {
    return error.what();
  }
  return "taken";
}

TEST(SettingsFile, ReadsAnEntry) {
  const SettingsEntry entry = entryOf(
      "ports = \"1-3, 7\"\nasic = 1\nkind = [\"gl\", \"XG\"]\nserdes_type = \"SERDES_11G\"\nmedia = \"opt\"\n"
      "rate = \"AUTO\"\nrunning_rate = [\"8g\"]\nuser_ports = 12\noptional = true\nspeed = \"10G\"\nstream = false\n"
      "to = [\"live\", \"8G\"]\ntransmit = { mode = \"ffe3\", k = 255, c0 = -128, c1 = 127, c2 = 0, c3 = 1, slew = 36 "
      "}\n"
      "receive = { mode = \"none\", pole = 6, peak = 4, amax = 0x4e }\n");
  EXPECT_EQ(entry.line, 1U);
  EXPECT_EQ(entry.selector.asic, 1U);
  EXPECT_EQ(entry.selector.ports, (std::set<std::uint32_t>{1, 2, 3, 7}));
  EXPECT_EQ(entry.selector.userPorts, (std::set<std::uint32_t>{12}));
  EXPECT_EQ(entry.selector.kinds, (std::set<std::string>{"gl", "xg"}));
  EXPECT_EQ(entry.selector.serDesTypes, (std::set<std::string>{"SERDES_11G"}));
  EXPECT_EQ(entry.selector.media, (std::set<std::string>{"OPT"}));
  EXPECT_EQ(entry.selector.rates, (std::set<std::string>{"AUTO"}));
  EXPECT_EQ(entry.selector.runningRates, (std::set<std::string>{"8G"}));
  EXPECT_TRUE(entry.optional);
  EXPECT_EQ(entry.speed, "10G");
  EXPECT_EQ(entry.stream, false);
  EXPECT_TRUE(entry.live);
  EXPECT_EQ(entry.caches, (std::set<std::string>{"8G"}));
  EXPECT_EQ(entry.transmit.ffeMode, "FFE3");
  EXPECT_EQ(entry.transmit.k, 255);
  EXPECT_EQ(entry.transmit.c0, -128);
  EXPECT_EQ(entry.transmit.slewPs, 36);
  EXPECT_EQ(entry.receive.dfeMode, "NONE");
  EXPECT_EQ(entry.receive.amax, 78);
}

TEST(SettingsFile, WhereSettingsGo) {
  const auto destinations = [](const std::string& to) { return entryOf(to + "transmit = { k = 1 }\n"); };
  EXPECT_TRUE(destinations("").live);
  EXPECT_TRUE(destinations("").caches.empty());
  EXPECT_FALSE(destinations("to = \"caches\"\n").live);
  EXPECT_EQ(destinations("to = \"caches\"\n").caches.size(), 6U);
  EXPECT_EQ(destinations("to = [\"1G\", \"20G\"]\n").caches, (std::set<std::string>{"1G", "20G"}));
  EXPECT_TRUE(destinations("to = [\"live\", \"caches\"]\n").live);
  const SettingsEntry ethernet =
      entryOf("to = \"10G\"\nethernet = { power = 6, pre_emphasis = 5, cdr_mode = 2, eq_mode = 1 }\n");
  EXPECT_FALSE(ethernet.live);
  EXPECT_EQ(ethernet.ethernet.eqMode, 1);
}

TEST(SettingsFile, PortsAreOfTheFirstAsicUnlessSaid) {
  EXPECT_EQ(entryOf("ports = 3\nstream = true\n").selector.asic, 0U);
  EXPECT_FALSE(entryOf("user_ports = 3\nstream = true\n").selector.asic);
  EXPECT_FALSE(entryOf("stream = true\n").selector.asic);
}

TEST(SettingsFile, OnlyCachesHoldLargeNumbers) {
  EXPECT_EQ(entryOf("to = \"8G\"\ntransmit = { k = -70000, c1 = 2147483647 }\n").transmit.k, -70000);
  EXPECT_EQ(refusal("[[settings]]\nto = [\"live\", \"8G\"]\ntransmit = { k = -1 }\n"),
            "lab.toml:3: transmit.k: -1 is no number from 0 to 255");
  EXPECT_EQ(refusal("[[settings]]\nto = \"8G\"\ntransmit = { k = 2147483648 }\n"),
            "lab.toml:3: transmit.k: 2147483648 is no number from -2147483648 to 2147483647");
}

TEST(SettingsFile, NamesWhatIsWrong) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"ports = \"1-24\"", "2: ports: '1-24' is no list of numbers up to 23 as \"1-5,7\""},
      {"ports = \"3-1\"", "2: ports: '3-1' is no list"},
      {"ports = \"\"", "2: ports: '' is no list"},
      {"ports = \"1,\"", "2: ports: '1,' is no list"},
      {"ports = \"+1\"", "2: ports: '+1' is no list"},
      {"ports = \"1;2\"", "2: ports: '1;2' is no list"},
      {"ports = -1", "2: ports: -1 is no list"},
      {"ports = [1, 2]", "2: ports: this is no list"},
      {"user_ports = 65535", "2: user_ports: 65535 is no list of numbers up to 65534"},
      {"kind = \"fc\"", "2: kind: 'fc' is none of gl, xg, exg"},
      {"kind = []", "2: kind: an empty list"},
      {"serdes_type = 3", "2: serdes_type: 3 is no text"},
      {"rate = \"INV\"", "2: rate: 'INV' is none of AUTO, 1G, 2G, 4G, 8G, 10G, 20G"},
      {"running_rate = \"AUTO\"", "2: running_rate: 'AUTO' is none of 1G, "},
      {"asic = 2", "2: asic: 2 is no number from 0 to 1"},
      {"optional = 1", "2: optional: 1 is neither true nor false"},
      {"speed = 8", "2: speed: 8 is none of AUTO, 1G, 2G, 4G, 8G, 10G, 20G"},
      {"speed = \"\"", "2: speed: '' is none of AUTO"},
      {"stream = \"on\"", "2: stream: 'on' is neither true nor false"},
      {"to = \"8G\"", "1: to: there is no transmit, receive or ethernet here"},
      {"to = \"AUTO\"\ntransmit = { k = 1 }", "2: to: 'AUTO' is none of live, caches, 1G, 2G, 4G, 8G, 10G, 20G"},
      {"transmit = 3", "2: transmit: 3 is no table"},
      {"transmit = {}", "2: transmit: empty: none of mode, k, c0"},
      {"transmit = { mode = \"FFE1\" }", "2: transmit.mode: 'FFE1' is none of FFENone, FFE2, FFE3, FFE4"},
      {"transmit = { mode = 2 }", "2: transmit.mode: 2 is none of"},
      {"transmit = { slew = 37 }", "2: transmit.slew: 37 is none of 24, 30, 36, 50, 60, 75, 100"},
      {"transmit = { c2 = 1.0 }", "2: transmit.c2: this is no number from -128 to 127"},
      {"transmit = { taps = 1 }", "2: transmit.taps: unknown: none of mode, k, c0, c1, c2, c3, slew"},
      {"receive = { amax = 0x80 }", "2: receive.amax: 128 is no number from -128 to 127"},
      {"receive = { mode = \"FFE2\" }", "2: receive.mode: 'FFE2' is none of DFE3, DFE5, NONE, DFE1"},
      {"ethernet = { power = 1 }", "1: ethernet: to is missing"},
      {"to = \"live\"\nethernet = { power = 1 }", "2: to: 'live' is none of the caches"},
      {"to = \"8G\"\nethernet = { k = 1 }", "3: ethernet.k: unknown: none of power, pre_emphasis, cdr_mode, eq_mode"},
      {"colour = 1", "2: colour: unknown: none of ports, user_ports, "},
      {"", "1: sets nothing: none of speed, stream, transmit, receive, ethernet"},
  };
  for (const auto& [lines, message] : cases) {
    const std::string said = refusal("[[settings]]\n" + lines + "\n");
    EXPECT_NE(said.find("lab.toml:" + message), std::string::npos) << lines << ": " << said;
  }
}

TEST(SettingsFile, NamesAllThatIsWrong) {
  EXPECT_EQ(refusal("[[settings]]\nspeed = 8\n\n[[settings]]\nstream = 1\n[[settings]]\n"),
            "lab.toml:2: speed: 8 is none of AUTO, 1G, 2G, 4G, 8G, 10G, 20G\n"
            "lab.toml:5: stream: 1 is neither true nor false\n"
            "lab.toml:6: sets nothing: none of speed, stream, transmit, receive, ethernet");
}

TEST(SettingsFile, RefusesOtherFiles) {
  EXPECT_EQ(refusal(""), "lab.toml:1: settings: no entry: each begins with [[settings]]");
  EXPECT_EQ(refusal("settings = 3"), "lab.toml:1: settings: no entry: each begins with [[settings]]");
  EXPECT_EQ(refusal("settings = []"), "lab.toml:1: settings: no entry: each begins with [[settings]]");
  EXPECT_EQ(refusal("settings = [3]"), "lab.toml:1: settings: not a table: an entry begins with [[settings]]");
  EXPECT_EQ(refusal("[[setting]]\n"),
            "lab.toml:1: setting: unknown: none of settings\n"
            "lab.toml:1: settings: no entry: each begins with [[settings]]");
  EXPECT_NE(refusal("[[settings]]\nspeed = \n").find("lab.toml:2: "), std::string::npos);
  EXPECT_NE(refusal("[[settings]]\nspeed = \"8G\"\nspeed = \"4G\"\n").find("lab.toml:3: "), std::string::npos);
}

}  // namespace
}  // namespace serdesctl
