// Single link registers and register dumps.
#include <limits>
#include <string>

#include "tests/support/expected.h"

namespace recording {
namespace {

// The head of a dump of port 0, or of port 5, alone.
const std::string kHeadOfPort0 =
    "\n"
    "TYPE-2              \n"
    "=================== ==== \n"
    "ASIC port              0 \n"
    "user port            100 \n"
    "link num               0 \n"
    "running rate          8G\n"
    "media type           OPT\n"
    "=================== ==== \n";

const std::string kHeadOfPort5 =
    "\n"
    "TYPE-2              \n"
    "=================== ==== \n"
    "ASIC port              5 \n"
    "user port            105 \n"
    "link num               0 \n"
    "running rate          8G\n"
    "media type           OPT\n"
    "=================== ==== \n";

using ReadRx = TopologyTest;
using ReadTx = TopologyTest;
using WriteRx = TopologyTest;
using WriteTx = TopologyTest;
using ShowRx = TopologyTest;
using ShowTx = TopologyTest;

void fillLinkRegisters(unsigned short value) {
  platform.linkRegister = [value](unsigned, int, SerDesLinkType, unsigned) { return value; };
}

TEST_F(ReadRx, PrintsPortUserPortLinkAddressAndValueOnOneLine) {
  platform.ports[4].hwConfig.portId.userPort = 12;
  discover();
  fillLinkRegisters(0x1d);
  EXPECT_EQ(run("readRx 4 0 3"), printed("Port 4 (user port 12), link 0 at Rx address 0x03= 0x001d \n",
                                         {"ReadSerDesLinkRegister(0, 4, 0, 0, 3, 1)"}));
}

TEST_F(ReadRx, AnswersToItsShortcut) {
  EXPECT_EQ(run("rrx 6 3 10"), printed("Port 6 (user port 106), link 3 at Rx address 0x0a= 0x063a \n",
                                       {"ReadSerDesLinkRegister(0, 6, 3, 0, 10, 1)"}));
}

TEST_F(ReadRx, TakesHexadecimalNumbers) {
  EXPECT_EQ(run("READRX 0x6 0X3 0x1F"), printed("Port 6 (user port 106), link 3 at Rx address 0x1f= 0x063f \n",
                                                {"ReadSerDesLinkRegister(0, 6, 3, 0, 31, 1)"}));
}

TEST_F(ReadRx, AddressBeyondEightBitsReadsItsLowBitsAndPrintsItWhole) {
  fillLinkRegisters(0xffff);
  EXPECT_EQ(run("readRx 4 0 0x12345"), printed("Port 4 (user port 104), link 0 at Rx address 0x12345= 0xffff \n",
                                               {"ReadSerDesLinkRegister(0, 4, 0, 0, 69, 1)"}));
}

TEST_F(ReadRx, NegativeLinkGoesToThePlatform) {
  fillLinkRegisters(0);
  EXPECT_EQ(run("readRx 4 -1 3"), printed("Port 4 (user port 104), link -1 at Rx address 0x03= 0x0000 \n",
                                          {"ReadSerDesLinkRegister(0, 4, -1, 0, 3, 1)"}));
}

TEST_F(ReadRx, PortWithoutUserPortPrints65535) {
  EXPECT_EQ(run("readRx 3 0 0"), printed("Port 3 (user port 65535), link 0 at Rx address 0x00= 0x0300 \n",
                                         {"ReadSerDesLinkRegister(0, 3, 0, 0, 0, 1)"}));
}

TEST_F(ReadRx, PortBeyondTheTopologyIsReadAndPrintsUserPort65535) {
  fillLinkRegisters(0x77);
  EXPECT_EQ(run("readRx 12 0 1"), printed("Port 12 (user port 65535), link 0 at Rx address 0x01= 0x0077 \n",
                                          {"ReadSerDesLinkRegister(0, 12, 0, 0, 1, 1)"}));
  EXPECT_EQ(run("readRx 24 0 1"), printed("Port 24 (user port 65535), link 0 at Rx address 0x01= 0x0077 \n",
                                          {"ReadSerDesLinkRegister(0, 24, 0, 0, 1, 1)"}));
  EXPECT_EQ(run("readRx -1 0 1"), printed("Port -1 (user port 65535), link 0 at Rx address 0x01= 0x0077 \n",
                                          {"ReadSerDesLinkRegister(0, 4294967295, 0, 0, 1, 1)"}));
}

TEST_F(ReadRx, UserPortIsLostWithThePortsOfASmallerAsic) {
  platform.portCount = 4;
  discover();
  EXPECT_EQ(run("readRx 4 0 3"), printed("Port 4 (user port 65535), link 0 at Rx address 0x03= 0x0403 \n",
                                         {"ReadSerDesLinkRegister(0, 4, 0, 0, 3, 1)"}));
}

TEST_F(ReadRx, ReadsOnTheCurrentAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("readRx 4 0 3"), printed("Port 4 (user port 104), link 0 at Rx address 0x03= 0x0403 \n",
                                         {"ReadSerDesLinkRegister(1, 4, 0, 0, 3, 1)"}));
}

TEST_F(ReadRx, PositivePlatformResultIsSuccess) {
  platform.fail("ReadSerDesLinkRegister", 5);
  EXPECT_EQ(run("readRx 4 0 3"), printed("Port 4 (user port 104), link 0 at Rx address 0x03= 0x0403 \n",
                                         {"ReadSerDesLinkRegister(0, 4, 0, 0, 3, 1)"}));
}

TEST_F(ReadRx, PlatformFailurePrintsOnlyHandlerAndCode) {
  platform.fail("ReadSerDesLinkRegister", -5);
  EXPECT_EQ(run("readRx 4 0 3"),
            failed("readRxRegisterCmdHandler: serdes err -5\n", {"ReadSerDesLinkRegister(0, 4, 0, 0, 3, 1)"}));
}

TEST_F(ReadRx, LowestPlatformCodeIsPrintedWhole) {
  platform.fail("ReadSerDesLinkRegister", std::numeric_limits<int>::min());
  EXPECT_EQ(run("readRx 4 0 3"),
            failed("readRxRegisterCmdHandler: serdes err -2147483648\n", {"ReadSerDesLinkRegister(0, 4, 0, 0, 3, 1)"}));
}

TEST_F(ReadTx, PrintsPortUserPortLinkAddressAndValueOnOneLine) {
  EXPECT_EQ(run("readTx 4 0 3"), printed("Port 4 (user port 104), link 0 at Tx address 0x03= 0x0403 \n",
                                         {"ReadSerDesLinkRegister(0, 4, 0, 1, 3, 1)"}));
}

TEST_F(ReadTx, AnswersToItsShortcut) {
  EXPECT_EQ(run("rtx 6 3 10"), printed("Port 6 (user port 106), link 3 at Tx address 0x0a= 0x063a \n",
                                       {"ReadSerDesLinkRegister(0, 6, 3, 1, 10, 1)"}));
}

TEST_F(ReadTx, AddressBeyondEightBitsReadsItsLowBitsAndPrintsItWhole) {
  fillLinkRegisters(0xabcd);
  EXPECT_EQ(run("readTx 4 0 0x1ff"), printed("Port 4 (user port 104), link 0 at Tx address 0x1ff= 0xabcd \n",
                                             {"ReadSerDesLinkRegister(0, 4, 0, 1, 255, 1)"}));
}

TEST_F(ReadTx, PlatformFailurePrintsOnlyHandlerAndCode) {
  platform.fail("ReadSerDesLinkRegister", -17);
  EXPECT_EQ(run("readTx 4 0 3"),
            failed("readTxRegisterCmdHandler: serdes err -17\n", {"ReadSerDesLinkRegister(0, 4, 0, 1, 3, 1)"}));
}

TEST_F(WriteRx, WritesSilently) {
  EXPECT_EQ(run("writeRx 4 0 3 0x1d"), done({"WriteSerDesLinkRegister(0, 4, 0, 0, 3, 29)"}));
}

TEST_F(WriteRx, AnswersToItsShortcut) {
  EXPECT_EQ(run("wrx 7 2 31 65535"), done({"WriteSerDesLinkRegister(0, 7, 2, 0, 31, 65535)"}));
}

TEST_F(WriteRx, ValueBeyondSixteenBitsIsCut) {
  EXPECT_EQ(run("writeRx 4 0 3 0x12345"), done({"WriteSerDesLinkRegister(0, 4, 0, 0, 3, 9029)"}));
  EXPECT_EQ(run("writeRx 4 0 3 -1"), done({"WriteSerDesLinkRegister(0, 4, 0, 0, 3, 65535)"}));
  EXPECT_EQ(run("writeRx 4 0 3 65536"), done({"WriteSerDesLinkRegister(0, 4, 0, 0, 3, 0)"}));
}

TEST_F(WriteRx, AddressBeyondEightBitsIsCut) {
  EXPECT_EQ(run("writeRx 4 0 0x1fe 1"), done({"WriteSerDesLinkRegister(0, 4, 0, 0, 254, 1)"}));
  EXPECT_EQ(run("writeRx 4 0 -1 1"), done({"WriteSerDesLinkRegister(0, 4, 0, 0, 255, 1)"}));
}

TEST_F(WriteRx, PortAndLinkGoToThePlatformWhateverTheyAre) {
  EXPECT_EQ(run("writeRx 24 9 3 1"), done({"WriteSerDesLinkRegister(0, 24, 9, 0, 3, 1)"}));
  EXPECT_EQ(run("writeRx -1 -1 3 1"), done({"WriteSerDesLinkRegister(0, 4294967295, -1, 0, 3, 1)"}));
}

TEST_F(WriteRx, WritesOnTheCurrentAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("writeRx 4 0 3 1"), done({"WriteSerDesLinkRegister(1, 4, 0, 0, 3, 1)"}));
}

