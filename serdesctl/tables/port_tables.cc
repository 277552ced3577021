// The rows of the tables by port, as their commands print them.
#include "serdesctl/tables/port_tables.h"

#include <array>
#include <cstdio>
#include <iterator>
#include <optional>
#include <span>

#include "arguments/keywords.h"
#include "commands/dfe_stats.h"
#include "commands/registers.h"
#include "display/name_tables.h"
#include "serdesctl/tables/cells.h"
#include "topology/serdes_topology.h"

namespace serdesctl {
namespace {

constexpr std::array<ValueName, 1> kYes = {{{"yes"}}};
constexpr const char* kUnknown = "UNK";

template <typename Record>
struct Row {
  const char* label;
  void (*read)(TextCursor& text, Record& record);
  std::size_t width = 19;  // of the label's column
};

template <typename Record>
constexpr std::array<Row<Record>, 2> kRateRows = {{
    {"config rate (gb/s)", [](TextCursor& t, Record& r) { r.configRate = rightNameCell(t, rateNames, "INV"); }, 18},
    {"stream enable", [](TextCursor& t, Record& r) { r.streamEnabled = rightNameCell(t, kYes, "no") == "yes"; }, 18},
}};

// Caches hold whole numbers, of the settings in use only 8 bits exist.
template <typename Record>
constexpr bool kIsCache = requires(Record record) {
  record.rate;
};

using NumberReader = std::int32_t (*)(TextCursor& text);
template <typename Record>
constexpr NumberReader kPowerCell = kIsCache<Record> ? numberCell : byteCell;
template <typename Record>
constexpr NumberReader kSettingCell = kIsCache<Record> ? numberCell : signedByteCell;
template <typename Record>
constexpr NumberReader kHexSettingCell = kIsCache<Record> ? hexCell : signedByteHexCell;

template <typename Record>
constexpr std::array<Row<Record>, 6> kFfeRows = {{
    {"ffe mode", [](TextCursor& t, Record& r) { r.ffeMode = leftNameCell(t, ffeModeNames, kUnknown); }},
    {"k (power)", [](TextCursor& t, Record& r) { r.k = kPowerCell<Record>(t); }},
    {"c0 (precursor)", [](TextCursor& t, Record& r) { r.c0 = kSettingCell<Record>(t); }},
    {"c1 (main)", [](TextCursor& t, Record& r) { r.c1 = kSettingCell<Record>(t); }},
    {"c2 (postcursor)", [](TextCursor& t, Record& r) { r.c2 = kSettingCell<Record>(t); }},
    {"c3 (postcursor)", [](TextCursor& t, Record& r) { r.c3 = kSettingCell<Record>(t); }},
}};

std::optional<std::int32_t> slewCell(TextCursor& text) {
  const std::string name = shortNameCell(text, slewRateNames, kUnknown);
  return name == kUnknown ? std::nullopt : std::optional(std::stoi(name));
}

template <typename Record>
constexpr std::array<Row<Record>, 1> kSlewRows = {{
    {"slew rate (ps)", [](TextCursor& t, Record& r) { r.slewPs = slewCell(t); }, 18},
}};

template <typename Record>
constexpr std::array<Row<Record>, 7> kTxRawRows = {{
    {"Power", [](TextCursor& t, Record& r) { r.power = numberCell(t); }},
    {"Slew", [](TextCursor& t, Record& r) { r.slew = numberCell(t); }},
    {"Mode", [](TextCursor& t, Record& r) { r.mode = numberCell(t); }},
    {"P0", [](TextCursor& t, Record& r) { r.p[0] = numberCell(t); }},
    {"P1", [](TextCursor& t, Record& r) { r.p[1] = numberCell(t); }},
    {"P2", [](TextCursor& t, Record& r) { r.p[2] = numberCell(t); }},
    {"P3", [](TextCursor& t, Record& r) { r.p[3] = numberCell(t); }},
}};

template <typename Record>
constexpr std::array<Row<Record>, 2> kEthernetTxRows = {{
    {"k (power)", [](TextCursor& t, Record& r) { r.k = numberCell(t); }},
    {"p0 (pre-emphasis)", [](TextCursor& t, Record& r) { r.preEmphasis = numberCell(t); }},
}};

template <typename Record>
constexpr std::array<Row<Record>, 1> kDfeModeRows = {{
    {"dfe mode", [](TextCursor& t, Record& r) { r.dfeMode = leftNameCell(t, dfeModeNames, kUnknown); }},
}};

template <typename Record>
constexpr std::array<Row<Record>, 3> kVgaRows = {{
    {"pole", [](TextCursor& t, Record& r) { r.pole = kSettingCell<Record>(t); }},
    {"peak", [](TextCursor& t, Record& r) { r.peak = kSettingCell<Record>(t); }},
    {"amax", [](TextCursor& t, Record& r) { r.amax = kHexSettingCell<Record>(t); }},
}};

template <typename Record>
constexpr std::array<Row<Record>, 5> kRxRawRows = {{
    {"Mode", [](TextCursor& t, Record& r) { r.mode = numberCell(t); }},
    {"P0", [](TextCursor& t, Record& r) { r.p[0] = numberCell(t); }},
    {"P1", [](TextCursor& t, Record& r) { r.p[1] = numberCell(t); }},
    {"P2", [](TextCursor& t, Record& r) { r.p[2] = numberCell(t); }},
    {"P3", [](TextCursor& t, Record& r) { r.p[3] = numberCell(t); }},
}};

template <typename Record>
constexpr std::array<Row<Record>, 2> kEthernetRxRows = {{
    {"cdr mode", [](TextCursor& t, Record& r) { r.cdrMode = numberCell(t); }},
    {"eq mode", [](TextCursor& t, Record& r) { r.eqMode = numberCell(t); }},
}};

template <typename Record>
constexpr std::array<Row<Record>, 5> kStatsRows = {{
    {"Ap", [](TextCursor& t, Record& r) { r.ap = signedHalfwordCell(t); }},
    {"Amin", [](TextCursor& t, Record& r) { r.amin = signedHalfwordCell(t); }},
    {"An", [](TextCursor& t, Record& r) { r.an = signedHalfwordCell(t); }},
    {"Decode Errors", [](TextCursor& t, Record& r) { r.decodeErrors = countCell(t); }},
    {"CRC Errors", [](TextCursor& t, Record& r) { r.crcErrors = countCell(t); }},
}};

// A table's body.
struct Body {
  bool gap = false;     // an empty line in front of the first row
  bool blanks = false;  // columns may be blank, then in every row
};

// Reads rows that have equally many cells.
template <typename Record>
class Rows {
 public:
  Rows(TextCursor& text, Body body) : text_(text), body_(body), newline_(body.gap) {}

