// Plans on a model of a switch that understands the tool's commands and knows nothing of planning.
#include "serdesctl/plan/plan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "serdesctl/base/command_words.h"
#include "serdesctl/plan/places.h"
#include "serdesctl/rehearsal/rehearsal.h"
#include "simulator/error_codes.h"
#include "simulator/serdes/settings.h"

namespace serdesctl {
namespace {

constexpr std::array<const char*, 6> kRates = {"1G", "2G", "4G", "8G", "10G", "20G"};
constexpr std::array<const char*, 4> kFfeModes = {"FFENone", "FFE2", "FFE3", "FFE4"};
constexpr std::array<std::int32_t, 7> kSlews = {24, 30, 36, 50, 60, 75, 100};
constexpr std::array<const char*, 4> kDfeModes = {"DFE3", "DFE5", "NONE", "DFE1"};

// ASICs with ports 0-7 GL, 8-9 XG of four links, and 10-11 EXG.
AsicState emptyAsic(std::uint32_t number) {
  AsicState asic;
  asic.asic = number;
  asic.config.asic = number;
  asic.config.portCount = 12;
  asic.config.coreCount = 3;
  asic.config.glPorts = 0x0ff;
  asic.config.xgPorts = 0x300;
  asic.config.exgPorts = 0xc00;
  const std::array<std::uint32_t, 3> types = {2, 3, 4};
  for (std::uint32_t core = 0; core < types.size(); ++core)
    asic.cores.push_back({.asic = number, .core = core, .serDesType = types[core]});
  for (std::uint32_t port = 0; port < 12; ++port) {
    const std::uint32_t core = port < 8 ? 0 : port < 10 ? 1 : 2;
    const ConfigSide side = {.links = core == 1 ? 4U : 1U, .serDesType = "T" + std::to_string(core), .core = core};
    asic.config.ports.push_back({.port = port, .rx = side, .tx = side, .userPort = std::nullopt});
    PortState state;
    state.port = port;
    state.tx.resize(side.links);
    state.rx.resize(side.links);
    asic.ports.push_back(state);
  }
  return asic;
}

class Random {
 public:
  explicit Random(std::uint32_t seed) : engine_(seed) {}

  std::int32_t from(std::int32_t least, std::int32_t greatest) {
    return std::uniform_int_distribution<std::int32_t>(least, greatest)(engine_);
  }
  bool oneIn(std::int32_t bound) {
    return from(1, bound) == 1;
  }
  template <typename List>
  auto of(const List& list) {
    return list[static_cast<std::size_t>(from(0, static_cast<std::int32_t>(list.size()) - 1))];
  }

