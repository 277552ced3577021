// Waiting that takes no time: the tests' own sleep() and select() stand before the C library's.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace recording {

// Every wait so far: "sleep 2", or "select 0 2.000000" for descriptor 0 and a limit of two seconds.
extern std::vector<std::string> waits;

// The result of the next select(); a test sets it. Not set: nothing becomes readable.
extern std::function<int()> selectResult;

// Called at every sleep().
extern std::function<void()> onSleep;

// Forgets all of the above.
void resetWaiting();

// Standard input reads `text` while this lives.
class TypedInput {
 public:
  explicit TypedInput(const std::string& text);
  ~TypedInput();
  TypedInput(const TypedInput&) = delete;
  TypedInput& operator=(const TypedInput&) = delete;

  // Types more at the end.
  void append(const std::string& text);
  // What has not been read yet.
  std::string rest();

 private:
  int terminal_;
  int file_;
};

}  // namespace recording
