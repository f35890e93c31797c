// JSON as the tool writes it: valid UTF-8 whatever the bytes of the page.

#ifndef QO_CLI_JSON_TEXT_H
#define QO_CLI_JSON_TEXT_H

#include <memory>
#include <sstream>
#include <string>

#include <json/json.h>

namespace cli {

// A string value.
Json::Value json_string(std::string_view text);

// A new member of an object. Names that are not UTF-8 may become the same: then U+FFFD is added.
Json::Value& add_member(Json::Value& object, std::string_view name);

class JsonWriter {
 public:
  // `indentation` of each level; with an empty one, everything stands on one line.
  explicit JsonWriter(const std::string& indentation);

  std::string write(const Json::Value& value);

 private:
  std::unique_ptr<Json::StreamWriter> writer_;
  std::ostringstream out_;
};

}  // namespace cli

#endif