TEST_F(WriteRx, PlatformFailurePrintsHandlerAndCode) {
  platform.fail("WriteSerDesLinkRegister", -1);
  EXPECT_EQ(run("writeRx 4 0 3 1"),
            failed("writeRxRegisterCmdHandler: serdes err -1\n", {"WriteSerDesLinkRegister(0, 4, 0, 0, 3, 1)"}));
}

TEST_F(WriteTx, WritesSilently) {
  EXPECT_EQ(run("writeTx 4 0 3 0x1c"), done({"WriteSerDesLinkRegister(0, 4, 0, 1, 3, 28)"}));
}

TEST_F(WriteTx, AnswersToItsShortcut) {
  EXPECT_EQ(run("wtx 7 2 31 65535"), done({"WriteSerDesLinkRegister(0, 7, 2, 1, 31, 65535)"}));
}

TEST_F(WriteTx, AddressAndValueAreCut) {
  EXPECT_EQ(run("writeTx 4 0 0x103 0xfffe0001"), done({"WriteSerDesLinkRegister(0, 4, 0, 1, 3, 1)"}));
}

TEST_F(WriteTx, PlatformFailurePrintsHandlerAndCode) {
  platform.fail("WriteSerDesLinkRegister", -9);
  EXPECT_EQ(run("writeTx 4 0 3 1"),
            failed("writeTxRegisterCmdHandler: serdes err -9\n", {"WriteSerDesLinkRegister(0, 4, 0, 1, 3, 1)"}));
}

// Two ports of one type in blocks of four registers, with the trailing blanks of every row of values.
TEST_F(ShowRx, PrintsOneColumnPerLinkInBlocksOfFourRegisters) {
  platform.linkRegister = [](unsigned port, int, SerDesLinkType, unsigned address) {
    static constexpr unsigned short values[2][6] = {{0x12, 0xa0, 0, 0x1f00, 1, 0}, {0x12, 0xa0, 3, 0x1f00, 1, 0}};
    return values[port][address];
  };
  EXPECT_EQ(run("showRx 0 1"),
            printed("\n"
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
                    Calls{"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 6)", "ReadSerDesLinkRegister(0, 1, 0, 0, 0, 6)"} +
                        headerQuestions({"100/0/0", "101/0/1"}) + Calls{"ToString(2)"}));
}

TEST_F(ShowRx, AnswersToItsShortcut) {
  EXPECT_EQ(run("drx 5"), printed(kHeadOfPort5 + "Rx Register 0x00    0500 \n"
                                                 "Rx Register 0x01    0501 \n"
                                                 "Rx Register 0x02    0502 \n"
                                                 "Rx Register 0x03    0503 \n"
                                                 "------------------- ---- \n"
                                                 "Rx Register 0x04    0504 \n"
                                                 "Rx Register 0x05    0505 \n"
                                                 "\n",
                                  Calls{"ReadSerDesLinkRegister(0, 5, 0, 0, 0, 6)"} + headerQuestions({"105/0/5"}) +
                                      Calls{"ToString(2)"}));
}

TEST_F(ShowTx, FifthRegisterStandsBelowASeparatorRow) {
  EXPECT_EQ(run("showTx 5"), printed(kHeadOfPort5 + "Tx Register 0x00    0500 \n"
                                                    "Tx Register 0x01    0501 \n"
                                                    "Tx Register 0x02    0502 \n"
                                                    "Tx Register 0x03    0503 \n"
                                                    "------------------- ---- \n"
                                                    "Tx Register 0x04    0504 \n"
                                                    "\n",
                                     Calls{"ReadSerDesLinkRegister(0, 5, 0, 1, 0, 5)"} + headerQuestions({"105/0/5"}) +
                                         Calls{"ToString(2)"}));
}

TEST_F(ShowTx, AnswersToItsShortcut) {
  EXPECT_EQ(run("DTX 0x5"), printed(kHeadOfPort5 + "Tx Register 0x00    0500 \n"
                                                   "Tx Register 0x01    0501 \n"
                                                   "Tx Register 0x02    0502 \n"
                                                   "Tx Register 0x03    0503 \n"
                                                   "------------------- ---- \n"
                                                   "Tx Register 0x04    0504 \n"
                                                   "\n",
                                    Calls{"ReadSerDesLinkRegister(0, 5, 0, 1, 0, 5)"} + headerQuestions({"105/0/5"}) +
                                        Calls{"ToString(2)"}));
}

