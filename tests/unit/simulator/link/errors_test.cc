// Error rates against their closed forms.
#include "simulator/link/errors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <set>
#include <string>

namespace simulator {
namespace {

TEST(FrameErrorRate, LongestFibreChannelFrame) {
  EXPECT_NEAR(frameErrorRate(1e-6, lineBits(2148, LineCode::k8b10b)), 2.125e-2, 2.125e-4);
  EXPECT_NEAR(frameErrorRate(1e-5, lineBits(2148, LineCode::k8b10b)), 0.1933, 0.0019);
  EXPECT_NEAR(frameErrorRate(1e-4, lineBits(2148, LineCode::k8b10b)), 0.8833, 0.0088);
}

TEST(FrameErrorRate, SmallRatesAreProportional) {
  EXPECT_NEAR(frameErrorRate(1e-18, lineBits(2148, LineCode::k8b10b)) / 21480e-18, 1, 1e-9);
  EXPECT_NEAR(frameErrorRate(1e-15, lineBits(64, LineCode::k64b66b)) / 528e-15, 1, 1e-9);
}

TEST(LineBits, AreTheFrameInItsCode) {
  EXPECT_DOUBLE_EQ(lineBits(1518, LineCode::k8b10b), 12144 * 10.0 / 8);
  EXPECT_DOUBLE_EQ(lineBits(1518, LineCode::k64b66b), 12144 * 66.0 / 64);
  EXPECT_DOUBLE_EQ(lineBits(2148, LineCode::k8b10b), 21480);
  EXPECT_DOUBLE_EQ(lineBits(64, LineCode::k64b66b), 528);
}

TEST(DecodeErrorRate, DependsOnCode) {
  EXPECT_NEAR(decodeErrorRate(1e-9, 8.5, LineCode::k8b10b), 8.755, 1e-9);
  EXPECT_NEAR(decodeErrorRate(1e-9, 10.51875, LineCode::k64b66b), 0.31875, 1e-9);
  EXPECT_EQ(decodeErrorRate(0, 8.5, LineCode::k8b10b), 0);
}

TEST(CrcErrorRate, IsTheShareOfFrames) {
  EXPECT_NEAR(crcErrorRate(1e-6, 21480, 1000), 21.25, 0.02);
  EXPECT_NEAR(crcErrorRate(0.5, 21480, 1000), 1000, 1e-9);
  EXPECT_EQ(crcErrorRate(1e-6, 21480, 0), 0);
}

// The code tables, as they are sent while the running disparity is negative: six bits for the lower five of a byte,
// four for the upper three. While it is positive, words that are not balanced are sent inverted, and so are the
// balanced 111000 and 1100, which would lengthen runs.
constexpr const char* kSixBits[32] = {"100111", "011101", "101101", "110001", "110101", "101001", "011001", "111000",
                                      "111001", "100101", "010101", "110100", "001101", "101100", "011100", "010111",
                                      "011011", "100011", "010011", "110010", "001011", "101010", "011010", "111010",
                                      "110011", "100110", "010110", "110110", "001110", "101110", "011110", "101011"};
constexpr const char* kFourBits[8] = {"1011", "1001", "0101", "1100", "1101", "1010", "0110", "1110"};
// Control characters: K28.0 to K28.7 behind 001111, and K23.7, K27.7, K29.7, K30.7 with 1000 behind their six bits.
constexpr const char* kControlFourBits[8] = {"0100", "1001", "0101", "0011", "0010", "1010", "0110", "1000"};

int surplusOfOnes(const std::string& word) {
  return static_cast<int>(2 * std::count(word.begin(), word.end(), '1')) - static_cast<int>(word.size());
}
std::string inverted(std::string word) {
  for (char& bit : word)
    bit = bit == '1' ? '0' : '1';
  return word;
}
std::string sent(const std::string& word, bool positive) {
  const bool turns = surplusOfOnes(word) != 0 || word == "111000" || word == "1100";
  return positive && turns ? inverted(word) : word;
}

std::set<std::string> wordsOfTheCode() {
  std::set<std::string> words;
  for (const bool positive : {false, true}) {
    for (unsigned lower = 0; lower < 32; ++lower) {
      const std::string six = sent(kSixBits[lower], positive);
      const bool then = positive != (surplusOfOnes(six) != 0);
      for (unsigned upper = 0; upper < 8; ++upper) {
        // Five equal bits across the border are avoided by another word for 7.
        const bool ones = !then && (lower == 17 || lower == 18 || lower == 20);
        const bool zeros = then && (lower == 11 || lower == 13 || lower == 14);
        const bool other = upper == 7 && (ones || zeros);
        words.insert(six + (other ? sent("0111", then) : sent(kFourBits[upper], then)));
      }
    }
    for (const char* four : kControlFourBits) {
      const std::string word = std::string("001111") + four;
      words.insert(positive ? inverted(word) : word);
    }
    for (const unsigned lower : {23u, 27u, 29u, 30u}) {
      const std::string word = std::string(kSixBits[lower]) + "1000";
      words.insert(positive ? inverted(word) : word);
    }
  }
  return words;
}

TEST(ViolationRate, TakesTheInvalidWordsFromTheCodeTables) {
  const std::set<std::string> words = wordsOfTheCode();
  for (const std::string& word : words) {
    EXPECT_LE(std::abs(surplusOfOnes(word)), 2) << word;
    EXPECT_EQ(word.find("000000"), std::string::npos) << word;
    EXPECT_EQ(word.find("111111"), std::string::npos) << word;
    EXPECT_TRUE(words.contains(inverted(word)) || surplusOfOnes(word) == 0) << word;
  }
  EXPECT_EQ(kInvalidWords, 1024 - static_cast<double>(words.size()));
}

TEST(ViolationRate, IsThatOfRandomBits) {
  EXPECT_NEAR(violationRate(8.5, LineCode::k8b10b), 8.5e8 * 560 / 1024, 1);
  EXPECT_NEAR(violationRate(10.3125, LineCode::k64b66b), 10.3125e9 / 66 / 2, 1);
  EXPECT_EQ(violationRate(0, LineCode::k64b66b), 0);
}

// Errors that a sweep counts must not fall where a link dies.
TEST(ViolationRate, IsFarAboveWhatALinkCountsThatStillLocks) {
  for (const LineCode code : {LineCode::k8b10b, LineCode::k64b66b}) {
    EXPECT_GT(violationRate(8.5, code), 20 * decodeErrorRate(2e-3, 8.5, code));
  }
}

TEST(ErrorRates, AbsurdArgumentsStayFinite) {
  const double absurd[] = {
      std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), -1e300, 2, 1, 0};
  for (const double x : absurd) {
    for (const double y : absurd) {
      for (const double rate :
           {decodeErrorRate(x, y, LineCode::k64b66b), frameErrorRate(x, y), lineBits(x, LineCode::k64b66b),
            violationRate(x, LineCode::k8b10b), crcErrorRate(x, y, x), crcErrorRate(x, x, y)}) {
        EXPECT_TRUE(std::isfinite(rate)) << x << " " << y;
        EXPECT_GE(rate, 0) << x << " " << y;
      }
    }
  }
}

}  // namespace
}  // namespace simulator
