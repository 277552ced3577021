// The result codes of commands, their messages, and the report of a failed platform call.
#pragma once

#include <cstdint>

// What a handler returns; the number indexes the message table.
// clang-format off
enum [[nodiscard]] CmdStatus : std::int32_t {
  CMD_OK = 0,
  CMD_EXIT = 1,  // ends the command stream
  CMD_TOO_LONG = 2,
  CMD_TOO_FEW_ARGS = 3,
  CMD_TOO_MANY_ARGS = 4,
  CMD_UNKNOWN = 5,
  CMD_BAD_PARAM = 6,
  CMD_MIXED_PORT_TYPES = 7,
  CMD_ETHERNET_ONLY = 8,
  CMD_FC_ONLY = 9,
  CMD_EXEC_ERROR = 10,
};
// clang-format on

// The message that the command reader prints for a status; empty for success and exit.
const char* statusMessage(CmdStatus status);

// Prints "<name>: serdes err <result>" for a negative platform result; `name` is the handler or place that called.
void printSerdesError(int result, const char* name);

// Reports a negative platform result and gives the status of the command that it ends.
CmdStatus platformFailure(int result, const char* name);
