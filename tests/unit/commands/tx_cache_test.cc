// Transmit caches of fibre channel ports, of an interface, and of ethernet ports.
#include <limits>

#include "tests/support/expected.h"
#include "tests/support/handlers.h"

namespace recording {
namespace {

using SetTxParamsCache = TopologyTest;
using ShowTxParamsCache = TopologyTest;
using SetTxParamsRaw = TopologyTest;
using ShowTxParamsRaw = TopologyTest;
using ESetTxParamsCache = TopologyTest;
using EShowTxParamsCache = TopologyTest;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

// Ports 0 to 2 and 8 to 10: ordinary, with two transmit links and not running, and with numbers that overrun cells.
// The other receive links change nothing, and port 3 has no links.
void setCaches() {
  for (const unsigned first : {0u, 8u}) {
    platform.ports[first].rx.linkCount = 3;
    platform.ports[first].txCache = {.power = 115, .slew = 2, .mode = 2, .p0 = -4, .p1 = 55, .p2 = -25, .p3 = 0};
    platform.ports[first + 1].tx.linkCount = 2;
    platform.ports[first + 1].txCache = {.power = 1, .slew = 5, .mode = 3, .p0 = 2, .p1 = 3, .p2 = 4, .p3 = 6};
    makeIdle(platform.ports[first + 1]);
    platform.ports[first + 2].txCache = {
        .power = 300, .slew = 7, .mode = 0, .p0 = kLowest, .p1 = kHighest, .p2 = -999, .p3 = 70000};
  }
  platform.ports[3].tx.linkCount = 0;
}

// Arguments after asic, port and rate are the record's: power, slew, mode, p0 to p3.
TEST_F(SetTxParamsCache, StoresTheRecordOfEveryPort) {
  EXPECT_EQ(run("setTxParamsCache 8G FFE3 115 -4 55 -25 0 36 gl"),
            done(perNumber("SetSerDesTxRateParams(0, %, 4, 115, 2, 2, -4, 55, -25, 0)", {0, 1, 2, 3, 4, 5})));
  EXPECT_EQ(run("setTxParamsCache 4 ffe4 1 2 3 4 5 100PS 7 6"),
            done(perNumber("SetSerDesTxRateParams(0, %, 3, 1, 6, 3, 2, 3, 4, 5)", {6, 7})));
}

TEST_F(SetTxParamsCache, NumbersAreStoredWhole) {
  EXPECT_EQ(run("setTxParamsCache 8G FFE2 300 -300 0x7fffffff -2147483648 70000 24 0"),
            done({"SetSerDesTxRateParams(0, 0, 4, 300, 0, 1, -300, 2147483647, -2147483648, 70000)"}));
}

TEST_F(SetTxParamsCache, AnyRateGoesToThePlatform) {
  const char* const rates[] = {"AUTO", "1G", "2", "4g", "8", "10G", "20g"};
  for (unsigned rate = 0; rate < 7; ++rate)
    EXPECT_EQ(run(std::string("setTxParamsCache ") + rates[rate] + " FFE2 1 2 3 4 5 24 0"),
              done(perNumber("SetSerDesTxRateParams(0, 0, %, 1, 0, 1, 2, 3, 4, 5)", {rate})));
}

// A port that has no type is neither an ethernet nor a fibre channel port.
TEST_F(SetTxParamsCache, PortOfNoTypeIsStoredByEitherKind) {
  platform.ports[0].hwConfig.portType = 4;
  platform.ports[8].hwConfig.presence = 0;
  discover();
  EXPECT_EQ(run("setTxParamsCache 8G FFE2 1 2 3 4 5 24 0 8"),
            done(perNumber("SetSerDesTxRateParams(0, %, 4, 1, 0, 1, 2, 3, 4, 5)", {0, 8})));
  EXPECT_EQ(run("esetTxParamsCache 10G 6 5 0 8"),
            done(perNumber("SetSerDesTxRateParams(0, %, 5, 6, 7, 0, 5, 0, 0, 0)", {0, 8})));
}

TEST_F(SetTxParamsCache, EthernetPortsAreRefused) {
  expectRefusals({{"setTxParamsCache 8G FFE3 115 -4 55 -25 0 36 8", CMD_FC_ONLY},
                  {"setTxParamsCache 8G FFE3 115 -4 55 -25 0 36 exg", CMD_FC_ONLY},
                  {"setTxParamsCache 8G FFE3 115 -4 55 -25 0 36 8 x", CMD_BAD_PARAM},
                  {"setTxParamsCache INV FFE3 115 -4 55 -25 0 36 0", CMD_BAD_PARAM},
                  {"setTxParamsCache 8G FFENone 115 -4 55 -25 0 36 0", CMD_BAD_PARAM}});
}

TEST_F(ShowTxParamsCache, EachTransmitLinkRepeatsItsPortsRecordUnderTheRateAsTyped) {
  setCaches();
  discover();
  EXPECT_EQ(run("showTxParamsCache 8g 0-3"),
            table("show tx cache for 8g", {0, 1, 2, 3}, perNumber("GetSerDesTxRateParams(0, %, 4)", {0, 1, 2, 3}),
                  "ffe mode            FFE3 FFE4 FFE4 FFENone \n"
                  "k (power)            115    1    1  300 \n"
                  "c0 (precursor)        -4    2    2 -2147483648 \n"
                  "c1 (main)             55    3    3 2147483647 \n"
                  "c2 (postcursor)      -25    4    4 -999 \n"
                  "c3 (postcursor)        0    6    6 70000 \n"
                  "slew rate (ps)        36   75   75  UNK\n"));
}

TEST_F(ShowTxParamsCache, ModesAndSlewsBeyondTheTablesPrintUnknown) {
  platform.ports[0].txCache = {.power = 0, .slew = 8, .mode = 4, .p0 = 0, .p1 = 0, .p2 = 0, .p3 = 0};
  platform.ports[1].txCache = {.power = 0, .slew = -1, .mode = -1, .p0 = 0, .p1 = 0, .p2 = 0, .p3 = 0};
  platform.ports[2].txCache = {.power = 0, .slew = kLowest, .mode = kLowest, .p0 = 0, .p1 = 0, .p2 = 0, .p3 = 0};
  EXPECT_EQ(run("showTxParamsCache AUTO 0-2"),
            table("show tx cache for AUTO", {0, 1, 2}, perNumber("GetSerDesTxRateParams(0, %, 0)", {0, 1, 2}),
                  "ffe mode            UNK  UNK  UNK  \n"
                  "k (power)              0    0    0 \n"
                  "c0 (precursor)         0    0    0 \n"
                  "c1 (main)              0    0    0 \n"
                  "c2 (postcursor)        0    0    0 \n"
                  "c3 (postcursor)        0    0    0 \n"
                  "slew rate (ps)       UNK  UNK  UNK\n"));
}

TEST_F(ShowTxParamsCache, EthernetPortsAreRefused) {
  expectRefusals({{"showTxParamsCache 8G 11", CMD_FC_ONLY},
                  {"showTxParamsCache 8G 0 6 8", CMD_FC_ONLY},
                  {"showTxParamsCache 8G all", CMD_FC_ONLY},
                  {"showTxParamsCache 16G exg", CMD_BAD_PARAM}});
}

TEST_F(ShowTxParamsCache, AllIsAllowedWhereNoPortIsAnEthernetPort) {
  platform.portCount = 8;
  discover();
  EXPECT_EQ(run("showTxParamsCache 8G all"), run("showTxParamsCache 8G 0-7"));
  EXPECT_EQ(run("showTxParamsCache 8G all").status, CMD_OK);
}

TEST_F(SetTxParamsRaw, NumbersGoInRecordOrder) {
  EXPECT_EQ(run("setTxParamsRaw asic 8G 0 2 115 -4 55 -25 0 gl"),
            done(perNumber("SetSerDesTxRateParams(0, %, 4, 0, 2, 115, -4, 55, -25, 0)", {0, 1, 2, 3, 4, 5})));
  EXPECT_EQ(run("setTxParamsRaw A 10 1 2 3 4 5 6 7 exg"),
            done(perNumber("SetSerDesTxRateParams(0, %, 5, 1, 2, 3, 4, 5, 6, 7)", {8, 9, 10, 11})));
}

TEST_F(SetTxParamsRaw, NumbersAreNeitherCutNorCheckedAgainstTheNameTables) {
  EXPECT_EQ(run("setTxParamsRaw ASIC 1G -1 250 0 300 0x80000000 -300 2147483647 7"),
            done({"SetSerDesTxRateParams(0, 7, 1, -1, 250, 0, 300, -2147483648, -300, 2147483647)"}));
}

TEST_F(SetTxParamsRaw, OtherInterfacesSucceedWithoutAPlatformCall) {
  for (const std::string interface : {"system", "s", "NETWORK", "n"})
    EXPECT_EQ(run("setTxParamsRaw " + interface + " 8G 0 2 115 -4 55 -25 0 gl"), done({})) << interface;
}

// One number short, as the command's help has it, makes the port keyword the last number.
TEST_F(SetTxParamsRaw, WhatIsNotWrittenIsStillJudged) {
  expectRefusals({{"setTxParamsRaw INV 8G 0 2 115 -4 55 -25 0 0", CMD_BAD_PARAM},
                  {"setTxParamsRaw asic 8G 2 2 -4 55 -25 0 gl", CMD_BAD_PARAM},
                  {"setTxParamsRaw system 3 0 2 115 -4 55 -25 0 gl", CMD_BAD_PARAM},
                  {"setTxParamsRaw system 8G 0 2 115 -4 55 -25 x gl", CMD_BAD_PARAM},
                  {"setTxParamsRaw system 8G 0 2 115 -4 55 -25 0 ports", CMD_BAD_PARAM},
                  {"setTxParamsRaw network 8G 0 2 115 -4 55 -25 0 all", CMD_MIXED_PORT_TYPES}});
}

TEST_F(SetTxParamsRaw, HandlerItselfRefusesMixedTypes) {
  for (const std::string ports : {"0 6", "0 8", "7-8", "all"}) {
    for (const std::string interface : {"asic", "system"})
      EXPECT_EQ(runPastItsRow("setTxParamsRaw " + interface + " 8G 0 2 115 -4 55 -25 0 " + ports),
                refused(CMD_MIXED_PORT_TYPES))
          << ports;
  }
}

TEST_F(ShowTxParamsRaw, PrintsPlainNumbersBelowAnEmptyLine) {
  setCaches();
  discover();
  EXPECT_EQ(run("showTxParamsRaw A 20 0-3 8"), table("show tx cache for A interface at rate 20", {0, 1, 2, 3, 8},
                                                     perNumber("GetSerDesTxRateParams(0, %, 6)", {0, 1, 2, 3, 8}),
                                                     "\n"
                                                     "Power                115    1    1  300  115 \n"
                                                     "Slew                   2    5    5    7    2 \n"
                                                     "Mode                   2    3    3    0    2 \n"
                                                     "P0                    -4    2    2 -2147483648   -4 \n"
                                                     "P1                    55    3    3 2147483647   55 \n"
                                                     "P2                   -25    4    4 -999  -25 \n"
                                                     "P3                     0    6    6 70000    0 \n"));
}

TEST_F(ShowTxParamsRaw, OtherInterfacesShowZerosEvenAfterTheAsicsOwn) {
  setCaches();
  ASSERT_EQ(run("showTxParamsRaw asic 8G 0").status, CMD_OK);
  for (const std::string interface : {"system", "N"}) {
    EXPECT_EQ(run("showTxParamsRaw " + interface + " 8G 0"),
              table("show tx cache for " + interface + " interface at rate 8G", {0}, {},
                    "\n"
                    "Power                  0 \n"
                    "Slew                   0 \n"
                    "Mode                   0 \n"
                    "P0                     0 \n"
                    "P1                     0 \n"
                    "P2                     0 \n"
                    "P3                     0 \n"));
  }
}

TEST_F(ESetTxParamsCache, StoresPowerAndPreEmphasisAndOverwritesTheRest) {
  EXPECT_EQ(run("esetTxParamsCache 10G 6 5 exg"),
            done(perNumber("SetSerDesTxRateParams(0, %, 5, 6, 7, 0, 5, 0, 0, 0)", {8, 9, 10, 11})));
  EXPECT_EQ(run("esetTxParamsCache 1 300 -2147483648 8"),
            done({"SetSerDesTxRateParams(0, 8, 1, 300, 7, 0, -2147483648, 0, 0, 0)"}));
}

TEST_F(ESetTxParamsCache, FibreChannelPortsAreRefused) {
  expectRefusals({{"esetTxParamsCache 10G 6 5 gl", CMD_ETHERNET_ONLY},
                  {"esetTxParamsCache 10G 6 5 7", CMD_ETHERNET_ONLY},
                  {"eshowTxParamsCache 10G 8 0", CMD_ETHERNET_ONLY},
                  {"eshowTxParamsCache 10G xg", CMD_ETHERNET_ONLY},
                  {"eshowTxParamsCache 10G all", CMD_ETHERNET_ONLY},
                  {"eshowTxParamsCache INV gl", CMD_BAD_PARAM}});
}

TEST_F(EShowTxParamsCache, PrintsPowerAndPreEmphasisOfEachTransmitLinkBelowAnEmptyLine) {
  setCaches();
  discover();
  EXPECT_EQ(run("eshowTxParamsCache 1g 8-10"),
            table("show tx cache for 1g", {8, 9, 10}, perNumber("GetSerDesTxRateParams(0, %, 1)", {8, 9, 10}),
                  "\n"
                  "k (power)            115    1    1  300 \n"
                  "p0 (pre-emphasis)     -4    2    2 -2147483648 \n"));
}

}  // namespace
}  // namespace recording
