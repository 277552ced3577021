// JSON texts: read with care, written readably.
#include "serdesctl/state/json_place.h"

#include <algorithm>
#include <set>

#include "serdesctl/base/errors.h"

namespace serdesctl {
namespace {

constexpr int kMostDepth = 32;

std::string dumped(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// nlohmann's messages begin with a code in brackets.
std::string plainMessage(const std::string& what) {
  return what.substr(what.find("] ") + 2);
}

bool isList(const Json& json) {
  return json.is_array() && std::none_of(json.begin(), json.end(), [](const Json& e) { return e.is_structured(); });
}

// Of an object or a list.
bool fitsOnLine(const Json& json) {
  if (!json.is_object()) return isList(json);
  return std::all_of(json.begin(), json.end(), [](const Json& e) { return !e.is_structured() || isList(e); });
}

void writeLine(const Json& json, std::string& text) {
  const bool object = json.is_object();
  text += object ? "{" : "[";
  const char* between = "";
  for (const auto& [key, value] : json.items()) {
    text += between + (object ? dumped(key) + ": " : "");
    if (value.is_structured()) {
      writeLine(value, text);
    } else {
      text += dumped(value);
    }
    between = ", ";
  }
  text += object ? "}" : "]";
}

void write(const Json& json, const std::string& indent, std::string& text) {
  if (!json.is_structured()) {
    text += dumped(json);
    return;
  }
  if (fitsOnLine(json)) {
    writeLine(json, text);
    return;
  }
  const std::string inner = indent + "  ";
  text += json.is_object() ? "{" : "[";
  const char* between = "\n";
  for (const auto& [key, value] : json.items()) {
    text += between + inner + (json.is_object() ? dumped(key) + ": " : "");
    write(value, inner, text);
    between = ",\n";
  }
  text += "\n" + indent + (json.is_object() ? "}" : "]");
}

}  // namespace

JsonPlace JsonPlace::inner(const std::string& step, const Json& value) const {
  JsonPlace place(file_, value);
  place.path_ = path_ + "/" + step;
  return place;
}

JsonPlace JsonPlace::at(std::string_view name) const {
  if (!value_.is_object()) fail("not an object");
  const auto found = value_.find(std::string(name));
  if (found == value_.end()) fail("has no '" + std::string(name) + "'");
  return inner(std::string(name), *found);
}

std::vector<std::pair<std::string, JsonPlace>> JsonPlace::members() const {
  if (!value_.is_object()) fail("not an object");
  std::vector<std::pair<std::string, JsonPlace>> places;
  for (const auto& [name, value] : value_.items())
    places.emplace_back(name, inner(name, value));
  return places;
}

std::vector<JsonPlace> JsonPlace::elements() const {
  if (!value_.is_array()) fail("not a list");
  std::vector<JsonPlace> places;
  for (const Json& value : value_)
    places.push_back(inner(std::to_string(places.size()), value));
  return places;
}

void JsonPlace::allowOnly(const std::vector<std::string>& names) const {
  for (const auto& [name, place] : members()) {
    if (std::find(names.begin(), names.end(), name) != names.end()) continue;
    std::string known;
    for (const std::string& other : names)
      known += (known.empty() ? "" : ", ") + other;
    place.fail("unknown: none of " + known);
  }
}

std::int64_t JsonPlace::integer(std::int64_t lowest, std::int64_t highest) const {
  const bool fits = value_.is_number_integer() &&
                    (!value_.is_number_unsigned() || value_.get<std::uint64_t>() <= INT64_MAX) &&
                    value_.get<std::int64_t>() >= lowest && value_.get<std::int64_t>() <= highest;
  if (!fits) fail("not a number from " + std::to_string(lowest) + " to " + std::to_string(highest));
  return value_.get<std::int64_t>();
}

void JsonPlace::expect(std::size_t number) const {
  if (!value_.is_number_unsigned() || value_.get<std::uint64_t>() != number) fail("not " + std::to_string(number));
}

std::uint64_t JsonPlace::count() const {
  if (!value_.is_number_unsigned()) fail("not a count");
  return value_.get<std::uint64_t>();
}

double JsonPlace::number() const {
  if (!value_.is_number() || value_.get<double>() < 0) fail("not a count");
  return value_.get<double>();
}

bool JsonPlace::flag() const {
  if (!value_.is_boolean()) fail("neither true nor false");
  return value_.get<bool>();
}

std::string JsonPlace::text() const {
  if (!value_.is_string()) fail("not a text");
  return value_.get<std::string>();
}

void JsonPlace::fail(const std::string& what) const {
  throw UsageError(file_ + ": " + (path_.empty() ? "/" : path_) + ": " + what);
}

Json parseJson(const std::string& text, const std::string& name) {
  std::vector<std::set<std::string>> names;
  const auto check = [&](int depth, Json::parse_event_t event, const Json& parsed) {
    if (depth > kMostDepth) throw UsageError(name + ": nested deeper than " + std::to_string(kMostDepth) + " levels");
    if (event == Json::parse_event_t::object_start) names.emplace_back();
    if (event == Json::parse_event_t::object_end) names.pop_back();
    if (event == Json::parse_event_t::key && !names.back().insert(parsed.get<std::string>()).second) {
      throw UsageError(name + ": '" + parsed.get<std::string>() + "' stands twice in an object");
    }
    return true;
  };
  try {
    return Json::parse(text, check);
  } catch (const Json::exception& error) {
    throw UsageError(name + ": " + plainMessage(error.what()));
  }
}

std::string readableJson(const Json& json) {
  std::string text;
  write(json, "", text);
  return text + "\n";
}

}  // namespace serdesctl
