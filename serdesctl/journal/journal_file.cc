// Appending to the journal: lock, look whether the file is still the one of that name, mend, append, unlock.
#include "serdesctl/journal/journal_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <tuple>
#include <utility>

#include "serdesctl/base/errors.h"

namespace serdesctl {
namespace {

constexpr const char* kFileName = "/journal.jsonl";
constexpr const char* kSystemFolder = "/var/lib/serdesctl";
constexpr std::size_t kMostRead = 64U << 20;
constexpr Seconds kBetweenTries{0.005};

// Unlocks when it goes out of scope.
class Unlocking {
 public:
  explicit Unlocking(const Fd& file) : file_(file) {}
  ~Unlocking() {
    (void)::flock(file_.get(), LOCK_UN);
  }
  Unlocking(const Unlocking&) = delete;
  Unlocking& operator=(const Unlocking&) = delete;

 private:
  const Fd& file_;
};

// False when others have had it for too long: whoever was stopped while writing must not stop everybody.
bool lockInTime(const Fd& file, int how, Seconds othersMayTake) {
  const TimePoint deadline = after(othersMayTake);
  while (::flock(file.get(), how | LOCK_NB) != 0) {
    if ((errno != EWOULDBLOCK && errno != EINTR) || Clock::now() >= deadline) return false;
    (void)waitThroughSignals({}, after(kBetweenTries));
  }
  return true;
}

std::size_t sizeOf(const Fd& file) {
  struct stat status {};
  (void)::fstat(file.get(), &status);
  return static_cast<std::size_t>(status.st_size);
}

// How many of the first `size` bytes are whole lines.
std::size_t wholeLines(const Fd& file, std::size_t size) {
  std::array<char, 4096> block;
  while (size > 0) {
    const std::size_t begin = size > block.size() ? size - block.size() : 0;
    const ssize_t count = ::pread(file.get(), block.data(), size - begin, static_cast<off_t>(begin));
    if (count <= 0) return size;
    const std::string_view text(block.data(), static_cast<std::size_t>(count));
    const std::size_t newline = text.rfind('\n');
    if (newline != std::string_view::npos) return begin + newline + 1;
    size = begin;
  }
  return 0;
}

std::string numbered(const std::string& name, unsigned number) {
  return number == 0 ? name : name + "." + std::to_string(number);
}

bool isWritable(const std::string& folder) {
  return ::access(folder.c_str(), W_OK | X_OK) == 0;
}

std::string userFolder() {
  if (const auto folder = environmentVariable("XDG_STATE_HOME")) return *folder + "/serdesctl";
  if (const auto home = environmentVariable("HOME")) return *home + "/.local/state/serdesctl";
  return "";
}

}  // namespace

JournalFile::JournalFile(std::string folder, Notice notice, JournalBounds bounds)
    : folder_(std::move(folder)), name_(folder_ + kFileName), notice_(std::move(notice)), bounds_(bounds) {}

void JournalFile::append(std::string_view lines, bool onDisk) {
  std::size_t size = openLocked();
  if (size > 0 && size + lines.size() > bounds_.mostBytes) {
    rotate();
    size = openLocked();
  }
  const Unlocking unlocking(file_);
  if (writeAll(file_.get(), lines) && (!onDisk || ::fdatasync(file_.get()) == 0)) return;
  const int error = errno;
  (void)!::ftruncate(file_.get(), static_cast<off_t>(size));
  errno = error;
  fail("cannot be written");
}

// Opens the file, if it is not open, and locks it; gives its size. Others may give its name to another file meanwhile.
std::size_t JournalFile::openLocked() {
  if (folder_.empty()) throw WriteError("no folder for the journal: neither XDG_STATE_HOME nor HOME is set");
  for (;;) {
    if (!file_.isOpen()) {
      file_.reset(::open(name_.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0644));
      if (!file_.isOpen()) fail("cannot be opened");
    }
    if (!lockInTime(file_, LOCK_EX, bounds_.othersMayTake)) fail("cannot be locked");
    if (isCurrent()) break;
    file_.reset();
  }
  const std::size_t size = sizeOf(file_);
  if (size == 0) syncFolder(folder_);
  return cutTornLine(size);
}

bool JournalFile::isCurrent() const {
  struct stat named {};
  struct stat open {};
  (void)::fstat(file_.get(), &open);
  return ::stat(name_.c_str(), &named) == 0 &&
         std::tie(named.st_dev, named.st_ino) == std::tie(open.st_dev, open.st_ino);
}

std::size_t JournalFile::cutTornLine(std::size_t size) {
  const std::size_t whole = wholeLines(file_, size);
  if (whole == size) return size;
  if (::ftruncate(file_.get(), static_cast<off_t>(whole)) != 0) fail("cannot be mended");
  notice_(name_ + ": a record that was cut short is removed (" + std::to_string(size - whole) + " bytes)");
  return whole;
}

// The lock of the old file keeps others from doing the same: they find another file of that name afterwards.
void JournalFile::rotate() {
  const Unlocking unlocking(file_);
  for (unsigned number = bounds_.oldFiles; number > 0; --number)
    (void)::rename(numbered(name_, number - 1).c_str(), numbered(name_, number).c_str());
  if (bounds_.oldFiles == 0) (void)::unlink(name_.c_str());
}

void JournalFile::fail(const std::string& what) const {
  throw WriteError("journal " + name_ + " " + what + ": " + errorText());
}

std::vector<std::string> readJournal(const std::string& folder, const Notice& notice, const Notice& unreadable) {
  std::vector<std::string> lines;
  const std::string name = folder + kFileName;
  for (unsigned number = JournalBounds().oldFiles + 1; number-- > 0;) {
    const std::string fileName = numbered(name, number);
    const Fd file(::open(fileName.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.isOpen()) {
      if (errno != ENOENT) unreadable(fileName + ": " + errorText());
      continue;
    }
    (void)lockInTime(file, LOCK_SH, JournalBounds().othersMayTake);
    const std::string text = readFile(fileName, kMostRead);
    std::size_t begin = 0;
    for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', begin)) {
      lines.push_back(text.substr(begin, end - begin));
      begin = end + 1;
    }
    if (begin < text.size()) notice(fileName + ": the last record was cut short and is left out");
  }
  return lines;
}

std::string journalFolder() {
  if (const auto folder = environmentVariable("SERDESCTL_JOURNAL")) {
    (void)::mkdir(folder->c_str(), 0755);
    return *folder;
  }
  if (::geteuid() == 0) (void)::mkdir(kSystemFolder, 0755);
  if (isWritable(kSystemFolder)) return kSystemFolder;
  std::string folder = userFolder();
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  return folder;
}

std::vector<std::string> journalFolders() {
  if (const auto folder = environmentVariable("SERDESCTL_JOURNAL")) return {*folder};
  std::vector<std::string> folders = {kSystemFolder};
  if (const std::string folder = userFolder(); !folder.empty()) folders.push_back(folder);
  return folders;
}

}  // namespace serdesctl
