// A record as a JSON object, made of its fields.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace serdesctl {

using Json = nlohmann::ordered_json;

template <typename Value>
Json json(const Value& value) {
  return value;
}

// Whole numbers are written so where JSON's readers have room for them.
inline Json json(double value) {
  constexpr double kMostInteger = 9e18;
  const bool whole =
      value >= 0 && value < kMostInteger && value == static_cast<double>(static_cast<std::uint64_t>(value));
  return whole ? Json(static_cast<std::uint64_t>(value)) : Json(value);
}

template <typename Value>
Json json(const std::optional<Value>& value) {
  return value ? json(*value) : Json(nullptr);
}

template <typename Record>
Json object(const Record& record) {
  Json result = Json::object();
  eachField(record, [&](const char* name, const auto& value) { result[name] = json(value); });
  return result;
}

template <typename Record>
Json objects(const std::vector<Record>& records) {
  Json result = Json::array();
  for (const Record& record : records)
    result.push_back(object(record));
  return result;
}

// What every report begins with.
inline Json envelope(const char* kind, const std::string& command, const std::optional<std::string>& target,
                     const std::optional<std::string>& time, const std::optional<std::uint32_t>& asic) {
  constexpr int kSchemaVersion = 1;
  return {{"schema", kSchemaVersion}, {"kind", kind},       {"command", command.empty() ? Json() : Json(command)},
          {"target", json(target)},   {"time", json(time)}, {"asic", json(asic)}};
}

// The report as a line. Names that are not UTF-8 have replacement characters.
inline std::string jsonLine(const Json& report) {
  return report.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace serdesctl
