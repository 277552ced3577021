// The trace file.
#include "simulator/calls/trace.h"

namespace simulator {

bool Trace::open(const std::string& fileName) {
  file_.reset(fileName.empty() ? nullptr : std::fopen(fileName.c_str(), "a"));
  fileName_ = fileName;
  return fileName.empty() || isOn();
}

void Trace::line(std::string_view text) {
  const bool isWhole = std::fwrite(text.data(), 1, text.size(), file_.get()) == text.size();
  if (isWhole && std::fputc('\n', file_.get()) != EOF && std::fflush(file_.get()) == 0) return;
  std::fprintf(stderr, "simulated switch: %s: cannot be written, the trace ends here\n", fileName_.c_str());
  file_.reset();
}

}  // namespace simulator
