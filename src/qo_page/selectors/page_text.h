// The text of a page, in which each element has its stretch.

#ifndef QO_PAGE_SELECTORS_PAGE_TEXT_H
#define QO_PAGE_SELECTORS_PAGE_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <qo_page/selectors/syntax.h>
#include <qo_page/tree/tree.h>

namespace qo::selectors {

class PageText {
 public:
  explicit PageText(const Tree& tree);

  std::size_t size() const { return text_.size(); }

  // Whether the needle is in the text of the node, or with `own`, in that of its own texts, one
  // after the other. All calls for one test together take as long as one search through the page.
  bool contains(NodeIndex node, const TextTest& test);

  // The text of a node, in `buffer` where it has to be put together.
  std::string_view of(NodeIndex node, std::string& buffer) const;

 private:
  Range range_of(NodeIndex node) const;

  const Tree& tree_;
  std::string text_;
  std::vector<std::size_t> begins_;  // of the stretch of each node; last the end of the text
  std::unordered_map<const TextTest*, std::vector<std::size_t>> places_;  // of the needles
};

}  // namespace qo::selectors

#endif
