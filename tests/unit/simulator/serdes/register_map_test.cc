#include "simulator/serdes/register_map.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace simulator {
namespace {

using enum Field;

struct NamedMap {
  std::string name;
  const RegisterMap* map;
};

std::vector<NamedMap> allMaps() {
  std::vector<NamedMap> maps;
  for (unsigned type = 0; type < kSerDesTypes; ++type) {
    const SerDesTraits& traits = serDesTraits(type);
    maps.push_back({"tx" + std::to_string(type), &traits.tx});
    maps.push_back({"rx" + std::to_string(type), &traits.rx});
    maps.push_back({"pll" + std::to_string(type), &traits.pll});
  }
  return maps;
}

TEST(RegisterMap, EveryFieldLiesWithinTheRegistersOfItsSide) {
  for (const NamedMap& named : allMaps()) {
    EXPECT_LE(named.map->count, kMaxRegisters) << named.name;
    for (const FieldPlace& place : named.map->fields) {
      EXPECT_LT(place.address, named.map->count) << named.name;
      EXPECT_GE(place.width, 1) << named.name;
      EXPECT_LE(place.shift + place.width, 16) << named.name;
    }
    for (const RegisterTrait& trait : named.map->traits)
      EXPECT_LT(trait.address, named.map->count) << named.name;
  }
}

TEST(RegisterMap, NoTwoFieldsShareABitAndNoneAppearsTwice) {
  for (const NamedMap& named : allMaps()) {
    std::array<unsigned, kMaxRegisters> used{};
    std::set<Field> seen;
    for (const FieldPlace& place : named.map->fields) {
      EXPECT_EQ(used[place.address] & placeMask(place), 0U) << named.name << " register " << int{place.address};
      used[place.address] |= placeMask(place);
      EXPECT_TRUE(seen.insert(place.field).second) << named.name << " register " << int{place.address};
    }
  }
}

TEST(RegisterMap, WhatIsComputedCannotBeWrittenAndWhatIsSetCan) {
  for (const NamedMap& named : allMaps()) {
    for (const FieldPlace& place : named.map->fields) {
      EXPECT_EQ(named.map->isReadOnly(place.address), isComputed(place.field))
          << named.name << " register " << int{place.address};
    }
  }
}

TEST(RegisterMap, EveryTypeCanBeTestedAndSwitchedOnAndOff) {
  for (unsigned type = 0; type < kSerDesTypes; ++type) {
    const SerDesTraits& traits = serDesTraits(type);
    for (const Field field : {kTxEnable, kPattern, kSending, kInjectedErrors})
      EXPECT_TRUE(traits.tx.has(field)) << type;
    for (const Field field : {kRxEnable, kLoopback, kCheckPattern, kSignalDetect, kLock, kEyeHeight, kCheckErrors}) {
      EXPECT_TRUE(traits.rx.has(field)) << type;
    }
    EXPECT_TRUE(traits.pll.has(kPllEnable) && traits.pll.has(kPllLock)) << type;
    EXPECT_EQ(traits.tx.read(traits.tx.resetValues(), kTxEnable), 1) << type;
    EXPECT_EQ(traits.rx.read(traits.rx.resetValues(), kRxEnable), 1) << type;
    EXPECT_EQ(traits.pll.read(traits.pll.resetValues(), kPllEnable), 1) << type;
  }
}

TEST(RegisterMap, EveryTypeHasItsOwnRegisterCounts) {
  std::set<int> rx, tx, pll;
  for (unsigned type = 0; type < kSerDesTypes; ++type) {
    rx.insert(serDesTraits(type).rx.count);
    tx.insert(serDesTraits(type).tx.count);
    pll.insert(serDesTraits(type).pll.count);
  }
  EXPECT_EQ(rx.size(), kSerDesTypes);
  EXPECT_EQ(tx.size(), kSerDesTypes);
  EXPECT_EQ(pll.size(), kSerDesTypes);
}

TEST(RegisterMap, ADfeHasARegisterForEachTapThatItsModesUse) {
  for (unsigned type = 0; type < kSerDesTypes; ++type) {
    const SerDesTraits& traits = serDesTraits(type);
    const bool dfe5 = (traits.dfeModes & 0b0010) != 0;
    const bool dfe3 = (traits.dfeModes & 0b0001) != 0;
    EXPECT_EQ(traits.rx.has(kDfeMode), dfe3) << type;
    EXPECT_EQ(traits.rx.has(kHold), dfe3) << type;
    for (unsigned tap = 0; tap < 10; ++tap) {
      EXPECT_EQ(traits.rx.has(tapField(tap)), (tap < 6 ? dfe3 : dfe5) && (tap % 2 == 0 || traits.hasEvenAndOddTaps))
          << type << " tap " << tap;
    }
  }
}

TEST(RegisterMap, EthernetHasFewerParametersForARate) {
  for (unsigned type = 0; type < kSerDesTypes; ++type) {
    const SerDesTraits& traits = serDesTraits(type);
    EXPECT_EQ(traits.txParamCount, traits.isEthernet ? 2 : 7) << type;
    EXPECT_EQ(traits.rxParamCount, traits.isEthernet ? 2 : 5) << type;
  }
}

TEST(RegisterMap, FieldsKeepTheirSignAndLeaveTheirNeighbours) {
  const RegisterMap& map = serDesTraits(5).tx;  // c0 and c1 share a register
  RegisterFile registers = map.resetValues();
  map.write(registers, kC0, -4);
  map.write(registers, kC1, 55);
  EXPECT_EQ(map.read(registers, kC0), -4);
  EXPECT_EQ(map.read(registers, kC1), 55);
  EXPECT_EQ(registers[map.find(kC0)->address], 0x37fc);
}

TEST(RegisterMap, ValuesBeyondAFieldAreLimitedToIt) {
  const RegisterMap& map = serDesTraits(2).tx;
  RegisterFile registers = map.resetValues();
  map.write(registers, kC0, 1000);
  map.write(registers, kC2, -1000);
  map.write(registers, kPower, -1);
  EXPECT_EQ(map.read(registers, kC0), 127);
  EXPECT_EQ(map.read(registers, kC2), -128);
  EXPECT_EQ(map.read(registers, kPower), 0);
}

TEST(RegisterMap, AFieldThatATypeLacksReadsAsZeroAndTakesNothing) {
  const RegisterMap& map = serDesTraits(4).tx;
  RegisterFile registers = map.resetValues();
  const RegisterFile before = registers;
  map.write(registers, kC1, 7);
  EXPECT_EQ(map.read(registers, kC1), 0);
  EXPECT_EQ(registers, before);
}

TEST(RegisterMap, TapsReadingsAndTemperatureAreSignedAndNothingElse) {
  for (const NamedMap& named : allMaps()) {
    for (const FieldPlace& place : named.map->fields) {
      const bool isSigned =
          isTap(place.field) ||
          std::set{kC0, kC1, kC2, kC3, kEyeHeight, kAp, kAmin, kAn, kTemperature}.contains(place.field);
      RegisterFile registers{};
      registers[place.address] = static_cast<std::uint16_t>(placeMask(place));
      const int allBits = (1 << place.width) - 1;
      EXPECT_EQ(named.map->read(registers, place.field), isSigned ? -1 : allBits)
          << named.name << " register " << int{place.address};
    }
  }
}

}  // namespace
}  // namespace simulator
