#include "json_text.h"

#include "text.h"

namespace cli {

Json::Value json_string(std::string_view text) {
  return Json::Value(valid_utf8(text));
}

Json::Value& add_member(Json::Value& object, std::string_view name) {
  std::string valid = valid_utf8(name);
  while (object.isMember(valid)) valid += replacement_character;
  return object[valid];
}

JsonWriter::JsonWriter(const std::string& indentation) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = indentation;
  builder["commentStyle"] = "None";
  builder["emitUTF8"] = true;
  builder["enableYAMLCompatibility"] = !indentation.empty();  // no blank in front of a colon
  writer_.reset(builder.newStreamWriter());
}

std::string JsonWriter::write(const Json::Value& value) {
  out_.str(std::string());
  writer_->write(value, &out_);
  return out_.str();
}

}  // namespace cli
