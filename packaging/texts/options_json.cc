// Prints serdesctl's subcommands and options as JSON, from the objects that parse them: what its manual and its
// completion are made from.
#include <cstdio>

#include <nlohmann/json.hpp>

#include "serdesctl/command_line.cc"  // its rows, whose subcommands are taken out below

namespace {

using namespace serdesctl;
using Json = nlohmann::ordered_json;

// The rows without what they run, so that none of it need be linked.
constexpr auto kRows = [] {
  auto rows = kSubcommands;
  for (Subcommand& row : rows)
    row.perform = nullptr;
  return rows;
}();

Json optionJson(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames())
    names.push_back("-" + name);
  for (const std::string& name : option.get_lnames())
    names.push_back("--" + name);
  return {{"names", names},
          {"positional", option.get_positional() ? option.get_name(true) : ""},
          {"value", valueName(option)},
          {"choices", choices(option)},
          {"description", describe(option)},
          {"required", option.get_required()},
          {"repeated", option.get_expected_max() > 1}};
}

Json appJson(const CLI::App& app) {
  Json options = Json::array();
  for (const CLI::Option* option : app.get_options()) {
    const bool repeated = app.get_parent() != nullptr && option == app.get_help_ptr();
    if (!repeated) options.push_back(optionJson(*option));
  }
  Json subcommands = Json::array();
  for (const CLI::App* subcommand : app.get_subcommands([](const CLI::App*) { return true; }))
    subcommands.push_back(appJson(*subcommand));
  return {{"name", app.get_name()},
          {"description", app.get_description()},
          {"footer", app.get_footer()},
          {"options", options},
          {"subcommands", subcommands}};
}

}  // namespace

int main() {
  Options options;
  Json program = appJson(*buildApp(kRows, options));
  program["version"] = SERDESCTL_VERSION;
  std::printf("%s\n", program.dump(2).c_str());
  return std::fflush(stdout) == 0 && std::ferror(stdout) == 0 ? 0 : 1;
}
