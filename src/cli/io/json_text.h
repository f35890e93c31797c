// JSON as the tool writes it: valid UTF-8 whatever the bytes of the page.

#ifndef QO_CLI_IO_JSON_TEXT_H
#define QO_CLI_IO_JSON_TEXT_H

#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <unordered_map>

#include <json/json.h>

namespace cli {

// A string value.
Json::Value json_string(std::string_view text);

// Makes names of members of one object. Names that are not UTF-8 may become the same: all but the
// first then get U+FFFD and a number.
class MemberNames {
 public:
  std::string unique(std::string_view name);

 private:
  std::unordered_map<std::string, std::size_t> counts_;
};

class JsonWriter {
 public:
  // `indentation` of each level; with an empty one, everything is on one line.
  explicit JsonWriter(const std::string& indentation);

  std::string write(const Json::Value& value);

 private:
  std::unique_ptr<Json::StreamWriter> writer_;
  std::ostringstream out_;
};

// Appends a text as a JSON string.
void append_json_string(std::string_view text, std::string& out);

// An array of strings on one line.
class JsonArray {
 public:
  void add(std::string_view text);

  std::string text() const { return "[" + items_ + "]"; }

 private:
  std::string items_;
};

// An object on one line, whose members stay in the order in which they come.
class JsonLine {
 public:
  void add(std::string_view name, std::string_view text);
  void add(std::string_view name, std::size_t number);
  void add_true(std::string_view name);
  void add_object(std::string_view name, const JsonLine& object);

  std::string text() const { return "{" + members_ + "}"; }

 private:
  void begin(std::string_view name);
  std::string members_;
};

}  // namespace cli

#endif
