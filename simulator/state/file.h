// The file that keeps a switch between runs, held by one session at a time.
#pragma once

#include <optional>
#include <string>

#include "simulator/state/text.h"
#include "simulator/switch/switch.h"

namespace simulator {

class StateFile {
 public:
  // Locks the file, which need not exist yet. The lock is the process's and ends with it, however it ends.
  // Throws StateError: kStateInUse when another session has it, kBadState when it cannot be locked.
  explicit StateFile(const std::string& fileName);
  ~StateFile();
  StateFile(const StateFile&) = delete;
  StateFile& operator=(const StateFile&) = delete;

  // Puts a new switch into the state that the file keeps, or leaves it as it starts when there is no file. Comes before
  // the first save. Throws StateError with kBadState; the file is left as it is, and the switch too.
  void load(Switch& theSwitch);
  // Replaces the file as a whole: whoever reads it, whenever this process ends, finds the old one or the new one.
  // Throws StateError with kBadState.
  void save(const Switch& theSwitch) const;

 private:
  std::string name_;  // as given, for messages
  std::string path_;
  int lock_ = -1;
  std::optional<StartState> start_;
};

}  // namespace simulator