  bool beginWith(const char* label, std::size_t width) const {
    return text_.startsWith((body_.gap ? "\n" : "") + padded(label, width));
  }

  // read(text, record) reads a cell.
  template <typename Read>
  void row(const char* label, std::size_t width, Read read) {
    if (newline_) text_.expect("\n");
    text_.expect(padded(label, width));
    std::size_t column = 0;
    for (; !text_.atEnd() && !text_.startsWith("\n"); ++column) {
      if (!newlines_) addColumn();
      if (column == records_.size()) text_.fail("the end of the row");
      cell(column, read);
    }
    if (column != records_.size()) text_.fail("a cell for each of " + std::to_string(records_.size()) + " links");
    newline_ = newlines_ = true;
  }

  template <std::size_t kRows>
  void rows(const std::array<Row<Record>, kRows>& rows) {
    for (const Row<Record>& r : rows)
      row(r.label, r.width, r.read);
  }

  std::vector<Record> take() {
    text_.expect("\n");
    return std::move(records_);
  }

 private:
  void addColumn() {
    if (records_.size() == kMaxPorts * kMaxLinks) text_.fail("the end of the row");
    records_.emplace_back();
    blank_.push_back(body_.blanks && text_.startsWith(kBlankCell));
  }

  template <typename Read>
  void cell(std::size_t column, Read read) {
    if (blank_[column]) {
      text_.expect(kBlankCell);
    } else {
      read(text_, records_[column]);
    }
  }

