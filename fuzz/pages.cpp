// Two bytes, then a page: its tokens are the source, its nodes nest; an edit that changes nothing
// leaves it alone; and an edit, which the two bytes choose, changes no byte outside of what it
// says, and reads back as asked.

#include <qo_page/decode.h>
#include <qo_page/edits.h>
#include <qo_page/page.h>
#include <qo_page/template/code_blocks.h>
#include <qo_page/tokenizer/tokenizer.h>

#include <string_view>
#include <vector>

#include "support.h"

namespace {

using Kind = qo::Operation::Kind;

void check_tokens(std::string_view source, const qo::Dialect& dialect) {
  qo::Tokenizer tokenizer(source, dialect);
  qo::Token token{};
  std::size_t position = 0;
  while (tokenizer.next(token)) {
    require(token.extent.begin == position && token.extent.end > position,
            "tokens cover the source");
    position = token.extent.end;
    if (token.kind != qo::TokenKind::start_tag) continue;
    const qo::Tag name = qo::find_tag(token.name.in(source));
    if (qo::has(name, qo::tag_flags::raw_text | qo::tag_flags::rcdata)) {
      tokenizer.begin_raw_content({token.name.in(source), name == qo::Tag::script_});
    }
  }
  require(position == source.size(), "tokens end with the source");
}

// Extents lie within that of the parent's content, one after the other. Returns all nodes but the
// document.
std::vector<qo::Node> check_nodes(const qo::Page& page) {
  std::vector<qo::Node> nodes;
  for (std::size_t i = 0; i < page.node_count(); ++i) {
    const qo::Node node = page.node_at(i);
    const qo::Extent extent = node.extent();
    require(extent.begin <= extent.content_begin && extent.content_begin <= extent.content_end &&
                extent.content_end <= extent.end && extent.end <= page.source().size(),
            "an extent");
    std::size_t position = extent.content_begin;
    qo::Node previous;
    for (const qo::Node child : node.children()) {
      require(child.extent().begin >= position, "order of extents");
      require(child.parent() == node && child.previous_sibling() == previous, "links");
      position = child.extent().end;
      previous = child;
    }
    require(!previous || position <= extent.content_end, "nesting of extents");
    if (i != 0) nodes.push_back(node);
  }
  return nodes;
}

// Attributes lie in their tag, one after the other.
void check_attributes(qo::Node node) {
  std::size_t position = node.extent().begin + 1 + node.name().size();
  for (const qo::Attribute attribute : node.attributes()) {
    const qo::Range name = attribute.name_range(), value = attribute.value_range();
    require(name.begin >= position && name.begin < name.end && name.end <= value.begin &&
                value.begin <= value.end && value.end <= attribute.range().end,
            "an attribute");
    position = attribute.range().end;
  }
  require(position <= node.extent().content_begin || node.attributes().empty(),
          "attributes in their tag");
}

const char* const values[] = {"",         "a",           "a b",       "\"'",
                              "<b>&amp;", "{{ \"x\" }}", "</script>", "<i>x</i>"};

constexpr char substituted[] = "\"'&lt<";

// What the substitution makes of a text without template code.
std::string with_substitutions(std::string text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t length = text[i] == 'a' ? 1 : text.compare(i, 3, "b c") == 0 ? 3 : 0;
    if (length == 0) continue;
    text.replace(i, length, substituted);
    i += sizeof substituted - 2;
  }
  return text;
}

qo::Operation make_operation(unsigned choice, unsigned value, qo::Node target) {
  const auto kind = static_cast<Kind>(choice % (static_cast<unsigned>(Kind::remove) + 1));
  const char* const text = values[value % (sizeof values / sizeof values[0])];
  switch (kind) {
    case Kind::set_attribute:
    case Kind::set_bare_attribute:
    case Kind::remove_attribute:
      return {kind, (value & 8) != 0 ? "class" : "id", text};
    case Kind::add_class:
    case Kind::remove_class:
      return {kind, "", (value & 8) != 0 ? "&a\"" : "a"};
    case Kind::add_token:
    case Kind::remove_token:
      return {kind, (value & 8) != 0 ? "class" : "rel", "a"};
    case Kind::rename:
      return {kind, (value & 8) != 0 ? "div" : "x-y", ""};
    case Kind::move_before:
    case Kind::move_after:
    case Kind::move_into:
      return {kind, "", "", std::nullopt, target};
    case Kind::wrap:
      return {kind, "", "<div class=w><b></b></div>"};
    case Kind::substitute_value:
    case Kind::substitute_text:
    case Kind::substitute_html:
      return {kind, (value & 8) != 0 ? "class" : "id", "", qo::Substitution("a|b c", substituted)};
    default:
      return {kind, "", text};
  }
}

// Between the changes, both texts are the same.
void check_changes(const std::string& old_text, const qo::EditedSource& edited) {
  std::size_t old_position = 0;
  std::size_t new_position = 0;
  const auto check_kept = [&](std::size_t old_end, std::size_t new_end) {
    require(old_end >= old_position && new_end >= new_position &&
                old_text.substr(old_position, old_end - old_position) ==
                    edited.source.substr(new_position, new_end - new_position),
            "bytes between changes");
  };
  for (const qo::Change& change : edited.changes) {
    check_kept(change.old_begin, change.new_begin);
    old_position = change.old_end;
    new_position = change.new_end;
  }
  check_kept(old_text.size(), edited.source.size());
}

