// The table of operations.
#include "platform/operations.h"

#include <array>

namespace operations {
namespace {

using enum Operation;
using Name = std::string_view;

constexpr Name kSwitchOutputs[] = {"NumSlots", "NumUserPorts", "NumAuxPorts", "NumASICs"};
constexpr Name kAsicOutputs[] = {"portCount", "coreCount"};
constexpr Name kCoreOutputs[] = {"firstPort",       "type",         "pllRegisterCount", "rxRegisterCount",
                                 "txRegisterCount", "rxParamCount", "txParamCount"};
constexpr Name kPortOutputs[] = {"linkCount", "type", "coreId"};
constexpr Name kNameOutputs[] = {"name"};
constexpr Name kValueOutputs[] = {"value"};
constexpr Name kFfeOutputs[] = {"mode", "k", "c0", "c1", "c2", "c3"};
constexpr Name kSlewOutputs[] = {"enable", "slew"};
constexpr Name kTxParamOutputs[] = {"power", "slew", "mode", "p0", "p1", "p2", "p3"};
constexpr Name kModeOutputs[] = {"mode"};
constexpr Name kVgaOutputs[] = {"pole", "peak", "amax"};
constexpr Name kStatsOutputs[] = {"leadingWord", "h0", "h1", "h2", "h3", "h4",   "h5",
                                  "h6",          "h7", "h8", "h9", "Ap", "Amin", "An"};
constexpr Name kRxParamOutputs[] = {"mode", "p0", "p1", "p2", "p3"};
constexpr Name kStatusOutputs[] = {"status"};
constexpr Name kHwConfigOutputs[] = {"userPort", "asic", "asicPort", "presence", "portType"};
constexpr Name kSpeedOutputs[] = {"speed"};
constexpr Name kMediaOutputs[] = {"type"};
constexpr Name kEnabledOutputs[] = {"enabled"};
constexpr Name kCounterOutputs[] = {"decodeErrors", "crcErrors"};

constexpr Addressed kNothing;
constexpr Addressed kAsic = {.asic = true};
constexpr Addressed kCore = {.asic = true, .core = true};
constexpr Addressed kPort = {.asic = true, .port = true};
constexpr Addressed kLink = {.asic = true, .port = true, .link = true};

// clang-format off
constexpr auto kOperations = std::to_array<OperationInfo>({
    {.operation = kAsicCtlOpen, .name = "AsicCtlOpen", .symbol = "AsicCtlOpen", .addressed = kNothing, .outputs = {}},
    {.operation = kAsicCtlClose, .name = "AsicCtlClose", .symbol = "AsicCtlClose", .addressed = kNothing, .outputs = {}},
    {.operation = kGetSwitchConfig, .name = "GetSwitchConfig", .symbol = "GetSwitchConfig", .addressed = kNothing, .outputs = kSwitchOutputs},
    {.operation = kGetSerDesInfoOfAsic, .name = "GetSerDesInfo/asic", .symbol = "GetSerDesInfo", .addressed = kAsic, .outputs = kAsicOutputs},
    {.operation = kGetSerDesInfoOfCore, .name = "GetSerDesInfo/core", .symbol = "GetSerDesInfo", .addressed = kCore, .outputs = kCoreOutputs},
    {.operation = kGetSerDesInfoOfPort, .name = "GetSerDesInfo/port", .symbol = "GetSerDesInfo", .addressed = kPort, .outputs = kPortOutputs},
    {.operation = kToString, .name = "ToString", .symbol = "ToString", .addressed = kNothing, .outputs = kNameOutputs},
    {.operation = kReadSerDesLinkRegister, .name = "ReadSerDesLinkRegister", .symbol = "ReadSerDesLinkRegister", .addressed = kLink, .outputs = kValueOutputs},
    {.operation = kWriteSerDesLinkRegister, .name = "WriteSerDesLinkRegister", .symbol = "WriteSerDesLinkRegister", .addressed = kLink, .outputs = {}},
    {.operation = kReadSerDesPLLRegister, .name = "ReadSerDesPLLRegister", .symbol = "ReadSerDesPLLRegister", .addressed = kCore, .outputs = kValueOutputs},
    {.operation = kWriteSerDesPLLRegister, .name = "WriteSerDesPLLRegister", .symbol = "WriteSerDesPLLRegister", .addressed = kCore, .outputs = {}},
    {.operation = kSetSerDesTxFFE, .name = "SetSerDesTxFFE", .symbol = "SetSerDesTxFFE", .addressed = kLink, .outputs = {}},
    {.operation = kGetSerDesTxFFE, .name = "GetSerDesTxFFE", .symbol = "GetSerDesTxFFE", .addressed = kLink, .outputs = kFfeOutputs},
    {.operation = kSetSerDesTxSlew, .name = "SetSerDesTxSlew", .symbol = "SetSerDesTxSlew", .addressed = kLink, .outputs = {}},
    {.operation = kGetSerDesTxSlew, .name = "GetSerDesTxSlew", .symbol = "GetSerDesTxSlew", .addressed = kLink, .outputs = kSlewOutputs},
    {.operation = kSetSerDesTxRateParams, .name = "SetSerDesTxRateParams", .symbol = "SetSerDesTxRateParams", .addressed = kPort, .outputs = {}},
    {.operation = kGetSerDesTxRateParams, .name = "GetSerDesTxRateParams", .symbol = "GetSerDesTxRateParams", .addressed = kPort, .outputs = kTxParamOutputs},
    {.operation = kSetSerDesRxDFE, .name = "SetSerDesRxDFE", .symbol = "SetSerDesRxDFE", .addressed = kLink, .outputs = {}},
    {.operation = kGetSerDesRxDFE, .name = "GetSerDesRxDFE", .symbol = "GetSerDesRxDFE", .addressed = kLink, .outputs = kModeOutputs},
    {.operation = kSetSerDesRxVGA, .name = "SetSerDesRxVGA", .symbol = "SetSerDesRxVGA", .addressed = kLink, .outputs = {}},
    {.operation = kGetSerDesRxVGA, .name = "GetSerDesRxVGA", .symbol = "GetSerDesRxVGA", .addressed = kLink, .outputs = kVgaOutputs},
    {.operation = kSetSerDesRxDFEState, .name = "SetSerDesRxDFEState", .symbol = "SetSerDesRxDFEState", .addressed = kLink, .outputs = {}},
    {.operation = kGetSerDesRxDFEStats, .name = "GetSerDesRxDFEStats", .symbol = "GetSerDesRxDFEStats", .addressed = kLink, .outputs = kStatsOutputs},
    {.operation = kSetSerDesRxRateParams, .name = "SetSerDesRxRateParams", .symbol = "SetSerDesRxRateParams", .addressed = kPort, .outputs = {}},
    {.operation = kGetSerDesRxRateParams, .name = "GetSerDesRxRateParams", .symbol = "GetSerDesRxRateParams", .addressed = kPort, .outputs = kRxParamOutputs},
    {.operation = kSetSerDesTestOption, .name = "SetSerDesTestOption", .symbol = "SetSerDesTestOption", .addressed = kLink, .outputs = {}},
    {.operation = kGetSerDesTestStatus, .name = "GetSerDesTestStatus", .symbol = "GetSerDesTestStatus", .addressed = kLink, .outputs = kStatusOutputs},
    {.operation = kPortCtlOpen, .name = "PortCtlOpen", .symbol = "PortCtlOpen", .addressed = kNothing, .outputs = {}},
    {.operation = kPortCtlClose, .name = "PortCtlClose", .symbol = "PortCtlClose", .addressed = kNothing, .outputs = {}},
    {.operation = kGetPortHwConfig, .name = "GetPortHwConfig", .symbol = "GetPortHwConfig", .addressed = kPort, .outputs = kHwConfigOutputs},
    {.operation = kGetPortInfo, .name = "GetPortInfo", .symbol = "GetPortInfo", .addressed = kPort, .outputs = kValueOutputs},
    {.operation = kSetPortCfgSpeed, .name = "SetPortCfgSpeed", .symbol = "SetPortCfgSpeed", .addressed = kPort, .outputs = {}},
    {.operation = kGetPortCfgSpeed, .name = "GetPortCfgSpeed", .symbol = "GetPortCfgSpeed", .addressed = kPort, .outputs = kSpeedOutputs},
    {.operation = kGetPortSpeed, .name = "GetPortSpeed", .symbol = "GetPortSpeed", .addressed = kPort, .outputs = kSpeedOutputs},
    {.operation = kGetMediaHwFcXmtrType, .name = "GetMediaHwFcXmtrType", .symbol = "GetMediaHwFcXmtrType", .addressed = kPort, .outputs = kMediaOutputs},
    {.operation = kTxStreamEnable, .name = "TxStreamEnable", .symbol = "TxStreamEnable", .addressed = kPort, .outputs = {}},
    {.operation = kTxStreamState, .name = "TxStreamState", .symbol = "TxStreamState", .addressed = kPort, .outputs = kEnabledOutputs},
    {.operation = kGetFrameStatCntrs, .name = "GetFrameStatCntrs", .symbol = "GetFrameStatCntrs", .addressed = kPort, .outputs = kCounterOutputs},
    {.operation = kClrFrameStatCntrs, .name = "ClrFrameStatCntrs", .symbol = "ClrFrameStatCntrs", .addressed = kPort, .outputs = {}},
});
// clang-format on

constexpr bool isInOrder() {
  for (std::size_t i = 0; i < kOperations.size(); ++i) {
    if (kOperations[i].operation != static_cast<Operation>(i)) return false;
  }
  return kOperations.size() == static_cast<std::size_t>(kClrFrameStatCntrs) + 1;
}
static_assert(isInOrder());

}  // namespace

std::span<const OperationInfo> allOperations() {
  return kOperations;
}

const OperationInfo& operationInfo(Operation operation) {
  return kOperations[static_cast<std::size_t>(operation)];
}

std::optional<Operation> findOperation(std::string_view name) {
  for (const OperationInfo& info : kOperations) {
    if (info.name == name) return info.operation;
  }
  return std::nullopt;
}

}  // namespace operations
