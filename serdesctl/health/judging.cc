// Verdicts.
//
// Ap is what a one reads on average, and Amin what the worst ones come down to. An open eye alone makes a link good:
// one that has lost its signal counts no errors either. A receiver without lock takes noise for code, so its decode
// errors are many, while no frame comes that could be wrong. One whose eye is closed and that has lock gets wrong
// frames.
#include "serdesctl/health/judging.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <tuple>

namespace serdesctl {
namespace {

// Below it there is no signal to speak of.
constexpr std::int32_t kLeastSignal = 5;

// An eye that is open by less than this share of Ap has no room for what a day brings.
constexpr std::int32_t kLeastOpenShare = 4;

// So many errors hit a frame also where frames are few.
constexpr double kManyErrors = 1e5;

struct Finding {
  Verdict verdict = Verdict::kUnknown;
  std::string reason;
};

std::string number(double value) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), value < 100 && value != std::floor(value) ? "%.1f" : "%.0f", value);
  return text.data();
}

std::string counted(const Count& count) {
  return (count.exact() ? "" : "about ") + number(count.number);
}

std::string eye(const DfeStats& link) {
  return "Amin " + std::to_string(*link.amin) + " of Ap " + std::to_string(*link.ap);
}

bool hasValues(const DfeStats& link) {
  return link.amin.has_value();  // with all others, or without
}

bool hasErrors(const DfeStats& link) {
  return link.decodeErrors->highest != 0 || link.crcErrors->highest != 0;
}

std::string errors(const DfeStats& link) {
  return counted(*link.decodeErrors) + " decode and " + counted(*link.crcErrors) + " CRC errors";
}

double difference(std::uint64_t larger, std::uint64_t smaller) {
  return larger > smaller ? static_cast<double>(larger - smaller) : 0;
}

// Nothing when the counter went back: somebody has cleared it meanwhile.
std::optional<ErrorRate> errorRate(const Count& before, const Count& now, double seconds) {
  if (now.highest < before.lowest) return std::nullopt;
  return ErrorRate{.lowest = difference(now.lowest, before.highest) / seconds,
                   .highest = difference(now.highest, before.lowest) / seconds};
}

std::string perSecond(const ErrorRate& rate, const char* what) {
  const bool exact = rate.lowest == rate.highest;
  return (exact ? "" : "at least ") + number(rate.lowest) + " " + what + " errors/s";
}

// What is known of a port's errors: in all, and a second.
struct Errors {
  bool any = false;       // counted at all
  bool growing = false;   // for certain
  bool still = false;     // for certain: two looks gave the same exact counts
  bool noFrames = false;  // for certain: of many errors none was a frame's
  std::string unclear;    // two looks, and why nobody knows
  std::string text;
};

// In all, or a second.
bool noneIsOfFrame(double leastDecodeErrors, double mostCrcErrors) {
  return leastDecodeErrors >= kManyErrors && mostCrcErrors <= 0;
}

Errors errorsOf(const PortHealth& port, bool twoLooks, const DfeStats& link) {
  Errors result;
  result.any = hasErrors(link);
  result.text = errors(link);
  result.noFrames =
      noneIsOfFrame(static_cast<double>(link.decodeErrors->lowest), static_cast<double>(link.crcErrors->highest));
  if (!twoLooks) return result;
  if (!port.decodeErrorRate || !port.crcErrorRate) {
    result.unclear = "the counters were cleared meanwhile";
    return result;
  }
  if (noneIsOfFrame(port.decodeErrorRate->lowest, port.crcErrorRate->highest)) result.noFrames = true;
  for (const auto& [rate, what] : {std::pair(*port.decodeErrorRate, "decode"), std::pair(*port.crcErrorRate, "CRC")}) {
    if (rate.highest > rate.lowest) result.unclear = "too many to tell if they go on";
    if (rate.lowest <= 0 || result.growing) continue;
    result.growing = true;
    result.text = perSecond(rate, what);
  }
  result.still = !result.growing && result.unclear.empty();
  return result;
}

