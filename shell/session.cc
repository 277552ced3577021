// Start-up, the streams that a session consists of, and shut-down.
#include "shell/session.h"

#include <array>
#include <cstdio>

#include "commands/discovery.h"
#include "platform/platform.h"
#include "shell/command_reader.h"
#include "shell/help_and_loop.h"
#include "shell/output.h"
#include "topology/serdes_topology.h"

namespace {

constexpr std::size_t kPathSize = 4096;
constexpr const char* kScriptDirectory = "/norvex/conf/images/";

int runInteractive() {
  // Unbuffered, so that what was typed ahead stays where the loop command looks for it.
  (void)std::setvbuf(stdin, nullptr, _IONBF, 0);
  if (const CmdStatus status = helpCmdHandler(0, nullptr); status != CMD_OK) {
    std::printf("%s\n", statusMessage(status));
  }
  std::printf("\n\n");
  return runCommandStream(stdin, stdout);
}

// Opens a script as named or under the fallback directory; a longer path than fits is cut.
std::FILE* openScript(const char* name) {
  std::array<char, kPathSize> path;
  std::snprintf(path.data(), path.size(), "%s", name);
  std::FILE* file = std::fopen(path.data(), "r");
  if (file == nullptr) {
    std::snprintf(path.data(), path.size(), "%s%s", kScriptDirectory, name);
    file = std::fopen(path.data(), "r");
  }
  return file;
}

int runScripts(int count, char* names[]) {
  int status = 0;
  for (int i = 0; i < count; ++i) {
    flushOutput(stdout);  // what was printed so far stands before any complaint about the next script
    std::FILE* file = openScript(names[i]);
    if (file == nullptr) {
      std::perror("Error openning file");
      continue;
    }
    status = runCommandStream(file, stdout);
    if (status < 0) break;
    (void)std::fclose(file);
  }
  return status;
}

}  // namespace

CmdStatus openSerdes(int, char*[]) {
  Switch_HW_Config_t& config = serdesTopology.switchHwConfig;
  int result = AsicControl::AsicCtlOpen();
  if (result >= 0) result = PortControl::PortCtlOpen();
  if (result >= 0) result = AsicControl::GetSwitchConfig(&config);
  if (result < 0) return platformFailure(result, __func__);
  std::printf("switchHwConfig.NumSlots:%d\n", config.NumSlots);
  std::printf("switchHwConfig.NumUserPorts:%d\n", config.NumUserPorts);
  std::printf("switchHwConfig.NumAuxPorts:%d\n", config.NumAuxPorts);
  std::printf("switchHwConfig.NumASICs:%d\n", static_cast<int>(config.NumASICs));
  char command[] = "";
  char firstAsic[] = "0";
  std::array words = {command, firstAsic};
  return setAsicNumCmdHandler(1, words.data());
}

int closeSerdes() {
  const int asicResult = AsicControl::AsicCtlClose();
  const int portResult = PortControl::PortCtlClose();
  return asicResult != 0 ? asicResult : portResult;
}

int runSession(int argc, char* argv[]) {
  // A failed start-up has been reported as CMD_EXEC_ERROR, which is not negative: the session runs all the same, so
  // that an engineer can look at a switch that is half alive.
  if (const CmdStatus status = openSerdes(argc, argv); status < 0) {
    printSerdesError(status, "main()->openSerdes()");
    return -1;
  }
  std::printf("\n");
  interactive = argc <= 1;
  const int status = interactive ? runInteractive() : runScripts(argc - 1, argv + 1);
  if (const int result = closeSerdes(); result < 0) {
    printSerdesError(result, "main()->closeSerdes()");
    return -1;
  }
  return status;
}

CmdStatus exitCmdHandler(int, char*[]) {
  return CMD_EXIT;
}
