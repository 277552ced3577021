// The [[asics]] of a description: cores and ports. Each entry speaks for a run of cores or ports, and later entries
// refine what earlier ones said, so that a file states what ports have in common once.
#include <algorithm>

#include "simulator/description/words.h"

namespace simulator {
namespace {

constexpr SpeedSet kAllSpeeds = 0b1111110;
constexpr SpeedSet kGlSpeeds = 0b0111110;
constexpr SpeedSet kXgSpeeds = speedBit(SPEED_10G) | speedBit(SPEED_20G);
constexpr SpeedSet kExgSpeeds = speedBit(SPEED_1G) | speedBit(SPEED_10G);

// What a medium carries unless the description says otherwise, by MediaHwFcXmtrType.
constexpr std::array<SpeedSet, kMediaWords.size()> kMediaSpeeds = {
    0,          kAllSpeeds,          speedBit(SPEED_1G) | speedBit(SPEED_2G),
    kGlSpeeds,  kGlSpeeds,           kAllSpeeds,
    kAllSpeeds, speedBit(SPEED_10G), speedBit(SPEED_1G),
};

// A port while its entries are read: what later entries may still change the meaning of.
struct PortDraft {
  PortDescription port;
  bool described = false;
  std::optional<SpeedSet> mediaSpeeds;
};

void setPortType(PortDescription& port, std::uint32_t portType) {
  port.portType = portType;
  const bool isEthernet = portType == kPortTypeExg;
  port.speeds = isEthernet ? kExgSpeeds : portType == kPortTypeXg ? kXgSpeeds : kGlSpeeds;
  port.media = isEthernet ? MEDIA_10G_ETHERNET : portType == kPortTypeXg ? MEDIA_COPPER_PASSIVE : MEDIA_OPTICAL;
  port.rxLinks = port.txLinks = portType == kPortTypeXg ? kMaxLinks : 1;
  port.caches.fill(isEthernet ? kPlainEthernetSettings : kPlainSettings);
  port.partner = {.tx = port.caches[0].tx, .speeds = port.speeds};
}

// The settings that a key names; ports of one kind cannot use those of the other.
const Settings& namedSettings(const TomlTable& table, std::string_view key, const std::string& name,
                              const Library& library, const PortDescription& port) {
  const NamedSettings& named = lookUp(table, key, library.settings, name, "settings");
  if (named.isEthernet != (port.portType == kPortTypeExg)) {
    table.fail(key, '"' + name + "\" is for " + (named.isEthernet ? "ethernet ports" : "fibre-channel ports"));
  }
  return named.settings;
}

void readCaches(TomlTable& table, const Library& library, PortDescription& port) {
  if (!table.has("cache")) return;
  if (table.isText("cache")) {
    port.caches.fill(namedSettings(table, "cache", *table.text("cache"), library, port));
    return;
  }
  TomlTable caches = *table.table("cache");
  for (const Choice& speed : kFixedSpeedWords) {
    if (const auto name = caches.text(speed.word)) {
      port.caches[speed.value] = namedSettings(caches, speed.word, *name, library, port);
    }
  }
  caches.finish();
}

void readPartner(TomlTable& table, const Library& library, PortDescription& port) {
  std::optional<TomlTable> partner = table.table("partner");
  if (!partner) return;
  port.farEnd = FarEnd::kPartner;
  if (const auto name = partner->text("settings")) {
    port.partner.tx = namedSettings(*partner, "settings", *name, library, port).tx;
  }
  store(port.partner.speed, partner->choice("speed", kSpeedWords));
  store(port.partner.speeds, partner->choiceSet("speeds", kFixedSpeedWords));
  store(port.partner.sends, partner->boolean("sends"));
  store(port.partner.pattern, partner->integer("pattern", 0, 3));
  partner->finish();
}

void readFarEnd(TomlTable& table, unsigned index, unsigned position, PortDescription& port) {
  if (!table.has("far_end")) return;
  if (table.has("partner")) table.fail("far_end", "says where a cable ends, and so does partner");
  if (!table.isText("far_end")) {
    port.farPort = static_cast<unsigned>(*table.integer("far_end", 0, kMaxPorts - 1)) + position;
    port.farEnd = FarEnd::kPort;
    return;
  }
  enum : std::uint32_t { kWordNothing, kWordLoop, kWordPair };
  constexpr auto kWords = std::to_array<Choice>({{"nothing", kWordNothing}, {"loop", kWordLoop}, {"pair", kWordPair}});
  const std::uint32_t word = *table.choice("far_end", kWords);
  port.farEnd = word == kWordNothing ? FarEnd::kNothing : FarEnd::kPort;
  port.farPort = word == kWordPair ? index ^ 1U : index;
}

void readLinks(TomlTable& table, unsigned position, PortDescription& port) {
  if (const auto links = table.integer("links", 0, kMaxLinks)) {
    port.rxLinks = port.txLinks = static_cast<unsigned>(*links);
  }
  store(port.rxLinks, table.integer("rx_links", 0, kMaxLinks));
  store(port.txLinks, table.integer("tx_links", 0, kMaxLinks));
  // One core serves the whole run, or each so many ports of it.
  const auto portsPerCore = static_cast<unsigned>(table.integer("ports_per_core", 1, kMaxPorts).value_or(kMaxPorts));
  const unsigned step = position / portsPerCore;
  if (const auto core = table.integer("core", 0, kMaxCores - 1)) {
    port.rxCore = port.txCore = static_cast<unsigned>(*core) + step;
  }
  if (const auto core = table.integer("rx_core", 0, kMaxCores - 1)) port.rxCore = static_cast<unsigned>(*core) + step;
  if (const auto core = table.integer("tx_core", 0, kMaxCores - 1)) port.txCore = static_cast<unsigned>(*core) + step;
}

void readUserPort(TomlTable& table, unsigned position, PortDescription& port) {
  // A run of ports has a run of user ports; -1 stands for none.
  const auto userPort = table.integer("user_port", -1, kNoUserPort - 1);
  if (!userPort) return;
  if (*userPort + position >= kNoUserPort) table.fail("user_port", "the run of user ports ends beyond 65534");
  port.userPort = *userPort < 0 ? kNoUserPort : static_cast<std::uint16_t>(*userPort + position);
}

// One port of an entry; `position` is its place in the entry's run.
void readPort(TomlTable& table, const Library& library, unsigned index, unsigned position, PortDraft& draft) {
  PortDescription& port = draft.port;
  const auto portType = table.choice("kind", kPortTypeWords);
  if (portType) setPortType(port, *portType);
  if (!portType && !draft.described)
    table.fail("kind", "the first entry of port " + std::to_string(index) + " needs it");
  draft.described = true;
  if (const auto shown = table.integer("port_type", 0, UINT32_MAX)) {
    port.shownType = static_cast<std::uint32_t>(*shown);
  }
  store(port.present, table.boolean("present"));
  readUserPort(table, position, port);
  readLinks(table, position, port);
  store(port.media, table.choice("media", kMediaWords));
  if (const auto speeds = table.choiceSet("media_speeds", kFixedSpeedWords)) draft.mediaSpeeds = speeds;
  store(port.speeds, table.choiceSet("speeds", kFixedSpeedWords));
  if (const auto name = table.text("channel")) {
    port.channel = lookUp(table, "channel", library.channels, *name, "channels");
  }
  readFarEnd(table, index, position, port);
  readPartner(table, library, port);
  store(port.speed, table.choice("speed", kSpeedWords));
  if (port.speed != SPEED_AUTO && (port.speeds & speedBit(port.speed)) == 0) {
    table.fail("speed", "is not among the speeds of port " + std::to_string(index));
  }
  store(port.sends, table.boolean("sends"));
  store(port.loadPercent, table.integer("load", 0, 100));
  readCaches(table, library, port);
  if (const auto name = table.text("live")) port.live = namedSettings(table, "live", *name, library, port);
}

// A cable has two ends: both ports name each other, or one port itself.
void checkCables(const TomlTable& table, const std::vector<PortDescription>& ports) {
  for (std::size_t i = 0; i < ports.size(); ++i) {
    if (ports[i].farEnd != FarEnd::kPort) continue;
    const unsigned far = ports[i].farPort;
    if (far >= ports.size() || ports[far].farEnd != FarEnd::kPort || ports[far].farPort != i) {
      table.fail("ports", "the cable of port " + std::to_string(i) + " leads to port " + std::to_string(far) +
                              ", which does not lead back");
    }
  }
}

void readCore(TomlTable& table, CoreDescription& core, bool isFirst) {
  if (const auto type = table.integer("type", 0, kSerDesTypes - 1)) {
    const SerDesTraits& traits = serDesTraits(static_cast<unsigned>(*type));
    core = {.type = static_cast<unsigned>(*type),
            .pllRegisters = traits.pll.count,
            .rxRegisters = traits.rx.count,
            .txRegisters = traits.tx.count,
            .rxParams = traits.rxParamCount,
            .txParams = traits.txParamCount,
            .firstPort = core.firstPort,
            .temperature = core.temperature};
  } else if (isFirst) {
    table.fail("type", "the first entry of a core needs it");
  }
  store(core.pllRegisters, table.integer("pll_registers", 0, kMaxRegisters));
  store(core.rxRegisters, table.integer("rx_registers", 0, kMaxRegisters));
  store(core.txRegisters, table.integer("tx_registers", 0, kMaxRegisters));
  store(core.rxParams, table.integer("rx_params", 0, 255));
  store(core.txParams, table.integer("tx_params", 0, 255));
  store(core.firstPort, table.integer("first_port", 0, UINT16_MAX));
  store(core.temperature, table.integer("temperature", -55, 125));
}

std::vector<CoreDescription> readCores(TomlTable& asic, std::vector<bool>& hasFirstPort) {
  std::vector<CoreDescription> cores;
  std::vector<bool> described;
  for (TomlTable& table : asic.tables("cores")) {
    const auto indexes = table.indexes("cores", kMaxCores - 1);
    if (!indexes) table.fail("cores", "says which cores the entry is about, and is missing");
    for (const unsigned index : *indexes) {
      if (index >= cores.size()) {
        cores.resize(index + 1);
        described.resize(index + 1);
        hasFirstPort.resize(index + 1);
      }
      readCore(table, cores[index], !described[index]);
      described[index] = true;
      if (table.has("first_port")) hasFirstPort[index] = true;
    }
    table.finish();
  }
  const auto gap = std::find(described.begin(), described.end(), false);
  if (gap != described.end()) asic.fail("cores", "no entry for core " + std::to_string(gap - described.begin()));
  return cores;
}

std::vector<PortDescription> readPorts(TomlTable& asic, const Library& library) {
  std::vector<PortDraft> drafts;
  for (TomlTable& table : asic.tables("ports")) {
    const auto indexes = table.indexes("ports", kMaxPorts - 1);
    if (!indexes) table.fail("ports", "says which ports the entry is about, and is missing");
    for (unsigned position = 0; position < indexes->size(); ++position) {
      const unsigned index = (*indexes)[position];
      if (index >= drafts.size()) drafts.resize(index + 1);
      readPort(table, library, index, position, drafts[index]);
    }
    table.finish();
  }
  std::vector<PortDescription> ports;
  for (PortDraft& draft : drafts) {
    if (!draft.described) asic.fail("ports", "no entry for port " + std::to_string(ports.size()));
    draft.port.mediaSpeeds = draft.mediaSpeeds.value_or(kMediaSpeeds[draft.port.media]);
    ports.push_back(draft.port);
  }
  return ports;
}

// Cores that ports name exist, and a core without a first port of its own gets the lowest that it serves.
void joinPortsAndCores(const TomlTable& table, AsicDescription& asic, const std::vector<bool>& hasFirstPort) {
  std::vector<bool> served(asic.cores.size());
  for (unsigned i = 0; i < asic.ports.size(); ++i) {
    for (const unsigned core : {asic.ports[i].rxCore, asic.ports[i].txCore}) {
      if (core >= asic.cores.size()) {
        table.fail("ports",
                   "port " + std::to_string(i) + " is on core " + std::to_string(core) + ", which has no entry");
      }
      if (!served[core] && !hasFirstPort[core]) asic.cores[core].firstPort = i;
      served[core] = true;
    }
  }
}

}  // namespace

AsicDescription readAsic(TomlTable& table, const Library& library) {
  AsicDescription asic;
  std::vector<bool> hasFirstPort;
  asic.cores = readCores(table, hasFirstPort);
  asic.ports = readPorts(table, library);
  checkCables(table, asic.ports);
  joinPortsAndCores(table, asic, hasFirstPort);
  table.finish();
  return asic;
}

}  // namespace simulator
