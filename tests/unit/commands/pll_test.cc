// PLL register commands, which address cores.
#include "tests/support/expected.h"

namespace recording {
namespace {

using ReadPLL = TopologyTest;
using WritePLL = TopologyTest;
using ShowPLL = TopologyTest;

void fillPllRegisters(unsigned short value) {
  platform.pllRegister = [value](unsigned, unsigned) { return value; };
}

TEST_F(ReadPLL, PrintsCoreAddressAndValueOnOneLine) {
  EXPECT_EQ(run("readPLL 0x5 0x1a"),
            printed("Core ID 5 at PLL address 0x1a= 0x051a \n", {"ReadSerDesPLLRegister(0, 5, 26, 1)"}));
}

TEST_F(ReadPLL, AddressBeyondEightBitsReadsItsLowBitsAndPrintsItWhole) {
  fillPllRegisters(0xffff);
  EXPECT_EQ(run("readPLL 1 0x1ff"),
            printed("Core ID 1 at PLL address 0x1ff= 0xffff \n", {"ReadSerDesPLLRegister(0, 1, 255, 1)"}));
  EXPECT_EQ(run("readPLL 1 -2"),
            printed("Core ID 1 at PLL address 0xfffffffe= 0xffff \n", {"ReadSerDesPLLRegister(0, 1, 254, 1)"}));
}

TEST_F(ReadPLL, ReportedCoreCountIsTheBoundEvenBeyondTheModel) {
  expectRefusals({{"readPLL 6 7", CMD_BAD_PARAM}, {"readPLL -1 7", CMD_BAD_PARAM}});
  platform.coreCount = 30;
  discover();
  EXPECT_EQ(run("readPLL 29 1"),
            printed("Core ID 29 at PLL address 0x01= 0x1d01 \n", {"ReadSerDesPLLRegister(0, 29, 1, 1)"}));
  EXPECT_EQ(run("readPLL 30 1"), refused(CMD_BAD_PARAM));
  platform.portCount = platform.coreCount = 0;
  discover();
  EXPECT_EQ(run("readPLL 0 7"), refused(CMD_BAD_PARAM));
}

TEST_F(WritePLL, AnyCoreGoesToThePlatform) {
  EXPECT_EQ(run("writePLL 0 0x1f 0xFFFF"), done({"WriteSerDesPLLRegister(0, 0, 31, 65535)"}));
  EXPECT_EQ(run("writePLL -1 7 1"), done({"WriteSerDesPLLRegister(0, 4294967295, 7, 1)"}));
}

TEST_F(WritePLL, AddressAndValueAreCut) {
  EXPECT_EQ(run("writePLL 6 0x107 0x12345"), done({"WriteSerDesPLLRegister(0, 6, 7, 9029)"}));
  EXPECT_EQ(run("writePLL 1 -1 -1"), done({"WriteSerDesPLLRegister(0, 1, 255, 65535)"}));
}

TEST_F(ShowPLL, PrintsOneColumnPerCoreUnderAHeadWithoutEmptyLine) {
  platform.typeNames[2] = "TYPE-NAME";
  EXPECT_EQ(run("showPLL 0 1"),
            printed("                    core core \n"
                    "TYPE-NAME           0    1    \n"
                    "=================== ==== ==== \n"
                    "PLL register 0x00   0000 0100 \n"
                    "PLL register 0x01   0001 0101 \n"
                    "PLL register 0x02   0002 0102 \n"
                    "\n",
                    {"ReadSerDesPLLRegister(0, 0, 0, 3)", "ReadSerDesPLLRegister(0, 1, 0, 3)", "ToString(2)"}));
}

// A table of cores with `values`, one string of cells per register.
std::string coreTable(const std::string& name, const std::vector<std::string>& cores,
                      const std::vector<std::string>& values) {
  std::string title = name + std::string(name.size() < 19 ? 19 - name.size() : 0, ' ') + " ";
  std::string head = "                    ", rule = "=================== ", rows;
  for (const std::string& core : cores) {
    head += "core ";
    title += core + std::string(5 - core.size(), ' ');
    rule += "==== ";
  }
  for (std::size_t address = 0; address < values.size(); ++address)
    rows += std::string("PLL register 0x") + (address < 16 ? "0" : "1") + "0123456789abcdef"[address % 16] + "   " +
            values[address] + "\n";
  return head + "\n" + title + "\n" + rule + "\n" + rows + "\n";
}

TEST_F(ShowPLL, LowestAndHighestTypeHaveTables) {
  platform.portCount = 0;
  platform.coreCount = 2;
  platform.cores[0].type = 6;
  platform.cores[1].type = 0;
  platform.cores[0].pllRegisters = platform.cores[1].pllRegisters = 1;
  discover();
  EXPECT_EQ(run("showPLL 1 0"), printed(coreTable("TYPE-0", {"1"}, {"0100 "}) + coreTable("TYPE-6", {"0"}, {"0000 "}),
                                        {"ReadSerDesPLLRegister(0, 0, 0, 1)", "ReadSerDesPLLRegister(0, 1, 0, 1)",
                                         "ToString(0)", "ToString(6)"}));
}

TEST_F(ShowPLL, KeywordsNameTheTransmitCoresOfPortTypes) {
  const std::string gl = coreTable("TYPE-2", {"0", "1"}, {"0000 0100 ", "0001 0101 ", "0002 0102 "});
  const std::string xg = coreTable("TYPE-3", {"2", "3"}, {"0200 0300 ", "0201 0301 ", "0202 0302 "});
  const std::string exg = coreTable("TYPE-4", {"5"}, {"0500 ", "0501 ", "0502 "});
  const std::string read = "ReadSerDesPLLRegister(0, %, 0, 3)";
  EXPECT_EQ(run("showPLL GL"), printed(gl, perNumber(read, {0, 1}) + Calls{"ToString(2)"}));
  EXPECT_EQ(run("showPLL xg"), printed(xg, perNumber(read, {2, 3}) + Calls{"ToString(3)"}));
  EXPECT_EQ(run("showPLL exg"), printed(exg, perNumber(read, {5}) + Calls{"ToString(4)"}));
  EXPECT_EQ(run("showPLL all"), printed(gl + xg + exg, perNumber(read, {0, 1, 2, 3, 5}) +
                                                           Calls{"ToString(2)", "ToString(3)", "ToString(4)"}));
}

TEST_F(ShowPLL, CoresBeyondTheEighteenthAreNotWalkedAndTwoDigitsStandLeftInTheirColumn) {
  platform.coreCount = 30;
  discover();
  EXPECT_EQ(run("showPLL 16-31"),
            printed(coreTable("TYPE-4", {"16", "17"}, {"1000 1100 ", "1001 1101 ", "1002 1102 "}),
                    perNumber("ReadSerDesPLLRegister(0, %, 0, 3)", {16, 17}) + Calls{"ToString(4)"}));
}

// Unlike in a link register dump, a first core without registers ends the search.
TEST_F(ShowPLL, TypeWhoseFirstCoreHasNoRegistersIsAHeadAndAnEmptyLine) {
  platform.cores[0].pllRegisters = 0;
  discover();
  EXPECT_EQ(run("showPLL 0 1"),
            printed(coreTable("TYPE-2", {"0", "1"}, {}),
                    {"ReadSerDesPLLRegister(0, 0, 0, 0)", "ReadSerDesPLLRegister(0, 1, 0, 3)", "ToString(2)"}));
}

TEST_F(ShowPLL, FirstCoreOfTheTypeGivesTheRowsEvenIfNotSelected) {
  platform.cores[0].pllRegisters = 2;
  platform.cores[1].pllRegisters = 5;
  discover();
  EXPECT_EQ(run("showPLL 1"), printed(coreTable("TYPE-2", {"1"}, {"0100 ", "0101 "}),
                                      {"ReadSerDesPLLRegister(0, 1, 0, 5)", "ToString(2)"}));
}

// No separator row divides the registers.
TEST_F(ShowPLL, RegisterThatAShorterCoreLacksShowsZeroEvenAfterAFullDump) {
  platform.cores[0].pllRegisters = 6;
  discover();
  ASSERT_EQ(run("showPLL 0 1").status, CMD_OK);
  platform.cores[1].pllRegisters = 1;
  discover();
  EXPECT_EQ(run("showPLL 0 1"),
            printed(coreTable("TYPE-2", {"0", "1"},
                              {"0000 0100 ", "0001 0000 ", "0002 0000 ", "0003 0000 ", "0004 0000 ", "0005 0000 "}),
                    {"ReadSerDesPLLRegister(0, 0, 0, 6)", "ReadSerDesPLLRegister(0, 1, 0, 1)", "ToString(2)"}));
}

TEST_F(ShowPLL, RegistersBeyondTheThirtySecondAreNotRead) {
  platform.cores[0].pllRegisters = 33;
  platform.cores[1].pllRegisters = 300;
  discover();
  fillPllRegisters(0x8001);
  EXPECT_EQ(run("showPLL 0 1"),
            printed(coreTable("TYPE-2", {"0", "1"}, std::vector<std::string>(32, "8001 8001 ")),
                    {"ReadSerDesPLLRegister(0, 0, 0, 32)", "ReadSerDesPLLRegister(0, 1, 0, 32)", "ToString(2)"}));
}

TEST_F(ShowPLL, OnlyTheLowEightBitsOfTheRegisterCountAreAskedFor) {
  platform.cores[1].pllRegisters = 257;
  discover();
  EXPECT_EQ(run("showPLL 1"), printed(coreTable("TYPE-2", {"1"}, {"0100 ", "0000 ", "0000 "}),
                                      {"ReadSerDesPLLRegister(0, 1, 0, 1)", "ToString(2)"}));
}

TEST_F(ShowPLL, TypesBeyondTheTableAreReadButNotShown) {
  platform.portCount = 0;
  platform.cores[0].type = 7;
  platform.cores[1].type = 250;
  platform.cores[2].type = 0xffffffff;
  discover();
  EXPECT_EQ(run("showPLL 0-2"), done(perNumber("ReadSerDesPLLRegister(0, %, 0, 3)", {0, 1, 2})));
}

TEST_F(ShowPLL, TypeNamesMayBeMissingOrLongAndAreCutAt255Characters) {
  const std::pair<std::string, std::string> names[] = {{"A-TYPE-OF-TWENTY-FIVE-CHR", "A-TYPE-OF-TWENTY-FIVE-CHR"},
                                                       {std::string(255, 'n') + "cut", std::string(255, 'n')},
                                                       {"", "UNK"}};
  for (const auto& [given, shown] : names) {
    platform.typeNames[4] = given;
    if (given.empty()) platform.typeNames.erase(4);
    EXPECT_EQ(run("showPLL 4"), printed(coreTable(shown, {"4"}, {"0400 ", "0401 ", "0402 "}),
                                        {"ReadSerDesPLLRegister(0, 4, 0, 3)", "ToString(4)"}));
  }
}

}  // namespace
}  // namespace recording
