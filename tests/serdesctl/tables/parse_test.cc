// Texts that are almost what the tool prints, texts that can be read in two ways, and logs.
#include "serdesctl/tables/parse.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "serdesctl/tables/cells.h"
#include "serdesctl/tables/config_text.h"
#include "shell/command_reader.h"
#include "shell/session.h"
#include "tests/support/expected.h"
#include "tests/support/tool_test.h"
#include "topology/serdes_topology.h"

namespace serdesctl {
namespace {

using recording::platform;
using recording::run;
using recording::runStream;

std::string errorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const ParseError& error) {
    return error.what();
  }
  return "no error";
}

class ParseTest : public recording::TopologyTest {
 protected:
  void SetUp() override {
    TopologyTest::SetUp();
    learn();
  }

  // Takes the platform as it is now.
  void learn() {
    discover();
    configText_ = run("showConfig").out;
    config_ = parseConfig(configText_);
  }

  Records parsed(const std::string& command) {
    return parseOutput(command, run(command).out, config_);
  }

  std::string error(const std::string& command, const std::string& output) {
    return errorOf([&] { (void)parseOutput(command, output, config_); });
  }

  static std::string logError(const std::string& text, const LogKnowledge& knowledge = {}) {
    return errorOf([&] { (void)parseLog(text, knowledge); });
  }

  std::string configText_;
  ConfigText config_;
};

// Commands whose whole output is a table.
const std::vector<std::string> kTableCommands = {"showRate all",
                                                 "showFFE 0-3",
                                                 "showSlew 5 6",
                                                 "showTxParams 0 6",
                                                 "showRxParams 6 7",
                                                 "showTxParamsCache 8G gl",
                                                 "showTxParamsRaw a 8 gl",
                                                 "eshowTxParamsCache 10G exg",
                                                 "showRxParamsCache 4G xg",
                                                 "showRxParamsRaw n 1G 3",
                                                 "eshowRxParamsCache auto exg",
                                                 "showDFE 6",
                                                 "showVGA 0 3",
                                                 "showDFEStats 0-7",
                                                 "showTx all",
                                                 "showRx all",
                                                 "showPLL 0-5"};

// A SerDes type may be called anything.
bool isInTypesName(const std::string& text, std::size_t at) {
  const std::size_t line = text.rfind('\n', at == 0 ? 0 : at - 1) + 1;
  return text.compare(line, 5, "TYPE-") == 0 || text.compare(at, 5, "TYPE-") == 0;
}

TEST_F(ParseTest, NoCharacterOfATableMayBeMissingOrExtra) {
  recording::makeIdle(platform.ports[0]);
  for (const std::string& command : kTableCommands) {
    const std::string text = run(command).out;
    ASSERT_NE(text, "") << command;
    (void)parseOutput(command, text, config_);
    for (std::size_t at = 0; at < text.size(); ++at) {
      if (isInTypesName(text, at)) continue;
      std::string without = text;
      without.erase(at, 1);
      EXPECT_NE(error(command, without), "no error") << command << " without character " << at << without;
      for (const char extra : {' ', '\n', '0', '-'}) {
        std::string with = text;
        with.insert(at, 1, extra);
        EXPECT_NE(error(command, with), "no error") << command << " with " << extra << " at " << at << with;
      }
    }
  }
}

TEST_F(ParseTest, ErrorsSayWhereAndWhatWasExpected) {
  std::string text = run("showSlew 0").out;
  text.replace(text.find("  24"), 4, "  25");
  EXPECT_EQ(error("showSlew 0", text),
            "showSlew 0, line 11, column 20: one of 24, 30, 36, 50, 60, 75, 100, UNK was expected before '   25'");
  EXPECT_EQ(error("showSlew 0", ""), "showSlew 0, line 1, column 1: none is not what the command prints");
  EXPECT_EQ(error("showFFE 0", run("showSlew 0").out),
            "showFFE 0, line 12, column 1: slew is not what the command prints");
}

