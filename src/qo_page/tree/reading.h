// How the text of a content is read.

#ifndef QO_PAGE_TREE_READING_H
#define QO_PAGE_TREE_READING_H

#include <qo_page/tree/node.h>

namespace qo {

enum class Reading {
  markup,      // with references, and with tags
  references,  // without tags
  literal      // without either
};

// In an element of HTML with that name.
inline Reading reading_of(Tag name) {
  if (has(name, tag_flags::raw_text) || name == Tag::plaintext_) return Reading::literal;
  return has(name, tag_flags::rcdata) ? Reading::references : Reading::markup;
}

inline Reading reading_of(const Node& node) {
  if (node.kind == NodeKind::comment || node.kind == NodeKind::cdata) return Reading::literal;
  const bool is_html = node.kind == NodeKind::element && node.space == Space::html;
  return is_html ? reading_of(node.name) : Reading::markup;
}

}  // namespace qo

#endif
