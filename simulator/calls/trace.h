// One line for each platform call, appended to the file that SERDES_SIMULATOR_TRACE names.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "simulator/api.h"

namespace simulator {

class SIMULATOR_API Trace {
 public:
  // Writes to `fileName` from now on, or nowhere when it is empty. False, and nowhere, when it cannot be opened.
  bool open(const std::string& fileName);
  // As it was last given to open.
  const std::string& fileName() const {
    return fileName_;
  }
  bool isOn() const {
    return file_ != nullptr;
  }
  // Writes a line at once, to a trace that is on: a run that crashes must not lose what led there.
  void line(std::string_view text);

 private:
  struct Closer {
    void operator()(std::FILE* file) const {
      (void)std::fclose(file);
    }
  };
  std::unique_ptr<std::FILE, Closer> file_;
  std::string fileName_;
};

}  // namespace simulator
