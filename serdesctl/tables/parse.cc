// Text to records.
#include "serdesctl/tables/parse.h"

#include <algorithm>
#include <array>
#include <utility>

#include "arguments/argument_parsers.h"
#include "commands/discovery.h"
#include "serdesctl/tables/answer_text.h"
#include "serdesctl/tables/log_reader.h"
#include "topology/serdes_topology.h"

namespace serdesctl {
namespace {

// The topologies that a log shows, and the one that holds at each of its answers.
class Topologies {
 public:
  Topologies(const std::vector<LogItem>& items, const LogKnowledge& knowledge) : knowledge_(knowledge) {
    Epoch epoch = {.asic = knowledge.asic, .partial = false, .config = nullptr};
    for (const LogItem& item : items) {
      if (beginsEpoch(item)) {
        keep(epoch);
        epoch = newEpoch(item, epoch);
      }
      if (const auto* const config = std::get_if<ConfigText>(&item.answer.records)) {
        epoch.asic = config->asic;
        epoch.config = config;
      }
    }
    keep(epoch);
  }

  // Moves on to the item: to be called for all of them, in order.
  void advance(const LogItem& item) {
    if (beginsEpoch(item)) ++current_;
  }

  std::optional<std::uint32_t> asic() const {
    return epochs_[current_].asic;
  }

  const ConfigText* config() const {
    const Epoch& epoch = epochs_[current_];
    if (epoch.config != nullptr) return epoch.config;
    if (epoch.partial) return nullptr;
    if (epoch.asic) return ofAsic(*epoch.asic);
    const auto known = all();
    const bool one = !known.empty() && std::all_of(known.begin(), known.end(),
                                                   [&](const ConfigText* c) { return c->asic == known.front()->asic; });
    return one ? known.front() : nullptr;
  }

  // Whether that topology was shown between the same two selections of an ASIC as the item.
  bool isOfThen() const {
    return epochs_[current_].config != nullptr;
  }

  // Those that hold for a whole ASIC.
  std::vector<const ConfigText*> all() const {
    std::vector<const ConfigText*> all;
    for (const Epoch& epoch : epochs_) {
      if (epoch.config != nullptr && !epoch.partial) all.push_back(epoch.config);
    }
    for (const ConfigText& config : knowledge_.configs)
      all.push_back(&config);
    return all;
  }

 private:
  // The time between two selections of an ASIC.
  struct Epoch {
    std::optional<std::uint32_t> asic;
    bool partial = false;                // the selection failed: no other topology is like this one
    const ConfigText* config = nullptr;  // as shown
  };

  static bool beginsEpoch(const LogItem& item) {
    const auto& records = item.answer.records;
    return failedToSelect(item) || std::holds_alternative<StartText>(records) ||
           std::holds_alternative<DiscoveryText>(records);
  }

  // Such a failure may have printed nothing, or no core.
  static bool failedToSelect(const LogItem& item) {
    if (item.status != CMD_EXEC_ERROR) return false;
    const CmdTableEntry* const row = item.words.empty() ? nullptr : findCommand(item.words[0]);
    return item.answer.complaint.starts_with("setAsicNumCmdHandler") ||
           (row != nullptr && row->handler == setAsicNumCmdHandler);
  }

  static Epoch newEpoch(const LogItem& item, const Epoch& before) {
    if (const auto* const start = std::get_if<StartText>(&item.answer.records)) {
      return {.asic = start->discovery.asic, .partial = false, .config = nullptr};
    }
    const auto* const found = std::get_if<DiscoveryText>(&item.answer.records);
    if (found != nullptr && found->complete) return {.asic = found->asic, .partial = false, .config = nullptr};
    const bool known = found != nullptr && !found->cores.empty();
    return {.asic = known ? std::optional(found->cores.front().asic) : before.asic, .partial = true, .config = nullptr};
  }

  void keep(const Epoch& epoch) {
    epochs_.push_back(epoch);
  }

