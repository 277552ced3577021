// PLL register commands, which address cores.
#include <string>

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
  fillPllRegisters(0xff);
  EXPECT_EQ(run("readPLL 1 7"),
            printed("Core ID 1 at PLL address 0x07= 0x00ff \n", {"ReadSerDesPLLRegister(0, 1, 7, 1)"}));
}

TEST_F(ReadPLL, AnswersToItsShortcut) {
  EXPECT_EQ(run("rpll 0x5 0x1a"),
            printed("Core ID 5 at PLL address 0x1a= 0x051a \n", {"ReadSerDesPLLRegister(0, 5, 26, 1)"}));
}

TEST_F(ReadPLL, AddressBeyondEightBitsReadsItsLowBitsAndPrintsItWhole) {
  fillPllRegisters(0xffff);
  EXPECT_EQ(run("readPLL 1 0x1ff"),
            printed("Core ID 1 at PLL address 0x1ff= 0xffff \n", {"ReadSerDesPLLRegister(0, 1, 255, 1)"}));
  EXPECT_EQ(run("readPLL 1 -2"),
            printed("Core ID 1 at PLL address 0xfffffffe= 0xffff \n", {"ReadSerDesPLLRegister(0, 1, 254, 1)"}));
}

TEST_F(ReadPLL, CoreNotBelowTheCoreCountIsRefused) {
  EXPECT_EQ(run("readPLL 6 7"), refused(CMD_BAD_PARAM));
  EXPECT_EQ(run("readPLL -1 7"), refused(CMD_BAD_PARAM));
  EXPECT_EQ(run("readPLL 4294967295 7"), refused(CMD_BAD_PARAM));
}

TEST_F(ReadPLL, NoCoreIsReadWhereThereAreNone) {
  platform.portCount = platform.coreCount = 0;
  discover();
  EXPECT_EQ(run("readPLL 0 7"), refused(CMD_BAD_PARAM));
}

TEST_F(ReadPLL, ReportedCoreCountIsTheBoundEvenBeyondTheModel) {
  platform.coreCount = 30;
  discover();
  EXPECT_EQ(run("readPLL 29 1"),
            printed("Core ID 29 at PLL address 0x01= 0x1d01 \n", {"ReadSerDesPLLRegister(0, 29, 1, 1)"}));
  EXPECT_EQ(run("readPLL 30 1"), refused(CMD_BAD_PARAM));
}

TEST_F(ReadPLL, ReadsOnTheCurrentAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("readPLL 1 7"),
            printed("Core ID 1 at PLL address 0x07= 0x0107 \n", {"ReadSerDesPLLRegister(1, 1, 7, 1)"}));
}

TEST_F(ReadPLL, PositivePlatformResultIsSuccess) {
  platform.fail("ReadSerDesPLLRegister", 1);
  EXPECT_EQ(run("readPLL 1 7"),
            printed("Core ID 1 at PLL address 0x07= 0x0107 \n", {"ReadSerDesPLLRegister(0, 1, 7, 1)"}));
}

TEST_F(ReadPLL, PlatformFailurePrintsOnlyHandlerAndCode) {
  platform.fail("ReadSerDesPLLRegister", -5);
  EXPECT_EQ(run("readPLL 1 7"),
            failed("readPLLRegisterCmdHandler: serdes err -5\n", {"ReadSerDesPLLRegister(0, 1, 7, 1)"}));
}

TEST_F(WritePLL, WritesSilently) {
  EXPECT_EQ(run("writePLL 1 7 0xff"), done({"WriteSerDesPLLRegister(0, 1, 7, 255)"}));
}

TEST_F(WritePLL, AnswersToItsShortcut) {
  EXPECT_EQ(run("WPLL 0 0x1f 0xFFFF"), done({"WriteSerDesPLLRegister(0, 0, 31, 65535)"}));
}

TEST_F(WritePLL, CoreNotBelowTheCoreCountGoesToThePlatform) {
  EXPECT_EQ(run("writePLL 6 7 1"), done({"WriteSerDesPLLRegister(0, 6, 7, 1)"}));
  EXPECT_EQ(run("writePLL -1 7 1"), done({"WriteSerDesPLLRegister(0, 4294967295, 7, 1)"}));
}

