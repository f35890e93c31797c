// The bytes that the library writes for what it has read.

#ifndef QO_CLI_HOST_WRITTEN_FORMS_H
#define QO_CLI_HOST_WRITTEN_FORMS_H

#include <string_view>
#include <vector>

#include "host/differences.h"
#include "host/reading.h"

namespace cli {

// Adds to `out` each tag and comment of `source` that the library would write otherwise, and, if it
// has read all of the page, the end tags that it would add at the end.
void add_written_forms(const HostReading& host, std::string_view source, bool is_all,
                       std::vector<Difference>& out);

}  // namespace cli

#endif
