// Setting and showing the per-rate receive caches.
#include "commands/rx_cache.h"

#include "shell/command_reader.h"
#include "shell/command_table.h"
#include "tests/support/default_switch.h"
#include "tests/support/expected.h"
#include "tests/support/handlers.h"

namespace recording {
namespace {

// Port 6 with a single transmit link, port 7 with two.
const std::string kPorts6And7WithOneAndTwoLinksHead =
    "=================== ==== ==== ==== \n"
    "ASIC port              6    7    7 \n"
    "user port            106  107  107 \n"
    "link num               0    0    1 \n"
    "running rate          8G   8G   8G\n"
    "media type           OPT  OPT  OPT\n"
    "=================== ==== ==== ==== \n";

// Port 23 of a switch that reports more than 24.
const std::string kPort23Head =
    "=================== ==== \n"
    "ASIC port             23 \n"
    "user port            123 \n"
    "link num               0 \n"
    "running rate          8G\n"
    "media type           OPT\n"
    "=================== ==== \n";

const Calls kPort0Questions = headerQuestions({"100/0/0"});
const Calls kPort6Questions = headerQuestions({"106/0/6"});
const Calls kGlQuestions = headerQuestions({"100/0/0", "101/0/1", "102/0/2", "65535/0/3", "104/0/4", "105/0/5"});
const Calls kExgQuestions = headerQuestions({"108/0/8", "65535/0/9", "110/0/10", "111/0/11"});

void setCache(unsigned port, std::int32_t mode, std::int32_t p0, std::int32_t p1, std::int32_t p2, std::int32_t p3) {
  platform.ports[port].rxCache = {.mode = mode, .p0 = p0, .p1 = p1, .p2 = p2, .p3 = p3};
}

// Port 6 with four receive links and one transmit link, port 7 with none and two.
void makeLinkCountsDiffer() {
  platform.ports[6].tx.linkCount = 1;
  platform.ports[7].tx.linkCount = 2;
  platform.ports[7].rx.linkCount = 0;
}

class SetRxParamsCache : public TopologyTest {};

TEST_F(SetRxParamsCache, WritesTheRecordOfEveryGlPort) {
  EXPECT_EQ(run("setRxParamsCache 8G DFE3 7 0 0x4e gl"),
            done({"SetSerDesRxRateParams(0, 0, 4, 0, 7, 0, 78, 0)", "SetSerDesRxRateParams(0, 1, 4, 0, 7, 0, 78, 0)",
                  "SetSerDesRxRateParams(0, 2, 4, 0, 7, 0, 78, 0)", "SetSerDesRxRateParams(0, 3, 4, 0, 7, 0, 78, 0)",
                  "SetSerDesRxRateParams(0, 4, 4, 0, 7, 0, 78, 0)", "SetSerDesRxRateParams(0, 5, 4, 0, 7, 0, 78, 0)"}));
}

TEST_F(SetRxParamsCache, ShortcutAndAnyCaseDoTheSame) {
  EXPECT_EQ(run("srxpc 8g dfe3 7 0 0X4E 0"), done({"SetSerDesRxRateParams(0, 0, 4, 0, 7, 0, 78, 0)"}));
  EXPECT_EQ(run("SETRXPARAMSCACHE 8 DFE3 7 0 78 0"), done({"SetSerDesRxRateParams(0, 0, 4, 0, 7, 0, 78, 0)"}));
}

TEST_F(SetRxParamsCache, EachRateIsItsSpeedCode) {
  EXPECT_EQ(run("setRxParamsCache auto DFE5 1 2 3 0"), done({"SetSerDesRxRateParams(0, 0, 0, 1, 1, 2, 3, 0)"}));
  EXPECT_EQ(run("setRxParamsCache 1G DFE5 1 2 3 0"), done({"SetSerDesRxRateParams(0, 0, 1, 1, 1, 2, 3, 0)"}));
  EXPECT_EQ(run("setRxParamsCache 2 DFE5 1 2 3 0"), done({"SetSerDesRxRateParams(0, 0, 2, 1, 1, 2, 3, 0)"}));
  EXPECT_EQ(run("setRxParamsCache 4g DFE5 1 2 3 0"), done({"SetSerDesRxRateParams(0, 0, 3, 1, 1, 2, 3, 0)"}));
  EXPECT_EQ(run("setRxParamsCache 10 DFE5 1 2 3 0"), done({"SetSerDesRxRateParams(0, 0, 5, 1, 1, 2, 3, 0)"}));
  EXPECT_EQ(run("setRxParamsCache 20G DFE5 1 2 3 0"), done({"SetSerDesRxRateParams(0, 0, 6, 1, 1, 2, 3, 0)"}));
}

TEST_F(SetRxParamsCache, EachModeIsItsNumber) {
  EXPECT_EQ(run("setRxParamsCache 8G DFE3 1 2 3 0"), done({"SetSerDesRxRateParams(0, 0, 4, 0, 1, 2, 3, 0)"}));
  EXPECT_EQ(run("setRxParamsCache 8G DFE5 1 2 3 0"), done({"SetSerDesRxRateParams(0, 0, 4, 1, 1, 2, 3, 0)"}));
  EXPECT_EQ(run("setRxParamsCache 8G None 1 2 3 0"), done({"SetSerDesRxRateParams(0, 0, 4, 2, 1, 2, 3, 0)"}));
  EXPECT_EQ(run("setRxParamsCache 8G DFE1 1 2 3 0"), done({"SetSerDesRxRateParams(0, 0, 4, 3, 1, 2, 3, 0)"}));
}

TEST_F(SetRxParamsCache, NumbersAreStoredWhole) {
  EXPECT_EQ(run("setRxParamsCache 8G DFE3 200 -129 300 0"),
            done({"SetSerDesRxRateParams(0, 0, 4, 0, 200, -129, 300, 0)"}));
  EXPECT_EQ(run("setRxParamsCache 8G DFE3 0x7fffffff -2147483648 0xffffffff 0"),
            done({"SetSerDesRxRateParams(0, 0, 4, 0, 2147483647, -2147483648, -1, 0)"}));
}

TEST_F(SetRxParamsCache, PortsAreWrittenInAscendingOrderAlsoWithoutReceiveLinks) {
  platform.ports[1].rx.linkCount = 0;
  discover();
  EXPECT_EQ(run("setRxParamsCache 8G DFE3 1 2 3 2 1 0 2"),
            done({"SetSerDesRxRateParams(0, 0, 4, 0, 1, 2, 3, 0)", "SetSerDesRxRateParams(0, 1, 4, 0, 1, 2, 3, 0)",
                  "SetSerDesRxRateParams(0, 2, 4, 0, 1, 2, 3, 0)"}));
}

TEST_F(SetRxParamsCache, PortOfFourLinksTakesOneCall) {
  EXPECT_EQ(run("setRxParamsCache 8G DFE3 1 2 3 xg"),
            done({"SetSerDesRxRateParams(0, 6, 4, 0, 1, 2, 3, 0)", "SetSerDesRxRateParams(0, 7, 4, 0, 1, 2, 3, 0)"}));
}

TEST_F(SetRxParamsCache, PortWithoutTypeIsAllowed) {
  platform.ports[8].hwConfig.presence = 0;
  discover();
  EXPECT_EQ(run("setRxParamsCache 8G DFE3 1 2 3 0 8"),
            done({"SetSerDesRxRateParams(0, 0, 4, 0, 1, 2, 3, 0)", "SetSerDesRxRateParams(0, 8, 4, 0, 1, 2, 3, 0)"}));
}

TEST_F(SetRxParamsCache, EmptyListWritesNothing) {
  EXPECT_EQ(run("setRxParamsCache 8G DFE3 1 2 3 5-2"), done({}));
  EXPECT_EQ(run("setRxParamsCache 8G DFE3 1 2 3 12-31"), done({}));
}

TEST_F(SetRxParamsCache, AddressesTheSelectedAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("setRxParamsCache 8G DFE3 1 2 3 0"), done({"SetSerDesRxRateParams(1, 0, 4, 0, 1, 2, 3, 0)"}));
}

TEST_F(SetRxParamsCache, PositiveResultIsSuccess) {
  platform.fail("SetSerDesRxRateParams", 1);
  EXPECT_EQ(run("setRxParamsCache 8G DFE3 1 2 3 0 1"),
            done({"SetSerDesRxRateParams(0, 0, 4, 0, 1, 2, 3, 0)", "SetSerDesRxRateParams(0, 1, 4, 0, 1, 2, 3, 0)"}));
}

TEST_F(SetRxParamsCache, FailureOnEachPortLeavesEarlierPortsWritten) {
  expectEachFailureEnds(
      "setRxParamsCache 8G DFE3 7 0 0x4e 0-2",
      {"SetSerDesRxRateParams(0, 0, 4, 0, 7, 0, 78, 0)", "SetSerDesRxRateParams(0, 1, 4, 0, 7, 0, 78, 0)",
       "SetSerDesRxRateParams(0, 2, 4, 0, 7, 0, 78, 0)"},
      "setRxParamsCacheCmdHandler: serdes err");
}

using SetRxParamsRaw = TopologyTest;

TEST_F(SetRxParamsRaw, WritesFiveNumbersToTheAsicsCache) {
  EXPECT_EQ(run("setRxParamsRaw asic 8G 1 7 0 0x4e 0 gl"),
            done({"SetSerDesRxRateParams(0, 0, 4, 1, 7, 0, 78, 0)", "SetSerDesRxRateParams(0, 1, 4, 1, 7, 0, 78, 0)",
                  "SetSerDesRxRateParams(0, 2, 4, 1, 7, 0, 78, 0)", "SetSerDesRxRateParams(0, 3, 4, 1, 7, 0, 78, 0)",
                  "SetSerDesRxRateParams(0, 4, 4, 1, 7, 0, 78, 0)", "SetSerDesRxRateParams(0, 5, 4, 1, 7, 0, 78, 0)"}));
}

TEST_F(SetRxParamsRaw, ShortcutAndAnyCaseDoTheSame) {
  EXPECT_EQ(run("srxpr a 8 1 7 0 0x4e 5 0"), done({"SetSerDesRxRateParams(0, 0, 4, 1, 7, 0, 78, 5)"}));
  EXPECT_EQ(run("SRXPR ASIC 8g 1 7 0 0x4E 5 0"), done({"SetSerDesRxRateParams(0, 0, 4, 1, 7, 0, 78, 5)"}));
}

TEST_F(SetRxParamsRaw, OtherInterfacesWriteNothing) {
  EXPECT_EQ(run("setRxParamsRaw system 8G 1 7 0 0x4e 0 gl"), done({}));
  EXPECT_EQ(run("setRxParamsRaw s 8G 1 7 0 0x4e 0 gl"), done({}));
  EXPECT_EQ(run("setRxParamsRaw network 8G 1 7 0 0x4e 0 gl"), done({}));
  EXPECT_EQ(run("setRxParamsRaw N 8G 1 7 0 0x4e 0 gl"), done({}));
}

TEST_F(SetRxParamsRaw, AnyNumbersAreStoredWhole) {
  EXPECT_EQ(run("setRxParamsRaw asic 10G 99 -1 300 0xffffff80 70000 0"),
            done({"SetSerDesRxRateParams(0, 0, 5, 99, -1, 300, -128, 70000)"}));
  EXPECT_EQ(run("setRxParamsRaw asic auto -4 1 2 3 4 0"), done({"SetSerDesRxRateParams(0, 0, 0, -4, 1, 2, 3, 4)"}));
}

TEST_F(SetRxParamsRaw, EveryTypeOfPortIsAllowed) {
  EXPECT_EQ(run("setRxParamsRaw asic 8G 1 2 3 4 5 xg"),
            done({"SetSerDesRxRateParams(0, 6, 4, 1, 2, 3, 4, 5)", "SetSerDesRxRateParams(0, 7, 4, 1, 2, 3, 4, 5)"}));
  EXPECT_EQ(run("setRxParamsRaw asic 8G 1 2 3 4 5 8 11"),
            done({"SetSerDesRxRateParams(0, 8, 4, 1, 2, 3, 4, 5)", "SetSerDesRxRateParams(0, 11, 4, 1, 2, 3, 4, 5)"}));
}

TEST_F(SetRxParamsRaw, PortWithoutReceiveLinksIsStillWritten) {
  platform.ports[0].rx.linkCount = 0;
  discover();
  EXPECT_EQ(run("setRxParamsRaw asic 8G 1 2 3 4 5 0"), done({"SetSerDesRxRateParams(0, 0, 4, 1, 2, 3, 4, 5)"}));
}

TEST_F(SetRxParamsRaw, HandlerItselfRefusesMixedTypes) {
  EXPECT_EQ(
      runUnderAShowCommand(setRxParamsRawCmdHandler, {"srxpr", "asic", "8G", "1", "7", "0", "0x4e", "0", "0", "6"}),
      refused(CMD_MIXED_PORT_TYPES));
  EXPECT_EQ(
      runUnderAShowCommand(setRxParamsRawCmdHandler, {"srxpr", "asic", "8G", "1", "7", "0", "0x4e", "0", "0", "8"}),
      refused(CMD_MIXED_PORT_TYPES));
  EXPECT_EQ(runUnderAShowCommand(setRxParamsRawCmdHandler, {"srxpr", "asic", "8G", "1", "7", "0", "0x4e", "0", "7-8"}),
            refused(CMD_MIXED_PORT_TYPES));
  EXPECT_EQ(
      runUnderAShowCommand(setRxParamsRawCmdHandler, {"srxpr", "system", "8G", "1", "7", "0", "0x4e", "0", "all"}),
      refused(CMD_MIXED_PORT_TYPES));
}

TEST_F(SetRxParamsRaw, EmptyListWritesNothing) {
  EXPECT_EQ(run("setRxParamsRaw asic 8G 1 2 3 4 5 32"), done({}));
}

TEST_F(SetRxParamsRaw, FailureOnEachPortLeavesEarlierPortsWritten) {
  expectEachFailureEnds(
      "setRxParamsRaw asic 8G 1 2 3 4 5 9-11",
      {"SetSerDesRxRateParams(0, 9, 4, 1, 2, 3, 4, 5)", "SetSerDesRxRateParams(0, 10, 4, 1, 2, 3, 4, 5)",
       "SetSerDesRxRateParams(0, 11, 4, 1, 2, 3, 4, 5)"},
      "setRxParamsRawCmdHandler: serdes err");
}

class ESetRxParamsCache : public TopologyTest {};

TEST_F(ESetRxParamsCache, WritesCdrAndEqModeOfEveryExgPort) {
  const Outcome written =
      done({"SetSerDesRxRateParams(0, 8, 5, 2, 1, 0, 0, 0)", "SetSerDesRxRateParams(0, 9, 5, 2, 1, 0, 0, 0)",
            "SetSerDesRxRateParams(0, 10, 5, 2, 1, 0, 0, 0)", "SetSerDesRxRateParams(0, 11, 5, 2, 1, 0, 0, 0)"});
  EXPECT_EQ(run("esetRxParamsCache 10G 2 1 exg"), written);
  EXPECT_EQ(run("esr 10G 2 1 exg"), written);
  EXPECT_EQ(run("ESR 10 0x2 1 EXG"), written);
}

TEST_F(ESetRxParamsCache, AnyNumbersAreStoredWhole) {
  EXPECT_EQ(run("esr 1 -300 70000 8"), done({"SetSerDesRxRateParams(0, 8, 1, -300, 70000, 0, 0, 0)"}));
}

TEST_F(ESetRxParamsCache, PortWithoutReceiveLinksIsStillWritten) {
  platform.ports[8].rx.linkCount = 0;
  discover();
  EXPECT_EQ(run("esr 10G 2 1 8"), done({"SetSerDesRxRateParams(0, 8, 5, 2, 1, 0, 0, 0)"}));
}

TEST_F(ESetRxParamsCache, PortWithoutTypeIsAllowed) {
  platform.ports[0].hwConfig.portType = 4;
  discover();
  EXPECT_EQ(run("esr 10G 2 1 0"), done({"SetSerDesRxRateParams(0, 0, 5, 2, 1, 0, 0, 0)"}));
}

TEST_F(ESetRxParamsCache, EmptyListWritesNothing) {
  EXPECT_EQ(run("esr 10G 2 1 11-8"), done({}));
}

TEST_F(ESetRxParamsCache, FailureOnEachPortLeavesEarlierPortsWritten) {
  expectEachFailureEnds(
      "esr 10G 2 1 9 8",
      {"SetSerDesRxRateParams(0, 8, 5, 2, 1, 0, 0, 0)", "SetSerDesRxRateParams(0, 9, 5, 2, 1, 0, 0, 0)"},
      "esetRxParamsCacheCmdHandler: serdes err");
}

class ShowRxParamsCache : public TopologyTest {};

TEST_F(ShowRxParamsCache, ShowsTheRecordOfEveryGlPort) {
  for (unsigned port = 0; port < 6; ++port)
    setCache(port, 0, 7, 0, 78, 5);
  EXPECT_EQ(run("showRxParamsCache 8G gl"),
            printed("\nshow rx cache for 8G \n" + kGlHead +
                        "dfe mode            DFE3 DFE3 DFE3 DFE3 DFE3 DFE3 \n"
                        "pole                   7    7    7    7    7    7 \n"
                        "peak                   0    0    0    0    0    0 \n"
                        "amax                0x4e 0x4e 0x4e 0x4e 0x4e 0x4e \n",
                    Calls{"GetSerDesRxRateParams(0, 0, 4)", "GetSerDesRxRateParams(0, 1, 4)",
                          "GetSerDesRxRateParams(0, 2, 4)", "GetSerDesRxRateParams(0, 3, 4)",
                          "GetSerDesRxRateParams(0, 4, 4)", "GetSerDesRxRateParams(0, 5, 4)"} +
                        kGlQuestions));
}

TEST_F(ShowRxParamsCache, TitleHasTheRateAsTyped) {
  setCache(0, 3, 1, 2, 3, 0);
  EXPECT_EQ(run("drxpc 8 0"), printed("\nshow rx cache for 8 \n" + kPort0Head +
                                          "dfe mode            DFE1 \n"
                                          "pole                   1 \n"
                                          "peak                   2 \n"
                                          "amax                0x03 \n",
                                      Calls{"GetSerDesRxRateParams(0, 0, 4)"} + kPort0Questions));
  EXPECT_EQ(run("DRXPC aUtO 0"), printed("\nshow rx cache for aUtO \n" + kPort0Head +
                                             "dfe mode            DFE1 \n"
                                             "pole                   1 \n"
                                             "peak                   2 \n"
                                             "amax                0x03 \n",
                                         Calls{"GetSerDesRxRateParams(0, 0, 0)"} + kPort0Questions));
}

TEST_F(ShowRxParamsCache, EachLinkRepeatsItsPortsRecord) {
  setCache(5, 1, -1, -128, 0x12, 0);
  setCache(6, 2, 10000, 9999, 300, 0);
  EXPECT_EQ(run("showRxParamsCache 20G 6 5"),
            printed("\nshow rx cache for 20G \n" + kPorts5And6Head +
                        "dfe mode            DFE5 NONE NONE NONE NONE \n"
                        "pole                  -1 10000 10000 10000 10000 \n"
                        "peak                -128 9999 9999 9999 9999 \n"
                        "amax                0x12 0x12c 0x12c 0x12c 0x12c \n",
                    Calls{"GetSerDesRxRateParams(0, 5, 6)", "GetSerDesRxRateParams(0, 6, 6)"} +
                        headerQuestions({"105/0/5", "106/0/6"})));
}

TEST_F(ShowRxParamsCache, AmaxShowsAllItsBits) {
  setCache(0, 0, -2147483647, 2147483647, -80, 0);
  setCache(1, 0, 0, 0, 0x7FFFFFFF, 0);
  EXPECT_EQ(run("showRxParamsCache 8G 0 1"),
            printed("\nshow rx cache for 8G \n" + kPorts0And1Head +
                        "dfe mode            DFE3 DFE3 \n"
                        "pole                -2147483647    0 \n"
                        "peak                2147483647    0 \n"
                        "amax                0xffffffb0 0x7fffffff \n",
                    Calls{"GetSerDesRxRateParams(0, 0, 4)", "GetSerDesRxRateParams(0, 1, 4)"} +
                        headerQuestions({"100/0/0", "101/0/1"})));
}

TEST_F(ShowRxParamsCache, ModesBeyondTheTableShowUnk) {
  for (const std::int32_t mode : {4, 250, -1, -2147483647}) {
    setCache(0, mode, 1, 2, 3, 0);
    EXPECT_EQ(run("showRxParamsCache 8G 0"), printed("\nshow rx cache for 8G \n" + kPort0Head +
                                                         "dfe mode            UNK  \n"
                                                         "pole                   1 \n"
                                                         "peak                   2 \n"
                                                         "amax                0x03 \n",
                                                     Calls{"GetSerDesRxRateParams(0, 0, 4)"} + kPort0Questions))
        << mode;
  }
}

TEST_F(ShowRxParamsCache, PortWithoutReceiveLinksIsReadButHasNoCells) {
  setCache(6, 0, 1, 2, 3, 0);
  setCache(7, 1, 4, 5, 6, 0);
  makeLinkCountsDiffer();
  discover();
  EXPECT_EQ(run("showRxParamsCache 8G xg"),
            printed("\nshow rx cache for 8G \n" + kPorts6And7WithOneAndTwoLinksHead +
                        "dfe mode            DFE3 DFE3 DFE3 DFE3 \n"
                        "pole                   1    1    1    1 \n"
                        "peak                   2    2    2    2 \n"
                        "amax                0x03 0x03 0x03 0x03 \n",
                    Calls{"GetSerDesRxRateParams(0, 6, 4)", "GetSerDesRxRateParams(0, 7, 4)"} +
                        headerQuestions({"106/0/6", "107/0/7"})));
}

TEST_F(ShowRxParamsCache, NoMoreThanFourLinksAreWalked) {
  setCache(6, 0, 1, 2, 3, 0);
  platform.ports[6].rx.linkCount = 9;
  discover();
  EXPECT_EQ(run("showRxParamsCache 8G 6"), printed("\nshow rx cache for 8G \n" + kPort6Head +
                                                       "dfe mode            DFE3 DFE3 DFE3 DFE3 \n"
                                                       "pole                   1    1    1    1 \n"
                                                       "peak                   2    2    2    2 \n"
                                                       "amax                0x03 0x03 0x03 0x03 \n",
                                                   Calls{"GetSerDesRxRateParams(0, 6, 4)"} + kPort6Questions));
}

TEST_F(ShowRxParamsCache, PortThatDoesNotRunKeepsItsCells) {
  setCache(0, 0, 1, 2, 3, 0);
  makeIdle(platform.ports[0]);
  EXPECT_EQ(run("showRxParamsCache 8G 0"),
            printed("\nshow rx cache for 8G \n"
                    "=================== ==== \n"
                    "ASIC port              0 \n"
                    "user port            100 \n"
                    "link num               0 \n"
                    "running rate         INV\n"
                    "media type           OPT\n"
                    "=================== ==== \n"
                    "dfe mode            DFE3 \n"
                    "pole                   1 \n"
                    "peak                   2 \n"
                    "amax                0x03 \n",
                    Calls{"GetSerDesRxRateParams(0, 0, 4)"} + idleHeaderQuestions("100/0/0")));
}

TEST_F(ShowRxParamsCache, GlAndXgPortsMayBeShownTogether) {
  EXPECT_EQ(run("showRxParamsCache 8G 5-6"),
            printed("\nshow rx cache for 8G \n" + kPorts5And6Head +
                        "dfe mode            DFE3 DFE3 DFE3 DFE3 DFE3 \n"
                        "pole                   0    0    0    0    0 \n"
                        "peak                   0    0    0    0    0 \n"
                        "amax                0x00 0x00 0x00 0x00 0x00 \n",
                    Calls{"GetSerDesRxRateParams(0, 5, 4)", "GetSerDesRxRateParams(0, 6, 4)"} +
                        headerQuestions({"105/0/5", "106/0/6"})));
}

TEST_F(ShowRxParamsCache, EmptyListShowsLabelsAlone) {
  EXPECT_EQ(run("showRxParamsCache 8G 5-2"), printed("\nshow rx cache for 8G \n" + kNoPortsHead +
                                                         "dfe mode            \n"
                                                         "pole                \n"
                                                         "peak                \n"
                                                         "amax                \n",
                                                     {}));
}

TEST_F(ShowRxParamsCache, PositiveResultIsSuccess) {
  setCache(0, 1, 1, 2, 3, 0);
  platform.fail("GetSerDesRxRateParams", 6);
  EXPECT_EQ(run("showRxParamsCache 8G 0"), printed("\nshow rx cache for 8G \n" + kPort0Head +
                                                       "dfe mode            DFE5 \n"
                                                       "pole                   1 \n"
                                                       "peak                   2 \n"
                                                       "amax                0x03 \n",
                                                   Calls{"GetSerDesRxRateParams(0, 0, 4)"} + kPort0Questions));
}

TEST_F(ShowRxParamsCache, FailureOfEachReadPrintsNoTable) {
  expectEachFailureEnds(
      "showRxParamsCache 8G 5-7",
      {"GetSerDesRxRateParams(0, 5, 4)", "GetSerDesRxRateParams(0, 6, 4)", "GetSerDesRxRateParams(0, 7, 4)"},
      "showRxParamsCacheCmdHandler: serdes err");
}

class ShowRxParamsRaw : public TopologyTest {};

TEST_F(ShowRxParamsRaw, ShowsTheFiveNumbersOfTheAsicsCache) {
  setCache(0, 1, 7, 0, 78, 5);
  setCache(1, -1, 300, -4, 70000, -9999);
  EXPECT_EQ(run("showRxParamsRaw asic 8G 0 1"),
            printed("\nshow rx cache for asic interface and rate 8G \n" + kPorts0And1Head +
                        "Mode                   1   -1 \n"
                        "P0                     7  300 \n"
                        "P1                     0   -4 \n"
                        "P2                    78 70000 \n"
                        "P3                     5 -9999 \n",
                    Calls{"GetSerDesRxRateParams(0, 0, 4)", "GetSerDesRxRateParams(0, 1, 4)"} +
                        headerQuestions({"100/0/0", "101/0/1"})));
}

TEST_F(ShowRxParamsRaw, TitleHasInterfaceAndRateAsTyped) {
  setCache(0, 1, 2, 3, 4, 5);
  EXPECT_EQ(run("drxpr A 10g 0"), printed("\nshow rx cache for A interface and rate 10g \n" + kPort0Head +
                                              "Mode                   1 \n"
                                              "P0                     2 \n"
                                              "P1                     3 \n"
                                              "P2                     4 \n"
                                              "P3                     5 \n",
                                          Calls{"GetSerDesRxRateParams(0, 0, 5)"} + kPort0Questions));
}

TEST_F(ShowRxParamsRaw, OtherInterfacesReadNothingAndShowZeros) {
  setCache(6, 1, 2, 3, 4, 5);
  EXPECT_EQ(run("showRxParamsRaw system 8G 6"),
            printed("\nshow rx cache for system interface and rate 8G \n" + kPort6Head +
                        "Mode                   0    0    0    0 \n"
                        "P0                     0    0    0    0 \n"
                        "P1                     0    0    0    0 \n"
                        "P2                     0    0    0    0 \n"
                        "P3                     0    0    0    0 \n",
                    kPort6Questions));
  EXPECT_EQ(run("DRXPR Network 1 6"), printed("\nshow rx cache for Network interface and rate 1 \n" + kPort6Head +
                                                  "Mode                   0    0    0    0 \n"
                                                  "P0                     0    0    0    0 \n"
                                                  "P1                     0    0    0    0 \n"
                                                  "P2                     0    0    0    0 \n"
                                                  "P3                     0    0    0    0 \n",
                                              kPort6Questions));
}

TEST_F(ShowRxParamsRaw, AllTypesMayBeShownTogether) {
  setCache(5, 1, 2, 3, 4, 5);
  setCache(8, 6, 7, 8, 9, 10);
  EXPECT_EQ(run("showRxParamsRaw asic 8G 8 5"),
            printed("\nshow rx cache for asic interface and rate 8G \n"
                    "=================== ==== ==== \n"
                    "ASIC port              5    8 \n"
                    "user port            105  108 \n"
                    "link num               0    0 \n"
                    "running rate          8G   8G\n"
                    "media type           OPT  OPT\n"
                    "=================== ==== ==== \n"
                    "Mode                   1    6 \n"
                    "P0                     2    7 \n"
                    "P1                     3    8 \n"
                    "P2                     4    9 \n"
                    "P3                     5   10 \n",
                    Calls{"GetSerDesRxRateParams(0, 5, 4)", "GetSerDesRxRateParams(0, 8, 4)"} +
                        headerQuestions({"105/0/5", "108/0/8"})));
}

TEST_F(ShowRxParamsRaw, PortWithoutReceiveLinksIsReadButHasNoCells) {
  setCache(6, 1, 2, 3, 4, 5);
  makeLinkCountsDiffer();
  discover();
  EXPECT_EQ(run("showRxParamsRaw asic 8G xg"),
            printed("\nshow rx cache for asic interface and rate 8G \n" + kPorts6And7WithOneAndTwoLinksHead +
                        "Mode                   1    1    1    1 \n"
                        "P0                     2    2    2    2 \n"
                        "P1                     3    3    3    3 \n"
                        "P2                     4    4    4    4 \n"
                        "P3                     5    5    5    5 \n",
                    Calls{"GetSerDesRxRateParams(0, 6, 4)", "GetSerDesRxRateParams(0, 7, 4)"} +
                        headerQuestions({"106/0/6", "107/0/7"})));
}

TEST_F(ShowRxParamsRaw, EmptyListShowsLabelsAlone) {
  EXPECT_EQ(run("showRxParamsRaw asic 8G 33"),
            printed("\nshow rx cache for asic interface and rate 8G \n" + kNoPortsHead +
                        "Mode                \n"
                        "P0                  \n"
                        "P1                  \n"
                        "P2                  \n"
                        "P3                  \n",
                    {}));
}

TEST_F(ShowRxParamsRaw, FailureOfEachReadPrintsNoTable) {
  expectEachFailureEnds("showRxParamsRaw asic 8G 0 11",
                        {"GetSerDesRxRateParams(0, 0, 4)", "GetSerDesRxRateParams(0, 11, 4)"},
                        "showRxParamsRawCmdHandler: serdes err");
}

class EShowRxParamsCache : public TopologyTest {};

TEST_F(EShowRxParamsCache, ShowsCdrAndEqModeOfEveryExgPort) {
  for (unsigned port = 8; port < 12; ++port)
    setCache(port, 2, 1, 7, 8, 9);
  const Outcome shown = printed("\nshow rx cache for 10G \n" + kExgHead +
                                    "cdr mode               2    2    2    2 \n"
                                    "eq mode                1    1    1    1 \n",
                                Calls{"GetSerDesRxRateParams(0, 8, 5)", "GetSerDesRxRateParams(0, 9, 5)",
                                      "GetSerDesRxRateParams(0, 10, 5)", "GetSerDesRxRateParams(0, 11, 5)"} +
                                    kExgQuestions);
  EXPECT_EQ(run("edr 10G exg"), shown);
  EXPECT_EQ(run("eshowRxParamsCache 10G exg"), shown);
  EXPECT_EQ(run("ESHOWRXPARAMSCACHE 10G EXG"), shown);
}

TEST_F(EShowRxParamsCache, TitleHasTheRateAsTypedAndNumbersAreWhole) {
  setCache(8, -300, 70000, 0, 0, 0);
  EXPECT_EQ(run("edr 10 8"), printed("\nshow rx cache for 10 \n" + kPort8Head +
                                         "cdr mode            -300 \n"
                                         "eq mode             70000 \n",
                                     Calls{"GetSerDesRxRateParams(0, 8, 5)"} + headerQuestions({"108/0/8"})));
}

TEST_F(EShowRxParamsCache, LinkCountsOfTheSidesMayDiffer) {
  setCache(8, 2, 1, 0, 0, 0);
  setCache(10, 3, 4, 0, 0, 0);
  platform.ports[8].rx.linkCount = 2;
  platform.ports[9].rx.linkCount = 0;
  platform.ports[10].tx.linkCount = 0;
  discover();
  EXPECT_EQ(run("edr 10G 8-10"), printed("\nshow rx cache for 10G \n"
                                         "=================== ==== ==== \n"
                                         "ASIC port              8    9 \n"
                                         "user port            108  N/A \n"
                                         "link num               0    0 \n"
                                         "running rate          8G   8G\n"
                                         "media type           OPT  OPT\n"
                                         "=================== ==== ==== \n"
                                         "cdr mode               2    2    3 \n"
                                         "eq mode                1    1    4 \n",
                                         Calls{"GetSerDesRxRateParams(0, 8, 5)", "GetSerDesRxRateParams(0, 9, 5)",
                                               "GetSerDesRxRateParams(0, 10, 5)"} +
                                             headerQuestions({"108/0/8", "65535/0/9", "110/0/10"})));
}

TEST_F(EShowRxParamsCache, EmptyListShowsLabelsAlone) {
  EXPECT_EQ(run("edr 10G 11-8"), printed("\nshow rx cache for 10G \n" + kNoPortsHead +
                                             "cdr mode            \n"
                                             "eq mode             \n",
                                         {}));
}

TEST_F(EShowRxParamsCache, FailureOfEachReadPrintsNoTable) {
  expectEachFailureEnds("edr 10G 10 8", {"GetSerDesRxRateParams(0, 8, 5)", "GetSerDesRxRateParams(0, 10, 5)"},
                        "eshowRxParamsCacheCmdHandler: serdes err");
}

class RxCacheRefusal : public RefusalTest {};

TEST_P(RxCacheRefusal, TouchesNoCache) {
  EXPECT_EQ(run(GetParam().line), refused(GetParam().status));
}

INSTANTIATE_TEST_SUITE_P(
    SetRxParamsCache, RxCacheRefusal,
    testing::Values(Refusal{"Alone", "setRxParamsCache", CMD_TOO_FEW_ARGS},
                    Refusal{"WithoutP2", "setRxParamsCache 8G DFE3 7 0", CMD_TOO_FEW_ARGS},
                    Refusal{"WithoutList", "setRxParamsCache 8G DFE3 7 0 0x4e", CMD_TOO_FEW_ARGS},
                    Refusal{"RateInv", "setRxParamsCache INV DFE3 7 0 0x4e gl", CMD_BAD_PARAM},
                    Refusal{"UnknownRate", "setRxParamsCache 16G DFE3 7 0 0x4e gl", CMD_BAD_PARAM},
                    Refusal{"UnknownMode", "setRxParamsCache 8G DFE4 7 0 0x4e gl", CMD_BAD_PARAM},
                    Refusal{"P0NotANumber", "setRxParamsCache 8G DFE3 x 0 0x4e gl", CMD_BAD_PARAM},
                    Refusal{"P1NotANumber", "setRxParamsCache 8G DFE3 7 0- 0x4e gl", CMD_BAD_PARAM},
                    Refusal{"P2NotANumber", "setRxParamsCache 8G DFE3 7 0 4e gl", CMD_BAD_PARAM},
                    Refusal{"RateBeforeMissingList", "setRxParamsCache 9G DFE3 7 0 0x4e", CMD_BAD_PARAM},
                    Refusal{"NumberBeforePortType", "setRxParamsCache 8G DFE3 7 0 x exg", CMD_BAD_PARAM},
                    Refusal{"ListNotPorts", "setRxParamsCache 8G DFE3 7 0 0x4e gl 3", CMD_BAD_PARAM},
                    Refusal{"ListOfAllTypes", "setRxParamsCache 8G DFE3 7 0 0x4e all", CMD_MIXED_PORT_TYPES},
                    Refusal{"ListOfTwoTypes", "setRxParamsCache 8G DFE3 7 0 0x4e 0 6", CMD_MIXED_PORT_TYPES},
                    Refusal{"MixedBeforePortType", "setRxParamsCache 8G DFE3 7 0 0x4e 0 8", CMD_MIXED_PORT_TYPES},
                    Refusal{"EthernetPorts", "setRxParamsCache 8G DFE3 7 0 0x4e exg", CMD_FC_ONLY},
                    Refusal{"OneEthernetPort", "setRxParamsCache 8G DFE3 7 0 0x4e 11", CMD_FC_ONLY},
                    Refusal{"TooManyWords", "srxpc 8G DFE3 7 0 0x4e 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0",
                            CMD_TOO_MANY_ARGS}),
    refusalName);

INSTANTIATE_TEST_SUITE_P(
    SetRxParamsRaw, RxCacheRefusal,
    testing::Values(Refusal{"Alone", "setRxParamsRaw", CMD_TOO_FEW_ARGS},
                    Refusal{"WithoutP3", "setRxParamsRaw asic 8G 1 7 0 0x4e", CMD_TOO_FEW_ARGS},
                    Refusal{"WithoutList", "setRxParamsRaw asic 8G 1 7 0 0x4e 0", CMD_TOO_FEW_ARGS},
                    Refusal{"InterfaceInv", "setRxParamsRaw INV 8G 1 7 0 0x4e 0 gl", CMD_BAD_PARAM},
                    Refusal{"UnknownInterface", "setRxParamsRaw sys 8G 1 7 0 0x4e 0 gl", CMD_BAD_PARAM},
                    Refusal{"UnknownRate", "setRxParamsRaw asic INV 1 7 0 0x4e 0 gl", CMD_BAD_PARAM},
                    Refusal{"ModeKeyword", "setRxParamsRaw asic 8G DFE3 7 0 0x4e 0 gl", CMD_BAD_PARAM},
                    Refusal{"P0NotANumber", "setRxParamsRaw asic 8G 1 7x 0 0x4e 0 gl", CMD_BAD_PARAM},
                    Refusal{"P1NotANumber", "setRxParamsRaw asic 8G 1 7 0x 0x4e 0 gl", CMD_BAD_PARAM},
                    Refusal{"P2NotANumber", "setRxParamsRaw asic 8G 1 7 0 4e 0 gl", CMD_BAD_PARAM},
                    Refusal{"P3NotANumber", "setRxParamsRaw asic 8G 1 7 0 0x4e p3 gl", CMD_BAD_PARAM},
                    Refusal{"InterfaceBeforeMissingList", "setRxParamsRaw b 8G 1 7 0 0x4e 0", CMD_BAD_PARAM},
                    Refusal{"ListNotPorts", "setRxParamsRaw asic 8G 1 7 0 0x4e 0 0-32", CMD_BAD_PARAM},
                    Refusal{"GlAndXgPorts", "setRxParamsRaw asic 8G 1 7 0 0x4e 0 5 6", CMD_MIXED_PORT_TYPES},
                    Refusal{"XgAndExgPorts", "setRxParamsRaw asic 8G 1 7 0 0x4e 0 7-8", CMD_MIXED_PORT_TYPES},
                    Refusal{"AllPorts", "setRxParamsRaw asic 8G 1 7 0 0x4e 0 all", CMD_MIXED_PORT_TYPES},
                    Refusal{"TooManyWords", "srxpr asic 8G 1 7 0 0x4e 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0",
                            CMD_TOO_MANY_ARGS}),
    refusalName);

// What is not written is still judged.
INSTANTIATE_TEST_SUITE_P(
    SetRxParamsRawOfOtherInterfaces, RxCacheRefusal,
    testing::Values(Refusal{"UnknownRate", "setRxParamsRaw system 3G 1 7 0 0x4e 0 gl", CMD_BAD_PARAM},
                    Refusal{"ModeNotANumber", "setRxParamsRaw system 8G one 7 0 0x4e 0 gl", CMD_BAD_PARAM},
                    Refusal{"P3NotANumber", "setRxParamsRaw network 8G 1 7 0 0x4e z gl", CMD_BAD_PARAM},
                    Refusal{"WithoutList", "setRxParamsRaw network 8G 1 7 0 0x4e 0", CMD_TOO_FEW_ARGS},
                    Refusal{"ListNotPorts", "setRxParamsRaw system 8G 1 7 0 0x4e 0 -1", CMD_BAD_PARAM},
                    Refusal{"MixedList", "setRxParamsRaw system 8G 1 7 0 0x4e 0 0 8", CMD_MIXED_PORT_TYPES}),
    refusalName);

INSTANTIATE_TEST_SUITE_P(ESetRxParamsCache, RxCacheRefusal,
                         testing::Values(Refusal{"Alone", "esetRxParamsCache", CMD_TOO_FEW_ARGS},
                                         Refusal{"WithoutEqMode", "esr 10G 2", CMD_TOO_FEW_ARGS},
                                         Refusal{"WithoutList", "esr 10G 2 1", CMD_TOO_FEW_ARGS},
                                         Refusal{"UnknownRate", "esr 40G 2 1 exg", CMD_BAD_PARAM},
                                         Refusal{"CdrModeNotANumber", "esr 10G two 1 exg", CMD_BAD_PARAM},
                                         Refusal{"EqModeNotANumber", "esr 10G 2 one exg", CMD_BAD_PARAM},
                                         Refusal{"NumberBeforePortType", "esr 10G 2 one gl", CMD_BAD_PARAM},
                                         Refusal{"RateBeforeMissingList", "esr INV 2 1", CMD_BAD_PARAM},
                                         Refusal{"ListNotPorts", "esr 10G 2 1 exg exg", CMD_BAD_PARAM},
                                         Refusal{"GlPorts", "esr 10G 2 1 gl", CMD_ETHERNET_ONLY},
                                         Refusal{"OneXgPort", "esr 10G 2 1 7", CMD_ETHERNET_ONLY},
                                         Refusal{"MixedBeforePortType", "esr 10G 2 1 0 8", CMD_MIXED_PORT_TYPES},
                                         Refusal{"TooManyWords",
                                                 "esr 10G 2 1 8 8 8 8 8 8 8 8 8 8 8 8 8 8 8 8 8 8 8 8 8",
                                                 CMD_TOO_MANY_ARGS}),
                         refusalName);

INSTANTIATE_TEST_SUITE_P(ShowRxParamsCache, RxCacheRefusal,
                         testing::Values(Refusal{"Alone", "showRxParamsCache", CMD_TOO_FEW_ARGS},
                                         Refusal{"WithoutList", "showRxParamsCache 8G", CMD_TOO_FEW_ARGS},
                                         Refusal{"WithoutRate", "showRxParamsCache gl", CMD_BAD_PARAM},
                                         Refusal{"UnknownRate", "showRxParamsCache inv gl", CMD_BAD_PARAM},
                                         Refusal{"RateBeforePortType", "showRxParamsCache 3G exg", CMD_BAD_PARAM},
                                         Refusal{"ListNotPorts", "showRxParamsCache 8G gl xg", CMD_BAD_PARAM},
                                         Refusal{"EthernetPorts", "showRxParamsCache 8G exg", CMD_FC_ONLY},
                                         Refusal{"AllPorts", "showRxParamsCache 8G all", CMD_FC_ONLY},
                                         Refusal{"OneEthernetPortOfSeveral", "showRxParamsCache 8G 0 1 8", CMD_FC_ONLY},
                                         Refusal{"TooManyWords",
                                                 "drxpc 8G 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0",
                                                 CMD_TOO_MANY_ARGS}),
                         refusalName);

INSTANTIATE_TEST_SUITE_P(
    ShowRxParamsRaw, RxCacheRefusal,
    testing::Values(Refusal{"Alone", "showRxParamsRaw", CMD_TOO_FEW_ARGS},
                    Refusal{"WithoutRate", "showRxParamsRaw asic", CMD_TOO_FEW_ARGS},
                    Refusal{"WithoutList", "showRxParamsRaw asic 8G", CMD_TOO_FEW_ARGS},
                    Refusal{"UnknownInterface", "showRxParamsRaw as 8G gl", CMD_BAD_PARAM},
                    Refusal{"InterfaceInv", "showRxParamsRaw inv 8G gl", CMD_BAD_PARAM},
                    Refusal{"UnknownRate", "showRxParamsRaw asic 80G gl", CMD_BAD_PARAM},
                    Refusal{"RateBeforeMissingList", "showRxParamsRaw asic INV", CMD_BAD_PARAM},
                    Refusal{"ListNotPorts", "showRxParamsRaw asic 8G 0.5", CMD_BAD_PARAM},
                    Refusal{"UnknownRateOfOtherInterface", "showRxParamsRaw system 80G gl", CMD_BAD_PARAM},
                    Refusal{"TooManyWords", "drxpr a 8G 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0",
                            CMD_TOO_MANY_ARGS}),
    refusalName);

INSTANTIATE_TEST_SUITE_P(
    EShowRxParamsCache, RxCacheRefusal,
    testing::Values(
        Refusal{"Alone", "eshowRxParamsCache", CMD_TOO_FEW_ARGS}, Refusal{"WithoutList", "edr 10G", CMD_TOO_FEW_ARGS},
        Refusal{"WithoutRate", "edr exg", CMD_BAD_PARAM}, Refusal{"UnknownRate", "edr INV exg", CMD_BAD_PARAM},
        Refusal{"RateBeforePortType", "edr 11G gl", CMD_BAD_PARAM},
        Refusal{"ListNotPorts", "edr 10G eth", CMD_BAD_PARAM}, Refusal{"GlPorts", "edr 10G gl", CMD_ETHERNET_ONLY},
        Refusal{"XgPorts", "edr 10G xg", CMD_ETHERNET_ONLY}, Refusal{"AllPorts", "edr 10G all", CMD_ETHERNET_ONLY},
        Refusal{"OneGlPortOfSeveral", "edr 10G 8 9 0", CMD_ETHERNET_ONLY},
        Refusal{"TooManyWords", "edr 10G 8 8 8 8 8 8 8 8 8 8 8 8 8 8 8 8 8 8 8 8 8 8 8", CMD_TOO_MANY_ARGS}),
    refusalName);

class RxCacheOnOversizedSwitch : public OversizedSwitchTest {};

TEST_P(RxCacheOnOversizedSwitch, NoPortBeyondTheModelIsWritten) {
  EXPECT_EQ(run("setRxParamsRaw asic 8G 1 2 3 4 5 22-31"),
            done({"SetSerDesRxRateParams(0, 22, 4, 1, 2, 3, 4, 5)", "SetSerDesRxRateParams(0, 23, 4, 1, 2, 3, 4, 5)"}));
  EXPECT_EQ(run("esr 10G 2 1 23-31"), done({"SetSerDesRxRateParams(0, 23, 5, 2, 1, 0, 0, 0)"}));
}

TEST_P(RxCacheOnOversizedSwitch, NoPortBeyondTheModelIsShown) {
  setCache(23, 2, 1, 0, 0, 0);
  EXPECT_EQ(run("edr 10G 23-31"), printed("\nshow rx cache for 10G \n" + kPort23Head +
                                              "cdr mode               2 \n"
                                              "eq mode                1 \n",
                                          Calls{"GetSerDesRxRateParams(0, 23, 5)"} + headerQuestions({"123/0/23"})));
}

INSTANTIATE_TEST_SUITE_P(PortCounts, RxCacheOnOversizedSwitch, testing::Values(40u, 0xFFFFFFFFu));

}  // namespace
}  // namespace recording
