// The model's numbers bit by bit: every processor, compiler and level of optimisation must give these. What the numbers
// mean is held by the tests beside this one; whoever changes the model on purpose takes the new fingerprints over.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <ostream>
#include <span>
#include <vector>

#include "simulator/link/errors.h"
#include "simulator/link/eye_scan.h"
#include "simulator/link/fft.h"
#include "tests/unit/simulator/link/links.h"

namespace simulator {
namespace {

// FNV-1a of whole numbers, turned so that no two signs make up for each other.
class Bits {
 public:
  Bits& operator<<(double value) {
    hash_ = (std::rotl(hash_, 9) ^ std::bit_cast<std::uint64_t>(value)) * 0x100000001b3;
    return *this;
  }
  Bits& operator<<(std::span<const double> values) {
    for (const double value : values)
      *this << value;
    return *this;
  }
  Bits& operator<<(Complex value) {
    return *this << value.re << value.im;
  }
  Bits& operator<<(const NormalTail& tail) {
    return *this << tail.probability << tail.density;
  }
  bool operator==(std::uint64_t expected) const {
    return hash_ == expected;
  }
  friend void PrintTo(const Bits& bits, std::ostream* stream) {
    *stream << "0x" << std::hex << bits.hash_ << std::dec;
  }

 private:
  std::uint64_t hash_ = 0xcbf29ce484222325;
};

// What usually comes, and all that is out of range.
std::vector<double> arguments() {
  std::vector<double> all = {0, -0.0, 1, -1, 0.5, -0.5, 2, -2, 0.35, -0.35, 9, -9, 12, -12, 700, -700, 1e9, -1e9};
  for (double x = -45; x <= 45; x += 0.0371)
    all.push_back(x);
  for (double x = 5e-324; x < 1e308; x *= 7.3) {
    all.push_back(x);
    all.push_back(-x);
  }
  for (const double x : {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::max()}) {
    all.push_back(x);
    all.push_back(-x);
  }
  all.push_back(std::numeric_limits<double>::quiet_NaN());
  return all;
}

template <typename Result>
Bits bitsOf(Result (*function)(double)) {
  Bits bits;
  for (const double x : arguments())
    bits << function(x);
  return bits;
}

TEST(SameBits, OfElementaryFunctions) {
  EXPECT_EQ(bitsOf(exponential), 0xb752709ec5293c12);
  EXPECT_EQ(bitsOf(naturalLog), 0x4beda86943f56234);
  EXPECT_EQ(bitsOf(exponentialMinusOne), 0x2041d2b75be96b1);
  EXPECT_EQ(bitsOf(logOnePlus), 0xf68ef2b3f2ef5595);
  EXPECT_EQ(bitsOf(fromDb), 0x3b79d4d7db268847);
  EXPECT_EQ(bitsOf(unitPhasor), 0xe2639d3ca7878d68);
  EXPECT_EQ(bitsOf(normalTail), 0xcb795e38053dec00);
  std::vector<double> levels = arguments();
  std::erase_if(levels, [](double x) { return !std::isfinite(x); });
  Bits tails;
  for (const double offset : {-20.0, -0.3, 0.0, 7.7})
    tails << sumOfTails(levels, offset, 11) << sumOfTails(levels, offset, -9.4) << sumOfTails(levels, offset, 40);
  EXPECT_EQ(tails, 0x936fa885ff94c055);
}

TEST(SameBits, OfErrorRates) {
  Bits bits;
  for (const LineCode code : {LineCode::k8b10b, LineCode::k64b66b}) {
    for (const double x : arguments())
      bits << lineBits(x, code) << violationRate(x, code) << decodeErrorRate(x, 8.5, code)
           << decodeErrorRate(1e-3, x, code);
  }
  for (const double x : arguments())
    bits << frameErrorRate(x, 12144) << frameErrorRate(1e-11, x) << crcErrorRate(1e-5, 12144, x) << errorExponent(x)
         << readingOf(x);
  EXPECT_EQ(bits, 0x9f916f749e5178a8);
}

TEST(SameBits, OfBothEnds) {
  Bits bits;
  for (unsigned mode = 0; mode < 5; ++mode) {
    for (const int main : {-200, -128, -1, 0, 1, 55, 127, 200}) {
      const Transmitter transmitter{.ffeMode = mode, .k = 100 * mode, .c = {main - 4, main, 7 - main, 3}};
      bits << driveAmplitude(transmitter) << normalisedTaps(transmitter);
    }
  }
  for (int setting = -2; setting < 10; ++setting) {
    bits << receiverCornerGHz(setting);
    const ReceiveFilters filters({.pole = setting, .peak = 7 - setting}, kBaud8G);
    for (double f = 0; f < 60; f += 0.7)
      bits << filters.at(f).response << filters.at(f).power;
  }
  for (const double x : arguments())
    bits << slewNepers(x, 4.25);
  EXPECT_EQ(bits, 0x1a126927d5404cfe);
}

TEST(SameBits, OfMedia) {
  Bits bits;
  for (const Channel& channel : {fr4Trace(24), connector(), boardLine(151), directAttachCopper(7), opticalModule(10)}) {
    const Channel longer = channel + opticalModule(3, 0.7) + channel;
    bits << longer.randomJitterUi << longer.crosstalkDb;
    for (double f = -1; f < 60; f += 0.7)
      bits << insertionLossDb(channel, f) << insertionLossDb(longer, f);
  }
  for (const double x : arguments()) {
    bits << insertionLossDb(connector(), x);
    for (double Channel::*coefficient : {&Channel::a0, &Channel::a1, &Channel::a2, &Channel::a4}) {
      Channel channel = fr4Trace(1);
      channel.*coefficient = x;
      bits << insertionLossDb(channel, 9);
    }
  }
  EXPECT_EQ(bits, 0x675247805de508d3);
}

TEST(SameBits, OfDecisions) {
  Bits bits;
  RandomSettings random(11);
  for (int i = 0; i < 400; ++i) {
    std::vector<double> residuals;
    for (int n = random.between(0, 12); n > 0; --n)
      residuals.push_back(random.between(-160, 160) * 1e-3);
    const double main = random.between(-2, 20) * 0.05;
    const double sigma = random.between(1, 60) * 1e-3;
    const LevelDistribution levels(main, residuals, random.between(0, 3) * 0.01, sigma);
    const LevelDistribution others(main * 1.02, residuals, 0, sigma);
    const double propagation = errorPropagation(main, random.between(-9, 9) * 0.05, sigma);
    const Decisions one({{levels, propagation}}, 0.01);
    const Decisions two({{levels, propagation}, {others, 1}}, 0.02);
    bits << levels.sigma() << levels.reach() << propagation << levels.below(main / 2, 9) << levels.about(5);
    for (const Decisions& decisions : {one, two}) {
      bits << decisions.errorRate() << decisions.errorRate(0.05) << decisions.levelAt(1e-6) << decisions.levelAt(1e-3)
           << decisions.offsetAt(1e-12) << decisions.offsetAt(1e-3);
    }
  }
  for (const double x : arguments()) {
    for (const LevelDistribution& levels :
         {LevelDistribution(x, {}, 0.1, 0.1), LevelDistribution(1, std::vector{x}, 0.1, 0.1),
          LevelDistribution(1, {}, x, 0.1), LevelDistribution(1, {}, 0.1, x)})
      bits << levels.below(0.5, 11) << levels.below(x, 11) << levels.reach();
    bits << errorPropagation(x, 0.3, 0.1) << errorPropagation(1, x, 0.1) << errorPropagation(1, 0.3, x);
  }
  EXPECT_EQ(bits, 0x3c66929779343955);
}

TEST(SameBits, OfPulses) {
  Bits bits;
  RandomSettings random(12);
  for (const unsigned samples : {8u, 64u, 1024u, 2048u}) {
    std::vector<Complex> spectrum(samples / 2 + 1);
    for (Complex& bin : spectrum)
      bin = {random.between(-99, 99) * 0.01, random.between(-99, 99) * 0.01};
    std::vector<Complex> work(samples / 2);
    std::vector<double> pulse(samples);
    InverseRealFft(samples).run(spectrum, work, pulse);
    bits << pulse;
    if (samples < 1024) continue;
    const double instant = samplingInstant(pulse);
    const Cursors cursors = cursorsAt(pulse, instant - 7.7);
    bits << instant << cursors.h << slopesAt(pulse, instant).h;
    for (unsigned taps = 0; taps < 7; ++taps)
      bits << dfeTaps(cursors, taps);
  }
  for (const double x : arguments())
    bits << dfeClamp(1, x, 2) << dfeClamp(2, 1, x);
  // Of several crossings the clock takes the nearest.
  for (int i = 0; i < 100; ++i) {
    std::vector<double> slow(1024);
    for (std::size_t n = 0; n < slow.size(); ++n)
      slow[n] = n % 8 == 0 ? random.between(-99, 99) : slow[n - 1] + 0.01;
    bits << samplingInstant(slow);
  }
  EXPECT_EQ(bits, 0xa7c10e853c77e718);
}

// A medium as random as it may be, with echoes of which some come late.
Channel randomChannel(RandomSettings& random) {
  Channel channel = backplane(random.between(0, 40));
  channel.crosstalkDb = random.between(-230, 30);
  channel.randomJitterUi = random.between(-1, 6) * 0.1;
  for (int n = random.between(0, 3) - 1; n > 0; --n)
    channel.echoes.push_back({random.between(-12, 12) * 0.1, random.between(-1, 130) * 1.0});
  return channel;
}

std::vector<Aggressor> randomAggressors(RandomSettings& random) {
  std::vector<Aggressor> aggressors;
  for (int n = random.between(0, 3); n > 0; --n) {
    Aggressor aggressor{random.transmitter()};
    aggressor.baudGbd = std::array{0.0, 1.0625, kBaud8G, kBaud10G}[static_cast<std::size_t>(random.between(0, 3))];
    aggressor.distance = static_cast<unsigned>(random.between(0, 3));
    aggressor.farEnd = random.between(0, 1) != 0;
    aggressors.push_back(aggressor);
  }
  return aggressors;
}

Bits& operator<<(Bits& bits, const LinkResult& result) {
  return bits << (result.signalDetected ? 1.0 : 0.0) << (result.locked ? 1.0 : 0.0) << result.swingV << result.h0
              << result.gain << (result.gainInRange ? 1.0 : 0.0) << result.ap << result.an << result.amin << result.taps
              << result.ber << result.eyeHeightV << result.sigma << result.crosstalk;
}

struct Link {
  Transmitter transmitter{.ffeMode = 3, .k = 115, .c = {-4, 55, -14, 3}};
  Channel channel = backplane(20);
  Receiver receiver;
  double baud = kBaud8G;
  double farBaud = kBaud8G;
};

// Every number of a link within its range, at its ends and beyond.
TEST(SameBits, OfEverySetting) {
  using Set = void (*)(Link & link, double x);
  constexpr Set kSets[] = {
      [](Link& link, double x) { link.transmitter.c[0] = readingOf(x); },
      [](Link& link, double x) { link.transmitter.slewPs = x; },
      [](Link& link, double x) { link.receiver.amax = readingOf(x); },
      [](Link& link, double x) { link.receiver.pole = readingOf(x); },
      [](Link& link, double x) { link.receiver.peak = readingOf(x); },
      [](Link& link, double x) { link.receiver.evenOddMismatch = x; },
      [](Link& link, double x) { link.receiver.offsetLsb = x; },
      [](Link& link, double x) { link.receiver.signalDetectMv = x; },
      [](Link& link, double x) {
        link.receiver.adapt = false;
        link.receiver.heldTaps = {x, 9, 9, x};
      },
      [](Link& link, double x) { link.channel.randomJitterUi = x; },
      [](Link& link, double x) { link.channel.crosstalkDb = x; },
      [](Link& link, double x) { link.channel.a4 = x; },
      [](Link& link, double x) {
        link.channel.echoes = {{x, 1}};
      },
      [](Link& link, double x) {
        link.channel.echoes = {{0.1, x}};
      },
      [](Link& link, double x) { link.baud = link.farBaud = x; },
      [](Link& link, double x) { link.baud = x, link.farBaud = x * (1 + kCaptureRange * 1.0001); },
  };
  constexpr double kNumbers[] = {-1e9, -32769, -32768, -200, -128, -17,  -16,  -1,   -0.21, -0.2,  -0.05, 0,
                                 0.04, 0.05,   0.2,    0.21, 0.5,  0.52, 1,    1.06, 3,     7,     8,     16,
                                 17,   100,    101,    127,  128,  960,  1000, 2000, 2100,  32767, 32768, 1e9};
  Bits bits;
  for (const Set set : kSets) {
    for (const double x : kNumbers) {
      Link link;
      set(link, x);
      bits << evaluateLink(link.transmitter, link.channel, link.receiver, link.baud, link.farBaud,
                           neighbours(link.transmitter, kBaud8G));
    }
  }
  EXPECT_EQ(bits, 0x5379daa6eaebb4ad);
}

TEST(SameBits, OfOpenEyes) {
  Bits bits;
  for (const double inches : {1.0, 8.0, 16.0, 24.0, 32.0, 36.0, 40.0}) {
    Link link;
    link.receiver.dfeTaps = 5;
    EyeScan scan(link.transmitter, backplane(inches), link.receiver, kBaud8G, kBaud8G);
    bits << scan.widthMilliUi();
    for (const int phase : {0, -1, 1, -7, 9, -32, 32, -33, 33}) {
      for (const int level : {0, -1, 1, 2, -5, 12})
        bits << scan.exponent(phase, level);
    }
    bits << scan.exponent(0, 127) << scan.exponent(0, 200) << scan.exponent(1, -200);
  }
  EXPECT_EQ(bits, 0x32c31b114b0183f3);
}

TEST(SameBits, OfWholeLinksAndTheirEyes) {
  Bits links;
  Bits eyes;
  RandomSettings random(13);
  for (int i = 0; i < 100; ++i) {
    Transmitter transmitter = random.transmitter();
    if (i % 5 == 0) transmitter.k = static_cast<unsigned>(random.between(0, 20));
    Receiver receiver = random.receiver();
    receiver.amax = random.between(-2, 130);
    receiver.offsetLsb = random.between(-20, 20);
    receiver.signalDetectMv = random.between(-1, 3) * 50;
    const Channel channel = randomChannel(random);
    const std::vector<Aggressor> aggressors = randomAggressors(random);
    const double baud = std::array{0.04, 1.0625, kBaud8G, 10.3125}[static_cast<std::size_t>(random.between(0, 3))];
    if (i % 3 == 0) random.holdNear(evaluateLink(transmitter, channel, receiver, baud, aggressors), 20, receiver);
    const double farBaud = baud * (1 + random.between(0, 2) * 0.0003);
    links << evaluateLink(transmitter, channel, receiver, baud, aggressors)
          << evaluateLink(transmitter, channel, receiver, baud, farBaud, aggressors) << longestEchoNs(baud);
    if (i % 5 != 0) continue;
    EyeScan scan(transmitter, channel, receiver, baud, farBaud, aggressors);
    eyes << scan.widthMilliUi() << scan.exponent(0, 0) << scan.exponent(-3, 20) << scan.exponent(8, -9);
  }
  EXPECT_EQ(links, 0xf51bba699d1f38c6);
  EXPECT_EQ(eyes, 0x48a03e39613c98f0);
}

}  // namespace
}  // namespace simulator
