#include <gtest/gtest.h>

#include <algorithm>

#include "tests/unit/simulator/switch/switch_bench.h"

namespace simulator {
namespace {

const std::string kFault = R"(
[[faults]]
operation = "GetPortSpeed"
port = 0
ordinal = 2
probability = 0.5
always = true
)";

class State : public SwitchTest {
 protected:
  State() : SwitchTest(kFault), other(readDescription(kBenchSwitch + kFault, "bench.toml")) {}

  // Some of everything that can change.
  void change() {
    passSeconds(3);
    (void)sw.setTxFfe(0, 1, -1, {.mode = FFE_3, .k = 99, .c = {-4, 55, -25, 0}});
    (void)sw.setPortSpeed(id(3), SPEED_4G);
    (void)sw.setRxRateParams(0, 6, SPEED_10G, {-5, INT32_MIN, INT32_MAX, 4, 5});
    (void)sw.setStream(id(8), false);
    (void)sw.writePllRegister(0, 4, 3, 0x1234);
    (void)sw.setTestOption(0, 1, 0, kTestSendPattern, 1);
    (void)sw.setTestOption(0, 1, 0, kTestCheckPattern, 1);
    (void)sw.setTestOption(0, 1, 0, kTestInjectErrors, 9);
    (void)sw.setTestOption(0, 7, 0, kTestTemperature, 1);
    (void)sw.setTestOption(0, 7, 0, kTestMargin, 1);
    for (int i = 0; i < 5; ++i)
      (void)sw.beginCall({.operation = Operation::kGetPortSpeed, .asic = 0, .port = 0});
  }

  Switch other;
};

TEST_F(State, IsTheSameForTwoNewSwitches) {
  EXPECT_EQ(sw.exportState(), other.exportState());
}

TEST_F(State, TakenOverMakesTwoSwitchesAlike) {
  change();
  const std::vector<StateRecord> state = sw.exportState();
  EXPECT_NE(state, other.exportState());
  ASSERT_TRUE(other.importState(state));
  EXPECT_EQ(other.exportState(), state);
  // And they go on alike.
  passSeconds(4);
  for (int i = 0; i < 4; ++i)
    (void)other.beginCall({});
  drv_counters_t counters;
  ASSERT_EQ(other.getCounters(id(1), &counters), kOk);
  EXPECT_EQ(whole(counters.decodeErrors), decodeErrors(1));
  int status = 0;
  ASSERT_EQ(other.getTestStatus(0, 1, 0, kTestCheckPattern, &status), kOk);
  EXPECT_EQ(status, testStatus(1, kTestCheckPattern));
  for (int i = 0; i < 20; ++i) {
    const CallSite call{.operation = Operation::kGetPortSpeed, .asic = 0, .port = 0};
    EXPECT_EQ(sw.beginCall(call) == nullptr, other.beginCall(call) == nullptr);
  }
  EXPECT_EQ(sw.exportState(), other.exportState());
}

TEST_F(State, ExportingWorksOutNoLink) {
  passSeconds(2);
  (void)sw.exportState();
  EXPECT_EQ(sw.evaluations(), 0U);
}

TEST_F(State, OfAnotherShapeIsRefusedAndChangesNothing) {
  const std::vector<StateRecord> before = other.exportState();
  change();
  const std::vector<StateRecord> good = sw.exportState();
  const auto refused = [&](const std::vector<StateRecord>& state) {
    return !other.importState(state) && other.exportState() == before;
  };
  EXPECT_TRUE(refused({}));
  std::vector<StateRecord> state = good;
  state.pop_back();
  EXPECT_TRUE(refused(state)) << "a record too few";
  state = good;
  state.push_back({"more", {}});
  EXPECT_TRUE(refused(state)) << "a record too many";
  for (std::size_t i = 0; i < good.size(); ++i) {
    state = good;
    state[i].name += "x";
    EXPECT_TRUE(refused(state)) << "another name than " << good[i].name;
    state = good;
    state[i].values.pop_back();
    EXPECT_TRUE(refused(state)) << "a value too few of " << good[i].name;
    state = good;
    state[i].values.push_back(0);
    EXPECT_TRUE(refused(state)) << "a value too many of " << good[i].name;
  }
  EXPECT_TRUE(other.importState(good));
}

TEST_F(State, EveryValueBeyondItsRangeIsRefused) {
  const std::vector<StateRecord> good = sw.exportState();
  for (const std::string name : {"asic0.pll0", "asic0.port0.rx0", "asic0.port0.tx0", "asic0.port0.cache4"}) {
    std::vector<StateRecord> state = good;
    for (StateRecord& record : state) {
      if (record.name == name) record.values[0] = std::uint64_t{1} << 40;
    }
    EXPECT_FALSE(other.importState(state)) << name;
  }
  std::vector<StateRecord> state = good;
  for (StateRecord& record : state) {
    if (record.name == "asic0.port0") record.values[0] = kSpeeds;
  }
  EXPECT_FALSE(other.importState(state));
  EXPECT_EQ(other.exportState(), good);
}

// The greatest number of every place of a record; nothing is left out, and nothing greater is taken.
TEST_F(State, IsRecordsOfAllThatChangesEachInItsRange) {
  constexpr std::uint64_t kAny = UINT64_MAX;
  constexpr std::uint64_t kCarry = 999'999'999'999;
  const auto registersAnd = [](const std::vector<std::uint64_t>& more) {
    std::vector<std::uint64_t> all(32, UINT16_MAX);
    all.insert(all.end(), more.begin(), more.end());
    return all;
  };
  const std::pair<std::string, std::vector<std::uint64_t>> kRecords[] = {
      {"switch", {kAny, UINT32_MAX, UINT32_MAX, UINT32_MAX}},
      {"asic0.pll4", registersAnd({})},
      {"asic0.port6", {SPEED_20G, SPEED_20G, 1, kAny, kAny, kCarry, kAny, kAny, kCarry, 3'000'000}},
      {"asic0.port6.tx3", registersAnd({UINT32_MAX})},
      {"asic0.port6.rx3", registersAnd({kAny, kAny, kCarry, kMaxMarginMode, 1})},
  };
  passSeconds(3);
  const std::vector<StateRecord> good = sw.exportState();
  for (const auto& [name, greatest] : kRecords) {
    std::vector<StateRecord> state = good;
    const auto record = std::find_if(state.begin(), state.end(), [&](const auto& found) { return found.name == name; });
    ASSERT_NE(record, state.end()) << name;
    ASSERT_EQ(record->values.size(), greatest.size()) << name;
    for (std::size_t i = 0; i < greatest.size(); ++i) {
      const std::uint64_t before = record->values[i];
      record->values[i] = greatest[i];
      EXPECT_TRUE(other.importState(state)) << name << " " << i;
      record->values[i] = greatest[i] + 1;
      EXPECT_TRUE(greatest[i] == kAny || !other.importState(state)) << name << " " << i;
      record->values[i] = before;
    }
  }
}

TEST_F(State, DrawsFromAnyNumberButZeroWhichWouldStayZero) {
  std::vector<StateRecord> state = sw.exportState();
  state[0].values[1] = 0;
  EXPECT_FALSE(other.importState(state));
  state[0].values[1] = 1;
  EXPECT_TRUE(other.importState(state));
}

TEST_F(State, KnowsWhichDescriptionItBelongsTo) {
  EXPECT_EQ(sw.fingerprint(), other.fingerprint());
  Switch third(readDescription(kBenchSwitch, "bench.toml"));
  EXPECT_NE(sw.fingerprint(), third.fingerprint());
}

}  // namespace
}  // namespace simulator
