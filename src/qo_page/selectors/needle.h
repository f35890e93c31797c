// A text to look for.

#ifndef QO_PAGE_SELECTORS_NEEDLE_H
#define QO_PAGE_SELECTORS_NEEDLE_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qo::selectors {

class Needle {
 public:
  Needle() = default;
  explicit Needle(std::string text);

  const std::string& text() const { return text_; }

  // Where it is in `text`, in order, overlapping places included. It must not be empty. Time grows
  // with the length of the text alone.
  std::vector<std::size_t> places_in(std::string_view text) const;

 private:
  std::string text_;
  std::vector<std::size_t>
      borders_;  // of each of its beginnings: the longest one that also ends it
};

}  // namespace qo::selectors

#endif
