// Every key of a description reaches the switch: another value, and something that the platform answers is another.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ostream>

#include "simulator/api.h"
#include "simulator/error_codes.h"

namespace simulator {
namespace {

namespace fs = std::filesystem;

// Every key there is. 0 and 1: a cable on a marginal line; 2: a partner; 3: a lane pair; 4 and 5: ethernet.
const std::string kSwitch = R"(
slots = 3
aux_ports = 4
user_ports = 9
seed = 5
type_names = ["T0", "T1", "T2", "T3", "T4", "T5", "T6"]
clock = { kind = "virtual", step = 200000 }

[settings.fast]
raw = false
power = 150
ffe = "FFE3"
taps = [-4, 55, -25, 0]
slew = 36
dfe = "DFE3"
pole = 6
peak = 4
amax = 78

[settings.other]
power = 60

[settings.numbers]
tx = [1, 2, 3, 4, 5, 6, 7]
rx = [1, 2, 3, 4, 5]

[settings.ether]
power = 6
pre_emphasis = 2
cdr_mode = 1
eq_mode = 3

[channels.line]
a0 = 0.1
a1 = 0.4
a2 = 0.6
a4 = 0.004
fr4_inches = 24
board_mm = 20
copper_metres = 1
optical_host_inches = 1
connectors = 1
jitter_ui = 0.01
crosstalk_db = -24
echoes = [{ reflection = -0.05, delay_ns = 0.7 }]

[channels.short]
fr4_inches = 4

[[asics]]

[[asics.cores]]
cores = "0-2"
type = 2

[[asics.cores]]
cores = 1
pll_registers = 5
rx_registers = 30
tx_registers = 14
rx_params = 6
tx_params = 8
first_port = 9
temperature = 38
pll_values = [0, 1, 0, 0, 17]

[[asics.cores]]
cores = 3
type = 4

[[asics.ports]]
ports = "0-1"
kind = "GL"
port_type = 7
present = true
user_port = 10
links = 1
core = 0
ports_per_core = 2
misplaced = false
media = "electrical"
media_speeds = ["4G", "8G"]
speeds = ["2G", "4G", "8G"]
channel = "line"
far_end = "pair"
speed = "AUTO"
sends = true
load = 100
signal_detect_mv = 50
cache = "fast"

[[asics.ports]]
ports = 2
kind = "GL"
core = 2
channel = "short"
partner = { settings = "fast", speed = "AUTO", speeds = ["8G"], sends = true, pattern = 0 }
speed = "8G"
live = "fast"

[[asics.ports]]
ports = 3
kind = "GL"
rx_links = 2
tx_links = 2
rx_core = 1
tx_core = 1
speed = "8G"
live = "other"
cache = { 4G = "numbers" }
tx_values = [[0, 1, 0, 77]]
rx_values = [[0, 1, 38, 70]]

[[asics.ports]]
ports = "4-5"
kind = "EXG"
core = 3
channel = "short"
far_end = "loop"
speed = "10G"
cache = "ether"

[[asics]]
[[asics.cores]]
cores = 0
type = 5
[[asics.ports]]
ports = 0
kind = "GL"

[[faults]]
operation = "SetSerDesTxSlew"
asic = 0
port = 0
link = 0
ordinal = 2
always = false
code = -70

[[faults]]
operation = "WriteSerDesPLLRegister"
core = 1

[[faults]]
operation = "GetPortCfgSpeed"
port = 2
always = true
probability = 0.5

[[faults]]
operation = "GetSerDesTxFFE"
port = 3
answer = { output = "mode", value = 9 }

[[faults]]
operation = "ToString"
ordinal = 7
answer = { output = "name", text = "another" }
)";

struct Row {
  const char* key;     // behind the name of the table in which the reader has it
  std::string before;  // in the switch, once
  std::string after;
  std::string answer;  // begins a line of the trace that is another then
};

void PrintTo(const Row& row, std::ostream* stream) {
  *stream << row.key;
}

constexpr const char* kSwitchVariable = "SERDES_SIMULATOR_SWITCH";
constexpr const char* kTraceVariable = "SERDES_SIMULATOR_TRACE";

class EveryKey : public testing::TestWithParam<Row> {
 protected:
  EveryKey() : folder_(fs::temp_directory_path() / ("every_key_test." + std::to_string(getpid()))) {
    fs::create_directories(folder_);
    (void)unsetenv("SERDES_SIMULATOR_CLOCK");
    (void)unsetenv("SERDES_SIMULATOR_STATE");
    (void)setenv(kSwitchVariable, (folder_ / "switch.toml").c_str(), 1);
  }
  ~EveryKey() override {
    (void)unsetenv(kSwitchVariable);
    (void)unsetenv(kTraceVariable);
    fs::remove_all(folder_);
  }
  // The trace of all questions, always the same ones, to the switch that is described.
  std::vector<std::string> answersOf(const std::string& text) {
    const fs::path trace = folder_ / ("trace" + std::to_string(++traces_));
    std::ofstream(folder_ / "switch.toml") << text;
    (void)setenv(kTraceVariable, trace.c_str(), 1);
    EXPECT_EQ(AsicControl::AsicCtlOpen(), kOk) << text;
    EXPECT_EQ(PortControl::PortCtlOpen(), kOk);
    askEverything();
    EXPECT_EQ(PortControl::PortCtlClose(), kOk);
    EXPECT_EQ(AsicControl::AsicCtlClose(), kOk);
    std::ifstream file(trace);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
      lines.push_back(line);
    return lines;
  }

