// Descriptors and whole files.
#include "serdesctl/base/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>

#include "serdesctl/base/errors.h"

namespace serdesctl {
namespace {

[[noreturn]] void failToRead(const std::string& name, int error) {
  throw UsageError(name + ": " + errorText(error));
}

std::string readToEnd(int descriptor, const std::string& name, std::size_t mostBytes) {
  std::string text;
  std::array<char, 65536> block;
  while (text.size() <= mostBytes) {
    const ssize_t count = ::read(descriptor, block.data(), block.size());
    if (count == 0) return text;
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failToRead(name, errno);
    text.append(block.data(), static_cast<std::size_t>(count));
  }
  throw UsageError(name + ": longer than " + std::to_string(mostBytes) + " bytes");
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

bool writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(descriptor, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

std::optional<std::string> environmentVariable(const char* name) {
  const char* const value = std::getenv(name);
  if (value == nullptr || *value == '\0') return std::nullopt;
  return value;
}

}  // namespace serdesctl
