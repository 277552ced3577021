// The store of runs: whole at any moment, and bounded.
#include "serdesctl/store/run_store.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "serdesctl/apply/undoing.h"
#include "serdesctl/base/errors.h"

namespace serdesctl {
namespace {

namespace fs = std::filesystem;

class RunStore : public testing::Test {
 protected:
  RunStore() {
    std::string name = (fs::temp_directory_path() / "runs.XXXXXX").string();
    folder_ = ::mkdtemp(name.data());
    target_.name = "lab";
  }
  ~RunStore() override {
    fs::remove_all(folder_);
  }

  std::unique_ptr<OpenRun> open(int number, std::size_t most = 200) {
    RunRecord record;
    char name[16];
    std::snprintf(name, sizeof name, "run%03d", number);
    record.run = name;
    record.target = "lab";
    record.what = "apply lab.toml";
    return std::make_unique<OpenRun>(folder_.string(), target_, record, Save(), most);
  }

  // A run that has ended.
  void end(int number, std::size_t most = 200) {
    const auto run = open(number, most);
    run->add({}, {});
    run->end(RunState::kDone, "", nullptr);
  }

  std::vector<FoundRun> found() {
    return findRuns(folder_.string(), target_, [&](const std::string& text) { notices_.push_back(text); });
  }

