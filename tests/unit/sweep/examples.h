// At least one line of every command that works on the recording platform's switch. The sweeps run them all.
#pragma once

#include <ostream>
#include <string>

#include "tests/support/handlers.h"

namespace recording {

struct Example {
  const char* name;
  const char* arguments = "";     // each of them a number or a keyword
  const char* ports = "";         // the list of ports or cores, where the command takes one
  const char* handler = nullptr;  // who reports a failure, where it is not the name with "CmdHandler" behind it
  bool printsAsItGoes = false;    // what was printed before a failure stands above the error line
};

inline constexpr Example kExamples[] = {
    {"setAsicNum", "1", "", nullptr, true},
    {"setRate", "4G", "gl"},
    {"setTxEnable", "0", "0 2 4"},
    {"showRate", "", "all"},
    {"showConfig"},
    {"showFFE", "", "xg"},
    {"setFFE", "FFE3 115 -4 55 -25 0", "gl"},
    {"showSlew", "", "xg"},
    {"setSlew", "36", "0 1"},
    {"showTxParams", "", "0 6"},
    {"setTxParams", "FFE3 115 -4 55 -25 0 36", "gl"},
    {"showRxParams", "", "0 6"},
    {"setRxParams", "DFE5 6 4 0x4e", "gl"},
    {"showTxParamsCache", "8G", "0-7"},
    {"setTxParamsCache", "8G FFE3 115 -4 55 -25 0 36", "gl"},
    {"showTxParamsRaw", "asic 8G", "gl"},
    {"setTxParamsRaw", "asic 8G 0 2 115 -4 55 -25 0", "gl"},
    {"eshowTxParamsCache", "10G", "exg"},
    {"esetTxParamsCache", "10G 6 5", "exg"},
    {"showRxParamsCache", "8G", "0-7"},
    {"setRxParamsCache", "8G DFE3 7 0 0x4e", "gl"},
    {"showRxParamsRaw", "asic 8G", "gl"},
    {"setRxParamsRaw", "asic 8G 1 7 0 0x4e 0", "gl"},
    {"eshowRxParamsCache", "10G", "exg"},
    {"esetRxParamsCache", "10G 2 1", "exg"},
    {"showDFE", "", "0 6"},
    {"setDFE", "DFE5", "gl"},
    {"setDFEState", "4 0 DFE3 0 1 0 1 0 1 0 1 0 1"},
    {"showDFEStats", "", "0-7"},
    {"showVGA", "", "0 6"},
    {"setVGA", "6 4 0x4e", "gl"},
    {"showPLL", "", "all", "showPLLRegistersCmdHandler"},
    {"writePLL", "1 7 0xff", "", "writePLLRegisterCmdHandler"},
    {"readPLL", "1 7", "", "readPLLRegisterCmdHandler"},
    {"showTx", "", "0 6", "showTxRegistersCmdHandler"},
    {"writeTx", "4 0 3 0x1c", "", "writeTxRegisterCmdHandler"},
    {"readTx", "4 0 3", "", "readTxRegisterCmdHandler"},
    {"showRx", "", "0 6", "showRxRegistersCmdHandler"},
    {"writeRx", "4 0 3 0x1d", "", "writeRxRegisterCmdHandler"},
    {"readRx", "4 0 3", "", "readRxRegisterCmdHandler"},
    {"runTest", "4 0 0 1"},
    {"runTest", "0 0 100 0"},
    {"runTest", "4 0 101 0"},
    {"getTest", "4 0 0"},
    {"clearErrors", "", "0 1 2 3"},
    {"loop", "readRx 4 0 3", "", "readRxRegisterCmdHandler", true},
    {"help"},
    {"exit"},
};

inline void PrintTo(const Example& example, std::ostream* stream) {
  *stream << example.name << " " << example.arguments << " " << example.ports;
}

inline std::string exampleName(const testing::TestParamInfo<Example>& example) {
  return std::string(example.param.name) + "_" + std::to_string(example.index);
}

inline bool takesPorts(const Example& example) {
  return *example.ports != '\0';
}

// The example's line with other ports, or with other arguments too.
inline std::string lineWith(const Example& example, const std::string& arguments, const std::string& ports) {
  return std::string(example.name) + (arguments.empty() ? "" : " ") + arguments + (ports.empty() ? "" : " ") + ports;
}

inline std::string lineWith(const Example& example, const std::string& ports) {
  return lineWith(example, example.arguments, ports);
}

inline std::string lineOf(const Example& example) {
  return lineWith(example, example.ports);
}

}  // namespace recording
