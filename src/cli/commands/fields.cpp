#include "commands/fields.h"

#include <algorithm>

#include "io/failure.h"
#include "io/text.h"

namespace cli {

// Each gives one field of a node.
struct FieldValues {
  static std::string tag(FieldWriter&, _qo_html* node) { return node->tagName(); }
  static std::string text(FieldWriter& writer, _qo_html* node) { return writer.view_.text(node); }
  static std::string html(FieldWriter& writer, _qo_html* node) { return writer.view_.html(node); }
  static std::string inner(FieldWriter& writer, _qo_html* node) {
    return writer.view_.inner_html(node);
  }
  static std::string file(FieldWriter& writer, _qo_html*) { return writer.file_; }

  static std::size_t line(FieldWriter& writer, _qo_html* node) { return writer.place(node).line; }
  static std::size_t column(FieldWriter& writer, _qo_html* node) {
    return writer.place(node).column;
  }
  static std::size_t start(FieldWriter& writer, _qo_html* node) {
    return writer.view_.page()->extent(node).begin;
  }
  static std::size_t end(FieldWriter& writer, _qo_html* node) {
    return writer.view_.page()->extent(node).end;
  }
  static std::string path(FieldWriter& writer, _qo_html* node) {
    const qo::Page& page = *writer.view_.page();
    if (page.kind(node) != qo::NodeKind::element) return std::string();
    if (!writer.paths_) writer.paths_.emplace(page);
    return writer.paths_->path(node);
  }

  static JsonLine attributes(FieldWriter& writer, _qo_html* node) {
    JsonLine members;
    MemberNames names;
    for (const Attribute& attribute : node->attributes) {
      const std::string member = names.unique(attribute.name);
      if (attribute.hasValue != 0) {
        members.add(member, writer.view_.value(attribute));
      } else {
        members.add_true(member);
      }
    }
    return members;
  }
};

// One of the functions is set.
struct Field {
  const char* name;
  bool of_host;        // the library has it, too
  bool is_default[2];  // shown when none were chosen; for hosts
  std::string (*text)(FieldWriter& writer, _qo_html* node);
  std::size_t (*number)(FieldWriter& writer, _qo_html* node);
  JsonLine (*object)(FieldWriter& writer, _qo_html* node);
};

namespace {

using Values = FieldValues;

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

std::string FieldWriter::line(_qo_html* node, const std::vector<std::string>& names) {
  JsonLine line;
  for (const std::string& name : names) {
    const Field& field = *find_field(name);
    if (field.text != nullptr) {
      line.add(field.name, field.text(*this, node));
    } else if (field.number != nullptr) {
      line.add(field.name, field.number(*this, node));
    } else {
      line.add_object(field.name, field.object(*this, node));
    }
  }
  return line.text();
}

std::string FieldWriter::text(_qo_html* node, const std::string& name) {
  const Field& field = *find_field(name);
  if (field.text != nullptr) return field.text(*this, node);
  return field.number != nullptr ? std::to_string(field.number(*this, node))
                                 : field.object(*this, node).text();
}

Place FieldWriter::place(_qo_html* node) {
  if (!lines_) lines_.emplace(view_.page()->source());
  return lines_->place(view_.page()->extent(node).begin);
}

}  // namespace cli
