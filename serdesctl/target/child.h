// A child process with pipes to its three streams. It never outlives its owner: not when the owner goes out of scope,
// and not when this process is killed.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "serdesctl/base/files.h"
#include "serdesctl/base/waiting.h"

namespace serdesctl {

// What to run: words, the first one looked up in PATH when it has no slash, and what to add to the environment.
struct Command {
  std::vector<std::string> words;
  std::vector<std::pair<std::string, std::string>> environment;
};

// How a process ended.
struct ProcessEnd {
  int exitStatus = 0;
  int signal = 0;  // not 0: by this signal
  bool well() const {
    return exitStatus == 0 && signal == 0;
  }
  // "with status 3", "by signal 9"
  std::string text() const;
};

class Child {
 public:
  // Starts the command in a process group of its own. The lock, if any, is the child's from then on. Throws
  // ConnectionError when it cannot be run.
  Child(const Command& command, Fd lock);
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  // Pipes that do not block.
  int input() const {
    return input_.get();
  }
  int output() const {
    return output_.get();
  }
  int errors() const {
    return errors_.get();
  }

  void closeInput() {
    input_.reset();
  }

  // Waits for its end; nothing when it has not come by then.
  std::optional<ProcessEnd> waitForEnd(TimePoint deadline);

 private:
  pid_t pid_ = -1;
  Fd input_;
  Fd output_;
  Fd errors_;
  std::optional<ProcessEnd> end_;
};

}  // namespace serdesctl
