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
  // `kept` has the slots of each node from one walk to the next one; it is empty where there is
  // only one walk.
  Walker(const Program& program, const Tree& tree, Matcher& matcher, std::vector<Slots>& kept,
         std::size_t pass);

  bool is_backward() const { return is_backward_; }

  // Visits an element, or a comment where the program looks at comments. A forward walk has visited
  // the elements around it by then, and the earlier siblings of these and of the node itself; a
  // backward walk, all nodes that come after it. Completes the slots. Returns whether the program
  // finds the node, if this is its last walk.
  bool visit(NodeIndex node) {
    Here here{node, 0, 0, 0, nullptr, is_backward_};
    return keeps_levels_ ? visit_level(here) : is_output(here, Links{~Slots{0}});
  }

 private:
  // What is known of an element around, or of the document, while its children are visited.
  struct Level {
    NodeIndex node = document_index;
    NodeIndex end = 0;           // of its subtree
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

  bool visit_level(Here& here);
  void go_to(NodeIndex node);
  void go_back_to(NodeIndex node);
  Level take_own_level(NodeIndex node);
  void push_level(NodeIndex node);
  void pop_level();
  Links links(const Level& own) const;
  bool follows(const Step& step, const Links& links) const;
  bool holds(const Step& step, const Here& here, const Links& links);
  bool is_output(const Here& here, const Links& links);
  void leave_forward(const Here& here);
  void leave_backward(const Here& here, const Level& own);

  const Program& program_;
  const Tree& tree_;
  Matcher& matcher_;
  std::vector<Slots>& kept_;
  const std::vector<Step>& steps_;
  bool is_backward_, is_last_, keeps_levels_;
  std::vector<Level> levels_;          // from the document down to the parent of the node
  std::vector<std::uint32_t> counts_;  // of each level, one for each counter
};

}  // namespace qo::selectors

#endif
