// Selectors that find just one element.

#ifndef QO_CLI_COMMANDS_NODE_PATH_H
#define QO_CLI_COMMANDS_NODE_PATH_H

#include <cstddef>
#include <string>
#include <unordered_map>

#include <qo_page/page.h>

namespace cli {

// Of the elements of one page, which must stay. A path begins at the nearest element with an id or
// a name that no other has. Where that is farther away than some sixty levels, it is too long for a
// selector.
class NodePaths {
 public:
  // Goes over the page once.
  explicit NodePaths(const qo::Page& page);

  std::string path(const _qo_html* element);

 private:
  // From 1.
  struct Position {
    std::size_t place;         // among all siblings
    std::size_t index, count;  // among those of its name
  };

  bool has_own_id(const _qo_html* element, std::string& id) const;
  std::string step(const _qo_html* element);
  Position position(const _qo_html* element);
  void count_children(const _qo_html* parent);

  const qo::Page& page_;
  // How often each is there, in lower case: ids compare so on some pages.
  std::unordered_map<std::string, std::size_t> ids_, names_;
  std::unordered_map<const _qo_html*, Position> positions_;
};

}  // namespace cli

#endif
