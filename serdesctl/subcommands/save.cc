// serdesctl save: all that the tool can set, and what was seen beside it.
#include <unistd.h>

#include <ctime>
#include <string>

#include "serdesctl/asking/asked_switch.h"
#include "serdesctl/base/errors.h"
#include "serdesctl/base/files.h"
#include "serdesctl/base/output.h"
#include "serdesctl/session/conversation.h"
#include "serdesctl/settings/as_settings.h"
#include "serdesctl/state/state_json.h"
#include "serdesctl/subcommands/saving.h"
#include "serdesctl/subcommands/subcommands.h"

namespace serdesctl {
namespace {

CaptureChoice choiceOf(const SaveOptions& options) {
  CaptureChoice choice = {.registers = options.registers};
  if (!options.ports.empty()) {
    choice.ports = [&](const ConfigText& config) { return portsOfList(options.ports, config); };
  }
  const bool all = options.asic == "all" || (options.asic.empty() && options.ports.empty());
  if (!all) choice.asics = {options.asic == "1" ? 1U : 0U};
  return choice;
}

void put(const std::string& file, const std::string& text) {
  if (!file.empty()) {
    writeFileWhole(file, text);
    return;
  }
  Output output(STDOUT_FILENO);
  output.write(text);
  output.flush();
}

void complainOfUnread(const SwitchState& state) {
  for (const Unread& one : state.unread) {
    const std::string place = one.port ? " port " + std::to_string(*one.port) : "";
    (void)writeAll(STDERR_FILENO,
                   "serdesctl: ASIC " + std::to_string(one.asic) + place + ": " + one.what + ": " + one.why + "\n");
  }
}

}  // namespace

Save captureSave(const CommonOptions& options, const ChooseCapture& choose) {
  const Target target = chosenTarget(options);
  Conversation tool(target, Seconds(options.timeout));
  const CaptureChoice choice = choose(parseStart(tool.startText()).hardware);
  Save save = {.state = capture(tool, choice), .origin = {.target = target.name, .time = utcTime(std::time(nullptr))}};
  // Nothing was changed: what the tool says of its end does not matter.
  std::string lastWords;
  (void)tool.close(lastWords);
  complainOfUnread(save.state);
  return save;
}

int performSave(const Options& options) {
  requireWritable(options.save.output);
  const Save save = captureSave(options.common, [&](const SwitchText&) { return choiceOf(options.save); });
  put(options.save.output, options.save.asSettings ? settingsText(save) : saveText(save));
  return save.state.unread.empty() ? kDone : kFailed;
}

}  // namespace serdesctl
