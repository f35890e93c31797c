#include <qo_page/edits/composed_changes.h>

#include <algorithm>
#include <cstddef>

namespace qo {

namespace {

// Goes over the changes on one side; between them, an offset is as far from its counterpart as it
// was after the last one.
class Cursor {
 public:
  explicit Cursor(const std::vector<Change>& changes)
      : next_(changes.begin()), end_(changes.end()) {}

  bool has_next() const { return next_ != end_; }
  const Change& next() const { return *next_; }
  void advance() { past_ = &*next_++; }

  std::size_t old_offset(std::size_t offset) const {
    return past_ == nullptr ? offset : past_->old_end + (offset - past_->new_end);
  }
  std::size_t new_offset(std::size_t offset) const {
    return past_ == nullptr ? offset : past_->new_end + (offset - past_->old_end);
  }

 private:
  std::vector<Change>::const_iterator next_, end_;
  const Change* past_ = nullptr;
};

}  // namespace

std::vector<Change> composed(const std::vector<Change>& first, const std::vector<Change>& second) {
  std::vector<Change> out;
  Cursor a(first), b(second);
  while (a.has_next() || b.has_next()) {
    // A stretch of the source between the two that the changes of neither side lead out of.
    const bool begins_in_first =
        !b.has_next() || (a.has_next() && a.next().new_begin <= b.next().old_begin);
    const std::size_t begin = begins_in_first ? a.next().new_begin : b.next().old_begin;
    Change change{a.old_offset(begin), 0, b.new_offset(begin), 0, Node()};
    std::size_t end = begin;
    for (bool grows = true; grows;) {
      grows = false;
      for (; a.has_next() && a.next().new_begin <= end; a.advance(), grows = true) {
        end = std::max(end, a.next().new_end);
      }
      for (; b.has_next() && b.next().old_begin <= end; b.advance(), grows = true) {
        end = std::max(end, b.next().old_end);
      }
    }
    change.old_end = a.old_offset(end);
    change.new_end = b.new_offset(end);
    out.push_back(change);
  }
  return out;
}

}  // namespace qo
