// Verdicts as JSON, and as a table for people.
#include <algorithm>
#include <array>
#include <cstdio>

#include "serdesctl/formats/json_object.h"
#include "serdesctl/formats/reports.h"

namespace serdesctl {
namespace {

using Cells = std::array<std::string, 13>;

constexpr std::size_t kFirstRightCell = 8;  // numbers
constexpr std::size_t kLastRightCell = 11;

const Cells kHeads = {"VERDICT", "ASIC", "PORT", "USER",   "TYPE", "RATE",  "MEDIA",
                      "STREAM",  "AMIN", "AP",   "DECODE", "CRC",  "REASON"};

std::string cell(const std::optional<std::string>& text) {
  return text.value_or("-");
}

template <typename Number>
std::string cell(const std::optional<Number>& number) {
  return number ? std::to_string(*number) : "-";
}

std::string cell(const std::optional<Count>& count) {
  if (!count) return "-";
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%s%.0f", count->exact() ? "" : "~", count->number);
  return text.data();
}

Cells cellsOf(const PortHealth& port) {
  const std::optional<std::string> stream =
      port.streamEnabled ? std::optional<std::string>(*port.streamEnabled ? "on" : "off") : std::nullopt;
  return {verdictName(port.verdict),
          std::to_string(port.place.asic),
          std::to_string(port.place.port),
          cell(port.place.userPort),
          cell(port.place.portType),
          cell(port.runningRate),
          cell(port.media),
          cell(stream),
          cell(port.amin),
          cell(port.ap),
          cell(port.decodeErrors),
          cell(port.crcErrors),
          port.reason};
}

std::string line(const Cells& cells, const std::array<std::size_t, std::tuple_size_v<Cells>>& widths) {
  std::string text;
  for (std::size_t i = 0; i + 1 < cells.size(); ++i) {
    const std::string fill(widths[i] - cells[i].size(), ' ');
    const bool right = i >= kFirstRightCell && i <= kLastRightCell;
    text += (right ? fill + cells[i] : cells[i] + fill) + "  ";
  }
  return text + cells.back() + "\n";
}

}  // namespace

std::string jsonReport(const HealthReport& health, const Origin& origin) {
  Json report = envelope("health", "", origin.target, origin.time, health.asic);
  report["interval_s"] = json(health.intervalS);
  report["cleared"] = health.cleared;
  report["records"] = objects(health.ports);
  return jsonLine(report);
}

std::string textReport(const HealthReport& health) {
  std::vector<Cells> rows = {kHeads};
  for (const PortHealth& port : health.ports)
    rows.push_back(cellsOf(port));
  std::array<std::size_t, std::tuple_size_v<Cells>> widths{};
  for (const Cells& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i)
      widths[i] = std::max(widths[i], row[i].size());
  }
  std::string text;
  for (const Cells& row : rows)
    text += line(row, widths);
  return text;
}

}  // namespace serdesctl
