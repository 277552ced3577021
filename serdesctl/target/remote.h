// A command for another machine's login shell.
#pragma once

#include <string>
#include <vector>

#include "serdesctl/target/target.h"

namespace serdesctl {

// The words as one text that any login shell reads as those words and nothing more.
std::string quoted(const std::vector<std::string>& words);

// The words of the command on the other machine: the tool under the target's lock.
std::vector<std::string> remoteWords(const Target& target, const std::string& holder);

}  // namespace serdesctl
