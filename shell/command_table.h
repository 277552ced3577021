// The table of all commands.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "arguments/cmd_status.h"

// Runs a command. Word 0 is the command word as typed; wordCount includes it. Handlers may change the words.
using CmdHandler = CmdStatus (*)(int wordCount, char* words[]);

struct CmdTableEntry {
  const char* name;
  const char* shortcut;
  std::int32_t minArgs;  // bounds on the word count, the command word included
  std::int32_t maxArgs;
  std::uint32_t isSetCmd;  // 1: changes the hardware, so a port list may not mix port types
  const char* argHelp;     // synopsis in the command list
  const char* description;
  const char* example;
  const char* exampleNote;
  CmdHandler handler;
};

// All commands in the order of the command list, ended by a row whose fields are all empty.
extern const std::span<const CmdTableEntry> cmdTable;

// The number of rows without the last one.
extern const std::size_t kCommandCount;
