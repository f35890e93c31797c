// A stretch of a text.

#ifndef QO_PAGE_RANGE_H
#define QO_PAGE_RANGE_H

#include <cstddef>
#include <string_view>

namespace qo {

// Offsets in bytes, from 0.
struct Range {
  std::size_t begin = 0;
  std::size_t end = 0;  // after it

  std::string_view in(std::string_view text) const { return text.substr(begin, end - begin); }
  bool empty() const { return begin == end; }
};

}  // namespace qo

#endif
