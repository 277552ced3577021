// serdesctl history, pending and confirm: the runs of the store.
#include <unistd.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/output.h"
#include "serdesctl/base/text.h"
#include "serdesctl/base/waiting.h"
#include "serdesctl/formats/json_object.h"
#include "serdesctl/journal/journal_file.h"
#include "serdesctl/subcommands/changing.h"

namespace serdesctl {
namespace {

constexpr Seconds kBetweenLooks{0.1};
constexpr Seconds kTakesNote{10};

// Of all targets, or of the one that is named; of simulated switches the one that its state file keeps.
std::vector<FoundRun> chosenRuns(const Options& options) {
  const TargetWords& words = options.common.target;
  std::vector<FoundRun> runs;
  for (const std::string& folder : journalFolders()) {
    std::vector<FoundRun> found =
        words.state.empty() ? findRuns(folder, complain) : findRuns(folder, findTarget(words), complain);
    std::move(found.begin(), found.end(), std::back_inserter(runs));
  }
  std::erase_if(runs, [&](const FoundRun& run) { return !words.target.empty() && run.record.target != words.target; });
  std::stable_sort(runs.begin(), runs.end(),
                   [](const auto& a, const auto& b) { return a.record.time < b.record.time; });
  return runs;
}

std::string ending(const FoundRun& run) {
  const RunRecord& r = run.record;
  std::string text = runStateName(r.state);
  if (!r.reason.empty()) text += ": " + r.reason;
  if (r.state == RunState::kWaiting) text += " until " + r.confirmBy;
  if (r.undoneBy == r.run) return text + ", nothing of it was left to undo";
  if (!r.undoneBy.empty()) text += ", undone by " + r.undoneBy;
  return text;
}

std::string textLine(const FoundRun& run) {
  const RunRecord& r = run.record;
  return printable(r.run + "  " + r.time + "  " + r.user + "@" + r.host + (r.from.empty() ? "" : " from " + r.from) +
                   "  " + r.target + "  " + r.what + "  " + std::to_string(r.sent) + "/" + std::to_string(r.steps) +
                   "  " + ending(run) + (run.canBeUndone() ? "  (can be undone)" : "")) +
         "\n";
}

std::string jsonOf(const FoundRun& run) {
  const RunRecord& r = run.record;
  return jsonLine({{"schema", 1},
                   {"kind", "history"},
                   {"run", r.run},
                   {"time", r.time},
                   {"user", r.user},
                   {"from", r.from},
                   {"host", r.host},
                   {"target", r.target},
                   {"what", r.what},
                   {"state", runStateName(r.state)},
                   {"reason", r.reason},
                   {"steps", r.steps},
                   {"sent", r.sent},
                   {"confirm_by", r.confirmBy.empty() ? Json() : Json(r.confirmBy)},
                   {"undoes", r.undoes.empty() ? Json() : Json(r.undoes)},
                   {"undone_by", r.undoneBy.empty() ? Json() : Json(r.undoneBy)},
                   {"can_be_undone", run.canBeUndone()},
                   {"folder", run.folder}});
}

int show(const std::vector<FoundRun>& runs, bool asJson) {
  Output output(STDOUT_FILENO);
  for (const FoundRun& run : runs)
    output.write(asJson ? jsonOf(run) : textLine(run));
  output.flush();
  return kDone;
}

// Whether it came in time, only the process that waits can tell.
void confirm(FoundRun run) {
  run.confirm();
  const TimePoint limit = after(kTakesNote);
  while (run.record.state == RunState::kWaiting) {
    if (Clock::now() >= limit) throw TimeoutError("run " + run.record.run + " has not taken note of it");
    sleepUntil(after(kBetweenLooks));
    run = run.again();
  }
  if (run.record.state == RunState::kDone || run.record.state == RunState::kDiffers) return;
  if (run.isLeft()) {
    throw UsageError("run " + run.record.run + " ended meanwhile: " + ending(run) +
                     "; confirm it again to keep it, or undo");
  }
  throw UsageError("too late: run " + run.record.run +
                   (run.record.state == RunState::kRunning ? " is being rolled back" : " has ended: " + ending(run)));
}

void keep(FoundRun run) {
  run.record.state = RunState::kKept;
  run.rewrite();
  complain("nobody waits for it any more: what run " + run.record.run + " has changed stays as it is");
}

}  // namespace

int performHistory(const Options& options) {
  return show(chosenRuns(options), options.history.json);
}

// What waits for a confirmation, and what has lost the process that waited.
int performPending(const Options& options) {
  std::vector<FoundRun> runs = chosenRuns(options);
  std::erase_if(runs, [](const FoundRun& run) { return run.record.state != RunState::kWaiting && !run.isLeft(); });
  return show(runs, options.history.json);
}

int performConfirm(const Options& options) {
  for (const FoundRun& run : chosenRuns(options)) {
    if (run.record.run != options.change.run) continue;
    if (run.record.state == RunState::kWaiting) {
      confirm(run);
    } else if (run.isLeft()) {
      keep(run);
    } else {
      throw UsageError("run " + run.record.run + " does not wait for a confirmation: " + ending(run));
    }
    return kDone;
  }
  throw UsageError("no run " + options.change.run);
}

std::string commandFor(const TargetWords& words, const std::string& subcommand) {
  std::string command = "serdesctl ";
  if (!words.target.empty()) command += "-t " + words.target + " ";
  if (!words.state.empty()) command += "--state " + words.state + " ";
  return command + subcommand;
}

void warnOfRunsLeft(const Target& target, const TargetWords& words) {
  for (const std::string& folder : journalFolders()) {
    for (const FoundRun& run : findRuns(folder, target, complain)) {
      if (!run.isLeft()) continue;
      const RunRecord& r = run.record;
      complain("run " + r.run + " (" + r.what + ", by " + r.user + ") was interrupted after " + std::to_string(r.sent) +
               " of " + std::to_string(r.steps) +
               " commands and counts as not confirmed: " + commandFor(words, "undo " + r.run) + " leads back");
    }
  }
}

}  // namespace serdesctl
