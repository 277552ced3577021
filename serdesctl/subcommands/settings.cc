// serdesctl settings: checks a settings file.
#include <unistd.h>

#include <string>

#include "serdesctl/asking/asked_switch.h"
#include "serdesctl/base/errors.h"
#include "serdesctl/base/output.h"
#include "serdesctl/settings/settings_file.h"
#include "serdesctl/settings/wanted.h"
#include "serdesctl/subcommands/saving.h"
#include "serdesctl/subcommands/subcommands.h"

namespace serdesctl {
namespace {

// "lab.toml:4: ports 0-3 of ASIC 0"
std::string selectionText(const SettingsFile& file, const SettingsEntry& entry, const SelectedPorts& selected) {
  std::string text;
  for (const auto& [asic, ports] : selected)
    text += (text.empty() ? "" : ", ") + ("ports " + listOf(ports) + " of ASIC " + std::to_string(asic));
  return file.name + ":" + std::to_string(entry.line) + ": " + (text.empty() ? "no port" : text) + "\n";
}

std::string countText(const SettingsFile& file) {
  const std::size_t count = file.entries.size();
  return file.name + ": " + std::to_string(count) + (count == 1 ? " entry\n" : " entries\n");
}

std::string checkOnSwitch(const SettingsFile& file, const CommonOptions& common) {
  const Save now = captureSave(common, [](const SwitchText&) { return CaptureChoice{.statistics = false}; });
  (void)wantedState(file, now.state);
  const std::vector<SelectedPorts> selected = selectPorts(file, now.state);
  std::string text;
  for (std::size_t i = 0; i < selected.size(); ++i)
    text += selectionText(file, file.entries[i], selected[i]);
  return text;
}

}  // namespace

int performSettings(const Options& options) {
  const SettingsFile file = readSettings(options.settings.file);
  const bool alone = options.common.target.target.empty();
  Output output(STDOUT_FILENO);
  output.write(alone ? countText(file) : checkOnSwitch(file, options.common));
  output.flush();
  return kDone;
}

}  // namespace serdesctl