TEST_F(ShowTx, FourRegistersHaveNoSeparatorRow) {
  platform.cores[0].txRegisters = 4;
  discover();
  EXPECT_EQ(run("showTx 0"), printed(kHeadOfPort0 + "Tx Register 0x00    0000 \n"
                                                    "Tx Register 0x01    0001 \n"
                                                    "Tx Register 0x02    0002 \n"
                                                    "Tx Register 0x03    0003 \n"
                                                    "\n",
                                     Calls{"ReadSerDesLinkRegister(0, 0, 0, 1, 0, 4)"} + headerQuestions({"100/0/0"}) +
                                         Calls{"ToString(2)"}));
}

TEST_F(ShowRx, NineRegistersHaveASeparatorRowAboveTheFifthAndTheNinth) {
  platform.cores[0].rxRegisters = 9;
  discover();
  EXPECT_EQ(run("showRx 0"), printed(kHeadOfPort0 + "Rx Register 0x00    0000 \n"
                                                    "Rx Register 0x01    0001 \n"
                                                    "Rx Register 0x02    0002 \n"
                                                    "Rx Register 0x03    0003 \n"
                                                    "------------------- ---- \n"
                                                    "Rx Register 0x04    0004 \n"
                                                    "Rx Register 0x05    0005 \n"
                                                    "Rx Register 0x06    0006 \n"
                                                    "Rx Register 0x07    0007 \n"
                                                    "------------------- ---- \n"
                                                    "Rx Register 0x08    0008 \n"
                                                    "\n",
                                     Calls{"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 9)"} + headerQuestions({"100/0/0"}) +
                                         Calls{"ToString(2)"}));
}

TEST_F(ShowRx, EveryLinkOfAPortHasItsOwnColumn) {
  EXPECT_EQ(run("showRx 7"),
            printed("\n"
                    "TYPE-3              \n"
                    "=================== ==== ==== ==== ==== \n"
                    "ASIC port              7    7    7    7 \n"
                    "user port            107  107  107  107 \n"
                    "link num               0    1    2    3 \n"
                    "running rate          8G   8G   8G   8G\n"
                    "media type           OPT  OPT  OPT  OPT\n"
                    "=================== ==== ==== ==== ==== \n"
                    "Rx Register 0x00    0700 0710 0720 0730 \n"
                    "Rx Register 0x01    0701 0711 0721 0731 \n"
                    "Rx Register 0x02    0702 0712 0722 0732 \n"
                    "Rx Register 0x03    0703 0713 0723 0733 \n"
                    "------------------- ---- ---- ---- ---- \n"
                    "Rx Register 0x04    0704 0714 0724 0734 \n"
                    "Rx Register 0x05    0705 0715 0725 0735 \n"
                    "\n",
                    Calls{"ReadSerDesLinkRegister(0, 7, 0, 0, 0, 6)", "ReadSerDesLinkRegister(0, 7, 1, 0, 0, 6)",
                          "ReadSerDesLinkRegister(0, 7, 2, 0, 0, 6)", "ReadSerDesLinkRegister(0, 7, 3, 0, 0, 6)"} +
                        headerQuestions({"107/0/7"}) + Calls{"ToString(3)"}));
}

TEST_F(ShowTx, PortWithTwoLinksShowsTwoColumns) {
  platform.ports[0].rx.linkCount = platform.ports[0].tx.linkCount = 2;
  discover();
  EXPECT_EQ(run("showTx 0"),
            printed("\n"
                    "TYPE-2              \n"
                    "=================== ==== ==== \n"
                    "ASIC port              0    0 \n"
                    "user port            100  100 \n"
                    "link num               0    1 \n"
                    "running rate          8G   8G\n"
                    "media type           OPT  OPT\n"
                    "=================== ==== ==== \n"
                    "Tx Register 0x00    0000 0010 \n"
                    "Tx Register 0x01    0001 0011 \n"
                    "Tx Register 0x02    0002 0012 \n"
                    "Tx Register 0x03    0003 0013 \n"
                    "------------------- ---- ---- \n"
                    "Tx Register 0x04    0004 0014 \n"
                    "\n",
                    Calls{"ReadSerDesLinkRegister(0, 0, 0, 1, 0, 5)", "ReadSerDesLinkRegister(0, 0, 1, 1, 0, 5)"} +
                        headerQuestions({"100/0/0"}) + Calls{"ToString(2)"}));
}

TEST_F(ShowRx, TwoTypesGiveTwoTablesEachWithItsOwnPorts) {
  EXPECT_EQ(run("showRx 6 5 4"),
            printed("\n"
                    "TYPE-2              \n"
                    "=================== ==== ==== \n"
                    "ASIC port              4    5 \n"
                    "user port            104  105 \n"
                    "link num               0    0 \n"
                    "running rate          8G   8G\n"
                    "media type           OPT  OPT\n"
                    "=================== ==== ==== \n"
                    "Rx Register 0x00    0400 0500 \n"
                    "Rx Register 0x01    0401 0501 \n"
                    "Rx Register 0x02    0402 0502 \n"
                    "Rx Register 0x03    0403 0503 \n"
                    "------------------- ---- ---- \n"
                    "Rx Register 0x04    0404 0504 \n"
                    "Rx Register 0x05    0405 0505 \n"
                    "\n"
                    "\n"
                    "TYPE-3              \n"
                    "=================== ==== ==== ==== ==== \n"
                    "ASIC port              6    6    6    6 \n"
                    "user port            106  106  106  106 \n"
                    "link num               0    1    2    3 \n"
                    "running rate          8G   8G   8G   8G\n"
                    "media type           OPT  OPT  OPT  OPT\n"
                    "=================== ==== ==== ==== ==== \n"
                    "Rx Register 0x00    0600 0610 0620 0630 \n"
                    "Rx Register 0x01    0601 0611 0621 0631 \n"
                    "Rx Register 0x02    0602 0612 0622 0632 \n"
                    "Rx Register 0x03    0603 0613 0623 0633 \n"
                    "------------------- ---- ---- ---- ---- \n"
                    "Rx Register 0x04    0604 0614 0624 0634 \n"
                    "Rx Register 0x05    0605 0615 0625 0635 \n"
                    "\n",
                    Calls{"ReadSerDesLinkRegister(0, 4, 0, 0, 0, 6)", "ReadSerDesLinkRegister(0, 5, 0, 0, 0, 6)",
                          "ReadSerDesLinkRegister(0, 6, 0, 0, 0, 6)", "ReadSerDesLinkRegister(0, 6, 1, 0, 0, 6)",
                          "ReadSerDesLinkRegister(0, 6, 2, 0, 0, 6)", "ReadSerDesLinkRegister(0, 6, 3, 0, 0, 6)"} +
                        headerQuestions({"104/0/4", "105/0/5", "106/0/6"}) + Calls{"ToString(2)"} +
                        headerQuestions({"104/0/4", "105/0/5", "106/0/6"}) + Calls{"ToString(3)"}));
}

