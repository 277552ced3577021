// Starting and ending a child process. fork and not posix_spawn, since only code that runs in the child can tie its
// life to its parent's.
#include "serdesctl/target/child.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <sstream>

#include "serdesctl/base/errors.h"

namespace serdesctl {
namespace {

// What a child may take to end by itself once its input is closed, and what the system may take to end a killed one.
constexpr Seconds kGrace{0.5};

struct Pipe {
  Fd reader;
  Fd writer;
};

Pipe makePipe() {
  std::array<int, 2> ends{-1, -1};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw ConnectionError("no pipe: " + errorText());
  return {Fd(ends[0]), Fd(ends[1])};
}

void makeNonBlocking(const Fd& fd) {
  (void)::fcntl(fd.get(), F_SETFL, O_NONBLOCK);
}

// The environment of this process with what the command adds.
std::vector<std::string> environmentOf(const Command& command) {
  std::vector<std::string> variables;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const auto replaced = [&](const auto& added) {
      return std::strncmp(*entry, added.first.c_str(), added.first.size()) == 0 && (*entry)[added.first.size()] == '=';
    };
    if (std::none_of(command.environment.begin(), command.environment.end(), replaced)) variables.emplace_back(*entry);
  }
  for (const auto& [name, value] : command.environment)
    variables.push_back(std::string(name).append("=").append(value));
  return variables;
}

std::vector<char*> pointers(std::vector<std::string>& words) {
  std::vector<char*> result;
  result.reserve(words.size() + 1);
  for (std::string& word : words)
    result.push_back(word.data());
  result.push_back(nullptr);
  return result;
}

// The file that a command's first word names. Not left to execvp, which hands what it cannot run to a shell.
std::string programFile(const std::string& word) {
  if (word.find('/') != std::string::npos) return word;
  std::istringstream folders(environmentVariable("PATH").value_or("/usr/bin:/bin"));
  for (std::string folder; std::getline(folders, folder, ':');) {
    std::string file = (folder.empty() ? "." : folder) + "/" + word;
    struct stat status {};
    if (::stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(file.c_str(), X_OK) == 0) return file;
  }
  throw ConnectionError("cannot run " + word + ": not found in PATH");
}

struct Streams {
  int input;
  int output;
  int errors;
};

// In the child: only plain system calls. Returns when the command cannot be run.
void becomeCommand(const char* file, const Streams& streams, int lock, pid_t parent, char* const* words,
                   char* const* environment) {
  (void)::setpgid(0, 0);
  (void)::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(1);
  (void)::signal(SIGPIPE, SIG_DFL);
  (void)::dup2(streams.input, STDIN_FILENO);
  (void)::dup2(streams.output, STDOUT_FILENO);
  (void)::dup2(streams.errors, STDERR_FILENO);
  if (lock >= 0) (void)::fcntl(lock, F_SETFD, 0);
  (void)::execve(file, words, environment);
}

// Waits for the child's word that it could not run the command; the pipe closes without one when it runs.
void throwUnlessRun(const Fd& reader, const std::string& command) {
  int error = 0;
  ssize_t count = 0;
  do {
    count = ::read(reader.get(), &error, sizeof error);
  } while (count < 0 && errno == EINTR);
  if (count == sizeof error) throw ConnectionError("cannot run " + command + ": " + errorText(error));
}

bool hasEnded(pid_t pid) {
  siginfo_t info{};
  return ::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid == pid;
}

// Takes the status of a process that has ended. Until then its group has its number: what it left behind ends first.
ProcessEnd reap(pid_t pid) {
  (void)::kill(-pid, SIGKILL);
  int status = 0;
  if (::waitpid(pid, &status, WNOHANG) != pid) return {};
  return {.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 0,
          .signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0};
}

}  // namespace

std::string ProcessEnd::text() const {
  if (signal != 0) return "by signal " + std::to_string(signal);
  return "with status " + std::to_string(exitStatus);
}

Child::Child(const Command& command, Fd lock) {
  const std::string file = programFile(command.words[0]);
  std::vector<std::string> words = command.words;
  std::vector<std::string> variables = environmentOf(command);
  const std::vector<char*> wordPointers = pointers(words);
  const std::vector<char*> variablePointers = pointers(variables);
  Pipe input = makePipe();
  Pipe output = makePipe();
  Pipe errors = makePipe();
  Pipe failure = makePipe();
  const Streams streams = {input.reader.get(), output.writer.get(), errors.writer.get()};
  const pid_t parent = ::getpid();
  pid_ = ::fork();
  if (pid_ < 0) throw ConnectionError("cannot run " + words[0] + ": " + errorText());
  if (pid_ == 0) {
    becomeCommand(file.c_str(), streams, lock.get(), parent, wordPointers.data(), variablePointers.data());
    const int error = errno;
    (void)!::write(failure.writer.get(), &error, sizeof error);
    ::_exit(127);
  }
  (void)::setpgid(pid_, pid_);
  failure.writer.reset();
  input_ = std::move(input.writer);
  output_ = std::move(output.reader);
  errors_ = std::move(errors.reader);
  makeNonBlocking(input_);
  makeNonBlocking(output_);
  makeNonBlocking(errors_);
  try {
    throwUnlessRun(failure.reader, words[0]);
  } catch (...) {
    (void)waitForEnd(after(kGrace));
    throw;
  }
}

Child::~Child() {
  input_.reset();
  output_.reset();  // a child that goes on writing is told so
  if (waitForEnd(after(kGrace))) return;
  (void)::kill(-pid_, SIGKILL);
  (void)waitForEnd(after(kGrace));
}

// A process in the middle of a platform call cannot even be killed: nothing here may wait for it without an end.
std::optional<ProcessEnd> Child::waitForEnd(TimePoint deadline) {
  auto pause = std::chrono::microseconds(200);
  while (!end_ && !hasEnded(pid_)) {
    if (Clock::now() >= deadline) return std::nullopt;
    (void)waitThroughSignals({}, std::min(deadline, Clock::now() + pause));
    pause = std::min(pause * 2, std::chrono::microseconds(20000));
  }
  if (!end_) end_ = reap(pid_);
  return end_;
}

}  // namespace serdesctl
