// The process around a session: standard streams that are safe to use, and output that was written or reported.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "shell/output.h"
#include "shell/session.h"

namespace {

// A standard descriptor that the caller closed would be the next file opened, and a table could be printed into a
// script. It is opened in the direction in which it cannot be used: using it fails as if it were still closed.
void occupyClosedDescriptors() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) != -1) continue;
    (void)open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

}  // namespace

int main(int argc, char* argv[]) {
  occupyClosedDescriptors();
  const int status = runSession(argc, argv);
  flushOutput(stdout);
  return status == 0 && outputLost() ? EXIT_FAILURE : status;
}
