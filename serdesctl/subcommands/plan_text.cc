// Plans and differences, for people.
#include "serdesctl/subcommands/plan_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

#include "serdesctl/asking/asked_switch.h"

namespace serdesctl {
namespace {

constexpr std::size_t kMostNamed = 20;  // differences in one message

// Where in its port a setting is: "tx link 0 ", "8G rx cache ".
std::string withinPort(const SettingPlace& place) {
  if (place.rate) return *place.rate + " " + place.side.value_or("") + " cache ";
  return place.link ? place.side.value_or("") + " link " + std::to_string(*place.link) + " " : "";
}

struct PortChanges {
  std::uint32_t asic = 0;
  std::uint32_t ports = 0;
  Effect effect = Effect::kNothing;
  std::string text;
};

Effect effectOn(const Plan& plan, std::uint32_t asic, std::uint32_t port) {
  Effect effect = Effect::kNothing;
  for (const PlannedStep& step : plan.steps) {
    if (step.asic == asic && (step.ports >> port & 1) != 0) effect = std::max(effect, step.effect);
  }
  return effect;
}

// Ports that change alike together.
std::vector<PortChanges> changesByPort(const Plan& plan, const SwitchState& now) {
  std::vector<PortChanges> single;
  for (const Difference& d : compare(now, plan.after).settings) {
    const std::uint32_t asic = d.place.asic.value_or(0), port = d.place.port.value_or(0);
    const std::uint32_t bit = std::uint32_t{1} << port;
    if (single.empty() || single.back().asic != asic || single.back().ports != bit) {
      single.push_back({asic, bit, effectOn(plan, asic, port), ""});
    }
    single.back().text += "  " + withinPort(d.place) + d.parameter + " " + textOf(d.before) + " -> " + textOf(d.after);
    single.back().text += "\n";
  }
  std::vector<PortChanges> together;
  for (const PortChanges& port : single) {
    const auto alike = std::find_if(together.begin(), together.end(), [&](const PortChanges& other) {
      return other.asic == port.asic && other.effect == port.effect && other.text == port.text;
    });
    if (alike == together.end()) {
      together.push_back(port);
    } else {
      alike->ports |= port.ports;
    }
  }
  return together;
}

// What the effect means for a link.
const char* effectText(Effect effect) {
  constexpr std::array<const char*, 4> kTexts = {"links are not touched", "links go on, receivers adapt",
                                                 "links retrain", "links go down"};
  return kTexts[static_cast<std::size_t>(effect)];
}

}  // namespace

std::string differenceText(const Difference& d) {
  return textOf(d.place) + " " + d.parameter + " " + textOf(d.before) + " -> " + textOf(d.after);
}

std::string differencesText(const std::vector<Difference>& differences) {
  std::string text;
  for (std::size_t i = 0; i < std::min(differences.size(), kMostNamed); ++i)
    text += "  " + differenceText(differences[i]) + "\n";
  if (differences.size() > kMostNamed) text += "  and " + std::to_string(differences.size() - kMostNamed) + " more\n";
  return text;
}

std::string commandCount(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " command" : " commands");
}

std::string impossibleText(const Plan& plan) {
  std::string text;
  for (const Impossible& one : plan.impossible) {
    text += "cannot be done: " + textOf(one.place) + " " + one.what + " " + one.wanted + ": " + one.reason + " (" +
            one.nearest + ")\n";
  }
  return text;
}

std::string planReport(const Plan& plan, const SwitchState& now) {
  std::string text;
  for (const PortChanges& group : changesByPort(plan, now)) {
    const bool one = std::has_single_bit(group.ports);
    text += "ASIC " + std::to_string(group.asic) + (one ? " port " : " ports ") + listOf(group.ports) + ": " +
            effectText(group.effect) + "\n" + group.text;
  }
  text += impossibleText(plan);
  return text + (plan.steps.empty() ? "nothing to do" : commandCount(plan.steps.size())) + "\n";
}

}  // namespace serdesctl
