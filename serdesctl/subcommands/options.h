// What the command line says, for each subcommand.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "serdesctl/target/target.h"

namespace serdesctl {

// The words of the command line that all subcommands share.
struct CommonOptions {
  TargetWords target;
  double waitForLock = 0;
  double timeout = 30;
  bool syslog = false;
};

struct RunOptions {
  std::vector<std::string> scripts;
  bool keepGoing = false;
  bool check = false;
  bool offline = false;
  bool echo = false;
  bool json = false;
};

struct JournalOptions {
  std::string since;
  std::string run;
  bool json = false;
};

struct ShowOptions {
  std::vector<std::string> command;
  std::uint32_t asic = 0;
  bool json = false;
  bool csv = false;
  bool text = false;
};

struct ParseOptions {
  std::vector<std::string> command;
  std::string config;
  std::optional<std::uint32_t> asic;
  bool csv = false;
};

struct HealthOptions {
  std::vector<std::string> ports;
  std::optional<std::uint32_t> asic;
  std::optional<double> interval;
  bool clear = false;
  bool json = false;
};

struct SaveOptions {
  std::string output;
  std::string ports;
  std::string asic;
  bool registers = false;
  bool asSettings = false;
};

struct DiffOptions {
  std::string before;
  std::string after;
  bool observations = false;
  bool json = false;
};

struct SettingsOptions {
  std::string file;
};

struct TwinOptions {
  std::string save;
  std::string output;
  bool registers = false;
  bool json = false;
};

struct RehearseOptions {
  std::string file;
  std::string on;
  bool throughCache = false;
  bool json = false;
};

struct PlanOptions {
  std::string file;
  bool throughCache = false;
  bool script = false;
  std::string output;
  bool json = false;
};

// Of apply, restore, undo and confirm.
struct ChangeOptions {
  std::string file;
  std::string run;
  std::string ports;
  std::optional<std::uint32_t> asic;
  bool yes = false;
  bool throughCache = false;
  bool partial = false;
  bool rehearse = false;
  bool force = false;
  std::optional<double> guard;
  std::optional<double> confirm;
};

struct HistoryOptions {
  bool json = false;
};

struct Options {
  CommonOptions common;
  RunOptions run;
  JournalOptions journal;
  ShowOptions show;
  ParseOptions parse;
  HealthOptions health;
  SaveOptions save;
  DiffOptions diff;
  TwinOptions twin;
  RehearseOptions rehearse;
  SettingsOptions settings;
  PlanOptions plan;
  ChangeOptions change;
  HistoryOptions history;
};

}  // namespace serdesctl