TEST_F(WritePLL, AddressAndValueAreCut) {
  EXPECT_EQ(run("writePLL 1 0x107 0x12345"), done({"WriteSerDesPLLRegister(0, 1, 7, 9029)"}));
  EXPECT_EQ(run("writePLL 1 -1 -1"), done({"WriteSerDesPLLRegister(0, 1, 255, 65535)"}));
}

TEST_F(WritePLL, WritesOnTheCurrentAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("writePLL 1 7 2"), done({"WriteSerDesPLLRegister(1, 1, 7, 2)"}));
}

TEST_F(WritePLL, PlatformFailurePrintsHandlerAndCode) {
  platform.fail("WriteSerDesPLLRegister", -6);
  EXPECT_EQ(run("writePLL 1 7 2"),
            failed("writePLLRegisterCmdHandler: serdes err -6\n", {"WriteSerDesPLLRegister(0, 1, 7, 2)"}));
}

TEST_F(ShowPLL, PrintsOneColumnPerCoreUnderAHeadWithoutEmptyLine) {
  platform.typeNames[2] = "TYPE-NAME";
  platform.pllRegister = [](unsigned, unsigned address) {
    static constexpr unsigned short values[3] = {0x41, 0, 0xff};
    return values[address];
  };
  EXPECT_EQ(run("showPLL 0 1"),
            printed("                    core core \n"
                    "TYPE-NAME           0    1    \n"
                    "=================== ==== ==== \n"
                    "PLL register 0x00   0041 0041 \n"
                    "PLL register 0x01   0000 0000 \n"
                    "PLL register 0x02   00ff 00ff \n"
                    "\n",
                    {"ReadSerDesPLLRegister(0, 0, 0, 3)", "ReadSerDesPLLRegister(0, 1, 0, 3)", "ToString(2)"}));
}

TEST_F(ShowPLL, AnswersToItsShortcut) {
  EXPECT_EQ(run("dpll 4"), printed("                    core \n"
                                   "TYPE-4              4    \n"
                                   "=================== ==== \n"
                                   "PLL register 0x00   0400 \n"
                                   "PLL register 0x01   0401 \n"
                                   "PLL register 0x02   0402 \n"
                                   "\n",
                                   {"ReadSerDesPLLRegister(0, 4, 0, 3)", "ToString(4)"}));
}

TEST_F(ShowPLL, LowestAndHighestTypeHaveTables) {
  platform.portCount = 0;
  platform.coreCount = 2;
  platform.cores[0].type = 6;
  platform.cores[1].type = 0;
  platform.cores[0].pllRegisters = platform.cores[1].pllRegisters = 1;
  discover();
  EXPECT_EQ(run("showPLL 0 1").out,
            "                    core \nTYPE-0              1    \n=================== ==== \n"
            "PLL register 0x00   0100 \n\n"
            "                    core \nTYPE-6              0    \n=================== ==== \n"
            "PLL register 0x00   0000 \n\n");
}

TEST_F(ShowPLL, TwoTypesGiveTwoTablesTheLowerTypeFirst) {
  platform.ports[0].rx.type = platform.ports[0].tx.type = 6;
  platform.ports[0].rx.core = platform.ports[0].tx.core = 0;
  platform.portCount = 1;
  discover();
  EXPECT_EQ(run("showPLL 2 1 0"),
            printed("                    core \n"
                    "TYPE-2              1    \n"
                    "=================== ==== \n"
                    "PLL register 0x00   0100 \n"
                    "PLL register 0x01   0101 \n"
                    "PLL register 0x02   0102 \n"
                    "\n"
                    "                    core \n"
                    "TYPE-3              2    \n"
                    "=================== ==== \n"
                    "PLL register 0x00   0200 \n"
                    "PLL register 0x01   0201 \n"
                    "PLL register 0x02   0202 \n"
                    "\n"
                    "                    core \n"
                    "TYPE-6              0    \n"
                    "=================== ==== \n"
                    "PLL register 0x00   0000 \n"
                    "PLL register 0x01   0001 \n"
                    "PLL register 0x02   0002 \n"
                    "\n",
                    {"ReadSerDesPLLRegister(0, 0, 0, 3)", "ReadSerDesPLLRegister(0, 1, 0, 3)",
                     "ReadSerDesPLLRegister(0, 2, 0, 3)", "ToString(2)", "ToString(3)", "ToString(6)"}));
}

