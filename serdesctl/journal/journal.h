// What was changed, by whom and when: the journal's records, written and read.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "serdesctl/journal/change_log.h"
#include "serdesctl/journal/journal_file.h"

namespace serdesctl {

// One run's part of the journal: every change is on the disk before it is sent.
class RunJournal : public ChangeLog {
 public:
  // `target` as the records name it; with `toSyslog` every record goes there too.
  RunJournal(JournalFile file, const std::string& target, bool toSyslog);

  void intend(std::span<const std::string> commands) override;
  // The same of one command with what it changes, as JSON.
  void intend(const std::string& command, const std::string& changes);
  void answered(CmdStatus status) override;
  void lost(const std::string& reason) override;
  void dropRest() override;

  const std::string& run() const {
    return run_;
  }

 private:
  void write(const std::string& lines, bool onDisk);
  // The same for those who are already failing.
  void tryToWrite(const std::string& line);

  JournalFile file_;
  std::string who_;  // the fields that say it, where from, and about which target
  bool toSyslog_;
  std::string run_;
  std::size_t intended_ = 0;
  std::size_t settled_ = 0;
};

// A change as its records tell it.
struct JournalEntry {
  std::string time;  // when it was about to be sent, UTC
  std::string run;
  std::size_t number = 0;  // in its run, from 1
  std::string user;
  std::string from;
  std::string host;
  std::string target;
  std::string command;
  std::string changes;  // what the command was to change, as JSON; empty: not told
  // "answered" with a status, "unknown" with or without a reason (sent or about to be, and no answer is known), "not
  // sent"
  std::string result;
  std::optional<CmdStatus> status;
  std::string reason;
};

// The changes in a journal's lines, in the order in which they were intended. Lines that are no records get a notice.
std::vector<JournalEntry> readEntries(const std::vector<std::string>& lines, const Notice& notice);

}  // namespace serdesctl
