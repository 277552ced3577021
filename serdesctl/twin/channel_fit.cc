// A search in one dimension: coarse, then finer around the best.
#include "serdesctl/twin/channel_fit.h"

#include <algorithm>
#include <cmath>

namespace serdesctl {
namespace {

constexpr double kFinest = 0.01;  // of a length
constexpr double kRoughly = 10;   // steps by which the coarse search may miss a residual; finer ones miss less
constexpr double kChanceSteps = 0.4;

simulator::Channel boardOf(double inches) {
  return simulator::fr4Trace(inches) + simulator::connector() + simulator::connector();
}
simulator::Channel moduleOf(double inches) {
  return simulator::opticalModule(inches);
}

double square(double x) {
  return x * x;
}

std::size_t tapsOf(const FitLink& link) {
  return std::min<std::size_t>(link.receiver.dfeTaps, LinkReadings::kTaps);
}

// The residual as a function of the length alone.
class Search {
 public:
  Search(std::span<const FitLink> links, const simulator::Transmitter& far, Medium medium)
      : links_(links), far_(far), medium_(medium), row_(mediumRow(medium)) {}

  ChannelFit run(double bound) const {
    const double hopeless = bound + kChanceSteps;
    ChannelFit best = {.medium = medium_, .length = 0, .residual = at(0, hopeless + kRoughly)};
    for (double length = row_.coarse; length <= row_.longest && !isBeyond(length, best); length += row_.coarse)
      keepBetter(length, hopeless + kRoughly, best);
    for (double step = row_.coarse / 2; step >= kFinest; step /= 2) {
      const double limit = hopeless + kRoughly * 2 * step / row_.coarse;
      if (best.residual > limit) return best;
      const double middle = best.length;
      for (const double length : {middle - step, middle + step})
        if (length >= 0 && length <= row_.longest) keepBetter(length, limit, best);
    }
    return best;
  }

  void addRange(ChannelFit& best) const {
    best.shortest = edge(best, -1);
    best.longest = edge(best, 1);
  }

 private:
  double at(double length, double bound = std::numeric_limits<double>::infinity()) const {
    return residualOf(links_, far_, medium_, length, bound);
  }

  // Far behind a good length there is no better one.
  bool isBeyond(double length, const ChannelFit& best) const {
    return best.residual < kRoughly && length > best.length + 6 * row_.coarse;
  }

  void keepBetter(double length, double bound, ChannelFit& best) const {
    const double residual = at(length, std::min(best.residual, bound));
    if (residual >= best.residual) return;
    best.length = length;
    best.residual = residual;
  }

  // How far lengths go that fit hardly worse.
  double edge(const ChannelFit& best, int direction) const {
    double good = best.length;
    double step = row_.coarse;
    while (step >= kFinest * 10) {
      const double next = good + direction * step;
      const bool inside = next >= 0 && next <= row_.longest;
      if (inside && isHardlyWorse(at(next), best.residual)) {
        good = next;
      } else {
        step /= 2;
      }
    }
    return good;
  }

  std::span<const FitLink> links_;
  const simulator::Transmitter& far_;
  Medium medium_;
  const MediumRow& row_;
};

}  // namespace

std::optional<LinkReadings> readingsOf(const DfeStatsValues& statistics) {
  if (!statistics.ap || !statistics.amin) return std::nullopt;
  LinkReadings readings;
  for (std::size_t tap = 0; tap < LinkReadings::kTaps; ++tap) {
    const auto& even = statistics.evenOddTaps[2 * tap];
    const auto& odd = statistics.evenOddTaps[2 * tap + 1];
    readings.taps[tap] = even && odd ? (*even + *odd) / 2.0 : statistics.taps[tap].value_or(0);
  }
  readings.ap = *statistics.ap;
  readings.amin = *statistics.amin;
  return readings;
}

LinkReadings readingsOf(const simulator::LinkResult& result) {
  LinkReadings readings;
  for (std::size_t tap = 0; tap < LinkReadings::kTaps; ++tap)
    readings.taps[tap] = (result.taps[2 * tap] + result.taps[2 * tap + 1]) / 2;
  readings.ap = result.ap;
  readings.amin = result.amin;
  return readings;
}

const MediumRow& mediumRow(Medium medium) {
  static constexpr std::array<MediumRow, 3> kRows = {{
      {.name = "board",
       .lengthKey = "fr4_inches",
       .unit = "in",
       .longest = 120,
       .coarse = 4,
       .typical = 12,
       .channel = boardOf},
      {.name = "copper",
       .lengthKey = "copper_metres",
       .unit = "m",
       .longest = 20,
       .coarse = 1,
       .typical = 3,
       .channel = simulator::directAttachCopper},
      {.name = "optical",
       .lengthKey = "optical_host_inches",
       .unit = "in",
       .longest = 100,
       .coarse = 4,
       .typical = 8,
       .channel = moduleOf},
  }};
  return kRows[static_cast<std::size_t>(medium)];
}

double residualOf(std::span<const FitLink> links, const simulator::Transmitter& far, Medium medium, double length,
                  double bound) {
  const simulator::Channel channel = mediumRow(medium).channel(length);
  double count = 0;
  for (const FitLink& link : links)
    count += static_cast<double>(tapsOf(link) + 2);
  double sum = 0;
  for (const FitLink& link : links) {
    const LinkReadings shown =
        readingsOf(simulator::evaluateLink(far, channel, link.receiver, link.baudGbd, link.aggressors));
    for (std::size_t tap = 0; tap < tapsOf(link); ++tap)
      sum += square(shown.taps[tap] - link.seen.taps[tap]);
    sum += square(shown.ap - link.seen.ap) + square(shown.amin - link.seen.amin);
    if (sum > square(bound) * count) break;
  }
  return std::sqrt(sum / count);
}

ChannelFit fitChannel(std::span<const FitLink> links, const simulator::Transmitter& far, Medium medium, double bound) {
  return Search(links, far, medium).run(bound);
}

bool isHardlyWorse(double residual, double best) {
  return residual <= std::hypot(best, kChanceSteps);
}

void addRange(std::span<const FitLink> links, const simulator::Transmitter& far, ChannelFit& fit) {
  Search(links, far, fit.medium).addRange(fit);
}

}  // namespace serdesctl
