#include <qo_page/forms/form_options.h>

#include <string>

#include <qo_page/text/attribute_value.h>

namespace qo {

namespace {

const SelectOption* first_enabled(const std::vector<SelectOption>& options) {
  for (const SelectOption& option : options) {
    if (!option.is_disabled) return &option;
  }
  return nullptr;
}

// The one option that is selected, if any; it may be disabled.
const SelectOption* selected_option(const Tree& tree, NodeIndex select,
                                    const std::vector<SelectOption>& options) {
  for (auto option = options.rbegin(); option != options.rend(); ++option) {
    if (has_attribute(tree, option->node, "selected")) return &*option;
  }
  return is_menu(tree, select) ? first_enabled(options) : nullptr;
}

}  // namespace

std::vector<SelectOption> options_of(const Tree& tree, NodeIndex select) {
  std::vector<SelectOption> options;
  NodeIndex disabled_end = 0;  // of the last group
  for (NodeIndex node = select + 1; node < tree[select].subtree_end;) {
    const NodeRecord& record = tree[node];
    NodeIndex next = node + 1;
    if (record.space == Namespace::html) {
      switch (record.tag) {
        case Tag::option_:
          options.push_back({node, node < disabled_end || has_attribute(tree, node, "disabled")});
          next = record.subtree_end;
          break;
        case Tag::optgroup_:
          disabled_end = has_attribute(tree, node, "disabled") ? record.subtree_end : 0;
          break;
        case Tag::datalist_:
        case Tag::select_:
        case Tag::template_:
          next = record.subtree_end;
          break;
        default:
          break;
      }
    }
    node = next;
  }
  return options;
}

// The size is the number that its attribute begins with.
bool is_menu(const Tree& tree, NodeIndex select) {
  if (has_attribute(tree, select, "multiple")) return false;
  const AttributeRecord* const attribute = tree.find_attribute(select, "size");
  if (attribute == nullptr) return true;
  std::string buffer;
  std::string_view size = decoded_value(tree, *attribute, buffer);
  while (!size.empty() && is_blank(size.front())) size.remove_prefix(1);
  if (size.substr(0, 1) == "+") size.remove_prefix(1);
  while (size.size() > 1 && size[0] == '0' && is_digit(size[1])) size.remove_prefix(1);
  const bool is_number = !size.empty() && is_digit(size[0]);
  const bool is_small = is_number && size[0] <= '1' && (size.size() == 1 || !is_digit(size[1]));
  return !is_number || is_small;
}

std::vector<NodeIndex> selected_options(const Tree& tree, NodeIndex select) {
  const std::vector<SelectOption> options = options_of(tree, select);
  std::vector<NodeIndex> selected;
  if (has_attribute(tree, select, "multiple")) {
    for (const SelectOption& option : options) {
      const bool is_selected = has_attribute(tree, option.node, "selected");
      if (is_selected && !option.is_disabled) selected.push_back(option.node);
    }
  } else if (const SelectOption* const one = selected_option(tree, select, options)) {
    if (!one->is_disabled) selected.push_back(one->node);
  }
  return selected;
}

}  // namespace qo
