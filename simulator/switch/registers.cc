// Fills in status registers; keeps taps where they are put.
#include "simulator/switch/registers.h"

#include <algorithm>

namespace simulator {
namespace {

using enum Field;

// What an enabled transmit link adds to the die's temperature.
constexpr int kDegreesPerLink = 2;

// As far as a register's 16 bits reach.
int shownCount(std::uint64_t count) {
  return static_cast<int>(std::min<std::uint64_t>(count, UINT16_MAX));
}

void writeTaps(const RegisterMap& map, RegisterFile& registers, const LinkResult& result) {
  for (unsigned i = 0; i < kTaps; ++i)
    map.write(registers, tapField(i), readingOf(result.taps[i]));
}

}  // namespace

int eyeReading(const LinkResult& result) {
  return readingOf(result.eyeHeightV * result.gain / kLsbV);
}

int temperatureOf(const AsicView& asic, unsigned core) {
  int temperature = asic.description.cores[core].temperature;
  for (unsigned number = 0; number < asic.state.ports.size(); ++number) {
    const PortView port(asic, number);
    if (port.tx.coreId != core) continue;
    for (unsigned link = 0; link < port.tx.links; ++link) {
      if (linkSends(port, link)) temperature += kDegreesPerLink;
    }
  }
  return temperature;
}

RegisterFile readablePll(const AsicView& asic, unsigned core) {
  const CoreDescription& described = asic.description.cores[core];
  const RegisterMap& map = serDesTraits(described.type).pll;
  RegisterFile registers = asic.state.plls[core];
  map.write(registers, kPllLock, pllLocked(described, registers) ? 1 : 0);
  map.write(registers, kTemperature, temperatureOf(asic, core));
  return registers;
}

RegisterFile readableTx(const PortView& port, unsigned link) {
  const RegisterMap& map = port.tx.map;
  RegisterFile registers = port.state.tx[link].registers;
  map.write(registers, kPllLock, port.tx.pllLocked() ? 1 : 0);
  map.write(registers, kSending, linkSends(port, link) ? 1 : 0);
  map.write(registers, kInjectedErrors, shownCount(port.state.tx[link].injectedErrors));
  return registers;
}

bool showsLink(const PortView& port, unsigned link, unsigned address, unsigned count) {
  const bool adapts = port.rxField(link, kHold) == 0;
  return std::any_of(port.rx.map.fields.begin(), port.rx.map.fields.end(), [&](const FieldPlace& place) {
    const bool inRun = place.address >= address && place.address < address + count;
    return inRun && (isComputed(place.field) || (adapts && isTap(place.field)));
  });
}

RegisterFile readableRx(Reception& reception, unsigned link) {
  const RegisterMap& map = reception.port().rx.map;
  const RxLinkState& state = reception.port().state.rx[link];
  const LinkResult& result = reception.result(link);
  RegisterFile registers = state.registers;
  if (map.read(registers, kHold) == 0) writeTaps(map, registers, result);
  map.write(registers, kSignalDetect, result.signalDetected ? 1 : 0);
  map.write(registers, kLock, result.locked ? 1 : 0);
  map.write(registers, kGainInRange, result.gainInRange ? 1 : 0);
  map.write(registers, kEyeHeight, eyeReading(result));
  map.write(registers, kAp, readingOf(result.ap));
  map.write(registers, kAmin, readingOf(result.amin));
  map.write(registers, kAn, readingOf(result.an));
  map.write(registers, kCheckErrors, shownCount(state.checkErrors.count));
  return registers;
}

void holdTaps(const Port& port, unsigned link, LinkResults& results) {
  writeTaps(port.rx.map, port.state.rx[link].registers, Reception(port, results).result(link));
  port.setRxField(link, kHold, 1);
}

void writeRxRegister(const Port& port, unsigned link, unsigned address, std::uint16_t value, LinkResults& results) {
  const RegisterMap& map = port.rx.map;
  RegisterFile& registers = port.state.rx[link].registers;
  const bool hasTaps = std::any_of(map.fields.begin(), map.fields.end(), [&](const FieldPlace& place) {
    return place.address == address && isTap(place.field);
  });
  RegisterFile written = registers;
  written[address] = value;
  const bool adapts = map.read(registers, kHold) == 0;
  const bool stops = map.read(written, kHold) != 0;
  if (adapts && (hasTaps || stops)) holdTaps(port, link, results);
  registers[address] = value;
}

}  // namespace simulator
