// The table of operations.
#include "platform/operations.h"

#include <array>

namespace simulator {
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

constexpr auto kOperations = std::to_array<OperationInfo>({
    {kAsicCtlOpen, "AsicCtlOpen", "AsicCtlOpen", {}},
    {kAsicCtlClose, "AsicCtlClose", "AsicCtlClose", {}},
    {kGetSwitchConfig, "GetSwitchConfig", "GetSwitchConfig", kSwitchOutputs},
    {kGetSerDesInfoOfAsic, "GetSerDesInfo/asic", "GetSerDesInfo", kAsicOutputs},
    {kGetSerDesInfoOfCore, "GetSerDesInfo/core", "GetSerDesInfo", kCoreOutputs},
    {kGetSerDesInfoOfPort, "GetSerDesInfo/port", "GetSerDesInfo", kPortOutputs},
    {kToString, "ToString", "ToString", kNameOutputs},
    {kReadSerDesLinkRegister, "ReadSerDesLinkRegister", "ReadSerDesLinkRegister", kValueOutputs},
    {kWriteSerDesLinkRegister, "WriteSerDesLinkRegister", "WriteSerDesLinkRegister", {}},
    {kReadSerDesPLLRegister, "ReadSerDesPLLRegister", "ReadSerDesPLLRegister", kValueOutputs},
    {kWriteSerDesPLLRegister, "WriteSerDesPLLRegister", "WriteSerDesPLLRegister", {}},
    {kSetSerDesTxFFE, "SetSerDesTxFFE", "SetSerDesTxFFE", {}},
    {kGetSerDesTxFFE, "GetSerDesTxFFE", "GetSerDesTxFFE", kFfeOutputs},
    {kSetSerDesTxSlew, "SetSerDesTxSlew", "SetSerDesTxSlew", {}},
    {kGetSerDesTxSlew, "GetSerDesTxSlew", "GetSerDesTxSlew", kSlewOutputs},
    {kSetSerDesTxRateParams, "SetSerDesTxRateParams", "SetSerDesTxRateParams", {}},
    {kGetSerDesTxRateParams, "GetSerDesTxRateParams", "GetSerDesTxRateParams", kTxParamOutputs},
    {kSetSerDesRxDFE, "SetSerDesRxDFE", "SetSerDesRxDFE", {}},
    {kGetSerDesRxDFE, "GetSerDesRxDFE", "GetSerDesRxDFE", kModeOutputs},
    {kSetSerDesRxVGA, "SetSerDesRxVGA", "SetSerDesRxVGA", {}},
    {kGetSerDesRxVGA, "GetSerDesRxVGA", "GetSerDesRxVGA", kVgaOutputs},
    {kSetSerDesRxDFEState, "SetSerDesRxDFEState", "SetSerDesRxDFEState", {}},
    {kGetSerDesRxDFEStats, "GetSerDesRxDFEStats", "GetSerDesRxDFEStats", kStatsOutputs},
    {kSetSerDesRxRateParams, "SetSerDesRxRateParams", "SetSerDesRxRateParams", {}},
    {kGetSerDesRxRateParams, "GetSerDesRxRateParams", "GetSerDesRxRateParams", kRxParamOutputs},
    {kSetSerDesTestOption, "SetSerDesTestOption", "SetSerDesTestOption", {}},
    {kGetSerDesTestStatus, "GetSerDesTestStatus", "GetSerDesTestStatus", kStatusOutputs},
    {kPortCtlOpen, "PortCtlOpen", "PortCtlOpen", {}},
    {kPortCtlClose, "PortCtlClose", "PortCtlClose", {}},
    {kGetPortHwConfig, "GetPortHwConfig", "GetPortHwConfig", kHwConfigOutputs},
    {kGetPortInfo, "GetPortInfo", "GetPortInfo", kValueOutputs},
    {kSetPortCfgSpeed, "SetPortCfgSpeed", "SetPortCfgSpeed", {}},
    {kGetPortCfgSpeed, "GetPortCfgSpeed", "GetPortCfgSpeed", kSpeedOutputs},
    {kGetPortSpeed, "GetPortSpeed", "GetPortSpeed", kSpeedOutputs},
    {kGetMediaHwFcXmtrType, "GetMediaHwFcXmtrType", "GetMediaHwFcXmtrType", kMediaOutputs},
    {kTxStreamEnable, "TxStreamEnable", "TxStreamEnable", {}},
    {kTxStreamState, "TxStreamState", "TxStreamState", kEnabledOutputs},
    {kGetFrameStatCntrs, "GetFrameStatCntrs", "GetFrameStatCntrs", kCounterOutputs},
    {kClrFrameStatCntrs, "ClrFrameStatCntrs", "ClrFrameStatCntrs", {}},
});

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

Addressed addressedBy(Operation operation) {
  switch (operation) {
    case kAsicCtlOpen:
    case kAsicCtlClose:
    case kPortCtlOpen:
    case kPortCtlClose:
    case kGetSwitchConfig:
    case kToString:
      return {};
    case kGetSerDesInfoOfAsic:
      return {.asic = true};
    case kGetSerDesInfoOfCore:
    case kReadSerDesPLLRegister:
    case kWriteSerDesPLLRegister:
      return {.asic = true, .core = true};
    case kGetSerDesInfoOfPort:
    case kSetSerDesTxRateParams:
    case kGetSerDesTxRateParams:
    case kSetSerDesRxRateParams:
    case kGetSerDesRxRateParams:
      return {.asic = true, .port = true};
    default:
      // The rest of AsicControl works on links, all of PortControl on ports.
      return {.asic = true, .port = true, .link = operation < kPortCtlOpen};
  }
}

std::optional<Operation> findOperation(std::string_view name) {
  for (const OperationInfo& info : kOperations) {
    if (info.name == name) return info.operation;
  }
  return std::nullopt;
}

}  // namespace simulator
