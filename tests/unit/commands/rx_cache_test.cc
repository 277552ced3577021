// Setting and showing the per-rate receive caches.
#include "tests/support/expected.h"
#include "tests/support/handlers.h"

namespace recording {
namespace {

using SetRxParamsCache = TopologyTest;
using SetRxParamsRaw = TopologyTest;
using ESetRxParamsCache = TopologyTest;
using ShowRxParamsCache = TopologyTest;
using ShowRxParamsRaw = TopologyTest;
using EShowRxParamsCache = TopologyTest;

// Ports 0 to 2 and 8 to 10: ordinary, with two receive links and not running, and with numbers that overrun cells.
// Their transmit links, which give the columns, are others. Port 3 has no receive links.
void setCaches() {
  for (const unsigned first : {0u, 8u}) {
    platform.ports[first].tx.linkCount = 3;
    platform.ports[first].rxCache = {.mode = 0, .p0 = 7, .p1 = 0, .p2 = 0x4e, .p3 = 5};
    platform.ports[first + 1].rx.linkCount = 2;
    platform.ports[first + 1].rxCache = {.mode = 3, .p0 = -1, .p1 = -128, .p2 = 300, .p3 = -9999};
    makeIdle(platform.ports[first + 1]);
    platform.ports[first + 2].rxCache = {.mode = 2, .p0 = -2147483647, .p1 = 2147483647, .p2 = -80, .p3 = 70000};
  }
  platform.ports[3].rx.linkCount = 0;
}

// Arguments after asic, port and rate are the record's: mode, p0 to p3.
TEST_F(SetRxParamsCache, WritesTheRecordOfEveryPort) {
  EXPECT_EQ(run("setRxParamsCache 8G DFE3 7 0 0x4e gl"),
            done(perNumber("SetSerDesRxRateParams(0, %, 4, 0, 7, 0, 78, 0)", {0, 1, 2, 3, 4, 5})));
  EXPECT_EQ(run("setRxParamsCache 8 dfe1 1 2 3 7 6"),
            done(perNumber("SetSerDesRxRateParams(0, %, 4, 3, 1, 2, 3, 0)", {6, 7})));
}

TEST_F(SetRxParamsCache, EachRateIsItsSpeedCode) {
  const char* const rates[] = {"auto", "1G", "2", "4g", "8G", "10", "20G"};
  for (unsigned rate = 0; rate < 7; ++rate)
    EXPECT_EQ(run(std::string("setRxParamsCache ") + rates[rate] + " DFE5 1 2 3 0"),
              done(perNumber("SetSerDesRxRateParams(0, 0, %, 1, 1, 2, 3, 0)", {rate})));
}

TEST_F(SetRxParamsCache, NumbersAreStoredWhole) {
  EXPECT_EQ(run("setRxParamsCache 8G NONE 200 -129 300 0"),
            done({"SetSerDesRxRateParams(0, 0, 4, 2, 200, -129, 300, 0)"}));
  EXPECT_EQ(run("setRxParamsCache 8G DFE3 0x7fffffff -2147483648 0xffffffff 0"),
            done({"SetSerDesRxRateParams(0, 0, 4, 0, 2147483647, -2147483648, -1, 0)"}));
}

TEST_F(SetRxParamsCache, PortOfNoTypeIsWrittenByEitherKind) {
  platform.ports[0].hwConfig.portType = 4;
  platform.ports[8].hwConfig.presence = 0;
  discover();
  EXPECT_EQ(run("setRxParamsCache 8G DFE3 1 2 3 0 8"),
            done(perNumber("SetSerDesRxRateParams(0, %, 4, 0, 1, 2, 3, 0)", {0, 8})));
  EXPECT_EQ(run("esetRxParamsCache 10G 2 1 0 8"),
            done(perNumber("SetSerDesRxRateParams(0, %, 5, 2, 1, 0, 0, 0)", {0, 8})));
}

TEST_F(SetRxParamsCache, EthernetPortsAreRefused) {
  expectRefusals({{"setRxParamsCache 8G DFE3 7 0 0x4e exg", CMD_FC_ONLY},
                  {"setRxParamsCache 8G DFE3 7 0 0x4e 11", CMD_FC_ONLY},
                  {"setRxParamsCache 8G DFE3 7 0 x exg", CMD_BAD_PARAM},
                  {"setRxParamsCache INV DFE3 7 0 0x4e gl", CMD_BAD_PARAM},
                  {"setRxParamsCache 8G DFE4 7 0 0x4e gl", CMD_BAD_PARAM}});
}

TEST_F(SetRxParamsRaw, WritesFiveNumbersToTheAsicsCache) {
  EXPECT_EQ(run("setRxParamsRaw asic 8G 1 7 0 0x4e 0 gl"),
            done(perNumber("SetSerDesRxRateParams(0, %, 4, 1, 7, 0, 78, 0)", {0, 1, 2, 3, 4, 5})));
  EXPECT_EQ(run("setRxParamsRaw A 10 1 2 3 4 5 8 11"),
            done(perNumber("SetSerDesRxRateParams(0, %, 5, 1, 2, 3, 4, 5)", {8, 11})));
}

TEST_F(SetRxParamsRaw, AnyNumbersAreStoredWhole) {
  EXPECT_EQ(run("setRxParamsRaw asic 10G 99 -1 300 0xffffff80 70000 0"),
            done({"SetSerDesRxRateParams(0, 0, 5, 99, -1, 300, -128, 70000)"}));
}

TEST_F(SetRxParamsRaw, OtherInterfacesWriteNothing) {
  for (const std::string interface : {"system", "s", "network", "N"})
    EXPECT_EQ(run("setRxParamsRaw " + interface + " 8G 1 7 0 0x4e 0 gl"), done({})) << interface;
}

TEST_F(SetRxParamsRaw, WhatIsNotWrittenIsStillJudged) {
  expectRefusals({{"setRxParamsRaw INV 8G 1 7 0 0x4e 0 gl", CMD_BAD_PARAM},
                  {"setRxParamsRaw system 3G 1 7 0 0x4e 0 gl", CMD_BAD_PARAM},
                  {"setRxParamsRaw network 8G 1 7 0 0x4e z gl", CMD_BAD_PARAM},
                  {"setRxParamsRaw system 8G 1 7 0 0x4e 0 -1", CMD_BAD_PARAM},
                  {"setRxParamsRaw system 8G 1 7 0 0x4e 0 0 8", CMD_MIXED_PORT_TYPES}});
}

TEST_F(SetRxParamsRaw, HandlerItselfRefusesMixedTypes) {
  for (const std::string ports : {"0 6", "0 8", "7-8", "all"}) {
    for (const std::string interface : {"asic", "system"})
      EXPECT_EQ(runPastItsRow("setRxParamsRaw " + interface + " 8G 1 7 0 0x4e 0 " + ports),
                refused(CMD_MIXED_PORT_TYPES))
          << ports;
  }
}

TEST_F(ESetRxParamsCache, WritesCdrAndEqModeOfEveryPort) {
  EXPECT_EQ(run("esetRxParamsCache 10G 2 1 exg"),
            done(perNumber("SetSerDesRxRateParams(0, %, 5, 2, 1, 0, 0, 0)", {8, 9, 10, 11})));
  EXPECT_EQ(run("esetRxParamsCache 1 -300 70000 8"), done({"SetSerDesRxRateParams(0, 8, 1, -300, 70000, 0, 0, 0)"}));
}

TEST_F(ESetRxParamsCache, FibreChannelPortsAreRefused) {
  expectRefusals({{"esetRxParamsCache 10G 2 1 gl", CMD_ETHERNET_ONLY},
                  {"esetRxParamsCache 10G 2 1 7", CMD_ETHERNET_ONLY},
                  {"eshowRxParamsCache 10G gl", CMD_ETHERNET_ONLY},
                  {"eshowRxParamsCache 10G all", CMD_ETHERNET_ONLY},
                  {"eshowRxParamsCache 10G 8 9 0", CMD_ETHERNET_ONLY},
                  {"eshowRxParamsCache INV gl", CMD_BAD_PARAM}});
}

TEST_F(ShowRxParamsCache, EachReceiveLinkRepeatsItsPortsRecordUnderTheRateAsTyped) {
  setCaches();
  discover();
  EXPECT_EQ(run("showRxParamsCache aUtO 0-3"),
            table("show rx cache for aUtO", {0, 1, 2, 3}, perNumber("GetSerDesRxRateParams(0, %, 0)", {0, 1, 2, 3}),
                  "dfe mode            DFE3 DFE1 DFE1 NONE \n"
                  "pole                   7   -1   -1 -2147483647 \n"
                  "peak                   0 -128 -128 2147483647 \n"
                  "amax                0x4e 0x12c 0x12c 0xffffffb0 \n"));
}

TEST_F(ShowRxParamsCache, ModesBeyondTheTableShowUnk) {
  const std::int32_t modes[] = {4, 250, -1, -2147483647};
  for (unsigned port = 0; port < 4; ++port)
    platform.ports[port].rxCache = {.mode = modes[port], .p0 = 1, .p1 = 2, .p2 = 3, .p3 = 0};
  EXPECT_EQ(run("showRxParamsCache 8G 0-3"),
            table("show rx cache for 8G", {0, 1, 2, 3}, perNumber("GetSerDesRxRateParams(0, %, 4)", {0, 1, 2, 3}),
                  "dfe mode            UNK  UNK  UNK  UNK  \n"
                  "pole                   1    1    1    1 \n"
                  "peak                   2    2    2    2 \n"
                  "amax                0x03 0x03 0x03 0x03 \n"));
}

TEST_F(ShowRxParamsCache, EthernetPortsAreRefused) {
  expectRefusals({{"showRxParamsCache 8G exg", CMD_FC_ONLY},
                  {"showRxParamsCache 8G all", CMD_FC_ONLY},
                  {"showRxParamsCache 8G 0 1 8", CMD_FC_ONLY},
                  {"showRxParamsCache 3G exg", CMD_BAD_PARAM}});
}

TEST_F(ShowRxParamsRaw, ShowsTheFiveNumbersOfTheAsicsCache) {
  setCaches();
  discover();
  EXPECT_EQ(run("showRxParamsRaw A 10g 0-3 8"), table("show rx cache for A interface and rate 10g", {0, 1, 2, 3, 8},
                                                      perNumber("GetSerDesRxRateParams(0, %, 5)", {0, 1, 2, 3, 8}),
                                                      "Mode                   0    3    3    2    0 \n"
                                                      "P0                     7   -1   -1 -2147483647    7 \n"
                                                      "P1                     0 -128 -128 2147483647    0 \n"
                                                      "P2                    78  300  300  -80   78 \n"
                                                      "P3                     5 -9999 -9999 70000    5 \n"));
}

TEST_F(ShowRxParamsRaw, OtherInterfacesShowZerosEvenAfterTheAsicsOwn) {
  setCaches();
  discover();
  ASSERT_EQ(run("showRxParamsRaw asic 8G 1").status, CMD_OK);
  for (const std::string interface : {"system", "Network"}) {
    EXPECT_EQ(run("showRxParamsRaw " + interface + " 1 1"),
              table("show rx cache for " + interface + " interface and rate 1", {1}, {},
                    "Mode                   0    0 \n"
                    "P0                     0    0 \n"
                    "P1                     0    0 \n"
                    "P2                     0    0 \n"
                    "P3                     0    0 \n"));
  }
}

TEST_F(EShowRxParamsCache, ShowsCdrAndEqModeOfEachReceiveLink) {
  setCaches();
  discover();
  EXPECT_EQ(run("eshowRxParamsCache 10 8-10"),
            table("show rx cache for 10", {8, 9, 10}, perNumber("GetSerDesRxRateParams(0, %, 5)", {8, 9, 10}),
                  "cdr mode               0    3    3    2 \n"
                  "eq mode                7   -1   -1 -2147483647 \n"));
}

}  // namespace
}  // namespace recording
