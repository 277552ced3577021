// Appending from many processes, and making room.
#include "serdesctl/journal/journal_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>

#include "serdesctl/base/errors.h"
#include "serdesctl/journal/journal.h"

namespace serdesctl {
namespace {

class JournalFileTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = testing::TempDir() + "journalXXXXXX";
    ASSERT_NE(::mkdtemp(name.data()), nullptr);
    folder_ = name;
  }
  void TearDown() override {
    std::filesystem::remove_all(folder_);
  }

  static void ignore(const std::string&) {}

  std::string folder_;
};

TEST_F(JournalFileTest, OldFilesMakeRoomAndTheNewestLinesStay) {
  JournalFile file(folder_, ignore, {.mostBytes = 100, .oldFiles = 2});
  for (int i = 100; i < 200; ++i)
    file.append("line " + std::to_string(i) + "\n", false);
  std::uintmax_t bytes = 0;
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
    bytes += entry.file_size();
    ++files;
  }
  EXPECT_EQ(files, 3U);
  EXPECT_LE(bytes, 300U);
  const std::vector<std::string> lines = readJournal(folder_, ignore, ignore);
  ASSERT_GE(lines.size(), 22U);
  EXPECT_EQ(lines.back(), "line 199");
  EXPECT_EQ(lines.front(), "line " + std::to_string(200 - lines.size()));
}

TEST_F(JournalFileTest, WritersThatMakeRoomLoseNothingOfEachOther) {
  constexpr int kWriters = 4;
  constexpr int kLines = 200;
  std::vector<pid_t> writers;
  for (int writer = 0; writer < kWriters; ++writer) {
    const pid_t pid = ::fork();
    if (pid == 0) {
      JournalFile file(folder_, ignore, {.mostBytes = 4000, .oldFiles = 7});
      for (int i = 0; i < kLines; ++i)
        file.append(std::to_string(writer) + "." + std::to_string(i) + "\n", false);
      ::_exit(0);
    }
    writers.push_back(pid);
  }
  for (const pid_t pid : writers) {
    int status = -1;
    ASSERT_EQ(::waitpid(pid, &status, 0), pid);
    EXPECT_EQ(status, 0);
  }
  const std::vector<std::string> lines = readJournal(folder_, ignore, ignore);
  EXPECT_EQ(lines.size(), static_cast<std::size_t>(kWriters * kLines));
  EXPECT_EQ(std::set<std::string>(lines.begin(), lines.end()).size(), lines.size());
}

TEST_F(JournalFileTest, AnotherFileOfTheNameIsTakenUp) {
  JournalFile file(folder_, ignore);
  file.append("one\n", true);
  const std::string name = folder_ + "/journal.jsonl";
  std::filesystem::rename(name, name + ".1");
  file.append("two\n", true);
  std::filesystem::rename(name, name + ".1");
  std::ofstream(name) << "other\n";
  file.append("three\n", true);
  EXPECT_EQ(readJournal(folder_, ignore, ignore), (std::vector<std::string>{"two", "other", "three"}));
}

TEST_F(JournalFileTest, WithoutOldFilesTheOnlyOneBeginsAnew) {
  JournalFile file(folder_, ignore, {.mostBytes = 8, .oldFiles = 0});
  for (const char* line : {"first\n", "second\n"})
    file.append(line, false);
  EXPECT_EQ(readJournal(folder_, ignore, ignore), std::vector<std::string>{"second"});
}

TEST_F(JournalFileTest, AFileThatCannotBeReadIsSaid) {
  std::filesystem::create_symlink("journal.jsonl", folder_ + "/journal.jsonl");
  std::string notices;
  EXPECT_TRUE(readJournal(folder_, ignore, [&](const std::string& text) { notices += text; }).empty());
  EXPECT_EQ(notices, folder_ + "/journal.jsonl: Too many levels of symbolic links");
}

TEST_F(JournalFileTest, AWriterThatWasStoppedDoesNotStopEverybody) {
  const std::string name = folder_ + "/journal.jsonl";
  const Fd stopped(::open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644));
  ASSERT_EQ(::flock(stopped.get(), LOCK_EX), 0);
  JournalFile file(folder_, ignore, {.othersMayTake = Seconds(0.02)});
  try {
    file.append("line\n", false);
    ADD_FAILURE() << "appended";
  } catch (const WriteError& error) {
    EXPECT_EQ(error.what(), "journal " + name + " cannot be locked: Resource temporarily unavailable");
  }
}

TEST_F(JournalFileTest, WhatDoesNotReachTheDiskIsNotAppended) {
  ASSERT_EQ(::mkfifo((folder_ + "/journal.jsonl").c_str(), 0644), 0);
  JournalFile pipe(folder_, ignore);
  EXPECT_NO_THROW(pipe.append("line\n", false));
  EXPECT_THROW(pipe.append("line\n", true), WriteError);
}

TEST_F(JournalFileTest, WhatWasNeverIntendedIsNeitherLostNorDropped) {
  RunJournal journal(JournalFile(folder_, ignore), "lab", false);
  journal.intend(std::vector<std::string>{"setRate 8G 0"});
  journal.answered(CMD_OK);
  journal.lost("the tool has gone");
  journal.dropRest();
  const std::vector<JournalEntry> entries = readEntries(readJournal(folder_, ignore, ignore), ignore);
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries[0].result, "answered");
  EXPECT_EQ(entries[0].reason, "");
  EXPECT_EQ(readJournal(folder_, ignore, ignore).size(), 2U);
}

TEST_F(JournalFileTest, WithoutAFolderNothingIsAppended) {
  EXPECT_THROW(JournalFile("", ignore).append("line\n", false), WriteError);
}

TEST_F(JournalFileTest, AFolderThatIsNotThereIsAnError) {
  JournalFile file(folder_ + "/none", ignore);
  EXPECT_THROW(file.append("line\n", true), WriteError);
  EXPECT_TRUE(readJournal(folder_ + "/none", ignore, ignore).empty());
}

}  // namespace
}  // namespace serdesctl
