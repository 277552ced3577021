// The operations as descriptions of faults have them: names, what may be told apart, and what may be answered.
#include "platform/operations.h"

#include <gtest/gtest.h>

#include <string>

namespace operations {
namespace {

constexpr const char* kTable = R"(
AsicCtlOpen:
AsicCtlClose:
GetSwitchConfig: -> NumSlots NumUserPorts NumAuxPorts NumASICs
GetSerDesInfo/asic: asic -> portCount coreCount
GetSerDesInfo/core: asic core -> firstPort type pllRegisterCount rxRegisterCount txRegisterCount rxParamCount txParamCount
GetSerDesInfo/port: asic port -> linkCount type coreId
ToString: -> name
ReadSerDesLinkRegister: asic port link -> value
WriteSerDesLinkRegister: asic port link
ReadSerDesPLLRegister: asic core -> value
WriteSerDesPLLRegister: asic core
SetSerDesTxFFE: asic port link
GetSerDesTxFFE: asic port link -> mode k c0 c1 c2 c3
SetSerDesTxSlew: asic port link
GetSerDesTxSlew: asic port link -> enable slew
SetSerDesTxRateParams: asic port
GetSerDesTxRateParams: asic port -> power slew mode p0 p1 p2 p3
SetSerDesRxDFE: asic port link
GetSerDesRxDFE: asic port link -> mode
SetSerDesRxVGA: asic port link
GetSerDesRxVGA: asic port link -> pole peak amax
SetSerDesRxDFEState: asic port link
GetSerDesRxDFEStats: asic port link -> leadingWord h0 h1 h2 h3 h4 h5 h6 h7 h8 h9 Ap Amin An
SetSerDesRxRateParams: asic port
GetSerDesRxRateParams: asic port -> mode p0 p1 p2 p3
SetSerDesTestOption: asic port link
GetSerDesTestStatus: asic port link -> status
PortCtlOpen:
PortCtlClose:
GetPortHwConfig: asic port -> userPort asic asicPort presence portType
GetPortInfo: asic port -> value
SetPortCfgSpeed: asic port
GetPortCfgSpeed: asic port -> speed
GetPortSpeed: asic port -> speed
GetMediaHwFcXmtrType: asic port -> type
TxStreamEnable: asic port
TxStreamState: asic port -> enabled
GetFrameStatCntrs: asic port -> decodeErrors crcErrors
ClrFrameStatCntrs: asic port
)";

TEST(Operations, AreThoseThatFaultsCanName) {
  std::string table = "\n";
  for (const OperationInfo& info : allOperations()) {
    const Addressed named = info.addressed;
    table += std::string(info.name) + ":" + (named.asic ? " asic" : "") + (named.port ? " port" : "") +
             (named.link ? " link" : "") + (named.core ? " core" : "") + (info.outputs.empty() ? "" : " ->");
    for (const std::string_view output : info.outputs)
      table += " " + std::string(output);
    table += "\n";
  }
  EXPECT_EQ(table, kTable);
}

TEST(Operations, AreFoundByTheNameOfTheirSymbolAndForm) {
  for (const OperationInfo& info : allOperations()) {
    EXPECT_EQ(info.name.substr(0, info.name.find('/')), info.symbol);
    EXPECT_EQ(findOperation(info.name), info.operation);
    EXPECT_EQ(operationInfo(info.operation).name, info.name);
  }
  EXPECT_EQ(findOperation("GetSerDesInfo"), std::nullopt);
}

}  // namespace
}  // namespace operations
