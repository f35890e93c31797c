// Lines and columns of many offsets, in any order.

#ifndef QO_CLI_IO_LINE_INDEX_H
#define QO_CLI_IO_LINE_INDEX_H

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

struct Place {
  std::size_t line, column;  // from 1; columns are bytes

  std::string text() const { return std::to_string(line) + ":" + std::to_string(column); }
};

// Goes over the text once.
class LineIndex {
 public:
  explicit LineIndex(std::string_view text) {
    for (std::size_t i = text.find('\n'); i != text.npos; i = text.find('\n', i + 1)) {
      begins_.push_back(i + 1);
    }
  }

  Place place(std::size_t offset) const {
    const auto after = std::upper_bound(begins_.begin(), begins_.end(), offset);
    return {static_cast<std::size_t>(after - begins_.begin()), offset - after[-1] + 1};
  }

 private:
  std::vector<std::size_t> begins_{0};
};

}  // namespace cli

#endif
