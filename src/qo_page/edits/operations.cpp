#include <qo_page/edits/operations.h>

#include <algorithm>
#include <string>
#include <utility>

#include <qo_page/base/ascii.h>
#include <qo_page/edits/edit_error.h>
#include <qo_page/template/template_code.h>
#include <qo_page/tree/node_access.h>

namespace qo {

namespace {

using Kind = Operation::Kind;

// What an operation works on. This decides which operations go together.
enum Part : unsigned {
  tags = 1u << 0,     // changes the node's tags
  bare = 1u << 1,     // takes them away
  content = 1u << 2,  // sets the content
  inside = 1u << 3,   // adds to it
  around = 1u << 4,   // adds to what is around the node
  whole = 1u << 5,    // takes the node away
  texts = 1u << 6,    // changes texts within it
  marked = 1u << 7,   // puts markup into these
  place = 1u << 8,    // takes the node elsewhere
};

// The fields that an operation uses.
enum Field : unsigned {
  no_field = 0,
  name_field = 1u << 0,
  value_field = 1u << 1,
  substitution_field = 1u << 2,
  text_field = 1u << 3 | value_field,  // plain text
  target_field = 1u << 4
};

struct KindRow {
  const char* name;  // for messages
  Part part;
  unsigned fields;
};

// By kind.
constexpr KindRow kind_rows[] = {
    {"set an attribute", tags, name_field | text_field},
    {"set an attribute", tags, name_field},
    {"remove an attribute", tags, name_field},
    {"add a class", tags, text_field},
    {"remove a class", tags, value_field},
    {"add a token", tags, name_field | text_field},
    {"remove a token", tags, name_field | value_field},
    {"rename", tags, name_field},
    {"substitute in a value", tags, name_field | substitution_field},
    {"substitute in texts", texts, substitution_field},
    {"substitute by markup", marked, substitution_field},
    {"unwrap", bare, no_field},
    {"set the text", content, text_field},
    {"set the markup", content, value_field},
    {"prepend", inside, value_field},
    {"append", inside, value_field},
    {"insert before", Part(), value_field},
    {"insert after", Part(), value_field},
    {"wrap", around, value_field},
    {"replace", whole, value_field},
    {"move", place, target_field},
    {"move", place, target_field},
    {"move", place, target_field},
    {"remove", whole, no_field},
    {"remove", whole, no_field},
};

const KindRow& row_of(Kind kind) {
  return kind_rows[static_cast<std::size_t>(kind)];
}

// Parts that cannot both be worked on, whatever the order.
constexpr unsigned excluded[][2] = {{tags, bare | whole},
                                    {bare, whole},
                                    {content, content | whole},
                                    {inside, whole},
                                    {around, whole},
                                    {whole, whole},
                                    {texts | marked, content | whole},
                                    {texts, marked},
                                    {place, bare | whole | around | place}};

bool contradict(const Operation& first, const Operation& second) {
  const unsigned a = row_of(first.kind).part;
  const unsigned b = row_of(second.kind).part;
  for (const auto& [one, other] : excluded) {
    if (((a & one) != 0 && (b & other) != 0) || ((b & one) != 0 && (a & other) != 0)) return true;
  }
  if (a == inside && b == content) return true;
  return first.kind == Kind::rename && second.kind == Kind::rename && first.name != second.name;
}

bool is_attribute_name(std::string_view name) {
  return !name.empty() && name.find_first_of(" \t\n\f\r/>=\"'<") == std::string_view::npos;
}

bool is_element_name(std::string_view name) {
  return !name.empty() && is_letter(name[0]) && is_attribute_name(name);
}

bool is_class(std::string_view token) {
  return !token.empty() && std::none_of(token.begin(), token.end(), is_blank);
}

std::string quoted(const std::string& text) {
  return '"' + text + '"';
}

// An operation must have no field that its kind does not use.
void check_fields(const Operation& operation, std::size_t index) {
  const KindRow& row = row_of(operation.kind);
  const auto fail = [&](const std::string& what) {
    throw Error("to " + std::string(row.name) + what, index, Error::Place::operations);
  };
  const auto is_used = [&row](Field field) { return (row.fields & field) != 0; };
  if (is_used(substitution_field) && !operation.substitution) fail(" takes a substitution");
  if (!is_used(substitution_field) && operation.substitution) fail(" takes no substitution");
  if (!is_used(name_field) && !operation.name.empty()) fail(" takes no name");
  if (!is_used(value_field) && !operation.value.empty()) fail(" takes no value");
  if (!is_used(target_field) && operation.target) fail(" takes no target");
}

void check_names(const Operation& operation, std::size_t index) {
  const auto fail = [index](const std::string& message) {
    throw Error(message, index, Error::Place::operations);
  };
  const auto check_attribute = [&] {
    if (!is_attribute_name(operation.name)) fail(quoted(operation.name) + " is no attribute name");
  };
  switch (operation.kind) {
    case Kind::set_attribute:
    case Kind::set_bare_attribute:
    case Kind::remove_attribute:
    case Kind::substitute_value:
      return check_attribute();
    case Kind::add_token:
    case Kind::remove_token:
      check_attribute();
      if (is_class(operation.value)) return;
      return fail(quoted(operation.value) + " is not one token");
    case Kind::add_class:
    case Kind::remove_class:
      if (is_class(operation.value)) return;
      return fail(quoted(operation.value) + " is not one class");
    case Kind::rename:
      if (is_element_name(operation.name)) return;
      return fail(quoted(operation.name) + " is no name of an element");
    default:
      return;
  }
}

// A node goes outside of itself, and texts are no nodes that could be told from those beside them.
void check_target(const Operation& operation, const Tree& tree, NodeIndex index) {
  const auto fail = [&](const std::string& message) {
    throw EditError(message, tree[index].begin, NodeAccess::node(tree, index));
  };
  const NodeIndex target = NodeAccess::index_in(tree, operation.target);
  const NodeRecord& there = tree[target];
  const bool goes_in = operation.kind == Kind::move_into;
  if (tree[index].kind == NodeKind::text) fail("a text cannot be moved alone");
  if (there.kind == NodeKind::text) fail("a text is no place to move to");
  if (target == document_index) fail("the document is no place to move to");
  if (index <= target && target < tree[index].subtree_end) {
    fail(named(tree, index) + " cannot be moved " +
         (index == target && !goes_in ? "beside" : "into") + " itself");
  }
  if (goes_in && !(there.kind == NodeKind::element && there.has_content)) {
    fail(named(tree, target) + " has no content to move to");
  }
}

}  // namespace

void OperationSet::add(const Operation& operation, std::size_t index) {
  check_fields(operation, index);
  check_names(operation, index);
  bool is_first = true;
  for (const Operation* first : firsts_) {
    is_first = is_first && first->kind != operation.kind;
    if (!contradict(*first, operation)) continue;
    throw Error(std::string("\"") + row_of(first->kind).name + "\" and \"" +
                    row_of(operation.kind).name + "\" contradict each other",
                index, Error::Place::operations);
  }
  if (is_first) firsts_.push_back(&operation);
}

void check_operations(const std::vector<Operation>& operations) {
  OperationSet set;
  for (std::size_t i = 0; i < operations.size(); ++i) set.add(operations[i], i);
}

void check_has_no_code(const std::vector<Operation>& operations, const PageOptions& options) {
  if (options.dialect == "plain") return;
  for (std::size_t i = 0; i < operations.size(); ++i) {
    const Operation& operation = operations[i];
    const bool is_text = (row_of(operation.kind).fields & text_field) == text_field;
    const bool is_markup = operation.kind == Kind::substitute_html;
    if (!is_text && (!operation.substitution || is_markup)) continue;
    const std::string_view value =
        operation.substitution ? operation.substitution->replacement() : operation.value;
    for (const std::string_view mark : code_openers) {
      if (value.find(mark) == std::string_view::npos) continue;
      throw Error("the text has \"" + std::string(mark) + "\", which begins template code", i,
                  Error::Place::operations);
    }
  }
}

void check_fits(const Operation& operation, const Tree& tree, NodeIndex index) {
  const NodeRecord& node = tree[index];
  const auto fail = [&](const std::string& message) {
    throw EditError(message, node.begin, NodeAccess::node(tree, index));
  };
  const unsigned part = row_of(operation.kind).part;
  const bool is_section =
      node.kind == NodeKind::comment || node.kind == NodeKind::cdata || node.kind == NodeKind::text;
  if (node.kind == NodeKind::document) fail("the document itself cannot be edited");
  if ((part & (tags | bare)) != 0 && node.kind != NodeKind::element) {
    fail("only elements have tags to edit");
  }
  if (part == place) return check_target(operation, tree, index);
  if ((part & (texts | marked)) != 0 || (part & (bare | content | inside)) == 0 ||
      ((part & content) != 0 && is_section)) {
    return;
  }
  if (node.has_content) return;
  fail(node.kind == NodeKind::element ? named(tree, index) + " has no content" : "no content");
}

// --- Each operation, with just what it uses ---

Operation set_attribute(std::string name, std::string value) {
  return {Kind::set_attribute, std::move(name), std::move(value), std::nullopt};
}
Operation set_bare_attribute(std::string name) {
  return {Kind::set_bare_attribute, std::move(name), {}, std::nullopt};
}
Operation remove_attribute(std::string name) {
  return {Kind::remove_attribute, std::move(name), {}, std::nullopt};
}
Operation add_class(std::string token) {
  return {Kind::add_class, {}, std::move(token), std::nullopt};
}
Operation remove_class(std::string token) {
  return {Kind::remove_class, {}, std::move(token), std::nullopt};
}
Operation add_token(std::string name, std::string token) {
  return {Kind::add_token, std::move(name), std::move(token), std::nullopt};
}
Operation remove_token(std::string name, std::string token) {
  return {Kind::remove_token, std::move(name), std::move(token), std::nullopt};
}
Operation rename(std::string name) {
  return {Kind::rename, std::move(name), {}, std::nullopt};
}
Operation substitute_value(std::string name, Substitution substitution) {
  return {Kind::substitute_value, std::move(name), {}, std::move(substitution)};
}
Operation substitute_text(Substitution substitution) {
  return {Kind::substitute_text, {}, {}, std::move(substitution)};
}
Operation substitute_html(Substitution substitution) {
  return {Kind::substitute_html, {}, {}, std::move(substitution)};
}
Operation unwrap() {
  return {Kind::unwrap, {}, {}, std::nullopt};
}
Operation set_text(std::string text) {
  return {Kind::set_text, {}, std::move(text), std::nullopt};
}
Operation set_html(std::string markup) {
  return {Kind::set_html, {}, std::move(markup), std::nullopt};
}
Operation prepend(std::string markup) {
  return {Kind::prepend, {}, std::move(markup), std::nullopt};
}
Operation append(std::string markup) {
  return {Kind::append, {}, std::move(markup), std::nullopt};
}
Operation insert_before(std::string markup) {
  return {Kind::insert_before, {}, std::move(markup), std::nullopt};
}
Operation insert_after(std::string markup) {
  return {Kind::insert_after, {}, std::move(markup), std::nullopt};
}
Operation wrap(std::string markup) {
  return {Kind::wrap, {}, std::move(markup), std::nullopt};
}
Operation replace(std::string markup) {
  return {Kind::replace, {}, std::move(markup), std::nullopt};
}
Operation move_before(Node target) {
  return {Kind::move_before, {}, {}, std::nullopt, target};
}
Operation move_after(Node target) {
  return {Kind::move_after, {}, {}, std::nullopt, target};
}
Operation move_into(Node target) {
  return {Kind::move_into, {}, {}, std::nullopt, target};
}
Operation remove_line() {
  return {Kind::remove_line, {}, {}, std::nullopt};
}
Operation remove() {
  return {Kind::remove, {}, {}, std::nullopt};
}

}  // namespace qo
