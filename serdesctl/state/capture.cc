// Reading a switch: a command for all ports of an ASIC, and port by port only where the tool refuses that.
#include "serdesctl/state/capture.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "display/name_tables.h"
#include "serdesctl/asking/asked_switch.h"
#include "serdesctl/base/errors.h"
#include "serdesctl/base/tool_facts.h"
#include "serdesctl/formats/json_object.h"
#include "serdesctl/rehearsal/learning.h"
#include "topology/serdes_topology.h"

namespace serdesctl {
namespace {

template <typename Values>
Values& linkAt(std::vector<Values>& links, std::uint32_t link) {
  if (links.size() <= link) links.resize(link + 1);
  return links[link];
}

template <typename Values, typename Record>
void assign(Values& values, const Record& record) {
  values = static_cast<const Values&>(record);
}

// Names as a save can hold them, so that one that is read again is the same: bytes that are no UTF-8 are replaced.
void makeLegible(std::string& name) {
  name = Json::parse(jsonLine(name)).get<std::string>();
}

void makeLegible(ConfigText& config) {
  for (ConfigPort& port : config.ports) {
    makeLegible(port.rx.serDesType);
    makeLegible(port.tx.serDesType);
  }
  for (ConfigType& type : config.types)
    makeLegible(type.name);
  for (ConfigCore& core : config.cores)
    makeLegible(core.serDesType);
}

class AsicReader {
 public:
  AsicReader(AskedSwitch& asked, std::uint32_t ports, std::vector<Unread>& unread)
      : asked_(asked), ports_(ports), unread_(unread) {
    state_.asic = asked.config().asic;
    state_.config = asked.config();
    makeLegible(state_.config);
    state_.cores = asked.discovery().cores;
    forEachBit(ports, kMaxPorts, [&](std::uint32_t port) { state_.ports.emplace_back().port = port; });
  }

  void readSettings() {
    readRates();
    read<Ffe>("ffe", "showFFE", [](PortState& p, const Ffe& r) { assign<FfeValues>(linkAt(p.tx, r.link), r); });
    read<Slew>("slew", "showSlew", [](PortState& p, const Slew& r) {
      assign<SlewValue>(linkAt(p.tx, r.link), r);
      p.tx[r.link].slewUnnamed = !r.slewPs;
    });
    read<Dfe>("dfe", "showDFE", [](PortState& p, const Dfe& r) { assign<DfeModeValue>(linkAt(p.rx, r.link), r); });
    read<Vga>("vga", "showVGA", [](PortState& p, const Vga& r) { assign<VgaValues>(linkAt(p.rx, r.link), r); });
    for (std::size_t rate = SPEED_1G; rate < rateNames.size(); ++rate)
      readCaches(rateNames[rate].name);
  }

  void readStatistics() {
    for (const std::uint32_t ofOneType : asked_.portsByType(ports_)) {
      readTogether(
          ofOneType,
          [&](std::uint32_t together) {
            for (const DfeStats& record : asked_.statistics(together))
              linkAt(at(record.port).observed.links, record.link) = record;
          },
          [&](std::uint32_t port, const std::string& why) { at(port).observed.unread = why; });
    }
  }

  void readRegisters() {
    RegisterDumps& dumps = state_.registers.emplace();
    read<TxRegisters>("tx_registers", "showTx",
                      [&](PortState& p, const TxRegisters& r) { linkAt(dumps.tx[p.port], r.link) = r.registers; });
    read<RxRegisters>("rx_registers", "showRx",
                      [&](PortState& p, const RxRegisters& r) { linkAt(dumps.rx[p.port], r.link) = r.registers; });
    readPlls(dumps);
  }

  AsicState take() {
    return std::move(state_);
  }

 private:
  PortState& at(std::uint32_t port) {
    return *std::find_if(state_.ports.begin(), state_.ports.end(), [&](const PortState& p) { return p.port == port; });
  }

  template <typename Record, typename Take>
  void read(const std::string& what, const std::string& command, Take take) {
    readTogether(
        ports_,
        [&](std::uint32_t together) {
          for (const Record& record : ask<Record>(command, together))
            take(at(record.port), record);
        },
        [&](std::uint32_t port, const std::string& why) {
          unread_.push_back({state_.asic, port, what, why});
        });
  }

