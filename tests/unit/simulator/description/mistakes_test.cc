#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "simulator/description/description.h"

namespace simulator {
namespace {

const std::string kOnePort = R"([[asics]]
[[asics.cores]]
cores = 0
type = 2
[[asics.ports]]
ports = 0
kind = "GL"
)";

struct Mistake {
  const char* name;
  std::string text;
  std::string error;
};

void PrintTo(const Mistake& mistake, std::ostream* stream) {
  *stream << mistake.text;
}

std::string mistakeName(const testing::TestParamInfo<Mistake>& mistake) {
  return mistake.param.name;
}

std::string errorOf(const std::string& text) {
  try {
    (void)readDescription(text, "some.toml");
  } catch (const DescriptionError& error) {
    return error.what();
  }
  return "no error";
}

const std::string kUnknown = "unknown key; there are ";
const std::string kCoreKeys =
    "cores, type, pll_registers, rx_registers, tx_registers, rx_params, tx_params, first_port, temperature, pll_values";
const std::string kPortKeys =
    "ports, kind, port_type, present, user_port, links, rx_links, tx_links, ports_per_core, core, rx_core, tx_core, "
    "misplaced, media, media_speeds, speeds, channel, far_end, partner, speed, sends, signal_detect_mv, load, cache, "
    "live, tx_values, rx_values";
const std::string kTopKeys = "slots, aux_ports, seed, type_names, clock, settings, channels, asics, user_ports, faults";

std::string zeros(int count) {
  std::string list = "[0";
  for (int i = 1; i < count; ++i)
    list += ", 0";
  return list + "]";
}

class DescriptionMistakes : public testing::TestWithParam<Mistake> {};

TEST_P(DescriptionMistakes, IsNamedWithFileLineAndKey) {
  EXPECT_EQ(errorOf(GetParam().text), GetParam().error);
}

const std::string kCore = "[[asics]]\n[[asics.cores]]\ncores = 0\n";
const std::string kCoreAndPort = "[[asics]]\n[[asics.cores]]\ncores = 0\ntype = 2\n[[asics.ports]]\n";

INSTANTIATE_TEST_SUITE_P(
    , DescriptionMistakes,
    testing::Values(
        Mistake{"Nothing", "", "some.toml:1: asics: there must be one or two"},
        Mistake{"ThreeAsics", "[[asics]]\n[[asics]]\n[[asics]]\n", "some.toml:1: asics: there must be one or two"},
        Mistake{"UnknownKey", "colour = 1\n" + kOnePort, "some.toml:1: colour: " + kUnknown + kTopKeys},
        Mistake{"UnknownPortKey", kOnePort + "colour = 1\n",
                "some.toml:8: asics[0].ports[0].colour: " + kUnknown + kPortKeys},
        Mistake{"UnknownCoreKey", kCore + "type = 2\ncolour = 1\n",
                "some.toml:5: asics[0].cores[0].colour: " + kUnknown + kCoreKeys},
        Mistake{"UnknownCacheKey", kOnePort + "cache = { 9G = \"x\" }\n",
                "some.toml:8: asics[0].ports[0].cache.9G: " + kUnknown + "1G, 2G, 4G, 8G, 10G, 20G"},
        Mistake{"WrongKind", "slots = \"one\"\n" + kOnePort,
                "some.toml:1: slots: must be a whole number from -2147483648 to 2147483647"},
        Mistake{"NoTypeOfCore", kCore, "some.toml:2: asics[0].cores[0].type: the first entry of core 0 needs it"},
        Mistake{"NoSuchType", kCore + "type = 7\n",
                "some.toml:4: asics[0].cores[0].type: must be a whole number from 0 to 6"},
        Mistake{"TooManyRegisters", kCore + "type = 2\nrx_registers = 33\n",
                "some.toml:5: asics[0].cores[0].rx_registers: must be a whole number from 0 to 32"},
        Mistake{"ValuesOfALinkThatIsNot", kOnePort + "tx_values = [[], [1]]\n",
                "some.toml:8: asics[0].ports[0].tx_values: has values of 2 links, and the port has 1"},
        Mistake{"ValuesThatAreNoLists", kOnePort + "rx_values = [1]\n",
                "some.toml:8: asics[0].ports[0].rx_values: must be a list of lists"},
        Mistake{"ValueOutOfRange", kCore + "type = 2\npll_values = [65536]\n",
                "some.toml:5: asics[0].cores[0].pll_values: must be a list, each a whole number from 0 to 65535"},
        Mistake{"ValuesOfTooManyRegisters", kCore + "type = 2\npll_values = " + zeros(33) + "\n",
                "some.toml:5: asics[0].cores[0].pll_values: has more than 32 values"},
        Mistake{"NumbersOfOneSide", "[settings.a]\ntx = [1, 2, 3, 4, 5, 6, 7]\n" + kOnePort,
                "some.toml:1: settings.a.rx: goes with tx"},
        Mistake{"TooFewNumbers", "[settings.a]\ntx = [1]\nrx = [1, 2, 3, 4, 5]\n" + kOnePort,
                "some.toml:2: settings.a.tx: must be 7 numbers"},
        Mistake{"CoreOutOfReach", "[[asics]]\n[[asics.cores]]\ncores = 18\n",
                "some.toml:3: asics[0].cores[0].cores: must be a number or ranges such as \"0-7,9\", none above 17"},
        Mistake{"CoresNotNamed", "[[asics]]\n[[asics.cores]]\ntype = 2\n",
                "some.toml:2: asics[0].cores[0].cores: says which cores the entry is about, and is missing"},
        Mistake{"CoreLeftOut", "[[asics]]\n[[asics.cores]]\ncores = 1\ntype = 2\n",
                "some.toml:2: asics[0].cores: no entry for core 0"},
        Mistake{"NoKindOfPort", kCoreAndPort + "ports = 0\n",
                "some.toml:5: asics[0].ports[0].kind: the first entry of port 0 needs it"},
        Mistake{"NoSuchKind", kCoreAndPort + "ports = 0\nkind = \"FG\"\n",
                "some.toml:7: asics[0].ports[0].kind: \"FG\" is not one of \"GL\", \"XG\", \"EXG\""},
        Mistake{"PortOutOfReach", kCoreAndPort + "ports = \"20-24\"\nkind = \"GL\"\n",
                "some.toml:6: asics[0].ports[0].ports: must be a number or ranges such as \"0-7,9\", none above 23"},
        Mistake{"RangeBackwards", kCoreAndPort + "ports = \"5-2\"\nkind = \"GL\"\n",
                "some.toml:6: asics[0].ports[0].ports: must be a number or ranges such as \"0-7,9\", none above 23"},
        Mistake{"RangeWithoutEnd", kCoreAndPort + "ports = \"1-\"\nkind = \"GL\"\n",
                "some.toml:6: asics[0].ports[0].ports: must be a number or ranges such as \"0-7,9\", none above 23"},
        Mistake{"RangeWithoutStart", kCoreAndPort + "ports = \"-1\"\nkind = \"GL\"\n",
                "some.toml:6: asics[0].ports[0].ports: must be a number or ranges such as \"0-7,9\", none above 23"},
        Mistake{"RangeAndMore", kCoreAndPort + "ports = \"0-1x\"\nkind = \"GL\"\n",
                "some.toml:6: asics[0].ports[0].ports: must be a number or ranges such as \"0-7,9\", none above 23"},
        Mistake{"NumberAndMore", kCoreAndPort + "ports = \"1x\"\nkind = \"GL\"\n",
                "some.toml:6: asics[0].ports[0].ports: must be a number or ranges such as \"0-7,9\", none above 23"},
        Mistake{"BlankInARange", kCoreAndPort + "ports = \"0 -1\"\nkind = \"GL\"\n",
                "some.toml:6: asics[0].ports[0].ports: must be a number or ranges such as \"0-7,9\", none above 23"},
        Mistake{"EmptyRange", kCoreAndPort + "ports = \"\"\nkind = \"GL\"\n",
                "some.toml:6: asics[0].ports[0].ports: must be a number or ranges such as \"0-7,9\", none above 23"},
        Mistake{"NoNumberBelowZero", kCoreAndPort + "ports = -1\nkind = \"GL\"\n",
                "some.toml:6: asics[0].ports[0].ports: must be a number or ranges such as \"0-7,9\", none above 23"},
        Mistake{"NumberTooLarge", kCoreAndPort + "ports = 24\nkind = \"GL\"\n",
                "some.toml:6: asics[0].ports[0].ports: must be a number or ranges such as \"0-7,9\", none above 23"},
        Mistake{"NeitherNumberNorRange", kCoreAndPort + "ports = 1.5\nkind = \"GL\"\n",
                "some.toml:6: asics[0].ports[0].ports: must be a number or ranges such as \"0-7,9\", none above 23"},
        Mistake{"PortLeftOut", kCoreAndPort + "ports = 1\nkind = \"GL\"\n",
                "some.toml:5: asics[0].ports: no entry for port 0"},
        Mistake{"NoSuchCore", kOnePort + "core = 1\n",
                "some.toml:8: asics[0].ports[0].core: port 0 is on core 1, which has no entry"},
        Mistake{"TooManyLinks", kOnePort + "links = 5\n",
                "some.toml:8: asics[0].ports[0].links: must be a whole number from 0 to 4"},
        Mistake{"NoSuchMedia", kOnePort + "media = \"string\"\n",
                "some.toml:8: asics[0].ports[0].media: \"string\" is not one of \"none\", \"not applicable\", "
                "\"unknown\", \"optical\", \"electrical\", \"copper passive\", \"copper active\", \"10G ethernet\", "
                "\"1G ethernet\""},
        Mistake{"SpeedThatThePortLacks", kOnePort + "speed = \"20G\"\n",
                "some.toml:8: asics[0].ports[0].speed: is not among the speeds of port 0"},
        Mistake{"NoSuchChannel", kOnePort + "channel = \"air\"\n",
                "some.toml:8: asics[0].ports[0].channel: there is no [channels.air]"},
        Mistake{"EthernetSettings", "settings.e = { eq_mode = 1 }\n" + kOnePort + "cache = \"e\"\n",
                "some.toml:9: asics[0].ports[0].cache: \"e\" is for ethernet ports"},
        Mistake{"FibreChannelSettings",
                "settings.f = {}\n" + kCoreAndPort + "ports = 0\nkind = \"EXG\"\nmisplaced = true\nlive = \"f\"\n",
                "some.toml:10: asics[0].ports[0].live: \"f\" is for fibre-channel ports"},
        Mistake{"NoSuchSettings", kOnePort + "live = \"x\"\n",
                "some.toml:8: asics[0].ports[0].live: there is no [settings.x]"},
        Mistake{"TwoFarEnds", kOnePort + "far_end = \"loop\"\npartner = {}\n",
                "some.toml:8: asics[0].ports[0].far_end: says where a cable ends, and so does partner"},
        Mistake{
            "CableWithOneEnd", kOnePort + "far_end = \"pair\"\n",
            "some.toml:8: asics[0].ports[0].far_end: the cable of port 0 leads to port 1, which does not lead back"},
        Mistake{"UserPortsOutOfReach", kOnePort + "user_port = 65535\n",
                "some.toml:8: asics[0].ports[0].user_port: must be a whole number from -1 to 65534"},
        Mistake{"NameTooLong", "type_names = [\"\", \"\", \"\", \"\", \"\", \"\", \"twenty characters...\"]\n",
                "some.toml:1: type_names: \"twenty characters...\" is longer than 19 characters"},
        Mistake{"NamesMissing", "type_names = [\"\"]\n",
                "some.toml:1: type_names: must be seven names, one for each SerDes type"},
        Mistake{"ThreeTaps", "[settings.x]\ntaps = [1, 2, 3]\n",
                "some.toml:2: settings.x.taps: must be the four coefficients c0 to c3"},
        Mistake{"TapsOfEthernet", "[settings.x]\npre_emphasis = 1\ntaps = [1, 2, 3, 4]\n",
                "some.toml:3: settings.x.taps: ethernet settings take no taps, and pre_emphasis makes these ethernet "
                "settings"},
        Mistake{"SettingsNotATable", "settings.x = 1\n", "some.toml:1: settings.x: must be a table"},
        Mistake{"ChannelOutOfRange", "[channels.x]\nfr4_inches = -1\n",
                "some.toml:2: channels.x.fr4_inches: must be a number from 0 to 200"},
        Mistake{"NotANumber", "[channels.x]\na1 = nan\n",
                "some.toml:2: channels.x.a1: must be a number from -1000 to 1000"},
        Mistake{"EchoThatTheLowestSpeedHasRoomFor",
                "[channels.x]\nechoes = [{ reflection = 0.1, delay_ns = 93.5 }]\n" + kCoreAndPort +
                    "ports = 0\nkind = \"GL\"\nspeeds = [\"8G\", \"10G\"]\n" + "channel = \"x\"\n",
                "no error"},
        Mistake{"EchoTooLateForTheOnlySpeed",
                "[channels.x]\nechoes = [{ reflection = 0.1, delay_ns = 93.5 }]\n" + kCoreAndPort +
                    "ports = 0\nkind = \"GL\"\nspeeds = [\"10G\"]\n" + "channel = \"x\"\n",
                "some.toml:11: asics[0].ports[0].channel: has an echo that comes later than the 91 ns that port 0 can "
                "have at its lowest speed"},
        Mistake{"EchoesNotTables", "[channels.x]\nechoes = [1]\n",
                "some.toml:2: channels.x.echoes: must be a list of tables"},
        Mistake{"ClockOfNoKind", "clock.kind = \"atomic\"\n" + kOnePort,
                "some.toml:1: clock.kind: \"atomic\" is not one of \"monotonic\", \"virtual\""},
        Mistake{"FaultOfNothing", kOnePort + "[[faults]]\ncode = -1\n", "some.toml:8: faults[0].operation: is missing"},
        Mistake{"FaultOfNoOperation", kOnePort + "[[faults]]\noperation = \"GetSerDesInfo\"\n",
                "some.toml:9: faults[0].operation: there is no operation \"GetSerDesInfo\""},
        Mistake{"FaultThatSucceeds", kOnePort + "[[faults]]\noperation = \"AsicCtlOpen\"\ncode = 0\n",
                "some.toml:10: faults[0].code: must be a whole number from -2147483648 to -1"},
        Mistake{"FaultWithBoth",
                kOnePort + "[[faults]]\noperation = \"GetPortSpeed\"\ncode = -1\nanswer.output = \"speed\"\n",
                "some.toml:11: faults[0].answer: a fault has either a code or an answer"},
        Mistake{"AnswerOfNoOutput",
                kOnePort + "[[faults]]\noperation = \"GetSerDesTxSlew\"\nanswer = { output = \"x\", value = 1 }\n",
                "some.toml:10: faults[0].answer.output: must be one of: enable slew"},
        Mistake{"AnswerOfASet", kOnePort + "[[faults]]\noperation = \"SetSerDesTxFFE\"\nanswer = { output = \"k\" }\n",
                "some.toml:10: faults[0].answer.output: the operation has no outputs"}),
    mistakeName);

// What is spelt wrong is the mistake, and not what is missing for it.
INSTANTIATE_TEST_SUITE_P(
    Misspelt, DescriptionMistakes,
    testing::Values(Mistake{"Asics", "[[asic]]\n", "some.toml:1: asic: " + kUnknown + kTopKeys},
                    Mistake{"ChannelsOfAPort", "channel.x = {}\n" + kOnePort + "channel = \"x\"\n",
                            "some.toml:1: channel: " + kUnknown + kTopKeys},
                    Mistake{"CoresOfAPort",
                            "[[asics]]\n[[asics.core]]\ncores = 0\n[[asics.ports]]\nports = 0\nkind = \"GL\"\n",
                            "some.toml:2: asics[0].core: " + kUnknown + "cores, ports"},
                    Mistake{"Cores", "[[asics]]\n[[asics.cores]]\ncore = 0\ntype = 2\n",
                            "some.toml:3: asics[0].cores[0].core: " + kUnknown + kCoreKeys},
                    Mistake{"Type", kCore + "typ = 2\n", "some.toml:4: asics[0].cores[0].typ: " + kUnknown + kCoreKeys},
                    Mistake{"Ports", kCoreAndPort + "port = 0\nkind = \"GL\"\n",
                            "some.toml:6: asics[0].ports[0].port: " + kUnknown + kPortKeys},
                    Mistake{"Kind", kCoreAndPort + "ports = 0\nlive = \"x\"\nknd = \"GL\"\n",
                            "some.toml:8: asics[0].ports[0].knd: " + kUnknown + kPortKeys},
                    Mistake{"Operation", kOnePort + "[[faults]]\noperatoin = \"ToString\"\nanswer = {}\n",
                            "some.toml:9: faults[0].operatoin: " + kUnknown +
                                "operation, asic, port, link, core, ordinal, always, probability, code, answer"},
                    Mistake{"Output", kOnePort + "[[faults]]\noperation = \"ToString\"\nanswer = { outputs = 1 }\n",
                            "some.toml:10: faults[0].answer.outputs: " + kUnknown + "output, value, text"}),
    mistakeName);

INSTANTIATE_TEST_SUITE_P(
    TableForAList, DescriptionMistakes,
    testing::Values(Mistake{"Asics", "[asics]\n",
                            "some.toml:1: asics: must be a list of tables, each begun by [[asics]]"},
                    Mistake{"Cores", "[[asics]]\n[asics.cores]\ncores = 0\n",
                            "some.toml:2: asics[0].cores: must be a list of tables, each begun by [[asics.cores]]"},
                    Mistake{"Ports", kCore + "type = 2\n[asics.ports]\nports = 0\n",
                            "some.toml:5: asics[0].ports: must be a list of tables, each begun by [[asics.ports]]"},
                    Mistake{"Faults", kOnePort + "[faults]\n",
                            "some.toml:8: faults: must be a list of tables, each begun by [[faults]]"}),
    mistakeName);

// A core of the type, a port of the kind on it, and settings that the port uses.
std::string portWith(unsigned type, const std::string& kind, const std::string& settings, const std::string& use) {
  return "settings.x = { " + settings + " }\n[[asics]]\n[[asics.cores]]\ncores = 0\ntype = " + std::to_string(type) +
         "\n[[asics.ports]]\nports = 0\nkind = \"" + kind + "\"\n" + use + "\n";
}

INSTANTIATE_TEST_SUITE_P(
    OfTheSerDes, DescriptionMistakes,
    testing::Values(
        Mistake{"FfeMode", portWith(3, "XG", "ffe = \"FFE4\"", "cache = \"x\""),
                "some.toml:9: asics[0].ports[0].cache: of \"x\", SerDes type 3 does not take the ffe, but \"FFENone\", "
                "\"FFE2\", \"FFE3\""},
        Mistake{"Taps", portWith(0, "GL", "taps = [-1, 60, 0, 0]", "cache = { 2G = \"x\" }"),
                "some.toml:9: asics[0].ports[0].cache.2G: of \"x\", SerDes type 0 does not take the taps, but "
                "coefficients from -63 to 63, in sum at most 100, no c0, no c3"},
        Mistake{"DfeMode", portWith(1, "GL", "dfe = \"DFE5\"", "live = \"x\""),
                "some.toml:9: asics[0].ports[0].live: of \"x\", SerDes type 1 does not take the dfe, but \"DFE3\", "
                "\"NONE\", \"DFE1\""},
        Mistake{"Partner", portWith(3, "XG", "ffe = \"FFE4\"", "partner.settings = \"x\""),
                "some.toml:9: asics[0].ports[0].partner.settings: of \"x\", SerDes type 3 does not take the ffe, but "
                "\"FFENone\", \"FFE2\", \"FFE3\""},
        Mistake{"ReceiveSideOnItsOwnCore",
                portWith(2, "GL", "ffe = \"FFE4\", dfe = \"DFE5\"",
                         "rx_core = 1\nlive = \"x\"\n[[asics.cores]]\ncores = 1\ntype = 1"),
                "some.toml:10: asics[0].ports[0].live: of \"x\", SerDes type 1 does not take the dfe, but \"DFE3\", "
                "\"NONE\", \"DFE1\""},
        Mistake{"EthernetPort", portWith(2, "EXG", "eq_mode = 1", ""),
                "some.toml:8: asics[0].ports[0].kind: port 0 is on core 0, whose SerDes type 2 serves GL and XG ports "
                "only; misplaced = true allows it"},
        Mistake{"FibreChannelPort", portWith(6, "XG", "", "core = 0"),
                "some.toml:9: asics[0].ports[0].core: port 0 is on core 0, whose SerDes type 6 serves EXG ports only; "
                "misplaced = true allows it"},
        Mistake{"KindThatChangedWithCacheAndPartner",
                portWith(2, "GL", "",
                         "cache = \"x\"\npartner.settings = \"x\"\n"
                         "[[asics.ports]]\nports = 0\nkind = \"EXG\"\nmisplaced = true"),
                "no error"},
        Mistake{"KindThatChanged",
                portWith(2, "GL", "", "live = \"x\"\n[[asics.ports]]\nports = 0\nkind = \"EXG\"\nmisplaced = true"),
                "some.toml:9: asics[0].ports[0].live: \"x\" is for fibre-channel ports"}),
    mistakeName);

INSTANTIATE_TEST_SUITE_P(
    UserPortNamedTwice, DescriptionMistakes,
    testing::Values(
        Mistake{
            "OnOneAsic", kOnePort + "user_port = 4\n[[asics.ports]]\nports = \"1-2\"\nkind = \"GL\"\nuser_port = 3\n",
            "some.toml:12: asics[0].ports[1].user_port: user port 4 of port 2 of ASIC 0 is that of port 0 of ASIC 0 "
            "too"},
        Mistake{
            "OnTwoAsics", kOnePort + "user_port = 7\n" + kOnePort + "user_port = 7\n",
            "some.toml:16: asics[1].ports[0].user_port: user port 7 of port 0 of ASIC 1 is that of port 0 of ASIC 0 "
            "too"}),
    mistakeName);

const std::string kAlways = "[[faults]]\noperation = \"SetSerDesTxFFE\"\nalways = true\n";
const std::string kOneLink = "[[faults]]\noperation = \"SetSerDesTxFFE\"\nasic = 0\nport = 0\nlink = 0\nordinal = 2\n";
const std::string kHidden = ": faults[1].operation: never strikes: faults[0] takes all these calls";

INSTANTIATE_TEST_SUITE_P(
    FaultThatNeverStrikes, DescriptionMistakes,
    testing::Values(
        Mistake{"BehindAWiderOne", kOnePort + kAlways + kOneLink, "some.toml:12" + kHidden},
        Mistake{"BehindAnEarlierOrdinal", kOnePort + kAlways + "ordinal = 2\n" + kOneLink, "some.toml:13" + kHidden},
        Mistake{"ButBeforeALaterOrdinal", kOnePort + kAlways + "ordinal = 3\n" + kOneLink, "no error"},
        Mistake{"ButBesideARareOne", kOnePort + kAlways + "probability = 0.5\n" + kOneLink, "no error"},
        Mistake{"ButBesideOneOfOtherLinks", kOnePort + kAlways + "link = -1\n" + kOneLink, "no error"},
        Mistake{"ButBehindOneThatStrikesOnce", kOnePort + "[[faults]]\noperation = \"SetSerDesTxFFE\"\n" + kOneLink,
                "no error"},
        Mistake{"ButBesideOneOfAnotherOperation",
                kOnePort + "[[faults]]\noperation = \"GetSerDesTxFFE\"\nalways = true\n" + kOneLink, "no error"},
        Mistake{"OnAPortOfTheOtherAsic",
                kOnePort + "[[asics]]\n[[faults]]\noperation = \"GetPortSpeed\"\nasic = 1\nport = 0\n",
                "some.toml:12: faults[0].port: there is no port"},
        Mistake{"OnALinkOfAnotherPort",
                kOnePort + "[[asics.ports]]\nports = 1\nkind = \"GL\"\nlinks = 4\n[[faults]]\n"
                           "operation = \"GetSerDesRxDFE\"\nport = 0\nlink = 1\n",
                "some.toml:15: faults[0].link: must be a whole number from -1 to 0"},
        Mistake{"OnALinkOfAnyPort",
                kOnePort + "[[asics.ports]]\nports = 1\nkind = \"GL\"\nrx_links = 4\n[[faults]]\n"
                           "operation = \"GetSerDesRxDFE\"\nlink = 3\n",
                "no error"}),
    mistakeName);

const std::string kNoKeyOrValue = ": a key or a value is missing, or is not one";
const std::string kOutsideOfQuotes = ": a character beyond ASCII outside of quotes";
const std::string kInTripleQuotes = ": a character beyond ASCII in triple quotes";

// The library asserts that there are no such texts, or takes what they lead to for unreachable.
INSTANTIATE_TEST_SUITE_P(
    TextThatTheLibraryCannotBear, DescriptionMistakes,
    testing::Values(Mistake{"HeadWithoutAKey", "slots = 1\n[[=x]]\n", "some.toml:2" + kNoKeyOrValue},
                    Mistake{"HeadOfOneTable", "slots = 1\n\n[+]\na = 1\n", "some.toml:3" + kNoKeyOrValue},
                    Mistake{"BraceInAList", "slots = 1\nx = [\n1,}\n", "some.toml:3" + kNoKeyOrValue},
                    Mistake{"DateAndADigit", "x = 1979-05-27 0\n", "some.toml:1" + kNoKeyOrValue},
                    Mistake{"HeadBeyondAscii", "slots = 1\n[\u00e9]\n", "some.toml:2" + kOutsideOfQuotes},
                    Mistake{"KeyBeyondAscii", "\u2c7f = 1\n", "some.toml:1" + kOutsideOfQuotes},
                    Mistake{"BehindAKey", "a\ufb27 = 1\n", "some.toml:1" + kOutsideOfQuotes},
                    Mistake{"BehindAText", "a = \"\\\"#\"\u00e9\n", "some.toml:1" + kOutsideOfQuotes},
                    Mistake{"BehindALiteral", "a = '\\'\u00e9\n", "some.toml:1" + kOutsideOfQuotes},
                    Mistake{"BehindAnOpenText", "a = \"#\n\u00e9", "some.toml:2" + kOutsideOfQuotes},
                    Mistake{"BehindAnEmptyText", "a = \"\"\u00e9", "some.toml:1" + kOutsideOfQuotes},
                    Mistake{"RightBehindLines", "a = \"\"\"x\"\"\"\u00e9", "some.toml:1" + kOutsideOfQuotes},
                    Mistake{"BehindLines", "a = '''\n\u00e9'''''\u00e9", "some.toml:2" + kOutsideOfQuotes},
                    Mistake{"NoCharacter", "\n\x80", "some.toml:2" + kOutsideOfQuotes},
                    Mistake{"InLines", "a = \"\"\"\\\n \u00e9\"\"\"", "some.toml:2" + kInTripleQuotes},
                    Mistake{"EscapedInLines", "a = \"\"\"\\\u00e9\"\"\"", "some.toml:1" + kInTripleQuotes},
                    Mistake{"LowestEscapedInLines", "a = \"\"\"\\\x80\"\"\"", "some.toml:1" + kInTripleQuotes},
                    Mistake{"KeyOfAsManyPartsAsMayBe",
                            "a.a.a.a.a.a.a.a.a.a.a.a.a.a.a.a.a = 1.5\nb.a.a.a.a.a.a.a.a.a.a.a.a.a.a.a.a = 1.5\n",
                            "some.toml:1: a: " + kUnknown + kTopKeys},
                    Mistake{"KeyOfManyParts", "a.a.a.a.a.a.a.a.a.a.a.a.a.a.a.a.a.a = 1\n",
                            "some.toml:1: a key of too many parts"}),
    mistakeName);

TEST(DescriptionValues, MayBeThoseOfAllRegisters) {
  EXPECT_EQ(errorOf(kOnePort + "rx_values = [" + zeros(32) + "]\n"), "no error");
}

TEST(DescriptionText, MayHaveAnyCharacterInQuotesAndRemarks) {
  const std::string text =
      "# \u00e9 \" ' [[=\n"
      "type_names = [\"\u00e9\", '\u00e9', \"\\\"\u00e9#\", '#\"', \"\"\"a\"\"\"\", ''''\u00e9\n\u00e9''''', \"\"] # "
      "\u2c7f\n";
  const std::array<std::string, kSerDesTypes> names = {
      "\u00e9", "\u00e9", "\"\u00e9#", "#\"", "a\"", "'\u00e9\n\u00e9''", ""};
  for (const std::string byteOrderMark : {"", "\xef\xbb\xbf"})
    EXPECT_EQ(readDescription(byteOrderMark + text + kOnePort, "some.toml").typeNames, names);
}

TEST(DescriptionText, MayHaveManyPointsButNotInOneKey) {
  std::string heads;
  std::string fractions;
  for (int i = 0; i < 20; ++i) {
    heads += "[channels.c" + std::to_string(i) + "] # of no use\n";
    fractions += "0.5, ";
  }
  EXPECT_EQ(errorOf(kOnePort + heads), "no error");
  EXPECT_EQ(errorOf("type_names = [" + fractions + "]\n"), "some.toml:1: type_names: must be a list of texts");
}

// The rest of the message is the TOML library's.
TEST(DescriptionMistake, ThatIsNotTomlIsNamedWithFileAndLine) {
  EXPECT_EQ(errorOf("slots = 1\na = = 1\n").substr(0, 13), "some.toml:2: ");
  for (const std::string end : {"\"\\", "\"\"\"a", "'''a'''", "\"\"\"a\"\"\"\"\"\"\u00e9\""}) {
    EXPECT_EQ(errorOf("a = " + end).substr(0, 13), "some.toml:1: ") << end;
    EXPECT_EQ(errorOf("a = " + end).find(kOutsideOfQuotes), std::string::npos) << end;
  }
}

}  // namespace
}  // namespace simulator
