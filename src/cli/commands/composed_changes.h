// Two edits of a page, one after the other, as one.

#ifndef QO_CLI_COMMANDS_COMPOSED_CHANGES_H
#define QO_CLI_COMMANDS_COMPOSED_CHANGES_H

#include <vector>

#include <qo_page/edits.h>

namespace cli {

// `first` leads from one source to the next, `second` from there to the last one. The result leads
// from the first source to the last, and has no nodes.
std::vector<qo::Change> composed(const std::vector<qo::Change>& first,
                                 const std::vector<qo::Change>& second);

}  // namespace cli

#endif
