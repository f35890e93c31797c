// The controls of forms, and what the elements around them make of them.

#ifndef QO_PAGE_FORMS_FORM_CONTROLS_H
#define QO_PAGE_FORMS_FORM_CONTROLS_H

#include <vector>

#include <qo_page/tree/node.h>

namespace qo {

// A button, input, select or textarea.
struct FormControl {
  const Node* node;
  const Node* form;      // that owns it; null for none
  const Node* root;      // the innermost <template> around it; null for none
  const Node* directed;  // the nearest element, itself included, with a direction; null for none
  bool is_disabled;      // by itself or by a fieldset
  bool is_offered;       // in a datalist: not to be sent
};

// In document order. Time grows with the page.
std::vector<FormControl> find_form_controls(const DocumentNode& document);

// The innermost <template> that the node is, or is in; null for none.
const Node* template_of(const Node* node);

bool is_submit_button(const Node& node);

}  // namespace qo

#endif
