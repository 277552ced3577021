// What lies between a far transmitter and a receiver, told from what the receiver shows: the link model of the
// simulated switch is asked for many lengths of a medium, and the one that reads most alike is taken.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "serdesctl/tables/records.h"
#include "simulator/link/model.h"

namespace serdesctl {

// What a receiver shows, in converter steps. Even and odd taps differ by the link's own mismatch, so their mean counts.
struct LinkReadings {
  static constexpr std::size_t kTaps = 5;
  std::array<double, kTaps> taps{};
  double ap = 0;
  double amin = 0;
};

// Nothing where the tool shows no statistics.
std::optional<LinkReadings> readingsOf(const DfeStatsValues& statistics);
LinkReadings readingsOf(const simulator::LinkResult& result);

// A receive link: all that is known of it.
struct FitLink {
  simulator::Receiver receiver;
  double baudGbd = 0;
  std::vector<simulator::Aggressor> aggressors;
  LinkReadings seen;
};

enum class Medium : std::uint8_t {
  kBoard,   // trace and two connectors
  kCopper,  // a cable with its plugs
  kOptical  // trace and a connector up to a module
};

struct MediumRow {
  const char* name;
  const char* lengthKey;  // of a description
  const char* unit;
  double longest;
  double coarse;   // step of the first search
  double typical;  // where nothing tells
  simulator::Channel (*channel)(double length);
};
const MediumRow& mediumRow(Medium medium);

struct ChannelFit {
  Medium medium = Medium::kBoard;
  double length = 0;
  double residual = 0;  // root mean square of the differences of all readings, in steps
  // Lengths between these fit hardly worse; see addRange.
  double shortest = 0;
  double longest = 0;
};

// How far the readings of links, one at least, are from those that a medium of this length gives; what is beyond
// `bound` is told roughly.
double residualOf(std::span<const FitLink> links, const simulator::Transmitter& far, Medium medium, double length,
                  double bound = std::numeric_limits<double>::infinity());

// The length with the smallest residual; `links` are those of one port. One that will be far beyond `bound` is found
// roughly.
ChannelFit fitChannel(std::span<const FitLink> links, const simulator::Transmitter& far, Medium medium,
                      double bound = std::numeric_limits<double>::infinity());

// Whether a residual is no more than chance makes it: readings are whole numbers.
bool isHardlyWorse(double residual, double best);
void addRange(std::span<const FitLink> links, const simulator::Transmitter& far, ChannelFit& fit);

}  // namespace serdesctl
