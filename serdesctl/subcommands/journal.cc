// serdesctl journal: what was changed.
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/output.h"
#include "serdesctl/base/people.h"
#include "serdesctl/base/text.h"
#include "serdesctl/journal/journal.h"
#include "serdesctl/subcommands/status_names.h"
#include "serdesctl/subcommands/subcommands.h"

namespace serdesctl {
namespace {

using Json = nlohmann::ordered_json;

// "90m": that long ago, as the journal writes times; empty for another word.
std::string timeAgo(const std::string& word) {
  long count = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), count);
  if (error != std::errc() || count < 0 || count > 1000000 || end + 1 != word.data() + word.size()) return "";
  const auto ago = [&](auto unit) { return utcText(utcNow() - unit * count); };
  switch (*end) {
    case 's':
      return ago(std::chrono::seconds(1));
    case 'm':
      return ago(std::chrono::minutes(1));
    case 'h':
      return ago(std::chrono::hours(1));
    case 'd':
      return ago(std::chrono::days(1));
    default:
      return "";
  }
}

// Of a time whose form is right, whether there is such a day, hour, minute and second.
bool isTime(const std::string& time) {
  const auto number = [&](std::size_t at, std::size_t count) {
    return at < time.size() ? std::stoi(time.substr(at, count)) : 0;
  };
  const std::chrono::year_month_day day{std::chrono::year(number(0, 4)),
                                        std::chrono::month(static_cast<unsigned>(number(5, 2))),
                                        std::chrono::day(static_cast<unsigned>(number(8, 2)))};
  return day.ok() && number(11, 2) < 24 && number(14, 2) < 60 && number(17, 2) < 60;
}

// Times compare as text: a shorter one is the first moment of its day, minute or second.
std::string firstTime(const std::string& word) {
  constexpr std::string_view kForm = "0000-00-00T00:00:00.000000";
  if (std::string time = timeAgo(word); !time.empty() || word.empty()) return time;
  std::string time = word.ends_with('Z') ? word.substr(0, word.size() - 1) : word;
  std::replace(time.begin(), time.end(), ' ', 'T');
  bool fits = time.size() == 10 || time.size() == 16 || time.size() >= 19;
  for (std::size_t i = 0; fits && i < time.size(); ++i) {
    fits = i < kForm.size() &&
           (kForm[i] == '0' ? std::isdigit(static_cast<unsigned char>(time[i])) != 0 : time[i] == kForm[i]);
  }
  if (!fits || !isTime(time))
    throw UsageError("--since: '" + word + "' is neither 2025-11-21[T21:13[:04]] nor 90s, 90m, 12h or 7d");
  return time;
}

std::vector<JournalEntry> allEntries(const Notice& unreadable) {
  const Notice notice = complain;
  std::vector<JournalEntry> entries;
  for (const std::string& folder : journalFolders()) {
    std::vector<JournalEntry> found = readEntries(readJournal(folder, notice, unreadable), notice);
    std::move(found.begin(), found.end(), std::back_inserter(entries));
  }
  std::stable_sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.time < b.time; });
  return entries;
}

std::string resultText(const JournalEntry& entry) {
  if (entry.status) return *entry.status == CMD_OK ? "done" : statusMessage(*entry.status);
  return entry.result + (entry.reason.empty() ? "" : ": " + entry.reason);
}

// Records are written by others too: what they name stays within its line.
std::string textLine(const JournalEntry& entry) {
  std::string line = entry.time + "  " + entry.run + "  " + entry.user + "@" + entry.host +
                     (entry.from.empty() ? "" : " from " + entry.from) + "  " + entry.target + "  " + entry.command +
                     "  (" + resultText(entry) + ")";
  return printable(line) + "\n";
}

std::string jsonLine(const JournalEntry& entry) {
  Json object = {{"time", entry.time},     {"run", entry.run},         {"n", entry.number},
                 {"user", entry.user},     {"from", entry.from},       {"host", entry.host},
                 {"target", entry.target}, {"command", entry.command}, {"result", entry.result}};
  object["status"] = entry.status ? Json(static_cast<int>(*entry.status)) : Json();
  object["status_name"] = entry.status ? Json(statusName(*entry.status)) : Json();
  object["reason"] = entry.reason;
  if (!entry.changes.empty()) object["changes"] = Json::parse(entry.changes);
  return object.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace

int performJournal(const Options& options) {
  const std::string since = firstTime(options.journal.since);
  const std::string& target = options.common.target.target;
  const std::string& run = options.journal.run;
  bool complete = true;
  const std::vector<JournalEntry> entries = allEntries([&](const std::string& what) {
    complain(what);
    complete = false;
  });
  if (!run.empty() &&
      std::none_of(entries.begin(), entries.end(), [&](const auto& entry) { return entry.run == run; })) {
    throw UsageError("the journal has no run '" + run + "'");
  }
  Output output(STDOUT_FILENO);
  for (const JournalEntry& entry : entries) {
    if (!target.empty() && entry.target != target) continue;
    if (!run.empty() && entry.run != run) continue;
    if (entry.time < since) continue;
    output.write(options.journal.json ? jsonLine(entry) : textLine(entry));
  }
  output.flush();
  return complete ? kDone : kFailed;
}

}  // namespace serdesctl
