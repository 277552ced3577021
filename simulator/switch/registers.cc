// Register access: the settings' other face, with status that is worked out when it is read.
#include <algorithm>

#include "simulator/switch/switch.h"

namespace simulator {
namespace {

using enum Field;

int findRun(unsigned registers, unsigned address, unsigned count) {
  return address + count <= registers ? kOk : kBadRegister;
}

// What an enabled transmit link adds to the die's temperature.
constexpr int kDegreesPerLink = 2;

}  // namespace

RegisterFile Switch::readableTx(PortPlace place, unsigned link) const {
  const RegisterMap& map = traitsOf(place, SERDES_LINK_TX).tx;
  const TxLinkState& state = stateOf(place).tx[link];
  RegisterFile registers = state.registers;
  map.write(registers, kPllLock, pllLocked(place.asic, coreOf(place, SERDES_LINK_TX)) ? 1 : 0);
  map.write(registers, kSending, linkSends(place, link) ? 1 : 0);
  map.write(registers, kInjectedErrors, static_cast<int>(std::min<std::uint32_t>(state.injectedErrors, UINT16_MAX)));
  return registers;
}

// The link is worked out only if the run of registers shows something of it.
RegisterFile Switch::readableRx(PortPlace place, unsigned link, unsigned address, unsigned count) {
  const RegisterMap& map = traitsOf(place, SERDES_LINK_RX).rx;
  RegisterFile registers = stateOf(place).rx[link].registers;
  const bool adapts = map.read(registers, kHold) == 0;
  const bool shown = std::any_of(map.fields.begin(), map.fields.end(), [&](const FieldPlace& field) {
    const bool inRun = field.address >= address && field.address < address + count;
    return inRun && (isComputed(field.field) || (adapts && isTap(field.field)));
  });
  if (!shown) return registers;
  settle(place);
  const LinkResult& result = resultOf(place, link);
  if (adapts) {
    for (unsigned i = 0; i < kTaps; ++i)
      map.write(registers, tapField(i), readingOf(result.taps[i]));
  }
  map.write(registers, kSignalDetect, result.signalDetected ? 1 : 0);
  map.write(registers, kLock, result.locked ? 1 : 0);
  map.write(registers, kGainInRange, result.gainInRange ? 1 : 0);
  map.write(registers, kEyeHeight, readingOf(result.eyeHeightV * result.gain / kLsbV));
  map.write(registers, kAp, readingOf(result.ap));
  map.write(registers, kAmin, readingOf(result.amin));
  map.write(registers, kAn, readingOf(result.an));
  const std::uint64_t errors = stateOf(place).rx[link].checkErrors.count;
  map.write(registers, kCheckErrors, static_cast<int>(std::min<std::uint64_t>(errors, UINT16_MAX)));
  return registers;
}

int Switch::readLinkRegisters(unsigned asic, unsigned port, int link, SerDesLinkType side, unsigned address,
                              unsigned short* values, unsigned count) {
  if (values == nullptr) return kBadArgument;
  if (const int code = findLink(asic, port, side, link); code != kOk) return code;
  const PortPlace place{asic, port};
  const CoreDescription& core = description_.asics[asic].cores[coreOf(place, side)];
  const bool isRx = side == SERDES_LINK_RX;
  if (const int code = findRun(isRx ? core.rxRegisters : core.txRegisters, address, count); code != kOk) return code;
  const auto index = static_cast<unsigned>(link);
  const RegisterFile registers = isRx ? readableRx(place, index, address, count) : readableTx(place, index);
  std::copy_n(registers.begin() + address, count, values);
  return kOk;
}

// Stops the adaptation where it stands.
void Switch::holdTaps(PortPlace place, unsigned link) {
  const RegisterMap& map = traitsOf(place, SERDES_LINK_RX).rx;
  const LinkResult result = resultOf(place, link);
  RegisterFile& registers = stateOf(place).rx[link].registers;
  for (unsigned i = 0; i < kTaps; ++i)
    map.write(registers, tapField(i), readingOf(result.taps[i]));
  map.write(registers, kHold, 1);
}

// A tap that is written stands, and so do the others: adaptation would take it away again at once.
void Switch::writeRxRegister(PortPlace place, unsigned link, unsigned address, std::uint16_t value) {
  const RegisterMap& map = traitsOf(place, SERDES_LINK_RX).rx;
  RegisterFile& registers = stateOf(place).rx[link].registers;
  const bool hasTaps = std::any_of(map.fields.begin(), map.fields.end(), [&](const FieldPlace& field) {
    return field.address == address && isTap(field.field);
  });
  RegisterFile written = registers;
  written[address] = value;
  const bool adapts = map.read(registers, kHold) == 0;
  const bool stops = map.read(written, kHold) != 0;
  if (adapts && (hasTaps || stops)) holdTaps(place, link);
  registers[address] = value;
}

int Switch::writeLinkRegister(unsigned asic, unsigned port, int link, SerDesLinkType side, unsigned address,
                              std::uint16_t value) {
  LinkRange range;
  if (const int code = findPort(asic, port); code != kOk) return code;
  const PortPlace place{asic, port};
  if (const int code = findLinks(place, side, link, &range); code != kOk) return code;
  const CoreDescription& core = description_.asics[asic].cores[coreOf(place, side)];
  const bool isRx = side == SERDES_LINK_RX;
  if (const int code = findRun(isRx ? core.rxRegisters : core.txRegisters, address, 1); code != kOk) return code;
  const SerDesTraits& traits = traitsOf(place, side);
  if ((isRx ? traits.rx : traits.tx).isReadOnly(address)) return kReadOnlyRegister;
  settleAround(place);
  for (unsigned l = range.first; l < range.last; ++l) {
    if (isRx) {
      writeRxRegister(place, l, address, value);
    } else {
      stateOf(place).tx[l].registers[address] = value;
    }
  }
  if (isRx) renegotiateAround(place);  // the register may have closed or opened the loopback
  return kOk;
}

int Switch::temperatureOf(unsigned asic, unsigned core) const {
  int temperature = description_.asics[asic].cores[core].temperature;
  for (unsigned port = 0; port < asics_[asic].ports.size(); ++port) {
    const PortPlace place{asic, port};
    if (coreOf(place, SERDES_LINK_TX) != core) continue;
    for (unsigned link = 0; link < linkCount(place, SERDES_LINK_TX); ++link) {
      if (linkSends(place, link)) temperature += kDegreesPerLink;
    }
  }
  return temperature;
}

int Switch::readPllRegisters(unsigned asic, unsigned core, unsigned address, unsigned short* values,
                             unsigned count) const {
  if (values == nullptr) return kBadArgument;
  if (asic >= asics_.size()) return kBadAsic;
  if (core >= asics_[asic].plls.size()) return kBadCore;
  const CoreDescription& described = description_.asics[asic].cores[core];
  if (const int code = findRun(described.pllRegisters, address, count); code != kOk) return code;
  const RegisterMap& map = serDesTraits(described.type).pll;
  RegisterFile registers = asics_[asic].plls[core];
  map.write(registers, kPllLock, pllLocked(asic, core) ? 1 : 0);
  map.write(registers, kTemperature, temperatureOf(asic, core));
  std::copy_n(registers.begin() + address, count, values);
  return kOk;
}

int Switch::writePllRegister(unsigned asic, unsigned core, unsigned address, std::uint16_t value) {
  if (asic >= asics_.size()) return kBadAsic;
  if (core >= asics_[asic].plls.size()) return kBadCore;
  const CoreDescription& described = description_.asics[asic].cores[core];
  if (const int code = findRun(described.pllRegisters, address, 1); code != kOk) return code;
  if (serDesTraits(described.type).pll.isReadOnly(address)) return kReadOnlyRegister;
  settleCore(asic, core);
  asics_[asic].plls[core][address] = value;
  return kOk;
}

}  // namespace simulator
