// A description for the simulated switch, written for people to read and to go on with.
#pragma once

#include <string>
#include <vector>

#include "serdesctl/twin/port_fits.h"
#include "serdesctl/twin/switch_model.h"

namespace serdesctl {

struct Description {
  std::string text;
  std::vector<std::string> notes;  // what of the save it cannot say
};

// `origin` says whose twin it is.
Description descriptionOf(const SwitchState& state, const SwitchModel& model,
                          const std::vector<std::vector<PortFit>>& fits, const std::string& origin);

// A text in quotes as TOML has it. What is no UTF-8 becomes question marks.
std::string tomlText(const std::string& text);

const char* farEndName(FarEnd farEnd);

}  // namespace serdesctl
