// Environment, opening and closing.
#include "simulator/session.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "simulator/default_switch.h"

namespace simulator {
namespace {

constexpr const char* kSwitchVariable = "SERDES_SIMULATOR_SWITCH";
constexpr const char* kClockVariable = "SERDES_SIMULATOR_CLOCK";
constexpr const char* kTraceVariable = "SERDES_SIMULATOR_TRACE";

// An empty variable counts as one that is not set.
std::string variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

SwitchDescription describedSwitch() {
  const std::string fileName = variable(kSwitchVariable);
  SwitchDescription description =
      fileName.empty() ? readDescription(kDefaultSwitchToml, "default.toml") : readDescriptionFile(fileName);
  if (const std::string text = variable(kClockVariable); !text.empty()) {
    const auto clock = parseClock(text);
    if (!clock) {
      throw DescriptionError(std::string(kClockVariable) + ": \"" + text +
                             "\" is not monotonic, virtual or virtual:MICROSECONDS");
    }
    description.clock = *clock;
  }
  return description;
}

}  // namespace

Session& Session::instance() {
  static Session session;
  return session;
}

int Session::open(Side side) {
  try {
    const std::string traceName = variable(kTraceVariable);
    if (!anyOpen() && !trace_.open(traceName)) {
      throw DescriptionError(std::string(kTraceVariable) + ": " + traceName + " cannot be written");
    }
    if (switch_ == nullptr) switch_ = std::make_unique<Switch>(describedSwitch());
  } catch (const DescriptionError& error) {
    std::fprintf(stderr, "simulated switch: %s\n", error.what());
    return kBadDescription;
  }
  open_[static_cast<std::size_t>(side)] = true;
  return kOk;
}

int Session::close(Side side) {
  if (!isOpen(side)) return kNotOpen;
  open_[static_cast<std::size_t>(side)] = false;
  if (!anyOpen()) switch_.reset();
  return kOk;
}

Switch* Session::find(Side side) const {
  return isOpen(side) ? switch_.get() : nullptr;
}

// Calls before the first opening are traced too.
Trace& Session::trace() {
  if (!anyOpen()) (void)trace_.open(variable(kTraceVariable));
  return trace_;
}

}  // namespace simulator
