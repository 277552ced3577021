// Operations on links: registers, live settings, rate caches, test options.
#include <algorithm>

#include "simulator/switch/counting.h"
#include "simulator/switch/registers.h"
#include "simulator/switch/speed.h"
#include "simulator/switch/switch.h"

namespace simulator {
namespace {

// Links first to last - 1 of a side.
struct LinkRange {
  unsigned first{};
  unsigned last{};
};

int findLinks(const PortView& port, SerDesLinkType side, int link, LinkRange* range) {
  if (side != SERDES_LINK_RX && side != SERDES_LINK_TX) return kOutOfRange;
  const unsigned count = port.side(side).links;
  *range = {0, count};
  if (link == kAllLinks) return kOk;
  if (link < 0 || static_cast<unsigned>(link) >= count) return kBadLink;
  *range = {static_cast<unsigned>(link), static_cast<unsigned>(link) + 1};
  return kOk;
}

int findRun(unsigned registers, unsigned address, unsigned count) {
  return address + count <= registers ? kOk : kBadRegister;
}

}  // namespace

int Switch::findLink(unsigned asic, unsigned port, SerDesLinkType side, int link) const {
  if (const int code = findPort(asic, port); code != kOk) return code;
  if (link == kAllLinks) return kBadLink;
  LinkRange range;
  return findLinks(at(asic, port), side, link, &range);
}

int Switch::findCache(unsigned asic, unsigned port, port_speed_type rate) const {
  if (const int code = findPort(asic, port); code != kOk) return code;
  return rate > SPEED_AUTO && rate < kSpeeds ? kOk : kOutOfRange;
}

// A set is judged by the SerDes type and the values alone, so that the first link's answer is every link's.
template <typename Set, typename... Values>
int Switch::setLinks(unsigned asic, unsigned port, SerDesLinkType side, int link, Set set, const Values&... values) {
  if (const int code = findPort(asic, port); code != kOk) return code;
  const Port found = at(asic, port);
  LinkRange range;
  if (const int code = findLinks(found, side, link, &range); code != kOk) return code;
  // What a receiver does changes nothing at the far end.
  if (side == SERDES_LINK_RX) settle(found, results_, clock_.now());
  if (side == SERDES_LINK_TX) settleAround(found, results_, clock_.now());
  for (unsigned l = range.first; l < range.last; ++l) {
    if (const int code = set(found.side(side).traits, found.registers(side, l), values...); code != kOk) return code;
  }
  return kOk;
}

template <typename Get, typename Value>
int Switch::getLink(unsigned asic, unsigned port, SerDesLinkType side, int link, Get get, Value* value) const {
  if (value == nullptr) return kBadArgument;
  if (const int code = findLink(asic, port, side, link); code != kOk) return code;
  const PortView found = at(asic, port);
  *value = static_cast<Value>(get(found.side(side).traits, found.registers(side, static_cast<unsigned>(link))));
  return kOk;
}

int Switch::readLinkRegisters(unsigned asic, unsigned port, int link, SerDesLinkType side, unsigned address,
                              unsigned short* values, unsigned count) {
  if (values == nullptr) return kBadArgument;
  if (const int code = findLink(asic, port, side, link); code != kOk) return code;
  const Port found = at(asic, port);
  if (const int code = findRun(found.side(side).registers, address, count); code != kOk) return code;
  const auto index = static_cast<unsigned>(link);
  RegisterFile registers = found.registers(side, index);
  if (side == SERDES_LINK_TX) {
    registers = readableTx(found, index);
  } else if (showsLink(found, index, address, count)) {
    Reception reception(found, results_);
    settle(found, reception, clock_.now());
    registers = readableRx(reception, index);
  }
  std::copy_n(registers.begin() + address, count, values);
  return kOk;
}

int Switch::writeLinkRegister(unsigned asic, unsigned port, int link, SerDesLinkType side, unsigned address,
                              std::uint16_t value) {
  if (const int code = findPort(asic, port); code != kOk) return code;
  const Port found = at(asic, port);
  LinkRange range;
  if (const int code = findLinks(found, side, link, &range); code != kOk) return code;
  if (const int code = findRun(found.side(side).registers, address, 1); code != kOk) return code;
  if (found.side(side).map.isReadOnly(address)) return kReadOnlyRegister;
  settleAround(found, results_, clock_.now());
  for (unsigned l = range.first; l < range.last; ++l) {
    if (side == SERDES_LINK_RX) {
      writeRxRegister(found, l, address, value, results_);
    } else {
      found.state.tx[l].registers[address] = value;
    }
  }
  if (side == SERDES_LINK_RX) renegotiateAround(found);  // the register may have closed or opened the loopback
  return kOk;
}

int Switch::readPllRegisters(unsigned asic, unsigned core, unsigned address, unsigned short* values,
                             unsigned count) const {
  if (values == nullptr) return kBadArgument;
  if (const int code = findCore(asic, core); code != kOk) return code;
  const CoreDescription& described = description_.asics[asic].cores[core];
  if (const int code = findRun(described.pllRegisters, address, count); code != kOk) return code;
  const RegisterFile registers = readablePll(at(asic), core);
  std::copy_n(registers.begin() + address, count, values);
  return kOk;
}

int Switch::writePllRegister(unsigned asic, unsigned core, unsigned address, std::uint16_t value) {
  if (const int code = findCore(asic, core); code != kOk) return code;
  const CoreDescription& described = description_.asics[asic].cores[core];
  if (const int code = findRun(described.pllRegisters, address, 1); code != kOk) return code;
  if (serDesTraits(described.type).pll.isReadOnly(address)) return kReadOnlyRegister;
  settleCore(at(asic), core, results_, clock_.now());
  asics_[asic].plls[core][address] = value;
  return kOk;
}

int Switch::setTxFfe(unsigned asic, unsigned port, int link, const FfeSettings& settings) {
  return setLinks(asic, port, SERDES_LINK_TX, link, setFfe, settings);
}

int Switch::getTxFfe(unsigned asic, unsigned port, int link, FfeSettings* settings) const {
  return getLink(asic, port, SERDES_LINK_TX, link, ffeOf, settings);
}

int Switch::setTxSlew(unsigned asic, unsigned port, int link, bool enable, SerDesTxSlewRate slew) {
  return setLinks(asic, port, SERDES_LINK_TX, link, setSlew, enable, slew);
}

int Switch::getTxSlew(unsigned asic, unsigned port, int link, bool* enable, SerDesTxSlewRate* slew) const {
  if (slew == nullptr) return kBadArgument;
  if (const int code = getLink(asic, port, SERDES_LINK_TX, link, slewEnabled, enable); code != kOk) return code;
  return getLink(asic, port, SERDES_LINK_TX, link, slewOf, slew);
}

int Switch::setRxDfe(unsigned asic, unsigned port, int link, SerDesRxDFEMode mode) {
  return setLinks(asic, port, SERDES_LINK_RX, link, setDfe, mode);
}

int Switch::getRxDfe(unsigned asic, unsigned port, int link, SerDesRxDFEMode* mode) const {
  return getLink(asic, port, SERDES_LINK_RX, link, dfeOf, mode);
}

int Switch::setRxVga(unsigned asic, unsigned port, int link, const VgaSettings& settings) {
  return setLinks(asic, port, SERDES_LINK_RX, link, setVga, settings);
}

int Switch::getRxVga(unsigned asic, unsigned port, int link, VgaSettings* settings) const {
  return getLink(asic, port, SERDES_LINK_RX, link, vgaOf, settings);
}

int Switch::setRxDfeState(unsigned asic, unsigned port, int link, const SerDesRxDFEState* state) {
  return state == nullptr ? kBadArgument : setLinks(asic, port, SERDES_LINK_RX, link, setDfeState, *state);
}

int Switch::getRxDfeStats(unsigned asic, unsigned port, int link, SerDesRxDFEStats* stats) {
  if (stats == nullptr) return kBadArgument;
  if (const int code = findLink(asic, port, SERDES_LINK_RX, link); code != kOk) return code;
  const Port found = at(asic, port);
  const LinkResult& result = Reception(found, results_).result(static_cast<unsigned>(link));
  *stats = {};
  const bool ten = found.rx.traits.hasEvenAndOddTaps;
  for (std::size_t i = 0; i < (ten ? kTaps : kTaps / 2); ++i)
    stats->h[i] = static_cast<std::int16_t>(readingOf(result.taps[ten ? i : 2 * i]));
  stats->Ap = static_cast<std::int16_t>(readingOf(result.ap));
  stats->Amin = static_cast<std::int16_t>(readingOf(result.amin));
  stats->An = static_cast<std::int16_t>(readingOf(result.an));
  return kOk;
}

int Switch::setTxRateParams(unsigned asic, unsigned port, port_speed_type rate, const SerDesTxRateParams& params) {
  if (const int code = findCache(asic, port, rate); code != kOk) return code;
  at(asic, port).state.caches[rate].tx = params;
  return kOk;
}

int Switch::getTxRateParams(unsigned asic, unsigned port, port_speed_type rate, SerDesTxRateParams* params) const {
  if (params == nullptr) return kBadArgument;
  if (const int code = findCache(asic, port, rate); code != kOk) return code;
  *params = at(asic, port).state.caches[rate].tx;
  return kOk;
}

int Switch::setRxRateParams(unsigned asic, unsigned port, port_speed_type rate, const SerDesRxRateParams& params) {
  if (const int code = findCache(asic, port, rate); code != kOk) return code;
  at(asic, port).state.caches[rate].rx = params;
  return kOk;
}

int Switch::getRxRateParams(unsigned asic, unsigned port, port_speed_type rate, SerDesRxRateParams* params) const {
  if (params == nullptr) return kBadArgument;
  if (const int code = findCache(asic, port, rate); code != kOk) return code;
  *params = at(asic, port).state.caches[rate].rx;
  return kOk;
}

int Switch::setTestOption(unsigned asic, unsigned port, int link, std::uint32_t option, int mode) {
  if (const int code = findPort(asic, port); code != kOk) return code;
  const TestOptionRow* row = findTestOption(option);
  if (row == nullptr) return kOutOfRange;
  const Port found = at(asic, port);
  LinkRange range;
  if (const int code = findLinks(found, row->side, link, &range); code != kOk) return code;
  if (!row->hasMode(mode)) return kOutOfRange;
  if (!row->isFor(found) && range.first < range.last) return kNotSupported;
  settleAround(found, results_, clock_.now());
  for (unsigned l = range.first; l < range.last; ++l)
    row->set({.port = found, .number = l, .results = results_}, mode);
  return kOk;
}

int Switch::getTestStatus(unsigned asic, unsigned port, int link, std::uint32_t option, int* status) {
  if (status == nullptr) return kBadArgument;
  if (const int code = findPort(asic, port); code != kOk) return code;
  const TestOptionRow* row = findTestOption(option);
  if (row == nullptr) return kOutOfRange;
  if (row->status == nullptr) return kNotSupported;
  if (const int code = findLink(asic, port, row->side, link); code != kOk) return code;
  const Port found = at(asic, port);
  Reception reception(found, results_);
  settle(found, reception, clock_.now());
  if (!row->isFor(found)) return kNotSupported;
  *status = row->status(reception, static_cast<unsigned>(link));
  return kOk;
}

}  // namespace simulator
