// The nodes of a page.

#ifndef QO_PAGE_TREE_NODE_H
#define QO_PAGE_TREE_NODE_H

#include <cstddef>
#include <vector>

#include <qo_html/qo_html.h>

#include <qo_page/base/tags.h>
#include <qo_page/page.h>

namespace qo {

// The vocabulary that an element belongs to.
enum class Space : unsigned char { html, svg, math };

class Node : public _qo_html {
 public:
  Extent extent{};
  NodeKind kind = NodeKind::element;
  Space space = Space::html;
  bool has_content = false;  // of an element: not void, not closed by its own start tag
  Tag name = Tag::unknown;   // of an element, whatever its case
};

// Where in the source controls belong to a form, wherever in the tree they are: from its start tag
// on, to the next </form>.
struct FormRange {
  std::size_t begin;
  std::size_t end;
};

// The root of a page.
class DocumentNode : public Node {
 public:
  // Those of all forms but for the ones in a template, and in other forms, which a browser drops.
  std::vector<FormRange> form_ranges;

  // Some tag may end elsewhere, or end its element, for its author.
  bool has_odd_tags = false;

  // The elements of each known name, in document order: what looks for a name need not walk.
  std::vector<Node*> elements[static_cast<std::size_t>(Tag::count)];
};

// Every node of a page is one.
inline Node* as_node(_qo_html* node) {
  return static_cast<Node*>(node);
}
inline const Node* as_node(const _qo_html* node) {
  return static_cast<const Node*>(node);
}
inline const DocumentNode& as_document(const _qo_html& node) {
  return static_cast<const DocumentNode&>(node);
}

}  // namespace qo

#endif
