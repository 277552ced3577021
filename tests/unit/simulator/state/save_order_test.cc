// What a save says to the operating system, and in which order: the new file is whole on the disk before it takes the
// old one's name, and the name is on the disk before the save is done; and what comes of calls that fail. The linker
// turns the calls to these functions.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <map>

#include "simulator/error_codes.h"
#include "simulator/state/file.h"
#include "tests/unit/simulator/switch/switch_bench.h"

namespace simulator {
namespace {

namespace fs = std::filesystem;

// The calls for files in the folder that is watched, by name.
struct Watch {
  std::string folder;  // nothing is watched while it is empty
  std::map<int, std::string> open;
  std::vector<std::string> calls;
  std::string failing;
  bool isInterrupted = false;  // what fails does so once, for a signal; otherwise again and again, as on a broken disk

  // Whether the call is to be made.
  bool note(const std::string& call, const std::string& name) {
    calls.push_back(call + ' ' + name);
    if (calls.back() != failing) return true;
    errno = isInterrupted ? EINTR : EIO;
    if (isInterrupted) failing.clear();
    return false;
  }
  std::string nameOf(const char* path) const {
    if (folder.empty() || !std::string_view(path).starts_with(folder)) return "";
    return path == folder ? "folder" : fs::path(path).filename().string();
  }
  std::string nameOf(int file) const {
    const auto found = open.find(file);
    return found == open.end() ? "" : found->second;
  }
};
// Never destroyed: files are closed to the very end.
Watch& watch = *new Watch;

int noteOpen(const char* path, int file) {
  if (const std::string name = watch.nameOf(path); !name.empty() && file >= 0) {
    watch.open[file] = name;
    // No program that is started meanwhile is to have it.
    (void)watch.note((::fcntl(file, F_GETFD) & FD_CLOEXEC) != 0 ? "open" : "open for all", name);
  }
  return file;
}

template <typename Real>
int watched(const char* call, const std::string& name, Real real) {
  return name.empty() || watch.note(call, name) ? real() : -1;
}

}  // namespace
}  // namespace simulator

using simulator::watch;
using simulator::watched;

extern "C" {
int __real_open(const char* path, int flags, ...);
int __real_open64(const char* path, int flags, ...);
int __real_flock(int file, int operation);
ssize_t __real_read(int file, void* bytes, std::size_t count);
ssize_t __real_write(int file, const void* bytes, std::size_t count);
int __real_fchmod(int file, mode_t mode);
int __real_fsync(int file);
int __real_close(int file);
int __real_rename(const char* from, const char* to);
int __real_unlink(const char* path);

int __wrap_open(const char* path, int flags, unsigned mode) {
  return simulator::noteOpen(path, __real_open(path, flags, mode));
}
int __wrap_open64(const char* path, int flags, unsigned mode) {
  return simulator::noteOpen(path, __real_open64(path, flags, mode));
}
int __wrap_flock(int file, int operation) {
  return watched("flock", watch.nameOf(file), [&] { return __real_flock(file, operation); });
}
ssize_t __wrap_read(int file, void* bytes, std::size_t count) {
  const std::string name = watch.nameOf(file);
  return name.empty() || watch.note("read", name) ? __real_read(file, bytes, count) : -1;
}
ssize_t __wrap_write(int file, const void* bytes, std::size_t count) {
  const std::string name = watch.nameOf(file);
  // By halves, as the system may: the rest has to follow.
  const std::size_t part = name.empty() || count < 2 ? count : count / 2;
  return name.empty() || watch.note("write", name) ? __real_write(file, bytes, part) : -1;
}
int __wrap_fchmod(int file, mode_t mode) {
  return watched("fchmod", watch.nameOf(file), [&] { return __real_fchmod(file, mode); });
}
int __wrap_fsync(int file) {
  return watched("fsync", watch.nameOf(file), [&] { return __real_fsync(file); });
}
int __wrap_close(int file) {
  const std::string name = watch.nameOf(file);
  watch.open.erase(file);
  const int result = __real_close(file);
  if (result != 0 && !watch.folder.empty()) (void)watch.note("close", "what is closed");
  return watched("close", name, [&] { return result; });
}
int __wrap_rename(const char* from, const char* to) {
  return watched("rename", watch.nameOf(from), [&] { return __real_rename(from, to); });
}
int __wrap_unlink(const char* path) {
  return watched("unlink", watch.nameOf(path), [&] { return __real_unlink(path); });
}
}

