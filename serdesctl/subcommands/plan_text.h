// Plans and differences, for people.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "serdesctl/plan/plan.h"

namespace serdesctl {

// A line each, up to some.
std::string differencesText(const std::vector<Difference>& differences);

// The whole plan: what changes, by ports that change alike.
std::string planReport(const Plan& plan, const SwitchState& now);

// What is impossible, a line each.
std::string impossibleText(const Plan& plan);

std::string commandCount(std::size_t count);

// "ASIC 0 port 4 (user 12) tx link 0 k 115 -> 20"
std::string differenceText(const Difference& difference);

}  // namespace serdesctl
