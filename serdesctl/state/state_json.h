// Saves: a switch's state as a JSON file, settings and observations apart.
//
// A switch that did not change gives the same bytes, but for the observations, which stand last.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "serdesctl/formats/reports.h"
#include "serdesctl/state/switch_state.h"

namespace serdesctl {

struct Save {
  SwitchState state;
  Origin origin;
};

std::string saveText(const Save& save);

nlohmann::ordered_json unreadJson(const std::vector<Unread>& unread);

// Reads a save back, exactly. Throws UsageError "NAME: /asics/0/ports/3/tx/0/k: not a number from 0 to 255".
Save parseSave(const std::string& text, const std::string& name);
Save readSave(const std::string& fileName);

}  // namespace serdesctl
