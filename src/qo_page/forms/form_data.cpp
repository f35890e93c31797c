#include <qo_page/form_data.h>

#include <algorithm>
#include <map>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include <qo_page/forms/form_controls.h>
#include <qo_page/forms/form_options.h>
#include <qo_page/forms/form_text.h>
#include <qo_page/forms/input_value.h>
#include <qo_page/selectors/attribute_match.h>
#include <qo_page/selectors/languages.h>

namespace qo {

namespace {

using selectors::find_attribute;

bool is_radio_button(const Node& node) {
  return node.name == Tag::input_ && input_type(node) == InputType::radio;
}

bool is_pressable(const FormControl& control) {
  return is_submit_button(*control.node) && !control.is_disabled && !control.is_offered;
}

// Of the checked radio buttons of a group, a browser keeps the last one checked.
std::unordered_set<const Node*> checked_radio_buttons(const FormSource& source,
                                                      const std::vector<FormControl>& controls) {
  std::unordered_set<const Node*> checked;
  std::map<std::tuple<const Node*, const Node*, std::string>, const Node*> last;
  for (const FormControl& control : controls) {
    const Node& node = *control.node;
    if (!is_radio_button(node) || find_attribute(node, "checked") == nullptr) continue;
    last[{control.root, control.form, source.attribute(node, "name")}] = &node;
  }
  for (const auto& group : last) checked.insert(group.second);
  return checked;
}

// The standard's "constructing the entry list", control by control.
class EntryList {
 public:
  EntryList(const FormSource& source, const std::unordered_set<const Node*>& checked_radios)
      : source_(source), checked_radios_(checked_radios) {}

  void add(const FormControl& control, bool is_pressed) {
    const Node& node = *control.node;
    if (node.name == Tag::button_) {
      if (is_pressed) add_value(node, source_.attribute(node, "value"));
    } else if (node.name == Tag::select_) {
      for (const Node* option : selected_options(node)) add_value(node, option_value(*option));
    } else if (node.name == Tag::textarea_) {
      if (add_value(node, source_.content(node))) add_direction(control);
    } else {
      add_input(control, input_type(node), is_pressed);
    }
  }

  std::vector<FormEntry> take() { return std::move(entries_); }

 private:
  bool add_value(const Node& node, std::string value) {
    std::string name = source_.attribute(node, "name");
    if (name.empty()) return false;
    entries_.push_back({std::move(name), std::move(value)});
    return true;
  }

  void add_input(const FormControl& control, InputType type, bool is_pressed) {
    const Node& node = *control.node;
    switch (type) {
      case InputType::button:
      case InputType::reset:
        return;
      case InputType::image:
        if (is_pressed) add_point(node);
        return;
      case InputType::checkbox:
      case InputType::radio:
        if (is_checked(node, type)) add_value(node, value_or(node, "on"));
        return;
      case InputType::file:
        add_value(node, "");
        return;
      case InputType::submit:
        if (is_pressed && add_value(node, value_or(node, "Submit"))) add_direction(control);
        return;
      default:
        if (add_value(node, input_value(node, type)) && has_direction(type)) add_direction(control);
    }
  }

  // Where an image is pressed.
  void add_point(const Node& image) {
    std::string name = source_.attribute(image, "name");
    if (!name.empty()) name += '.';
    entries_.push_back({name + "x", "0"});
    entries_.push_back({name + "y", "0"});
  }

  bool is_checked(const Node& node, InputType type) const {
    return type == InputType::radio ? checked_radios_.count(&node) != 0
                                    : find_attribute(node, "checked") != nullptr;
  }

  std::string value_or(const Node& node, const char* otherwise) const {
    return find_attribute(node, "value") == nullptr ? otherwise : source_.attribute(node, "value");
  }

  std::string option_value(const Node& option) const {
    return find_attribute(option, "value") == nullptr ? source_.label(option)
                                                      : source_.attribute(option, "value");
  }

  // Nothing tells whether a value with code in it will fit.
  std::string input_value(const Node& node, InputType type) const {
    const bool names_charset =
        type == InputType::hidden && selectors::has_value(node, "name", "_charset_");
    if (names_charset) return "UTF-8";
    const Attribute* written = find_attribute(node, "value");
    std::string value = source_.attribute(node, "value");
    if (written != nullptr && source_.has_code(written->value)) return value;
    return sanitized_value(node, type, std::move(value));
  }

