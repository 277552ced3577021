// The lock of a switch.
#include "serdesctl/target/lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/people.h"
#include "serdesctl/base/text.h"

namespace serdesctl {
namespace {

constexpr Seconds kBetweenTries{0.1};
constexpr mode_t kEverybody = 0666;  // whoever comes next writes its name there

Fd openOnce(const std::string& fileName) {
  constexpr int kFlags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  Fd file(::open(fileName.c_str(), O_RDWR | kFlags));
  if (file.isOpen() || errno != ENOENT) return file;
  file.reset(::open(fileName.c_str(), O_RDWR | O_CREAT | O_EXCL | kFlags, kEverybody));
  if (file.isOpen()) (void)::fchmod(file.get(), kEverybody);
  return file;
}

// Opened first and created only where there is none: systems refuse O_CREAT on other people's files in shared folders.
Fd openLockFile(const std::string& fileName) {
  Fd file = openOnce(fileName);
  if (!file.isOpen() && errno == EEXIST) file = openOnce(fileName);
  struct stat status {};
  if (!file.isOpen() || ::fstat(file.get(), &status) != 0) {
    throw ConnectionError("lock " + fileName + ": " + errorText());
  }
  if (!S_ISREG(status.st_mode)) throw ConnectionError("lock " + fileName + ": not a file");
  return file;
}

std::string holderOf(const Fd& file) {
  std::array<char, 256> text{};
  const ssize_t length = ::pread(file.get(), text.data(), text.size(), 0);
  std::string holder(text.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
  holder = printable(holder.substr(0, holder.find('\n')));
  return holder.empty() ? "somebody" : holder;
}

}  // namespace

Fd takeLock(const std::string& fileName, const std::string& holder, Seconds wait) {
  Fd file = openLockFile(fileName);
  const TimePoint deadline = after(wait);
  while (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) throw ConnectionError("lock " + fileName + ": " + errorText());
    if (Clock::now() >= deadline) throw LockedError("locked by " + holderOf(file) + " (" + fileName + ")");
    sleepUntil(std::min(deadline, after(kBetweenTries)));
  }
  // The name is a courtesy: the lock holds without it.
  if (::ftruncate(file.get(), 0) == 0) (void)!::pwrite(file.get(), holder.data(), holder.size(), 0);
  return file;
}

std::string lockHolder() {
  return userName() + "@" + hostName() + ", process " + std::to_string(::getpid()) + ", since " + utcText(utcNow());
}

std::string lockFolder() {
  for (const char* folder : {"/run/lock", "/var/lock"}) {
    struct stat status {};
    if (::stat(folder, &status) == 0 && S_ISDIR(status.st_mode)) return folder;
  }
  return "/tmp";
}

}  // namespace serdesctl
