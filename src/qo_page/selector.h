// CSS selectors over the nodes of a page.
//
// The language is that of Selectors Level 4, as far as a source can tell what it asks for, with
// :contains(), :contains-own(), :matches() and :comment beside it; docs/css.md describes it. Names
// of elements and attributes compare without case, ids and classes with case; values compare
// decoded.

#ifndef QO_PAGE_SELECTOR_H
#define QO_PAGE_SELECTOR_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <qo_page/page.h>
#include <qo_page/qo_page_export.h>

namespace qo {

namespace selectors {
struct Program;
}

// What is wrong with a selector, in one line, and the offset of the place in it.
class QO_PAGE_API SelectorError : public Error {
 public:
  // `offset` is where in `selector` the trouble is.
  SelectorError(const std::string& message, std::size_t offset, const std::string& selector);

  // The line of the selector that has the place, and below it a caret under the place.
  const std::string& shown() const { return *shown_; }

 private:
  std::shared_ptr<const std::string> shown_;
};

// A selector, read once. It never changes: several threads may use one at once, and a copy shares
// what was read.
class QO_PAGE_API Selector {
 public:
  // Throws SelectorError when the text is not a selector, or one that has no meaning here.
  explicit Selector(std::string_view text);

  // What it was read from.
  const std::string& text() const;

  // The nodes below `root` that match, in document order, at most the first `most`; `root` itself
  // never does. They are elements, and comments where the selector asks for these. What is around
  // `root` counts: with "a b", the a may be anywhere above. Only `:scope` means `root`, or, when
  // that is the document, the elements at its top.
  //
  // Time grows with the size of the page, and only for `:matches` with depth as well. Throws
  // SelectorError when a pattern of `:matches` takes too many steps.
  std::vector<Node> select(Node root, std::size_t most = SIZE_MAX) const;

  // Whether the node is among what select() finds from its document. It takes time for the nodes
  // above and the earlier siblings of each; with `:has`, positions "of" a selector and text, for
  // the whole page. For many nodes, select() is cheaper.
  bool matches(Node node) const;

 private:
  std::shared_ptr<const selectors::Program> program_;
};

}  // namespace qo

#endif
