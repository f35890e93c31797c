#include "pages/tree_rows.h"

#include <vector>

#include "io/json_text.h"
#include "io/text.h"
#include "pages/attributes.h"
#include "pages/levels.h"

namespace cli {

namespace {

std::string_view kind_of(qo::Node node) {
  switch (node.kind()) {
    case qo::NodeKind::text:
      return text_kind(is_blank(node.html()));
    case qo::NodeKind::comment:
      return "comment";
    case qo::NodeKind::cdata:
      return "cdata";
    case qo::NodeKind::code:
      return "code";
    case qo::NodeKind::doctype:
      return "doctype";
    default:
      return "element";
  }
}

std::string_view content_of(qo::Node node) {
  switch (node.kind()) {
    case qo::NodeKind::comment:
    case qo::NodeKind::cdata:
      return node.inner_html();
    case qo::NodeKind::element:
      return node.name();
    default:
      return node.html();
  }
}

}  // namespace

std::string string_in_script(std::string_view text) {
  std::string json, out;
  append_json_string(text, json);
  for (const char c : json) {
    if (c == '<') {
      out += "\\u003c";
    } else {
      out += c;
    }
  }
  return out;
}

void TreeRows::begin_row(std::size_t level, std::string_view kind, std::string_view content) {
  rows_ += rows_.empty() ? "\n[" : ",\n[";
  rows_ += std::to_string(level) + ",\"";
  rows_ += kind;
  rows_ += "\"," + string_in_script(content) + ",[";
  has_attributes_ = false;
}

void TreeRows::add_attribute(std::string_view name, std::optional<std::string_view> value) {
  if (has_attributes_) rows_ += ',';
  has_attributes_ = true;
  rows_ += "[" + string_in_script(name) + "," + (value ? string_in_script(*value) : "null") + "]";
}

void TreeRows::end_row(std::size_t matches) {
  rows_ += "]," + std::to_string(matches) + "]";
}

std::string tree_rows(const qo::Page& page, const std::optional<qo::Selector>& selector) {
  std::vector<qo::Node> matches;
  if (selector) matches = page.select(*selector);
  auto match = matches.begin();
  TreeRows rows;
  Levels levels;
  for (const qo::Node node : page.document().descendants()) {
    rows.begin_row(levels.of_next(node), kind_of(node), content_of(node));
    for (const qo::Attribute& attribute : first_attributes(node)) {
      const std::string value = attribute.value(qo::TextForm::written);
      rows.add_attribute(attribute.name(), attribute.has_value()
                                               ? std::optional<std::string_view>(value)
                                               : std::nullopt);
    }
    const bool is_match = match != matches.end() && *match == node;
    if (is_match) ++match;
    rows.end_row(is_match ? 1 : 0);
  }
  return rows.take();
}

}  // namespace cli