 private:
  std::mt19937 engine_;
};

TxRawValues randomTxCache(Random& random, bool ethernet) {
  if (ethernet) return {.power = random.from(0, 15), .slew = 7, .mode = 0, .p = {random.from(0, 15), 0, 0, 0}};
  return {.power = random.from(0, 255),
          .slew = random.from(0, 6),
          .mode = random.from(0, 3),
          .p = {random.from(-9, 0), random.from(20, 63), random.from(-30, 0), random.oneIn(9) ? 100000 : 0}};
}

RxRawValues randomRxCache(Random& random, bool ethernet) {
  if (ethernet) return {.mode = random.from(0, 3), .p = {random.from(0, 7), 0, 0, 0}};
  return {.mode = random.from(0, 3), .p = {random.from(0, 7), random.from(0, 7), random.from(0, 127), 0}};
}

void randomizeLive(Random& random, PortState& port, bool ethernet) {
  LiveTx tx;
  LiveRx rx;
  tx.k = random.from(0, 255);
  tx.ffeMode = random.of(kFfeModes);
  tx.c0 = random.from(-9, 0);
  tx.c1 = random.from(20, 63);
  tx.c2 = random.from(-30, 0);
  tx.c3 = 0;
  tx.slewPs = random.of(kSlews);
  rx.dfeMode = random.of(kDfeModes);
  rx.pole = random.from(0, 7);
  rx.peak = random.from(0, 7);
  rx.amax = random.from(0, 127);
  if (ethernet) {
    const std::int32_t shifted = 2 * random.from(0, 15);
    tx = {};
    tx.ffeMode = shifted == 0 ? "FFENone" : "FFE2";
    tx.k = 17 * random.from(0, 15);
    tx.c0 = tx.c3 = 0;
    tx.c1 = 63 - shifted;
    tx.c2 = -shifted;
    tx.slewUnnamed = true;
    rx.dfeMode = "NONE";
    rx.pole = 7;
    rx.amax = 0x40;
  }
  port.tx.assign(port.tx.size(), tx);
  port.rx.assign(port.rx.size(), rx);
  if (!ethernet && port.tx.size() > 1 && random.oneIn(3)) port.tx[1].c2 = random.from(-30, 0);
}

SwitchState randomSwitch(Random& random) {
  SwitchState state;
  for (std::uint32_t number = 0; number < 2; ++number) {
    AsicState asic = emptyAsic(number);
    for (PortState& port : asic.ports) {
      const bool ethernet = port.port >= 10;
      port.configRate = random.oneIn(5) ? "AUTO" : random.of(kRates);
      port.observed.runningRate = *port.configRate == "AUTO" ? random.of(kRates) : *port.configRate;
      port.streamEnabled = !random.oneIn(6);
      for (const char* rate : kRates) {
        port.txCaches[rate] = randomTxCache(random, ethernet);
        port.rxCaches[rate] = randomRxCache(random, ethernet);
      }
      randomizeLive(random, port, ethernet);
    }
    state.asics.push_back(asic);
  }
  return state;
}

// Most of the ports as they are; of others anything may be another, or is left open.
SwitchState randomWish(Random& random, const SwitchState& current) {
  const SwitchState other = randomSwitch(random);
  SwitchState wanted = current;
  for (std::size_t a = 0; a < wanted.asics.size(); ++a) {
    for (std::size_t p = 0; p < wanted.asics[a].ports.size(); ++p) {
      PortState& port = wanted.asics[a].ports[p];
      const PortState& otherPort = other.asics[a].ports[p];
      if (random.oneIn(2)) continue;
      if (random.oneIn(3)) {
        port.configRate = otherPort.configRate;
        port.observed.runningRate = otherPort.observed.runningRate;
      }
      if (random.oneIn(3)) port.streamEnabled = otherPort.streamEnabled;
      if (random.oneIn(2)) port.tx = otherPort.tx;
      if (random.oneIn(2)) port.rx = otherPort.rx;
      if (random.oneIn(4)) port.tx.clear();
      if (random.oneIn(4)) port.rx[0].pole.reset();
      for (const char* rate : kRates) {
        if (random.oneIn(4)) port.txCaches[rate] = otherPort.txCaches.at(rate);
        if (random.oneIn(4)) port.rxCaches[rate] = otherPort.rxCaches.at(rate);
        if (random.oneIn(4)) port.rxCaches.erase(rate);
      }
    }
  }
  return wanted;
}

// Commands by their words, as the tool and a switch take them.
class ModelSwitch {
 public:
  // `wanted` tells the rates that AUTO ports agree on.
  ModelSwitch(SwitchState state, const SwitchState& wanted) : state_(std::move(state)), wanted_(wanted) {}

  void run(const std::string& line) {
    words_ = splitWords(line);
    at_ = 1;
    if (words_[0] == "setAsicNum") {
      asic_ = static_cast<std::size_t>(number());
    } else if (words_[0] == "setRate") {
      const std::string rate = word();
      onPorts([&](PortState& port) { setRate(port, rate); });
    } else if (words_[0] == "setTxEnable") {
      const bool on = number() != 0;
      onPorts([&](PortState& port) { port.streamEnabled = on; });
    } else if (words_[0] == "setTxParamsRaw" || words_[0] == "setRxParamsRaw") {
      runRaw();
    } else {
      runLive();
    }
  }

  const SwitchState& state() const {
    return state_;
  }

 private:
  std::string word() {
    return words_.at(at_++);
  }
  std::int32_t number() {
    return std::stoi(word());
  }

  template <typename Action>
  void onPorts(Action action) {
    ASSERT_LT(at_, words_.size());
    for (; at_ < words_.size(); ++at_) {
      const std::string& list = words_[at_];
      const auto first = static_cast<std::size_t>(std::stoul(list));
      const std::size_t dash = list.find('-');
      const auto last = dash == std::string::npos ? first : static_cast<std::size_t>(std::stoul(list.substr(dash + 1)));
      for (std::size_t port = first; port <= last; ++port)
        action(state_.asics.at(asic_).ports.at(port));
    }
  }

