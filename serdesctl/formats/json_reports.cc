// Answers as JSON.
#include <array>
#include <ctime>

#include "serdesctl/formats/json_object.h"
#include "serdesctl/formats/reports.h"
#include "serdesctl/tables/config_records.h"

namespace serdesctl {
namespace {

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
    Json report = envelope(kindName(answer.records), answer.command, origin.target, origin.time, answer.asic);
    std::visit([&](const auto& records) { addTo(report, records); }, answer.records);
    lines += jsonLine(report);
  }
  if (answer.status != CMD_OK) {
    Json report = envelope("refused", answer.command, origin.target, origin.time, answer.asic);
    report["status"] = static_cast<int>(answer.status);
    report["message"] = statusMessage(answer.status);
    report["error"] = answer.complaint.empty() ? Json(nullptr) : Json(answer.complaint);
    report["records"] = Json::array();
    lines += jsonLine(report);
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
