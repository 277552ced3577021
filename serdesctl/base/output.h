// Standard output for programs that read it: written whole or an error, and never through stdio, whose stream belongs
// to the rehearsed handlers. And standard error.
#pragma once

#include <string>
#include <string_view>

namespace serdesctl {

class Output {
 public:
  explicit Output(int descriptor) : descriptor_(descriptor) {}

  void write(std::string_view text);

  // Throws WriteError, ReaderLeft or Interrupted.
  void flush();

 private:
  int descriptor_;
  std::string waiting_;
};

// Whether colours mean something there: to a terminal that has some, unless NO_COLOR is set.
bool showsColour(int descriptor);

// On standard error, "serdesctl: " before each line of it. Nobody can be told when that fails.
void complain(const std::string& what);

}  // namespace serdesctl