TEST_F(ShowTx, LowerTypeComesFirstEvenIfItsPortsComeLast) {
  platform.coreCount = 7;
  platform.ports[4].rx = platform.ports[4].tx = {.linkCount = 1, .type = 6, .core = 6};
  platform.cores[6].txRegisters = 1;
  platform.cores[0].txRegisters = platform.cores[1].txRegisters = 1;
  discover();
  EXPECT_EQ(run("showTx 4 5"),
            printed(kHeadOfPort5 + "Tx Register 0x00    0500 \n"
                                   "\n"
                                   "\n"
                                   "TYPE-6              \n"
                                   "=================== ==== \n"
                                   "ASIC port              4 \n"
                                   "user port            104 \n"
                                   "link num               0 \n"
                                   "running rate          8G\n"
                                   "media type           OPT\n"
                                   "=================== ==== \n"
                                   "Tx Register 0x00    0400 \n"
                                   "\n",
                    Calls{"ReadSerDesLinkRegister(0, 4, 0, 1, 0, 1)", "ReadSerDesLinkRegister(0, 5, 0, 1, 0, 1)"} +
                        headerQuestions({"104/0/4", "105/0/5"}) + Calls{"ToString(2)"} +
                        headerQuestions({"104/0/4", "105/0/5"}) + Calls{"ToString(6)"}));
}

// A switch of one port of each kind: "all" names them although their types differ, since a dump changes nothing.
TEST_F(ShowTx, AllNamesThePortsOfEveryType) {
  platform.portCount = 3;
  platform.ports[1] = platform.ports[6];
  platform.ports[1].tx.linkCount = 1;
  platform.ports[2] = platform.ports[8];
  for (Core& core : platform.cores)
    core.txRegisters = 1;
  discover();
  EXPECT_EQ(run("showTx ALL"),
            printed(kHeadOfPort0 + "Tx Register 0x00    0000 \n"
                                   "\n"
                                   "\n"
                                   "TYPE-3              \n"
                                   "=================== ==== \n"
                                   "ASIC port              1 \n"
                                   "user port            106 \n"
                                   "link num               0 \n"
                                   "running rate          8G\n"
                                   "media type           OPT\n"
                                   "=================== ==== \n"
                                   "Tx Register 0x00    0100 \n"
                                   "\n"
                                   "\n"
                                   "TYPE-4              \n"
                                   "=================== ==== \n"
                                   "ASIC port              2 \n"
                                   "user port            108 \n"
                                   "link num               0 \n"
                                   "running rate          8G\n"
                                   "media type           OPT\n"
                                   "=================== ==== \n"
                                   "Tx Register 0x00    0200 \n"
                                   "\n",
                    Calls{"ReadSerDesLinkRegister(0, 0, 0, 1, 0, 1)", "ReadSerDesLinkRegister(0, 1, 0, 1, 0, 1)",
                          "ReadSerDesLinkRegister(0, 2, 0, 1, 0, 1)"} +
                        headerQuestions({"100/0/0", "106/0/6", "108/0/8"}) + Calls{"ToString(2)"} +
                        headerQuestions({"100/0/0", "106/0/6", "108/0/8"}) + Calls{"ToString(3)"} +
                        headerQuestions({"100/0/0", "106/0/6", "108/0/8"}) + Calls{"ToString(4)"}));
}

TEST_F(ShowRx, TypeWithoutRegistersIsAHeaderAndAnEmptyLine) {
  platform.cores[0].rxRegisters = platform.cores[1].rxRegisters = 0;
  discover();
  EXPECT_EQ(run("showRx 0"), printed(kHeadOfPort0 + "\n", Calls{"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 0)"} +
                                                              headerQuestions({"100/0/0"}) + Calls{"ToString(2)"}));
}

TEST_F(ShowTx, TypeWithoutRegistersIsAHeaderAndAnEmptyLineBetweenOtherTables) {
  platform.cores[2].txRegisters = platform.cores[3].txRegisters = 0;
  platform.cores[0].txRegisters = platform.cores[4].txRegisters = 1;
  platform.ports[6].tx.linkCount = 1;
  discover();
  EXPECT_EQ(run("showTx 0 6 8"),
            printed(kHeadOfPort0 + "Tx Register 0x00    0000 \n"
                                   "\n"
                                   "\n"
                                   "TYPE-3              \n"
                                   "=================== ==== \n"
                                   "ASIC port              6 \n"
                                   "user port            106 \n"
                                   "link num               0 \n"
                                   "running rate          8G\n"
                                   "media type           OPT\n"
                                   "=================== ==== \n"
                                   "\n"
                                   "\n"
                                   "TYPE-4              \n"
                                   "=================== ==== \n"
                                   "ASIC port              8 \n"
                                   "user port            108 \n"
                                   "link num               0 \n"
                                   "running rate          8G\n"
                                   "media type           OPT\n"
                                   "=================== ==== \n"
                                   "Tx Register 0x00    0800 \n"
                                   "\n",
                    Calls{"ReadSerDesLinkRegister(0, 0, 0, 1, 0, 1)", "ReadSerDesLinkRegister(0, 6, 0, 1, 0, 0)",
                          "ReadSerDesLinkRegister(0, 8, 0, 1, 0, 5)"} +
                        headerQuestions({"100/0/0", "106/0/6", "108/0/8"}) + Calls{"ToString(2)"} +
                        headerQuestions({"100/0/0", "106/0/6", "108/0/8"}) + Calls{"ToString(3)"} +
                        headerQuestions({"100/0/0", "106/0/6", "108/0/8"}) + Calls{"ToString(4)"}));
}

TEST_F(ShowRx, RowsAreThoseOfTheFirstCoreThatHasRegisters) {
  platform.cores[0].rxRegisters = 0;
  platform.cores[1].rxRegisters = 2;
  discover();
  EXPECT_EQ(run("showRx 0 4"),
            printed("\n"
                    "TYPE-2              \n"
                    "=================== ==== ==== \n"
                    "ASIC port              0    4 \n"
                    "user port            100  104 \n"
                    "link num               0    0 \n"
                    "running rate          8G   8G\n"
                    "media type           OPT  OPT\n"
                    "=================== ==== ==== \n"
                    "Rx Register 0x00    0000 0400 \n"
                    "Rx Register 0x01    0000 0401 \n"
                    "\n",
                    Calls{"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 0)", "ReadSerDesLinkRegister(0, 4, 0, 0, 0, 2)"} +
                        headerQuestions({"100/0/0", "104/0/4"}) + Calls{"ToString(2)"}));
}

TEST_F(ShowTx, RowsOfAFirstCoreThatServesNoSelectedPortCount) {
  platform.cores[0].txRegisters = 2;
  platform.cores[1].txRegisters = 5;
  discover();
  EXPECT_EQ(run("showTx 4"), printed("\n"
                                     "TYPE-2              \n"
                                     "=================== ==== \n"
                                     "ASIC port              4 \n"
                                     "user port            104 \n"
                                     "link num               0 \n"
                                     "running rate          8G\n"
                                     "media type           OPT\n"
                                     "=================== ==== \n"
                                     "Tx Register 0x00    0400 \n"
                                     "Tx Register 0x01    0401 \n"
                                     "\n",
                                     Calls{"ReadSerDesLinkRegister(0, 4, 0, 1, 0, 5)"} + headerQuestions({"104/0/4"}) +
                                         Calls{"ToString(2)"}));
}

