// What a run changed, and what it takes to put it back.
#pragma once

#include <vector>

#include "serdesctl/state/compare.h"
#include "serdesctl/store/run_store.h"

namespace serdesctl {

struct Undoing {
  SwitchState wanted;                 // as it is now, and what the run changed as before it
  std::vector<Difference> conflicts;  // before: what the run left; after: what stands there now, by somebody else
};

Undoing undoingOf(const FoundRun& run, const SwitchState& now);

}  // namespace serdesctl
