// What ties an element of a component to the markup beside it: expressions and conditions.

#ifndef QO_PAGE_EDITS_NEIGHBOURS_H
#define QO_PAGE_EDITS_NEIGHBOURS_H

#include <qo_page/edits/node_edits.h>

namespace qo {

// Throws Error when the edits would take an operand from its expression, or put something beside
// it, or separate an element with v-else from the one with v-if in front of it.
void check_neighbours(const Tree& tree, const NodeEdits& edits);

}  // namespace qo

#endif
