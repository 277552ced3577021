// Lets every platform call of every command fail in turn: one error line under the handler's name, no table, the calls
// made are a prefix of the faultless run's, and the next command works.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "shell/session.h"
#include "tests/unit/sweep/examples.h"
#include "topology/serdes_topology.h"

namespace recording {
namespace {

std::string operationOf(const std::string& call) {
  return call.substr(0, call.find('('));
}

Calls callsThrough(const Calls& calls, std::size_t last) {
  return {calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(last) + 1};
}

// The table header absorbs the failures of its own questions; the only way a type's name can fail is to be null.
bool isAbsorbed(const Calls& calls, std::size_t failed) {
  const std::string operation = operationOf(calls[failed]);
  if (operation == "GetPortInfo" || operation == "GetPortSpeed" || operation == "GetMediaHwFcXmtrType" ||
      operation == "ToString") {
    return true;
  }
  // showRate asks for the configured speed itself before the header does.
  return operation == "GetPortCfgSpeed" && failed > 0 && operationOf(calls[failed - 1]) == "GetPortInfo";
}

// What a failing call leaves in front of the error line, and the line; a missing hardware record is not reported.
void expectReport(const std::string& out, const std::string& faultless, const std::string& call,
                  const std::string& reporter, int code, bool printsAsItGoes) {
  const std::string line =
      operationOf(call) == "GetPortHwConfig" ? "" : reporter + ": serdes err " + std::to_string(code) + "\n";
  ASSERT_TRUE(out.ends_with(line)) << out;
  const std::string before = out.substr(0, out.size() - line.size());
  EXPECT_TRUE(faultless.starts_with(before)) << out;
  EXPECT_TRUE(printsAsItGoes || before.empty()) << out;
  EXPECT_EQ(before.find("serdes err"), std::string::npos) << out;
}

std::string topologyBytes() {
  std::string bytes(sizeof serdesTopology, '\0');
  std::memcpy(bytes.data(), &serdesTopology, sizeof serdesTopology);
  return bytes;
}

class FaultSweep : public TopologyTest, public testing::WithParamInterface<Example> {
 protected:
  // Gives what was printed where the failure is absorbed, and nothing where it ends the command.
  std::string checkFailure(const Outcome& faultless, std::size_t call, int code, bool forever) {
    const Example& example = GetParam();
    SCOPED_TRACE("call " + std::to_string(call + 1) + " " + faultless.calls[call] + " gives " + std::to_string(code) +
                 (forever ? " for ever" : " once"));
    SetUp();
    const std::string model = topologyBytes();
    platform.failCall(static_cast<unsigned>(call) + 1, code, forever);
    const Outcome outcome = run(lineOf(example));
    const bool absorbed = isAbsorbed(faultless.calls, call);
    if (absorbed) {
      EXPECT_EQ(outcome.status, faultless.status);
      EXPECT_EQ(outcome.out.find("serdes err"), std::string::npos) << outcome.out;
    } else {
      EXPECT_EQ(outcome.status, CMD_EXEC_ERROR);
      EXPECT_EQ(outcome.calls, callsThrough(faultless.calls, call));
      const std::string reporter = example.handler ? example.handler : std::string(example.name) + "CmdHandler";
      expectReport(outcome.out, faultless.out, faultless.calls[call], reporter, code, example.printsAsItGoes);
    }
    platform.faults.clear();
    if (!example.printsAsItGoes) {
      EXPECT_EQ(topologyBytes(), model);
    }
    EXPECT_EQ(run(lineOf(example)), faultless);
    return absorbed ? outcome.out : "";
  }
};

INSTANTIATE_TEST_SUITE_P(, FaultSweep, testing::ValuesIn(kExamples), exampleName);

TEST_P(FaultSweep, EachCallFailsWithOneErrorLineAndNoTable) {
  const Outcome faultless = run(lineOf(GetParam()));
  ASSERT_EQ(faultless.status, std::string(GetParam().name) == "exit" ? CMD_EXIT : CMD_OK);
  for (std::size_t call = 0; call < faultless.calls.size(); ++call) {
    for (const bool forever : {false, true})
      EXPECT_EQ(checkFailure(faultless, call, -1, forever), checkFailure(faultless, call, INT_MIN, forever));
  }
}

TEST_P(FaultSweep, PositiveResultsAreNoFailures) {
  const Outcome faultless = run(lineOf(GetParam()));
  for (const int code : {1, INT_MAX}) {
    SetUp();
    platform.failCall(1, code, true);
    EXPECT_EQ(run(lineOf(GetParam())), faultless) << code;
  }
}

// Start-up from a tool that knows nothing yet.
class StartUp : public ToolTest {
 protected:
  Outcome start(unsigned failingCall = 0, int code = 0, bool forever = false) {
    SetUp();
    serdesTopology = {};
    if (failingCall != 0) platform.failCall(failingCall, code, forever);
    Outcome outcome;
    outcome.out = printedBy([&] { outcome.status = openSerdes(0, nullptr); });
    outcome.calls = platform.calls;
    return outcome;
  }
};

TEST_F(StartUp, PositiveResultsAreNoFailures) {
  EXPECT_EQ(start(1, 1, true), start());
}

TEST_F(StartUp, EachCallFailsAndTheSessionStillRuns) {
  const Outcome faultless = start();
  ASSERT_EQ(faultless.status, CMD_OK);
  for (std::size_t call = 0; call < faultless.calls.size(); ++call) {
    for (const int code : {-1, INT_MIN}) {
      SCOPED_TRACE(faultless.calls[call]);
      const Outcome outcome = start(static_cast<unsigned>(call) + 1, code);
      EXPECT_EQ(outcome.status, CMD_EXEC_ERROR);
      EXPECT_EQ(outcome.calls, callsThrough(faultless.calls, call));
      expectReport(outcome.out, faultless.out, faultless.calls[call], call < 3 ? "openSerdes" : "setAsicNumCmdHandler",
                   code, true);
      EXPECT_EQ(runStream("bogus\n"), "unknown command\n\n\n\n");
    }
  }
}

}  // namespace
}  // namespace recording
