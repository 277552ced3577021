// The parsers of argument words.
#include "arguments/argument_parsers.h"

#include <array>
#include <string>
#include <vector>

#include "arguments/keywords.h"
#include "tests/support/tool_test.h"

namespace recording {
namespace {

constexpr std::uint32_t kUntouched = 0xDEADBEEF;

std::vector<char*> pointersTo(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  for (std::string& word : words)
    pointers.push_back(word.data());
  return pointers;
}

// A parser's status and what it left in its result.
struct Parsed {
  CmdStatus status;
  std::uint32_t value;

  bool operator==(const Parsed&) const = default;
};

void PrintTo(const Parsed& parsed, std::ostream* stream) {
  *stream << "status " << static_cast<int>(parsed.status) << ", value 0x" << std::hex << parsed.value;
}

constexpr Parsed accepted(std::uint32_t value) {
  return {CMD_OK, value};
}

constexpr Parsed kRefused = {CMD_BAD_PARAM, 0};

Parsed number(const char* word) {
  Parsed parsed{CMD_OK, kUntouched};
  parsed.status = parseNumber(word, parsed.value);
  return parsed;
}

TEST(ParseNumber, Decimal) {
  EXPECT_EQ(number("0"), accepted(0));
  EXPECT_EQ(number("7"), accepted(7));
  EXPECT_EQ(number("007"), accepted(7));
  EXPECT_EQ(number("2147483647"), accepted(2147483647));
}

TEST(ParseNumber, NegativeDecimal) {
  EXPECT_EQ(number("-5"), accepted(0xFFFFFFFB));
  EXPECT_EQ(number("-0"), accepted(0));
  EXPECT_EQ(number("-2147483648"), accepted(0x80000000));
}

TEST(ParseNumber, HexadecimalInEitherCase) {
  EXPECT_EQ(number("0x1F"), accepted(31));
  EXPECT_EQ(number("0x1f"), accepted(31));
  EXPECT_EQ(number("0X4e"), accepted(0x4E));
  EXPECT_EQ(number("0x0"), accepted(0));
  EXPECT_EQ(number("0x00000000000000000012"), accepted(0x12));
  EXPECT_EQ(number("0xffffffff"), accepted(0xFFFFFFFF));
}

TEST(ParseNumber, OnlyItsPrefixMakesANumberHexadecimal) {
  EXPECT_EQ(number("10"), accepted(10));
  EXPECT_EQ(number("010"), accepted(10));
  EXPECT_EQ(number("1f"), kRefused);
  EXPECT_EQ(number("00x1"), kRefused);
}

TEST(ParseNumber, NumberBeyond32BitsGivesItsLow32Bits) {
  EXPECT_EQ(number("4294967295"), accepted(0xFFFFFFFF));
  EXPECT_EQ(number("4294967297"), accepted(1));
  EXPECT_EQ(number("-4294967297"), accepted(0xFFFFFFFF));
  EXPECT_EQ(number("0x123456789"), accepted(0x23456789));
}

TEST(ParseNumber, NumberBeyond64BitsSaturates) {
  EXPECT_EQ(number("99999999999999999999"), accepted(0xFFFFFFFF));
  EXPECT_EQ(number("-99999999999999999999"), accepted(0));
  EXPECT_EQ(number("0x10000000000000000"), accepted(0xFFFFFFFF));
}

TEST(ParseNumber, PrefixWithoutDigitsIsRefused) {
  EXPECT_EQ(number("0x"), kRefused);
  EXPECT_EQ(number("0X"), kRefused);
}

TEST(ParseNumber, CharacterThatIsNoDigitIsRefused) {
  EXPECT_EQ(number("0xg"), kRefused);
  EXPECT_EQ(number("0x1g"), kRefused);
  EXPECT_EQ(number("0x1 "), kRefused);
  EXPECT_EQ(number("0x-1"), kRefused);
  EXPECT_EQ(number("0x0x1"), kRefused);
  EXPECT_EQ(number("12a"), kRefused);
  EXPECT_EQ(number("a12"), kRefused);
  EXPECT_EQ(number("1.5"), kRefused);
  EXPECT_EQ(number("+5"), kRefused);
  EXPECT_EQ(number(" 5"), kRefused);
  EXPECT_EQ(number("-0x5"), kRefused);
  EXPECT_EQ(number("x5"), kRefused);
  EXPECT_EQ(number("\xE9"), kRefused);
  EXPECT_EQ(number("0x\xE9"), kRefused);
}

TEST(ParseNumber, MinusIsAllowedOnlyAtTheStart) {
  EXPECT_EQ(number("-"), kRefused);
  EXPECT_EQ(number("--5"), kRefused);
  EXPECT_EQ(number("5-"), kRefused);
  EXPECT_EQ(number("1-2"), kRefused);
}

TEST(ParseNumber, EmptyWordIsRefused) {
  EXPECT_EQ(number(""), kRefused);
}

Parsed number16(const char* word) {
  std::uint16_t value = 0xDEAD;
  const CmdStatus status = parseNumber16(word, value);
  return {status, value};
}

TEST(ParseNumber16, KeepsTheLow16Bits) {
  EXPECT_EQ(number16("65535"), accepted(0xFFFF));
  EXPECT_EQ(number16("65536"), accepted(0));
  EXPECT_EQ(number16("0x12345"), accepted(0x2345));
  EXPECT_EQ(number16("-1"), accepted(0xFFFF));
}

TEST(ParseNumber16, RefusalStoresZero) {
  EXPECT_EQ(number16("12a"), kRefused);
  EXPECT_EQ(number16(""), kRefused);
}

// Ports 0 to 5 GL, 6 and 7 XG, 8 to 11 EXG, unless a test changes the lists.
class ParsePortList : public ToolTest {
 protected:
  Parsed parse(std::vector<std::string> words) const {
    Parsed parsed{CMD_OK, kUntouched};
    parsed.status =
        parsePortList(static_cast<int>(words.size()), pointersTo(words).data(), parsed.value, gl_, xg_, exg_);
    EXPECT_EQ(platform.calls, Calls{});
    return parsed;
  }

