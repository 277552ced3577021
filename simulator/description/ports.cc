// The [[asics]] of a description: cores and ports. Each entry speaks for a run of cores or ports, and later entries
// refine what earlier ones said, so that a file states what ports have in common once.
#include <algorithm>

#include "simulator/description/line_rates.h"
#include "simulator/description/words.h"
#include "simulator/link/arrival.h"

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

// A core while its entries are read.
struct CoreDraft {
  CoreDescription core;
  bool described = false;
  bool hasFirstPort = false;
};

// Settings that a port uses, and where it says so.
struct Use {
  const NamedSettings* named;
  TomlValue where;
};

// A port while its entries are read: what later entries may still change the meaning of, and where it was said.
struct PortDraft {
  PortDescription port;
  bool described = false;
  const Library* library = nullptr;
  unsigned index{};
  unsigned position{};      // in the entry's run
  unsigned portsPerCore{};  // of the entry
  bool isMisplaced = false;
  std::optional<SpeedSet> mediaSpeeds;
  std::optional<TomlValue> placed, userPort, farEnd, channel, txValues, rxValues;
  std::array<std::optional<Use>, kSpeeds> caches;
  std::optional<Use> live, partner;
};

void setType(const TomlValue& value, CoreDescription& core) {
  value.store(core.type, 0, kSerDesTypes - 1);
  const SerDesTraits& traits = serDesTraits(core.type);
  core.pllRegisters = traits.pll.count;
  core.rxRegisters = traits.rx.count;
  core.txRegisters = traits.tx.count;
  core.rxParams = traits.rxParamCount;
  core.txParams = traits.txParamCount;
}

// Settings that a switch works out from its registers need not agree with these: the registers are what it is.
RegisterValues registerValues(const TomlValue& value) {
  const std::vector<std::int64_t> values = value.integers(0, UINT16_MAX);
  if (values.size() > kMaxRegisters) value.fail("has more than 32 values");
  return {values.begin(), values.end()};
}

LinkValues linkValues(const TomlValue& value) {
  LinkValues links;
  for (const TomlValue& link : value.lists())
    links.push_back(registerValues(link));
  return links;
}

constexpr auto kCoreKeys = std::to_array<Key<CoreDraft>>({
    {"cores"},
    {"type", [](auto& value, auto& draft) { setType(value, draft.core); }},
    {"pll_registers", [](auto& value, auto& draft) { value.store(draft.core.pllRegisters, 0, kMaxRegisters); }},
    {"rx_registers", [](auto& value, auto& draft) { value.store(draft.core.rxRegisters, 0, kMaxRegisters); }},
    {"tx_registers", [](auto& value, auto& draft) { value.store(draft.core.txRegisters, 0, kMaxRegisters); }},
    {"rx_params", [](auto& value, auto& draft) { value.store(draft.core.rxParams, 0, 255); }},
    {"tx_params", [](auto& value, auto& draft) { value.store(draft.core.txParams, 0, 255); }},
    {"first_port",
     [](auto& value, auto& draft) {
       value.store(draft.core.firstPort, 0, UINT16_MAX);
       draft.hasFirstPort = true;
     }},
    {"temperature", [](auto& value, auto& draft) { value.store(draft.core.temperature, -55, 125); }},
    {"pll_values", [](auto& value, auto& draft) { draft.core.pllValues = registerValues(value); }},
});

void setKind(const TomlValue& value, PortDraft& draft) {
  PortDescription& port = draft.port;
  port.portType = value.choice(kPortTypeWords);
  const bool isEthernet = port.portType == kPortTypeExg;
  const bool isXg = port.portType == kPortTypeXg;
  port.speeds = isEthernet ? kExgSpeeds : isXg ? kXgSpeeds : kGlSpeeds;
  port.media = isEthernet ? MEDIA_10G_ETHERNET : isXg ? MEDIA_COPPER_PASSIVE : MEDIA_OPTICAL;
  port.rxLinks = port.txLinks = isXg ? kMaxLinks : 1;
  port.caches.fill(isEthernet ? kPlainEthernetSettings : kPlainSettings);
  port.partner = {.tx = port.caches.front().tx, .speeds = port.speeds};
  draft.placed = value;
  draft.caches.fill({});
  draft.partner.reset();
}

