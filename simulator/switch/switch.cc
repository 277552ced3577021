// Construction, addressing and discovery.
#include "simulator/switch/switch.h"

#include <utility>

namespace simulator {

Switch::Switch(SwitchDescription description)
    : description_(std::move(description)),
      clock_(description_.clock),
      faults_(description_.faults, description_.seed) {
  for (unsigned asic = 0; asic < description_.asics.size(); ++asic) {
    const AsicDescription& described = description_.asics[asic];
    AsicState& state = asics_.emplace_back();
    for (const CoreDescription& core : described.cores) {
      state.plls.push_back(serDesTraits(core.type).pll.resetValues());
    }
    state.ports.resize(described.ports.size());
    memos_.emplace_back(described.ports.size());
    for (unsigned port = 0; port < described.ports.size(); ++port)
      resetPort({asic, port});
  }
  // Speeds are agreed on when every port has its own.
  for (unsigned asic = 0; asic < asics_.size(); ++asic) {
    for (unsigned port = 0; port < asics_[asic].ports.size(); ++port)
      startPort({asic, port});
  }
}

void Switch::resetPort(PortPlace place) {
  const PortDescription& described = describe(place);
  PortState& state = stateOf(place);
  state.configuredSpeed = described.speed;
  state.sends = described.sends;
  state.caches = described.caches;
  const SerDesTraits& tx = traitsOf(place, SERDES_LINK_TX);
  for (TxLinkState& link : state.tx) {
    link.registers = tx.tx.resetValues();
    tx.tx.write(link.registers, Field::kTxEnable, described.sends ? 1 : 0);
  }
  const SerDesTraits& rx = traitsOf(place, SERDES_LINK_RX);
  for (RxLinkState& link : state.rx)
    link.registers = rx.rx.resetValues();
}

void Switch::startPort(PortPlace place) {
  renegotiate(place);
  const PortDescription& described = describe(place);
  if (!described.live) return;
  PortState& state = stateOf(place);
  for (TxLinkState& link : state.tx)
    applyCache(traitsOf(place, SERDES_LINK_TX), link.registers, described.live->tx);
  for (RxLinkState& link : state.rx)
    applyCache(traitsOf(place, SERDES_LINK_RX), link.registers, described.live->rx);
}

const FaultDescription* Switch::beginCall(const CallSite& call) {
  clock_.tick();
  return faults_.onCall(call);
}

int Switch::findPort(unsigned asic, unsigned port) const {
  if (asic >= asics_.size()) return kBadAsic;
  return port < asics_[asic].ports.size() ? kOk : kBadPort;
}

int Switch::findPort(port_id_t id) const {
  const int code = findPort(id.asic, id.asicPort);
  if (code != kOk || id.userPort == kNoUserPort) return code;
  return id.userPort == describe(placeOf(id)).userPort ? kOk : kBadPort;
}

int Switch::findLinks(PortPlace place, SerDesLinkType side, int link, LinkRange* range) const {
  if (side != SERDES_LINK_RX && side != SERDES_LINK_TX) return kOutOfRange;
  const unsigned count = linkCount(place, side);
  if (link == kAllLinks) {
    *range = {0, count};
    return kOk;
  }
  if (link < 0 || static_cast<unsigned>(link) >= count) return kBadLink;
  *range = {static_cast<unsigned>(link), static_cast<unsigned>(link) + 1};
  return kOk;
}

int Switch::findLink(unsigned asic, unsigned port, SerDesLinkType side, int link) const {
  if (const int code = findPort(asic, port); code != kOk) return code;
  if (link == kAllLinks) return kBadLink;
  LinkRange range;
  return findLinks({asic, port}, side, link, &range);
}

const PortDescription& Switch::describe(PortPlace place) const {
  return description_.asics[place.asic].ports[place.port];
}

PortState& Switch::stateOf(PortPlace place) {
  return asics_[place.asic].ports[place.port];
}

const PortState& Switch::stateOf(PortPlace place) const {
  return asics_[place.asic].ports[place.port];
}

unsigned Switch::coreOf(PortPlace place, SerDesLinkType side) const {
  const PortDescription& port = describe(place);
  return side == SERDES_LINK_RX ? port.rxCore : port.txCore;
}

unsigned Switch::linkCount(PortPlace place, SerDesLinkType side) const {
  const PortDescription& port = describe(place);
  return side == SERDES_LINK_RX ? port.rxLinks : port.txLinks;
}

const SerDesTraits& Switch::traitsOf(PortPlace place, SerDesLinkType side) const {
  return serDesTraits(description_.asics[place.asic].cores[coreOf(place, side)].type);
}

int Switch::getSwitchConfig(Switch_HW_Config_t* config) const {
  if (config == nullptr) return kBadArgument;
  *config = {};
  config->NumSlots = description_.slots;
  config->NumUserPorts = description_.userPorts;
  config->NumAuxPorts = description_.auxPorts;
  config->NumASICs = static_cast<std::uint32_t>(asics_.size());
  return kOk;
}

int Switch::getAsicInfo(unsigned asic, unsigned* portCount, unsigned* coreCount) const {
  if (portCount == nullptr || coreCount == nullptr) return kBadArgument;
  if (asic >= asics_.size()) return kBadAsic;
  *portCount = static_cast<unsigned>(asics_[asic].ports.size());
  *coreCount = static_cast<unsigned>(asics_[asic].plls.size());
  return kOk;
}

int Switch::getCoreInfo(unsigned asic, unsigned core, unsigned short* firstPort, SerDesType* type,
                        std::array<unsigned*, 5> counts) const {
  if (firstPort == nullptr || type == nullptr) return kBadArgument;
  for (const unsigned* count : counts) {
    if (count == nullptr) return kBadArgument;
  }
  if (asic >= asics_.size()) return kBadAsic;
  if (core >= asics_[asic].plls.size()) return kBadCore;
  const CoreDescription& described = description_.asics[asic].cores[core];
  *firstPort = static_cast<unsigned short>(described.firstPort);
  *type = static_cast<SerDesType>(described.type);
  *counts[0] = described.pllRegisters;
  *counts[1] = described.rxRegisters;
  *counts[2] = described.txRegisters;
  *counts[3] = described.rxParams;
  *counts[4] = described.txParams;
  return kOk;
}

int Switch::getPortSideInfo(unsigned asic, unsigned port, SerDesLinkType side, unsigned* count, SerDesType* type,
                            unsigned* coreId) const {
  if (count == nullptr || type == nullptr || coreId == nullptr) return kBadArgument;
  if (const int code = findPort(asic, port); code != kOk) return code;
  if (side != SERDES_LINK_RX && side != SERDES_LINK_TX) return kOutOfRange;
  const PortPlace place{asic, port};
  *count = linkCount(place, side);
  *coreId = coreOf(place, side);
  *type = static_cast<SerDesType>(description_.asics[asic].cores[*coreId].type);
  return kOk;
}

const char* Switch::typeName(SerDesType type) const {
  return type < kSerDesTypes ? description_.typeNames[type].c_str() : kUnknownType;
}

int Switch::getPortHwConfig(port_id_t port, Port_HW_Config_t* config) const {
  if (config == nullptr) return kBadArgument;
  if (const int code = findPort(port); code != kOk) return code;
  const PortDescription& described = describe(placeOf(port));
  *config = {};
  config->portId = {.userPort = described.userPort, .asic = port.asic, .asicPort = port.asicPort, .unused = {}};
  config->presence = described.present ? 1 : 0;
  config->portType = described.shownType.value_or(described.portType);
  return kOk;
}

}  // namespace simulator
