// What the platform answered comes back from what the tool printed: random switches and values through the tool's own
// handlers.
#include <gtest/gtest.h>

#include <bit>
#include <optional>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "arguments/argument_parsers.h"
#include "display/name_tables.h"
#include "serdesctl/tables/config_text.h"
#include "serdesctl/tables/parse.h"
#include "serdesctl/tables/records.h"
#include "tests/serdesctl/tables/random_switch.h"
#include "tests/support/tool_test.h"

namespace serdesctl {
namespace {

using recording::platform;
using recording::Random;
using recording::run;

constexpr int kSwitches = 200;

std::string shown(const std::string& value) {
  return "'" + value + "'";
}
std::string shown(const std::vector<std::uint16_t>& values) {
  std::string text;
  for (const std::uint16_t value : values)
    text += std::to_string(value) + " ";
  return text;
}
template <typename Number>
requires std::is_arithmetic_v<Number> std::string shown(Number value) {
  return std::to_string(value);
}
template <typename Value>
std::string shown(const std::optional<Value>& value) {
  return value ? shown(*value) : "null";
}

// A record as a line of text.
template <typename Record>
std::string asText(const Record& record) {
  std::string text;
  eachField(record, [&](const char* name, const auto& value) { text += std::string(name) + "=" + shown(value) + " "; });
  return text;
}

template <typename Record>
std::string asText(const std::vector<Record>& records) {
  std::string text;
  for (const Record& record : records)
    text += asText(record) + "\n";
  return text;
}

std::string asText(const Records& records) {
  return std::visit(
      [](const auto& held) -> std::string {
        if constexpr (requires { held.front(); }) {
          return asText(held);
        } else {
          return "no table";
        }
      },
      records);
}

// What the tool must have found out about the platform, put together from the platform alone.
class Expected {
 public:
  Expected(std::uint32_t ports, SerDesLinkType side) : ports_(ports), side_(side) {}

  // fill(record, port, link) for every link, in the order of the table.
  template <typename Record, typename Fill>
  std::vector<Record> links(Fill fill) const {
    std::vector<Record> records;
    for (unsigned p = 0; p < platform.portCount; ++p)
      addPort(records, p, fill);
    return records;
  }

  // The same in the order of tables of one type each.
  template <typename Record, typename Fill>
  std::vector<Record> linksByType(Fill fill) const {
    std::vector<Record> records;
    for (unsigned type = 0; type < kSerDesTypeCount; ++type) {
      for (unsigned p = 0; p < platform.portCount; ++p) {
        if (side(p).type == type) addPort(records, p, fill);
      }
    }
    return records;
  }

  static bool runs(unsigned p) {
    return platform.ports[p].state == kPortStateRunning || platform.ports[p].configuredSpeed != SPEED_AUTO;
  }

  const recording::Side& side(unsigned p) const {
    return side_ == SERDES_LINK_RX ? platform.ports[p].rx : platform.ports[p].tx;
  }

 private:
  template <typename Record, typename Fill>
  void addPort(std::vector<Record>& records, unsigned p, Fill fill) const {
    const recording::Port& port = platform.ports[p];
    if ((ports_ >> p & 1) == 0) return;
    for (unsigned link = 0; link < side(p).linkCount; ++link) {
      Record record{};
      record.asic = 0;
      record.port = p;
      record.link = link;
      record.serDesType = platform.typeNames[side(p).type];
      // The head shows user ports in the columns of transmit links, the topology shows those that a core serves.
      const bool shown = port.tx.linkCount != 0 || platform.coreCount != 0;
      const std::uint16_t user = port.hwConfig.portId.userPort;
      if (shown && user != kNoUserPort) record.userPort = user;
      if (port.tx.linkCount != 0) {
        record.runningRate = runs(p) ? rateName(port.runningSpeed) : "INV";
        record.media = mediaName(port.media);
      }
      fill(record, p, link);
      records.push_back(record);
    }
  }