TEST_F(ShowRx, RegisterThatAShorterCoreLacksShowsZeroEvenAfterAFullDump) {
  fillLinkRegisters(0xbeef);
  ASSERT_EQ(run("showRx 4").status, CMD_OK);
  platform.cores[1].rxRegisters = 2;
  discover();
  EXPECT_EQ(run("showRx 4"), printed("\n"
                                     "TYPE-2              \n"
                                     "=================== ==== \n"
                                     "ASIC port              4 \n"
                                     "user port            104 \n"
                                     "link num               0 \n"
                                     "running rate          8G\n"
                                     "media type           OPT\n"
                                     "=================== ==== \n"
                                     "Rx Register 0x00    beef \n"
                                     "Rx Register 0x01    beef \n"
                                     "Rx Register 0x02    0000 \n"
                                     "Rx Register 0x03    0000 \n"
                                     "------------------- ---- \n"
                                     "Rx Register 0x04    0000 \n"
                                     "Rx Register 0x05    0000 \n"
                                     "\n",
                                     Calls{"ReadSerDesLinkRegister(0, 4, 0, 0, 0, 2)"} + headerQuestions({"104/0/4"}) +
                                         Calls{"ToString(2)"}));
}

// The header counts the transmit links, the separator row and the cells those of the dumped side.
TEST_F(ShowRx, MoreReceiveThanTransmitLinksOverrunTheHeader) {
  platform.ports[0].rx.linkCount = 2;
  discover();
  EXPECT_EQ(run("showRx 0"),
            printed(kHeadOfPort0 + "Rx Register 0x00    0000 0010 \n"
                                   "Rx Register 0x01    0001 0011 \n"
                                   "Rx Register 0x02    0002 0012 \n"
                                   "Rx Register 0x03    0003 0013 \n"
                                   "------------------- ---- ---- \n"
                                   "Rx Register 0x04    0004 0014 \n"
                                   "Rx Register 0x05    0005 0015 \n"
                                   "\n",
                    Calls{"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 6)", "ReadSerDesLinkRegister(0, 0, 1, 0, 0, 6)"} +
                        headerQuestions({"100/0/0"}) + Calls{"ToString(2)"}));
}

TEST_F(ShowRx, FewerReceiveThanTransmitLinksLeaveTheHeaderWider) {
  platform.ports[0].tx.linkCount = 3;
  discover();
  EXPECT_EQ(run("showRx 0"), printed("\n"
                                     "TYPE-2              \n"
                                     "=================== ==== ==== ==== \n"
                                     "ASIC port              0    0    0 \n"
                                     "user port            100  100  100 \n"
                                     "link num               0    1    2 \n"
                                     "running rate          8G   8G   8G\n"
                                     "media type           OPT  OPT  OPT\n"
                                     "=================== ==== ==== ==== \n"
                                     "Rx Register 0x00    0000 \n"
                                     "Rx Register 0x01    0001 \n"
                                     "Rx Register 0x02    0002 \n"
                                     "Rx Register 0x03    0003 \n"
                                     "------------------- ---- \n"
                                     "Rx Register 0x04    0004 \n"
                                     "Rx Register 0x05    0005 \n"
                                     "\n",
                                     Calls{"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 6)"} + headerQuestions({"100/0/0"}) +
                                         Calls{"ToString(2)"}));
}

TEST_F(ShowTx, ReceiveLinkCountDoesNotMatter) {
  platform.ports[0].rx.linkCount = 3;
  discover();
  EXPECT_EQ(run("showTx 0"), printed(kHeadOfPort0 + "Tx Register 0x00    0000 \n"
                                                    "Tx Register 0x01    0001 \n"
                                                    "Tx Register 0x02    0002 \n"
                                                    "Tx Register 0x03    0003 \n"
                                                    "------------------- ---- \n"
                                                    "Tx Register 0x04    0004 \n"
                                                    "\n",
                                     Calls{"ReadSerDesLinkRegister(0, 0, 0, 1, 0, 5)"} + headerQuestions({"100/0/0"}) +
                                         Calls{"ToString(2)"}));
}

TEST_F(ShowRx, PortWithoutReceiveLinksIsNotReadButHasItsTable) {
  platform.ports[0].rx.linkCount = platform.ports[0].tx.linkCount = 0;
  discover();
  EXPECT_EQ(run("showRx 0"), printed("\n"
                                     "TYPE-2              \n"
                                     "=================== \n"
                                     "ASIC port           \n"
                                     "user port           \n"
                                     "link num            \n"
                                     "running rate       \n"
                                     "media type         \n"
                                     "=================== \n"
                                     "Rx Register 0x00    \n"
                                     "Rx Register 0x01    \n"
                                     "Rx Register 0x02    \n"
                                     "Rx Register 0x03    \n"
                                     "------------------- \n"
                                     "Rx Register 0x04    \n"
                                     "Rx Register 0x05    \n"
                                     "\n",
                                     headerQuestions({"100/0/0"}) + Calls{"ToString(2)"}));
}

TEST_F(ShowTx, PortWithoutTransmitLinksIsLeftOutBetweenOthers) {
  platform.ports[1].tx.linkCount = 0;
  discover();
  EXPECT_EQ(run("showTx 0 1 2"),
            printed("\n"
                    "TYPE-2              \n"
                    "=================== ==== ==== \n"
                    "ASIC port              0    2 \n"
                    "user port            100  102 \n"
                    "link num               0    0 \n"
                    "running rate          8G   8G\n"
                    "media type           OPT  OPT\n"
                    "=================== ==== ==== \n"
                    "Tx Register 0x00    0000 0200 \n"
                    "Tx Register 0x01    0001 0201 \n"
                    "Tx Register 0x02    0002 0202 \n"
                    "Tx Register 0x03    0003 0203 \n"
                    "------------------- ---- ---- \n"
                    "Tx Register 0x04    0004 0204 \n"
                    "\n",
                    Calls{"ReadSerDesLinkRegister(0, 0, 0, 1, 0, 5)", "ReadSerDesLinkRegister(0, 2, 0, 1, 0, 5)"} +
                        headerQuestions({"100/0/0", "101/0/1", "102/0/2"}) + Calls{"ToString(2)"}));
}

// Port 8 has its receive side on core 4 and its transmit side on core 5; here their types differ too.
TEST_F(ShowRx, TypeCoreAndRegisterCountAreThoseOfTheReceiveSide) {
  platform.portCount = 9;
  platform.ports[8].rx.type = 5;
  platform.cores[4].rxRegisters = 1;
  platform.cores[5].rxRegisters = 3;
  discover();
  EXPECT_EQ(run("showRx 8"), printed("\n"
                                     "TYPE-5              \n"
                                     "=================== ==== \n"
                                     "ASIC port              8 \n"
                                     "user port            108 \n"
                                     "link num               0 \n"
                                     "running rate          8G\n"
                                     "media type           OPT\n"
                                     "=================== ==== \n"
                                     "Rx Register 0x00    0800 \n"
                                     "\n",
                                     Calls{"ReadSerDesLinkRegister(0, 8, 0, 0, 0, 1)"} + headerQuestions({"108/0/8"}) +
                                         Calls{"ToString(5)"}));
}

