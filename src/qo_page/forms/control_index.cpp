#include <qo_page/forms/control_index.h>

#include <algorithm>
#include <map>
#include <tuple>

#include <qo_page/forms/form_options.h>
#include <qo_page/forms/input_value.h>
#include <qo_page/text/attribute_value.h>

namespace qo {

namespace {

ControlKind kind_of_input(InputType type) {
  switch (type) {
    case InputType::hidden:
      return ControlKind::hidden;
    case InputType::checkbox:
      return ControlKind::checkbox;
    case InputType::radio:
      return ControlKind::radio;
    case InputType::file:
      return ControlKind::file;
    case InputType::submit:
      return ControlKind::submit;
    case InputType::image:
      return ControlKind::image;
    case InputType::button:
    case InputType::reset:
      return ControlKind::idle;
    default:
      return ControlKind::input;
  }
}

ControlKind kind_of(const Tree& tree, NodeIndex control) {
  switch (tree[control].tag) {
    case Tag::input_:
      return kind_of_input(input_type(tree, control));
    case Tag::textarea_:
      return ControlKind::textarea;
    case Tag::select_:
      if (has_attribute(tree, control, "multiple")) return ControlKind::multiple;
      return is_menu(tree, control) ? ControlKind::menu : ControlKind::list;
    default:
      return is_submit_button(tree, control) ? ControlKind::submit : ControlKind::idle;
  }
}

// Those below a node; what is in a template is not below what the template is in.
std::vector<ControlNumber> controls_below(const Tree& tree,
                                          const std::vector<OwnedControl>& controls,
                                          NodeIndex node) {
  const auto is_before = [](const OwnedControl& control, NodeIndex index) {
    return control.node <= index;
  };
  auto control = std::lower_bound(controls.begin(), controls.end(), node, is_before);
  const NodeIndex root = template_of(tree, node);
  std::vector<ControlNumber> below;
  for (; control != controls.end() && control->node < tree[node].subtree_end; ++control) {
    if (control->root != root) continue;
    below.push_back(static_cast<ControlNumber>(control - controls.begin()));
  }
  return below;
}

}  // namespace

bool is_button(ControlKind kind) {
  return kind == ControlKind::submit || kind == ControlKind::image || kind == ControlKind::idle;
}

ControlIndex::ControlIndex(const Tree& tree)
    : tree_(tree), text_(tree), controls_(find_form_controls(tree)) {
  for (ControlNumber number = 0; number < controls_.size(); ++number) {
    kinds_.push_back(kind_of(tree_, controls_[number].node));
    if (controls_[number].form != no_node) by_form_.push_back(number);
  }
  std::stable_sort(by_form_.begin(), by_form_.end(), [this](ControlNumber a, ControlNumber b) {
    return controls_[a].form < controls_[b].form;
  });
  find_groups();
}

void ControlIndex::find_groups() {
  groups_.assign(controls_.size(), no_node);
  is_checked_.assign(controls_.size(), false);
  struct Group {
    NodeIndex first;
    ControlNumber last_checked;
  };
  constexpr auto none = static_cast<ControlNumber>(-1);
  std::map<std::tuple<NodeIndex, NodeIndex, std::string>, Group> groups;
  for (ControlNumber number = 0; number < controls_.size(); ++number) {
    const OwnedControl& control = controls_[number];
    const ControlKind own_kind = kind(number);
    if (own_kind != ControlKind::radio && own_kind != ControlKind::checkbox) continue;
    const bool is_checked = has_attribute(tree_, control.node, "checked");
    if (own_kind == ControlKind::radio) {
      const auto key = std::make_tuple(control.root, control.form, name(number));
      Group& group = groups.try_emplace(key, Group{control.node, none}).first->second;
      groups_[number] = group.first;
      if (!is_checked) continue;
      if (group.last_checked != none) is_checked_[group.last_checked] = false;
      group.last_checked = number;
    }
    is_checked_[number] = is_checked;
  }
}

std::vector<ControlNumber> ControlIndex::controls_of(NodeIndex form) const {
  if (!tree_.is_html(form, Tag::form_)) return controls_below(tree_, controls_, form);
  const auto begin =
      std::partition_point(by_form_.begin(), by_form_.end(),
                           [&](ControlNumber number) { return controls_[number].form < form; });
  const auto end = std::partition_point(
      begin, by_form_.end(), [&](ControlNumber number) { return controls_[number].form == form; });
  return {begin, end};
}

std::string ControlIndex::name(ControlNumber number) const {
  return text_.attribute(controls_[number].node, "name");
}

std::vector<std::string> ControlIndex::values(ControlNumber number) const {
  const NodeIndex node = controls_[number].node;
  switch (kind(number)) {
    case ControlKind::input:
    case ControlKind::hidden:
      return {input_value(node)};
    case ControlKind::textarea:
      return {text_.content(node)};
    case ControlKind::menu:
    case ControlKind::list:
    case ControlKind::multiple: {
      std::vector<std::string> values;
      for (const NodeIndex option : selected_options(tree_, node)) {
        values.push_back(option_value(option));
      }
      return values;
    }
    case ControlKind::checkbox:
    case ControlKind::radio:
      return {value_or(node, "on")};
    case ControlKind::file:
      return {""};
    case ControlKind::submit:
      return {value_or(node, tree_[node].tag == Tag::input_ ? "Submit" : "")};
    case ControlKind::image:
    case ControlKind::idle:
      break;
  }
  return {};
}

std::string ControlIndex::option_value(NodeIndex option) const {
  return has_attribute(tree_, option, "value") ? text_.attribute(option, "value")
                                               : text_.label(option);
}

std::string ControlIndex::value_or(NodeIndex node, std::string_view otherwise) const {
  return has_attribute(tree_, node, "value") ? text_.attribute(node, "value")
                                             : std::string(otherwise);
}

// Nothing tells whether a value with code in it will fit.
std::string ControlIndex::input_value(NodeIndex input) const {
  const InputType type = input_type(tree_, input);
  if (names_charset(tree_, input, type)) return "UTF-8";
  const AttributeRecord* const written = tree_.find_attribute(input, "value");
  std::string value = text_.attribute(input, "value");
  const bool has_code = written != nullptr && text_.has_code(tree_.written_value(*written));
  return has_code ? value : sanitized_value(tree_, input, type, std::move(value));
}

}  // namespace qo
