// The operations that fill a form in.

#ifndef QO_PAGE_FORMS_FORM_FILL_H
#define QO_PAGE_FORMS_FORM_FILL_H

#include <utility>
#include <vector>

#include <qo_page/form_data.h>
#include <qo_page/forms/control_index.h>

namespace qo {

// See FormControls::fill.
std::vector<std::pair<Node, Operation>> fill_operations(const ControlIndex& index, NodeIndex form,
                                                        const std::vector<FieldValues>& values);

}  // namespace qo

#endif
