// Finds a text again and again.

#ifndef QO_PAGE_BASE_FINDER_H
#define QO_PAGE_BASE_FINDER_H

#include <cstddef>
#include <string_view>

namespace qo {

// Remembers what it found, so that looking from offsets that do not go back takes time in
// proportion to the source, also where nothing is found.
class Finder {
 public:
  explicit Finder(std::string_view wanted = std::string_view()) : wanted_(wanted) {}

  // The next place from `from` on; npos when there is none. To be called with one source.
  std::size_t find(std::string_view source, std::size_t from) {
    const bool is_known = is_set_ && from >= asked_ && from <= found_;
    if (!is_known) {
      asked_ = from;
      found_ = source.find(wanted_, from);
      is_set_ = true;
    }
    return found_;
  }

 private:
  std::string_view wanted_;
  std::size_t found_ = 0;
  std::size_t asked_ = 0;
  bool is_set_ = false;
};

}  // namespace qo

#endif
