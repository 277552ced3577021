// Self-tests and error counters. What the test options do is the platform's; only their numbers are checked.
#include "commands/diagnostics.h"

#include <cstdio>

#include "arguments/word_reader.h"
#include "commands/platform_walk.h"
#include "topology/serdes_topology.h"

namespace {

constexpr std::uint32_t kResetAllTests = 100;
constexpr std::uint32_t kHoldCurrentDfe = 101;

// What resetting the tests addresses, whatever ports there are.
constexpr std::uint32_t kResetPortCount = 20;
constexpr auto kResetOption = static_cast<SerDesTestOption>(2);

// The options that can be run and those that can be asked for differ on purpose.
bool isRunOption(std::uint32_t option) {
  return option <= 9 && option != 5;
}

bool isStatusOption(std::uint32_t option) {
  return option <= 4 || option == 9;
}

int resetAllTests() {
  for (std::uint32_t port = 0; port < kResetPortCount; ++port) {
    const int result = AsicControl::SetSerDesTestOption(serdesTopology.asicNum, port, kAllLinks, kResetOption, 0);
    if (result < 0) return result;
  }
  return 0;
}

// Loads what a link's DFE has adapted to as its fixed state.
int holdCurrentDfe(std::uint32_t port, int link) {
  SerDesRxDFEState state{};
  SerDesRxDFEStats stats{};
  int result = AsicControl::GetSerDesRxDFE(serdesTopology.asicNum, port, link, &state.mode);
  if (result < 0) return result;
  result = AsicControl::GetSerDesRxDFEStats(serdesTopology.asicNum, port, link, &stats);
  if (result < 0) return result;
  state.leadingWord = stats.leadingWord;
  state.h = stats.h;
  return AsicControl::SetSerDesRxDFEState(serdesTopology.asicNum, port, link, &state);
}

}  // namespace

CmdStatus runTestCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const std::uint32_t port = in.number();
  const int link = in.number<int>();
  const std::uint32_t option = in.number();
  const int mode = in.number<int>();
  if (in.failed()) return in.status();

  int result = 0;
  if (isRunOption(option)) {
    result = AsicControl::SetSerDesTestOption(serdesTopology.asicNum, port, link, static_cast<SerDesTestOption>(option),
                                              mode);
  } else if (option == kResetAllTests) {
    result = resetAllTests();
  } else if (option == kHoldCurrentDfe) {
    result = holdCurrentDfe(port, link);
  } else {
    return CMD_BAD_PARAM;
  }
  return result < 0 ? platformFailure(result, __func__) : CMD_OK;
}

CmdStatus getTestCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const std::uint32_t port = in.number();
  const int link = in.number<int>();
  const std::uint32_t option = in.number();
  in.require(isStatusOption(option), CMD_BAD_PARAM);
  if (in.failed()) return in.status();

  int testStatus = 0;
  const int result = AsicControl::GetSerDesTestStatus(serdesTopology.asicNum, port, link,
                                                      static_cast<SerDesTestOption>(option), &testStatus);
  if (result < 0) return platformFailure(result, __func__);
  std::printf("status: %d\n", testStatus);
  return CMD_OK;
}

CmdStatus clearErrorsCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const std::uint32_t ports = in.ports();
  if (in.failed()) return in.status();

  return onEachPort(ports, __func__, [&](std::uint32_t port) { return PortControl::ClrFrameStatCntrs(portId(port)); });
}
