// serdesctl undo: what a run changed goes back.
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "serdesctl/apply/undoing.h"
#include "serdesctl/base/errors.h"
#include "serdesctl/base/output.h"
#include "serdesctl/journal/journal_file.h"
#include "serdesctl/subcommands/changing.h"

namespace serdesctl {
namespace {

std::vector<FoundRun> runsOf(const Target& target) {
  std::vector<FoundRun> runs;
  for (const std::string& folder : journalFolders()) {
    std::vector<FoundRun> found = findRuns(folder, target, complain);
    std::move(found.begin(), found.end(), std::back_inserter(runs));
  }
  std::stable_sort(runs.begin(), runs.end(),
                   [](const auto& a, const auto& b) { return a.record.time < b.record.time; });
  return runs;
}

std::string whyNot(const RunRecord& run) {
  if (run.undoneBy == run.run) return "has nothing left to undo";
  if (!run.undoneBy.empty()) return "has been undone by run " + run.undoneBy;
  if (run.state == RunState::kRolledBack) return "has been rolled back";
  return "is under way";
}

// The run of that name or, without one, the last one that stands and is no undoing itself.
FoundRun chosenRun(const std::vector<FoundRun>& runs, const std::string& name, const Target& target) {
  for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
    if (!name.empty() && run->record.run != name) continue;
    if (name.empty() && (!run->canBeUndone() || !run->record.undoes.empty())) continue;
    if (!run->canBeUndone()) throw UsageError("run " + name + " " + whyNot(run->record));
    return *run;
  }
  throw UsageError(name.empty() ? "nothing that could be undone on target " + target.name
                                : "no run " + name + " on target " + target.name);
}

void refuseConflicts(const Undoing& undoing, const RunRecord& run) {
  std::string text;
  for (const Difference& d : undoing.conflicts) {
    text +=
        "\n  " + textOf(d.place) + " " + d.parameter + " is " + textOf(d.after) + ", the run left " + textOf(d.before);
  }
  if (!text.empty()) {
    throw UsageError("since run " + run.run +
                     " somebody else has changed the same settings; --force undoes all the same" + text);
  }
}

void setUndoneBy(FoundRun run, const std::string& by) {
  run.record.undoneBy = by;
  run.rewrite();
}

// The run is gone, and with it those that began to undo it; what it had undone itself stands again.
void settle(const std::vector<FoundRun>& runs, const FoundRun& undone, const std::string& by) {
  setUndoneBy(undone, by);
  for (const FoundRun& run : runs) {
    if (run.record.undoes == undone.record.run && run.isLeft()) setUndoneBy(run, by);
    if (run.record.run == undone.record.undoes) setUndoneBy(run, "");
  }
}

}  // namespace

int performUndo(const Options& options) {
  OpenedSwitch opened(options.common);
  const SwitchState& now = opened.now.state;
  const std::vector<FoundRun> runs = runsOf(opened.target);
  const FoundRun run = chosenRun(runs, options.change.run, opened.target);
  run.requireWritable();
  Undoing undoing = undoingOf(run, now);
  if (!options.change.force) refuseConflicts(undoing, run.record);
  Wish wish = {
      .source = "run " + run.record.run, .wanted = std::move(undoing.wanted), .throughCache = true, .plan = {}};
  wish.plan = makePlan(now, wish.wanted, {.throughCache = true});
  const int status = changeSwitch(opened, options, wish, "undo " + run.record.run, &run);
  if (status != kDone) return status;
  const std::vector<FoundRun> later = runsOf(opened.target);
  const bool sent = !later.empty() && later.back().record.undoes == run.record.run;
  settle(runs, run, sent ? later.back().record.run : run.record.run);
  return kDone;
}

}  // namespace serdesctl
