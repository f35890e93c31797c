#include "io/json_text.h"

#include <cstdio>

#include "io/text.h"

namespace cli {

Json::Value json_string(std::string_view text) {
  return Json::Value(valid_utf8(text));
}

std::string MemberNames::unique(std::string_view name) {
  const std::string valid = valid_utf8(name);
  std::string unique = valid;
  while (counts_.count(unique) != 0) {
    unique = valid + replacement_character + std::to_string(++counts_[valid]);
  }
  counts_.emplace(unique, 1);
  return unique;
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

namespace {

bool needs_escape(char c) {
  return c == '"' || c == '\\' || static_cast<unsigned char>(c) < 0x20;
}

void append_escape(char c, std::string& out) {
  switch (c) {
    case '"':
    case '\\':
      out += {'\\', c};
      break;
    case '\n':
      out += "\\n";
      break;
    case '\r':
      out += "\\r";
      break;
    case '\t':
      out += "\\t";
      break;
    default: {
      char escape[7];
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
      out += escape;
    }
  }
}

}  // namespace

void append_json_string(std::string_view text, std::string& out) {
  const std::string valid = valid_utf8(text);
  std::size_t begin = 0;  // of what is not yet appended
  out += '"';
  for (std::size_t i = 0; i < valid.size(); ++i) {
    if (!needs_escape(valid[i])) continue;
    out.append(valid, begin, i - begin);
    append_escape(valid[i], out);
    begin = i + 1;
  }
  out.append(valid, begin, valid.npos);
  out += '"';
}

void JsonArray::add(std::string_view text) {
  if (!items_.empty()) items_ += ',';
  append_json_string(text, items_);
}

void JsonLine::add(std::string_view name, std::string_view text) {
  begin(name);
  append_json_string(text, members_);
}

void JsonLine::add(std::string_view name, std::size_t number) {
  begin(name);
  members_ += std::to_string(number);
}

void JsonLine::add_true(std::string_view name) {
  begin(name);
  members_ += "true";
}

void JsonLine::add_object(std::string_view name, const JsonLine& object) {
  begin(name);
  members_ += object.text();
}

void JsonLine::begin(std::string_view name) {
  if (!members_.empty()) members_ += ',';
  append_json_string(name, members_);
  members_ += ':';
}

}  // namespace cli
