// A twin of a switch: a description that the simulated switch starts from, and how well it fits.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "serdesctl/formats/reports.h"
#include "serdesctl/state/switch_state.h"

namespace serdesctl {

// A receive link of the twin, beside what the switch showed. Nothing where that was not shown.
struct TwinLink {
  std::uint32_t asic = 0;
  std::uint32_t port = 0;
  std::optional<std::uint32_t> userPort;
  std::uint32_t link = 0;
  std::string farEnd;  // "itself", "partner", "nothing"
  std::string medium;  // "board", "copper", "optical"
  std::string unit;    // of lengths
  double length = 0;
  std::optional<double> shortest;  // that fits hardly worse
  std::optional<double> longest;
  std::optional<double> residual;  // steps, of all links of the port
  std::optional<double> h1;
  std::optional<double> h1Twin;
  std::optional<double> ap;
  std::optional<double> apTwin;
  std::optional<double> amin;
  std::optional<double> aminTwin;
  std::string note;
};

template <typename Visit>
void eachField(const TwinLink& r, Visit&& visit) {
  visit("asic", r.asic);
  visit("port", r.port);
  visit("user_port", r.userPort);
  visit("link", r.link);
  visit("far_end", r.farEnd);
  visit("medium", r.medium);
  visit("unit", r.unit);
  visit("length", r.length);
  visit("shortest", r.shortest);
  visit("longest", r.longest);
  visit("residual", r.residual);
  visit("h1", r.h1);
  visit("h1_twin", r.h1Twin);
  visit("ap", r.ap);
  visit("ap_twin", r.apTwin);
  visit("amin", r.amin);
  visit("amin_twin", r.aminTwin);
  visit("note", r.note);
}

struct Twin {
  std::string description;
  std::vector<TwinLink> links;
  std::vector<std::string> notes;  // what of the switch a description cannot say
};

// `origin` says in the description whose twin it is.
Twin makeTwin(const SwitchState& state, const std::string& origin);

std::string jsonReport(const Twin& twin, const Origin& origin);
std::string textReport(const Twin& twin);

}  // namespace serdesctl