  TextCursor& text_;
  Body body_;
  bool newline_;           // in front of the next row
  bool newlines_ = false;  // the first row has been read
  std::vector<Record> records_;
  std::vector<bool> blank_;
};

// The words of a cache table's title.
struct CacheWords {
  std::string interface;
  std::string rate;
};

template <typename Record>
void setCacheWords(Record& record, const CacheWords& words) {
  if constexpr (requires { record.interface; }) record.interface = words.interface;
  if constexpr (requires { record.rate; }) record.rate = words.rate;
}

// Reads a body of these rows; false, and nothing consumed, when it begins otherwise.
template <typename Record, std::size_t kFirst, typename... More>
bool readRows(TextCursor& text, Body body, const CacheWords& words, AnswerText& answer,
              const std::array<Row<Record>, kFirst>& first, const More&... more) {
  Rows<Record> rows(text, body);
  if (!rows.beginWith(first[0].label, first[0].width)) return false;
  rows.rows(first);
  (rows.rows(more), ...);
  std::vector<Record> records = rows.take();
  for (Record& record : records)
    setCacheWords(record, words);
  answer.heads.back().cells = records.size();
  addRecords(text, std::move(records), answer);
  return true;
}

// What stands in a title for words of the command.
enum class TitleWords { kNone, kRate, kInterfaceAndRate };

// A table whose title is its command's. Several may have the same title, and several the same rows.
struct Form {
  const char* title;
  TitleWords words = TitleWords::kNone;
  const char* betweenWords = nullptr;
  SerDesLinkType side = SERDES_LINK_TX;
  bool (*read)(TextCursor& text, const CacheWords& words, AnswerText& answer) = nullptr;
};

constexpr Body kPlain = {};
constexpr Body kAfterGap = {.gap = true};
constexpr Body kWithBlanks = {.blanks = true};

constexpr std::array<Form, 13> kForms = {{
    {.title = "show rate",
     .read = [](TextCursor& t, const CacheWords& w,
                AnswerText& a) { return readRows(t, kAfterGap, w, a, kRateRows<Rate>); }},
    {.title = "show FFE",
     .read = [](TextCursor& t, const CacheWords& w,
                AnswerText& a) { return readRows(t, kPlain, w, a, kFfeRows<Ffe>); }},
    {.title = "show slew",
     .read = [](TextCursor& t, const CacheWords& w,
                AnswerText& a) { return readRows(t, kAfterGap, w, a, kSlewRows<Slew>); }},
    {.title = "show tx params",
     .read = [](TextCursor& t, const CacheWords& w,
                AnswerText& a) { return readRows(t, kWithBlanks, w, a, kFfeRows<TxParams>, kSlewRows<TxParams>); }},
    {.title = "show tx cache for ",
     .words = TitleWords::kRate,
     .read = [](TextCursor& t, const CacheWords& w,
                AnswerText& a) { return readRows(t, kPlain, w, a, kFfeRows<TxCache>, kSlewRows<TxCache>); }},
    {.title = "show tx cache for ",
     .words = TitleWords::kRate,
     .read = [](TextCursor& t, const CacheWords& w,
                AnswerText& a) { return readRows(t, kAfterGap, w, a, kEthernetTxRows<EthernetTxCache>); }},
    {.title = "show tx cache for ",
     .words = TitleWords::kInterfaceAndRate,
     .betweenWords = " interface at rate ",
     .read = [](TextCursor& t, const CacheWords& w,
                AnswerText& a) { return readRows(t, kAfterGap, w, a, kTxRawRows<TxCacheRaw>); }},
    {.title = "show DFE",
     .side = SERDES_LINK_RX,
     .read = [](TextCursor& t, const CacheWords& w,
                AnswerText& a) { return readRows(t, kPlain, w, a, kDfeModeRows<Dfe>); }},
    {.title = "show VGA",
     .side = SERDES_LINK_RX,
     .read = [](TextCursor& t, const CacheWords& w,
                AnswerText& a) { return readRows(t, kPlain, w, a, kVgaRows<Vga>); }},
    {.title = "show rx params",
     .side = SERDES_LINK_RX,
     .read = [](TextCursor& t, const CacheWords& w,
                AnswerText& a) { return readRows(t, kWithBlanks, w, a, kDfeModeRows<RxParams>, kVgaRows<RxParams>); }},
    {.title = "show rx cache for ",
     .words = TitleWords::kRate,
     .side = SERDES_LINK_RX,
     .read = [](TextCursor& t, const CacheWords& w,
                AnswerText& a) { return readRows(t, kPlain, w, a, kDfeModeRows<RxCache>, kVgaRows<RxCache>); }},
    {.title = "show rx cache for ",
     .words = TitleWords::kRate,
     .side = SERDES_LINK_RX,
     .read = [](TextCursor& t, const CacheWords& w,
                AnswerText& a) { return readRows(t, kPlain, w, a, kEthernetRxRows<EthernetRxCache>); }},
    {.title = "show rx cache for ",
     .words = TitleWords::kInterfaceAndRate,
     .betweenWords = " interface and rate ",
     .side = SERDES_LINK_RX,
     .read = [](TextCursor& t, const CacheWords& w,
                AnswerText& a) { return readRows(t, kPlain, w, a, kRxRawRows<RxCacheRaw>); }},
}};

// The name of a rate that was typed in any way; nothing for another word.
std::optional<std::string> rateOfWord(const std::string& word) {
  port_speed_type rate{};
  if (parseRate(word.c_str(), rate) != CMD_OK) return std::nullopt;
  return rateName(rate);
}

std::optional<CacheWords> cacheWords(const std::string& words, const Form& form) {
  CacheWords result;
  std::size_t rateBegin = 0;
  if (form.words == TitleWords::kInterfaceAndRate) {
    const std::size_t between = words.find(form.betweenWords);
    CacheInterface interface {};
    if (between == std::string::npos) return std::nullopt;
    if (parseInterface(words.substr(0, between).c_str(), interface) != CMD_OK) return std::nullopt;
    result.interface = interfaceNames[interface].name;
    rateBegin = between + std::string_view(form.betweenWords).size();
  }
  const auto rate = rateOfWord(words.substr(rateBegin));
  if (!rate) return std::nullopt;
  result.rate = *rate;
  return result;
}

// The title as the tool makes it of the words of the command.
std::string titleOf(const Form& form, const Words& words) {
  return padded(form.title + (form.betweenWords == nullptr ? words[1] : words[1] + form.betweenWords + words[2]));
}

bool hasTitleWords(const Form& form, const Words& words) {
  return form.words != TitleWords::kNone && words.size() > (form.betweenWords == nullptr ? 1U : 2U);
}

// The words in a title of this form; nothing for another title, and for one of other words than the command's.
std::optional<CacheWords> matchTitle(const std::string& title, const Form& form, const Words& words) {
  if (hasTitleWords(form, words) && title != titleOf(form, words)) return std::nullopt;
  if (form.words == TitleWords::kNone) {
    return title == padded(form.title) ? std::optional(CacheWords{}) : std::nullopt;
  }
  if (!title.starts_with(form.title)) return std::nullopt;
  const std::string unpadded = trimmed(title);
  if (title != padded(unpadded) || unpadded.size() < std::string_view(form.title).size()) return std::nullopt;
  return cacheWords(unpadded.substr(std::string_view(form.title).size()), form);
}

// Reads the body of a table that has its command's title; false, and nothing consumed, for another one.
bool readFormed(TextCursor& text, const Words& words, AnswerText& answer) {
  for (const Form& form : kForms) {
    TableHead& head = answer.heads.back();
    const auto inTitle = matchTitle(head.title, form, words);
    head.side = form.side;
    if (inTitle && form.read(text, *inTitle, answer)) return true;
  }
  return false;
}

// Tables of one SerDes type each.

void readStatsRows(TextCursor& text, std::span<const char* const> taps, bool evenOdd, AnswerText& answer) {
  Rows<DfeStats> rows(text, kPlain);
  for (std::size_t i = 0; i < taps.size(); ++i) {
    rows.row(taps[i], 19,
             [&](TextCursor& t, DfeStats& r) { (evenOdd ? r.evenOddTaps[i] : r.taps[i]) = signedHalfwordCell(t); });
  }
  rows.rows(kStatsRows<DfeStats>);
  std::vector<DfeStats> records = rows.take();
  text.expect("\n");
  answer.heads.back().cells = records.size();
  addRecords(text, std::move(records), answer);
}

std::string registerLabel(SerDesLinkType side, unsigned address) {
  std::array<char, 32> label;
  std::snprintf(label.data(), label.size(), "%s Register 0x%02x    ", side == SERDES_LINK_RX ? "Rx" : "Tx", address);
  return label.data();
}

void readSeparator(TextCursor& text, std::size_t cells) {
  text.expect("------------------- ");
  for (std::size_t i = 0; i < cells; ++i)
    text.expect("---- ");
  text.expect("\n");
}

template <typename Record>
void readRegisterRow(TextCursor& text, unsigned address, std::vector<Record>& records) {
  std::size_t column = 0;
  for (; !text.atEnd() && !text.startsWith("\n"); ++column) {
    if (address == 0 && column < kMaxPorts * kMaxLinks) records.emplace_back();
    if (column == records.size()) text.fail("the end of the row");
    records[column].registers.push_back(registerCell(text));
  }
  if (column != records.size()) text.fail("a cell for each of " + std::to_string(records.size()) + " links");
  text.expect("\n");
}

template <SerDesLinkType kSide>
void readRegisterRows(TextCursor& text, AnswerText& answer) {
  std::vector<LinkRecord<RegisterValues<kSide>>> records;
  for (unsigned address = 0; !text.startsWith("\n"); ++address) {
    if (address == kMaxRegisters) text.fail("the end of the table");
    if (address != 0 && address % 4 == 0) readSeparator(text, records.size());
    text.expect(registerLabel(kSide, address));
    readRegisterRow(text, address, records);
  }
  text.expect("\n");
  answer.heads.back().cells = records.size();
  addRecords(text, std::move(records), answer);
}

// What can be said of a table without rows: in a dump an empty line ends it, and statistics that cannot be laid out end
// without one.
enum class Rowless { kNotSo, kDump, kStats };

Rowless readOfOneType(TextCursor& text, AnswerText& answer) {
  if (text.startsWith(padded(evenOddTapNames[0]))) {
    readStatsRows(text, evenOddTapNames, true, answer);
  } else if (text.startsWith(padded(tapNames[0]))) {
    readStatsRows(text, tapNames, false, answer);
  } else if (text.startsWith(registerLabel(SERDES_LINK_RX, 0))) {
    readRegisterRows<SERDES_LINK_RX>(text, answer);
  } else if (text.startsWith(registerLabel(SERDES_LINK_TX, 0))) {
    readRegisterRows<SERDES_LINK_TX>(text, answer);
  } else {
    return text.skip("\n") ? Rowless::kDump : Rowless::kStats;
  }
  return Rowless::kNotSo;
}

template <typename Record>
bool holds(const AnswerText& answer) {
  return std::holds_alternative<std::vector<Record>>(answer.records);
}

// Gives dumps without rows the kind of the others, or of the command.
void settleDump(const TextCursor& text, const Words& words, AnswerText& answer) {
  const CmdTableEntry* const row = words.empty() ? nullptr : findCommand(words[0]);
  if (holds<RxRegisters>(answer) || (row != nullptr && row->handler == showRxRegistersCmdHandler)) {
    addRecords<RxRegisters>(text, {}, answer);
  } else if (holds<TxRegisters>(answer) || (row != nullptr && row->handler == showTxRegistersCmdHandler)) {
    addRecords<TxRegisters>(text, {}, answer);
  } else {
    throw ParseError(text.name(), answer.heads.front().place,
                     "a table without rows may be of receive or of transmit registers: the command tells which");
  }
}

void readTablesOfOneType(TextCursor& text, const Words& words, AnswerText& answer) {
  bool emptyDump = false;
  for (;;) {
    const Rowless rowless = readOfOneType(text, answer);
    emptyDump = emptyDump || rowless == Rowless::kDump;
    if (rowless == Rowless::kStats) addRecords<DfeStats>(text, {}, answer);
    if (rowless == Rowless::kStats || !atTableHead(text)) break;
    answer.heads.push_back(readTableHead(text));
  }
  if (emptyDump) settleDump(text, words, answer);
  for (TableHead& head : answer.heads) {
    head.ofOneType = true;
    head.side = holds<TxRegisters>(answer) ? SERDES_LINK_TX : SERDES_LINK_RX;
  }
}

}  // namespace

void readPortTables(TextCursor& text, const Words& words, AnswerText& answer) {
  answer.heads.push_back(readTableHead(text));
  if (!readFormed(text, words, answer)) readTablesOfOneType(text, words, answer);
}

}  // namespace serdesctl
