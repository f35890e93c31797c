// All that is known of the controls of a page.

#ifndef QO_PAGE_FORMS_CONTROL_INDEX_H
#define QO_PAGE_FORMS_CONTROL_INDEX_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <qo_page/forms/form_text.h>
#include <qo_page/text/form_controls.h>

namespace qo {

// What a control sends.
enum class ControlKind : unsigned char {
  input,     // its text
  hidden,    // the same, which nobody sees
  textarea,  // its text
  menu,      // an option
  list,      // an option or none
  multiple,  // any of its options
  checkbox,  // its value or none
  radio,     // the same, but for one of a group alone
  file,      // no more than its name: what a person picks is no part of a page
  submit,    // its value when it is pressed
  image,     // where it is pressed
  idle       // nothing
};

bool is_button(ControlKind kind);

using ControlNumber = std::uint32_t;  // a place in the list of all controls

class ControlIndex {
 public:
  explicit ControlIndex(const Tree& tree);

  const Tree& tree() const { return tree_; }
  const FormText& text() const { return text_; }
  const std::vector<OwnedControl>& controls() const { return controls_; }
  const OwnedControl& operator[](ControlNumber number) const { return controls_[number]; }

  // Those of a form, or those below any other node, in document order.
  std::vector<ControlNumber> controls_of(NodeIndex form) const;

  ControlKind kind(ControlNumber number) const { return kinds_[number]; }
  std::string name(ControlNumber number) const;

  // Of the checked radio buttons of a group, a browser keeps the last one checked.
  bool is_checked(ControlNumber number) const { return is_checked_[number]; }

  // The first radio button of the group of a radio button; no_node for other controls.
  NodeIndex group(ControlNumber number) const { return groups_[number]; }

  // What it would send, were it checked or pressed.
  std::vector<std::string> values(ControlNumber number) const;
  std::string option_value(NodeIndex option) const;

 private:
  void find_groups();
  std::string value_or(NodeIndex node, std::string_view otherwise) const;
  std::string input_value(NodeIndex input) const;

  const Tree& tree_;
  FormText text_;
  std::vector<OwnedControl> controls_;
  std::vector<ControlKind> kinds_;
  std::vector<ControlNumber> by_form_;  // those that have one
  std::vector<NodeIndex> groups_;
  std::vector<bool> is_checked_;
};

}  // namespace qo

#endif
