// The text of a page, in which each element has its stretch.

#ifndef QO_PAGE_SELECTORS_PAGE_TEXT_H
#define QO_PAGE_SELECTORS_PAGE_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <qo_page/selectors/syntax.h>
#include <qo_page/tree/node.h>

namespace qo::selectors {

class PageText {
 public:
  explicit PageText(const Node& document);

  std::size_t size() const { return text_.size(); }

  // Whether the needle is in the text of the node, or with `own`, in that of its own texts, one
  // after the other. Together, these take as long as one search through the page for each test.
  bool contains(const Node& node, const TextTest& test);

  // The text of a node, in `buffer` where it has to be put together.
  std::string_view of(const Node& node, std::string& buffer) const;

 private:
  struct Range {
    std::size_t begin, end;
  };
  struct Start {
    std::size_t in_source, in_text;
  };

  Range range_of(const Node& node) const;
  std::size_t place_of(std::size_t in_source) const;

  std::string text_;
  std::vector<Start> starts_;                                             // of the text nodes
  std::unordered_map<const TextTest*, std::vector<std::size_t>> places_;  // of the needles
};

}  // namespace qo::selectors

#endif
