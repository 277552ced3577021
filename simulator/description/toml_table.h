// One table of a description file, read key by key: values are checked for kind and range, and a key that nobody asked
// for is an error. Messages name file, line and key.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#define TOML_HEADER_ONLY 1
#define TOML_EXCEPTIONS 1
#include <toml++/toml.h>

namespace simulator {

// A word and what it stands for.
struct Choice {
  std::string_view word;
  std::uint32_t value;
};

class TomlTable {
 public:
  // `path` is the table's key in full, empty for the whole file. The table must outlive this reader.
  TomlTable(const toml::table& table, std::string path, std::string fileName);

  bool has(std::string_view key) const {
    return table_->contains(key);
  }
  bool isText(std::string_view key) const {
    const toml::node* node = table_->get(key);
    return node != nullptr && node->is_string();
  }
  std::optional<std::int64_t> integer(std::string_view key, std::int64_t least, std::int64_t greatest);
  std::optional<double> number(std::string_view key, double least, double greatest);
  std::optional<bool> boolean(std::string_view key);
  std::optional<std::string> text(std::string_view key);
  std::optional<std::uint32_t> choice(std::string_view key, std::span<const Choice> choices);
  // An array of words, as a set of bits.
  std::optional<std::uint32_t> choiceSet(std::string_view key, std::span<const Choice> choices);
  std::optional<std::vector<std::string>> texts(std::string_view key);
  std::optional<std::vector<std::int64_t>> integers(std::string_view key, std::int64_t least, std::int64_t greatest);
  // A number, or ranges of numbers such as "0-7,9", in the order in which they are written.
  std::optional<std::vector<unsigned>> indexes(std::string_view key, unsigned greatest);
  std::optional<TomlTable> table(std::string_view key);
  // An array of tables; empty when the key is absent.
  std::vector<TomlTable> tables(std::string_view key);
  // Every key of this table, in alphabetical order, without taking them as read.
  std::vector<std::string> keys() const;

  // Call when all keys have been asked for: the first unknown key is an error.
  void finish() const;

  // The error at a key, or at the table itself when the key is absent.
  [[noreturn]] void fail(std::string_view key, const std::string& what) const;

 private:
  const toml::node* take(std::string_view key);
  std::uint32_t chosen(std::string_view key, const toml::node& node, std::span<const Choice> choices) const;
  std::string pathOf(std::string_view key) const;

  const toml::table* table_;
  std::string path_;
  std::string fileName_;
  std::set<std::string, std::less<>> taken_;
};

}  // namespace simulator