  fs::path folder_;
  Target target_;
  std::vector<std::string> notices_;
};

PlannedStep step(const std::string& command) {
  PlannedStep planned = {.asic = 1, .command = command, .ports = 5, .effect = Effect::kRetrain, .changes = {}};
  planned.changes.push_back({.place = {.asic = 1, .port = 2, .side = "tx", .link = 0},
                             .parameter = "c2",
                             .before = std::int64_t{-25},
                             .after = std::int64_t{-20}});
  planned.changes.push_back(
      {.place = {.asic = 1, .port = 2}, .parameter = "stream_enabled", .before = true, .after = {}});
  return planned;
}

TEST_F(RunStore, KeepsWhatItIsGiven) {
  const auto run = open(1);
  EXPECT_TRUE(found().empty()) << "nothing is known yet of what it will send";
  run->add({step("setRate 8G 0 2")}, {"setAsicNum 1", "setRate 4G 0 2"});
  run->add({step("setRate 8G 1")}, {});
  run->sendNext();
  const auto runs = found();
  ASSERT_EQ(runs.size(), 1U);
  EXPECT_EQ(runs[0].record.state, RunState::kRunning);
  EXPECT_EQ(runs[0].record.sent, 1U);
  EXPECT_EQ(runs[0].record.steps, 2U);
  EXPECT_EQ(runs[0].steps(), (std::vector{step("setRate 8G 0 2"), step("setRate 8G 1")}));
  EXPECT_FALSE(runs[0].canBeUndone());
  EXPECT_FALSE(runs[0].after());
}

TEST_F(RunStore, ARunWhoseProcessIsGoneIsInterrupted) {
  open(1)->add({step("setRate 8G 0")}, {});
  const auto runs = found();
  ASSERT_EQ(runs.size(), 1U);
  EXPECT_EQ(runs[0].record.state, RunState::kInterrupted);
  EXPECT_TRUE(runs[0].isLeft());
  EXPECT_TRUE(runs[0].canBeUndone());
}

TEST_F(RunStore, AConfirmationReachesTheRun) {
  const auto run = open(1);
  run->add({}, {});
  run->waitForConfirmation("2025-11-21T21:13:04Z");
  EXPECT_FALSE(run->isConfirmed());
  found().at(0).confirm();
  EXPECT_TRUE(run->isConfirmed());
  EXPECT_EQ(found().at(0).record.state, RunState::kWaiting);
  run->stopWaiting();
  EXPECT_EQ(found().at(0).again().record.state, RunState::kRunning);
  run->discard();
  EXPECT_TRUE(found().empty());
}

TEST_F(RunStore, OfTooManyTheOldestEndedOnesGo) {
  open(0)->add({}, {});  // interrupted
  for (int number = 1; number <= 6; ++number)
    end(number, 4);
  std::vector<std::string> names;
  for (const FoundRun& run : found())
    names.push_back(run.record.run);
  EXPECT_EQ(names, (std::vector<std::string>{"run000", "run004", "run005", "run006"}));
}

TEST_F(RunStore, ARunThatIsUnderWayStays) {
  const auto running = open(0);
  running->add({step("setRate 8G 0")}, {});
  end(1, 2);
  end(2, 2);
  std::vector<std::string> names;
  for (const FoundRun& run : found())
    names.push_back(run.record.run);
  EXPECT_EQ(names, (std::vector<std::string>{"run000", "run002"}));
  EXPECT_FALSE(found().at(0).isLeft());
}

TEST_F(RunStore, WhatNeverBecameARunGoesWhenItsProcessHas) {
  const auto starting = open(1);
  (void)open(2);
  end(3);
  const fs::path runs = fs::path(found().at(0).folder).parent_path();
  fs::create_directory(runs / "run004");  // whose lock is about to be made
  std::ofstream(runs / "stray") << "no folder";
  end(5);
  std::vector<std::string> there;
  for (const auto& entry : fs::directory_iterator(runs))
    there.push_back(entry.path().filename());
  std::sort(there.begin(), there.end());
  EXPECT_EQ(there, (std::vector<std::string>{"run001", "run003", "run004", "run005", "stray"}));
  EXPECT_EQ(found().size(), 2U);
  EXPECT_EQ(notices_, std::vector<std::string>());
}

TEST_F(RunStore, ARunWithoutALockIsNobodys) {
  const auto run = open(1);
  run->add({step("setRate 8G 0")}, {});
  fs::remove(found().at(0).folder + "/lock");
  EXPECT_TRUE(found().at(0).isLeft());
}

TEST_F(RunStore, AStateThatIsNoneIsSaid) {
  end(1);
  const std::string file = found().at(0).folder + "/run.json";
  std::string text = readFile(file, 1U << 20);
  text.replace(text.find("\"done\""), 6, "\"gone\"");
  writeFileWhole(file, text);
  EXPECT_TRUE(found().empty());
  EXPECT_EQ(notices_, std::vector<std::string>{file + ": /state: no state of a run"});
}

TEST_F(RunStore, TargetsAreApart) {
  end(1);
  Target other = target_;
  other.name = "lab/2";
  EXPECT_TRUE(findRuns(folder_.string(), other, [](const std::string&) {}).empty());
  EXPECT_EQ(findRuns(folder_.string(), [](const std::string&) {}).size(), 1U);
}

TEST_F(RunStore, WhatIsTornIsSaidAndLeftOut) {
  end(1);
  end(2);
  std::ofstream(found().at(0).folder + "/run.json", std::ios::trunc) << R"({"schema":1,"kin)";
  EXPECT_EQ(found().size(), 1U);
  EXPECT_EQ(notices_.size(), 1U);
}

// Whoever writes is killed while it does so: what is found is a whole record and whole steps, each time.
TEST_F(RunStore, IsWholeAtAnyMoment) {
  constexpr int kKills = 25;
  for (int number = 0; number < kKills; ++number) {
    const pid_t writer = ::fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
      const auto run = open(number);
      for (;;) {
        run->add({step("setRate 8G 0")}, {"setRate 4G 0"});
        run->sendNext();
      }
    }
    ::usleep(static_cast<useconds_t>(1000 + number * 731));
    ::kill(writer, SIGKILL);
    ::waitpid(writer, nullptr, 0);
    for (const FoundRun& run : found()) {
      EXPECT_GE(run.steps().size(), run.record.steps);
      EXPECT_LE(run.record.sent, run.record.steps);
    }
  }
  EXPECT_EQ(notices_, std::vector<std::string>());
}

}  // namespace
}  // namespace serdesctl
