// The kinds of targets.
#include "serdesctl/target/target.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/text.h"
#include "serdesctl/target/lock.h"
#include "serdesctl/target/remote.h"
#include "serdesctl/target/targets_file.h"

namespace serdesctl {
namespace {

constexpr const char* kTool = "serdes";
constexpr const char* kSimulatorLibrary = "libasicApi.so";
constexpr const char* kStateVariable = "SERDES_SIMULATOR_STATE";
constexpr const char* kUsualPlace = "-";  // of the lock on another machine

// No password prompts, no terminal, and no escape characters in what is sent.
const std::vector<std::string> kSsh = {"ssh", "-o", "BatchMode=yes", "-o", "ServerAliveInterval=10",
                                       "-T",  "-e", "none",          "-x", "--"};

std::filesystem::path ownFolder() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

bool isThere(const std::filesystem::path& path) {
  return ::access(path.c_str(), F_OK) == 0;
}

// The tool that SERDESCTL_TOOL names, else the one beside this program, else the one in PATH.
std::string toolOfThisMachine() {
  if (const auto tool = environmentVariable("SERDESCTL_TOOL")) return *tool;
  const std::filesystem::path beside = ownFolder() / kTool;
  return isThere(beside) ? beside.string() : kTool;
}

std::string usualLockFile() {
  if (const auto file = environmentVariable("SERDESCTL_LOCK")) return *file;
  return lockFolder() + "/serdes.lock";
}

Target localTarget() {
  return {.name = "local",
          .tool = {.words = {toolOfThisMachine()}, .environment = {}},
          .reach = {},
          .lockFile = usualLockFile()};
}

// The simulated switch's libraries: beside this program in a build, else where they are installed.
std::string simulatorFolder() {
  const std::filesystem::path beside = ownFolder();
  const std::filesystem::path installed = (beside / SERDESCTL_SIMULATOR_FROM_BIN).lexically_normal();
  for (const std::filesystem::path& folder : {beside, installed}) {
    if (isThere(folder / kSimulatorLibrary)) return folder;
  }
  throw UsageError("the simulated switch is not installed: no " + std::string(kSimulatorLibrary) + " in " +
                   beside.string() + " or " + installed.string());
}

// A switch that is kept has one user at a time, and every name of its file the same lock.
std::string lockOfState(const std::string& stateFile) {
  std::error_code error;
  // Without a folder in front, a file that is not there yet would keep its relative name.
  const std::filesystem::path path = std::filesystem::weakly_canonical(std::filesystem::absolute(stateFile), error);
  return (error ? stateFile : path.string()) + ".serdesctl.lock";
}

Target simulatedTarget(const TargetWords& words) {
  Target target = {
      .name = words.target, .tool = {.words = {toolOfThisMachine()}, .environment = {}}, .reach = {}, .lockFile = {}};
  auto& environment = target.tool.environment;
  const std::string libraries = simulatorFolder();
  const auto others = environmentVariable("LD_LIBRARY_PATH");
  environment.emplace_back("LD_LIBRARY_PATH", others ? libraries + ":" + *others : libraries);
  if (const std::string prefix = "sim:"; words.target.starts_with(prefix)) {
    const std::string file = words.target.substr(prefix.size());
    if (file.empty()) throw UsageError("target sim: names no file");
    environment.emplace_back("SERDES_SIMULATOR_SWITCH", file);
  }
  if (!words.state.empty()) environment.emplace_back(kStateVariable, words.state);
  const std::string state = words.state.empty() ? environmentVariable(kStateVariable).value_or("") : words.state;
  if (!state.empty()) target.lockFile = lockOfState(state);
  return target;
}

void reachBySsh(Target& target, const std::string& host) {
  const auto unfit = [](char c) { return c == ' ' || isControlCharacter(c); };
  if (host.empty() || host[0] == '-' || std::any_of(host.begin(), host.end(), unfit)) {
    throw UsageError("target " + target.name + ": '" + host + "' is no [USER@]HOST");
  }
  target.reach = kSsh;
  target.reach.push_back(host);
  if (target.lockFile.empty()) target.lockFile = kUsualPlace;
  if (target.tool.words.empty()) target.tool.words = {kTool};
}

Target sshTarget(const TargetWords& words) {
  Target target = {.name = words.target, .tool = {}, .reach = {}, .lockFile = {}};
  reachBySsh(target, words.target.substr(std::string("ssh:").size()));
  return target;
}

Target namedTarget(const TargetWords& words) {
  const auto named = findNamedTarget(words.target);
  if (!named) {
    std::string files;
    for (const std::string& file : targetsFiles())
      files += (files.empty() ? "" : " or ") + file;
    throw UsageError("unknown target '" + words.target + "': not sim, sim:FILE or ssh:[USER@]HOST, and no name in " +
                     files);
  }
  Target target = {.name = words.target, .tool = named->command, .reach = {}, .lockFile = named->lock};
  if (!named->ssh.empty()) {
    reachBySsh(target, named->ssh);
  } else if (target.lockFile.empty()) {
    target.lockFile = lockFolder() + "/serdes." + words.target + ".lock";
    std::replace(target.lockFile.begin() + static_cast<std::ptrdiff_t>(lockFolder().size()) + 1, target.lockFile.end(),
                 '/', '_');
  }
  return target;
}

Target targetOf(const TargetWords& words) {
  if (words.target.empty()) return localTarget();
  if (words.target == "sim" || words.target.starts_with("sim:")) return simulatedTarget(words);
  if (words.target.starts_with("ssh:")) return sshTarget(words);
  return namedTarget(words);
}

}  // namespace

Target findTarget(const TargetWords& words) {
  if (!words.state.empty() && words.target != "sim" && !words.target.starts_with("sim:")) {
    throw UsageError("--state goes with the target sim alone");
  }
  Target target = targetOf(words);
  target.waitForLock = words.waitForLock;
  return target;
}

Start prepareStart(const Target& target) {
  Start start;
  if (target.reach.empty()) {
    start.command = target.tool;
    if (!target.lockFile.empty()) start.lock = takeLock(target.lockFile, lockHolder(), target.waitForLock);
    return start;
  }
  start.command.words = target.reach;
  start.command.words.push_back(quoted(remoteWords(target, lockHolder())));
  return start;
}

}  // namespace serdesctl
