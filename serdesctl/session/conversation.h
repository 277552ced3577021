// One running tool: a command in, its status and text out. An answer belongs to its command, or the session is over.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "arguments/cmd_status.h"
#include "serdesctl/base/waiting.h"
#include "serdesctl/target/child.h"
#include "serdesctl/target/target.h"

namespace serdesctl {

// What can be sent: a line of the tool's without its newline.
inline constexpr std::size_t kMostCommandLength = 125;

struct Answer {
  CmdStatus status = CMD_OK;
  std::string output;  // what the command printed, without the status message and the blank line
  Seconds elapsed{0};

  // The whole answer as the tool printed it.
  std::string text() const;
};

// Takes an answer, without its prompt, apart; nothing when no tool ends an answer so.
std::optional<Answer> readAnswer(std::string_view text);

class Conversation {
 public:
  // Starts the tool and waits for its prompt; `timeout` is for every answer. Throws ConnectionError, LockedError,
  // TimeoutError, Interrupted.
  Conversation(const Target& target, Seconds timeout);

  // What the tool printed before its first prompt, from "switchHwConfig" on, without the command list.
  const std::string& startText() const {
    return startText_;
  }

  // An answer has not come: nothing more can be asked.
  bool isBroken() const {
    return broken_;
  }

  // Sends a command, its words apart by blanks, and waits for its answer. Refuses loop and exit by UsageError.
  // After an exception nothing more can be asked.
  Answer ask(const std::string& command);

  // Ends the tool and says how it ended; what it printed last stands in `lastWords`.
  ProcessEnd close(std::string& lastWords);

 private:
  void refuseStrayText();
  void send(std::string_view text, const std::string& what, TimePoint deadline);
  // Receives until what arrived since the last answer ends so; gives all of it.
  std::string receiveTo(std::string_view end, const std::string& what, TimePoint deadline);
  void waitForText(pollfd& output, pollfd& errors, const std::string& what, TimePoint deadline);
  bool take(int descriptor, std::string& text);
  void takeComplaints();
  void readStart(const std::string& text);
  [[noreturn]] void failEnded(const std::string& what);
  [[noreturn]] void failLate(const std::string& what);
  std::string said(const std::string& message) const;

  std::string name_;
  Seconds timeout_;
  Child tool_;
  std::string startText_;
  std::string complaints_;  // the end of the tool's standard error
  bool complaintsOpen_ = true;
  bool started_ = false;
  bool broken_ = false;
  std::optional<TimePoint> patience_;  // after a signal: until when the answer under way may still come
};

}  // namespace serdesctl
