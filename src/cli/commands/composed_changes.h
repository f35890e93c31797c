// Two edits of a page, one after the other, as one.

#ifndef QO_CLI_COMMANDS_COMPOSED_CHANGES_H
#define QO_CLI_COMMANDS_COMPOSED_CHANGES_H

#include <vector>

#include <qo_page/edits.h>

namespace cli {

// `first` leads from one source to the next, `second` on from there; the result leads all the way,
// and tells of no nodes.
std::vector<qo::Change> composed(const std::vector<qo::Change>& first,
                                 const std::vector<qo::Change>& second);

}  // namespace cli

#endif
