// The trees of a page as a page of its own.

#ifndef QO_CLI_VIEWER_TREE_PAGE_H
#define QO_CLI_VIEWER_TREE_PAGE_H

#include <optional>
#include <string>

#include <qo_page/selector.h>

#include "args/options.h"
#include "io/files.h"

namespace cli {

// A self-contained HTML page that shows the tree that qo, a host, and the browser make of `input`,
// two at a time, with the matches of the selector highlighted in the first or, by --host, in the
// second. `selector`: the one for the first. Nothing of the input is ever run or loaded. Throws
// Failure. Takes the text of the input along.
std::string tree_page(Input& input, const Options& options,
                      const std::optional<qo::Selector>& selector);

}  // namespace cli

#endif
