// What commands print besides tables by port, and which command prints what.
#include "serdesctl/tables/answer_text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <iterator>
#include <type_traits>
#include <utility>

#include "arguments/argument_parsers.h"
#include "commands/dfe_stats.h"
#include "commands/diagnostics.h"
#include "commands/discovery.h"
#include "commands/pll.h"
#include "commands/port_rate.h"
#include "commands/registers.h"
#include "commands/rx_cache.h"
#include "commands/rx_eq.h"
#include "commands/show_config.h"
#include "commands/tx_cache.h"
#include "commands/tx_eq.h"
#include "serdesctl/tables/cells.h"
#include "serdesctl/tables/port_tables.h"
#include "shell/help_and_loop.h"
#include "topology/serdes_topology.h"

namespace serdesctl {
namespace {

constexpr std::uint32_t kMostRegister = 0xFFFF;

// Registers of the PLLs.

struct PllHead {
  std::string serDesType;
  std::vector<std::uint32_t> cores;
};

PllHead readPllHead(TextCursor& text) {
  PllHead head;
  std::size_t count = 0;
  text.expect(padded(""));
  for (; text.skip("core "); ++count) {
    if (count == kMaxCores) text.fail("the end of the row");
  }
  text.expect("\n");
  TextCursor cells = text;
  std::string_view line = text.line();
  const std::size_t width = count * kBlankCell.size();
  if (line.size() < padded("").size() + width) cells.fail("the name of a SerDes type and the cores");
  const std::string name(line.substr(0, line.size() - width));
  head.serDesType = trimmed(name);
  if (!name.ends_with(' ')) cells.fail("the name of a SerDes type");
  cells.expect(name);
  for (std::size_t i = 0; i < count; ++i) {
    const TextCursor before = cells;
    head.cores.push_back(cells.unsignedNumber());
    if (head.cores.back() >= kMaxCores || (i > 0 && head.cores[i] <= head.cores[i - 1])) before.fail("another core");
    cells.expect(head.cores.back() < 10 ? "    " : "   ");
  }
  text.expect("=================== ");
  for (std::size_t i = 0; i < count; ++i)
    text.expect("==== ");
  text.expect("\n");
  return head;
}

bool atPllTable(const TextCursor& text) {
  return text.startsWith(padded("") + "core ");
}

void readPllTable(TextCursor& text, AnswerText& answer) {
  const PllHead head = readPllHead(text);
  std::vector<PllRegisters> records;
  for (const std::uint32_t core : head.cores)
    records.push_back({.asic = {}, .core = core, .serDesType = head.serDesType, .registers = {}});
  for (unsigned address = 0; !text.startsWith("\n"); ++address) {
    std::array<char, 32> label;
    std::snprintf(label.data(), label.size(), "PLL register 0x%02x   ", address);
    if (address == kMaxRegisters) text.fail("the end of the table");
    text.expect(label.data());
    for (PllRegisters& record : records)
      record.registers.push_back(registerCell(text));
    text.expect("\n");
  }
  text.expect("\n");
  addRecords(text, std::move(records), answer);
}

// Single values.

std::uint16_t readRegisterValue(TextCursor& text) {
  text.expect("= ");
  const TextCursor before = text;
  const std::uint32_t value = text.hexNumber(4);
  if (value > kMostRegister) before.fail("a register of 16 bits");
  text.expect(" \n");
  return static_cast<std::uint16_t>(value);
}

// "Port 4 (user port 12), link 0 at Rx address 0x03= 0x001d "
template <SerDesLinkType kSide>
void readLinkRegister(TextCursor& text, RegisterValue<kSide> record, AnswerText& answer) {
  text.expect(" address ");
  record.address = text.hexNumber(2);
  record.value = readRegisterValue(text);
  addRecords<RegisterValue<kSide>>(text, {record}, answer);
}

void readLinkRegister(TextCursor& text, AnswerText& answer) {
  text.expect("Port ");
  const std::int32_t port = text.number();
  text.expect(" (user port ");
  const TextCursor before = text;
  const std::int32_t user = text.number();
  if (user < 0 || user > kNoUserPort) before.fail("a user port");
  const auto userPort = user == kNoUserPort ? std::nullopt : std::optional(static_cast<std::uint32_t>(user));
  text.expect("), link ");
  const std::int32_t link = text.number();
  text.expect(" at ");
  if (text.skip("Rx")) {
    readLinkRegister(text, RxRegister{.asic = {}, .port = port, .userPort = userPort, .link = link}, answer);
  } else {
    text.expect("Tx");
    readLinkRegister(text, TxRegister{.asic = {}, .port = port, .userPort = userPort, .link = link}, answer);
  }
}

// "Core ID 1 at PLL address 0x07= 0x00ff "
void readPllRegister(TextCursor& text, AnswerText& answer) {
  PllRegister record;
  text.expect("Core ID ");
  record.core = text.number();
  text.expect(" at PLL address ");
  record.address = text.hexNumber(2);
  record.value = readRegisterValue(text);
  addRecords<PllRegister>(text, {record}, answer);
}

std::optional<std::int32_t> numberWord(const Words& words, std::size_t index) {
  std::uint32_t number = 0;
  if (index >= words.size() || parseNumber(words[index].c_str(), number) != CMD_OK) return std::nullopt;
  return static_cast<std::int32_t>(number);
}

void readTestStatus(TextCursor& text, const Words& words, AnswerText& answer) {
  TestStatus record = {
      .asic = {}, .port = numberWord(words, 1), .link = numberWord(words, 2), .option = numberWord(words, 3)};
  text.expect("status: ");
  record.status = text.number();
  text.expect("\n");
  addRecords<TestStatus>(text, {record}, answer);
}

// Help.

std::string listed(const char* name, const char* arguments, const char* shortcut) {
  std::array<char, 256> line;
  std::snprintf(line.data(), line.size(), "%-20s %-50s %s", name, arguments, shortcut);
  return line.data();
}

std::string listHead() {
  return listed("command             ", "command arguments  ", "shortcut/alt command") + "\n";
}

void readCommandList(TextCursor& text, AnswerText& answer) {
  text.expect(listHead());
  text.expect(std::string(20, '=') + " " + std::string(50, '=') + " " + std::string(20, '=') + "\n");
  std::vector<CommandRow> records;
  for (const CmdTableEntry* row = cmdTable.data(); row->name != nullptr; ++row) {
    text.expect(listed(row->name, row->argHelp, row->shortcut) + " \n");
    records.push_back({.name = row->name, .arguments = row->argHelp, .shortcut = row->shortcut});
  }
  text.expect("\nNOTES:\n");
  while (text.startsWith(" *"))
    (void)text.line();
  addRecords(text, std::move(records), answer);
}

std::string helpText(const CmdTableEntry& row) {
  return std::string("\n") + row.description + "\n\n" + row.example + "\n" + row.exampleNote + "\n";
}

// The command whose help begins here; null where none does.
const CmdTableEntry* commandOfHelp(const TextCursor& text) {
  for (const CmdTableEntry* row = cmdTable.data(); row->name != nullptr; ++row) {
    if (text.startsWith(helpText(*row))) return row;
  }
  return nullptr;
}

void readCommandHelp(TextCursor& text, const CmdTableEntry& row, AnswerText& answer) {
  text.expect(helpText(row));
  addRecords<CommandHelp>(text,
                          {{.name = row.name,
                            .arguments = row.argHelp,
                            .shortcut = row.shortcut,
                            .description = row.description,
                            .example = row.example,
                            .note = row.exampleNote}},
                          answer);
}

// "setFFECmdHandler: serdes err -5"; empty, and nothing consumed, where there is none.
std::string readComplaint(TextCursor& text) {
  constexpr std::string_view kMiddle = ": serdes err ";
  const std::size_t mark = text.mark();
  const std::string_view rest = text.rest();
  const auto isName = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; };
  const auto length = static_cast<std::size_t>(std::find_if_not(rest.begin(), rest.end(), isName) - rest.begin());
  if (length == 0 || !rest.substr(length).starts_with(kMiddle)) return "";
  text.expect(rest.substr(0, length + kMiddle.size()));
  const TextCursor before = text;
  if (text.number() >= 0) before.fail("a negative number");
  std::string complaint(rest.substr(0, text.mark() - mark));
  text.expect("\n");
  return complaint;
}

bool readRecords(TextCursor& text, const Words& words, AnswerText& answer) {
  if (atTableHead(text)) {
    readPortTables(text, words, answer);
  } else if (atPllTable(text)) {
    while (atPllTable(text))
      readPllTable(text, answer);
  } else if (text.startsWith("Port ")) {
    readLinkRegister(text, answer);
  } else if (text.startsWith("Core ID ")) {
    readPllRegister(text, answer);
  } else if (text.startsWith("status: ")) {
    readTestStatus(text, words, answer);
  } else if (text.startsWith(listHead())) {
    readCommandList(text, answer);
  } else if (const CmdTableEntry* const row = commandOfHelp(text)) {
    readCommandHelp(text, *row, answer);
  } else {
    return false;
  }
  return true;
}

bool atConfig(const TextCursor& text) {
  const std::string_view rest = text.rest();
  return text.startsWith("current asicNum:") && rest.substr(rest.find('\n') + 1).starts_with("\nportConfig:\n");
}

// Which command prints what.

template <typename Held, std::size_t kIndex = 0>
constexpr std::size_t indexOf() {
  if constexpr (std::is_same_v<std::variant_alternative_t<kIndex, Records>, Held>) {
    return kIndex;
  } else {
    return indexOf<Held, kIndex + 1>();
  }
}

template <typename Record>
constexpr std::size_t kTable = indexOf<std::vector<Record>>();

struct CommandOutput {
  CmdHandler handler;
  std::size_t kind;     // of Records
  bool byType = false;  // a table per SerDes type: none for a list that selects nothing
};

constexpr std::array<CommandOutput, 24> kOutputs = {{
    {setAsicNumCmdHandler, indexOf<DiscoveryText>()},
    {showConfigCmdHandler, indexOf<ConfigText>()},
    {showRateCmdHandler, kTable<Rate>},
    {showFFECmdHandler, kTable<Ffe>},
    {showSlewCmdHandler, kTable<Slew>},
    {showTxParamsCmdHandler, kTable<TxParams>},
    {showRxParamsCmdHandler, kTable<RxParams>},
    {showTxParamsCacheCmdHandler, kTable<TxCache>},
    {showTxParamsRawCmdHandler, kTable<TxCacheRaw>},
    {eshowTxParamsCacheCmdHandler, kTable<EthernetTxCache>},
    {showRxParamsCacheCmdHandler, kTable<RxCache>},
    {showRxParamsRawCmdHandler, kTable<RxCacheRaw>},
    {eshowRxParamsCacheCmdHandler, kTable<EthernetRxCache>},
    {showDFECmdHandler, kTable<Dfe>},
    {showVGACmdHandler, kTable<Vga>},
    {showDFEStatsCmdHandler, kTable<DfeStats>, true},
    {showTxRegistersCmdHandler, kTable<TxRegisters>, true},
    {showRxRegistersCmdHandler, kTable<RxRegisters>, true},
    {showPLLRegistersCmdHandler, kTable<PllRegisters>, true},
    {readTxRegisterCmdHandler, kTable<TxRegister>},
    {readRxRegisterCmdHandler, kTable<RxRegister>},
    {readPLLRegisterCmdHandler, kTable<PllRegister>},
    {getTestCmdHandler, kTable<TestStatus>},
    {helpCmdHandler, kTable<CommandRow>},
}};

// What the command prints when it succeeds.
CommandOutput outputOf(const Words& words) {
  const CommandOutput nothing = {.handler = nullptr, .kind = indexOf<std::monostate>()};
  const CmdTableEntry* const row = findCommand(words.at(0));
  if (row == nullptr) return nothing;
  if (asksForHelp(words)) return {.handler = row->handler, .kind = kTable<CommandHelp>};
  const auto found =
      std::find_if(kOutputs.begin(), kOutputs.end(), [&](const CommandOutput& o) { return o.handler == row->handler; });
  return found != kOutputs.end() ? *found : nothing;
}

template <std::size_t kIndex = 0>
Records emptyRecords(std::size_t kind) {
  if constexpr (kIndex < std::variant_size_v<Records>) {
    return kind == kIndex ? Records(std::in_place_index<kIndex>) : emptyRecords<kIndex + 1>(kind);
  } else {
    return {};
  }
}

// Places.

// Puts records of tables by port where the heads say; a table without rows gets records without values.
template <typename... Groups>
void place(std::vector<LinkRecord<Groups...>>& records, const std::vector<TableHead>& heads,
           const TableContext& context) {
  std::vector<LinkRecord<Groups...>> placed;
  auto next = std::make_move_iterator(records.begin());
  for (const TableHead& head : heads) {
    for (Link& link : placesOfCells(head, context)) {
      placed.emplace_back(head.cells ? *next++ : LinkRecord<Groups...>{});
      static_cast<Link&>(placed.back()) = std::move(link);
    }
  }
  records = std::move(placed);
}

// A title's own blanks at its end are the topology's to know.
void place(std::vector<PllRegisters>& records, const std::vector<TableHead>&, const TableContext& context) {
  for (PllRegisters& record : records) {
    record.asic = context.config != nullptr ? std::optional(context.config->asic) : context.asic;
    if (context.config == nullptr || record.core >= context.config->cores.size()) continue;
    const std::string& name = context.config->cores[record.core].serDesType;
    if (trimmed(name) == record.serDesType) record.serDesType = name;
  }
}

template <typename Other>
void place(Other& records, const std::vector<TableHead>&, const TableContext& context) {
  const auto asic = context.config != nullptr ? std::optional(context.config->asic) : context.asic;
  if constexpr (requires { records.front().asic; }) {
    for (auto& record : records)
      record.asic = asic;
  }
}

}  // namespace

