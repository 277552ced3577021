// For each port of a switch: what its receive links hear, as far as what they show can tell.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "serdesctl/twin/channel_fit.h"
#include "serdesctl/twin/switch_model.h"

namespace serdesctl {

// Who sends what a port hears. The tool does not tell; a port that hears what is set like its own transmitter is taken
// to hear itself, so that what is changed at one end shows at the other, as it does where both ends are set alike.
enum class FarEnd : std::uint8_t { kNothing, kItself, kPartner };

struct PortFit {
  FarEnd farEnd = FarEnd::kNothing;
  SerDesTxRateParams partner{};             // a partner's settings
  std::uint32_t partnerSpeed = SPEED_AUTO;  // AUTO: that of the port
  std::uint32_t speed = SPEED_AUTO;         // that the port runs at; AUTO: none is agreed on
  Medium medium = Medium::kBoard;
  double length = 0;                               // typical where nothing is fitted
  std::optional<ChannelFit> channel;               // nothing: no statistics tell
  std::vector<std::optional<LinkReadings>> shown;  // by the twin, of links that are fitted
  std::string note;                                // what is not sure of it
};

// By ASIC and port as in the model.
std::vector<std::vector<PortFit>> fitPorts(const SwitchModel& model);

}  // namespace serdesctl
