// The DFE statistics tables and the compact count.
#include "commands/dfe_stats.h"

#include <cstring>
#include <limits>

#include "tests/support/default_switch.h"
#include "tests/support/expected.h"
#include "tests/support/handlers.h"

namespace recording {
namespace {

const Calls kPort0Reads = {"GetSerDesRxDFEStats(0, 0, 0)", "GetFrameStatCntrs(100/0/0)"};
const Calls kPort6Reads = {"GetSerDesRxDFEStats(0, 6, 0)", "GetFrameStatCntrs(106/0/6)",
                           "GetSerDesRxDFEStats(0, 6, 1)", "GetFrameStatCntrs(106/0/6)",
                           "GetSerDesRxDFEStats(0, 6, 2)", "GetFrameStatCntrs(106/0/6)",
                           "GetSerDesRxDFEStats(0, 6, 3)", "GetFrameStatCntrs(106/0/6)"};
const Calls kPort0Questions = headerQuestions({"100/0/0"});
const Calls kPort6Questions = headerQuestions({"106/0/6"});

// Taps first, first + 1, ..., first + 9, then the three amplitudes.
void setStats(unsigned port, unsigned link, int first, int ap, int amin, int an) {
  SerDesRxDFEStats& stats = platform.ports[port].rxLinks[link].stats;
  for (std::size_t i = 0; i < stats.h.size(); ++i)
    stats.h[i] = static_cast<std::int16_t>(first + static_cast<int>(i));
  stats.Ap = static_cast<std::int16_t>(ap);
  stats.Amin = static_cast<std::int16_t>(amin);
  stats.An = static_cast<std::int16_t>(an);
}

template <typename Record, typename Value>
void storeAt(Record& record, std::size_t offset, Value value) {
  std::memcpy(reinterpret_cast<char*>(&record) + offset, &value, sizeof value);
}

// A record whose every byte is set to something that must not show.
template <typename Record>
Record noise() {
  Record record;
  std::memset(&record, 0xA5, sizeof record);
  return record;
}

std::string compact(std::uint64_t value) {
  return printedBy([&] { printCompactCount(value); });
}

class PrintCompactCount : public ToolTest {};

TEST_F(PrintCompactCount, UpTo9999IsPlain) {
  EXPECT_EQ(compact(0), "   0 ");
  EXPECT_EQ(compact(1), "   1 ");
  EXPECT_EQ(compact(42), "  42 ");
  EXPECT_EQ(compact(999), " 999 ");
  EXPECT_EQ(compact(1000), "1000 ");
  EXPECT_EQ(compact(9998), "9998 ");
  EXPECT_EQ(compact(9999), "9999 ");
}

TEST_F(PrintCompactCount, From10000OnIsMantissaAndExponent) {
  EXPECT_EQ(compact(10000), "1e04 ");
  EXPECT_EQ(compact(10001), "1e04 ");
  EXPECT_EQ(compact(94999), "9e04 ");
  EXPECT_EQ(compact(100000), "1e05 ");
  EXPECT_EQ(compact(123456789), "1e08 ");
}

TEST_F(PrintCompactCount, MantissaRoundsHalfUp) {
  EXPECT_EQ(compact(14999), "1e04 ");
  EXPECT_EQ(compact(15000), "2e04 ");
  EXPECT_EQ(compact(24999), "2e04 ");
  EXPECT_EQ(compact(25000), "3e04 ");
  EXPECT_EQ(compact(85000), "9e04 ");
  EXPECT_EQ(compact(2500000000), "3e09 ");
}

TEST_F(PrintCompactCount, JustBelowAPowerOfTenTheMantissaIsTen) {
  EXPECT_EQ(compact(95000), "10e04 ");
  EXPECT_EQ(compact(96000), "10e04 ");
  EXPECT_EQ(compact(99999), "10e04 ");
  EXPECT_EQ(compact(949999), "9e05 ");
  EXPECT_EQ(compact(950000), "10e05 ");
  EXPECT_EQ(compact(987654321), "10e08 ");
  EXPECT_EQ(compact(9999999999), "10e09 ");
}

TEST_F(PrintCompactCount, LogarithmIsRoundedToDoubleBeforeItIsCut) {
  EXPECT_EQ(compact(99999999999999), "10e13 ");
  EXPECT_EQ(compact(999999999999999), "1e15 ");
  EXPECT_EQ(compact(9999999999999999), "1e16 ");
}

TEST_F(PrintCompactCount, EachPowerOfTenIsOne) {
  const char* const cells[] = {"1e04 ", "1e05 ", "1e06 ", "1e07 ", "1e08 ", "1e09 ", "1e10 ", "1e11 ",
                               "1e12 ", "1e13 ", "1e14 ", "1e15 ", "1e16 ", "1e17 ", "1e18 ", "1e19 "};
  std::uint64_t power = 1000;
  for (const char* cell : cells) {
    power *= 10;
    EXPECT_EQ(compact(power), cell) << power;
  }
}

TEST_F(PrintCompactCount, CountsBeyond32BitsKeepAllTheirBits) {
  EXPECT_EQ(compact(0xFFFFFFFF), "4e09 ");
  EXPECT_EQ(compact(0x100000000), "4e09 ");
  EXPECT_EQ(compact(0x100000001), "4e09 ");
  EXPECT_EQ(compact(0x300000005), "1e10 ");
  EXPECT_EQ(compact(0x7FFFFFFFFFFFFFFF), "9e18 ");
  EXPECT_EQ(compact(0x8000000000000000), "9e18 ");
}

TEST_F(PrintCompactCount, LargestCountIs2e19) {
  EXPECT_EQ(compact(std::numeric_limits<std::uint64_t>::max()), "2e19 ");
}

class ShowDFEStats : public TopologyTest {};

TEST_F(ShowDFEStats, ShowsTenTapsOfAType2Port) {
  setStats(0, 0, 11, 70, 35, -71);
  platform.ports[0].decodeErrors = 3;
  platform.ports[0].crcErrors = 12;
  const Outcome shown = printed("\nTYPE-2              \n" + kPort0Head +
                                    "H1_Even               11 \n"
                                    "H1_Odd                12 \n"
                                    "H2_Even               13 \n"
                                    "H2_Odd                14 \n"
                                    "H3_Even               15 \n"
                                    "H3_Odd                16 \n"
                                    "H4_Even               17 \n"
                                    "H4_Odd                18 \n"
                                    "H5_Even               19 \n"
                                    "H5_Odd                20 \n"
                                    "Ap                    70 \n"
                                    "Amin                  35 \n"
                                    "An                   -71 \n"
                                    "Decode Errors          3 \n"
                                    "CRC Errors            12 \n"
                                    "\n",
                                kPort0Reads + kPort0Questions + Calls{"ToString(2)"});
  EXPECT_EQ(run("showDFEStats 0"), shown);
  EXPECT_EQ(run("ddfestats 0"), shown);
  EXPECT_EQ(run("DDFEStats 0"), shown);
}

TEST_F(ShowDFEStats, ShowsFiveTapsOfAType3PortWithTwoLinks) {
  platform.ports[2].rx = {.linkCount = 2, .type = 3, .core = 0};
  platform.ports[2].tx.linkCount = 2;
  discover();
  setStats(2, 0, 1, 70, 35, -71);
  setStats(2, 1, -5, 80, 45, -81);
  platform.ports[2].decodeErrors = 9999;
  platform.ports[2].crcErrors = 99999;
  EXPECT_EQ(run("showDFEStats 2"), printed("\nTYPE-3              \n"
                                           "=================== ==== ==== \n"
                                           "ASIC port              2    2 \n"
                                           "user port            102  102 \n"
                                           "link num               0    1 \n"
                                           "running rate          8G   8G\n"
                                           "media type           OPT  OPT\n"
                                           "=================== ==== ==== \n"
                                           "H1                     1   -5 \n"
                                           "H2                     2   -4 \n"
                                           "H3                     3   -3 \n"
                                           "H4                     4   -2 \n"
                                           "H5                     5   -1 \n"
                                           "Ap                    70   80 \n"
                                           "Amin                  35   45 \n"
                                           "An                   -71  -81 \n"
                                           "Decode Errors       9999 9999 \n"
                                           "CRC Errors          10e04 10e04 \n"
                                           "\n",
                                           Calls{"GetSerDesRxDFEStats(0, 2, 0)", "GetFrameStatCntrs(102/0/2)",
                                                 "GetSerDesRxDFEStats(0, 2, 1)", "GetFrameStatCntrs(102/0/2)"} +
                                               headerQuestions({"102/0/2"}) + Calls{"ToString(3)"}));
}

TEST_F(ShowDFEStats, Type5HasTheTapsOfType2) {
  platform.ports[0].rx.type = 5;
  discover();
  setStats(0, 0, -5, 1, 2, 3);
  EXPECT_EQ(run("showDFEStats 0"), printed("\nTYPE-5              \n" + kPort0Head +
                                               "H1_Even               -5 \n"
                                               "H1_Odd                -4 \n"
                                               "H2_Even               -3 \n"
                                               "H2_Odd                -2 \n"
                                               "H3_Even               -1 \n"
                                               "H3_Odd                 0 \n"
                                               "H4_Even                1 \n"
                                               "H4_Odd                 2 \n"
                                               "H5_Even                3 \n"
                                               "H5_Odd                 4 \n"
                                               "Ap                     1 \n"
                                               "Amin                   2 \n"
                                               "An                     3 \n"
                                               "Decode Errors          0 \n"
                                               "CRC Errors             0 \n"
                                               "\n",
                                           kPort0Reads + kPort0Questions + Calls{"ToString(5)"}));
}

TEST_F(ShowDFEStats, OneTablePerReceiveTypeInTypeOrder) {
  platform.ports[0].rx.type = 5;
  platform.ports[7].rx.linkCount = platform.ports[7].tx.linkCount = 1;
  discover();
  setStats(0, 0, 50, 51, 52, 53);
  setStats(1, 0, 20, 21, 22, 23);
  setStats(2, 0, 30, 31, 32, 33);
  setStats(7, 0, 70, 71, 72, 73);
  const Calls questions = headerQuestions({"100/0/0", "101/0/1", "102/0/2", "107/0/7"});
  EXPECT_EQ(run("showDFEStats 7 0-2"),
            printed("\nTYPE-2              \n"
                    "=================== ==== ==== \n"
                    "ASIC port              1    2 \n"
                    "user port            101  102 \n"
                    "link num               0    0 \n"
                    "running rate          8G   8G\n"
                    "media type           OPT  OPT\n"
                    "=================== ==== ==== \n"
                    "H1_Even               20   30 \n"
                    "H1_Odd                21   31 \n"
                    "H2_Even               22   32 \n"
                    "H2_Odd                23   33 \n"
                    "H3_Even               24   34 \n"
                    "H3_Odd                25   35 \n"
                    "H4_Even               26   36 \n"
                    "H4_Odd                27   37 \n"
                    "H5_Even               28   38 \n"
                    "H5_Odd                29   39 \n"
                    "Ap                    21   31 \n"
                    "Amin                  22   32 \n"
                    "An                    23   33 \n"
                    "Decode Errors          0    0 \n"
                    "CRC Errors             0    0 \n"
                    "\n"
                    "\nTYPE-3              \n"
                    "=================== ==== \n"
                    "ASIC port              7 \n"
                    "user port            107 \n"
                    "link num               0 \n"
                    "running rate          8G\n"
                    "media type           OPT\n"
                    "=================== ==== \n"
                    "H1                    70 \n"
                    "H2                    71 \n"
                    "H3                    72 \n"
                    "H4                    73 \n"
                    "H5                    74 \n"
                    "Ap                    71 \n"
                    "Amin                  72 \n"
                    "An                    73 \n"
                    "Decode Errors          0 \n"
                    "CRC Errors             0 \n"
                    "\n"
                    "\nTYPE-5              \n" +
                        kPort0Head +
                        "H1_Even               50 \n"
                        "H1_Odd                51 \n"
                        "H2_Even               52 \n"
                        "H2_Odd                53 \n"
                        "H3_Even               54 \n"
                        "H3_Odd                55 \n"
                        "H4_Even               56 \n"
                        "H4_Odd                57 \n"
                        "H5_Even               58 \n"
                        "H5_Odd                59 \n"
                        "Ap                    51 \n"
                        "Amin                  52 \n"
                        "An                    53 \n"
                        "Decode Errors          0 \n"
                        "CRC Errors             0 \n"
                        "\n",
                    Calls{"GetSerDesRxDFEStats(0, 0, 0)", "GetFrameStatCntrs(100/0/0)", "GetSerDesRxDFEStats(0, 1, 0)",
                          "GetFrameStatCntrs(101/0/1)", "GetSerDesRxDFEStats(0, 2, 0)", "GetFrameStatCntrs(102/0/2)",
                          "GetSerDesRxDFEStats(0, 7, 0)", "GetFrameStatCntrs(107/0/7)"} +
                        questions + Calls{"ToString(2)"} + questions + Calls{"ToString(3)"} + questions +
                        Calls{"ToString(5)"}));
}

TEST_F(ShowDFEStats, TableOfAReceiveTypeIgnoresTransmitTypes) {
  platform.ports[0].tx.type = 3;
  discover();
  EXPECT_EQ(run("showDFEStats 0"), printed("\nTYPE-2              \n" + kPort0Head +
                                               "H1_Even                0 \n"
                                               "H1_Odd                 0 \n"
                                               "H2_Even                0 \n"
                                               "H2_Odd                 0 \n"
                                               "H3_Even                0 \n"
                                               "H3_Odd                 0 \n"
                                               "H4_Even                0 \n"
                                               "H4_Odd                 0 \n"
                                               "H5_Even                0 \n"
                                               "H5_Odd                 0 \n"
                                               "Ap                     0 \n"
                                               "Amin                   0 \n"
                                               "An                     0 \n"
                                               "Decode Errors          0 \n"
                                               "CRC Errors             0 \n"
                                               "\n",
                                           kPort0Reads + kPort0Questions + Calls{"ToString(2)"}));
}

TEST_F(ShowDFEStats, ValuesAreSigned16Bit) {
  setStats(6, 0, 0, 32767, -32768, -1);
  platform.ports[6].rxLinks[0].stats.h = {static_cast<std::int16_t>(0xFFF0), 127, -128, 9999, -999, 0, 0, 0, 0, 0};
  EXPECT_EQ(run("showDFEStats 6"), printed("\nTYPE-3              \n" + kPort6Head +
                                               "H1                   -16    0    0    0 \n"
                                               "H2                   127    0    0    0 \n"
                                               "H3                  -128    0    0    0 \n"
                                               "H4                  9999    0    0    0 \n"
                                               "H5                  -999    0    0    0 \n"
                                               "Ap                  32767    0    0    0 \n"
                                               "Amin                -32768    0    0    0 \n"
                                               "An                    -1    0    0    0 \n"
                                               "Decode Errors          0    0    0    0 \n"
                                               "CRC Errors             0    0    0    0 \n"
                                               "\n",
                                           kPort6Reads + kPort6Questions + Calls{"ToString(3)"}));
}

TEST_F(ShowDFEStats, CountersAreReadOncePerLinkIntoTheirOwnCells) {
  std::uint32_t reads = 0;
  platform.frameStatistics = [&](port_id_t) {
    drv_counters_t counters{};
    ++reads;
    counters.decodeErrors = {.high = 0, .low = 9998 + reads};
    counters.crcErrors = {.high = reads, .low = 0};
    return counters;
  };
  EXPECT_EQ(run("showDFEStats 6"), printed("\nTYPE-3              \n" + kPort6Head +
                                               "H1                     0    0    0    0 \n"
                                               "H2                     0    0    0    0 \n"
                                               "H3                     0    0    0    0 \n"
                                               "H4                     0    0    0    0 \n"
                                               "H5                     0    0    0    0 \n"
                                               "Ap                     0    0    0    0 \n"
                                               "Amin                   0    0    0    0 \n"
                                               "An                     0    0    0    0 \n"
                                               "Decode Errors       9999 1e04 1e04 1e04 \n"
                                               "CRC Errors          4e09 9e09 1e10 2e10 \n"
                                               "\n",
                                           kPort6Reads + kPort6Questions + Calls{"ToString(3)"}));
}

TEST_F(ShowDFEStats, CountersStandAtBytes88And112MostSignificantWordFirst) {
  platform.frameStatistics = [](port_id_t) {
    auto counters = noise<drv_counters_t>();
    storeAt(counters, 88, std::uint32_t{0});
    storeAt(counters, 92, std::uint32_t{77});
    storeAt(counters, 112, std::uint32_t{1});
    storeAt(counters, 116, std::uint32_t{0});
    return counters;
  };
  EXPECT_EQ(run("showDFEStats 0"), printed("\nTYPE-2              \n" + kPort0Head +
                                               "H1_Even                0 \n"
                                               "H1_Odd                 0 \n"
                                               "H2_Even                0 \n"
                                               "H2_Odd                 0 \n"
                                               "H3_Even                0 \n"
                                               "H3_Odd                 0 \n"
                                               "H4_Even                0 \n"
                                               "H4_Odd                 0 \n"
                                               "H5_Even                0 \n"
                                               "H5_Odd                 0 \n"
                                               "Ap                     0 \n"
                                               "Amin                   0 \n"
                                               "An                     0 \n"
                                               "Decode Errors         77 \n"
                                               "CRC Errors          4e09 \n"
                                               "\n",
                                           kPort0Reads + kPort0Questions + Calls{"ToString(2)"}));
}

TEST_F(ShowDFEStats, BothWordsOfACounterCount) {
  platform.frameStatistics = [](port_id_t) {
    auto counters = noise<drv_counters_t>();
    storeAt(counters, 88, std::uint32_t{2});
    storeAt(counters, 92, std::uint32_t{1410065407});  // 9999999999 in all
    storeAt(counters, 112, std::uint32_t{2});
    storeAt(counters, 116, std::uint32_t{1410065408});  // 10000000000
    return counters;
  };
  EXPECT_EQ(run("showDFEStats 0"), printed("\nTYPE-2              \n" + kPort0Head +
                                               "H1_Even                0 \n"
                                               "H1_Odd                 0 \n"
                                               "H2_Even                0 \n"
                                               "H2_Odd                 0 \n"
                                               "H3_Even                0 \n"
                                               "H3_Odd                 0 \n"
                                               "H4_Even                0 \n"
                                               "H4_Odd                 0 \n"
                                               "H5_Even                0 \n"
                                               "H5_Odd                 0 \n"
                                               "Ap                     0 \n"
                                               "Amin                   0 \n"
                                               "An                     0 \n"
                                               "Decode Errors       10e09 \n"
                                               "CRC Errors          1e10 \n"
                                               "\n",
                                           kPort0Reads + kPort0Questions + Calls{"ToString(2)"}));
}

TEST_F(ShowDFEStats, StatisticsAreAWordTenTapsAndThreeAmplitudes) {
  auto& stats = platform.ports[0].rxLinks[0].stats;
  stats = noise<SerDesRxDFEStats>();
  for (std::size_t i = 0; i < 13; ++i)
    storeAt(stats, 4 + 2 * i, static_cast<std::int16_t>(101 + i));
  EXPECT_EQ(run("showDFEStats 0"), printed("\nTYPE-2              \n" + kPort0Head +
                                               "H1_Even              101 \n"
                                               "H1_Odd               102 \n"
                                               "H2_Even              103 \n"
                                               "H2_Odd               104 \n"
                                               "H3_Even              105 \n"
                                               "H3_Odd               106 \n"
                                               "H4_Even              107 \n"
                                               "H4_Odd               108 \n"
                                               "H5_Even              109 \n"
                                               "H5_Odd               110 \n"
                                               "Ap                   111 \n"
                                               "Amin                 112 \n"
                                               "An                   113 \n"
                                               "Decode Errors          0 \n"
                                               "CRC Errors             0 \n"
                                               "\n",
                                           kPort0Reads + kPort0Questions + Calls{"ToString(2)"}));
}

TEST_F(ShowDFEStats, FullRecordsOfAllLinksOfAllPortsHaveRoom) {
  const char* const ids[] = {"100/0/0",  "101/0/1",  "102/0/2",  "65535/0/3", "104/0/4",  "105/0/5",
                             "106/0/6",  "107/0/7",  "108/0/8",  "65535/0/9", "110/0/10", "111/0/11",
                             "112/0/12", "113/0/13", "114/0/14", "115/0/15",  "116/0/16", "117/0/17",
                             "118/0/18", "119/0/19", "120/0/20", "121/0/21",  "122/0/22", "123/0/23"};
  Calls reads;
  Calls questions;
  for (unsigned port = 0; port < 24; ++port) {
    platform.ports[port].rx = {.linkCount = 4, .type = 4, .core = 0};
    platform.ports[port].tx.linkCount = 0;
    for (unsigned link = 0; link < 4; ++link) {
      platform.ports[port].rxLinks[link].stats = noise<SerDesRxDFEStats>();
      reads.push_back("GetSerDesRxDFEStats(0, " + std::to_string(port) + ", " + std::to_string(link) + ")");
      reads.push_back(std::string("GetFrameStatCntrs(") + ids[port] + ")");
    }
    questions = questions + headerQuestions({ids[port]});
  }
  platform.ports[23].rx.type = 3;
  platform.portCount = 24;
  platform.frameStatistics = [](port_id_t) { return noise<drv_counters_t>(); };
  discover();
  EXPECT_EQ(run("showDFEStats 0-23"),
            (Outcome{CMD_EXEC_ERROR,
                     "\nTYPE-3              \n" + kNoPortsHead +
                         "H1                  -23131 -23131 -23131 -23131 \n"
                         "H2                  -23131 -23131 -23131 -23131 \n"
                         "H3                  -23131 -23131 -23131 -23131 \n"
                         "H4                  -23131 -23131 -23131 -23131 \n"
                         "H5                  -23131 -23131 -23131 -23131 \n"
                         "Ap                  -23131 -23131 -23131 -23131 \n"
                         "Amin                -23131 -23131 -23131 -23131 \n"
                         "An                  -23131 -23131 -23131 -23131 \n"
                         "Decode Errors       1e19 1e19 1e19 1e19 \n"
                         "CRC Errors          1e19 1e19 1e19 1e19 \n"
                         "\n"
                         "\nTYPE-4              \n" +
                         kNoPortsHead,
                     reads + questions + Calls{"ToString(3)"} + questions + Calls{"ToString(4)"}}));
}

TEST_F(ShowDFEStats, UnknownLayoutEndsSilentlyAfterItsHeader) {
  EXPECT_EQ(run("showDFEStats 8"), (Outcome{CMD_EXEC_ERROR, "\nTYPE-4              \n" + kPort8Head,
                                            Calls{"GetSerDesRxDFEStats(0, 8, 0)", "GetFrameStatCntrs(108/0/8)"} +
                                                headerQuestions({"108/0/8"}) + Calls{"ToString(4)"}}));
}

TEST_F(ShowDFEStats, EachOtherTypeHasAnUnknownLayout) {
  const struct {
    std::uint32_t type;
    const char* title;
    const char* name;
  } rows[] = {{0, "\nTYPE-0              \n", "ToString(0)"},
              {1, "\nTYPE-1              \n", "ToString(1)"},
              {4, "\nTYPE-4              \n", "ToString(4)"},
              {6, "\nTYPE-6              \n", "ToString(6)"}};
  for (const auto& row : rows) {
    platform.ports[0].rx.type = row.type;
    discover();
    EXPECT_EQ(run("showDFEStats 0"),
              (Outcome{CMD_EXEC_ERROR, row.title + kPort0Head, kPort0Reads + kPort0Questions + Calls{row.name}}));
  }
}

TEST_F(ShowDFEStats, LowerTypesStayPrintedAndHigherTypesAreNotShown) {
  platform.ports[0].rx.type = 5;
  platform.ports[6].tx.linkCount = platform.ports[6].rx.linkCount = 1;
  discover();
  setStats(6, 0, 1, 2, 3, 4);
  const Calls questions = headerQuestions({"100/0/0", "106/0/6", "108/0/8"});
  EXPECT_EQ(run("showDFEStats 0 6 8"),
            (Outcome{CMD_EXEC_ERROR,
                     "\nTYPE-3              \n"
                     "=================== ==== \n"
                     "ASIC port              6 \n"
                     "user port            106 \n"
                     "link num               0 \n"
                     "running rate          8G\n"
                     "media type           OPT\n"
                     "=================== ==== \n"
                     "H1                     1 \n"
                     "H2                     2 \n"
                     "H3                     3 \n"
                     "H4                     4 \n"
                     "H5                     5 \n"
                     "Ap                     2 \n"
                     "Amin                   3 \n"
                     "An                     4 \n"
                     "Decode Errors          0 \n"
                     "CRC Errors             0 \n"
                     "\n"
                     "\nTYPE-4              \n" +
                         kPort8Head,
                     Calls{"GetSerDesRxDFEStats(0, 0, 0)", "GetFrameStatCntrs(100/0/0)", "GetSerDesRxDFEStats(0, 6, 0)",
                           "GetFrameStatCntrs(106/0/6)", "GetSerDesRxDFEStats(0, 8, 0)", "GetFrameStatCntrs(108/0/8)"} +
                         questions + Calls{"ToString(3)"} + questions + Calls{"ToString(4)"}}));
}

TEST_F(ShowDFEStats, PortWithoutReceiveLinksOpensATableWithoutCells) {
  platform.ports[6].rx.linkCount = 0;
  discover();
  EXPECT_EQ(run("showDFEStats 6"), printed("\nTYPE-3              \n" + kPort6Head +
                                               "H1                  \n"
                                               "H2                  \n"
                                               "H3                  \n"
                                               "H4                  \n"
                                               "H5                  \n"
                                               "Ap                  \n"
                                               "Amin                \n"
                                               "An                  \n"
                                               "Decode Errors       \n"
                                               "CRC Errors          \n"
                                               "\n",
                                           kPort6Questions + Calls{"ToString(3)"}));
}

TEST_F(ShowDFEStats, PortWithoutReceiveLinksOfUnknownLayoutEndsTheCommandToo) {
  platform.ports[8].rx.linkCount = 0;
  discover();
  EXPECT_EQ(run("showDFEStats 8"), (Outcome{CMD_EXEC_ERROR, "\nTYPE-4              \n" + kPort8Head,
                                            headerQuestions({"108/0/8"}) + Calls{"ToString(4)"}}));
}

TEST_F(ShowDFEStats, LinkCountsOfTheSidesMayDiffer) {
  platform.ports[6].tx.linkCount = 1;
  platform.ports[7].tx.linkCount = 2;
  platform.ports[7].rx.linkCount = 1;
  discover();
  setStats(6, 3, 1, 2, 3, 4);
  setStats(7, 0, 11, 12, 13, 14);
  EXPECT_EQ(run("showDFEStats xg"),
            printed("\nTYPE-3              \n"
                    "=================== ==== ==== ==== \n"
                    "ASIC port              6    7    7 \n"
                    "user port            106  107  107 \n"
                    "link num               0    0    1 \n"
                    "running rate          8G   8G   8G\n"
                    "media type           OPT  OPT  OPT\n"
                    "=================== ==== ==== ==== \n"
                    "H1                     0    0    0    1   11 \n"
                    "H2                     0    0    0    2   12 \n"
                    "H3                     0    0    0    3   13 \n"
                    "H4                     0    0    0    4   14 \n"
                    "H5                     0    0    0    5   15 \n"
                    "Ap                     0    0    0    2   12 \n"
                    "Amin                   0    0    0    3   13 \n"
                    "An                     0    0    0    4   14 \n"
                    "Decode Errors          0    0    0    0    0 \n"
                    "CRC Errors             0    0    0    0    0 \n"
                    "\n",
                    kPort6Reads + Calls{"GetSerDesRxDFEStats(0, 7, 0)", "GetFrameStatCntrs(107/0/7)"} +
                        headerQuestions({"106/0/6", "107/0/7"}) + Calls{"ToString(3)"}));
}

TEST_F(ShowDFEStats, PortThatDoesNotRunKeepsItsCells) {
  setStats(7, 0, 11, 12, 13, 14);
  platform.ports[7].rx.linkCount = platform.ports[7].tx.linkCount = 1;
  makeIdle(platform.ports[7]);
  discover();
  EXPECT_EQ(run("showDFEStats 7"), printed("\nTYPE-3              \n"
                                           "=================== ==== \n"
                                           "ASIC port              7 \n"
                                           "user port            107 \n"
                                           "link num               0 \n"
                                           "running rate         INV\n"
                                           "media type           OPT\n"
                                           "=================== ==== \n"
                                           "H1                    11 \n"
                                           "H2                    12 \n"
                                           "H3                    13 \n"
                                           "H4                    14 \n"
                                           "H5                    15 \n"
                                           "Ap                    12 \n"
                                           "Amin                  13 \n"
                                           "An                    14 \n"
                                           "Decode Errors          0 \n"
                                           "CRC Errors             0 \n"
                                           "\n",
                                           Calls{"GetSerDesRxDFEStats(0, 7, 0)", "GetFrameStatCntrs(107/0/7)"} +
                                               idleHeaderQuestions("107/0/7") + Calls{"ToString(3)"}));
}

TEST_F(ShowDFEStats, EmptyListShowsNothing) {
  EXPECT_EQ(run("showDFEStats 5-2"), done({}));
  EXPECT_EQ(run("showDFEStats 12-31"), done({}));
}

TEST_F(ShowDFEStats, TypesBeyondTheSevenOpenNoTable) {
  platform.ports[0].rx.type = 7;
  platform.ports[1].rx.type = 250;
  platform.ports[2].rx.type = 0xFFFFFFFF;
  discover();
  EXPECT_EQ(run("showDFEStats 0-2"),
            done({"GetSerDesRxDFEStats(0, 0, 0)", "GetFrameStatCntrs(100/0/0)", "GetSerDesRxDFEStats(0, 1, 0)",
                  "GetFrameStatCntrs(101/0/1)", "GetSerDesRxDFEStats(0, 2, 0)", "GetFrameStatCntrs(102/0/2)"}));
}

TEST_F(ShowDFEStats, TypeWithoutNameIsEntitledUnk) {
  platform.typeNames.erase(4);
  EXPECT_EQ(run("showDFEStats 8"), (Outcome{CMD_EXEC_ERROR, "\nUNK                 \n" + kPort8Head,
                                            Calls{"GetSerDesRxDFEStats(0, 8, 0)", "GetFrameStatCntrs(108/0/8)"} +
                                                headerQuestions({"108/0/8"}) + Calls{"ToString(4)"}}));
}

TEST_F(ShowDFEStats, OverlongTypeNameIsCut) {
  platform.typeNames[4] = std::string(300, 'n');
  EXPECT_EQ(run("showDFEStats 8"), (Outcome{CMD_EXEC_ERROR, "\n" + std::string(255, 'n') + " \n" + kPort8Head,
                                            Calls{"GetSerDesRxDFEStats(0, 8, 0)", "GetFrameStatCntrs(108/0/8)"} +
                                                headerQuestions({"108/0/8"}) + Calls{"ToString(4)"}}));
}

TEST_F(ShowDFEStats, NoMoreThanFourLinksAreWalked) {
  platform.ports[6].rx.linkCount = 9;
  platform.ports[6].tx.linkCount = 9;
  discover();
  setStats(6, 3, 1, 2, 3, 4);
  EXPECT_EQ(run("showDFEStats 6"), printed("\nTYPE-3              \n" + kPort6Head +
                                               "H1                     0    0    0    1 \n"
                                               "H2                     0    0    0    2 \n"
                                               "H3                     0    0    0    3 \n"
                                               "H4                     0    0    0    4 \n"
                                               "H5                     0    0    0    5 \n"
                                               "Ap                     0    0    0    2 \n"
                                               "Amin                   0    0    0    3 \n"
                                               "An                     0    0    0    4 \n"
                                               "Decode Errors          0    0    0    0 \n"
                                               "CRC Errors             0    0    0    0 \n"
                                               "\n",
                                           kPort6Reads + kPort6Questions + Calls{"ToString(3)"}));
}

TEST_F(ShowDFEStats, AddressesTheSelectedAsicAndThePortsOwnIdentifier) {
  platform.ports[8].hwConfig.portId.asic = 1;
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("showDFEStats 8"), (Outcome{CMD_EXEC_ERROR, "\nTYPE-4              \n" + kPort8Head,
                                            Calls{"GetSerDesRxDFEStats(1, 8, 0)", "GetFrameStatCntrs(108/1/8)"} +
                                                headerQuestions({"108/1/8"}) + Calls{"ToString(4)"}}));
}

TEST_F(ShowDFEStats, PositiveResultsAreSuccess) {
  platform.fail("GetSerDesRxDFEStats", 1);
  platform.fail("GetFrameStatCntrs", 2);
  setStats(7, 0, 1, 2, 3, 4);
  platform.ports[7].rx.linkCount = platform.ports[7].tx.linkCount = 1;
  platform.ports[7].crcErrors = 15000;
  discover();
  EXPECT_EQ(run("showDFEStats 7"), printed("\nTYPE-3              \n"
                                           "=================== ==== \n"
                                           "ASIC port              7 \n"
                                           "user port            107 \n"
                                           "link num               0 \n"
                                           "running rate          8G\n"
                                           "media type           OPT\n"
                                           "=================== ==== \n"
                                           "H1                     1 \n"
                                           "H2                     2 \n"
                                           "H3                     3 \n"
                                           "H4                     4 \n"
                                           "H5                     5 \n"
                                           "Ap                     2 \n"
                                           "Amin                   3 \n"
                                           "An                     4 \n"
                                           "Decode Errors          0 \n"
                                           "CRC Errors          2e04 \n"
                                           "\n",
                                           Calls{"GetSerDesRxDFEStats(0, 7, 0)", "GetFrameStatCntrs(107/0/7)"} +
                                               headerQuestions({"107/0/7"}) + Calls{"ToString(3)"}));
}

TEST_F(ShowDFEStats, FailureOfEachReadPrintsNoTable) {
  expectEachFailureEnds("showDFEStats 0 6", kPort0Reads + kPort6Reads, "showDFEStatsCmdHandler: serdes err");
}

class DfeStatsRefusal : public RefusalTest {};

TEST_P(DfeStatsRefusal, ReadsNothing) {
  EXPECT_EQ(run(GetParam().line), refused(GetParam().status));
}

INSTANTIATE_TEST_SUITE_P(ShowDFEStats, DfeStatsRefusal,
                         testing::Values(Refusal{"WithoutList", "showDFEStats", CMD_TOO_FEW_ARGS},
                                         Refusal{"ListNotPorts", "showDFEStats 0 x", CMD_BAD_PARAM},
                                         Refusal{"KeywordInALongerList", "showDFEStats 3 gl", CMD_BAD_PARAM},
                                         Refusal{"NegativePort", "showDFEStats -1", CMD_BAD_PARAM},
                                         Refusal{"RangeBeyond31", "showDFEStats 30-32", CMD_BAD_PARAM},
                                         Refusal{"TooManyWords",
                                                 "showDFEStats 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0",
                                                 CMD_TOO_MANY_ARGS}),
                         refusalName);

class DfeStatsOnOversizedSwitch : public OversizedSwitchTest {};

TEST_P(DfeStatsOnOversizedSwitch, NoPortBeyondTheModelIsShown) {
  EXPECT_EQ(run("showDFEStats 23-31"), (Outcome{CMD_EXEC_ERROR,
                                                "\nTYPE-4              \n"
                                                "=================== ==== \n"
                                                "ASIC port             23 \n"
                                                "user port            123 \n"
                                                "link num               0 \n"
                                                "running rate          8G\n"
                                                "media type           OPT\n"
                                                "=================== ==== \n",
                                                Calls{"GetSerDesRxDFEStats(0, 23, 0)", "GetFrameStatCntrs(123/0/23)"} +
                                                    headerQuestions({"123/0/23"}) + Calls{"ToString(4)"}}));
}

INSTANTIATE_TEST_SUITE_P(PortCounts, DfeStatsOnOversizedSwitch, testing::Values(40u, 0xFFFFFFFFu));

}  // namespace
}  // namespace recording