AnswerText readAnswerText(TextCursor& text, const Words& words) {
  AnswerText answer;
  if (atConfig(text)) {
    answer.records = readConfig(text);
  } else if (text.startsWith("asicNum:") || text.startsWith("current asicNum:")) {
    answer.records = readDiscovery(text);
  } else {
    (void)readRecords(text, words, answer);
  }
  const auto* const cores = std::get_if<DiscoveryText>(&answer.records);
  const bool mayComplain = answer.records.index() == 0 || (cores != nullptr && !cores->complete);
  if (mayComplain) answer.complaint = readComplaint(text);
  return answer;
}

bool printsRecords(const Words& words) {
  return outputOf(words).kind != 0;
}

void requireOutputOf(const Words& words, const TextCursor& text, AnswerText& answer) {
  const CommandOutput expected = outputOf(words);
  if (answer.records.index() == expected.kind) return;
  if (expected.byType && answer.records.index() == 0) {
    answer.records = emptyRecords(expected.kind);
  } else {
    throw ParseError(text.name(), text.place(),
                     std::string(kKindNames[answer.records.index()]) + " is not what the command prints");
  }
}

Records placedRecords(AnswerText answer, const TableContext& context) {
  std::visit([&](auto& records) { place(records, answer.heads, context); }, answer.records);
  return std::move(answer.records);
}

}  // namespace serdesctl
