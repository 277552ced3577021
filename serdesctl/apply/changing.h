// Changes a switch by a plan: sends it, reads back and compares. What fails is rolled back.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "serdesctl/base/waiting.h"
#include "serdesctl/journal/journal.h"
#include "serdesctl/plan/plan.h"
#include "serdesctl/session/conversation.h"
#include "serdesctl/store/run_store.h"

namespace serdesctl {

// Waits for somebody to confirm; nothing said by then is a no. Throws Interrupted.
using WaitForConfirmation = std::function<bool(TimePoint until)>;

struct ChangeRequest {
  SwitchState wanted;
  PlanChoice choice;
  std::optional<Seconds> guard;
  std::optional<Seconds> confirm;
  WaitForConfirmation wait;
};

struct ChangeResult {
  RunState state = RunState::kDone;
  std::string reason{};                 // why it is not done
  std::vector<Difference> remaining{};  // what is not as it should be: as wanted or, rolled back, as before
  std::vector<Difference> besides{};    // what else has changed, when done
  std::vector<Unread> unread{};         // what could be read before and cannot now
  int exitStatus = 0;                   // of the error that ended it; 0 for none
};

// What a state lacks that another one has.
std::vector<Unread> newlyUnread(const SwitchState& before, const SwitchState& now);

// Told of what happens.
struct ChangeObserver {
  std::function<void(const PlannedStep&)> sending;
  std::function<void(const std::string&)> saying;
};

class Changer {
 public:
  // `before` is the switch as it is. ASIC 0 must be the current one.
  Changer(Conversation& tool, RunJournal& journal, OpenRun& run, const Target& target, const SwitchState& before,
          ChangeObserver observer);

  // Carries the plan out, and ends the run in the store. Throws UsageError where nothing could be sent since the run
  // could not be written down.
  ChangeResult change(const Plan& plan, const ChangeRequest& request);

 private:
  ChangeResult carryOut(const Plan& plan, const ChangeRequest& request);
  void add(const std::vector<PlannedStep>& steps);
  void send(const PlannedStep& step);
  bool announce(const PlannedStep& step);
  bool writeDown(const std::function<void()>& write);
  Answer ask(const std::string& command);
  void select(std::uint32_t asic);
  SwitchState read();
  ChangeResult verify(const Plan& plan, const ChangeRequest& request);
  void watch(const ChangeRequest& request, class Guard* guard);
  ChangeResult rollBack(const std::string& reason);
  void rollBackOnce(const SwitchState& actual);
  SwitchState readAsFarAsPossible();
  ChangeResult end(ChangeResult result);

  Conversation& tool_;
  RunJournal& journal_;
  OpenRun& run_;
  std::string target_;
  SwitchState before_;
  SwitchState predicted_;            // as the switch is after what was sent
  std::optional<SwitchState> last_;  // as it was last read
  ChangeObserver observer_;
  std::optional<std::uint32_t> asic_ = 0;  // the current one, as far as that is known
  bool rollingBack_ = false;
  std::string unwritten_;  // why something could not be written down, as it was said last
};

}  // namespace serdesctl
