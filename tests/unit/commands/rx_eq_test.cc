// Setting and showing the live DFE and VGA.
#include "commands/rx_eq.h"

#include <cstring>

#include "arguments/keywords.h"
#include "tests/support/default_switch.h"
#include "tests/support/expected.h"
#include "tests/support/handlers.h"
#include "topology/serdes_topology.h"

namespace recording {
namespace {

// Port 1 does not run while port 0 does.
const std::string kPort1IdleHead =
    "=================== ==== ==== \n"
    "ASIC port              0    1 \n"
    "user port            100  101 \n"
    "link num               0    0 \n"
    "running rate          8G  INV\n"
    "media type           OPT  OPT\n"
    "=================== ==== ==== \n";

// Port 6 with a single transmit link, port 7 with two.
const std::string kPorts6And7WithOneAndTwoLinksHead =
    "=================== ==== ==== ==== \n"
    "ASIC port              6    7    7 \n"
    "user port            106  107  107 \n"
    "link num               0    0    1 \n"
    "running rate          8G   8G   8G\n"
    "media type           OPT  OPT  OPT\n"
    "=================== ==== ==== ==== \n";

const Calls kPort0Questions = headerQuestions({"100/0/0"});
const Calls kPort6Questions = headerQuestions({"106/0/6"});
const Calls kGlQuestions = headerQuestions({"100/0/0", "101/0/1", "102/0/2", "65535/0/3", "104/0/4", "105/0/5"});

Calls readsOfPort6(const std::string& operation) {
  return {operation + "(0, 6, 0)", operation + "(0, 6, 1)", operation + "(0, 6, 2)", operation + "(0, 6, 3)"};
}

void setLink(unsigned port, unsigned link, std::uint32_t mode, int pole, int peak, int amax) {
  platform.ports[port].rxLinks[link] = {.mode = mode,
                                        .pole = static_cast<signed char>(pole),
                                        .peak = static_cast<signed char>(peak),
                                        .amax = static_cast<signed char>(amax),
                                        .stats = {}};
}

// Four links of port 6 that show each mode and the limits of a signed byte.
void setPort6Links() {
  setLink(6, 0, DFE_3, 0, 1, 0);
  setLink(6, 1, DFE_5, 127, -1, 127);
  setLink(6, 2, DFE_NONE, -128, 100, -128);
  setLink(6, 3, DFE_1, -100, 99, -1);
}

class ParseDfeMode : public ToolTest {};

TEST_F(ParseDfeMode, KeywordsAreTheModesInAnyCase) {
  const struct {
    const char* word;
    SerDesRxDFEMode mode;
  } rows[] = {{"DFE3", DFE_3},    {"dfe3", DFE_3},    {"DFE5", DFE_5}, {"Dfe5", DFE_5}, {"NONE", DFE_NONE},
              {"None", DFE_NONE}, {"none", DFE_NONE}, {"DFE1", DFE_1}, {"dFE1", DFE_1}};
  for (const auto& row : rows) {
    auto mode = static_cast<SerDesRxDFEMode>(77);
    EXPECT_EQ(parseDfeMode(row.word, mode), CMD_OK) << row.word;
    EXPECT_EQ(mode, row.mode) << row.word;
  }
}

TEST_F(ParseDfeMode, OtherWordsAreRefusedAndStoreNothing) {
  for (const char* word : {"", "DFE", "DFE0", "DFE2", "DFE4", "DFE7", "DFE33", " DFE3", "DFE3 ", "NON", "NONEX", "INV",
                           "0", "3", "FFE3"}) {
    auto mode = static_cast<SerDesRxDFEMode>(77);
    EXPECT_EQ(parseDfeMode(word, mode), CMD_BAD_PARAM) << word;
    EXPECT_EQ(mode, 77u) << word;
  }
}

class SetDFE : public TopologyTest {};

TEST_F(SetDFE, SetsAllLinksOfEachPort) {
  EXPECT_EQ(run("setDFE DFE5 0 2"), done({"SetSerDesRxDFE(0, 0, -1, 1)", "SetSerDesRxDFE(0, 2, -1, 1)"}));
}

TEST_F(SetDFE, ShortcutAndAnyCaseDoTheSame) {
  EXPECT_EQ(run("sdfe dfe5 0 2"), done({"SetSerDesRxDFE(0, 0, -1, 1)", "SetSerDesRxDFE(0, 2, -1, 1)"}));
  EXPECT_EQ(run("SETDFE Dfe5 0 2"), done({"SetSerDesRxDFE(0, 0, -1, 1)", "SetSerDesRxDFE(0, 2, -1, 1)"}));
}

TEST_F(SetDFE, NoneSetsMode2OnEveryGlPort) {
  EXPECT_EQ(run("setDFE none gl"),
            done({"SetSerDesRxDFE(0, 0, -1, 2)", "SetSerDesRxDFE(0, 1, -1, 2)", "SetSerDesRxDFE(0, 2, -1, 2)",
                  "SetSerDesRxDFE(0, 3, -1, 2)", "SetSerDesRxDFE(0, 4, -1, 2)", "SetSerDesRxDFE(0, 5, -1, 2)"}));
}

TEST_F(SetDFE, EachKeywordIsItsMode) {
  EXPECT_EQ(run("setDFE DFE3 0"), done({"SetSerDesRxDFE(0, 0, -1, 0)"}));
  EXPECT_EQ(run("setDFE DFE5 0"), done({"SetSerDesRxDFE(0, 0, -1, 1)"}));
  EXPECT_EQ(run("setDFE None 0"), done({"SetSerDesRxDFE(0, 0, -1, 2)"}));
  EXPECT_EQ(run("setDFE DFE1 0"), done({"SetSerDesRxDFE(0, 0, -1, 3)"}));
}

TEST_F(SetDFE, PortOfFourLinksTakesOneCall) {
  EXPECT_EQ(run("setDFE DFE3 xg"), done({"SetSerDesRxDFE(0, 6, -1, 0)", "SetSerDesRxDFE(0, 7, -1, 0)"}));
}

TEST_F(SetDFE, EthernetPortsAreAllowed) {
  EXPECT_EQ(run("setDFE DFE3 10-11"), done({"SetSerDesRxDFE(0, 10, -1, 0)", "SetSerDesRxDFE(0, 11, -1, 0)"}));
}

TEST_F(SetDFE, PortsAreSetOnceInAscendingOrder) {
  EXPECT_EQ(run("setDFE DFE3 5 0 2-3 0"), done({"SetSerDesRxDFE(0, 0, -1, 0)", "SetSerDesRxDFE(0, 2, -1, 0)",
                                                "SetSerDesRxDFE(0, 3, -1, 0)", "SetSerDesRxDFE(0, 5, -1, 0)"}));
}

TEST_F(SetDFE, PortsBeyondThePortCountAreIgnored) {
  EXPECT_EQ(run("setDFE DFE3 11-31"), done({"SetSerDesRxDFE(0, 11, -1, 0)"}));
}

TEST_F(SetDFE, EmptyListSetsNothing) {
  EXPECT_EQ(run("setDFE DFE3 5-2"), done({}));
  EXPECT_EQ(run("setDFE DFE3 32 63"), done({}));
}

TEST_F(SetDFE, TwentyFourWordsAreTaken) {
  EXPECT_EQ(run("setDFE DFE3 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 1"),
            done({"SetSerDesRxDFE(0, 0, -1, 0)", "SetSerDesRxDFE(0, 1, -1, 0)"}));
}

TEST_F(SetDFE, PortWithoutReceiveLinksIsStillSet) {
  platform.ports[1].rx.linkCount = 0;
  discover();
  EXPECT_EQ(run("setDFE DFE3 0-1"), done({"SetSerDesRxDFE(0, 0, -1, 0)", "SetSerDesRxDFE(0, 1, -1, 0)"}));
}

TEST_F(SetDFE, AddressesTheSelectedAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("setDFE DFE3 0"), done({"SetSerDesRxDFE(1, 0, -1, 0)"}));
}

TEST_F(SetDFE, PositiveResultIsSuccess) {
  platform.fail("SetSerDesRxDFE", 7);
  EXPECT_EQ(run("setDFE DFE3 0-1"), done({"SetSerDesRxDFE(0, 0, -1, 0)", "SetSerDesRxDFE(0, 1, -1, 0)"}));
}

TEST_F(SetDFE, FailureOnThirdPortLeavesFirstTwoChanged) {
  platform.fail("SetSerDesRxDFE", -5, 3);
  EXPECT_EQ(run("setDFE DFE3 gl"),
            failed("setDFECmdHandler: serdes err -5\n",
                   {"SetSerDesRxDFE(0, 0, -1, 0)", "SetSerDesRxDFE(0, 1, -1, 0)", "SetSerDesRxDFE(0, 2, -1, 0)"}));
}

TEST_F(SetDFE, FailureOnEachPortEnds) {
  expectEachFailureEnds("setDFE DFE5 xg", {"SetSerDesRxDFE(0, 6, -1, 1)", "SetSerDesRxDFE(0, 7, -1, 1)"},
                        "setDFECmdHandler: serdes err");
}

class SetVGA : public TopologyTest {};

TEST_F(SetVGA, PassesPolePeakAndAmaxToEveryGlPort) {
  EXPECT_EQ(run("setVGA 6 4 0x4e gl"),
            done({"SetSerDesRxVGA(0, 0, -1, 6, 4, 78)", "SetSerDesRxVGA(0, 1, -1, 6, 4, 78)",
                  "SetSerDesRxVGA(0, 2, -1, 6, 4, 78)", "SetSerDesRxVGA(0, 3, -1, 6, 4, 78)",
                  "SetSerDesRxVGA(0, 4, -1, 6, 4, 78)", "SetSerDesRxVGA(0, 5, -1, 6, 4, 78)"}));
}

TEST_F(SetVGA, ShortcutAndAnyCaseDoTheSame) {
  EXPECT_EQ(run("svga 6 4 0x4E 7"), done({"SetSerDesRxVGA(0, 7, -1, 6, 4, 78)"}));
  EXPECT_EQ(run("SetVga 6 4 0X4e 7"), done({"SetSerDesRxVGA(0, 7, -1, 6, 4, 78)"}));
}

TEST_F(SetVGA, NegativeNumbersArePassed) {
  EXPECT_EQ(run("setVGA -1 -128 -7 8"), done({"SetSerDesRxVGA(0, 8, -1, -1, -128, -7)"}));
}

TEST_F(SetVGA, LowEightBitsArriveSigned) {
  EXPECT_EQ(run("setVGA 200 0x1ff 0xb0 0"), done({"SetSerDesRxVGA(0, 0, -1, -56, -1, -80)"}));
  EXPECT_EQ(run("setVGA 127 128 256 0"), done({"SetSerDesRxVGA(0, 0, -1, 127, -128, 0)"}));
  EXPECT_EQ(run("setVGA -129 0xffffff7f 65535 0"), done({"SetSerDesRxVGA(0, 0, -1, 127, 127, -1)"}));
}

TEST_F(SetVGA, PortsAreSetInAscendingOrderAlsoWithoutReceiveLinks) {
  platform.ports[1].rx.linkCount = 0;
  discover();
  EXPECT_EQ(run("setVGA 1 2 3 2 1 0"), done({"SetSerDesRxVGA(0, 0, -1, 1, 2, 3)", "SetSerDesRxVGA(0, 1, -1, 1, 2, 3)",
                                             "SetSerDesRxVGA(0, 2, -1, 1, 2, 3)"}));
}

TEST_F(SetVGA, EmptyListSetsNothing) {
  EXPECT_EQ(run("setVGA 1 2 3 4-3"), done({}));
}

TEST_F(SetVGA, AddressesTheSelectedAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("setVGA 1 2 3 0"), done({"SetSerDesRxVGA(1, 0, -1, 1, 2, 3)"}));
}

