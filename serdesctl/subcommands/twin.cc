// serdesctl twin: a description for the simulated switch that reads as the switch does.
#include <unistd.h>

#include <string>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/files.h"
#include "serdesctl/base/output.h"
#include "serdesctl/subcommands/saving.h"
#include "serdesctl/subcommands/subcommands.h"
#include "serdesctl/twin/twin.h"

namespace serdesctl {

Save saveOrSwitch(const CommonOptions& options, const std::string& file, bool registers) {
  if (!file.empty()) return readSave(file);
  return captureSave(options, [&](const SwitchText&) { return CaptureChoice{.registers = registers}; });
}

std::string originText(const Origin& origin) {
  return origin.target.value_or("a switch") + (origin.time ? " as it was at " + *origin.time : "");
}

int performTwin(const Options& options) {
  const TwinOptions& words = options.twin;
  requireWritable(words.output);
  const Save save = saveOrSwitch(options.common, words.save, words.registers);
  const Twin twin = makeTwin(save.state, originText(save.origin));
  Output output(STDOUT_FILENO);
  if (!words.output.empty()) writeFileWhole(words.output, twin.description);
  if (words.json) {
    output.write(jsonReport(twin, save.origin));
  } else {
    output.write(words.output.empty() ? twin.description : textReport(twin));
  }
  output.flush();
  return save.state.unread.empty() ? kDone : kFailed;
}

}  // namespace serdesctl