TEST_F(ParseTest, WideCellsPushTheRestOfTheirRow) {
  platform.ports[0].txLinks[0] = {.mode = 0, .k = 255, .c = {-128, 127, -1, 0}, .slew = 7};
  platform.ports[0].hwConfig.portId.userPort = 65534;
  recording::makeIdle(platform.ports[1]);
  platform.ports[2].rxLinks[0].amax = -80;
  learn();
  EXPECT_NE(run("showTxParams 0-2").out.find("FFENone      FFENone \n"), std::string::npos);
  const auto tx = std::get<std::vector<TxParams>>(parsed("showTxParams 0-2"));
  ASSERT_EQ(tx.size(), 3U);
  EXPECT_EQ(tx[0].userPort, 65534U);
  EXPECT_EQ(tx[0].ffeMode, "FFENone");
  EXPECT_EQ(tx[0].c0, -128);
  EXPECT_EQ(tx[0].slewPs, std::nullopt);
  EXPECT_EQ(tx[1].ffeMode, std::nullopt);
  EXPECT_EQ(tx[1].k, std::nullopt);
  EXPECT_EQ(tx[1].runningRate, "INV");
  EXPECT_EQ(tx[2].ffeMode, "FFENone");
  EXPECT_EQ(tx[2].slewPs, 24);
  const auto rx = std::get<std::vector<RxParams>>(parsed("showRxParams 1-2"));
  EXPECT_EQ(rx[0].amax, std::nullopt);
  EXPECT_EQ(rx[1].amax, -80);
}

TEST_F(ParseTest, DumpsAreHexadecimalAndCountsAreNot) {
  platform.linkRegister = [](unsigned, int, SerDesLinkType, unsigned) -> unsigned short { return 0x1e05; };
  platform.ports[0].decodeErrors = 123456;
  platform.ports[0].crcErrors = 99999;
  EXPECT_EQ(std::get<std::vector<TxRegisters>>(parsed("showTx 0"))[0].registers, std::vector<std::uint16_t>(5, 0x1e05));
  const auto stats = std::get<std::vector<DfeStats>>(parsed("showDFEStats 0"));
  EXPECT_EQ(stats[0].decodeErrors->number, 1e5);
  EXPECT_FALSE(stats[0].decodeErrors->exact());
  EXPECT_EQ(stats[0].crcErrors->number, 10e4);
}

TEST_F(ParseTest, ReceiveTablesNeedTheTopologyUnlessOnePortIsNamed) {
  const std::string two = run("showVGA 5-6").out;
  EXPECT_EQ(logError(two),
            "standard input, line 2, column 1: how many receive links each port has is not in the table: "
            "the answer to showConfig tells");
  EXPECT_NE(logError(two, {.command = "showVGA 5-6"}).find("how many receive links"), std::string::npos);
  const auto answers = parseLog(run("showVGA 6").out, {.command = "showVGA 6"});
  const auto& one = std::get<std::vector<Vga>>(answers[0].records);
  ASSERT_EQ(one.size(), 4U);
  EXPECT_EQ(one[3].link, 3U);
  EXPECT_EQ(one[3].asic, std::nullopt);
  const auto known = parseLog(two, {.configs = {config_}});
  EXPECT_EQ(std::get<std::vector<Vga>>(known[0].records).size(), 5U);
}

TEST_F(ParseTest, TransmitTablesNeedNoTopology) {
  const auto answers = parseLog(run("showFFE 5-6").out, {});
  const auto& records = std::get<std::vector<Ffe>>(answers[0].records);
  ASSERT_EQ(records.size(), 5U);
  EXPECT_EQ(records[1].port, 6U);
  EXPECT_EQ(records[1].userPort, 106U);
  EXPECT_EQ(records[1].serDesType, std::nullopt);
}

