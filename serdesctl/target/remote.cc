// Starting the tool on another machine. The text that takes the lock there is fixed; all that a target brings are the
// words behind it.
#include "serdesctl/target/remote.h"

#include <algorithm>
#include <cmath>

namespace serdesctl {
namespace {

// Words: the lock's file ("-" for the usual place), its holder, how many seconds to wait, the tool. The tool inherits
// the lock as descriptor 9, and the shell becomes the tool. Without backslashes, single quotes and exclamation marks,
// about which login shells disagree.
constexpr const char* kUnderLock =
    "lock=$1; holder=$2; left=$3; shift 3; "
    "if [ \"$lock\" = - ]; then for folder in /run/lock /var/lock /tmp; do "
    "if [ -d $folder ]; then lock=$folder/serdes.lock; break; fi; done; fi; "
    "umask 0; { command exec 9<>\"$lock\"; } 2>/dev/null || command exec 9<\"$lock\" || exit 74; umask 022; "
    "until flock -n 9; do "
    "if [ $? -gt 1 ]; then exit 74; fi; "
    "if [ $left -le 0 ]; then read -r by <\"$lock\"; "
    "echo \"serdesctl: locked by ${by:-somebody} ($lock)\" >&2; exit 75; fi; "
    "left=$((left - 1)); sleep 1; done; "
    "echo \"$holder\" 2>/dev/null >\"$lock\"; exec \"$@\"";

std::string quotedWord(const std::string& word) {
  std::string text = "'";
  for (const char c : word) {
    if (c == '\'') {
      text += "'\"'\"'";
    } else {
      text += c;
    }
  }
  return text + "'";
}

}  // namespace

std::string quoted(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) {
    if (!text.empty()) text += ' ';
    text += quotedWord(word);
  }
  return text;
}

std::vector<std::string> remoteWords(const Target& target, const std::string& holder) {
  const auto seconds = static_cast<long>(std::ceil(std::min(target.waitForLock.count(), 1e9)));
  std::vector<std::string> words = {
      "sh", "-c", kUnderLock, "serdesctl", target.lockFile, holder, std::to_string(seconds)};
  if (!target.tool.environment.empty()) words.emplace_back("env");
  for (const auto& [name, value] : target.tool.environment)
    words.push_back(std::string(name).append("=").append(value));
  words.insert(words.end(), target.tool.words.begin(), target.tool.words.end());
  return words;
}

}  // namespace serdesctl
