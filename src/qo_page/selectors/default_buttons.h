// The button of each form that pressing Enter presses.

#ifndef QO_PAGE_SELECTORS_DEFAULT_BUTTONS_H
#define QO_PAGE_SELECTORS_DEFAULT_BUTTONS_H

#include <unordered_set>

#include <qo_page/tree/node.h>

namespace qo::selectors {

// The first submit button of each form. A button belongs to the form that its "form" attribute
// names, or else to the innermost one around it.
std::unordered_set<const Node*> find_default_buttons(const Node& document);

}  // namespace qo::selectors

#endif