void setUserPort(const TomlValue& value, PortDraft& draft) {
  // A run of ports has a run of user ports; -1 stands for none.
  const std::int64_t first = value.integer(-1, kNoUserPort - 1);
  if (first + draft.position >= kNoUserPort) value.fail("the run of user ports ends beyond 65534");
  draft.port.userPort = first < 0 ? kNoUserPort : static_cast<std::uint16_t>(first + draft.position);
  draft.userPort = value;
}

// One core serves the whole run, or each so many ports of it.
unsigned coreAt(const TomlValue& value, PortDraft& draft) {
  draft.placed = value;
  const auto first = static_cast<unsigned>(value.integer(0, kMaxCores - 1));
  return draft.portsPerCore == 0 ? first : first + draft.position / draft.portsPerCore;
}

void setFarEnd(const TomlValue& value, PortDraft& draft) {
  PortDescription& port = draft.port;
  draft.farEnd = value;
  if (!value.isText()) {
    value.store(port.farPort, 0, kMaxPorts - 1);
    port.farPort += draft.position;
    port.farEnd = FarEnd::kPort;
    return;
  }
  enum : std::uint32_t { kWordNothing, kWordLoop, kWordPair };
  constexpr auto kWords = std::to_array<Choice>({{"nothing", kWordNothing}, {"loop", kWordLoop}, {"pair", kWordPair}});
  const std::uint32_t word = value.choice(kWords);
  port.farEnd = word == kWordNothing ? FarEnd::kNothing : FarEnd::kPort;
  port.farPort = word == kWordPair ? draft.index ^ 1U : draft.index;
}

Use useOf(const TomlValue& value, const PortDraft& draft) {
  return {&lookUp(value, draft.library->settings, "settings"), value};
}

constexpr auto kPartnerKeys = std::to_array<Key<PortDraft>>({
    {"settings",
     [](auto& value, auto& draft) {
       draft.partner = useOf(value, draft);
       draft.port.partner.tx = draft.partner->named->settings.tx;
     }},
    {"speed", [](auto& value, auto& draft) { draft.port.partner.speed = value.choice(kSpeedWords); }},
    {"speeds", [](auto& value, auto& draft) { draft.port.partner.speeds = value.choiceSet(kFixedSpeedWords); }},
    {"sends", [](auto& value, auto& draft) { draft.port.partner.sends = value.boolean(); }},
    {"pattern", [](auto& value, auto& draft) { value.store(draft.port.partner.pattern, 0, 3); }},
});

void setCaches(const TomlValue& value, PortDraft& draft) {
  std::optional<TomlTable> table;
  if (!value.isText()) table = value.table();
  if (table) table->allow(kFixedSpeedWords);
  for (const Choice& speed : kFixedSpeedWords) {
    const auto name = table ? table->find(speed.name) : value;
    if (!name) continue;
    draft.caches[speed.value] = useOf(*name, draft);
    draft.port.caches[speed.value] = draft.caches[speed.value]->named->settings;
  }
}

constexpr auto kPortKeys = std::to_array<Key<PortDraft>>({
    {"ports"},
    {"kind", setKind},
    {"port_type", [](auto& value, auto& draft) { value.store(draft.port.shownType.emplace(), 0, UINT32_MAX); }},
    {"present", [](auto& value, auto& draft) { draft.port.present = value.boolean(); }},
    {"user_port", setUserPort},
    {"links",
     [](auto& value, auto& draft) {
       value.store(draft.port.rxLinks, 0, kMaxLinks);
       draft.port.txLinks = draft.port.rxLinks;
     }},
    {"rx_links", [](auto& value, auto& draft) { value.store(draft.port.rxLinks, 0, kMaxLinks); }},
    {"tx_links", [](auto& value, auto& draft) { value.store(draft.port.txLinks, 0, kMaxLinks); }},
    {"ports_per_core", [](auto& value, auto& draft) { value.store(draft.portsPerCore, 1, kMaxPorts); }},
    {"core", [](auto& value, auto& draft) { draft.port.rxCore = draft.port.txCore = coreAt(value, draft); }},
    {"rx_core", [](auto& value, auto& draft) { draft.port.rxCore = coreAt(value, draft); }},
    {"tx_core", [](auto& value, auto& draft) { draft.port.txCore = coreAt(value, draft); }},
    {"misplaced", [](auto& value, auto& draft) { draft.isMisplaced = value.boolean(); }},
    {"media", [](auto& value, auto& draft) { draft.port.media = value.choice(kMediaWords); }},
    {"media_speeds", [](auto& value, auto& draft) { draft.mediaSpeeds = value.choiceSet(kFixedSpeedWords); }},
    {"speeds", [](auto& value, auto& draft) { draft.port.speeds = value.choiceSet(kFixedSpeedWords); }},
    {"channel",
     [](auto& value, auto& draft) {
       draft.channel = value;
       draft.port.channel = lookUp(value, draft.library->channels, "channels");
     }},
    {"far_end", setFarEnd},
    {"partner",
     [](auto& value, auto& draft) {
       draft.port.farEnd = FarEnd::kPartner;
       value.table().read(kPartnerKeys, draft);
     }},
    {"speed", [](auto& value, auto& draft) { draft.port.speed = value.choice(kSpeedWords); }},
    {"sends", [](auto& value, auto& draft) { draft.port.sends = value.boolean(); }},
    {"signal_detect_mv", [](auto& value, auto& draft) { draft.port.signalDetectMv = value.number(0, 2000); }},
    {"load", [](auto& value, auto& draft) { value.store(draft.port.loadPercent, 0, 100); }},
    {"cache", setCaches},
    {"live",
     [](auto& value, auto& draft) {
       draft.live = useOf(value, draft);
       draft.port.live = draft.live->named->settings;
     }},
    {"tx_values",
     [](auto& value, auto& draft) {
       draft.txValues = value;
       draft.port.txValues = linkValues(value);
     }},
    {"rx_values",
     [](auto& value, auto& draft) {
       draft.rxValues = value;
       draft.port.rxValues = linkValues(value);
     }},
});