  void runRaw() {
    EXPECT_EQ(word(), "asic");
    const std::string rate = word();
    if (words_[0] == "setTxParamsRaw") {
      const TxRawValues raw = {number(), number(), number(), {number(), number(), number(), number()}};
      return onPorts([&](PortState& port) { port.txCaches[rate] = raw; });
    }
    const RxRawValues raw = {number(), {number(), number(), number(), number()}};
    onPorts([&](PortState& port) { port.rxCaches[rate] = raw; });
  }

  void runLive() {
    const std::string& name = words_[0];
    LiveTx tx;
    LiveRx rx;
    const bool ffe = name == "setFFE" || name == "setTxParams", slew = name == "setSlew" || name == "setTxParams";
    const bool dfe = name == "setDFE" || name == "setRxParams", vga = name == "setVGA" || name == "setRxParams";
    ASSERT_TRUE(ffe || slew || dfe || vga) << name;
    if (ffe) static_cast<FfeValues&>(tx) = {word(), number(), number(), number(), number(), number()};
    if (slew) tx.slewPs = number();
    if (dfe) rx.dfeMode = word();
    if (vga) static_cast<VgaValues&>(rx) = {number(), number(), number()};
    onPorts([&](PortState& port) {
      EXPECT_LT(port.port, 10U) << "live settings of ethernet ports cannot be set";
      for (LiveTx& link : port.tx) {
        if (ffe) static_cast<FfeValues&>(link) = tx;
        if (slew) static_cast<SlewValue&>(link) = tx;
      }
      for (LiveRx& link : port.rx) {
        if (dfe) static_cast<DfeModeValue&>(link) = rx;
        if (vga) static_cast<VgaValues&>(link) = rx;
      }
    });
  }

  void setRate(PortState& port, const std::string& rate) {
    port.configRate = rate;
    std::string running = rate;
    if (rate == "AUTO") running = *wanted_.asics[asic_].ports[port.port].observed.runningRate;
    port.observed.runningRate = running;
    const TxRawValues& tx = port.txCaches.at(running);
    const RxRawValues& rx = port.rxCaches.at(running);
    const simulator::SerDesTraits& traits = simulator::serDesTraits(port.port < 8 ? 2 : 3);
    for (LiveTx& link : port.tx)
      port.port < 10 ? force(traits, tx, link) : forceEthernet(tx, link);
    for (LiveRx& link : port.rx)
      port.port < 10 ? force(traits, rx, link) : static_cast<void>(link.peak = rx.p[0]);
  }

  static void force(const simulator::SerDesTraits& traits, const TxRawValues& tx, LiveTx& link) {
    simulator::RegisterFile registers{};
    if (setFfe(traits, registers, {static_cast<std::uint32_t>(tx.mode), tx.power, tx.p}) == simulator::kOk) {
      static_cast<FfeValues&>(link) = {
          kFfeModes[static_cast<std::size_t>(tx.mode)], tx.power, tx.p[0], tx.p[1], tx.p[2], tx.p[3]};
    }
    link.slewPs = kSlews[static_cast<std::size_t>(tx.slew)];
  }
  static void forceEthernet(const TxRawValues& tx, LiveTx& link) {
    static_cast<FfeValues&>(link) = {
        tx.p[0] == 0 ? "FFENone" : "FFE2", 17 * tx.power, 0, 63 - 2 * tx.p[0], -2 * tx.p[0], 0};
  }
  static void force(const simulator::SerDesTraits& traits, const RxRawValues& rx, LiveRx& link) {
    simulator::RegisterFile registers{};
    if (setDfe(traits, registers, static_cast<std::uint32_t>(rx.mode)) == simulator::kOk)
      link.dfeMode = kDfeModes[static_cast<std::size_t>(rx.mode)];
    static_cast<VgaValues&>(link) = {rx.p[0], rx.p[1], rx.p[2]};
  }

