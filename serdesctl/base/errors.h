// What can go wrong, in one tree. Each kind has its exit status; main turns what reaches it into one line.
#pragma once

#include <stdexcept>
#include <string>

namespace serdesctl {

enum ExitStatus : int {
  kDone = 0,
  kFailed = 1,       // a command failed, or what was looked for differs or is bad
  kRefused = 2,      // usage, or refused before anything was sent
  kNoSwitch = 3,     // the switch could not be reached or opened, or the tool ended
  kNoAnswer = 4,     // no answer in time
  kLocked = 5,       // somebody else works on the switch
  kSignalBase = 128  // and the signal's number: interrupted
};

class Error : public std::runtime_error {
 public:
  Error(int exitStatus, const std::string& what) : std::runtime_error(what), exitStatus_(exitStatus) {}
  int exitStatus() const {
    return exitStatus_;
  }

 private:
  int exitStatus_;
};

template <int kStatus>
class ErrorOfStatus : public Error {
 public:
  explicit ErrorOfStatus(const std::string& what) : Error(kStatus, what) {}
};

// A wrong word on the command line or in a file that people write.
class UsageError : public ErrorOfStatus<kRefused> {
  using ErrorOfStatus::ErrorOfStatus;
};

// The switch could not be reached or opened, or the tool ended or broke off.
class ConnectionError : public ErrorOfStatus<kNoSwitch> {
  using ErrorOfStatus::ErrorOfStatus;
};

// The tool printed what it never prints.
class AnswerError : public ErrorOfStatus<kNoSwitch> {
  using ErrorOfStatus::ErrorOfStatus;
};

class TimeoutError : public ErrorOfStatus<kNoAnswer> {
  using ErrorOfStatus::ErrorOfStatus;
};

class LockedError : public ErrorOfStatus<kLocked> {
  using ErrorOfStatus::ErrorOfStatus;
};

// Output or the journal cannot be written.
class WriteError : public ErrorOfStatus<kFailed> {
  using ErrorOfStatus::ErrorOfStatus;
};

// Nobody reads standard output any more: the program is to end as any filter does.
class ReaderLeft : public ErrorOfStatus<kFailed> {
  using ErrorOfStatus::ErrorOfStatus;
};

class Interrupted : public Error {
 public:
  explicit Interrupted(int signal) : Error(kSignalBase + signal, "interrupted"), signal_(signal) {}
  int signal() const {
    return signal_;
  }

 private:
  int signal_;
};

}  // namespace serdesctl
