#include "simulator/description/description.h"

#include <gtest/gtest.h>

#include "simulator/calls/default_switch.h"
#include "simulator/description/fingerprint.h"

namespace simulator {
namespace {

// The least that a description can say, with more in front or behind.
const std::string kOnePort = R"([[asics]]
[[asics.cores]]
cores = 0
type = 2
[[asics.ports]]
ports = 0
kind = "GL"
)";

std::string ethernetPort() {
  std::string port = kOnePort;
  port.replace(port.find("GL"), 2, "EXG");
  return port.replace(port.find("type = 2"), 8, "type = 4");
}

SwitchDescription read(const std::string& text) {
  return readDescription(text, "some.toml");
}

TEST(Description, KindAndMediaSayWhichSpeedsThereAre) {
  struct Row {
    const char* kind;
    const char* media;
    std::vector<std::uint32_t> speeds;
    std::vector<std::uint32_t> mediaSpeeds;
  };
  const std::vector<std::uint32_t> kNone, kToTwo = {SPEED_1G, SPEED_2G};
  const std::vector<std::uint32_t> kToTen = {SPEED_1G, SPEED_2G, SPEED_4G, SPEED_8G, SPEED_10G};
  const std::vector<std::uint32_t> kAll = {SPEED_1G, SPEED_2G, SPEED_4G, SPEED_8G, SPEED_10G, SPEED_20G};
  const Row kRows[] = {
      {"GL", "none", kToTen, kNone},
      {"GL", "not applicable", kToTen, kAll},
      {"GL", "unknown", kToTen, kToTwo},
      {"GL", "optical", kToTen, kToTen},
      {"GL", "electrical", kToTen, kToTen},
      {"XG", "copper passive", {SPEED_10G, SPEED_20G}, kAll},
      {"XG", "copper active", {SPEED_10G, SPEED_20G}, kAll},
      {"EXG", "10G ethernet", {SPEED_1G, SPEED_10G}, {SPEED_10G}},
      {"EXG", "1G ethernet", {SPEED_1G, SPEED_10G}, {SPEED_1G}},
  };
  const auto setOf = [](const std::vector<std::uint32_t>& speeds) {
    SpeedSet set = 0;
    for (const std::uint32_t speed : speeds)
      set |= speedBit(speed);
    return set;
  };
  for (const Row& row : kRows) {
    const SwitchDescription description = read(kOnePort + "[[asics.ports]]\nports = 0\nmisplaced = true\nkind = \"" +
                                               row.kind + "\"\nmedia = \"" + row.media + "\"\n");
    const PortDescription& port = description.asics[0].ports[0];
    EXPECT_EQ(port.speeds, setOf(row.speeds)) << row.kind;
    EXPECT_EQ(port.partner.speeds, setOf(row.speeds)) << row.kind;
    EXPECT_EQ(port.mediaSpeeds, setOf(row.mediaSpeeds)) << row.media;
  }
}

TEST(Description, UserPortsBeginAt0AndMinus1IsNone) {
  EXPECT_EQ(read(kOnePort + "user_port = 0\n").asics[0].ports[0].userPort, 0);
  EXPECT_EQ(read(kOnePort + "user_port = 65534\n").asics[0].ports[0].userPort, 65534);
  EXPECT_EQ(read(kOnePort + "user_port = -1\n").asics[0].ports[0].userPort, kNoUserPort);
}

TEST(Description, SaysWithTheLeastWhatTheRestIs) {
  const SwitchDescription description = read(kOnePort);
  ASSERT_EQ(description.asics.size(), 1U);
  ASSERT_EQ(description.asics[0].cores.size(), 1U);
  const CoreDescription& core = description.asics[0].cores[0];
  EXPECT_EQ(core.type, 2U);
  EXPECT_EQ(core.pllRegisters, 12U);
  EXPECT_EQ(core.rxRegisters, 24U);
  EXPECT_EQ(core.txRegisters, 16U);
  EXPECT_EQ(core.rxParams, 5U);
  EXPECT_EQ(core.txParams, 7U);
  ASSERT_EQ(description.asics[0].ports.size(), 1U);
  const PortDescription& port = description.asics[0].ports[0];
  EXPECT_EQ(port.portType, kPortTypeGl);
  EXPECT_TRUE(port.present);
  EXPECT_EQ(port.userPort, kNoUserPort);
  EXPECT_EQ(port.rxLinks, 1U);
  EXPECT_EQ(port.txLinks, 1U);
  EXPECT_EQ(port.media, MEDIA_OPTICAL);
  EXPECT_EQ(port.speed, SPEED_AUTO);
  EXPECT_TRUE(port.sends);
  EXPECT_EQ(port.loadPercent, 100U);
  EXPECT_EQ(port.farEnd, FarEnd::kNothing);
  EXPECT_FALSE(port.live.has_value());
  EXPECT_EQ(description.clock, ClockDescription{});
  EXPECT_EQ(description.typeNames[2], "SERDES_11G");
  EXPECT_EQ(description.userPorts, 0);
}

TEST(Description, ReadsTheSwitch) {
  const SwitchDescription description = read(R"(
slots = 8
user_ports = 48
aux_ports = 3
seed = 99
type_names = ["a", "b", "c", "d", "e", "f", "nineteen characters"]
clock = { kind = "virtual", step = 50 }
)" + kOnePort);
  EXPECT_EQ(description.slots, 8);
  EXPECT_EQ(description.userPorts, 48);
  EXPECT_EQ(description.auxPorts, 3);
  EXPECT_EQ(description.seed, 99U);
  EXPECT_EQ(description.typeNames[6], "nineteen characters");
  EXPECT_EQ(description.clock, (ClockDescription{.isVirtual = true, .step = 50}));
}

TEST(Description, ReadsCores) {
  const SwitchDescription description = read(R"([[asics]]
[[asics.cores]]
cores = "0-1"
type = 5
[[asics.cores]]
cores = 1
pll_registers = 3
rx_registers = 32
tx_registers = 0
rx_params = 9
tx_params = 8
first_port = 17
temperature = -5
)");
  const CoreDescription& plain = description.asics[0].cores[0];
  EXPECT_EQ(plain.rxRegisters, 32U);
  EXPECT_EQ(plain.firstPort, 0U);
  const CoreDescription& core = description.asics[0].cores[1];
  EXPECT_EQ(core.type, 5U);
  EXPECT_EQ(core.pllRegisters, 3U);
  EXPECT_EQ(core.rxRegisters, 32U);
  EXPECT_EQ(core.txRegisters, 0U);
  EXPECT_EQ(core.rxParams, 9U);
  EXPECT_EQ(core.txParams, 8U);
  EXPECT_EQ(core.firstPort, 17U);
  EXPECT_EQ(core.temperature, -5);
}

TEST(Description, ReadsPorts) {
  const SwitchDescription description = read(R"(
[settings.some]
power = 200
ffe = "FFE4"
taps = [-1, 2, -3, 4]
slew = 60
dfe = "DFE1"
pole = 1
peak = 2
amax = 0x30

[channels.board]
fr4_inches = 10
connectors = 2
crosstalk_db = -40
echoes = [{ reflection = -0.1, delay_ns = 0.7 }]

[[asics]]
[[asics.cores]]
cores = "0-1"
type = 2
[[asics.ports]]
ports = 0
kind = "XG"
present = false
user_port = 7
rx_links = 2
tx_links = 3
rx_core = 1
tx_core = 0
media = "copper active"
media_speeds = ["20G"]
speeds = ["10G", "20G"]
channel = "board"
speed = "20G"
sends = false
load = 40
cache = { 20G = "some" }
live = "some"
partner = { settings = "some", speed = "10G", speeds = ["10G"], sends = false, pattern = 2 }
)");
  const PortDescription& port = description.asics[0].ports[0];
  EXPECT_EQ(port.portType, kPortTypeXg);
  EXPECT_FALSE(port.present);
  EXPECT_EQ(port.userPort, 7);
  EXPECT_EQ(port.rxLinks, 2U);
  EXPECT_EQ(port.txLinks, 3U);
  EXPECT_EQ(port.rxCore, 1U);
  EXPECT_EQ(port.txCore, 0U);
  EXPECT_EQ(port.media, MEDIA_COPPER_ACTIVE);
  EXPECT_EQ(port.mediaSpeeds, speedBit(SPEED_20G));
  EXPECT_EQ(port.speeds, speedBit(SPEED_10G) | speedBit(SPEED_20G));
  EXPECT_EQ(port.speed, SPEED_20G);
  EXPECT_FALSE(port.sends);
  EXPECT_EQ(port.loadPercent, 40U);
  const Settings& cache = port.caches[SPEED_20G];
  EXPECT_EQ(cache.tx.power, 200);
  EXPECT_EQ(cache.tx.mode, FFE_4);
  EXPECT_EQ(cache.tx.slew, SLEW_60PS);
  EXPECT_EQ(cache.tx.p0, -1);
  EXPECT_EQ(cache.tx.p1, 2);
  EXPECT_EQ(cache.tx.p2, -3);
  EXPECT_EQ(cache.tx.p3, 4);
  EXPECT_EQ(cache.rx.mode, DFE_1);
  EXPECT_EQ(cache.rx.p0, 1);
  EXPECT_EQ(cache.rx.p1, 2);
  EXPECT_EQ(cache.rx.p2, 0x30);
  EXPECT_EQ(port.caches[SPEED_10G].tx.power, 115);
  EXPECT_EQ(port.live->tx.power, 200);
  EXPECT_EQ(port.farEnd, FarEnd::kPartner);
  EXPECT_EQ(port.partner.speed, SPEED_10G);
  EXPECT_EQ(port.partner.speeds, speedBit(SPEED_10G));
  EXPECT_FALSE(port.partner.sends);
  EXPECT_EQ(port.partner.pattern, 2U);
  EXPECT_NEAR(insertionLossDb(port.channel, 5), insertionLossDb(fr4Trace(10) + connector() + connector(), 5), 1e-9);
  EXPECT_EQ(port.channel.crosstalkDb, -40);
  ASSERT_EQ(port.channel.echoes.size(), 1U);
  EXPECT_EQ(port.channel.echoes[0].reflection, -0.1);
  EXPECT_EQ(port.channel.echoes[0].delayNs, 0.7);
}

TEST(Description, SumsEveryKindOfChannelPiece) {
  const auto lossOf = [](const std::string& pieces) {
    const SwitchDescription description = read("[channels.c]\n" + pieces + "\n" + kOnePort + "channel = \"c\"\n");
    return insertionLossDb(description.asics[0].ports[0].channel, 4);
  };
  EXPECT_NEAR(lossOf("a0 = 1\na1 = 2\na2 = 0.5\na4 = 0.25"), 1 + 4 + 2 + 4, 1e-9);
  EXPECT_NEAR(lossOf("board_mm = 100"), insertionLossDb(boardLine(100), 4), 1e-9);
  EXPECT_NEAR(lossOf("copper_metres = 3"), insertionLossDb(directAttachCopper(3), 4), 1e-9);
  EXPECT_NEAR(lossOf("optical_host_inches = 9"), insertionLossDb(opticalModule(9), 4), 1e-9);
  EXPECT_NEAR(lossOf("fr4_inches = 5\nboard_mm = 100"), insertionLossDb(fr4Trace(5) + boardLine(100), 4), 1e-9);
}

TEST(Description, RunsOfPortsShareCoresAndCountUserPorts) {
  const SwitchDescription description = read(R"([[asics]]
[[asics.cores]]
cores = "0-2"
type = 2
[[asics.ports]]
ports = "0-3,5,4"
kind = "GL"
user_port = 10
core = 1
ports_per_core = 3
far_end = "pair"
)");
  const std::vector<PortDescription>& ports = description.asics[0].ports;
  ASSERT_EQ(ports.size(), 6U);
  EXPECT_EQ(ports[2].rxCore, 1U);
  EXPECT_EQ(ports[3].rxCore, 2U);
  EXPECT_EQ(ports[5].userPort, 14);
  EXPECT_EQ(ports[4].userPort, 15);
  EXPECT_EQ(ports[4].farPort, 5U);
  EXPECT_EQ(ports[5].farPort, 4U);
  EXPECT_EQ(description.userPorts, 6);
  EXPECT_EQ(description.asics[0].cores[1].firstPort, 0U);
  EXPECT_EQ(description.asics[0].cores[2].firstPort, 3U);
}

TEST(Description, LaterEntriesRefineEarlierOnes) {
  const SwitchDescription description = read(kOnePort + R"(speed = "8G"
user_port = 3
[[asics.ports]]
ports = 0
user_port = -1
)");
  EXPECT_EQ(description.asics[0].ports[0].speed, SPEED_8G);
  EXPECT_EQ(description.asics[0].ports[0].userPort, kNoUserPort);
}

TEST(Description, ACableCanLeadToAnyPortByItsNumber) {
  const SwitchDescription description = read(R"([[asics]]
[[asics.cores]]
cores = 0
type = 2
[[asics.ports]]
ports = "0-1"
kind = "GL"
far_end = 2
[[asics.ports]]
ports = "2-3"
kind = "GL"
far_end = 0
)");
  EXPECT_EQ(description.asics[0].ports[1].farPort, 3U);
  EXPECT_EQ(description.asics[0].ports[3].farPort, 1U);
}

TEST(Description, EthernetSettingsAreForEthernetPorts) {
  const std::string settings = "[settings.e]\npower = 6\npre_emphasis = 5\ncdr_mode = 2\neq_mode = 1\n";
  const SwitchDescription description = read(settings + ethernetPort() + "cache = \"e\"\n");
  const Settings& cache = description.asics[0].ports[0].caches[SPEED_10G];
  EXPECT_EQ(cache.tx.power, 6);
  EXPECT_EQ(cache.tx.slew, SLEW_UNKNOWN);
  EXPECT_EQ(cache.tx.p0, 5);
  EXPECT_EQ(cache.rx.mode, 2);
  EXPECT_EQ(cache.rx.p0, 1);
}

TEST(Description, ReadsFaults) {
  const SwitchDescription description = read(kOnePort + R"(
[[faults]]
operation = "GetSerDesInfo/port"
asic = 0
port = 0
ordinal = 3
always = true
probability = 0.25
code = -77
[[faults]]
operation = "ReadSerDesPLLRegister"
core = 0
answer = { output = "value", value = 0x1234 }
[[faults]]
operation = "ToString"
answer = { output = "name", text = "a name that is far too long" }
[[faults]]
operation = "ClrFrameStatCntrs"
)");
  ASSERT_EQ(description.faults.size(), 4U);
  const FaultDescription& first = description.faults[0];
  EXPECT_EQ(first.where.operation, Operation::kGetSerDesInfoOfPort);
  EXPECT_EQ(first.where.asic, 0U);
  EXPECT_EQ(first.where.port, 0U);
  EXPECT_EQ(first.where.link, std::nullopt);
  EXPECT_EQ(first.ordinal, 3U);
  EXPECT_TRUE(first.always);
  EXPECT_EQ(first.probability, kCertain / 4);
  EXPECT_EQ(first.code, -77);
  EXPECT_FALSE(first.answer.has_value());
  EXPECT_EQ(description.faults[1].where.core, 0U);
  EXPECT_EQ(description.faults[1].answer->output, "value");
  EXPECT_EQ(description.faults[1].answer->value, 0x1234);
  EXPECT_EQ(description.faults[2].answer->text, "a name that is far too long");
  EXPECT_EQ(description.faults[3].code, kInjectedFault);
  EXPECT_FALSE(description.faults[3].always);
}

std::vector<std::int32_t> numbersOf(const Settings& settings) {
  const SerDesTxRateParams& tx = settings.tx;
  const SerDesRxRateParams& rx = settings.rx;
  return {tx.power, tx.slew, tx.mode, tx.p0, tx.p1, tx.p2, tx.p3, rx.mode, rx.p0, rx.p1, rx.p2, rx.p3};
}

TEST(Description, NumbersAreThoseOfTheRecordsInTheirOrderForPortsOfAnyKind) {
  const std::string settings = "[settings.n]\ntx = [1, 2, 3, 4, 5, 6, 7]\nrx = [8, 9, 10, 11, 12]\n";
  for (const std::string& port : {kOnePort, ethernetPort()}) {
    const Settings cache = read(settings + port + "cache = \"n\"\n").asics[0].ports[0].caches[SPEED_10G];
    EXPECT_EQ(numbersOf(cache), (std::vector{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
  }
}

TEST(Description, CachesHoldWhatAResetLeavesWhenNothingElseIsSaid) {
  const std::vector<std::int32_t> plain = {115, SLEW_36PS, FFE_NONE, 0, 63, 0, 0, DFE_3, 6, 4, 0x4e, 0};
  const std::vector<std::int32_t> ethernet = {7, SLEW_UNKNOWN, FFE_NONE, 0, 0, 0, 0, 0, 2, 0, 0, 0};
  for (const std::uint32_t speed : {SPEED_1G, SPEED_10G}) {
    EXPECT_EQ(numbersOf(read(kOnePort).asics[0].ports[0].caches[speed]), plain);
    EXPECT_EQ(numbersOf(read(ethernetPort()).asics[0].ports[0].caches[speed]), ethernet);
  }
}

TEST(Description, RawSettingsKeepAnyNumber) {
  const std::string odd = "[settings.odd]\nraw = true\npower = -2147483648\ntaps = [99, 99, 99, 99]\n";
  const SwitchDescription description = read(odd + kOnePort + "cache = \"odd\"\n");
  const SerDesTxRateParams& tx = description.asics[0].ports[0].caches[SPEED_8G].tx;
  EXPECT_EQ(tx.power, INT32_MIN);
  EXPECT_EQ(tx.p3, 99);
}

TEST(Description, MisplacedPortsMayBeOnAnyCore) {
  std::string text = kOnePort + "misplaced = true\nlive = \"some\"\n[settings.some]\nffe = \"FFE4\"\n";
  text.replace(text.find("type = 2"), 8, "type = 4");
  EXPECT_EQ(read(text).asics[0].ports[0].live->tx.mode, FFE_4);
}

// 256 of them lie between two ports, one for each counter; 0 stands for 1.
TEST(Description, EachPortHasErrorsOfItsOwn) {
  const auto seedsOf = [](const std::string& seed) {
    std::vector<std::uint64_t> seeds;
    for (const AsicDescription& asic : read("seed = " + seed + "\n" + kOnePort + kOnePort).asics)
      seeds.push_back(asic.ports.at(0).errorSeed);
    return seeds;
  };
  EXPECT_EQ(seedsOf("1"), (std::vector<std::uint64_t>{0x1'0000'0000, 0x1'0001'0000}));
  EXPECT_EQ(seedsOf("0"), seedsOf("1"));
  EXPECT_EQ(seedsOf("7"), (std::vector<std::uint64_t>{0x7'0000'0000, 0x7'0001'0000}));
  std::string ports = kOnePort;
  ports.replace(ports.find("ports = 0"), 9, "ports = \"0-2\"");
  EXPECT_EQ(read(ports).asics[0].ports[2].errorSeed, 0x1'0000'0200U);
}

TEST(Description, FingerprintsAreKnown) {
  // FNV-1a's own examples.
  EXPECT_EQ(fingerprintOf(""), 0xcbf29ce484222325U);
  EXPECT_EQ(fingerprintOf("a"), 0xaf63dc4c8601ec8cU);
  EXPECT_EQ(fingerprintOf("foobar"), 0x85944171f73967e8U);
  EXPECT_EQ(fingerprintOf("bar", fingerprintOf("foo")), fingerprintOf("foobar"));
  EXPECT_EQ(read(kOnePort).fingerprint, 0x91674b843c0bfc1dU);
}

TEST(Description, FingerprintsDifferWithTheText) {
  EXPECT_EQ(read(kOnePort).fingerprint, read(kOnePort).fingerprint);
  EXPECT_NE(read(kOnePort).fingerprint, read(kOnePort + "load = 1\n").fingerprint);
}

TEST(Description, TheBuiltInOneIsInOrder) {
  EXPECT_NO_THROW((void)readDescription(kDefaultSwitchToml, "default.toml"));
}

TEST(Description, AFileThatCannotBeReadSaysWhy) {
  const auto errorOf = [](const std::string& name) {
    try {
      (void)readDescriptionFile(name);
    } catch (const DescriptionError& error) {
      return std::string(error.what());
    }
    return std::string("no error");
  };
  EXPECT_EQ(errorOf("/nonexistent/switch.toml"), "/nonexistent/switch.toml: cannot be read: No such file or directory");
  EXPECT_EQ(errorOf("/"), "/: cannot be read: Is a directory");
}

}  // namespace
}  // namespace simulator
