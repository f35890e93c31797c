#include <qo_page/edits/edit_guard.h>

#include <string>

#include <qo_page/base/ascii.h>
#include <qo_page/decode.h>
#include <qo_page/edits/edit_error.h>
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

}  // namespace

Reading reading_after(const NodeEdits& edits) {
  const Node& node = *edits.node;
  if (edits.find({Kind::unwrap}) != nullptr) return Reading::markup;
  const Operation* const rename = edits.find({Kind::rename});
  const bool is_renamed = rename != nullptr && node.space == Space::html;
  return is_renamed ? reading_of(find_tag(rename->name)) : reading_of(node);
}

void EditGuard::check(const NodeEdits& edits) {
  check_content(edits);
  check_rename(edits);
  check_blocks(edits);
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
  if (on_whole || node.isText) check_uncut({extent.begin, extent.end}, named(node), extent.begin);
  if (on_content) {
    check_uncut({extent.content_begin, extent.content_end}, named(node), extent.begin);
  }
}

const CodeBlocks* EditGuard::blocks() {
  if (!page_.options().templates) return nullptr;
  if (!blocks_) blocks_.emplace(page_.source());
  return &*blocks_;
}

void EditGuard::check_uncut(Range range, const std::string& what, std::size_t place) {
  if (blocks() == nullptr) return;
  const std::optional<Cut> cut = blocks_->cut(range.begin, range.end);
  if (!cut) return;
  const std::string_view source = page_.source();
  const auto code = [source](const CodePiece& piece) {
    return shortened(source.substr(piece.begin, piece.end - piece.begin));
  };
  throw Error(
      code(cut->within) + " in " + what + " belongs to " +
          (cut->outside ? code(*cut->outside) + " outside of it" : "a block of unknown kind"),
      place);
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