TEST_F(ShowTx, TypeCoreAndRegisterCountAreThoseOfTheTransmitSide) {
  platform.portCount = 9;
  platform.ports[8].rx.type = 5;
  platform.cores[4].txRegisters = 1;
  platform.cores[5].txRegisters = 3;
  discover();
  EXPECT_EQ(run("showTx 8"), printed("\n"
                                     "TYPE-4              \n"
                                     "=================== ==== \n"
                                     "ASIC port              8 \n"
                                     "user port            108 \n"
                                     "link num               0 \n"
                                     "running rate          8G\n"
                                     "media type           OPT\n"
                                     "=================== ==== \n"
                                     "Tx Register 0x00    0800 \n"
                                     "Tx Register 0x01    0801 \n"
                                     "Tx Register 0x02    0802 \n"
                                     "\n",
                                     Calls{"ReadSerDesLinkRegister(0, 8, 0, 1, 0, 3)"} + headerQuestions({"108/0/8"}) +
                                         Calls{"ToString(4)"}));
}

TEST_F(ShowRx, HeaderQuestionsThatFailLeaveTheDumpWhole) {
  for (const char* question : {"GetPortInfo", "GetPortCfgSpeed", "GetMediaHwFcXmtrType"})
    platform.fail(question, -1);
  EXPECT_EQ(run("showRx 0"), printed("\n"
                                     "TYPE-2              \n"
                                     "=================== ==== \n"
                                     "ASIC port              0 \n"
                                     "user port            100 \n"
                                     "link num               0 \n"
                                     "running rate         INV\n"
                                     "media type           UNK\n"
                                     "=================== ==== \n"
                                     "Rx Register 0x00    0000 \n"
                                     "Rx Register 0x01    0001 \n"
                                     "Rx Register 0x02    0002 \n"
                                     "Rx Register 0x03    0003 \n"
                                     "------------------- ---- \n"
                                     "Rx Register 0x04    0004 \n"
                                     "Rx Register 0x05    0005 \n"
                                     "\n",
                                     Calls{"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 6)"} +
                                         idleHeaderQuestions("100/0/0") + Calls{"ToString(2)"}));
}

TEST_F(ShowRx, ReadsOnTheCurrentAsic) {
  platform.cores[0].rxRegisters = 1;
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("showRx 0"), printed(kHeadOfPort0 + "Rx Register 0x00    0000 \n"
                                                    "\n",
                                     Calls{"ReadSerDesLinkRegister(1, 0, 0, 0, 0, 1)"} + headerQuestions({"100/0/0"}) +
                                         Calls{"ToString(2)"}));
}

TEST_F(ShowRx, FailureOnFirstLinkPrintsOnlyTheError) {
  platform.fail("ReadSerDesLinkRegister", -3);
  EXPECT_EQ(run("showRx 0 1"),
            failed("showRxRegistersCmdHandler: serdes err -3\n", {"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 6)"}));
}

TEST_F(ShowRx, FailureOnSecondLinkOfAPortPrintsOnlyTheError) {
  platform.fail("ReadSerDesLinkRegister", -4, 3);
  EXPECT_EQ(run("showRx 0 6 7"),
            failed("showRxRegistersCmdHandler: serdes err -4\n",
                   {"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 6)", "ReadSerDesLinkRegister(0, 6, 0, 0, 0, 6)",
                    "ReadSerDesLinkRegister(0, 6, 1, 0, 0, 6)"}));
}

TEST_F(ShowTx, FailureOnLastPortPrintsOnlyTheError) {
  platform.fail("ReadSerDesLinkRegister", -5, 2);
  EXPECT_EQ(run("showTx 0 8"),
            failed("showTxRegistersCmdHandler: serdes err -5\n",
                   {"ReadSerDesLinkRegister(0, 0, 0, 1, 0, 5)", "ReadSerDesLinkRegister(0, 8, 0, 1, 0, 5)"}));
}

TEST_F(ShowRx, EmptySelectionPrintsNothing) {
  EXPECT_EQ(run("showRx 5-2"), done({}));
  EXPECT_EQ(run("showTx 32 63"), done({}));
}

TEST_F(ShowRx, PortsBeyondTheTopologyAreIgnored) {
  EXPECT_EQ(run("showRx 12-31"), done({}));
}

TEST_F(ShowRx, LinksBeyondTheFourthAreNotRead) {
  platform.ports[0].rx.linkCount = platform.ports[0].tx.linkCount = 9;
  platform.cores[0].rxRegisters = 2;
  discover();
  EXPECT_EQ(run("showRx 0"),
            printed("\n"
                    "TYPE-2              \n"
                    "=================== ==== ==== ==== ==== \n"
                    "ASIC port              0    0    0    0 \n"
                    "user port            100  100  100  100 \n"
                    "link num               0    1    2    3 \n"
                    "running rate          8G   8G   8G   8G\n"
                    "media type           OPT  OPT  OPT  OPT\n"
                    "=================== ==== ==== ==== ==== \n"
                    "Rx Register 0x00    0000 0010 0020 0030 \n"
                    "Rx Register 0x01    0001 0011 0021 0031 \n"
                    "\n",
                    Calls{"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 2)", "ReadSerDesLinkRegister(0, 0, 1, 0, 0, 2)",
                          "ReadSerDesLinkRegister(0, 0, 2, 0, 0, 2)", "ReadSerDesLinkRegister(0, 0, 3, 0, 0, 2)"} +
                        headerQuestions({"100/0/0"}) + Calls{"ToString(2)"}));
}

const std::string kThirtyTwoRegistersOfPort0 =
    "\n"
    "TYPE-2              \n"
    "=================== ==== \n"
    "ASIC port              0 \n"
    "user port            100 \n"
    "link num               0 \n"
    "running rate          8G\n"
    "media type           OPT\n"
    "=================== ==== \n"
    "Rx Register 0x00    0000 \n"
    "Rx Register 0x01    0001 \n"
    "Rx Register 0x02    0002 \n"
    "Rx Register 0x03    0003 \n"
    "------------------- ---- \n"
    "Rx Register 0x04    0004 \n"
    "Rx Register 0x05    0005 \n"
    "Rx Register 0x06    0006 \n"
    "Rx Register 0x07    0007 \n"
    "------------------- ---- \n"
    "Rx Register 0x08    0008 \n"
    "Rx Register 0x09    0009 \n"
    "Rx Register 0x0a    000a \n"
    "Rx Register 0x0b    000b \n"
    "------------------- ---- \n"
    "Rx Register 0x0c    000c \n"
    "Rx Register 0x0d    000d \n"
    "Rx Register 0x0e    000e \n"
    "Rx Register 0x0f    000f \n"
    "------------------- ---- \n"
    "Rx Register 0x10    0010 \n"
    "Rx Register 0x11    0011 \n"
    "Rx Register 0x12    0012 \n"
    "Rx Register 0x13    0013 \n"
    "------------------- ---- \n"
    "Rx Register 0x14    0014 \n"
    "Rx Register 0x15    0015 \n"
    "Rx Register 0x16    0016 \n"
    "Rx Register 0x17    0017 \n"
    "------------------- ---- \n"
    "Rx Register 0x18    0018 \n"
    "Rx Register 0x19    0019 \n"
    "Rx Register 0x1a    001a \n"
    "Rx Register 0x1b    001b \n"
    "------------------- ---- \n"
    "Rx Register 0x1c    001c \n"
    "Rx Register 0x1d    001d \n"
    "Rx Register 0x1e    001e \n"
    "Rx Register 0x1f    001f \n"
    "\n";