TEST_F(ParseTest, PortsWithoutColumnsAreFoundWhereThereIsOneWay) {
  for (const unsigned port : {1U, 2U, 4U})
    platform.ports[port].tx.linkCount = 0;
  platform.ports[2].rx.linkCount = 2;
  learn();
  const auto portsOf = [&](const std::string& list) {
    std::string ports;
    const auto answers = parseLog(run("showVGA " + list).out, {.configs = {config_}});
    for (const Vga& record : std::get<std::vector<Vga>>(answers[0].records))
      ports += std::to_string(record.port);
    return ports;
  };
  EXPECT_EQ(portsOf("0 3"), "03");
  EXPECT_EQ(portsOf("0-4"), "012234");
  for (const std::string list : {"0 1", "0 2", "0 1 4"}) {
    EXPECT_NE(logError(run("showVGA " + list).out, {.configs = {config_}}).find("the command with its port list tells"),
              std::string::npos)
        << list;
    EXPECT_EQ(std::get<std::vector<Vga>>(parsed("showVGA " + list)).back().port, list == "0 1 4" ? 4 : list[2] - '0');
  }
}

TEST_F(ParseTest, ATopologyOfAnotherSwitchIsNoticed) {
  const std::string text = run("showFFE 6").out;
  platform.ports[6].tx.linkCount = 3;
  learn();
  EXPECT_EQ(error("showFFE 6", text),
            "showFFE 6, line 2, column 1: the table shows 4 transmit links of port 6, and the topology others");
  EXPECT_EQ(error("showFFE 5-7", run("showFFE 5 7").out),
            "showFFE 5-7, line 2, column 1: the table shows 0 transmit links of port 6, and the topology others");
  EXPECT_EQ(error("showFFE 7", run("showFFE 6").out),
            "showFFE 7, line 2, column 1: the table shows port 6, which the command does not name");
}

TEST_F(ParseTest, ATransmitTableIsNotJudgedByATopologyOfAnotherMoment) {
  platform.ports[6].tx.linkCount = 3;
  learn();
  const auto answers = parseLog(run("showSlew 6").out, {.configs = {config_}});
  EXPECT_EQ(std::get<std::vector<Slew>>(answers[0].records)[2].serDesType, "TYPE-3");
  platform.ports[6].tx.linkCount = 2;
  discover();
  const auto others = parseLog(run("showSlew 6").out, {.configs = {config_}});
  EXPECT_EQ(std::get<std::vector<Slew>>(others[0].records)[1].serDesType, std::nullopt);
  EXPECT_NE(logError(run("showVGA 6").out, {.configs = {config_}}), "no error");
}

TEST_F(ParseTest, TypesMayBeCalledAnything) {
  for (const std::string name : {"", " ", "show rate", "show FFE", "H1_Even             -1", "serdes: ", "%s%n",
                                 "core 1", "=================== ====", "unknown command", "\xff\xfe"}) {
    platform.typeNames[2] = name;
    learn();
    SCOPED_TRACE(name);
    const auto stats = std::get<std::vector<DfeStats>>(parsed("showDFEStats 0-1"));
    ASSERT_EQ(stats.size(), 2U);
    EXPECT_EQ(stats[1].serDesType, name);
    EXPECT_EQ(std::get<std::vector<TxRegisters>>(parsed("showTx 1"))[0].serDesType, name);
    EXPECT_EQ(std::get<std::vector<PllRegisters>>(parsed("showPLL 0"))[0].serDesType, name);
  }
  platform.typeNames[2] = "A, coreId:0) TX(linkCount:1, B";
  discover();
  EXPECT_NE(errorOf([] { (void)parseConfig(run("showConfig").out); }).find("more than one way"), std::string::npos);
}

TEST_F(ParseTest, DumpsWithoutRowsAreOfTheirCommand) {
  for (recording::Core& core : platform.cores)
    core.txRegisters = core.rxRegisters = 0;
  learn();
  const std::string text = run("showTx 5-6").out;
  EXPECT_NE(logError(text).find("may be of receive or of transmit registers"), std::string::npos);
  const auto tx = std::get<std::vector<TxRegisters>>(parsed("showTx 5-6"));
  ASSERT_EQ(tx.size(), 5U);
  EXPECT_TRUE(tx[4].registers.empty());
  EXPECT_EQ(std::get<std::vector<RxRegisters>>(parsed("showRx 5-6")).size(), 5U);
}

