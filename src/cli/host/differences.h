// Where a host reads a page otherwise than its author wrote it.

#ifndef QO_CLI_HOST_DIFFERENCES_H
#define QO_CLI_HOST_DIFFERENCES_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <qo_page/line_index.h>

#include "host/reading.h"

namespace cli {

struct Difference {
  std::size_t offset;
  std::string what;  // in a line, without the place
};

// Each place where the two readings of `source` part, in no particular order. What only follows
// from one that was told is not told: after a <li> that a host does not close, everything else
// nests otherwise, too. `host` may have read the beginning of the source alone; then only that is
// compared. Time grows with the source.
std::vector<Difference> find_differences(const Reading& page, const Reading& host,
                                         std::string_view source, const qo::LineIndex& lines);

}  // namespace cli

#endif
