// Environment, opening and closing.
#include "simulator/calls/session.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <utility>

#include "simulator/calls/default_switch.h"

namespace simulator {
namespace {

constexpr const char* kSwitchVariable = "SERDES_SIMULATOR_SWITCH";
constexpr const char* kClockVariable = "SERDES_SIMULATOR_CLOCK";
constexpr const char* kStateVariable = "SERDES_SIMULATOR_STATE";
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
                             "\" is not monotonic, virtual or virtual:MICROSECONDS (1 to 3600000000)");
    }
    description.clock = *clock;
  }
  return description;
}

void complain(const std::exception& error) {
  (void)std::fprintf(stderr, "simulated switch: %s\n", error.what());
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
    if (switch_ == nullptr) build();
  } catch (const DescriptionError& error) {
    complain(error);
    return kBadDescription;
  } catch (const StateError& error) {
    complain(error);
    return error.code();
  }
  open_[static_cast<std::size_t>(side)] = true;
  return kOk;
}

void Session::build() {
  auto theSwitch = std::make_unique<Switch>(describedSwitch());
  if (const std::string fileName = variable(kStateVariable); !fileName.empty()) {
    auto stateFile = std::make_unique<StateFile>(fileName);
    stateFile->load(*theSwitch);
    stateFile_ = std::move(stateFile);
  }
  switch_ = std::move(theSwitch);
}

int Session::close(Side side) {
  if (!isOpen(side)) return kNotOpen;
  open_[static_cast<std::size_t>(side)] = false;
  const int code = keep();
  if (anyOpen()) return code;
  switch_.reset();
  stateFile_.reset();
  return code;
}

int Session::keep() const {
  if (stateFile_ == nullptr) return kOk;
  try {
    stateFile_->save(*switch_);
  } catch (const StateError& error) {
    complain(error);
    return error.code();
  }
  return kOk;
}

Switch* Session::find(Side side) const {
  return isOpen(side) ? switch_.get() : nullptr;
}

// Calls before the first opening are traced too.
Trace& Session::trace() {
  if (!anyOpen() && trace_.fileName() != variable(kTraceVariable)) (void)trace_.open(variable(kTraceVariable));
  return trace_;
}

}  // namespace simulator
