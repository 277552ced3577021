// Who changes something says so to a log: before it is sent, and what became of it.
#pragma once

#include <span>
#include <string>

#include "arguments/cmd_status.h"

namespace serdesctl {

class ChangeLog {
 public:
  virtual ~ChangeLog() = default;
  // These commands, in this order, are about to be sent. What it throws must keep them from being sent.
  virtual void intend(std::span<const std::string> commands) = 0;
  // The next one of them was answered, or nobody knows what became of it.
  virtual void answered(CmdStatus status) = 0;
  virtual void lost(const std::string& reason) = 0;
  // What is left of them is not sent.
  virtual void dropRest() = 0;
};

}  // namespace serdesctl
