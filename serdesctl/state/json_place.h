// A place in a JSON text that somebody else may have written: what is read there is judged, and messages say where.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "serdesctl/formats/json_object.h"

namespace serdesctl {

class JsonPlace {
 public:
  // `file` is for messages; it and the value must outlive the place.
  JsonPlace(const std::string& file, const Json& value) : file_(file), value_(value) {}

  // A member of an object, which must be there.
  JsonPlace at(std::string_view name) const;

  // The members of an object by name, and the elements of a list.
  std::vector<std::pair<std::string, JsonPlace>> members() const;
  std::vector<JsonPlace> elements() const;

  // An object without other members than these.
  void allowOnly(const std::vector<std::string>& names) const;

  bool isNull() const {
    return value_.is_null();
  }
  bool isText() const {
    return value_.is_string();
  }
  bool isNumber() const {
    return value_.is_number();
  }
  std::int64_t integer(std::int64_t lowest, std::int64_t highest) const;
  // No other number than this.
  void expect(std::size_t number) const;
  // Not negative.
  std::uint64_t count() const;
  double number() const;
  bool flag() const;
  std::string text() const;

  [[noreturn]] void fail(const std::string& what) const;

 private:
  JsonPlace inner(const std::string& step, const Json& value) const;

  const std::string& file_;
  const Json& value_;
  std::string path_;
};

// Parses a text whose objects name no member twice and which is not nested deeper than a save is. Throws UsageError.
Json parseJson(const std::string& text, const std::string& name);

// Objects and lists of plain values on a line each, so that people can read and compare it.
std::string readableJson(const Json& json);

}  // namespace serdesctl
