// Start, addressing, discovery, and operations on whole ports.
#include "simulator/switch/switch.h"

#include <utility>

#include "simulator/switch/counting.h"
#include "simulator/switch/speed.h"

namespace simulator {
namespace {

void resetPort(const Port& port) {
  port.state.configuredSpeed = port.description.speed;
  port.state.sends = port.description.sends;
  port.state.caches = port.description.caches;
  for (unsigned link = 0; link < kMaxLinks; ++link) {
    port.state.tx[link].registers = port.tx.map.resetValues();
    port.setTxField(link, Field::kTxEnable, port.description.sends ? 1 : 0);
    port.state.rx[link].registers = port.rx.map.resetValues();
  }
}

// Registers that report are passed over: a dump has them too.
void storeValues(const RegisterMap& map, const RegisterValues& values, RegisterFile& registers) {
  for (unsigned address = 0; address < values.size(); ++address) {
    if (!map.isReadOnly(address)) registers[address] = values[address];
  }
}

void storeValues(const Port& port) {
  for (unsigned link = 0; link < port.description.txValues.size(); ++link)
    storeValues(port.tx.map, port.description.txValues[link], port.state.tx[link].registers);
  for (unsigned link = 0; link < port.description.rxValues.size(); ++link)
    storeValues(port.rx.map, port.description.rxValues[link], port.state.rx[link].registers);
}

WordPairCounter wordsOf(const ErrorCounter& counter) {
  return {.high = static_cast<std::uint32_t>(counter.count >> 32), .low = static_cast<std::uint32_t>(counter.count)};
}

}  // namespace

Switch::Switch(SwitchDescription description)
    : description_(std::move(description)),
      clock_(description_.clock),
      faults_(description_.faults, description_.seed),
      results_(description_) {
  for (const AsicDescription& asic : description_.asics) {
    AsicState& state = asics_.emplace_back();
    state.ports.resize(asic.ports.size());
    for (const CoreDescription& core : asic.cores) {
      const RegisterMap& map = serDesTraits(core.type).pll;
      storeValues(map, core.pllValues, state.plls.emplace_back(map.resetValues()));
    }
  }
  const auto forEachPort = [&](auto action) {
    for (unsigned asic = 0; asic < asics_.size(); ++asic) {
      for (unsigned port = 0; port < asics_[asic].ports.size(); ++port)
        action(at(asic, port));
    }
  };
  forEachPort(resetPort);
  // Speeds are agreed on when every port has its own.
  forEachPort([](const Port& port) {
    renegotiate(port);
    if (port.description.live) putIntoForce(port, *port.description.live);
    storeValues(port);
  });
}

const FaultDescription* Switch::beginCall(const CallSite& call) {
  clock_.tick();
  return faults_.onCall(call);
}

std::vector<StateRecord> Switch::exportState() const {
  return toRecords(
      description_,
      {.now = clock_.now(), .faults = faults_.states(), .random = faults_.random().state(), .asics = asics_});
}

bool Switch::importState(const std::vector<StateRecord>& records) {
  SwitchState state{.faults = faults_.states(), .asics = asics_};
  if (!fromRecords(description_, records, state)) return false;
  asics_ = std::move(state.asics);
  faults_.restore(state.faults, RandomNumbers(state.random));
  clock_.continueFrom(state.now);
  return true;
}

int Switch::findPort(unsigned asic, unsigned port) const {
  if (asic >= asics_.size()) return kBadAsic;
  return port < asics_[asic].ports.size() ? kOk : kBadPort;
}

int Switch::findPort(port_id_t id) const {
  const int code = findPort(id.asic, id.asicPort);
  if (code != kOk || id.userPort == kNoUserPort) return code;
  return id.userPort == at(id).description.userPort ? kOk : kBadPort;
}

int Switch::findCore(unsigned asic, unsigned core) const {
  if (asic >= asics_.size()) return kBadAsic;
  return core < asics_[asic].plls.size() ? kOk : kBadCore;
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
  if (const int code = findCore(asic, core); code != kOk) return code;
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

int Switch::getPortSideInfo(unsigned asic, unsigned port, SerDesLinkType side, unsigned* linkCount, SerDesType* type,
                            unsigned* coreId) const {
  if (linkCount == nullptr || type == nullptr || coreId == nullptr) return kBadArgument;
  if (const int code = findPort(asic, port); code != kOk) return code;
  if (side != SERDES_LINK_RX && side != SERDES_LINK_TX) return kOutOfRange;
  const PortView view = at(asic, port);
  *linkCount = view.side(side).links;
  *coreId = view.side(side).coreId;
  *type = static_cast<SerDesType>(view.side(side).core.type);
  return kOk;
}

const char* Switch::typeName(SerDesType type) const {
  return type < kSerDesTypes ? description_.typeNames[type].c_str() : kUnknownType;
}

int Switch::getPortHwConfig(port_id_t port, Port_HW_Config_t* config) const {
  if (config == nullptr) return kBadArgument;
  if (const int code = findPort(port); code != kOk) return code;
  const PortDescription& described = at(port).description;
  *config = {};
  config->portId = {.userPort = described.userPort, .asic = port.asic, .asicPort = port.asicPort, .unused = {}};
  config->presence = described.present ? 1 : 0;
  config->portType = described.shownType.value_or(described.portType);
  return kOk;
}

int Switch::getPortInfo(port_id_t port, port_info_t selector, unsigned long* value) {
  if (value == nullptr) return kBadArgument;
  if (const int code = findPort(port); code != kOk) return code;
  if (selector != PORT_INFO_STATE) return kOutOfRange;
  *value = Reception(at(port), results_).portStatus();
  return kOk;
}

int Switch::setPortSpeed(port_id_t port, unsigned speed) {
  if (const int code = findPort(port); code != kOk) return code;
  if (speed >= kSpeeds) return kOutOfRange;
  const Port found = at(port);
  if (speed != SPEED_AUTO && (found.description.speeds & speedBit(speed)) == 0) return kNotSupported;
  settleAround(found, results_, clock_.now());
  setSpeed(found, speed);
  return kOk;
}

int Switch::getConfiguredSpeed(port_id_t port, unsigned* speed) const {
  if (speed == nullptr) return kBadArgument;
  if (const int code = findPort(port); code != kOk) return code;
  *speed = at(port).state.configuredSpeed;
  return kOk;
}

int Switch::getRunningSpeed(port_id_t port, unsigned* speed) {
  if (speed == nullptr) return kBadArgument;
  if (const int code = findPort(port); code != kOk) return code;
  const Port found = at(port);
  const bool isSet =
      found.state.configuredSpeed != SPEED_AUTO || Reception(found, results_).portStatus() == kPortStateRunning;
  *speed = isSet ? found.state.operatingSpeed : std::uint32_t{SPEED_INVALID};
  return kOk;
}

int Switch::getMedia(port_id_t port, MediaHwFcXmtrType* media) const {
  if (media == nullptr) return kBadArgument;
  if (const int code = findPort(port); code != kOk) return code;
  *media = static_cast<MediaHwFcXmtrType>(at(port).description.media);
  return kOk;
}

int Switch::setStream(port_id_t port, bool enable) {
  if (const int code = findPort(port); code != kOk) return code;
  const Port found = at(port);
  settleAround(found, results_, clock_.now());
  found.state.sends = enable;
  for (unsigned link = 0; link < found.tx.links; ++link)
    found.setTxField(link, Field::kTxEnable, enable ? 1 : 0);
  return kOk;
}

int Switch::getStream(port_id_t port, bool* enabled) const {
  if (enabled == nullptr) return kBadArgument;
  if (const int code = findPort(port); code != kOk) return code;
  *enabled = streamOn(at(port));
  return kOk;
}

int Switch::getCounters(port_id_t port, drv_counters_t* counters) {
  if (counters == nullptr) return kBadArgument;
  if (const int code = findPort(port); code != kOk) return code;
  const Port found = at(port);
  settle(found, results_, clock_.now());
  *counters = {};
  counters->decodeErrors = wordsOf(found.state.decodeErrors);
  counters->crcErrors = wordsOf(found.state.crcErrors);
  return kOk;
}

int Switch::clearCounters(port_id_t port) {
  if (const int code = findPort(port); code != kOk) return code;
  const Port found = at(port);
  settle(found, results_, clock_.now());
  found.state.decodeErrors.clear();
  found.state.crcErrors.clear();
  return kOk;
}

}  // namespace simulator
