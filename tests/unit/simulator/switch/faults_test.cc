#include "simulator/switch/faults.h"

#include <gtest/gtest.h>

namespace simulator {
namespace {

constexpr CallSite ffeOf(unsigned port, int link = -1) {
  return {.operation = Operation::kSetSerDesTxFFE, .asic = 0, .port = port, .link = link};
}

// The calls, counted from 1, that a fault applies to when the same call is made again and again.
std::vector<int> struck(Faults& faults, const CallSite& call, int calls) {
  std::vector<int> result;
  for (int i = 1; i <= calls; ++i) {
    if (faults.onCall(call) != nullptr) result.push_back(i);
  }
  return result;
}

TEST(RandomNumbers, AreThoseOfTheDocumentedGenerator) {
  RandomNumbers random(1);
  EXPECT_EQ(random.next(), 270369U);
  EXPECT_EQ(random.next(), 67634689U);
  EXPECT_EQ(random.next(), 2647435461U);
}

TEST(RandomNumbers, WithoutASeedAreThoseOfOne) {
  EXPECT_EQ(RandomNumbers(0).state(), 1U);
  EXPECT_EQ(RandomNumbers(1).state(), 1U);
  EXPECT_EQ(RandomNumbers(2).state(), 2U);
}

TEST(RandomNumbers, AreSpreadOverTheWholeRange) {
  RandomNumbers random(42);
  std::array<int, 10> seen{};
  for (int i = 0; i < 10000; ++i)
    ++seen[random.below(10)];
  for (const int count : seen) {
    EXPECT_GT(count, 850);
    EXPECT_LT(count, 1150);
  }
}

// A run on one processor is repeated on another, by the same seed.
TEST(Faults, LeaveOutTheFirstNumbersOfASeed) {
  RandomNumbers eighth(5);
  for (int i = 0; i < 8; ++i)
    (void)eighth.next();
  EXPECT_EQ(Faults({}, 5).random().state(), eighth.state());
}

TEST(Faults, ThatAreRareAreRareFromTheFirstCallOn) {
  int early = 0;
  for (std::uint32_t seed = 0; seed < 1000; ++seed) {
    Faults faults({{.where = ffeOf(3), .probability = kCertain / 100}}, seed);
    early += struck(faults, ffeOf(3), 1).empty() ? 0 : 1;
  }
  EXPECT_LT(early, 30);
  EXPECT_GT(early, 1);
}

TEST(Faults, StrikeOnceUnlessTheyAreForEver) {
  Faults once({{.where = ffeOf(3)}}, 1);
  EXPECT_EQ(struck(once, ffeOf(3), 5), (std::vector{1}));
  Faults always({{.where = ffeOf(3), .always = true}}, 1);
  EXPECT_EQ(struck(always, ffeOf(3), 3), (std::vector{1, 2, 3}));
}

TEST(Faults, StrikeTheNthMatchingCall) {
  Faults once({{.where = ffeOf(3), .ordinal = 3}}, 1);
  EXPECT_EQ(struck(once, ffeOf(3), 6), (std::vector{3}));
  Faults always({{.where = ffeOf(3), .ordinal = 3, .always = true}}, 1);
  EXPECT_EQ(struck(always, ffeOf(3), 5), (std::vector{3, 4, 5}));
}

TEST(Faults, MatchOnlyWhatAgreesInEverythingThatTheyName) {
  Faults faults({{.where = ffeOf(3, 0), .always = true}}, 1);
  EXPECT_EQ(faults.onCall(ffeOf(4, 0)), nullptr);
  EXPECT_EQ(faults.onCall(ffeOf(3, 1)), nullptr);
  EXPECT_EQ(faults.onCall({.operation = Operation::kGetSerDesTxFFE, .asic = 0, .port = 3, .link = 0}), nullptr);
  EXPECT_NE(faults.onCall(ffeOf(3, 0)), nullptr);
}

TEST(Faults, LeaveOpenWhatTheyDoNotName) {
  Faults faults({{.where = {.operation = Operation::kSetSerDesTxFFE}, .ordinal = 2}}, 1);
  EXPECT_EQ(faults.onCall(ffeOf(7)), nullptr);
  EXPECT_NE(faults.onCall(ffeOf(2)), nullptr);
}

TEST(Faults, TheFirstOfSeveralStrikes) {
  Faults faults({{.where = ffeOf(1), .code = -20}, {.where = ffeOf(1), .code = -21, .answer = {}}}, 1);
  EXPECT_EQ(faults.onCall(ffeOf(1))->code, -20);
  EXPECT_EQ(faults.onCall(ffeOf(1))->code, -21);
  EXPECT_EQ(faults.onCall(ffeOf(1)), nullptr);
}

TEST(Faults, StrikeByChanceAsOftenAsTheySay) {
  Faults faults({{.where = ffeOf(1), .always = true, .probability = kCertain / 4}}, 7);
  const std::size_t count = struck(faults, ffeOf(1), 4000).size();
  EXPECT_GT(count, 900U);
  EXPECT_LT(count, 1100U);
}

TEST(Faults, ThatCannotStrikeDoNotAndThoseThatAreCertainTakeNoChance) {
  constexpr std::uint32_t kBeforeTheLowest = 4071982377;  // the number drawn next is 1
  Faults never({{.where = ffeOf(1), .probability = 0}}, 1);
  never.restore(never.states(), RandomNumbers(kBeforeTheLowest));
  EXPECT_EQ(never.onCall(ffeOf(1)), nullptr);
  EXPECT_EQ(never.random().state(), 1U);
  Faults certain({{.where = ffeOf(1)}}, 1);
  certain.restore(certain.states(), RandomNumbers(kBeforeTheLowest));
  EXPECT_NE(certain.onCall(ffeOf(1)), nullptr);
  EXPECT_EQ(certain.random().state(), kBeforeTheLowest);
}

TEST(Faults, CountNoFurtherThanTheirCountersReach) {
  Faults faults({{.where = ffeOf(1), .ordinal = 2, .always = true}}, 1);
  faults.restore({{.matches = UINT32_MAX, .fired = UINT32_MAX}}, faults.random());
  EXPECT_NE(faults.onCall(ffeOf(1)), nullptr);
  EXPECT_EQ(faults.states()[0].matches, UINT32_MAX);
  EXPECT_EQ(faults.states()[0].fired, UINT32_MAX);
}

TEST(Faults, RepeatWithTheirSeedAndDifferWithout) {
  const std::vector<FaultDescription> descriptions = {{.where = ffeOf(1), .always = true, .probability = kCertain / 2}};
  Faults first(descriptions, 7), again(descriptions, 7), other(descriptions, 8);
  const std::vector<int> pattern = struck(first, ffeOf(1), 50);
  EXPECT_EQ(struck(again, ffeOf(1), 50), pattern);
  EXPECT_NE(struck(other, ffeOf(1), 50), pattern);
}

}  // namespace
}  // namespace simulator
