#include <qo_page/edits/edit_guard.h>

#include <string>

#include <qo_page/base/ascii.h>
#include <qo_page/decode.h>
#include <qo_page/edits/edit_error.h>
#include <qo_page/edits/neighbours.h>
#include <qo_page/text/node_text.h>

namespace qo {

namespace {

using Kind = Operation::Kind;

bool has_reference(std::string_view text) {
  for (std::size_t at = text.find('&'); at != std::string_view::npos; at = text.find('&', at + 1)) {
    if (reference_length(text, at, DecodeMode::text) != 0) return true;
  }
  return false;
}

bool may_have_tag(std::string_view text) {
  for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at + 1)) {
    const char next = at + 1 < text.size() ? text[at + 1] : '\0';
    if (is_letter(next) || std::string_view("/!?%").find(next) != std::string_view::npos)
      return true;
  }
  return false;
}

bool are_all(const NodeEdits& edits, std::initializer_list<Kind> kinds) {
  return std::all_of(edits.operations.begin(), edits.operations.end(),
                     [kinds](const Operation* operation) {
                       return std::find(kinds.begin(), kinds.end(), operation->kind) != kinds.end();
                     });
}

bool is_only_in_front(const NodeEdits& edits) {
  return are_all(edits, {Kind::insert_before});
}

bool keeps_tags(const NodeEdits& edits) {
  return are_all(edits, {Kind::insert_before, Kind::insert_after, Kind::prepend, Kind::append,
                         Kind::set_text, Kind::set_html, Kind::wrap, Kind::replace, Kind::remove});
}

bool is_only_on_attributes(const NodeEdits& edits) {
  return are_all(
      edits, {Kind::insert_before, Kind::set_attribute, Kind::set_bare_attribute,
              Kind::remove_attribute, Kind::add_class, Kind::remove_class, Kind::substitute_value});
}

// An element with "/>" and an end tag of its own ends there for both.
bool is_closed_twice(const AuthorReading& author, const Node& node, const AuthorNode& authors) {
  return !authors.has_content && node.extent.content_end < node.extent.end &&
         !author.has_end_tag(node.extent.content_end);
}

enum class Part { whole, content };

bool is_same(const AuthorReading& author, const Node& node, Part part) {
  const Extent& extent = node.extent;
  const AuthorNode* const authors = author.node_at(extent.begin);
  if (authors == nullptr || authors->extent.content_begin != extent.content_begin) return false;
  if (is_closed_twice(author, node, *authors)) return true;
  return authors->extent.content_end == extent.content_end && authors->extent.end == extent.end &&
         (part == Part::whole || authors->has_content == node.has_content);
}

bool is_on_content(const NodeEdits& edits) {
  return edits.find({Kind::set_text, Kind::set_html, Kind::prepend, Kind::append}) != nullptr;
}

std::string where_it_ends(const AuthorReading& author, const Node& node) {
  return "where " + named(node) + " ends depends on how " +
         shortened(author.reason_for(node.extent)) + " is read";
}

}  // namespace

Reading reading_after(const NodeEdits& edits) {
  const Node& node = *edits.node;
  if (edits.find({Kind::unwrap}) != nullptr) return Reading::markup;
  const Operation* const rename = edits.find({Kind::rename});
  const bool is_renamed = rename != nullptr && node.space == Space::html;
  return is_renamed ? reading_of(find_tag(rename->name)) : reading_of(node);
}

void EditGuard::check(const NodeEdits& edits) {
  if (as_document(*page_.document()).has_odd_tags) check_place(edits);
  check_content(edits);
  check_rename(edits);
  if (!page_.options().templates) return;
  check_neighbours(edits);
  check_blocks(edits);
}

void EditGuard::check_place(const NodeEdits& edits) {
  if (!author_) author_.emplace(page_.source(), page_.options().templates);
  const Node& node = *edits.node;
  const OddTag* const odd = author_->odd_tag_at(node.extent.begin);
  if (odd != nullptr && odd->tag.begin < node.extent.begin) {
    throw Error(named(node) + " may lie within a tag that leaves a bracket open: " +
                    shortened(odd->tag.in(page_.source())),
                node.extent.begin);
  }
  if (odd != nullptr && !is_only_in_front(edits) && !keeps_odd_tag(edits)) {
    throw Error("the tag may be another for its author, since a browser leaves a bracket open: " +
                    shortened(page_.source().substr(odd->bracket.begin,
                                                    odd->bracket.end - odd->bracket.begin)),
                node.extent.begin);
  }
  if (node.isText) return check_text_place(node);
  check_extent(edits);
}

