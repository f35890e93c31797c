#include <qo_page/selectors/walker.h>

#include <algorithm>

namespace qo::selectors {

Walker::Walker(const Program& program, Matcher& matcher, std::size_t pass)
    : program_(program),
      matcher_(matcher),
      steps_(program.passes[pass].steps),
      is_backward_(pass % 2 != 0),
      is_last_(pass + 1 == program.passes.size()),
      keeps_levels_(program.has_links || program.has_positions) {
  if (!keeps_levels_) return;
  make_level(0);
  for (const Step& step : steps_) {
    const bool holds = step.kind == Step::Kind::inherit && matcher_.matches_page(step.compound);
    if (holds) levels_[0].self |= slot_bit(step.slot);
  }
}

void Walker::make_level(std::size_t depth) {
  if (depth < levels_.size()) return;
  levels_.resize(2 * depth + 1);
  counts_.resize(levels_.size() * program_.counters);
}

bool Walker::visit_level(Here& here, Slots& slots) {
  make_level(here.depth);
  if (here.depth == 0) return false;  // the document
  Level& around = levels_[here.depth - 1];
  if (!here.node->isComment) ++around.place;
  here.place = around.place;
  here.siblings = &around.siblings;
  const Links linked = links(here.depth);
  for (const Step& step : steps_) {
    if (holds(step, here, linked)) here.slots |= slot_bit(step.slot);
  }
  slots = here.slots;
  const bool is_found = is_last_ && is_output(here, linked);
  is_backward_ ? leave_backward(here) : leave_forward(here);
  return is_found;
}

Walker::Links Walker::links(std::size_t depth) const {
  const Level& around = levels_[depth - 1];
  const Level& own = levels_[depth];
  if (is_backward_) return {~Slots{0}, own.below, own.beside, around.neighbour, around.beside};
  return {~Slots{0}, around.above, around.self, around.neighbour, around.beside};
}

bool Walker::follows(const Step& step, const Links& links) const {
  return (links[static_cast<std::size_t>(step.link)] & slot_bit(step.from)) != 0;
}

bool Walker::holds(const Step& step, const Here& here, const Links& links) {
  const Slots above = levels_[here.depth - 1].self;
  switch (step.kind) {
    case Step::Kind::match:
      return follows(step, links) && matcher_.matches(step.compound, here);
    case Step::Kind::inherit:
      return matcher_.matches(step.having, here) ? matcher_.matches(step.compound, here)
                                                 : (above & slot_bit(step.slot)) != 0;
    case Step::Kind::count:
      if (!matcher_.matches(step.compound, here)) return false;
      return step.nth.contains(++counts_[(here.depth - 1) * program_.counters + step.counter]);
  }
  return false;
}

bool Walker::is_output(const Here& here, const Links& links) {
  return std::any_of(program_.outputs.begin(), program_.outputs.end(), [&](const Step& step) {
    return follows(step, links) && matcher_.matches(step.compound, here);
  });
}

// The children come next.
void Walker::leave_forward(const Here& here) {
  if (here.node->isComment) return;
  Level& around = levels_[here.depth - 1];
  around.neighbour = here.slots;
  around.beside |= here.slots;
  Level& own = levels_[here.depth] = Level();
  own.self = here.slots;
  own.above = around.above | here.slots;
  clear_counts(here.depth);
}

// The children have been visited. A comment is beside the same elements as the one after it.
void Walker::leave_backward(const Here& here) {
  Level& around = levels_[here.depth - 1];
  Level& own = levels_[here.depth];
  around.neighbour = here.node->isComment ? around.neighbour | here.slots : here.slots;
  around.beside |= here.slots;
  around.below |= here.slots | own.below;
  own = Level();
  clear_counts(here.depth);
}

void Walker::clear_counts(std::size_t depth) {
  std::fill_n(counts_.begin() + static_cast<std::ptrdiff_t>(depth * program_.counters),
              program_.counters, 0u);
}

}  // namespace qo::selectors
