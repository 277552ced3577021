// Writes what is made from the command table: the manual, and the words that a prompt can complete. Whatever the table
// has and the hand-written files lack, or the other way about, is an error that stops the build.
#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <iostream>
#include <set>
#include <span>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "arguments/argument_parsers.h"
#include "arguments/cmd_status.h"
#include "commands/rx_eq.h"
#include "commands/tx_eq.h"
#include "arguments/keywords.h"
#include "display/name_tables.h"
#include "shell/command_reader.h"
#include "shell/command_table.h"

namespace {

using Strings = std::vector<std::string>;

// The keywords that no name table lists.
constexpr std::array kPortKeywords = {"all", "gl", "xg", "exg"};
constexpr std::array kInterfaceKeywords = {"asic", "system", "network"};

std::span<const CmdTableEntry> commands() {
  return std::span(cmdTable).first(kCommandCount);
}

// The names that `parse` takes: some tables hold a name that is only printed.
template <typename Value, typename Names, typename Parse>
Strings accepted(const Names& names, Parse parse) {
  Strings result;
  for (const ValueName& row : names) {
    Value value{};
    if (parse(row.name, value) == CMD_OK) result.emplace_back(row.name);
  }
  return result;
}

Strings rates() {
  return accepted<port_speed_type>(rateNames, parseRate);
}
Strings ffeModes() {
  return accepted<SerDesTxFFEMode>(ffeModeNames, parseFFEMode);
}
Strings slewRates() {
  return accepted<SerDesTxSlewRate>(slewRateNames, parseSlewRate);
}
Strings dfeModes() {
  return accepted<SerDesRxDFEMode>(dfeModeNames, parseDfeMode);
}

bool isPortKeyword(const char* keyword) {
  std::string word = keyword;
  char* words[] = {word.data()};
  std::uint32_t mask = 0;
  return parsePortList(1, words, mask, 1, 0, 0) == CMD_OK;
}

// Words that are worth completing, one a line.
std::string wordList() {
  std::set<std::string> words;
  for (const CmdTableEntry& row : commands()) {
    words.insert(row.name);
    if (std::isalpha(static_cast<unsigned char>(row.shortcut[0]))) words.insert(row.shortcut);
  }
  for (const Strings& keywords : {rates(), ffeModes(), slewRates(), dfeModes()})
    words.insert(keywords.begin(), keywords.end());
  for (const char* keyword : kPortKeywords) {
    if (!isPortKeyword(keyword)) throw std::runtime_error(std::string("no port list keyword: ") + keyword);
    words.insert(keyword);
  }
  for (const char* keyword : kInterfaceKeywords) {
    CacheInterface interface {};
    if (parseInterface(keyword, interface) != CMD_OK) throw std::runtime_error(std::string("no interface: ") + keyword);
    words.insert(keyword);
  }
  std::string text;
  for (const std::string& word : words)
    text += word + '\n';
  return text;
}

// Manual source that shows `text` as it stands, without blanks at its end.
std::string shown(std::string_view text) {
  while (!text.empty() && text.back() == ' ')
    text.remove_suffix(1);
  std::string result;
  if (!text.empty() && (text.front() == '.' || text.front() == '\'')) result += "\\&";
  for (const char c : text) {
    if (c == '\\') {
      result += "\\e";
    } else if (c == '-') {
      result += "\\-";
    } else {
      result += c;
    }
  }
  return result;
}

// The same for one word after a macro, where punctuation and quotes have meanings of their own.
std::string shownWord(const std::string& word) {
  const bool isPlain =
      std::all_of(word.begin(), word.end(), [](unsigned char c) { return std::isalnum(c) || c == '_' || c == '-'; });
  return isPlain ? shown(word) : "\\&" + shown(word);
}

Strings wordsOf(const std::string& text) {
  std::istringstream in(text);
  Strings words;
  for (std::string word; in >> word;)
    words.push_back(word);
  return words;
}

std::string readFile(const std::string& fileName) {
  std::ifstream in(fileName);
  if (!in) throw std::runtime_error(fileName + ": cannot be read");
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// A file of hand-written entries. An entry begins with a line "% KEY" or "% KEY | REST" and holds manual source.
class Entries {
 public:
  struct Entry {
    std::string key;
    std::string rest;
    std::string text;
    bool isUsed = false;
  };

  explicit Entries(std::string fileName) : fileName_(std::move(fileName)) {
    std::istringstream in(readFile(fileName_));
    for (std::string line; std::getline(in, line);) {
      if (line.starts_with("% ")) {
        add(line.substr(2));
      } else if (!entries_.empty()) {
        entries_.back().text += line + '\n';
      }
    }
  }

  const Entry& take(const std::string& key) {
    Entry* entry = find(key);
    if (entry == nullptr) throw std::runtime_error(fileName_ + ": no entry for \"" + key + '"');
    if (entry->text.empty()) throw std::runtime_error(fileName_ + ": the entry for \"" + key + "\" is empty");
    entry->isUsed = true;
    return *entry;
  }

  void checkThatAllWereTaken() const {
    for (const Entry& entry : entries_) {
      if (!entry.isUsed) throw std::runtime_error(fileName_ + ": nothing is called \"" + entry.key + '"');
    }
  }

 private:
  Entry* find(const std::string& key) {
    const auto at = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& e) { return e.key == key; });
    return at == entries_.end() ? nullptr : &*at;
  }

