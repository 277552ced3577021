// Words for another machine's shell.
#include "serdesctl/target/remote.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace serdesctl {
namespace {

std::string outputOf(const std::string& command) {
  std::string output;
  std::FILE* const pipe = ::popen(command.c_str(), "r");
  if (pipe == nullptr) return output;
  for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe))
    output += static_cast<char>(c);
  (void)::pclose(pipe);
  return output;
}

TEST(Quoted, AShellReadsTheWordsBackAndRunsNothing) {
  const std::vector<std::string> words = {"",    "a b", "$(id)", "`id`", "it's", "\"",
                                          "\\n", "*",   "; id",  "-n",   "#",    "!x"};
  std::string expected;
  for (const std::string& word : words)
    expected += "[" + word + "]";
  EXPECT_EQ(outputOf("printf '[%s]' " + quoted(words)), expected);
}

TEST(RemoteWords, NothingInThemNeedsABackslashOrASingleQuote) {
  const Target target = {.name = "lab",
                         .tool = {.words = {"serdes"}, .environment = {{"A", "b"}}},
                         .reach = {"ssh"},
                         .lockFile = "-",
                         .waitForLock = Seconds(1.5)};
  const std::vector<std::string> words = remoteWords(target, "alice");
  for (const std::string& word : words)
    EXPECT_EQ(word.find_first_of("\\'!\n"), std::string::npos) << word;
  const std::vector<std::string> behind(words.begin() + 3, words.end());
  EXPECT_EQ(behind, (std::vector<std::string>{"serdesctl", "-", "alice", "2", "env", "A=b", "serdes"}));
}

}  // namespace
}  // namespace serdesctl
