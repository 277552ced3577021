// The process: streams that are safe to use, and errors as one line and a status.
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <exception>
#include <new>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/output.h"
#include "serdesctl/command_line.h"

namespace {

// A standard descriptor that the caller closed would be the next pipe. It is opened so that using it fails all the
// same.
void occupyClosedDescriptors() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) != -1) continue;
    (void)open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

// Ends this process by the signal, as if it had never been handled.
int endBySignal(int signal) {
  (void)std::signal(signal, SIG_DFL);
  (void)std::raise(signal);
  return serdesctl::kSignalBase + signal;
}

}  // namespace

int main(int argc, char* argv[]) {
  occupyClosedDescriptors();
  try {
    return serdesctl::runCommandLine(argc, argv);
  } catch (const serdesctl::ReaderLeft&) {
    return endBySignal(SIGPIPE);
  } catch (const serdesctl::Error& error) {
    serdesctl::complain(error.what());
    return error.exitStatus();
  } catch (const std::bad_alloc&) {
    serdesctl::complain("no memory");
  } catch (const std::exception& error) {
    serdesctl::complain(error.what());
  }
  return serdesctl::kFailed;
}
