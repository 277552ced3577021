// Plans as JSON: for programs, to be kept, and in the store of runs.
#pragma once

#include <string>
#include <vector>

#include "serdesctl/formats/json_object.h"
#include "serdesctl/formats/reports.h"
#include "serdesctl/plan/plan.h"
#include "serdesctl/state/json_place.h"

namespace serdesctl {

Json differenceJson(const Difference& difference);
Difference readDifference(const JsonPlace& place);
Json stepsJson(const std::vector<PlannedStep>& steps);
std::vector<PlannedStep> readSteps(const JsonPlace& place);

// A plan with what it was made of, so that it can be made again and compared.
struct KeptPlan {
  Origin origin;
  std::string source;    // what is wanted, as people call it
  std::string topology;  // of the switch that it is for
  bool throughCache = false;
  SwitchState wanted;
  std::vector<PlannedStep> steps;
  std::vector<Impossible> impossible;
};

// A number of a text.
std::uint64_t hashOf(std::string_view text);

// Differs for switches of other ports, links, cores or SerDes types.
std::string topologyOf(const SwitchState& state);

// With what is wanted, as a file to be kept; without, as a report.
Json planJson(const KeptPlan& plan, bool withWanted);
bool isPlan(const Json& json);
KeptPlan readPlan(const Json& json, const std::string& name);

}  // namespace serdesctl