TEST_F(ShowPLL, KeywordNamesTheTransmitCoresOfAPortType) {
  EXPECT_EQ(run("showPLL GL"),
            printed("                    core core \n"
                    "TYPE-2              0    1    \n"
                    "=================== ==== ==== \n"
                    "PLL register 0x00   0000 0100 \n"
                    "PLL register 0x01   0001 0101 \n"
                    "PLL register 0x02   0002 0102 \n"
                    "\n",
                    {"ReadSerDesPLLRegister(0, 0, 0, 3)", "ReadSerDesPLLRegister(0, 1, 0, 3)", "ToString(2)"}));
  EXPECT_EQ(run("showPLL xg"),
            printed("                    core core \n"
                    "TYPE-3              2    3    \n"
                    "=================== ==== ==== \n"
                    "PLL register 0x00   0200 0300 \n"
                    "PLL register 0x01   0201 0301 \n"
                    "PLL register 0x02   0202 0302 \n"
                    "\n",
                    {"ReadSerDesPLLRegister(0, 2, 0, 3)", "ReadSerDesPLLRegister(0, 3, 0, 3)", "ToString(3)"}));
  EXPECT_EQ(run("showPLL exg"), printed("                    core \n"
                                        "TYPE-4              5    \n"
                                        "=================== ==== \n"
                                        "PLL register 0x00   0500 \n"
                                        "PLL register 0x01   0501 \n"
                                        "PLL register 0x02   0502 \n"
                                        "\n",
                                        {"ReadSerDesPLLRegister(0, 5, 0, 3)", "ToString(4)"}));
}

TEST_F(ShowPLL, AllNamesTheTransmitCoresOfEveryPortType) {
  EXPECT_EQ(run("showPLL all"),
            printed("                    core core \n"
                    "TYPE-2              0    1    \n"
                    "=================== ==== ==== \n"
                    "PLL register 0x00   0000 0100 \n"
                    "PLL register 0x01   0001 0101 \n"
                    "PLL register 0x02   0002 0102 \n"
                    "\n"
                    "                    core core \n"
                    "TYPE-3              2    3    \n"
                    "=================== ==== ==== \n"
                    "PLL register 0x00   0200 0300 \n"
                    "PLL register 0x01   0201 0301 \n"
                    "PLL register 0x02   0202 0302 \n"
                    "\n"
                    "                    core \n"
                    "TYPE-4              5    \n"
                    "=================== ==== \n"
                    "PLL register 0x00   0500 \n"
                    "PLL register 0x01   0501 \n"
                    "PLL register 0x02   0502 \n"
                    "\n",
                    {"ReadSerDesPLLRegister(0, 0, 0, 3)", "ReadSerDesPLLRegister(0, 1, 0, 3)",
                     "ReadSerDesPLLRegister(0, 2, 0, 3)", "ReadSerDesPLLRegister(0, 3, 0, 3)",
                     "ReadSerDesPLLRegister(0, 5, 0, 3)", "ToString(2)", "ToString(3)", "ToString(4)"}));
}

TEST_F(ShowPLL, CoreNumbersOfTwoDigitsStandLeftInTheirColumn) {
  platform.coreCount = 18;
  platform.cores[17].type = 1;
  discover();
  EXPECT_EQ(run("showPLL 17"), printed("                    core \n"
                                       "TYPE-1              17   \n"
                                       "=================== ==== \n"
                                       "PLL register 0x00   1100 \n"
                                       "PLL register 0x01   1101 \n"
                                       "PLL register 0x02   1102 \n"
                                       "\n",
                                       {"ReadSerDesPLLRegister(0, 17, 0, 3)", "ToString(1)"}));
}

