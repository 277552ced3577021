// Status messages and platform failures, as the user reads them.
#include "arguments/cmd_status.h"

#include <array>
#include <cstdio>

namespace {

constexpr std::array kStatusMessages = {
    "",
    "",
    "command too long",
    "too few command args",
    "too many command args",
    "unknown command",
    "invalid command parameter",
    "invalid port list, no mixed types",
    "invalid port list, ethernet only",
    "invalid port list, fibre channel only",
    "error during command execution",
    "",
};

}  // namespace

const char* statusMessage(CmdStatus status) {
  return kStatusMessages[static_cast<std::size_t>(status)];
}

void printSerdesError(int result, const char* name) {
  std::printf("%s: serdes err %d\n", name, result);
}

CmdStatus platformFailure(int result, const char* name) {
  printSerdesError(result, name);
  return CMD_EXEC_ERROR;
}