// The widest table there is: 24 ports of four links.
TEST_F(ShowRx, FullSwitchPrintsNinetySixColumns) {
  platform.portCount = 24;
  platform.cores[0].rxRegisters = 2;
  std::string rule = "=================== ", ports = "ASIC port           ", users = "user port           ";
  std::string links = "link num            ", rates = "running rate       ", media = "media type         ", values;
  Calls reads, questions;
  for (unsigned p = 0; p < 24; ++p) {
    const std::string number = std::to_string(p), user = std::to_string(200 + p);
    platform.ports[p].rx = platform.ports[p].tx = {.linkCount = 4, .type = 2, .core = 0};
    platform.ports[p].hwConfig.portId.userPort = static_cast<std::uint16_t>(200 + p);
    for (const char* link : {"0", "1", "2", "3"}) {
      rule += "==== ";
      ports += (p < 10 ? "   " : "  ") + number + " ";
      users += " " + user + " ";
      links += std::string("   ") + link + " ";
      rates += "   8G";
      media += "  OPT";
      values += "9a5f ";
      reads.push_back("ReadSerDesLinkRegister(0, " + number + ", " + link + ", 0, 0, 2)");
    }
    questions = questions + headerQuestions({(user + "/0/" + number).c_str()});
  }
  discover();
  fillLinkRegisters(0x9a5f);
  EXPECT_EQ(run("showRx 0-23"), printed("\nTYPE-2              \n" + rule + "\n" + ports + "\n" + users + "\n" + links +
                                            "\n" + rates + "\n" + media + "\n" + rule + "\nRx Register 0x00    " +
                                            values + "\nRx Register 0x01    " + values + "\n\n",
                                        reads + questions + Calls{"ToString(2)"}));
}

// A core that claims more registers than a dump can hold.
class OverlongRegisterSet : public TopologyTest {
 protected:
  static void claim(unsigned count) {
    platform.cores[0].rxRegisters = platform.cores[0].txRegisters = count;
    discover();
  }
};

TEST_F(OverlongRegisterSet, ThirtyThreeRegistersAreReadAndShownAsThirtyTwo) {
  claim(33);
  EXPECT_EQ(run("showRx 0"),
            printed(kThirtyTwoRegistersOfPort0, Calls{"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 32)"} +
                                                    headerQuestions({"100/0/0"}) + Calls{"ToString(2)"}));
}

TEST_F(OverlongRegisterSet, ThreeHundredRegistersAreReadAndShownAsThirtyTwo) {
  claim(300);
  EXPECT_EQ(run("showRx 0"),
            printed(kThirtyTwoRegistersOfPort0, Calls{"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 32)"} +
                                                    headerQuestions({"100/0/0"}) + Calls{"ToString(2)"}));
}

TEST_F(OverlongRegisterSet, OnlyTheLowEightBitsOfTheCountAreAskedFor) {
  claim(258);
  EXPECT_EQ(run("showRx 0"), printed(kHeadOfPort0 + "Rx Register 0x00    0000 \n"
                                                    "Rx Register 0x01    0001 \n"
                                                    "Rx Register 0x02    0000 \n"
                                                    "Rx Register 0x03    0000 \n"
                                                    "------------------- ---- \n"
                                                    "Rx Register 0x04    0000 \n"
                                                    "Rx Register 0x05    0000 \n"
                                                    "Rx Register 0x06    0000 \n"
                                                    "Rx Register 0x07    0000 \n"
                                                    "------------------- ---- \n"
                                                    "Rx Register 0x08    0000 \n"
                                                    "Rx Register 0x09    0000 \n"
                                                    "Rx Register 0x0a    0000 \n"
                                                    "Rx Register 0x0b    0000 \n"
                                                    "------------------- ---- \n"
                                                    "Rx Register 0x0c    0000 \n"
                                                    "Rx Register 0x0d    0000 \n"
                                                    "Rx Register 0x0e    0000 \n"
                                                    "Rx Register 0x0f    0000 \n"
                                                    "------------------- ---- \n"
                                                    "Rx Register 0x10    0000 \n"
                                                    "Rx Register 0x11    0000 \n"
                                                    "Rx Register 0x12    0000 \n"
                                                    "Rx Register 0x13    0000 \n"
                                                    "------------------- ---- \n"
                                                    "Rx Register 0x14    0000 \n"
                                                    "Rx Register 0x15    0000 \n"
                                                    "Rx Register 0x16    0000 \n"
                                                    "Rx Register 0x17    0000 \n"
                                                    "------------------- ---- \n"
                                                    "Rx Register 0x18    0000 \n"
                                                    "Rx Register 0x19    0000 \n"
                                                    "Rx Register 0x1a    0000 \n"
                                                    "Rx Register 0x1b    0000 \n"
                                                    "------------------- ---- \n"
                                                    "Rx Register 0x1c    0000 \n"
                                                    "Rx Register 0x1d    0000 \n"
                                                    "Rx Register 0x1e    0000 \n"
                                                    "Rx Register 0x1f    0000 \n"
                                                    "\n",
                                     Calls{"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 2)"} + headerQuestions({"100/0/0"}) +
                                         Calls{"ToString(2)"}));
}

TEST_F(ShowRx, TypesBeyondTheTableAreReadButNotShown) {
  platform.ports[0].rx.type = 7;
  platform.ports[4].rx.type = 250;
  platform.ports[5].rx.type = 0xffffffff;
  discover();
  EXPECT_EQ(run("showRx 0 4 5"),
            done({"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 6)", "ReadSerDesLinkRegister(0, 4, 0, 0, 0, 6)",
                  "ReadSerDesLinkRegister(0, 5, 0, 0, 0, 6)"}));
}

TEST_F(ShowTx, TypeWithoutNameIsEntitledUnknown) {
  platform.typeNames.erase(2);
  platform.cores[0].txRegisters = 1;
  discover();
  EXPECT_EQ(run("showTx 0"), printed("\n"
                                     "UNK                 \n"
                                     "=================== ==== \n"
                                     "ASIC port              0 \n"
                                     "user port            100 \n"
                                     "link num               0 \n"
                                     "running rate          8G\n"
                                     "media type           OPT\n"
                                     "=================== ==== \n"
                                     "Tx Register 0x00    0000 \n"
                                     "\n",
                                     Calls{"ReadSerDesLinkRegister(0, 0, 0, 1, 0, 1)"} + headerQuestions({"100/0/0"}) +
                                         Calls{"ToString(2)"}));
}

TEST_F(ShowTx, OverlongTypeNameIsCutAt255Characters) {
  platform.typeNames[2] = std::string(255, 'n') + "cut";
  platform.cores[0].txRegisters = 1;
  discover();
  EXPECT_EQ(run("showTx 0"), printed("\n" + std::string(255, 'n') +
                                         " \n"
                                         "=================== ==== \n"
                                         "ASIC port              0 \n"
                                         "user port            100 \n"
                                         "link num               0 \n"
                                         "running rate          8G\n"
                                         "media type           OPT\n"
                                         "=================== ==== \n"
                                         "Tx Register 0x00    0000 \n"
                                         "\n",
                                     Calls{"ReadSerDesLinkRegister(0, 0, 0, 1, 0, 1)"} + headerQuestions({"100/0/0"}) +
                                         Calls{"ToString(2)"}));
}

