// The platform's operations, a row each: how faults and traces call them, what a call names, what it hands back.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace operations {

enum class Operation : std::uint8_t {
  kAsicCtlOpen,
  kAsicCtlClose,
  kGetSwitchConfig,
  kGetSerDesInfoOfAsic,
  kGetSerDesInfoOfCore,
  kGetSerDesInfoOfPort,
  kToString,
  kReadSerDesLinkRegister,
  kWriteSerDesLinkRegister,
  kReadSerDesPLLRegister,
  kWriteSerDesPLLRegister,
  kSetSerDesTxFFE,
  kGetSerDesTxFFE,
  kSetSerDesTxSlew,
  kGetSerDesTxSlew,
  kSetSerDesTxRateParams,
  kGetSerDesTxRateParams,
  kSetSerDesRxDFE,
  kGetSerDesRxDFE,
  kSetSerDesRxVGA,
  kGetSerDesRxVGA,
  kSetSerDesRxDFEState,
  kGetSerDesRxDFEStats,
  kSetSerDesRxRateParams,
  kGetSerDesRxRateParams,
  kSetSerDesTestOption,
  kGetSerDesTestStatus,
  kPortCtlOpen,
  kPortCtlClose,
  kGetPortHwConfig,
  kGetPortInfo,
  kSetPortCfgSpeed,
  kGetPortCfgSpeed,
  kGetPortSpeed,
  kGetMediaHwFcXmtrType,
  kTxStreamEnable,
  kTxStreamState,
  kGetFrameStatCntrs,
  kClrFrameStatCntrs,
};

// What the calls of an operation name.
struct Addressed {
  bool asic = false;
  bool port = false;
  bool link = false;
  bool core = false;
};

struct OperationInfo {
  Operation operation;
  std::string_view name;    // as faults call it; GetSerDesInfo has a name for each of its three forms
  std::string_view symbol;  // as the platform and the trace call it
  Addressed addressed;
  std::span<const std::string_view> outputs;  // what a call hands back, in the order of its trace; empty for a set
};

// In the order of the enumeration.
std::span<const OperationInfo> allOperations();
const OperationInfo& operationInfo(Operation operation);
std::optional<Operation> findOperation(std::string_view name);

}  // namespace operations