  std::uint32_t ports_;
  SerDesLinkType side_;
};

void fillFfe(FfeValues& values, const recording::TxLink& link) {
  values.ffeMode = nameAt(ffeModeNames, link.mode, "UNK");
  values.k = link.k;
  values.c0 = link.c[0];
  values.c1 = link.c[1];
  values.c2 = link.c[2];
  values.c3 = link.c[3];
}

std::optional<std::int32_t> slewPs(std::uint32_t slew) {
  constexpr std::array<std::int32_t, 7> kPs = {24, 30, 36, 50, 60, 75, 100};
  return slew < kPs.size() ? std::optional(kPs[slew]) : std::nullopt;
}

void fillVga(VgaValues& values, const recording::RxLink& link) {
  values.pole = link.pole;
  values.peak = link.peak;
  values.amax = link.amax;
}

std::string dfeMode(std::uint32_t mode) {
  return nameAt(dfeModeNames, mode, "UNK");
}

// A switch, and questions to it.
class RoundTrip : public recording::ToolTest {
 protected:
  // Takes a fresh switch; false when its names of types cannot be told apart in the text.
  bool takeSwitch(Random& random, bool sharedNames) {
    makeRandomSwitch(random, sharedNames);
    serdesTopology = {};
    serdesTopology.switchHwConfig = platform.switchConfig;
    start_ = run("setAsicNum 0").out;
    configText_ = run("showConfig").out;
    config_ = parseConfig(configText_);
    return true;
  }

  std::uint32_t ports(const std::string& list) const {
    return namedPorts(splitWords("showRate " + list), &config_).value();
  }

  // What was printed, read back in every way that there is.
  void expectReadBack(const std::string& command, const std::string& expected) {
    SCOPED_TRACE(command + "\n" + configText_);
    const recording::Outcome outcome = run(command);
    ASSERT_EQ(outcome.status, CMD_OK) << outcome.out;
    const Records records = parseOutput(command, outcome.out, config_);
    EXPECT_EQ(asText(records), expected) << outcome.out;
    expectSameInLogs(command, outcome.out, expected);
  }

  // A log of a terminal tells as much as a session. One without commands may not tell, but tells nothing wrong.
  void expectSameInLogs(const std::string& command, const std::string& output, const std::string& expected) {
    const std::string echoed = "serdes: " + command + "\n" + output + "\n\nserdes: dcfg\n" + configText_ + "\n\n";
    const auto answers = parseLog(echoed, {});
    ASSERT_EQ(answers.size(), 2U);
    EXPECT_EQ(asText(answers[0].records), expected);
    try {
      const auto silent = parseLog("\n\nunknown command\n\n" + output + "\n\n" + configText_ + "\n\n", {});
      EXPECT_EQ(silent[0].status, CMD_OK);
      EXPECT_EQ(silent[1].status, CMD_UNKNOWN);
      EXPECT_EQ(asText(silent[2].records), output.empty() ? "no table" : expected);
      ++told_;
    } catch (const ParseError&) {
      ++untold_;
    }
  }

  void expectTxTables(const std::string& list) {
    const Expected tx(ports(list), SERDES_LINK_TX);
    expectReadBack("showRate " + list, asText(tx.links<Rate>([](Rate& r, unsigned p, unsigned) {
                     r.configRate = rateName(platform.ports[p].configuredSpeed);
                     r.streamEnabled = platform.ports[p].streamState != 0;
                   })));
    expectReadBack(
        "showFFE " + list,
        asText(tx.links<Ffe>([](Ffe& r, unsigned p, unsigned link) { fillFfe(r, platform.ports[p].txLinks[link]); })));
    expectReadBack("showSlew " + list, asText(tx.links<Slew>([](Slew& r, unsigned p, unsigned link) {
                     r.slewPs = slewPs(platform.ports[p].txLinks[link].slew);
                   })));
    expectReadBack("dtxp " + list, asText(tx.links<TxParams>([](TxParams& r, unsigned p, unsigned link) {
                     if (!Expected::runs(p)) return;
                     fillFfe(r, platform.ports[p].txLinks[link]);
                     r.slewPs = slewPs(platform.ports[p].txLinks[link].slew);
                   })));
  }

  void expectRxTables(const std::string& list) {
    const Expected rx(ports(list), SERDES_LINK_RX);
    expectReadBack("showDFE " + list, asText(rx.links<Dfe>([](Dfe& r, unsigned p, unsigned link) {
                     r.dfeMode = dfeMode(platform.ports[p].rxLinks[link].mode);
                   })));
    expectReadBack(
        "showVGA " + list,
        asText(rx.links<Vga>([](Vga& r, unsigned p, unsigned link) { fillVga(r, platform.ports[p].rxLinks[link]); })));
    expectReadBack("showRxParams " + list, asText(rx.links<RxParams>([](RxParams& r, unsigned p, unsigned link) {
                     if (!Expected::runs(p)) return;
                     r.dfeMode = dfeMode(platform.ports[p].rxLinks[link].mode);
                     fillVga(r, platform.ports[p].rxLinks[link]);
                   })));
  }

