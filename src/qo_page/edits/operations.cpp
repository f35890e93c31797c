#include <qo_page/edits/operations.h>

#include <algorithm>
#include <string>

#include <qo_page/base/ascii.h>

namespace qo {

namespace {

using Kind = Operation::Kind;

// What an operation works on, as far as that decides what it goes together with.
enum Part : unsigned {
  tags = 1u << 0,     // changes the node's tags
  bare = 1u << 1,     // takes them away
  content = 1u << 2,  // sets the content
  inside = 1u << 3,   // adds to it
  around = 1u << 4,   // adds to what is around the node
  whole = 1u << 5,    // takes the node away
  texts = 1u << 6,    // changes texts within it
};

struct KindRow {
  const char* name;  // for messages
  Part part;
};

// By kind.
constexpr KindRow kind_rows[] = {
    {"set an attribute", tags},
    {"set an attribute", tags},
    {"remove an attribute", tags},
    {"add a class", tags},
    {"remove a class", tags},
    {"rename", tags},
    {"substitute in a value", tags},
    {"substitute in texts", texts},
    {"unwrap", bare},
    {"set the text", content},
    {"set the markup", content},
    {"prepend", inside},
    {"append", inside},
    {"insert before", Part()},
    {"insert after", Part()},
    {"wrap", around},
    {"replace", whole},
    {"remove", whole},
};

const KindRow& row_of(Kind kind) {
  return kind_rows[static_cast<std::size_t>(kind)];
}

// Parts that cannot both be worked on, whatever the order.
constexpr unsigned excluded[][2] = {
    {tags, bare | whole}, {bare, whole},  {content, content | whole}, {inside, whole},
    {around, whole},      {whole, whole}, {texts, content | whole}};

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

void check_names(const Operation& operation, std::size_t index) {
  const bool substitutes =
      operation.kind == Kind::substitute_value || operation.kind == Kind::substitute_text;
  if (substitutes && !operation.substitution) throw Error("there is no substitution", index);
  switch (operation.kind) {
    case Kind::set_attribute:
    case Kind::set_bare_attribute:
    case Kind::remove_attribute:
    case Kind::substitute_value:
      if (is_attribute_name(operation.name)) return;
      throw Error(quoted(operation.name) + " is no attribute name", index);
    case Kind::add_class:
    case Kind::remove_class:
      if (is_class(operation.value)) return;
      throw Error(quoted(operation.value) + " is not one class", index);
    case Kind::rename:
      if (is_element_name(operation.name)) return;
      throw Error(quoted(operation.name) + " is no name of an element", index);
    default:
      return;
  }
}

}  // namespace

void OperationSet::add(const Operation& operation, std::size_t index) {
  check_names(operation, index);
  bool is_first = true;
  for (const Operation* first : firsts_) {
    is_first = is_first && first->kind != operation.kind;
    if (!contradict(*first, operation)) continue;
    throw Error(std::string("\"") + row_of(first->kind).name + "\" and \"" +
                    row_of(operation.kind).name + "\" contradict each other",
                index);
  }
  if (is_first) firsts_.push_back(&operation);
}

void check_operations(const std::vector<Operation>& operations) {
  OperationSet set;
  for (std::size_t i = 0; i < operations.size(); ++i) set.add(operations[i], i);
}

void check_fits(const Operation& operation, const Node& node) {
  const unsigned part = row_of(operation.kind).part;
  const bool is_section =
      node.kind == NodeKind::comment || node.kind == NodeKind::cdata || node.kind == NodeKind::text;
  if (node.kind == NodeKind::document) throw Error("the document itself cannot be edited", 0);
  if ((part & (tags | bare)) != 0 && node.kind != NodeKind::element) {
    throw Error("only elements have tags to edit", node.extent.begin);
  }
  if ((part & texts) != 0 || (part & (bare | content | inside)) == 0 ||
      ((part & content) != 0 && is_section))
    return;
  if (node.has_content) return;
  throw Error(node.kind == NodeKind::element ? "<" + node.tag + "> has no content" : "no content",
              node.extent.begin);
}

}  // namespace qo
