// Writing and reading the text of a state file.
#include "simulator/state/text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "simulator/description/description.h"
#include "simulator/description/fingerprint.h"
#include "simulator/description/toml_table.h"
#include "simulator/error_codes.h"

namespace simulator {
namespace {

constexpr std::string_view kExplanation =
    R"(# State of a simulated switch: what differs from how its description starts it.
# switch: microseconds, random numbers, then how often each fault matched and struck
# asicA.portP: speed set and speed in force, stream, decode and CRC errors (each with 1e-12 of the next), counted up to
# asicA.portP.cacheR: power, slew, FFE mode, c0 to c3; DFE mode, pole, peak, amax, spare
# asicA.pllC: 32 registers; asicA.portP.txL: and injected errors
# asicA.portP.rxL: and bit errors found (with 1e-12 of the next), margin and sensor that are shown
)";

constexpr std::string_view kEndMark = "# whole ";
constexpr std::size_t kHexDigits = 16;
constexpr std::size_t kEndLength = kEndMark.size() + kHexDigits + 1;

std::string hexText(std::uint64_t value) {
  std::array<char, kHexDigits + 1> text;
  std::snprintf(text.data(), text.size(), "%08lx%08lx", static_cast<unsigned long>(value >> 32),
                static_cast<unsigned long>(value & UINT32_MAX));
  return text.data();
}

// Registers are read by people, who know them in hexadecimal.
bool beginsWithRegisters(std::string_view name) {
  const std::string_view last = name.substr(name.rfind('.') + 1);
  return last.starts_with("pll") || last.starts_with("tx") || last.starts_with("rx");
}

void appendRecord(const StateRecord& record, std::string& text) {
  const bool hasRegisters = beginsWithRegisters(record.name);
  text += '"' + record.name + "\" = [";
  for (std::size_t i = 0; i < record.values.size(); ++i) {
    if (i > 0) text += ", ";
    if (hasRegisters && i < kMaxRegisters) {
      std::array<char, 8> hex;
      std::snprintf(hex.data(), hex.size(), "0x%04x", static_cast<unsigned>(record.values[i] & UINT16_MAX));
      text += hex.data();
    } else {
      // TOML has signed numbers only; those beyond come back the same.
      text += std::to_string(static_cast<std::int64_t>(record.values[i]));
    }
  }
  text += "]\n";
}

// Read one by one.
constexpr auto kStateKeys = std::to_array<Key<StartState>>({{"format"}, {"switch"}, {"records"}});

[[noreturn]] void fail(const std::string& fileName, const std::string& what) {
  throw StateError(kBadState, fileName + ": " + what);
}

void checkEnd(std::string_view text, const std::string& fileName) {
  if (text.size() < kEndLength || !text.substr(text.size() - kEndLength).starts_with(kEndMark) || text.back() != '\n') {
    fail(fileName, "is cut off, or no state of a simulated switch");
  }
  const std::size_t length = text.size() - kEndLength;
  if (text.substr(length) != stateEndLine(text.substr(0, length))) fail(fileName, "is damaged");
}

std::vector<StateRecord> readRecords(const TomlTable& table, const std::string& fileName, const StartState& start) {
  std::vector<StateRecord> records = start.records;
  for (const std::string& name : table.keys()) {
    const auto record =
        std::find_if(records.begin(), records.end(), [&](const StateRecord& known) { return known.name == name; });
    const std::vector<std::int64_t> values = table.find(name)->integers(INT64_MIN, INT64_MAX);
    if (record == records.end() || record->values.size() != values.size()) {
      fail(fileName, "has a record " + name + " that the switch does not have");
    }
    std::transform(values.begin(), values.end(), record->values.begin(),
                   [](std::int64_t value) { return static_cast<std::uint64_t>(value); });
  }
  return records;
}

}  // namespace

StartState::StartState(std::vector<StateRecord> atStart, std::uint64_t description) : records(std::move(atStart)) {
  fingerprint = fingerprintOf(hexText(description));
  std::string text;
  for (const StateRecord& record : records)
    appendRecord(record, text);
  fingerprint = fingerprintOf(text, fingerprint);
}

std::string stateEndLine(std::string_view text) {
  return std::string(kEndMark) + hexText(fingerprintOf(text)) + '\n';
}

std::string stateText(const StartState& start, const std::vector<StateRecord>& now) {
  std::string text(kExplanation);
  text +=
      "format = " + std::to_string(kStateFormat) + "\nswitch = \"" + hexText(start.fingerprint) + "\"\n\n[records]\n";
  for (std::size_t i = 0; i < now.size(); ++i) {
    if (now[i] != start.records[i]) appendRecord(now[i], text);
  }
  return text + stateEndLine(text);
}

std::vector<StateRecord> readStateText(std::string_view text, const std::string& fileName, const StartState& start) {
  checkEnd(text, fileName);
  try {
    const toml::table parsed = parseToml(text, fileName);
    const TomlTable root(parsed, "", fileName);
    root.allow(kStateKeys);
    const std::int64_t format = root.need("format", "is missing").integer(INT32_MIN, INT32_MAX);
    if (format != kStateFormat) {
      fail(fileName, "is of format " + std::to_string(format) + ", and this is format " + std::to_string(kStateFormat));
    }
    if (root.need("switch", "is missing").text() != hexText(start.fingerprint)) {
      fail(fileName, "is of another switch, or its description has changed since");
    }
    const auto records = root.find("records");
    return records ? readRecords(records->table(), fileName, start) : start.records;
  } catch (const DescriptionError& error) {
    throw StateError(kBadState, error.what());
  }
}

}  // namespace simulator