  void add(const std::string& header) {
    const std::size_t bar = header.find(" | ");
    std::string key = header.substr(0, bar);
    if (find(key) != nullptr) throw std::runtime_error(fileName_ + ": two entries for \"" + key + '"');
    entries_.push_back(
        {.key = std::move(key), .rest = bar == std::string::npos ? "" : header.substr(bar + 3), .text = ""});
  }

  std::string fileName_;
  std::vector<Entry> entries_;
};

std::string wordBounds(const CmdTableEntry& row) {
  const std::string most = std::to_string(row.maxArgs) + (row.maxArgs == 1 ? " word" : " words");
  return row.minArgs == row.maxArgs ? most : std::to_string(row.minArgs) + " to " + most;
}

// Indented lines of their own, long ones folded.
std::string helpTexts(const CmdTableEntry& row) {
  std::string text = ".Bd -ragged -offset indent -compact\n";
  bool isFirst = true;
  for (const char* part : {row.description, row.example, row.exampleNote}) {
    std::istringstream lines(part);
    for (std::string line; std::getline(lines, line);) {
      if (!isFirst) text += ".br\n";
      text += shown(line) + '\n';
      isFirst = false;
    }
  }
  return text + ".Ed\n";
}

std::string commandChapter(Entries& prose) {
  std::string text = ".Bl -tag -width Ds\n";
  for (const CmdTableEntry& row : commands()) {
    const Entries::Entry& entry = prose.take(row.name);
    text += ".It Ic " + shownWord(row.name);
    if (!entry.rest.empty()) text += ' ' + entry.rest;
    text += "\nShortcut\n.Ic " + shownWord(row.shortcut) + " ;\n" + wordBounds(row);
    text += row.isSetCmd != 0 ? "; set command.\n.Pp\n" : ".\n.Pp\n";
    text += entry.text + ".Pp\n" + helpTexts(row);
  }
  prose.checkThatAllWereTaken();
  return text + ".El";
}

std::string statusChapter(Entries& prose) {
  std::string text = ".Bl -diag\n";
  for (std::int32_t status = CMD_OK; status <= CMD_EXEC_ERROR; ++status) {
    const std::string message = statusMessage(static_cast<CmdStatus>(status));
    if (message.empty()) continue;
    text += ".It";
    for (const std::string& word : wordsOf(message))
      text += ' ' + shownWord(word);
    text += '\n' + prose.take(message).text;
  }
  prose.checkThatAllWereTaken();
  return text + ".El";
}

// "a, b or c" as macro lines; what stands behind it in the text goes on in the last one.
std::string keywordList(const Strings& keywords) {
  std::string text;
  for (std::size_t i = 0; i < keywords.size(); ++i) {
    text += ".Cm " + shownWord(keywords[i]);
    if (i + 2 < keywords.size()) text += " ,\n";
    if (i + 2 == keywords.size()) text += "\nor\n";
  }
  return text;
}

// The template with each "@NAME@" replaced, lists and chapters on a line of their own; `given` holds further
// "NAME=TEXT".
std::string manual(const std::string& templateName, Entries commandProse, Entries statusProse, std::span<char*> given) {
  std::vector<std::pair<std::string, std::string>> replacements = {
      {"@COMMANDS@", commandChapter(commandProse)},
      {"@STATUSES@", statusChapter(statusProse)},
      {"@RATES@", keywordList(rates())},
      {"@FFE_MODES@", keywordList(ffeModes())},
      {"@SLEW_RATES@", keywordList(slewRates())},
      {"@DFE_MODES@", keywordList(dfeModes())},
      {"@MAX_WORDS@", std::to_string(kMaxWords)},
      {"@MAX_PORTS@", std::to_string(kMaxPorts)},
      {"@MAX_CORES@", std::to_string(kMaxCores)},
      {"@COMMAND_COUNT@", std::to_string(kCommandCount)},
  };
  for (const std::string_view pair : given) {
    const std::size_t equals = pair.find('=');
    if (equals == std::string_view::npos) throw std::runtime_error("not NAME=TEXT: " + std::string(pair));
    replacements.emplace_back('@' + std::string(pair.substr(0, equals)) + '@', pair.substr(equals + 1));
  }
  std::string text = readFile(templateName);
  for (const auto& [name, value] : replacements) {
    std::size_t at = text.find(name);
    if (at == std::string::npos) throw std::runtime_error(templateName + ": " + name + " is missing");
    for (; at != std::string::npos; at = text.find(name, at + value.size()))
      text.replace(at, name.size(), value);
  }
  if (const std::size_t at = text.find('@'); at != std::string::npos) {
    throw std::runtime_error(templateName + ": unknown: " + text.substr(at, 20));
  }
  return text;
}

int run(std::span<char*> arguments) {
  if (arguments.size() == 2 && std::string_view(arguments[1]) == "words") {
    std::cout << wordList();
  } else if (arguments.size() >= 5 && std::string_view(arguments[1]) == "manual") {
    std::cout << manual(arguments[2], Entries(arguments[3]), Entries(arguments[4]), arguments.subspan(5));
  } else {
    std::cerr << "usage: command_texts words\n       command_texts manual TEMPLATE COMMANDS STATUSES [NAME=TEXT ...]\n";
    return 2;
  }
  return std::cout.flush() ? 0 : 1;
}

}  // namespace

int main(int argc, char* argv[]) {
  try {
    return run(std::span(argv, static_cast<std::size_t>(argc)));
  } catch (const std::exception& error) {
    std::cerr << "command_texts: " << error.what() << '\n';
    return 1;
  }
}
