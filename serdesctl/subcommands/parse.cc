// serdesctl parse: records of what was printed before.
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "serdesctl/base/command_words.h"
#include "serdesctl/base/errors.h"
#include "serdesctl/base/files.h"
#include "serdesctl/base/output.h"
#include "serdesctl/formats/reports.h"
#include "serdesctl/subcommands/subcommands.h"
#include "serdesctl/tables/parse.h"

namespace serdesctl {
namespace {

constexpr std::size_t kMostBytes = 64U << 20;

// All topologies that a log shows.
std::vector<ConfigText> readConfigs(const std::string& file) {
  std::vector<ConfigText> configs = topologiesIn(readFile(file, kMostBytes), file);
  if (configs.empty()) throw UsageError(file + ": no answer to showConfig in it");
  return configs;
}

std::string refusal(const ParsedAnswer& answer) {
  const std::string command = answer.command.empty() ? "line " + std::to_string(answer.place.line) : answer.command;
  return command + ": " + statusMessage(answer.status) +
         (answer.complaint.empty() ? "" : " (" + answer.complaint + ")");
}

}  // namespace

int performParse(const Options& options) {
  LogKnowledge knowledge;
  knowledge.command = joinedWords(options.parse.command);
  knowledge.asic = options.parse.asic;
  if (!options.parse.config.empty()) knowledge.configs = readConfigs(options.parse.config);
  const std::vector<ParsedAnswer> answers = parseLog(readFile("-", kMostBytes), knowledge);

  Output output(STDOUT_FILENO);
  if (options.parse.csv) {
    output.write(csvReport(answers));
  } else {
    for (const ParsedAnswer& answer : answers)
      output.write(jsonReport(answer, {}));
  }
  output.flush();
  const auto refused = [](const ParsedAnswer& answer) { return answer.status != CMD_OK; };
  for (const ParsedAnswer& answer : answers) {
    if (refused(answer)) complain(refusal(answer));
  }
  return std::any_of(answers.begin(), answers.end(), refused) ? kFailed : kDone;
}

}  // namespace serdesctl
