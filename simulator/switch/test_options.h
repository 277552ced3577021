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

// A link that an option is set on; errors are counted up to now.
struct TestedLink {
  const Port& port;
  unsigned number;
  LinkResults& results;

  RxLinkState& rx() const {
    return port.state.rx[number];
  }
};

struct TestOptionRow {
  TestOption option;
  SerDesLinkType side;                // whose links it is about
  int greatestMode;                   // modes start at 0
  bool (*takes)(int mode) = nullptr;  // null: all to the greatest
  bool needsDfe = false;
  void (*set)(const TestedLink& link, int mode);
  int (*status)(Reception& reception, unsigned link) = nullptr;  // null: there is none to read

  bool hasMode(int mode) const {
    return mode >= 0 && mode <= greatestMode && (takes == nullptr || takes(mode));
  }
  bool isFor(const PortView& port) const {
    return !needsDfe || port.rx.map.has(Field::kHold);
  }
};

// Null when there is no such option.
const TestOptionRow* findTestOption(std::uint32_t option);

}  // namespace simulator
