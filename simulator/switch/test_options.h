// Test options: loopback, patterns sent and checked, the DFE held and adapted anew, margin, injected errors,
// temperature.
#pragma once

#include "simulator/switch/reception.h"

namespace simulator {

// The numbers are the tool's.
enum TestOption : std::uint32_t {
  kTestLoopback = 0,
  kTestSendPattern = 1,
  kTestHoldDfe = 2,
  kTestCheckPattern = 3,
  kTestMargin = 4,
  kTestInjectErrors = 6,
  kTestReadapt = 7,
  kTestClearCheck = 8,
  kTestTemperature = 9,
};

struct TestOptionRow {
  TestOption option;
  SerDesLinkType side;  // whose links it is about
  int greatestMode;     // modes start at 0
  bool needsDfe = false;
  // Sets the mode on one link. Errors are counted up to now.
  void (*set)(const Port& port, unsigned link, int mode, LinkResults& results);
  // The status of one link; null when there is none to read.
  int (*status)(Reception& reception, unsigned link) = nullptr;

  bool isFor(const PortView& port) const {
    return !needsDfe || port.rx.map.has(Field::kHold);
  }
};

// Null when there is no such option.
const TestOptionRow* findTestOption(std::uint32_t option);

}  // namespace simulator
