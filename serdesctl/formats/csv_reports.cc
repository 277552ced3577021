// Answers as CSV: commas, quotes where a field needs them, nothing for what has no value. A dump's registers are one
// field, with blanks between them. The switch's own lines, which most logs hold too, are left out beside other records.
#include <algorithm>
#include <array>
#include <concepts>
#include <cstdio>

#include "serdesctl/base/errors.h"
#include "serdesctl/formats/reports.h"
#include "serdesctl/tables/config_records.h"

namespace serdesctl {
namespace {

std::string field(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text)
    quoted += c == '"' ? "\"\"" : std::string(1, c);
  return quoted + "\"";
}

std::string field(bool value) {
  return value ? "true" : "false";
}

std::string field(double value) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%.0f", value);
  return text.data();
}

template <std::integral Number>
std::string field(Number value) {
  return std::to_string(value);
}

std::string field(const std::vector<std::uint16_t>& registers) {
  std::string text;
  for (const std::uint16_t value : registers) {
    std::array<char, 8> number;
    std::snprintf(number.data(), number.size(), "0x%04x", unsigned{value});
    text += (text.empty() ? "" : " ") + std::string(number.data());
  }
  return text;
}

template <typename Value>
std::string field(const std::optional<Value>& value) {
  return value ? field(*value) : "";
}

// The fields of a record, or their names.
template <typename Record>
std::string line(const Record& record, bool names) {
  std::string text;
  const char* separator = "";
  eachField(record, [&](const char* name, const auto& value) {
    text += separator + (names ? name : field(value));
    separator = ",";
  });
  return text + "\n";
}

class CsvReport {
 public:
  template <typename Record>
  void operator()(const std::vector<Record>& records) {
    if (text_.empty()) text_ = line(Record{}, true);
    for (const Record& record : records)
      text_ += line(record, false);
  }
  void operator()(std::monostate) {}
  void operator()(const ConfigText& config) {
    (*this)(portRecords(config));
  }
  void operator()(const DiscoveryText& found) {
    (*this)(found.cores);
  }
  void operator()(const StartText& start) {
    (*this)(start.discovery.cores);
  }

  std::string take() {
    return std::move(text_);
  }

 private:
  std::string text_;
};

// What stands in most logs besides what was asked for.
bool isAboutSwitch(const Records& records) {
  return std::holds_alternative<StartText>(records) || std::holds_alternative<DiscoveryText>(records) ||
         std::holds_alternative<ConfigText>(records) || std::holds_alternative<std::vector<CommandRow>>(records);
}

}  // namespace

std::string csvReport(std::span<const ParsedAnswer> answers) {
  CsvReport report;
  const Records* first = nullptr;
  const bool asked = std::any_of(answers.begin(), answers.end(), [](const ParsedAnswer& a) {
    return a.records.index() != 0 && !isAboutSwitch(a.records);
  });
  for (const ParsedAnswer& answer : answers) {
    if (answer.records.index() == 0 || (asked && isAboutSwitch(answer.records))) continue;
    if (first == nullptr) first = &answer.records;
    if (answer.records.index() != first->index()) {
      throw UsageError(std::string("CSV has records of one kind, and here are ") + kindName(*first) + " and " +
                       kindName(answer.records));
    }
    std::visit(report, answer.records);
  }
  return report.take();
}

}  // namespace serdesctl
