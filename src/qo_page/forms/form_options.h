// The options of a select.

#ifndef QO_PAGE_FORMS_FORM_OPTIONS_H
#define QO_PAGE_FORMS_FORM_OPTIONS_H

#include <vector>

#include <qo_page/tree/tree.h>

namespace qo {

struct SelectOption {
  NodeIndex node;
  bool is_disabled;  // by itself or by its group
};

// The options that belong to the select itself, in document order.
std::vector<SelectOption> options_of(const Tree& tree, NodeIndex select);

// Whether one row is all that is shown of the select, so that one option is always selected.
bool is_menu(const Tree& tree, NodeIndex select);

// The options that are selected and not disabled, in document order.
std::vector<NodeIndex> selected_options(const Tree& tree, NodeIndex select);

}  // namespace qo

#endif
