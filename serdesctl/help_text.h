// How an option is worded, for --help and for what is made from the options: manual and completion.
#pragma once

#include <algorithm>
#include <cstddef>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace serdesctl {

// The words that an option's value is one of; empty when it is not one of few.
inline std::vector<std::string> choices(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  const std::size_t begin = type.find('{');
  if (begin == std::string::npos) return {};
  return CLI::detail::split(type.substr(begin + 1, type.find('}', begin) - begin - 1), ',');
}

// What stands for an option's value: SECONDS, or the choices for one without a name; empty for one that takes none.
inline std::string valueName(const CLI::Option& option) {
  if (option.get_type_size() == 0) return "";
  const std::string type = option.get_type_name();  // SECONDS:FLOAT in [0 - 86400], or TEXT:{tx,rx}
  const std::string name = type.substr(0, type.find(':'));
  return name == "TEXT" && !choices(option).empty() ? CLI::detail::join(choices(option), "|") : name;
}

// "0 to 86400", empty when any value will do.
inline std::string limits(const CLI::Option& option) {
  std::string type = option.get_type_name();
  const std::size_t begin = type.find("in [");
  if (begin == std::string::npos) return "";
  type = type.substr(begin + 4, type.find(']', begin) - begin - 4);
  return CLI::detail::find_and_replace(type, " - ", " to ");
}

inline std::string joinedNames(const std::set<CLI::Option*>& options) {
  std::vector<std::string> names(options.size());
  std::transform(options.begin(), options.end(), names.begin(), [](const auto* option) { return option->get_name(); });
  std::sort(names.begin(), names.end());
  return CLI::detail::join(names, ", ");
}

// The description of an option and all that its object knows besides.
inline std::string describe(const CLI::Option& option) {
  std::vector<std::string> remarks;
  const auto add = [&](const char* before, const std::string& text) {
    if (!text.empty()) remarks.push_back(before + text);
  };
  add("", limits(option));
  add("default ", option.get_default_str());
  add("with ", joinedNames(option.get_needs()));
  add("not with ", joinedNames(option.get_excludes()));
  return option.get_description() + (remarks.empty() ? "" : " (" + CLI::detail::join(remarks, "; ") + ")");
}

// Broken into lines of at most `width` characters, but for longer words.
inline std::string wrapped(const std::string& text, std::size_t width) {
  std::istringstream words(text);
  std::string lines;
  std::size_t length = 0;
  for (std::string word; words >> word;) {
    const bool breaks = length + 1 + word.size() > width;
    if (!lines.empty()) lines += breaks ? '\n' : ' ';
    length = breaks ? word.size() : length + 1 + word.size();
    lines += word;
  }
  return lines;
}

// Fits a terminal of 80 columns.
class HelpText : public CLI::Formatter {
 public:
  HelpText() {
    column_width(kNames);
  }
  std::string make_option_opts(const CLI::Option* option) const override {
    const std::string value = option->get_positional() ? "" : valueName(*option);
    return value.empty() ? "" : " " + value;
  }
  std::string make_option_desc(const CLI::Option* option) const override {
    return wrapped(describe(*option), kWidth - kNames);
  }
  std::string make_subcommand(const CLI::App* subcommand) const override {
    std::ostringstream out;
    CLI::detail::format_help(out, subcommand->get_name(), wrapped(subcommand->get_description(), kWidth - kNames),
                             kNames);
    return out.str();
  }

 private:
  static constexpr std::size_t kWidth = 80;
  static constexpr std::size_t kNames = 26;
};

}  // namespace serdesctl