TEST_F(SetVGA, PositiveResultIsSuccess) {
  platform.fail("SetSerDesRxVGA", 1);
  EXPECT_EQ(run("setVGA 1 2 3 xg"), done({"SetSerDesRxVGA(0, 6, -1, 1, 2, 3)", "SetSerDesRxVGA(0, 7, -1, 1, 2, 3)"}));
}

TEST_F(SetVGA, FailureOnEachPortLeavesEarlierPortsChanged) {
  expectEachFailureEnds("setVGA 6 4 0x4e 0-2",
                        {"SetSerDesRxVGA(0, 0, -1, 6, 4, 78)", "SetSerDesRxVGA(0, 1, -1, 6, 4, 78)",
                         "SetSerDesRxVGA(0, 2, -1, 6, 4, 78)"},
                        "setVGACmdHandler: serdes err");
}

class SetRxParams : public TopologyTest {};

TEST_F(SetRxParams, SetsModeThenVgaPortByPort) {
  EXPECT_EQ(run("setRxParams DFE5 6 4 0x4e xg"),
            done({"SetSerDesRxDFE(0, 6, -1, 1)", "SetSerDesRxVGA(0, 6, -1, 6, 4, 78)", "SetSerDesRxDFE(0, 7, -1, 1)",
                  "SetSerDesRxVGA(0, 7, -1, 6, 4, 78)"}));
}

TEST_F(SetRxParams, ShortcutAndAnyCaseDoTheSame) {
  EXPECT_EQ(run("srxp none 6 4 0x4e 3"), done({"SetSerDesRxDFE(0, 3, -1, 2)", "SetSerDesRxVGA(0, 3, -1, 6, 4, 78)"}));
  EXPECT_EQ(run("SRXP NONE 6 4 0x4e 3"), done({"SetSerDesRxDFE(0, 3, -1, 2)", "SetSerDesRxVGA(0, 3, -1, 6, 4, 78)"}));
}

TEST_F(SetRxParams, LowEightBitsArriveSigned) {
  EXPECT_EQ(run("setRxParams DFE1 200 0x1ff -1 0"),
            done({"SetSerDesRxDFE(0, 0, -1, 3)", "SetSerDesRxVGA(0, 0, -1, -56, -1, -1)"}));
}

