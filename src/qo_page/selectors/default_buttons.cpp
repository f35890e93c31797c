#include <qo_page/selectors/default_buttons.h>

#include <string>
#include <unordered_map>
#include <vector>

#include <qo_html/qo_html_walk.h>

#include <qo_page/selectors/attribute_match.h>

namespace qo::selectors {

namespace {

bool is_submit_button(const Node& node) {
  if (node.space != Space::html) return false;
  if (node.name == Tag::input_)
    return has_value(node, "type", "submit") || has_value(node, "type", "image");
  return node.name == Tag::button_ && !has_value(node, "type", "reset") &&
         !has_value(node, "type", "button");
}

using Elements = std::unordered_map<std::string, const Node*>;

// The first element of each id.
Elements elements_by_id(const Node& document) {
  Elements elements;
  std::string buffer;
  TreeWalk walk(const_cast<Node*>(&document));
  while (const _qo_html* found = walk.next()) {
    const Attribute* id = find_attribute(*as_node(found), "id");
    if (id != nullptr) elements.try_emplace(std::string(value_of(*id, buffer)), as_node(found));
  }
  return elements;
}

// Null unless it is a form.
const Node* form_of_id(const Elements& elements, const Attribute& id) {
  std::string buffer;
  const auto element = elements.find(std::string(value_of(id, buffer)));
  const bool is_form = element != elements.end() && element->second->name == Tag::form_;
  return is_form ? element->second : nullptr;
}

}  // namespace

std::unordered_set<const Node*> find_default_buttons(const Node& document) {
  const Elements elements = elements_by_id(document);
  std::unordered_set<const Node*> buttons, served;
  std::vector<const Node*> form_at;  // the innermost form around what is at each depth
  TreeWalk walk(const_cast<Node*>(&document));
  while (const _qo_html* found = walk.next()) {
    const Node& node = *as_node(found);
    const std::size_t depth = walk.depth();
    const Node* const around = depth == 0 ? nullptr : form_at[depth - 1];
    form_at.resize(depth);
    form_at.push_back(node.name == Tag::form_ ? &node : around);
    if (!is_submit_button(node)) continue;
    const Attribute* id = find_attribute(node, "form");
    const Node* const form = id == nullptr ? around : form_of_id(elements, *id);
    if (form != nullptr && served.insert(form).second) buttons.insert(&node);
  }
  return buttons;
}

}  // namespace qo::selectors