TEST_F(ParseTest, ListsThatSelectNothingGiveNoRecords) {
  EXPECT_TRUE(std::get<std::vector<RxRegisters>>(parsed("showRx 30")).empty());
  EXPECT_TRUE(std::get<std::vector<PllRegisters>>(parsed("showPLL 30")).empty());
  EXPECT_TRUE(std::get<std::vector<DfeStats>>(parsed("showDFEStats 30")).empty());
  EXPECT_TRUE(std::get<std::vector<Rate>>(parsed("showRate 30")).empty());
}

// The text with a row's cells replaced.
std::string withCells(std::string text, const std::string& label, const std::string& cells) {
  const std::size_t begin = text.find("\n" + label) + 1 + padded(label, label.size() < 18 ? 18 : 19).size();
  return text.replace(begin, text.find('\n', begin) - begin, cells);
}

TEST_F(ParseTest, CountsAreShortenedInOneWay) {
  const std::string text = run("showDFEStats 0").out;
  const auto countOf = [&](const std::string& cell) {
    const Records records = parseOutput("showDFEStats 0", withCells(text, "Decode Errors", " " + cell), config_);
    return std::get<std::vector<DfeStats>>(records)[0].decodeErrors.value();
  };
  EXPECT_EQ(countOf("2e05 ").number, 2e5);
  EXPECT_EQ(countOf("10e04 ").number, 1e5);
  EXPECT_EQ(countOf("2e19 ").number, 2e19);
  EXPECT_EQ(countOf("   7 ").highest, 7U);
  for (const std::string cell :
       {"2e", "2ex ", "2e5 ", "2e03 ", "3e19 ", "2e20 ", "0e05 ", "11e04 ", "12345 ", "  -1 "}) {
    EXPECT_NE(errorOf([&] { (void)countOf(cell); }), "no error") << cell;
  }
}

TEST_F(ParseTest, SingleValuesHaveBounds) {
  const std::string text = run("readRx 6 1 2").out;
  EXPECT_EQ(error("readRx 6 1 2", text), "no error");
  const auto with = [&](const std::string& part, const std::string& other) {
    std::string changed = text;
    return error("readRx 6 1 2", changed.replace(changed.find(part), part.size(), other));
  };
  EXPECT_NE(with("= 0x", "= 0x1").find("a register of 16 bits"), std::string::npos);
  EXPECT_NE(with("user port ", "user port 99999").find("a user port"), std::string::npos);
  EXPECT_NE(with("user port ", "user port -").find("a user port"), std::string::npos);
}

TEST_F(ParseTest, PllTablesHaveBounds) {
  const std::string text = run("showPLL 0").out;
  const std::string row =
      text.substr(text.find("PLL register 0x00"), text.find("PLL register 0x01") - text.find("PLL register 0x00"));
  std::string rows;
  for (unsigned address = 0; address <= kMaxRegisters; ++address) {
    std::array<char, 8> number;
    std::snprintf(number.data(), number.size(), "%02x", address);
    rows += std::string(row).replace(row.find("00"), 2, number.data());
  }
  EXPECT_NE(error("showPLL 0", text.substr(0, text.find("PLL register")) + rows + "\n").find("the end of the table"),
            std::string::npos);
  std::string cores = padded("");
  for (unsigned core = 0; core <= kMaxCores; ++core)
    cores += "core ";
  EXPECT_NE(error("showPLL 0", cores + "\n").find("the end of the row"), std::string::npos);
  ConfigText other = config_;
  other.cores[0].serDesType = "OTHER";
  EXPECT_EQ(std::get<std::vector<PllRegisters>>(parseOutput("showPLL 0", text, other))[0].serDesType, "TYPE-2");
  other.cores.clear();
  EXPECT_EQ(std::get<std::vector<PllRegisters>>(parseOutput("showPLL 0", text, other))[0].serDesType, "TYPE-2");
}

// A table by port with the last column of its head once more.
std::string withColumnAgain(const std::string& text, const std::string& linkCell) {
  std::string result;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    const bool inHead = line.starts_with("===") || line.starts_with("ASIC port") || line.starts_with("user port");
    const bool name = line.starts_with("running rate") || line.starts_with("media type");
    if (inHead || name) line += line.substr(line.size() - 5);
    if (line.starts_with("link num")) line += linkCell;
    result += line + "\n";
  }
  return result;
}

