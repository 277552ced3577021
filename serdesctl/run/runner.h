// Runs checked steps on a tool, one after the other.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "serdesctl/journal/change_log.h"
#include "serdesctl/run/script.h"
#include "serdesctl/session/conversation.h"

namespace serdesctl {

// What became of a command.
struct StepResult {
  CmdStatus status = CMD_OK;
  std::string output;  // as the tool printed it; of all passes of a loop
  Seconds elapsed{0};
  bool asExpected = false;
};

// Told of what happens, as it happens.
class RunObserver {
 public:
  virtual ~RunObserver() = default;
  virtual void starting(const Step& step) = 0;
  virtual void printed(std::string_view output) = 0;
  virtual void ended(const Step& step, const StepResult& result) = 0;
};

// Runs the steps up to the first command whose status is not the expected one, or all of them; true when none failed.
bool runSteps(std::span<const Step> steps, bool keepGoing, Conversation& tool, RunObserver& observer, ChangeLog& log);

}  // namespace serdesctl
