// Ports' operations become commands: those that are alike together, as far as the tool takes their ports in one.
#include "serdesctl/plan/plan.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "platform/platform.h"
#include "serdesctl/base/tool_facts.h"
#include "serdesctl/plan/places.h"
#include "serdesctl/plan/port_planning.h"
#include "serdesctl/session/conversation.h"
#include "serdesctl/tables/config_records.h"
#include "shell/command_reader.h"
#include "topology/serdes_topology.h"

namespace serdesctl {
namespace {

// Operations of one command, on ports of one type: the tool refuses others together.
struct Group {
  Operation like;
  std::optional<std::string> portType;
  std::vector<Operation> operations;  // by port
};

std::vector<Group> grouped(const ConfigText& config, const std::vector<Operation>& operations) {
  std::vector<Group> groups;
  for (const Operation& operation : operations) {
    const auto type = portTypeOf(config, operation.port);
    auto group = std::find_if(groups.begin(), groups.end(), [&](const Group& g) {
      return g.like.phase == operation.phase && g.like.words == operation.words && g.portType == type;
    });
    if (group == groups.end()) group = groups.insert(group, {operation, type, {}});
    group->operations.push_back(operation);
  }
  const auto byPhase = [](const Group& a, const Group& b) { return a.like.phase < b.like.phase; };
  std::stable_sort(groups.begin(), groups.end(), byPhase);
  return groups;
}

std::size_t wordCount(const std::string& line) {
  return static_cast<std::size_t>(std::count(line.begin(), line.end(), ' ')) + 1;
}

// The next word of a port list, and its ports; they are taken out of the mask.
std::pair<std::string, std::uint32_t> takeRun(std::uint32_t& ports) {
  const auto first = lowestPort(ports);
  std::uint32_t last = first;
  while (last + 1 < kMaxPorts && (ports >> (last + 1) & 1) != 0)
    ++last;
  std::uint32_t taken = 0;
  for (std::uint32_t port = first; port <= last; ++port)
    taken |= std::uint32_t{1} << port;
  ports &= ~taken;
  return {std::to_string(first) + (first == last ? "" : "-" + std::to_string(last)), taken};
}

// Command lines with their ports: as many as the tool's bounds on words and characters ask for.
std::vector<std::pair<std::string, std::uint32_t>> commandLines(const std::string& words, std::uint32_t ports) {
  std::vector<std::pair<std::string, std::uint32_t>> lines;
  while (ports != 0) {
    const auto [word, taken] = takeRun(ports);
    const bool fits = !lines.empty() && lines.back().first.size() + 1 + word.size() <= kMostCommandLength &&
                      wordCount(lines.back().first) < static_cast<std::size_t>(kMaxWords);
    if (!fits) lines.emplace_back(words, 0);
    lines.back().first += " " + word;
    lines.back().second |= taken;
  }
  return lines;
}

std::uint32_t portsOf(const Group& group) {
  std::uint32_t ports = 0;
  for (const Operation& operation : group.operations)
    ports |= std::uint32_t{1} << operation.port;
  return ports;
}

// The ASIC with these ports alone.
SwitchState excerpt(const AsicState& asic, std::uint32_t ports) {
  AsicState part = {.asic = asic.asic, .config = asic.config, .ports = {}, .cores = {}, .registers = {}};
  std::copy_if(asic.ports.begin(), asic.ports.end(), std::back_inserter(part.ports),
               [&](const PortState& port) { return (ports >> port.port & 1) != 0; });
  SwitchState state;
  state.asics.push_back(std::move(part));
  return state;
}

void addSteps(const Group& group, AsicState& model, std::vector<PlannedStep>& steps) {
  for (const auto& [command, ports] : commandLines(group.like.words, portsOf(group))) {
    const SwitchState before = excerpt(model, ports);
    for (const Operation& operation : group.operations) {
      if ((ports >> operation.port & 1) != 0) operation.change(*findPort(model, operation.port));
    }
    steps.push_back({.asic = model.asic,
                     .command = command,
                     .ports = ports,
                     .effect = group.like.effect,
                     .changes = compare(before, excerpt(model, ports)).settings});
  }
}

Impossible missing(const SettingPlace& place, const std::string& what) {
  return {place, what, "settings", "the switch has no such " + what, "they are left out"};
}

void planAsic(AsicState& model, const AsicState& wanted, const PlanChoice& choice, Plan& plan) {
  std::vector<Operation> operations;
  for (const PortState& port : wanted.ports) {
    const PortState* const now = findPort(model, port.port);
    if (now == nullptr) {
      plan.impossible.push_back(missing({.asic = wanted.asic, .port = port.port}, "port"));
      continue;
    }
    PortPlan found = planPort(model, *now, port, choice);
    std::move(found.operations.begin(), found.operations.end(), std::back_inserter(operations));
    std::move(found.impossible.begin(), found.impossible.end(), std::back_inserter(plan.impossible));
  }
  for (const Group& group : grouped(model.config, operations))
    addSteps(group, model, plan.steps);
}

}  // namespace

const char* effectName(Effect effect) {
  constexpr std::array<const char*, 4> kNames = {"nothing", "adapt", "retrain", "down"};
  return kNames[static_cast<std::size_t>(effect)];
}

Plan makePlan(const SwitchState& current, const SwitchState& wanted, const PlanChoice& choice) {
  Plan plan = {.steps = {}, .impossible = {}, .after = current};
  for (const AsicState& asic : wanted.asics) {
    if (AsicState* const model = findAsic(plan.after, asic.asic)) {
      planAsic(*model, asic, choice, plan);
    } else if (!asic.ports.empty()) {
      plan.impossible.push_back(missing({.asic = asic.asic}, "ASIC"));
    }
  }
  return plan;
}

std::vector<std::string> scriptOf(const std::vector<PlannedStep>& steps) {
  std::vector<std::string> lines;
  std::uint32_t current = 0;
  for (const PlannedStep& step : steps) {
    if (step.asic != current) lines.push_back("setAsicNum " + std::to_string(step.asic));
    current = step.asic;
    lines.push_back(step.command);
  }
  return lines;
}

}  // namespace serdesctl
