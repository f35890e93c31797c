// Lines and columns of offsets, in any order.

#ifndef QO_PAGE_LINE_INDEX_H
#define QO_PAGE_LINE_INDEX_H

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace qo {

// Where something is for people: both from 1; the column counts bytes.
struct Position {
  std::size_t line;
  std::size_t column;
};

// Where the lines of a text begin. Lines end with a line feed. The text may go away.
class LineIndex {
 public:
  // Goes over the text once.
  explicit LineIndex(std::string_view text) {
    for (std::size_t i = text.find('\n'); i != text.npos; i = text.find('\n', i + 1)) {
      begins_.push_back(i + 1);
    }
  }

  // Takes time for the logarithm of the number of lines. An offset beyond the text is in its last
  // line.
  Position position(std::size_t offset) const {
    const auto after = std::upper_bound(begins_.begin(), begins_.end(), offset);
    return {static_cast<std::size_t>(after - begins_.begin()), offset - after[-1] + 1};
  }

 private:
  std::vector<std::size_t> begins_{0};
};

}  // namespace qo

#endif