void readEntry(const TomlTable& table, unsigned, unsigned, CoreDraft& draft) {
  table.read(kCoreKeys, draft);
}

void readEntry(const TomlTable& table, unsigned index, unsigned position, PortDraft& draft) {
  draft.index = index;
  draft.position = position;
  draft.portsPerCore = 0;
  if (table.has("far_end") && table.has("partner")) {
    table.fail("far_end", "says where a cable ends, and so does partner");
  }
  table.read(kPortKeys, draft);
  const PortDescription& port = draft.port;
  if (port.speed != SPEED_AUTO && (port.speeds & speedBit(port.speed)) == 0) {
    table.fail("speed", "is not among the speeds of port " + std::to_string(index));
  }
}

// The entries of an ASIC's "cores" or "ports", which name under that key those that they speak for. The first entry of
// each has to have the key `first`.
template <typename Draft, typename Keys>
std::vector<Draft> readEntries(const TomlTable& asic, const std::string& plural, unsigned most, const Keys& keys,
                               const char* first, const Draft& fresh) {
  const std::string one = plural.substr(0, plural.size() - 1) + ' ';
  std::vector<Draft> drafts;
  for (const TomlTable& table : asic.tables(plural)) {
    table.allow(keys);
    const std::vector<unsigned> indexes =
        table.need(plural, "says which " + plural + " the entry is about, and is missing").indexes(most - 1);
    for (unsigned position = 0; position < indexes.size(); ++position) {
      const unsigned index = indexes[position];
      if (index >= drafts.size()) drafts.resize(index + 1, fresh);
      if (!drafts[index].described)
        (void)table.need(first, "the first entry of " + one + std::to_string(index) + " needs it");
      drafts[index].described = true;
      readEntry(table, index, position, drafts[index]);
    }
  }
  const auto gap = std::find_if(drafts.begin(), drafts.end(), [](const Draft& draft) { return !draft.described; });
  if (gap != drafts.end()) asic.fail(plural, "no entry for " + one + std::to_string(gap - drafts.begin()));
  return drafts;
}

// A cable has two ends: both ports name each other, or one port itself.
void checkCable(const std::vector<PortDraft>& drafts, unsigned index) {
  const PortDraft& draft = drafts[index];
  if (draft.port.farEnd != FarEnd::kPort) return;
  const unsigned far = draft.port.farPort;
  if (far < drafts.size() && drafts[far].port.farEnd == FarEnd::kPort && drafts[far].port.farPort == index) return;
  draft.farEnd->fail("the cable of port " + std::to_string(index) + " leads to port " + std::to_string(far) +
                     ", which does not lead back");
}

void judgeUse(const std::optional<Use>& use, SerDesLinkType side, unsigned serDesType, bool isEthernet) {
  if (!use) return;
  if (!use->named->isForAll && use->named->isEthernet != isEthernet) {
    use->where.fail(quoted(use->named->name) + " is for " + (isEthernet ? "fibre-channel ports" : "ethernet ports"));
  }
  if (serDesTraits(serDesType).isEthernet == isEthernet) judgeSettings(*use->named, side, serDesType, use->where);
}

