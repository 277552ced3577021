// The DFE statistics tables and the compact count.
#include <cstring>
#include <limits>

#include "tests/support/expected.h"

namespace recording {
namespace {

// What is read of a port's links before any table.
Calls readsOf(unsigned port, unsigned linkCount) {
  Calls reads;
  for (unsigned link = 0; link < linkCount; ++link) {
    reads.push_back("GetSerDesRxDFEStats(0, " + std::to_string(port) + ", " + std::to_string(link) + ")");
    reads.push_back("GetFrameStatCntrs(" + idOf(port) + ")");
  }
  return reads;
}

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

// The rows of one link of type 2 or 5 whose taps and amplitudes are 0.
std::string zerosWith(const std::string& decodeErrors, const std::string& crcErrors) {
  return "H1_Even                0 \n"
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
         "Decode Errors       " +
         decodeErrors + "\nCRC Errors          " + crcErrors + "\n\n";
}

using ShowDFEStats = TopologyTest;

// Plain up to 9999. Beyond that the exponent is cut before the mantissa is rounded half up, so that just below a power
// of ten the mantissa is 10; and the logarithm is rounded to double before it is cut. Both words of a counter count.
TEST_F(ShowDFEStats, CountsArePlainOrMantissaAndExponent) {
  const struct {
    std::uint64_t count;
    const char* cell;
  } rows[] = {{0, "   0 "},
              {42, "  42 "},
              {999, " 999 "},
              {1000, "1000 "},
              {9998, "9998 "},
              {9999, "9999 "},
              {10000, "1e04 "},
              {10001, "1e04 "},
              {14999, "1e04 "},
              {15000, "2e04 "},
              {24999, "2e04 "},
              {25000, "3e04 "},
              {85000, "9e04 "},
              {94999, "9e04 "},
              {95000, "10e04 "},
              {99999, "10e04 "},
              {100000, "1e05 "},
              {949999, "9e05 "},
              {950000, "10e05 "},
              {123456789, "1e08 "},
              {987654321, "10e08 "},
              {2500000000, "3e09 "},
              {0xFFFFFFFF, "4e09 "},
              {0x100000000, "4e09 "},
              {9999999999, "10e09 "},
              {10000000000, "1e10 "},
              {0x300000005, "1e10 "},
              {99999999999999, "10e13 "},
              {999999999999999, "1e15 "},
              {9999999999999999, "1e16 "},
              {0x7FFFFFFFFFFFFFFF, "9e18 "},
              {10000000000000000000u, "1e19 "},
              {std::numeric_limits<std::uint64_t>::max(), "2e19 "}};
  for (const auto& row : rows) {
    platform.ports[0].crcErrors = row.count;
    platform.ports[0].decodeErrors = row.count / 2;
    const std::string out = run("showDFEStats 0").out;
    EXPECT_EQ(out.substr(out.find("\nCRC Errors")), std::string("\nCRC Errors          ") + row.cell + "\n\n")
        << row.count;
  }
}

TEST_F(ShowDFEStats, EachPowerOfTenIsOne) {
  std::uint64_t power = 1000;
  for (unsigned exponent = 4; exponent < 20; ++exponent) {
    power *= 10;
    platform.ports[0].decodeErrors = power;
    const std::string cell = (exponent < 10 ? "1e0" : "1e") + std::to_string(exponent) + " ";
    EXPECT_EQ(run("showDFEStats 0"), done(readsOf(0, 1)) + typeTable(2, {0}, zerosWith(cell, "   0 ")));
  }
}

// Port 0 is of type 5, port 7 of type 3 and does not run, and ports 1 and 2 of type 2 have other link counts and types
// on their transmit sides, which give the columns.
TEST_F(ShowDFEStats, OneTablePerReceiveTypeInTypeOrder) {
  platform.ports[0].rx.type = 5;
  platform.ports[1].tx.type = 3;
  platform.ports[1].tx.linkCount = 3;
  platform.ports[1].rx.linkCount = 2;
  platform.ports[2].tx.linkCount = 0;
  platform.ports[7].rx.linkCount = platform.ports[7].tx.linkCount = 1;
  makeIdle(platform.ports[7]);
  discover();
  setStats(0, 0, -5, 1, 2, 3);
  setStats(1, 0, 11, 70, 35, -71);
  setStats(1, 1, 20, 21, 22, 23);
  setStats(2, 0, 30, 32767, -32768, -1);
  setStats(7, 0, 70, 71, 72, 73);
  platform.ports[1].decodeErrors = 3;
  platform.ports[1].crcErrors = 12;
  platform.ports[7].decodeErrors = 9999;
  platform.ports[7].crcErrors = 99999;
  const Numbers all = {0, 1, 2, 7};
  EXPECT_EQ(run("showDFEStats 7 0-2"), done(readsOf(0, 1) + readsOf(1, 2) + readsOf(2, 1) + readsOf(7, 1)) +
                                           typeTable(2, {1, 2},
                                                     "H1_Even               11   20   30 \n"
                                                     "H1_Odd                12   21   31 \n"
                                                     "H2_Even               13   22   32 \n"
                                                     "H2_Odd                14   23   33 \n"
                                                     "H3_Even               15   24   34 \n"
                                                     "H3_Odd                16   25   35 \n"
                                                     "H4_Even               17   26   36 \n"
                                                     "H4_Odd                18   27   37 \n"
                                                     "H5_Even               19   28   38 \n"
                                                     "H5_Odd                20   29   39 \n"
                                                     "Ap                    70   21 32767 \n"
                                                     "Amin                  35   22 -32768 \n"
                                                     "An                   -71   23   -1 \n"
                                                     "Decode Errors          3    3    0 \n"
                                                     "CRC Errors            12   12    0 \n"
                                                     "\n",
                                                     all) +
                                           typeTable(3, {7},
                                                     "H1                    70 \n"
                                                     "H2                    71 \n"
                                                     "H3                    72 \n"
                                                     "H4                    73 \n"
                                                     "H5                    74 \n"
                                                     "Ap                    71 \n"
                                                     "Amin                  72 \n"
                                                     "An                    73 \n"
                                                     "Decode Errors       9999 \n"
                                                     "CRC Errors          10e04 \n"
                                                     "\n",
                                                     all) +
                                           typeTable(5, {0},
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
                                                     all));
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
  EXPECT_EQ(run("showDFEStats 6"), done(readsOf(6, 4)) + typeTable(3, {6},
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
                                                                   "\n"));
}

TEST_F(ShowDFEStats, CountersStandAtBytes88And112MostSignificantWordFirst) {
  platform.frameStatistics = [](port_id_t) {
    auto counters = noise<drv_counters_t>();
    storeAt(counters, 88, std::uint32_t{0});
    storeAt(counters, 92, std::uint32_t{77});
    storeAt(counters, 112, std::uint32_t{2});
    storeAt(counters, 116, std::uint32_t{1410065408});  // 10000000000 in all
    return counters;
  };
  EXPECT_EQ(run("showDFEStats 0"), done(readsOf(0, 1)) + typeTable(2, {0}, zerosWith("  77 ", "1e10 ")));
}

TEST_F(ShowDFEStats, StatisticsAreAWordTenTapsAndThreeAmplitudes) {
  auto& stats = platform.ports[0].rxLinks[0].stats;
  stats = noise<SerDesRxDFEStats>();
  for (std::size_t i = 0; i < 13; ++i)
    storeAt(stats, 4 + 2 * i, static_cast<std::int16_t>(101 + i));
  EXPECT_EQ(run("showDFEStats 0"), done(readsOf(0, 1)) + typeTable(2, {0},
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
                                                                   "\n"));
}

TEST_F(ShowDFEStats, FullRecordsOfAllLinksOfAllPortsHaveRoom) {
  Calls reads;
  Numbers ports;
  for (unsigned port = 0; port < 24; ++port) {
    platform.ports[port].rx = {.linkCount = 4, .type = 4, .core = 0};
    platform.ports[port].tx.linkCount = 0;
    for (RxLink& link : platform.ports[port].rxLinks)
      link.stats = noise<SerDesRxDFEStats>();
    reads = reads + readsOf(port, 4);
    ports.push_back(port);
  }
  platform.ports[23].rx.type = 3;
  platform.portCount = 24;
  platform.frameStatistics = [](port_id_t) { return noise<drv_counters_t>(); };
  discover();
  Outcome expected = done(reads) +
                     typeTable(3, {23},
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
                               "\n",
                               ports) +
                     typeTable(4, ports, "", ports);
  expected.status = CMD_EXEC_ERROR;
  EXPECT_EQ(run("showDFEStats 0-23"), expected);
}

TEST_F(ShowDFEStats, EachOtherTypeEndsSilentlyAfterItsHeaderAlsoWithoutLinksOrName) {
  platform.typeNames.erase(4);
  platform.typeNames[6] = std::string(255, 'n');
  for (const std::uint32_t type : {0u, 1u, 4u, 6u}) {
    for (const unsigned linkCount : {0u, 1u}) {
      platform.ports[8].rx = {.linkCount = linkCount, .type = type, .core = 4};
      discover();
      Outcome expected = done(readsOf(8, linkCount)) + typeTable(type, {8}, "");
      expected.status = CMD_EXEC_ERROR;
      EXPECT_EQ(run("showDFEStats 8"), expected) << type;
    }
  }
}

TEST_F(ShowDFEStats, LowerTypesStayPrintedAndHigherTypesAreNotShown) {
  platform.ports[0].rx.type = 5;
  platform.ports[6].rx.linkCount = 0;
  discover();
  Outcome expected = done(readsOf(0, 1) + readsOf(8, 1)) +
                     typeTable(3, {6},
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
                               {0, 6, 8}) +
                     typeTable(4, {8}, "", {0, 6, 8});
  expected.status = CMD_EXEC_ERROR;
  EXPECT_EQ(run("showDFEStats 0 6 8"), expected);
}

TEST_F(ShowDFEStats, TypesBeyondTheSevenOpenNoTable) {
  platform.ports[0].rx.type = 7;
  platform.ports[1].rx.type = 250;
  platform.ports[2].rx.type = 0xFFFFFFFF;
  discover();
  EXPECT_EQ(run("showDFEStats 0-2"), done(readsOf(0, 1) + readsOf(1, 1) + readsOf(2, 1)));
}

TEST_F(ShowDFEStats, AsksByThePortsOwnIdentifier) {
  platform.ports[0].hwConfig.portId.asic = 1;
  discover();
  EXPECT_EQ(run("showDFEStats 0"), done(readsOf(0, 1)) + typeTable(2, {0}, zerosWith("   0 ", "   0 ")));
}

}  // namespace
}  // namespace recording
