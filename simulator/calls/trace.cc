// The trace file.
#include "simulator/calls/trace.h"

namespace simulator {

bool Trace::open(const std::string& fileName) {
  file_.reset(fileName.empty() ? nullptr : std::fopen(fileName.c_str(), "a"));
  fileName_ = fileName;
  return fileName.empty() || isOn();
}

void Trace::line(const std::string& text) {
  if (!isOn()) return;
  const std::string whole = text + '\n';
  if (std::fwrite(whole.data(), 1, whole.size(), file_.get()) == whole.size() && std::fflush(file_.get()) == 0) return;
  std::fprintf(stderr, "simulated switch: %s: cannot be written, the trace ends here\n", fileName_.c_str());
  file_.reset();
}

}  // namespace simulator
