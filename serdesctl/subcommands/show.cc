// serdesctl show: the tool's answer as data.
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "serdesctl/asking/asked_switch.h"
#include "serdesctl/base/command_words.h"
#include "serdesctl/base/errors.h"
#include "serdesctl/base/output.h"
#include "serdesctl/base/text.h"
#include "serdesctl/formats/reports.h"
#include "serdesctl/rehearsal/rehearsal.h"
#include "serdesctl/session/conversation.h"
#include "serdesctl/subcommands/subcommands.h"
#include "serdesctl/tables/answer_text.h"
#include "serdesctl/tables/parse.h"

namespace serdesctl {
namespace {

// The command's words, if it is one that shows something.
Words wordsToShow(const std::vector<std::string>& given) {
  const std::string line = joinedWords(given);
  if (std::any_of(line.begin(), line.end(), isControlCharacter))
    throw UsageError("the command has a control character");
  Words words = splitWords(line);
  const CmdTableEntry* const row = words.empty() ? nullptr : findCommand(words[0]);
  if (row == nullptr) throw UsageError("unknown command '" + line + "'");
  const bool changes = row->isSetCmd != 0 && !asksForHelp(words);
  if (changes || !printsRecords(words)) throw UsageError(words[0] + " shows nothing: see serdesctl run");
  if (joinedWords(words).size() > kMostCommandLength) {
    throw UsageError("the command is longer than " + std::to_string(kMostCommandLength) + " characters");
  }
  return words;
}

std::string formatted(const ShowOptions& options, const ParsedAnswer& answer, const Origin& origin,
                      const std::string& text) {
  const bool asText = options.text || (!options.json && !options.csv && ::isatty(STDOUT_FILENO) != 0);
  if (asText) return text;
  return options.csv ? csvReport({&answer, 1}) : jsonReport(answer, origin);
}

}  // namespace

int performShow(const Options& options) {
  const Words words = wordsToShow(options.show.command);
  const Target target = chosenTarget(options.common);
  Conversation tool(target, Seconds(options.common.timeout));
  refuseMissing(words, tool, options.show.asic);
  AskedSwitch asked(tool, options.show.asic);
  Shown shown = asked.ask(words);
  ParsedAnswer answer;
  answer.command = joinedWords(words);
  answer.asic = asked.config().asic;
  answer.records = std::move(shown.records);
  const Origin origin = {.target = target.name, .time = utcTime(std::time(nullptr))};
  Output output(STDOUT_FILENO);
  output.write(formatted(options.show, answer, origin, shown.text));
  output.flush();
  // Nothing was changed: what the tool says of its end does not matter.
  std::string lastWords;
  (void)tool.close(lastWords);
  return kDone;
}

}  // namespace serdesctl
