// What stands between a text and the TOML library.
#include "simulator/description/toml_text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "simulator/description/description.h"

namespace simulator {
namespace {

constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
constexpr std::string_view kMultiLine = R"(""")";
// All that may open a text in quotes, and ends it again.
constexpr std::array<std::string_view, 4> kQuotes = {kMultiLine, "'''", R"(")", "'"};
// Tables in tables are taken apart by functions that call themselves; no key of ours has more than four parts.
constexpr unsigned kMostDots = 16;

struct Stray {
  std::size_t at;
  const char* what;
};

// Where the library looks for blanks some characters beyond ASCII lead it into code that it takes for unreachable:
// outside of quotes, and in texts in """ """, where a backslash may end a line. There is no use for them there.
std::optional<Stray> findStray(std::string_view text) {
  std::string_view end;  // of the quotes or the comment that we are in
  unsigned dots = 0;
  for (std::size_t i = text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0; i < text.size(); ++i) {
    const char c = text[i];
    const std::string_view rest = text.substr(i);
    if (static_cast<unsigned char>(c) >= 0x80 && (end.empty() || end == kMultiLine)) {
      return Stray{
          i, end.empty() ? "a character beyond ASCII outside of quotes" : "a character beyond ASCII in triple quotes"};
    }
    if (end.empty()) {
      const auto quote = std::find_if(kQuotes.begin(), kQuotes.end(), [&](auto q) { return rest.starts_with(q); });
      if (quote != kQuotes.end()) {
        end = *quote;
        i += end.size() - 1;
      }
      if (c == '#') end = "\n";
      if (c == '=' || c == ',' || c == '#' || c == '\n') dots = 0;
      if (c == '.' && ++dots > kMostDots) return Stray{i, "a key of too many parts"};
    } else if (c == '\\' && end.front() == '"') {
      if (rest.size() > 1 && static_cast<unsigned char>(rest[1]) < 0x80) ++i;
    } else if (rest.starts_with(end)) {
      i += end.size() - 1;
      // Up to two quotes before the last three are text.
      for (int more = 0; end.size() == 3 && more < 2 && i + 1 < text.size() && text[i + 1] == end.front(); ++more)
        ++i;
      end = {};
    } else if (c == '\n' && end.size() == 1) {
      end = {};  // a mistake, of which the library says more
    }
  }
  return std::nullopt;
}

bool isExpected(std::string_view text) {
  try {
    (void)toml::parse(text);
  } catch (const toml::parse_error&) {
    return true;
  } catch (const TomlExpectation&) {
    return false;
  }
  return true;
}

// The line that the library stumbles over: with all before it there is no trouble, or trouble of another kind.
std::size_t stumblingLine(std::string_view text) {
  std::vector<std::size_t> ends;
  for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n', end + 1))
    ends.push_back(end + 1);
  const auto whole =
      std::partition_point(ends.begin(), ends.end(), [&](std::size_t end) { return isExpected(text.substr(0, end)); });
  return static_cast<std::size_t>(whole - ends.begin()) + 1;
}

}  // namespace

toml::table parseToml(std::string_view text, const std::string& fileName) {
  const auto fail = [&](auto line, std::string_view what) {
    throw DescriptionError(fileName + ':' + std::to_string(line) + ": " + std::string(what));
  };
  if (const auto stray = findStray(text)) {
    const auto before = text.substr(0, stray->at);
    fail(std::count(before.begin(), before.end(), '\n') + 1, stray->what);
  }
  try {
    return toml::parse(text);
  } catch (const toml::parse_error& error) {
    fail(error.source().begin.line, error.description());
  } catch (const TomlExpectation&) {
    fail(stumblingLine(text), "a key or a value is missing, or is not one");
  }
  return {};
}

}  // namespace simulator