class RegistersOversizedSwitch : public OversizedSwitchTest {};

INSTANTIATE_TEST_SUITE_P(, RegistersOversizedSwitch, testing::Values(40u, 0xFFFFFFFFu));

TEST_P(RegistersOversizedSwitch, PortsBeyondTheTwentyFourthAreNotWalked) {
  platform.linkRegister = [](unsigned, int, SerDesLinkType, unsigned) -> unsigned short { return 0x1234; };
  EXPECT_EQ(run("showRx 22-31"),
            printed("\n"
                    "TYPE-4              \n"
                    "=================== ==== ==== \n"
                    "ASIC port             22   23 \n"
                    "user port            122  123 \n"
                    "link num               0    0 \n"
                    "running rate          8G   8G\n"
                    "media type           OPT  OPT\n"
                    "=================== ==== ==== \n"
                    "Rx Register 0x00    1234 1234 \n"
                    "Rx Register 0x01    1234 1234 \n"
                    "Rx Register 0x02    1234 1234 \n"
                    "Rx Register 0x03    1234 1234 \n"
                    "------------------- ---- ---- \n"
                    "Rx Register 0x04    1234 1234 \n"
                    "Rx Register 0x05    1234 1234 \n"
                    "\n",
                    Calls{"ReadSerDesLinkRegister(0, 22, 0, 0, 0, 6)", "ReadSerDesLinkRegister(0, 23, 0, 0, 0, 6)"} +
                        headerQuestions({"122/0/22", "123/0/23"}) + Calls{"ToString(4)"}));
}

TEST_P(RegistersOversizedSwitch, PortBeyondTheTwentyFourthPrintsUserPort65535) {
  platform.linkRegister = [](unsigned, int, SerDesLinkType, unsigned) -> unsigned short { return 0x1234; };
  EXPECT_EQ(run("readTx 24 0 0"), printed("Port 24 (user port 65535), link 0 at Tx address 0x00= 0x1234 \n",
                                          {"ReadSerDesLinkRegister(0, 24, 0, 1, 0, 1)"}));
}

TEST_F(ShowRx, CoresBeyondTheEighteenthAreNotSearched) {
  platform.coreCount = 30;
  platform.cores[0].rxRegisters = platform.cores[1].rxRegisters = 0;
  platform.cores[18].type = 2;
  platform.cores[18].rxRegisters = 7;
  discover();
  EXPECT_EQ(run("showRx 0"), printed(kHeadOfPort0 + "\n", Calls{"ReadSerDesLinkRegister(0, 0, 0, 0, 0, 0)"} +
                                                              headerQuestions({"100/0/0"}) + Calls{"ToString(2)"}));
}

class RegisterCommandsRefused : public RefusalTest {};

TEST_P(RegisterCommandsRefused, WithoutPlatformCall) {
  EXPECT_EQ(run(GetParam().line), refused(GetParam().status));
}

const Refusal kRefusals[] = {
    {"ReadRxAlone", "readRx", CMD_TOO_FEW_ARGS},
    {"ReadRxWithoutAddress", "readRx 4 0", CMD_TOO_FEW_ARGS},
    {"ReadRxWithAnotherWord", "readRx 4 0 3 1", CMD_TOO_MANY_ARGS},
    {"ReadRxPortNoNumber", "readRx gl 0 3", CMD_BAD_PARAM},
    {"ReadRxLinkNoNumber", "readRx 4 all 3", CMD_BAD_PARAM},
    {"ReadRxAddressNoNumber", "readRx 4 0 3h", CMD_BAD_PARAM},
    {"ReadRxAddressWithoutDigits", "readRx 4 0 0x", CMD_BAD_PARAM},
    {"ReadRxLinkALoneMinus", "readRx 4 - 3", CMD_BAD_PARAM},
    {"ReadTxWithoutAddress", "readTx 4 0", CMD_TOO_FEW_ARGS},
    {"ReadTxWithAnotherWord", "rtx 4 0 3 1", CMD_TOO_MANY_ARGS},
    {"ReadTxPortNoNumber", "readTx x 0 3", CMD_BAD_PARAM},
    {"ReadTxPortARange", "readTx 0-1 0 3", CMD_BAD_PARAM},
    {"ReadTxLinkNoNumber", "readTx 4 x 3", CMD_BAD_PARAM},
    {"ReadTxAddressNoNumber", "readTx 4 0 0xg", CMD_BAD_PARAM},
    {"WriteRxWithoutValue", "writeRx 4 0 3", CMD_TOO_FEW_ARGS},
    {"WriteRxWithAnotherWord", "writeRx 4 0 3 1 1", CMD_TOO_MANY_ARGS},
    {"WriteRxPortNoNumber", "writeRx x 0 3 1", CMD_BAD_PARAM},
    {"WriteRxLinkNoNumber", "writeRx 4 x 3 1", CMD_BAD_PARAM},
    {"WriteRxAddressNoNumber", "writeRx 4 0 x 1", CMD_BAD_PARAM},
    {"WriteRxValueNoNumber", "writeRx 4 0 3 1.5", CMD_BAD_PARAM},
    {"WriteTxWithoutValue", "wtx 4 0 3", CMD_TOO_FEW_ARGS},
    {"WriteTxWithAnotherWord", "writeTx 4 0 3 1 1", CMD_TOO_MANY_ARGS},
    {"WriteTxPortNoNumber", "writeTx x 0 3 1", CMD_BAD_PARAM},
    {"WriteTxLinkNoNumber", "writeTx 4 x 3 1", CMD_BAD_PARAM},
    {"WriteTxAddressNoNumber", "writeTx 4 0 x 1", CMD_BAD_PARAM},
    {"WriteTxValueNoNumber", "writeTx 4 0 3 +1", CMD_BAD_PARAM},
    {"ShowRxWithoutPorts", "showRx", CMD_TOO_FEW_ARGS},
    {"ShowRxUnknownPorts", "showRx ports", CMD_BAD_PARAM},
    {"ShowRxKeywordAmongNumbers", "showRx 0 gl", CMD_BAD_PARAM},
    {"ShowRxRangeBeyondThirtyOne", "showRx 0-32", CMD_BAD_PARAM},
    {"ShowRxTooManyPorts", "showRx 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23", CMD_TOO_MANY_ARGS},
    {"ShowTxWithoutPorts", "showTx", CMD_TOO_FEW_ARGS},
    {"ShowTxNegativePort", "showTx -1", CMD_BAD_PARAM},
    {"ShowTxPortNoNumber", "showTx 0 1 x", CMD_BAD_PARAM},
    {"ShowTxTooManyPorts", "dtx 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23", CMD_TOO_MANY_ARGS},
};

INSTANTIATE_TEST_SUITE_P(, RegisterCommandsRefused, testing::ValuesIn(kRefusals), refusalName);

}  // namespace
}  // namespace recording
