// The lines that a node has for itself.

#ifndef QO_PAGE_EDITS_OWN_LINE_H
#define QO_PAGE_EDITS_OWN_LINE_H

#include <qo_page/tree/tree.h>

namespace qo {

// From the start of the node's first line to after its last one, when nothing but blanks is beside
// it; else nothing but the node.
Range own_lines(const Tree& tree, NodeIndex node);

}  // namespace qo

#endif