  static bool has_direction(InputType type) {
    static constexpr InputType types[] = {InputType::hidden,  InputType::text, InputType::search,
                                          InputType::tel,     InputType::url,  InputType::email,
                                          InputType::password};
    return std::find(std::begin(types), std::end(types), type) != std::end(types);
  }

  // What "dirname" asks for.
  void add_direction(const FormControl& control) {
    std::string name = source_.attribute(*control.node, "dirname");
    if (name.empty()) return;
    entries_.push_back({std::move(name), is_rtl(control.directed) ? "rtl" : "ltr"});
  }

  bool is_rtl(const Node* directed) {
    if (directed == nullptr) return false;
    const auto [known, is_new] = is_rtl_.try_emplace(directed, false);
    if (is_new) known->second = selectors::is_rtl(*directed);
    return known->second;
  }

  const FormSource& source_;
  const std::unordered_set<const Node*>& checked_radios_;
  std::vector<FormEntry> entries_;
  std::unordered_map<const Node*, bool> is_rtl_;  // asked for once: it may take long
};

using Controls = std::vector<const FormControl*>;

// By its name; by name and value where no button has all of that for a name.
const FormControl* find_button(const FormSource& source, const Controls& controls,
                               std::string_view name) {
  const FormControl* of_value = nullptr;
  for (const FormControl* control : controls) {
    if (!is_pressable(*control)) continue;
    std::string own_name = source.attribute(*control->node, "name");
    if (own_name == name) return control;
    const std::string pair = std::move(own_name) + '=' + source.attribute(*control->node, "value");
    if (of_value == nullptr && pair == name) of_value = control;
  }
  return of_value;
}

// Those below a node; what is in a template is not below what the template is in.
Controls controls_below(const std::vector<FormControl>& controls, const Node& node) {
  const auto begins_after = [](std::size_t offset, const FormControl& control) {
    return offset < control.node->extent.begin;
  };
  const bool is_page = node.kind == NodeKind::document;
  auto control =
      is_page ? controls.begin()
              : std::upper_bound(controls.begin(), controls.end(), node.extent.begin, begins_after);
  const Node* const root = template_of(&node);
  Controls below;
  for (; control != controls.end() && control->node->extent.begin < node.extent.end; ++control) {
    if (control->root == root) below.push_back(&*control);
  }
  return below;
}

// All that is known of a page.
struct ControlIndex {
  FormSource source;
  std::vector<FormControl> controls;
  std::unordered_map<const _qo_html*, Controls> by_form;
  std::unordered_set<const Node*> checked_radios;

  // Those of a form, or those below any other node.
  Controls controls_of(const _qo_html* form) const {
    const Node& node = *as_node(form);
    const bool is_form = node.name == Tag::form_ && node.space == Space::html;
    if (!is_form) return controls_below(controls, node);
    const auto found = by_form.find(form);
    return found == by_form.end() ? Controls() : found->second;
  }
};

}  // namespace

struct FormControls::State : ControlIndex {};

FormControls::FormControls(const Page& page) : state_(std::make_unique<State>()) {
  State& state = *state_;
  state.source = {page.source(), page.options().templates};
  state.controls = find_form_controls(as_document(*page.document()));
  for (const FormControl& control : state.controls) {
    if (control.form != nullptr) state.by_form[control.form].push_back(&control);
  }
  state.checked_radios = checked_radio_buttons(state.source, state.controls);
}

FormControls::~FormControls() = default;
FormControls::FormControls(FormControls&&) noexcept = default;
FormControls& FormControls::operator=(FormControls&&) noexcept = default;

std::vector<FormEntry> FormControls::entries(const _qo_html* form,
                                             std::optional<std::string_view> submitter) const {
  const Controls controls = state_->controls_of(form);
  const FormControl* const pressed =
      submitter ? find_button(state_->source, controls, *submitter) : nullptr;
  EntryList list(state_->source, state_->checked_radios);
  for (const FormControl* control : controls) {
    if (!control->is_disabled && !control->is_offered) list.add(*control, control == pressed);
  }
  return list.take();
}

bool FormControls::has_button(const _qo_html* form, std::string_view submitter) const {
  return find_button(state_->source, state_->controls_of(form), submitter) != nullptr;
}

}  // namespace qo
