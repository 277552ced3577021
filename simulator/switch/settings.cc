// Live settings and rate caches.
#include "simulator/switch/switch.h"

namespace simulator {

// A set is judged by the SerDes type and the values alone, so that the first link's answer is every link's.
template <typename Set>
int Switch::setTx(unsigned asic, unsigned port, int link, Set set) {
  LinkRange range;
  if (const int code = findPort(asic, port); code != kOk) return code;
  const PortPlace place{asic, port};
  if (const int code = findLinks(place, SERDES_LINK_TX, link, &range); code != kOk) return code;
  settleAround(place);
  for (unsigned l = range.first; l < range.last; ++l) {
    const int code = set(traitsOf(place, SERDES_LINK_TX), stateOf(place).tx[l].registers);
    if (code != kOk) return code;
  }
  return kOk;
}

template <typename Set>
int Switch::setRx(unsigned asic, unsigned port, int link, Set set) {
  LinkRange range;
  if (const int code = findPort(asic, port); code != kOk) return code;
  const PortPlace place{asic, port};
  if (const int code = findLinks(place, SERDES_LINK_RX, link, &range); code != kOk) return code;
  settle(place);
  for (unsigned l = range.first; l < range.last; ++l) {
    const int code = set(traitsOf(place, SERDES_LINK_RX), stateOf(place).rx[l].registers);
    if (code != kOk) return code;
  }
  return kOk;
}

int Switch::setTxFfe(unsigned asic, unsigned port, int link, const FfeSettings& settings) {
  return setTx(asic, port, link,
               [&](const SerDesTraits& traits, RegisterFile& tx) { return setFfe(traits, tx, settings); });
}

int Switch::getTxFfe(unsigned asic, unsigned port, int link, FfeSettings* settings) const {
  if (settings == nullptr) return kBadArgument;
  if (const int code = findLink(asic, port, SERDES_LINK_TX, link); code != kOk) return code;
  const PortPlace place{asic, port};
  *settings = ffeOf(traitsOf(place, SERDES_LINK_TX), stateOf(place).tx[static_cast<unsigned>(link)].registers);
  return kOk;
}

int Switch::setTxSlew(unsigned asic, unsigned port, int link, bool enable, SerDesTxSlewRate slew) {
  return setTx(asic, port, link,
               [&](const SerDesTraits& traits, RegisterFile& tx) { return setSlew(traits, tx, enable, slew); });
}

int Switch::getTxSlew(unsigned asic, unsigned port, int link, bool* enable, SerDesTxSlewRate* slew) const {
  if (enable == nullptr || slew == nullptr) return kBadArgument;
  if (const int code = findLink(asic, port, SERDES_LINK_TX, link); code != kOk) return code;
  const PortPlace place{asic, port};
  const SerDesTraits& traits = traitsOf(place, SERDES_LINK_TX);
  const RegisterFile& registers = stateOf(place).tx[static_cast<unsigned>(link)].registers;
  *enable = slewEnabled(traits, registers);
  *slew = static_cast<SerDesTxSlewRate>(slewOf(traits, registers));
  return kOk;
}

int Switch::setRxDfe(unsigned asic, unsigned port, int link, SerDesRxDFEMode mode) {
  return setRx(asic, port, link,
               [&](const SerDesTraits& traits, RegisterFile& rx) { return setDfe(traits, rx, mode); });
}

int Switch::getRxDfe(unsigned asic, unsigned port, int link, SerDesRxDFEMode* mode) const {
  if (mode == nullptr) return kBadArgument;
  if (const int code = findLink(asic, port, SERDES_LINK_RX, link); code != kOk) return code;
  const PortPlace place{asic, port};
  const RegisterFile& registers = stateOf(place).rx[static_cast<unsigned>(link)].registers;
  *mode = static_cast<SerDesRxDFEMode>(dfeOf(traitsOf(place, SERDES_LINK_RX), registers));
  return kOk;
}

int Switch::setRxVga(unsigned asic, unsigned port, int link, const VgaSettings& settings) {
  return setRx(asic, port, link,
               [&](const SerDesTraits& traits, RegisterFile& rx) { return setVga(traits, rx, settings); });
}

int Switch::getRxVga(unsigned asic, unsigned port, int link, VgaSettings* settings) const {
  if (settings == nullptr) return kBadArgument;
  if (const int code = findLink(asic, port, SERDES_LINK_RX, link); code != kOk) return code;
  const PortPlace place{asic, port};
  *settings = vgaOf(traitsOf(place, SERDES_LINK_RX), stateOf(place).rx[static_cast<unsigned>(link)].registers);
  return kOk;
}

int Switch::setRxDfeState(unsigned asic, unsigned port, int link, const SerDesRxDFEState* state) {
  if (state == nullptr) return kBadArgument;
  return setRx(asic, port, link,
               [&](const SerDesTraits& traits, RegisterFile& rx) { return setDfeState(traits, rx, *state); });
}

int Switch::getRxDfeStats(unsigned asic, unsigned port, int link, SerDesRxDFEStats* stats) {
  if (stats == nullptr) return kBadArgument;
  if (const int code = findLink(asic, port, SERDES_LINK_RX, link); code != kOk) return code;
  const PortPlace place{asic, port};
  const LinkResult& result = resultOf(place, static_cast<unsigned>(link));
  *stats = {};
  const bool ten = traitsOf(place, SERDES_LINK_RX).hasEvenAndOddTaps;
  for (std::size_t i = 0; i < (ten ? kTaps : kTaps / 2); ++i) {
    stats->h[i] = static_cast<std::int16_t>(readingOf(result.taps[ten ? i : 2 * i]));
  }
  stats->Ap = static_cast<std::int16_t>(readingOf(result.ap));
  stats->Amin = static_cast<std::int16_t>(readingOf(result.amin));
  stats->An = static_cast<std::int16_t>(readingOf(result.an));
  return kOk;
}

int Switch::findCache(unsigned asic, unsigned port, port_speed_type rate) const {
  if (const int code = findPort(asic, port); code != kOk) return code;
  return rate > SPEED_AUTO && rate < kSpeeds ? kOk : kOutOfRange;
}

int Switch::setTxRateParams(unsigned asic, unsigned port, port_speed_type rate, const SerDesTxRateParams& params) {
  if (const int code = findCache(asic, port, rate); code != kOk) return code;
  stateOf({asic, port}).caches[rate].tx = params;
  return kOk;
}

int Switch::getTxRateParams(unsigned asic, unsigned port, port_speed_type rate, SerDesTxRateParams* params) const {
  if (params == nullptr) return kBadArgument;
  if (const int code = findCache(asic, port, rate); code != kOk) return code;
  *params = stateOf({asic, port}).caches[rate].tx;
  return kOk;
}

int Switch::setRxRateParams(unsigned asic, unsigned port, port_speed_type rate, const SerDesRxRateParams& params) {
  if (const int code = findCache(asic, port, rate); code != kOk) return code;
  stateOf({asic, port}).caches[rate].rx = params;
  return kOk;
}

int Switch::getRxRateParams(unsigned asic, unsigned port, port_speed_type rate, SerDesRxRateParams* params) const {
  if (params == nullptr) return kBadArgument;
  if (const int code = findCache(asic, port, rate); code != kOk) return code;
  *params = stateOf({asic, port}).caches[rate].rx;
  return kOk;
}

}  // namespace simulator