  // The caches of fibre channel and of ethernet ports can be asked for alone.
  void expectCaches(const std::string& list) {
    const bool ethernet = (ports(list) & config_.exgPorts) != 0;
    const bool fibreChannel = (ports(list) & (config_.glPorts | config_.xgPorts)) != 0;
    if (!ethernet) expectFibreChannelCaches(list);
    if (!fibreChannel) expectEthernetCaches(list);
    for (const std::string interface : {"asic", "S", "network"})
      expectRawCaches(list, interface, interface == "S" ? "system" : interface);
  }

  void expectFibreChannelCaches(const std::string& list) {
    const Expected tx(ports(list), SERDES_LINK_TX);
    const Expected rx(ports(list), SERDES_LINK_RX);
    expectReadBack("showTxParamsCache 8g " + list, asText(tx.links<TxCache>([](TxCache& r, unsigned p, unsigned) {
                     const SerDesTxRateParams& cache = platform.ports[p].txCache;
                     r.rate = "8G";
                     r.ffeMode = nameAt(ffeModeNames, static_cast<std::uint32_t>(cache.mode), "UNK");
                     r.k = cache.power;
                     r.c0 = cache.p0;
                     r.c1 = cache.p1;
                     r.c2 = cache.p2;
                     r.c3 = cache.p3;
                     r.slewPs = slewPs(static_cast<std::uint32_t>(cache.slew));
                   })));
    expectReadBack("drxpc auto " + list, asText(rx.links<RxCache>([](RxCache& r, unsigned p, unsigned) {
                     const SerDesRxRateParams& cache = platform.ports[p].rxCache;
                     r.rate = "AUTO";
                     r.dfeMode = dfeMode(static_cast<std::uint32_t>(cache.mode));
                     r.pole = cache.p0;
                     r.peak = cache.p1;
                     r.amax = cache.p2;
                   })));
  }

  void expectEthernetCaches(const std::string& list) {
    const Expected tx(ports(list), SERDES_LINK_TX);
    const Expected rx(ports(list), SERDES_LINK_RX);
    expectReadBack("edt 10 " + list, asText(tx.links<EthernetTxCache>([](EthernetTxCache& r, unsigned p, unsigned) {
                     r.rate = "10G";
                     r.k = platform.ports[p].txCache.power;
                     r.preEmphasis = platform.ports[p].txCache.p0;
                   })));
    expectReadBack("edr 1G " + list, asText(rx.links<EthernetRxCache>([](EthernetRxCache& r, unsigned p, unsigned) {
                     r.rate = "1G";
                     r.cdrMode = platform.ports[p].rxCache.mode;
                     r.eqMode = platform.ports[p].rxCache.p0;
                   })));
  }

  void expectRawCaches(const std::string& list, const std::string& typed, const std::string& interface) {
    const Expected tx(ports(list), SERDES_LINK_TX);
    const Expected rx(ports(list), SERDES_LINK_RX);
    const bool asic = interface == "asic";
    expectReadBack("showTxParamsRaw " + typed + " 4g " + list,
                   asText(tx.links<TxCacheRaw>([&](TxCacheRaw& r, unsigned p, unsigned) {
                     const SerDesTxRateParams c = asic ? platform.ports[p].txCache : SerDesTxRateParams{};
                     r.interface = interface;
                     r.rate = "4G";
                     static_cast<TxRawValues&>(r) = {c.power, c.slew, c.mode, {c.p0, c.p1, c.p2, c.p3}};
                   })));
    expectReadBack("showRxParamsRaw " + typed + " 20G " + list,
                   asText(rx.links<RxCacheRaw>([&](RxCacheRaw& r, unsigned p, unsigned) {
                     const SerDesRxRateParams c = asic ? platform.ports[p].rxCache : SerDesRxRateParams{};
                     r.interface = interface;
                     r.rate = "20G";
                     static_cast<RxRawValues&>(r) = {c.mode, {c.p0, c.p1, c.p2, c.p3}};
                   })));
  }

