// The journal's records: a JSON object a line. An intent says everything; what became of it names run and number.
#include "serdesctl/journal/journal.h"

#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include <nlohmann/json.hpp>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/people.h"

namespace serdesctl {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kIntent = "intent";
constexpr const char* kAnswered = "answered";
constexpr const char* kUnknown = "unknown";
constexpr const char* kNotSent = "not sent";

// A text as JSON has it. The records are put together by hand, since a long script makes thousands of them.
std::string quotedText(const std::string& text) {
  return Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string field(const char* name, const std::string& value) {
  return std::string(",\"").append(name).append("\":").append(value);
}

// Unique without asking anybody: the time to the microsecond, and the process.
std::string newRun() {
  std::string name = utcText(utcNow());
  std::erase_if(name, [](char c) { return c == '-' || c == ':' || c == 'Z'; });
  return name + "-" + std::to_string(::getpid());
}

// The fields that every record has.
std::string recordHead(const std::string& run, std::size_t number, const char* event) {
  return std::string("{\"time\":\"").append(utcText(utcNow())).append("\"") + field("run", "\"" + run + "\"") +
         field("n", std::to_string(number)) + field("event", std::string("\"").append(event).append("\""));
}

using Position = std::pair<std::string, std::size_t>;

class EntryReader {
 public:
  explicit EntryReader(const Notice& notice) : notice_(notice) {}

  void read(const std::string& line) {
    try {
      take(Json::parse(line));
    } catch (const Json::exception&) {
      notice_("journal: a line that is no record is left out: " + line.substr(0, 60));
    }
  }

  std::vector<JournalEntry> entries() && {
    return std::move(entries_);
  }

 private:
  void take(const Json& record) {
    const std::string event = record.at("event");
    const Position position(record.at("run"), record.at("n"));
    if (event == kIntent) return takeIntent(record, position);
    const std::size_t last = record.value("to", position.second);
    for (std::size_t number = position.second; number <= last; ++number) {
      const auto found = places_.find({position.first, number});
      if (found == places_.end()) continue;  // its intent has been rotated away
      settle(entries_[found->second], event, record);
    }
  }

  void takeIntent(const Json& record, const Position& position) {
    JournalEntry entry;
    entry.time = record.at("time");
    entry.run = position.first;
    entry.number = position.second;
    entry.user = record.at("user");
    entry.from = record.at("from");
    entry.host = record.at("host");
    entry.target = record.at("target");
    entry.command = record.at("command");
    if (record.contains("changes")) entry.changes = record["changes"].dump();
    entry.result = kUnknown;
    places_[position] = entries_.size();
    entries_.push_back(std::move(entry));
  }

  static void settle(JournalEntry& entry, const std::string& event, const Json& record) {
    entry.result = event;
    entry.reason = record.value("reason", "");
    if (event != kAnswered) return;
    entry.status = static_cast<CmdStatus>(std::clamp<int>(record.at("status"), CMD_OK, CMD_EXEC_ERROR));
  }

  const Notice& notice_;
  std::vector<JournalEntry> entries_;
  std::map<Position, std::size_t> places_;
};

}  // namespace

RunJournal::RunJournal(JournalFile file, const std::string& target, bool toSyslog)
    : file_(std::move(file)),
      who_(field("user", quotedText(userName())) + field("from", quotedText(origin())) +
           field("host", quotedText(hostName())) + field("target", quotedText(target))),
      toSyslog_(toSyslog),
      run_(newRun()) {}

void RunJournal::intend(std::span<const std::string> commands) {
  std::string lines;
  std::size_t number = intended_;
  for (const std::string& command : commands)
    lines += recordHead(run_, ++number, kIntent) + who_ + field("command", quotedText(command)) + "}\n";
  write(lines, true);
  intended_ = number;
}

void RunJournal::intend(const std::string& command, const std::string& changes) {
  write(recordHead(run_, intended_ + 1, kIntent) + who_ + field("command", quotedText(command)) +
            field("changes", changes) + "}\n",
        true);
  ++intended_;
}

void RunJournal::answered(CmdStatus status) {
  write(recordHead(run_, ++settled_, kAnswered) + field("status", std::to_string(status)) + "}\n", false);
}

void RunJournal::lost(const std::string& reason) {
  if (settled_ == intended_) return;
  tryToWrite(recordHead(run_, ++settled_, kUnknown) + field("reason", quotedText(reason)) + "}\n");
}

void RunJournal::dropRest() {
  if (settled_ == intended_) return;
  tryToWrite(recordHead(run_, settled_ + 1, kNotSent) + field("to", std::to_string(intended_)) + "}\n");
  settled_ = intended_;
}

void RunJournal::write(const std::string& lines, bool onDisk) {
  file_.append(lines, onDisk);
  if (!toSyslog_) return;
  ::openlog("serdesctl", LOG_PID, LOG_USER);
  for (std::size_t begin = 0, end = 0; (end = lines.find('\n', begin)) != std::string::npos; begin = end + 1)
    ::syslog(LOG_NOTICE, "%s", lines.substr(begin, end - begin).c_str());
}

void RunJournal::tryToWrite(const std::string& line) {
  try {
    write(line, false);
  } catch (const WriteError&) {
    // The intent stands without it, and reads as unknown.
  }
}

std::vector<JournalEntry> readEntries(const std::vector<std::string>& lines, const Notice& notice) {
  EntryReader reader(notice);
  for (const std::string& line : lines)
    reader.read(line);
  return std::move(reader).entries();
}

}  // namespace serdesctl
