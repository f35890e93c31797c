#include <qo_page/forms/form_options.h>

#include <string>

#include <qo_html/qo_html_walk.h>

#include <qo_page/base/ascii.h>
#include <qo_page/selectors/attribute_match.h>

namespace qo {

namespace {

using selectors::find_attribute;

bool has_attribute(const Node& node, std::string_view name) {
  return find_attribute(node, name) != nullptr;
}

struct Option {
  const Node* node;
  bool is_disabled;
};

// Options that the select itself offers, not what else is in it.
std::vector<Option> options_of(const Node& select) {
  std::vector<Option> options;
  std::size_t disabled_until = 0;
  TreeWalk walk(const_cast<Node*>(&select));
  walk.next();
  while (const _qo_html* below = walk.next()) {
    const Node& node = *as_node(below);
    if (node.space != Space::html) continue;
    switch (node.name) {
      case Tag::option_:
        options.push_back(
            {&node, node.extent.begin < disabled_until || has_attribute(node, "disabled")});
        walk.skip_children();
        break;
      case Tag::optgroup_:
        disabled_until = has_attribute(node, "disabled") ? node.extent.end : 0;
        break;
      case Tag::datalist_:
      case Tag::select_:
      case Tag::template_:
        walk.skip_children();
        break;
      default:
        break;
    }
  }
  return options;
}

// Whether one row is all that is shown of it, so that one option is always selected. The size is
// the number that its attribute begins with.
bool is_menu(const Node& select) {
  const Attribute* const attribute = find_attribute(select, "size");
  if (attribute == nullptr) return true;
  std::string buffer;
  std::string_view size = selectors::value_of(*attribute, buffer);
  while (!size.empty() && is_blank(size.front())) size.remove_prefix(1);
  if (size.substr(0, 1) == "+") size.remove_prefix(1);
  while (size.size() > 1 && size[0] == '0' && is_digit(size[1])) size.remove_prefix(1);
  const bool is_number = !size.empty() && is_digit(size[0]);
  const bool is_small = is_number && size[0] <= '1' && (size.size() == 1 || !is_digit(size[1]));
  return !is_number || is_small;
}

const Option* first_enabled(const std::vector<Option>& options) {
  for (const Option& option : options) {
    if (!option.is_disabled) return &option;
  }
  return nullptr;
}

// The one option that is selected, if any; it may be disabled.
const Option* selected_option(const Node& select, const std::vector<Option>& options) {
  for (auto option = options.rbegin(); option != options.rend(); ++option) {
    if (has_attribute(*option->node, "selected")) return &*option;
  }
  return is_menu(select) ? first_enabled(options) : nullptr;
}

}  // namespace

std::vector<const Node*> selected_options(const Node& select) {
  const std::vector<Option> options = options_of(select);
  std::vector<const Node*> selected;
  if (has_attribute(select, "multiple")) {
    for (const Option& option : options) {
      const bool is_selected = has_attribute(*option.node, "selected");
      if (is_selected && !option.is_disabled) selected.push_back(option.node);
    }
  } else if (const Option* const one = selected_option(select, options)) {
    if (!one->is_disabled) selected.push_back(one->node);
  }
  return selected;
}

}  // namespace qo
