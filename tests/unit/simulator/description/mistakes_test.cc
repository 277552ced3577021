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
        Mistake{"UnknownKey", "colour = 1\n" + kOnePort, "some.toml:1: colour: unknown key"},
        Mistake{"UnknownPortKey", kOnePort + "colour = 1\n", "some.toml:8: asics[0].ports[0].colour: unknown key"},
        Mistake{"UnknownCoreKey", kCore + "type = 2\ncolour = 1\n",
                "some.toml:5: asics[0].cores[0].colour: unknown key"},
        Mistake{"UnknownCacheKey", kOnePort + "cache = { 9G = \"x\" }\n",
                "some.toml:8: asics[0].ports[0].cache.9G: unknown key"},
        Mistake{"WrongKind", "slots = \"one\"\n" + kOnePort,
                "some.toml:1: slots: must be a whole number from -2147483648 to 2147483647"},
        Mistake{"NoTypeOfCore", kCore, "some.toml:2: asics[0].cores[0].type: the first entry of a core needs it"},
        Mistake{"NoSuchType", kCore + "type = 7\n",
                "some.toml:4: asics[0].cores[0].type: must be a whole number from 0 to 6"},
        Mistake{"TooManyRegisters", kCore + "type = 2\nrx_registers = 33\n",
                "some.toml:5: asics[0].cores[0].rx_registers: must be a whole number from 0 to 32"},
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
                "some.toml:5: asics[0].ports: port 0 is on core 1, which has no entry"},
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
                "settings.f = {}\n" + kCoreAndPort + "ports = 0\nkind = \"EXG\"\nlive = \"f\"\n",
                "some.toml:9: asics[0].ports[0].live: \"f\" is for fibre-channel ports"},
        Mistake{"NoSuchSettings", kOnePort + "live = \"x\"\n",
                "some.toml:8: asics[0].ports[0].live: there is no [settings.x]"},
        Mistake{"TwoFarEnds", kOnePort + "far_end = \"loop\"\npartner = {}\n",
                "some.toml:8: asics[0].ports[0].far_end: says where a cable ends, and so does partner"},
        Mistake{"CableWithOneEnd", kOnePort + "far_end = \"pair\"\n",
                "some.toml:5: asics[0].ports: the cable of port 0 leads to port 1, which does not lead back"},
        Mistake{"UserPortsOutOfReach", kOnePort + "user_port = 65535\n",
                "some.toml:8: asics[0].ports[0].user_port: must be a whole number from -1 to 65534"},
        Mistake{"NameTooLong", "type_names = [\"\", \"\", \"\", \"\", \"\", \"\", \"twenty characters...\"]\n",
                "some.toml:1: type_names: \"twenty characters...\" is longer than 19 characters"},
        Mistake{"NamesMissing", "type_names = [\"\"]\n",
                "some.toml:1: type_names: must be seven names, one for each SerDes type"},
        Mistake{"ThreeTaps", "[settings.x]\ntaps = [1, 2, 3]\n",
                "some.toml:2: settings.x.taps: must be the four coefficients c0 to c3"},
        Mistake{"NoSuchSlew", "[settings.x]\nslew = 37\n",
                "some.toml:2: settings.x.slew: must be 24, 30, 36, 50, 60, 75 or 100"},
        Mistake{"TapsOfEthernet", "[settings.x]\npre_emphasis = 1\ntaps = [1, 2, 3, 4]\n",
                "some.toml:3: settings.x.taps: unknown key"},
        Mistake{"SettingsNotATable", "settings.x = 1\n", "some.toml:1: settings.x: must be a table"},
        Mistake{"ChannelOutOfRange", "[channels.x]\nfr4_inches = -1\n",
                "some.toml:2: channels.x.fr4_inches: must be a number from 0 to 200"},
        Mistake{"NotANumber", "[channels.x]\na1 = nan\n",
                "some.toml:2: channels.x.a1: must be a number from -1000 to 1000"},
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

// The rest of the message is the TOML library's.
TEST(DescriptionMistake, ThatIsNotTomlIsNamedWithFileAndLine) {
  EXPECT_EQ(errorOf("slots = 1\na = = 1\n").substr(0, 13), "some.toml:2: ");
}

}  // namespace
}  // namespace simulator
