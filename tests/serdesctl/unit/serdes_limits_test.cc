// What plans know of the types of SerDes, held against the simulated switch, which refuses what they refuse.
#include "serdesctl/plan/serdes_limits.h"

#include <gtest/gtest.h>

#include <random>

#include "display/name_tables.h"
#include "simulator/error_codes.h"
#include "simulator/serdes/settings.h"

namespace serdesctl {
namespace {

using simulator::RegisterFile;
using simulator::SerDesTraits;
using simulator::serDesTraits;

constexpr unsigned kFibreTypes[] = {0, 1, 2, 3, 5};

bool takes(const SerDesTraits& traits, std::uint32_t mode, const FfeValues& ffe) {
  RegisterFile registers{};
  return setFfe(traits, registers, {.mode = mode, .k = *ffe.k, .c = {*ffe.c0, *ffe.c1, *ffe.c2, *ffe.c3}}) ==
         simulator::kOk;
}

std::uint32_t numberOf(const FfeValues& ffe) {
  std::uint32_t mode = 0;
  while (ffe.ffeMode != ffeModeNames[mode].name)
    ++mode;
  return mode;
}

TEST(SerDesLimits, OfTheFfeAreThoseOfTheSimulatedSwitch) {
  std::mt19937 random(1);
  const auto within = [&](int most) { return std::uniform_int_distribution(-most, most)(random); };
  int taken = 0, refused = 0;
  for (int i = 0; i < 20000; ++i) {
    const SerDesTraits& traits = serDesTraits(kFibreTypes[random() % 5]);
    const std::uint32_t mode = random() % 4;
    const int most = i % 2 == 0 ? 30 : 66;
    const FfeValues ffe = {ffeModeNames[mode].name,
                           static_cast<std::int32_t>(random() % 256),
                           i % 3 == 0 ? 0 : within(most),
                           within(most),
                           within(most),
                           i % 3 == 0 ? 0 : within(most)};
    const auto refusal = refusalOf(traits, ffe);
    ASSERT_EQ(!refusal, takes(traits, mode, ffe)) << traits.name << " mode " << mode;
    ++(refusal ? refused : taken);
    if (!refusal) continue;
    EXPECT_NE(refusal->reason.find(traits.name), std::string::npos);
    EXPECT_TRUE(takes(traits, numberOf(*refusal->nearest), *refusal->nearest)) << refusal->reason;
  }
  EXPECT_GT(taken, 2000);
  EXPECT_GT(refused, 2000);
}

TEST(SerDesLimits, SayWhatIsRefusedAndWhatIsNearest) {
  const auto refusal = refusalOf(serDesTraits(2), FfeValues{"FFE3", 140, -40, 63, -40, 0});
  EXPECT_EQ(refusal->reason, "SERDES_11G takes taps of -63 to 63 whose amounts add up to 100 at most");
  EXPECT_EQ(refusal->nearest, (FfeValues{"FFE3", 140, -27, 44, -27, 0}));
  EXPECT_EQ(refusalOf(serDesTraits(1), FfeValues{"FFE4", 140, 0, 50, 0, 0})->reason, "SERDES_6G has no FFE4");
  EXPECT_EQ(refusalOf(serDesTraits(0), FfeValues{"FFE2", 140, -3, 50, 0, 0})->reason, "SERDES_3G has no c0");
  EXPECT_EQ(refusalOf(serDesTraits(2), VgaValues{8, 3, 128})->nearest, (VgaValues{7, 3, 127}));
  EXPECT_EQ(refusalOf(serDesTraits(1), DfeModeValue{"DFE5"})->nearest, DfeModeValue{"DFE3"});
  EXPECT_EQ(refusalOf(serDesTraits(0), DfeModeValue{"DFE1"})->nearest, DfeModeValue{"NONE"});
}

TEST(SerDesLimits, OfReceiversAndSlewAreThoseOfTheSimulatedSwitch) {
  for (unsigned type = 0; type < simulator::kSerDesTypes; ++type) {
    const SerDesTraits& traits = serDesTraits(type);
    RegisterFile registers{};
    for (std::uint32_t mode = 0; mode < dfeModeNames.size(); ++mode) {
      const bool taken = setDfe(traits, registers, mode) == simulator::kOk;
      EXPECT_EQ(!refusalOf(traits, DfeModeValue{dfeModeNames[mode].name}), taken) << traits.name << " " << mode;
    }
    EXPECT_EQ(!refusalOf(traits, LiveSlew{}), setSlew(traits, registers, true, SLEW_36PS) == simulator::kOk);
    if (traits.isEthernet) continue;
    for (const VgaValues& vga : {VgaValues{0, 0, 0}, VgaValues{7, 7, 127}, VgaValues{8, 0, 0}, VgaValues{0, 8, 0},
                                 VgaValues{0, 0, -1}, VgaValues{0, -1, 0}, VgaValues{-1, 0, 0}}) {
      const bool taken = setVga(traits, registers, {*vga.pole, *vga.peak, *vga.amax}) == simulator::kOk;
      EXPECT_EQ(!refusalOf(traits, vga), taken) << traits.name << " " << *vga.pole << " " << *vga.peak;
    }
  }
}

TEST(SerDesLimits, AreUnknownForOtherTypes) {
  AsicState asic;
  asic.cores = {{.asic = 0, .core = 3, .serDesType = 2}, {.asic = 0, .core = 4, .serDesType = simulator::kSerDesTypes}};
  const ConfigSide known = {.links = 1, .serDesType = "A", .core = 3},
                   other = {.links = 1, .serDesType = "B", .core = 4};
  asic.config.ports = {{.port = 0, .rx = other, .tx = known, .userPort = std::nullopt}};
  EXPECT_EQ(serDesSides(asic, 0).tx.traits, &serDesTraits(2));
  EXPECT_EQ(serDesSides(asic, 0).rx.traits, nullptr);
  EXPECT_EQ(serDesSides(asic, 1).tx.traits, nullptr);
  asic.config.exgPorts = 0b101;  // what they are then follows from the port
  EXPECT_FALSE(serDesSides(asic, 0).tx.isEthernet);
  EXPECT_TRUE(serDesSides(asic, 0).rx.isEthernet);
  EXPECT_FALSE(serDesSides(asic, 1).rx.isEthernet);
  EXPECT_TRUE(serDesSides(asic, 2).rx.isEthernet);
}

}  // namespace
}  // namespace serdesctl
