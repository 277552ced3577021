// Prints the command table, the keywords of its arguments and the statuses as JSON: what the manual, the words to
// complete and programs around the tool are made from. Its argument is the version.
#include <array>
#include <cstdint>
#include <cstdio>
#include <span>

#include "arguments/cmd_status.h"
#include "arguments/keywords.h"
#include "shell/command_reader.h"
#include "shell/command_table.cc"  // its rows, whose handlers are taken out below

namespace {

// The table without its handlers, so that none of them need be linked.
constexpr auto kRows = [] {
  auto rows = kTable;
  for (CmdTableEntry& row : rows)
    row.handler = nullptr;
  return rows;
}();

// A string in quotes. The table's texts are ASCII.
void printText(const char* text) {
  std::putchar('"');
  for (; *text != '\0'; ++text) {
    if (*text == '"' || *text == '\\') std::putchar('\\');
    if (*text == '\n') {
      std::fputs("\\n", stdout);
    } else {
      std::putchar(*text);
    }
  }
  std::putchar('"');
}

void printMember(const char* name, const char* text) {
  std::printf(", \"%s\": ", name);
  printText(text);
}

void printCommands() {
  std::printf("  \"commands\": [");
  const char* separator = "\n";
  for (const CmdTableEntry& row : std::span(kRows).first(kCommandCount)) {
    std::printf("%s    {\"name\": \"%s\"", separator, row.name);
    printMember("shortcut", row.shortcut);
    std::printf(", \"minArgs\": %d, \"maxArgs\": %d", row.minArgs, row.maxArgs);
    std::printf(", \"isSetCmd\": %s", row.isSetCmd != 0 ? "true" : "false");
    printMember("argHelp", row.argHelp);
    printMember("description", row.description);
    printMember("example", row.example);
    printMember("exampleNote", row.exampleNote);
    std::printf("}");
    separator = ",\n";
  }
  std::printf("\n  ],\n");
}

void printKeywords(const char* kind, const KeywordSet& set, const char* end = ",\n") {
  std::printf("    \"%s\": [", kind);
  const char* separator = "";
  for (const ValueName& value : set.names) {
    std::printf("%s\"%s\"", separator, value.name);
    separator = ", ";
  }
  std::printf("]%s", end);
}

const char* statusName(CmdStatus status) {
  switch (status) {
    case CMD_OK:
      return "CMD_OK";
    case CMD_EXIT:
      return "CMD_EXIT";
    case CMD_TOO_LONG:
      return "CMD_TOO_LONG";
    case CMD_TOO_FEW_ARGS:
      return "CMD_TOO_FEW_ARGS";
    case CMD_TOO_MANY_ARGS:
      return "CMD_TOO_MANY_ARGS";
    case CMD_UNKNOWN:
      return "CMD_UNKNOWN";
    case CMD_BAD_PARAM:
      return "CMD_BAD_PARAM";
    case CMD_MIXED_PORT_TYPES:
      return "CMD_MIXED_PORT_TYPES";
    case CMD_ETHERNET_ONLY:
      return "CMD_ETHERNET_ONLY";
    case CMD_FC_ONLY:
      return "CMD_FC_ONLY";
    case CMD_EXEC_ERROR:
      return "CMD_EXEC_ERROR";
  }
  return nullptr;
}

void printStatuses() {
  std::printf("  \"statuses\": [");
  const char* separator = "\n";
  for (std::int32_t number = 0;; ++number) {
    const auto status = static_cast<CmdStatus>(number);
    const char* name = statusName(status);
    if (name == nullptr) break;
    std::printf("%s    {\"number\": %d, \"name\": \"%s\"", separator, number, name);
    printMember("message", statusMessage(status));
    std::printf("}");
    separator = ",\n";
  }
  std::printf("\n  ]\n");
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc != 2) {
    (void)std::fprintf(stderr, "usage: %s VERSION\n", argv[0]);
    return 2;
  }
  std::printf("{\n  \"version\": \"%s\",\n", argv[1]);
  std::printf("  \"limits\": {\"words\": %d, \"ports\": %u, \"cores\": %u},\n", kMaxWords,
              static_cast<unsigned>(kMaxPorts), static_cast<unsigned>(kMaxCores));
  printCommands();
  std::printf("  \"keywords\": {\n");
  printKeywords("ports", portKeywords);
  printKeywords("rates", rateKeywords);
  printKeywords("interfaces", interfaceKeywords);
  printKeywords("ffeModes", ffeModeKeywords);
  printKeywords("slewRates", slewRateKeywords);
  printKeywords("dfeModes", dfeModeKeywords, "\n");
  std::printf("  },\n");
  printStatuses();
  std::printf("}\n");
  return std::fflush(stdout) == 0 && std::ferror(stdout) == 0 ? 0 : 1;
}
