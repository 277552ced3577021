// The runs that changed a switch, with what is needed to lead back: a folder for each, of files that are written whole
// or not at all.
//
//   run.json      who, when, what, how far it has come, and how it ended
//   before.json   the switch before, as a save
//   steps.json    what it sends, on the disk before it is sent
//   after.json    the switch afterwards; not there where nobody could read it
//   way_back      the way back as a script of the tool's
//   confirmed     somebody has confirmed the run
//   lock          held by the process that does the run, as long as it lives
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "serdesctl/base/files.h"
#include "serdesctl/plan/plan.h"
#include "serdesctl/state/state_json.h"
#include "serdesctl/target/target.h"

namespace serdesctl {

enum class RunState {
  kRunning,
  kWaiting,      // for a confirmation
  kDone,         // as wanted
  kDiffers,      // all was sent, and not all is as wanted
  kRolledBack,   // as before
  kFailed,       // neither as wanted nor as before
  kInterrupted,  // the process, or its connection, ended meanwhile
  kKept          // interrupted, and somebody has said that it may stay so
};

const char* runStateName(RunState state);

struct RunRecord {
  std::string run;  // as the journal calls it
  std::string time;
  std::string user;
  std::string from;
  std::string host;
  std::string target;
  std::string what;
  RunState state = RunState::kRunning;
  std::string reason;     // why it ended so
  std::size_t steps = 0;  // how many there are
  std::size_t sent = 0;   // how many have been sent, or were about to be
  std::string confirmBy;  // until when it waits for a confirmation
  std::string undoes;     // the run that it takes back
  std::string undoneBy;   // the run that has taken it back; itself where nothing of it was left
};

struct FoundRun {
  RunRecord record;  // interrupted where the process is gone
  std::string folder;

  // It stands half done, and nobody has said that it may.
  bool isLeft() const {
    return record.state == RunState::kInterrupted && record.undoneBy.empty();
  }
  // Something of it may still be there to be taken back.
  bool canBeUndone() const;

  SwitchState before() const;
  std::optional<SwitchState> after() const;
  std::vector<PlannedStep> steps() const;

  // Throws UsageError where the record cannot be changed, as that of another user's run.
  void requireWritable() const;
  // Changes the record on the disk; for runs whose process is gone.
  void rewrite() const;
  // Tells the process that waits. Throws WriteError.
  void confirm() const;
  // The run as it is now.
  FoundRun again() const;
};

using StoreNotice = std::function<void(const std::string& text)>;

// The runs of a target, or of all of them, in a folder of the journal; the oldest first. What cannot be read is left
// out, with a notice.
std::vector<FoundRun> findRuns(const std::string& journalFolder, const Target& target, const StoreNotice& notice);
std::vector<FoundRun> findRuns(const std::string& journalFolder, const StoreNotice& notice);

// A run under way.
class OpenRun {
 public:
  // Makes its folder, and room for it: of more than `most` runs the oldest ended ones go. Throws WriteError.
  OpenRun(const std::string& journalFolder, const Target& target, RunRecord record, const Save& before,
          std::size_t most = 200);

  const RunRecord& record() const {
    return record_;
  }

  // More steps are to be sent, and this is the way back then.
  void add(const std::vector<PlannedStep>& steps, const std::vector<std::string>& wayBack);
  // The next step is about to be sent.
  void sendNext();
  void waitForConfirmation(const std::string& until);
  bool isConfirmed() const;
  // It is too late for a confirmation.
  void stopWaiting();
  // Nothing has been sent and nothing will be: there was no run.
  void discard();
  void end(RunState state, const std::string& reason, const Save* after);

 private:
  void write() const;

  RunRecord record_;
  std::string folder_;
  std::vector<PlannedStep> steps_;
  Fd lock_;
};

}  // namespace serdesctl
