// Single link registers and register dumps.
#include "tests/support/expected.h"

namespace recording {
namespace {

using ReadRegister = TopologyTest;
using WriteRegister = TopologyTest;
using ShowRegisters = TopologyTest;

// Calls write the sides as 0 and 1.
struct SideInCalls {
  const char* name;
  const char* number;
};
constexpr SideInCalls kSides[] = {{"Rx", "0"}, {"Tx", "1"}};

void fillLinkRegisters(unsigned short value) {
  platform.linkRegister = [value](unsigned, int, SerDesLinkType, unsigned) { return value; };
}

// The registers of a link are port << 8 | link << 4 | address where nothing else is said.
TEST_F(ReadRegister, PrintsPortUserPortLinkAddressAndValueOnOneLine) {
  platform.ports[6].hwConfig.portId.userPort = 12;
  discover();
  for (const auto& [name, number] : kSides) {
    const std::string side = name;
    EXPECT_EQ(run("read" + side + " 0x6 0X3 0x1F"),
              printed("Port 6 (user port 12), link 3 at " + side + " address 0x1f= 0x063f \n",
                      {std::string("ReadSerDesLinkRegister(0, 6, 3, ") + number + ", 31, 1)"}));
  }
}

TEST_F(ReadRegister, AddressBeyondEightBitsReadsItsLowBitsAndPrintsItWhole) {
  fillLinkRegisters(0xffff);
  EXPECT_EQ(run("readRx 4 0 0x12345"), printed("Port 4 (user port 104), link 0 at Rx address 0x12345= 0xffff \n",
                                               {"ReadSerDesLinkRegister(0, 4, 0, 0, 69, 1)"}));
}

// Also of a port without user port, of ports that a smaller ASIC does not have, and of a switch that reports too many.
TEST_F(ReadRegister, PortLinkAndAddressAreNotCheckedAndNoUserPortPrints65535) {
  fillLinkRegisters(0x77);
  platform.portCount = 40;
  discover();
  EXPECT_EQ(run("readTx 24 0 0"), printed("Port 24 (user port 65535), link 0 at Tx address 0x00= 0x0077 \n",
                                          {"ReadSerDesLinkRegister(0, 24, 0, 1, 0, 1)"}));
  ToolTest::SetUp();
  fillLinkRegisters(0x77);
  discover();
  platform.portCount = 4;
  discover();
  EXPECT_EQ(run("readRx 3 0 0"), printed("Port 3 (user port 65535), link 0 at Rx address 0x00= 0x0077 \n",
                                         {"ReadSerDesLinkRegister(0, 3, 0, 0, 0, 1)"}));
  EXPECT_EQ(run("readRx 4 0 1"), printed("Port 4 (user port 65535), link 0 at Rx address 0x01= 0x0077 \n",
                                         {"ReadSerDesLinkRegister(0, 4, 0, 0, 1, 1)"}));
  EXPECT_EQ(run("readRx -1 -1 1"), printed("Port -1 (user port 65535), link -1 at Rx address 0x01= 0x0077 \n",
                                           {"ReadSerDesLinkRegister(0, 4294967295, -1, 0, 1, 1)"}));
}

TEST_F(WriteRegister, WritesSilentlyAndCutsAddressAndValue) {
  for (const auto& [name, number] : kSides) {
    const std::string line = std::string("write") + name, call = "WriteSerDesLinkRegister(0, ", side = number;
    EXPECT_EQ(run(line + " 7 2 31 65535"), done({call + "7, 2, " + side + ", 31, 65535)"}));
    EXPECT_EQ(run(line + " 4 0 0x1fe 0x12345"), done({call + "4, 0, " + side + ", 254, 9029)"}));
    EXPECT_EQ(run(line + " 4 0 -1 -1"), done({call + "4, 0, " + side + ", 255, 65535)"}));
    EXPECT_EQ(run(line + " 24 9 3 65536"), done({call + "24, 9, " + side + ", 3, 0)"}));
    EXPECT_EQ(run(line + " -1 -1 3 1"), done({call + "4294967295, -1, " + side + ", 3, 1)"}));
  }
}

// Two ports of one type in blocks of four registers, with the trailing blanks of every row of values.
TEST_F(ShowRegisters, OneColumnPerLinkInBlocksOfFourRegisters) {
  platform.linkRegister = [](unsigned port, int, SerDesLinkType, unsigned address) {
    static constexpr unsigned short values[2][6] = {{0x12, 0xa0, 0, 0x1f00, 1, 0}, {0x12, 0xa0, 3, 0x1f00, 1, 0}};
    return values[port][address];
  };
  EXPECT_EQ(run("showRx 0 1"), printed("\n"
                                       "TYPE-2              \n"
                                       "=================== ==== ==== \n"
                                       "ASIC port              0    1 \n"
                                       "user port            100  101 \n"
                                       "link num               0    0 \n"
                                       "running rate          8G   8G\n"
                                       "media type           OPT  OPT\n"
                                       "=================== ==== ==== \n"
                                       "Rx Register 0x00    0012 0012 \n"
                                       "Rx Register 0x01    00a0 00a0 \n"
                                       "Rx Register 0x02    0000 0003 \n"
                                       "Rx Register 0x03    1f00 1f00 \n"
                                       "------------------- ---- ---- \n"
                                       "Rx Register 0x04    0001 0001 \n"
                                       "Rx Register 0x05    0000 0000 \n"
                                       "\n",
                                       perNumber("ReadSerDesLinkRegister(0, %, 0, 0, 0, 6)", {0, 1}) +
                                           headerQuestions({"100/0/0", "101/0/1"}) + Calls{"ToString(2)"}));
}

// The rows of a dump, a string of cells per register, over separators of so many links.
std::string dumpRows(const std::string& side, std::size_t links, const std::vector<std::string>& values) {
  std::string separator = "------------------- ", rows;
  for (std::size_t link = 0; link < links; ++link)
    separator += "---- ";
  for (std::size_t address = 0; address < values.size(); ++address) {
    if (address != 0 && address % 4 == 0) rows += separator + "\n";
    rows += side + " Register 0x" + (address < 16 ? "0" : "1") + "0123456789abcdef"[address % 16] + "    " +
            values[address] + "\n";
  }
  return rows + "\n";
}

TEST_F(ShowRegisters, SeparatorRowsStandAboveTheFifthAndTheNinthRegister) {
  const std::vector<std::string> values = {"0000 ", "0001 ", "0002 ", "0003 ", "0004 ",
                                           "0005 ", "0006 ", "0007 ", "0008 "};
  for (const unsigned count : {4u, 5u, 9u}) {
    platform.cores[0].txRegisters = platform.cores[0].rxRegisters = count;
    discover();
    for (const auto& [name, number] : kSides)
      EXPECT_EQ(
          run(std::string("show") + name + " 0"),
          done({std::string("ReadSerDesLinkRegister(0, 0, 0, ") + number + ", 0, " + std::to_string(count) + ")"}) +
              typeTable(2, {0}, dumpRows(name, 1, {values.begin(), values.begin() + count})));
  }
}

// The header counts the transmit links, the separator row and the cells those of the dumped side.
TEST_F(ShowRegisters, LinksOfTheDumpedSideHaveCellsAndTransmitLinksHaveColumns) {
  platform.ports[0].rx.linkCount = 2;
  platform.ports[1].tx.linkCount = 3;
  platform.ports[2].tx.linkCount = platform.ports[2].rx.linkCount = 0;
  discover();
  EXPECT_EQ(run("showRx 0-2"),
            done({"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 6)", "ReadSerDesLinkRegister(0, 0, 1, 0, 0, 6)",
                  "ReadSerDesLinkRegister(0, 1, 0, 0, 0, 6)"}) +
                typeTable(2, {0, 1, 2},
                          dumpRows("Rx", 3,
                                   {"0000 0010 0100 ", "0001 0011 0101 ", "0002 0012 0102 ", "0003 0013 0103 ",
                                    "0004 0014 0104 ", "0005 0015 0105 "})));
  EXPECT_EQ(run("showTx 0-2"),
            done({"ReadSerDesLinkRegister(0, 0, 0, 1, 0, 5)", "ReadSerDesLinkRegister(0, 1, 0, 1, 0, 5)",
                  "ReadSerDesLinkRegister(0, 1, 1, 1, 0, 5)", "ReadSerDesLinkRegister(0, 1, 2, 1, 0, 5)"}) +
                typeTable(2, {0, 1, 2},
                          dumpRows("Tx", 4,
                                   {"0000 0100 0110 0120 ", "0001 0101 0111 0121 ", "0002 0102 0112 0122 ",
                                    "0003 0103 0113 0123 ", "0004 0104 0114 0124 "})));
}

TEST_F(ShowRegisters, PortWithoutLinksIsNotReadButHasItsTable) {
  platform.ports[0].rx.linkCount = platform.ports[0].tx.linkCount = 0;
  discover();
  EXPECT_EQ(run("showRx 0"), typeTable(2, {0}, dumpRows("Rx", 0, {"", "", "", "", "", ""})));
}

// The type of the lower number comes first, wherever its ports stand. Type 0 is one like the others.
TEST_F(ShowRegisters, EachTypeHasATableWithItsOwnPorts) {
  platform.coreCount = 8;
  platform.ports[4].rx = platform.ports[4].tx = {.linkCount = 1, .type = 6, .core = 6};
  platform.ports[5].rx = platform.ports[5].tx = {.linkCount = 1, .type = 0, .core = 7};
  for (Core& core : platform.cores)
    core.txRegisters = core.rxRegisters = 2;
  discover();
  const Numbers all = {4, 5, 6};
  for (const auto& [name, number] : kSides) {
    EXPECT_EQ(run(std::string("show") + name + " 6 5 4"),
              done(perNumber(std::string("ReadSerDesLinkRegister(0, %, 0, ") + number + ", 0, 2)", {4, 5}) +
                   perNumber(std::string("ReadSerDesLinkRegister(0, 6, %, ") + number + ", 0, 2)", {0, 1, 2, 3})) +
                  typeTable(0, {5}, dumpRows(name, 1, {"0500 ", "0501 "}), all) +
                  typeTable(3, {6}, dumpRows(name, 4, {"0600 0610 0620 0630 ", "0601 0611 0621 0631 "}), all) +
                  typeTable(6, {4}, dumpRows(name, 1, {"0400 ", "0401 "}), all));
  }
}

TEST_F(ShowRegisters, AllNamesThePortsOfEveryTypeSinceADumpChangesNothing) {
  EXPECT_EQ(run("showTx ALL"), run("showTx 0-11"));
  EXPECT_EQ(run("showTx ALL").status, CMD_OK);
}

TEST_F(ShowRegisters, TypeWithoutRegistersIsAHeaderAndAnEmptyLineBetweenOtherTables) {
  platform.cores[2].txRegisters = platform.cores[3].txRegisters = 0;
  platform.cores[0].txRegisters = platform.cores[4].txRegisters = 1;
  platform.ports[6].tx.linkCount = 1;
  discover();
  const Numbers all = {0, 6, 8};
  EXPECT_EQ(run("showTx 0 6 8"),
            done({"ReadSerDesLinkRegister(0, 0, 0, 1, 0, 1)", "ReadSerDesLinkRegister(0, 6, 0, 1, 0, 0)",
                  "ReadSerDesLinkRegister(0, 8, 0, 1, 0, 5)"}) +
                typeTable(2, {0}, dumpRows("Tx", 1, {"0000 "}), all) + typeTable(3, {6}, "\n", all) +
                typeTable(4, {8}, dumpRows("Tx", 1, {"0800 "}), all));
}

TEST_F(ShowRegisters, RowsAreThoseOfTheFirstCoreThatHasRegisters) {
  platform.cores[0].rxRegisters = 0;
  platform.cores[1].rxRegisters = 2;
  discover();
  EXPECT_EQ(run("showRx 0 4"),
            done({"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 0)", "ReadSerDesLinkRegister(0, 4, 0, 0, 0, 2)"}) +
                typeTable(2, {0, 4}, dumpRows("Rx", 2, {"0000 0400 ", "0000 0401 "})));
}

TEST_F(ShowRegisters, RowsOfAFirstCoreThatServesNoSelectedPortCount) {
  platform.cores[0].txRegisters = 2;
  platform.cores[1].txRegisters = 5;
  discover();
  EXPECT_EQ(run("showTx 4"), done({"ReadSerDesLinkRegister(0, 4, 0, 1, 0, 5)"}) +
                                 typeTable(2, {4}, dumpRows("Tx", 1, {"0400 ", "0401 "})));
}

TEST_F(ShowRegisters, CoresBeyondTheEighteenthAreNotSearched) {
  platform.coreCount = 30;
  platform.cores[0].rxRegisters = platform.cores[1].rxRegisters = 0;
  platform.cores[18].type = 2;
  platform.cores[18].rxRegisters = 7;
  discover();
  EXPECT_EQ(run("showRx 0"), done({"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 0)"}) + typeTable(2, {0}, "\n"));
}

TEST_F(ShowRegisters, RegisterThatAShorterCoreLacksShowsZeroEvenAfterAFullDump) {
  fillLinkRegisters(0xbeef);
  ASSERT_EQ(run("showRx 4").status, CMD_OK);
  platform.cores[1].rxRegisters = 2;
  discover();
  EXPECT_EQ(run("showRx 4"),
            done({"ReadSerDesLinkRegister(0, 4, 0, 0, 0, 2)"}) +
                typeTable(2, {4}, dumpRows("Rx", 1, {"beef ", "beef ", "0000 ", "0000 ", "0000 ", "0000 "})));
}

// Port 8 has its receive side on core 4 and its transmit side on core 5; here their types differ too.
TEST_F(ShowRegisters, TypeCoreAndRegisterCountAreThoseOfTheDumpedSide) {
  platform.portCount = 9;
  platform.ports[8].rx.type = 5;
  platform.cores[4].rxRegisters = platform.cores[4].txRegisters = 1;
  platform.cores[5].rxRegisters = platform.cores[5].txRegisters = 3;
  discover();
  EXPECT_EQ(run("showRx 8"),
            done({"ReadSerDesLinkRegister(0, 8, 0, 0, 0, 1)"}) + typeTable(5, {8}, dumpRows("Rx", 1, {"0800 "})));
  EXPECT_EQ(run("showTx 8"), done({"ReadSerDesLinkRegister(0, 8, 0, 1, 0, 3)"}) +
                                 typeTable(4, {8}, dumpRows("Tx", 1, {"0800 ", "0801 ", "0802 "})));
}

// The widest table there is: 24 ports of four links.
TEST_F(ShowRegisters, FullSwitchHasNinetySixColumns) {
  platform.portCount = 24;
  platform.cores[0].rxRegisters = 2;
  std::string values;
  Calls reads;
  Numbers ports;
  for (unsigned port = 0; port < 24; ++port) {
    platform.ports[port].rx = platform.ports[port].tx = {.linkCount = 4, .type = 2, .core = 0};
    reads = reads + perNumber("ReadSerDesLinkRegister(0, " + std::to_string(port) + ", %, 0, 0, 2)", {0, 1, 2, 3});
    ports.push_back(port);
    values += "9a5f 9a5f 9a5f 9a5f ";
  }
  discover();
  fillLinkRegisters(0x9a5f);
  EXPECT_EQ(run("showRx 0-23"), done(reads) + typeTable(2, ports, dumpRows("Rx", 96, {values, values})));
}

// Of the count that a core claims the low eight bits are asked for, and no more than 32 registers are read or shown.
TEST_F(ShowRegisters, OverlongRegisterSetsAreCut) {
  const std::string hex = "0123456789abcdef";
  for (const unsigned claimed : {33u, 258u, 300u}) {
    platform.cores[0].rxRegisters = claimed;
    discover();
    const std::size_t read = claimed == 258 ? 2 : 32;
    std::vector<std::string> values(32, "0000 ");
    for (std::size_t address = 0; address < read; ++address) {
      values[address][2] = hex[address / 16];
      values[address][3] = hex[address % 16];
    }
    EXPECT_EQ(run("showRx 0"), done({"ReadSerDesLinkRegister(0, 0, 0, 0, 0, " + std::to_string(read) + ")"}) +
                                   typeTable(2, {0}, dumpRows("Rx", 1, values)));
  }
}

TEST_F(ShowRegisters, TypesBeyondTheTableAreReadButNotShown) {
  platform.ports[0].rx.type = 7;
  platform.ports[4].rx.type = 250;
  platform.ports[5].rx.type = 0xffffffff;
  discover();
  EXPECT_EQ(run("showRx 0 4 5"), done(perNumber("ReadSerDesLinkRegister(0, %, 0, 0, 0, 6)", {0, 4, 5})));
}

TEST_F(ShowRegisters, HeaderQuestionsThatFailLeaveTheDumpWhole) {
  platform.fail("GetPortInfo", -1);
  platform.fail("GetPortCfgSpeed", -1);
  const Outcome outcome = run("showRx 0");
  makeIdle(platform.ports[0]);
  EXPECT_EQ(outcome, done({"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 6)"}) +
                         typeTable(2, {0}, dumpRows("Rx", 1, {"0000 ", "0001 ", "0002 ", "0003 ", "0004 ", "0005 "})));
}

TEST_F(ShowRegisters, TypeNameMayBeMissingAndIsCutAt255Characters) {
  platform.cores[0].txRegisters = 1;
  discover();
  platform.typeNames.erase(2);
  const Calls read = {"ReadSerDesLinkRegister(0, 0, 0, 1, 0, 1)"};
  EXPECT_EQ(run("showTx 0"), done(read) + typeTable(2, {0}, dumpRows("Tx", 1, {"0000 "})));
  platform.typeNames[2] = std::string(255, 'n') + "cut";
  const Outcome outcome = run("showTx 0");
  platform.typeNames[2] = std::string(255, 'n');
  EXPECT_EQ(outcome, done(read) + typeTable(2, {0}, dumpRows("Tx", 1, {"0000 "})));
}

}  // namespace
}  // namespace recording
