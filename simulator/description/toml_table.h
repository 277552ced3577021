// Values and tables of a description file: values are checked for kind and range, keys for being known. Messages name
// file, line and key.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/description/toml_text.h"

namespace simulator {

// A word and what it stands for.
struct Choice {
  std::string_view name;
  std::uint32_t value;
};

// "a", "b" for all of them.
std::string listOf(std::span<const Choice> choices);
std::string quoted(std::string_view word);
std::string rangeText(std::int64_t least, std::int64_t greatest);

class TomlTable;

// The value of a key. What it refers to must outlive it.
class TomlValue {
 public:
  TomlValue(const toml::node& node, std::string path, const std::string& fileName)
      : node_(&node), path_(std::move(path)), fileName_(&fileName) {}

  bool isText() const {
    return node_->is_string();
  }
  bool isTable() const {
    return node_->is_table();
  }
  std::int64_t integer(std::int64_t least, std::int64_t greatest) const;
  double number(double least, double greatest) const;
  bool boolean() const;
  std::string text() const;
  // A word, or a number for a word of digits.
  std::uint32_t choice(std::span<const Choice> choices) const;
  // A list of words, as a set of bits.
  std::uint32_t choiceSet(std::span<const Choice> choices) const;
  std::vector<std::string> texts() const;
  std::vector<std::int64_t> integers(std::int64_t least, std::int64_t greatest) const;
  std::vector<TomlValue> lists() const;
  // A number, or ranges of numbers such as "0-7,9", in the order in which they are written.
  std::vector<unsigned> indexes(unsigned greatest) const;
  TomlTable table() const;
  std::vector<TomlTable> tables() const;
  // The same into a target of any type that has room for the range.
  template <typename T>
  void store(T& target, std::int64_t least, std::int64_t greatest) const {
    target = static_cast<T>(integer(least, greatest));
  }

  // The error at this value.
  [[noreturn]] void fail(const std::string& what) const;

 private:
  const toml::array& list(const std::string& what) const;

  const toml::node* node_;
  std::string path_;
  const std::string* fileName_;
};

// A key that a table may have, and what its value does to the thing that the table describes. Keys are read in the
// order of their rows, whatever their order in the file. No function for what is read apart from the others.
template <typename T>
struct Key {
  std::string_view name;
  void (*read)(const TomlValue& value, T& target) = nullptr;
};

class TomlTable {
 public:
  // `path` is the table's key in full, empty for the whole file.
  TomlTable(const toml::table& table, std::string path, const std::string& fileName)
      : table_(&table), path_(std::move(path)), fileName_(&fileName) {}

  bool has(std::string_view key) const {
    return table_->contains(key);
  }
  std::optional<TomlValue> find(std::string_view key) const;
  // An error `what` when there is none.
  TomlValue need(std::string_view key, const std::string& what) const;
  // The tables of a list; none when the key is absent.
  std::vector<TomlTable> tables(std::string_view key) const;
  // Every key, in alphabetical order.
  std::vector<std::string> keys() const;

  // The error at a key, or at the table itself when the key is absent.
  [[noreturn]] void fail(std::string_view key, const std::string& what) const;

  // An error at a key that is none of the rows. To be asked before anything is missed: a key that is spelt wrong is the
  // mistake, not the one that is missing for it.
  template <typename Rows>
  void allow(const Rows& rows) const {
    std::vector<std::string_view> names;
    names.reserve(std::size(rows));
    for (const auto& row : rows)
      names.push_back(row.name);
    allowNames(names);
  }
  template <typename Rows, typename T>
  void read(const Rows& rows, T& target) const {
    allow(rows);
    for (const Key<T>& row : rows) {
      if (row.read == nullptr) continue;
      if (const auto value = find(row.name)) row.read(*value, target);
    }
  }

 private:
  void allowNames(std::span<const std::string_view> names) const;
  std::string pathOf(std::string_view key) const;

  const toml::table* table_;
  std::string path_;
  const std::string* fileName_;
};

}  // namespace simulator
