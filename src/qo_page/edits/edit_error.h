// How refusals name what they are about.

#ifndef QO_PAGE_EDITS_EDIT_ERROR_H
#define QO_PAGE_EDITS_EDIT_ERROR_H

#include <string>
#include <string_view>

#include <qo_page/base/ascii.h>
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

// The beginning of a piece of code, on one line and in quotes.
inline std::string shortened(std::string_view code) {
  constexpr std::size_t most = 60;
  std::string out("\"");
  for (const char c : code) {
    if (out.size() > most) return out + "...\"";
    if (!is_blank(c)) out += c;
    if (is_blank(c) && out.back() != ' ') out += ' ';
  }
  return out + '"';
}

}  // namespace qo

#endif
