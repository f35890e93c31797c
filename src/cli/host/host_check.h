// What `qo check` tells of a page.

#ifndef QO_CLI_HOST_HOST_CHECK_H
#define QO_CLI_HOST_HOST_CHECK_H

#include <vector>

#include <qo_page/line_index.h>
#include <qo_page/page.h>

#include "host/differences.h"

namespace cli {

// Each place where a host reads the page otherwise than its author wrote it, or refuses it, in the
// order of places; `with_bytes`: also where the library would write other bytes.
std::vector<Difference> host_differences(const qo::Page& page, const qo::LineIndex& lines,
                                         bool with_bytes);

}  // namespace cli

#endif
