// serdesctl apply and restore: a switch as a file says.
#include "serdesctl/base/errors.h"
#include "serdesctl/subcommands/changing.h"

namespace serdesctl {

int performApply(const Options& options) {
  OpenedSwitch opened(options.common);
  const ChangeOptions& change = options.change;
  const Wish wish = readWish(change.file, opened.now.state, change.throughCache);
  return changeSwitch(opened, options, wish, "apply " + change.file);
}

int performRestore(const Options& options) {
  OpenedSwitch opened(options.common);
  const Wish wish = readRestoration(options.change, opened.now.state);
  return changeSwitch(opened, options, wish, "restore " + options.change.file);
}

}  // namespace serdesctl
