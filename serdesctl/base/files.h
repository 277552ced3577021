// Descriptors and whole files.
#pragma once

#include <cerrno>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace serdesctl {

// An open descriptor that is closed when it goes out of scope.
class Fd {
 public:
  Fd() = default;
  explicit Fd(int number) : number_(number) {}
  ~Fd() {
    reset();
  }
  Fd(Fd&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Fd& operator=(Fd&& other) noexcept {
    if (this != &other) reset(std::exchange(other.number_, -1));
    return *this;
  }
  Fd(const Fd&) = delete;
  Fd& operator=(const Fd&) = delete;

  int get() const {
    return number_;
  }
  bool isOpen() const {
    return number_ >= 0;
  }
  void reset(int number = -1);

 private:
  int number_ = -1;
};

// The operating system's words for an error.
std::string errorText(int error = errno);

// The whole of a file, "-" for standard input; throws UsageError "NAME: why" when it cannot be read or is longer,
// and Interrupted.
std::string readFile(const std::string& name, std::size_t mostBytes);

// What messages call a file of that name.
std::string fileTitle(const std::string& name);

// Writes all of `text`; false with errno when that fails.
bool writeAll(int descriptor, std::string_view text);

// Puts the folder's entries on the disk, where the file system has a notion of that.
void syncFolder(const std::string& folder);

// Writes a file so that it holds the old text or the whole new one at any moment, and the new one on the disk
// afterwards. What is no plain file is written to. Throws WriteError "NAME: why".
void writeFileWhole(const std::string& name, std::string_view text);

// Throws UsageError "NAME: why" where writeFileWhole could not begin: for what takes long before it has something to
// write. An empty name is no file.
void requireWritable(const std::string& name);

// The value of an environment variable; an empty one counts as one that is not set.
std::optional<std::string> environmentVariable(const char* name);

}  // namespace serdesctl
