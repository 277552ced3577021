// Commands run on when their output is lost, since a script may be half way through changing hardware: the loss is
// reported once and ends in the exit status.
#include "shell/output.h"

#include <cerrno>
#include <cstring>

namespace {

bool lost = false;

}  // namespace

void reportLostOutput(std::FILE* output) {
  if (lost || !std::ferror(output)) return;
  lost = true;
  std::fprintf(stderr, "Error writing output: %s\n", std::strerror(errno));
}

void flushOutput(std::FILE* output) {
  (void)std::fflush(output);  // a failure sets the stream's error indicator
  reportLostOutput(output);
}

bool outputLost() {
  return lost;
}
