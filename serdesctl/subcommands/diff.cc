// serdesctl diff: what differs between two saves, or between a save and the switch.
#include <unistd.h>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/output.h"
#include "serdesctl/state/compare.h"
#include "serdesctl/state/diff_report.h"
#include "serdesctl/state/state_json.h"
#include "serdesctl/subcommands/saving.h"
#include "serdesctl/subcommands/subcommands.h"

namespace serdesctl {
namespace {

// Of the switch what the save has, so that a save of some ports is compared with them.
Save afterwards(const Options& options, const SwitchState& before) {
  if (!options.diff.after.empty()) return readSave(options.diff.after);
  return captureSave(options.common, [&](const SwitchText& hardware) { return portsOfState(before, hardware); });
}

}  // namespace

int performDiff(const Options& options) {
  const DiffOptions& diff = options.diff;
  const Save before = readSave(diff.before);
  const Save after = afterwards(options, before.state);
  Comparison comparison = compare(before.state, after.state);
  if (!diff.observations) comparison.observations.clear();
  const ComparedNames names = {diff.before, diff.after.empty() ? *after.origin.target : diff.after};
  const bool colour = showsColour(STDOUT_FILENO);
  Output output(STDOUT_FILENO);
  output.write(diff.json ? jsonDiff(comparison, names) : textDiff(comparison, names, colour));
  output.flush();
  return isSame(comparison) ? kDone : kFailed;
}

}  // namespace serdesctl
