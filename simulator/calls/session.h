// The one simulated switch of a process: opened and closed by either platform class, set up from the environment.
#pragma once

#include <cstdint>
#include <memory>

#include "simulator/api.h"
#include "simulator/calls/trace.h"
#include "simulator/state/file.h"
#include "simulator/switch/switch.h"

namespace simulator {

// The two classes open and close apart from one another.
enum class Side : std::uint8_t { kAsic, kPort };

class SIMULATOR_API Session {
 public:
  // The process's session.
  static Session& instance();

  // kOk, or kBadDescription, kStateInUse or kBadState with the reason on standard error. The first side to open builds
  // the switch, as its state file keeps it; opening twice is as opening once.
  int open(Side side);
  // kNotOpen when it is not. With the last side the switch goes, and what was set on it but for its state file.
  int close(Side side);
  // Writes the state file, if there is to be one: kOk, or kBadState with the reason on standard error.
  int keep() const;
  // Undoes an opening; the switch stays for the next.
  void takeBack(Side side) {
    open_[static_cast<std::size_t>(side)] = false;
  }
  // The switch; null unless this side is open.
  Switch* find(Side side) const;
  // The switch if there is one, whichever side is open.
  Switch* any() const {
    return switch_.get();
  }
  Trace& trace();

 private:
  void build();
  bool isOpen(Side side) const {
    return open_[static_cast<std::size_t>(side)];
  }
  bool anyOpen() const {
    return open_[0] || open_[1];
  }

  std::array<bool, 2> open_{};
  std::unique_ptr<Switch> switch_;
  std::unique_ptr<StateFile> stateFile_;
  Trace trace_;
};

}  // namespace simulator
