// Answers as JSON and as CSV, for other programs: exact and stable.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "serdesctl/health/judging.h"
#include "serdesctl/tables/parse.h"

namespace serdesctl {

// Where and when an answer came from; nothing for a saved text, which does not tell.
struct Origin {
  std::optional<std::string> target;
  std::optional<std::string> time;
};

// Whether there is something to report: a command that prints nothing and succeeds gives none.
bool isReported(const ParsedAnswer& answer);

// One object a line: the answer's records, and one of kind "refused" when the command failed.
std::string jsonReport(const ParsedAnswer& answer, const Origin& origin);

// A line of names and a line per record. Throws UsageError unless all records are of one kind.
std::string csvReport(std::span<const ParsedAnswer> answers);

// Ports with their verdicts: one object, whose `interval_s` says how far apart two looks were.
struct HealthReport {
  std::optional<std::uint32_t> asic;  // nothing: of all
  std::optional<double> intervalS;
  bool cleared = false;
  std::vector<PortHealth> ports;
};
std::string jsonReport(const HealthReport& health, const Origin& origin);

// The same as a table for people.
std::string textReport(const HealthReport& health);

// "2025-11-21T21:13:05Z"
std::string utcTime(std::int64_t secondsSinceEpoch);

}  // namespace serdesctl