TEST_F(SetRxParams, PortWithoutReceiveLinksIsStillSet) {
  platform.ports[0].rx.linkCount = 0;
  discover();
  EXPECT_EQ(run("setRxParams DFE3 1 2 3 0"),
            done({"SetSerDesRxDFE(0, 0, -1, 0)", "SetSerDesRxVGA(0, 0, -1, 1, 2, 3)"}));
}

TEST_F(SetRxParams, EmptyListSetsNothing) {
  EXPECT_EQ(run("setRxParams DFE3 1 2 3 40"), done({}));
}

TEST_F(SetRxParams, AddressesTheSelectedAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("setRxParams DFE3 1 2 3 0"),
            done({"SetSerDesRxDFE(1, 0, -1, 0)", "SetSerDesRxVGA(1, 0, -1, 1, 2, 3)"}));
}

TEST_F(SetRxParams, PositiveResultsAreSuccess) {
  platform.fail("SetSerDesRxDFE", 3);
  platform.fail("SetSerDesRxVGA", 4);
  EXPECT_EQ(run("setRxParams DFE3 1 2 3 0"),
            done({"SetSerDesRxDFE(0, 0, -1, 0)", "SetSerDesRxVGA(0, 0, -1, 1, 2, 3)"}));
}

TEST_F(SetRxParams, FailingVgaLeavesItsPortWithTheNewModeAlone) {
  platform.fail("SetSerDesRxVGA", -3, 2);
  EXPECT_EQ(run("setRxParams DFE3 1 2 3 gl"),
            failed("setRxParamsCmdHandler: serdes err -3\n",
                   {"SetSerDesRxDFE(0, 0, -1, 0)", "SetSerDesRxVGA(0, 0, -1, 1, 2, 3)", "SetSerDesRxDFE(0, 1, -1, 0)",
                    "SetSerDesRxVGA(0, 1, -1, 1, 2, 3)"}));
}

TEST_F(SetRxParams, FailureOfEachCallEnds) {
  expectEachFailureEnds("setRxParams DFE3 1 2 3 0 1",
                        {"SetSerDesRxDFE(0, 0, -1, 0)", "SetSerDesRxVGA(0, 0, -1, 1, 2, 3)",
                         "SetSerDesRxDFE(0, 1, -1, 0)", "SetSerDesRxVGA(0, 1, -1, 1, 2, 3)"},
                        "setRxParamsCmdHandler: serdes err");
}

class SetDFEState : public TopologyTest {
 protected:
  template <typename Value>
  static Value handedOverAt(std::size_t offset) {
    Value value;
    std::memcpy(&value, reinterpret_cast<const char*>(&platform.lastDfeState) + offset, sizeof value);
    return value;
  }
};

TEST_F(SetDFEState, HandsTheStateToOneLink) {
  EXPECT_EQ(run("setDFEState 4 0 DFE3 0 1 0 1 0 1 0 1 0 1"),
            done({"SetSerDesRxDFEState(0, 4, 0, 0, 0, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1)"}));
}

TEST_F(SetDFEState, ShortcutAndAnyCaseDoTheSame) {
  EXPECT_EQ(run("sdfestate 4 0 dfe3 0 1 0 1 0 1 0 1 0 1"),
            done({"SetSerDesRxDFEState(0, 4, 0, 0, 0, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1)"}));
  EXPECT_EQ(run("SETDFESTATE 4 0 Dfe3 0 1 0 1 0 1 0 1 0 1"),
            done({"SetSerDesRxDFEState(0, 4, 0, 0, 0, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1)"}));
}

TEST_F(SetDFEState, ValuesGoInArgumentOrder) {
  EXPECT_EQ(run("setDFEState 5 3 DFE1 11 12 13 14 15 16 17 18 19 20"),
            done({"SetSerDesRxDFEState(0, 5, 3, 0, 3, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20)"}));
}

TEST_F(SetDFEState, LowSixteenBitsOfEachValueAreKept) {
  EXPECT_EQ(run("setDFEState 4 0 DFE3 65537 -1 0x8000 0x1fff0 -32769 65536 0xffff 32767 -32768 70000"),
            done({"SetSerDesRxDFEState(0, 4, 0, 0, 0, 1, -1, -32768, -16, 32767, 0, -1, 32767, -32768, 4464)"}));
}

TEST_F(SetDFEState, RecordIsAWordTheModeAndTenHalfwords) {
  ASSERT_EQ(run("setDFEState 4 0 None 0x1122 0x2233 0x3344 0x4455 0x5566 0x6677 0x7788 0x8899 0x99aa 0xaabb").status,
            CMD_OK);
  EXPECT_EQ(handedOverAt<std::uint32_t>(0), 0u);
  EXPECT_EQ(handedOverAt<std::uint32_t>(4), 2u);
  EXPECT_EQ(handedOverAt<std::uint16_t>(8), 0x1122);
  EXPECT_EQ(handedOverAt<std::uint16_t>(10), 0x2233);
  EXPECT_EQ(handedOverAt<std::uint16_t>(12), 0x3344);
  EXPECT_EQ(handedOverAt<std::uint16_t>(14), 0x4455);
  EXPECT_EQ(handedOverAt<std::uint16_t>(16), 0x5566);
  EXPECT_EQ(handedOverAt<std::uint16_t>(18), 0x6677);
  EXPECT_EQ(handedOverAt<std::uint16_t>(20), 0x7788);
  EXPECT_EQ(handedOverAt<std::uint16_t>(22), 0x8899);
  EXPECT_EQ(handedOverAt<std::uint16_t>(24), 0x99AA);
  EXPECT_EQ(handedOverAt<std::uint16_t>(26), 0xAABB);
}

TEST_F(SetDFEState, RestOfTheRecordIsZero) {
  ASSERT_EQ(run("setDFEState 4 0 DFE5 -1 -1 -1 -1 -1 -1 -1 -1 -1 -1").status, CMD_OK);
  for (std::size_t offset = 28; offset < sizeof(SerDesRxDFEState); ++offset)
    EXPECT_EQ(handedOverAt<std::uint8_t>(offset), 0) << offset;
}

TEST_F(SetDFEState, LinkIsPassedAsTyped) {
  EXPECT_EQ(run("setDFEState 4 -1 DFE5 0 0 0 0 0 0 0 0 0 0"),
            done({"SetSerDesRxDFEState(0, 4, -1, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)"}));
  EXPECT_EQ(run("setDFEState 4 0x63 DFE5 0 0 0 0 0 0 0 0 0 0"),
            done({"SetSerDesRxDFEState(0, 4, 99, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)"}));
}

TEST_F(SetDFEState, ReceiveType5IsTakenWhateverTheTransmitType) {
  platform.ports[6].rx.type = 5;
  discover();
  EXPECT_EQ(run("setDFEState 6 0 DFE5 0 0 0 0 0 0 0 0 0 0"),
            done({"SetSerDesRxDFEState(0, 6, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)"}));
}

