// The parsers of numbers and port lists. None prints anything.
#pragma once

#include <cstdint>

#include "arguments/cmd_status.h"

// Whether the command being run changes the hardware: the dispatcher says so before it calls the handler.
extern bool currentCommandSets;

// Decimal with an optional leading "-", or "0x" and hexadecimal digits. No range check: a number beyond 64 bits
// saturates there, and the low 32 bits are the value. CMD_BAD_PARAM leaves 0.
CmdStatus parseNumber(const char* word, std::uint32_t& value);

// The low 16 bits of parseNumber's value. CMD_BAD_PARAM leaves 0.
CmdStatus parseNumber16(const char* word, std::uint16_t& value);

// A port list ("all", "gl", "xg", "exg", or numbers and ranges) into a mask, bit n for port n. The three lists are the
// ports of each type (core lists pass the cores of each type). Numbers of 32 and more are taken modulo 64 and select
// nothing when they stay above 31. For a set command a mix of types gives CMD_MIXED_PORT_TYPES, no words give
// CMD_TOO_FEW_ARGS.
CmdStatus parsePortList(int wordCount, char* const* words, std::uint32_t& portMask, std::uint32_t glPortList,
                        std::uint32_t xgPortList, std::uint32_t exgPortList);
