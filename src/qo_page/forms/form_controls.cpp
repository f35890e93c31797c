#include <qo_page/forms/form_controls.h>

#include <string>
#include <unordered_map>

#include <qo_html/qo_html_walk.h>

#include <qo_page/selectors/attribute_match.h>
#include <qo_page/selectors/languages.h>

namespace qo {

namespace {

using selectors::find_attribute;
using selectors::has_value;
using selectors::value_of;

bool is_html(const Node& node, Tag tag) {
  return node.name == tag && node.space == Space::html;
}

bool is_control(const Node& node) {
  return is_html(node, Tag::input_) || is_html(node, Tag::button_) || is_html(node, Tag::select_) ||
         is_html(node, Tag::textarea_);
}

bool has_attribute(const Node& node, std::string_view name) {
  return find_attribute(node, name) != nullptr;
}

// What an element is for those inside it.
struct Surroundings {
  const Node* form = nullptr;
  const Node* root = nullptr;
  const Node* directed = nullptr;
  bool is_disabled = false;
  bool is_disabled_outside = false;  // of a fieldset: whether another one disables it
  bool has_legend = false;           // of a fieldset: the first one has begun
  bool is_offered = false;
};

class ControlFinder {
 public:
  explicit ControlFinder(const DocumentNode& document) : document_(document) {}

  std::vector<FormControl> find() {
    TreeWalk walk(const_cast<DocumentNode*>(&document_));
    walk.next();
    std::vector<Surroundings> path(1);
    while (const _qo_html* found = walk.next()) {
      const Node& node = *as_node(found);
      path.resize(walk.depth());
      const Surroundings inside = enter(node, path.back());
      if (is_control(node)) add(node, inside);
      path.push_back(inside);
    }
    if (is_any_named_) name_forms();
    return std::move(controls_);
  }

 private:
  Surroundings enter(const Node& node, Surroundings& parent) {
    Surroundings inside = parent;
    inside.has_legend = false;
    if (node.kind != NodeKind::element || node.space != Space::html) return inside;
    if (selectors::has_direction(node)) inside.directed = &node;
    inside.is_disabled_outside = parent.is_disabled;
    switch (node.name) {
      case Tag::template_:
        inside = Surroundings();
        inside.root = &node;
        break;
      case Tag::form_:
        inside.form = &node;
        enter_range(node);
        break;
      case Tag::fieldset_:
        if (has_attribute(node, "disabled")) inside.is_disabled = true;
        break;
      case Tag::legend_:
        enter_legend(node, parent, inside);
        break;
      case Tag::datalist_:
        inside.is_offered = true;
        break;
      default:
        break;
    }
    return inside;
  }

  // A fieldset does not disable what its first legend holds.
  static void enter_legend(const Node& legend, Surroundings& parent, Surroundings& inside) {
    if (!is_html(*as_node(legend.parent), Tag::fieldset_) || parent.has_legend) return;
    parent.has_legend = true;
    inside.is_disabled = parent.is_disabled_outside;
  }

  void enter_range(const Node& form) {
    const std::vector<FormRange>& ranges = document_.form_ranges;
    if (range_ == ranges.size() || ranges[range_].begin != form.extent.begin) return;
    open_form_ = &form;
    open_end_ = ranges[range_++].end;
  }

  void add(const Node& node, const Surroundings& inside) {
    const bool is_named = has_attribute(node, "form") && inside.root == nullptr;
    if (is_named) is_any_named_ = true;
    const bool is_in_range = inside.root == nullptr && node.extent.begin < open_end_;
    controls_.push_back({&node, is_in_range ? open_form_ : inside.form, inside.root,
                         inside.directed, inside.is_disabled || has_attribute(node, "disabled"),
                         inside.is_offered});
  }

  // The first element of each id, of those that a browser has.
  void find_ids() {
    TreeWalk walk(const_cast<DocumentNode*>(&document_));
    std::string buffer;
    while (const _qo_html* found = walk.next()) {
      const Node& node = *as_node(found);
      if (is_html(node, Tag::template_)) walk.skip_children();
      if (const Attribute* id = find_attribute(node, "id")) {
        ids_.try_emplace(std::string(value_of(*id, buffer)), &node);
      }
    }
  }

  void name_forms() {
    find_ids();
    std::string buffer;
    for (FormControl& control : controls_) {
      const Attribute* id = find_attribute(*control.node, "form");
      if (id == nullptr || control.root != nullptr) continue;
      const auto named = ids_.find(std::string(value_of(*id, buffer)));
      const bool is_form = named != ids_.end() && is_html(*named->second, Tag::form_);
      control.form = is_form ? named->second : nullptr;
    }
  }

  const DocumentNode& document_;
  std::vector<FormControl> controls_;
  std::unordered_map<std::string, const Node*> ids_;
  std::size_t range_ = 0;            // the next one
  const Node* open_form_ = nullptr;  // of the last range
  std::size_t open_end_ = 0;
  bool is_any_named_ = false;
};

}  // namespace

std::vector<FormControl> find_form_controls(const DocumentNode& document) {
  return ControlFinder(document).find();
}

const Node* template_of(const Node* node) {
  while (node != nullptr && !is_html(*node, Tag::template_)) node = as_node(node->parent);
  return node;
}

// A button that says nothing of its type may have something else to do.
bool is_submit_button(const Node& node) {
  if (is_html(node, Tag::input_)) {
    return has_value(node, "type", "submit") || has_value(node, "type", "image");
  }
  if (!is_html(node, Tag::button_)) return false;
  if (has_value(node, "type", "submit")) return true;
  return !has_value(node, "type", "reset") && !has_value(node, "type", "button") &&
         !has_attribute(node, "command") && !has_attribute(node, "commandfor");
}

}  // namespace qo
