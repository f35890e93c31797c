#include <qo_page/selectors/walker.h>

#include <algorithm>

namespace qo::selectors {

Walker::Walker(const Program& program, const Tree& tree, Matcher& matcher, std::vector<Slots>& kept,
               std::size_t pass)
    : program_(program),
      tree_(tree),
      matcher_(matcher),
      kept_(kept),
      steps_(program.passes[pass].steps),
      is_backward_(pass % 2 != 0),
      is_last_(pass + 1 == program.passes.size()),
      keeps_levels_(program.has_links || program.has_positions) {
  if (!keeps_levels_) return;
  push_level(document_index);
  for (const Step& step : steps_) {
    const bool holds = step.kind == Step::Kind::inherit && matcher_.matches_page(step.compound);
    if (holds) levels_[0].self |= slot_bit(step.slot);
  }
}

bool Walker::visit_level(Here& here) {
  const Level own = is_backward_ ? take_own_level(here.node) : Level();
  is_backward_ ? go_back_to(here.node) : go_to(here.node);
  Level& around = levels_.back();
  if (tree_.is_element(here.node)) ++around.place;
  here.depth = levels_.size();
  here.place = around.place;
  here.siblings = &around.siblings;
  if (!kept_.empty()) here.slots = kept_[here.node];
  const Links linked = links(own);
  for (const Step& step : steps_) {
    if (holds(step, here, linked)) here.slots |= slot_bit(step.slot);
  }
  if (!kept_.empty()) kept_[here.node] = here.slots;
  const bool is_found = is_last_ && is_output(here, linked);
  is_backward_ ? leave_backward(here, own) : leave_forward(here);
  return is_found;
}

void Walker::push_level(NodeIndex node) {
  Level& level = levels_.emplace_back();
  level.node = node;
  level.end = tree_[node].subtree_end;
  counts_.resize(levels_.size() * program_.counters);
}

void Walker::pop_level() {
  levels_.pop_back();
  counts_.resize(levels_.size() * program_.counters);
}

// Leaves the elements that end before the node.
void Walker::go_to(NodeIndex node) {
  while (levels_.back().end <= node) pop_level();
}

// What is known of the children, which have been visited.
Walker::Level Walker::take_own_level(NodeIndex node) {
  if (levels_.back().node != node) return Level();
  const Level own = levels_.back();
  pop_level();
  return own;
}

// Enters the elements around the node that were not visited yet.
void Walker::go_back_to(NodeIndex node) {
  const std::size_t known = levels_.size();
  const NodeIndex innermost = levels_.back().node;
  for (NodeIndex at = tree_.parent(node); at != innermost; at = tree_.parent(at)) push_level(at);
  std::reverse(levels_.begin() + static_cast<std::ptrdiff_t>(known), levels_.end());
}

Walker::Links Walker::links(const Level& own) const {
  const Level& around = levels_.back();
  if (is_backward_) return {~Slots{0}, own.below, own.beside, around.neighbour, around.beside};
  return {~Slots{0}, around.above, around.self, around.neighbour, around.beside};
}

bool Walker::follows(const Step& step, const Links& links) const {
  return (links[static_cast<std::size_t>(step.link)] & slot_bit(step.from)) != 0;
}

bool Walker::holds(const Step& step, const Here& here, const Links& links) {
  const Slots above = levels_.back().self;
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
  if (!tree_.is_element(here.node)) return;
  Level& around = levels_.back();
  const Slots above = around.above | here.slots;
  around.neighbour = here.slots;
  around.beside |= here.slots;
  if (tree_.first_child(here.node) == no_node) return;
  push_level(here.node);
  levels_.back().self = here.slots;
  levels_.back().above = above;
}

// The children have been visited. A comment is beside the same elements as the one after it.
void Walker::leave_backward(const Here& here, const Level& own) {
  Level& around = levels_.back();
  around.neighbour = tree_.is_element(here.node) ? here.slots : around.neighbour | here.slots;
  around.beside |= here.slots;
  around.below |= here.slots | own.below;
}

}  // namespace qo::selectors
