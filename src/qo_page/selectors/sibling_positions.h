// Which of how many elements one is among its siblings: each parent's children are counted once.

#ifndef QO_PAGE_SELECTORS_SIBLING_POSITIONS_H
#define QO_PAGE_SELECTORS_SIBLING_POSITIONS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include <qo_page/tree/tree.h>

namespace qo::selectors {

// From 1, from the first and from the last one.
struct Position {
  std::uint32_t from_start, from_end;
};

class SiblingPositions {
 public:
  explicit SiblingPositions(const Tree& tree) : tree_(tree) {}

  // The elements among the children.
  std::uint32_t count(NodeIndex parent) const;

  // Among the siblings of its name, for the element at `depth` that is at `place` among all of
  // them.
  Position among_type(NodeIndex node, std::size_t depth, std::uint32_t place);

 private:
  using Type = std::uint32_t;

  struct Family {
    NodeIndex parent = no_node;
    std::vector<Position> positions;  // of its elements
  };

  Type type_of(NodeIndex node);
  void count_types(Family& family);

  const Tree& tree_;
  std::vector<Family> families_;       // one at each depth
  std::vector<Type> types_;            // of the elements that are being counted
  std::vector<std::uint32_t> counts_;  // by type; zero while nothing is counted
  std::unordered_map<std::string, Type> unknown_;
};

}  // namespace qo::selectors

#endif
