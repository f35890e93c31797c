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

// Each place where the two readings of `source` differ, in no particular order. What only follows
// from a reported place is left out: after a <li> that a host does not close, everything else nests
// otherwise, too. If `host` has read only the beginning of the source, only that is compared. Time
// grows with the source.
std::vector<Difference> find_differences(const Reading& page, const Reading& host,
                                         std::string_view source, const qo::LineIndex& lines);

}  // namespace cli

#endif
