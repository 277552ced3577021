// targets.toml.
#include "serdesctl/target/targets_file.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <string_view>

#include <toml++/toml.h>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/files.h"
#include "serdesctl/base/text.h"

namespace serdesctl {
namespace {

constexpr std::size_t kMostBytes = 1U << 20;
constexpr const char* kSystemFile = "/etc/serdesctl/targets.toml";
constexpr std::array<std::string_view, 4> kKeys = {"ssh", "command", "environment", "lock"};

class TargetReader {
 public:
  TargetReader(const std::string& fileName, const std::string& name) : fileName_(fileName), name_(name) {}

  NamedTarget read(const toml::table& table) const {
    for (const auto& [key, value] : table) {
      if (std::find(kKeys.begin(), kKeys.end(), key.str()) == kKeys.end()) {
        fail(value, key.str(), "is none of ssh, command, environment, lock");
      }
    }
    NamedTarget target;
    if (const toml::node* node = table.get("ssh")) target.ssh = text(*node, "ssh");
    if (const toml::node* node = table.get("command")) target.command.words = words(*node);
    if (const toml::node* node = table.get("environment")) target.command.environment = variables(*node);
    if (const toml::node* node = table.get("lock")) target.lock = text(*node, "lock");
    if (target.ssh.empty() && target.command.words.empty()) fail(table, "command", "is missing");
    return target;
  }

  [[noreturn]] void fail(const toml::node& at, std::string_view key, const std::string& what) const {
    throw UsageError(fileName_ + ":" + std::to_string(at.source().begin.line) + ": " + name_ + "." + std::string(key) +
                     ": " + what);
  }

 private:
  // A text that is not empty and that every shell and operating system takes as it is.
  std::string text(const toml::node& node, std::string_view key) const {
    const auto value = node.value_exact<std::string>();
    if (!value || value->empty()) fail(node, key, "is not a text");
    if (std::any_of(value->begin(), value->end(), isControlCharacter)) {
      fail(node, key, "has a control character");
    }
    return *value;
  }

  std::vector<std::string> words(const toml::node& node) const {
    const toml::array* const array = node.as_array();
    if (array == nullptr || array->empty()) fail(node, "command", "is not a list of words");
    std::vector<std::string> result;
    for (const toml::node& word : *array)
      result.push_back(text(word, "command"));
    return result;
  }

  std::vector<std::pair<std::string, std::string>> variables(const toml::node& node) const {
    const toml::table* const table = node.as_table();
    if (table == nullptr) fail(node, "environment", "is not a table");
    std::vector<std::pair<std::string, std::string>> result;
    for (const auto& [name, value] : *table) {
      if (name.str().empty() || name.str().find('=') != std::string_view::npos) fail(value, "environment", "bad name");
      result.emplace_back(name.str(), text(value, name.str()));
    }
    return result;
  }

  std::string fileName_;
  std::string name_;
};

toml::table parseFile(const std::string& fileName) {
  try {
    return toml::parse(readFile(fileName, kMostBytes), fileName);
  } catch (const toml::parse_error& error) {
    throw UsageError(fileName + ":" + std::to_string(error.source().begin.line) + ": " +
                     std::string(error.description()));
  }
}

std::string configurationFolder() {
  if (const auto folder = environmentVariable("XDG_CONFIG_HOME")) return *folder;
  return environmentVariable("HOME").value_or("") + "/.config";
}

}  // namespace

std::vector<std::string> targetsFiles() {
  return {configurationFolder() + "/serdesctl/targets.toml", kSystemFile};
}

std::optional<NamedTarget> findNamedTarget(const std::string& name) {
  for (const std::string& fileName : targetsFiles()) {
    if (::access(fileName.c_str(), F_OK) != 0) continue;
    const toml::table file = parseFile(fileName);
    const toml::node* const node = file.get(name);
    if (node == nullptr) continue;
    const TargetReader reader(fileName, name);
    const toml::table* const table = node->as_table();
    if (table == nullptr) reader.fail(*node, "", "is not a table");
    return reader.read(*table);
  }
  return std::nullopt;
}

}  // namespace serdesctl
