#include <qo_page/edits/edit_writer.h>

#include <algorithm>

#include <qo_page/edits/substituter.h>
#include <qo_page/edits/tag_edit.h>
#include <qo_page/text/escape.h>
#include <qo_page/text/node_text.h>

namespace qo {

namespace {

using Kind = Operation::Kind;

constexpr std::size_t npos = std::string::npos;

bool is_replaced(const NodeEdits& edits) {
  return edits.find({Kind::replace, Kind::remove}) != nullptr;
}

// Markup that is put in front of what is there already comes first.
std::string joined(const NodeEdits& edits, Kind kind, bool newest_first) {
  std::vector<const std::string*> parts;
  for (const Operation* operation : edits.operations) {
    if (operation->kind == kind) parts.push_back(&operation->value);
  }
  if (newest_first) std::reverse(parts.begin(), parts.end());
  std::string out;
  for (const std::string* part : parts) out += *part;
  return out;
}

// End tags that end nothing are no part of a text, but may lie within it.
void check_is_one_stretch(const Node& text, const std::vector<Splice>& splices) {
  const bool is_one = text.text.size() == text.extent.end - text.extent.begin;
  if (is_one || splices.empty()) return;
  throw Error("there is an end tag without a start tag within the text", text.extent.begin);
}

}  // namespace

Halves split_wrapper(const std::string& markup, const PageOptions& options) {
  const Page page(markup, options);
  const Node* innermost = nullptr;
  std::size_t levels = 0;
  const Node* around = as_node(page.document());
  while (around != nullptr) {
    const auto first =
        std::find_if(around->children.begin(), around->children.end(),
                     [](_qo_html* child) { return as_node(child)->kind == NodeKind::element; });
    around = first == around->children.end() ? nullptr : as_node(*first);
    if (around == nullptr) break;
    innermost = around;
    ++levels;
  }
  if (innermost == nullptr || !innermost->has_content) {
    throw Error("\"" + markup + "\" has no element to wrap with", 0);
  }
  const std::size_t middle = innermost->extent.content_end;
  return {markup.substr(0, middle), markup.substr(middle), levels};
}

EditWriter::EditWriter(const Page& page, const std::vector<NodeEdits>& edits)
    : page_(page),
      source_(page.source()),
      code_(source_, page.options().templates),
      guard_(page),
      budget_(source_.size()),
      walk_(page.document()),
      edits_(edits) {}

WrittenEdit EditWriter::write() {
  written_.source.reserve(source_.size());
  walk_.next();  // the document
  for (;;) {
    switch (walk_.step()) {
      case TreeWalk::Event::enter:
        enter(*as_node(walk_.node()));
        break;
      case TreeWalk::Event::leave:
        if (!walk_.node()->isRoot) leave();
        break;
      case TreeWalk::Event::end:
        copy_until(source_.size());
        return std::move(written_);
    }
  }
}

// Nodes in content that was replaced are never met.
const NodeEdits* EditWriter::edits_of(const Node& node) {
  while (next_edits_ < edits_.size() &&
         edits_[next_edits_].node->extent.begin < node.extent.begin) {
    ++next_edits_;
  }
  const bool found = next_edits_ < edits_.size() && edits_[next_edits_].node == &node;
  return found ? &edits_[next_edits_++] : nullptr;
}

void EditWriter::enter(Node& node) {
  const NodeEdits* const edits = edits_of(node);
  if (edits != nullptr) guard_.check(*edits);
  if (node.isText) {
    if (edits != nullptr) enter_text(node, *edits);
    return;
  }
  copy_until(node.extent.begin);
  const std::size_t before = insertion_count();
  if (edits != nullptr) write_before(*edits);
  const std::size_t first_half = insertion_count() > before ? before : npos;
  if (edits != nullptr && is_replaced(*edits)) {
    write_replaced(node, *edits);
    return write_after(*edits, first_half);
  }
  write_start_tag(node, edits);
  const bool has_tags = edits == nullptr || edits->find({Kind::unwrap}) == nullptr;
  open_.push_back({has_tags ? written_.kept.size() - 1 : npos, edits, first_half});
  const bool skips_content = edits != nullptr && write_content(node, *edits);
  if (skips_content) walk_.skip_children();
  if (skips_content || node.children.empty()) leave();
}

void EditWriter::enter_text(Node& node, const NodeEdits& edits) {
  copy_until(node.extent.begin);
  const std::size_t before = insertion_count();
  write_before(edits);
  const std::size_t first_half = insertion_count() > before ? before : npos;
  if (is_replaced(edits)) {
    write_replaced(node, edits);
  } else {
    if (!write_content(node, edits)) write_substituted(node, edits);
    copy_until(node.extent.end);
  }
  write_after(edits, first_half);
}

// Of several substitutions, each works on what the one before it gives.
void EditWriter::write_substituted(const Node& node, const NodeEdits& edits) {
  const auto kind = is_literal(node) ? WrittenText::Kind::literal : WrittenText::Kind::text;
  std::string text = node.text;
  std::vector<Splice> splices;
  for (const Operation* operation : edits.operations) {
    if (operation->kind != Kind::substitute_text) continue;
    const Substituter substituter(*operation->substitution, budget_, node.extent.begin);
    splices = substituter.splices({text, kind, 0, page_.options().templates});
    check_is_one_stretch(node, splices);
    text = spliced(text, splices);
  }
  if (edits.operations.size() > 1) return insert_until(node.extent.end, text, true);
  for (const Splice& splice : splices) {
    const Range range{node.extent.begin + splice.begin, node.extent.begin + splice.end};
    guard_.check_uncut(range, "what is substituted", range.begin);
    copy_until(range.begin);
    insert_until(range.end, splice.text, true);
  }
}

// At the end of the innermost open node.
void EditWriter::leave() {
  const OpenNode open = open_.back();
  open_.pop_back();
  Node& node = *as_node(walk_.node());
  copy_until(node.extent.content_end);
  if (open.edits != nullptr) insert(joined(*open.edits, Kind::append, false));
  if (open.kept != npos) written_.kept[open.kept].extent.content_end = written_.source.size();
  write_end_tag(node, open.edits);
  if (open.kept != npos) written_.kept[open.kept].extent.end = written_.source.size();
  if (open.edits != nullptr) write_after(*open.edits, open.first_half);
}

void EditWriter::write_replaced(Node& node, const NodeEdits& edits) {
  insert_until(node.extent.end, edits.find({Kind::replace, Kind::remove})->value);
  if (!node.isText) walk_.skip_children();
}

void EditWriter::write_start_tag(Node& node, const NodeEdits* edits) {
  const std::size_t begin = written_.source.size();
  if (edits == nullptr || node.kind != NodeKind::element) {
    copy_until(node.extent.content_begin);
  } else if (edits->find({Kind::unwrap}) != nullptr) {
    return skip_until(node.extent.content_begin);
  } else {
    TagEdit tag(source_, node.extent.begin, code_, guard_, budget_);
    for (const Operation* operation : edits->operations) tag.apply(*operation);
    replace_until(node.extent.content_begin, tag.text());
  }
  const bool is_renamed = edits != nullptr && edits->find({Kind::rename}) != nullptr;
  const std::size_t content = written_.source.size();
  written_.kept.push_back({&node, {begin, content, content, content}, is_renamed});
}

// True when the content is a new one.
bool EditWriter::write_content(Node& node, const NodeEdits& edits) {
  insert(joined(edits, Kind::prepend, true));
  const Operation* const operation = edits.find({Kind::set_text, Kind::set_html});
  if (operation == nullptr) return false;
  insert_until(node.isText ? node.extent.end : node.extent.content_end,
               content_of(edits, *operation), operation->kind == Kind::set_text);
  return true;
}

// Plain text where references count, else the text as it is.
std::string EditWriter::content_of(const NodeEdits& edits, const Operation& operation) const {
  const Node& node = *edits.node;
  const Reading reading = node.isText ? reading_of(*as_node(node.parent)) : reading_after(edits);
  if (operation.kind == Kind::set_html || reading == Reading::literal) return operation.value;
  const std::string text = escaped_text(operation.value, page_.options().templates);
  const Operation* const rename = edits.find({Kind::rename});
  const Tag name = rename == nullptr ? node.name : find_tag(rename->name);
  const bool loses_line_break = text.substr(0, 1) == "\n" && drops_line_break(name);
  return loses_line_break ? "\n" + text : text;
}

void EditWriter::write_end_tag(Node& node, const NodeEdits* edits) {
  const Extent& extent = node.extent;
  if (edits == nullptr || extent.content_end == extent.end || node.kind != NodeKind::element) {
    return copy_until(extent.end);
  }
  if (edits->find({Kind::unwrap}) != nullptr) return skip_until(extent.end);
  if (const Operation* const rename = edits->find({Kind::rename})) {
    const Range name = end_tag_name(source_, extent.content_end, code_);
    copy_until(name.begin);
    replace_until(name.end, rename->name);
  }
  copy_until(extent.end);
}

// Everything goes right beside the node: what came first is farther away.
void EditWriter::write_before(const NodeEdits& edits) {
  std::string text;
  for (const Operation* operation : edits.operations) {
    if (operation->kind == Kind::insert_before) text += operation->value;
    if (operation->kind == Kind::wrap) text += halves_of(*operation).first;
  }
  insert(text);
}

void EditWriter::write_after(const NodeEdits& edits, std::size_t first_half) {
  std::string text;
  std::size_t levels = 0;
  for (auto at = edits.operations.rbegin(); at != edits.operations.rend(); ++at) {
    const Operation& operation = **at;
    if (operation.kind == Kind::insert_after) text += operation.value;
    if (operation.kind != Kind::wrap) continue;
    text += halves_of(operation).second;
    levels += halves_of(operation).levels;
  }
  const std::size_t begin = written_.source.size();
  insert(text);
  if (first_half == npos || edits.find({Kind::wrap}) == nullptr) return;
  written_.insertions[first_half].second_begin = begin;
  written_.insertions[first_half].second_end = written_.source.size();
  written_.insertions[first_half].wrappers = levels;
}

const Halves& EditWriter::halves_of(const Operation& wrap) {
  const auto found = halves_.find(&wrap);
  if (found != halves_.end()) return found->second;
  return halves_.emplace(&wrap, split_wrapper(wrap.value, page_.options())).first->second;
}

// --- The two texts ---

void EditWriter::copy_until(std::size_t end) {
  if (end <= position_) return;
  written_.source += source_.substr(position_, end - position_);
  position_ = end;
}

void EditWriter::skip_until(std::size_t end) {
  insert_until(end, std::string_view());
}

// The new text takes the place of the old one, but for what both begin and end with.
void EditWriter::replace_until(std::size_t end, std::string_view text) {
  const std::string_view old_text = source_.substr(position_, end - position_);
  const std::size_t shorter = std::min(old_text.size(), text.size());
  std::size_t start = 0;
  while (start < shorter && old_text[start] == text[start]) ++start;
  std::size_t tail = 0;
  while (start + tail < shorter &&
         old_text[old_text.size() - 1 - tail] == text[text.size() - 1 - tail]) {
    ++tail;
  }
  const std::size_t written = written_.source.size();
  written_.source += text;
  if (start + tail < std::max(old_text.size(), text.size())) {
    written_.changes.push_back(
        {position_ + start, end - tail, written + start, written_.source.size() - tail});
  }
  position_ = end;
}

void EditWriter::insert(std::string_view text) {
  insert_until(position_, text);
}

void EditWriter::insert_until(std::size_t end, std::string_view text, bool is_text) {
  const std::size_t begin = written_.source.size();
  const std::size_t old_begin = position_;
  if (text == source_.substr(old_begin, end - old_begin)) return copy_until(end);
  replace_until(end, text);
  const std::size_t new_end = written_.source.size();
  written_.seams.push_back({begin, old_begin, false});
  written_.seams.push_back({new_end, end, true});
  if (text.empty()) return;
  written_.insertions.push_back({begin, new_end, old_begin, is_text, new_end, new_end, 0});
}

}  // namespace qo
