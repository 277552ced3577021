// Descriptors and whole files.
#include "serdesctl/base/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/waiting.h"

namespace serdesctl {
namespace {

[[noreturn]] void failToRead(const std::string& name, int error) {
  throwIfInterrupted();
  throw UsageError(name + ": " + errorText(error));
}

std::string readToEnd(int descriptor, const std::string& name, std::size_t mostBytes) {
  std::string text;
  std::array<char, 65536> block;
  while (text.size() <= mostBytes) {
    const ssize_t count = ::read(descriptor, block.data(), block.size());
    if (count == 0) return text;
    if (count < 0) failToRead(name, errno);
    text.append(block.data(), static_cast<std::size_t>(count));
  }
  throw UsageError(name + ": longer than " + std::to_string(mostBytes) + " bytes");
}

[[noreturn]] void failToWrite(const std::string& name, int error) {
  throw WriteError(name + ": " + errorText(error));
}

// A file beside the one that it will replace, gone unless it has done so.
class Replacement {
 public:
  explicit Replacement(const std::string& name, mode_t mode) : name_(name) {
    for (int number = 0; !file_.isOpen(); ++number) {
      temporary_ = name + "." + std::to_string(::getpid()) + "." + std::to_string(number);
      file_.reset(::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
      if (!file_.isOpen() && errno != EEXIST) failToWrite(name, errno);
    }
  }
  ~Replacement() {
    if (!temporary_.empty()) (void)::unlink(temporary_.c_str());
  }
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

  void write(std::string_view text) {
    if (!writeAll(file_.get(), text) || ::fsync(file_.get()) != 0) failToWrite(name_, errno);
    if (::rename(temporary_.c_str(), name_.c_str()) != 0) failToWrite(name_, errno);
    temporary_.clear();
  }

 private:
  std::string name_;
  std::string temporary_;
  Fd file_;
};

// Where a name leads to.
struct Destination {
  explicit Destination(const std::string& name) {
    constexpr mode_t kPermissions = 0777;
    struct stat old {};
    const bool exists = ::stat(name.c_str(), &old) == 0;
    isPlain = !exists || S_ISREG(old.st_mode);
    file = exists && isPlain ? std::filesystem::canonical(name).string() : name;
    mode = exists ? old.st_mode & kPermissions : 0666;
  }

  std::string file;
  mode_t mode;
  bool isPlain;  // or written to as it stands
};

void writeInto(const std::string& name, std::string_view text) {
  const Fd file(::open(name.c_str(), O_WRONLY | O_CLOEXEC));
  if (!file.isOpen() || !writeAll(file.get(), text)) failToWrite(name, errno);
}

}  // namespace

void Fd::reset(int number) {
  if (number_ >= 0) (void)::close(number_);
  number_ = number;
}

std::string errorText(int error) {
  return std::strerror(error);
}

std::string readFile(const std::string& name, std::size_t mostBytes) {
  if (name == "-") return readToEnd(STDIN_FILENO, name, mostBytes);
  const Fd file(::open(name.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.isOpen()) failToRead(name, errno);
  return readToEnd(file.get(), name, mostBytes);
}

std::string fileTitle(const std::string& name) {
  return name == "-" ? "standard input" : name;
}

bool writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(descriptor, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

void syncFolder(const std::string& folder) {
  const Fd file(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  (void)::fsync(file.get());
}

void writeFileWhole(const std::string& name, std::string_view text) {
  const Destination destination(name);
  if (!destination.isPlain) {
    writeInto(name, text);
    return;
  }
  Replacement(destination.file, destination.mode).write(text);
  const std::string folder = std::filesystem::path(destination.file).parent_path().string();
  syncFolder(folder.empty() ? "." : folder);
}

void requireWritable(const std::string& name) {
  if (name.empty()) return;
  if (name == "-") throw UsageError("'-' is no file to write to");  // it is standard input where files are read
  try {
    std::error_code ignored;
    if (std::filesystem::is_directory(name, ignored)) failToWrite(name, EISDIR);
    const Destination destination(name);
    if (destination.isPlain) {
      const Replacement unused(destination.file, destination.mode);
    } else if (::access(name.c_str(), W_OK) != 0) {  // opened and closed again, a pipe would end
      failToWrite(name, errno);
    }
  } catch (const WriteError& error) {
    throw UsageError(error.what());
  }
}

std::optional<std::string> environmentVariable(const char* name) {
  const char* const value = std::getenv(name);
  if (value == nullptr || *value == '\0') return std::nullopt;
  return value;
}

}  // namespace serdesctl
