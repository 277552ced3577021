// serdesctl health: every port in one view, the worst first.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "serdesctl/asking/asked_switch.h"
#include "serdesctl/base/errors.h"
#include "serdesctl/base/output.h"
#include "serdesctl/base/tool_facts.h"
#include "serdesctl/formats/reports.h"
#include "serdesctl/health/looking.h"
#include "serdesctl/journal/journal.h"
#include "serdesctl/rehearsal/rehearsal.h"
#include "serdesctl/subcommands/subcommands.h"
#include "serdesctl/tables/config_text.h"
#include "serdesctl/tables/parse.h"

namespace serdesctl {
namespace {

using Looks = std::map<std::uint32_t, PortLook>;

double secondsNow() {
  return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}

// An ASIC with the ports that are looked at.
struct AskedPorts {
  AskedSwitch asked;
  std::uint32_t ports = 0;
  Looks first;
  Looks last;
};

// A command about the ports that the command line names, all unless told.
Words commandAbout(const std::vector<std::string>& ports) {
  return splitWords("showRate " + (ports.empty() ? "all" : joinedWords(ports)));
}

std::uint32_t portsOf(const HealthOptions& options, const ConfigText& config) {
  return portsOfList(options.ports.empty() ? "all" : joinedWords(options.ports), config);
}

class Health {
 public:
  Health(const Options& options, const Target& target)
      : options_(options), target_(target), tool_(target, Seconds(options.common.timeout)) {}

  HealthReport report() {
    ask();
    if (options_.health.clear) clear();
    look(&AskedPorts::last);
    if (options_.health.interval) {
      for (AskedPorts& asic : asics_)
        asic.first = asic.last;
      sleepUntil(after(Seconds(*options_.health.interval)));
      look(&AskedPorts::last);
    }
    return judged();
  }

  void close() {
    if (options_.health.clear) {
      closeTool(tool_, target_);
    } else {
      std::string lastWords;
      (void)tool_.close(lastWords);
    }
  }

  // An ASIC that could not be asked has been complained of.
  bool complete() const {
    return complete_;
  }

 private:
  void ask() {
    const std::uint32_t count = std::min(parseStart(tool_.startText()).hardware.asics, kMostAsics);
    const bool all = options_.health.ports.empty() && !options_.health.asic;
    const std::uint32_t only = options_.health.asic.value_or(0);
    if (!options_.health.ports.empty()) refuseMissing(commandAbout(options_.health.ports), tool_, only);
    for (std::uint32_t asic = all ? 0 : only; asic < (all ? count : only + 1); ++asic) {
      try {
        AskedSwitch asked(tool_, asic);
        const std::uint32_t ports = portsOf(options_.health, asked.config());
        asics_.push_back({.asked = std::move(asked), .ports = ports, .first = {}, .last = {}});
      } catch (const RefusedError& error) {
        if (!all) throw;
        complain(error.what());
        complete_ = false;
      }
    }
  }

  // Clearing changes the switch: it is in the journal before it is sent.
  void clear() {
    RunJournal journal(JournalFile(journalFolder(), complain), target_.name, options_.common.syslog);
    bool sent = false;
    for (AskedPorts& asic : asics_) {
      if (asic.ports == 0) continue;
      const std::string number = std::to_string(asic.asked.config().asic);
      const std::vector<std::string> commands = {"setAsicNum " + number, "clearErrors " + listOf(asic.ports)};
      try {
        journal.intend(commands);
      } catch (const WriteError& error) {
        if (sent) throw;
        throw UsageError(error.what());
      }
      sent = true;
      for (const std::string& command : commands)
        send(command, journal);
      complain("cleared the error counters of ports " + listOf(asic.ports) + " of ASIC " + number);
    }
  }

  void send(const std::string& command, ChangeLog& journal) {
    Answer answer;
    try {
      answer = tool_.ask(command);
    } catch (const Error& error) {
      journal.lost(error.what());
      journal.dropRest();
      throw;
    }
    journal.answered(answer.status);
    if (answer.status == CMD_OK) return;
    journal.dropRest();
    throw RefusedError(command, answer);
  }

  void look(Looks AskedPorts::*looks) {
    for (AskedPorts& asic : asics_) {
      if (asics_.size() > 1 || !complete_ || options_.health.clear) asic.asked.select();
      asic.*looks = lookAt(asic.asked, asic.ports, secondsNow);
    }
  }

  HealthReport judged() const {
    HealthReport report;
    if (asics_.size() == 1) report.asic = asics_.front().asked.config().asic;
    report.intervalS = options_.health.interval;
    report.cleared = options_.health.clear;
    for (const AskedPorts& asic : asics_) {
      for (const auto& [port, look] : asic.last) {
        const auto before = asic.first.find(port);
        report.ports.push_back(
            judge(placeOf(asic.asked.config(), port), look, before == asic.first.end() ? nullptr : &before->second));
      }
    }
    sortWorstFirst(report.ports);
    return report;
  }

  const Options& options_;
  const Target& target_;
  Conversation tool_;
  std::vector<AskedPorts> asics_;
  bool complete_ = true;
};

}  // namespace

int performHealth(const Options& options) {
  const Target target = chosenTarget(options.common);
  Health health(options, target);
  const HealthReport report = health.report();
  const Origin origin = {.target = target.name, .time = utcTime(std::time(nullptr))};
  Output output(STDOUT_FILENO);
  output.write(options.health.json ? jsonReport(report, origin) : textReport(report));
  output.flush();
  health.close();
  const bool failing = std::any_of(report.ports.begin(), report.ports.end(), [](const auto& p) { return p.failing(); });
  return failing || !health.complete() ? kFailed : kDone;
}

}  // namespace serdesctl
