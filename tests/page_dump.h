// What tests look at the tree of a page with.

#ifndef QO_HTML_TESTS_PAGE_DUMP_H
#define QO_HTML_TESTS_PAGE_DUMP_H

#include <string>

#include <qo_page/page.h>
#include <qo_page/tree/node_access.h>

// In quotes, with line breaks and tabs as "\n", "\r" and "\t".
inline std::string in_quotes(std::string_view text) {
  std::string out = "'";
  for (const char c : text) {
    const std::size_t named = std::string_view("\n\r\t").find(c);
    out += named == std::string_view::npos ? std::string(1, c) : std::string("\\") + "nrt"[named];
  }
  return out + "'";
}

inline std::string attribute_list(qo::Node node) {
  std::string out;
  for (const qo::Attribute attribute : node.attributes()) {
    out += (out.empty() ? "" : " ") + std::string(attribute.name());
    if (attribute.has_value()) out += "=" + in_quotes(attribute.value(qo::TextForm::written));
  }
  return out.empty() ? out : "[" + out + "]";
}

inline std::string label(qo::Node node) {
  const qo::NodeRecord& record = qo::NodeAccess::record(node);
  const bool is_void = record.space == qo::Namespace::html && qo::has(record.tag, qo::tag_flags::void_content);
  switch (node.kind()) {
    case qo::NodeKind::text:
      return in_quotes(node.html());
    case qo::NodeKind::comment:
      return "#comment{" + in_quotes(node.inner_html()) + "}";
    case qo::NodeKind::cdata:
      return "#cdata{" + in_quotes(node.inner_html()) + "}";
    case qo::NodeKind::doctype:
    case qo::NodeKind::code:
      return std::string(node.name()) + "!";
    default:
      return std::string(node.name()) + (is_void ? "/" : "") + attribute_list(node);
  }
}

// A subtree in one line, as docs/pages.md says; a document is the list of its children.
inline std::string dump(qo::Node top) {
  std::string children;
  for (const qo::Node child : top.children()) children += (children.empty() ? "" : " ") + dump(child);
  if (top.kind() == qo::NodeKind::document) return children;
  return label(top) + (children.empty() ? "" : "{" + children + "}");
}

#endif
