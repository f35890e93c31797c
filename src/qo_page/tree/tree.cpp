#include <qo_page/tree/tree.h>

#include <qo_page/tokenizer/tag_reader.h>

namespace qo {

std::size_t declaration_name_length(std::string_view inner) {
  std::size_t length = 1;
  while (length < inner.size() && is_letter(inner[length])) ++length;
  return length;
}

// The node in front of it is the last one in the subtree of the sibling.
NodeIndex Tree::previous_sibling(NodeIndex node) const {
  const NodeIndex above = nodes[node].parent;
  if (above == no_node || node == above + 1) return no_node;
  NodeIndex sibling = node - 1;
  while (nodes[sibling].parent != above) sibling = nodes[sibling].parent;
  return sibling;
}

Range Tree::name_range(NodeIndex node) const {
  const NodeRecord& record = nodes[node];
  if (record.name_length == 0) return {record.begin, record.begin};
  const std::size_t begin = record.begin + std::size_t{1};
  if (record.name_length != NodeRecord::long_name) return {begin, begin + record.name_length};
  if (record.kind != NodeKind::element) {
    return {begin, begin + declaration_name_length(slice(begin, record.end))};
  }
  CodeScanner code(source, *dialect);
  Token token{};
  token.extent.begin = record.begin;
  TagReader(source, code, token).read(begin);
  return token.name;
}

const AttributeRecord* Tree::find_attribute(NodeIndex node, std::string_view wanted) const {
  const std::uint8_t hash = name_hash(wanted);
  const AttributeRecord* const end = attributes_end(node);
  for (const AttributeRecord* found = attributes_begin(node); found != end; ++found) {
    if (found->name_hash == hash && equals_without_case(name(*found), wanted)) return found;
  }
  return nullptr;
}

std::size_t Tree::value_begin(const AttributeRecord& attribute) const {
  if (attribute.value_gap != AttributeRecord::long_gap) {
    return attribute.name_end + std::size_t{attribute.value_gap};
  }
  const auto after_blanks = [this](std::size_t at) {
    while (at < source.size() && is_blank(source[at])) ++at;
    return at;
  };
  const std::size_t begin = after_blanks(after_blanks(attribute.name_end) + 1);
  const bool is_quoted = begin < source.size() && (source[begin] == '"' || source[begin] == '\'');
  return is_quoted ? begin + 1 : begin;
}

// In front of a value without quotes is a blank or the "=".
char Tree::quote(const AttributeRecord& attribute) const {
  if (attribute.value_gap == 0) return '\0';
  const char before = source[value_begin(attribute) - 1];
  return before == '"' || before == '\'' ? before : '\0';
}

}  // namespace qo
