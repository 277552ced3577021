// The tests' sleep() and select(), and a standard input that is a file.
#include "tests/support/fake_waiting.h"

#include <sys/select.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace recording {

std::vector<std::string> waits;
std::function<int()> selectResult;
std::function<void()> onSleep;

void resetWaiting() {
  waits.clear();
  selectResult = nullptr;
  onSleep = nullptr;
}

TypedInput::TypedInput(const std::string& text) : terminal_(dup(STDIN_FILENO)) {
  std::FILE* file = std::tmpfile();
  file_ = dup(fileno(file));
  std::fclose(file);
  append(text);
  lseek(file_, 0, SEEK_SET);
  dup2(file_, STDIN_FILENO);
  std::clearerr(stdin);
  std::setvbuf(stdin, nullptr, _IONBF, 0);
}

TypedInput::~TypedInput() {
  dup2(terminal_, STDIN_FILENO);
  close(terminal_);
  close(file_);
  std::clearerr(stdin);
}

void TypedInput::append(const std::string& text) {
  const off_t at = lseek(file_, 0, SEEK_CUR);
  lseek(file_, 0, SEEK_END);
  if (write(file_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) std::abort();
  lseek(file_, at, SEEK_SET);
}

std::string TypedInput::rest() {
  std::string text(4096, '\0');
  const ssize_t length = read(file_, text.data(), text.size());
  text.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
  return text;
}

}  // namespace recording

// A fuzzer's own threads wait as ever.
extern "C" unsigned int sleep(unsigned int seconds) {
  if (gettid() != getpid()) {
    const timespec limit = {.tv_sec = static_cast<time_t>(seconds), .tv_nsec = 0};
    return nanosleep(&limit, nullptr) == 0 ? 0 : seconds;
  }
  recording::waits.push_back("sleep " + std::to_string(seconds));
  if (recording::onSleep) recording::onSleep();
  return 0;
}

extern "C" int select(int count, fd_set* readable, fd_set* writable, fd_set* exceptional, timeval* limit) {
  std::string wait = "select";
  for (int descriptor = 0; descriptor < count; ++descriptor) {
    if (FD_ISSET(descriptor, readable)) wait += " " + std::to_string(descriptor);
  }
  if (writable != nullptr || exceptional != nullptr) wait += " and more";
  char seconds[32];
  std::snprintf(seconds, sizeof seconds, " %ld.%06ld", static_cast<long>(limit->tv_sec),
                static_cast<long>(limit->tv_usec));
  recording::waits.push_back(wait + seconds);
  return recording::selectResult ? recording::selectResult() : 0;
}
