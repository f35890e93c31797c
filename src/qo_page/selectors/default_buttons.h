// The button of each form that pressing Enter presses.

#ifndef QO_PAGE_SELECTORS_DEFAULT_BUTTONS_H
#define QO_PAGE_SELECTORS_DEFAULT_BUTTONS_H

#include <vector>

#include <qo_page/tree/tree.h>

namespace qo::selectors {

// The first submit button of each form, in document order. A button belongs to the form that its
// "form" attribute names, or else to the innermost one around it.
std::vector<NodeIndex> find_default_buttons(const Tree& tree);

}  // namespace qo::selectors

#endif
