// How refusals name what they are about.

#ifndef QO_PAGE_EDITS_EDIT_ERROR_H
#define QO_PAGE_EDITS_EDIT_ERROR_H

#include <string>

#include <qo_page/base/shortened.h>
#include <qo_page/tree/tree.h>

namespace qo {

inline std::string named(const Tree& tree, NodeIndex node) {
  const std::string name(tree.name(node));
  switch (tree[node].kind) {
    case NodeKind::element:
      return "<" + name + ">";
    case NodeKind::text:
      return "the text";
    case NodeKind::comment:
      return "the comment";
    case NodeKind::cdata:
      return "\"<![CDATA[\"";
    default:
      return "\"<" + name + "\"";
  }
}

}  // namespace qo

#endif
