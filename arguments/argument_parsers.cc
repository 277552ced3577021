// The parsers of numbers and port lists.
#include "arguments/argument_parsers.h"

#include <array>
#include <cctype>
#include <cstdlib>
#include <cstring>

#include "arguments/keywords.h"

bool currentCommandSets{};

namespace {

constexpr std::uint32_t kHighestRangePort = 31;

// True for one digit or more and nothing else.
bool isNumber(const char* digits, int (*isDigit)(int)) {
  if (*digits == '\0') return false;
  for (; *digits != '\0'; ++digits) {
    if (!isDigit(static_cast<unsigned char>(*digits))) return false;
  }
  return true;
}

// Reads a decimal number at `at`, moves `at` behind it and stores the low 32 bits; false when there is none.
bool readDecimal(const char*& at, std::uint32_t& value) {
  char* end = nullptr;
  value = static_cast<std::uint32_t>(std::strtoll(at, &end, 10));
  const bool found = end != at;
  at = end;
  return found;
}

// Adds the ports of a "first-last" word. What follows the second number is not looked at.
CmdStatus addPortRange(const char* word, std::uint32_t& portMask) {
  std::uint32_t first = 0;
  std::uint32_t last = 0;
  if (!readDecimal(word, first) || *word != '-') return CMD_BAD_PARAM;
  ++word;
  if (!readDecimal(word, last)) return CMD_BAD_PARAM;
  if (first > kHighestRangePort || last > kHighestRangePort) return CMD_BAD_PARAM;
  for (std::uint32_t port = first; port <= last; ++port)
    portMask |= std::uint32_t{1} << port;
  return CMD_OK;
}

CmdStatus addPortWord(const char* word, std::uint32_t& portMask) {
  if (std::strchr(word, '-') != nullptr) return addPortRange(word, portMask);
  std::uint32_t port = 0;
  if (const CmdStatus status = parseNumber(word, port); status != CMD_OK) return status;
  port %= 64;
  if (port < 32) portMask |= std::uint32_t{1} << port;
  return CMD_OK;
}

// A set command may not touch more than one of the three sets.
CmdStatus refuseMixedTypes(std::uint32_t gl, std::uint32_t xg, std::uint32_t exg) {
  if (!currentCommandSets) return CMD_OK;
  const int types = (gl != 0 ? 1 : 0) + (xg != 0 ? 1 : 0) + (exg != 0 ? 1 : 0);
  return types > 1 ? CMD_MIXED_PORT_TYPES : CMD_OK;
}

}  // namespace

CmdStatus parseNumber(const char* word, std::uint32_t& value) {
  value = 0;
  if (word[0] == '0' && (word[1] == 'x' || word[1] == 'X')) {
    if (!isNumber(word + 2, std::isxdigit)) return CMD_BAD_PARAM;
    value = static_cast<std::uint32_t>(std::strtoull(word + 2, nullptr, 16));
    return CMD_OK;
  }
  if (!isNumber(word + (*word == '-' ? 1 : 0), std::isdigit)) return CMD_BAD_PARAM;
  (void)readDecimal(word, value);
  return CMD_OK;
}

CmdStatus parseNumber16(const char* word, std::uint16_t& value) {
  std::uint32_t number = 0;
  const CmdStatus status = parseNumber(word, number);
  value = static_cast<std::uint16_t>(number & 0xFFFFu);
  return status;
}

CmdStatus parsePortList(int wordCount, char* const* words, std::uint32_t& portMask, std::uint32_t glPortList,
                        std::uint32_t xgPortList, std::uint32_t exgPortList) {
  portMask = 0;
  if (wordCount < 1) return CMD_TOO_FEW_ARGS;
  PortKeyword keyword{};
  if (wordCount == 1 && parsePortKeyword(words[0], keyword) == CMD_OK) {
    const std::array lists = {glPortList | xgPortList | exgPortList, glPortList, xgPortList, exgPortList};
    portMask = lists[keyword];
    return keyword == PORTS_ALL ? refuseMixedTypes(glPortList, xgPortList, exgPortList) : CMD_OK;
  }
  for (int i = 0; i < wordCount; ++i) {
    if (const CmdStatus status = addPortWord(words[i], portMask); status != CMD_OK) return status;
  }
  return refuseMixedTypes(portMask & glPortList, portMask & xgPortList, portMask & exgPortList);
}
