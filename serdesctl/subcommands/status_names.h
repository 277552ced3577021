// The names of the tool's statuses, for programs.
#pragma once

#include <array>
#include <cstddef>

#include "arguments/cmd_status.h"

namespace serdesctl {

inline const char* statusName(CmdStatus status) {
  static constexpr std::array kNames = {
      "CMD_OK",        "CMD_EXIT",      "CMD_TOO_LONG",         "CMD_TOO_FEW_ARGS",  "CMD_TOO_MANY_ARGS",
      "CMD_UNKNOWN",   "CMD_BAD_PARAM", "CMD_MIXED_PORT_TYPES", "CMD_ETHERNET_ONLY", "CMD_FC_ONLY",
      "CMD_EXEC_ERROR"};
  return kNames[static_cast<std::size_t>(status)];
}

}  // namespace serdesctl
