// Selectors that find just one element.

#ifndef QO_CLI_PAGES_NODE_PATH_H
#define QO_CLI_PAGES_NODE_PATH_H

#include <cstddef>
#include <string>
#include <unordered_map>

#include <qo_page/page.h>

namespace cli {

// The paths of the elements of one page, which must outlive the object. A path begins at the
// nearest element with an id or a name that no other has. Where that is farther away than some
// sixty levels, it is too long for a selector.
class NodePaths {
 public:
  // Goes over the page once.
  explicit NodePaths(const qo::Page& page);

  std::string path(qo::Node element);

 private:
  // From 1.
  struct Position {
    std::size_t place;         // among all siblings
    std::size_t index, count;  // among those of its name
  };

  std::string key_of(qo::Node element) const;
  bool has_own_id(qo::Node element, std::string& id) const;
  std::string step(qo::Node element);
  Position position(qo::Node element);
  void count_children(qo::Node parent);

  bool has_case_ = false;  // names of elements count as they are written

  // How often each is there; ids in lower case: they compare so on some pages.
  std::unordered_map<std::string, std::size_t> ids_, names_;
  std::unordered_map<qo::Node, Position> positions_;
};

}  // namespace cli

#endif
