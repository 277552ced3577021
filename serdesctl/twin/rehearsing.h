// Commands tried on a twin: what they change, which of them are refused, and how ports fare afterwards.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "serdesctl/formats/reports.h"
#include "serdesctl/health/judging.h"
#include "serdesctl/run/script.h"
#include "serdesctl/session/conversation.h"
#include "serdesctl/state/compare.h"
#include "serdesctl/state/switch_state.h"

namespace serdesctl {

// A command that is refused, or something that cannot be done by any.
struct Refusal {
  std::string place;    // "FILE:LINE"
  std::string command;  // empty: told before there was one
  std::string reason;
};

template <typename Visit>
void eachField(const Refusal& r, Visit&& visit) {
  visit("place", r.place);
  visit("command", r.command);
  visit("reason", r.reason);
}

// A port that fares otherwise.
struct PortTrend {
  PortHealth before;
  PortHealth after;
  bool worse = false;
  std::string how;
};

struct RehearsalResult {
  std::vector<Refusal> refused;
  Comparison changes;
  std::vector<PortTrend> ports;  // the worse ones first

  bool anyWorse() const {
    return !ports.empty() && ports.front().worse;
  }
  bool good() const {
    return refused.empty() && !anyWorse();
  }
};

// What is to be tried, and what of it is refused beforehand.
struct Rehearsed {
  Script steps;
  std::vector<Refusal> refused;
};

// Told the twin as it starts, and the tool that runs on it.
using ReadRehearsed = std::function<Rehearsed(Conversation& tool, const SwitchState& now)>;

// Starts a simulated switch as the description says, in a time of its own, and tries the commands on it, also those
// after one that is refused. Pauses are left out, and what a loop repeats is run once. Nothing of it is left behind.
RehearsalResult rehearseOn(const std::string& description, Seconds timeout, const ReadRehearsed& read);

std::string jsonReport(const RehearsalResult& result, const Origin& origin);
std::string textReport(const RehearsalResult& result, bool colour);

// What is refused, and how ports fare: a line each.
std::string refusalsText(const RehearsalResult& result);
std::string trendsText(const RehearsalResult& result);

}  // namespace serdesctl
