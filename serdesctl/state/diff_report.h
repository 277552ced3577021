// A comparison for people and for programs.
#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

#include "serdesctl/state/compare.h"

namespace serdesctl {

// What was compared: names of files, or of a target.
struct ComparedNames {
  std::string before;
  std::string after;
};

// A heading for each place, and below it what was there with - and what is there with +. Empty when nothing differs.
std::string textDiff(const Comparison& comparison, const ComparedNames& names, bool colour);

// One object, all differences among its records.
std::string jsonDiff(const Comparison& comparison, const ComparedNames& names);

// A value of a difference: null where nobody knows it.
nlohmann::ordered_json valueJson(const SettingValue& value);

// The records of that object.
nlohmann::ordered_json differenceRecords(const Comparison& comparison);

// Whether both states are the same, and of the same ports.
bool isSame(const Comparison& comparison);

}  // namespace serdesctl
