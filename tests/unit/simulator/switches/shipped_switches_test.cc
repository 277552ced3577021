// The descriptions in simulator/switches: each loads and is what it says it is.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>

#include "simulator/switch/switch.h"

namespace simulator {
namespace {

namespace fs = std::filesystem;

std::string fileOf(const std::string& name) {
  return fs::path(SERDES_SOURCE_FOLDER) / "simulator" / "switches" / (name + ".toml");
}

port_id_t id(unsigned asic, unsigned port) {
  return {.userPort = kNoUserPort,
          .asic = static_cast<std::uint16_t>(asic),
          .asicPort = static_cast<std::uint16_t>(port),
          .unused = {}};
}

std::vector<std::string> shippedNames() {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(fileOf("default")).parent_path())) {
    names.push_back(entry.path().stem());
  }
  std::sort(names.begin(), names.end());
  return names;
}

TEST(ShippedSwitches, AreThese) {
  EXPECT_EQ(shippedNames(), (std::vector<std::string>{"all-gl", "awkward", "bench", "default", "faulty"}));
}

TEST(ShippedSwitches, EachLoadsAndAnswersForEveryPortAndLink) {
  for (const std::string& name : shippedNames()) {
    const SwitchDescription description = readDescriptionFile(fileOf(name));
    Switch sw(description);
    EXPECT_EQ(sw.evaluations(), 0U) << name;
    for (unsigned asic = 0; asic < description.asics.size(); ++asic) {
      for (unsigned port = 0; port < description.asics[asic].ports.size(); ++port) {
        unsigned long state = 99;
        EXPECT_EQ(sw.getPortInfo(id(asic, port), PORT_INFO_STATE, &state), kOk);
        EXPECT_LE(state, kPortStateRunning);
        for (unsigned link = 0; link < description.asics[asic].ports[port].rxLinks; ++link) {
          SerDesRxDFEStats stats;
          EXPECT_EQ(sw.getRxDfeStats(asic, port, static_cast<int>(link), &stats), kOk);
          EXPECT_LE(stats.Ap, 127);
        }
      }
    }
  }
}

TEST(ShippedSwitches, EachButTheDefaultHasAnEndToEndCase) {
  for (const std::string& name : shippedNames()) {
    const fs::path folder = fs::path(SERDES_SOURCE_FOLDER) / "tests" / "e2e" / "switches" / name;
    EXPECT_EQ(fs::exists(folder / "switch"), name != "default") << folder;
  }
}

// Error rates in decimal places, 18 where there are no errors; -1 where the port is down.
std::vector<int> decadesOf(Switch& sw, unsigned ports) {
  std::vector<int> decades;
  for (unsigned port = 0; port < ports; ++port) {
    unsigned long state = 0;
    int status = -1;
    EXPECT_EQ(sw.getPortInfo(id(0, port), PORT_INFO_STATE, &state), kOk);
    EXPECT_EQ(sw.setTestOption(0, port, 0, kTestMargin, 1), kOk);
    EXPECT_EQ(sw.getTestStatus(0, port, 0, kTestMargin, &status), kOk);
    decades.push_back(state == kPortStateRunning ? status : -1);
  }
  return decades;
}

TEST(BenchSwitch, HasChannelsFromEasyToHopeless) {
  const SwitchDescription description = readDescriptionFile(fileOf("bench"));
  const std::vector<PortDescription>& ports = description.asics[0].ports;
  ASSERT_EQ(ports.size(), 24U);
  for (unsigned port = 1; port < 24; ++port) {
    EXPECT_GT(insertionLossDb(ports[port].channel, 4.25), insertionLossDb(ports[port - 1].channel, 4.25)) << port;
  }
  Switch sw(description);
  const std::vector<int> decades = decadesOf(sw, 24);
  EXPECT_TRUE(std::is_sorted(decades.rbegin(), decades.rend()));
  EXPECT_GT(std::count(decades.begin(), decades.end(), 18), 8);
  EXPECT_EQ(decades[22], -1);
  EXPECT_EQ(decades[23], -1);
}

TEST(BenchSwitch, CanBeRescuedUpToAPoint) {
  Switch sw(readDescriptionFile(fileOf("bench")));
  const std::vector<int> before = decadesOf(sw, 24);
  for (unsigned port = 18; port < 24; ++port) {
    ASSERT_EQ(sw.setTxFfe(0, port, -1, {.mode = FFE_3, .k = 160, .c = {-4, 55, -12, 0}}), kOk);
    ASSERT_EQ(sw.setTxSlew(0, port, -1, true, SLEW_24PS), kOk);
    ASSERT_EQ(sw.setRxDfe(0, port, -1, DFE_5), kOk);
    ASSERT_EQ(sw.setRxVga(0, port, -1, {.pole = 7, .peak = 5, .amax = 0x4e}), kOk);
  }
  const std::vector<int> decades = decadesOf(sw, 24);
  for (unsigned port = 18; port < 22; ++port)
    EXPECT_GE(decades[port], before[port] + 2) << port;
  EXPECT_EQ(decades[23], -1);
}

