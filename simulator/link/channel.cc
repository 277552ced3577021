// Media of a link: their loss, their phase and how they compose.
#include "simulator/link/channel.h"

#include <algorithm>
#include <cmath>

namespace simulator {

namespace {

double fitted(double coefficient) {
  return limited(coefficient, -1e4, 1e4);
}

}  // namespace

Channel operator+(const Channel& first, const Channel& second) {
  Channel both = first;
  both.a0 += second.a0;
  both.a1 += second.a1;
  both.a2 += second.a2;
  both.a4 += second.a4;
  both.echoes.insert(both.echoes.end(), second.echoes.begin(), second.echoes.end());
  const double jitter1 = limited(first.randomJitterUi, 0, 0.5);
  const double jitter2 = limited(second.randomJitterUi, 0, 0.5);
  both.randomJitterUi = std::sqrt(jitter1 * jitter1 + jitter2 * jitter2);
  both.crosstalkDb = std::max(both.crosstalkDb, second.crosstalkDb);
  return both;
}

Channel fr4Trace(double inches) {
  Channel trace;
  trace.a1 = 0.0908 * inches;
  trace.a2 = 0.0562 * inches;
  return trace;
}

Channel connector() {
  Channel contact;
  contact.a0 = 0.1;
  contact.a2 = 0.35;
  return contact;
}

Channel boardLine(double millimetres) {
  Channel line;
  line.a1 = 4.114e-4 * kNeperDb * millimetres;
  line.a2 = 2.547e-4 * kNeperDb * millimetres;
  return line;
}

Channel directAttachCopper(double metres) {
  // Conductor, dielectric and braid a metre; the plugs take what is left of the limit at 7 m.
  Channel cable;
  cable.a1 = 0.70 * metres;
  cable.a2 = 0.07 * metres + 0.440276;
  cable.a4 = 0.006 * metres;
  return cable;
}

Channel opticalModule(double hostTraceInches, double addedJitterUi) {
  Channel host = fr4Trace(hostTraceInches) + connector();
  host.randomJitterUi = addedJitterUi;
  return host;
}

LossFit::LossFit(const Channel& channel)
    : a0(fitted(channel.a0)), a1(fitted(channel.a1)), a2(fitted(channel.a2)), a4(fitted(channel.a4)) {}

double insertionLossDb(const Channel& channel, double fGHz) {
  const double f = limited(fGHz, 0, 1e4);
  return LossFit(channel).db(f, std::sqrt(f));
}

}  // namespace simulator
