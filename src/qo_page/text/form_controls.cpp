#include <qo_page/text/form_controls.h>

#include <string>
#include <unordered_map>

#include <qo_page/text/attribute_value.h>
#include <qo_page/text/direction.h>

namespace qo {

namespace {

bool is_control(const NodeRecord& record) {
  return record.space == Namespace::html &&
         (record.tag == Tag::input_ || record.tag == Tag::button_ || record.tag == Tag::select_ ||
          record.tag == Tag::textarea_);
}

// What an element is for those inside it.
struct Surroundings {
  NodeIndex element = document_index;
  NodeIndex form = no_node;
  NodeIndex root = no_node;
  NodeIndex directed = no_node;
  bool is_disabled = false;
  bool is_disabled_outside = false;  // of a fieldset: whether another one disables it
  bool has_legend = false;           // of a fieldset: the first one has begun
  bool is_offered = false;
};

class ControlFinder {
 public:
  explicit ControlFinder(const Tree& tree) : tree_(tree) {}

  std::vector<OwnedControl> find() {
    for (NodeIndex node = document_index + 1; node < tree_.size(); ++node) {
      while (tree_[path_.back().element].subtree_end <= node) path_.pop_back();
      const NodeRecord& record = tree_[node];
      if (record.kind != NodeKind::element || record.space != Namespace::html) continue;
      enter(node);
      if (is_control(record)) add(node);
    }
    if (is_any_named_) name_forms();
    return std::move(controls_);
  }

 private:
  // The path has only the elements that make a difference.
  void enter(NodeIndex node) {
    if (has_direction(tree_, node)) begin(node).directed = node;
    switch (tree_[node].tag) {
      case Tag::template_:
        begin(node) = Surroundings();
        path_.back().element = path_.back().root = node;
        break;
      case Tag::form_:
        begin(node).form = node;
        enter_range(node);
        break;
      case Tag::fieldset_:
        enter_fieldset(node);
        break;
      case Tag::legend_:
        enter_legend(node);
        break;
      case Tag::datalist_:
        begin(node).is_offered = true;
        break;
      default:
        break;
    }
  }

  Surroundings& begin(NodeIndex node) {
    if (path_.back().element != node) {
      path_.push_back(path_.back());
      path_.back().element = node;
      path_.back().has_legend = false;
    }
    return path_.back();
  }

  void enter_fieldset(NodeIndex fieldset) {
    Surroundings& inside = begin(fieldset);
    inside.is_disabled_outside = inside.is_disabled;
    if (has_attribute(tree_, fieldset, "disabled")) inside.is_disabled = true;
  }

  // A fieldset does not disable what its first legend holds.
  void enter_legend(NodeIndex legend) {
    const NodeIndex fieldset = tree_.parent(legend);
    if (!tree_.is_html(fieldset, Tag::fieldset_)) return;
    const std::size_t depth = path_.size() - (path_.back().element == legend ? 2 : 1);
    Surroundings& outside = path_[depth];
    if (outside.has_legend) return;
    outside.has_legend = true;
    const bool is_disabled = outside.is_disabled_outside;
    begin(legend).is_disabled = is_disabled;
  }

  void enter_range(NodeIndex form) {
    const std::vector<FormRange>& ranges = tree_.form_ranges;
    if (range_ == ranges.size() || ranges[range_].begin != tree_[form].begin) return;
    open_form_ = form;
    open_end_ = ranges[range_++].end;
  }

  void add(NodeIndex node) {
    const Surroundings& around = path_.back();
    const bool is_in_page = around.root == no_node;
    if (is_in_page && has_attribute(tree_, node, "form")) is_any_named_ = true;
    const bool is_in_range = is_in_page && tree_[node].begin < open_end_;
    controls_.push_back({node, is_in_range ? open_form_ : around.form, around.root, around.directed,
                         around.is_disabled || has_attribute(tree_, node, "disabled"),
                         around.is_offered});
  }

  // The first element of each id, of those that a browser has.
  void find_ids() {
    std::string buffer;
    for (NodeIndex node = document_index + 1; node < tree_.size();) {
      if (const AttributeRecord* id = tree_.find_attribute(node, "id")) {
        ids_.try_emplace(std::string(decoded_value(tree_, *id, buffer)), node);
      }
      node = tree_.is_html(node, Tag::template_) ? tree_[node].subtree_end : node + 1;
    }
  }

  void name_forms() {
    find_ids();
    std::string buffer;
    for (OwnedControl& control : controls_) {
      const AttributeRecord* const id = tree_.find_attribute(control.node, "form");
      if (id == nullptr || control.root != no_node) continue;
      const auto named = ids_.find(std::string(decoded_value(tree_, *id, buffer)));
      const bool is_form = named != ids_.end() && tree_.is_html(named->second, Tag::form_);
      control.form = is_form ? named->second : no_node;
    }
  }

  const Tree& tree_;
  std::vector<OwnedControl> controls_;
  std::vector<Surroundings> path_{1};
  std::unordered_map<std::string, NodeIndex> ids_;
  std::size_t range_ = 0;          // the next one
  NodeIndex open_form_ = no_node;  // of the last range
  std::size_t open_end_ = 0;
  bool is_any_named_ = false;
};

}  // namespace

std::vector<OwnedControl> find_form_controls(const Tree& tree) {
  return ControlFinder(tree).find();
}

NodeIndex template_of(const Tree& tree, NodeIndex node) {
  while (node != no_node && !tree.is_html(node, Tag::template_)) node = tree.parent(node);
  return node;
}

// A button that says nothing of its type may have something else to do.
bool is_submit_button(const Tree& tree, NodeIndex node) {
  if (tree.is_html(node, Tag::input_)) {
    return has_value(tree, node, "type", "submit") || has_value(tree, node, "type", "image");
  }
  if (!tree.is_html(node, Tag::button_)) return false;
  if (has_value(tree, node, "type", "submit")) return true;
  return !has_value(tree, node, "type", "reset") && !has_value(tree, node, "type", "button") &&
         !has_attribute(tree, node, "command") && !has_attribute(tree, node, "commandfor");
}

}  // namespace qo
