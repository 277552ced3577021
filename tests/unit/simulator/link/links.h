// Links that many tests start from.
#pragma once

#include <array>
#include <random>
#include <tuple>
#include <vector>

#include "simulator/link/model.h"

namespace simulator {

inline constexpr double kBaud2G = 2.125;
inline constexpr double kBaud8G = 8.5;
inline constexpr double kBaud10G = 10.51875;

// Common circuit board with two connectors.
inline Channel backplane(double inches) {
  return fr4Trace(inches) + connector() + connector();
}

// All neighbours of a port amid others, both ends: two to either side, each like `transmitter`.
inline std::vector<Aggressor> neighbours(const Transmitter& transmitter, double baud) {
  std::vector<Aggressor> all;
  for (const unsigned distance : {1u, 1u, 2u, 2u}) {
    for (const bool farEnd : {false, true})
      all.push_back({transmitter, baud, distance, farEnd});
  }
  return all;
}

// A link amid neighbours that are set as it is.
inline LinkResult amidItsLike(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver,
                              double baud = kBaud8G) {
  return evaluateLink(transmitter, channel, receiver, baud, neighbours(transmitter, baud));
}

// Cursors of a link in V before the gain.
inline Cursors cursorsOf(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver,
                         double baud = kBaud8G) {
  return receive(transmitter, channel, receiver, baud, {}).cursors;
}

// Settings as somebody sets them who tries at random, with drive enough for most links; the level that the gain aims at
// stays.
class RandomSettings {
 public:
  explicit RandomSettings(unsigned seed) : random_(seed) {}
  int between(int low, int high) {
    return low + static_cast<int>(random_() % static_cast<unsigned>(high - low + 1));
  }
  Transmitter transmitter() {
    Transmitter made;
    made.ffeMode = static_cast<unsigned>(between(0, 3));
    made.k = static_cast<unsigned>(between(80, 255));
    for (const auto& [tap, low, high] : {std::tuple{0, -20, 8}, {1, 25, 63}, {2, -50, 15}, {3, -10, 10}})
      made.c[static_cast<std::size_t>(tap)] = between(low, high);
    made.slewPs = between(24, 75);
    return made;
  }
  Receiver receiver() {
    Receiver made;
    made.dfeTaps = std::array{0u, 1u, 3u, 5u}[static_cast<std::size_t>(between(0, 3))];
    made.pole = between(0, kMaxPole);
    made.peak = between(0, kMaxPeak);
    made.evenOddMismatch = between(-4, 4) * 0.005;
    return made;
  }
  // Takes the DFE off its taps by up to `most` LSB each.
  void holdNear(const LinkResult& adapted, int most, Receiver& receiver) {
    receiver.adapt = false;
    for (std::size_t i = 0; i < receiver.heldTaps.size(); ++i)
      receiver.heldTaps[i] = readingOf(adapted.taps[i]) + between(-most, most);
  }

 private:
  std::mt19937 random_;
};

}  // namespace simulator
