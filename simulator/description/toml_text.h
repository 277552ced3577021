// Text to TOML tables, whatever the text: what the library cannot bear is refused as any other mistake is.
#pragma once

#include <string>
#include <string_view>

namespace simulator {

// What the library expects of a text and does not find.
struct TomlExpectation {};
constexpr void expectOfToml(bool holds) {
  if (!holds) throw TomlExpectation{};
}

}  // namespace simulator

// Some texts break the library's assertions. These throw here, in every kind of build: without them the library would
// stop the process, or tell the compiler that such texts do not exist.
#undef NDEBUG
#define TOML_ASSERT(expression) ::simulator::expectOfToml(static_cast<bool>(expression))
#define TOML_HEADER_ONLY 1
#define TOML_EXCEPTIONS 1
#include <toml++/toml.h>

namespace simulator {

// Throws DescriptionError: "FILE:LINE: what".
toml::table parseToml(std::string_view text, const std::string& fileName);

}  // namespace simulator
