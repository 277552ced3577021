// The keywords of arguments: what may be typed, in any case, and what it stands for. Parsers store only on success.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "arguments/cmd_status.h"
#include "display/name_tables.h"
#include "platform/platform.h"

// The interfaces whose caches a command may name; only the ASIC's own reaches the platform.
enum CacheInterface : std::uint32_t {
  INTERFACE_ASIC = 0,
  INTERFACE_SYSTEM = 1,
  INTERFACE_NETWORK = 2,
};

// Names for more than single ports; valid as the only word of a port list.
enum PortKeyword : std::uint32_t {
  PORTS_ALL = 0,
  PORTS_GL = 1,
  PORTS_XG = 2,
  PORTS_EXG = 3,
};

inline constexpr std::array<ValueName, 3> interfaceNames = {{{"asic", "a"}, {"system", "s"}, {"network", "n"}}};
inline constexpr std::array<ValueName, 4> portKeywordNames = {{{"all"}, {"gl"}, {"xg"}, {"exg"}}};
inline constexpr std::array<ValueName, 2> enableNames = {{{"dis"}, {"en"}}};
inline constexpr std::array<ValueName, 2> fwHwNames = {{{"hw"}, {"fw"}}};

// All words for an argument of one kind: names and, where there are any, short names.
struct KeywordSet {
  std::span<const ValueName> names;
  std::uint32_t firstValue = 0;  // what the first name stands for; the others count on from there
};

inline constexpr KeywordSet rateKeywords = {rateNames};
// The mode without FFE has no keyword.
inline constexpr KeywordSet ffeModeKeywords = {std::span(ffeModeNames).subspan(FFE_2), FFE_2};
inline constexpr KeywordSet slewRateKeywords = {slewRateNames};
inline constexpr KeywordSet dfeModeKeywords = {dfeModeNames};
inline constexpr KeywordSet interfaceKeywords = {interfaceNames};
inline constexpr KeywordSet portKeywords = {portKeywordNames};
inline constexpr KeywordSet enableKeywords = {enableNames};
inline constexpr KeywordSet fwHwKeywords = {fwHwNames};

CmdStatus parseRate(const char* word, port_speed_type& rate);
CmdStatus parseFFEMode(const char* word, SerDesTxFFEMode& mode);
CmdStatus parseSlewRate(const char* word, SerDesTxSlewRate& slew);
CmdStatus parseDfeMode(const char* word, SerDesRxDFEMode& mode);
CmdStatus parseInterface(const char* word, CacheInterface& interface);
CmdStatus parsePortKeyword(const char* word, PortKeyword& ports);
// "en" gives 1, "dis" 0.
CmdStatus parseEnable(const char* word, std::uint8_t& enable);
// "fw" gives 1, "hw" 0.
CmdStatus parseFwHw(const char* word, std::uint8_t& firmware);

// True for characters that are the same or one letter in both cases.
constexpr bool sameLetter(char a, char b) {
  constexpr char kCase = 'a' ^ 'A';
  return a == b || ((a ^ b) == kCase && 'a' <= (a | kCase) && (a | kCase) <= 'z');
}

// True for words that differ in case alone. Most words differ in one of their first letters, where a call would not
// pay.
constexpr bool sameWord(const char* a, const char* b) {
  while (*a != '\0' && sameLetter(*a, *b)) {
    ++a;
    ++b;
  }
  return *a == *b;
}
