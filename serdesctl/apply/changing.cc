// Carrying out plans.
//
// What a speed does to a far end, and what hardware makes of a cache, shows only when it is read back: what is then
// missing is planned and sent anew.
#include "serdesctl/apply/changing.h"

#include <algorithm>
#include <ctime>
#include <exception>
#include <memory>
#include <sstream>
#include <utility>

#include "serdesctl/apply/filling_in.h"
#include "serdesctl/apply/guard.h"
#include "serdesctl/asking/asked_switch.h"
#include "serdesctl/base/errors.h"
#include "serdesctl/base/people.h"
#include "serdesctl/plan/places.h"
#include "serdesctl/plan/plan_json.h"
#include "serdesctl/state/capture.h"
#include "serdesctl/tables/text_cursor.h"

namespace serdesctl {
namespace {

constexpr int kMostRounds = 3;

// Why everything goes back.
class RollBack : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

bool contains(const std::vector<Difference>& list, const Difference& difference) {
  return std::any_of(list.begin(), list.end(), [&](const Difference& d) { return sameSetting(d, difference); });
}

// What is unread is told apart.
bool isUnknown(const Difference& difference) {
  return difference.before == SettingValue();
}

std::vector<Difference> without(std::vector<Difference> list, const std::vector<Difference>& others) {
  std::erase_if(list, [&](const Difference& d) { return contains(others, d); });
  return list;
}

PortsByAsic touchedPorts(const Plan& plan) {
  PortsByAsic ports;
  for (const PlannedStep& step : plan.steps)
    ports[step.asic] |= step.ports;
  return ports;
}

std::vector<std::uint32_t> asicsOf(const SwitchState& state) {
  std::vector<std::uint32_t> asics;
  for (const AsicState& asic : state.asics)
    asics.push_back(asic.asic);
  return asics;
}

std::string changesText(const std::vector<Difference>& changes) {
  Json list = Json::array();
  for (const Difference& change : changes)
    list.push_back(differenceJson(change));
  return list.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// Ports do not turn into others: an ASIC that reads so has not been read.
void setAsideStrangeAsics(const SwitchState& before, SwitchState& state) {
  for (const Difference& d : compare(before, state).hardware) {
    const auto strange = [&](const AsicState& asic) { return d.place.asic == asic.asic; };
    if (std::erase_if(state.asics, strange) == 0) continue;
    state.unread.push_back({.asic = *d.place.asic,
                            .port = d.place.port,
                            .what = d.parameter,
                            .why = "it was " + textOf(d.before) + " and reads as " + textOf(d.after)});
  }
}

std::string firstOf(const std::vector<Unread>& unread) {
  const Unread& one = unread.front();
  return "ASIC " + std::to_string(one.asic) + (one.port ? " port " + std::to_string(*one.port) : "") + ": " + one.what +
         ": " + one.why;
}

}  // namespace

std::vector<Unread> newlyUnread(const SwitchState& before, const SwitchState& now) {
  std::vector<Unread> unread = now.unread;
  std::erase_if(unread, [&](const Unread& one) {
    return std::any_of(before.unread.begin(), before.unread.end(), [&](const Unread& was) {
      return was.asic == one.asic && was.port == one.port && was.what == one.what;
    });
  });
  return unread;
}

Changer::Changer(Conversation& tool, RunJournal& journal, OpenRun& run, const Target& target, const SwitchState& before,
                 ChangeObserver observer)
    : tool_(tool),
      journal_(journal),
      run_(run),
      target_(target.name),
      before_(before),
      predicted_(before),
      observer_(std::move(observer)) {}

ChangeResult Changer::change(const Plan& plan, const ChangeRequest& request) {
  try {
    return end(carryOut(plan, request));
  } catch (const RollBack& reason) {
    return end(rollBack(reason.what()));
  } catch (const RefusedError& error) {
    return end(rollBack(error.what()));
  } catch (const ParseError& error) {
    return end(rollBack(error.what()));
  } catch (const WriteError& error) {
    // Nothing is changed where that cannot be written down.
    if (run_.record().sent != 0) return end(rollBack(error.what()));
    run_.discard();
    throw UsageError(std::string(error.what()) + ": nothing was sent");
  } catch (const Error& error) {
    ChangeResult result = {.state = RunState::kInterrupted, .reason = error.what()};
    if (!tool_.isBroken()) result = rollBack(error.what());
    if (result.exitStatus == 0) result.exitStatus = error.exitStatus();
    return end(std::move(result));
  }
}

ChangeResult Changer::carryOut(const Plan& plan, const ChangeRequest& request) {
  add(plan.steps);
  std::unique_ptr<Guard> guard;
  if (request.guard) {
    guard = std::make_unique<Guard>(tool_, asicsOf(before_), touchedPorts(plan));
    asic_.reset();
  }
  for (const PlannedStep& step : plan.steps)
    send(step);
  ChangeResult result = verify(plan, request);
  watch(request, guard.get());
  return result;
}

// Steps to be sent, with the way back from behind them.
void Changer::add(const std::vector<PlannedStep>& steps) {
  SwitchState then = predicted_;
  for (const PlannedStep& step : steps) {
    for (const Difference& change : step.changes)
      assign(then, change, change.after);
  }
  run_.add(steps, scriptOf(makePlan(then, before_, {.throughCache = true}).steps));
}

void Changer::send(const PlannedStep& step) {
  select(step.asic);
  if (!rollingBack_) throwIfInterrupted();
  const bool announced = announce(step);
  observer_.sending(step);
  for (const Difference& change : step.changes)
    assign(predicted_, change, change.after);
  Answer answer;
  try {
    answer = ask(step.command);
  } catch (const Error& error) {
    if (announced) journal_.lost(error.what());
    throw;
  }
  if (announced) (void)writeDown([&] { journal_.answered(answer.status); });
  if (answer.status != CMD_OK) throw RefusedError(step.command, answer);
}

// Writes down what is about to be sent; whether the journal waits for an answer now.
bool Changer::announce(const PlannedStep& step) {
  const bool intended = writeDown([&] { journal_.intend(step.command, changesText(step.changes)); });
  try {
    (void)writeDown([&] { run_.sendNext(); });
  } catch (const WriteError&) {
    journal_.dropRest();
    throw;
  }
  return intended;
}

// Only a way back goes on where something cannot be written down: that is safer than to stop half way.
bool Changer::writeDown(const std::function<void()>& write) {
  try {
    write();
    return true;
  } catch (const WriteError& error) {
    if (!rollingBack_) throw;
    if (unwritten_ != error.what()) observer_.saying(error.what());
    unwritten_ = error.what();
    return false;
  }
}

// The way back is not left for a signal.
Answer Changer::ask(const std::string& command) {
  for (;;) {
    try {
      return tool_.ask(command);
    } catch (const Interrupted&) {
      if (!rollingBack_ || tool_.isBroken()) throw;
      forgetSignal();
    }
  }
}

// A selection that failed leaves the tool between two ASICs.
void Changer::select(std::uint32_t asic) {
  if (asic_ == asic) return;
  asic_.reset();
  const std::string command = "setAsicNum " + std::to_string(asic);
  const Answer answer = ask(command);
  if (answer.status != CMD_OK) throw RefusedError(command, answer);
  asic_ = asic;
}

// A reading that fails is tried once more.
SwitchState Changer::read() {
  const CaptureChoice choice = {.asics = std::nullopt, .ports = {}, .registers = false, .statistics = false};
  for (bool again = true;; again = false) {
    try {
      select(0);
      SwitchState state = capture(tool_, choice);
      setAsideStrangeAsics(before_, state);
      if (again && !newlyUnread(before_, state).empty()) continue;
      last_ = state;
      return state;
    } catch (const Interrupted&) {
      asic_.reset();
      if (!rollingBack_ || tool_.isBroken()) throw;
      forgetSignal();
    } catch (const Error&) {
      asic_.reset();
      if (!again || tool_.isBroken()) throw;
    }
  }
}

ChangeResult Changer::verify(const Plan& plan, const ChangeRequest& request) {
  const std::vector<Difference> impossible = compare(plan.after, request.wanted).settings;
  SwitchState actual = read();
  for (int round = 1; round < kMostRounds; ++round) {
    if (!newlyUnread(before_, actual).empty()) break;
    predicted_ = actual;
    const Plan missing = makePlan(actual, request.wanted, request.choice);
    if (missing.steps.empty()) break;
    observer_.saying("some settings are not as wanted yet: " + std::to_string(missing.steps.size()) + " more commands");
    add(missing.steps);
    for (const PlannedStep& step : missing.steps)
      send(step);
    actual = read();
  }
  if (const auto unread = newlyUnread(before_, actual); !unread.empty()) {
    throw RollBack("it cannot be read back: " + firstOf(unread));
  }
  ChangeResult result;
  result.remaining = without(compare(actual, request.wanted).settings, impossible);
  result.besides = without(compare(before_, actual).settings, compare(before_, plan.after).settings);
  result.besides = without(std::move(result.besides), compare(before_, request.wanted).settings);
  std::erase_if(result.besides, isUnknown);
  result.state = result.remaining.empty() ? RunState::kDone : RunState::kDiffers;
  return result;
}

// What may still be rolled back: a port gets worse, or nobody confirms.
void Changer::watch(const ChangeRequest& request, Guard* guard) {
  if (guard != nullptr) {
    std::ostringstream seconds;
    seconds << request.guard->count();
    observer_.saying("watching for " + seconds.str() + " s");
    asic_.reset();
    const std::string worse = guard->watch(*request.guard);
    if (!worse.empty()) throw RollBack(worse);
  }
  if (!request.confirm) return;
  const std::string until = utcText(utcNow() + std::chrono::duration_cast<std::chrono::microseconds>(*request.confirm));
  run_.waitForConfirmation(until);
  if (!request.wait(after(*request.confirm))) throw RollBack("not confirmed");
}

// Whatever could be read, the rest as predicted.
SwitchState Changer::readAsFarAsPossible() {
  SwitchState actual;
  try {
    actual = read();
  } catch (const Error& error) {
    if (tool_.isBroken()) throw;
    actual.unread.push_back({0, std::nullopt, "the switch", error.what()});
  }
  fillIn(actual, predicted_);
  return actual;
}

void Changer::rollBackOnce(const SwitchState& actual) {
  const Plan back = makePlan(actual, before_, {.throughCache = true});
  (void)writeDown([&] { add(back.steps); });
  for (const PlannedStep& step : back.steps) {
    try {
      send(step);
    } catch (const RefusedError& error) {
      observer_.saying(error.what());
    }
  }
}

ChangeResult Changer::rollBack(const std::string& reason) {
  if (run_.record().sent == 0) return {.state = RunState::kRolledBack, .reason = reason};
  rollingBack_ = true;
  forgetSignal();
  (void)writeDown([&] { run_.stopWaiting(); });
  observer_.saying(reason + ": rolling back");
  ChangeResult result = {.state = RunState::kRolledBack, .reason = reason};
  try {
    SwitchState actual = readAsFarAsPossible();
    for (int round = 0; round < kMostRounds; ++round) {
      if (compare(actual, before_).settings.empty()) break;
      rollBackOnce(actual);
      actual = readAsFarAsPossible();
    }
    result.remaining = compare(actual, before_).settings;
    std::erase_if(result.remaining, isUnknown);
    result.unread = newlyUnread(before_, actual);
  } catch (const Error& error) {
    if (!tool_.isBroken()) throw;
    return {
        .state = RunState::kInterrupted, .reason = reason + "; then " + error.what(), .exitStatus = error.exitStatus()};
  }
  if (!result.remaining.empty() || !result.unread.empty()) result.state = RunState::kFailed;
  return result;
}

ChangeResult Changer::end(ChangeResult result) {
  const bool known = last_ && result.state != RunState::kInterrupted && result.unread.empty();
  const Save save = {.state = known ? *last_ : SwitchState(), .origin = {.target = target_, .time = utcText(utcNow())}};
  try {
    run_.end(result.state, result.reason, known ? &save : nullptr);
  } catch (const WriteError& error) {
    observer_.saying(error.what());
  }
  return result;
}

}  // namespace serdesctl