  SwitchState state_;
  const SwitchState& wanted_;
  Words words_;
  std::size_t at_ = 0;
  std::size_t asic_ = 0;
};

SwitchState after(const SwitchState& current, const SwitchState& wanted, const std::vector<std::string>& script) {
  ModelSwitch model(current, wanted);
  for (const std::string& line : script)
    model.run(line);
  return model.state();
}

std::string where(const std::vector<Difference>& differences) {
  std::string text;
  for (const Difference& d : differences) {
    text += textOf(d.place) + " " + d.parameter + ": " + textOf(d.before) + " -> " + textOf(d.after) + "\n";
  }
  return text;
}

bool isAbout(const Impossible& impossible, const Difference& difference) {
  return impossible.place.asic == difference.place.asic && impossible.place.port == difference.place.port;
}

class RandomPlans : public testing::TestWithParam<bool> {
 protected:
  static constexpr std::uint32_t kSeeds = 25;

  template <typename Check>
  static void forEachSeed(Check check) {
    for (std::uint32_t seed = 0; seed < kSeeds; ++seed) {
      SCOPED_TRACE("seed " + std::to_string(seed));
      Random random(seed);
      const SwitchState current = randomSwitch(random);
      const SwitchState wanted = randomWish(random, current);
      check(current, wanted, makePlan(current, wanted, {.throughCache = GetParam()}));
      if (HasFailure()) return;
    }
  }
};

TEST_P(RandomPlans, GiveWhatIsWantedButForWhatIsImpossible) {
  std::size_t impossible = 0;
  forEachSeed([&](const SwitchState& current, const SwitchState& wanted, const Plan& plan) {
    const SwitchState reached = after(current, wanted, scriptOf(plan.steps));
    EXPECT_EQ(where(compare(reached, plan.after).settings), "");
    impossible += plan.impossible.size();
    for (const Difference& d : compare(reached, wanted).settings) {
      EXPECT_TRUE(std::any_of(plan.impossible.begin(), plan.impossible.end(), [&](const auto& i) {
        return isAbout(i, d);
      })) << where({d});
    }
  });
  EXPECT_GT(impossible, 5U);
}

TEST_P(RandomPlans, AreEmptyTheSecondTime) {
  forEachSeed([&](const SwitchState& current, const SwitchState& wanted, const Plan& plan) {
    const SwitchState reached = after(current, wanted, scriptOf(plan.steps));
    const Plan second = makePlan(reached, wanted, {.throughCache = GetParam()});
    EXPECT_TRUE(second.steps.empty()) << second.steps.front().command;
  });
}

// Each step does something that the others do not, and nothing changes that is not wanted but what a speed brings
// along.
TEST_P(RandomPlans, HaveNoStepTooMany) {
  forEachSeed([&](const SwitchState& current, const SwitchState& wanted, const Plan& plan) {
    for (std::size_t left = 0; left < plan.steps.size(); left += 3) {
      std::vector<PlannedStep> steps = plan.steps;
      steps.erase(steps.begin() + static_cast<std::ptrdiff_t>(left));
      EXPECT_FALSE(compare(after(current, wanted, scriptOf(steps)), plan.after).settings.empty())
          << plan.steps[left].command;
    }
    const auto wishes = compare(current, wanted).settings;
    for (const Difference& d : compare(current, plan.after).settings) {
      const bool isWish = std::any_of(wishes.begin(), wishes.end(), [&](const auto& w) { return sameSetting(w, d); });
      const bool bySpeed = std::any_of(plan.steps.begin(), plan.steps.end(), [&](const PlannedStep& step) {
        return step.asic == d.place.asic && (step.ports >> *d.place.port & 1) != 0 && step.effect == Effect::kRetrain;
      });
      EXPECT_TRUE(isWish || (isLive(d) && bySpeed)) << where({d});
    }
  });
}

TEST_P(RandomPlans, AreLinesThatTheToolTakes) {
  forEachSeed([&](const SwitchState& current, const SwitchState&, const Plan& plan) {
    LearntSwitch learnt;
    learnt.hardware.asics = 2;
    for (const AsicState& asic : current.asics)
      learnt.asics[asic.asic] = {.discovery = {.cores = asic.cores}, .config = asic.config};
    Rehearsal rehearsal(learnt);
    for (const std::string& line : scriptOf(plan.steps)) {
      EXPECT_LE(line.size(), 125U);
      const auto verdict = rehearsal.judge(splitWords(line));
      EXPECT_EQ(verdict.status, CMD_OK) << line;
      EXPECT_EQ(verdict.missing, "") << line;
    }
  });
}

TEST_P(RandomPlans, GoTheWayBack) {
  forEachSeed([&](const SwitchState& current, const SwitchState& wanted, const Plan& plan) {
    const Plan back = makePlan(plan.after, current, {.throughCache = true});
    const SwitchState returned = after(plan.after, current, scriptOf(back.steps));
    for (const Difference& d : compare(returned, current).settings) {
      EXPECT_TRUE(std::any_of(back.impossible.begin(), back.impossible.end(), [&](const auto& i) {
        return isAbout(i, d);
      })) << where({d});
    }
    static_cast<void>(wanted);
  });
}

INSTANTIATE_TEST_SUITE_P(Ways, RandomPlans, testing::Bool(),
                         [](const auto& way) { return std::string(way.param ? "ThroughCaches" : "ByKeywords"); });

// A switch whose ports are all alike, and a wish for some of them.
class Plans : public testing::Test {
 protected:
  Plans() {
    current_.asics = {emptyAsic(0)};
    for (PortState& port : current_.asics[0].ports) {
      port.configRate = "8G";
      port.observed.runningRate = "8G";
      port.streamEnabled = true;
      for (const char* rate : kRates) {
        port.txCaches[rate] = {.power = 115, .slew = 2, .mode = 2, .p = {-4, 55, -25, 0}};
        port.rxCaches[rate] = {.mode = 1, .p = {6, 4, 0x4e, 0}};
      }
      for (LiveTx& link : port.tx) {
        static_cast<FfeValues&>(link) = {"FFE3", 115, -4, 55, -25, 0};
        link.slewPs = 36;
      }
      for (LiveRx& link : port.rx) {
        link.dfeMode = "DFE5";
        static_cast<VgaValues&>(link) = {6, 4, 0x4e};
      }
    }
    wanted_.asics = {current_.asics[0]};
    wanted_.asics[0].ports.clear();
  }

