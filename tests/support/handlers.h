// Runs handlers past the dispatcher, and commands on a platform that fails at each call.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "arguments/argument_parsers.h"
#include "shell/command_reader.h"
#include "shell/command_table.h"
#include "tests/support/expected.h"

namespace recording {

// Calls a handler with words that need not keep the bounds of its row.
inline Outcome runHandler(CmdStatus (*handler)(int, char*[]), std::vector<std::string> words) {
  std::vector<char*> pointers;
  for (std::string& word : words)
    pointers.push_back(word.data());
  platform.calls.clear();
  Outcome outcome;
  outcome.out = printedBy([&] { outcome.status = handler(static_cast<int>(pointers.size()), pointers.data()); });
  outcome.calls = platform.calls;
  return outcome;
}

// Calls a set command's handler as it is when the port list parser lets types be mixed, as under a show command's row,
// so that only the handler's own rule is left.
inline Outcome runUnderAShowCommand(CmdStatus (*handler)(int, char*[]), std::vector<std::string> words) {
  currentCommandSets = false;
  return runHandler(handler, std::move(words));
}

// Runs the line once per call that it is to make, and fails that call: the calls up to it are made, none follows, and
// `error` with the platform's result is all that is printed.
inline void expectEachFailureEnds(const std::string& line, const Calls& calls, const std::string& error) {
  for (std::size_t count = 1; count <= calls.size(); ++count) {
    SCOPED_TRACE(calls[count - 1]);
    const int result = -40 - static_cast<int>(count);
    platform.faults.clear();
    platform.failCall(static_cast<unsigned>(count), result);
    EXPECT_EQ(run(line), failed(error + " " + std::to_string(result) + "\n",
                                Calls(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(count))));
  }
  platform.faults.clear();
}

}  // namespace recording
