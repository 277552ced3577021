// What ports do to each other: crosstalk from the transmitters beside a receiver, and beside the one that it hears.
#include <gtest/gtest.h>

#include <string>

#include "simulator/switch/incoming.h"
#include "simulator/switch/switch.h"

namespace simulator {
namespace {

std::string ports(const std::string& which, const std::string& keys) {
  return "[[asics.ports]]\nports = \"" + which + "\"\n" + keys;
}

// Ports that hear themselves over lines of the same length, on which little more is too much.
std::string rowOf(const std::string& which) {
  return R"(
clock = { kind = "virtual", step = 1000000 }
[settings.fast]
power = 100
ffe = "FFE3"
taps = [-2, 58, -10, 0]
slew = 60
dfe = "DFE1"
peak = 2
[channels.line]
fr4_inches = 23
connectors = 2
crosstalk_db = -25
[channels.quiet]
fr4_inches = 23
connectors = 2
crosstalk_db = -100
[[asics]]
[[asics.cores]]
cores = 0
type = 2
)" + ports(which, "kind = \"GL\"\nchannel = \"line\"\nfar_end = \"loop\"\nspeed = \"8G\"\ncache = \"fast\"\n");
}

constexpr unsigned kVictim = 4;

class PortsBeside : public testing::Test {
 protected:
  static Switch row(const std::string& which = "0-8", const std::string& more = "") {
    return Switch(readDescription(rowOf(which) + more, "row.toml"));
  }
  static port_id_t id(unsigned port) {
    return {.userPort = kNoUserPort, .asic = 0, .asicPort = static_cast<std::uint16_t>(port), .unused = {}};
  }
  // Decode errors in so many seconds from now on.
  static std::uint64_t errorsIn(int seconds, Switch& in, unsigned port) {
    EXPECT_EQ(in.clearCounters(id(port)), kOk);
    for (int i = 0; i < seconds; ++i)
      (void)in.beginCall({});
    drv_counters_t counters;
    EXPECT_EQ(in.getCounters(id(port), &counters), kOk);
    return (std::uint64_t{counters.decodeErrors.high} << 32) | counters.decodeErrors.low;
  }
  // -10 log10 of a port's error rate.
  static int exponent(Switch& in, unsigned port) {
    int status = -1;
    EXPECT_EQ(in.setTestOption(0, port, 0, kTestMargin, static_cast<int>(kMarginPoint)), kOk);
    EXPECT_EQ(in.getTestStatus(0, port, 0, kTestMargin, &status), kOk);
    return status;
  }
  static void silence(Switch& in, unsigned port) {
    EXPECT_EQ(in.setStream(id(port), false), kOk);
  }
};

TEST_F(PortsBeside, ASteeperEdgeBesideCostsAMarginalPortErrors) {
  Switch sw = row();
  const std::uint64_t before = errorsIn(100, sw, kVictim);
  ASSERT_EQ(sw.setTxSlew(0, kVictim - 1, -1, true, SLEW_24PS), kOk);
  ASSERT_EQ(sw.setTxSlew(0, kVictim + 1, -1, true, SLEW_24PS), kOk);
  EXPECT_GT(errorsIn(100, sw, kVictim), 2 * before + 10);
}

TEST_F(PortsBeside, MorePowerBesideCostsAMarginalPortErrors) {
  Switch sw = row();
  const std::uint64_t before = errorsIn(100, sw, kVictim);
  ASSERT_EQ(sw.setTxFfe(0, kVictim + 1, -1, {.mode = FFE_3, .k = 200, .c = {-2, 58, -10, 0}}), kOk);
  EXPECT_GT(errorsIn(100, sw, kVictim), 2 * before + 10);
}

TEST_F(PortsBeside, AnEdgeOfItsOwnCostsAPortNone) {
  Switch sw = row();
  const int before = exponent(sw, kVictim);
  ASSERT_EQ(sw.setTxSlew(0, kVictim, -1, true, SLEW_24PS), kOk);
  EXPECT_GT(exponent(sw, kVictim), before);  // which hears itself better
}

TEST_F(PortsBeside, SilencingThemCuresAMarginalPort) {
  Switch sw = row();
  for (const unsigned beside : {kVictim - 1, kVictim + 1})
    ASSERT_EQ(sw.setTxFfe(0, beside, -1, {.mode = FFE_3, .k = 200, .c = {-2, 58, -10, 0}}), kOk);
  EXPECT_GT(errorsIn(100, sw, kVictim), 100U);
  silence(sw, kVictim - 1);
  silence(sw, kVictim + 1);
  EXPECT_EQ(errorsIn(100, sw, kVictim), 0U);
}

TEST_F(PortsBeside, NoneMakesAPortQuieter) {
  Switch among = row();
  Switch alone = row("0");
  Switch uncoupled = row("0-8", ports("4", "channel = \"quiet\"\n"));
  EXPECT_GT(exponent(alone, 0), exponent(among, kVictim) + 10);
  EXPECT_NEAR(exponent(uncoupled, kVictim), exponent(alone, 0), 5);
  // At the end of the row there are half as many.
  EXPECT_GT(exponent(among, 0), exponent(among, kVictim) + 3);
}

TEST_F(PortsBeside, FurtherAwayDisturbLessAndNotBeyondTheSecond) {
  const auto gainedBySilence = [](unsigned distance) {
    Switch sw = row();
    const int before = exponent(sw, kVictim);
    silence(sw, kVictim + distance);
    return exponent(sw, kVictim) - before;
  };
  EXPECT_GT(gainedBySilence(1), gainedBySilence(2));
  EXPECT_GT(gainedBySilence(2), 0);
  EXPECT_EQ(gainedBySilence(3), 0);
}