  Parsed shown(const std::vector<std::string>& words) const {
    currentCommandSets = false;
    return parse(words);
  }

  Parsed set(const std::vector<std::string>& words) const {
    currentCommandSets = true;
    return parse(words);
  }

  std::uint32_t gl_ = 0x03F;
  std::uint32_t xg_ = 0x0C0;
  std::uint32_t exg_ = 0xF00;
};

TEST_F(ParsePortList, NoWordsAreTooFew) {
  EXPECT_EQ(shown({}), (Parsed{CMD_TOO_FEW_ARGS, 0}));
  EXPECT_EQ(set({}), (Parsed{CMD_TOO_FEW_ARGS, 0}));
}

TEST_F(ParsePortList, KeywordsInAnyCase) {
  EXPECT_EQ(shown({"all"}), accepted(0xFFF));
  EXPECT_EQ(shown({"ALL"}), accepted(0xFFF));
  EXPECT_EQ(shown({"gl"}), accepted(0x03F));
  EXPECT_EQ(shown({"Gl"}), accepted(0x03F));
  EXPECT_EQ(shown({"xg"}), accepted(0x0C0));
  EXPECT_EQ(shown({"xG"}), accepted(0x0C0));
  EXPECT_EQ(shown({"exg"}), accepted(0xF00));
  EXPECT_EQ(shown({"EXG"}), accepted(0xF00));
}

TEST_F(ParsePortList, TypeKeywordsSuitSetCommands) {
  EXPECT_EQ(set({"gl"}), accepted(0x03F));
  EXPECT_EQ(set({"xg"}), accepted(0x0C0));
  EXPECT_EQ(set({"exg"}), accepted(0xF00));
}

TEST_F(ParsePortList, TypeKeywordIsNotCheckedAgainstTheOtherLists) {
  xg_ = 0x03F;
  EXPECT_EQ(set({"gl"}), accepted(0x03F));
}

TEST_F(ParsePortList, KeywordIsOnlyKnownAsTheSoleWord) {
  EXPECT_EQ(shown({"gl", "3"}).status, CMD_BAD_PARAM);
  EXPECT_EQ(shown({"3", "gl"}).status, CMD_BAD_PARAM);
  EXPECT_EQ(shown({"gl", "xg"}).status, CMD_BAD_PARAM);
  EXPECT_EQ(shown({"all", "all"}).status, CMD_BAD_PARAM);
}

TEST_F(ParsePortList, WordThatOnlyBeginsAsAKeywordIsRefused) {
  EXPECT_EQ(shown({"gls"}), kRefused);
  EXPECT_EQ(shown({"al"}), kRefused);
  EXPECT_EQ(shown({"eexg"}), kRefused);
}

TEST_F(ParsePortList, AllIsMixedForASetCommandOnASwitchOfTwoTypes) {
  EXPECT_EQ(set({"all"}).status, CMD_MIXED_PORT_TYPES);
  xg_ = 0;
  EXPECT_EQ(set({"all"}).status, CMD_MIXED_PORT_TYPES);
  xg_ = 0x0C0;
  gl_ = 0;
  EXPECT_EQ(set({"all"}).status, CMD_MIXED_PORT_TYPES);
  gl_ = 0x03F;
  exg_ = 0;
  EXPECT_EQ(set({"all"}).status, CMD_MIXED_PORT_TYPES);
}

TEST_F(ParsePortList, AllSuitsASetCommandOnASwitchOfOneType) {
  gl_ = exg_ = 0;
  EXPECT_EQ(set({"all"}), accepted(0x0C0));
  xg_ = 0;
  EXPECT_EQ(set({"all"}), accepted(0));
}

TEST_F(ParsePortList, NumbersSelectTheirPorts) {
  EXPECT_EQ(shown({"0"}), accepted(1));
  EXPECT_EQ(shown({"4", "0x1F", "4", "2"}), accepted(0x80000014));
  EXPECT_EQ(shown({"31"}), accepted(0x80000000));
}

TEST_F(ParsePortList, NumbersAreTakenModulo64AndSelectNothingFrom32On) {
  EXPECT_EQ(shown({"32"}), accepted(0));
  EXPECT_EQ(shown({"63"}), accepted(0));
  EXPECT_EQ(shown({"64"}), accepted(1));
  EXPECT_EQ(shown({"95"}), accepted(0x80000000));
  EXPECT_EQ(shown({"96"}), accepted(0));
  EXPECT_EQ(shown({"0xFFFFFFFF"}), accepted(0));
  EXPECT_EQ(shown({"4294967300"}), accepted(0x10));
}

TEST_F(ParsePortList, RangesIncludeBothEnds) {
  EXPECT_EQ(shown({"0-31"}), accepted(0xFFFFFFFF));
  EXPECT_EQ(shown({"3-5"}), accepted(0x38));
  EXPECT_EQ(shown({"7-7"}), accepted(0x80));
  EXPECT_EQ(shown({"31-31"}), accepted(0x80000000));
  EXPECT_EQ(shown({"0-1", "8", "3-4"}), accepted(0x11B));
}

TEST_F(ParsePortList, ReversedRangeSelectsNothing) {
  EXPECT_EQ(shown({"5-2"}), accepted(0));
  EXPECT_EQ(set({"5-2"}), accepted(0));
  EXPECT_EQ(shown({"5-2", "9"}), accepted(0x200));
}

TEST_F(ParsePortList, RangeBeyond31IsRefused) {
  EXPECT_EQ(shown({"0-32"}), kRefused);
  EXPECT_EQ(shown({"32-33"}), kRefused);
  EXPECT_EQ(shown({"32-5"}), kRefused);
  EXPECT_EQ(shown({"64-65"}), kRefused);
}

TEST_F(ParsePortList, NegativeNumberIsAMalformedRange) {
  EXPECT_EQ(shown({"-1"}), kRefused);
  EXPECT_EQ(shown({"-1-3"}), kRefused);
  EXPECT_EQ(shown({"1--3"}), kRefused);
  EXPECT_EQ(shown({"-5--3"}), kRefused);
}

TEST_F(ParsePortList, RangeNeedsTwoDecimalNumbers) {
  EXPECT_EQ(shown({"-"}), kRefused);
  EXPECT_EQ(shown({"1-"}), kRefused);
  EXPECT_EQ(shown({"a-3"}), kRefused);
  EXPECT_EQ(shown({"1-a"}), kRefused);
  EXPECT_EQ(shown({"1x-3"}), kRefused);
  EXPECT_EQ(shown({"0x1-3"}), kRefused);
  EXPECT_EQ(shown({"gl-3"}), kRefused);
}

TEST_F(ParsePortList, WhatFollowsARangeIsNotLookedAt) {
  EXPECT_EQ(shown({"3-5x"}), accepted(0x38));
  EXPECT_EQ(shown({"3-5-40"}), accepted(0x38));
  EXPECT_EQ(shown({"1-0x5"}), accepted(0));
}

TEST_F(ParsePortList, RangeEndsMayBearAPlus) {
  EXPECT_EQ(shown({"+3-+5"}), accepted(0x38));
}

TEST_F(ParsePortList, RangeEndsBeyond32BitsGiveTheirLow32Bits) {
  EXPECT_EQ(shown({"4294967299-4294967301"}), accepted(0x38));
  EXPECT_EQ(shown({"0-99999999999999999999"}), kRefused);
}

TEST_F(ParsePortList, FirstFailingWordEndsTheParse) {
  EXPECT_EQ(shown({"1", "x", "2"}).status, CMD_BAD_PARAM);
  EXPECT_EQ(shown({"1", "", "2"}).status, CMD_BAD_PARAM);
  EXPECT_EQ(shown({""}), kRefused);
  // Mixed types are looked for only when every word is right.
  EXPECT_EQ(set({"0", "6", "x"}).status, CMD_BAD_PARAM);
}

TEST_F(ParsePortList, MixedNumbersSuitAShowCommand) {
  EXPECT_EQ(shown({"5", "6", "8"}), accepted(0x160));
}

TEST_F(ParsePortList, MixedNumbersAreRefusedForASetCommand) {
  EXPECT_EQ(set({"5", "6"}).status, CMD_MIXED_PORT_TYPES);
  EXPECT_EQ(set({"5-6"}).status, CMD_MIXED_PORT_TYPES);
  EXPECT_EQ(set({"5", "8"}).status, CMD_MIXED_PORT_TYPES);
  EXPECT_EQ(set({"7", "8"}).status, CMD_MIXED_PORT_TYPES);
  EXPECT_EQ(set({"0-31"}).status, CMD_MIXED_PORT_TYPES);
}

TEST_F(ParsePortList, NumbersOfOneTypeSuitASetCommand) {
  EXPECT_EQ(set({"0", "5", "1-3"}), accepted(0x2F));
  EXPECT_EQ(set({"6-7"}), accepted(0xC0));
  EXPECT_EQ(set({"8", "11"}), accepted(0x900));
}

TEST_F(ParsePortList, PortOfNoTypeMixesWithEveryType) {
  EXPECT_EQ(set({"5", "20"}), accepted(0x100020));
  EXPECT_EQ(set({"20", "8"}), accepted(0x100100));
}

TEST_F(ParsePortList, NothingSelectedIsASuccess) {
  EXPECT_EQ(set({"32"}), accepted(0));
  EXPECT_EQ(shown({"40", "9-3"}), accepted(0));
}

Parsed rate(const char* word) {
  auto value = static_cast<port_speed_type>(kUntouched);
  const CmdStatus status = parseRate(word, value);
  return {status, value};
}

constexpr Parsed kRefusedWithoutStoring = {CMD_BAD_PARAM, kUntouched};

TEST(ParseRate, LongNames) {
  EXPECT_EQ(rate("AUTO"), accepted(0));
  EXPECT_EQ(rate("1G"), accepted(1));
  EXPECT_EQ(rate("2G"), accepted(2));
  EXPECT_EQ(rate("4G"), accepted(3));
  EXPECT_EQ(rate("8G"), accepted(4));
  EXPECT_EQ(rate("10G"), accepted(5));
  EXPECT_EQ(rate("20G"), accepted(6));
}

TEST(ParseRate, ShortNames) {
  EXPECT_EQ(rate("1"), accepted(1));
  EXPECT_EQ(rate("2"), accepted(2));
  EXPECT_EQ(rate("4"), accepted(3));
  EXPECT_EQ(rate("8"), accepted(4));
  EXPECT_EQ(rate("10"), accepted(5));
  EXPECT_EQ(rate("20"), accepted(6));
}

TEST(ParseRate, IgnoresCase) {
  EXPECT_EQ(rate("auto"), accepted(0));
  EXPECT_EQ(rate("Auto"), accepted(0));
  EXPECT_EQ(rate("20g"), accepted(6));
}

TEST(ParseRate, PrintedNameOfAnInvalidRateIsRefused) {
  EXPECT_EQ(rate("INV"), kRefusedWithoutStoring);
  EXPECT_EQ(rate("inv"), kRefusedWithoutStoring);
}

TEST(ParseRate, OtherWordsAreRefused) {
  EXPECT_EQ(rate(""), kRefusedWithoutStoring);
  EXPECT_EQ(rate("0"), kRefusedWithoutStoring);
  EXPECT_EQ(rate("3"), kRefusedWithoutStoring);
  EXPECT_EQ(rate("16G"), kRefusedWithoutStoring);
  EXPECT_EQ(rate("8GB"), kRefusedWithoutStoring);
  EXPECT_EQ(rate("08"), kRefusedWithoutStoring);
}

Parsed interfaceOf(const char* word) {
  auto value = static_cast<CacheInterface>(kUntouched);
  const CmdStatus status = parseInterface(word, value);
  return {status, value};
}

TEST(ParseInterface, LongAndShortNamesInAnyCase) {
  EXPECT_EQ(interfaceOf("asic"), accepted(0));
  EXPECT_EQ(interfaceOf("a"), accepted(0));
  EXPECT_EQ(interfaceOf("system"), accepted(1));
  EXPECT_EQ(interfaceOf("S"), accepted(1));
  EXPECT_EQ(interfaceOf("Network"), accepted(2));
  EXPECT_EQ(interfaceOf("n"), accepted(2));
}

TEST(ParseInterface, OtherWordsAreRefused) {
  EXPECT_EQ(interfaceOf("INV"), kRefusedWithoutStoring);
  EXPECT_EQ(interfaceOf(""), kRefusedWithoutStoring);
  EXPECT_EQ(interfaceOf("as"), kRefusedWithoutStoring);
  EXPECT_EQ(interfaceOf("0"), kRefusedWithoutStoring);
}

Parsed enable(const char* word) {
  std::uint8_t value = 0xEF;
  const CmdStatus status = parseEnable(word, value);
  return {status, value};
}

Parsed fwHw(const char* word) {
  std::uint8_t value = 0xEF;
  const CmdStatus status = parseFwHw(word, value);
  return {status, value};
}

TEST(ParseEnable, OnAndOffInAnyCase) {
  EXPECT_EQ(enable("en"), accepted(1));
  EXPECT_EQ(enable("EN"), accepted(1));
  EXPECT_EQ(enable("dis"), accepted(0));
  EXPECT_EQ(enable("Dis"), accepted(0));
}

TEST(ParseEnable, RefusalStoresNothing) {
  EXPECT_EQ(enable("enable"), (Parsed{CMD_BAD_PARAM, 0xEF}));
  EXPECT_EQ(enable("1"), (Parsed{CMD_BAD_PARAM, 0xEF}));
  EXPECT_EQ(enable(""), (Parsed{CMD_BAD_PARAM, 0xEF}));
}

TEST(ParseFwHw, BothInAnyCase) {
  EXPECT_EQ(fwHw("fw"), accepted(1));
  EXPECT_EQ(fwHw("FW"), accepted(1));
  EXPECT_EQ(fwHw("hw"), accepted(0));
  EXPECT_EQ(fwHw("hW"), accepted(0));
}

TEST(ParseFwHw, RefusalStoresNothing) {
  EXPECT_EQ(fwHw("f"), (Parsed{CMD_BAD_PARAM, 0xEF}));
  EXPECT_EQ(fwHw(""), (Parsed{CMD_BAD_PARAM, 0xEF}));
}

}  // namespace
}  // namespace recording
