// What a switch says about itself, asked of the running tool.
#pragma once

#include <cstdint>
#include <map>
#include <set>

#include "serdesctl/session/conversation.h"
#include "serdesctl/tables/config_text.h"

namespace serdesctl {

struct LearntAsic {
  DiscoveryText discovery;
  ConfigText config;
};

struct LearntSwitch {
  SwitchText hardware;
  std::map<std::uint32_t, LearntAsic> asics;  // those that were asked for and answered
};

// Asks for the current ASIC, which is 0 in a new session, and for others where the switch has them. ASIC 0 is the
// current one again afterwards.
LearntSwitch learnSwitch(Conversation& tool, const std::set<std::uint32_t>& others = {});

// The answer's output; throws ConnectionError when the tool refuses.
std::string askForOutput(Conversation& tool, const std::string& command);

}  // namespace serdesctl
