// Text to records: one command's answer, or a whole log of answers with prompts and commands around them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "arguments/cmd_status.h"
#include "serdesctl/base/command_words.h"
#include "serdesctl/tables/records.h"
#include "serdesctl/tables/text_cursor.h"

namespace serdesctl {

// What one command printed.
struct ParsedAnswer {
  std::string command;                // as echoed or given; empty: not known
  std::optional<std::uint32_t> asic;  // the current one; nothing: not known
  CmdStatus status = CMD_OK;
  std::string complaint;  // about a platform call that failed
  Records records;
  TextPlace place;  // in the text
};

// The records of a command that succeeded. All of `output` is read, or ParseError thrown. `config` is the topology of
// the current ASIC.
Records parseOutput(const std::string& command, std::string_view output, const ConfigText& config);

// The ports that the words of a command name, as the tool's own parser reads them; nothing for words that it refuses,
// and for a keyword without a topology.
std::optional<std::uint32_t> namedPorts(const Words& words, const ConfigText* config);

// The topologies that a log shows.
std::vector<ConfigText> topologiesIn(std::string_view text, const std::string& name);

// What is known of a log besides its text.
struct LogKnowledge {
  std::string name = "standard input";  // for messages
  std::string command{};                // not empty: the text is this command's answer
  std::optional<std::uint32_t> asic{};  // the current one where the text begins; nothing: not known
  std::vector<ConfigText> configs{};    // topologies, of which the text's own come first
};

// Every answer of a log, in order. A log holds what the tool printed in a session or of scripts, from any command on,
// with commands echoed or not; or the bare output of one command. Commands that print nothing have no records. All of
// the text is read, or ParseError thrown. Carriage returns at the ends of lines are taken for a terminal's.
std::vector<ParsedAnswer> parseLog(std::string_view text, const LogKnowledge& knowledge);

}  // namespace serdesctl