TEST(AllGlSwitch, HasNothingButGlPortsThatRun) {
  const SwitchDescription description = readDescriptionFile(fileOf("all-gl"));
  ASSERT_EQ(description.asics.size(), kMaxAsics);
  Switch sw(description);
  for (unsigned asic = 0; asic < kMaxAsics; ++asic) {
    ASSERT_EQ(description.asics[asic].ports.size(), kMaxPorts);
    for (unsigned port = 0; port < kMaxPorts; ++port) {
      EXPECT_EQ(description.asics[asic].ports[port].portType, kPortTypeGl);
      unsigned long state = 0;
      ASSERT_EQ(sw.getPortInfo(id(asic, port), PORT_INFO_STATE, &state), kOk);
      EXPECT_EQ(state, kPortStateRunning) << asic << ' ' << port;
    }
  }
}

TEST(AwkwardSwitch, HasEveryAwkwardTopology) {
  const SwitchDescription description = readDescriptionFile(fileOf("awkward"));
  ASSERT_EQ(description.asics.size(), 2U);
  EXPECT_TRUE(description.asics[1].ports.empty());
  EXPECT_FALSE(description.asics[1].cores.empty());
  const std::vector<CoreDescription>& cores = description.asics[0].cores;
  EXPECT_EQ(cores.size(), kMaxCores);
  std::set<unsigned> counts, types;
  for (const CoreDescription& core : cores) {
    counts.insert({core.pllRegisters, core.rxRegisters, core.txRegisters});
    types.insert(core.type);
  }
  for (const unsigned count : {0U, 4U, 5U, 32U})
    EXPECT_TRUE(counts.contains(count)) << count;
  EXPECT_EQ(types.size(), kSerDesTypes);
  std::set<std::pair<unsigned, unsigned>> links;
  std::set<std::uint32_t> shown;
  int absent = 0;
  for (const PortDescription& port : description.asics[0].ports) {
    links.insert({port.rxLinks, port.txLinks});
    shown.insert(port.shownType.value_or(port.portType));
    absent += port.present ? 0 : 1;
  }
  for (const auto& pair : {std::pair{0U, 0U}, {4U, 4U}, {4U, 1U}, {1U, 4U}, {0U, 2U}, {3U, 0U}}) {
    EXPECT_TRUE(links.contains(pair)) << pair.first << ' ' << pair.second;
  }
  for (const std::uint32_t type : {0U, 1U, 2U, 3U, 9U, UINT32_MAX})
    EXPECT_TRUE(shown.contains(type)) << type;
  EXPECT_EQ(absent, 1);
}

TEST(AwkwardSwitch, ShowsPortTypesThatNobodyKnows) {
  const Switch sw(readDescriptionFile(fileOf("awkward")));
  Port_HW_Config_t config;
  ASSERT_EQ(sw.getPortHwConfig(id(0, 7), &config), kOk);
  EXPECT_EQ(config.portType, 0U);
  ASSERT_EQ(sw.getPortHwConfig(id(0, 8), &config), kOk);
  EXPECT_EQ(config.portType, 9U);
  ASSERT_EQ(sw.getPortHwConfig(id(0, 6), &config), kOk);
  EXPECT_EQ(config.portType, kPortTypeGl);
}

TEST(FaultySwitch, HasFaultsOfEveryKind) {
  const SwitchDescription description = readDescriptionFile(fileOf("faulty"));
  const auto any = [&](auto what) { return std::any_of(description.faults.begin(), description.faults.end(), what); };
  using F = const FaultDescription&;
  EXPECT_TRUE(any([](F f) { return !f.answer && !f.always && f.ordinal == 1 && f.probability == kCertain; })) << "once";
  EXPECT_TRUE(any([](F f) { return !f.always && f.ordinal > 1 && f.probability == kCertain; })) << "the n-th";
  EXPECT_TRUE(any([](F f) { return !f.answer && f.always && f.ordinal == 1; })) << "for ever";
  EXPECT_TRUE(any([](F f) { return f.always && f.ordinal > 1; })) << "from the n-th on";
  EXPECT_TRUE(any([](F f) { return f.always && f.probability < kCertain; })) << "at random";
  EXPECT_TRUE(any([](F f) { return !f.always && f.probability < kCertain; })) << "once at random";
  EXPECT_TRUE(any([](F f) { return f.where.link.has_value(); })) << "on a link";
  EXPECT_TRUE(any([](F f) { return f.where.core.has_value(); })) << "on a core";
  EXPECT_TRUE(any([](F f) { return f.answer.has_value() && f.answer->value < 0; })) << "an answer below its range";
  EXPECT_TRUE(any([](F f) { return f.answer.has_value() && f.answer->value > INT32_MAX; })) << "or above it";
  EXPECT_TRUE(any([](F f) { return f.answer.has_value() && f.answer->text.size() > kMaxTypeName; })) << "a long name";
  EXPECT_NE(description.seed, 1U);
}

}  // namespace
}  // namespace simulator
