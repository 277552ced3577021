// How many errors a port counts, in closed form: by the bit error rate that a checker finds on each of its links.
#include <algorithm>
#include <cmath>
#include <memory>

#include "tests/unit/simulator/switch/switch_bench.h"

namespace simulator {
namespace {

struct Line {
  const char* what;
  unsigned port;
  unsigned speed;
  double gigabaud;  // of the whole port
  bool is8b10b;
  double frameBytes;
  unsigned links;
  int loadPercent;
};

constexpr Line kLines[] = {
    {"GL at 8G", 0, SPEED_8G, 8.5, true, 2148, 1, 100},
    {"GL at 4G, half full", 0, SPEED_4G, 4.25, true, 2148, 1, 50},
    {"GL at 10G", 0, SPEED_10G, 10.51875, false, 2148, 1, 100},
    {"XG at 10G", 6, SPEED_10G, 10.51875, false, 2148, 4, 100},
    {"XG at 20G, half full", 6, SPEED_20G, 21.0375, false, 2148, 4, 50},
    {"XG at 8G", 6, SPEED_8G, 8.5, true, 2148, 4, 100},
    {"EXG at 10G", 7, SPEED_10G, 10.3125, false, 1518, 1, 100},
    {"EXG at 1G", 7, SPEED_1G, 1.25, true, 1518, 1, 50},
};

constexpr double kSeconds = 1000;

class Rates : public SwitchTest {
 protected:
  static std::unique_ptr<Switch> switchWith(const Line& line, int inches, int jitterPercent) {
    std::string text = kBenchSwitch;
    text.insert(text.find("[channels.long]"), "[channels.noisy]\nfr4_inches = " + std::to_string(inches) +
                                                  "\njitter_ui = " + std::to_string(jitterPercent / 100.0) + "\n\n");
    text += "[[asics.ports]]\nports = " + std::to_string(line.port) +
            "\nchannel = \"noisy\"\nspeeds = [\"1G\", \"4G\", \"8G\", \"10G\", \"20G\"]\n"
            "media_speeds = [\"1G\", \"4G\", \"8G\", \"10G\", \"20G\"]\nload = " +
            std::to_string(line.loadPercent) + "\n";
    auto result = std::make_unique<Switch>(readDescription(text, "noisy.toml"));
    EXPECT_EQ(result->setPortSpeed(id(line.port), line.speed), kOk);
    return result;
  }
  // What the port counts in so many seconds from now.
  static drv_counters_t countedIn(Switch& theSwitch, const Line& line, double seconds) {
    EXPECT_EQ(theSwitch.clearCounters(id(line.port)), kOk);
    for (double i = 0; i < seconds; ++i)
      (void)theSwitch.beginCall({});
    drv_counters_t counters;
    EXPECT_EQ(theSwitch.getCounters(id(line.port), &counters), kOk);
    return counters;
  }
  // A switch on which the line errs often and its port runs: what is far for one baud is near for another.
  static std::unique_ptr<Switch> noisySwitch(const Line& line) {
    for (int inches = 5; inches <= 160; inches *= 2) {
      for (int jitterPercent = 5; jitterPercent <= 50; jitterPercent += 5) {
        std::unique_ptr<Switch> noisy = switchWith(line, inches, jitterPercent);
        if (countedIn(*noisy, line, 1).decodeErrors.low > 2000) return noisy;
      }
    }
    return nullptr;
  }
  static double number(const WordPairCounter& counter) {
    return static_cast<double>(whole(counter));
  }
};

TEST_F(Rates, FollowFromTheBitErrorRatesOfTheLinks) {
  for (const Line& line : kLines) {
    SCOPED_TRACE(line.what);
    const std::unique_ptr<Switch> noisy = noisySwitch(line);
    ASSERT_NE(noisy, nullptr) << "nothing makes this line noisy";
    const drv_counters_t counted = countedIn(*noisy, line, kSeconds);

    ASSERT_EQ(noisy->setTestOption(0, line.port, kAllLinks, kTestSendPattern, 1), kOk);
    ASSERT_EQ(noisy->setTestOption(0, line.port, kAllLinks, kTestCheckPattern, 1), kOk);
    (void)countedIn(*noisy, line, kSeconds);
    const double linkBaud = line.gigabaud * 1e9 / line.links;
    const double frameBits = line.frameBytes * (line.is8b10b ? 10 : 8 * 66 / 64.0);
    const double frames = line.gigabaud * 1e9 / frameBits * line.loadPercent / 100 * kSeconds;
    double decodeErrors = 0;
    double crcErrors = 0;
    for (unsigned link = 0; link < line.links; ++link) {
      int bitErrors = 0;
      ASSERT_EQ(noisy->getTestStatus(0, line.port, static_cast<int>(link), kTestCheckPattern, &bitErrors), kOk);
      ASSERT_GT(bitErrors, 0);
      ASSERT_LT(bitErrors, INT32_MAX);
      const double ber = bitErrors / (linkBaud * kSeconds);
      decodeErrors += (line.is8b10b ? 1.03 : 2 / 66.0) * bitErrors;
      crcErrors += frames * -std::expm1(frameBits / line.links * std::log1p(-ber));
    }
    // Whether errors come evenly or by chance: two million are exact enough.
    ASSERT_GT(std::min(decodeErrors, crcErrors), 2e6);
    EXPECT_NEAR(number(counted.decodeErrors) / decodeErrors, 1, 0.002);
    EXPECT_NEAR(number(counted.crcErrors) / crcErrors, 1, 0.002);
  }
}

}  // namespace
}  // namespace simulator