TEST_F(ParseTest, HeadsCountLinks) {
  const std::string text = run("showSlew 6").out;
  EXPECT_NE(error("showSlew 6", withColumnAgain(text, "   4 ")), "no error");
  EXPECT_NE(error("showSlew 5", withColumnAgain(run("showSlew 5").out, "   2 ")), "no error");
  const std::string head = run("showSlew 5").out;
  const std::size_t user = head.find("\nuser port") + 1;
  EXPECT_NE(
      error("showSlew 6", std::string(text).replace(text.find("\nuser port") + 1, 25, head.substr(user, 24) + " ")),
      "no error");
  EXPECT_NE(error("showSlew 6", std::string(text).replace(text.find("\nuser port") + 1 + 20, 5, "  99 ")), "no error");
}

// The text whose row has its last cell so many times.
std::string withLastCell(std::string text, const std::string& label, int times) {
  const std::size_t end = text.find('\n', text.find("\n" + label) + 1);
  std::string cells;
  for (int i = 0; i < times; ++i)
    cells += text.substr(end - 5, 5);
  return text.replace(end - 5, 5, cells);
}

TEST_F(ParseTest, RowsHaveACellPerLink) {
  const std::string slew = run("showSlew 0 1").out;
  EXPECT_NE(error("showSlew 0 1", withLastCell(slew, "slew rate", 0)).find("columns and 1 cells"), std::string::npos);
  const std::string vga = run("showVGA 0").out;
  EXPECT_EQ(logError(vga, {.command = "showVGA 0"}), "no error");
  EXPECT_NE(logError(vga, {.command = "showVGA gl"}).find("showConfig tells"), std::string::npos);
  std::string wide = vga;
  for (const char* label : {"pole", "peak", "amax"})
    wide = withLastCell(wide, label, 5);
  EXPECT_NE(logError(wide, {.command = "showVGA 0"}).find("a port with 5 receive links"), std::string::npos);
  EXPECT_NE(error("showVGA 0", wide).find("not as many as the topology has"), std::string::npos);
  EXPECT_NE(logError(wide, {.configs = {config_}}).find("not as many as the topology has"), std::string::npos);
  std::string narrow = run("showVGA 6").out;
  for (const char* label : {"pole", "peak", "amax"})
    narrow = withLastCell(narrow, label, 0);
  EXPECT_NE(error("showVGA 6", narrow).find("not as many as the topology has"), std::string::npos);
  platform.ports[0].rx.linkCount = 0;
  discover();
  EXPECT_EQ(logError(run("showVGA 0").out), "no error");
}

// Logs.

// What the tool prints for a line, its status message included.
std::string answerTo(const std::string& line) {
  const std::string text = runStream(line + "\n");
  return text.substr(0, text.size() - 2);  // the end of the stream has a message too
}

// A terminal's log of these lines.
std::string typescript(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines)
    text += "serdes: " + line + "\n" + answerTo(line);
  std::string log;
  for (const char c : text)
    log += c == '\n' ? std::string("\r\n") : std::string(1, c);
  return log;
}

std::vector<std::string> kindsOf(const std::vector<ParsedAnswer>& answers) {
  std::vector<std::string> kinds;
  for (const ParsedAnswer& answer : answers)
    kinds.push_back(answer.status == CMD_OK ? kindName(answer.records) : statusMessage(answer.status));
  return kinds;
}

class LogTest : public ParseTest {
 protected:
  static std::string start() {
    return recording::printedBy([] { (void)openSerdes(0, nullptr); }) + "\n";
  }
};

TEST_F(LogTest, AScriptsOutputIsReadWithoutItsCommands) {
  const std::string text = start() + runStream(
                                         "showFFE 0\n# nothing\nbogus\nsetFFE FFE2 1 2 3 4 5 0\nreadRx 6 1 2\n"
                                         "showConfig\nshowVGA 6\nsetAsicNum 1\nhelp\nsetRate ?\nexit\n");
  const auto answers = parseLog(text, {});
  EXPECT_EQ(kindsOf(answers),
            (std::vector<std::string>{"start", "ffe", "none", "unknown command", "none", "rx_register", "config", "vga",
                                      "cores", "commands", "command_help", "none"}));
  EXPECT_EQ(answers[3].place.line, 44U);
  EXPECT_EQ(answers[1].asic, 0U);
  EXPECT_EQ(answers[10].asic, 1U);
}

