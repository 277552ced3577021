// Changing a switch: asking, sending, and saying how it ended.
#include "serdesctl/subcommands/changing.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <utility>

#include "serdesctl/apply/changing.h"
#include "serdesctl/base/errors.h"
#include "serdesctl/base/files.h"
#include "serdesctl/base/output.h"
#include "serdesctl/base/people.h"
#include "serdesctl/journal/journal.h"
#include "serdesctl/state/capture.h"
#include "serdesctl/subcommands/plan_text.h"
#include "serdesctl/subcommands/rehearsals.h"

namespace serdesctl {
namespace {

constexpr Seconds kBetweenLooks{0.2};

std::string readLine() {
  std::array<char, 256> text{};
  const ssize_t count = ::read(STDIN_FILENO, text.data(), text.size());
  return {text.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
}

// Whether a line that was typed is a yes; an empty one is where nothing but a yes is waited for.
bool isYes(const std::string& typed, bool emptyToo) {
  return typed.starts_with('y') || typed.starts_with('Y') || (emptyToo && typed.starts_with('\n'));
}

// Whether somebody can answer here: a process in the background would be stopped by reading.
bool isPersonThere() {
  return ::isatty(STDIN_FILENO) != 0 && ::tcgetpgrp(STDIN_FILENO) == ::getpgrp();
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
  if (!isPersonThere()) throw UsageError("nobody can be asked: without a terminal, --yes says yes");
  forgetWhatWasTyped();
  (void)writeAll(STDERR_FILENO, "Send " + commandCount(commands) + "? [y/N] ");
  if (!isYes(typedLine(), false)) throw UsageError("nothing was sent");
}

// Enter or y at the terminal, or serdesctl confirm elsewhere.
bool waitForConfirmation(const OpenRun& run, TimePoint until) {
  const bool atTerminal = isPersonThere();
  if (atTerminal) forgetWhatWasTyped();
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

std::string unreadText(const std::vector<Unread>& unread) {
  std::string text;
  for (const Unread& one : unread) {
    text += "  ASIC " + std::to_string(one.asic) + (one.port ? " port " + std::to_string(*one.port) : "") + " " +
            one.what + " cannot be read: " + one.why + "\n";
  }
  return text;
}

// Says how it ended, and gives the exit status.
int report(const ChangeResult& result, const std::string& run, const std::string& undo) {
  const int failed = result.exitStatus != 0 ? result.exitStatus : int{kFailed};
  switch (result.state) {
    case RunState::kDone:
      if (!result.besides.empty()) complain("other settings have changed with it:\n" + differencesText(result.besides));
      print("verified: run " + run + "\n");
      return kDone;
    case RunState::kDiffers:
      print("not as wanted after run " + run + ", which " + undo + " takes back:\n" +
            differencesText(result.remaining));
      return kFailed;
    case RunState::kRolledBack:
      complain(result.reason + ": rolled back, the switch is as before");
      return failed;
    case RunState::kFailed:
      complain(result.reason + ": not all could be rolled back; " + undo + " tries again:\n" +
               differencesText(result.remaining) + unreadText(result.unread));
      return failed;
    default:
      complain(result.reason + "; what has been changed can be taken back: " + undo);
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
  const int status = report(result, record.run, commandFor(options.common.target, "undo " + record.run));
  if (result.state != RunState::kInterrupted) closeTool(opened.tool, opened.target);
  return status;
}

}  // namespace serdesctl