  template <SerDesLinkType kSide>
  void expectDump(const std::string& command, const std::string& list) {
    using Record = LinkRecord<RegisterValues<kSide>>;
    const Expected expected(ports(list), kSide);
    const auto registers = [](const recording::Core& core) {
      return kSide == SERDES_LINK_RX ? core.rxRegisters : core.txRegisters;
    };
    // A core's type is that of the ports it serves; its first core gives a type's rows.
    const auto rows = [&](std::uint32_t type) {
      for (unsigned c = 0; c < platform.coreCount; ++c) {
        if (serdesTopology.coreConfig[c].serDesType == type && registers(platform.cores[c]) != 0) {
          return registers(platform.cores[c]);
        }
      }
      return 0U;
    };
    expectReadBack(
        command + " " + list, asText(expected.linksByType<Record>([&](Record& r, unsigned p, unsigned link) {
          const recording::Side& side = expected.side(p);
          // What the port's own core does not have was not read.
          const unsigned read = platform.coreCount == 0 ? 0 : registers(platform.cores[side.core]);
          for (unsigned address = 0; address < rows(side.type); ++address) {
            const bool wasRead = address < read;
            r.registers.push_back(wasRead ? platform.linkRegister(p, static_cast<int>(link), kSide, address) : 0);
          }
        })));
  }

  void expectPllDump(const std::string& list) {
    const auto cores = parseCores(list);
    std::vector<PllRegisters> records;
    for (unsigned type = 0; type < kSerDesTypeCount; ++type) {
      std::optional<unsigned> rows;
      for (unsigned c = 0; c < platform.coreCount; ++c) {
        if (serdesTopology.coreConfig[c].serDesType != type) continue;
        if (!rows) rows = platform.cores[c].pllRegisters;
        if ((cores >> c & 1) == 0) continue;
        PllRegisters record = {.asic = 0, .core = c, .serDesType = platform.typeNames[type], .registers = {}};
        for (unsigned address = 0; address < *rows; ++address) {
          const bool wasRead = address < platform.cores[c].pllRegisters;
          record.registers.push_back(wasRead ? platform.pllRegister(c, address) : 0);
        }
        records.push_back(record);
      }
    }
    expectReadBack("showPLL " + list, asText(records));
  }

  static std::uint32_t parseCores(const std::string& list) {
    std::vector<std::string> words = splitWords(list);
    std::vector<char*> pointers;
    for (std::string& word : words)
      pointers.push_back(word.data());
    std::uint32_t cores = 0;
    EXPECT_EQ(parsePortList(static_cast<int>(pointers.size()), pointers.data(), cores, serdesTopology.glCoreMask,
                            serdesTopology.xgCoreMask, serdesTopology.exgCoreMask),
              CMD_OK);
    return cores;
  }

