// A simulated switch for as long as a rehearsal lasts.
#include "serdesctl/twin/rehearsing.h"

#include <stdlib.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <utility>

#include "serdesctl/apply/guard.h"
#include "serdesctl/asking/asked_switch.h"
#include "serdesctl/base/errors.h"
#include "serdesctl/base/files.h"
#include "serdesctl/base/tool_facts.h"
#include "serdesctl/formats/json_object.h"
#include "serdesctl/health/looking.h"
#include "serdesctl/journal/change_log.h"
#include "serdesctl/rehearsal/learning.h"
#include "serdesctl/run/runner.h"
#include "serdesctl/state/capture.h"
#include "serdesctl/state/diff_report.h"
#include "serdesctl/target/target.h"

namespace serdesctl {
namespace {

// A platform call takes so long in the twin's time: two looks are seconds apart.
constexpr unsigned kMicrosecondsPerCall = 10'000;

class TemporaryFolder {
 public:
  TemporaryFolder() {
    const std::string folder = environmentVariable("TMPDIR").value_or("/tmp");
    std::string name = folder + "/serdesctl.XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) throw UsageError(folder + ": " + errorText());
    path_ = name;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string file(const char* name) const {
    return (path_ / name).string();
  }

 private:
  std::filesystem::path path_;
};

// The caller's switch, trace and state have nothing to do with the twin.
Target twinTarget(const TemporaryFolder& folder, const std::string& description) {
  const std::string file = folder.file("twin.toml");
  writeFileWhole(file, description);
  Target target = findTarget({.target = "sim:" + file, .state = {}});
  auto& environment = target.tool.environment;
  environment.emplace_back("SERDES_SIMULATOR_CLOCK", "virtual:" + std::to_string(kMicrosecondsPerCall));
  environment.emplace_back("SERDES_SIMULATOR_STATE", "");
  environment.emplace_back("SERDES_SIMULATOR_TRACE", folder.file("trace"));
  target.name = "twin";
  target.lockFile.clear();
  return target;
}

// A rehearsal is in no journal.
class NoLog : public ChangeLog {
 public:
  void intend(std::span<const std::string>) override {}
  void answered(CmdStatus) override {}
  void lost(const std::string&) override {}
  void dropRest() override {}
};

class Refusals : public RunObserver {
 public:
  explicit Refusals(std::vector<Refusal>& refused) : refused_(refused) {}

  void starting(const Step&) override {}
  void printed(std::string_view) override {}
  void ended(const Step& step, const StepResult& result) override {
    if (result.asExpected || isKnown(step)) return;
    const std::string complaint = result.output.substr(0, result.output.find('\n'));
    std::string reason = statusMessage(result.status);
    if (step.expected != CMD_OK) reason += ", and status " + std::to_string(step.expected) + " was expected";
    refused_.push_back({step.place(), step.command(), reason + (complaint.empty() ? "" : " (" + complaint + ")")});
  }

 private:
  // Told beforehand, as the line of a script. The commands of a plan all stand in one place.
  bool isKnown(const Step& step) const {
    return step.line != 0 && std::any_of(refused_.begin(), refused_.end(),
                                         [&](const Refusal& refusal) { return refusal.place == step.place(); });
  }

  std::vector<Refusal>& refused_;
};

class TwinRun {
 public:
  TwinRun(const std::string& description, Seconds timeout) : tool_(twinTarget(folder_, description), timeout) {
    const std::uint32_t asics = parseStart(tool_.startText()).hardware.asics;
    for (std::uint32_t asic = 0; asic < std::min(asics, kMostAsics); ++asic)
      asics_.emplace_back(tool_, asic);
    select(0);
  }

  RehearsalResult run(const ReadRehearsed& read) {
    RehearsalResult result;
    const SwitchState before = capture(tool_, {});
    const std::vector<Judged> judgedBefore = judged();
    Rehearsed rehearsed = read(tool_, before);
    result.refused = std::move(rehearsed.refused);
    Refusals observer(result.refused);
    NoLog log;
    const Script steps = immediate(std::move(rehearsed.steps));
    (void)runSteps(steps, true, tool_, observer, log);
    sortBySteps(result.refused, steps);
    const std::vector<Judged> judgedAfter = judged();
    result.changes = compare(before, capture(tool_, {}));
    result.changes.observations.clear();
    result.ports = trends(judgedBefore, judgedAfter);
    std::string lastWords;
    (void)tool_.close(lastWords);
    return result;
  }

 private:
  void select(std::uint32_t asic) {
    (void)askForOutput(tool_, "setAsicNum " + std::to_string(asic));
  }

  // Those without a command were told first, and stay there.
  static void sortBySteps(std::vector<Refusal>& refused, const Script& steps) {
    const auto index = [&](const Refusal& refusal) {
      const auto found =
          std::find_if(steps.begin(), steps.end(), [&](const Step& step) { return step.place() == refusal.place; });
      return found == steps.end() ? -1 : found - steps.begin();
    };
    std::stable_sort(refused.begin(), refused.end(),
                     [&](const Refusal& a, const Refusal& b) { return index(a) < index(b); });
  }

  // Nobody waits for a twin.
  static Script immediate(Script steps) {
    std::erase_if(steps, [](const Step& step) { return step.words.empty(); });
    for (Step& step : steps)
      step.words = innermostCommand(step.words);
    return steps;
  }

  // Each call is a line of the trace.
  double secondsNow() const {
    std::ifstream trace(folder_.file("trace"), std::ios::binary);
    const auto calls = std::count(std::istreambuf_iterator<char>(trace), std::istreambuf_iterator<char>(), '\n');
    return static_cast<double>(calls) * kMicrosecondsPerCall / 1e6;
  }