TEST_F(SetDFEState, OtherReceiveTypesAreRefused) {
  for (const std::uint32_t type : {0u, 1u, 3u, 4u, 6u, 7u, 250u, 0xFFFFFFFFu}) {
    platform.ports[4].rx.type = type;
    discover();
    EXPECT_EQ(run("setDFEState 4 0 DFE3 0 1 0 1 0 1 0 1 0 1"), refused(CMD_BAD_PARAM)) << type;
  }
}

TEST_F(SetDFEState, PortWithoutLinksOrPresenceIsTaken) {
  platform.ports[4].rx.linkCount = 0;
  platform.ports[4].hwConfig.presence = 0;
  discover();
  EXPECT_EQ(run("setDFEState 4 0 DFE3 0 1 0 1 0 1 0 1 0 1"),
            done({"SetSerDesRxDFEState(0, 4, 0, 0, 0, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1)"}));
}

TEST_F(SetDFEState, AddressesTheSelectedAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("setDFEState 0 1 DFE3 0 0 0 0 0 0 0 0 0 0"),
            done({"SetSerDesRxDFEState(1, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)"}));
}

TEST_F(SetDFEState, PortMustBeBelowThePortCount) {
  for (unsigned port = 0; port < 24; ++port)
    platform.ports[port].rx.type = 2;
  discover();
  EXPECT_EQ(run("setDFEState 11 0 DFE3 0 0 0 0 0 0 0 0 0 0"),
            done({"SetSerDesRxDFEState(0, 11, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)"}));
  for (const char* port : {"12", "23", "24", "99", "0x7fffffff"})
    EXPECT_EQ(run(std::string("setDFEState ") + port + " 0 DFE3 0 0 0 0 0 0 0 0 0 0"), refused(CMD_BAD_PARAM)) << port;
}

TEST_F(SetDFEState, NegativePortIsRefused) {
  for (const char* port : {"-1", "-2147483648", "0x80000000", "0xffffffff"})
    EXPECT_EQ(run(std::string("setDFEState ") + port + " 0 DFE3 0 0 0 0 0 0 0 0 0 0"), refused(CMD_BAD_PARAM)) << port;
}

TEST_F(SetDFEState, PortBeyondTheModelIsRefusedWhateverThePortCount) {
  platform.portCount = 40;
  platform.ports[23].rx.type = 2;
  discover();
  EXPECT_EQ(run("setDFEState 23 0 DFE3 0 0 0 0 0 0 0 0 0 0"),
            done({"SetSerDesRxDFEState(0, 23, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)"}));
  EXPECT_EQ(run("setDFEState 24 0 DFE3 0 0 0 0 0 0 0 0 0 0"), refused(CMD_BAD_PARAM));
  EXPECT_EQ(run("setDFEState 39 0 DFE3 0 0 0 0 0 0 0 0 0 0"), refused(CMD_BAD_PARAM));
}

TEST_F(SetDFEState, PortCountComparesSigned) {
  platform.portCount = 0xFFFFFFFF;
  discover();
  EXPECT_EQ(run("setDFEState 0 0 DFE3 0 0 0 0 0 0 0 0 0 0"), refused(CMD_BAD_PARAM));
}

TEST_F(SetDFEState, RowAdmitsFourWordsOrMore) {
  EXPECT_EQ(run("setDFEState"), refused(CMD_TOO_FEW_ARGS));
  EXPECT_EQ(run("setDFEState 99 0"), refused(CMD_TOO_FEW_ARGS));
}

TEST_F(SetDFEState, HandlerJudgesThePortBeforeTheWordCount) {
  EXPECT_EQ(runHandler(setDFEStateCmdHandler, {"setDFEState", "99", "0"}), refused(CMD_BAD_PARAM));
  EXPECT_EQ(run("setDFEState 99 0 DFE3"), refused(CMD_BAD_PARAM));
  EXPECT_EQ(run("setDFEState 4x 0 DFE3"), refused(CMD_BAD_PARAM));
}

TEST_F(SetDFEState, LinkAndTypeAreJudgedBeforeTheWordCount) {
  EXPECT_EQ(run("setDFEState 4 x DFE3"), refused(CMD_BAD_PARAM));
  EXPECT_EQ(run("setDFEState 6 0 DFE3"), refused(CMD_BAD_PARAM));
  EXPECT_EQ(run("setDFEState 6 0 DFE3 0 1 0 1 0 1 0 1 0 1 0"), refused(CMD_BAD_PARAM));
}

TEST_F(SetDFEState, FewerThanFourteenWordsAreTooFew) {
  EXPECT_EQ(runHandler(setDFEStateCmdHandler, {"setDFEState", "4", "0"}), refused(CMD_TOO_FEW_ARGS));
  EXPECT_EQ(run("setDFEState 4 0 DFE3"), refused(CMD_TOO_FEW_ARGS));
  EXPECT_EQ(run("setDFEState 4 0 DFE3 0 1 0 1 0 1 0 1 0"), refused(CMD_TOO_FEW_ARGS));
}

TEST_F(SetDFEState, MoreThanFourteenWordsAreTooMany) {
  EXPECT_EQ(run("setDFEState 4 0 DFE3 0 1 0 1 0 1 0 1 0 1 0"), refused(CMD_TOO_MANY_ARGS));
  EXPECT_EQ(run("setDFEState 4 0 DFE3 0 1 0 1 0 1 0 1 0 1 0 1 2 3 4 5 6 7 8 9"), refused(CMD_TOO_MANY_ARGS));
  EXPECT_EQ(run("setDFEState 4 0 DFE3 0 1 0 1 0 1 0 1 0 1 0 1 2 3 4 5 6 7 8 9 10"), refused(CMD_TOO_MANY_ARGS));
}

TEST_F(SetDFEState, WordCountIsJudgedBeforeModeAndValues) {
  EXPECT_EQ(run("setDFEState 4 0 DFE7"), refused(CMD_TOO_FEW_ARGS));
  EXPECT_EQ(run("setDFEState 4 0 DFE7 x x x x x x x x x x x"), refused(CMD_TOO_MANY_ARGS));
}

TEST_F(SetDFEState, UnknownModeIsRefused) {
  EXPECT_EQ(run("setDFEState 4 0 DFE7 0 1 0 1 0 1 0 1 0 1"), refused(CMD_BAD_PARAM));
  EXPECT_EQ(run("setDFEState 4 0 0 0 1 0 1 0 1 0 1 0 1"), refused(CMD_BAD_PARAM));
}

TEST_F(SetDFEState, EachValueMustBeANumber) {
  for (std::size_t bad = 0; bad < 10; ++bad) {
    std::string line = "setDFEState 4 0 DFE3";
    for (std::size_t value = 0; value < 10; ++value)
      line += value == bad ? " 1.5" : " 1";
    EXPECT_EQ(run(line), refused(CMD_BAD_PARAM)) << line;
  }
}

TEST_F(SetDFEState, PositiveResultIsSuccess) {
  platform.fail("SetSerDesRxDFEState", 2);
  EXPECT_EQ(run("setDFEState 4 0 DFE3 0 1 0 1 0 1 0 1 0 1"),
            done({"SetSerDesRxDFEState(0, 4, 0, 0, 0, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1)"}));
}

