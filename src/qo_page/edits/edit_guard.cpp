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
  return are_all(
      edits, {Kind::insert_before, Kind::insert_after, Kind::prepend, Kind::append, Kind::set_text,
              Kind::set_html, Kind::wrap, Kind::replace, Kind::remove, Kind::remove_line});
}

bool is_only_on_attributes(const NodeEdits& edits) {
  return are_all(edits, {Kind::insert_before, Kind::set_attribute, Kind::set_bare_attribute,
                         Kind::remove_attribute, Kind::add_class, Kind::remove_class,
                         Kind::add_token, Kind::remove_token, Kind::substitute_value});
}

// An element with "/>" and an end tag of its own ends at that tag for author and browser.
bool is_closed_twice(const AuthorReading& author, const NodeRecord& node,
                     const NodeRecord& authors) {
  return !authors.has_content && node.content_end < node.end &&
         !author.has_end_tag(node.content_end);
}

enum class Part { whole, content };

bool is_same(const AuthorReading& author, const NodeRecord& node, Part part) {
  const NodeRecord* const authors = author.node_at(node.begin);
  if (authors == nullptr || authors->content_begin != node.content_begin) return false;
  if (is_closed_twice(author, node, *authors)) return true;
  return authors->content_end == node.content_end && authors->end == node.end &&
         (part == Part::whole || authors->has_content == node.has_content);
}

bool is_on_content(const NodeEdits& edits) {
  return edits.find({Kind::set_text, Kind::set_html, Kind::prepend, Kind::append}) != nullptr;
}

std::string where_it_ends(const AuthorReading& author, const Tree& tree, NodeIndex node) {
  return "where " + named(tree, node) + " ends depends on how " +
         shortened(author.reason_for(tree.extent(node))) + " is read";
}

}  // namespace

ContentModel content_model_after(const Tree& tree, const NodeEdits& edits) {
  const NodeRecord& node = tree[edits.node];
  if (edits.find({Kind::unwrap}) != nullptr) return ContentModel::data;
  const Operation* const rename = edits.find({Kind::rename});
  const bool is_renamed = rename != nullptr && node.space == Namespace::html;
  return is_renamed ? content_model(find_tag(rename->name)) : content_model(node);
}

void EditGuard::check(const NodeEdits& edits) {
  if (tree_.has_odd_tags) check_place(edits);
  check_content(edits);
  check_rename(edits);
  if (!tree_.dialect->has_code()) return;
  check_neighbours(tree_, edits);
  check_blocks(edits);
}

void EditGuard::check_place(const NodeEdits& edits) {
  if (!author_) author_.emplace(tree_);
  const NodeRecord& node = tree_[edits.node];
  const OddTag* const odd = author_->odd_tag_at(node.begin);
  if (odd != nullptr && odd->tag.begin < node.begin) {
    throw Error(named(tree_, edits.node) + " may lie within a tag that leaves a bracket open: " +
                    shortened(odd->tag.in(tree_.source)),
                node.begin);
  }
  if (odd != nullptr && !is_only_in_front(edits) && !keeps_odd_tag(edits)) {
    throw Error("the tag may be another for its author, since a browser leaves a bracket open: " +
                    shortened(odd->bracket.in(tree_.source)),
                node.begin);
  }
  if (node.kind == NodeKind::text) return check_text_place(edits.node);
  check_extent(edits);
}

bool EditGuard::keeps_odd_tag(const NodeEdits& edits) const {
  const NodeRecord& node = tree_[edits.node];
  const OddTag* const odd = author_ ? author_->odd_tag_at(node.begin) : nullptr;
  return odd != nullptr && odd->tag.end == node.content_begin && keeps_tags(edits);
}

// What is text to a browser may be markup to the author.
void EditGuard::check_text_place(NodeIndex text) const {
  const NodeIndex parent = tree_.parent(text);
  const NodeRecord& around = tree_[parent];
  const bool is_markup = content_model(around) == ContentModel::data;
  if (is_markup || around.kind != NodeKind::element) return;
  if (is_same(*author_, around, Part::content)) return;
  throw Error(where_it_ends(*author_, tree_, parent), tree_[text].begin);
}