TEST_F(PortsBeside, DisturbFromWhatTheirCablesLeadToAndLessSo) {
  const std::string partner = "partner = { settings = \"fast\" }\n";
  const std::string silentPartner = "partner = { settings = \"fast\", sends = false }\n";
  const auto exponentWith = [](const std::string& beside) {
    Switch sw = row("0-8", ports("5", beside));
    return exponent(sw, kVictim);
  };
  const int both = exponentWith(partner);
  const int nearEnd = exponentWith(silentPartner);
  const int farEnd = exponentWith(partner + "sends = false\n");
  const int none = exponentWith(silentPartner + "sends = false\n");
  EXPECT_GE(nearEnd, both);
  EXPECT_GT(farEnd, nearEnd);
  EXPECT_GE(none, farEnd);
}

TEST_F(PortsBeside, WithoutMediaOrPllAreSilent) {
  Switch sw = row();
  Switch bare = row("0-8", ports("5", "media = \"none\"\n"));
  Switch off = row("0-8", "[[asics.cores]]\ncores = 1\ntype = 2\n" + ports("5", "tx_core = 1\n"));
  ASSERT_EQ(off.writePllRegister(0, 1, 1, 0), kOk);
  const int before = exponent(sw, kVictim);
  silence(sw, 5);
  EXPECT_GT(exponent(sw, kVictim), before);
  EXPECT_EQ(exponent(bare, kVictim), exponent(sw, kVictim));
  EXPECT_EQ(exponent(off, kVictim), exponent(sw, kVictim));
}

TEST_F(PortsBeside, AreNotHeardInLoopback) {
  Switch sw = row();
  ASSERT_EQ(sw.setTestOption(0, kVictim, 0, kTestLoopback, 1), kOk);
  (void)exponent(sw, kVictim);
  const unsigned before = sw.evaluations();
  silence(sw, kVictim + 1);
  (void)exponent(sw, kVictim);
  SerDesRxDFEStats stats;
  ASSERT_EQ(sw.getRxDfeStats(0, kVictim, 0, &stats), kOk);
  EXPECT_EQ(sw.evaluations(), before);
}

// Four ports as a switch has them at its start.
struct FourPorts {
  explicit FourPorts(const std::string& more) : description(readDescription(rowOf("0-3") + more, "row.toml")) {
    state.asics.assign(1, {.ports = std::vector<PortState>(4), .plls = std::vector<RegisterFile>(1)});
    EXPECT_TRUE(fromRecords(description, Switch(description).exportState(), state));
  }
  PortView port(unsigned number) const {
    return {{0, description.asics[0], state.asics[0]}, number};
  }

  SwitchDescription description;
  SwitchState state;
};

TEST(Aggressors, AreTheSameLinkOfThePortBesideOrItsLastAtBothEnds) {
  const auto around = [](unsigned link, const std::string& beside) {
    return aggressorsOf(FourPorts(ports("0", "links = 4\n") + ports("1", beside)).port(0), link).size();
  };
  for (const unsigned link : {0U, 1U, 2U, 3U}) {
    // Of port 1 and port 2, each with its own end and what comes back to it.
    EXPECT_EQ(around(link, "links = 2\n"), 4U) << link;
    EXPECT_EQ(around(link, "links = 4\n"), 4U) << link;
    EXPECT_EQ(around(link, "links = 0\n"), 2U) << link;
    EXPECT_EQ(around(link, "sends = false\n"), 2U) << link;
  }
}

const std::string kCable = ports("0-1", "far_end = \"pair\"\n");

TEST(Aggressors, AreNeitherWhatThePortHearsNorWhatHearsIt) {
  const FourPorts cabled(kCable);
  EXPECT_EQ(aggressorsOf(cabled.port(0), 0).size(), 2U);
  EXPECT_EQ(aggressorsOf(cabled.port(1), 0).size(), 4U);
  // Port 3 sends to port 2, which has no receiver beside which that could be heard.
  const FourPorts deaf(ports("2-3", "far_end = \"pair\"\n") + ports("2", "rx_links = 0\n"));
  EXPECT_EQ(aggressorsOf(deaf.port(0), 0).size(), 3U);
}

TEST(Neighbours, AreThoseOfBothEndsOfTheCableWithoutThese) {
  EXPECT_EQ(neighboursOf(FourPorts(kCable).port(0)), (std::vector{2U, 3U}));
  EXPECT_EQ(neighboursOf(FourPorts("").port(0)), (std::vector{1U, 2U}));
  EXPECT_EQ(neighboursOf(FourPorts(ports("0", "far_end = \"nothing\"\n")).port(0)), (std::vector{1U, 2U}));
}

TEST_F(PortsBeside, AreCountedAsTheyWereUntilTheyChange) {
  Switch sw = row();
  for (const unsigned beside : {kVictim - 1, kVictim + 1})
    ASSERT_EQ(sw.setTxFfe(0, beside, -1, {.mode = FFE_3, .k = 200, .c = {-2, 58, -10, 0}}), kOk);
  for (int i = 0; i < 100; ++i)
    (void)sw.beginCall({});
  silence(sw, kVictim - 1);
  silence(sw, kVictim + 1);
  drv_counters_t counters;
  ASSERT_EQ(sw.getCounters(id(kVictim), &counters), kOk);
  EXPECT_GT(counters.decodeErrors.low, 100U);
}

}  // namespace
}  // namespace simulator
