// How well ports run, judged by what the tool tells of them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "serdesctl/tables/records.h"

namespace serdesctl {

// The worst first. Down: it does not run, and nobody said that it should. Unknown: it may be anything.
enum class Verdict { kDead, kBad, kMarginal, kUnknown, kDown, kGood };

const char* verdictName(Verdict verdict);

// What one look at a port told.
struct PortLook {
  double atS = 0;                          // when its counters were read, on any clock
  std::optional<RateValues> rate;          // nothing: it could not be read
  std::optional<std::string> runningRate;  // nothing: not shown
  std::optional<std::string> media;
  std::vector<DfeStats> links;  // its receive links, without values where the tool has no layout
  std::string complaint;        // why something could not be read
};

struct PortPlace {
  std::uint32_t asic = 0;
  std::uint32_t port = 0;
  std::optional<std::uint32_t> userPort;
  std::optional<std::string> portType;
  std::string serDesType;  // of its receive side
};

// Errors a second: between these bounds, which are one number where both counts were exact.
struct ErrorRate {
  double lowest = 0;
  double highest = 0;
};

struct PortHealth {
  PortPlace place;
  std::optional<std::string> configRate;
  std::optional<std::string> runningRate;
  std::optional<std::string> media;
  std::optional<bool> streamEnabled;
  std::optional<std::uint32_t> link;  // the worst one, which the values are of
  std::optional<std::int32_t> amin;
  std::optional<std::int32_t> ap;
  std::optional<Count> decodeErrors;  // the port's
  std::optional<Count> crcErrors;
  std::optional<ErrorRate> decodeErrorRate;  // with two looks
  std::optional<ErrorRate> crcErrorRate;
  Verdict verdict = Verdict::kUnknown;
  std::string reason;

  // A port that should run, and does not do it well.
  bool failing() const {
    return verdict == Verdict::kDead || verdict == Verdict::kBad;
  }
};

// Judges a port by one look, or by two of which `before` is the first.
PortHealth judge(const PortPlace& place, const PortLook& now, const PortLook* before);

// The worst first, then by ASIC and port.
void sortWorstFirst(std::vector<PortHealth>& ports);

template <typename Visit>
void eachErrorRateField(const char* name, const char* lowest, const char* highest, const std::optional<ErrorRate>& rate,
                        Visit&& visit) {
  const bool exact = rate && rate->lowest == rate->highest;
  visit(name, exact ? std::optional(rate->lowest) : std::nullopt);
  visit(lowest, rate ? std::optional(rate->lowest) : std::nullopt);
  visit(highest, rate ? std::optional(rate->highest) : std::nullopt);
}

template <typename Visit>
void eachField(const PortHealth& r, Visit&& visit) {
  visit("asic", r.place.asic);
  visit("port", r.place.port);
  visit("user_port", r.place.userPort);
  visit("port_type", r.place.portType);
  visit("serdes_type", r.place.serDesType);
  visit("verdict", std::string(verdictName(r.verdict)));
  visit("reason", r.reason);
  visit("config_rate", r.configRate);
  visit("running_rate", r.runningRate);
  visit("media", r.media);
  visit("stream_enabled", r.streamEnabled);
  visit("link", r.link);
  visit("amin", r.amin);
  visit("ap", r.ap);
  eachCountField("decode_errors", "decode_errors_exact", r.decodeErrors, visit);
  eachCountField("crc_errors", "crc_errors_exact", r.crcErrors, visit);
  eachErrorRateField("decode_errors_per_s", "decode_errors_per_s_min", "decode_errors_per_s_max", r.decodeErrorRate,
                     visit);
  eachErrorRateField("crc_errors_per_s", "crc_errors_per_s_min", "crc_errors_per_s_max", r.crcErrorRate, visit);
}

}  // namespace serdesctl