bool EditGuard::keeps_odd_tag(const NodeEdits& edits) const {
  const Extent& extent = edits.node->extent;
  const OddTag* const odd = author_ ? author_->odd_tag_at(extent.begin) : nullptr;
  return odd != nullptr && odd->tag.end == extent.content_begin && keeps_tags(edits);
}

// What is no markup for a browser may be some for the author.
void EditGuard::check_text_place(const Node& text) const {
  const Node& parent = *as_node(text.parent);
  if (reading_of(parent) == Reading::markup || parent.kind != NodeKind::element) return;
  if (is_same(*author_, parent, Part::content)) return;
  throw Error(where_it_ends(*author_, parent), text.extent.begin);
}

// An edit needs the parts of the node that it touches to be where they are for both.
void EditGuard::check_extent(const NodeEdits& edits) const {
  const Node& node = *edits.node;
  const AuthorNode* const authors = author_->node_at(node.extent.begin);
  const bool is_same_tag =
      authors != nullptr && authors->extent.content_begin == node.extent.content_begin;
  if (authors != nullptr && is_only_in_front(edits)) return;
  if (is_same_tag && is_only_on_attributes(edits)) return;
  const Part part = is_on_content(edits) ? Part::content : Part::whole;
  if (is_same(*author_, node, part)) return;
  throw Error(where_it_ends(*author_, node), node.extent.begin);
}

// Without an end tag of its own, an element may end in another branch than it begins in.
void EditGuard::check_blocks(const NodeEdits& edits) {
  const Node& node = *edits.node;
  const Extent& extent = node.extent;
  const bool is_open = node.has_content && extent.content_end == extent.end;
  const bool on_whole = edits.find({Kind::remove, Kind::replace, Kind::rename, Kind::unwrap,
                                    Kind::wrap}) != nullptr ||
                        (is_open && edits.find({Kind::append, Kind::insert_after}) != nullptr);
  const bool on_content = edits.find({Kind::set_text, Kind::set_html}) != nullptr;
  if (!on_whole && !on_content) return;
  const std::string_view source = page_.source();
  if (!blocks_) blocks_.emplace(source);
  std::optional<CodeBlocks::Cut> cut;
  if (on_whole || node.isText) cut = blocks_->cut(extent.begin, extent.end);
  if (!cut && on_content) cut = blocks_->cut(extent.content_begin, extent.content_end);
  if (!cut) return;
  const auto code = [source](const CodePiece& piece) {
    return shortened(source.substr(piece.begin, piece.end - piece.begin));
  };
  throw Error(code(cut->within) + " in " + named(node) + " belongs to " + code(cut->outside) +
                  " outside of it",
              extent.begin);
}

void EditGuard::check_rename(const NodeEdits& edits) const {
  const Node& node = *edits.node;
  const Operation* const rename = edits.find({Kind::rename});
  if (rename == nullptr || node.space != Space::html) return;
  const Tag name = find_tag(rename->name);
  const Extent& extent = node.extent;
  const bool is_open = node.has_content && extent.content_end == extent.end;
  if (is_open && has(name, tag_flags::formatting) && !has(node.name, tag_flags::formatting)) {
    throw Error(named(node) + " has no end tag: as <" + rename->name + "> it would stay open",
                extent.begin);
  }
  if (drops_line_break(node) == drops_line_break(name) ||
      edits.find({Kind::set_text, Kind::set_html}) != nullptr ||
      line_break_length(page_.inner_html(&node)) == 0) {
    return;
  }
  throw Error(std::string("the line break after the tag would ") +
                  (drops_line_break(name) ? "no longer be read" : "become a part of the text"),
              extent.content_begin);
}

// The new name, or the content around, may read references and tags where the old one has none.
void EditGuard::check_content(const NodeEdits& edits) const {
  const Node& node = *edits.node;
  const Reading before = reading_of(node);
  const Reading after = reading_after(edits);
  if (before == after || edits.find({Kind::set_text, Kind::set_html}) != nullptr) return;
  const std::string_view content = page_.inner_html(&node);
  const bool differs_in_references = (before == Reading::literal) != (after == Reading::literal);
  const bool differs_in_tags = (before == Reading::markup) != (after == Reading::markup);
  const bool changes_references = differs_in_references && has_reference(content);
  if (!changes_references && !(differs_in_tags && may_have_tag(content))) return;
  throw Error("the edit would change how the " +
                  std::string(changes_references ? "references" : "tags") + " in " + named(node) +
                  " are read",
              node.extent.begin);
}

}  // namespace qo