  const ConfigText* ofAsic(std::uint32_t asic) const {
    const auto known = all();
    const auto found = std::find_if(known.begin(), known.end(), [&](const ConfigText* c) { return c->asic == asic; });
    return found != known.end() ? *found : nullptr;
  }

  const LogKnowledge& knowledge_;
  std::vector<Epoch> epochs_;
  std::size_t current_ = 0;
};

// As a terminal's log, without the carriage returns.
std::string withPlainNewlines(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n') result += text[i];
  }
  return result;
}

void refuseZeroBytes(const std::string& text, const std::string& name) {
  TextCursor cursor(text, name);
  if (text.find('\0') == std::string::npos) return;
  cursor.backTo(text.find('\0'));
  cursor.fail("text");
}

// A log as its reader takes it.
std::string plainText(std::string_view text, const std::string& name) {
  std::string plain = withPlainNewlines(text);
  refuseZeroBytes(plain, name);
  return plain;
}

}  // namespace

// What stands before the list is as many words as the command needs at least.
std::optional<std::uint32_t> namedPorts(const Words& words, const ConfigText* config) {
  const CmdTableEntry* const row = words.empty() ? nullptr : findCommand(words[0]);
  if (row == nullptr || asksForHelp(words)) return std::nullopt;
  const auto first = static_cast<std::size_t>(row->minArgs);
  std::vector<std::string> list(words.begin() + static_cast<std::ptrdiff_t>(std::min(first, words.size())),
                                words.end());
  std::vector<char*> pointers(list.size());
  std::transform(list.begin(), list.end(), pointers.begin(), [](std::string& word) { return word.data(); });
  const auto lists = config != nullptr ? std::array{config->glPorts, config->xgPorts, config->exgPorts}
                                       : std::array<std::uint32_t, 3>{};
  std::uint32_t ports = 0;
  currentCommandSets = false;
  const CmdStatus status =
      parsePortList(static_cast<int>(pointers.size()), pointers.data(), ports, lists[0], lists[1], lists[2]);
  const bool keyword = list.size() == 1 && list[0].find_first_of("0123456789") == std::string::npos;
  if (status != CMD_OK || (keyword && config == nullptr)) return std::nullopt;
  return ports;
}

std::vector<ConfigText> topologiesIn(std::string_view text, const std::string& name) {
  const std::vector<LogItem> items = readLog(plainText(text, name), name, "");
  std::vector<ConfigText> configs;
  for (const ConfigText* const config : Topologies(items, {}).all())
    configs.push_back(*config);
  return configs;
}

Records parseOutput(const std::string& command, std::string_view output, const ConfigText& config) {
  TextCursor text(output, command);
  const Words words = splitWords(command);
  AnswerText answer = readAnswerText(text, words);
  text.expectEnd();
  requireOutputOf(words, text, answer);
  return placedRecords(std::move(answer), {.name = command,
                                           .config = &config,
                                           .configIsOfThen = true,
                                           .asic = config.asic,
                                           .ports = namedPorts(words, &config)});
}

std::vector<ParsedAnswer> parseLog(std::string_view text, const LogKnowledge& knowledge) {
  const std::vector<LogItem> items = readLog(plainText(text, knowledge.name), knowledge.name, knowledge.command);
  Topologies topologies(items, knowledge);
  std::vector<ParsedAnswer> answers;
  for (const LogItem& item : items) {
    topologies.advance(item);
    ParsedAnswer& answer = answers.emplace_back();
    answer.command = item.command;
    answer.asic = topologies.asic();
    answer.status = item.status;
    answer.complaint = item.answer.complaint;
    answer.place = item.place;
    const ConfigText* const config = topologies.config();
    const TableContext context = {.name = knowledge.name,
                                  .config = config,
                                  .configIsOfThen = topologies.isOfThen(),
                                  .asic = answer.asic,
                                  .ports = namedPorts(item.words, config)};
    answer.records = placedRecords(item.answer, context);
  }
  return answers;
}

}  // namespace serdesctl
