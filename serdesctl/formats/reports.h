// Answers as JSON and as CSV, for other programs: exact and stable.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "serdesctl/tables/parse.h"

namespace serdesctl {

inline constexpr int kSchemaVersion = 1;

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

// "2025-11-21T21:13:05Z"
std::string utcTime(std::int64_t secondsSinceEpoch);

}  // namespace serdesctl
