// Every key of a description with a value that it does not take: the message names file, line, key and what it takes.
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "simulator/description/description.h"

namespace simulator {
namespace {

struct Row {
  const char* name;
  const char* place;  // where the line goes
  std::string line;
  std::string error;  // behind the file's name and the line
};

void PrintTo(const Row& row, std::ostream* stream) {
  *stream << row.line;
}

std::string rowName(const testing::TestParamInfo<Row>& row) {
  return row.param.name;
}

// The line stands in its section, and after it all that a description needs.
std::string textWith(const Row& row) {
  const std::string place = row.place;
  const std::string core = "[[asics]]\n[[asics.cores]]\ncores = 0\ntype = 2\n";
  const std::string port = "[[asics.ports]]\nports = \"0-1\"\nkind = \"GL\"\n";
  if (place == "top") return row.line + "\n" + core + port;
  if (place == "settings" || place == "channels") return "[" + place + ".x]\n" + row.line + "\n" + core + port;
  if (place == "core") return core + row.line + "\n" + port;
  if (place == "port") return core + port + row.line + "\n";
  return core + port + "[[faults]]\noperation = \"GetPortSpeed\"\n" + row.line + "\n";
}

// Where the last of `line`, which may be several, stands.
unsigned lineOf(const std::string& text, const std::string& line) {
  unsigned number = 1;
  for (const char c : text.substr(0, text.find(line) + line.size()))
    number += c == '\n' ? 1 : 0;
  return number;
}

class DescriptionKeys : public testing::TestWithParam<Row> {};

TEST_P(DescriptionKeys, RefuseWhatTheyDoNotTake) {
  const std::string text = textWith(GetParam());
  try {
    (void)readDescription(text, "some.toml");
    FAIL() << "no error in\n" << text;
  } catch (const DescriptionError& error) {
    EXPECT_EQ(error.what(), "some.toml:" + std::to_string(lineOf(text, GetParam().line)) + ": " + GetParam().error);
  }
}

std::string whole(const std::string& least, const std::string& greatest) {
  return "must be a whole number from " + least + " to " + greatest;
}
const std::string kInt32 = whole("-2147483648", "2147483647");
const std::string kSpeedList = "\"1G\", \"2G\", \"4G\", \"8G\", \"10G\", \"20G\"";
const std::string kPort = "asics[0].ports[0].";
const std::string kCore = "asics[0].cores[0].";
const std::string kUnknown = "unknown key; there are ";
const std::string kRaw = "; for caches, raw = true keeps any number";

INSTANTIATE_TEST_SUITE_P(
    Top, DescriptionKeys,
    testing::Values(Row{"Slots", "top", "slots = 2147483648", "slots: " + kInt32},
                    Row{"UserPorts", "top", "user_ports = 1.0", "user_ports: " + kInt32},
                    Row{"AuxPorts", "top", "aux_ports = true", "aux_ports: " + kInt32},
                    Row{"Seed", "top", "seed = -1", "seed: " + whole("0", "4294967295")},
                    Row{"TypeNames", "top", "type_names = \"A\"", "type_names: must be a list of texts"},
                    Row{"TypeNamesElements", "top", "type_names = [1, 2]", "type_names: must be a list of texts"},
                    Row{"Clock", "top", "clock = \"virtual\"", "clock: must be a table"},
                    Row{"ClockKind", "top", "clock.kind = 1",
                        "clock.kind: \"1\" is not one of \"monotonic\", \"virtual\""},
                    Row{"ClockStep", "top", "clock.step = 0", "clock.step: " + whole("1", "3600000000")},
                    Row{"ClockLongStep", "top", "clock.step = 3600000001", "clock.step: " + whole("1", "3600000000")},
                    Row{"ClockKey", "top", "clock.rate = 1", "clock.rate: " + kUnknown + "kind, step"},
                    Row{"Settings", "top", "settings = 1", "settings: must be a table"},
                    Row{"Channels", "top", "channels = []", "channels: must be a table"},
                    Row{"Faults", "top", "faults = 1", "faults: must be a list of tables"},
                    Row{"FaultsElements", "top", "faults = [1]", "faults: must be a list of tables"}),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    Settings, DescriptionKeys,
    testing::Values(
        Row{"Key", "settings", "colour = 1",
            "settings.x.colour: " + kUnknown + "power, ffe, taps, slew, dfe, pole, peak, amax, raw"},
        Row{"Power", "settings", "power = \"115\"", "settings.x.power: " + kInt32},
        Row{"Slew", "settings", "slew = 37",
            "settings.x.slew: \"37\" is not one of \"24\", \"30\", \"36\", \"50\", \"60\", \"75\", \"100\""},
        Row{"Raw", "settings", "raw = 1", "settings.x.raw: must be true or false"},
        Row{"Ffe", "settings", "ffe = \"FFE5\"",
            "settings.x.ffe: \"FFE5\" is not one of \"FFENone\", \"FFE2\", \"FFE3\", \"FFE4\""},
        Row{"Taps", "settings", "taps = 1",
            "settings.x.taps: must be a list, each a whole number from -2147483648 to 2147483647"},
        Row{"TapsElements", "settings", "taps = [1, 2, 3, 4.5]",
            "settings.x.taps: must be a list, each a whole number from -2147483648 to 2147483647"},
        Row{"Dfe", "settings", "dfe = \"dfe3\"",
            "settings.x.dfe: \"dfe3\" is not one of \"DFE3\", \"DFE5\", \"NONE\", \"DFE1\""},
        Row{"Pole", "settings", "pole = []", "settings.x.pole: " + kInt32},
        Row{"Peak", "settings", "peak = {}", "settings.x.peak: " + kInt32},
        Row{"Amax", "settings", "amax = 1e2", "settings.x.amax: " + kInt32},
        Row{"PreEmphasis", "settings", "pre_emphasis = false", "settings.x.pre_emphasis: " + kInt32},
        Row{"CdrMode", "settings", "cdr_mode = \"\"", "settings.x.cdr_mode: " + kInt32},
        Row{"EqMode", "settings", "eq_mode = 4294967296", "settings.x.eq_mode: " + kInt32},
        Row{"RawNumbers", "settings", "raw = true\npower = 2147483648", "settings.x.power: " + kInt32}),
    rowName);

// Numbers that no SerDes takes.
INSTANTIATE_TEST_SUITE_P(
    SettingsOfNoSerDes, DescriptionKeys,
    testing::Values(
        Row{"Power", "settings", "power = 256", "settings.x.power: no SerDes takes that, but 0 to 255" + kRaw},
        Row{"NegativePower", "settings", "power = -1", "settings.x.power: no SerDes takes that, but 0 to 255" + kRaw},
        Row{"Tap", "settings", "taps = [0, 64, 0, 0]",
            "settings.x.taps: no SerDes takes that, but coefficients from -63 to 63, in sum at most 100" + kRaw},
        Row{"TapSum", "settings", "taps = [-20, 60, -20, 1]",
            "settings.x.taps: no SerDes takes that, but coefficients from -63 to 63, in sum at most 100" + kRaw},
        Row{"Pole", "settings", "pole = 8", "settings.x.pole: no SerDes takes that, but 0 to 7" + kRaw},
        Row{"Peak", "settings", "peak = -1", "settings.x.peak: no SerDes takes that, but 0 to 7" + kRaw},
        Row{"Amax", "settings", "amax = 128", "settings.x.amax: no SerDes takes that, but 0 to 127" + kRaw},
        Row{"EthernetPower", "settings", "pre_emphasis = 15\npower = 16",
            "settings.x.power: no SerDes takes that, but 0 to 15" + kRaw},
        Row{"PreEmphasis", "settings", "pre_emphasis = 16",
            "settings.x.pre_emphasis: no SerDes takes that, but 0 to 15" + kRaw},
        Row{"CdrMode", "settings", "cdr_mode = 4", "settings.x.cdr_mode: no SerDes takes that, but 0 to 3" + kRaw},
        Row{"EqMode", "settings", "eq_mode = 8", "settings.x.eq_mode: no SerDes takes that, but 0 to 7" + kRaw}),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    Channels, DescriptionKeys,
    testing::Values(
        Row{"Key", "channels", "miles = 1",
            "channels.x.miles: " + kUnknown +
                "a0, a1, a2, a4, jitter_ui, crosstalk_db, echoes, fr4_inches, board_mm, "
                "copper_metres, optical_host_inches, connectors"},
        Row{"A0", "channels", "a0 = 1001", "channels.x.a0: must be a number from -1000 to 1000"},
        Row{"A1", "channels", "a1 = \"1\"", "channels.x.a1: must be a number from -1000 to 1000"},
        Row{"A2", "channels", "a2 = inf", "channels.x.a2: must be a number from -1000 to 1000"},
        Row{"A4", "channels", "a4 = -1000.1", "channels.x.a4: must be a number from -1000 to 1000"},
        Row{"JitterUi", "channels", "jitter_ui = 0.6", "channels.x.jitter_ui: must be a number from 0 to 0.5"},
        Row{"CrosstalkDb", "channels", "crosstalk_db = 1", "channels.x.crosstalk_db: must be a number from -100 to 0"},
        Row{"Echoes", "channels", "echoes = {}",
            "channels.x.echoes: must be a list of tables, each begun by [[channels.x.echoes]]"},
        Row{"Reflection", "channels", "echoes = [{ reflection = 2 }]",
            "channels.x.echoes[0].reflection: must be a number from -1 to 1"},
        Row{"DelayNs", "channels", "echoes = [{}, { delay_ns = -1 }]",
            "channels.x.echoes[1].delay_ns: must be a number from 0 to 100"},
        Row{"EchoKey", "channels", "echoes = [{ delay = 1 }]",
            "channels.x.echoes[0].delay: " + kUnknown + "reflection, delay_ns"},
        Row{"Fr4Inches", "channels", "fr4_inches = 201", "channels.x.fr4_inches: must be a number from 0 to 200"},
        Row{"BoardMm", "channels", "board_mm = 5001", "channels.x.board_mm: must be a number from 0 to 5000"},
        Row{"CopperMetres", "channels", "copper_metres = 51",
            "channels.x.copper_metres: must be a number from 0 to 50"},
        Row{"OpticalHostInches", "channels", "optical_host_inches = -1",
            "channels.x.optical_host_inches: must be a number from 0 to 100"},
        Row{"Connectors", "channels", "connectors = 1.5", "channels.x.connectors: " + whole("0", "10")}),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    Cores, DescriptionKeys,
    testing::Values(Row{"PllRegisters", "core", "pll_registers = -1", kCore + "pll_registers: " + whole("0", "32")},
                    Row{"RxRegisters", "core", "rx_registers = \"8\"", kCore + "rx_registers: " + whole("0", "32")},
                    Row{"TxRegisters", "core", "tx_registers = 33", kCore + "tx_registers: " + whole("0", "32")},
                    Row{"RxParams", "core", "rx_params = 256", kCore + "rx_params: " + whole("0", "255")},
                    Row{"TxParams", "core", "tx_params = -1", kCore + "tx_params: " + whole("0", "255")},
                    Row{"FirstPort", "core", "first_port = 65536", kCore + "first_port: " + whole("0", "65535")},
                    Row{"Temperature", "core", "temperature = 126", kCore + "temperature: " + whole("-55", "125")},
                    Row{"Twice", "core", "[[asics.cores]]\ncores = \"0,1-3,2\"",
                        "asics[0].cores[1].cores: names 2 twice"}),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    Ports, DescriptionKeys,
    testing::Values(
        Row{"PortType", "port", "port_type = -1", kPort + "port_type: " + whole("0", "4294967295")},
        Row{"Present", "port", "present = 1", kPort + "present: must be true or false"},
        Row{"UserPort", "port", "user_port = -2", kPort + "user_port: " + whole("-1", "65534")},
        Row{"UserPortRun", "port", "user_port = 65534", kPort + "user_port: the run of user ports ends beyond 65534"},
        Row{"RxLinks", "port", "rx_links = 5", kPort + "rx_links: " + whole("0", "4")},
        Row{"TxLinks", "port", "tx_links = -1", kPort + "tx_links: " + whole("0", "4")},
        Row{"PortsPerCore", "port", "ports_per_core = 0", kPort + "ports_per_core: " + whole("1", "24")},
        Row{"Core", "port", "core = 18", kPort + "core: " + whole("0", "17")},
        Row{"RxCore", "port", "rx_core = -1", kPort + "rx_core: " + whole("0", "17")},
        Row{"TxCore", "port", "tx_core = \"1\"", kPort + "tx_core: " + whole("0", "17")},
        Row{"MediaSpeeds", "port", "media_speeds = \"8G\"", kPort + "media_speeds: must be a list of " + kSpeedList},
        Row{"MediaSpeedsElements", "port", "media_speeds = [\"AUTO\"]",
            kPort + "media_speeds: \"AUTO\" is not one of " + kSpeedList},
        Row{"Speeds", "port", "speeds = [8]", kPort + "speeds: \"8\" is not one of " + kSpeedList},
        Row{"Channel", "port", "channel = 1", kPort + "channel: must be a text in quotes"},
        Row{"FarEnd", "port", "far_end = \"moon\"",
            kPort + "far_end: \"moon\" is not one of \"nothing\", \"loop\", \"pair\""},
        Row{"FarEndPort", "port", "far_end = 24", kPort + "far_end: " + whole("0", "23")},
        Row{"Partner", "port", "partner = \"good\"", kPort + "partner: must be a table"},
        Row{"PartnerKey", "port", "partner = { colour = 1 }",
            kPort + "partner.colour: " + kUnknown + "settings, speed, speeds, sends, pattern"},
        Row{"PartnerSettings", "port", "partner = { settings = \"x\" }",
            kPort + "partner.settings: there is no [settings.x]"},
        Row{"PartnerSpeed", "port", "partner = { speed = \"16G\" }",
            kPort + "partner.speed: \"16G\" is not one of \"AUTO\", " + kSpeedList},
        Row{"PartnerSpeeds", "port", "partner = { speeds = {} }",
            kPort + "partner.speeds: must be a list of " + kSpeedList},
        Row{"PartnerSends", "port", "partner = { sends = \"no\" }", kPort + "partner.sends: must be true or false"},
        Row{"PartnerPattern", "port", "partner = { pattern = 4 }", kPort + "partner.pattern: " + whole("0", "3")},
        Row{"Speed", "port", "speed = 8", kPort + "speed: \"8\" is not one of \"AUTO\", " + kSpeedList},
        Row{"Sends", "port", "sends = 0", kPort + "sends: must be true or false"},
        Row{"Load", "port", "load = 101", kPort + "load: " + whole("0", "100")},
        Row{"SignalDetect", "port", "signal_detect_mv = 2001",
            kPort + "signal_detect_mv: must be a number from 0 to 2000"},
        Row{"Cache", "port", "cache = 1", kPort + "cache: must be a table"},
        Row{"CacheOfASpeed", "port", "cache = { 8G = \"x\" }", kPort + "cache.8G: there is no [settings.x]"},
        Row{"Live", "port", "live = {}", kPort + "live: must be a text in quotes"},
        Row{"Twice", "port", "[[asics.ports]]\nports = \"0-1,1\"", "asics[0].ports[1].ports: names 1 twice"}),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    Faults, DescriptionKeys,
    testing::Values(
        Row{"Key", "fault", "colour = 1",
            "faults[0].colour: " + kUnknown +
                "operation, asic, port, link, core, ordinal, always, probability, code, answer"},
        Row{"Asic", "fault", "asic = 1", "faults[0].asic: " + whole("0", "0")},
        Row{"Port", "fault", "port = 2", "faults[0].port: " + whole("0", "1")},
        Row{"Link", "fault", "[[faults]]\noperation = \"SetSerDesTxFFE\"\nlink = 1",
            "faults[1].link: " + whole("-1", "0")},
        Row{"Core", "fault", "[[faults]]\noperation = \"ReadSerDesPLLRegister\"\ncore = 1",
            "faults[1].core: " + whole("0", "0")},
        Row{"Ordinal", "fault", "ordinal = 0", "faults[0].ordinal: " + whole("1", "4294967295")},
        Row{"Always", "fault", "always = 1", "faults[0].always: must be true or false"},
        Row{"Probability", "fault", "probability = 1.5", "faults[0].probability: must be a number from 1e-06 to 1"},
        Row{"NoProbability", "fault", "probability = 0", "faults[0].probability: must be a number from 1e-06 to 1"},
        Row{"Code", "fault", "code = 1", "faults[0].code: " + whole("-2147483648", "-1")},
        Row{"Answer", "fault", "answer = 1", "faults[0].answer: must be a table"},
        Row{"AnswerOutput", "fault", "answer = {}", "faults[0].answer.output: must be one of: speed"},
        Row{"AnswerValue", "fault", "answer = { output = \"speed\" }", "faults[0].answer.value: is missing"},
        Row{"AnswerOfAnotherKind", "fault", "answer = { output = \"speed\", value = \"x\" }",
            "faults[0].answer.value: " + whole("-9223372036854775808", "9223372036854775807")},
        Row{"AnswerKey", "fault", "answer = { output = \"speed\", value = 1, text = \"\" }",
            "faults[0].answer.text: this output is a value"},
        Row{"LinkOfAPort", "fault", "link = 0", "faults[0].link: the operation names no link, but asic and port"},
        Row{"CoreOfAPort", "fault", "core = 0", "faults[0].core: the operation names no core, but asic and port"},
        Row{"AnswerUnknownKey", "fault", "answer = { output = \"speed\", values = 1 }",
            "faults[0].answer.values: " + kUnknown + "output, value, text"},
        Row{"NameWithValue", "fault", "[[faults]]\noperation = \"ToString\"\nanswer = { output = \"name\", value = 1 }",
            "faults[1].answer.value: this output is a text"},
        Row{"NameWithoutText", "fault", "[[faults]]\noperation = \"ToString\"\nanswer.output = \"name\"",
            "faults[1].answer.text: is missing"},
        Row{"AsicOfTheSwitch", "fault", "[[faults]]\noperation = \"GetSwitchConfig\"\nasic = 0",
            "faults[1].asic: the operation names no asic, nor anything else"},
        Row{"PortOfACore", "fault", "[[faults]]\noperation = \"ReadSerDesPLLRegister\"\nport = 0",
            "faults[1].port: the operation names no port, but asic and core"}),
    rowName);

TEST(DescriptionKey, OfTheWholeThatIsNoListIsRefused) {
  try {
    (void)readDescription("asics = 1\n", "some.toml");
    FAIL();
  } catch (const DescriptionError& error) {
    EXPECT_STREQ(error.what(), "some.toml:1: asics: must be a list of tables");
  }
}

// What the TOML library finds wrong: the words are its own, and may differ between its versions.
TEST(DescriptionKey, ThatIsNoTomlIsRefusedWithItsLine) {
  for (const char* line : {"a = ", "a = 1\na = 2", "[x]\n[x]", "a = \"open", "= 1", "a = 07", "a = \"\xff\"", "a b"}) {
    const std::string text = "slots = 1\n" + std::string(line) + "\n";
    try {
      (void)readDescription(text, "some.toml");
      FAIL() << line;
    } catch (const DescriptionError& error) {
      const std::string what = error.what();
      EXPECT_TRUE(what.starts_with("some.toml:2: ") || what.starts_with("some.toml:3: ")) << what;
      EXPECT_GT(what.size(), 20U) << what;
    }
  }
}

}  // namespace
}  // namespace simulator
