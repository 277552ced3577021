// A fixture that opens the two platform classes on a described switch, and a way to call any operation of theirs.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "simulator/api.h"
#include "simulator/calls/session.h"
#include "simulator/error_codes.h"

namespace simulator {

inline constexpr const char* kSwitch = "SERDES_SIMULATOR_SWITCH";
inline constexpr const char* kClock = "SERDES_SIMULATOR_CLOCK";
inline constexpr const char* kTrace = "SERDES_SIMULATOR_TRACE";
inline constexpr const char* kState = "SERDES_SIMULATOR_STATE";

// A small switch, on which most operations succeed for ASIC 0, port 0, link 0, core 0.
inline const std::string kSmall = R"([[asics]]
[[asics.cores]]
cores = 0
type = 2
[[asics.ports]]
ports = "0-1"
kind = "GL"
user_port = 5
far_end = "loop"
speed = "8G"
)";

class Platform : public testing::Test {
 protected:
  Platform() : folder_(std::filesystem::temp_directory_path() / ("platform_test." + std::to_string(getpid()))) {
    std::filesystem::create_directories(folder_);
    forgetEnvironment();
    (void)setenv(kClock, "virtual", 1);
  }
  ~Platform() override {
    // Closing would not do: faults may have left a side open, or a switch that no side has, and a trace stays open.
    Session::instance() = {};
    forgetEnvironment();
    std::filesystem::remove_all(folder_);
  }

  static void forgetEnvironment() {
    for (const char* name : {kSwitch, kClock, kTrace, kState})
      (void)unsetenv(name);
  }

  std::string file(const char* name) const {
    return folder_ / name;
  }
  // The description that the next opening reads.
  void describe(const std::string& text) {
    std::ofstream(file("switch.toml")) << text;
    (void)setenv(kSwitch, file("switch.toml").c_str(), 1);
  }
  void open(const std::string& text = kSmall) {
    describe(text);
    ASSERT_EQ(AsicControl::AsicCtlOpen(), kOk);
    ASSERT_EQ(PortControl::PortCtlOpen(), kOk);
  }
  void traceCalls() {
    (void)setenv(kTrace, file("trace").c_str(), 1);
  }
  std::vector<std::string> traced() const {
    std::ifstream trace(file("trace"));
    std::vector<std::string> lines;
    for (std::string line; std::getline(trace, line);)
      lines.push_back(line);
    return lines;
  }

 private:
  std::filesystem::path folder_;
};

constexpr port_id_t id(unsigned port, unsigned asic = 0) {
  return {.userPort = kNoUserPort,
          .asic = static_cast<std::uint16_t>(asic),
          .asicPort = static_cast<std::uint16_t>(port),
          .unused = {}};
}

// What every operation is asked for, where it applies.
struct Ask {
  unsigned asic = 0;
  unsigned port = 0;
  int link = 0;
  unsigned core = 0;
  std::uint32_t number = 0;  // every mode, rate, side, option, selector and type
  int value = 0;             // every other number
  bool nulls = false;        // pass null pointers
};

