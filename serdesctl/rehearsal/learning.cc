// Asking for the topology. Selecting an ASIC reads its cores and changes nothing.
#include "serdesctl/rehearsal/learning.h"

#include "serdesctl/base/errors.h"

namespace serdesctl {

LearntSwitch learnSwitch(Conversation& tool, const std::set<std::uint32_t>& others) {
  const StartText start = parseStart(tool.startText());
  LearntSwitch result = {.hardware = start.hardware, .asics = {}};
  result.asics[0] = {.discovery = start.discovery, .config = parseConfig(askForOutput(tool, "showConfig"))};
  bool left = false;
  for (const std::uint32_t asic : others) {
    if (asic == 0 || asic >= start.hardware.asics) continue;
    left = true;
    const Answer selected = tool.ask("setAsicNum " + std::to_string(asic));
    if (selected.status != CMD_OK) continue;
    result.asics[asic] = {.discovery = parseDiscovery(selected.output),
                          .config = parseConfig(askForOutput(tool, "showConfig"))};
  }
  if (left) (void)askForOutput(tool, "setAsicNum 0");
  return result;
}

std::string askForOutput(Conversation& tool, const std::string& command) {
  const Answer answer = tool.ask(command);
  if (answer.status != CMD_OK) throw ConnectionError(command + ": " + statusMessage(answer.status));
  return answer.output;
}

}  // namespace serdesctl
