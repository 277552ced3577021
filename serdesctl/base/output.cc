// Standard output.
#include "serdesctl/base/output.h"

#include <limits.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/files.h"
#include "serdesctl/base/waiting.h"

namespace serdesctl {
namespace {

constexpr std::size_t kMostWaiting = 65536;

}  // namespace

bool showsColour(int descriptor) {
  const auto terminal = environmentVariable("TERM");
  return ::isatty(descriptor) != 0 && terminal && *terminal != "dumb" && !environmentVariable("NO_COLOR");
}

void Output::write(std::string_view text) {
  waiting_ += text;
  if (waiting_.size() >= kMostWaiting) flush();
}

// In pieces that a pipe with room takes at once, so that a reader who does not read cannot hold up an interrupt.
void Output::flush() {
  std::string text;
  text.swap(waiting_);
  for (std::size_t at = 0; at < text.size();) {
    pollfd room = {.fd = descriptor_, .events = POLLOUT, .revents = 0};
    if (waitUntil({&room}, TimePoint::max()) == Wakeup::kSignal) throwIfInterrupted();
    const ssize_t count = ::write(descriptor_, text.data() + at, std::min<std::size_t>(text.size() - at, PIPE_BUF));
    if (count < 0 && errno == EPIPE) throw ReaderLeft("standard output: " + errorText());
    if (count < 0 && errno != EINTR && errno != EAGAIN) throw WriteError("standard output: " + errorText());
    if (count > 0) at += static_cast<std::size_t>(count);
  }
}

void complain(const std::string& what) {
  std::string text;
  for (std::size_t begin = 0; begin < what.size() || begin == 0;) {
    const std::size_t end = std::min(what.find('\n', begin), what.size());
    text += "serdesctl: " + what.substr(begin, end - begin) + "\n";
    begin = end + 1;
  }
  (void)writeAll(STDERR_FILENO, text);
}

}  // namespace serdesctl
