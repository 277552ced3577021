// Fuzzes the readers of what the tool prints: any bytes are records or an error.
//
// Input: a byte of flags (bit 0: the topology is known; bit 1: a line with the command follows), then the text.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "serdesctl/base/errors.h"
#include "serdesctl/formats/reports.h"
#include "serdesctl/tables/config_text.h"
#include "serdesctl/tables/parse.h"
#include "tests/fuzz/tables_fuzz.h"

namespace {

// Ports with equal links, more on one side, and on one side alone.
constexpr const char* kTopology =
    "current asicNum:0, coreCount:2, portCount:5\n"
    "\nportConfig:\n"
    "portNum 0  : RX(linkCount:1, A, coreId:0) TX(linkCount:1, A, coreId:0)\n"
    "portNum 1  : RX(linkCount:4, A, coreId:0) TX(linkCount:1, A, coreId:0)\n"
    "portNum 2  : RX(linkCount:1, B, coreId:1) TX(linkCount:4, B, coreId:1)\n"
    "portNum 3  : RX(linkCount:2, B, coreId:1) TX(linkCount:0, B, coreId:1)\n"
    "portNum 4  : RX(linkCount:3, A, coreId:0) TX(linkCount:0, B, coreId:1)\n"
    "\ncoreConfig:\n"
    "coreId 0  : A                   P0_TX_RX(8) P1_TX_RX(9) P4_RX(N/A) \n"
    "coreId 1  : B                   P2_TX_RX(10) P3_TX_RX(11) P4_TX(N/A) \n"
    "\nserdesConfig:\nA useCount:5\nB useCount:5\nC useCount:0\nD useCount:0\nE useCount:0\nF useCount:0\nG "
    "useCount:0\n"
    "\nglPortList: 0x00000003\n\nxgPortList: 0x0000000c\n\nexgPortList: 0x00000010\n";

}  // namespace

// True when these are records.
bool readTables(std::string_view input) {
  if (input.empty()) return false;
  serdesctl::LogKnowledge knowledge;
  const int flags = input[0];
  input.remove_prefix(1);
  if ((flags & 1) != 0) knowledge.configs.push_back(serdesctl::parseConfig(kTopology));
  if ((flags & 2) != 0) {
    knowledge.command = input.substr(0, input.find('\n'));
    input.remove_prefix(std::min(input.size(), knowledge.command.size() + 1));
  }
  try {
    const std::vector<serdesctl::ParsedAnswer> answers = serdesctl::parseLog(input, knowledge);
    for (const serdesctl::ParsedAnswer& answer : answers) {
      const std::string json = serdesctl::jsonReport(answer, {});
      if (serdesctl::isReported(answer) != json.ends_with("]}\n")) std::abort();
    }
    (void)serdesctl::csvReport(answers);
  } catch (const serdesctl::Error&) {
    return false;
  }
  return true;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  (void)readTables({reinterpret_cast<const char*>(data), size});
  return 0;
}