 private:
  static void askEverything() {
    Switch_HW_Config_t config;
    (void)AsicControl::GetSwitchConfig(&config);
    for (unsigned type = 0; type < 7; ++type)
      (void)AsicControl::ToString(static_cast<SerDesType>(type));
    for (unsigned asic = 0; asic < 2; ++asic) {
      unsigned counts[5];
      (void)AsicControl::GetSerDesInfo(asic, counts, counts + 1);
      for (unsigned core = 0; core < 4; ++core)
        askCore(asic, core);
      for (unsigned port = 0; port < 6; ++port) {
        askPort({.userPort = kNoUserPort,
                 .asic = static_cast<std::uint16_t>(asic),
                 .asicPort = static_cast<std::uint16_t>(port),
                 .unused = {}});
        for (int link = 0; link < 3; ++link)
          askLink(asic, port, link);
      }
    }
  }
  static void askCore(unsigned asic, unsigned core) {
    unsigned counts[5];
    unsigned short first = 0;
    unsigned short value = 0;
    SerDesType type{};
    (void)AsicControl::GetSerDesInfo(asic, core, &first, &type, counts, counts + 1, counts + 2, counts + 3, counts + 4);
    for (unsigned char address = 0; address < 32; ++address)
      (void)AsicControl::ReadSerDesPLLRegister(asic, core, address, &value, 1);
    (void)AsicControl::WriteSerDesPLLRegister(asic, core, 3, 1);
  }
  static void askPort(port_id_t id) {
    Port_HW_Config_t config;
    unsigned long info = 0;
    unsigned speed = 0;
    MediaHwFcXmtrType media{};
    bool enabled = false;
    drv_counters_t counters;
    (void)PortControl::GetPortHwConfig(id, &config);
    (void)PortControl::GetPortInfo(id, PORT_INFO_STATE, &info);
    for (int i = 0; i < 16; ++i)
      (void)PortControl::GetPortCfgSpeed(id, &speed);
    (void)PortControl::GetPortSpeed(id, &speed);
    (void)PortControl::GetMediaHwFcXmtrType(id, &media);
    (void)PortControl::TxStreamState(id, &enabled);
    (void)PortControl::GetFrameStatCntrs(id, &counters);
    for (std::uint32_t rate = SPEED_1G; rate <= SPEED_20G; ++rate) {
      SerDesTxRateParams tx;
      SerDesRxRateParams rx;
      (void)AsicControl::GetSerDesTxRateParams(id.asic, id.asicPort, static_cast<port_speed_type>(rate), &tx);
      (void)AsicControl::GetSerDesRxRateParams(id.asic, id.asicPort, static_cast<port_speed_type>(rate), &rx);
    }
  }
  static void askLink(unsigned asic, unsigned port, int link) {
    unsigned count = 0;
    unsigned core = 0;
    SerDesType type{};
    unsigned short value = 0;
    for (const SerDesLinkType side : {SERDES_LINK_RX, SERDES_LINK_TX}) {
      (void)AsicControl::GetSerDesInfo(asic, port, side, &count, &type, &core);
      for (unsigned char address = 0; address < 32; ++address)
        (void)AsicControl::ReadSerDesLinkRegister(asic, port, link, side, address, &value, 1);
    }
    SerDesTxFFEMode mode{};
    unsigned char k = 0;
    signed char c[4];
    bool enable = false;
    SerDesTxSlewRate slew{};
    SerDesRxDFEStats stats;
    (void)AsicControl::GetSerDesTxFFE(asic, port, link, &mode, &k, c, c + 1, c + 2, c + 3);
    (void)AsicControl::GetSerDesTxSlew(asic, port, link, &enable, &slew);
    (void)AsicControl::GetSerDesRxDFEStats(asic, port, link, &stats);
    for (int i = 0; i < 3; ++i)
      (void)AsicControl::SetSerDesTxSlew(asic, port, link, true, SLEW_36PS);
  }

