// Command lines, cut and looked up.
#include "serdesctl/base/command_words.h"

#include <strings.h>

#include <cctype>

#include "shell/help_and_loop.h"

namespace serdesctl {

Words splitWords(const std::string& line) {
  Words words;
  bool inWord = false;
  for (const char c : line.substr(0, line.find('#'))) {
    const bool blank = std::isspace(static_cast<unsigned char>(c)) != 0;
    if (!blank && !inWord) words.emplace_back();
    if (!blank) words.back() += c;
    inWord = !blank;
  }
  return words;
}

std::string joinedWords(const Words& words) {
  std::string line;
  for (const std::string& word : words)
    line += (line.empty() ? "" : " ") + word;
  return line;
}

const CmdTableEntry* findCommand(const std::string& word) {
  for (const CmdTableEntry* row = cmdTable.data(); row->name != nullptr; ++row) {
    if (strcasecmp(word.c_str(), row->name) == 0 || strcasecmp(word.c_str(), row->shortcut) == 0) return row;
  }
  return nullptr;
}

bool asksForHelp(const Words& words) {
  return words.size() >= 2 && (words[1] == "?" || strcasecmp(words[1].c_str(), "help") == 0);
}

Words loopedCommand(const Words& words) {
  const CmdTableEntry* const row = words.empty() ? nullptr : findCommand(words[0]);
  if (row == nullptr || row->handler != loopCmdHandler || asksForHelp(words)) return {};
  if (static_cast<std::int32_t>(words.size()) < row->minArgs) return {};
  return {words.begin() + 1, words.end()};
}

Words innermostCommand(Words words) {
  for (Words looped = loopedCommand(words); !looped.empty(); looped = loopedCommand(words))
    words = looped;
  return words;
}

}  // namespace serdesctl
