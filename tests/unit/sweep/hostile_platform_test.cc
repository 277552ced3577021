// A platform that hands back anything: every command runs to an end, within bounds of time and output. The address and
// undefined-behaviour sanitizers watch over the same tests.
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "shell/session.h"
#include "tests/unit/sweep/examples.h"
#include "topology/serdes_topology.h"

namespace {

using recording::platform;
using recording::run;

// Numbers that commands pass on or count with, beyond what the examples name.
constexpr const char* kMoreCommands[] = {
    "setRate AUTO all",
    "setSlew 24 xg",
    "setTxParams FFE3 115 -4 55 -25 0 36 exg",
    "showTxParamsCache 8G gl",
    "showTxParamsRaw system 8G 0-31",
    "setDFEState 23 0 DFE3 0 1 0 1 0 1 0 1 0 1",
    "setDFEState 24 0 DFE3 0 1 0 1 0 1 0 1 0 1",
    "setDFEState -1 0 DFE3 0 1 0 1 0 1 0 1 0 1",
    "setDFEState 0x80000000 0 DFE3 0 1 0 1 0 1 0 1 0 1",
    "readPLL 17 7",
    "readPLL 4294967295 255",
    "writeTx -1 -1 0xffffffff 0xffffffff",
    "readTx 23 -1 3",
    "readTx 24 0 3",
    "readTx 4294967295 0 3",
    "readRx 39 2147483647 0xffffffff",
    "runTest 4294967295 -1 101 0",
    "getTest 4 0 9",
    "setAsicNum 1",
    "setAsicNum 0",
};

// Headers ask and print for 24 ports of 4 links, dumps have 32 rows, at most seven tables of all that.
constexpr std::size_t kMostCalls = 2000;
constexpr std::size_t kMostOutput = 1 << 20;

class HostilePlatform : public recording::ToolTest {
 protected:
  static void expectBounds(const std::string& command) {
    const recording::Outcome outcome = run(command);
    EXPECT_LE(outcome.calls.size(), kMostCalls) << command;
    EXPECT_LE(outcome.out.size(), kMostOutput) << command;
    EXPECT_GE(outcome.status, CMD_OK) << command;
    EXPECT_LE(outcome.status, CMD_EXEC_ERROR) << command;
  }

  // Runs start-up and all commands from a fresh tool. `corruptStart`: the topology is made of such answers too.
  void runEverything(bool corruptStart, const std::function<void(std::span<std::byte>)>& corrupt) {
    SetUp();
    serdesTopology = {};
    if (corruptStart) platform.corrupt = corrupt;
    (void)recording::printedBy([] { (void)openSerdes(0, nullptr); });
    platform.corrupt = corrupt;
    for (const recording::Example& example : recording::kExamples) {
      if (std::string(example.name) == "setAsicNum") continue;  // comes last, since it makes the topology anew
      expectBounds(lineOf(example));
      if (takesPorts(example)) expectBounds(lineWith(example, "0-31"));
    }
    for (const char* command : kMoreCommands)
      expectBounds(command);
    platform.corrupt = nullptr;
    EXPECT_GE(closeSerdes(), 0);
  }
};

// Writes `number` as a value of the answer's size, or repeats it over a record.
void fill(std::span<std::byte> value, std::uint64_t number) {
  std::uint8_t byte = static_cast<std::uint8_t>(number);
  std::uint16_t half = static_cast<std::uint16_t>(number);
  std::uint32_t word = static_cast<std::uint32_t>(number);
  if (value.size() == 8) return std::memcpy(value.data(), &number, 8), void();
  if (value.size() == 2) return std::memcpy(value.data(), &half, 2), void();
  if (value.size() == 1) return std::memcpy(value.data(), &byte, 1), void();
  for (std::size_t at = 0; at + 4 <= value.size(); at += 4)
    std::memcpy(value.data() + at, &word, 4);
}

TEST_F(HostilePlatform, EveryAnswerTheSameNumber) {
  // 0, all ones, the extremes of each width, and just at and past every promised range.
  for (const std::uint64_t number :
       {std::uint64_t{0},          ~std::uint64_t{0},         std::uint64_t{0x7F},
        std::uint64_t{0x80},       std::uint64_t{0x7FFF},     std::uint64_t{0x8000},
        std::uint64_t{0xFFFF},     std::uint64_t{0x10000},    std::uint64_t{0x7FFFFFFF},
        std::uint64_t{0x80000000}, std::uint64_t{0xFFFFFFFF}, std::uint64_t{0x8000000080000000},
        std::uint64_t{1},          std::uint64_t{2},          std::uint64_t{3},
        std::uint64_t{4},          std::uint64_t{5},          std::uint64_t{6},
        std::uint64_t{7},          std::uint64_t{8},          std::uint64_t{9},
        std::uint64_t{10},         std::uint64_t{11},         std::uint64_t{17},
        std::uint64_t{18},         std::uint64_t{19},         std::uint64_t{23},
        std::uint64_t{24},         std::uint64_t{25},         std::uint64_t{31},
        std::uint64_t{32},         std::uint64_t{33},         std::uint64_t{255},
        std::uint64_t{256},        std::uint64_t{300}}) {
    SCOPED_TRACE(number);
    runEverything(true, [&](std::span<std::byte> value) { fill(value, number); });
    runEverything(false, [&](std::span<std::byte> value) { fill(value, number); });
  }
}

TEST_F(HostilePlatform, RandomAnswers) {
  for (std::uint32_t seed = 0; seed < 100; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto corrupt = [&](std::span<std::byte> value) {
      // Small numbers are the ones that get far.
      const std::uint64_t number = random();
      fill(value, seed % 2 == 0 ? number % 40 : number << (number % 33));
    };
    runEverything(true, corrupt);
    runEverything(false, corrupt);
  }
}

TEST_F(HostilePlatform, SomeAnswersWrongAmongGoodOnes) {
  for (std::uint32_t seed = 0; seed < 100; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    runEverything(true, [&](std::span<std::byte> value) {
      if (random() % 16 == 0) fill(value, random());
    });
  }
}

TEST_F(HostilePlatform, TypesWithoutNames) {
  SetUp();
  platform.typeNames.clear();
  discover();
  EXPECT_NE(run("showConfig").out.find("coreId 0  : UNK                 P0_TX_RX(100)"), std::string::npos);
  EXPECT_NE(run("showRx 0").out.find("\nUNK                 \n"), std::string::npos);
}

TEST_F(HostilePlatform, TypesWithNamesOfTenThousandCharacters) {
  SetUp();
  for (std::uint32_t type = 0; type < 7; ++type)
    platform.typeNames[type] = std::string(10000, 'x');
  discover();
  const std::string cut(255, 'x');
  EXPECT_NE(run("showConfig").out.find("coreId 0  : " + cut + " P0_TX_RX(100)"), std::string::npos);
  EXPECT_NE(run("showPLL 0").out.find("\n" + cut + " 0    \n"), std::string::npos);
}

}  // namespace
