#include <qo_page/selectors/default_buttons.h>

#include <qo_page/forms/form_controls.h>

namespace qo::selectors {

std::unordered_set<const Node*> find_default_buttons(const Node& document) {
  std::unordered_set<const Node*> buttons, served;
  for (const FormControl& control : find_form_controls(as_document(document))) {
    if (control.form == nullptr || !is_submit_button(*control.node)) continue;
    if (served.insert(control.form).second) buttons.insert(control.node);
  }
  return buttons;
}

}  // namespace qo::selectors
