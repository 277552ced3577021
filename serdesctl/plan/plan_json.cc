// Plans as JSON.
#include "serdesctl/plan/plan_json.h"

#include <array>
#include <cstdio>
#include <limits>

#include "serdesctl/state/diff_report.h"
#include "serdesctl/state/state_json.h"

namespace serdesctl {
namespace {

constexpr int kSchemaVersion = 1;
constexpr const char* kKind = "plan";
constexpr std::int64_t kMostNumber = std::numeric_limits<std::uint32_t>::max();

SettingValue readValue(const JsonPlace& place) {
  if (place.isNull()) return {};
  if (place.isText()) return place.text();
  if (place.isNumber()) return place.integer(std::numeric_limits<std::int32_t>::min(), kMostNumber);
  return place.flag();
}

Json placeJson(const SettingPlace& place) {
  return {{"asic", json(place.asic)}, {"port", json(place.port)}, {"user_port", json(place.userPort)},
          {"side", json(place.side)}, {"link", json(place.link)}, {"rate", json(place.rate)}};
}

std::uint32_t numberAt(const JsonPlace& place, const char* name) {
  return static_cast<std::uint32_t>(place.at(name).integer(0, kMostNumber));
}

std::optional<std::uint32_t> optionalNumberAt(const JsonPlace& place, const char* name) {
  return place.at(name).isNull() ? std::nullopt : std::optional(numberAt(place, name));
}

std::optional<std::string> optionalTextAt(const JsonPlace& place, const char* name) {
  return place.at(name).isNull() ? std::nullopt : std::optional(place.at(name).text());
}

SettingPlace readPlace(const JsonPlace& place) {
  return {.asic = optionalNumberAt(place, "asic"),
          .port = optionalNumberAt(place, "port"),
          .userPort = optionalNumberAt(place, "user_port"),
          .core = {},
          .side = optionalTextAt(place, "side"),
          .link = optionalNumberAt(place, "link"),
          .rate = optionalTextAt(place, "rate")};
}

Effect readEffect(const JsonPlace& place) {
  const std::string text = place.text();
  for (const Effect effect : {Effect::kNothing, Effect::kAdapt, Effect::kRetrain, Effect::kDown}) {
    if (text == effectName(effect)) return effect;
  }
  place.fail("none of nothing, adapt, retrain, down");
}

Json impossibleJson(const std::vector<Impossible>& list) {
  Json result = Json::array();
  for (const Impossible& one : list) {
    Json record = placeJson(one.place);
    record.erase("side");
    record.erase("link");
    record.erase("rate");
    record.update({{"what", one.what}, {"wanted", one.wanted}, {"reason", one.reason}, {"nearest", one.nearest}});
    result.push_back(std::move(record));
  }
  return result;
}

Json parsed(const std::string& text) {
  return Json::parse(text);
}

}  // namespace

Json differenceJson(const Difference& difference) {
  Json result = placeJson(difference.place);
  result["parameter"] = difference.parameter;
  result["before"] = valueJson(difference.before);
  result["after"] = valueJson(difference.after);
  return result;
}

Difference readDifference(const JsonPlace& place) {
  return {.place = readPlace(place),
          .parameter = place.at("parameter").text(),
          .before = readValue(place.at("before")),
          .after = readValue(place.at("after"))};
}

Json stepsJson(const std::vector<PlannedStep>& steps) {
  Json result = Json::array();
  for (const PlannedStep& step : steps) {
    Json changes = Json::array();
    for (const Difference& change : step.changes)
      changes.push_back(differenceJson(change));
    result.push_back({{"asic", step.asic},
                      {"command", step.command},
                      {"ports", step.ports},
                      {"effect", effectName(step.effect)},
                      {"changes", std::move(changes)}});
  }
  return result;
}

std::vector<PlannedStep> readSteps(const JsonPlace& place) {
  std::vector<PlannedStep> steps;
  for (const JsonPlace& element : place.elements()) {
    PlannedStep step = {.asic = numberAt(element, "asic"),
                        .command = element.at("command").text(),
                        .ports = numberAt(element, "ports"),
                        .effect = readEffect(element.at("effect")),
                        .changes = {}};
    for (const JsonPlace& change : element.at("changes").elements())
      step.changes.push_back(readDifference(change));
    steps.push_back(std::move(step));
  }
  return steps;
}

// FNV-1a.
std::uint64_t hashOf(std::string_view text) {
  std::uint64_t hash = 0xcbf29ce484222325U;
  for (const char c : text) {
    hash ^= static_cast<unsigned char>(c);
    hash *= 0x100000001b3U;
  }
  return hash;
}

std::string topologyOf(const SwitchState& state) {
  Save bare = {.state = state, .origin = {}};
  bare.state.unread.clear();
  for (AsicState& asic : bare.state.asics) {
    asic.ports.clear();
    asic.registers.reset();
  }
  std::array<char, 17> text;
  std::snprintf(text.data(), text.size(), "%016llx", static_cast<unsigned long long>(hashOf(saveText(bare))));
  return text.data();
}

Json planJson(const KeptPlan& plan, bool withWanted) {
  Json result = {{"schema", kSchemaVersion},
                 {"kind", kKind},
                 {"target", json(plan.origin.target)},
                 {"time", json(plan.origin.time)},
                 {"source", plan.source},
                 {"topology", plan.topology},
                 {"through_cache", plan.throughCache},
                 {"steps", stepsJson(plan.steps)},
                 {"impossible", impossibleJson(plan.impossible)}};
  if (withWanted) result["wanted"] = parsed(saveText({.state = plan.wanted, .origin = plan.origin}));
  return result;
}

bool isPlan(const Json& json) {
  return json.is_object() && json.value("kind", Json()) == kKind;
}

KeptPlan readPlan(const Json& json, const std::string& name) {
  const JsonPlace place(name, json);
  if (place.at("schema").integer(0, kMostNumber) != kSchemaVersion) place.at("schema").fail("not 1");
  KeptPlan plan;
  plan.origin = {.target = optionalTextAt(place, "target"), .time = optionalTextAt(place, "time")};
  plan.source = place.at("source").text();
  plan.topology = place.at("topology").text();
  plan.throughCache = place.at("through_cache").flag();
  plan.steps = readSteps(place.at("steps"));
  (void)place.at("wanted");
  plan.wanted = parseSave(json.at("wanted").dump(), name + ": /wanted").state;
  return plan;
}

}  // namespace serdesctl