// Calls an operation; the code, with 1 standing for a name that ToString gives and -1000 for null.
inline int call(Operation operation, const Ask& ask) {
  const auto place = [&](auto& variable) { return ask.nulls ? nullptr : &variable; };
  const auto rate = static_cast<port_speed_type>(ask.number);
  const auto side = static_cast<SerDesLinkType>(ask.number);
  const auto tiny = static_cast<signed char>(ask.value);
  const auto address = static_cast<unsigned char>(ask.value);
  const port_id_t port = id(ask.port, ask.asic);
  Switch_HW_Config_t config;
  Port_HW_Config_t portConfig;
  drv_counters_t counters;
  SerDesRxDFEStats stats;
  SerDesRxDFEState state{};
  SerDesTxRateParams tx{};
  SerDesRxRateParams rx{};
  SerDesType type{};
  SerDesTxFFEMode ffe{};
  SerDesTxSlewRate slew{};
  SerDesRxDFEMode dfe{};
  MediaHwFcXmtrType media{};
  std::array<unsigned, 8> u{};
  std::array<signed char, 4> c{};
  std::array<unsigned short, 256> values{};
  unsigned long word = 0;
  unsigned char k = 0;
  unsigned short first = 0;
  bool flag = false;
  int status = 0;
  state.mode = static_cast<SerDesRxDFEMode>(ask.number);
  state.h[3] = static_cast<std::int16_t>(ask.value);
  using enum Operation;
  switch (operation) {
    case kAsicCtlOpen:
      return AsicControl::AsicCtlOpen();
    case kAsicCtlClose:
      return AsicControl::AsicCtlClose();
    case kGetSwitchConfig:
      return AsicControl::GetSwitchConfig(place(config));
    case kGetSerDesInfoOfAsic:
      return AsicControl::GetSerDesInfo(ask.asic, place(u[0]), place(u[1]));
    case kGetSerDesInfoOfCore:
      return AsicControl::GetSerDesInfo(ask.asic, ask.core, place(first), place(type), place(u[0]), place(u[1]),
                                        place(u[2]), place(u[3]), place(u[4]));
    case kGetSerDesInfoOfPort:
      return AsicControl::GetSerDesInfo(ask.asic, ask.port, side, place(u[0]), place(type), place(u[1]));
    case kToString:
      return AsicControl::ToString(static_cast<SerDesType>(ask.number)) == nullptr ? -1000 : 1;
    case kReadSerDesLinkRegister:
      return AsicControl::ReadSerDesLinkRegister(ask.asic, ask.port, ask.link, side, address, place(values[0]), 1);
    case kWriteSerDesLinkRegister:
      return AsicControl::WriteSerDesLinkRegister(ask.asic, ask.port, ask.link, side, address, 0xffff);
    case kReadSerDesPLLRegister:
      return AsicControl::ReadSerDesPLLRegister(ask.asic, ask.core, address, place(values[0]), 1);
    case kWriteSerDesPLLRegister:
      return AsicControl::WriteSerDesPLLRegister(ask.asic, ask.core, address, 0xffff);
    case kSetSerDesTxFFE:
      return AsicControl::SetSerDesTxFFE(ask.asic, ask.port, ask.link, static_cast<SerDesTxFFEMode>(ask.number),
                                         address, tiny, tiny, tiny, tiny);
    case kGetSerDesTxFFE:
      return AsicControl::GetSerDesTxFFE(ask.asic, ask.port, ask.link, place(ffe), place(k), place(c[0]), place(c[1]),
                                         place(c[2]), place(c[3]));
    case kSetSerDesTxSlew:
      return AsicControl::SetSerDesTxSlew(ask.asic, ask.port, ask.link, true,
                                          static_cast<SerDesTxSlewRate>(ask.number));
    case kGetSerDesTxSlew:
      return AsicControl::GetSerDesTxSlew(ask.asic, ask.port, ask.link, place(flag), place(slew));
    case kSetSerDesTxRateParams:
      return AsicControl::SetSerDesTxRateParams(ask.asic, ask.port, rate, tx);
    case kGetSerDesTxRateParams:
      return AsicControl::GetSerDesTxRateParams(ask.asic, ask.port, rate, place(tx));
    case kSetSerDesRxDFE:
      return AsicControl::SetSerDesRxDFE(ask.asic, ask.port, ask.link, static_cast<SerDesRxDFEMode>(ask.number));
    case kGetSerDesRxDFE:
      return AsicControl::GetSerDesRxDFE(ask.asic, ask.port, ask.link, place(dfe));
    case kSetSerDesRxVGA:
      return AsicControl::SetSerDesRxVGA(ask.asic, ask.port, ask.link, tiny, tiny, tiny);
    case kGetSerDesRxVGA:
      return AsicControl::GetSerDesRxVGA(ask.asic, ask.port, ask.link, place(c[0]), place(c[1]), place(c[2]));
    case kSetSerDesRxDFEState:
      return AsicControl::SetSerDesRxDFEState(ask.asic, ask.port, ask.link, place(state));
    case kGetSerDesRxDFEStats:
      return AsicControl::GetSerDesRxDFEStats(ask.asic, ask.port, ask.link, place(stats));
    case kSetSerDesRxRateParams:
      return AsicControl::SetSerDesRxRateParams(ask.asic, ask.port, rate, rx);
    case kGetSerDesRxRateParams:
      return AsicControl::GetSerDesRxRateParams(ask.asic, ask.port, rate, place(rx));
    case kSetSerDesTestOption:
      return AsicControl::SetSerDesTestOption(ask.asic, ask.port, ask.link, static_cast<SerDesTestOption>(ask.number),
                                              ask.value);
    case kGetSerDesTestStatus:
      return AsicControl::GetSerDesTestStatus(ask.asic, ask.port, ask.link, static_cast<SerDesTestOption>(ask.number),
                                              place(status));
    case kPortCtlOpen:
      return PortControl::PortCtlOpen();
    case kPortCtlClose:
      return PortControl::PortCtlClose();
    case kGetPortHwConfig:
      return PortControl::GetPortHwConfig(port, place(portConfig));
    case kGetPortInfo:
      return PortControl::GetPortInfo(port, static_cast<port_info_t>(ask.number), place(word));
    case kSetPortCfgSpeed:
      return PortControl::SetPortCfgSpeed(port, ask.number);
    case kGetPortCfgSpeed:
      return PortControl::GetPortCfgSpeed(port, place(u[0]));
    case kGetPortSpeed:
      return PortControl::GetPortSpeed(port, place(u[0]));
    case kGetMediaHwFcXmtrType:
      return PortControl::GetMediaHwFcXmtrType(port, place(media));
    case kTxStreamEnable:
      return PortControl::TxStreamEnable(port, true);
    case kTxStreamState:
      return PortControl::TxStreamState(port, place(flag));
    case kGetFrameStatCntrs:
      return PortControl::GetFrameStatCntrs(port, place(counters));
    case kClrFrameStatCntrs:
      return PortControl::ClrFrameStatCntrs(port);
  }
  return -2000;
}

inline bool opensOrCloses(Operation operation) {
  return operation == Operation::kAsicCtlOpen || operation == Operation::kAsicCtlClose ||
         operation == Operation::kPortCtlOpen || operation == Operation::kPortCtlClose;
}

// Arguments with which every operation succeeds: rate 1G, a receive-side or transmit-side register 4, taps of 4.
inline constexpr Ask kGood{.number = 1, .value = 4};

inline Ask good(Operation operation) {
  Ask ask = kGood;
  if (operation == Operation::kSetSerDesTestOption) ask = {.number = 4, .value = 1};
  if (operation == Operation::kGetPortInfo) ask.number = PORT_INFO_STATE;
  return ask;
}

}  // namespace simulator