TEST_F(SetDFEState, PlatformFailureIsReported) {
  expectEachFailureEnds("setDFEState 4 0 DFE3 0 1 0 1 0 1 0 1 0 1",
                        {"SetSerDesRxDFEState(0, 4, 0, 0, 0, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1)"},
                        "setDFEStateCmdHandler: serdes err");
}

class ShowDFE : public TopologyTest {};

TEST_F(ShowDFE, ShowsTheModeOfOneLink) {
  const Outcome shown = printed("\nshow DFE            \n" + kPort0Head + "dfe mode            DFE3 \n",
                                Calls{"GetSerDesRxDFE(0, 0, 0)"} + kPort0Questions);
  EXPECT_EQ(run("showDFE 0"), shown);
  EXPECT_EQ(run("ddfe 0"), shown);
  EXPECT_EQ(run("DDFE 64"), shown);
}

TEST_F(ShowDFE, ShowsNoneOnEveryGlPort) {
  for (unsigned port = 0; port < 6; ++port)
    platform.ports[port].rxLinks[0].mode = DFE_NONE;
  EXPECT_EQ(run("showDFE gl"),
            printed("\nshow DFE            \n" + kGlHead + "dfe mode            NONE NONE NONE NONE NONE NONE \n",
                    Calls{"GetSerDesRxDFE(0, 0, 0)", "GetSerDesRxDFE(0, 1, 0)", "GetSerDesRxDFE(0, 2, 0)",
                          "GetSerDesRxDFE(0, 3, 0)", "GetSerDesRxDFE(0, 4, 0)", "GetSerDesRxDFE(0, 5, 0)"} +
                        kGlQuestions));
}

TEST_F(ShowDFE, EachLinkHasItsCell) {
  setPort6Links();
  EXPECT_EQ(run("showDFE 6"),
            printed("\nshow DFE            \n" + kPort6Head + "dfe mode            DFE3 DFE5 NONE DFE1 \n",
                    readsOfPort6("GetSerDesRxDFE") + kPort6Questions));
}

TEST_F(ShowDFE, PortsOfAllTypesStandInPortOrder) {
  platform.ports[5].rxLinks[0].mode = DFE_1;
  setPort6Links();
  EXPECT_EQ(run("showDFE 6 5"),
            printed("\nshow DFE            \n" + kPorts5And6Head + "dfe mode            DFE1 DFE3 DFE5 NONE DFE1 \n",
                    Calls{"GetSerDesRxDFE(0, 5, 0)"} + readsOfPort6("GetSerDesRxDFE") +
                        headerQuestions({"105/0/5", "106/0/6"})));
}

TEST_F(ShowDFE, MoreReceiveThanTransmitLinksShiftTheCells) {
  platform.ports[6].tx.linkCount = 1;
  platform.ports[7].tx.linkCount = 2;
  platform.ports[7].rx.linkCount = 1;
  platform.ports[7].rxLinks[0].mode = DFE_5;
  setPort6Links();
  discover();
  EXPECT_EQ(run("showDFE xg"), printed("\nshow DFE            \n" + kPorts6And7WithOneAndTwoLinksHead +
                                           "dfe mode            DFE3 DFE5 NONE DFE1 DFE5 \n",
                                       readsOfPort6("GetSerDesRxDFE") + Calls{"GetSerDesRxDFE(0, 7, 0)"} +
                                           headerQuestions({"106/0/6", "107/0/7"})));
}

TEST_F(ShowDFE, PortWithoutReceiveLinksHasNoCellsAndIsNotRead) {
  platform.ports[0].rx.linkCount = 0;
  platform.ports[1].rxLinks[0].mode = DFE_5;
  discover();
  EXPECT_EQ(run("showDFE 0 1"), printed("\nshow DFE            \n" + kPorts0And1Head + "dfe mode            DFE5 \n",
                                        Calls{"GetSerDesRxDFE(0, 1, 0)"} + headerQuestions({"100/0/0", "101/0/1"})));
}

TEST_F(ShowDFE, PortWithoutTransmitLinksHasCellsWithoutColumns) {
  platform.ports[0].tx.linkCount = 0;
  discover();
  EXPECT_EQ(run("showDFE 0"), printed("\nshow DFE            \n" + kNoPortsHead + "dfe mode            DFE3 \n",
                                      Calls{"GetSerDesRxDFE(0, 0, 0)"} + kPort0Questions));
}

TEST_F(ShowDFE, PortThatDoesNotRunKeepsItsCell) {
  makeIdle(platform.ports[1]);
  EXPECT_EQ(run("showDFE 0 1"),
            printed("\nshow DFE            \n" + kPort1IdleHead + "dfe mode            DFE3 DFE3 \n",
                    Calls{"GetSerDesRxDFE(0, 0, 0)", "GetSerDesRxDFE(0, 1, 0)"} + kPort0Questions +
                        idleHeaderQuestions("101/0/1")));
}

TEST_F(ShowDFE, ModesBeyondTheTableShowUnk) {
  platform.ports[6].rxLinks[0].mode = 4;
  platform.ports[6].rxLinks[1].mode = 250;
  platform.ports[6].rxLinks[2].mode = 0xFFFFFFFF;
  platform.ports[6].rxLinks[3].mode = 0x80000000;
  EXPECT_EQ(run("showDFE 6"),
            printed("\nshow DFE            \n" + kPort6Head + "dfe mode            UNK  UNK  UNK  UNK  \n",
                    readsOfPort6("GetSerDesRxDFE") + kPort6Questions));
}

TEST_F(ShowDFE, EmptyListShowsLabelsAlone) {
  EXPECT_EQ(run("showDFE 5-2"), printed("\nshow DFE            \n" + kNoPortsHead + "dfe mode            \n", {}));
}

TEST_F(ShowDFE, PortBeyondThePortCountIsNotRead) {
  EXPECT_EQ(run("showDFE 0 20"), printed("\nshow DFE            \n" + kPort0Head + "dfe mode            DFE3 \n",
                                         Calls{"GetSerDesRxDFE(0, 0, 0)"} + headerQuestions({"100/0/0", "0/0/0"})));
}

TEST_F(ShowDFE, NoMoreThanFourLinksAreWalked) {
  platform.ports[6].rx.linkCount = 9;
  platform.ports[6].tx.linkCount = 0xFFFFFFFF;
  setPort6Links();
  discover();
  EXPECT_EQ(run("showDFE 6"),
            printed("\nshow DFE            \n" + kPort6Head + "dfe mode            DFE3 DFE5 NONE DFE1 \n",
                    readsOfPort6("GetSerDesRxDFE") + kPort6Questions));
}

TEST_F(ShowDFE, PositiveResultIsSuccess) {
  platform.fail("GetSerDesRxDFE", 9);
  platform.ports[0].rxLinks[0].mode = DFE_1;
  EXPECT_EQ(run("showDFE 0"), printed("\nshow DFE            \n" + kPort0Head + "dfe mode            DFE1 \n",
                                      Calls{"GetSerDesRxDFE(0, 0, 0)"} + kPort0Questions));
}

