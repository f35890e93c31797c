// A reading of a page that is compared with another one.

#ifndef QO_CLI_HOST_COMPARED_READING_H
#define QO_CLI_HOST_COMPARED_READING_H

#include <cstddef>
#include <utility>
#include <vector>

#include "host/reading.h"

namespace cli {

bool is_element(const PlacedNode& node);
bool is_text(const PlacedNode& node);
bool has_end_tag(const PlacedNode& node);

// The nodes of a reading, and what was reported of them so far.
class ComparedReading {
 public:
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  explicit ComparedReading(const Reading& reading);

  const PlacedNode& operator[](std::size_t i) const { return reading_.nodes[i]; }
  std::size_t size() const { return reading_.nodes.size(); }
  bool has_children(std::size_t i) const { return i + 1 < size() && (*this)[i + 1].parent == i; }

  const PlacedAttribute* attributes_begin(std::size_t i) const {
    return reading_.attributes.data() + (*this)[i].attributes_begin;
  }
  const PlacedAttribute* attributes_end(std::size_t i) const {
    return reading_.attributes.data() + (*this)[i].attributes_end;
  }

  // Goes on to the next node that is no white space, which may be anywhere between tags; at first,
  // from the document.
  void advance();
  std::size_t next() const { return next_; }

  // Where the next node begins; `end` when there is none before it.
  std::size_t next_offset(std::size_t end) const;

  // The node of the other reading that begins at the same offset.
  std::size_t twin(std::size_t i) const { return twins_[i]; }
  void set_twin(std::size_t i, std::size_t twin) { twins_[i] = twin; }

  // Whether `inner` is `outer` or below it.
  bool contains(std::size_t outer, std::size_t inner) const;

  // The element that the end tag at `offset` closes.
  std::size_t closed_at(std::size_t offset) const;

  // The text, section, declaration or start tag that `offset` lies within.
  std::size_t around(std::size_t offset) const;

  // --- What was told ---

  // Notes that the other reading takes what is within this node otherwise. Returns whether that was
  // noted before.
  bool tell_within(std::size_t i);

  // From now on the node is known to end elsewhere in the other reading, or not to be there: it no
  // longer counts as what others are in.
  void discount(std::size_t i);
  bool is_discounted(std::size_t i) const { return above_[i] != i; }

  // The nearest node that counts, from `i` up.
  std::size_t counted(std::size_t i);

 private:
  const Reading& reading_;
  std::size_t next_ = 0;
  std::vector<std::size_t> twins_;
  std::vector<bool> told_;
  std::vector<std::size_t> above_;  // on the way to the nearest node that counts
  std::vector<std::pair<std::size_t, std::size_t>> end_tags_;  // offsets, and what they close
};

}  // namespace cli

#endif
