// The command line, by CLI11.
#include "serdesctl/command_line.h"

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <span>
#include <sstream>

#include <CLI/CLI.hpp>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/output.h"
#include "serdesctl/base/waiting.h"
#include "serdesctl/help_text.h"
#include "serdesctl/subcommands/subcommands.h"

namespace serdesctl {
namespace {

constexpr double kLongestSeconds = 86400;

// CLI11's validators, which the help is made from; they judge otherwise, and name the value and what is allowed.
CLI::Validator judging(CLI::Validator validator, const std::function<bool(const std::string&)>& isRight,
                       const std::string& allowed) {
  validator.operation(
      [=](const std::string& word) { return isRight(word) ? std::string() : "'" + word + "' is " + allowed; });
  return validator;
}

template <typename Number>
CLI::Validator numberIn(Number lowest, Number highest) {
  const auto isRight = [=](const std::string& word) {
    Number number{};
    return CLI::detail::lexical_cast(word, number) && lowest <= number && number <= highest;
  };
  std::ostringstream allowed;
  allowed << "no number from " << lowest << " to " << highest;
  return judging(CLI::Range(lowest, highest), isRight, allowed.str());
}

CLI::Validator oneOf(const std::vector<std::string>& words) {
  const auto isRight = [=](const std::string& word) {
    return std::find(words.begin(), words.end(), word) != words.end();
  };
  return judging(CLI::IsMember(words), isRight, "none of " + CLI::detail::join(words, ", "));
}

void addCommonOptions(CLI::App& app, CommonOptions& common) {
  app.add_option(
         "-t,--target", common.target.target,
         "Where the tool runs: sim, sim:FILE (the simulated switch), ssh:[USER@]HOST, or a name of targets.toml; "
         "without it the tool of this machine")
      ->type_name("TARGET");
  app.add_option("--state", common.target.state, "Keep the simulated switch in FILE")->type_name("FILE");
  app.add_option("--timeout", common.timeout, "Wait this long for an answer")
      ->type_name("SECONDS")
      ->check(numberIn(0.001, kLongestSeconds))
      ->capture_default_str();
  app.add_option("--wait-lock", common.waitForLock, "Wait this long for others to leave the switch")
      ->type_name("SECONDS")
      ->check(numberIn(0.0, kLongestSeconds))
      ->capture_default_str();
  app.add_flag("--syslog", common.syslog, "Copy the journal's entries to syslog");
}

void addRunOptions(CLI::App& app, Options& options) {
  RunOptions& run = options.run;
  app.add_option("SCRIPT", run.scripts, "Script files, - for standard input")->required()->take_all();
  app.add_flag("-k,--keep-going", run.keepGoing, "Go on after a failed command, and fail in the end");
  CLI::Option* const check = app.add_flag("--check", run.check, "Check the scripts and send none of their commands");
  app.add_flag("--offline", run.offline, "Check without a switch")->needs(check);
  CLI::Option* const echo = app.add_flag("--echo", run.echo, "Print each command before its answer");
  app.add_flag("--json", run.json, "Print an object a line for each command")->excludes(echo);
}

void addJournalOptions(CLI::App& app, Options& options) {
  JournalOptions& journal = options.journal;
  app.add_option("--since", journal.since,
                 "Only from this time (UTC) on: 2025-11-21, 2025-11-21T21:13, or 90m, 12h, 7d ago")
      ->type_name("TIME");
  app.add_option("--run", journal.run, "Only this run's")->type_name("ID");
  app.add_flag("--json", journal.json, "Print an object a line for each command");
}

void addTwinOptions(CLI::App& app, Options& options) {
  TwinOptions& twin = options.twin;
  app.add_option("SAVE", twin.save, "Of this save, - for standard input; without it of the switch as it is");
  app.add_option("-o,--output", twin.output, "Write the description to FILE, and show how well it fits")
      ->type_name("FILE");
  app.add_flag("--registers", twin.registers, "With the values of the switch's registers; a save has them or not");
  app.add_flag("--json", twin.json, "Print how well it fits as one JSON object");
}

void addRehearseOptions(CLI::App& app, Options& options) {
  RehearseOptions& rehearse = options.rehearse;
  app.add_option(
         "FILE", rehearse.file,
         "A script, - for standard input, or a file whose name ends in .toml (settings) or .json (a save, a plan)")
      ->required();
  app.add_option("--on", rehearse.on, "On a twin of this save, instead of the switch as it is")->type_name("SAVE");
  app.add_flag("--through-cache", rehearse.throughCache, "Settings without a keyword by the cache, as for apply");
  app.add_flag("--json", rehearse.json, "Print one JSON object");
}

void addShowOptions(CLI::App& app, Options& options) {
  ShowOptions& show = options.show;
  app.add_option("COMMAND", show.command, "A command that shows something, with its words: showTxParams 0-3")
      ->required()
      ->take_all();
  app.add_option("--asic", show.asic, "Of this ASIC")->type_name("NUMBER")->check(numberIn(0, 1));
  CLI::Option* const json = app.add_flag("--json", show.json, "As one JSON object, the default but at a terminal");
  CLI::Option* const csv = app.add_flag("--csv", show.csv, "As a line of names and a line per record")->excludes(json);
  app.add_flag("--text", show.text, "As the tool prints it, the default at a terminal")->excludes(json)->excludes(csv);
}

void addParseOptions(CLI::App& app, Options& options) {
  ParseOptions& parse = options.parse;
  app.add_option("COMMAND", parse.command, "The command whose output is read, as far as it is known: showRx 0-3")
      ->take_all();
  app.add_option("--config", parse.config, "The answer to showConfig, which may stand in a log, for tables of a switch")
      ->type_name("FILE");
  app.add_option("--asic", parse.asic, "The ASIC that is current where the text begins")
      ->type_name("NUMBER")
      ->check(numberIn(0, 1));
  app.add_flag("--csv", parse.csv, "A line of names and a line per record, instead of a JSON object per answer");
}

void addHealthOptions(CLI::App& app, Options& options) {
  HealthOptions& health = options.health;
  app.add_option("PORTS", health.ports, "A port list: gl, 0-3 8; without it all ports of all ASICs")->take_all();
  app.add_option("--asic", health.asic, "Of this ASIC; PORTS are of ASIC 0 unless told")
      ->type_name("NUMBER")
      ->check(numberIn(0, 1));
  app.add_option("--interval", health.interval, "Look twice, so far apart, and tell errors a second")
      ->type_name("SECONDS")
      ->check(numberIn(0.001, kLongestSeconds));
  app.add_flag("--clear", health.clear, "Clear the ports' error counters first, which the journal tells");
  app.add_flag("--json", health.json, "Print one JSON object");
}

void addSaveOptions(CLI::App& app, Options& options) {
  SaveOptions& save = options.save;
  app.add_option("-o,--output", save.output, "Write to FILE, whole or not at all, instead of standard output")
      ->type_name("FILE");
  app.add_option("--ports", save.ports, "These ports alone: gl, 1-5,7")->type_name("LIST");
  app.add_option("--asic", save.asic, "Of this ASIC; without it all, and where ports are named ASIC 0")
      ->check(oneOf({"0", "1", "all"}));
  CLI::Option* const registers = app.add_flag("--registers", save.registers, "The registers too");
  app.add_flag("--as-settings", save.asSettings, "As a settings file, grouped for people")->excludes(registers);
}

void addDiffOptions(CLI::App& app, Options& options) {
  DiffOptions& diff = options.diff;
  app.add_option("A", diff.before, "A save, - for standard input")->required()->type_name("SAVE");
  app.add_option("B", diff.after, "Another save; without it the switch as it is")->type_name("SAVE");
  app.add_flag("--observations", diff.observations, "Rates in use, media, statistics and counters too");
  app.add_flag("--json", diff.json, "Print one JSON object");
}

void addSettingsOptions(CLI::App& app, Options& options) {
  app.add_option("FILE", options.settings.file, "A settings file, - for standard input")->required();
}

constexpr const char* kThroughCacheHelp =
    "Set what has no keyword by the cache of the running rate, and the speed anew; the cache is put back";

void addPlanOptions(CLI::App& app, Options& options) {
  PlanOptions& plan = options.plan;
  app.add_option("FILE", plan.file, "A settings file or a save, - for standard input")
      ->required()
      ->type_name("SETTINGS|SAVE");
  app.add_flag("--through-cache", plan.throughCache, kThroughCacheHelp);
  app.add_option("-o,--output", plan.output, "Keep the plan in FILE, for apply")->type_name("FILE");
  CLI::Option* const script = app.add_flag("--script", plan.script, "Print the commands alone, as a script");
  app.add_flag("--json", plan.json, "Print one JSON object")->excludes(script);
}

void addChangeOptions(CLI::App& app, ChangeOptions& change) {
  app.add_flag("-y,--yes", change.yes, "Do not ask");
  app.add_flag("--partial", change.partial, "Do what can be done where not all can");
  app.add_option("--guard", change.guard, "Watch the ports so long, and roll back if one gets worse")
      ->type_name("SECONDS")
      ->check(numberIn(0.1, kLongestSeconds));
  app.add_option("--confirm", change.confirm, "Roll back unless somebody confirms in this time")
      ->type_name("SECONDS")
      ->check(numberIn(0.1, kLongestSeconds));
}

void addApplyOptions(CLI::App& app, Options& options) {
  app.add_option("FILE", options.change.file, "A settings file, a save, or a plan that was kept; - for standard input")
      ->required()
      ->type_name("SETTINGS|SAVE|PLAN");
  app.add_flag("--through-cache", options.change.throughCache, kThroughCacheHelp);
  app.add_flag("--rehearse", options.change.rehearse,
               "Try it on a twin first; send nothing if that refuses some, or a port gets worse");
  addChangeOptions(app, options.change);
}

void addRestoreOptions(CLI::App& app, Options& options) {
  app.add_option("SAVE", options.change.file, "A save, - for standard input")->required();
  app.add_option("--ports", options.change.ports, "These ports alone: gl, 1-5,7")->type_name("LIST");
  app.add_option("--asic", options.change.asic, "Of this ASIC; LIST is of ASIC 0 unless told")
      ->type_name("NUMBER")
      ->check(numberIn(0, 1));
  app.add_flag("--through-cache", options.change.throughCache, kThroughCacheHelp);
  addChangeOptions(app, options.change);
}

void addUndoOptions(CLI::App& app, Options& options) {
  app.add_option("RUN", options.change.run, "A run as history calls it; without it the last one");
  app.add_flag("--force", options.change.force, "Even where somebody else has changed the same settings since");
  addChangeOptions(app, options.change);
}

void addHistoryOptions(CLI::App& app, Options& options) {
  app.add_flag("--json", options.history.json, "Print an object a line for each run");
}

void addConfirmOptions(CLI::App& app, Options& options) {
  app.add_option("RUN", options.change.run, "A run as pending calls it")->required();
}

constexpr std::array<Subcommand, 17> kSubcommands = {{
    {
        .name = "run",
        .description = "Check scripts and run them, up to the first command that fails",
        .addOptions = addRunOptions,
        .perform = performRun,
    },
    {
        .name = "show",
        .description = "Ask the tool something and print its answer as data",
        .addOptions = addShowOptions,
        .perform = performShow,
    },
    {
        .name = "parse",
        .description = "Read what the tool printed, or a log of it, from standard input and print it as data",
        .addOptions = addParseOptions,
        .perform = performParse,
    },
    {
        .name = "health",
        .description = "Show how well ports run, the worst first",
        .addOptions = addHealthOptions,
        .perform = performHealth,
    },
    {
        .name = "twin",
        .description = "Make a description for the simulated switch, whose links read as the switch's",
        .addOptions = addTwinOptions,
        .perform = performTwin,
    },
    {
        .name = "rehearse",
        .description = "Try a script or settings on a twin: what changes, what is refused, which ports get worse",
        .addOptions = addRehearseOptions,
        .perform = performRehearse,
    },
    {
        .name = "journal",
        .description = "Show what was changed, by whom and when; with --target that target's alone",
        .addOptions = addJournalOptions,
        .perform = performJournal,
    },
    {
        .name = "save",
        .description = "Save all that can be set of a switch as JSON; reading sets nothing",
        .addOptions = addSaveOptions,
        .perform = performSave,
    },
    {
        .name = "diff",
        .description = "Show what differs between two saves, or between a save and the switch",
        .addOptions = addDiffOptions,
        .perform = performDiff,
    },
    {
        .name = "settings",
        .description = "Check a settings file; with --target against the ports of that switch",
        .addOptions = addSettingsOptions,
        .perform = performSettings,
    },
    {
        .name = "plan",
        .description = "Show what would be done for a switch to be as a file says, and do nothing",
        .addOptions = addPlanOptions,
        .perform = performPlan,
    },
    {
        .name = "apply",
        .description = "Make a switch as a settings file says: send, read back, roll back what fails",
        .addOptions = addApplyOptions,
        .perform = performApply,
    },
    {
        .name = "restore",
        .description = "Make a switch as a save says",
        .addOptions = addRestoreOptions,
        .perform = performRestore,
    },
    {
        .name = "undo",
        .description = "Put back what a run of apply, restore or undo has changed",
        .addOptions = addUndoOptions,
        .perform = performUndo,
    },
    {
        .name = "history",
        .description = "Show the runs that changed switches; with --target that one's alone",
        .addOptions = addHistoryOptions,
        .perform = performHistory,
    },
    {
        .name = "pending",
        .description = "Show the runs that wait for a confirmation, and those that were interrupted",
        .addOptions = addHistoryOptions,
        .perform = performPending,
    },
    {
        .name = "confirm",
        .description = "Confirm a run that waits",
        .addOptions = addConfirmOptions,
        .perform = performConfirm,
    },
}};

constexpr const char* kDescription =
    "Drives serdes, the tool for the SerDes of a network switch, for people who automate.";
constexpr const char* kFooter =
    "Exit status:\n"
    "  0    done\n"
    "  1    a command failed, or what was looked for differs or is bad\n"
    "  2    usage, or refused before anything was sent\n"
    "  3    the switch could not be reached or opened, or the tool ended\n"
    "  4    no answer in time\n"
    "  5    locked: somebody else works on the switch\n"
    "  130  interrupted";

// What an unset variable of a shell leaves would mean the same as leaving the option out.
void refuseEmptyValues(CLI::App& app) {
  const auto judge = [](const std::string& word) { return std::string(word.empty() ? "its value is empty" : ""); };
  for (CLI::Option* option : app.get_options()) {
    if (option->get_items_expected_max() > 0) option->check(judge);
  }
}

// The program with these subcommands, filled by parsing into `options`, which must outlive it.
std::unique_ptr<CLI::App> buildApp(std::span<const Subcommand> rows, Options& options) {
  auto app = std::make_unique<CLI::App>(kDescription, "serdesctl");
  app->formatter(std::make_shared<HelpText>());
  app->footer(kFooter);
  app->set_help_flag("-h,--help", "Print this help");
  app->set_version_flag("--version", "serdesctl " SERDESCTL_VERSION, "Print the version");
  app->require_subcommand(0, 1);
  app->option_defaults()->take_last();  // so that an alias can have its own and be overruled
  app->fallthrough();                   // the common options may stand behind the subcommand too
  addCommonOptions(*app, options.common);
  for (const Subcommand& row : rows) {
    CLI::App& subcommand = *app->add_subcommand(row.name, row.description);
    subcommand.footer("Options for all subcommands: serdesctl --help");
    row.addOptions(subcommand, options);
    refuseEmptyValues(subcommand);
  }
  refuseEmptyValues(*app);
  return app;
}

// CLI11's own words for a word too many do not name it.
[[noreturn]] void refuse(const CLI::App& app, const CLI::ParseError& error) {
  const auto unknown = app.remaining(true);
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    const std::string what = error.what();
    throw UsageError(what.substr(0, what.find(':')) + ": its value is missing");
  }
  if (dynamic_cast<const CLI::ExtrasError*>(&error) == nullptr || unknown.empty()) throw UsageError(error.what());
  const bool isOption = unknown[0].size() > 1 && unknown[0][0] == '-';
  throw UsageError(std::string("unknown ") + (isOption ? "option" : "word") + " '" + unknown[0] + "'");
}

[[noreturn]] void refuseSubcommand(const std::vector<std::string>& words) {
  std::string names;
  for (const Subcommand& row : kSubcommands)
    names += (names.empty() ? "" : ", ") + std::string(row.name);
  if (words.empty()) throw UsageError("a subcommand is missing: one of " + names);
  throw UsageError("unknown subcommand '" + words[0] + "': not one of " + names);
}

void print(const std::string& text) {
  Output output(1);
  output.write(text);
  output.flush();
}

// Parses; true when --help or --version has been answered.
bool parse(CLI::App& app, int argc, char* argv[]) {
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    print(app.help());
    return true;
  } catch (const CLI::CallForVersion&) {
    print(app.version() + "\n");
    return true;
  } catch (const CLI::ParseError& error) {
    if (app.get_subcommands().empty() && !app.remaining().empty() && app.remaining()[0][0] != '-') {
      refuseSubcommand(app.remaining());
    }
    refuse(app, error);
  }
  return false;
}

}  // namespace

int runCommandLine(int argc, char* argv[]) {
  Options options;
  const SignalWatch watch;
  const auto app = buildApp(kSubcommands, options);
  if (parse(*app, argc, argv)) return kDone;
  for (const Subcommand& row : kSubcommands) {
    if (app->got_subcommand(row.name)) return row.perform(options);
  }
  refuseSubcommand({});
}

}  // namespace serdesctl