TEST_F(LogTest, OnAPipeAnswersFollowPrompts) {
  interactive = true;
  const std::string text = start() + runStream("showFFE 0\nreadRx 6 1 2\n\nbogus\ngetTest 0 0 0\nshowPLL 1\n");
  const auto answers = parseLog(text, {});
  EXPECT_EQ(kindsOf(answers), (std::vector<std::string>{"start", "ffe", "rx_register", "none", "unknown command",
                                                        "test_status", "pll_registers", "none"}));
  EXPECT_EQ(answers[1].command, "");
}

TEST_F(LogTest, OnATerminalCommandsAreEchoed) {
  const std::string text = typescript({"showFFE 0", "READRX 6 1 2", "", "  # only a comment", "bogus 1", "gt 0 0x0 4",
                                       "showVGA 6", "showRx 30", "setRate ?"});
  const auto answers = parseLog(text + "serdes: exit\r\n\r\n\r\n", {});
  EXPECT_EQ(parseLog(text + "serdes: ", {}).size(), answers.size() - 1);
  EXPECT_EQ(kindsOf(answers), (std::vector<std::string>{"ffe", "rx_register", "none", "none", "unknown command",
                                                        "test_status", "vga", "rx_registers", "command_help", "none"}));
  EXPECT_EQ(answers[1].command, "READRX 6 1 2");
  EXPECT_EQ(std::get<std::vector<TestStatus>>(answers[5].records)[0].option, 4);
}

TEST_F(LogTest, EachPassOfALoopIsAnAnswer) {
  const std::string value = run("readRx 6 1 2").out;
  const std::string table = run("showFFE 0").out;
  const std::string passes = value + "That is 1 passes.\n\n" + value + "That is 2 passes.\n";
  const std::string typed =
      "serdes: loop readRx 6 1 2\n" + value + "That is 1 passes. To stop looping, enter <cr>.\n\n\n\nserdes: ";
  EXPECT_EQ(kindsOf(parseLog(passes + "\n\n" + value + "\n\n", {})),
            (std::vector<std::string>{"rx_register", "rx_register", "rx_register"}));
  EXPECT_EQ(kindsOf(parseLog(typed, {})), (std::vector<std::string>{"rx_register"}));
  EXPECT_EQ(kindsOf(parseLog(table + "That is 1 passes.\n\n" + table + "That is 2 passes.\n\n\n", {})),
            (std::vector<std::string>{"ffe", "ffe"}));
  EXPECT_EQ(kindsOf(parseLog(table + "That is 1 passes.\n\nerror during command execution\n\n" + table, {})),
            (std::vector<std::string>{"ffe", "error during command execution", "ffe"}));
  const std::string help = run("setRate ?").out;
  EXPECT_EQ(kindsOf(parseLog(help + "That is 1 passes.\n\ninvalid command parameter\n\n", {})),
            (std::vector<std::string>{"command_help", "invalid command parameter"}));
  EXPECT_EQ(kindsOf(parseLog("That is 1 passes.\n\nThat is 2 passes.\nThat is 1 passes.\n\n\n", {})),
            (std::vector<std::string>{"none", "none"}));
}

TEST_F(LogTest, StartsThatFailLeaveNoTopology) {
  platform.fail("GetPortHwConfig", -3, 2);
  const std::string text = start() + runStream("showVGA 0\n");
  const auto error = logError(text, {.configs = {config_}});
  EXPECT_NE(error.find("showConfig tells"), std::string::npos) << error;
  platform.fail("AsicCtlOpen", -3);
  const auto answers = parseLog(start(), {});
  ASSERT_EQ(answers.size(), 1U);
  EXPECT_EQ(answers[0].status, CMD_EXEC_ERROR);
  EXPECT_EQ(answers[0].complaint, "openSerdes: serdes err -3");
}