  std::string start_;
  std::string configText_;
  ConfigText config_;
  int told_ = 0;
  int untold_ = 0;
};

std::vector<std::string> namesOf(std::uint32_t mask, const char* name) {
  std::vector<std::string> names;
  forEachBit(mask, 32, [&](std::uint32_t bit) { names.push_back(name + std::to_string(bit)); });
  return names;
}

TEST_F(RoundTrip, Topology) {
  Random random(1);
  for (int i = 0; i < kSwitches; ++i) {
    ASSERT_TRUE(takeSwitch(random, true));
    SCOPED_TRACE(configText_);
    EXPECT_EQ(config_.asic, 0U);
    EXPECT_EQ(config_.portCount, platform.portCount);
    EXPECT_EQ(config_.coreCount, platform.coreCount);
    EXPECT_EQ(config_.glPorts, serdesTopology.glPortList);
    EXPECT_EQ(config_.xgPorts, serdesTopology.xgPortList);
    EXPECT_EQ(config_.exgPorts, serdesTopology.exgPortList);
    ASSERT_EQ(config_.ports.size(), platform.portCount);
    for (const ConfigPort& port : config_.ports) {
      const recording::Port& given = platform.ports[port.port];
      EXPECT_EQ(port.rx.links, given.rx.linkCount);
      EXPECT_EQ(port.tx.links, given.tx.linkCount);
      EXPECT_EQ(port.rx.core, given.rx.core);
      EXPECT_EQ(port.tx.core, given.tx.core);
      EXPECT_EQ(port.rx.serDesType, platform.typeNames[given.rx.type]);
      EXPECT_EQ(port.tx.serDesType, platform.typeNames[given.tx.type]);
      const std::uint16_t user = given.hwConfig.portId.userPort;
      const bool served = platform.coreCount != 0;  // the core that serves it is listed
      EXPECT_EQ(port.userPort, user == kNoUserPort || !served ? std::nullopt : std::optional<std::uint32_t>(user));
    }
    ASSERT_EQ(config_.cores.size(), platform.coreCount);
    for (const ConfigCore& core : config_.cores) {
      const CoreConfig& given = serdesTopology.coreConfig[core.core];
      EXPECT_EQ(namesOf(core.rxPorts, "rx"), namesOf(given.rxPortMask, "rx"));
      EXPECT_EQ(namesOf(core.txPorts, "tx"), namesOf(given.txPortMask, "tx"));
    }
    ASSERT_EQ(config_.types.size(), kSerDesTypeCount);
    for (std::uint32_t type = 0; type < kSerDesTypeCount; ++type) {
      EXPECT_EQ(config_.types[type].name, platform.typeNames[type]);
      EXPECT_EQ(config_.types[type].useCount, serdesTopology.serdesConfig[type].useCount);
    }
    const DiscoveryText found = parseDiscovery(start_);
    ASSERT_EQ(found.cores.size(), platform.coreCount);
    for (const FoundCore& core : found.cores) {
      EXPECT_EQ(core.firstPort, platform.cores[core.core].firstPort);
      EXPECT_EQ(core.serDesType, platform.cores[core.core].type);
      EXPECT_EQ(core.pllRegisters, platform.cores[core.core].pllRegisters);
    }
  }
}

TEST_F(RoundTrip, TablesByPort) {
  Random random(2);
  for (int i = 0; i < kSwitches; ++i) {
    ASSERT_TRUE(takeSwitch(random, true));
    const std::string list = randomList(random);
    expectTxTables(list);
    expectRxTables(list);
    expectCaches(list);
  }
  EXPECT_GT(told_, kSwitches * 5);
}

TEST_F(RoundTrip, Dumps) {
  Random random(3);
  for (int i = 0; i < kSwitches; ++i) {
    ASSERT_TRUE(takeSwitch(random, false));
    const std::string list = randomList(random);
    expectDump<SERDES_LINK_TX>("showTx", list);
    expectDump<SERDES_LINK_RX>("drx", list);
    expectPllDump(list);
  }
  EXPECT_GT(told_, kSwitches);
}

// Counts come back as numbers with bounds.
void expectCount(const std::optional<Count>& count, std::uint64_t given) {
  ASSERT_TRUE(count);
  EXPECT_LE(count->lowest, given);
  EXPECT_GE(count->highest, given);
  EXPECT_EQ(count->exact(), given <= 9999);
  if (given <= 9999) {
    EXPECT_EQ(count->number, static_cast<double>(given));
  }
  EXPECT_NEAR(count->number, static_cast<double>(given), 0.5 * static_cast<double>(given));
}

TEST_F(RoundTrip, Statistics) {
  Random random(4);
  int read = 0;
  for (int i = 0; i < kSwitches; ++i) {
    ASSERT_TRUE(takeSwitch(random, false));
    for (const std::uint32_t type : {2U, 3U, 5U}) {
      std::string list;
      for (const ConfigPort& port : config_.ports) {
        if (platform.ports[port.port].rx.type == type) list += " " + std::to_string(port.port);
      }
      if (list.empty()) continue;
      const std::string command = "showDFEStats" + list;
      const recording::Outcome outcome = run(command);
      ASSERT_EQ(outcome.status, CMD_OK);
      SCOPED_TRACE(command + "\n" + configText_ + outcome.out);
      const auto records = std::get<std::vector<DfeStats>>(parseOutput(command, outcome.out, config_));
      const auto expected =
          Expected(ports(list), SERDES_LINK_RX).links<DfeStats>([&](DfeStats& r, unsigned p, unsigned link) {
            const SerDesRxDFEStats& stats = platform.ports[p].rxLinks[link].stats;
            for (std::size_t tap = 0; tap < (type == 3 ? 5 : 10); ++tap)
              (type == 3 ? r.taps[tap] : r.evenOddTaps[tap]) = stats.h[tap];
            r.ap = stats.Ap;
            r.amin = stats.Amin;
            r.an = stats.An;
          });
      ASSERT_EQ(records.size(), expected.size());
      for (std::size_t j = 0; j < records.size(); ++j) {
        DfeStats withoutCounts = records[j];
        expectCount(withoutCounts.decodeErrors, platform.ports[records[j].port].decodeErrors);
        expectCount(withoutCounts.crcErrors, platform.ports[records[j].port].crcErrors);
        withoutCounts.decodeErrors = withoutCounts.crcErrors = std::nullopt;
        EXPECT_EQ(asText(withoutCounts), asText(expected[j]));
        ++read;
      }
    }
  }
  EXPECT_GT(read, kSwitches);
}

TEST_F(RoundTrip, StatisticsThatCannotBeLaidOutHaveNoValues) {
  for (recording::Port& port : platform.ports)
    port.rx.type = port.tx.type = 4;
  discover();
  config_ = parseConfig(run("showConfig").out);
  const recording::Outcome outcome = run("showDFEStats 0-1 6");
  ASSERT_EQ(outcome.status, CMD_EXEC_ERROR);
  const auto records = std::get<std::vector<DfeStats>>(parseOutput("showDFEStats 0-1 6", outcome.out, config_));
  ASSERT_EQ(records.size(), 6U);
  EXPECT_EQ(records[5].port, 6U);
  EXPECT_EQ(records[5].link, 3U);
  EXPECT_EQ(records[5].runningRate, "8G");
  EXPECT_EQ(records[5].ap, std::nullopt);
  EXPECT_FALSE(records[5].decodeErrors);
}

TEST_F(RoundTrip, SingleValues) {
  Random random(5);
  for (int i = 0; i < kSwitches; ++i) {
    ASSERT_TRUE(takeSwitch(random, true));
    const std::int32_t port = random.oneIn(2) ? static_cast<std::int32_t>(random.below(24)) : random.number();
    const std::int32_t link = random.number();
    const std::int32_t address = random.number();
    const std::string words = std::to_string(port) + " " + std::to_string(link) + " " + std::to_string(address);
    std::optional<std::uint32_t> user;
    if (port >= 0 && static_cast<std::uint32_t>(port) < platform.portCount) {
      const std::uint16_t given = platform.ports[static_cast<std::size_t>(port)].hwConfig.portId.userPort;
      if (given != kNoUserPort) user = given;
    }
    const auto value = [&](SerDesLinkType side) {
      return platform.linkRegister(static_cast<unsigned>(port), link, side, static_cast<std::uint32_t>(address) & 0xFF);
    };
    const auto number = static_cast<std::uint32_t>(address);
    expectReadBack("readTx " + words,
                   asText(std::vector<TxRegister>{{0, port, user, link, number, value(SERDES_LINK_TX)}}));
    expectReadBack("rrx " + words,
                   asText(std::vector<RxRegister>{{0, port, user, link, number, value(SERDES_LINK_RX)}}));
    if (platform.coreCount > 0) {
      const auto core = static_cast<std::int32_t>(random.below(platform.coreCount));
      expectReadBack("readPLL " + std::to_string(core) + " " + std::to_string(address),
                     asText(std::vector<PllRegister>{
                         {0, core, number, platform.pllRegister(static_cast<unsigned>(core), number & 0xFF)}}));
    }
    platform.testStatus = random.number();
    const recording::Outcome outcome = run("getTest 1 -1 0x3");
    EXPECT_EQ(asText(parseOutput("getTest 1 -1 0x3", outcome.out, config_)),
              asText(std::vector<TestStatus>{{0, 1, -1, 3, platform.testStatus}}));
  }
}

TEST_F(RoundTrip, Help) {
  for (const CmdTableEntry* row = cmdTable.data(); row->name != nullptr; ++row) {
    const std::string command = std::string(row->name) + " ?";
    SCOPED_TRACE(command);
    const auto records = std::get<std::vector<CommandHelp>>(parseOutput(command, run(command).out, config_));
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].name, row->name);
    EXPECT_EQ(records[0].note, row->exampleNote);
  }
  EXPECT_EQ(std::get<std::vector<CommandRow>>(parseOutput("help", run("help").out, config_)).size(), kCommandCount);
}

}  // namespace
}  // namespace serdesctl
