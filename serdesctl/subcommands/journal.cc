// serdesctl journal.
#include "serdesctl/subcommands/subcommands.h"

namespace serdesctl {

int performJournal(const Options&) {
  return 0;
}

}  // namespace serdesctl
