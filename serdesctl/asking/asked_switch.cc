// Asking for records.
#include "serdesctl/asking/asked_switch.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "commands/dfe_stats.h"
#include "serdesctl/base/number_list.h"
#include "serdesctl/tables/config_text.h"
#include "serdesctl/tables/parse.h"
#include "topology/serdes_topology.h"

namespace serdesctl {
namespace {

// The tool's line about a platform call that failed stands alone.
std::string refusal(const std::string& command, const Answer& answer) {
  const std::string line = answer.output.substr(0, answer.output.find('\n'));
  return command + ": " + statusMessage(answer.status) + (line.empty() ? "" : " (" + line + ")");
}

bool shareNames(const std::vector<ConfigType>& types) {
  std::set<std::string> names;
  for (const ConfigType& type : types)
    names.insert(type.name);
  return names.size() != types.size();
}

constexpr const char* kAllPorts = "all";
constexpr std::uint32_t kMostNumber = 999;  // that a list is read up to, to name what is no port

UsageError noPortList(const std::string& list) {
  return UsageError("'" + list + "' is no port list: all, gl, xg, exg, or 0-3 8");
}

}  // namespace

RefusedError::RefusedError(const std::string& command, const Answer& answer)
    : ErrorOfStatus(refusal(command, answer)) {}

AskedSwitch::AskedSwitch(Conversation& tool, std::uint32_t asic) : tool_(tool) {
  config_.asic = asic;
  if (asic != 0) {
    select();
  } else {
    discovery_ = parseStart(tool.startText()).discovery;
    config_ = parseConfig(askToSucceed("showConfig").output);
  }
}

void AskedSwitch::select() {
  discovery_ = parseDiscovery(askToSucceed("setAsicNum " + std::to_string(config_.asic)).output);
  config_ = parseConfig(askToSucceed("showConfig").output);
}

Shown AskedSwitch::ask(const Words& words) {
  const CmdTableEntry* const row = findCommand(words[0]);
  const bool statistics = row != nullptr && row->handler == showDFEStatsCmdHandler && !asksForHelp(words);
  const auto ports = statistics ? namedPorts(words, &config_) : std::nullopt;
  if (ports && portsByType(*ports).size() > 1) return showStatistics(*ports);
  const std::string command = joinedWords(words);
  const Answer answer = askToSucceed(command);
  return {.records = parseOutput(command, answer.output, config_), .text = answer.output};
}

std::vector<DfeStats> AskedSwitch::statistics(std::uint32_t ports) {
  return std::get<std::vector<DfeStats>>(showStatistics(ports).records);
}

std::vector<std::uint32_t> AskedSwitch::portsByType(std::uint32_t ports) const {
  std::vector<std::uint32_t> lists;
  ports &= (std::uint32_t{1} << config_.ports.size()) - 1;
  if (shareNames(config_.types)) {
    forEachBit(ports, kMaxPorts, [&](std::uint32_t port) { lists.push_back(std::uint32_t{1} << port); });
    return lists;
  }
  for (const ConfigType& type : config_.types) {
    std::uint32_t list = 0;
    forEachBit(ports, kMaxPorts, [&](std::uint32_t port) {
      if (config_.ports[port].rx.serDesType == type.name) list |= std::uint32_t{1} << port;
    });
    if (list != 0) lists.push_back(list);
  }
  return lists;
}

Answer AskedSwitch::askToSucceed(const std::string& command) {
  Answer answer = tool_.ask(command);
  if (answer.status != CMD_OK) throw RefusedError(command, answer);
  return answer;
}

Shown AskedSwitch::showStatistics(std::uint32_t ports) {
  Shown all;
  std::vector<DfeStats> records;
  for (const std::uint32_t list : portsByType(ports)) {
    Shown shown = showStatisticsOfType(listOf(list));
    auto& found = std::get<std::vector<DfeStats>>(shown.records);
    std::move(found.begin(), found.end(), std::back_inserter(records));
    all.text += shown.text;
  }
  all.records = std::move(records);
  return all;
}

// A type without a layout gives a table's head alone, and fails.
Shown AskedSwitch::showStatisticsOfType(const std::string& list) {
  const std::string command = "showDFEStats " + list;
  const Answer answer = tool_.ask(command);
  const bool headAlone = answer.status == CMD_EXEC_ERROR && answer.output.starts_with('\n');
  if (answer.status != CMD_OK && !headAlone) throw RefusedError(command, answer);
  return {.records = parseOutput(command, answer.output, config_), .text = answer.output};
}

std::string listOf(std::uint32_t ports) {
  std::string list;
  for (std::uint32_t port = 0; port < kMaxPorts; ++port) {
    if ((ports >> port & 1) == 0) continue;
    const std::uint32_t first = port;
    while ((ports >> (port + 1) & 1) != 0)
      ++port;
    list += (list.empty() ? "" : " ") + std::to_string(first);
    if (port != first) list += "-" + std::to_string(port);
  }
  return list;
}

// The tool takes what nobody means: ranges that run backwards, numbers that are no port's.
std::uint32_t portsOfList(const std::string& list, const ConfigText& config) {
  std::string words = list;
  std::replace(words.begin(), words.end(), ',', ' ');
  const std::string ofThisAsic = " of ASIC " + std::to_string(config.asic);
  if (list.find_first_of("0123456789") == std::string::npos) {
    const auto ports = namedPorts(splitWords("showRate " + words), &config);
    if (!ports || words.find_first_not_of(' ') == std::string::npos) throw noPortList(list);
    if (*ports == 0 && list != kAllPorts) throw UsageError("no ports '" + list + "'" + ofThisAsic);
    return *ports;
  }
  std::uint32_t ports = 0;
  for (const std::string& word : splitWords(words)) {
    const auto numbers = numbersOf(word, kMostNumber);
    if (!numbers) throw noPortList(list);
    const auto missing = numbers->lower_bound(static_cast<std::uint32_t>(config.ports.size()));
    if (missing != numbers->end()) throw UsageError("no port " + std::to_string(*missing) + ofThisAsic);
    for (const std::uint32_t port : *numbers)
      ports |= std::uint32_t{1} << port;
  }
  return ports;
}

}  // namespace serdesctl
