// What counts as worse, and what comes by chance.
#include "serdesctl/apply/guard.h"

#include <gtest/gtest.h>

namespace serdesctl {
namespace {

struct Seen {
  std::uint64_t errors = 0;  // decode errors counted before the first of two looks
  std::uint64_t more = 0;    // in the second between them
  std::optional<std::int32_t> amin = 40;
  std::optional<std::int32_t> ap = 78;
  const char* rate = "8G";
  bool decode = true;  // or the CRC errors are meant
};

PortLook lookOf(double atS, std::uint64_t errors, const Seen& seen) {
  DfeStats link;
  link.amin = seen.amin;
  link.ap = seen.ap;
  link.decodeErrors = link.crcErrors = Count{0, 0, 0};
  (seen.decode ? link.decodeErrors : link.crcErrors) = Count{static_cast<double>(errors), errors, errors};
  return {.atS = atS,
          .rate = RateValues{.configRate = seen.rate, .streamEnabled = true},
          .runningRate = seen.rate,
          .media = "OPT",
          .links = {link},
          .complaint = {}};
}

PortHealth healthOf(const Seen& seen) {
  const PortLook first = lookOf(0, seen.errors, seen);
  return judge({}, lookOf(1, seen.errors + seen.more, seen), &first);
}

bool isWorse(const Seen& before, const Seen& now) {
  return !worse(healthOf(before), healthOf(now)).empty();
}

TEST(Guard, ErrorsOfAPortThatHadNoneAreWorse) {
  EXPECT_TRUE(isWorse({}, {.more = 1}));
}

TEST(Guard, ErrorsOfAPortThatErrsAreWorseBeyondChance) {
  EXPECT_FALSE(isWorse({.errors = 3}, {.errors = 3, .more = 10}));
  EXPECT_TRUE(isWorse({.errors = 3}, {.errors = 3, .more = 11}));
  EXPECT_FALSE(isWorse({.errors = 3, .more = 20}, {.errors = 23, .more = 50}));
  EXPECT_TRUE(isWorse({.errors = 3, .more = 20}, {.errors = 23, .more = 51}));
}

TEST(Guard, AClosedEyeIsWorseWhateverTheErrors) {
  EXPECT_TRUE(isWorse({.errors = 3}, {.errors = 3, .amin = 0}));
}

TEST(Guard, AnEyeIsSmallerBeyondNoiseAndAtTheSameSpeed) {
  EXPECT_FALSE(isWorse({}, {.amin = 37}));
  EXPECT_TRUE(isWorse({}, {.amin = 36}));
  EXPECT_FALSE(isWorse({}, {.amin = 36, .rate = "10G"}));
}

TEST(Guard, EyesThatTheToolDoesNotShowAreNotCompared) {
  for (const Seen& unseen : {Seen{.amin = {}}, Seen{.ap = {}}, Seen{.ap = 0}}) {
    EXPECT_FALSE(isWorse(unseen, {.amin = 1}));
    EXPECT_FALSE(isWorse(unseen, unseen));
  }
}

TEST(Guard, CrcErrorsCountAsDecodeErrorsDo) {
  EXPECT_TRUE(isWorse({}, {.more = 1, .decode = false}));
  EXPECT_FALSE(isWorse({.errors = 3, .decode = false}, {.errors = 3, .more = 10, .decode = false}));
  EXPECT_TRUE(isWorse({.errors = 3, .decode = false}, {.errors = 3, .more = 11, .decode = false}));
}

}  // namespace
}  // namespace serdesctl
