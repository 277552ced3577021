// Records and runs of registers as text, what of a call has no room, and outputs that are replaced.
#include "platform/call_text.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace operations {
namespace {

template <typename Value>
std::string textOf(const Value& value) {
  CallText text;
  text.append(value);
  return std::string(text.text());
}

std::string textOf(const Outputs& outputs) {
  std::string all;
  for (std::size_t i = 0; i < outputs.count; ++i) {
    CallText text;
    outputs.places[i].appendTo(text);
    all += std::string(text.text()) + " ";
  }
  return all;
}

TEST(CallText, RecordsAreTheirFieldsInOrder) {
  SerDesRxDFEState state{};
  state.leadingWord = 1;
  state.mode = DFE_5;
  for (std::size_t i = 0; i < 10; ++i)
    state.h[i] = static_cast<std::int16_t>(10 + i);
  EXPECT_EQ(textOf(port_id_t{.userPort = 1, .asic = 2, .asicPort = 3, .unused = {}}), "{1, 2, 3}");
  EXPECT_EQ(textOf(SerDesTxRateParams{1, 2, 3, 4, 5, 6, 7}), "{1, 2, 3, 4, 5, 6, 7}");
  EXPECT_EQ(textOf(SerDesRxRateParams{1, 2, 3, 4, 5}), "{1, 2, 3, 4, 5}");
  EXPECT_EQ(textOf(const_cast<const SerDesRxDFEState*>(&state)),
            "{1, " + std::to_string(DFE_5) + ", 10, 11, 12, 13, 14, 15, 16, 17, 18, 19}");
}

TEST(CallText, OutputsOfRecordsAreTheirFieldsInOrder) {
  Switch_HW_Config_t config{};
  config.NumSlots = 1;
  config.NumUserPorts = 2;
  config.NumAuxPorts = 3;
  config.NumASICs = 4;
  SerDesRxDFEStats stats{};
  stats.leadingWord = 1;
  stats.Ap = 2;
  stats.Amin = 3;
  stats.An = 4;
  for (std::size_t i = 0; i < 10; ++i)
    stats.h[i] = static_cast<std::int16_t>(10 + i);
  drv_counters_t counters{};
  counters.decodeErrors = {.high = 1, .low = 2};
  counters.crcErrors = {.high = 0, .low = 3};
  EXPECT_EQ(textOf(outputs(&config)), "1 2 3 4 ");
  EXPECT_EQ(textOf(outputs(&stats)), "1 10 11 12 13 14 15 16 17 18 19 2 3 4 ");
  EXPECT_EQ(textOf(outputs(&counters)), "4294967298 3 ");
}

TEST(CallText, RegistersHaveTheDigitsThatTheToolPrints) {
  unsigned short registers[3] = {0, 0x1d, 0xffff};
  EXPECT_EQ(textOf(registerOutputs(registers, 3)), "0x0000, 0x001d, 0xffff ");
  EXPECT_EQ(textOf(registerOutputs(registers, 0)), "");
  EXPECT_EQ(textOf(Hex{.value = 5, .digits = 2}), "0x05");
  EXPECT_EQ(textOf(Hex{.value = 0xffffffff, .digits = 4}), "0xffffffff");
}

TEST(CallText, NumbersAreWhole) {
  EXPECT_EQ(textOf(INT64_MIN), "-9223372036854775808");
  EXPECT_EQ(textOf(INT64_MAX), "9223372036854775807");
}

TEST(CallText, IsCutWhereTheRoomEnds) {
  constexpr std::size_t kRoom = 4096;
  for (const std::size_t before : {kRoom - 3, kRoom - 2, kRoom - 1, kRoom}) {
    CallText text;
    text.append(std::string(before, 'x'));
    text.append("ab");
    text.append("c");
    EXPECT_EQ(text.text(), (std::string(before, 'x') + "abc").substr(0, kRoom));
  }
}

TEST(CallText, HoldsTheLongestRunOfRegisters) {
  std::array<unsigned short, UINT8_MAX> registers{};
  CallText text;
  appendCall(text, Operation::kReadSerDesLinkRegister,
             arguments(UINT32_MAX, UINT32_MAX, INT32_MIN, UINT32_MAX, Hex{255, 2}, UINT8_MAX),
             registerOutputs(registers.data(), UINT8_MAX), INT32_MIN);
  EXPECT_TRUE(text.text().ends_with("0x0000 = -2147483648"));
}

TEST(Output, TakesAsMuchOfAValueAsItHolds) {
  unsigned char byte = 0;
  unsigned short registers[3] = {1, 2, 3};
  WordPairCounter counter{};
  Output(&byte).replace(0x1234);
  Output(registers, 2).replace(0x54321);
  Output(&counter).replace(0x123456789abcdef0);
  EXPECT_EQ(byte, 0x34);
  EXPECT_EQ(registers[0], 0x4321);
  EXPECT_EQ(registers[1], 0x4321);
  EXPECT_EQ(registers[2], 3);
  EXPECT_EQ(counter.high, 0x12345678U);
  EXPECT_EQ(counter.low, 0x9abcdef0U);
}

}  // namespace
}  // namespace operations
