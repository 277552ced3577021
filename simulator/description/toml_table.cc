// Typed access to values and tables, and the wording of what is wrong with them.
#include "simulator/description/toml_table.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "simulator/description/description.h"

namespace simulator {
namespace {

// A double for a message: as many digits as a limit of ours ever has, without the locale's decimal point.
std::string numberText(double value) {
  std::array<char, 32> text;
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() ? std::string(text.data(), end) : "?";
}

[[noreturn]] void failAt(const toml::node& node, const std::string& path, const std::string& fileName,
                         const std::string& what) {
  throw DescriptionError(fileName + ':' + std::to_string(node.source().begin.line) + ": " +
                         (path.empty() ? "" : path + ": ") + what);
}

// The number of a node, if it is one in the range.
std::optional<std::int64_t> integerOf(const toml::node& node, std::int64_t least, std::int64_t greatest) {
  const auto* value = node.as_integer();
  if (value == nullptr || value->get() < least || value->get() > greatest) return std::nullopt;
  return value->get();
}

// "4" or "4-7" into the numbers it stands for; false when it is neither.
bool appendRange(std::string_view word, unsigned greatest, std::vector<unsigned>& numbers) {
  while (!word.empty() && word.front() == ' ')
    word.remove_prefix(1);
  while (!word.empty() && word.back() == ' ')
    word.remove_suffix(1);
  const char* const end = word.data() + word.size();
  unsigned first{};
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

// How the head of a list's tables is written: the path without the numbers in it.
std::string headOf(const std::string& path) {
  std::string head;
  bool isNumber = false;
  for (const char c : path) {
    isNumber = isNumber || c == '[';
    if (!isNumber) head += c;
    isNumber = isNumber && c != ']';
  }
  return head;
}

}  // namespace

std::string quoted(std::string_view word) {
  return '"' + std::string(word) + '"';
}

std::string listOf(std::span<const Choice> choices) {
  std::string list;
  for (const Choice& choice : choices)
    list += (list.empty() ? "" : ", ") + quoted(choice.name);
  return list;
}

std::string rangeText(std::int64_t least, std::int64_t greatest) {
  return "a whole number from " + std::to_string(least) + " to " + std::to_string(greatest);
}

void TomlValue::fail(const std::string& what) const {
  failAt(*node_, path_, *fileName_, what);
}

std::int64_t TomlValue::integer(std::int64_t least, std::int64_t greatest) const {
  const auto value = integerOf(*node_, least, greatest);
  if (!value) fail("must be " + rangeText(least, greatest));
  return *value;
}

double TomlValue::number(double least, double greatest) const {
  const std::optional<double> value = node_->is_number() ? node_->value<double>() : std::nullopt;
  // Written so that what is not a number fails too.
  if (!value || !(*value >= least && *value <= greatest)) {
    fail("must be a number from " + numberText(least) + " to " + numberText(greatest));
  }
  return *value;
}

bool TomlValue::boolean() const {
  if (!node_->is_boolean()) fail("must be true or false");
  return node_->as_boolean()->get();
}

std::string TomlValue::text() const {
  if (!isText()) fail("must be a text in quotes");
  return node_->as_string()->get();
}

std::uint32_t TomlValue::choice(std::span<const Choice> choices) const {
  if (!isText() && !node_->is_integer()) fail("must be one of " + listOf(choices));
  const std::string word = isText() ? text() : std::to_string(node_->as_integer()->get());
  const auto choice = std::find_if(choices.begin(), choices.end(), [&](const Choice& c) { return c.name == word; });
  if (choice == choices.end()) fail(quoted(word) + " is not one of " + listOf(choices));
  return choice->value;
}

const toml::array& TomlValue::list(const std::string& what) const {
  if (!node_->is_array()) fail(what);
  return *node_->as_array();
}

std::uint32_t TomlValue::choiceSet(std::span<const Choice> choices) const {
  std::uint32_t set = 0;
  for (const toml::node& element : list("must be a list of " + listOf(choices)))
    set |= std::uint32_t{1} << TomlValue(element, path_, *fileName_).choice(choices);
  return set;
}

std::vector<std::string> TomlValue::texts() const {
  constexpr const char* kWhat = "must be a list of texts";
  std::vector<std::string> result;
  for (const toml::node& element : list(kWhat)) {
    if (!element.is_string()) fail(kWhat);
    result.push_back(element.as_string()->get());
  }
  return result;
}

std::vector<std::int64_t> TomlValue::integers(std::int64_t least, std::int64_t greatest) const {
  const std::string what = "must be a list, each " + rangeText(least, greatest);
  std::vector<std::int64_t> result;
  for (const toml::node& element : list(what)) {
    const auto value = integerOf(element, least, greatest);
    if (!value) fail(what);
    result.push_back(*value);
  }
  return result;
}

std::vector<TomlValue> TomlValue::lists() const {
  constexpr const char* kWhat = "must be a list of lists";
  std::vector<TomlValue> result;
  for (const toml::node& element : list(kWhat)) {
    if (!element.is_array()) fail(kWhat);
    result.emplace_back(element, path_ + '[' + std::to_string(result.size()) + ']', *fileName_);
  }
  return result;
}

std::vector<unsigned> TomlValue::indexes(unsigned greatest) const {
  const std::string what = "must be a number or ranges such as \"0-7,9\", none above " + std::to_string(greatest);
  if (const auto value = integerOf(*node_, 0, greatest)) return {static_cast<unsigned>(*value)};
  if (!isText()) fail(what);
  std::vector<unsigned> numbers;
  std::string_view rest = node_->as_string()->get();
  while (true) {
    const std::size_t comma = rest.find(',');
    if (!appendRange(rest.substr(0, comma), greatest, numbers)) fail(what);
    if (comma == std::string_view::npos) break;
    rest.remove_prefix(comma + 1);
  }
  std::vector<bool> seen(std::size_t{greatest} + 1);
  for (const unsigned number : numbers) {
    if (seen[number]) fail("names " + std::to_string(number) + " twice");
    seen[number] = true;
  }
  return numbers;
}

TomlTable TomlValue::table() const {
  if (!isTable()) fail("must be a table");
  return {*node_->as_table(), path_, *fileName_};
}

std::vector<TomlTable> TomlValue::tables() const {
  constexpr const char* kWhat = "must be a list of tables";
  if (isTable()) fail(std::string(kWhat) + ", each begun by [[" + headOf(path_) + "]]");
  std::vector<TomlTable> result;
  for (const toml::node& element : list(kWhat)) {
    if (!element.is_table()) fail(kWhat);
    result.emplace_back(*element.as_table(), path_ + '[' + std::to_string(result.size()) + ']', *fileName_);
  }
  return result;
}

std::string TomlTable::pathOf(std::string_view key) const {
  if (path_.empty()) return std::string(key);
  return key.empty() ? path_ : path_ + '.' + std::string(key);
}

void TomlTable::fail(std::string_view key, const std::string& what) const {
  const toml::node* node = table_->get(key);
  failAt(node != nullptr ? *node : *table_, pathOf(key), *fileName_, what);
}

std::optional<TomlValue> TomlTable::find(std::string_view key) const {
  const toml::node* node = table_->get(key);
  if (node == nullptr) return std::nullopt;
  return TomlValue(*node, pathOf(key), *fileName_);
}

TomlValue TomlTable::need(std::string_view key, const std::string& what) const {
  const auto value = find(key);
  if (!value) fail(key, what);
  return *value;
}

std::vector<TomlTable> TomlTable::tables(std::string_view key) const {
  const auto value = find(key);
  return value ? value->tables() : std::vector<TomlTable>{};
}

std::vector<std::string> TomlTable::keys() const {
  std::vector<std::string> result;
  for (const auto& [key, node] : *table_)
    result.emplace_back(key.str());
  return result;
}

void TomlTable::allowNames(std::span<const std::string_view> names) const {
  for (const auto& [key, node] : *table_) {
    if (std::find(names.begin(), names.end(), key.str()) != names.end()) continue;
    std::string list;
    for (const std::string_view name : names)
      list += (list.empty() ? "" : ", ") + std::string(name);
    fail(key.str(), "unknown key; there are " + list);
  }
}

}  // namespace simulator