  PortState& want(std::uint32_t port) {
    PortState& wish = wanted_.asics[0].ports.emplace_back();
    wish.port = port;
    wish.tx.resize(current_.asics[0].ports[port].tx.size());
    wish.rx.resize(current_.asics[0].ports[port].rx.size());
    return wish;
  }

  Plan plan(bool throughCache = false) {
    return makePlan(current_, wanted_, {.throughCache = throughCache});
  }

  std::vector<std::string> commands(bool throughCache = false) {
    return scriptOf(plan(throughCache).steps);
  }

  // All of the type of port 0.
  void growTo32Ports() {
    AsicState& asic = current_.asics[0];
    asic.config.glPorts = 0xffffffff;
    asic.ports.resize(32, asic.ports[0]);
    for (std::uint32_t port = 0; port < 32; ++port) {
      asic.ports[port] = asic.ports[0];
      asic.ports[port].port = port;
    }
  }

  std::vector<std::string> reasons(bool throughCache = false) {
    std::vector<std::string> texts;
    for (const Impossible& i : plan(throughCache).impossible)
      texts.push_back(i.what + " " + i.wanted + ": " + i.reason);
    return texts;
  }

  SwitchState current_;
  SwitchState wanted_;
};

using Lines = std::vector<std::string>;

TEST_F(Plans, SetsJustWhatDiffersInTheOrderInWhichLinksSufferLeast) {
  for (const std::uint32_t port : {1U, 2U, 4U}) {
    PortState& wish = want(port);
    wish.streamEnabled = false;
    wish.tx[0].slewPs = 50;
    wish.rx[0].amax = 0x40;
    wish.configRate = port == 4 ? "4G" : "8G";
    wish.rxCaches["4G"] = {.mode = 2, .p = {6, 4, 0x4e, 0}};
  }
  EXPECT_EQ(commands(), (Lines{"setRxParamsRaw asic 4G 2 6 4 78 0 1-2 4", "setRate 4G 4", "setSlew 50 1-2 4",
                               "setVGA 6 4 64 1-2 4", "setTxEnable 0 1-2 4"}));
}

TEST_F(Plans, NothingForWhatHolds) {
  wanted_ = current_;
  EXPECT_EQ(commands(), Lines());
}

TEST_F(Plans, PortTypesApart) {
  for (std::uint32_t port = 6; port < 12; ++port)
    want(port).streamEnabled = false;
  EXPECT_EQ(commands(), (Lines{"setTxEnable 0 6-7", "setTxEnable 0 8-9", "setTxEnable 0 10-11"}));
}

// The tool takes 125 characters and 24 words.
TEST_F(Plans, LongLinesApart) {
  growTo32Ports();
  constexpr std::int32_t kLong = INT32_MIN;
  for (std::uint32_t port = 0; port < 32; port += 2) {
    PortState& wish = want(port);
    wish.txCaches["8G"] = {.power = 1, .slew = 2, .mode = 3, .p = {4, 5, 6, 7}};
    wish.txCaches["10G"] = {.power = kLong, .slew = kLong, .mode = kLong, .p = {kLong, kLong, kLong, kLong}};
  }
  const std::string number = " -2147483648";
  const std::string head = "setTxParamsRaw asic 10G" + number + number + number + number + number + number + number;
  EXPECT_EQ(commands(), (Lines{head + " 0 2 4 6 8 10 12", head + " 14 16 18 20 22 24", head + " 26 28 30",
                               "setTxParamsRaw asic 8G 1 2 3 4 5 6 7 0 2 4 6 8 10 12 14 16 18 20 22 24 26",
                               "setTxParamsRaw asic 8G 1 2 3 4 5 6 7 28 30"}));
}

TEST_F(Plans, APortThatThereIsNot) {
  wanted_.asics[0].ports.emplace_back().port = 12;
  wanted_.asics.push_back(emptyAsic(1));
  wanted_.asics.push_back({.asic = 2, .config = {}, .ports = {}, .cores = {}, .registers = {}});
  EXPECT_EQ(commands(), Lines());
  EXPECT_EQ(reasons(),
            (Lines{"port settings: the switch has no such port", "ASIC settings: the switch has no such ASIC"}));
}

TEST_F(Plans, WhatASpeedDoesIsAmongItsChanges) {
  current_.asics[0].ports[3].txCaches["4G"].p[2] = -9;
  want(3).configRate = "4G";
  const Plan planned = plan();
  ASSERT_EQ(planned.steps.size(), 1U);
  EXPECT_EQ(planned.steps[0].effect, Effect::kRetrain);
  EXPECT_EQ(where(planned.steps[0].changes),
            "ASIC 0 port 3 config_rate: 8G -> 4G\nASIC 0 port 3 tx link 0 c2: -25 -> -9\n");
}

TEST_F(Plans, NoKeywordForFfeNone) {
  want(3).tx[0].ffeMode = "FFENone";
  EXPECT_EQ(commands(), Lines());
  EXPECT_EQ(reasons(), (Lines{"ffe FFENone 115 -4 55 -25 0: the tool has no keyword for FFENone"}));
  EXPECT_EQ(commands(true), (Lines{"setTxParamsRaw asic 8G 115 2 0 -4 55 -25 0 3", "setRate 8G 3",
                                   "setTxParamsRaw asic 8G 115 2 2 -4 55 -25 0 3"}));
  EXPECT_EQ(reasons(true), Lines());
}

TEST_F(Plans, ThroughTheCacheLeavesOtherLiveSettingsAsTheyAre) {
  current_.asics[0].ports[3].rx[0].peak = 1;
  want(3).tx[0].ffeMode = "FFENone";
  const Lines lines = commands(true);
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[2], "setVGA 6 1 78 3");
}

TEST_F(Plans, EthernetLiveSettingsGoThroughTheCacheOfTheRunningRate) {
  PortState& port = current_.asics[0].ports[10];
  port.configRate = "AUTO";
  port.observed.runningRate = "10G";
  port.txCaches["10G"] = {.power = 7, .slew = 7, .mode = 0, .p = {0, 0, 0, 0}};
  static_cast<FfeValues&>(port.tx[0]) = {"FFENone", 119, 0, 63, 0, 0};
  port.rx[0].peak = port.rxCaches["10G"].p[0];
  PortState& wish = want(10);
  static_cast<FfeValues&>(wish.tx[0]) = {"FFE2", 102, 0, 53, -10, 0};
  EXPECT_EQ(commands(), Lines());
  EXPECT_EQ(reasons().size(), 1U);
  EXPECT_EQ(commands(true), (Lines{"setTxParamsRaw asic 10G 6 7 0 5 0 0 0 10", "setRate AUTO 10",
                                   "setTxParamsRaw asic 10G 7 7 0 0 0 0 0 10"}));
  wish.tx[0].k = 103;
  EXPECT_EQ(commands(true), Lines()) << "no power gives it";
  EXPECT_EQ(reasons(true).size(), 1U);
}

TEST_F(Plans, ACacheThatTheReceiverRefusesDoesNotCarryItsEqualiserMode) {
  PortState& port = current_.asics[0].ports[10];
  port.rxCaches["8G"] = {.mode = 5, .p = {2, 0, 0, 0}};
  port.rx[0].peak = 4;
  want(10).rx[0].peak = 2;
  EXPECT_EQ(commands(true),
            (Lines{"setRxParamsRaw asic 8G 0 2 0 0 0 10", "setRate 8G 10", "setRxParamsRaw asic 8G 5 2 0 0 0 10"}));
}

TEST_F(Plans, BackToAutoWhereNoRateWasFoundLiveSettingsGoThroughTheRateThatIsSet) {
  current_.asics[0].ports[3].txCaches = {{"4G", {.power = 9, .slew = 1, .mode = 1, .p = {0, 60, 0, 0}}},
                                         {"8G", current_.asics[0].ports[3].txCaches["8G"]}};
  PortState& wish = want(3);
  wish.configRate = "AUTO";
  wish.observed.runningRate = "INV";
  wish.tx[0].ffeMode = "FFENone";
  EXPECT_EQ(commands(true),
            (Lines{"setTxParamsRaw asic 4G 115 2 0 -4 55 -25 0 3", "setTxParamsRaw asic 8G 115 2 0 -4 55 -25 0 3",
                   "setRate 8G 3", "setRate AUTO 3", "setTxParamsRaw asic 4G 9 1 1 0 60 0 0 3",
                   "setTxParamsRaw asic 8G 115 2 2 -4 55 -25 0 3"}));
  EXPECT_EQ(reasons(true), Lines());
  wish.tx[0].ffeMode = "FFE2";
  EXPECT_EQ(commands(true), (Lines{"setRate AUTO 3", "setFFE FFE2 115 -4 55 -25 0 3"})) << "no way around is needed";
}

TEST_F(Plans, WhatTheToolHasNoWordsFor) {
  want(0).tx[0].slewUnnamed = true;
  want(1).tx[0].k = 300;
  want(2).rx[0].dfeMode = "UNK";
  want(4).tx[0].slewPs = 37;
  want(5).configRate = "INV";
  want(6).txCaches["40G"] = {};
  want(8).tx[2].c2 = -1;
  want(9).tx.resize(5);
  wanted_.asics.push_back(current_.asics[0]);
  wanted_.asics[1].asic = 1;
  EXPECT_EQ(commands(true), Lines());
  EXPECT_EQ(
      reasons(true),
      (Lines{"slew UNK: the tool has no name for the slew",
             "ffe FFE3 300 -4 55 -25 0: the tool passes 8 bits of a number on",
             "dfe UNK: the tool has no name for the mode", "slew 37: there is no slew of 37 ps",
             "config_rate INV: there is no such speed",
             "40G tx cache setTxParamsRaw asic 40G 0 0 0 0 0 0 0: the tool does not show the port's cache of that rate",
             "ffe links that differ: the tool sets all links of a port alike",
             "tx link 4 - - - - - - -: the port has no such link", "ASIC settings: the switch has no such ASIC"}));
}

TEST_F(Plans, NumbersBeyondEightBitsAreNotSent) {
  LiveTx& tx = want(3).tx[0];
  for (const auto value : {&FfeValues::k, &FfeValues::c0, &FfeValues::c1, &FfeValues::c2, &FfeValues::c3}) {
    for (const std::int32_t wrong : {-129, 256}) {
      const LiveTx before = tx;
      tx.*value = wrong;
      EXPECT_EQ(commands(), Lines());
      EXPECT_EQ(reasons().size(), 1U);
      tx = before;
    }
  }
  LiveRx& rx = want(3).rx[0];
  for (const auto value : {&VgaValues::pole, &VgaValues::peak, &VgaValues::amax}) {
    const LiveRx before = rx;
    rx.*value = 128;
    EXPECT_EQ(commands(), Lines());
    EXPECT_EQ(reasons().size(), 1U);
    rx = before;
  }
}

TEST_F(Plans, ALinkThatDiffersFromTheOthersIsBroughtIntoLine) {
  current_.asics[0].ports[8].tx[3].c2 = -1;
  for (LiveTx& link : want(8).tx)
    link.c2 = -25;
  EXPECT_EQ(commands(), (Lines{"setFFE FFE3 115 -4 55 -25 0 8"}));
}

TEST_F(Plans, WhatCannotBeReadIsNotSet) {
  PortState& port = current_.asics[0].ports[1];
  port.configRate.reset();
  port.streamEnabled.reset();
  port.tx[0] = {};
  PortState& wish = want(1);
  wish.configRate = "4G";
  wish.streamEnabled = false;
  static_cast<FfeValues&>(wish.tx[0]) = {"FFE3", 1, 2, 3, 4, 5};
  EXPECT_EQ(commands(), Lines());
  EXPECT_EQ(plan().impossible.size(), 3U);
  wish.streamEnabled = true;
  EXPECT_EQ(reasons()[2], "stream_enabled on: the tool does not show the stream of a port without transmit links");
}

TEST_F(Plans, AnUnnamedSlewIsBroughtToAName) {
  current_.asics[0].ports[3].tx[0].slewPs.reset();
  current_.asics[0].ports[3].tx[0].slewUnnamed = true;
  want(3).tx[0].slewPs = 50;
  EXPECT_EQ(commands(), (Lines{"setSlew 50 3"}));
  wanted_.asics[0].ports[0].tx[0].ffeMode = "FFE7";
  EXPECT_EQ(commands(), (Lines{"setSlew 50 3"}));
  EXPECT_EQ(reasons(), (Lines{"ffe FFE7 115 -4 55 -25 0: there is no mode FFE7"}));
}

// What a switch leaves as it is when a speed brings caches into force that no SerDes takes.
TEST_F(Plans, CachesThatNoSerDesTakesChangeNothingByASpeed) {
  PortState& port = current_.asics[0].ports[3];
  for (const TxRawValues& refused : std::vector<TxRawValues>{{.power = 256, .slew = 8, .mode = 2, .p = {1, 2, 3, 0}},
                                                             {.power = 9, .slew = -1, .mode = 4, .p = {1, 2, 3, 0}},
                                                             {.power = 9, .slew = 7, .mode = 2, .p = {1, 2, 3, 128}}}) {
    port.txCaches["4G"] = refused;
    port.rxCaches["4G"] = {.mode = 9, .p = {1, -129, 2, 0}};
    wanted_.asics[0].ports.clear();
    want(3).configRate = "4G";
    EXPECT_EQ(where(plan().steps.at(0).changes), "ASIC 0 port 3 config_rate: 8G -> 4G\n");
  }
  PortState& ethernet = current_.asics[0].ports[10];
  for (const auto& [power, preEmphasis] : {std::pair(16, 3), std::pair(3, 16)}) {
    ethernet.txCaches["4G"] = {.power = power, .slew = 7, .mode = 0, .p = {preEmphasis, 0, 0, 0}};
    ethernet.rxCaches["4G"] = {.mode = 1, .p = {8, 0, 0, 0}};
    wanted_.asics[0].ports.clear();
    want(10).configRate = "4G";
    EXPECT_EQ(where(plan().steps.at(0).changes), "ASIC 0 port 10 config_rate: 8G -> 4G\n");
  }
}

TEST_F(Plans, EthernetLiveSettingsThatNoCacheGives) {
  want(10).rx[0].peak = 8;
  EXPECT_EQ(commands(true), Lines());
  EXPECT_EQ(reasons(true),
            (Lines{"receive DFE5 6 8 78: live settings of ethernet ports follow from their caches alone"}));
  current_.asics[0].ports[10].rx[0].peak.reset();
  wanted_.asics[0].ports[0].rx[0] = {};
  wanted_.asics[0].ports[0].rx[0].pole = 1;
  EXPECT_EQ(commands(true), Lines());
  EXPECT_EQ(reasons(true).size(), 1U);
}

// Where the cores' types could not be found out, the kind of the port tells.
TEST_F(Plans, EthernetPortsOfUnknownCoresAreThoseOfTheirKind) {
  current_.asics[0].cores.clear();
  for (const std::uint32_t port : {9U, 10U})
    for (LiveRx& link : want(port).rx)
      link.peak = 2;
  EXPECT_EQ(commands(), (Lines{"setVGA 6 2 78 9"}));
  EXPECT_EQ(reasons().size(), 1U);
}

}  // namespace
}  // namespace serdesctl