Finding judgeLink(const DfeStats& link, const Errors& errors) {
  if (std::abs(*link.ap) < kLeastSignal) return {Verdict::kDead, "no signal: Ap " + std::to_string(*link.ap)};
  if (*link.amin <= 0 && (!errors.any || errors.still)) {
    return {Verdict::kDead, "no lock: the eye is closed (" + eye(link) + ") and nothing is counted"};
  }
  if (*link.amin <= 0 && errors.noFrames) {
    return {Verdict::kDead, "no lock: the eye is closed (" + eye(link) + ") and no frame comes, " + errors.text};
  }
  if (*link.amin <= 0) return {Verdict::kBad, "the eye is closed (" + eye(link) + "), " + errors.text};
  if (errors.growing) return {Verdict::kBad, errors.text + ", " + eye(link)};
  if (errors.any && !errors.unclear.empty()) return {Verdict::kMarginal, errors.text + ", " + errors.unclear};
  if (errors.any && !errors.still) return {Verdict::kMarginal, errors.text + " since they were cleared, " + eye(link)};
  if (*link.amin < *link.ap / kLeastOpenShare) return {Verdict::kMarginal, "the eye is nearly closed: " + eye(link)};
  return {Verdict::kGood, eye(link) + (errors.any ? ", no new errors" : ", no errors")};
}

// What can be said without looking at links; nothing where they decide.
std::optional<Finding> judgePort(const PortPlace& place, const PortLook& look) {
  if (!look.complaint.empty()) return Finding{Verdict::kUnknown, look.complaint};
  if (!look.rate) return Finding{Verdict::kUnknown, "it has no transmit links, so the tool does not show its rate"};
  if (!look.rate->streamEnabled) return Finding{Verdict::kDown, "its transmit stream is off"};
  if (look.media == "NONE") return Finding{Verdict::kDown, "no medium"};
  if (look.runningRate == "INV") return Finding{Verdict::kDown, "no running rate"};
  if (look.links.empty()) return Finding{Verdict::kUnknown, "it has no receive links"};
  if (!std::all_of(look.links.begin(), look.links.end(), hasValues)) {
    return Finding{Verdict::kUnknown, "the tool has no statistics of SerDes type '" + place.serDesType + "'"};
  }
  return std::nullopt;
}

// Fills in the worst link; its number is told where there are several.
void judgeLinks(PortHealth& port, const PortLook& now, bool twoLooks) {
  const DfeStats* worst = nullptr;
  for (const DfeStats& link : now.links) {
    Finding finding = judgeLink(link, errorsOf(port, twoLooks, link));
    const bool worse = worst == nullptr || std::tie(finding.verdict, *link.amin) < std::tie(port.verdict, *worst->amin);
    if (!worse) continue;
    worst = &link;
    port.verdict = finding.verdict;
    port.reason = (now.links.size() > 1 ? "link " + std::to_string(link.link) + ": " : "") + finding.reason;
  }
  port.link = worst->link;
  port.amin = worst->amin;
  port.ap = worst->ap;
}

bool hasCounts(const PortLook& look) {
  return !look.links.empty() && hasValues(look.links.front());
}

void fillErrors(PortHealth& port, const PortLook& now, const PortLook* before) {
  if (!hasCounts(now)) return;
  port.decodeErrors = now.links.front().decodeErrors;
  port.crcErrors = now.links.front().crcErrors;
  if (before == nullptr) return;
  const double seconds = now.atS - before->atS;
  port.decodeErrorRate = errorRate(*before->links.front().decodeErrors, *port.decodeErrors, seconds);
  port.crcErrorRate = errorRate(*before->links.front().crcErrors, *port.crcErrors, seconds);
}

}  // namespace

const char* verdictName(Verdict verdict) {
  constexpr std::array<const char*, 6> kNames = {"dead", "bad", "marginal", "unknown", "down", "good"};
  return kNames[static_cast<std::size_t>(verdict)];
}

PortHealth judge(const PortPlace& place, const PortLook& now, const PortLook* before) {
  if (before != nullptr && !hasCounts(*before)) before = nullptr;
  PortHealth port;
  port.place = place;
  port.runningRate = now.runningRate;
  port.media = now.media;
  if (now.rate) {
    port.configRate = now.rate->configRate;
    port.streamEnabled = now.rate->streamEnabled;
  }
  fillErrors(port, now, before);
  if (const auto finding = judgePort(place, now)) {
    port.verdict = finding->verdict;
    port.reason = finding->reason;
  } else {
    judgeLinks(port, now, before != nullptr);
  }
  return port;
}

void sortWorstFirst(std::vector<PortHealth>& ports) {
  std::stable_sort(ports.begin(), ports.end(), [](const PortHealth& a, const PortHealth& b) {
    return std::tie(a.verdict, a.place.asic, a.place.port) < std::tie(b.verdict, b.place.asic, b.place.port);
  });
}

}  // namespace serdesctl