TEST_F(LogTest, ComplaintsGoWithTheirStatus) {
  platform.fail("GetSerDesTxFFE", -7);
  const auto answers = parseLog(runStream("showFFE 0\nshowFFE 0\n"), {});
  ASSERT_EQ(answers.size(), 3U);
  EXPECT_EQ(answers[0].complaint, "showFFECmdHandler: serdes err -7");
  EXPECT_EQ(answers[0].status, CMD_EXEC_ERROR);
  EXPECT_STREQ(kindName(answers[1].records), "ffe");
  EXPECT_NE(logError("showFFECmdHandler: serdes err -7\n\n\n"), "no error");
  EXPECT_NE(logError("showFFECmdHandler: serdes err 7\nerror during command execution\n\n"), "no error");
}

TEST_F(LogTest, SelectionsThatFailLeaveNoTopology) {
  const std::string known = start() + runStream("showConfig\n");
  const std::string refusal = "error during command execution\n\n";
  const std::string table = run("showVGA 0").out + "\n\n";
  EXPECT_EQ(logError(known + table), "no error");
  for (const std::string& failure :
       {"setAsicNumCmdHandler: serdes err -3\n" + refusal, "serdes: setAsicNum 1\n" + refusal,
        "serdes: showFFE 0\n" + refusal + "serdes: san 1\n" + refusal}) {
    EXPECT_NE(logError(known + failure + table).find("showConfig tells"), std::string::npos) << failure;
  }
  EXPECT_EQ(logError(known + "serdes: showFFE 0\n" + refusal + "serdes: showVGA 0\n" + table), "no error");
}

TEST_F(LogTest, ATextMayEndWithItsOutput) {
  const auto failed = parseLog("showFFECmdHandler: serdes err -7\n", {});
  EXPECT_EQ(failed[0].status, CMD_EXEC_ERROR);
  EXPECT_EQ(parseLog(run("readRx 6 1 2").out, {})[0].status, CMD_OK);
  EXPECT_EQ(parseLog("serdes: " + run("readRx 6 1 2").out + "\n\n" + start(), {}).size(), 2U);
}

TEST_F(LogTest, ALoopOverHelpGoesOn) {
  const std::string help = run("setRate ?").out;
  EXPECT_EQ(kindsOf(parseLog(help + "That is 1 passes.\n\n" + help + "\n\n", {})),
            (std::vector<std::string>{"command_help", "command_help"}));
  const std::string value = run("readRx 6 1 2").out;
  EXPECT_EQ(kindsOf(parseLog(value + "That is 1 passes. To stop looping, enter <cr>.\n\n\n\n", {})),
            (std::vector<std::string>{"rx_register"}));
}

TEST_F(LogTest, EachAsicHasItsTopology) {
  const std::string first = start() + runStream("showConfig\nsetAsicNum 1\n");
  platform.ports[6].rx.linkCount = 2;
  const std::string second = runStream("setAsicNum 1\nshowConfig\nshowVGA 6\n");
  platform.ports[6].rx.linkCount = 4;
  const std::string third = runStream("setAsicNum 0\nshowVGA 6\n");
  const auto answers = parseLog(first + second + third, {});
  std::vector<std::size_t> links;
  for (const ParsedAnswer& answer : answers) {
    if (const auto* vga = std::get_if<std::vector<Vga>>(&answer.records)) links.push_back(vga->size());
  }
  EXPECT_EQ(links, (std::vector<std::size_t>{2, 4}));
}

TEST_F(LogTest, WhatIsNoTextOfTheToolIsRefused) {
  EXPECT_NE(logError(""), "no error");
  EXPECT_NE(logError("hello\n"), "no error");
  EXPECT_NE(logError("\n"), "no error");
  EXPECT_NE(logError("status: 1\n\n\nx"), "no error");
  EXPECT_EQ(logError(std::string("status: 1\n\n\n\0", 13)),
            "standard input, line 4, column 1: text was expected before '?'");
  EXPECT_NE(logError(configText_, {.command = "showRate all"}), "no error");
}

}  // namespace
}  // namespace serdesctl
