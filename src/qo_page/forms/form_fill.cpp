#include <qo_page/forms/form_fill.h>

#include <algorithm>
#include <string_view>
#include <unordered_map>

#include <qo_page/base/shortened.h>
#include <qo_page/forms/form_options.h>
#include <qo_page/forms/input_value.h>
#include <qo_page/text/attribute_value.h>
#include <qo_page/text/escape.h>
#include <qo_page/tree/node_access.h>

namespace qo {

namespace {

using Numbers = std::vector<ControlNumber>;
using Values = std::vector<std::string>;

// Something that sends one value or nothing: a checkbox, a radio button, an option of many.
struct Choice {
  NodeIndex node;
  NodeIndex group;  // of a radio button; none for others
  std::string value;
  bool is_wanted = false;
};

// Controls of one name that send something as they are.
struct Field {
  Numbers hidden;
  Numbers singles;  // send one value each, and take any, or that of an option
  Numbers choices;
  Numbers all;  // of these, in document order
};

std::string counted(std::size_t number, const char* what) {
  return std::to_string(number) + what + (number == 1 ? "" : "s");
}

class Filler {
 public:
  Filler(const ControlIndex& index, NodeIndex form) : index_(index), tree_(index.tree()) {
    for (const ControlNumber number : index.controls_of(form)) {
      std::string name = index_.name(number);
      if (!name.empty() && !index_[number].is_offered) by_name_[std::move(name)].push_back(number);
    }
    form_begin_ = tree_[form].begin;
  }

  void fill(const std::string& name, const Values& values) {
    const Field field = field_of(name);
    if (sent(field.all) == values) return;
    if (!field.singles.empty() && !field.choices.empty()) {
      fail("the controls of the name " + shortened(name) + " take values in different ways",
           index_[field.choices[0]].node);
    } else if (!field.choices.empty()) {
      fill_choices(field, values);
    } else if (field.singles.size() == values.size() && !field.singles.empty()) {
      fill_singles(field.singles, values);
    } else if (values.empty() && field.hidden.empty() && are_lists(field.singles)) {
      for (const ControlNumber list : field.singles) select(index_[list].node, no_node);
    } else {
      fill_all(field, name, values);
    }
  }

