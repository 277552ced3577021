// Lets every platform call of every command fail in turn: one error line under the handler's name, no table, the calls
// made are a prefix of the faultless run's, and the next command works.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "shell/command_table.h"
#include "shell/session.h"
#include "tests/support/tool_test.h"
#include "topology/serdes_topology.h"

namespace {

using recording::Calls;
using recording::Outcome;
using recording::platform;
using recording::run;

struct Command {
  const char* line;
  const char* handler;
};

// At least one line for every command that calls the platform.
constexpr Command kCommands[] = {
    {"setAsicNum 1", "setAsicNumCmdHandler"},
    {"setRate 4G gl", "setRateCmdHandler"},
    {"setTxEnable 0 0 2 4", "setTxEnableCmdHandler"},
    {"showRate all", "showRateCmdHandler"},
    {"showFFE xg", "showFFECmdHandler"},
    {"setFFE FFE3 115 -4 55 -25 0 gl", "setFFECmdHandler"},
    {"showSlew xg", "showSlewCmdHandler"},
    {"setSlew 36 0 1", "setSlewCmdHandler"},
    {"showTxParams 0 6", "showTxParamsCmdHandler"},
    {"setTxParams FFE3 115 -4 55 -25 0 36 gl", "setTxParamsCmdHandler"},
    {"showRxParams 0 6", "showRxParamsCmdHandler"},
    {"setRxParams DFE5 6 4 0x4e gl", "setRxParamsCmdHandler"},
    {"showTxParamsCache 8G 0-7", "showTxParamsCacheCmdHandler"},
    {"setTxParamsCache 8G FFE3 115 -4 55 -25 0 36 gl", "setTxParamsCacheCmdHandler"},
    {"showTxParamsRaw asic 8G gl", "showTxParamsRawCmdHandler"},
    {"setTxParamsRaw asic 8G 0 2 115 -4 55 -25 0 gl", "setTxParamsRawCmdHandler"},
    {"eshowTxParamsCache 10G exg", "eshowTxParamsCacheCmdHandler"},
    {"esetTxParamsCache 10G 6 5 exg", "esetTxParamsCacheCmdHandler"},
    {"showRxParamsCache 8G 0-7", "showRxParamsCacheCmdHandler"},
    {"setRxParamsCache 8G DFE3 7 0 0x4e gl", "setRxParamsCacheCmdHandler"},
    {"showRxParamsRaw asic 8G gl", "showRxParamsRawCmdHandler"},
    {"setRxParamsRaw asic 8G 1 7 0 0x4e 0 gl", "setRxParamsRawCmdHandler"},
    {"eshowRxParamsCache 10G exg", "eshowRxParamsCacheCmdHandler"},
    {"esetRxParamsCache 10G 2 1 exg", "esetRxParamsCacheCmdHandler"},
    {"showDFE 0 6", "showDFECmdHandler"},
    {"setDFE DFE5 gl", "setDFECmdHandler"},
    {"setDFEState 4 0 DFE3 0 1 0 1 0 1 0 1 0 1", "setDFEStateCmdHandler"},
    {"showDFEStats 0-7", "showDFEStatsCmdHandler"},
    {"showVGA 0 6", "showVGACmdHandler"},
    {"setVGA 6 4 0x4e gl", "setVGACmdHandler"},
    {"showPLL all", "showPLLRegistersCmdHandler"},
    {"writePLL 1 7 0xff", "writePLLRegisterCmdHandler"},
    {"readPLL 1 7", "readPLLRegisterCmdHandler"},
    {"showTx 0 6", "showTxRegistersCmdHandler"},
    {"writeTx 4 0 3 0x1c", "writeTxRegisterCmdHandler"},
    {"readTx 4 0 3", "readTxRegisterCmdHandler"},
    {"showRx 0 6", "showRxRegistersCmdHandler"},
    {"writeRx 4 0 3 0x1d", "writeRxRegisterCmdHandler"},
    {"readRx 4 0 3", "readRxRegisterCmdHandler"},
    {"runTest 4 0 0 1", "runTestCmdHandler"},
    {"runTest 0 0 100 0", "runTestCmdHandler"},
    {"runTest 4 0 101 0", "runTestCmdHandler"},
    {"getTest 4 0 0", "getTestCmdHandler"},
    {"clearErrors 0 1 2 3", "clearErrorsCmdHandler"},
};

// Commands that call no platform operation which can fail.
constexpr const char* kCommandsWithoutCalls[] = {"showConfig", "loop", "help", "exit"};

std::string operationOf(const std::string& call) {
  return call.substr(0, call.find('('));
}

bool startsWith(const Calls& calls, const Calls& prefix) {
  return prefix.size() <= calls.size() && std::equal(prefix.begin(), prefix.end(), calls.begin());
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

std::string topologyBytes() {
  std::string bytes(sizeof serdesTopology, '\0');
  std::memcpy(bytes.data(), &serdesTopology, sizeof serdesTopology);
  return bytes;
}

class FaultSweep : public recording::ToolTest {
 protected:
  void startAfresh() {
    SetUp();
    discover();
  }

  // Gives what was printed where the failure is absorbed, and nothing where it ends the command.
  std::string checkFailure(const Command& command, const Outcome& faultless, std::size_t call, int code, bool forever) {
    SCOPED_TRACE(std::string(command.line) + ", call " + std::to_string(call + 1) + " " + faultless.calls[call] +
                 " gives " + std::to_string(code) + (forever ? " for ever" : " once"));
    startAfresh();
    const std::string model = topologyBytes();
    platform.failCall(static_cast<unsigned>(call) + 1, code, forever);
    const Outcome outcome = run(command.line);
    if (isAbsorbed(faultless.calls, call)) {
      EXPECT_EQ(outcome.status, faultless.status);
      EXPECT_EQ(outcome.out.find("serdes err"), std::string::npos) << outcome.out;
    } else {
      EXPECT_EQ(outcome.status, CMD_EXEC_ERROR);
      EXPECT_EQ(outcome.calls, Calls(faultless.calls.begin(), faultless.calls.begin() + static_cast<long>(call) + 1));
      const std::string line = std::string(command.handler) + ": serdes err " + std::to_string(code) + "\n";
      if (operationOf(faultless.calls[call]) == "GetPortHwConfig") {
        EXPECT_EQ(outcome.out.find("serdes err"), std::string::npos) << outcome.out;
      } else if (std::string(command.handler) == "setAsicNumCmdHandler") {
        // The cores found so far have been printed.
        EXPECT_TRUE(outcome.out.ends_with(line)) << outcome.out;
        EXPECT_TRUE(faultless.out.starts_with(outcome.out.substr(0, outcome.out.size() - line.size())));
      } else {
        EXPECT_EQ(outcome.out, line);
      }
    }
    platform.faults.clear();
    if (std::string(command.handler) != "setAsicNumCmdHandler") {
      EXPECT_EQ(topologyBytes(), model);
    }
    const Outcome again = run(command.line);
    EXPECT_EQ(again.status, faultless.status);
    EXPECT_EQ(again.out, faultless.out);
    EXPECT_EQ(again.calls, faultless.calls);
    return isAbsorbed(faultless.calls, call) ? outcome.out : "";
  }
};

TEST_F(FaultSweep, EveryCommandOfTheTableIsSwept) {
  for (std::size_t i = 0; i < kCommandCount; ++i) {
    const std::string name = cmdTable[i].name;
    const bool swept = std::any_of(std::begin(kCommands), std::end(kCommands), [&](const Command& command) {
      return std::string(command.line).starts_with(name + " ");
    });
    const bool exempt = std::find(std::begin(kCommandsWithoutCalls), std::end(kCommandsWithoutCalls), name) !=
                        std::end(kCommandsWithoutCalls);
    EXPECT_NE(swept, exempt) << name;
  }
}

TEST_F(FaultSweep, EachCallOfEachCommandFailsWithOneErrorLineAndNoTable) {
  for (const Command& command : kCommands) {
    startAfresh();
    const Outcome faultless = run(command.line);
    ASSERT_EQ(faultless.status, CMD_OK) << command.line;
    ASSERT_FALSE(faultless.calls.empty()) << command.line;
    for (std::size_t call = 0; call < faultless.calls.size(); ++call) {
      for (const bool forever : {false, true}) {
        const std::string out = checkFailure(command, faultless, call, -1, forever);
        EXPECT_EQ(checkFailure(command, faultless, call, INT_MIN, forever), out) << command.line;
      }
    }
  }
}

TEST_F(FaultSweep, PositiveResultsAreNoFailures) {
  for (const Command& command : kCommands) {
    for (const int code : {1, INT_MAX}) {
      SCOPED_TRACE(std::string(command.line) + " " + std::to_string(code));
      startAfresh();
      const Outcome faultless = run(command.line);
      startAfresh();
      platform.failCall(1, code, true);
      const Outcome outcome = run(command.line);
      EXPECT_EQ(outcome.status, CMD_OK);
      EXPECT_EQ(outcome.out, faultless.out);
      EXPECT_EQ(outcome.calls, faultless.calls);
    }
  }
}

TEST_F(FaultSweep, PositiveResultsAreNoFailuresOfStartUp) {
  SetUp();
  const std::string faultless = recording::printedBy([] { (void)openSerdes(0, nullptr); });
  SetUp();
  serdesTopology = {};
  platform.failCall(1, 1, true);
  EXPECT_EQ(recording::printedBy([] { EXPECT_EQ(openSerdes(0, nullptr), CMD_OK); }), faultless);
}

TEST_F(FaultSweep, EachCallOfStartUpFailsAndTheSessionStillRuns) {
  SetUp();
  Outcome faultless;
  faultless.out = recording::printedBy([&] { faultless.status = openSerdes(0, nullptr); });
  faultless.calls = platform.calls;
  ASSERT_EQ(faultless.status, CMD_OK);
  for (std::size_t call = 0; call < faultless.calls.size(); ++call) {
    for (const int code : {-1, INT_MIN}) {
      SCOPED_TRACE(faultless.calls[call]);
      SetUp();
      serdesTopology = {};
      platform.failCall(static_cast<unsigned>(call) + 1, code);
      CmdStatus status = CMD_OK;
      const std::string out = recording::printedBy([&] { status = openSerdes(0, nullptr); });
      EXPECT_EQ(status, CMD_EXEC_ERROR);
      EXPECT_TRUE(startsWith(faultless.calls, platform.calls));
      EXPECT_EQ(platform.calls.size(), call + 1);
      const std::string name = call < 3 ? "openSerdes" : "setAsicNumCmdHandler";
      const std::string line = name + ": serdes err " + std::to_string(code) + "\n";
      const bool silent = operationOf(faultless.calls[call]) == "GetPortHwConfig";
      EXPECT_EQ(out.ends_with(line), !silent) << out;
      EXPECT_TRUE(faultless.out.starts_with(silent ? out : out.substr(0, out.size() - line.size())));
      EXPECT_EQ(recording::runStream("bogus\n"), "unknown command\n\n\n\n");
    }
  }
}

TEST_F(FaultSweep, EachCallOfCloseFailsAndBothAreMade) {
  for (unsigned call = 1; call <= 2; ++call) {
    for (const int code : {-1, INT_MIN, 5}) {
      SetUp();
      platform.failCall(call, code);
      EXPECT_EQ(closeSerdes(), code);
      EXPECT_EQ(platform.calls, (Calls{"AsicCtlClose()", "PortCtlClose()"}));
    }
  }
}

TEST_F(FaultSweep, TheFirstFailureOfCloseWins) {
  platform.fail("AsicCtlClose", -3);
  platform.fail("PortCtlClose", -4);
  EXPECT_EQ(closeSerdes(), -3);
}

}  // namespace
