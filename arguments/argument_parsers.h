// The parsers of argument words. None prints anything; all keywords compare without regard to case.
#pragma once

#include <cstdint>
#include <span>

#include "arguments/cmd_status.h"
#include "platform/platform.h"

// Whether the command being run changes the hardware: the dispatcher says so before it calls the handler.
extern bool currentCommandSets;

// Decimal with an optional leading "-", or "0x" and hexadecimal digits. No range check: a number beyond 64 bits
// saturates there, and the low 32 bits are the value. CMD_BAD_PARAM leaves 0.
CmdStatus parseNumber(const char* word, std::uint32_t& value);

// The low 16 bits of parseNumber's value. CMD_BAD_PARAM leaves 0.
CmdStatus parseNumber16(const char* word, std::uint16_t& value);

// One number per word into `values`, which gives the count; stops at the first failure.
CmdStatus parseNumbers(char* const* words, std::span<std::uint32_t> values);

// A port list ("all", "gl", "xg", "exg", or numbers and ranges) into a mask, bit n for port n. The three lists are the
// ports of each type (core lists pass the cores of each type). Numbers of 32 and more are taken modulo 64 and select
// nothing when they stay above 31. For a set command a mix of types gives CMD_MIXED_PORT_TYPES, no words give
// CMD_TOO_FEW_ARGS.
CmdStatus parsePortList(int wordCount, char* const* words, std::uint32_t& portMask, std::uint32_t glPortList,
                        std::uint32_t xgPortList, std::uint32_t exgPortList);

// "AUTO", "1G" or "1" to "20G" or "20". Stores only on success.
CmdStatus parseRate(const char* word, port_speed_type& rate);

// The interfaces whose caches a command may name; only the ASIC's own reaches the platform.
enum CacheInterface : std::uint32_t {
  INTERFACE_ASIC = 0,
  INTERFACE_SYSTEM = 1,
  INTERFACE_NETWORK = 2,
};

// "asic" or "a", "system" or "s", "network" or "n". Stores only on success.
CmdStatus parseInterface(const char* word, CacheInterface& interface);

// "en" gives 1, "dis" 0. Stores only on success.
CmdStatus parseEnable(const char* word, std::uint8_t& enable);

// "fw" gives 1, "hw" 0. Stores only on success.
CmdStatus parseFwHw(const char* word, std::uint8_t& firmware);

// The index of `word` in `names`, or -1.
int findKeyword(const char* word, std::span<const char* const> names);

// Stores the index of `word` in either table; the long names go first. Stores only on success.
template <typename Value>
CmdStatus parseKeyword(const char* word, std::span<const char* const> names, std::span<const char* const> shortNames,
                       Value& value) {
  int index = findKeyword(word, names);
  if (index < 0) index = findKeyword(word, shortNames);
  if (index < 0) return CMD_BAD_PARAM;
  value = static_cast<Value>(index);
  return CMD_OK;
}
