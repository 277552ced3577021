// Waiting with a deadline. A signal writes into a pipe that every wait looks at, so that none is lost in between.
#include "serdesctl/base/waiting.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/files.h"

namespace serdesctl {
namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};
constexpr Seconds kLongest = std::chrono::hours(24 * 365);
constexpr std::size_t kMostDescriptors = 4;

volatile std::sig_atomic_t caught = 0;
int wakeupWriter = -1;
Fd wakeupReader;
std::array<struct sigaction, kSignals.size()> formerActions;
struct sigaction formerPipeAction;

void onSignal(int signal) {
  const int error = errno;
  caught = signal;
  (void)!::write(wakeupWriter, "!", 1);
  errno = error;
}

void install(int signal, void (*handler)(int), struct sigaction& former) {
  struct sigaction action {};
  action.sa_handler = handler;
  (void)::sigaction(signal, nullptr, &former);
  if (former.sa_handler != SIG_IGN) (void)::sigaction(signal, &action, nullptr);
}

timespec remaining(TimePoint deadline) {
  const auto longest = std::chrono::duration_cast<Clock::duration>(kLongest);
  const auto left = std::clamp(deadline - Clock::now(), Clock::duration::zero(), longest);
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
  const auto rest = std::chrono::duration_cast<std::chrono::nanoseconds>(left - seconds);
  return {.tv_sec = static_cast<time_t>(seconds.count()), .tv_nsec = static_cast<long>(rest.count())};
}

Wakeup wait(std::initializer_list<pollfd*> descriptors, TimePoint deadline, int signalPipe) {
  std::array<pollfd, kMostDescriptors> polled{};
  std::size_t count = 0;
  for (const pollfd* descriptor : descriptors)
    polled[count++] = *descriptor;
  polled[count] = {.fd = signalPipe, .events = POLLIN, .revents = 0};
  int ready = -1;
  do {
    const timespec left = remaining(deadline);
    ready = ::ppoll(polled.data(), count + 1, &left, nullptr);
  } while (ready < 0 && errno == EINTR);
  if (polled[count].revents != 0) return Wakeup::kSignal;
  if (ready <= 0) return Wakeup::kDeadline;
  count = 0;
  for (pollfd* descriptor : descriptors)
    descriptor->revents = polled[count++].revents;
  return Wakeup::kReady;
}

}  // namespace

TimePoint after(Seconds seconds) {
  return Clock::now() + std::chrono::duration_cast<Clock::duration>(std::min(seconds, kLongest));
}

SignalWatch::SignalWatch() {
  std::array<int, 2> pipe{-1, -1};
  if (::pipe2(pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) throw ConnectionError("no pipe: " + errorText());
  wakeupReader.reset(pipe[0]);
  wakeupWriter = pipe[1];
  caught = 0;
  for (std::size_t i = 0; i < kSignals.size(); ++i)
    install(kSignals[i], onSignal, formerActions[i]);
  install(SIGPIPE, SIG_IGN, formerPipeAction);
}

SignalWatch::~SignalWatch() {
  for (std::size_t i = 0; i < kSignals.size(); ++i)
    (void)::sigaction(kSignals[i], &formerActions[i], nullptr);
  (void)::sigaction(SIGPIPE, &formerPipeAction, nullptr);
  wakeupReader.reset();
  (void)::close(wakeupWriter);
}

int caughtSignal() {
  return caught;
}

void forgetSignal() {
  caught = 0;
  std::array<char, 16> bytes;
  while (::read(wakeupReader.get(), bytes.data(), bytes.size()) > 0) {
  }
}

void throwIfInterrupted() {
  if (caught != 0) throw Interrupted(caught);
}

Wakeup waitUntil(std::initializer_list<pollfd*> descriptors, TimePoint deadline) {
  return wait(descriptors, deadline, wakeupReader.get());
}

Wakeup waitThroughSignals(std::initializer_list<pollfd*> descriptors, TimePoint deadline) {
  return wait(descriptors, deadline, -1);
}

void sleepUntil(TimePoint time) {
  (void)waitUntil({}, time);
  throwIfInterrupted();
}

}  // namespace serdesctl
