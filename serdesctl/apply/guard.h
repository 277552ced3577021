// Watches whether ports get worse.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "serdesctl/asking/asked_switch.h"
#include "serdesctl/base/waiting.h"
#include "serdesctl/health/judging.h"

namespace serdesctl {

// By what a port has got worse; empty when it has not. Both judged by two looks.
std::string worse(const PortHealth& before, const PortHealth& now);

using PortsByAsic = std::map<std::uint32_t, std::uint32_t>;  // masks

class Guard {
 public:
  // Looks twice at all ports, some time apart, to know how they were. Which ports are touched is known, their far ends
  // are not: those that ran well are all watched. ASIC 0 must be the current one; which one is afterwards is not known.
  Guard(Conversation& tool, const std::vector<std::uint32_t>& asics, const PortsByAsic& touched);

  // Watches for so long, and says which port has got worse and how: "port 4: bad, it was good: ...". Empty when none
  // has. Throws Interrupted.
  std::string watch(Seconds time);

 private:
  struct Watched {
    AskedSwitch asked;
    std::map<std::uint32_t, PortHealth> before;
  };
  using Looks = std::map<std::uint32_t, PortLook>;

  static std::map<std::uint32_t, PortHealth> judged(const AskedSwitch& asked, const Looks& first, const Looks& last);
  std::string compared(const std::vector<Looks>& first);
  std::vector<Looks> look();

  std::vector<Watched> asics_;
};

}  // namespace serdesctl
