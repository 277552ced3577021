// Transmit caches of fibre channel ports, of an interface, and of ethernet ports.
#include <limits>
#include <string>

#include "commands/tx_cache.h"
#include "tests/support/expected.h"
#include "tests/support/handlers.h"

namespace recording {
namespace {

// The heads of tables of port 0 alone.
const std::string kHeadAt8GOfPort0 =
    "\n"
    "show tx cache for 8G \n"
    "=================== ==== \n"
    "ASIC port              0 \n"
    "user port            100 \n"
    "link num               0 \n"
    "running rate          8G\n"
    "media type           OPT\n"
    "=================== ==== \n";

const std::string kRawHeadAt8GOfPort0 =
    "\n"
    "show tx cache for asic interface at rate 8G \n"
    "=================== ==== \n"
    "ASIC port              0 \n"
    "user port            100 \n"
    "link num               0 \n"
    "running rate          8G\n"
    "media type           OPT\n"
    "=================== ==== \n";

using SetTxParamsCache = TopologyTest;
using ShowTxParamsCache = TopologyTest;
using SetTxParamsRaw = TopologyTest;
using ShowTxParamsRaw = TopologyTest;
using ESetTxParamsCache = TopologyTest;
using EShowTxParamsCache = TopologyTest;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

// The cache of an ordinary fibre channel port, and of an ethernet port.
constexpr SerDesTxRateParams kFibreChannelCache = {
    .power = 115, .slew = 2, .mode = 2, .p0 = -4, .p1 = 55, .p2 = -25, .p3 = 0};
constexpr SerDesTxRateParams kEthernetCache = {.power = 6, .slew = 7, .mode = 0, .p0 = 5, .p1 = 0, .p2 = 0, .p3 = 0};

// Arguments after asic, port and rate are the record's: power, slew, mode, p0 to p3.
TEST_F(SetTxParamsCache, StoresTheRecordOfEveryGlPort) {
  EXPECT_EQ(run("setTxParamsCache 8G FFE3 115 -4 55 -25 0 36 gl"),
            done({"SetSerDesTxRateParams(0, 0, 4, 115, 2, 2, -4, 55, -25, 0)",
                  "SetSerDesTxRateParams(0, 1, 4, 115, 2, 2, -4, 55, -25, 0)",
                  "SetSerDesTxRateParams(0, 2, 4, 115, 2, 2, -4, 55, -25, 0)",
                  "SetSerDesTxRateParams(0, 3, 4, 115, 2, 2, -4, 55, -25, 0)",
                  "SetSerDesTxRateParams(0, 4, 4, 115, 2, 2, -4, 55, -25, 0)",
                  "SetSerDesTxRateParams(0, 5, 4, 115, 2, 2, -4, 55, -25, 0)"}));
}

TEST_F(SetTxParamsCache, AnswersToItsShortcut) {
  EXPECT_EQ(run("stxpc 4 ffe4 1 2 3 4 5 100PS 7 6"), done({"SetSerDesTxRateParams(0, 6, 3, 1, 6, 3, 2, 3, 4, 5)",
                                                           "SetSerDesTxRateParams(0, 7, 3, 1, 6, 3, 2, 3, 4, 5)"}));
}

TEST_F(SetTxParamsCache, NumbersAreStoredWhole) {
  EXPECT_EQ(run("setTxParamsCache 8G FFE2 300 -300 0x7fffffff -2147483648 70000 24 0"),
            done({"SetSerDesTxRateParams(0, 0, 4, 300, 0, 1, -300, 2147483647, -2147483648, 70000)"}));
}

TEST_F(SetTxParamsCache, AnyRateGoesToThePlatform) {
  EXPECT_EQ(run("setTxParamsCache AUTO FFE2 1 2 3 4 5 24 0"),
            done({"SetSerDesTxRateParams(0, 0, 0, 1, 0, 1, 2, 3, 4, 5)"}));
  EXPECT_EQ(run("setTxParamsCache 20g FFE2 1 2 3 4 5 24 0"),
            done({"SetSerDesTxRateParams(0, 0, 6, 1, 0, 1, 2, 3, 4, 5)"}));
}

TEST_F(SetTxParamsCache, StoresOnTheCurrentAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("setTxParamsCache 8G FFE2 1 2 3 4 5 24 0"),
            done({"SetSerDesTxRateParams(1, 0, 4, 1, 0, 1, 2, 3, 4, 5)"}));
}

// A port that has no type is neither an ethernet nor a fibre channel port.
TEST_F(SetTxParamsCache, PortOfNoTypeIsStored) {
  platform.ports[8].hwConfig.presence = 0;
  discover();
  EXPECT_EQ(run("setTxParamsCache 8G FFE2 1 2 3 4 5 24 8"),
            done({"SetSerDesTxRateParams(0, 8, 4, 1, 0, 1, 2, 3, 4, 5)"}));
}

TEST_F(SetTxParamsCache, FailureOnThirdPortLeavesFirstTwoWritten) {
  platform.fail("SetSerDesTxRateParams", -5, 3);
  EXPECT_EQ(
      run("setTxParamsCache 8G FFE2 1 2 3 4 5 24 0-4"),
      failed("setTxParamsCacheCmdHandler: serdes err -5\n", {"SetSerDesTxRateParams(0, 0, 4, 1, 0, 1, 2, 3, 4, 5)",
                                                             "SetSerDesTxRateParams(0, 1, 4, 1, 0, 1, 2, 3, 4, 5)",
                                                             "SetSerDesTxRateParams(0, 2, 4, 1, 0, 1, 2, 3, 4, 5)"}));
}

TEST_F(SetTxParamsCache, EmptySelectionStoresNothing) {
  EXPECT_EQ(run("setTxParamsCache 8G FFE2 1 2 3 4 5 24 5-2"), done({}));
  EXPECT_EQ(run("setTxParamsCache 8G FFE2 1 2 3 4 5 24 12-31"), done({}));
}

TEST_F(ShowTxParamsCache, PrintsSevenRowsUnderATitleWithTheRateAsTyped) {
  platform.ports[0].txCache = kFibreChannelCache;
  EXPECT_EQ(run("showTxParamsCache 8g 0"),
            printed("\n"
                    "show tx cache for 8g \n"
                    "=================== ==== \n"
                    "ASIC port              0 \n"
                    "user port            100 \n"
                    "link num               0 \n"
                    "running rate          8G\n"
                    "media type           OPT\n"
                    "=================== ==== \n"
                    "ffe mode            FFE3 \n"
                    "k (power)            115 \n"
                    "c0 (precursor)        -4 \n"
                    "c1 (main)             55 \n"
                    "c2 (postcursor)      -25 \n"
                    "c3 (postcursor)        0 \n"
                    "slew rate (ps)        36\n",
                    Calls{"GetSerDesTxRateParams(0, 0, 4)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParamsCache, AnswersToItsShortcut) {
  platform.ports[0].txCache = kFibreChannelCache;
  EXPECT_EQ(run("dtxpc 2 0"), printed("\n"
                                      "show tx cache for 2 \n"
                                      "=================== ==== \n"
                                      "ASIC port              0 \n"
                                      "user port            100 \n"
                                      "link num               0 \n"
                                      "running rate          8G\n"
                                      "media type           OPT\n"
                                      "=================== ==== \n"
                                      "ffe mode            FFE3 \n"
                                      "k (power)            115 \n"
                                      "c0 (precursor)        -4 \n"
                                      "c1 (main)             55 \n"
                                      "c2 (postcursor)      -25 \n"
                                      "c3 (postcursor)        0 \n"
                                      "slew rate (ps)        36\n",
                                      Calls{"GetSerDesTxRateParams(0, 0, 2)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParamsCache, EachLinkOfAPortRepeatsItsValues) {
  platform.ports[0].txCache = kFibreChannelCache;
  platform.ports[6].txCache = {.power = 1, .slew = 5, .mode = 3, .p0 = 2, .p1 = 3, .p2 = 4, .p3 = 5};
  platform.ports[6].tx.linkCount = 2;
  discover();
  EXPECT_EQ(run("showTxParamsCache AUTO 0 6"),
            printed("\n"
                    "show tx cache for AUTO \n"
                    "=================== ==== ==== ==== \n"
                    "ASIC port              0    6    6 \n"
                    "user port            100  106  106 \n"
                    "link num               0    0    1 \n"
                    "running rate          8G   8G   8G\n"
                    "media type           OPT  OPT  OPT\n"
                    "=================== ==== ==== ==== \n"
                    "ffe mode            FFE3 FFE4 FFE4 \n"
                    "k (power)            115    1    1 \n"
                    "c0 (precursor)        -4    2    2 \n"
                    "c1 (main)             55    3    3 \n"
                    "c2 (postcursor)      -25    4    4 \n"
                    "c3 (postcursor)        0    5    5 \n"
                    "slew rate (ps)        36   75   75\n",
                    Calls{"GetSerDesTxRateParams(0, 0, 0)", "GetSerDesTxRateParams(0, 6, 0)"} +
                        headerQuestions({"100/0/0", "106/0/6"})));
}

TEST_F(ShowTxParamsCache, NumbersAreShownWhole) {
  platform.ports[0].txCache = {
      .power = 300, .slew = 7, .mode = 1, .p0 = kLowest, .p1 = kHighest, .p2 = -1, .p3 = 70000};
  EXPECT_EQ(run("showTxParamsCache 8G 0"),
            printed(kHeadAt8GOfPort0 + "ffe mode            FFE2 \n"
                                       "k (power)            300 \n"
                                       "c0 (precursor)      -2147483648 \n"
                                       "c1 (main)           2147483647 \n"
                                       "c2 (postcursor)       -1 \n"
                                       "c3 (postcursor)     70000 \n"
                                       "slew rate (ps)       UNK\n",
                    Calls{"GetSerDesTxRateParams(0, 0, 4)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParamsCache, ModeNoneOverrunsItsCell) {
  platform.ports[0].txCache = platform.ports[1].txCache = kFibreChannelCache;
  platform.ports[0].txCache.mode = FFE_NONE;
  EXPECT_EQ(run("showTxParamsCache 8G 0 1"),
            printed("\n"
                    "show tx cache for 8G \n"
                    "=================== ==== ==== \n"
                    "ASIC port              0    1 \n"
                    "user port            100  101 \n"
                    "link num               0    0 \n"
                    "running rate          8G   8G\n"
                    "media type           OPT  OPT\n"
                    "=================== ==== ==== \n"
                    "ffe mode            FFENone FFE3 \n"
                    "k (power)            115  115 \n"
                    "c0 (precursor)        -4   -4 \n"
                    "c1 (main)             55   55 \n"
                    "c2 (postcursor)      -25  -25 \n"
                    "c3 (postcursor)        0    0 \n"
                    "slew rate (ps)        36   36\n",
                    Calls{"GetSerDesTxRateParams(0, 0, 4)", "GetSerDesTxRateParams(0, 1, 4)"} +
                        headerQuestions({"100/0/0", "101/0/1"})));
}

TEST_F(ShowTxParamsCache, ModesAndSlewsBeyondTheTablesPrintUnknown) {
  platform.ports[0].txCache = {.power = 0, .slew = 8, .mode = 4, .p0 = 0, .p1 = 0, .p2 = 0, .p3 = 0};
  platform.ports[1].txCache = {.power = 0, .slew = -1, .mode = -1, .p0 = 0, .p1 = 0, .p2 = 0, .p3 = 0};
  platform.ports[2].txCache = {.power = 0, .slew = kLowest, .mode = kLowest, .p0 = 0, .p1 = 0, .p2 = 0, .p3 = 0};
  EXPECT_EQ(run("showTxParamsCache 8G 0-2"),
            printed("\n"
                    "show tx cache for 8G \n"
                    "=================== ==== ==== ==== \n"
                    "ASIC port              0    1    2 \n"
                    "user port            100  101  102 \n"
                    "link num               0    0    0 \n"
                    "running rate          8G   8G   8G\n"
                    "media type           OPT  OPT  OPT\n"
                    "=================== ==== ==== ==== \n"
                    "ffe mode            UNK  UNK  UNK  \n"
                    "k (power)              0    0    0 \n"
                    "c0 (precursor)         0    0    0 \n"
                    "c1 (main)              0    0    0 \n"
                    "c2 (postcursor)        0    0    0 \n"
                    "c3 (postcursor)        0    0    0 \n"
                    "slew rate (ps)       UNK  UNK  UNK\n",
                    Calls{"GetSerDesTxRateParams(0, 0, 4)", "GetSerDesTxRateParams(0, 1, 4)",
                          "GetSerDesTxRateParams(0, 2, 4)"} +
                        headerQuestions({"100/0/0", "101/0/1", "102/0/2"})));
}

TEST_F(ShowTxParamsCache, PortThatDoesNotRunShowsItsValues) {
  platform.ports[0].txCache = kFibreChannelCache;
  makeIdle(platform.ports[0]);
  EXPECT_EQ(run("showTxParamsCache 8G 0"),
            printed("\n"
                    "show tx cache for 8G \n"
                    "=================== ==== \n"
                    "ASIC port              0 \n"
                    "user port            100 \n"
                    "link num               0 \n"
                    "running rate         INV\n"
                    "media type           OPT\n"
                    "=================== ==== \n"
                    "ffe mode            FFE3 \n"
                    "k (power)            115 \n"
                    "c0 (precursor)        -4 \n"
                    "c1 (main)             55 \n"
                    "c2 (postcursor)      -25 \n"
                    "c3 (postcursor)        0 \n"
                    "slew rate (ps)        36\n",
                    Calls{"GetSerDesTxRateParams(0, 0, 4)"} + idleHeaderQuestions("100/0/0")));
}

TEST_F(ShowTxParamsCache, ReceiveLinkCountDoesNotMatter) {
  platform.ports[0].txCache = kFibreChannelCache;
  platform.ports[0].rx.linkCount = 3;
  discover();
  EXPECT_EQ(run("showTxParamsCache 8G 0"),
            printed(kHeadAt8GOfPort0 + "ffe mode            FFE3 \n"
                                       "k (power)            115 \n"
                                       "c0 (precursor)        -4 \n"
                                       "c1 (main)             55 \n"
                                       "c2 (postcursor)      -25 \n"
                                       "c3 (postcursor)        0 \n"
                                       "slew rate (ps)        36\n",
                    Calls{"GetSerDesTxRateParams(0, 0, 4)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParamsCache, PortWithoutTransmitLinksIsReadButHasNoColumn) {
  platform.ports[0].tx.linkCount = 0;
  discover();
  EXPECT_EQ(run("showTxParamsCache 8G 0"),
            printed("\n"
                    "show tx cache for 8G \n"
                    "=================== \n"
                    "ASIC port           \n"
                    "user port           \n"
                    "link num            \n"
                    "running rate       \n"
                    "media type         \n"
                    "=================== \n"
                    "ffe mode            \n"
                    "k (power)           \n"
                    "c0 (precursor)      \n"
                    "c1 (main)           \n"
                    "c2 (postcursor)     \n"
                    "c3 (postcursor)     \n"
                    "slew rate (ps)     \n",
                    Calls{"GetSerDesTxRateParams(0, 0, 4)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParamsCache, LinksBeyondTheFourthHaveNoColumn) {
  platform.ports[0].txCache = kFibreChannelCache;
  platform.ports[0].tx.linkCount = 9;
  discover();
  EXPECT_EQ(run("showTxParamsCache 8G 0"),
            printed("\n"
                    "show tx cache for 8G \n"
                    "=================== ==== ==== ==== ==== \n"
                    "ASIC port              0    0    0    0 \n"
                    "user port            100  100  100  100 \n"
                    "link num               0    1    2    3 \n"
                    "running rate          8G   8G   8G   8G\n"
                    "media type           OPT  OPT  OPT  OPT\n"
                    "=================== ==== ==== ==== ==== \n"
                    "ffe mode            FFE3 FFE3 FFE3 FFE3 \n"
                    "k (power)            115  115  115  115 \n"
                    "c0 (precursor)        -4   -4   -4   -4 \n"
                    "c1 (main)             55   55   55   55 \n"
                    "c2 (postcursor)      -25  -25  -25  -25 \n"
                    "c3 (postcursor)        0    0    0    0 \n"
                    "slew rate (ps)        36   36   36   36\n",
                    Calls{"GetSerDesTxRateParams(0, 0, 4)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParamsCache, EmptySelectionGivesHeadAndLabelsOnly) {
  EXPECT_EQ(run("showTxParamsCache 8G 5-2"), printed("\n"
                                                     "show tx cache for 8G \n"
                                                     "=================== \n"
                                                     "ASIC port           \n"
                                                     "user port           \n"
                                                     "link num            \n"
                                                     "running rate       \n"
                                                     "media type         \n"
                                                     "=================== \n"
                                                     "ffe mode            \n"
                                                     "k (power)           \n"
                                                     "c0 (precursor)      \n"
                                                     "c1 (main)           \n"
                                                     "c2 (postcursor)     \n"
                                                     "c3 (postcursor)     \n"
                                                     "slew rate (ps)     \n",
                                                     {}));
}

TEST_F(ShowTxParamsCache, AllIsAllowedWhereNoPortIsAnEthernetPort) {
  platform.portCount = 2;
  platform.ports[1] = platform.ports[6];
  platform.ports[1].tx.linkCount = 1;
  platform.ports[0].txCache = platform.ports[1].txCache = kFibreChannelCache;
  discover();
  EXPECT_EQ(run("showTxParamsCache 8G all"),
            printed("\n"
                    "show tx cache for 8G \n"
                    "=================== ==== ==== \n"
                    "ASIC port              0    1 \n"
                    "user port            100  106 \n"
                    "link num               0    0 \n"
                    "running rate          8G   8G\n"
                    "media type           OPT  OPT\n"
                    "=================== ==== ==== \n"
                    "ffe mode            FFE3 FFE3 \n"
                    "k (power)            115  115 \n"
                    "c0 (precursor)        -4   -4 \n"
                    "c1 (main)             55   55 \n"
                    "c2 (postcursor)      -25  -25 \n"
                    "c3 (postcursor)        0    0 \n"
                    "slew rate (ps)        36   36\n",
                    Calls{"GetSerDesTxRateParams(0, 0, 4)", "GetSerDesTxRateParams(0, 1, 4)"} +
                        headerQuestions({"100/0/0", "106/0/6"})));
}

TEST_F(ShowTxParamsCache, ReadsOnTheCurrentAsic) {
  platform.ports[0].txCache = kFibreChannelCache;
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("showTxParamsCache 8G 0"),
            printed(kHeadAt8GOfPort0 + "ffe mode            FFE3 \n"
                                       "k (power)            115 \n"
                                       "c0 (precursor)        -4 \n"
                                       "c1 (main)             55 \n"
                                       "c2 (postcursor)      -25 \n"
                                       "c3 (postcursor)        0 \n"
                                       "slew rate (ps)        36\n",
                    Calls{"GetSerDesTxRateParams(1, 0, 4)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParamsCache, FailureOnSecondPortPrintsOnlyTheError) {
  platform.fail("GetSerDesTxRateParams", -5, 2);
  EXPECT_EQ(run("showTxParamsCache 8G 0-2"),
            failed("showTxParamsCacheCmdHandler: serdes err -5\n",
                   {"GetSerDesTxRateParams(0, 0, 4)", "GetSerDesTxRateParams(0, 1, 4)"}));
}

TEST_F(SetTxParamsRaw, NumbersGoInRecordOrder) {
  EXPECT_EQ(run("setTxParamsRaw asic 8G 0 2 115 -4 55 -25 0 gl"),
            done({"SetSerDesTxRateParams(0, 0, 4, 0, 2, 115, -4, 55, -25, 0)",
                  "SetSerDesTxRateParams(0, 1, 4, 0, 2, 115, -4, 55, -25, 0)",
                  "SetSerDesTxRateParams(0, 2, 4, 0, 2, 115, -4, 55, -25, 0)",
                  "SetSerDesTxRateParams(0, 3, 4, 0, 2, 115, -4, 55, -25, 0)",
                  "SetSerDesTxRateParams(0, 4, 4, 0, 2, 115, -4, 55, -25, 0)",
                  "SetSerDesTxRateParams(0, 5, 4, 0, 2, 115, -4, 55, -25, 0)"}));
}

TEST_F(SetTxParamsRaw, AnswersToItsShortcutAndToTheInterfacesShortName) {
  EXPECT_EQ(run("stxpr A 10 1 2 3 4 5 6 7 exg"), done({"SetSerDesTxRateParams(0, 8, 5, 1, 2, 3, 4, 5, 6, 7)",
                                                       "SetSerDesTxRateParams(0, 9, 5, 1, 2, 3, 4, 5, 6, 7)",
                                                       "SetSerDesTxRateParams(0, 10, 5, 1, 2, 3, 4, 5, 6, 7)",
                                                       "SetSerDesTxRateParams(0, 11, 5, 1, 2, 3, 4, 5, 6, 7)"}));
}

TEST_F(SetTxParamsRaw, NumbersAreNeitherCutNorCheckedAgainstTheNameTables) {
  EXPECT_EQ(run("setTxParamsRaw ASIC 1G -1 250 0 300 0x80000000 -300 2147483647 7"),
            done({"SetSerDesTxRateParams(0, 7, 1, -1, 250, 0, 300, -2147483648, -300, 2147483647)"}));
}

TEST_F(SetTxParamsRaw, OtherInterfacesSucceedWithoutAPlatformCall) {
  for (const char* interface : {"system", "s", "NETWORK", "n"}) {
    EXPECT_EQ(run(std::string("setTxParamsRaw ") + interface + " 8G 0 2 115 -4 55 -25 0 gl"), done({})) << interface;
  }
}

TEST_F(SetTxParamsRaw, StoresOnTheCurrentAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("setTxParamsRaw asic 8G 1 2 3 4 5 6 7 0"),
            done({"SetSerDesTxRateParams(1, 0, 4, 1, 2, 3, 4, 5, 6, 7)"}));
}

TEST_F(SetTxParamsRaw, FailureOnSecondPortLeavesFirstWritten) {
  platform.fail("SetSerDesTxRateParams", -8, 2);
  EXPECT_EQ(
      run("setTxParamsRaw asic 8G 1 2 3 4 5 6 7 0-2"),
      failed("setTxParamsRawCmdHandler: serdes err -8\n", {"SetSerDesTxRateParams(0, 0, 4, 1, 2, 3, 4, 5, 6, 7)",
                                                           "SetSerDesTxRateParams(0, 1, 4, 1, 2, 3, 4, 5, 6, 7)"}));
}

TEST_F(SetTxParamsRaw, HandlerItselfRefusesMixedTypes) {
  for (const char* ports : {"0-6", "0-8", "7-8", "all"}) {
    EXPECT_EQ(runUnderAShowCommand(setTxParamsRawCmdHandler,
                                   {"stxpr", "asic", "8G", "0", "2", "115", "-4", "55", "-25", "0", ports}),
              refused(CMD_MIXED_PORT_TYPES));
  }
}

TEST_F(SetTxParamsRaw, EmptySelectionStoresNothing) {
  EXPECT_EQ(run("setTxParamsRaw asic 8G 1 2 3 4 5 6 7 32"), done({}));
}

TEST_F(ShowTxParamsRaw, PrintsPlainNumbersBelowAnEmptyLine) {
  platform.ports[0].txCache = kFibreChannelCache;
  EXPECT_EQ(run("showTxParamsRaw asic 8G 0"),
            printed("\n"
                    "show tx cache for asic interface at rate 8G \n"
                    "=================== ==== \n"
                    "ASIC port              0 \n"
                    "user port            100 \n"
                    "link num               0 \n"
                    "running rate          8G\n"
                    "media type           OPT\n"
                    "=================== ==== \n"
                    "\n"
                    "Power                115 \n"
                    "Slew                   2 \n"
                    "Mode                   2 \n"
                    "P0                    -4 \n"
                    "P1                    55 \n"
                    "P2                   -25 \n"
                    "P3                     0 \n",
                    Calls{"GetSerDesTxRateParams(0, 0, 4)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParamsRaw, TitleRepeatsInterfaceAndRateAsTyped) {
  platform.ports[0].txCache = kFibreChannelCache;
  EXPECT_EQ(run("dtxpr A 20 0"), printed("\n"
                                         "show tx cache for A interface at rate 20 \n"
                                         "=================== ==== \n"
                                         "ASIC port              0 \n"
                                         "user port            100 \n"
                                         "link num               0 \n"
                                         "running rate          8G\n"
                                         "media type           OPT\n"
                                         "=================== ==== \n"
                                         "\n"
                                         "Power                115 \n"
                                         "Slew                   2 \n"
                                         "Mode                   2 \n"
                                         "P0                    -4 \n"
                                         "P1                    55 \n"
                                         "P2                   -25 \n"
                                         "P3                     0 \n",
                                         Calls{"GetSerDesTxRateParams(0, 0, 6)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParamsRaw, AllNamesPortsOfEveryTypeAndLinksRepeatTheirPortsValues) {
  platform.portCount = 3;
  platform.ports[1] = platform.ports[6];
  platform.ports[1].tx.linkCount = 2;
  platform.ports[2] = platform.ports[8];
  platform.ports[0].txCache = kFibreChannelCache;
  platform.ports[1].txCache = {.power = 1, .slew = 2, .mode = 3, .p0 = 4, .p1 = 5, .p2 = 6, .p3 = 7};
  platform.ports[2].txCache = kEthernetCache;
  discover();
  EXPECT_EQ(run("showTxParamsRaw asic AUTO all"),
            printed("\n"
                    "show tx cache for asic interface at rate AUTO \n"
                    "=================== ==== ==== ==== ==== \n"
                    "ASIC port              0    1    1    2 \n"
                    "user port            100  106  106  108 \n"
                    "link num               0    0    1    0 \n"
                    "running rate          8G   8G   8G   8G\n"
                    "media type           OPT  OPT  OPT  OPT\n"
                    "=================== ==== ==== ==== ==== \n"
                    "\n"
                    "Power                115    1    1    6 \n"
                    "Slew                   2    2    2    7 \n"
                    "Mode                   2    3    3    0 \n"
                    "P0                    -4    4    4    5 \n"
                    "P1                    55    5    5    0 \n"
                    "P2                   -25    6    6    0 \n"
                    "P3                     0    7    7    0 \n",
                    Calls{"GetSerDesTxRateParams(0, 0, 0)", "GetSerDesTxRateParams(0, 1, 0)",
                          "GetSerDesTxRateParams(0, 2, 0)"} +
                        headerQuestions({"100/0/0", "106/0/6", "108/0/8"})));
}

TEST_F(ShowTxParamsRaw, NumbersAreShownWhole) {
  platform.ports[0].txCache = {
      .power = 300, .slew = kLowest, .mode = -1, .p0 = kHighest, .p1 = 10000, .p2 = -999, .p3 = 8};
  EXPECT_EQ(run("showTxParamsRaw asic 8G 0"),
            printed(kRawHeadAt8GOfPort0 + "\n"
                                          "Power                300 \n"
                                          "Slew                -2147483648 \n"
                                          "Mode                  -1 \n"
                                          "P0                  2147483647 \n"
                                          "P1                  10000 \n"
                                          "P2                  -999 \n"
                                          "P3                     8 \n",
                    Calls{"GetSerDesTxRateParams(0, 0, 4)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParamsRaw, OtherInterfacesShowZerosEvenAfterTheAsicsOwn) {
  platform.ports[0].txCache = kFibreChannelCache;
  ASSERT_EQ(run("showTxParamsRaw asic 8G 0").status, CMD_OK);
  EXPECT_EQ(run("showTxParamsRaw system 8G 0"), printed("\n"
                                                        "show tx cache for system interface at rate 8G \n"
                                                        "=================== ==== \n"
                                                        "ASIC port              0 \n"
                                                        "user port            100 \n"
                                                        "link num               0 \n"
                                                        "running rate          8G\n"
                                                        "media type           OPT\n"
                                                        "=================== ==== \n"
                                                        "\n"
                                                        "Power                  0 \n"
                                                        "Slew                   0 \n"
                                                        "Mode                   0 \n"
                                                        "P0                     0 \n"
                                                        "P1                     0 \n"
                                                        "P2                     0 \n"
                                                        "P3                     0 \n",
                                                        headerQuestions({"100/0/0"})));
  EXPECT_EQ(run("showTxParamsRaw n 8G 0"), printed("\n"
                                                   "show tx cache for n interface at rate 8G \n"
                                                   "=================== ==== \n"
                                                   "ASIC port              0 \n"
                                                   "user port            100 \n"
                                                   "link num               0 \n"
                                                   "running rate          8G\n"
                                                   "media type           OPT\n"
                                                   "=================== ==== \n"
                                                   "\n"
                                                   "Power                  0 \n"
                                                   "Slew                   0 \n"
                                                   "Mode                   0 \n"
                                                   "P0                     0 \n"
                                                   "P1                     0 \n"
                                                   "P2                     0 \n"
                                                   "P3                     0 \n",
                                                   headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParamsRaw, PortThatDoesNotRunShowsItsValues) {
  platform.ports[0].txCache = kFibreChannelCache;
  makeIdle(platform.ports[0]);
  EXPECT_EQ(run("showTxParamsRaw asic 8G 0"),
            printed("\n"
                    "show tx cache for asic interface at rate 8G \n"
                    "=================== ==== \n"
                    "ASIC port              0 \n"
                    "user port            100 \n"
                    "link num               0 \n"
                    "running rate         INV\n"
                    "media type           OPT\n"
                    "=================== ==== \n"
                    "\n"
                    "Power                115 \n"
                    "Slew                   2 \n"
                    "Mode                   2 \n"
                    "P0                    -4 \n"
                    "P1                    55 \n"
                    "P2                   -25 \n"
                    "P3                     0 \n",
                    Calls{"GetSerDesTxRateParams(0, 0, 4)"} + idleHeaderQuestions("100/0/0")));
}

TEST_F(ShowTxParamsRaw, ColumnsAreThoseOfTheTransmitLinks) {
  platform.ports[0].rx.linkCount = 2;
  platform.ports[1].tx.linkCount = 0;
  platform.ports[0].txCache = platform.ports[1].txCache = kFibreChannelCache;
  discover();
  EXPECT_EQ(run("showTxParamsRaw asic 8G 0 1"),
            printed(kRawHeadAt8GOfPort0 + "\n"
                                          "Power                115 \n"
                                          "Slew                   2 \n"
                                          "Mode                   2 \n"
                                          "P0                    -4 \n"
                                          "P1                    55 \n"
                                          "P2                   -25 \n"
                                          "P3                     0 \n",
                    Calls{"GetSerDesTxRateParams(0, 0, 4)", "GetSerDesTxRateParams(0, 1, 4)"} +
                        headerQuestions({"100/0/0", "101/0/1"})));
}

TEST_F(ShowTxParamsRaw, EmptySelectionGivesHeadAndLabelsOnly) {
  EXPECT_EQ(run("showTxParamsRaw asic 8G 5-2"), printed("\n"
                                                        "show tx cache for asic interface at rate 8G \n"
                                                        "=================== \n"
                                                        "ASIC port           \n"
                                                        "user port           \n"
                                                        "link num            \n"
                                                        "running rate       \n"
                                                        "media type         \n"
                                                        "=================== \n"
                                                        "\n"
                                                        "Power               \n"
                                                        "Slew                \n"
                                                        "Mode                \n"
                                                        "P0                  \n"
                                                        "P1                  \n"
                                                        "P2                  \n"
                                                        "P3                  \n",
                                                        {}));
}

TEST_F(ShowTxParamsRaw, ReadsOnTheCurrentAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("showTxParamsRaw asic 8G 0"),
            printed(kRawHeadAt8GOfPort0 + "\n"
                                          "Power                  0 \n"
                                          "Slew                   0 \n"
                                          "Mode                   0 \n"
                                          "P0                     0 \n"
                                          "P1                     0 \n"
                                          "P2                     0 \n"
                                          "P3                     0 \n",
                    Calls{"GetSerDesTxRateParams(1, 0, 4)"} + headerQuestions({"100/0/0"})));
}

TEST_F(ShowTxParamsRaw, FailureOnSecondPortPrintsOnlyTheError) {
  platform.fail("GetSerDesTxRateParams", -6, 2);
  EXPECT_EQ(run("showTxParamsRaw asic 8G 0-2"),
            failed("showTxParamsRawCmdHandler: serdes err -6\n",
                   {"GetSerDesTxRateParams(0, 0, 4)", "GetSerDesTxRateParams(0, 1, 4)"}));
}

TEST_F(ESetTxParamsCache, StoresPowerAndPreEmphasisAndOverwritesTheRest) {
  EXPECT_EQ(run("esetTxParamsCache 10G 6 5 exg"), done({"SetSerDesTxRateParams(0, 8, 5, 6, 7, 0, 5, 0, 0, 0)",
                                                        "SetSerDesTxRateParams(0, 9, 5, 6, 7, 0, 5, 0, 0, 0)",
                                                        "SetSerDesTxRateParams(0, 10, 5, 6, 7, 0, 5, 0, 0, 0)",
                                                        "SetSerDesTxRateParams(0, 11, 5, 6, 7, 0, 5, 0, 0, 0)"}));
}

TEST_F(ESetTxParamsCache, AnswersToItsShortcut) {
  EXPECT_EQ(run("est 1 0x10 -3 11"), done({"SetSerDesTxRateParams(0, 11, 1, 16, 7, 0, -3, 0, 0, 0)"}));
}

TEST_F(ESetTxParamsCache, NumbersAreStoredWhole) {
  EXPECT_EQ(run("esetTxParamsCache 10G 300 -2147483648 8"),
            done({"SetSerDesTxRateParams(0, 8, 5, 300, 7, 0, -2147483648, 0, 0, 0)"}));
}

TEST_F(ESetTxParamsCache, PortOfNoTypeIsStored) {
  platform.ports[0].hwConfig.presence = 0;
  discover();
  EXPECT_EQ(run("esetTxParamsCache 10G 6 5 0"), done({"SetSerDesTxRateParams(0, 0, 5, 6, 7, 0, 5, 0, 0, 0)"}));
}

TEST_F(ESetTxParamsCache, StoresOnTheCurrentAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("esetTxParamsCache 10G 6 5 8"), done({"SetSerDesTxRateParams(1, 8, 5, 6, 7, 0, 5, 0, 0, 0)"}));
}

TEST_F(ESetTxParamsCache, FailureOnThirdPortLeavesFirstTwoWritten) {
  platform.fail("SetSerDesTxRateParams", -9, 3);
  EXPECT_EQ(run("esetTxParamsCache 10G 6 5 exg"), failed("esetTxParamsCacheCmdHandler: serdes err -9\n",
                                                         {"SetSerDesTxRateParams(0, 8, 5, 6, 7, 0, 5, 0, 0, 0)",
                                                          "SetSerDesTxRateParams(0, 9, 5, 6, 7, 0, 5, 0, 0, 0)",
                                                          "SetSerDesTxRateParams(0, 10, 5, 6, 7, 0, 5, 0, 0, 0)"}));
}

TEST_F(ESetTxParamsCache, EmptySelectionStoresNothing) {
  EXPECT_EQ(run("esetTxParamsCache 10G 6 5 12-31"), done({}));
}

TEST_F(EShowTxParamsCache, PrintsPowerAndPreEmphasisBelowAnEmptyLine) {
  platform.ports[8].txCache = kEthernetCache;
  platform.ports[9].txCache = {.power = 300, .slew = 1, .mode = 2, .p0 = -70, .p1 = 3, .p2 = 4, .p3 = 5};
  EXPECT_EQ(run("eshowTxParamsCache 10G 8 9"),
            printed("\n"
                    "show tx cache for 10G \n"
                    "=================== ==== ==== \n"
                    "ASIC port              8    9 \n"
                    "user port            108  N/A \n"
                    "link num               0    0 \n"
                    "running rate          8G   8G\n"
                    "media type           OPT  OPT\n"
                    "=================== ==== ==== \n"
                    "\n"
                    "k (power)              6  300 \n"
                    "p0 (pre-emphasis)      5  -70 \n",
                    Calls{"GetSerDesTxRateParams(0, 8, 5)", "GetSerDesTxRateParams(0, 9, 5)"} +
                        headerQuestions({"108/0/8", "65535/0/9"})));
}

TEST_F(EShowTxParamsCache, AnswersToItsShortcut) {
  platform.ports[8].txCache = kEthernetCache;
  EXPECT_EQ(run("edt 1g 8"), printed("\n"
                                     "show tx cache for 1g \n"
                                     "=================== ==== \n"
                                     "ASIC port              8 \n"
                                     "user port            108 \n"
                                     "link num               0 \n"
                                     "running rate          8G\n"
                                     "media type           OPT\n"
                                     "=================== ==== \n"
                                     "\n"
                                     "k (power)              6 \n"
                                     "p0 (pre-emphasis)      5 \n",
                                     Calls{"GetSerDesTxRateParams(0, 8, 1)"} + headerQuestions({"108/0/8"})));
}

TEST_F(EShowTxParamsCache, EachTransmitLinkOfAPortRepeatsItsValues) {
  platform.ports[8].txCache = kEthernetCache;
  platform.ports[10].txCache = {.power = 1, .slew = 7, .mode = 0, .p0 = 2, .p1 = 0, .p2 = 0, .p3 = 0};
  platform.ports[8].tx.linkCount = 3;
  platform.ports[8].rx.linkCount = 2;
  platform.ports[9].tx.linkCount = 0;
  discover();
  EXPECT_EQ(run("eshowTxParamsCache 10G 8-10"),
            printed("\n"
                    "show tx cache for 10G \n"
                    "=================== ==== ==== ==== ==== \n"
                    "ASIC port              8    8    8   10 \n"
                    "user port            108  108  108  110 \n"
                    "link num               0    1    2    0 \n"
                    "running rate          8G   8G   8G   8G\n"
                    "media type           OPT  OPT  OPT  OPT\n"
                    "=================== ==== ==== ==== ==== \n"
                    "\n"
                    "k (power)              6    6    6    1 \n"
                    "p0 (pre-emphasis)      5    5    5    2 \n",
                    Calls{"GetSerDesTxRateParams(0, 8, 5)", "GetSerDesTxRateParams(0, 9, 5)",
                          "GetSerDesTxRateParams(0, 10, 5)"} +
                        headerQuestions({"108/0/8", "65535/0/9", "110/0/10"})));
}

TEST_F(EShowTxParamsCache, PortThatDoesNotRunShowsItsValues) {
  platform.ports[8].txCache = kEthernetCache;
  makeIdle(platform.ports[8]);
  EXPECT_EQ(run("eshowTxParamsCache 10G 8"),
            printed("\n"
                    "show tx cache for 10G \n"
                    "=================== ==== \n"
                    "ASIC port              8 \n"
                    "user port            108 \n"
                    "link num               0 \n"
                    "running rate         INV\n"
                    "media type           OPT\n"
                    "=================== ==== \n"
                    "\n"
                    "k (power)              6 \n"
                    "p0 (pre-emphasis)      5 \n",
                    Calls{"GetSerDesTxRateParams(0, 8, 5)"} + idleHeaderQuestions("108/0/8")));
}

TEST_F(EShowTxParamsCache, EmptySelectionGivesHeadAndLabelsOnly) {
  EXPECT_EQ(run("eshowTxParamsCache 10G 5-2"), printed("\n"
                                                       "show tx cache for 10G \n"
                                                       "=================== \n"
                                                       "ASIC port           \n"
                                                       "user port           \n"
                                                       "link num            \n"
                                                       "running rate       \n"
                                                       "media type         \n"
                                                       "=================== \n"
                                                       "\n"
                                                       "k (power)           \n"
                                                       "p0 (pre-emphasis)   \n",
                                                       {}));
}

TEST_F(EShowTxParamsCache, ReadsOnTheCurrentAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("eshowTxParamsCache 10G 8"),
            printed("\n"
                    "show tx cache for 10G \n"
                    "=================== ==== \n"
                    "ASIC port              8 \n"
                    "user port            108 \n"
                    "link num               0 \n"
                    "running rate          8G\n"
                    "media type           OPT\n"
                    "=================== ==== \n"
                    "\n"
                    "k (power)              0 \n"
                    "p0 (pre-emphasis)      0 \n",
                    Calls{"GetSerDesTxRateParams(1, 8, 5)"} + headerQuestions({"108/0/8"})));
}

TEST_F(EShowTxParamsCache, FailureOnFirstPortPrintsOnlyTheError) {
  platform.fail("GetSerDesTxRateParams", -7);
  EXPECT_EQ(run("eshowTxParamsCache 10G exg"),
            failed("eshowTxParamsCacheCmdHandler: serdes err -7\n", {"GetSerDesTxRateParams(0, 8, 5)"}));
}

class TxCacheOversizedSwitch : public OversizedSwitchTest {};

INSTANTIATE_TEST_SUITE_P(, TxCacheOversizedSwitch, testing::Values(40u, 0xFFFFFFFFu));

TEST_P(TxCacheOversizedSwitch, SetsNoPortBeyondTheTwentyFourth) {
  EXPECT_EQ(run("esetTxParamsCache 10G 6 5 23-31"), done({"SetSerDesTxRateParams(0, 23, 5, 6, 7, 0, 5, 0, 0, 0)"}));
  EXPECT_EQ(run("setTxParamsRaw asic 8G 1 2 3 4 5 6 7 23-31"),
            done({"SetSerDesTxRateParams(0, 23, 4, 1, 2, 3, 4, 5, 6, 7)"}));
}

TEST_P(TxCacheOversizedSwitch, ShowsNoPortBeyondTheTwentyFourth) {
  platform.ports[23].txCache = kEthernetCache;
  EXPECT_EQ(run("eshowTxParamsCache 10G 23-31"),
            printed("\n"
                    "show tx cache for 10G \n"
                    "=================== ==== \n"
                    "ASIC port             23 \n"
                    "user port            123 \n"
                    "link num               0 \n"
                    "running rate          8G\n"
                    "media type           OPT\n"
                    "=================== ==== \n"
                    "\n"
                    "k (power)              6 \n"
                    "p0 (pre-emphasis)      5 \n",
                    Calls{"GetSerDesTxRateParams(0, 23, 5)"} + headerQuestions({"123/0/23"})));
  EXPECT_EQ(run("showTxParamsRaw a 10G 23-31"),
            printed("\n"
                    "show tx cache for a interface at rate 10G \n"
                    "=================== ==== \n"
                    "ASIC port             23 \n"
                    "user port            123 \n"
                    "link num               0 \n"
                    "running rate          8G\n"
                    "media type           OPT\n"
                    "=================== ==== \n"
                    "\n"
                    "Power                  6 \n"
                    "Slew                   7 \n"
                    "Mode                   0 \n"
                    "P0                     5 \n"
                    "P1                     0 \n"
                    "P2                     0 \n"
                    "P3                     0 \n",
                    Calls{"GetSerDesTxRateParams(0, 23, 5)"} + headerQuestions({"123/0/23"})));
}

class TxCacheCommandsRefused : public RefusalTest {};

TEST_P(TxCacheCommandsRefused, WithoutPlatformCall) {
  EXPECT_EQ(run(GetParam().line), refused(GetParam().status));
}

const Refusal kRefusals[] = {
    {"SetWithoutSlew", "setTxParamsCache 8G FFE3 115 -4 55 -25 0", CMD_TOO_FEW_ARGS},
    {"SetWithoutPorts", "setTxParamsCache 8G FFE3 115 -4 55 -25 0 36", CMD_TOO_FEW_ARGS},
    {"SetUnknownRate", "setTxParamsCache 16G FFE3 115 -4 55 -25 0 36 0", CMD_BAD_PARAM},
    {"SetInvalidRateByItsName", "setTxParamsCache INV FFE3 115 -4 55 -25 0 36 0", CMD_BAD_PARAM},
    {"SetModeNone", "setTxParamsCache 8G FFENone 115 -4 55 -25 0 36 0", CMD_BAD_PARAM},
    {"SetModeByNumber", "setTxParamsCache 8G 2 115 -4 55 -25 0 36 0", CMD_BAD_PARAM},
    {"SetPowerNoNumber", "setTxParamsCache 8G FFE3 x -4 55 -25 0 36 0", CMD_BAD_PARAM},
    {"SetPrecursorNoNumber", "setTxParamsCache 8G FFE3 115 x 55 -25 0 36 0", CMD_BAD_PARAM},
    {"SetMainNoNumber", "setTxParamsCache 8G FFE3 115 -4 x -25 0 36 0", CMD_BAD_PARAM},
    {"SetPostcursorNoNumber", "setTxParamsCache 8G FFE3 115 -4 55 x 0 36 0", CMD_BAD_PARAM},
    {"SetLastTapNoNumber", "setTxParamsCache 8G FFE3 115 -4 55 -25 x 36 0", CMD_BAD_PARAM},
    {"SetUnknownSlew", "setTxParamsCache 8G FFE3 115 -4 55 -25 0 37 0", CMD_BAD_PARAM},
    {"SetUnknownSlewBeforeMissingPorts", "setTxParamsCache 8G FFE3 115 -4 55 -25 0 37", CMD_BAD_PARAM},
    {"SetUnknownPorts", "setTxParamsCache 8G FFE3 115 -4 55 -25 0 36 ports", CMD_BAD_PARAM},
    {"SetUnknownPortBeforeEthernetPort", "setTxParamsCache 8G FFE3 115 -4 55 -25 0 36 8 x", CMD_BAD_PARAM},
    {"SetUnknownRateBeforeEthernetPorts", "setTxParamsCache 16G FFE3 115 -4 55 -25 0 36 exg", CMD_BAD_PARAM},
    {"SetEthernetPort", "setTxParamsCache 8G FFE3 115 -4 55 -25 0 36 8", CMD_FC_ONLY},
    {"SetEthernetPorts", "setTxParamsCache 8G FFE3 115 -4 55 -25 0 36 exg", CMD_FC_ONLY},
    // The port list itself refuses a mix before the command looks at the types.
    {"SetEthernetPortAmongOthers", "setTxParamsCache 8G FFE3 115 -4 55 -25 0 36 0 8", CMD_MIXED_PORT_TYPES},
    {"SetGlAndXgPort", "setTxParamsCache 8G FFE3 115 -4 55 -25 0 36 5 6", CMD_MIXED_PORT_TYPES},
    {"SetAllOfMixedTypes", "setTxParamsCache 8G FFE3 115 -4 55 -25 0 36 all", CMD_MIXED_PORT_TYPES},
    {"SetTooManyPorts", "setTxParamsCache 8G FFE3 115 -4 55 -25 0 36 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15",
     CMD_TOO_MANY_ARGS},
    {"ShowAlone", "showTxParamsCache", CMD_TOO_FEW_ARGS},
    {"ShowWithoutPorts", "showTxParamsCache 8G", CMD_TOO_FEW_ARGS},
    {"ShowUnknownRate", "showTxParamsCache gl gl", CMD_BAD_PARAM},
    {"ShowUnknownRateBeforeMissingPorts", "showTxParamsCache gl", CMD_BAD_PARAM},
    {"ShowUnknownPorts", "showTxParamsCache 8G 0-32", CMD_BAD_PARAM},
    {"ShowEthernetPort", "showTxParamsCache 8G 11", CMD_FC_ONLY},
    {"ShowEthernetPortAmongOthers", "showTxParamsCache 8G 0 6 8", CMD_FC_ONLY},
    {"ShowAllWithEthernetPorts", "showTxParamsCache 8G all", CMD_FC_ONLY},
    {"ShowTooManyPorts", "showTxParamsCache 8G 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22",
     CMD_TOO_MANY_ARGS},
    {"SetRawWithoutLastNumber", "setTxParamsRaw asic 8G 0 2 115 -4 55 -25", CMD_TOO_FEW_ARGS},
    {"SetRawWithoutPorts", "setTxParamsRaw asic 8G 0 2 115 -4 55 -25 0", CMD_TOO_FEW_ARGS},
    {"SetRawUnknownInterface", "setTxParamsRaw media 8G 0 2 115 -4 55 -25 0 0", CMD_BAD_PARAM},
    {"SetRawInvalidInterfaceByItsName", "setTxParamsRaw INV 8G 0 2 115 -4 55 -25 0 0", CMD_BAD_PARAM},
    {"SetRawUnknownInterfaceBeforeMissingPorts", "setTxParamsRaw media 8G 0 2 115 -4 55 -25 0", CMD_BAD_PARAM},
    {"SetRawUnknownRate", "setTxParamsRaw asic 3 0 2 115 -4 55 -25 0 0", CMD_BAD_PARAM},
    {"SetRawPowerNoNumber", "setTxParamsRaw asic 8G x 2 115 -4 55 -25 0 0", CMD_BAD_PARAM},
    {"SetRawSlewNoNumber", "setTxParamsRaw asic 8G 0 36ps 115 -4 55 -25 0 0", CMD_BAD_PARAM},
    {"SetRawModeNoNumber", "setTxParamsRaw asic 8G 0 2 FFE3 -4 55 -25 0 0", CMD_BAD_PARAM},
    {"SetRawP0NoNumber", "setTxParamsRaw asic 8G 0 2 115 x 55 -25 0 0", CMD_BAD_PARAM},
    {"SetRawP1NoNumber", "setTxParamsRaw asic 8G 0 2 115 -4 x -25 0 0", CMD_BAD_PARAM},
    {"SetRawP2NoNumber", "setTxParamsRaw asic 8G 0 2 115 -4 55 x 0 0", CMD_BAD_PARAM},
    {"SetRawP3NoNumber", "setTxParamsRaw asic 8G 0 2 115 -4 55 -25 x 0", CMD_BAD_PARAM},
    // One number short, as the command's help has it, makes the port keyword the last number.
    {"SetRawAsItsHelpNamesTheNumbers", "setTxParamsRaw asic 8G 2 2 -4 55 -25 0 gl", CMD_BAD_PARAM},
    {"SetRawUnknownPorts", "setTxParamsRaw asic 8G 0 2 115 -4 55 -25 0 ports", CMD_BAD_PARAM},
    {"SetRawUnknownPortsOfOtherInterface", "setTxParamsRaw system 8G 0 2 115 -4 55 -25 0 ports", CMD_BAD_PARAM},
    {"SetRawGlAndXgPort", "setTxParamsRaw asic 8G 0 2 115 -4 55 -25 0 0 6", CMD_MIXED_PORT_TYPES},
    {"SetRawGlAndExgPort", "setTxParamsRaw asic 8G 0 2 115 -4 55 -25 0 0 8", CMD_MIXED_PORT_TYPES},
    {"SetRawXgAndExgPort", "setTxParamsRaw asic 8G 0 2 115 -4 55 -25 0 7-8", CMD_MIXED_PORT_TYPES},
    {"SetRawMixOfOtherInterface", "setTxParamsRaw network 8G 0 2 115 -4 55 -25 0 all", CMD_MIXED_PORT_TYPES},
    {"SetRawTooManyPorts", "setTxParamsRaw asic 8G 0 2 115 -4 55 -25 0 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14",
     CMD_TOO_MANY_ARGS},
    {"ShowRawWithoutRate", "showTxParamsRaw asic", CMD_TOO_FEW_ARGS},
    {"ShowRawWithoutPorts", "showTxParamsRaw asic 8G", CMD_TOO_FEW_ARGS},
    {"ShowRawUnknownInterface", "showTxParamsRaw as 8G 0", CMD_BAD_PARAM},
    {"ShowRawUnknownRate", "showTxParamsRaw asic 5G 0", CMD_BAD_PARAM},
    {"ShowRawUnknownRateBeforeMissingPorts", "showTxParamsRaw system INV", CMD_BAD_PARAM},
    {"ShowRawUnknownPorts", "showTxParamsRaw asic 8G 0 all", CMD_BAD_PARAM},
    {"ShowRawTooManyPorts", "showTxParamsRaw asic 8G 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21",
     CMD_TOO_MANY_ARGS},
    {"ESetWithoutPreEmphasis", "esetTxParamsCache 10G 6", CMD_TOO_FEW_ARGS},
    {"ESetWithoutPorts", "esetTxParamsCache 10G 6 5", CMD_TOO_FEW_ARGS},
    {"ESetUnknownRate", "esetTxParamsCache 40G 6 5 exg", CMD_BAD_PARAM},
    {"ESetPowerNoNumber", "esetTxParamsCache 10G x 5 exg", CMD_BAD_PARAM},
    {"ESetPreEmphasisNoNumber", "esetTxParamsCache 10G 6 x exg", CMD_BAD_PARAM},
    {"ESetPreEmphasisNoNumberBeforeMissingPorts", "esetTxParamsCache 10G 6 exg", CMD_BAD_PARAM},
    {"ESetUnknownPorts", "esetTxParamsCache 10G 6 5 e", CMD_BAD_PARAM},
    {"ESetUnknownRateBeforeFibreChannelPorts", "esetTxParamsCache 40G 6 5 gl", CMD_BAD_PARAM},
    {"ESetGlPorts", "esetTxParamsCache 10G 6 5 gl", CMD_ETHERNET_ONLY},
    {"ESetXgPort", "esetTxParamsCache 10G 6 5 7", CMD_ETHERNET_ONLY},
    {"ESetFibreChannelPortAmongOthers", "esetTxParamsCache 10G 6 5 7 8", CMD_MIXED_PORT_TYPES},
    {"ESetTooManyPorts", "esetTxParamsCache 10G 6 5 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20",
     CMD_TOO_MANY_ARGS},
    {"EShowAlone", "eshowTxParamsCache", CMD_TOO_FEW_ARGS},
    {"EShowWithoutPorts", "eshowTxParamsCache 10G", CMD_TOO_FEW_ARGS},
    {"EShowUnknownRate", "eshowTxParamsCache INV exg", CMD_BAD_PARAM},
    {"EShowUnknownPorts", "eshowTxParamsCache 10G -1", CMD_BAD_PARAM},
    {"EShowGlPortAmongOthers", "eshowTxParamsCache 10G 8 0", CMD_ETHERNET_ONLY},
    {"EShowXgPorts", "eshowTxParamsCache 10G xg", CMD_ETHERNET_ONLY},
    {"EShowAllWithFibreChannelPorts", "eshowTxParamsCache 10G all", CMD_ETHERNET_ONLY},
    {"EShowTooManyPorts", "eshowTxParamsCache 10G 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22",
     CMD_TOO_MANY_ARGS},
};

INSTANTIATE_TEST_SUITE_P(, TxCacheCommandsRefused, testing::ValuesIn(kRefusals), refusalName);

}  // namespace
}  // namespace recording