TEST_F(ShowPLL, NoSeparatorRowDividesTheRegisters) {
  platform.cores[0].pllRegisters = 9;
  discover();
  EXPECT_EQ(run("showPLL 0"), printed("                    core \n"
                                      "TYPE-2              0    \n"
                                      "=================== ==== \n"
                                      "PLL register 0x00   0000 \n"
                                      "PLL register 0x01   0001 \n"
                                      "PLL register 0x02   0002 \n"
                                      "PLL register 0x03   0003 \n"
                                      "PLL register 0x04   0004 \n"
                                      "PLL register 0x05   0005 \n"
                                      "PLL register 0x06   0006 \n"
                                      "PLL register 0x07   0007 \n"
                                      "PLL register 0x08   0008 \n"
                                      "\n",
                                      {"ReadSerDesPLLRegister(0, 0, 0, 9)", "ToString(2)"}));
}

// Unlike in a link register dump, a first core without registers ends the search.
TEST_F(ShowPLL, TypeWhoseFirstCoreHasNoRegistersIsAHeadAndAnEmptyLine) {
  platform.cores[0].pllRegisters = 0;
  discover();
  EXPECT_EQ(run("showPLL 0 1"),
            printed("                    core core \n"
                    "TYPE-2              0    1    \n"
                    "=================== ==== ==== \n"
                    "\n",
                    {"ReadSerDesPLLRegister(0, 0, 0, 0)", "ReadSerDesPLLRegister(0, 1, 0, 3)", "ToString(2)"}));
}

TEST_F(ShowPLL, FirstCoreOfTheTypeGivesTheRowsEvenIfNotSelected) {
  platform.cores[0].pllRegisters = 2;
  platform.cores[1].pllRegisters = 5;
  discover();
  EXPECT_EQ(run("showPLL 1"), printed("                    core \n"
                                      "TYPE-2              1    \n"
                                      "=================== ==== \n"
                                      "PLL register 0x00   0100 \n"
                                      "PLL register 0x01   0101 \n"
                                      "\n",
                                      {"ReadSerDesPLLRegister(0, 1, 0, 5)", "ToString(2)"}));
}

TEST_F(ShowPLL, RegisterThatAShorterCoreLacksShowsZeroEvenAfterAFullDump) {
  ASSERT_EQ(run("showPLL 0 1").status, CMD_OK);
  platform.cores[1].pllRegisters = 1;
  discover();
  EXPECT_EQ(run("showPLL 0 1"),
            printed("                    core core \n"
                    "TYPE-2              0    1    \n"
                    "=================== ==== ==== \n"
                    "PLL register 0x00   0000 0100 \n"
                    "PLL register 0x01   0001 0000 \n"
                    "PLL register 0x02   0002 0000 \n"
                    "\n",
                    {"ReadSerDesPLLRegister(0, 0, 0, 3)", "ReadSerDesPLLRegister(0, 1, 0, 1)", "ToString(2)"}));
}

TEST_F(ShowPLL, ReadsOnTheCurrentAsic) {
  ASSERT_EQ(run("setAsicNum 1").status, CMD_OK);
  EXPECT_EQ(run("showPLL 3"), printed("                    core \n"
                                      "TYPE-3              3    \n"
                                      "=================== ==== \n"
                                      "PLL register 0x00   0300 \n"
                                      "PLL register 0x01   0301 \n"
                                      "PLL register 0x02   0302 \n"
                                      "\n",
                                      {"ReadSerDesPLLRegister(1, 3, 0, 3)", "ToString(3)"}));
}

TEST_F(ShowPLL, FailureOnFirstCorePrintsOnlyTheError) {
  platform.fail("ReadSerDesPLLRegister", -7);
  EXPECT_EQ(run("showPLL 0 1"),
            failed("showPLLRegistersCmdHandler: serdes err -7\n", {"ReadSerDesPLLRegister(0, 0, 0, 3)"}));
}

TEST_F(ShowPLL, FailureOnLastCorePrintsOnlyTheError) {
  platform.fail("ReadSerDesPLLRegister", -8, 3);
  EXPECT_EQ(run("showPLL 0 1 4"), failed("showPLLRegistersCmdHandler: serdes err -8\n",
                                         {"ReadSerDesPLLRegister(0, 0, 0, 3)", "ReadSerDesPLLRegister(0, 1, 0, 3)",
                                          "ReadSerDesPLLRegister(0, 4, 0, 3)"}));
}

TEST_F(ShowPLL, EmptySelectionPrintsNothing) {
  EXPECT_EQ(run("showPLL 5-2"), done({}));
  EXPECT_EQ(run("showPLL 40"), done({}));
}

