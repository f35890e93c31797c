#include <qo_page/selectors/default_buttons.h>

#include <unordered_set>

#include <qo_page/text/form_controls.h>

namespace qo::selectors {

std::vector<NodeIndex> find_default_buttons(const Tree& tree) {
  std::vector<NodeIndex> buttons;
  std::unordered_set<NodeIndex> served;
  for (const OwnedControl& control : find_form_controls(tree)) {
    if (control.form == no_node || !is_submit_button(tree, control.node)) continue;
    if (served.insert(control.form).second) buttons.push_back(control.node);
  }
  return buttons;
}

}  // namespace qo::selectors