// The core of one side exists, and its SerDes serve ports of this kind and take its settings. A core without a first
// port of its own gets the lowest that it serves.
void joinWithCore(PortDraft& draft, SerDesLinkType side, std::vector<CoreDraft>& cores) {
  const unsigned index = side == SERDES_LINK_RX ? draft.port.rxCore : draft.port.txCore;
  const auto fail = [&](const std::string& what) {
    draft.placed->fail("port " + std::to_string(draft.index) + " is on core " + std::to_string(index) + ", " + what);
  };
  if (index >= cores.size()) fail("which has no entry");
  CoreDraft& core = cores[index];
  const bool isEthernet = draft.port.portType == kPortTypeExg;
  const bool servesEthernet = serDesTraits(core.core.type).isEthernet;
  if (isEthernet != servesEthernet && !draft.isMisplaced) {
    fail("whose SerDes type " + std::to_string(core.core.type) + " serves " +
         (servesEthernet ? "EXG ports only" : "GL and XG ports only") + "; misplaced = true allows it");
  }
  if (!core.hasFirstPort) core.core.firstPort = draft.index;
  core.hasFirstPort = true;
  for (const std::optional<Use>& use : draft.caches)
    judgeUse(use, side, core.core.type, isEthernet);
  judgeUse(draft.live, side, core.core.type, isEthernet);
  if (side == SERDES_LINK_TX) judgeUse(draft.partner, side, core.core.type, isEthernet);
}

void checkValues(const LinkValues& values, unsigned links, const std::optional<TomlValue>& where) {
  if (values.size() <= links) return;
  where->fail("has values of " + std::to_string(values.size()) + " links, and the port has " + std::to_string(links));
}

// An echo that comes too late to be worked out at the port's lowest speed is none that a description may have.
void checkEchoes(const PortDraft& draft) {
  const PortDescription& port = draft.port;
  const double limitNs =
      longestEchoNs(lineRateOf(lowestSpeed(port.speeds)).gigabaud(port.portType) / std::max(port.rxLinks, 1U));
  for (const Echo& echo : port.channel.echoes) {
    if (echo.delayNs <= limitNs) continue;
    draft.channel->fail("has an echo that comes later than the " + std::to_string(static_cast<int>(limitNs)) +
                        " ns that port " + std::to_string(draft.index) + " can have at its lowest speed");
  }
}

void checkUserPort(const PortDraft& draft, unsigned asic, UserPorts& userPorts) {
  if (draft.port.userPort == kNoUserPort) return;
  const std::string whose = "port " + std::to_string(draft.index) + " of ASIC " + std::to_string(asic);
  const auto [taken, isNew] = userPorts.emplace(draft.port.userPort, whose);
  if (!isNew) {
    draft.userPort->fail("user port " + std::to_string(draft.port.userPort) + " of " + whose + " is that of " +
                         taken->second + " too");
  }
}

constexpr auto kAsicKeys = std::to_array<Key<AsicDescription>>({{"cores"}, {"ports"}});

}  // namespace

AsicDescription readAsic(const TomlTable& table, const Library& library, unsigned asic, UserPorts& userPorts) {
  table.allow(kAsicKeys);
  auto cores = readEntries<CoreDraft>(table, "cores", kMaxCores, kCoreKeys, "type", {});
  PortDraft fresh;
  fresh.library = &library;
  auto ports = readEntries(table, "ports", kMaxPorts, kPortKeys, "kind", fresh);
  AsicDescription description;
  for (unsigned i = 0; i < ports.size(); ++i) {
    PortDraft& draft = ports[i];
    checkCable(ports, i);
    checkEchoes(draft);
    checkValues(draft.port.txValues, draft.port.txLinks, draft.txValues);
    checkValues(draft.port.rxValues, draft.port.rxLinks, draft.rxValues);
    checkUserPort(draft, asic, userPorts);
    for (const SerDesLinkType side : {SERDES_LINK_RX, SERDES_LINK_TX})
      joinWithCore(draft, side, cores);
    draft.port.mediaSpeeds = draft.mediaSpeeds.value_or(kMediaSpeeds[draft.port.media]);
    description.ports.push_back(draft.port);
  }
  for (const CoreDraft& draft : cores)
    description.cores.push_back(draft.core);
  return description;
}

}  // namespace simulator
