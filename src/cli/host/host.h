// The tool as a host: it supplies the library's services itself.

#ifndef QO_CLI_HOST_HOST_H
#define QO_CLI_HOST_HOST_H

#include <cstddef>

namespace cli {

// How many tags the parser has met so far, over all pages: it checks the name of each.
std::size_t tags_met();

}  // namespace cli

#endif
