// Keywords, set by set: what may be typed, and that nothing else is taken.
#include "arguments/keywords.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

namespace {

// The names of a set in order, each with its short name behind a slash.
std::vector<std::string> words(const KeywordSet& keywords) {
  std::vector<std::string> result;
  for (const ValueName& name : keywords.names)
    result.push_back(name.shortName == nullptr ? name.name : std::string(name.name) + '/' + name.shortName);
  return result;
}

using Words = std::vector<std::string>;

TEST(Keywords, SetsAreWhatMayBeTyped) {
  EXPECT_EQ(words(rateKeywords), (Words{"AUTO", "1G/1", "2G/2", "4G/4", "8G/8", "10G/10", "20G/20"}));
  EXPECT_EQ(words(ffeModeKeywords), (Words{"FFE2", "FFE3", "FFE4"}));
  EXPECT_EQ(words(slewRateKeywords),
            (Words{"24ps/24", "30ps/30", "36ps/36", "50ps/50", "60ps/60", "75ps/75", "100ps/100"}));
  EXPECT_EQ(words(dfeModeKeywords), (Words{"DFE3", "DFE5", "NONE", "DFE1"}));
  EXPECT_EQ(words(interfaceKeywords), (Words{"asic/a", "system/s", "network/n"}));
  EXPECT_EQ(words(portKeywords), (Words{"all", "gl", "xg", "exg"}));
  EXPECT_EQ(words(enableKeywords), (Words{"dis", "en"}));
  EXPECT_EQ(words(fwHwKeywords), (Words{"hw", "fw"}));
}

TEST(SameWord, CaseDoesNotMatterAndAllElseDoes) {
  EXPECT_TRUE(sameWord("", ""));
  EXPECT_TRUE(sameWord("aZ", "Az"));
  EXPECT_TRUE(sameWord("zA?", "Za?"));
  EXPECT_FALSE(sameWord("abc", "ab"));
  EXPECT_FALSE(sameWord("ab", "abc"));
  EXPECT_FALSE(sameWord("", "a"));
  EXPECT_FALSE(sameWord("abc", "abd"));
}

// Characters that differ as the two cases of a letter do, beside the letters and beyond ASCII.
TEST(SameWord, OnlyLettersHaveCases) {
  for (const auto& [a, b] : {std::pair{"@", "`"}, {"[", "{"}, {"0", "\x10"}, {"\xC4", "\xE4"}}) {
    EXPECT_FALSE(sameWord(a, b)) << a;
    EXPECT_FALSE(sameWord(b, a)) << b;
  }
}

TEST(SameLetter, IsOneCharacterOrALetterInBothCases) {
  for (int a = 0; a < 256; ++a) {
    for (int b = 0; b < 256; ++b)
      EXPECT_EQ(sameLetter(static_cast<char>(a), static_cast<char>(b)), std::tolower(a) == std::tolower(b))
          << a << " " << b;
  }
}

}  // namespace
