#include "commands/fields.h"

#include <algorithm>

#include "io/failure.h"
#include "io/text.h"

namespace cli {

// Each gives one field of a match.
struct FieldValues {
  using Writer = FieldWriter;

  static std::string_view tag(Writer& writer, std::size_t match) {
    return writer.matches_.name(match, writer.buffer_);
  }
  static std::string_view text(Writer& writer, std::size_t match) {
    return writer.matches_.text(match, writer.buffer_);
  }
  static std::string_view html(Writer& writer, std::size_t match) {
    return writer.matches_.html(match, writer.buffer_);
  }
  static std::string_view inner(Writer& writer, std::size_t match) {
    return writer.matches_.inner_html(match, writer.buffer_);
  }
  static std::string_view path(Writer& writer, std::size_t match) {
    return writer.buffer_ = writer.matches_.path(match);
  }
  static std::string_view file(Writer& writer, std::size_t) { return writer.file_; }

  static std::size_t line(Writer& writer, std::size_t match) {
    return writer.matches_.position(match).line;
  }
  static std::size_t column(Writer& writer, std::size_t match) {
    return writer.matches_.position(match).column;
  }
  static std::size_t start(Writer& writer, std::size_t match) {
    return writer.matches_.range(match).begin;
  }
  static std::size_t end(Writer& writer, std::size_t match) {
    return writer.matches_.range(match).end;
  }

  static JsonLine attributes(Writer& writer, std::size_t match) {
    return writer.matches_.attributes(match);
  }
};

namespace {

using Values = FieldValues;

// One of the functions is set.
struct Field {
  const char* name;
  bool of_host;        // the library has it, too
  bool is_default[2];  // shown when none were chosen; for hosts
  std::string_view (*text)(FieldWriter& writer, std::size_t match);
  std::size_t (*number)(FieldWriter& writer, std::size_t match);
  JsonLine (*object)(FieldWriter& writer, std::size_t match);
};

constexpr Field fields[] = {
    {"tag", true, {true, true}, Values::tag, nullptr, nullptr},
    {"attrs", true, {true, true}, nullptr, nullptr, Values::attributes},
    {"text", true, {true, true}, Values::text, nullptr, nullptr},
    {"html", true, {false, true}, Values::html, nullptr, nullptr},
    {"inner", true, {false, false}, Values::inner, nullptr, nullptr},
    {"line", false, {true, false}, nullptr, Values::line, nullptr},
    {"column", false, {true, false}, nullptr, Values::column, nullptr},
    {"start", false, {true, false}, nullptr, Values::start, nullptr},
    {"end", false, {true, false}, nullptr, Values::end, nullptr},
    {"path", false, {false, false}, Values::path, nullptr, nullptr},
    {"file", true, {false, false}, Values::file, nullptr, nullptr},
};

const Field* find_field(const std::string& name) {
  const auto found = std::find_if(std::begin(fields), std::end(fields),
                                  [&name](const Field& field) { return name == field.name; });
  return found == std::end(fields) ? nullptr : found;
}

}  // namespace

std::vector<std::string> default_fields(bool host, bool with_file) {
  std::vector<std::string> names;
  for (const Field& field : fields) {
    if (field.is_default[host ? 1 : 0]) names.emplace_back(field.name);
  }
  if (with_file) names.emplace_back("file");
  return names;
}

bool is_field(const std::string& name) {
  return find_field(name) != nullptr;
}

void check_fields(const std::string& option, const std::vector<std::string>& names, bool host) {
  for (const std::string& name : names) {
    const Field* const field = find_field(name);
    if (field == nullptr) {
      std::string known;
      for (const Field& one : fields) known += (known.empty() ? "" : ", ") + std::string(one.name);
      throw Failure(option + ": " + quoted(name, 40) + " is none of " + known);
    }
    if (host && !field->of_host) throw Failure(option + ": the library has no \"" + name + "\"");
  }
}

std::string FieldWriter::line(std::size_t match, const std::vector<std::string>& names) {
  JsonLine line;
  for (const std::string& name : names) {
    const Field& field = *find_field(name);
    if (field.text != nullptr) {
      line.add(field.name, field.text(*this, match));
    } else if (field.number != nullptr) {
      line.add(field.name, field.number(*this, match));
    } else {
      line.add_object(field.name, field.object(*this, match));
    }
  }
  return line.text();
}

std::string_view FieldWriter::text(std::size_t match, const std::string& name) {
  const Field& field = *find_field(name);
  if (field.text != nullptr) return field.text(*this, match);
  buffer_ = field.number != nullptr ? std::to_string(field.number(*this, match))
                                    : field.object(*this, match).text();
  return buffer_;
}

}  // namespace cli