  fs::path folder_;
  int traces_ = 0;
};

TEST_P(EveryKey, ReachesTheSwitch) {
  const Row& row = GetParam();
  const std::size_t at = kSwitch.find(row.before);
  ASSERT_NE(at, std::string::npos);
  ASSERT_EQ(kSwitch.find(row.before, at + 1), std::string::npos);
  std::string changed = kSwitch;
  changed.replace(at, row.before.size(), row.after);
  static const std::vector<std::string> first = answersOf(kSwitch);  // for all keys
  const std::vector<std::string> second = answersOf(changed);
  ASSERT_EQ(first.size(), second.size());
  bool differs = false;
  for (std::size_t i = 0; i < first.size(); ++i)
    differs = differs || (first[i] != second[i] && first[i].starts_with(row.answer));
  EXPECT_TRUE(differs) << row.after << "\nchanges no " << row.answer;
}

const std::string kStats0 = "GetSerDesRxDFEStats(0, 0, 0)";
const std::string kStats2 = "GetSerDesRxDFEStats(0, 2, 0)";

INSTANTIATE_TEST_SUITE_P(
    , EveryKey,
    testing::Values(
        Row{"/slots", "slots = 3", "slots = 5", "GetSwitchConfig"},
        Row{"/aux_ports", "aux_ports = 4", "aux_ports = 5", "GetSwitchConfig"},
        Row{"/user_ports", "user_ports = 9", "user_ports = 8", "GetSwitchConfig"},
        Row{"/seed", "seed = 5", "seed = 6", "GetPortCfgSpeed("},
        Row{"/type_names", "\"T3\"", "\"Third\"", "ToString(3)"},
        Row{"/clock", "clock = { kind = \"virtual\", step = 200000 }", "", "GetFrameStatCntrs"},
        Row{"/settings", "power = 60", "power = 61", "GetSerDesTxFFE(0, 3,"},
        Row{"/channels", "[channels.short]", "[channels.short]\na2 = 2", kStats2},
        Row{"/asics", "[[asics]]\n[[asics.cores]]\ncores = 0\ntype = 5\n",
            "[[asics]]\n[[asics.cores]]\ncores = 0\ntype = 1\n", "GetSerDesInfo(1, 0)"},
        Row{"/faults", "code = -70\n", "code = -70\n[[faults]]\noperation = \"GetPortSpeed\"\n", "GetPortSpeed"},
        Row{"Clock/kind", "kind = \"virtual\"", "kind = \"monotonic\"", "GetFrameStatCntrs"},
        Row{"Clock/step", "step = 200000", "step = 400000", "GetFrameStatCntrs"},
        Row{"FibreChannel/power", "power = 150", "power = 151", "GetSerDesTxRateParams(0, 0,"},
        Row{"FibreChannel/ffe", "FFE3", "FFE4", "GetSerDesTxRateParams(0, 0,"},
        Row{"FibreChannel/taps", "-25, 0]", "-25, 1]", "GetSerDesTxRateParams(0, 0,"},
        Row{"FibreChannel/slew", "slew = 36", "slew = 50", "GetSerDesTxRateParams(0, 0,"},
        Row{"FibreChannel/dfe", "DFE3", "DFE5", "GetSerDesRxRateParams(0, 0,"},
        Row{"FibreChannel/pole", "pole = 6", "pole = 5", "GetSerDesRxRateParams(0, 0,"},
        Row{"FibreChannel/peak", "peak = 4", "peak = 5", "GetSerDesRxRateParams(0, 0,"},
        Row{"FibreChannel/amax", "amax = 78", "amax = 79", "GetSerDesRxRateParams(0, 0,"},
        Row{"FibreChannel/raw", "raw = false\npower = 150", "raw = true\npower = 999", "GetSerDesTxRateParams(0, 0,"},
        Row{"Ethernet/power", "power = 6\n", "power = 7\n", "GetSerDesTxRateParams(0, 4,"},
        Row{"Ethernet/pre_emphasis", "pre_emphasis = 2", "pre_emphasis = 3", "GetSerDesTxRateParams(0, 4,"},
        Row{"Ethernet/cdr_mode", "cdr_mode = 1", "cdr_mode = 2", "GetSerDesRxRateParams(0, 4,"},
        Row{"Ethernet/eq_mode", "eq_mode = 3", "eq_mode = 4", "GetSerDesRxRateParams(0, 4,"},
        Row{"Ethernet/raw", "eq_mode = 3", "eq_mode = 99\nraw = true", "GetSerDesRxRateParams(0, 4,"},
        Row{"Number/tx", "5, 6, 7]", "5, 6, 8]", "GetSerDesTxRateParams(0, 3, 3)"},
        Row{"Number/rx", "3, 4, 5]", "3, 4, 6]", "GetSerDesRxRateParams(0, 3, 3)"},
        Row{"Channel/a0", "a0 = 0.1", "a0 = 6", kStats0}, Row{"Channel/a1", "a1 = 0.4", "a1 = 2", kStats0},
        Row{"Channel/a2", "a2 = 0.6", "a2 = 2", kStats0}, Row{"Channel/a4", "a4 = 0.004", "a4 = 0.1", kStats0},
        Row{"Channel/fr4_inches", "fr4_inches = 24", "fr4_inches = 30", kStats0},
        Row{"Channel/board_mm", "board_mm = 20", "board_mm = 200", kStats0},
        Row{"Channel/copper_metres", "copper_metres = 1", "copper_metres = 4", kStats0},
        Row{"Channel/optical_host_inches", "optical_host_inches = 1", "optical_host_inches = 9", kStats0},
        Row{"Channel/connectors", "connectors = 1", "connectors = 6", kStats0},
        Row{"Channel/jitter_ui", "jitter_ui = 0.01", "jitter_ui = 0.08", kStats0},
        Row{"Channel/crosstalk_db", "crosstalk_db = -24", "crosstalk_db = -30", kStats0},
        Row{"Channel/echoes", "echoes = [{ reflection = -0.05, delay_ns = 0.7 }]", "", kStats0},
        Row{"Echo/reflection", "reflection = -0.05", "reflection = 0.2", kStats0},
        Row{"Echo/delay_ns", "delay_ns = 0.7", "delay_ns = 0.3", kStats0},
        Row{"Asic/cores", "cores = 0\ntype = 5", "cores = \"0-1\"\ntype = 5", "GetSerDesInfo(1)"},
        Row{"Asic/ports", "ports = 0\nkind = \"GL\"", "ports = \"0-1\"\nkind = \"GL\"", "GetSerDesInfo(1)"},
        Row{"Core/cores", "cores = 1\n", "cores = 2\n", "GetSerDesInfo(0, 1)"},
        Row{"Core/type", "type = 4", "type = 6", "GetSerDesInfo(0, 3)"},
        Row{"Core/pll_registers", "pll_registers = 5", "pll_registers = 6", "GetSerDesInfo(0, 1)"},
        Row{"Core/rx_registers", "rx_registers = 30", "rx_registers = 29", "GetSerDesInfo(0, 1)"},
        Row{"Core/tx_registers", "tx_registers = 14", "tx_registers = 13", "GetSerDesInfo(0, 1)"},
        Row{"Core/rx_params", "rx_params = 6", "rx_params = 7", "GetSerDesInfo(0, 1)"},
        Row{"Core/tx_params", "tx_params = 8", "tx_params = 9", "GetSerDesInfo(0, 1)"},
        Row{"Core/first_port", "first_port = 9", "first_port = 3", "GetSerDesInfo(0, 1)"},
        Row{"Core/temperature", "temperature = 38", "temperature = 39", "ReadSerDesPLLRegister(0, 1,"},
        Row{"Core/pll_values", "0, 17]", "0, 18]", "ReadSerDesPLLRegister(0, 1,"},
        Row{"Port/ports", "ports = 0\nkind = \"GL\"", "ports = \"0-2\"\nkind = \"GL\"", "GetSerDesInfo(1, 2,"},
        Row{"Port/kind", "ports = 0\nkind = \"GL\"", "ports = 0\nkind = \"XG\"", "GetPortHwConfig"},
        Row{"Port/port_type", "port_type = 7", "port_type = 8", "GetPortHwConfig"},
        Row{"Port/present", "present = true", "present = false", "GetPortHwConfig"},
        Row{"Port/user_port", "user_port = 10", "user_port = 11", "GetPortHwConfig"},
        Row{"Port/links", "\nlinks = 1", "\nlinks = 2", "GetSerDesInfo(0, 0,"},
        Row{"Port/rx_links", "rx_links = 2", "rx_links = 1", "GetSerDesInfo(0, 3,"},
        Row{"Port/tx_links", "tx_links = 2", "tx_links = 1", "GetSerDesInfo(0, 3,"},
        Row{"Port/core", "core = 0\nports", "core = 1\nports", "GetSerDesInfo(0, 0,"},
        Row{"Port/ports_per_core", "ports_per_core = 2", "ports_per_core = 1", "GetSerDesInfo(0, 1,"},
        Row{"Port/rx_core", "rx_core = 1", "rx_core = 2", "GetSerDesInfo(0, 3,"},
        Row{"Port/tx_core", "tx_core = 1", "tx_core = 2", "GetSerDesInfo(0, 3,"},
        Row{"Port/misplaced", "core = 0\nports_per_core = 2\nmisplaced = false", "core = 3\nmisplaced = true",
            "GetSerDesInfo(0, 0,"},
        Row{"Port/media", "\"electrical\"", "\"optical\"", "GetMediaHwFcXmtrType"},
        Row{"Port/media_speeds", "media_speeds = [\"4G\", \"8G\"]", "media_speeds = [\"4G\"]", "GetPortSpeed"},
        Row{"Port/speeds", "speeds = [\"2G\", \"4G\", \"8G\"]", "speeds = [\"2G\", \"4G\"]", "GetPortSpeed"},
        Row{"Port/channel", "channel = \"line\"", "channel = \"short\"", kStats0},
        Row{"Port/far_end", "far_end = \"pair\"", "far_end = \"nothing\"", "GetPortInfo"},
        Row{"Port/partner",
            "partner = { settings = \"fast\", speed = \"AUTO\", speeds = [\"8G\"], sends = true, pattern = 0 }", "",
            "GetPortInfo"},
        Row{"Port/speed", "\nspeed = \"AUTO\"", "\nspeed = \"4G\"", "GetPortCfgSpeed"},
        Row{"Port/sends", "\nsends = true", "\nsends = false", "TxStreamState"},
        Row{"Port/signal_detect_mv", "signal_detect_mv = 50", "signal_detect_mv = 2000", kStats0},
        Row{"Port/load", "load = 100", "load = 10", "GetFrameStatCntrs"},
        Row{"Port/cache", "cache = \"fast\"", "cache = { 4G = \"fast\", 8G = \"other\" }",
            "GetSerDesTxRateParams(0, 0, 4)"},
        Row{"Port/live", "live = \"fast\"", "live = \"other\"", "GetSerDesTxFFE(0, 2,"},
        Row{"Port/tx_values", "0, 77]", "0, 78]", "ReadSerDesLinkRegister(0, 3, 0, 1, 0x03"},
        Row{"Port/rx_values", "38, 70]", "38, 71]", "ReadSerDesLinkRegister(0, 3, 0, 0, 0x03"},
        Row{"Partner/settings", "settings = \"fast\"", "settings = \"other\"", kStats2},
        Row{"Partner/speed", "\"fast\", speed = \"AUTO\"", "\"fast\", speed = \"4G\"", "GetPortInfo"},
        Row{"Partner/speeds", "speeds = [\"8G\"]", "speeds = [\"4G\"]", "GetPortInfo"},
        Row{"Partner/sends", "sends = true, ", "sends = false, ", "GetPortInfo"},
        Row{"Partner/pattern", "pattern = 0", "pattern = 1", "GetPortInfo"},
        Row{"Fault/operation", "WriteSerDesPLLRegister", "ReadSerDesPLLRegister", "WriteSerDesPLLRegister(0, 1,"},
        Row{"Fault/asic", "asic = 0\n", "asic = 1\n", "SetSerDesTxSlew(1, 0, 0,"},
        Row{"Fault/port", "port = 0\nlink", "port = 1\nlink", "SetSerDesTxSlew(0, 1, 0,"},
        Row{"Fault/link", "link = 0", "link = -1", "SetSerDesTxSlew(0, 0, 0,"},
        Row{"Fault/core", "\ncore = 1\n\n", "\ncore = 2\n\n", "WriteSerDesPLLRegister(0, 2,"},
        Row{"Fault/ordinal", "ordinal = 2", "ordinal = 3", "SetSerDesTxSlew(0, 0, 0,"},
        Row{"Fault/always", "always = false", "always = true", "SetSerDesTxSlew(0, 0, 0,"},
        Row{"Fault/probability", "probability = 0.5", "probability = 1", "GetPortCfgSpeed"},
        Row{"Fault/code", "code = -70", "code = -71", "SetSerDesTxSlew(0, 0, 0,"},
        Row{"Fault/answer", "answer = { output = \"mode\", value = 9 }", "", "GetSerDesTxFFE(0, 3,"},
        Row{"Answer/output", "output = \"mode\"", "output = \"k\"", "GetSerDesTxFFE(0, 3,"},
        Row{"Answer/value", "value = 9", "value = 8", "GetSerDesTxFFE(0, 3,"},
        Row{"Answer/text", "\"another\"", "\"one more\"", "ToString"}),
    [](const auto& row) {
      std::string name = row.param.key;
      std::replace(name.begin(), name.end(), '/', '_');
      return name;
    });

}  // namespace
}  // namespace simulator
