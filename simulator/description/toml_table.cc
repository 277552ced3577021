// Typed access to a table, and the wording of what is wrong with it.
#include "simulator/description/toml_table.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "simulator/description/description.h"

namespace simulator {
namespace {

std::string quoted(std::string_view word) {
  return '"' + std::string(word) + '"';
}

std::string listOf(std::span<const Choice> choices) {
  std::string list;
  for (const Choice& choice : choices)
    list += (list.empty() ? "" : ", ") + quoted(choice.word);
  return list;
}

std::string rangeText(std::int64_t least, std::int64_t greatest) {
  return "a whole number from " + std::to_string(least) + " to " + std::to_string(greatest);
}

// A double for a message: as many digits as a limit of ours ever has, without the locale's decimal point.
std::string numberText(double value) {
  std::array<char, 32> text;
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() ? std::string(text.data(), end) : "?";
}

// "4" or "4-7" into the numbers it stands for; false when it is neither.
bool appendRange(std::string_view word, unsigned greatest, std::vector<unsigned>& numbers) {
  while (!word.empty() && word.front() == ' ')
    word.remove_prefix(1);
  while (!word.empty() && word.back() == ' ')
    word.remove_suffix(1);
  const char* const end = word.data() + word.size();
  unsigned first = 0;
  auto [stop, error] = std::from_chars(word.data(), end, first);
  if (error != std::errc()) return false;
  unsigned last = first;
  if (stop != end) {
    if (*stop != '-') return false;
    const auto second = std::from_chars(stop + 1, end, last);
    if (second.ec != std::errc() || second.ptr != end) return false;
  }
  if (first > last || last > greatest) return false;
  for (unsigned n = first; n <= last; ++n)
    numbers.push_back(n);
  return true;
}

}  // namespace

TomlTable::TomlTable(const toml::table& table, std::string path, std::string fileName)
    : table_(&table), path_(std::move(path)), fileName_(std::move(fileName)) {}

std::string TomlTable::pathOf(std::string_view key) const {
  if (path_.empty()) return std::string(key);
  return key.empty() ? path_ : path_ + '.' + std::string(key);
}

void TomlTable::fail(std::string_view key, const std::string& what) const {
  const toml::node* node = table_->get(key);
  const auto line = (node != nullptr ? node->source() : table_->source()).begin.line;
  const std::string path = pathOf(key);
  throw DescriptionError(fileName_ + ':' + std::to_string(line) + ": " + (path.empty() ? "" : path + ": ") + what);
}

const toml::node* TomlTable::take(std::string_view key) {
  const toml::node* node = table_->get(key);
  if (node != nullptr) taken_.emplace(key);
  return node;
}

std::optional<std::int64_t> TomlTable::integer(std::string_view key, std::int64_t least, std::int64_t greatest) {
  const toml::node* node = take(key);
  if (node == nullptr) return std::nullopt;
  const auto* value = node->as_integer();
  if (value == nullptr || value->get() < least || value->get() > greatest) {
    fail(key, "must be " + rangeText(least, greatest));
  }
  return value->get();
}

std::optional<double> TomlTable::number(std::string_view key, double least, double greatest) {
  const toml::node* node = take(key);
  if (node == nullptr) return std::nullopt;
  const std::optional<double> value = node->is_number() ? node->value<double>() : std::nullopt;
  // Written so that what is not a number fails too.
  if (!value || !(*value >= least && *value <= greatest)) {
    fail(key, "must be a number from " + numberText(least) + " to " + numberText(greatest));
  }
  return value;
}

std::optional<bool> TomlTable::boolean(std::string_view key) {
  const toml::node* node = take(key);
  if (node == nullptr) return std::nullopt;
  if (!node->is_boolean()) fail(key, "must be true or false");
  return node->as_boolean()->get();
}

std::optional<std::string> TomlTable::text(std::string_view key) {
  const toml::node* node = take(key);
  if (node == nullptr) return std::nullopt;
  if (!node->is_string()) fail(key, "must be a text in quotes");
  return node->as_string()->get();
}

std::uint32_t TomlTable::chosen(std::string_view key, const toml::node& node, std::span<const Choice> choices) const {
  if (!node.is_string()) fail(key, "must be one of " + listOf(choices));
  const std::string& word = node.as_string()->get();
  const auto choice = std::find_if(choices.begin(), choices.end(), [&](const Choice& c) { return c.word == word; });
  if (choice == choices.end()) fail(key, quoted(word) + " is not one of " + listOf(choices));
  return choice->value;
}

std::optional<std::uint32_t> TomlTable::choice(std::string_view key, std::span<const Choice> choices) {
  const toml::node* node = take(key);
  if (node == nullptr) return std::nullopt;
  return chosen(key, *node, choices);
}

std::optional<std::uint32_t> TomlTable::choiceSet(std::string_view key, std::span<const Choice> choices) {
  const toml::node* node = take(key);
  if (node == nullptr) return std::nullopt;
  if (!node->is_array()) fail(key, "must be a list of " + listOf(choices));
  std::uint32_t set = 0;
  for (const toml::node& element : *node->as_array())
    set |= std::uint32_t{1} << chosen(key, element, choices);
  return set;
}

std::optional<std::vector<std::string>> TomlTable::texts(std::string_view key) {
  const toml::node* node = take(key);
  if (node == nullptr) return std::nullopt;
  if (!node->is_array()) fail(key, "must be a list of texts");
  std::vector<std::string> result;
  for (const toml::node& element : *node->as_array()) {
    if (!element.is_string()) fail(key, "must be a list of texts");
    result.push_back(element.as_string()->get());
  }
  return result;
}

std::optional<std::vector<std::int64_t>> TomlTable::integers(std::string_view key, std::int64_t least,
                                                             std::int64_t greatest) {
  const toml::node* node = take(key);
  if (node == nullptr) return std::nullopt;
  std::vector<std::int64_t> result;
  const toml::array* array = node->as_array();
  if (array == nullptr) fail(key, "must be a list, each " + rangeText(least, greatest));
  for (const toml::node& element : *array) {
    const auto* value = element.as_integer();
    if (value == nullptr || value->get() < least || value->get() > greatest) {
      fail(key, "must be a list, each " + rangeText(least, greatest));
    }
    result.push_back(value->get());
  }
  return result;
}

std::optional<std::vector<unsigned>> TomlTable::indexes(std::string_view key, unsigned greatest) {
  const toml::node* node = take(key);
  if (node == nullptr) return std::nullopt;
  const std::string what = "must be a number or ranges such as \"0-7,9\", none above " + std::to_string(greatest);
  if (const auto* value = node->as_integer()) {
    if (value->get() < 0 || value->get() > std::int64_t{greatest}) fail(key, what);
    return std::vector<unsigned>{static_cast<unsigned>(value->get())};
  }
  if (!node->is_string()) fail(key, what);
  std::vector<unsigned> numbers;
  std::string_view rest = node->as_string()->get();
  while (true) {
    const std::size_t comma = rest.find(',');
    if (!appendRange(rest.substr(0, comma), greatest, numbers)) fail(key, what);
    if (comma == std::string_view::npos) break;
    rest.remove_prefix(comma + 1);
  }
  std::vector<bool> seen(std::size_t{greatest} + 1);
  for (const unsigned number : numbers) {
    if (seen[number]) fail(key, "names " + std::to_string(number) + " twice");
    seen[number] = true;
  }
  return numbers;
}

std::optional<TomlTable> TomlTable::table(std::string_view key) {
  const toml::node* node = take(key);
  if (node == nullptr) return std::nullopt;
  if (!node->is_table()) fail(key, "must be a table");
  return TomlTable(*node->as_table(), pathOf(key), fileName_);
}

std::vector<TomlTable> TomlTable::tables(std::string_view key) {
  const toml::node* node = take(key);
  if (node == nullptr) return {};
  std::vector<TomlTable> result;
  if (!node->is_array()) fail(key, "must be a list of tables");
  for (const toml::node& element : *node->as_array()) {
    if (!element.is_table()) fail(key, "must be a list of tables");
    result.emplace_back(*element.as_table(), pathOf(key) + '[' + std::to_string(result.size()) + ']', fileName_);
  }
  return result;
}

std::vector<std::string> TomlTable::keys() const {
  std::vector<std::string> result;
  for (const auto& [key, node] : *table_)
    result.emplace_back(key.str());
  return result;
}

void TomlTable::finish() const {
  for (const auto& [key, node] : *table_) {
    if (!taken_.contains(key.str())) fail(key.str(), "unknown key");
  }
}

}  // namespace simulator
