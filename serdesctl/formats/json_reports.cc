// Answers as JSON. Names that are not UTF-8 are shown with replacement characters.
#include <array>
#include <ctime>

#include <nlohmann/json.hpp>

#include "serdesctl/formats/config_records.h"
#include "serdesctl/formats/reports.h"

namespace serdesctl {
namespace {

using Json = nlohmann::ordered_json;

constexpr double kMostInteger = 9e18;

template <typename Value>
Json json(const Value& value) {
  return value;
}

// Counts are whole numbers, and are written so where JSON's readers have room for them.
Json json(double value) {
  return value < kMostInteger ? Json(static_cast<std::uint64_t>(value)) : Json(value);
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

// What a kind has besides its records stands in front of them.

template <typename Record>
void addTo(Json& report, const std::vector<Record>& records) {
  report["records"] = objects(records);
}

void addTo(Json& report, std::monostate) {
  report["records"] = Json::array();
}

void addTo(Json& report, const ConfigText& config) {
  Json cores = Json::array();
  for (const ConfigCore& core : config.cores) {
    cores.push_back({{"core", core.core},
                     {"serdes_type", core.serDesType},
                     {"rx_ports", bitsOf(core.rxPorts)},
                     {"tx_ports", bitsOf(core.txPorts)}});
  }
  Json types = Json::array();
  for (const ConfigType& type : config.types)
    types.push_back({{"number", types.size()}, {"name", type.name}, {"use_count", type.useCount}});
  report["core_count"] = config.coreCount;
  report["port_count"] = config.portCount;
  report["cores"] = std::move(cores);
  report["serdes_types"] = std::move(types);
  report["records"] = objects(portRecords(config));
}

void addTo(Json& report, const DiscoveryText& found) {
  report["core_count"] = found.coreCount;
  report["port_count"] = found.portCount;
  report["records"] = objects(found.cores);
}

void addTo(Json& report, const StartText& start) {
  report["slots"] = start.hardware.slots;
  report["user_ports"] = start.hardware.userPorts;
  report["aux_ports"] = start.hardware.auxPorts;
  report["asics"] = start.hardware.asics;
  addTo(report, start.discovery);
}

Json envelope(const char* kind, const ParsedAnswer& answer, const Origin& origin) {
  return {{"schema", kSchemaVersion},
          {"kind", kind},
          {"command", answer.command.empty() ? Json(nullptr) : Json(answer.command)},
          {"target", json(origin.target)},
          {"time", json(origin.time)},
          {"asic", json(answer.asic)}};
}

std::string line(const Json& report) {
  return report.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

// A discovery that failed has no records to rely on.
bool hasRecords(const ParsedAnswer& answer) {
  const auto* const found = std::get_if<DiscoveryText>(&answer.records);
  return answer.records.index() != 0 && (found == nullptr || found->complete);
}

}  // namespace

bool isReported(const ParsedAnswer& answer) {
  return hasRecords(answer) || answer.status != CMD_OK;
}

std::string jsonReport(const ParsedAnswer& answer, const Origin& origin) {
  std::string lines;
  if (hasRecords(answer)) {
    Json report = envelope(kindName(answer.records), answer, origin);
    std::visit([&](const auto& records) { addTo(report, records); }, answer.records);
    lines += line(report);
  }
  if (answer.status != CMD_OK) {
    Json report = envelope("refused", answer, origin);
    report["status"] = static_cast<int>(answer.status);
    report["message"] = statusMessage(answer.status);
    report["error"] = answer.complaint.empty() ? Json(nullptr) : Json(answer.complaint);
    report["records"] = Json::array();
    lines += line(report);
  }
  return lines;
}

std::string utcTime(std::int64_t secondsSinceEpoch) {
  const auto seconds = static_cast<std::time_t>(secondsSinceEpoch);
  std::tm parts{};
  (void)gmtime_r(&seconds, &parts);
  std::array<char, 32> text;
  (void)std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts);
  return text.data();
}

}  // namespace serdesctl
