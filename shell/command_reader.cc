// The command reader and the dispatcher.
#include "shell/command_reader.h"

#include <array>
#include <cstring>

#include "arguments/argument_parsers.h"
#include "arguments/keywords.h"
#include "shell/command_table.h"
#include "shell/output.h"

std::uint32_t currentCommandIndex{};
bool interactive{};

namespace {

// A line is read into kLineBufferSize bytes; what does not fit is left in the stream and is the next line.
constexpr int kLineBufferSize = 128;
constexpr std::size_t kMaxLineLength = 126;  // newline included

// As isspace(), which is a call.
bool isBlank(char c) {
  return c == ' ' || ('\t' <= c && c <= '\r');
}

// Cuts `line` into words in place and returns their number. Counting stops one past the limit.
int splitWords(char* line, std::array<char*, kMaxWords + 1>& words) {
  if (char* comment = std::strchr(line, '#')) *comment = '\0';
  int count = 0;
  for (char* at = line; count <= kMaxWords;) {
    while (isBlank(*at))
      *at++ = '\0';
    if (*at == '\0') break;
    words[static_cast<std::size_t>(count++)] = at;
    while (*at != '\0' && !isBlank(*at))
      ++at;
  }
  return count;
}

CmdStatus runLine(char* line) {
  if (std::strlen(line) > kMaxLineLength) return CMD_TOO_LONG;
  std::array<char*, kMaxWords + 1> words{};
  const int wordCount = splitWords(line, words);
  if (wordCount > kMaxWords) return CMD_TOO_MANY_ARGS;
  if (wordCount == 0) return CMD_OK;
  return dispatchCommand(wordCount, words.data());
}

bool matches(const CmdTableEntry& row, const char* word) {
  return sameWord(word, row.name) || sameWord(word, row.shortcut);
}

bool asksForHelp(int wordCount, char* words[]) {
  return wordCount >= 2 && (std::strcmp(words[1], "?") == 0 || sameWord(words[1], "help"));
}

}  // namespace

int runCommandStream(std::FILE* input, std::FILE* output) {
  std::array<char, kLineBufferSize> line;
  CmdStatus status = CMD_OK;
  while (status != CMD_EXIT) {
    if (interactive) {
      std::fputs("serdes: ", output);
      flushOutput(output);
    }
    if (std::fgets(line.data(), kLineBufferSize, input) == nullptr) {
      if (std::ferror(input)) std::perror("Error reading commands");
      status = CMD_EXIT;
    } else {
      status = runLine(line.data());
    }
    std::fputs(statusMessage(status), output);
    std::fputs("\n\n", output);
    reportLostOutput(output);
  }
  return 0;
}

CmdStatus dispatchCommand(int wordCount, char* words[]) {
  const CmdTableEntry* const begin = cmdTable.data();
  const CmdTableEntry* found = begin;
  while (found->name != nullptr && !matches(*found, words[0]))
    ++found;
  currentCommandIndex = static_cast<std::uint32_t>(found - begin);
  const CmdTableEntry& row = *found;
  currentCommandSets = row.isSetCmd != 0;
  if (row.name == nullptr) return CMD_UNKNOWN;
  if (asksForHelp(wordCount, words)) {
    std::printf("\n%s\n", row.description);
    std::printf("\n%s\n", row.example);
    std::printf("%s\n", row.exampleNote);
    // A loop over "<cmd> ?" finds an empty word on its next pass and ends there.
    words[1][0] = '\0';
    return CMD_OK;
  }
  if (wordCount < row.minArgs) return CMD_TOO_FEW_ARGS;
  if (wordCount > row.maxArgs) return CMD_TOO_MANY_ARGS;
  return row.handler(wordCount, words);
}
