#include <qo_page/form_data.h>

#include <algorithm>
#include <unordered_map>

#include <qo_page/forms/control_index.h>
#include <qo_page/forms/form_fill.h>
#include <qo_page/forms/input_value.h>
#include <qo_page/text/attribute_value.h>
#include <qo_page/text/direction.h>
#include <qo_page/tree/node_access.h>

namespace qo {

namespace {

constexpr ControlNumber no_control = static_cast<ControlNumber>(-1);

bool may_send(const OwnedControl& control) {
  return !control.is_disabled && !control.is_offered;
}

// The standard's "constructing the entry list", control by control.
class EntryList {
 public:
  explicit EntryList(const ControlIndex& index) : index_(index), tree_(index.tree()) {}

  void add(ControlNumber number, bool is_pressed) {
    const ControlKind kind = index_.kind(number);
    if (is_button(kind) && !is_pressed) return;
    if (kind == ControlKind::image) return add_point(number);
    const bool is_choice = kind == ControlKind::checkbox || kind == ControlKind::radio;
    if (is_choice && !index_.is_checked(number)) return;
    const std::string name = index_.name(number);
    if (name.empty()) return;
    for (std::string& value : index_.values(number)) entries_.push_back({name, std::move(value)});
    if (sends_direction(index_[number].node)) add_direction(index_[number]);
  }

  std::vector<FormEntry> take() { return std::move(entries_); }

 private:
  // Where an image is pressed.
  void add_point(ControlNumber image) {
    std::string name = index_.name(image);
    if (!name.empty()) name += '.';
    entries_.push_back({name + "x", "0"});
    entries_.push_back({name + "y", "0"});
  }

  bool sends_direction(NodeIndex node) const {
    static constexpr InputType types[] = {InputType::hidden,   InputType::text,  InputType::search,
                                          InputType::tel,      InputType::url,   InputType::email,
                                          InputType::password, InputType::submit};
    if (tree_[node].tag == Tag::textarea_) return true;
    return tree_[node].tag == Tag::input_ && std::find(std::begin(types), std::end(types),
                                                       input_type(tree_, node)) != std::end(types);
  }

  // What "dirname" asks for.
  void add_direction(const OwnedControl& control) {
    std::string name = index_.text().attribute(control.node, "dirname");
    if (name.empty()) return;
    entries_.push_back({std::move(name), has_rtl_text(control.directed) ? "rtl" : "ltr"});
  }

  bool has_rtl_text(NodeIndex directed) {
    if (directed == no_node) return false;
    const auto [known, is_new] = is_rtl_.try_emplace(directed, false);
    if (is_new) known->second = is_rtl(tree_, directed);
    return known->second;
  }

  const ControlIndex& index_;
  const Tree& tree_;
  std::vector<FormEntry> entries_;
  std::unordered_map<NodeIndex, bool> is_rtl_;  // asked for once: it may take long
};

// By its name; by name and value where no button has all of that for a name.
ControlNumber find_button(const ControlIndex& index, const std::vector<ControlNumber>& controls,
                          std::string_view name) {
  ControlNumber of_value = no_control;
  for (const ControlNumber number : controls) {
    const NodeIndex node = index[number].node;
    if (!is_submit_button(index.tree(), node) || !may_send(index[number])) continue;
    std::string own_name = index.name(number);
    if (own_name == name) return number;
    const std::string pair = std::move(own_name) + '=' + index.text().attribute(node, "value");
    if (of_value == no_control && pair == name) of_value = number;
  }
  return of_value;
}

// As scripts see it.
std::string_view type_of(const ControlIndex& index, ControlNumber number) {
  const Tree& tree = index.tree();
  const NodeIndex node = index[number].node;
  switch (tree[node].tag) {
    case Tag::input_:
      return type_name(input_type(tree, node));
    case Tag::textarea_:
      return "textarea";
    case Tag::select_:
      return has_attribute(tree, node, "multiple") ? "select-multiple" : "select-one";
    default:
      if (is_submit_button(tree, node)) return "submit";
      return has_value(tree, node, "type", "reset") ? "reset" : "button";
  }
}

}  // namespace

struct FormControls::State : ControlIndex {
  using ControlIndex::ControlIndex;
};

FormControls::FormControls(const Page& page)
    : state_(std::make_unique<State>(PageAccess::tree(page))) {}

FormControls::~FormControls() = default;
FormControls::FormControls(FormControls&&) noexcept = default;
FormControls& FormControls::operator=(FormControls&&) noexcept = default;

std::vector<FormEntry> FormControls::entries(Node form,
                                             std::optional<std::string_view> submitter) const {
  const ControlIndex& index = *state_;
  const auto controls = index.controls_of(NodeAccess::index_in(index.tree(), form));
  const ControlNumber pressed = submitter ? find_button(index, controls, *submitter) : no_control;
  EntryList list(index);
  for (const ControlNumber number : controls) {
    if (may_send(index[number])) list.add(number, number == pressed);
  }
  return list.take();
}

bool FormControls::has_button(Node form, std::string_view submitter) const {
  const ControlIndex& index = *state_;
  const auto controls = index.controls_of(NodeAccess::index_in(index.tree(), form));
  return find_button(index, controls, submitter) != no_control;
}

std::vector<FormControl> FormControls::controls(Node form) const {
  const ControlIndex& index = *state_;
  std::vector<FormControl> found;
  for (const ControlNumber number : index.controls_of(NodeAccess::index_in(index.tree(), form))) {
    if (index[number].is_offered) continue;
    found.push_back({NodeAccess::node(index.tree(), index[number].node), index.name(number),
                     std::string(type_of(index, number)), index[number].is_disabled,
                     index.is_checked(number), index.values(number)});
  }
  return found;
}

std::vector<std::pair<Node, Operation>> FormControls::fill(
    Node form, const std::vector<FieldValues>& values) const {
  const ControlIndex& index = *state_;
  return fill_operations(index, NodeAccess::index_in(index.tree(), form), values);
}

}  // namespace qo