TEST_F(ShowDFE, FailureOfEachReadPrintsNoTable) {
  expectEachFailureEnds("showDFE 5 6", Calls{"GetSerDesRxDFE(0, 5, 0)"} + readsOfPort6("GetSerDesRxDFE"),
                        "showDFECmdHandler: serdes err");
}

class ShowVGA : public TopologyTest {};

TEST_F(ShowVGA, ShowsWhatWasSetOnEveryGlPort) {
  for (unsigned port = 0; port < 6; ++port)
    setLink(port, 0, DFE_3, 6, 4, 78);
  EXPECT_EQ(run("showVGA gl"),
            printed("\nshow VGA            \n" + kGlHead +
                        "pole                   6    6    6    6    6    6 \n"
                        "peak                   4    4    4    4    4    4 \n"
                        "amax                0x4e 0x4e 0x4e 0x4e 0x4e 0x4e \n",
                    Calls{"GetSerDesRxVGA(0, 0, 0)", "GetSerDesRxVGA(0, 1, 0)", "GetSerDesRxVGA(0, 2, 0)",
                          "GetSerDesRxVGA(0, 3, 0)", "GetSerDesRxVGA(0, 4, 0)", "GetSerDesRxVGA(0, 5, 0)"} +
                        kGlQuestions));
}

TEST_F(ShowVGA, ShortcutAndAnyCaseDoTheSame) {
  setLink(0, 0, DFE_3, 1, 2, 3);
  const Outcome shown = printed("\nshow VGA            \n" + kPort0Head +
                                    "pole                   1 \n"
                                    "peak                   2 \n"
                                    "amax                0x03 \n",
                                Calls{"GetSerDesRxVGA(0, 0, 0)"} + kPort0Questions);
  EXPECT_EQ(run("dvga 0"), shown);
  EXPECT_EQ(run("SHOWVGA 0"), shown);
}

TEST_F(ShowVGA, AmaxFrom0x80OnShowsEightDigits) {
  setPort6Links();
  EXPECT_EQ(run("showVGA 6"), printed("\nshow VGA            \n" + kPort6Head +
                                          "pole                   0  127 -128 -100 \n"
                                          "peak                   1   -1  100   99 \n"
                                          "amax                0x00 0x7f 0xffffff80 0xffffffff \n",
                                      readsOfPort6("GetSerDesRxVGA") + kPort6Questions));
}

TEST_F(ShowVGA, AmaxSetTo0xb0ShowsAsNegative) {
  EXPECT_EQ(run("setVGA 6 4 0xb0 0"), done({"SetSerDesRxVGA(0, 0, -1, 6, 4, -80)"}));
  setLink(0, 0, DFE_3, 6, 4, -80);
  EXPECT_EQ(run("showVGA 0"), printed("\nshow VGA            \n" + kPort0Head +
                                          "pole                   6 \n"
                                          "peak                   4 \n"
                                          "amax                0xffffffb0 \n",
                                      Calls{"GetSerDesRxVGA(0, 0, 0)"} + kPort0Questions));
}

TEST_F(ShowVGA, LinkCountsOfTheSidesMayDiffer) {
  platform.ports[6].tx.linkCount = 1;
  platform.ports[7].tx.linkCount = 2;
  platform.ports[7].rx.linkCount = 0;
  setPort6Links();
  discover();
  EXPECT_EQ(run("showVGA xg"), printed("\nshow VGA            \n" + kPorts6And7WithOneAndTwoLinksHead +
                                           "pole                   0  127 -128 -100 \n"
                                           "peak                   1   -1  100   99 \n"
                                           "amax                0x00 0x7f 0xffffff80 0xffffffff \n",
                                       readsOfPort6("GetSerDesRxVGA") + headerQuestions({"106/0/6", "107/0/7"})));
}

TEST_F(ShowVGA, PortThatDoesNotRunKeepsItsCells) {
  setLink(1, 0, DFE_3, 7, 8, 9);
  makeIdle(platform.ports[1]);
  EXPECT_EQ(run("showVGA 0-1"), printed("\nshow VGA            \n" + kPort1IdleHead +
                                            "pole                   0    7 \n"
                                            "peak                   0    8 \n"
                                            "amax                0x00 0x09 \n",
                                        Calls{"GetSerDesRxVGA(0, 0, 0)", "GetSerDesRxVGA(0, 1, 0)"} + kPort0Questions +
                                            idleHeaderQuestions("101/0/1")));
}

TEST_F(ShowVGA, EmptyListShowsLabelsAlone) {
  EXPECT_EQ(run("showVGA 63"), printed("\nshow VGA            \n" + kNoPortsHead +
                                           "pole                \n"
                                           "peak                \n"
                                           "amax                \n",
                                       {}));
}

TEST_F(ShowVGA, NoMoreThanFourLinksAreWalked) {
  platform.ports[6].rx.linkCount = 9;
  setPort6Links();
  discover();
  EXPECT_EQ(run("showVGA 6"), printed("\nshow VGA            \n" + kPort6Head +
                                          "pole                   0  127 -128 -100 \n"
                                          "peak                   1   -1  100   99 \n"
                                          "amax                0x00 0x7f 0xffffff80 0xffffffff \n",
                                      readsOfPort6("GetSerDesRxVGA") + kPort6Questions));
}

TEST_F(ShowVGA, FailureOfEachReadPrintsNoTable) {
  expectEachFailureEnds("showVGA 5 6", Calls{"GetSerDesRxVGA(0, 5, 0)"} + readsOfPort6("GetSerDesRxVGA"),
                        "showVGACmdHandler: serdes err");
}

class ShowRxParams : public TopologyTest {};

const Calls kPort6ParamReads = {"GetSerDesRxVGA(0, 6, 0)", "GetSerDesRxDFE(0, 6, 0)", "GetSerDesRxVGA(0, 6, 1)",
                                "GetSerDesRxDFE(0, 6, 1)", "GetSerDesRxVGA(0, 6, 2)", "GetSerDesRxDFE(0, 6, 2)",
                                "GetSerDesRxVGA(0, 6, 3)", "GetSerDesRxDFE(0, 6, 3)"};

TEST_F(ShowRxParams, ShowsModeAndVga) {
  setLink(0, 0, DFE_5, 6, 4, 0x4e);
  const Outcome shown = printed("\nshow rx params      \n" + kPort0Head +
                                    "dfe mode            DFE5 \n"
                                    "pole                   6 \n"
                                    "peak                   4 \n"
                                    "amax                0x4e \n",
                                Calls{"GetSerDesRxVGA(0, 0, 0)", "GetSerDesRxDFE(0, 0, 0)"} + kPort0Questions);
  EXPECT_EQ(run("showRxParams 0"), shown);
  EXPECT_EQ(run("drxp 0"), shown);
  EXPECT_EQ(run("DRXP 0"), shown);
}

