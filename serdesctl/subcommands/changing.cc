// Planning and changing: reading wishes, asking, and saying how it ended.
#include "serdesctl/subcommands/changing.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <ctime>
#include <utility>

#include "serdesctl/apply/changing.h"
#include "serdesctl/asking/asked_switch.h"
#include "serdesctl/base/errors.h"
#include "serdesctl/base/files.h"
#include "serdesctl/base/output.h"
#include "serdesctl/base/people.h"
#include "serdesctl/journal/journal.h"
#include "serdesctl/plan/places.h"
#include "serdesctl/settings/settings_file.h"
#include "serdesctl/settings/wanted.h"
#include "serdesctl/state/capture.h"
#include "serdesctl/state/json_place.h"
#include "serdesctl/subcommands/rehearsals.h"

namespace serdesctl {
namespace {

constexpr std::size_t kMostBytes = 64U << 20;
constexpr std::size_t kMostNamed = 20;  // differences in one message
constexpr Seconds kBetweenLooks{0.2};

std::string line(const Difference& d) {
  return textOf(d.place) + " " + d.parameter + " " + textOf(d.before) + " -> " + textOf(d.after);
}

std::string lines(const std::vector<Difference>& differences) {
  std::string text;
  for (std::size_t i = 0; i < std::min(differences.size(), kMostNamed); ++i)
    text += "  " + line(differences[i]) + "\n";
  if (differences.size() > kMostNamed) text += "  and " + std::to_string(differences.size() - kMostNamed) + " more\n";
  return text;
}

// Where in its port a setting is: "tx link 0 ", "8G rx cache ".
std::string withinPort(const SettingPlace& place) {
  if (place.rate) return *place.rate + " " + place.side.value_or("") + " cache ";
  return place.link ? place.side.value_or("") + " link " + std::to_string(*place.link) + " " : "";
}

// A save of other ports is of another switch.
void refuseOtherSwitch(const std::string& file, const SwitchState& now, const SwitchState& wanted) {
  const Comparison comparison = compare(now, wanted);
  for (const Difference& d : comparison.hardware) {
    const AsicState* const asic = d.place.asic ? findAsic(wanted, *d.place.asic) : nullptr;
    const bool isWanted = d.place.port && asic != nullptr && findPort(*asic, *d.place.port) != nullptr;
    if (isWanted && d.parameter != "user_port") throw UsageError(file + " is of another switch: " + line(d));
  }
}

// Ports whose topology a wish does not tell are those that there are.
void completeTopology(SwitchState& wanted, const SwitchState& now) {
  for (AsicState& asic : wanted.asics) {
    const AsicState* const known = findAsic(now, asic.asic);
    if (known == nullptr || !asic.config.ports.empty()) continue;
    asic.config = known->config;
    asic.cores = known->cores;
  }
}

void refuseOutdated(const std::string& file, const KeptPlan& kept, const Plan& plan, const SwitchState& now) {
  if (kept.topology != topologyOf(now)) throw UsageError(file + ": the plan is for another switch");
  std::vector<Difference> changed;
  std::vector<Difference> seen;
  for (const PlannedStep& step : kept.steps) {
    for (const Difference& change : step.changes) {
      const auto same = [&](const Difference& d) { return sameSetting(d, change); };
      if (std::any_of(seen.begin(), seen.end(), same)) continue;
      seen.push_back(change);
      const SettingValue is = valueAt(now, change);
      if (is != change.before) changed.push_back({change.place, change.parameter, change.before, is});
    }
  }
  if (changed.empty() && kept.steps == plan.steps) return;
  throw UsageError(file + ": the switch has changed since the plan was made\n" + lines(changed) + "make a new plan");
}

bool isJson(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first != std::string::npos && text[first] == '{';
}

Wish planned(Wish wish, const SwitchState& now) {
  completeTopology(wish.wanted, now);
  wish.plan = makePlan(now, wish.wanted, {.throughCache = wish.throughCache});
  return wish;
}

Wish saveWish(const std::string& text, const std::string& file, const SwitchState& now, bool throughCache) {
  Wish wish = {.source = file, .wanted = parseSave(text, file).state, .throughCache = throughCache, .plan = {}};
  refuseOtherSwitch(file, now, wish.wanted);
  return planned(std::move(wish), now);
}

struct PortChanges {
  std::uint32_t asic = 0;
  std::uint32_t ports = 0;
  Effect effect = Effect::kNothing;
  std::string text;
};

Effect effectOn(const Plan& plan, std::uint32_t asic, std::uint32_t port) {
  Effect effect = Effect::kNothing;
  for (const PlannedStep& step : plan.steps) {
    if (step.asic == asic && (step.ports >> port & 1) != 0) effect = std::max(effect, step.effect);
  }
  return effect;
}

// Ports that change alike together.
std::vector<PortChanges> changesByPort(const Plan& plan, const SwitchState& now) {
  std::vector<PortChanges> single;
  for (const Difference& d : compare(now, plan.after).settings) {
    const std::uint32_t asic = d.place.asic.value_or(0), port = d.place.port.value_or(0);
    const std::uint32_t bit = std::uint32_t{1} << port;
    if (single.empty() || single.back().asic != asic || single.back().ports != bit) {
      single.push_back({asic, bit, effectOn(plan, asic, port), ""});
    }
    single.back().text += "  " + withinPort(d.place) + d.parameter + " " + textOf(d.before) + " -> " + textOf(d.after);
    single.back().text += "\n";
  }
  std::vector<PortChanges> together;
  for (const PortChanges& port : single) {
    const auto alike = std::find_if(together.begin(), together.end(), [&](const PortChanges& other) {
      return other.asic == port.asic && other.effect == port.effect && other.text == port.text;
    });
    if (alike == together.end()) {
      together.push_back(port);
    } else {
      alike->ports |= port.ports;
    }
  }
  return together;
}

// What the effect means for a link.
const char* effectText(Effect effect) {
  constexpr std::array<const char*, 4> kTexts = {"links are not touched", "links go on, receivers adapt",
                                                 "links retrain", "links go down"};
  return kTexts[static_cast<std::size_t>(effect)];
}

std::string commandCount(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " command" : " commands");
}

std::string readLine() {
  std::array<char, 256> text{};
  const ssize_t count = ::read(STDIN_FILENO, text.data(), text.size());
  return {text.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
}

// Whether a line that was typed is a yes; an empty one is where nothing but a yes is waited for.
bool isYes(const std::string& typed, bool emptyToo) {
  return typed.starts_with('y') || typed.starts_with('Y') || (emptyToo && typed.starts_with('\n'));
}

// What was typed before a question is no answer to it.
void forgetWhatWasTyped() {
  (void)::tcflush(STDIN_FILENO, TCIFLUSH);
}

std::string typedLine() {
  pollfd input = {.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
  if (waitUntil({&input}, after(Seconds(86400))) != Wakeup::kReady) throwIfInterrupted();
  return readLine();
}

void askPerson(bool yes, std::size_t commands) {
  if (yes) return;
  if (::isatty(STDIN_FILENO) == 0) throw UsageError("nobody can be asked: without a terminal, --yes says yes");
  forgetWhatWasTyped();
  (void)writeAll(STDERR_FILENO, "Send " + commandCount(commands) + "? [y/N] ");
  if (!isYes(typedLine(), false)) throw UsageError("nothing was sent");
}

// Enter or y at the terminal, or serdesctl confirm elsewhere.
bool waitForConfirmation(const OpenRun& run, TimePoint until) {
  const bool atTerminal = ::isatty(STDIN_FILENO) != 0;
  forgetWhatWasTyped();
  complain("waiting until " + run.record().confirmBy + " for a confirmation: " + (atTerminal ? "Enter here, or " : "") +
           "serdesctl confirm " + run.record().run);
  while (Clock::now() < until) {
    if (run.isConfirmed()) return true;
    pollfd input = {.fd = atTerminal ? STDIN_FILENO : -1, .events = POLLIN, .revents = 0};
    const Wakeup wakeup = waitUntil({&input}, std::min(until, after(kBetweenLooks)));
    throwIfInterrupted();
    if (wakeup == Wakeup::kReady) return isYes(readLine(), true);
  }
  return run.isConfirmed();
}

RunRecord recordOf(const RunJournal& journal, const Target& target, const std::string& what, const FoundRun* undone) {
  RunRecord record;
  record.run = journal.run();
  record.time = utcText(utcNow());
  record.user = userName();
  record.from = origin();
  record.host = hostName();
  record.target = target.name;
  record.what = what;
  if (undone != nullptr) record.undoes = undone->record.run;
  return record;
}

// Where a run cannot be written down nothing is sent.
template <typename Open>
auto openToWrite(Open open) {
  try {
    return open();
  } catch (const WriteError& error) {
    throw UsageError(error.what());
  }
}

void print(const std::string& text) {
  Output output(STDOUT_FILENO);
  output.write(text);
  output.flush();
}

std::string wayBack(const RunRecord& run) {
  return "serdesctl undo " + run.run;
}

std::string unreadText(const std::vector<Unread>& unread) {
  std::string text;
  for (const Unread& one : unread) {
    text += "  ASIC " + std::to_string(one.asic) + (one.port ? " port " + std::to_string(*one.port) : "") + " " +
            one.what + " cannot be read: " + one.why + "\n";
  }
  return text;
}

// Says how it ended, and gives the exit status.
int report(const ChangeResult& result, const RunRecord& run) {
  const int failed = result.exitStatus != 0 ? result.exitStatus : int{kFailed};
  switch (result.state) {
    case RunState::kDone:
      if (!result.besides.empty()) complain("other settings have changed with it:\n" + lines(result.besides));
      print("verified: run " + run.run + "\n");
      return kDone;
    case RunState::kDiffers:
      print("not as wanted:\n" + lines(result.remaining));
      return kFailed;
    case RunState::kRolledBack:
      complain(result.reason + ": rolled back, the switch is as before");
      return failed;
    case RunState::kFailed:
      complain(result.reason + ": not all could be rolled back; " + wayBack(run) + " tries again:\n" +
               lines(result.remaining) + unreadText(result.unread));
      return failed;
    default:
      complain(result.reason + "; what has been changed can be taken back: " + wayBack(run));
      return failed;
  }
}

}  // namespace

OpenedSwitch::OpenedSwitch(const CommonOptions& options)
    : target(chosenTarget(options)), tool(target, Seconds(options.timeout)) {
  const CaptureChoice choice = {.asics = std::nullopt, .ports = {}, .registers = false, .statistics = false};
  now = {.state = capture(tool, choice), .origin = {.target = target.name, .time = utcTime(std::time(nullptr))}};
  if (!now.state.unread.empty()) complain("not all of the switch can be read:\n" + unreadText(now.state.unread));
}

Wish readWish(const std::string& file, const SwitchState& now, bool throughCache) {
  const std::string text = readFile(file, kMostBytes);
  if (!isJson(text)) {
    Wish wish = {.source = file,
                 .wanted = wantedState(parseSettings(text, file), now),
                 .throughCache = throughCache,
                 .plan = {}};
    return planned(std::move(wish), now);
  }
  const Json json = parseJson(text, file);
  if (!isPlan(json)) return saveWish(text, file, now, throughCache);
  const KeptPlan kept = readPlan(json, file);
  Wish wish =
      planned({.source = kept.source, .wanted = kept.wanted, .throughCache = kept.throughCache, .plan = {}}, now);
  refuseOutdated(file, kept, wish.plan, now);
  return wish;
}

Wish readRestoration(const ChangeOptions& options, const SwitchState& now) {
  SwitchState wanted = parseSave(readFile(options.file, kMostBytes), options.file).state;
  if (!options.ports.empty() || options.asic) {
    std::erase_if(wanted.asics, [&](const AsicState& asic) { return asic.asic != options.asic.value_or(0); });
    for (AsicState& asic : wanted.asics) {
      if (options.ports.empty()) continue;
      const std::uint32_t ports = portsOfList(options.ports, asic.config);
      std::erase_if(asic.ports, [&](const PortState& port) { return (ports >> port.port & 1) == 0; });
    }
  }
  refuseOtherSwitch(options.file, now, wanted);
  return planned(
      {.source = options.file, .wanted = std::move(wanted), .throughCache = options.throughCache, .plan = {}}, now);
}

std::string impossibleText(const Plan& plan) {
  std::string text;
  for (const Impossible& one : plan.impossible) {
    text += "cannot be done: " + textOf(one.place) + " " + one.what + " " + one.wanted + ": " + one.reason + " (" +
            one.nearest + ")\n";
  }
  return text;
}

std::string planReport(const Plan& plan, const SwitchState& now) {
  std::string text;
  for (const PortChanges& group : changesByPort(plan, now)) {
    const bool one = std::has_single_bit(group.ports);
    text += "ASIC " + std::to_string(group.asic) + (one ? " port " : " ports ") + listOf(group.ports) + ": " +
            effectText(group.effect) + "\n" + group.text;
  }
  text += impossibleText(plan);
  return text + (plan.steps.empty() ? "nothing to do" : commandCount(plan.steps.size())) + "\n";
}

int changeSwitch(OpenedSwitch& opened, const Options& options, const Wish& wish, const std::string& what,
                 const FoundRun* undone) {
  const ChangeOptions& change = options.change;
  print(planReport(wish.plan, opened.now.state));
  if (!wish.plan.impossible.empty() && !change.partial) {
    throw UsageError("not all can be done; --partial does the rest, and nothing was sent");
  }
  if (wish.plan.steps.empty()) return kDone;
  if (change.rehearse && !rehearsedWell(opened, options.common, wish.plan, wish.source)) return kFailed;
  askPerson(change.yes, wish.plan.steps.size());

  const std::string folder = openToWrite(journalFolder);
  RunJournal journal(JournalFile(folder, complain), opened.target.name, options.common.syslog);
  const RunRecord record = recordOf(journal, opened.target, what, undone);
  OpenRun run = openToWrite([&] { return OpenRun(folder, opened.target, record, opened.now); });
  // A reader that has left does not stop a change half way.
  const ChangeObserver observer = {
      .sending = [](const PlannedStep& step) { (void)writeAll(STDOUT_FILENO, step.command + "\n"); },
      .saying = complain};
  ChangeRequest request = {.wanted = wish.wanted,
                           .choice = {.throughCache = wish.throughCache},
                           .guard = {},
                           .confirm = {},
                           .wait = [&](TimePoint until) { return waitForConfirmation(run, until); }};
  if (change.guard) request.guard = Seconds(*change.guard);
  if (change.confirm) request.confirm = Seconds(*change.confirm);
  Changer changer(opened.tool, journal, run, opened.target, opened.now.state, observer);
  const ChangeResult result = changer.change(wish.plan, request);
  const int status = report(result, run.record());
  if (result.state != RunState::kInterrupted) closeTool(opened.tool, opened.target);
  return status;
}

}  // namespace serdesctl