  std::vector<std::pair<Node, Operation>> take() {
    check_groups();
    std::stable_sort(operations_.begin(), operations_.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    return std::move(operations_);
  }

 private:
  [[noreturn]] void fail(const std::string& message, NodeIndex node) const {
    throw Error(message, tree_[node].begin);
  }

  Field field_of(const std::string& name) const {
    const auto found = by_name_.find(name);
    if (found == by_name_.end()) {
      throw Error("the form has no control of the name " + shortened(name), form_begin_);
    }
    Field field;
    NodeIndex disabled = no_node;
    for (const ControlNumber number : found->second) {
      const ControlKind kind = index_.kind(number);
      if (is_button(kind)) continue;
      if (index_[number].is_disabled) {
        disabled = std::min(disabled, index_[number].node);
        continue;
      }
      field.all.push_back(number);
      (kind == ControlKind::hidden ? field.hidden
       : is_choice(kind)           ? field.choices
                                   : field.singles)
          .push_back(number);
    }
    if (!field.all.empty()) return field;
    if (disabled != no_node) fail("the control " + shortened(name) + " is disabled", disabled);
    fail("the control " + shortened(name) + " is a button: it is pressed, not filled in",
         index_[found->second[0]].node);
  }

  static bool is_choice(ControlKind kind) {
    return kind == ControlKind::checkbox || kind == ControlKind::radio ||
           kind == ControlKind::multiple;
  }

  bool are_lists(const Numbers& numbers) const {
    return !numbers.empty() &&
           std::all_of(numbers.begin(), numbers.end(), [this](ControlNumber number) {
             return index_.kind(number) == ControlKind::list;
           });
  }

  // What the controls send as they are.
  Values sent(const Numbers& numbers) const {
    Values out;
    for (const ControlNumber number : numbers) {
      const ControlKind kind = index_.kind(number);
      const bool is_checkable = kind == ControlKind::checkbox || kind == ControlKind::radio;
      if (is_checkable && !index_.is_checked(number)) continue;
      for (std::string& value : index_.values(number)) out.push_back(std::move(value));
    }
    return out;
  }

  void add(NodeIndex node, Operation::Kind kind, std::string name, std::string value = "") {
    operations_.push_back(
        {NodeAccess::node(tree_, node), {kind, std::move(name), std::move(value)}});
  }

  // For "checked" and "selected".
  void set_flag(NodeIndex node, const char* name, bool is_set) {
    if (has_attribute(tree_, node, name) == is_set) return;
    add(node, is_set ? Operation::Kind::set_bare_attribute : Operation::Kind::remove_attribute,
        name);
  }

  // --- Controls that send one value each ---

  void fill_singles(const Numbers& numbers, const Values& values) {
    for (std::size_t i = 0; i < numbers.size(); ++i) fill_single(numbers[i], values[i]);
  }

  // As many values as all of them send. Hidden inputs are set only where there are no others.
  void fill_all(const Field& field, const std::string& name, const Values& values) {
    if (field.all.size() != values.size()) {
      fail(counted(values.size(), " value") + " for " + counted(field.all.size(), " control") +
               " of the name " + shortened(name),
           index_[field.all[0]].node);
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
      const ControlNumber number = field.all[i];
      const bool stays = index_.kind(number) == ControlKind::hidden && !field.singles.empty();
      if (stays && sent({number})[0] != values[i]) {
        fail("a hidden input beside other controls of its name stays as it is",
             index_[number].node);
      }
      fill_single(number, values[i]);
    }
  }

  void fill_single(ControlNumber number, const std::string& value) {
    const NodeIndex node = index_[number].node;
    const Values before = sent({number});
    if (before.size() == 1 && before[0] == value) return;
    switch (index_.kind(number)) {
      case ControlKind::menu:
      case ControlKind::list:
        select(node, option_of(node, value));
        break;
      case ControlKind::file:
        fail("a page cannot say which file to send", node);
      case ControlKind::textarea:
        fill_textarea(node, value);
        break;
      default:
        fill_input(node, value);
    }
  }

  void fill_textarea(NodeIndex textarea, const std::string& value) {
    const std::string written = escaped_text(value, *tree_.dialect);
    check_written(index_.text().content_of("\n" + written), value, textarea);
    add(textarea, Operation::Kind::set_text, "", value);
  }

  void fill_input(NodeIndex input, const std::string& value) {
    const InputType type = input_type(tree_, input);
    if (names_charset(tree_, input, type)) fail("the input sends the page's encoding", input);
    const std::string written = escaped_value(value, '"', *tree_.dialect);
    check_written(index_.text().value_of(written), value, input);
    const bool fits =
        index_.text().has_code(written) || sanitized_value(tree_, input, type, value) == value;
    if (!fits) {
      fail("an input of the type " + std::string(type_name(type)) + " does not take " +
               shortened(value),
           input);
    }
    add(input, Operation::Kind::set_attribute, "value", value);
  }

  // Carriage returns and null bytes are not read as they are written.
  void check_written(const std::string& read, const std::string& value, NodeIndex node) const {
    const bool is_read = read == value && value.find('\0') == std::string::npos;
    if (!is_read) fail("the value " + shortened(value) + " cannot be written in a page", node);
  }

  NodeIndex option_of(NodeIndex select, const std::string& value) const {
    NodeIndex disabled = no_node;
    for (const SelectOption& option : options_of(tree_, select)) {
      if (index_.option_value(option.node) != value) continue;
      if (!option.is_disabled) return option.node;
      disabled = std::min(disabled, option.node);
    }
    if (disabled != no_node) fail("the option " + shortened(value) + " is disabled", disabled);
    fail("the select has no option " + shortened(value), select);
  }

  // That option alone, or none.
  void select(NodeIndex select, NodeIndex chosen) {
    for (const SelectOption& option : options_of(tree_, select)) {
      set_flag(option.node, "selected", option.node == chosen);
    }
  }

  // --- Controls that are told apart by their values ---

  void fill_choices(const Field& field, const Values& values) {
    std::vector<Choice> choices;
    for (const ControlNumber number : field.choices) add_choices(number, choices);
    std::unordered_map<std::string, std::vector<std::size_t>> by_value;
    for (std::size_t i = 0; i < choices.size(); ++i) add_choice(i, choices, by_value);
    std::unordered_map<std::string, std::size_t> wanted, hidden;
    for (const std::string& value : values) ++wanted[value];
    for (const std::string& value : sent(field.hidden)) ++hidden[value];
    for (const std::string& value : values) {
      const auto [left, is_first] = take_count(wanted, value);
      if (!is_first) continue;
      const std::vector<std::size_t>& of_value = by_value[value];
      if (left > of_value.size() + hidden[value]) fail_choice(field, value, of_value.empty());
      if (left < of_value.size()) {
        fail("several controls of that name have the value " + shortened(value),
             choices[of_value[1]].node);
      }
      for (const std::size_t i : of_value) choices[i].is_wanted = true;
    }
    for (const Choice& choice : choices) apply(choice);
  }

  // How often the value is wanted, and whether it was not asked for before.
  static std::pair<std::size_t, bool> take_count(
      std::unordered_map<std::string, std::size_t>& wanted, const std::string& value) {
    const std::size_t count = wanted[value];
    wanted[value] = 0;
    return {count, count != 0};
  }

  void add_choices(ControlNumber number, std::vector<Choice>& choices) const {
    const NodeIndex node = index_[number].node;
    if (index_.kind(number) != ControlKind::multiple) {
      choices.push_back({node, index_.group(number), index_.values(number)[0]});
      return;
    }
    for (const SelectOption& option : options_of(tree_, node)) {
      if (!option.is_disabled) {
        choices.push_back({option.node, no_node, index_.option_value(option.node)});
      }
    }
  }

  // Where several radio buttons of a group have one value, the first one is taken.
  static void add_choice(std::size_t i, const std::vector<Choice>& choices,
                         std::unordered_map<std::string, std::vector<std::size_t>>& by_value) {
    std::vector<std::size_t>& of_value = by_value[choices[i].value];
    const NodeIndex group = choices[i].group;
    if (group != no_node && !of_value.empty() && choices[of_value.back()].group == group) return;
    of_value.push_back(i);
  }

  [[noreturn]] void fail_choice(const Field& field, const std::string& value, bool is_unknown) {
    const NodeIndex first = index_[field.choices[0]].node;
    if (!is_unknown) fail("the value " + shortened(value) + " is wanted too often", first);
    const std::string name = index_.name(field.choices[0]);
    const NodeIndex disabled = disabled_choice(name, value);
    if (disabled != no_node)
      fail("the control of the value " + shortened(value) + " is disabled", disabled);
    fail("no control of the name " + shortened(name) + " has the value " + shortened(value), first);
  }

  NodeIndex disabled_choice(const std::string& name, const std::string& value) const {
    for (const ControlNumber number : by_name_.find(name)->second) {
      const NodeIndex node = index_[number].node;
      const ControlKind kind = index_.kind(number);
      if (kind == ControlKind::multiple) {
        for (const SelectOption& option : options_of(tree_, node)) {
          const bool is_disabled = option.is_disabled || index_[number].is_disabled;
          if (is_disabled && index_.option_value(option.node) == value) return option.node;
        }
      } else if (is_choice(kind) && index_[number].is_disabled &&
                 index_.values(number)[0] == value) {
        return node;
      }
    }
    return no_node;
  }

  void apply(const Choice& choice) {
    if (choice.group == no_node) {
      set_flag(choice.node, tree_[choice.node].tag == Tag::input_ ? "checked" : "selected",
               choice.is_wanted);
      return;
    }
    NodeIndex& chosen = chosen_.try_emplace(choice.group, no_node).first->second;
    if (!choice.is_wanted) return;
    if (chosen != no_node) fail("another radio button of the group is checked", choice.node);
    chosen = choice.node;
  }

  // Of groups with a checked button, disabled ones count as well; the last one would win.
  void check_groups() {
    if (chosen_.empty()) return;
    for (ControlNumber number = 0; number < index_.controls().size(); ++number) {
      const auto group = chosen_.find(index_.group(number));
      if (group == chosen_.end()) continue;
      const bool is_left_alone = index_[number].is_disabled && group->second == no_node;
      const NodeIndex node = index_[number].node;
      if (!is_left_alone) set_flag(node, "checked", node == group->second);
    }
  }

  const ControlIndex& index_;
  const Tree& tree_;
  std::size_t form_begin_;
  std::unordered_map<std::string, Numbers> by_name_;
  std::unordered_map<NodeIndex, NodeIndex> chosen_;  // of each group of radio buttons
  std::vector<std::pair<Node, Operation>> operations_;
};

// Each name once.
std::vector<FieldValues> joined(const std::vector<FieldValues>& values) {
  std::vector<FieldValues> out;
  std::unordered_map<std::string, std::size_t> places;
  for (const FieldValues& field : values) {
    const auto [place, is_new] = places.try_emplace(field.name, out.size());
    if (is_new) {
      out.push_back(field);
    } else {
      Values& before = out[place->second].values;
      before.insert(before.end(), field.values.begin(), field.values.end());
    }
  }
  return out;
}

}  // namespace

std::vector<std::pair<Node, Operation>> fill_operations(const ControlIndex& index, NodeIndex form,
                                                        const std::vector<FieldValues>& values) {
  Filler filler(index, form);
  for (const FieldValues& field : joined(values)) filler.fill(field.name, field.values);
  return filler.take();
}

}  // namespace qo
