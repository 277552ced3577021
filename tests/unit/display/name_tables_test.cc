// The printed names of rates and media.
#include "display/name_tables.h"

#include <gtest/gtest.h>

namespace {

TEST(RateNames, EveryValueHasItsName) {
  EXPECT_STREQ(rateName(0), "AUTO");
  EXPECT_STREQ(rateName(1), "1G");
  EXPECT_STREQ(rateName(2), "2G");
  EXPECT_STREQ(rateName(3), "4G");
  EXPECT_STREQ(rateName(4), "8G");
  EXPECT_STREQ(rateName(5), "10G");
  EXPECT_STREQ(rateName(6), "20G");
  EXPECT_STREQ(rateName(7), "INV");
}

TEST(RateNames, ValueOutsideTheTableIsInvalid) {
  EXPECT_STREQ(rateName(8), "INV");
  EXPECT_STREQ(rateName(250), "INV");
  EXPECT_STREQ(rateName(0xFFFFFFFF), "INV");
}

TEST(MediaNames, EveryValueHasItsNameAndBothCoppersShareOne) {
  EXPECT_STREQ(mediaName(0), "NONE");
  EXPECT_STREQ(mediaName(1), "N/A");
  EXPECT_STREQ(mediaName(2), "UNK");
  EXPECT_STREQ(mediaName(3), "OPT");
  EXPECT_STREQ(mediaName(4), "ELC");
  EXPECT_STREQ(mediaName(5), "COP");
  EXPECT_STREQ(mediaName(6), "COP");
  EXPECT_STREQ(mediaName(7), "10GE");
  EXPECT_STREQ(mediaName(8), "1GE");
}

TEST(MediaNames, ValueOutsideTheTableIsUnknown) {
  EXPECT_STREQ(mediaName(9), "UNK");
  EXPECT_STREQ(mediaName(250), "UNK");
  EXPECT_STREQ(mediaName(0xFFFFFFFF), "UNK");
}

TEST(NameAt, GivesTheOtherNameFromTheEndOfTheTableOn) {
  constexpr std::array<ValueName, 2> kNames = {{{"a"}, {"b"}}};
  EXPECT_STREQ(nameAt(kNames, 1, "none"), "b");
  EXPECT_STREQ(nameAt(kNames, 2, "none"), "none");
  EXPECT_STREQ(nameAt({}, 0, "none"), "none");
}

}  // namespace