  template <typename Record>
  std::vector<Record> ask(const std::string& command, std::uint32_t list) {
    return std::get<std::vector<Record>>(asked_.ask(splitWords(command + " " + listOf(list))).records);
  }

  // The heads of tables show only ports that have transmit links.
  void readRates() {
    read<Rate>("rate", "showRate", [](PortState& p, const Rate& r) {
      p.configRate = r.configRate;
      p.streamEnabled = r.streamEnabled;
      p.observed.runningRate = r.runningRate;
      p.observed.media = r.media;
    });
  }

  // The tool has one cache for all links of a port, and shows it for each of them.
  void readCaches(const std::string& rate) {
    read<TxCacheRaw>("tx_cache_raw " + rate, "showTxParamsRaw asic " + rate,
                     [&](PortState& p, const TxCacheRaw& r) { p.txCaches[rate] = r; });
    read<RxCacheRaw>("rx_cache_raw " + rate, "showRxParamsRaw asic " + rate,
                     [&](PortState& p, const RxCacheRaw& r) { p.rxCaches[rate] = r; });
  }

  void readPlls(RegisterDumps& dumps) {
    const auto count = std::min<std::size_t>(state_.config.cores.size(), kMaxCores);
    readTogether((std::uint32_t{1} << count) - 1,
                 [&](std::uint32_t cores) {
                   for (const PllRegisters& record : ask<PllRegisters>("showPLL", cores))
                     dumps.pll[record.core] = record.registers;
                 },
                 [&](std::uint32_t core, const std::string& why) {
                   unread_.push_back({state_.asic, std::nullopt, "pll_registers of core " + std::to_string(core), why});
                 });
  }

  AskedSwitch& asked_;
  std::uint32_t ports_;
  std::vector<Unread>& unread_;
  AsicState state_;
};

std::set<std::uint32_t> chosenAsics(const CaptureChoice& choice, std::uint32_t count) {
  std::set<std::uint32_t> asics;
  for (std::uint32_t asic = 0; asic < std::min(count, kMostAsics); ++asic)
    asics.insert(asic);
  if (!choice.asics) return asics;
  for (const std::uint32_t asic : *choice.asics) {
    if (!asics.contains(asic)) throw UsageError("the switch has no ASIC " + std::to_string(asic));
  }
  return *choice.asics;
}

std::uint32_t everyPort(const ConfigText& config) {
  return (std::uint32_t{1} << config.ports.size()) - 1;
}

AsicState readAsic(Conversation& tool, std::uint32_t asic, const CaptureChoice& choice, std::vector<Unread>& unread) {
  AskedSwitch asked(tool, asic);
  AsicReader reader(asked, choice.ports ? choice.ports(asked.config()) : everyPort(asked.config()), unread);
  reader.readSettings();
  if (choice.statistics) reader.readStatistics();
  if (choice.registers) reader.readRegisters();
  return reader.take();
}

}  // namespace

SwitchState capture(Conversation& tool, const CaptureChoice& choice) {
  SwitchState state;
  state.hardware = parseStart(tool.startText()).hardware;
  const std::set<std::uint32_t> asics = chosenAsics(choice, state.hardware.asics);
  for (const std::uint32_t asic : asics) {
    try {
      state.asics.push_back(readAsic(tool, asic, choice, state.unread));
    } catch (const RefusedError& error) {
      state.unread.push_back({asic, std::nullopt, "config", error.what()});
    }
  }
  if (asics.size() > asics.count(0)) (void)askForOutput(tool, "setAsicNum 0");
  return state;
}

CaptureChoice portsOfState(const SwitchState& state, const SwitchText& hardware) {
  CaptureChoice choice = {.asics = std::set<std::uint32_t>{}};
  std::map<std::uint32_t, std::uint32_t> ports;
  for (const AsicState& asic : state.asics) {
    if (asic.asic >= hardware.asics) continue;
    choice.asics->insert(asic.asic);
    for (const PortState& port : asic.ports)
      ports[asic.asic] |= std::uint32_t{1} << port.port;
    choice.registers = choice.registers || asic.registers;
  }
  choice.ports = [ports](const ConfigText& config) {
    return (ports.contains(config.asic) ? ports.at(config.asic) : 0) & everyPort(config);
  };
  return choice;
}

}  // namespace serdesctl
