// The text of a state file: TOML with a head that names its format and its switch, the records that differ from those
// the switch starts with, and a last line from which damage shows. docs/simulated-switch.md explains it.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/switch/state.h"

namespace simulator {

inline constexpr int kStateFormat = 2;

// What is wrong with a state file, beginning with the file's name, and the error code that it comes to.
class StateError : public std::runtime_error {
 public:
  StateError(int code, const std::string& what) : std::runtime_error(what), code_(code) {}
  int code() const {
    return code_;
  }

 private:
  int code_;
};

// How a switch starts: which records there are, and what a state file must belong to.
struct StartState {
  std::vector<StateRecord> records;
  std::uint64_t fingerprint = 0;

  // `description` is the fingerprint of the description. That of the start covers it and the reset values too, so that
  // a file does not outlive a change of either.
  StartState(std::vector<StateRecord> atStart, std::uint64_t description);
};

std::string stateText(const StartState& start, const std::vector<StateRecord>& now);

// All records, those that the text leaves out as at the start. Throws StateError with kBadState: cut off or damaged, of
// another format or switch, or with records that the switch does not have.
std::vector<StateRecord> readStateText(std::string_view text, const std::string& fileName, const StartState& start);

// The last line for a text that ends here.
std::string stateEndLine(std::string_view text);

}  // namespace simulator
