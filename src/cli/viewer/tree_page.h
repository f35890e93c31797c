// The trees of a page as a page of its own.

#ifndef QO_CLI_VIEWER_TREE_PAGE_H
#define QO_CLI_VIEWER_TREE_PAGE_H

#include <string>
#include <string_view>

namespace cli {

// What the page shows. The trees are JSON that may be in a script.
struct TreePage {
  std::string_view name;  // of the input
  std::string_view selector;
  bool host_selects;  // the selector is one of the host's, not of the page's own reading
  std::string_view source;
  std::string page;  // rows
  std::string host;  // rows, or a string that tells why there are none
};

// A self-contained HTML page that shows the tree that qo, a host, and the browser make of the
// source, two at a time. Nothing of the source is ever run or loaded.
std::string shown(const TreePage& trees);

}  // namespace cli

#endif
