// What the library's own sources do to nodes without going through the exported interface.

#ifndef QO_HTML_NODE_H
#define QO_HTML_NODE_H

#include <memory>
#include <string>
#include <string_view>

#include <qo_html/qo_html.h>
#include <qo_html/qo_html_checks.h>

namespace qo_html_inner {

using NodeOwner = std::unique_ptr<_qo_html>;

// tagName() without a copy.
inline std::string_view tag_name(const _qo_html& node) {
  if (node.isText) return "textNode";
  if (node.isRoot) return "documentRoot";
  return node.tag;
}

inline constexpr CheckTexts child_check_texts = {
    "child != nullptr", "child must not be null bre some", "src/qo_html/qo_html"};
using ChildCheck = Check<child_check_texts>;

// add_child() with a check that serves many calls.
bool append_child(_qo_html* parent, _qo_html* child, ChildCheck& check);

// The attribute of that name, or null.
inline Attribute* find_attribute(_qo_html& node, std::string_view name) {
  for (Attribute& attribute : node.attributes) {
    if (attribute.name == name) return &attribute;
  }
  return nullptr;
}

// addAttribute() for a caller that has looked the name up: `existing` is the attribute of that
// name, or null. All or nothing.
void add_attribute(_qo_html& node, Attribute* existing, std::string_view name, int has_value,
                   std::string_view value);

}  // namespace qo_html_inner

#endif