// The parts of the node that an edit touches must be at the same place for author and browser.
void EditGuard::check_extent(const NodeEdits& edits) const {
  const NodeRecord& node = tree_[edits.node];
  const NodeRecord* const authors = author_->node_at(node.begin);
  const bool is_same_tag = authors != nullptr && authors->content_begin == node.content_begin;
  if (authors != nullptr && is_only_in_front(edits)) return;
  if (is_same_tag && is_only_on_attributes(edits)) return;
  const Part part = is_on_content(edits) ? Part::content : Part::whole;
  if (is_same(*author_, node, part)) return;
  throw Error(where_it_ends(*author_, tree_, edits.node), node.begin);
}

// Without an end tag of its own, an element may end in another branch than it begins in.
void EditGuard::check_blocks(const NodeEdits& edits) {
  const NodeRecord& node = tree_[edits.node];
  const Extent extent = tree_.extent(edits.node);
  const bool is_open = node.has_content && extent.content_end == extent.end;
  const bool on_whole = edits.find({Kind::remove, Kind::remove_line, Kind::replace, Kind::rename,
                                    Kind::unwrap, Kind::wrap}) != nullptr ||
                        (is_open && edits.find({Kind::append, Kind::insert_after}) != nullptr);
  const bool on_content = edits.find({Kind::set_text, Kind::set_html}) != nullptr;
  if (!on_whole && !on_content) return;
  const std::string what = named(tree_, edits.node);
  if (on_whole || node.kind == NodeKind::text) {
    check_uncut({extent.begin, extent.end}, what, extent.begin);
  }
  if (on_content) check_uncut({extent.content_begin, extent.content_end}, what, extent.begin);
}

const CodeBlocks* EditGuard::blocks() {
  if (!tree_.dialect->has_code()) return nullptr;
  if (!blocks_) blocks_.emplace(tree_.source);
  return &*blocks_;
}

void EditGuard::check_uncut(Range range, const std::string& what, std::size_t place) {
  if (blocks() == nullptr) return;
  const std::optional<Cut> cut = blocks_->cut(range.begin, range.end);
  if (!cut) return;
  const std::string_view source = tree_.source;
  const auto code = [source](const CodePiece& piece) {
    return shortened(source.substr(piece.begin, piece.end - piece.begin));
  };
  throw Error(
      code(cut->within) + " in " + what + " belongs to " +
          (cut->outside ? code(*cut->outside) + " outside of it" : "a block of unknown kind"),
      place);
}

void EditGuard::check_rename(const NodeEdits& edits) const {
  const NodeRecord& node = tree_[edits.node];
  const Operation* const rename = edits.find({Kind::rename});
  if (rename == nullptr || node.space != Namespace::html) return;
  const Tag name = find_tag(rename->name);
  const Extent extent = tree_.extent(edits.node);
  const bool is_open = node.has_content && extent.content_end == extent.end;
  if (is_open && has(name, tag_flags::formatting) && !has(node.tag, tag_flags::formatting)) {
    throw Error(
        named(tree_, edits.node) + " has no end tag: as <" + rename->name + "> it would stay open",
        extent.begin);
  }
  if (drops_line_break(node) == drops_line_break(name) ||
      edits.find({Kind::set_text, Kind::set_html}) != nullptr ||
      line_break_length(tree_.inner_html(edits.node)) == 0) {
    return;
  }
  throw Error(std::string("the line break after the tag would ") +
                  (drops_line_break(name) ? "no longer be read" : "become a part of the text"),
              extent.content_begin);
}

// Under the new name, or in the content around, references and tags may count that did not before.
void EditGuard::check_content(const NodeEdits& edits) const {
  const NodeRecord& node = tree_[edits.node];
  const ContentModel before = content_model(node);
  const ContentModel after = content_model_after(tree_, edits);
  if (before == after || edits.find({Kind::set_text, Kind::set_html}) != nullptr) return;
  const std::string_view content = tree_.inner_html(edits.node);
  const bool differs_in_references =
      (before == ContentModel::rawtext) != (after == ContentModel::rawtext);
  const bool differs_in_tags = (before == ContentModel::data) != (after == ContentModel::data);
  const bool changes_references = differs_in_references && has_reference(content);
  if (!changes_references && !(differs_in_tags && may_have_tag(content))) return;
  throw Error("the edit would change how the " +
                  std::string(changes_references ? "references" : "tags") + " in " +
                  named(tree_, edits.node) + " are read",
              node.begin);
}

}  // namespace qo
