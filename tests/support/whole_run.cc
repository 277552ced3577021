// A test program that ends before its tests do has not passed: exit(0) somewhere in what it tests would hide the rest.
// The order of a shuffled run is said first, so that a failure that depends on it can be seen again.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace {

bool isRunning = false;
const pid_t testProgram = getpid();  // its children may end as they like

class RunWatcher : public testing::EmptyTestEventListener {
  void OnTestProgramStart(const testing::UnitTest& tests) override {
    isRunning = true;
    if (!GTEST_FLAG_GET(shuffle)) return;
    (void)std::fprintf(stderr, "The order: --gtest_shuffle --gtest_random_seed=%d\n", tests.random_seed());
  }
  void OnTestProgramEnd(const testing::UnitTest&) override {
    isRunning = false;
  }
};

void failWhenCutShort() {
  if (!isRunning || getpid() != testProgram) return;
  (void)std::fputs("The test program ended before its tests did.\n", stderr);
  _exit(3);
}

[[maybe_unused]] const bool isWatched = [] {
  testing::UnitTest::GetInstance()->listeners().Append(new RunWatcher);
  return std::atexit(failWhenCutShort) == 0;
}();

}  // namespace
