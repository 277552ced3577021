// Waiting with a deadline, and the signals that end it.
#pragma once

#include <poll.h>

#include <chrono>
#include <initializer_list>

namespace serdesctl {

using Clock = std::chrono::steady_clock;
using TimePoint = Clock::time_point;
using Seconds = std::chrono::duration<double>;

// The time `seconds` from now; what a clock cannot hold is a year.
TimePoint after(Seconds seconds);

// While it lives, interrupt, termination and hang-up end waits instead of the process, and a reader that leaves is an
// error of the write. A signal that was ignored stays so.
class SignalWatch {
 public:
  SignalWatch();
  ~SignalWatch();
  SignalWatch(const SignalWatch&) = delete;
  SignalWatch& operator=(const SignalWatch&) = delete;
};

// The signal that came, 0 for none.
int caughtSignal();

// As if no signal had come: for those who must put something in order first.
void forgetSignal();

// Throws Interrupted when a signal came.
void throwIfInterrupted();

enum class Wakeup { kReady, kDeadline, kSignal };

// Waits until one of the descriptors is ready; `revents` say which. Signals that came before count.
Wakeup waitUntil(std::initializer_list<pollfd*> descriptors, TimePoint deadline);

// The same for those who go on after a signal.
Wakeup waitThroughSignals(std::initializer_list<pollfd*> descriptors, TimePoint deadline);

// Sleeps; throws Interrupted.
void sleepUntil(TimePoint time);

}  // namespace serdesctl
