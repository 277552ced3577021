// A saved switch in the terms of the simulated switch: kinds, types, speeds, and the registers of every link.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "serdesctl/state/switch_state.h"
#include "serdesctl/twin/channel_fit.h"
#include "simulator/description/description.h"
#include "simulator/serdes/settings.h"

namespace serdesctl {

// A port of the save, and what a twin makes of it. Numbers are the platform's.
struct ModelPort {
  const ConfigPort* config = nullptr;
  const PortState* state = nullptr;  // null where the save has the topology alone
  std::uint32_t kind = kPortTypeGl;
  bool present = true;  // in one of the tool's port lists
  std::uint32_t rxType = 0;
  std::uint32_t txType = 0;
  std::uint32_t configuredSpeed = SPEED_AUTO;
  std::uint32_t runningSpeed = SPEED_AUTO;  // AUTO: none is shown
  std::uint32_t media = MEDIA_UNKNOWN;
  bool sends = true;
  bool dumped = false;             // the registers are all known, not only the settings in them
  simulator::SpeedSet speeds = 0;  // that it can be set to
  std::array<simulator::Settings, simulator::kSpeeds> caches{};
  std::vector<simulator::RegisterFile> tx;  // by link, as the live settings say
  std::vector<simulator::RegisterFile> rx;
  std::vector<std::optional<LinkReadings>> seen;  // of as many links as rx

  const simulator::SerDesTraits& txTraits() const {
    return simulator::serDesTraits(txType);
  }
  const simulator::SerDesTraits& rxTraits() const {
    return simulator::serDesTraits(rxType);
  }
  bool isEthernet() const {
    return kind == kPortTypeExg;
  }
  // Gbd of each of so many links, at a speed or, without one, at the lowest.
  double baud(std::uint32_t speed, std::size_t links) const;
  // The speed that it was set to or has found.
  std::uint32_t speed() const {
    return configuredSpeed != SPEED_AUTO ? configuredSpeed : runningSpeed;
  }
};

struct ModelAsic {
  std::uint32_t number = 0;
  const AsicState* state = nullptr;  // null where the save does not have the ASIC
  std::vector<ModelPort> ports;
};

struct SwitchModel {
  std::vector<ModelAsic> asics;
  std::vector<std::string> notes;  // what of the save a description cannot say
};

// `state` must outlive it.
SwitchModel modelOf(const SwitchState& state);

// "port 3 of ASIC 0"
std::string placeOf(const ModelAsic& asic, const ModelPort& port);

// Registers of a link to which settings were applied after a reset.
simulator::RegisterFile registersAfter(const simulator::SerDesTraits& traits, const SerDesTxRateParams& settings);

// The settings that come to what the registers hold.
SerDesTxRateParams settingsIn(const simulator::SerDesTraits& traits, const simulator::RegisterFile& registers);
SerDesRxRateParams rxSettingsIn(const simulator::SerDesTraits& traits, const simulator::RegisterFile& registers);

// Whether the tool shows the same settings for both.
bool sameTxSettings(const simulator::SerDesTraits& traits, const simulator::RegisterFile& a,
                    const simulator::RegisterFile& b);
bool sameRxSettings(const simulator::SerDesTraits& traits, const simulator::RegisterFile& a,
                    const simulator::RegisterFile& b);

// The registers of a port's links when a simulated switch starts at a speed; AUTO: without one.
struct LinkRegisters {
  simulator::RegisterFile tx;
  simulator::RegisterFile rx;
};
LinkRegisters startOf(const ModelPort& port, std::uint32_t speed);

}  // namespace serdesctl
