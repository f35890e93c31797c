// The options of a select.

#ifndef QO_PAGE_FORMS_FORM_OPTIONS_H
#define QO_PAGE_FORMS_FORM_OPTIONS_H

#include <vector>

#include <qo_page/tree/node.h>

namespace qo {

// Those that are selected and not disabled, in document order.
std::vector<const Node*> selected_options(const Node& select);

}  // namespace qo

#endif
