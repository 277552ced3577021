// Command lines as the tool reads them.
#pragma once

#include <string>
#include <vector>

#include "shell/command_table.h"

namespace serdesctl {

using Words = std::vector<std::string>;

// A line cut into words as the tool cuts it, its comment left out.
Words splitWords(const std::string& line);

// Words with a blank between them.
std::string joinedWords(const Words& words);

// The row of a command word; null for an unknown one.
const CmdTableEntry* findCommand(const std::string& word);

// Words that ask for a command's help and run nothing.
bool asksForHelp(const Words& words);

// The command that a loop repeats, empty for any other command and for a loop that is refused.
Words loopedCommand(const Words& words);

// The command that loops repeat in the end; any other command is its own.
Words innermostCommand(Words words);

}  // namespace serdesctl
