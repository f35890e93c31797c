#include "fields.h"

#include <algorithm>

#include "text.h"

namespace cli {

namespace {

// What a field is made of.
struct Match {
  const PageView& view;
  _qo_html* node;
  const std::string& file;
  const LineIndex& lines;

  qo::Extent extent() const { return view.extent(node).value_or(qo::Extent{}); }
  Place place() const { return lines.place(extent().begin); }
};

void add_attributes(const Match& match, const char* name, JsonLine& line) {
  JsonLine members;
  MemberNames names;
  for (const Attribute& attribute : match.node->attributes) {
    const std::string member = names.unique(attribute.name);
    if (attribute.hasValue != 0) {
      members.add(member, match.view.value(attribute));
    } else {
      members.add_true(member);
    }
  }
  line.add_object(name, members);
}

struct Field {
  const char* name;
  bool of_host;        // the library has it, too
  bool is_default[2];  // shown when none were chosen; for hosts
  void (*add)(const Match& match, const char* name, JsonLine& line);
};

constexpr Field fields[] = {
    {"tag",
     true,
     {true, true},
     [](const Match& match, const char* name, JsonLine& line) {
       line.add(name, match.node->tagName());
     }},
    {"attrs", true, {true, true}, add_attributes},
    {"text",
     true,
     {true, true},
     [](const Match& match, const char* name, JsonLine& line) {
       line.add(name, match.view.text(match.node));
     }},
    {"html",
     true,
     {false, true},
     [](const Match& match, const char* name, JsonLine& line) {
       line.add(name, match.view.html(match.node));
     }},
    {"inner",
     true,
     {false, false},
     [](const Match& match, const char* name, JsonLine& line) {
       line.add(name, match.view.inner_html(match.node));
     }},
    {"line",
     false,
     {true, false},
     [](const Match& match, const char* name, JsonLine& line) {
       line.add(name, match.place().line);
     }},
    {"column",
     false,
     {true, false},
     [](const Match& match, const char* name, JsonLine& line) {
       line.add(name, match.place().column);
     }},
    {"start",
     false,
     {true, false},
     [](const Match& match, const char* name, JsonLine& line) {
       line.add(name, match.extent().begin);
     }},
    {"end",
     false,
     {true, false},
     [](const Match& match, const char* name, JsonLine& line) {
       line.add(name, match.extent().end);
     }},
    {"file",
     true,
     {false, false},
     [](const Match& match, const char* name, JsonLine& line) { line.add(name, match.file); }},
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

void check_fields(const std::vector<std::string>& names, bool host) {
  for (const std::string& name : names) {
    const Field* const field = find_field(name);
    if (field == nullptr) {
      std::string known;
      for (const Field& one : fields) known += (known.empty() ? "" : ", ") + std::string(one.name);
      throw Failure("--fields: " + quoted(name, 40) + " is none of " + known);
    }
    if (host && !field->of_host) throw Failure("--fields: the library has no \"" + name + "\"");
  }
}

std::string FieldWriter::line(_qo_html* node) const {
  JsonLine line;
  const Match match{view_, node, file_, lines_};
  for (const std::string& name : fields_) {
    const Field& field = *find_field(name);
    field.add(match, field.name, line);
  }
  return line.text();
}

}  // namespace cli
