// What a command is expected to do, written short, and fixtures for tests that every command family repeats.
#pragma once

#include <initializer_list>
#include <ostream>
#include <string>
#include <utility>

#include "tests/support/tool_test.h"

namespace recording {

// Success that prints nothing.
inline Outcome done(Calls calls) {
  return {CMD_OK, "", std::move(calls)};
}

inline Outcome printed(std::string out, Calls calls) {
  return {CMD_OK, std::move(out), std::move(calls)};
}

// Refused before anything was printed or called.
inline Outcome refused(CmdStatus status) {
  return {status, "", {}};
}

// Ended by a platform failure; `out` is the error line.
inline Outcome failed(std::string out, Calls calls) {
  return {CMD_EXEC_ERROR, std::move(out), std::move(calls)};
}

inline Calls operator+(Calls first, const Calls& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

// What a table header asks about ports whose running rate is valid; a port is written user/ASIC/port.
inline Calls headerQuestions(std::initializer_list<const char*> ports) {
  Calls calls;
  for (const std::string port : ports) {
    calls.push_back("GetPortInfo(" + port + ", 0)");
    calls.push_back("GetPortCfgSpeed(" + port + ")");
    calls.push_back("GetPortSpeed(" + port + ")");
    calls.push_back("GetMediaHwFcXmtrType(" + port + ")");
  }
  return calls;
}

// The same for one port that does not run: its running rate is not asked for.
inline Calls idleHeaderQuestions(const std::string& port) {
  return {"GetPortInfo(" + port + ", 0)", "GetPortCfgSpeed(" + port + ")", "GetMediaHwFcXmtrType(" + port + ")"};
}

// A port without a configured speed and in a state without a running one.
inline void makeIdle(Port& port) {
  port.state = 0;
  port.configuredSpeed = SPEED_AUTO;
}

// A command line that is refused; the name says why.
struct Refusal {
  const char* name;
  const char* line;
  CmdStatus status;
};

inline void PrintTo(const Refusal& refusal, std::ostream* stream) {
  *stream << refusal.line;
}

inline std::string refusalName(const testing::TestParamInfo<Refusal>& info) {
  return info.param.name;
}

class RefusalTest : public TopologyTest, public testing::WithParamInterface<Refusal> {};

// A switch that reports more ports than there can be; the parameter is their number.
class OversizedSwitchTest : public TopologyTest, public testing::WithParamInterface<unsigned> {
 protected:
  void SetUp() override {
    TopologyTest::SetUp();
    platform.portCount = GetParam();
    discover();
  }
};

}  // namespace recording