TEST_F(ShowPLL, CoresBeyondTheCoreCountAreIgnored) {
  EXPECT_EQ(run("showPLL 6-31"), done({}));
}

TEST_F(ShowPLL, CoresBeyondTheEighteenthAreNotWalked) {
  platform.coreCount = 30;
  discover();
  fillPllRegisters(0x5a5a);
  EXPECT_EQ(run("showPLL 16-31"),
            printed("                    core core \n"
                    "TYPE-4              16   17   \n"
                    "=================== ==== ==== \n"
                    "PLL register 0x00   5a5a 5a5a \n"
                    "PLL register 0x01   5a5a 5a5a \n"
                    "PLL register 0x02   5a5a 5a5a \n"
                    "\n",
                    {"ReadSerDesPLLRegister(0, 16, 0, 3)", "ReadSerDesPLLRegister(0, 17, 0, 3)", "ToString(4)"}));
}

TEST_F(ShowPLL, RegistersBeyondTheThirtySecondAreNotRead) {
  platform.cores[0].pllRegisters = 33;
  platform.cores[1].pllRegisters = 300;
  discover();
  fillPllRegisters(0x8001);
  EXPECT_EQ(run("showPLL 0 1"),
            printed("                    core core \n"
                    "TYPE-2              0    1    \n"
                    "=================== ==== ==== \n"
                    "PLL register 0x00   8001 8001 \n"
                    "PLL register 0x01   8001 8001 \n"
                    "PLL register 0x02   8001 8001 \n"
                    "PLL register 0x03   8001 8001 \n"
                    "PLL register 0x04   8001 8001 \n"
                    "PLL register 0x05   8001 8001 \n"
                    "PLL register 0x06   8001 8001 \n"
                    "PLL register 0x07   8001 8001 \n"
                    "PLL register 0x08   8001 8001 \n"
                    "PLL register 0x09   8001 8001 \n"
                    "PLL register 0x0a   8001 8001 \n"
                    "PLL register 0x0b   8001 8001 \n"
                    "PLL register 0x0c   8001 8001 \n"
                    "PLL register 0x0d   8001 8001 \n"
                    "PLL register 0x0e   8001 8001 \n"
                    "PLL register 0x0f   8001 8001 \n"
                    "PLL register 0x10   8001 8001 \n"
                    "PLL register 0x11   8001 8001 \n"
                    "PLL register 0x12   8001 8001 \n"
                    "PLL register 0x13   8001 8001 \n"
                    "PLL register 0x14   8001 8001 \n"
                    "PLL register 0x15   8001 8001 \n"
                    "PLL register 0x16   8001 8001 \n"
                    "PLL register 0x17   8001 8001 \n"
                    "PLL register 0x18   8001 8001 \n"
                    "PLL register 0x19   8001 8001 \n"
                    "PLL register 0x1a   8001 8001 \n"
                    "PLL register 0x1b   8001 8001 \n"
                    "PLL register 0x1c   8001 8001 \n"
                    "PLL register 0x1d   8001 8001 \n"
                    "PLL register 0x1e   8001 8001 \n"
                    "PLL register 0x1f   8001 8001 \n"
                    "\n",
                    {"ReadSerDesPLLRegister(0, 0, 0, 32)", "ReadSerDesPLLRegister(0, 1, 0, 32)", "ToString(2)"}));
}

TEST_F(ShowPLL, OnlyTheLowEightBitsOfTheRegisterCountAreAskedFor) {
  platform.cores[1].pllRegisters = 257;
  discover();
  EXPECT_EQ(run("showPLL 1"), printed("                    core \n"
                                      "TYPE-2              1    \n"
                                      "=================== ==== \n"
                                      "PLL register 0x00   0100 \n"
                                      "PLL register 0x01   0000 \n"
                                      "PLL register 0x02   0000 \n"
                                      "\n",
                                      {"ReadSerDesPLLRegister(0, 1, 0, 1)", "ToString(2)"}));
}

