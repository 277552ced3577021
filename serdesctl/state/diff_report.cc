// A comparison as text and as JSON.
#include "serdesctl/state/diff_report.h"

#include <optional>
#include <utility>
#include <vector>

#include "serdesctl/formats/json_object.h"
#include "serdesctl/state/state_json.h"

namespace serdesctl {
namespace {

constexpr const char* kRed = "\x1b[31m";
constexpr const char* kGreen = "\x1b[32m";
constexpr const char* kPlain = "\x1b[0m";

std::string line(char sign, const Difference& difference, const SettingValue& value, bool colour) {
  const std::string text = std::string(1, sign) + " " + difference.parameter + " " + textOf(value);
  return colour ? (sign == '-' ? kRed : kGreen) + text + kPlain + "\n" : text + "\n";
}

// "only in lab.json: ASIC 0 ports 4-7"
std::string onlyIn(const std::string& name, const std::vector<SettingPlace>& places) {
  std::string text;
  for (const SettingPlace& place : places)
    text += "only in " + name + ": " + textOf(place) + "\n";
  return text;
}

std::string unreadIn(const std::string& name, const std::vector<Unread>& unread) {
  std::string text;
  for (const Unread& one : unread)
    text += "not read in " + name + ": " + textOf(one) + "\n";
  return text;
}

// The lists of a comparison and what a record of each is called.
std::vector<std::pair<const char*, const std::vector<Difference>*>> listsOf(const Comparison& comparison) {
  return {{"hardware", &comparison.hardware},
          {"setting", &comparison.settings},
          {"register", &comparison.registers},
          {"observation", &comparison.observations}};
}

Json placeJson(const SettingPlace& place) {
  return {{"asic", json(place.asic)}, {"port", json(place.port)}, {"user_port", json(place.userPort)},
          {"core", json(place.core)}, {"side", json(place.side)}, {"link", json(place.link)},
          {"rate", json(place.rate)}};
}

Json placesJson(const std::vector<SettingPlace>& places) {
  Json result = Json::array();
  for (const SettingPlace& place : places)
    result.push_back({{"asic", json(place.asic)}, {"port", json(place.port)}});
  return result;
}

}  // namespace

Json valueJson(const SettingValue& value) {
  return std::visit(
      [](const auto& held) {
        if constexpr (std::is_same_v<std::decay_t<decltype(held)>, std::monostate>) {
          return Json();
        } else {
          return Json(held);
        }
      },
      value);
}

std::string textDiff(const Comparison& comparison, const ComparedNames& names, bool colour) {
  std::string text;
  std::optional<SettingPlace> heading;
  for (const auto& [kind, differences] : listsOf(comparison)) {
    for (const Difference& difference : *differences) {
      if (heading != difference.place) text += textOf(difference.place) + "\n";
      heading = difference.place;
      text += line('-', difference, difference.before, colour) + line('+', difference, difference.after, colour);
    }
  }
  text += onlyIn(names.before, comparison.notInSecond) + onlyIn(names.after, comparison.notInFirst);
  text += unreadIn(names.before, comparison.unreadInFirst) + unreadIn(names.after, comparison.unreadInSecond);
  return text.empty() ? "" : "--- " + names.before + "\n+++ " + names.after + "\n" + text;
}

Json differenceRecords(const Comparison& comparison) {
  Json records = Json::array();
  for (const auto& [kind, differences] : listsOf(comparison)) {
    for (const Difference& difference : *differences) {
      Json record = {{"of", kind}};
      record.update(placeJson(difference.place));
      record["parameter"] = difference.parameter;
      record["old"] = valueJson(difference.before);
      record["new"] = valueJson(difference.after);
      records.push_back(std::move(record));
    }
  }
  return records;
}

std::string jsonDiff(const Comparison& comparison, const ComparedNames& names) {
  Json report = {{"schema", 1}, {"kind", "diff"}, {"before", names.before}, {"after", names.after}};
  report["only_before"] = placesJson(comparison.notInSecond);
  report["only_after"] = placesJson(comparison.notInFirst);
  report["unread_before"] = unreadJson(comparison.unreadInFirst);
  report["unread_after"] = unreadJson(comparison.unreadInSecond);
  report["records"] = differenceRecords(comparison);
  return jsonLine(report);
}

bool isSame(const Comparison& comparison) {
  for (const auto& [kind, differences] : listsOf(comparison)) {
    if (!differences->empty()) return false;
  }
  return comparison.notInFirst.empty() && comparison.notInSecond.empty() && comparison.unreadInFirst.empty() &&
         comparison.unreadInSecond.empty();
}

}  // namespace serdesctl
