// Two edits of a page, one after the other, as one.

#ifndef QO_PAGE_EDITS_COMPOSED_CHANGES_H
#define QO_PAGE_EDITS_COMPOSED_CHANGES_H

#include <vector>

#include <qo_page/edits.h>

namespace qo {

// `first` leads from one source to the next, `second` on from there; the result leads all the way,
// and tells of no nodes.
std::vector<Change> composed(const std::vector<Change>& first, const std::vector<Change>& second);

}  // namespace qo

#endif
