// The tree of a page as a page of its own.

#ifndef QO_CLI_TREE_PAGE_H
#define QO_CLI_TREE_PAGE_H

#include <string>
#include <vector>

#include <qo_html/qo_html.h>

#include "files.h"

namespace cli {

// A self-contained HTML page that shows the tree of `document`, which was parsed from `input`, with
// `matches` of `selector` highlighted, beside what a browser makes of the same source. Nothing of
// the input is ever run or loaded.
std::string tree_page(const Input& input, _qo_html* document, const std::string& selector,
                      const std::vector<_qo_html*>& matches);

}  // namespace cli

#endif
