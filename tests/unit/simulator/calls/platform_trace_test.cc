// What surrounds the operations of the two platform classes: trace and faults.
#include <sstream>

#include "tests/unit/simulator/calls/platform_bench.h"

namespace simulator {
namespace {

// What a line of the trace shows between "-> " and " = ".
std::vector<std::string> outputsOf(const std::string& line) {
  const std::size_t first = line.find("-> ") + 3;
  std::istringstream text(line.substr(first, line.rfind(" = ") - first));
  std::vector<std::string> outputs;
  for (std::string output; text >> output;)
    outputs.push_back(output.back() == ',' ? output.substr(0, output.size() - 1) : output);
  return outputs;
}

TEST_F(Platform, TraceHasALineForEachCall) {
  traceCalls();
  SerDesTxFFEMode mode{};
  unsigned char k = 0;
  signed char c = 0;
  unsigned short value = 0;
  std::array<unsigned short, 3> values{};
  bool flag = false;
  int status = 0;
  SerDesTxSlewRate slew{};
  SerDesRxDFEState state{};
  Port_HW_Config_t config;
  SerDesTxRateParams params{};
  drv_counters_t counters;
  state.h[9] = -5;
  EXPECT_EQ(AsicControl::AsicCtlClose(), kNotOpen);
  open();
  (void)AsicControl::SetSerDesTxFFE(0, 0, -1, FFE_3, 115, -4, 55, -25, 0);
  (void)AsicControl::GetSerDesTxFFE(0, 0, 0, &mode, &k, &c, &c, &c, &c);
  (void)AsicControl::GetSerDesTxFFE(0, 7, 0, &mode, &k, &c, &c, &c, &c);
  (void)AsicControl::SetSerDesTxSlew(0, 0, -1, true, SLEW_36PS);
  (void)AsicControl::GetSerDesTxSlew(0, 0, 0, &flag, &slew);
  (void)AsicControl::WriteSerDesLinkRegister(0, 0, 0, SERDES_LINK_RX, 3, 0x1d);
  (void)AsicControl::ReadSerDesLinkRegister(0, 0, 0, SERDES_LINK_RX, 3, &value, 1);
  (void)AsicControl::ReadSerDesPLLRegister(0, 0, 0, values.data(), 3);
  (void)AsicControl::SetSerDesRxDFEState(0, 0, 0, &state);
  (void)AsicControl::SetSerDesRxDFEState(0, 0, 0, nullptr);
  (void)AsicControl::GetSerDesTxRateParams(0, 0, SPEED_8G, &params);
  (void)AsicControl::SetSerDesTxRateParams(0, 0, SPEED_8G, {300, 2, 115, -4, 55, -25, 0});
  (void)AsicControl::SetSerDesRxRateParams(0, 0, SPEED_8G, {1, 7, 0, 78, 0});
  (void)AsicControl::GetSerDesTestStatus(0, 0, 0, static_cast<SerDesTestOption>(9), &status);
  (void)AsicControl::ToString(static_cast<SerDesType>(2));
  (void)PortControl::GetPortHwConfig(id(1), &config);
  (void)PortControl::SetPortCfgSpeed({.userPort = 6, .asic = 0, .asicPort = 1, .unused = {}}, SPEED_4G);
  (void)PortControl::TxStreamEnable(id(1), false);
  (void)PortControl::GetFrameStatCntrs(id(1), &counters);
  EXPECT_EQ(traced(), (std::vector<std::string>{
                          "AsicCtlClose() = -1",
                          "AsicCtlOpen() = 0",
                          "PortCtlOpen() = 0",
                          "SetSerDesTxFFE(0, 0, -1, 2, 115, -4, 55, -25, 0) = 0",
                          "GetSerDesTxFFE(0, 0, 0) -> 2, 115, 0, 0, 0, 0 = 0",
                          "GetSerDesTxFFE(0, 7, 0) = -4",
                          "SetSerDesTxSlew(0, 0, -1, true, 2) = 0",
                          "GetSerDesTxSlew(0, 0, 0) -> true, 2 = 0",
                          "WriteSerDesLinkRegister(0, 0, 0, 0, 0x03, 0x001d) = 0",
                          "ReadSerDesLinkRegister(0, 0, 0, 0, 0x03, 1) -> 0x001d = 0",
                          "ReadSerDesPLLRegister(0, 0, 0x00, 3) -> 0x2211, 0x0001, 0x0001 = 0",
                          "SetSerDesRxDFEState(0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, -5}) = 0",
                          "SetSerDesRxDFEState(0, 0, 0, null) = -11",
                          "GetSerDesTxRateParams(0, 0, 4) -> 115, 2, 0, 0, 63, 0, 0 = 0",
                          "SetSerDesTxRateParams(0, 0, 4, {300, 2, 115, -4, 55, -25, 0}) = 0",
                          "SetSerDesRxRateParams(0, 0, 4, {1, 7, 0, 78, 0}) = 0",
                          "GetSerDesTestStatus(0, 0, 0, 9) -> 49 = 0",
                          "ToString(2) -> \"SERDES_11G\"",
                          "GetPortHwConfig({65535, 0, 1}) -> 6, 0, 1, 1, 1 = 0",
                          "SetPortCfgSpeed({6, 0, 1}, 3) = 0",
                          "TxStreamEnable({65535, 0, 1}, false) = 0",
                          "GetFrameStatCntrs({65535, 0, 1}) -> 0, 0 = 0",
                      }));
}

// Whatever a call names and hands back is another number, so that none stands in another's place.
TEST_F(Platform, TraceShowsAllThatEveryOperationNamesAndHandsBack) {
  traceCalls();
  open(R"(
slots = 3
aux_ports = 4
user_ports = 9
[settings.fast]
power = 150
ffe = "FFE3"
taps = [-4, 55, -25, 1]
slew = 30
dfe = "DFE5"
[[asics]]
[[asics.cores]]
cores = "0-1"
type = 5
pll_registers = 10
rx_registers = 30
tx_registers = 14
rx_params = 6
tx_params = 8
first_port = 7
[[asics.ports]]
ports = "0-2"
kind = "GL"
links = 2
core = 1
user_port = 5
far_end = "loop"
speed = "8G"
sends = false
cache = "fast"
)");
  for (const bool sets : {false, true}) {
    for (const OperationInfo& info : allOperations()) {
      if (opensOrCloses(info.operation) || info.outputs.empty() != sets) continue;
      Ask ask = good(info.operation);
      ask.port = 2;
      ask.link = 1;
      ask.core = 1;
      (void)call(info.operation, ask);
    }
  }
  EXPECT_EQ(traced(), (std::vector<std::string>{
                          "AsicCtlOpen() = 0",
                          "PortCtlOpen() = 0",
                          "GetSwitchConfig() -> 3, 9, 4, 1 = 0",
                          "GetSerDesInfo(0) -> 3, 2 = 0",
                          "GetSerDesInfo(0, 1) -> 7, 5, 10, 30, 14, 6, 8 = 0",
                          "GetSerDesInfo(0, 2, 1) -> 2, 5, 1 = 0",
                          "ToString(1) -> \"SERDES_6G\"",
                          "ReadSerDesLinkRegister(0, 2, 1, 1, 0x04, 1) -> 0x0296 = 0",
                          "ReadSerDesPLLRegister(0, 1, 0x04, 1) -> 0x0000 = 0",
                          "GetSerDesTxFFE(0, 2, 1) -> 2, 150, -4, 55, -25, 1 = 0",
                          "GetSerDesTxSlew(0, 2, 1) -> true, 1 = 0",
                          "GetSerDesTxRateParams(0, 2, 1) -> 150, 1, 2, -4, 55, -25, 1 = 0",
                          "GetSerDesRxDFE(0, 2, 1) -> 1 = 0",
                          "GetSerDesRxVGA(0, 2, 1) -> 6, 4, 78 = 0",
                          "GetSerDesRxDFEStats(0, 2, 1) -> 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 1 = 0",
                          "GetSerDesRxRateParams(0, 2, 1) -> 1, 6, 4, 78, 0 = 0",
                          "GetSerDesTestStatus(0, 2, 1, 1) -> 0 = 0",
                          "GetPortHwConfig({65535, 0, 2}) -> 7, 0, 2, 1, 1 = 0",
                          "GetPortInfo({65535, 0, 2}, 0) -> 2 = 0",
                          "GetPortCfgSpeed({65535, 0, 2}) -> 4 = 0",
                          "GetPortSpeed({65535, 0, 2}) -> 4 = 0",
                          "GetMediaHwFcXmtrType({65535, 0, 2}) -> 3 = 0",
                          "TxStreamState({65535, 0, 2}) -> false = 0",
                          "GetFrameStatCntrs({65535, 0, 2}) -> 0, 0 = 0",
                          "WriteSerDesLinkRegister(0, 2, 1, 1, 0x04, 0xffff) = 0",
                          "WriteSerDesPLLRegister(0, 1, 0x04, 0xffff) = 0",
                          "SetSerDesTxFFE(0, 2, 1, 1, 4, 4, 4, 4, 4) = 0",
                          "SetSerDesTxSlew(0, 2, 1, true, 1) = 0",
                          "SetSerDesTxRateParams(0, 2, 1, {0, 0, 0, 0, 0, 0, 0}) = 0",
                          "SetSerDesRxDFE(0, 2, 1, 1) = 0",
                          "SetSerDesRxVGA(0, 2, 1, 4, 4, 4) = 0",
                          "SetSerDesRxDFEState(0, 2, 1, {0, 1, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0}) = 0",
                          "SetSerDesRxRateParams(0, 2, 1, {0, 0, 0, 0, 0}) = 0",
                          "SetSerDesTestOption(0, 2, 1, 4, 1) = 0",
                          "SetPortCfgSpeed({65535, 0, 2}, 1) = 0",
                          "TxStreamEnable({65535, 0, 2}, true) = 0",
                          "ClrFrameStatCntrs({65535, 0, 2}) = 0",
                      }));
}

TEST_F(Platform, TraceSaysNullForANameThatAFaultTakesAway) {
  traceCalls();
  open(kSmall + "[[faults]]\noperation = \"ToString\"\n");
  EXPECT_EQ(AsicControl::ToString(static_cast<SerDesType>(2)), nullptr);
  EXPECT_EQ(traced().back(), "ToString(2) -> null");
}

TEST_F(Platform, TraceIsAppendedTo) {
  std::ofstream(file("trace")) << "before\n";
  traceCalls();
  open();
  EXPECT_EQ(traced().front(), "before");
  EXPECT_EQ(traced().size(), 3U);
}

TEST_F(Platform, ATraceOnAFullDiskEndsWithAWordAndTheCallsGoOn) {
  (void)setenv(kTrace, "/dev/full", 1);
  describe(kSmall);
  testing::internal::CaptureStderr();
  EXPECT_EQ(AsicControl::AsicCtlOpen(), kOk);
  EXPECT_EQ(PortControl::PortCtlOpen(), kOk);
  EXPECT_EQ(AsicControl::AsicCtlClose(), kOk);
  EXPECT_EQ(PortControl::PortCtlClose(), kOk);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "simulated switch: /dev/full: cannot be written, the trace ends here\n");
}

TEST_F(Platform, FaultsFailTheCallsTheyNameAndNothingIsSet) {
  open(kSmall + "[[faults]]\noperation = \"SetSerDesRxDFE\"\nport = 1\ncode = -42\n");
  SerDesRxDFEMode mode{};
  EXPECT_EQ(AsicControl::SetSerDesRxDFE(0, 0, -1, DFE_1), kOk);
  EXPECT_EQ(AsicControl::SetSerDesRxDFE(0, 1, -1, DFE_1), -42);
  ASSERT_EQ(AsicControl::GetSerDesRxDFE(0, 1, 0, &mode), kOk);
  EXPECT_EQ(mode, DFE_3);
  EXPECT_EQ(AsicControl::SetSerDesRxDFE(0, 1, -1, DFE_1), kOk);
}

TEST_F(Platform, FaultsFindEveryOperation) {
  std::string faults;
  for (const OperationInfo& info : allOperations()) {
    if (opensOrCloses(info.operation)) continue;
    faults += "[[faults]]\noperation = \"" + std::string(info.name) + "\"\n";
  }
  open(kSmall + faults);
  for (const OperationInfo& info : allOperations()) {
    if (opensOrCloses(info.operation)) continue;
    const int expected = info.operation == Operation::kToString ? -1000 : kInjectedFault;
    EXPECT_EQ(call(info.operation, good(info.operation)), expected) << info.name;
    EXPECT_GE(call(info.operation, good(info.operation)), 0) << info.name;
  }
}

TEST_F(Platform, FaultsFindEveryOperationByAllThatItNames) {
  std::string faults;
  for (const OperationInfo& info : allOperations()) {
    if (opensOrCloses(info.operation)) continue;
    faults += "[[faults]]\noperation = \"" + std::string(info.name) + "\"\n";
    const Addressed named = info.addressed;
    if (named.asic) faults += "asic = 0\n";
    if (named.port) faults += "port = 0\n";
    if (named.link) faults += "link = 0\n";
    if (named.core) faults += "core = 0\n";
  }
  open(kSmall + faults);
  for (const OperationInfo& info : allOperations()) {
    if (opensOrCloses(info.operation)) continue;
    const int expected = info.operation == Operation::kToString ? -1000 : kInjectedFault;
    EXPECT_EQ(call(info.operation, good(info.operation)), expected) << info.name;
  }
}

TEST_F(Platform, FaultsOnOpeningAndClosingStrikeOnceToo) {
  describe(kSmall + R"([[faults]]
operation = "AsicCtlOpen"
code = -30
[[faults]]
operation = "PortCtlOpen"
code = -31
[[faults]]
operation = "AsicCtlClose"
code = -32
[[faults]]
operation = "PortCtlClose"
code = -33
)");
  Switch_HW_Config_t config;
  EXPECT_EQ(AsicControl::AsicCtlOpen(), -30);
  EXPECT_EQ(AsicControl::GetSwitchConfig(&config), kNotOpen);
  EXPECT_EQ(AsicControl::AsicCtlOpen(), kOk);
  EXPECT_EQ(PortControl::PortCtlOpen(), -31);
  EXPECT_EQ(PortControl::PortCtlOpen(), kOk);
  EXPECT_EQ(AsicControl::AsicCtlClose(), -32);
  EXPECT_EQ(AsicControl::GetSwitchConfig(&config), kOk);
  EXPECT_EQ(AsicControl::AsicCtlClose(), kOk);
  EXPECT_EQ(PortControl::PortCtlClose(), -33);
  EXPECT_EQ(PortControl::PortCtlClose(), kOk);
}

// Each output of each operation in turn is replaced, and the trace shows it in its place.
TEST_F(Platform, FaultsCanReplaceEveryOutput) {
  for (const OperationInfo& info : allOperations()) {
    if (info.operation == Operation::kToString) continue;
    for (std::size_t place = 0; place < info.outputs.size(); ++place) {
      (void)std::remove(file("trace").c_str());
      traceCalls();
      open(kSmall + "[[faults]]\noperation = \"" + std::string(info.name) + "\"\nanswer = { output = \"" +
           std::string(info.outputs[place]) + "\", value = 99 }\n");
      EXPECT_EQ(call(info.operation, good(info.operation)), kOk) << info.name;
      ASSERT_FALSE(traced().empty());
      const std::string line = traced().back();
      const std::vector<std::string> shown = outputsOf(line);
      const bool isTruth = info.outputs[place].starts_with("enable");
      const bool isRegister = info.outputs[place] == "value" && info.symbol.starts_with("Read");
      ASSERT_EQ(shown.size(), info.outputs.size()) << line;
      EXPECT_EQ(shown[place], isTruth ? "true" : isRegister ? "0x0063" : "99") << line;
      EXPECT_EQ(AsicControl::AsicCtlClose(), kOk);
      EXPECT_EQ(PortControl::PortCtlClose(), kOk);
      (void)unsetenv(kTrace);
    }
  }
}

TEST_F(Platform, FaultsGiveAnswersOutsideThePromisedRanges) {
  open(kSmall + R"([[faults]]
operation = "GetSerDesInfo/port"
answer = { output = "linkCount", value = 9 }
[[faults]]
operation = "GetMediaHwFcXmtrType"
answer = { output = "type", value = 99 }
[[faults]]
operation = "GetSerDesTxSlew"
answer = { output = "slew", value = 0xffffffff }
[[faults]]
operation = "GetSerDesRxDFEStats"
answer = { output = "h3", value = -32768 }
[[faults]]
operation = "GetFrameStatCntrs"
answer = { output = "decodeErrors", value = -1 }
[[faults]]
operation = "ReadSerDesLinkRegister"
answer = { output = "value", value = 0xbeef }
[[faults]]
operation = "ToString"
answer = { output = "name", text = "a name of more than nineteen characters" }
[[faults]]
operation = "ToString"
)");
  unsigned links = 0;
  unsigned core = 0;
  SerDesType type{};
  ASSERT_EQ(AsicControl::GetSerDesInfo(0, 0, SERDES_LINK_RX, &links, &type, &core), kOk);
  EXPECT_EQ(links, 9U);
  EXPECT_EQ(type, 2U);
  MediaHwFcXmtrType media{};
  ASSERT_EQ(PortControl::GetMediaHwFcXmtrType(id(0), &media), kOk);
  EXPECT_EQ(media, 99U);
  bool enable = false;
  SerDesTxSlewRate slew{};
  ASSERT_EQ(AsicControl::GetSerDesTxSlew(0, 0, 0, &enable, &slew), kOk);
  EXPECT_EQ(slew, 0xffffffffU);
  SerDesRxDFEStats stats;
  ASSERT_EQ(AsicControl::GetSerDesRxDFEStats(0, 0, 0, &stats), kOk);
  EXPECT_EQ(stats.h[3], -32768);
  drv_counters_t counters;
  ASSERT_EQ(PortControl::GetFrameStatCntrs(id(0), &counters), kOk);
  EXPECT_EQ(counters.decodeErrors.high, UINT32_MAX);
  EXPECT_EQ(counters.decodeErrors.low, UINT32_MAX);
  std::array<unsigned short, 2> values{};
  ASSERT_EQ(AsicControl::ReadSerDesLinkRegister(0, 0, 0, SERDES_LINK_TX, 0, values.data(), 2), kOk);
  EXPECT_EQ(values[0], 0xbeef);
  EXPECT_STREQ(AsicControl::ToString(static_cast<SerDesType>(2)), "a name of more than nineteen characters");
  EXPECT_EQ(AsicControl::ToString(static_cast<SerDesType>(2)), nullptr);
  EXPECT_STREQ(AsicControl::ToString(static_cast<SerDesType>(2)), "SERDES_11G");
}

}  // namespace
}  // namespace simulator
