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

struct NumberRow {
  const char* word;
  std::uint32_t value;
};

// Beyond 32 bits the low ones are kept, beyond 64 the value stops at the limit.
TEST(ParseNumber, TakesDecimalAndPrefixedHexadecimal) {
  for (const auto& [word, value] : {NumberRow{"0", 0},
                                    NumberRow{"7", 7},
                                    NumberRow{"007", 7},
                                    NumberRow{"010", 10},
                                    NumberRow{"2147483647", 2147483647},
                                    NumberRow{"-5", 0xFFFFFFFB},
                                    NumberRow{"-0", 0},
                                    NumberRow{"-2147483648", 0x80000000},
                                    NumberRow{"0x1F", 31},
                                    NumberRow{"0x1f", 31},
                                    NumberRow{"0X4e", 0x4E},
                                    NumberRow{"0x0", 0},
                                    NumberRow{"0x00000000000000000012", 0x12},
                                    NumberRow{"0xffffffff", 0xFFFFFFFF},
                                    NumberRow{"4294967295", 0xFFFFFFFF},
                                    NumberRow{"4294967297", 1},
                                    NumberRow{"-4294967297", 0xFFFFFFFF},
                                    NumberRow{"0x123456789", 0x23456789},
                                    NumberRow{"99999999999999999999", 0xFFFFFFFF},
                                    NumberRow{"-99999999999999999999", 0},
                                    NumberRow{"0x10000000000000000", 0xFFFFFFFF}})
    EXPECT_EQ(number(word), accepted(value)) << word;
}

TEST(ParseNumber, RefusesOtherWordsAndStoresZero) {
  for (const char* word : {"",    "0x", "0X", "0xg",  "0x1g", "0x1 ", "0x-1",   "0x0x1", "00x1", "1f", "12a", "a12",
                           "1.5", "+5", " 5", "-0x5", "x5",   "\xE9", "0x\xE9", "-",     "--5",  "5-", "1-2"})
    EXPECT_EQ(number(word), kRefused) << word;
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
  for (const char* word : {"all", "ALL"})
    EXPECT_EQ(shown({word}), accepted(0xFFF)) << word;
  for (const bool sets : {false, true}) {
    currentCommandSets = sets;
    EXPECT_EQ(parse({"gl"}), accepted(0x03F));
    EXPECT_EQ(parse({"Gl"}), accepted(0x03F));
    EXPECT_EQ(parse({"xG"}), accepted(0x0C0));
    EXPECT_EQ(parse({"EXG"}), accepted(0xF00));
  }
}

TEST_F(ParsePortList, TypeKeywordIsNotCheckedAgainstTheOtherLists) {
  xg_ = 0x03F;
  EXPECT_EQ(set({"gl"}), accepted(0x03F));
}

TEST_F(ParsePortList, KeywordIsOnlyKnownWholeAndAsTheSoleWord) {
  for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
           {"gl", "3"}, {"3", "gl"}, {"gl", "xg"}, {"all", "all"}, {"gls"}, {"al"}, {"eexg"}})
    EXPECT_EQ(shown(words).status, CMD_BAD_PARAM) << words[0];
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

TEST_F(ParsePortList, RangeIsTwoDecimalNumbersUpTo31) {
  for (const char* word : {"0-32", "32-33", "32-5", "64-65", "0-99999999999999999999", "-1", "-1-3", "1--3", "-5--3",
                           "-", "1-", "a-3", "1-a", "1x-3", "0x1-3", "gl-3"})
    EXPECT_EQ(shown({word}), kRefused) << word;
}

// Ends beyond 32 bits give their low 32 bits.
TEST_F(ParsePortList, RangeEndsMayBearAPlusAndWhatFollowsARangeIsNotLookedAt) {
  for (const char* word : {"3-5x", "3-5-40", "+3-+5", "4294967299-4294967301"})
    EXPECT_EQ(shown({word}), accepted(0x38)) << word;
  EXPECT_EQ(shown({"1-0x5"}), accepted(0));
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
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"5", "6"}, {"5-6"}, {"5", "8"}, {"7", "8"}, {"0-31"}})
    EXPECT_EQ(set(words).status, CMD_MIXED_PORT_TYPES) << words[0];
}

TEST_F(ParsePortList, NumbersOfOneTypeAndOfNoneSuitASetCommand) {
  EXPECT_EQ(set({"0", "5", "1-3"}), accepted(0x2F));
  EXPECT_EQ(set({"6-7"}), accepted(0xC0));
  EXPECT_EQ(set({"8", "11"}), accepted(0x900));
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

TEST(ParseRate, TakesLongAndShortNamesInAnyCase) {
  const std::vector<std::vector<const char*>> words = {
      {"AUTO", "auto", "Auto"}, {"1G", "1"}, {"2G", "2"}, {"4G", "4"}, {"8G", "8"}, {"10G", "10"},
      {"20G", "20g", "20"}};
  for (std::uint32_t value = 0; value < words.size(); ++value) {
    for (const char* word : words[value])
      EXPECT_EQ(rate(word), accepted(value)) << word;
  }
}

TEST(ParseRate, RefusalStoresNothing) {
  for (const char* word : {"INV", "inv", "", "0", "3", "16G", "8GB", "08"})
    EXPECT_EQ(rate(word), kRefusedWithoutStoring) << word;
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

TEST(ParseInterface, RefusalStoresNothing) {
  for (const char* word : {"INV", "", "as", "0"})
    EXPECT_EQ(interfaceOf(word), kRefusedWithoutStoring) << word;
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
  for (const char* word : {"en", "EN"})
    EXPECT_EQ(enable(word), accepted(1)) << word;
  for (const char* word : {"dis", "Dis"})
    EXPECT_EQ(enable(word), accepted(0)) << word;
  for (const char* word : {"enable", "1", ""})
    EXPECT_EQ(enable(word), (Parsed{CMD_BAD_PARAM, 0xEF})) << word;
}

TEST(ParseFwHw, BothInAnyCase) {
  for (const char* word : {"fw", "FW"})
    EXPECT_EQ(fwHw(word), accepted(1)) << word;
  for (const char* word : {"hw", "hW"})
    EXPECT_EQ(fwHw(word), accepted(0)) << word;
  for (const char* word : {"f", ""})
    EXPECT_EQ(fwHw(word), (Parsed{CMD_BAD_PARAM, 0xEF})) << word;
}

}  // namespace
}  // namespace recording
