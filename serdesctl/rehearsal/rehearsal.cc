// Rehearsing commands.
#include "serdesctl/rehearsal/rehearsal.h"

#include <fcntl.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>

#include "arguments/argument_parsers.h"
#include "serdesctl/base/errors.h"
#include "serdesctl/base/files.h"
#include "serdesctl/rehearsal/rehearsal_platform.h"
#include "shell/command_reader.h"
#include "topology/serdes_topology.h"

namespace serdesctl {
namespace {

constexpr std::uint32_t kUsualType = 2;  // one that every command takes

// While it lives, standard output is another descriptor.
class OutputTo {
 public:
  OutputTo(const Fd& descriptor, const Fd& former) : former_(former) {
    if (::dup2(descriptor.get(), STDOUT_FILENO) < 0) throw ConnectionError("cannot rehearse: " + errorText());
  }
  ~OutputTo() {
    (void)std::fflush(stdout);
    (void)::dup2(former_.get(), STDOUT_FILENO);
  }
  OutputTo(const OutputTo&) = delete;
  OutputTo& operator=(const OutputTo&) = delete;

 private:
  const Fd& former_;
};

// The widest ASIC that there can be, whose ports are of no type: nothing that some switch allows is refused.
RehearsedAsic unknownAsic() {
  RehearsedAsic asic;
  asic.portCount = kMaxPorts;
  asic.coreCount = kMaxCores;
  const PortSide side = {.linkCount = kMaxLinks, .serDesType = kUsualType, .coreId = 0};
  for (RehearsedPort& port : asic.ports)
    port = {.rx = side, .tx = side, .portType = 0, .userPort = kNoUserPort};
  return asic;
}

// The number of a SerDes type that showConfig gives by name: the core's own where the names agree, else the first of
// that name.
std::uint32_t typeNumber(const LearntAsic& learnt, const ConfigSide& side) {
  const auto& types = learnt.config.types;
  for (const FoundCore& core : learnt.discovery.cores) {
    const bool known = core.core == side.core && core.serDesType < types.size();
    if (known && types[core.serDesType].name == side.serDesType) return core.serDesType;
  }
  const auto named =
      std::find_if(types.begin(), types.end(), [&](const ConfigType& t) { return t.name == side.serDesType; });
  return named != types.end() ? static_cast<std::uint32_t>(named - types.begin()) : kUsualType;
}

PortSide rehearsedSide(const LearntAsic& learnt, const ConfigSide& side) {
  return {.linkCount = side.links, .serDesType = typeNumber(learnt, side), .coreId = side.core};
}

std::uint32_t portType(const ConfigText& config, std::uint32_t port) {
  const std::uint32_t bit = std::uint32_t{1} << port;
  if ((config.glPorts & bit) != 0) return kPortTypeGl;
  if ((config.xgPorts & bit) != 0) return kPortTypeXg;
  return (config.exgPorts & bit) != 0 ? kPortTypeExg : 0;
}

RehearsedAsic rehearsedAsic(const LearntAsic& learnt) {
  RehearsedAsic asic;
  asic.known = true;
  asic.portCount = learnt.config.portCount;
  asic.coreCount = learnt.config.coreCount;
  for (const ConfigPort& port : learnt.config.ports) {
    if (port.port >= kMaxPorts) continue;
    asic.ports[port.port] = {.rx = rehearsedSide(learnt, port.rx),
                             .tx = rehearsedSide(learnt, port.tx),
                             .portType = portType(learnt.config, port.port),
                             .userPort = static_cast<std::uint16_t>(port.userPort.value_or(kNoUserPort))};
  }
  for (const FoundCore& core : learnt.discovery.cores) {
    if (core.core >= kMaxCores) continue;
    asic.cores[core.core] = {.firstPort = static_cast<unsigned short>(core.firstPort),
                             .serDesType = core.serDesType,
                             .pllRegisters = core.pllRegisters,
                             .rxRegisters = core.rxRegisters,
                             .txRegisters = core.txRegisters,
                             .rxParams = core.rxParams,
                             .txParams = core.txParams};
  }
  return asic;
}

// Where the port list of a command begins, and whether it is one of cores; nothing for a command without one. Two
// synopses leave a word out, which the least number of words makes up for.
struct ListPlace {
  std::size_t first = 0;
  bool cores = false;
};

std::optional<ListPlace> listPlace(const CmdTableEntry& row) {
  const Words synopsis = splitWords(row.argHelp);
  if (synopsis.empty()) return std::nullopt;
  const char* const last = synopsis.back().c_str();
  const bool cores = strcasecmp(last, "[corelist]") == 0;
  if (!cores && strcasecmp(last, "[portlist]") != 0) return std::nullopt;
  return ListPlace{.first = std::max(static_cast<std::size_t>(row.minArgs), synopsis.size()), .cores = cores};
}

// The list that a keyword stands for; nothing for another word.
std::optional<std::uint32_t> keywordList(const std::string& word, std::uint32_t gl, std::uint32_t xg,
                                         std::uint32_t exg) {
  const char* const text = word.c_str();
  if (strcasecmp(text, "all") == 0) return gl | xg | exg;
  if (strcasecmp(text, "gl") == 0) return gl;
  if (strcasecmp(text, "xg") == 0) return xg;
  if (strcasecmp(text, "exg") == 0) return exg;
  return std::nullopt;
}

// The first and the last number of "3" or "3-7"; nothing for a word that the tool takes and no engineer means.
std::optional<std::pair<std::uint32_t, std::uint32_t>> numbersOf(const std::string& word) {
  const std::size_t dash = word.find('-');
  std::uint32_t first = 0;
  std::uint32_t last = 0;
  if (parseNumber(word.substr(0, dash).c_str(), first) != CMD_OK) return std::nullopt;
  if (dash == std::string::npos) return std::pair(first, first);
  if (parseNumber(word.substr(dash + 1).c_str(), last) != CMD_OK || last < first) return std::nullopt;
  return std::pair(first, last);
}

std::string onThisAsic() {
  return " of ASIC " + std::to_string(serdesTopology.asicNum);
}

// What a list that the tool accepts names in vain.
std::string missingInList(const Words& words, const ListPlace& place, bool known) {
  const SerdesTopology& t = serdesTopology;
  const std::string what = place.cores ? "core" : "port";
  const std::uint32_t count = std::min(place.cores ? t.coreCount : t.portCount, place.cores ? kMaxCores : kMaxPorts);
  if (words.size() == place.first + 1) {
    const auto list = place.cores ? keywordList(words.back(), t.glCoreMask, t.xgCoreMask, t.exgCoreMask)
                                  : keywordList(words.back(), t.glPortList, t.xgPortList, t.exgPortList);
    if (list) return *list == 0 && known ? what + "s '" + words.back() + "'" + onThisAsic() : "";
  }
  for (std::size_t i = place.first; i < words.size(); ++i) {
    const auto numbers = numbersOf(words[i]);
    if (!numbers) return what + "s '" + words[i] + "'";
    if (numbers->second >= count) {
      return what + " " + std::to_string(std::max(numbers->first, count)) + onThisAsic();
    }
  }
  return "";
}

}  // namespace

std::optional<std::uint32_t> selectedAsic(const Words& words) {
  const Words command = innermostCommand(words);
  const CmdTableEntry* const row = findCommand(command[0]);
  std::uint32_t asic = 0;
  if (row == nullptr || std::strcmp(row->name, "setAsicNum") != 0 || command.size() < 2) return std::nullopt;
  if (parseNumber(command[1].c_str(), asic) != CMD_OK) return std::nullopt;
  return asic;
}

Rehearsal::Rehearsal() {
  rehearsedSwitch = {};
  rehearsedSwitch.hardware.NumASICs = kMostAsics;
  rehearsedSwitch.asics.fill(unknownAsic());
  start();
}

Rehearsal::Rehearsal(const LearntSwitch& learnt) {
  rehearsedSwitch = {};
  rehearsedSwitch.hardware.NumASICs = learnt.hardware.asics;
  rehearsedSwitch.asics.fill(unknownAsic());
  for (const auto& [asic, described] : learnt.asics) {
    if (asic < kMostAsics) rehearsedSwitch.asics[asic] = rehearsedAsic(described);
  }
  start();
}

void Rehearsal::start() {
  nowhere_.reset(::open("/dev/null", O_WRONLY | O_CLOEXEC));
  standardOutput_.reset(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  if (!nowhere_.isOpen() || !standardOutput_.isOpen()) throw ConnectionError("cannot rehearse: " + errorText());
  serdesTopology = {};
  serdesTopology.switchHwConfig = rehearsedSwitch.hardware;
  interactive = false;
  (void)judge({"setAsicNum", "0"});
}

// A loop's command is asked twice, as its first passes are: after a help text the second pass finds another command.
Forecast Rehearsal::judge(const Words& words) {
  const Words command = innermostCommand(words);
  const int times = command.size() == words.size() ? 1 : 2;
  rehearsedCalls.clear();
  missingPlace.clear();
  Forecast forecast;
  forecast.status = dispatch(command, times);
  forecast.changes = std::any_of(rehearsedCalls.begin(), rehearsedCalls.end(), [](const auto& c) { return c.changes; });
  // Statistics of a SerDes type without a layout fail, whatever else the list names.
  if (forecast.status != CMD_OK && forecast.status != CMD_EXEC_ERROR) return forecast;
  forecast.missing = missingPlace;
  const CmdTableEntry* const row = findCommand(command[0]);
  if (asksForHelp(command)) return forecast;
  const bool known = serdesTopology.asicNum < kMostAsics && rehearsedSwitch.asics[serdesTopology.asicNum].known;
  if (const auto place = listPlace(*row)) forecast.missing = missingInList(command, *place, known);
  return forecast;
}

CmdStatus Rehearsal::dispatch(const Words& words, int times) const {
  if (words.size() > static_cast<std::size_t>(kMaxWords)) return CMD_TOO_MANY_ARGS;
  Words copies = words;
  std::vector<char*> pointers;
  for (std::string& word : copies)
    pointers.push_back(word.data());
  const OutputTo discarded(nowhere_, standardOutput_);
  CmdStatus status = CMD_OK;
  for (int i = 0; i < times && status == CMD_OK; ++i)
    status = dispatchCommand(static_cast<int>(pointers.size()), pointers.data());
  return status;
}

void refuseMissing(const Words& words, Conversation& tool, std::uint32_t asic) {
  Rehearsal rehearsal(learnSwitch(tool, {asic}));
  (void)rehearsal.judge({"setAsicNum", std::to_string(asic)});
  const std::string missing = rehearsal.judge(words).missing;
  if (!missing.empty()) throw UsageError("no " + missing);
}

}  // namespace serdesctl