std::size_t count_elements(const qo::Page& page) {
  std::size_t count = 0;
  for (const qo::Node node : page.document().descendants()) count += node.is_element() ? 1 : 0;
  return count;
}

// The node that the edited one has become: nothing in front of it has changed its length.
qo::Node node_from(const qo::Page& page, std::size_t begin) {
  for (const qo::Node node : check_nodes(page)) {
    if (node.extent().begin == begin && node.kind() != qo::NodeKind::text) return node;
  }
  return qo::Node();
}

// Scripts and styles are no part of the text, and some elements drop a line break.
bool is_shown_otherwise(const qo::Page& page, qo::Node node) {
  if (page.document().text().find_first_of("\r\n") != std::string::npos) return true;
  const qo::Tag name = qo::find_tag(node.name());
  return name == qo::Tag::script_ || name == qo::Tag::style_;
}

void check_asked(const qo::Page& before, qo::Node node, const qo::Operation& operation,
                 const qo::Page& after) {
  const std::size_t elements = count_elements(after);
  const qo::Node now = node_from(after, node.extent().begin);
  switch (operation.kind) {
    case Kind::set_attribute:
      require(elements == count_elements(before), "elements");
      require(now.attribute(operation.name) == operation.value, "value of an attribute");
      return;
    case Kind::set_bare_attribute:
      require(now.attribute(operation.name) == "", "a bare attribute");
      return;
    case Kind::remove_attribute:
      require(!now.attribute(operation.name), "an attribute that was removed");
      return;
    case Kind::rename:
      require(now.name() == operation.name && elements == count_elements(before), "name");
      return;
    case Kind::set_text:
      if (operation.value != "{{ \"x\" }}" && node.is_element()) {
        const std::string text = now.text(qo::TextForm::written);
        require(text == operation.value || now.text() == operation.value, "text");
      }
      return;
    case Kind::substitute_value: {
      const std::optional<std::string> old_value = node.attribute(operation.name);
      if (!old_value || old_value->find_first_of("{<") != std::string::npos) return;
      require(now.attribute(operation.name) == with_substitutions(*old_value), "a value");
      return;
    }
    case Kind::substitute_text: {
      const std::string old_text = node.text();
      const bool counts = node.is_element() && old_text.find_first_of("{<") == std::string::npos &&
                          node.first_child() && !node.first_child().next_sibling();
      require(!counts || now.text() == with_substitutions(old_text), "texts");
      return;
    }
    case Kind::unwrap:
      require(elements + 1 == count_elements(before), "an element that was unwrapped");
      require(
          is_shown_otherwise(before, node) || after.document().text() == before.document().text(),
          "the text around tags that were taken away");
      return;
    default:
      return;
  }
}

// The look for blocks does not know what is a comment, nor that code which the end of the page cuts
// off is none within a tag.
bool has_odd_code(const qo::Page& page) {
  const std::string& source = page.source();
  const std::size_t begin = source.rfind("<?");
  if (begin != std::string::npos && source.find("?>", begin) == std::string::npos) return true;
  for (const qo::Node node : page.document().descendants()) {
    if (node.kind() != qo::NodeKind::comment) continue;
    const std::string_view html = node.html();
    for (const char* mark : {"<?", "<%", "{{", "{%", "{#", "?>", "%>", "}}", "%}", "#}"}) {
      if (html.find(mark) != std::string_view::npos) return true;
    }
  }
  return false;
}

// No edit leaves a half of a block, unless it brings pieces of code in itself.
void check_blocks(const qo::Page& page, const qo::Operation& operation, const std::string& after) {
  const bool brings_code = operation.value.find_first_of("{<&") != std::string::npos;
  if (page.options().dialect != "html" || brings_code || operation.substitution) return;
  if (has_odd_code(page)) return;
  require(
      qo::CodeBlocks(after).unmatched_count() <= qo::CodeBlocks(page.source()).unmatched_count(),
      "halves of blocks");
}

void check_edit(const qo::Page& page, qo::Node node, const qo::Operation& operation) {
  try {
    qo::Edits edits(page);
    edits.add(node, {operation});
    const qo::EditedSource edited = edits.apply();
    check_changes(page.source(), edited);
    check_blocks(page, operation, edited.source);
    check_asked(page, node, operation, qo::Page(edited.source, page.options()));
  } catch (const qo::Error& error) {
    require(error.offset() <= page.source().size(), "place of an error");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 3) return 0;
  const std::string source(reinterpret_cast<const char*>(data) + 3, size - 3);
  {
    const qo::Dialects all = qo::all_dialects();
    const qo::Dialect& dialect = *(all.begin() + data[0] % (all.end() - all.begin()));
    check_tokens(source, dialect);
    std::unique_ptr<qo::Page> page;
    try {
      page = std::make_unique<qo::Page>(source, qo::PageOptions{std::string(dialect.name)});
    } catch (const qo::Error&) {
      return 0;  // an encoding beyond ASCII
    }
    const std::vector<qo::Node> nodes = check_nodes(*page);
    for (const qo::Node node : nodes) check_attributes(node);
    require(qo::Edits(*page).apply().source == source, "a page without edits");
    if (!nodes.empty()) {
      check_edit(*page, nodes[data[2] % nodes.size()],
                 make_operation(data[0] & 0x7F, data[1], nodes[data[1] % nodes.size()]));
    }
  }
  return 0;
}
