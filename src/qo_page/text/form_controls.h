// The controls of a page, the forms that own them, and what the elements around make of them.

#ifndef QO_PAGE_TEXT_FORM_CONTROLS_H
#define QO_PAGE_TEXT_FORM_CONTROLS_H

#include <vector>

#include <qo_page/tree/tree.h>

namespace qo {

// A button, input, select or textarea.
struct OwnedControl {
  NodeIndex node;
  NodeIndex form;      // that owns it; no_node: none
  NodeIndex root;      // the innermost <template> around it; no_node: none
  NodeIndex directed;  // the nearest element, itself included, with a direction; no_node: none
  bool is_disabled;    // by itself or by a fieldset
  bool is_offered;     // in a datalist: not to be sent
};

// In document order. Time grows with the page.
std::vector<OwnedControl> find_form_controls(const Tree& tree);

// The innermost <template> that the node is, or is in; no_node when there is none.
NodeIndex template_of(const Tree& tree, NodeIndex node);

bool is_submit_button(const Tree& tree, NodeIndex node);

}  // namespace qo

#endif