  static std::uint32_t portsOf(const AskedSwitch& asic) {
    return (std::uint32_t{1} << asic.config().ports.size()) - 1;
  }

  using Looks = std::map<std::uint32_t, PortLook>;
  std::vector<Looks> look() {
    std::vector<Looks> looks;
    for (AskedSwitch& asic : asics_) {
      asic.select();
      looks.push_back(lookAt(asic, portsOf(asic), [&] { return secondsNow(); }));
    }
    select(0);
    return looks;
  }

  struct Judged {
    PortLook look;
    PortHealth health;
  };

  // Counters begin anew, for large counts are told roughly.
  std::vector<Judged> judged() {
    for (AskedSwitch& asic : asics_) {
      asic.select();
      const std::string ports = listOf(portsOf(asic));
      if (!ports.empty()) (void)askForOutput(tool_, "clearErrors " + ports);
    }
    const std::vector<Looks> first = look();
    const std::vector<Looks> last = look();
    std::vector<Judged> ports;
    for (std::size_t asic = 0; asic < asics_.size(); ++asic) {
      for (const auto& [port, now] : last[asic])
        ports.push_back({now, judge(placeOf(asics_[asic].config(), port), now, &first[asic].at(port))});
    }
    return ports;
  }

  // What it reads and how it runs. Errors arrive by chance: of a port that is as it was they tell nothing.
  static bool isAsItWas(const PortLook& before, const PortLook& after) {
    const auto readings = [](const PortLook& look) {
      std::vector<std::optional<std::int32_t>> values;
      for (const DfeStats& link : look.links) {
        values.insert(values.end(), {link.ap, link.amin, link.an});
        values.insert(values.end(), link.taps.begin(), link.taps.end());
        values.insert(values.end(), link.evenOddTaps.begin(), link.evenOddTaps.end());
      }
      return values;
    };
    const auto stream = [](const PortLook& look) { return look.rate && look.rate->streamEnabled; };
    return before.runningRate == after.runningRate && stream(before) == stream(after) &&
           readings(before) == readings(after);
  }

  static std::vector<PortTrend> trends(const std::vector<Judged>& before, const std::vector<Judged>& after) {
    std::vector<PortTrend> trends;
    for (std::size_t i = 0; i < std::min(before.size(), after.size()); ++i) {
      if (isAsItWas(before[i].look, after[i].look)) continue;
      const PortHealth& was = before[i].health;
      const PortHealth& is = after[i].health;
      const std::string down = worse(was, is);
      if (down.empty() && worse(is, was).empty()) continue;
      trends.push_back({was, is, !down.empty(), down.empty() ? is.reason : down});
    }
    std::stable_partition(trends.begin(), trends.end(), [](const PortTrend& trend) { return trend.worse; });
    return trends;
  }

  TemporaryFolder folder_;
  Conversation tool_;
  std::vector<AskedSwitch> asics_;
};

std::string aminText(const PortHealth& port) {
  return port.amin ? std::to_string(*port.amin) : "-";
}

Json trendJson(const PortTrend& trend) {
  return {{"asic", trend.after.place.asic},
          {"port", trend.after.place.port},
          {"user_port", json(trend.after.place.userPort)},
          {"trend", trend.worse ? "worse" : "better"},
          {"verdict_before", verdictName(trend.before.verdict)},
          {"verdict_after", verdictName(trend.after.verdict)},
          {"amin_before", json(trend.before.amin)},
          {"amin_after", json(trend.after.amin)},
          {"how", trend.how}};
}

}  // namespace

RehearsalResult rehearseOn(const std::string& description, Seconds timeout, const ReadRehearsed& read) {
  return TwinRun(description, timeout).run(read);
}

std::string jsonReport(const RehearsalResult& result, const Origin& origin) {
  Json report = envelope("rehearsal", "", origin.target, origin.time, std::nullopt);
  report["good"] = result.good();
  report["refused"] = objects(result.refused);
  report["changes"] = differenceRecords(result.changes);
  Json ports = Json::array();
  for (const PortTrend& trend : result.ports)
    ports.push_back(trendJson(trend));
  report["ports"] = std::move(ports);
  return jsonLine(report);
}

std::string textReport(const RehearsalResult& result, bool colour) {
  std::string text = textDiff(result.changes, {"before", "rehearsed"}, colour);
  if (text.empty()) text = "no setting would change\n";
  text += refusalsText(result) + trendsText(result);
  return text + (result.anyWorse() ? "" : "no port would be worse\n");
}

std::string refusalsText(const RehearsalResult& result) {
  std::string text;
  for (const Refusal& refusal : result.refused) {
    text += "refused: " + refusal.place + ": " + (refusal.command.empty() ? "" : refusal.command + ": ") +
            refusal.reason + "\n";
  }
  return text;
}

std::string trendsText(const RehearsalResult& result) {
  std::string text;
  for (const PortTrend& trend : result.ports) {
    const auto& [before, after, isWorse, how] = trend;
    text += std::string(isWorse ? "worse" : "better") + ": ASIC " + std::to_string(after.place.asic) + " port " +
            std::to_string(after.place.port) + ": ";
    if (before.verdict != after.verdict) text += std::string(verdictName(before.verdict)) + " -> ";
    text += std::string(verdictName(after.verdict)) + ", Amin " + aminText(before) + " -> " + aminText(after) + ": " +
            after.reason + "\n";
  }
  return text;
}

}  // namespace serdesctl
