// The guard's looks.
#include "serdesctl/apply/guard.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <optional>
#include <tuple>

#include "serdesctl/health/looking.h"

namespace serdesctl {
namespace {

// How far apart two looks are.
constexpr Seconds kBetweenLooks{1};

// Readings go up and down by some steps, and counts by chance: who has three errors a second may see none, or ten.
constexpr double kNoiseSteps = 3;
constexpr double kNoiseFactor = 2;
constexpr double kNoiseErrors = 10;

double secondsNow() {
  return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}

// How well a port serves; one that is down serves no better than a dead one.
int service(Verdict verdict) {
  switch (verdict) {
    case Verdict::kGood:
      return 3;
    case Verdict::kMarginal:
      return 2;
    case Verdict::kBad:
    case Verdict::kUnknown:
      return 1;
    default:
      return 0;
  }
}

bool moreErrors(const std::optional<ErrorRate>& before, const std::optional<ErrorRate>& now) {
  return before && now && now->lowest > kNoiseFactor * before->highest + kNoiseErrors;
}

// A verdict that stands on errors, as they also came before, tells less than their rate.
bool errsAsBefore(const PortHealth& before, const PortHealth& now) {
  const bool hadErrors = before.decodeErrors && before.decodeErrors->highest + before.crcErrors->highest != 0;
  const bool byErrors = now.verdict == Verdict::kBad || now.verdict == Verdict::kMarginal;
  return hadErrors && byErrors && now.amin && *now.amin > 0;
}

// How far the eye is open, as a share of the signal: what the gain makes of both is no difference. Another speed has
// another eye.
bool smallerEye(const PortHealth& before, const PortHealth& now) {
  if (before.runningRate != now.runningRate) return false;
  if (!before.amin || !before.ap || !now.amin || !now.ap || *before.ap <= 0 || *now.ap <= 0) return false;
  const double was = static_cast<double>(*before.amin) / *before.ap;
  const double is = (static_cast<double>(*now.amin) + kNoiseSteps) / *now.ap;
  return is < was;
}

std::string eye(const PortHealth& port) {
  return "Amin " + std::to_string(*port.amin) + " of Ap " + std::to_string(*port.ap);
}

// Ports that ran well before are watched although nobody touches them.
bool isWatched(const PortHealth& before, bool touched) {
  return touched || before.verdict == Verdict::kGood || before.verdict == Verdict::kMarginal;
}

}  // namespace

std::string worse(const PortHealth& before, const PortHealth& now) {
  const std::string verdicts = std::string(verdictName(now.verdict)) + ", it was " + verdictName(before.verdict);
  if (service(now.verdict) < service(before.verdict) && !errsAsBefore(before, now)) return verdicts + ": " + now.reason;
  if (moreErrors(before.decodeErrorRate, now.decodeErrorRate)) return "more decode errors: " + now.reason;
  if (moreErrors(before.crcErrorRate, now.crcErrorRate)) return "more CRC errors: " + now.reason;
  return smallerEye(before, now) ? eye(now) + ", it was " + eye(before) : "";
}

Guard::Guard(Conversation& tool, const std::vector<std::uint32_t>& asics, const PortsByAsic& touched) {
  for (const std::uint32_t asic : asics)
    asics_.push_back({.asked = AskedSwitch(tool, asic), .before = {}});
  const std::vector<Looks> first = look();
  sleepUntil(after(kBetweenLooks));
  const std::vector<Looks> last = look();
  for (std::size_t i = 0; i < asics_.size(); ++i) {
    const auto mask = touched.find(asics[i]);
    asics_[i].before = judged(asics_[i].asked, first[i], last[i]);
    std::erase_if(asics_[i].before, [&](const auto& port) {
      return !isWatched(port.second, mask != touched.end() && (mask->second >> port.first & 1) != 0);
    });
  }
}

std::string Guard::watch(Seconds time) {
  const TimePoint end = after(time);
  const std::vector<Looks> first = look();
  std::string found;
  while (found.empty() && Clock::now() < end) {
    sleepUntil(std::min(end, after(kBetweenLooks)));
    found = compared(first);
  }
  return found;
}

std::map<std::uint32_t, PortHealth> Guard::judged(const AskedSwitch& asked, const Looks& first, const Looks& last) {
  std::map<std::uint32_t, PortHealth> ports;
  for (const auto& [port, look] : last)
    ports[port] = judge(placeOf(asked.config(), port), look, &first.at(port));
  return ports;
}

std::string Guard::compared(const std::vector<Looks>& first) {
  const std::vector<Looks> last = look();
  for (std::size_t i = 0; i < asics_.size(); ++i) {
    const auto now = judged(asics_[i].asked, first[i], last[i]);
    for (const auto& [port, before] : asics_[i].before) {
      const std::string how = worse(before, now.at(port));
      if (how.empty()) continue;
      return "ASIC " + std::to_string(before.place.asic) + " port " + std::to_string(port) + ": " + how;
    }
  }
  return "";
}

std::vector<Guard::Looks> Guard::look() {
  std::vector<Looks> looks;
  for (Watched& asic : asics_) {
    asic.asked.select();
    const ConfigText& config = asic.asked.config();
    looks.push_back(lookAt(asic.asked, config.glPorts | config.xgPorts | config.exgPorts, secondsNow));
  }
  return looks;
}

}  // namespace serdesctl
