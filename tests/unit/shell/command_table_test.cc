// The command table, row by row.
#include "shell/command_table.h"

#include <strings.h>

#include <iterator>
#include <map>

#include "shell/command_reader.h"
#include "tests/support/expected.h"
#include "tests/support/handlers.h"

namespace recording {
namespace {

// A row's handler shows in what the command does: every command's failures name it.
struct ExpectedRow {
  const char* name;
  const char* shortcut;
  int minArgs;
  int maxArgs;
  unsigned isSetCmd;
  const char* argHelp;
  const char* description;
  const char* example;
  const char* exampleNote;
};

// clang-format off
constexpr ExpectedRow kExpectedRows[] = {
    {"setAsicNum", "san", 2, 2, 1, "asicNum", "Set the current asic num to work with, only one is supported at a time, default=0", "Example: setAsicNum 1", "(example sets the asic number to asic 1, (e.g. the second asic)"},
    {"setRate", "sr", 2, 24, 1, "rate [portList]", "set port rate, valid rates are AUTO, 1 2 4 8 10 20 (or 1G 2G 4G 8G 10G 20G)", "Example: setRate 4G gl", "(example sets all GL ports to 4G)"},
    {"setTxEnable", "stx", 2, 24, 1, "enable [portList]", "set the tx stream enabled/disabled", "Example: setTxEnable 0 4 6 8 10", "(example disables the Tx Stream for ports 4,6,8,10)"},
    {"showRate", "dr", 1, 24, 0, "[portlist]", "show port rate/enable", "Example: showRate all", "(example displays rates for all ports"},
    {"showConfig", "dcfg", 1, 1, 0, "", "shows the serdes hardware configuration, no parameters", "Example: showConfig", ""},
    {"showFFE", "dffe", 1, 24, 0, "[portlist]", "show FFE", "Example: showFFE 0", "(example shows the FFE parameter settings for port 0)"},
    {"setFFE", "sffe", 7, 24, 1, "mode k c0 c1 c2 c3 [portlist]", "set FFE mode and related parameters k (power) and c(n) (cooeficients)", "Example: setFFE FFE3 115 -4 55 -25 0 gl", "(example sets all gl ports, mode=FFE3, k=115, c0=-4, c1=55, c2=25, c3=0)"},
    {"showSlew", "dslew", 1, 24, 0, "[portlist]", "show slew parameters (in ps)", "showSlew gl", "(example shows the slew settings for all gl ports)"},
    {"setSlew", "sslew", 1, 24, 1, "slewRate [portlist]", "set slew", "Example: setSlew 36 0 1", "(example sets the slew to 36ps for ports 0 and 1)"},
    {"showTxParams", "dtxp", 1, 24, 0, "[portlist]", "show all Tx related params, both FFE and Slew", "Example: showTxParams gl", "(example shows all the tx params for all gl ports)"},
    {"setTxParams", "stxp", 8, 24, 1, "mode k c0 c1 c2 c3 slew [portlist]", "set all Tx related parameters, both FFE and Slew", "Example: setTxParams FFE3 115 -4 55 -25 0 36 gl", "(example sets all gl ports, k=115, c0=-4, c1=55, c2=25, c3=0, slew=36ps )"},
    {"showRxParams", "drxp", 1, 24, 0, "[portlist]", "show all Rx related params, both DFE and VGA", "Example: showRxParams gl", "(example shows all the rx params for all gl ports)"},
    {"setRxParams", "srxp", 5, 24, 1, "mode pole peak amax [portlist]", "set all Rx related parameters, both DFE and VGA", "Example: setRxParams DFE5 6 4 0x4e gl", "(example sets all gl ports, DFE5, pole=6, peak=4, amax=0x4e)"},
    {"showTxParamsCache", "dtxpc", 2, 24, 0, "[portlist]", "show all Tx related params for a given rate", "Example: showTxParamsCache 8G gl", "(example shows the tx params for 8G for all gl ports)"},
    {"setTxParamsCache", "stxpc", 9, 24, 1, "rate mode k c0 c1 c2 c3 slew [portlist]", "set all Tx related parameters for a given rate", "Example: setTxParamsCache 8G FFE3 115 -4 55 -25 0 36 gl", "(example sets all gl ports 8G cache, mode=FFE3, k=115, c0=-4, c1=55, c2=25, c3=0, slew=36ps)"},
    {"showTxParamsRaw", "dtxpr", 3, 24, 0, "interface rate [portlist]", "show all Tx related params for a given rate, for a given interface", "Example: showTxParamsRaw asic 8G gl", "(example shows the tx params for 8G at the (asic) interface, for all gl ports)"},
    {"setTxParamsRaw", "stxpr", 10, 24, 1, "interface rate slew mode p0 p1 p2 p3 [portlist]", "set all Tx related parameters for a given rate, for a given interface", "Example: setTxParamsRaw asic 8G 0 2 115 -4 55 -25 0 gl", "(example sets all gl ports 8G cache at the (asic) interface, slew=0, mode=2, p0=115, p0=-4, p1=55, p2=25, p3=0)\n(asic/11G serdes, slew(ps):24=0,30=1,36=2,50=3,60=4,75=5,100=6)\n(asic/11G serdes, mode:FFENone=0,FFE2=1,FFE3=2,FFE4=3)"},
    {"eshowTxParamsCache", "edt", 2, 24, 0, "[portlist]", "show all Tx related params for a given ethernet rate", "Example: edt 10G exg", "(example shows the tx params for 10G for all exg ports)"},
    {"esetTxParamsCache", "est", 4, 24, 1, "rate power pre-emph [portlist]", "set all Tx related parameters for a given ethernet rate", "Example: est 10G 6 5 exg", "(example sets all EXG ports 10G cache, power=6, pre-emphasis=5)"},
    {"showRxParamsCache", "drxpc", 2, 24, 0, "[portlist]", "show all Rx related params for a given rate", "Example: showRxParamsCache 8G gl", "(example shows the rx params for 8G for all gl ports)"},
    {"setRxParamsCache", "srxpc", 6, 24, 1, "rate mode p0 p1 p2 [portlist]", "set all Rx related parameters for a given rate", "Example: setRxParamsCache 8G DFE3 7 0 0x4e gl", "(example sets all gl ports 8G cache, mode=DFE3, p0=7, p1=0, p2=0x4e, p3=0)"},
    {"showRxParamsRaw", "drxpr", 3, 24, 0, "interface rate [portlist]", "show all Rx related params for a given rate", "Example: showRxParamsCache asic 8G gl", "(example shows the rx params for 8G at the asic interface, for all gl ports)"},
    {"setRxParamsRaw", "srxpr", 8, 24, 1, "interface rate mode p0 p1 p2 p3 [portlist]", "set all Rx related parameters for a given rate", "Example: setRxParamsCache asic 8G 1 7 0 0x4e 0 gl", "(example sets all gl ports 8G cache at the asic interface, mode=1, p0=7, p1=0, p2=0x4e, p3=0)\n(asic/11G serdes, mode:DFE3=0,DFE5=1,None=2)"},
    {"eshowRxParamsCache", "edr", 2, 24, 0, "[portlist]", "show all Rx related params for a given ethernet rate", "Example: edr 10G exg", "(example shows the rx params for 10G for all exg ports)"},
    {"esetRxParamsCache", "esr", 4, 24, 1, "rate cdr_mode eq_mode [portlist]", "set all Rx related parameters for a given ethernet rate", "Example: esr 10G 2 1 exg", "(example sets all EXG ports 10G cache, cdr_mode=2, eq_mode=1)"},
    {"showDFE", "ddfe", 1, 24, 0, "[portlist]", "show DFE", "Example: showDFE 0 2 4 6 8 10", "(example shows the DFE settings for ports 0 2 4 6 8 10)"},
    {"setDFE", "sdfe", 2, 24, 1, "mode [portlist]", "set DFE, options are DFE3 DFE5 and None", "Example: setDFE DFE5 gl", "(example sets all gl ports to DFE5)"},
    {"setDFEState", "sdfestate", 4, 24, 1, "port link mode H1ev H1odd..H5ev H5odd", "For single port/link, set DFE mode and 10 H values, 13 params", "Example: setDFEState 4 0 DFE3 0 1 0 1 0 1 0 1 0 1", "(example sets port 4 link 0 to DFE3, H evens to 0, H odds to 1)"},
    {"showDFEStats", "ddfestats", 1, 24, 0, "[portlist]", "show DFE statistics, H values, Ap, Amin, An", "Example: showDFEStats 2", "(example will show the dfe stats for port 2)"},
    {"showVGA", "dvga", 1, 24, 0, "[portlist]", "show VGA settings, peak, pole, amax (hex)", "Example: showVGA gl", "(example will show the VGA settings for all gl ports)"},
    {"setVGA", "svga", 4, 24, 1, "pole peak amax [portlist]", "set the VGA settings for a list of ports", "Example: setVGA 6 4 0x4e gl", "{example sets pole=6, peak-0, amax=0x4e for all gl ports)"},
    {"showPLL", "dpll", 1, 24, 0, "[corelist]", "show common PLL registers", "Example: showPLL all", "(example shows the PLL registers for all serdes cores)"},
    {"writePLL", "wpll", 4, 4, 1, "coreId addr value", "write a single common PLL register", "Example: writePLL 1 7 0xff", "(example writes core 1 register 7 to 0xff)"},
    {"readPLL", "rpll", 3, 3, 0, "coreId addr", "read a single common PLL register", "Example: readPLL 1 7", "(example reads core 1 register 7)"},
    {"showTx", "dtx", 1, 24, 0, "[portList]", "show all Tx registers, includes a brief description of regs", "Example: showTx 0 1 2 3 ", "(example shows all tx registers for ports 0 1 2 3"},
    {"writeTx", "wtx", 5, 5, 1, "portNum LinkNum addr value", "write Tx register", "Example: writeTx 4 0 3 0x1c", "example sets port 4 link 0 Tx register 3 to 0x1c"},
    {"readTx", "rtx", 4, 4, 0, "portNum LinkNum addr", "read a single Tx register", "Example: readTx 4 0 3", "(example reads port 4, link 0, register address 3)"},
    {"showRx", "drx", 1, 24, 0, "[portList]", "show all Rx registers, includes a brief description of regs", "Example: showRx 0 1 2 3 ", "(example shows all rx registers for ports 0 1 2 3"},
    {"writeRx", "wrx", 5, 5, 1, "portNum LinkNum addr value", "write a single Rx register", "Example: writeRx 4 0 3 0x1d", "(example writes port 4, link 0, Rx register address 3 to 0x1d)"},
    {"readRx", "rrx", 4, 4, 0, "portNum LinkNum addr", "read a single Rx register", "Example: readRx 4 0 3", "(example reads port 4, link 0, Rx register address 3)"},
    {"runTest", "rt", 5, 5, 0, "port link option mode", "run test", "Example: runTest 4 0 0 1", "(example runs port 4, link 0, option 0 and mode 1)"},
    {"getTest", "gt", 4, 4, 0, "port link option", "get test", "Example: getTest 4 0 0", "(example gets the result/status of test 4 link 0 option 0)"},
    {"clearErrors", "ce", 1, 24, 0, "[portList]", "clear errors (clear all statistics)", "Example: clearErrors 0 1 2 3 ", "(example clears all errors/statistical counters for ports 0 1 2 3"},
    {"loop", "lp", 2, 24, 0, "cmd args ...", "loop on a command", "Example: loop readRx 4 0 3", "(example reads port 4, link 0, reg 3 continuously at 2 sec rate)"},
    {"help", "?", 1, 1, 0, "(see 'help ?' '<cmd> ?' for details)", "show the command list/menu, for detailed help use <cmd> ?", "Example: showRx ?", "(example will give the detailed help for showRx)"},
    {"exit", "quit", 1, 2, 0, "", "exit/quit the serdes utility program", "", ""},
};
// clang-format on

void PrintTo(const ExpectedRow& row, std::ostream* stream) {
  *stream << row.name;
}

class CommandRow : public ToolTest, public testing::WithParamInterface<ExpectedRow> {
 protected:
  // A command line of so many words.
  static std::string lineOf(int words) {
    std::string line = GetParam().name;
    for (int i = 1; i < words; ++i)
      line += " 0";
    return line;
  }
};

INSTANTIATE_TEST_SUITE_P(, CommandRow, testing::ValuesIn(kExpectedRows),
                         [](const testing::TestParamInfo<ExpectedRow>& row) { return row.param.name; });

TEST_P(CommandRow, SaysWhatItDoesAndTakes) {
  const CmdTableEntry& row = rowOf(GetParam().name);
  EXPECT_STREQ(row.shortcut, GetParam().shortcut);
  EXPECT_EQ(row.minArgs, GetParam().minArgs);
  EXPECT_EQ(row.maxArgs, GetParam().maxArgs);
  EXPECT_EQ(row.isSetCmd, GetParam().isSetCmd);
  EXPECT_STREQ(row.argHelp, GetParam().argHelp);
  EXPECT_STREQ(row.description, GetParam().description);
  EXPECT_STREQ(row.example, GetParam().example);
  EXPECT_STREQ(row.exampleNote, GetParam().exampleNote);
}

TEST_P(CommandRow, PrintsItsHelpByNameAndByShortcut) {
  const std::string help =
      std::string("\n") + GetParam().description + "\n\n" + GetParam().example + "\n" + GetParam().exampleNote + "\n";
  for (const std::string word : {GetParam().name, GetParam().shortcut}) {
    EXPECT_EQ(run(word + " ?"), printed(help, {}));
    EXPECT_EQ(&cmdTable[currentCommandIndex], &rowOf(GetParam().name));
    EXPECT_EQ(run(word + " help"), printed(help, {}));
  }
}

TEST_P(CommandRow, RefusesFewerWordsThanItsLeastAndMoreThanItsMost) {
  for (int words = 1; words < GetParam().minArgs; ++words)
    EXPECT_EQ(run(lineOf(words)), refused(CMD_TOO_FEW_ARGS)) << words << " words";
  EXPECT_NE(run(lineOf(GetParam().maxArgs)).status, CMD_TOO_MANY_ARGS);
  for (int words = GetParam().maxArgs + 1; words <= 26; ++words)
    EXPECT_EQ(run(lineOf(words)), refused(CMD_TOO_MANY_ARGS)) << words << " words";
}

TEST(CommandTable, EndsWithAnEmptyRowBehindTheOnesThatAreExpected) {
  ASSERT_EQ(cmdTable.size(), std::size(kExpectedRows) + 1) << "a row without a line in kExpectedRows, or the reverse";
  EXPECT_EQ(kCommandCount, std::size(kExpectedRows));
  const CmdTableEntry& end = cmdTable.back();
  EXPECT_EQ(end.name, nullptr);
  EXPECT_EQ(end.shortcut, nullptr);
  EXPECT_EQ(end.minArgs, 0);
  EXPECT_EQ(end.maxArgs, 0);
  EXPECT_EQ(end.isSetCmd, 0u);
  EXPECT_EQ(end.argHelp, nullptr);
  EXPECT_EQ(end.description, nullptr);
  EXPECT_EQ(end.example, nullptr);
  EXPECT_EQ(end.exampleNote, nullptr);
  EXPECT_EQ(end.handler, nullptr);
}

TEST(CommandTable, NoTwoRowsAnswerToTheSameWord) {
  const auto lessWithoutCase = [](const std::string& a, const std::string& b) {
    return strcasecmp(a.c_str(), b.c_str()) < 0;
  };
  std::map<std::string, std::string, decltype(lessWithoutCase)> rowOfWord(lessWithoutCase);
  for (const CmdTableEntry* row = cmdTable.data(); row->name != nullptr; ++row) {
    for (const std::string word : {row->name, row->shortcut}) {
      const auto [taken, fresh] = rowOfWord.emplace(word, row->name);
      EXPECT_TRUE(fresh) << word << " is a word of " << row->name << " and of " << taken->second;
    }
  }
}

}  // namespace
}  // namespace recording
