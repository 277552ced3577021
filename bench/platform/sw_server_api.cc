// The instant switch itself, behind the two classes of the other two libraries.
#include <cstdlib>

#include "bench/platform/instant_switch.h"

namespace instant {

Switch theSwitch;

namespace {

std::uint32_t numberFrom(const char* name, std::uint32_t otherwise) {
  const char* text = std::getenv(name);
  return text == nullptr ? otherwise : static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10));
}

}  // namespace

void open() {
  theSwitch.ports = numberFrom("SERDES_BENCH_PORTS", kMaxPorts);
  theSwitch.links = numberFrom("SERDES_BENCH_LINKS", kMaxLinks);
  theSwitch.reports = std::getenv("SERDES_BENCH_REPORTS") != nullptr;
  // An odd factor modulo 2^16: 3072 different words, in no order.
  std::uint32_t index = 0;
  for (auto& port : theSwitch.registers) {
    for (auto& link : port) {
      for (unsigned short& word : link)
        word = static_cast<unsigned short>(++index * 40503u & 0xFFFFu);
    }
  }
}

}  // namespace instant
