// Carries out the steps of one walk, node by node.

#ifndef QO_PAGE_SELECTORS_WALKER_H
#define QO_PAGE_SELECTORS_WALKER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <qo_page/selectors/matcher.h>
#include <qo_page/selectors/program.h>

namespace qo::selectors {

class Walker {
 public:
  Walker(const Program& program, Matcher& matcher, std::size_t pass);

  // The walk is at that node, and has been at all that it visits before. Elements count, and
  // comments where the program looks at these. Completes the slots, and tells whether the program
  // finds the node, if this is its last walk.
  bool visit(const Node& node, std::size_t depth, Slots& slots) {
    Here here{&node, depth, slots, 0, nullptr, is_backward_};
    if (!keeps_levels_) return is_output(here, Links{~Slots{0}});
    return visit_level(here, slots);
  }

 private:
  // What is known at a node while its children are visited.
  struct Level {
    Slots self = 0;              // the slots of the node, when the walk goes forward
    Slots above = 0;             // those, and those of all nodes above
    Slots below = 0;             // of all nodes below that were visited, when it goes backward
    Slots neighbour = 0;         // of the child that was visited last
    Slots beside = 0;            // of all children that were visited
    std::uint32_t place = 0;     // how many elements these are
    std::uint32_t siblings = 0;  // how many elements there are; 0 until counted
  };

  // For each combinator, the slots of the nodes that it leads to.
  using Links = std::array<Slots, 5>;

  bool visit_level(Here& here, Slots& slots);
  void make_level(std::size_t depth);
  Links links(std::size_t depth) const;
  bool follows(const Step& step, const Links& links) const;
  bool holds(const Step& step, const Here& here, const Links& links);
  bool is_output(const Here& here, const Links& links);
  void leave_forward(const Here& here);
  void leave_backward(const Here& here);
  void clear_counts(std::size_t depth);

  const Program& program_;
  Matcher& matcher_;
  const std::vector<Step>& steps_;
  bool is_backward_, is_last_, keeps_levels_;
  std::vector<Level> levels_;
  std::vector<std::uint32_t> counts_;  // of each level, one for each counter
};

}  // namespace qo::selectors

#endif
