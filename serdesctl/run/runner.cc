// Running steps. Loops are done here: the tool's own outlives both ends of its pipe.
#include "serdesctl/run/runner.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <optional>
#include <vector>

#include "serdesctl/base/errors.h"

namespace serdesctl {
namespace {

constexpr unsigned kLoopPasses = 10;  // and pauses between them, as the tool has them in scripts
constexpr Seconds kLoopPause{2};

// How many changes are announced at once: one by one, unless there are so many that waiting for the disk would cost
// more than the switch.
constexpr std::size_t kMostAnnouncements = 20;
constexpr std::size_t kMostAnnounced = 500;

std::size_t changeCount(std::span<const Step> steps) {
  return static_cast<std::size_t>(std::count_if(steps.begin(), steps.end(), [](const Step& s) { return s.changes; }));
}

class Run {
 public:
  Run(Conversation& tool, RunObserver& observer, ChangeLog& log, std::span<const Step> steps)
      : tool_(tool),
        observer_(observer),
        log_(log),
        steps_(steps),
        atOnce_(std::clamp<std::size_t>(changeCount(steps) / kMostAnnouncements, 1, kMostAnnounced)) {}

  bool all(bool keepGoing) {
    announceFirst();
    const auto dropRest = [](ChangeLog* log) { log->dropRest(); };
    const std::unique_ptr<ChangeLog, decltype(dropRest)> atTheEnd(&log_, dropRest);
    bool good = true;
    for (std::size_t i = 0; i < steps_.size() && (good || keepGoing); ++i) {
      throwIfInterrupted();
      if (steps_[i].words.empty()) {
        sleepUntil(after(steps_[i].pause));
      } else {
        good = runCommand(i) && good;
      }
    }
    return good;
  }

 private:
  bool runCommand(std::size_t index) {
    const Step& step = steps_[index];
    observer_.starting(step);
    if (step.changes) announceFrom(index);
    const TimePoint start = Clock::now();
    StepResult result;
    answer_.reset();
    try {
      result.status = pass(step.words, result.output);
    } catch (const std::exception& error) {
      if (step.changes) settle(step, error.what());
      const auto* const known = dynamic_cast<const Error*>(&error);
      if (known == nullptr || (known->exitStatus() != kNoSwitch && known->exitStatus() != kNoAnswer)) throw;
      throw Error(known->exitStatus(), step.place() + ": " + error.what());
    }
    result.elapsed = Clock::now() - start;
    result.asExpected = result.status == step.expected;
    if (step.changes) {
      log_.answered(result.status);
      --announced_;
    }
    observer_.ended(step, result);
    return result.asExpected;
  }

  // After an error: a command may have been answered, and only its output could not be handed on.
  void settle(const Step& step, const std::string& error) {
    if (answer_ && loopedCommand(step.words).empty()) {
      log_.answered(*answer_);
    } else {
      log_.lost(error);
    }
  }

  // Before anything is sent: where changes cannot be announced, not even a question is asked.
  void announceFirst() {
    try {
      announceFrom(0);
    } catch (const WriteError& error) {
      throw UsageError(error.what());
    }
  }

  void announceFrom(std::size_t index) {
    if (announced_ > 0) return;
    std::vector<std::string> commands;
    for (; index < steps_.size() && commands.size() < atOnce_; ++index) {
      if (steps_[index].changes) commands.push_back(steps_[index].command());
    }
    if (commands.empty()) return;
    log_.intend(commands);
    announced_ = commands.size();
  }

  void print(const std::string& text, std::string& output) {
    observer_.printed(text);
    output += text;
  }

  // Runs a command once, a loop with all its passes.
  CmdStatus pass(const Words& words, std::string& output) {
    if (const Words looped = loopedCommand(words); !looped.empty()) return loop(looped, output);
    const Answer answer = tool_.ask(joinedWords(words));
    answer_ = answer.status;
    print(answer.output, output);
    return answer.status;
  }

  CmdStatus loop(const Words& looped, std::string& output) {
    for (unsigned number = 1;; ++number) {
      const CmdStatus status = pass(looped, output);
      if (status != CMD_OK) return status;
      print("That is " + std::to_string(number) + " passes.\n", output);
      if (number == kLoopPasses) return status;
      sleepUntil(after(kLoopPause));
      print("\n", output);
    }
  }

  Conversation& tool_;
  RunObserver& observer_;
  ChangeLog& log_;
  std::span<const Step> steps_;
  std::size_t atOnce_;
  std::size_t announced_ = 0;
  std::optional<CmdStatus> answer_;  // the last one to the step under way
};

}  // namespace

bool runSteps(std::span<const Step> steps, bool keepGoing, Conversation& tool, RunObserver& observer, ChangeLog& log) {
  return Run(tool, observer, log, steps).all(keepGoing);
}

}  // namespace serdesctl