TEST_F(ShowPLL, TypesBeyondTheTableAreReadButNotShown) {
  platform.portCount = 0;
  platform.cores[0].type = 7;
  platform.cores[1].type = 250;
  platform.cores[2].type = 0xffffffff;
  discover();
  EXPECT_EQ(run("showPLL 0-2"), done({"ReadSerDesPLLRegister(0, 0, 0, 3)", "ReadSerDesPLLRegister(0, 1, 0, 3)",
                                      "ReadSerDesPLLRegister(0, 2, 0, 3)"}));
}

TEST_F(ShowPLL, TypeWithoutNameIsEntitledUnknown) {
  platform.typeNames.erase(4);
  EXPECT_EQ(run("showPLL 4"), printed("                    core \n"
                                      "UNK                 4    \n"
                                      "=================== ==== \n"
                                      "PLL register 0x00   0400 \n"
                                      "PLL register 0x01   0401 \n"
                                      "PLL register 0x02   0402 \n"
                                      "\n",
                                      {"ReadSerDesPLLRegister(0, 4, 0, 3)", "ToString(4)"}));
}

TEST_F(ShowPLL, LongTypeNameMovesTheColumnsOfItsRow) {
  platform.typeNames[4] = "A-TYPE-OF-TWENTY-FIVE-CHR";
  EXPECT_EQ(run("showPLL 4"), printed("                    core \n"
                                      "A-TYPE-OF-TWENTY-FIVE-CHR 4    \n"
                                      "=================== ==== \n"
                                      "PLL register 0x00   0400 \n"
                                      "PLL register 0x01   0401 \n"
                                      "PLL register 0x02   0402 \n"
                                      "\n",
                                      {"ReadSerDesPLLRegister(0, 4, 0, 3)", "ToString(4)"}));
}

TEST_F(ShowPLL, OverlongTypeNameIsCutAt255Characters) {
  platform.typeNames[4] = std::string(255, 'n') + "cut";
  EXPECT_EQ(run("showPLL 4"), printed("                    core \n" + std::string(255, 'n') +
                                          " 4    \n"
                                          "=================== ==== \n"
                                          "PLL register 0x00   0400 \n"
                                          "PLL register 0x01   0401 \n"
                                          "PLL register 0x02   0402 \n"
                                          "\n",
                                      {"ReadSerDesPLLRegister(0, 4, 0, 3)", "ToString(4)"}));
}

class PllCommandsRefused : public RefusalTest {};

TEST_P(PllCommandsRefused, WithoutPlatformCall) {
  EXPECT_EQ(run(GetParam().line), refused(GetParam().status));
}

const Refusal kRefusals[] = {
    {"ReadWithoutAddress", "readPLL 1", CMD_TOO_FEW_ARGS},
    {"ReadWithAnotherWord", "readPLL 1 7 0", CMD_TOO_MANY_ARGS},
    {"ReadCoreNoNumber", "readPLL gl 7", CMD_BAD_PARAM},
    {"ReadAddressNoNumber", "readPLL 1 0x", CMD_BAD_PARAM},
    {"WriteWithoutValue", "writePLL 1 7", CMD_TOO_FEW_ARGS},
    {"WriteWithAnotherWord", "writePLL 1 7 0xff 0", CMD_TOO_MANY_ARGS},
    {"WriteCoreNoNumber", "writePLL x 7 0xff", CMD_BAD_PARAM},
    {"WriteAddressNoNumber", "writePLL 1 x 0xff", CMD_BAD_PARAM},
    {"WriteValueNoNumber", "writePLL 1 7 ff", CMD_BAD_PARAM},
    {"ShowWithoutCores", "showPLL", CMD_TOO_FEW_ARGS},
    {"ShowUnknownCores", "showPLL cores", CMD_BAD_PARAM},
    {"ShowKeywordAmongNumbers", "showPLL all 1", CMD_BAD_PARAM},
    {"ShowRangeBeyondThirtyOne", "showPLL 0-32", CMD_BAD_PARAM},
    {"ShowNegativeCore", "dpll -1", CMD_BAD_PARAM},
    {"ShowTooManyCores", "showPLL 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23", CMD_TOO_MANY_ARGS},
};

INSTANTIATE_TEST_SUITE_P(, PllCommandsRefused, testing::ValuesIn(kRefusals), refusalName);

}  // namespace
}  // namespace recording
