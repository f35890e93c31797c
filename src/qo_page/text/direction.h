// The direction of texts.

#ifndef QO_PAGE_TEXT_DIRECTION_H
#define QO_PAGE_TEXT_DIRECTION_H

#include <qo_page/tree/tree.h>

namespace qo {

// Whether the element has a direction of its own: one that is written, or one that its text tells.
bool has_direction(const Tree& tree, NodeIndex element);

// Whether that direction is from right to left. Time grows with the text of the element up to the
// first letter that tells; elements within that have a direction of their own are passed over.
bool is_rtl(const Tree& tree, NodeIndex element);

}  // namespace qo

#endif
