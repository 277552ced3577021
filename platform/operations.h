// The platform's operations by name, with the names of what each hands back: the words of the trace and of the faults.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace simulator {

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

struct OperationInfo {
  Operation operation;
  std::string_view name;    // as faults call it; GetSerDesInfo has a name for each of its three forms
  std::string_view symbol;  // as the platform and the trace call it
  std::span<const std::string_view> outputs;
};

// What the calls of an operation name.
struct Addressed {
  bool asic = false;
  bool port = false;
  bool link = false;
  bool core = false;
};

// In the order of the enumeration.
std::span<const OperationInfo> allOperations();
const OperationInfo& operationInfo(Operation operation);
Addressed addressedBy(Operation operation);
std::optional<Operation> findOperation(std::string_view name);

}  // namespace simulator
