// The tree that the library makes of a page, as `qo tree` shows it.

#ifndef QO_CLI_HOST_HOST_TREE_H
#define QO_CLI_HOST_HOST_TREE_H

#include <string>

#include "args/options.h"
#include "io/files.h"
#include "pages/outline.h"

namespace cli {

// Throws Failure for a page that the library refuses.
void write_host_outline(const Input& input, const Options& options, Outline& outline);

// Rows for the viewer, with the matches of a selector of the library; a JSON string that tells why
// there are none when it refuses the page.
std::string host_tree_rows(const std::string& source, const Options& options);

}  // namespace cli

#endif
