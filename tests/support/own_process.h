// Actions that need standard streams of their own, or that spoil what all tests of a process share.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <sstream>
#include <string>

#include "tests/support/tool_test.h"

namespace recording {

// What a process did.
struct ProcessOutcome {
  int result = 0;   // what the action returned
  std::string out;  // standard output
  std::string err;  // standard error
  Calls calls;      // every platform call made
};

// A file without a name that holds `text`, read from its start.
inline std::FILE* fileWith(const std::string& text) {
  std::FILE* file = std::tmpfile();
  std::fwrite(text.data(), 1, text.size(), file);
  std::fflush(file);
  std::rewind(file);
  return file;
}

// Everything in a file, which is closed.
inline std::string contentOf(std::FILE* file) {
  std::string text(static_cast<std::size_t>(lseek(fileno(file), 0, SEEK_END)), '\0');
  EXPECT_EQ(pread(fileno(file), text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
  std::fclose(file);
  return text;
}

// Runs `action` in a process of its own on a copy of the platform, `typed` on its standard input. A process that does
// not come to its end is ended, and fails the test.
inline ProcessOutcome inOwnProcess(const std::function<int()>& action, const std::string& typed = "") {
  constexpr unsigned kLongestSeconds = 60;
  std::FILE* const in = fileWith(typed);
  std::FILE* const out = fileWith("");
  std::FILE* const err = fileWith("");
  std::FILE* const report = fileWith("");
  std::fflush(stdout);
  std::fflush(stderr);
  const pid_t child = fork();
  if (child == 0) {
    alarm(kLongestSeconds);
    dup2(fileno(in), STDIN_FILENO);
    dup2(fileno(out), STDOUT_FILENO);
    dup2(fileno(err), STDERR_FILENO);
    platform.calls.clear();
    const int result = action();
    std::fprintf(report, "%d\n", result);
    for (const std::string& call : platform.calls)
      std::fprintf(report, "%s\n", call.c_str());
    std::exit(EXIT_SUCCESS);  // flushes all of them, and writes the counts of a coverage build
  }
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0) << "the process did not come to its end";
  std::fclose(in);
  ProcessOutcome outcome;
  outcome.out = contentOf(out);
  outcome.err = contentOf(err);
  std::istringstream lines(contentOf(report));
  lines >> outcome.result >> std::ws;
  for (std::string call; std::getline(lines, call);)
    outcome.calls.push_back(call);
  return outcome;
}

}  // namespace recording
