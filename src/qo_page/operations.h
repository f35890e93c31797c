// Which operations go together, and with which nodes.

#ifndef QO_PAGE_OPERATIONS_H
#define QO_PAGE_OPERATIONS_H

#include <vector>

#include <qo_page/edits.h>
#include <qo_page/node.h>

namespace qo {

// The same as check_operations(), for operations that need not be in one vector.
void check_together(const std::vector<const Operation*>& operations);

// Throws Error when the operation does not fit the kind of the node.
void check_fits(const Operation& operation, const Node& node);

}  // namespace qo

#endif
