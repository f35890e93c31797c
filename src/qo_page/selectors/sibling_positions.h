// Which of how many elements one is among its siblings: each parent's children are counted once.

#ifndef QO_PAGE_SELECTORS_SIBLING_POSITIONS_H
#define QO_PAGE_SELECTORS_SIBLING_POSITIONS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include <qo_page/tree/node.h>

namespace qo::selectors {

// From 1, from the first and from the last one.
struct Position {
  std::uint32_t from_start, from_end;
};

class SiblingPositions {
 public:
  // The elements among the children.
  static std::uint32_t count(const _qo_html& parent);

  // Among the siblings of its name, for the element at `depth` that is at `place` among all of
  // them.
  Position among_type(const Node& node, std::size_t depth, std::uint32_t place);

 private:
  using Type = std::uint32_t;

  struct Family {
    const _qo_html* parent = nullptr;
    std::vector<Position> positions;  // of its elements
  };

  Type type_of(const Node& node);
  void count_types(Family& family);

  std::vector<Family> families_;       // one at each depth
  std::vector<std::uint32_t> counts_;  // by type; zero while nothing is counted
  std::unordered_map<std::string, Type> unknown_;
};

}  // namespace qo::selectors

#endif