TEST_F(ShowRxParams, ReadsVgaThenModeOfEachLinkBeforeTheHeader) {
  setPort6Links();
  EXPECT_EQ(run("showRxParams 6"), printed("\nshow rx params      \n" + kPort6Head +
                                               "dfe mode            DFE3 DFE5 NONE DFE1 \n"
                                               "pole                   0  127 -128 -100 \n"
                                               "peak                   1   -1  100   99 \n"
                                               "amax                0x00 0x7f 0xffffff80 0xffffffff \n",
                                           kPort6ParamReads + kPort6Questions));
}

TEST_F(ShowRxParams, PortThatDoesNotRunIsReadButBlank) {
  setLink(0, 0, DFE_5, 6, 4, 0x4e);
  setLink(1, 0, DFE_1, 7, 8, 9);
  makeIdle(platform.ports[1]);
  EXPECT_EQ(run("showRxParams 0 1"), printed("\nshow rx params      \n" + kPort1IdleHead +
                                                 "dfe mode            DFE5      \n"
                                                 "pole                   6      \n"
                                                 "peak                   4      \n"
                                                 "amax                0x4e      \n",
                                             Calls{"GetSerDesRxVGA(0, 0, 0)", "GetSerDesRxDFE(0, 0, 0)",
                                                   "GetSerDesRxVGA(0, 1, 0)", "GetSerDesRxDFE(0, 1, 0)"} +
                                                 kPort0Questions + idleHeaderQuestions("101/0/1")));
}

TEST_F(ShowRxParams, EachLinkOfAPortThatDoesNotRunIsBlank) {
  setPort6Links();
  makeIdle(platform.ports[6]);
  EXPECT_EQ(run("showRxParams 6"), printed("\nshow rx params      \n"
                                           "=================== ==== ==== ==== ==== \n"
                                           "ASIC port              6    6    6    6 \n"
                                           "user port            106  106  106  106 \n"
                                           "link num               0    1    2    3 \n"
                                           "running rate         INV  INV  INV  INV\n"
                                           "media type           OPT  OPT  OPT  OPT\n"
                                           "=================== ==== ==== ==== ==== \n"
                                           "dfe mode                                \n"
                                           "pole                                    \n"
                                           "peak                                    \n"
                                           "amax                                    \n",
                                           kPort6ParamReads + idleHeaderQuestions("106/0/6")));
}

TEST_F(ShowRxParams, PortThatRunsAgainShowsItsValuesAgain) {
  makeIdle(platform.ports[0]);
  ASSERT_EQ(run("showRxParams 0").status, CMD_OK);
  platform.ports[0].state = kPortStateRunning;
  EXPECT_EQ(run("showRxParams 0"),
            printed("\nshow rx params      \n" + kPort0Head +
                        "dfe mode            DFE3 \n"
                        "pole                   0 \n"
                        "peak                   0 \n"
                        "amax                0x00 \n",
                    Calls{"GetSerDesRxVGA(0, 0, 0)", "GetSerDesRxDFE(0, 0, 0)"} + kPort0Questions));
}

TEST_F(ShowRxParams, LinkCountsOfTheSidesMayDiffer) {
  platform.ports[6].tx.linkCount = 1;
  platform.ports[7].tx.linkCount = 2;
  platform.ports[7].rx.linkCount = 0;
  setPort6Links();
  discover();
  EXPECT_EQ(run("showRxParams xg"), printed("\nshow rx params      \n" + kPorts6And7WithOneAndTwoLinksHead +
                                                "dfe mode            DFE3 DFE5 NONE DFE1 \n"
                                                "pole                   0  127 -128 -100 \n"
                                                "peak                   1   -1  100   99 \n"
                                                "amax                0x00 0x7f 0xffffff80 0xffffffff \n",
                                            kPort6ParamReads + headerQuestions({"106/0/6", "107/0/7"})));
}

TEST_F(ShowRxParams, EmptyListShowsLabelsAlone) {
  EXPECT_EQ(run("showRxParams 9-8"), printed("\nshow rx params      \n" + kNoPortsHead +
                                                 "dfe mode            \n"
                                                 "pole                \n"
                                                 "peak                \n"
                                                 "amax                \n",
                                             {}));
}

TEST_F(ShowRxParams, ModeRateAndMediaBeyondTheTablesHaveNames) {
  setLink(0, 0, 4, 1, 2, 3);
  platform.ports[0].runningSpeed = 8;
  platform.ports[0].media = 9;
  EXPECT_EQ(run("showRxParams 0"),
            printed("\nshow rx params      \n"
                    "=================== ==== \n"
                    "ASIC port              0 \n"
                    "user port            100 \n"
                    "link num               0 \n"
                    "running rate         INV\n"
                    "media type           UNK\n"
                    "=================== ==== \n"
                    "dfe mode            UNK  \n"
                    "pole                   1 \n"
                    "peak                   2 \n"
                    "amax                0x03 \n",
                    Calls{"GetSerDesRxVGA(0, 0, 0)", "GetSerDesRxDFE(0, 0, 0)"} + kPort0Questions));
}

TEST_F(ShowRxParams, FailureOfEachReadPrintsNoTable) {
  expectEachFailureEnds("showRxParams 5 6",
                        Calls{"GetSerDesRxVGA(0, 5, 0)", "GetSerDesRxDFE(0, 5, 0)"} + kPort6ParamReads,
                        "showRxParamsCmdHandler: serdes err");
}

class RxEqRefusal : public RefusalTest {};

TEST_P(RxEqRefusal, TouchesNoPort) {
  EXPECT_EQ(run(GetParam().line), refused(GetParam().status));
}

INSTANTIATE_TEST_SUITE_P(SetDFE, RxEqRefusal,
                         testing::Values(Refusal{"Alone", "setDFE", CMD_TOO_FEW_ARGS},
                                         Refusal{"WithoutList", "setDFE DFE3", CMD_TOO_FEW_ARGS},
                                         Refusal{"UnknownMode", "setDFE DFE7 gl", CMD_BAD_PARAM},
                                         Refusal{"ModeAsNumber", "setDFE 0 gl", CMD_BAD_PARAM},
                                         Refusal{"UnknownModeBeforeMissingList", "setDFE DFE7", CMD_BAD_PARAM},
                                         Refusal{"UnknownModeBeforeMixedList", "setDFE DFE7 all", CMD_BAD_PARAM},
                                         Refusal{"KeywordInALongerList", "setDFE DFE3 gl 3", CMD_BAD_PARAM},
                                         Refusal{"NotAPort", "setDFE DFE3 0 1a", CMD_BAD_PARAM},
                                         Refusal{"NegativePort", "setDFE DFE3 -1", CMD_BAD_PARAM},
                                         Refusal{"RangeBeyond31", "setDFE DFE3 0-32", CMD_BAD_PARAM},
                                         Refusal{"AllTypes", "setDFE DFE3 all", CMD_MIXED_PORT_TYPES},
                                         Refusal{"TwoTypes", "setDFE DFE3 5 6", CMD_MIXED_PORT_TYPES},
                                         Refusal{"TooManyWords",
                                                 "setDFE DFE3 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0",
                                                 CMD_TOO_MANY_ARGS}),
                         refusalName);