namespace simulator {
namespace {

class SaveOrder : public SwitchTest {
 protected:
  SaveOrder() : folder(fs::canonical(fs::temp_directory_path()) / ("save_order_test." + std::to_string(getpid()))) {
    fs::create_directories(folder);
    file.emplace(folder / "state");
    file->load(sw);
    file->save(sw);
    watch = {.folder = folder.string(), .open = {}, .calls = {}, .failing = ""};
    std::ofstream(folder / "state.new") << "what a killed session left";
    errno = 0;
  }
  ~SaveOrder() override {
    watch = {};
    file.reset();
    fs::remove_all(folder);
  }
  // What the calls were, those that follow one another and are alike once.
  static std::vector<std::string> calls() {
    std::vector<std::string> calls = watch.calls;
    calls.erase(std::unique(calls.begin(), calls.end()), calls.end());
    return calls;
  }

  fs::path folder;
  std::optional<StateFile> file;
};

const std::vector<std::string> kOrder = {"unlink state.new", "open state.new",  "fchmod state.new", "write state.new",
                                         "fsync state.new",  "close state.new", "rename state.new", "open folder",
                                         "fsync folder",     "close folder"};

TEST_F(SaveOrder, IsWriteFlushRenameFlushTheFolder) {
  file->save(sw);
  EXPECT_EQ(calls(), kOrder);
  // The halves of the writes.
  EXPECT_GT(std::count(watch.calls.begin(), watch.calls.end(), "write state.new"), 3);
  EXPECT_EQ(fs::file_size(folder / "state"),
            stateText(StartState(sw.exportState(), sw.fingerprint()), sw.exportState()).size());
}

TEST_F(SaveOrder, EndsWhereACallFails) {
  std::ofstream(folder / "state") << "old";
  for (const char* call : {"fchmod state.new", "write state.new", "fsync state.new", "close state.new",
                           "rename state.new", "unlink state.new"}) {
    watch.calls.clear();
    watch.failing = call;
    EXPECT_THROW(file->save(sw), StateError) << call;
    EXPECT_EQ(calls().front(), kOrder.front());
    EXPECT_EQ(std::count(watch.calls.begin(), watch.calls.end(), "fsync folder"), 0) << call;
    EXPECT_EQ(fs::file_size(folder / "state"), 3U) << call;
    EXPECT_FALSE(fs::exists(folder / "state.new")) << call;
  }
}

TEST_F(SaveOrder, GoesOnAfterASignal) {
  watch.isInterrupted = true;
  watch.failing = "write state.new";
  file->save(sw);
  EXPECT_EQ(calls(), kOrder);
  watch.calls.clear();
  watch.failing = "read state";
  file->load(sw);
  EXPECT_EQ(calls(), (std::vector<std::string>{"open state", "read state", "close state"}));
}

TEST_F(SaveOrder, LoadSaysWhatCannotBeReadOrLocked) {
  const std::string name = folder / "state";
  const auto errorOf = [&](const std::string& failing) {
    watch.failing = failing;
    try {
      StateFile(name).load(sw);
    } catch (const StateError& error) {
      return std::string(error.what());
    }
    return std::string("no error");
  };
  file.reset();
  watch.calls.clear();
  EXPECT_EQ(errorOf("flock state.lock"), name + ": cannot be locked: Input/output error");
  EXPECT_EQ(calls(), (std::vector<std::string>{"open state.lock", "flock state.lock", "close state.lock"}));
  EXPECT_EQ(errorOf("read state"), name + ": cannot be read: Input/output error");
  EXPECT_EQ(errorOf(""), "no error");
}

// A descriptor of 0 is as good as any.
TEST_F(SaveOrder, IsTheSameWhereStandardInputIsClosed) {
  const int input = ::dup(STDIN_FILENO);
  (void)::close(STDIN_FILENO);
  file->save(sw);
  file->load(sw);
  EXPECT_EQ(::fcntl(STDIN_FILENO, F_GETFD), -1);
  file.reset();
  file.emplace(folder / "state");
  EXPECT_NE(::fcntl(STDIN_FILENO, F_GETFD), -1);
  file.reset();
  (void)::dup2(input, STDIN_FILENO);
  (void)::close(input);
}

TEST_F(SaveOrder, FailsWithTheFolder) {
  watch.failing = "fsync folder";
  try {
    file->save(sw);
    FAIL();
  } catch (const StateError& error) {
    EXPECT_EQ(error.code(), kBadState);
    EXPECT_EQ(error.what(), (folder / "state").string() + ": cannot be written: Input/output error");
  }
  EXPECT_FALSE(fs::exists(folder / "state.new"));
}

}  // namespace
}  // namespace simulator
