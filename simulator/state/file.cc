// Files and locks, by the operating system's own calls: what must survive a crash has to be said to it in full.
#include "simulator/state/file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace simulator {
namespace {

// No state comes near; whatever is larger is something else.
constexpr std::size_t kMostBytes = 16U << 20;

[[noreturn]] void fail(const std::string& name, const std::string& what) {
  throw StateError(kBadState, name + ": " + what);
}
[[noreturn]] void fail(const std::string& name, const std::string& what, int error) {
  fail(name, what + ": " + std::strerror(error));
}

// An open file that is closed when it goes out of scope.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) (void)::close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  bool isOpen() const {
    return number_ >= 0;
  }
  int number() const {
    return number_;
  }
  bool close() {
    const int number = number_;
    number_ = -1;
    return ::close(number) == 0;
  }

 private:
  int number_;
};

// The true place of the file, so that all names of it have one lock and a symbolic link is written through.
std::string resolved(const std::string& fileName) {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::weakly_canonical(fileName, error);
  return error ? fileName : path.string();
}

// The whole file; nothing when there is none. `name` is for messages.
std::optional<std::string> contents(const std::string& path, const std::string& name) {
  // Not to wait for a pipe's other end: only a file is read.
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file.isOpen() && errno == ENOENT) return std::nullopt;
  if (!file.isOpen()) fail(name, "cannot be read", errno);
  struct stat status {};
  if (::fstat(file.number(), &status) != 0) fail(name, "cannot be read", errno);
  if (!S_ISREG(status.st_mode)) fail(name, "is not a file");
  std::string text;
  std::array<char, 65536> block;
  while (text.size() <= kMostBytes) {
    const ssize_t count = ::read(file.number(), block.data(), block.size());
    if (count == 0) return text;
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) fail(name, "cannot be read", errno);
    text.append(block.data(), static_cast<std::size_t>(count));
  }
  fail(name, "is too large for a state of a simulated switch");
}

bool writeAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(file, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

// A new file beside the old one, on the disk before it takes the old one's name.
bool writeNew(const std::string& name, const std::string& oldName, std::string_view text) {
  // What a killed session left; its lock is ours now.
  if (::unlink(name.c_str()) != 0 && errno != ENOENT) return false;
  Descriptor file(::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  if (!file.isOpen()) return false;
  struct stat old {};
  if (::stat(oldName.c_str(), &old) == 0 && ::fchmod(file.number(), old.st_mode & 0777) != 0) return false;
  return writeAll(file.number(), text) && ::fsync(file.number()) == 0 && file.close();
}

// Puts the folder's entries on the disk, where the file system has a notion of that.
bool syncFolder(const std::string& fileName) {
  const std::string folder = std::filesystem::path(fileName).parent_path();
  const Descriptor file(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return file.isOpen() && (::fsync(file.number()) == 0 || errno == EINVAL);
}

}  // namespace

StateFile::StateFile(const std::string& fileName) : name_(fileName), path_(resolved(fileName)) {
  // A file of its own, which stays: the state's file is another one after each save.
  const std::string lockName = path_ + ".lock";
  lock_ = ::open(lockName.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666);
  if (lock_ < 0) fail(name_, "cannot be locked", errno);
  if (::flock(lock_, LOCK_EX | LOCK_NB) == 0) return;
  const int error = errno;
  (void)::close(lock_);
  if (error == EWOULDBLOCK) throw StateError(kStateInUse, name_ + ": another session uses it");
  fail(name_, "cannot be locked", error);
}

StateFile::~StateFile() {
  (void)::close(lock_);
}

void StateFile::load(Switch& theSwitch) {
  start_.emplace(theSwitch.exportState(), theSwitch.fingerprint());
  const std::optional<std::string> text = contents(path_, name_);
  if (!text) return;
  if (!theSwitch.importState(readStateText(*text, name_, *start_))) {
    fail(name_, "has a value that the switch cannot have");
  }
}

void StateFile::save(const Switch& theSwitch) const {
  const std::string text = stateText(*start_, theSwitch.exportState());
  const std::string newPath = path_ + ".new";
  if (!writeNew(newPath, path_, text) || ::rename(newPath.c_str(), path_.c_str()) != 0) {
    const int error = errno;
    (void)::unlink(newPath.c_str());
    fail(name_, "cannot be written", error);
  }
  if (!syncFolder(path_)) fail(name_, "cannot be written", errno);
}

}  // namespace simulator
