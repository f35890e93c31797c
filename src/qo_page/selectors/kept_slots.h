// The slots of all nodes, from one walk to the next one.

#ifndef QO_PAGE_SELECTORS_KEPT_SLOTS_H
#define QO_PAGE_SELECTORS_KEPT_SLOTS_H

#include <cstddef>
#include <vector>

#include <qo_page/selectors/program.h>

namespace qo::selectors {

// Walks visit the same nodes, each in the reverse order of the one before.
class KeptSlots {
 public:
  void begin_walk() {
    ++walk_;
    next_ = goes_down() ? kept_.size() : 0;
  }

  // Those of the next node; none yet on the first walk.
  Slots& next() {
    if (walk_ == 1) return kept_.emplace_back(0);
    return goes_down() ? kept_[--next_] : kept_[next_++];
  }

 private:
  bool goes_down() const { return walk_ % 2 == 0; }

  std::vector<Slots> kept_;
  std::size_t next_ = 0;
  int walk_ = 0;
};

}  // namespace qo::selectors

#endif
