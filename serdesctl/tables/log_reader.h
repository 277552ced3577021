// Takes a log apart: prompts, echoed commands, answers and their status messages, start-up lines, passes of loops.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "arguments/cmd_status.h"
#include "serdesctl/base/command_words.h"
#include "serdesctl/tables/answer_text.h"
#include "serdesctl/tables/text_cursor.h"

namespace serdesctl {

struct LogItem {
  std::string command;  // as echoed or given; empty: not known
  Words words;          // the command's, without loop; empty: not known
  TextPlace place;
  AnswerText answer;
  CmdStatus status = CMD_OK;
};

// Throws ParseError. With a command the text is that command's answer and nothing else.
std::vector<LogItem> readLog(std::string_view text, const std::string& name, const std::string& command);

}  // namespace serdesctl