INSTANTIATE_TEST_SUITE_P(SetVGA, RxEqRefusal,
                         testing::Values(Refusal{"Alone", "setVGA", CMD_TOO_FEW_ARGS},
                                         Refusal{"WithoutAmax", "setVGA 6 4", CMD_TOO_FEW_ARGS},
                                         Refusal{"WithoutList", "setVGA 6 4 0x4e", CMD_TOO_FEW_ARGS},
                                         Refusal{"PoleNotANumber", "setVGA x 4 0x4e gl", CMD_BAD_PARAM},
                                         Refusal{"PeakNotANumber", "setVGA 6 4.0 0x4e gl", CMD_BAD_PARAM},
                                         Refusal{"AmaxNotANumber", "setVGA 6 4 4e gl", CMD_BAD_PARAM},
                                         Refusal{"AmaxWithoutDigits", "setVGA 6 4 0x gl", CMD_BAD_PARAM},
                                         Refusal{"PoleBeforeMissingList", "setVGA - 4 0x4e", CMD_BAD_PARAM},
                                         Refusal{"ListNotPorts", "setVGA 6 4 0x4e port0", CMD_BAD_PARAM},
                                         Refusal{"ListOfTwoTypes", "setVGA 6 4 0x4e 7-8", CMD_MIXED_PORT_TYPES},
                                         Refusal{"ListOfAllTypes", "setVGA 6 4 0x4e all", CMD_MIXED_PORT_TYPES},
                                         Refusal{"TooManyWords",
                                                 "setVGA 6 4 0x4e 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0",
                                                 CMD_TOO_MANY_ARGS}),
                         refusalName);

INSTANTIATE_TEST_SUITE_P(
    SetRxParams, RxEqRefusal,
    testing::Values(Refusal{"Alone", "setRxParams", CMD_TOO_FEW_ARGS},
                    Refusal{"WithoutAmax", "setRxParams DFE5 6 4", CMD_TOO_FEW_ARGS},
                    Refusal{"WithoutList", "setRxParams DFE5 6 4 0x4e", CMD_TOO_FEW_ARGS},
                    Refusal{"UnknownMode", "setRxParams DFE2 6 4 0x4e gl", CMD_BAD_PARAM},
                    Refusal{"PoleNotANumber", "setRxParams DFE5 6a 4 0x4e gl", CMD_BAD_PARAM},
                    Refusal{"PeakNotANumber", "setRxParams DFE5 6 4a 0x4e gl", CMD_BAD_PARAM},
                    Refusal{"AmaxNotANumber", "setRxParams DFE5 6 4 0x4g gl", CMD_BAD_PARAM},
                    Refusal{"ModeBeforeMissingList", "setRxParams DFE2 6 4 0x4e", CMD_BAD_PARAM},
                    Refusal{"NumberBeforeMixedList", "setRxParams DFE5 6 4 x all", CMD_BAD_PARAM},
                    Refusal{"ListNotPorts", "setRxParams DFE5 6 4 0x4e xgl", CMD_BAD_PARAM},
                    Refusal{"ListOfTwoTypes", "setRxParams DFE5 6 4 0x4e 0 8", CMD_MIXED_PORT_TYPES},
                    Refusal{"TooManyWords", "setRxParams DFE5 6 4 0x4e 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0",
                            CMD_TOO_MANY_ARGS}),
    refusalName);

INSTANTIATE_TEST_SUITE_P(
    SetDFEState, RxEqRefusal,
    testing::Values(Refusal{"PortNotANumber", "setDFEState p 0 DFE3 0 1 0 1 0 1 0 1 0 1", CMD_BAD_PARAM},
                    Refusal{"PortKeyword", "setDFEState gl 0 DFE3 0 1 0 1 0 1 0 1 0 1", CMD_BAD_PARAM},
                    Refusal{"LinkNotANumber", "setDFEState 4 l DFE3 0 1 0 1 0 1 0 1 0 1", CMD_BAD_PARAM}),
    refusalName);

INSTANTIATE_TEST_SUITE_P(
    Shows, RxEqRefusal,
    testing::Values(
        Refusal{"DFEWithoutList", "showDFE", CMD_TOO_FEW_ARGS}, Refusal{"DFEOfNoPorts", "showDFE sixth", CMD_BAD_PARAM},
        Refusal{"DFEOfKeywordAndPort", "showDFE gl 6", CMD_BAD_PARAM},
        Refusal{"DFETooManyWords", "showDFE 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0", CMD_TOO_MANY_ARGS},
        Refusal{"VGAWithoutList", "showVGA", CMD_TOO_FEW_ARGS}, Refusal{"VGAOfNoPorts", "showVGA 0x", CMD_BAD_PARAM},
        Refusal{"VGATooManyWords", "showVGA 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0", CMD_TOO_MANY_ARGS},
        Refusal{"RxParamsWithoutList", "showRxParams", CMD_TOO_FEW_ARGS},
        Refusal{"RxParamsOfNoPorts", "showRxParams 1-", CMD_BAD_PARAM},
        Refusal{"RxParamsTooManyWords", "showRxParams 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0",
                CMD_TOO_MANY_ARGS}),
    refusalName);

class RxEqOnOversizedSwitch : public OversizedSwitchTest {};

TEST_P(RxEqOnOversizedSwitch, NoPortBeyondTheModelIsSet) {
  EXPECT_EQ(run("setDFE DFE3 22-31"), done({"SetSerDesRxDFE(0, 22, -1, 0)", "SetSerDesRxDFE(0, 23, -1, 0)"}));
  EXPECT_EQ(run("setVGA 1 2 3 23-31"), done({"SetSerDesRxVGA(0, 23, -1, 1, 2, 3)"}));
  EXPECT_EQ(run("setRxParams DFE3 1 2 3 23-31"),
            done({"SetSerDesRxDFE(0, 23, -1, 0)", "SetSerDesRxVGA(0, 23, -1, 1, 2, 3)"}));
}

TEST_P(RxEqOnOversizedSwitch, NoPortBeyondTheModelIsShown) {
  setLink(23, 0, DFE_NONE, 1, 2, 3);
  const std::string head =
      "=================== ==== \n"
      "ASIC port             23 \n"
      "user port            123 \n"
      "link num               0 \n"
      "running rate          8G\n"
      "media type           OPT\n"
      "=================== ==== \n";
  EXPECT_EQ(run("showDFE 23-31"), printed("\nshow DFE            \n" + head + "dfe mode            NONE \n",
                                          Calls{"GetSerDesRxDFE(0, 23, 0)"} + headerQuestions({"123/0/23"})));
  EXPECT_EQ(run("showRxParams 23-31"),
            printed("\nshow rx params      \n" + head +
                        "dfe mode            NONE \n"
                        "pole                   1 \n"
                        "peak                   2 \n"
                        "amax                0x03 \n",
                    Calls{"GetSerDesRxVGA(0, 23, 0)", "GetSerDesRxDFE(0, 23, 0)"} + headerQuestions({"123/0/23"})));
}

INSTANTIATE_TEST_SUITE_P(PortCounts, RxEqOnOversizedSwitch, testing::Values(40u, 0xFFFFFFFFu));

}  // namespace
}  // namespace recording
