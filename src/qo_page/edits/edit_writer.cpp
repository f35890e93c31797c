#include <qo_page/edits/edit_writer.h>

#include <algorithm>

#include <qo_page/edits/edit_error.h>
#include <qo_page/edits/own_line.h>
#include <qo_page/edits/substituter.h>
#include <qo_page/edits/tag_edit.h>
#include <qo_page/text/escape.h>
#include <qo_page/text/node_text.h>
#include <qo_page/tree/node_access.h>

namespace qo {

namespace {

using Kind = Operation::Kind;

bool is_replaced(const NodeEdits& edits) {
  return edits.find({Kind::replace, Kind::remove, Kind::remove_line}) != nullptr;
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

// How much two texts have in common at their beginning, and at the end of what is left of them.
struct Common {
  std::size_t begin, end;
};

Common in_common(std::string_view a, std::string_view b) {
  const std::size_t shorter = std::min(a.size(), b.size());
  Common common{0, 0};
  while (common.begin < shorter && a[common.begin] == b[common.begin]) ++common.begin;
  while (common.begin + common.end < shorter &&
         a[a.size() - 1 - common.end] == b[b.size() - 1 - common.end]) {
    ++common.end;
  }
  return common;
}

}  // namespace

Halves split_wrapper(const std::string& markup, const PageOptions& options) {
  const Page page(markup, options);
  Node innermost;
  std::size_t levels = 0;
  for (Node around = page.document();;) {
    const auto children = around.children();
    const auto first = std::find_if(children.begin(), children.end(),
                                    [](Node child) { return child.is_element(); });
    if (first == children.end()) break;
    around = innermost = *first;
    ++levels;
  }
  const bool has_content = innermost && NodeAccess::record(innermost).has_content;
  if (!has_content) throw Error("\"" + markup + "\" has no element to wrap with");
  const std::size_t middle = innermost.extent().content_end;
  return {markup.substr(0, middle), markup.substr(middle), levels};
}

EditWriter::EditWriter(const Tree& tree, const std::vector<NodeEdits>& edits)
    : tree_(tree),
      source_(tree.source),
      code_(source_, *tree.dialect),
      guard_(tree),
      budget_(source_.size()),
      walk_(tree, document_index),
      edits_(edits) {}

WrittenEdit EditWriter::write() {
  written_.source.reserve(source_.size());
  for (;;) {
    const TreeWalk::Event event = walk_.step();
    if (event == TreeWalk::Event::end) break;
    const NodeIndex node = walk_.node();
    if (event == TreeWalk::Event::leave) {
      leave(node);
    } else if (const NodeEdits* const edits = edits_of(node)) {
      guard_.check(*edits);
      tree_[node].kind == NodeKind::text ? enter_text(node, *edits) : enter(node, *edits);
    }
  }
  copy_until(source_.size());
  std::sort(written_.kept.begin(), written_.kept.end(),
            [](const KeptNode& a, const KeptNode& b) { return a.node < b.node; });
  return std::move(written_);
}

// Nodes in content that was replaced are never met.
const NodeEdits* EditWriter::edits_of(NodeIndex node) {
  while (next_edits_ < edits_.size() && edits_[next_edits_].node < node) ++next_edits_;
  const bool found = next_edits_ < edits_.size() && edits_[next_edits_].node == node;
  if (!found) return nullptr;
  current_ = &edits_[next_edits_];
  return current_;
}

void EditWriter::enter(NodeIndex node, const NodeEdits& edits) {
  const Range taken = taken_range(node, edits);
  copy_until(taken.begin);
  const std::size_t first_half = write_before(edits);
  if (is_replaced(edits)) {
    write_replaced(node, edits, taken.end);
    return write_after(edits, first_half);
  }
  const std::size_t begin = written_.source.size();
  write_start_tag(node, edits);
  open_.push_back({node, &edits, begin, written_.source.size(), first_half});
  if (!write_content(node, edits)) return;
  walk_.skip_children();
  if (tree_[node].subtree_end > node + 1) {
    written_.gone.push_back({node + 1, tree_[node].subtree_end});
  }
}

void EditWriter::enter_text(NodeIndex node, const NodeEdits& edits) {
  copy_until(tree_[node].begin);
  const std::size_t first_half = write_before(edits);
  if (is_replaced(edits)) {
    write_replaced(node, edits, tree_[node].end);
  } else {
    if (!write_content(node, edits)) write_substituted(node, edits);
    copy_until(tree_[node].end);
  }
  write_after(edits, first_half);
}

// Of several substitutions, each works on what the one before it gives.
void EditWriter::write_substituted(NodeIndex node, const NodeEdits& edits) {
  if (edits.find({Kind::substitute_html}) != nullptr) return write_marked(node, edits);
  const auto kind = is_literal(tree_, node) ? WrittenText::Kind::literal : WrittenText::Kind::text;
  const std::string_view old_text = written_text(tree_, node);
  const auto begin = static_cast<std::size_t>(old_text.data() - source_.data());
  std::string text(old_text);
  std::vector<Splice> splices;
  std::size_t count = 0;
  for (const Operation* operation : edits.operations) {
    if (operation->kind != Kind::substitute_text) continue;
    ++count;
    const Substituter substituter(*operation->substitution, budget_, tree_[node].begin);
    splices = substituter.splices({text, kind, 0, *tree_.dialect});
    text = spliced(text, splices);
  }
  if (count > 1) {
    const Common common = in_common(old_text, text);
    const Range range{begin + common.begin, begin + old_text.size() - common.end};
    guard_.check_uncut(range, "what is substituted", range.begin);
    return insert_until(begin + old_text.size(), text, true);
  }
  write_splices(begin, splices, true);
}

// All of them work on the text as it was: what one puts in is no text for the others.
void EditWriter::write_marked(NodeIndex node, const NodeEdits& edits) {
  const bool is_markup = tree_[node].kind == NodeKind::text &&
                         content_model(tree_[tree_[node].parent]) == ContentModel::data;
  const std::string_view text = written_text(tree_, node);
  const auto kind = is_literal(tree_, node) ? WrittenText::Kind::literal : WrittenText::Kind::text;
  std::vector<Splice> splices;
  for (const Operation* operation : edits.operations) {
    if (operation->kind != Kind::substitute_html) continue;
    const Substituter substituter(*operation->substitution, budget_, tree_[node].begin);
    for (Splice& splice : substituter.markup_splices({text, kind, 0, *tree_.dialect})) {
      splices.push_back(std::move(splice));
    }
  }
  if (splices.empty()) return;
  if (!is_markup) {
    const NodeIndex holder = tree_[node].kind == NodeKind::text ? tree_[node].parent : node;
    throw Error("in " + named(tree_, holder) + ", markup is text", tree_[node].begin);
  }
  std::stable_sort(splices.begin(), splices.end(),
                   [](const Splice& a, const Splice& b) { return a.begin < b.begin; });
  for (std::size_t i = 1; i < splices.size(); ++i) {
    if (splices[i - 1].end <= splices[i].begin) continue;
    throw Error("two expressions match the same text", tree_[node].begin);
  }
  write_splices(static_cast<std::size_t>(text.data() - source_.data()), splices, false);
}

void EditWriter::write_splices(std::size_t begin, const std::vector<Splice>& splices,
                               bool is_text) {
  for (const Splice& splice : splices) {
    const Range range{begin + splice.begin, begin + splice.end};
    guard_.check_uncut(range, "what is substituted", range.begin);
    copy_until(range.begin);
    insert_until(range.end, splice.text, is_text);
  }
}

void EditWriter::leave(NodeIndex node) {
  const bool is_edited = !open_.empty() && open_.back().node == node;
  is_edited ? leave_edited(node) : keep_open_end(node);
}

// An element without an end tag ends with what is in it: when that was changed right there, nothing
// else tells where.
void EditWriter::keep_open_end(NodeIndex node) {
  const NodeRecord& record = tree_[node];
  const bool is_open = record.has_content && record.content_end == record.end;
  if (!is_open || position_ != record.end) return;
  const std::size_t end = written_.source.size();
  written_.kept.push_back({node, KeptNode::Known::end, {0, 0, end, end}, false});
}

void EditWriter::leave_edited(NodeIndex node) {
  const OpenNode open = open_.back();
  open_.pop_back();
  current_ = open.edits;
  copy_until(tree_[node].content_end);
  insert(joined(*open.edits, Kind::append, false));
  const std::size_t content_end = written_.source.size();
  write_end_tag(node, *open.edits);
  const std::size_t end = written_.source.size();
  if (open.edits->find({Kind::unwrap}) == nullptr) {
    const bool is_renamed = open.edits->find({Kind::rename}) != nullptr;
    written_.kept.push_back({node,
                             KeptNode::Known::all,
                             {open.begin, open.content_begin, content_end, end},
                             is_renamed});
  }
  write_after(*open.edits, open.first_half);
}

// A line is not the node's own when something else is put there or done to its blanks.
Range EditWriter::taken_range(NodeIndex node, const NodeEdits& edits) const {
  const Range own{tree_[node].begin, tree_[node].end};
  const bool is_alone = edits.find({Kind::insert_before, Kind::insert_after}) == nullptr;
  if (!is_alone || edits.find({Kind::remove_line}) == nullptr) return own;
  const Range lines = own_lines(tree_, node);
  const NodeIndex next = tree_.next_sibling(node);
  const bool is_next_edited =
      next != no_node && tree_[next].begin < lines.end &&
      std::binary_search(edits_.begin(), edits_.end(), NodeEdits{next, {}},
                         [](const NodeEdits& a, const NodeEdits& b) { return a.node < b.node; });
  return is_next_edited || lines.begin < position_ ? own : lines;
}

void EditWriter::write_replaced(NodeIndex node, const NodeEdits& edits, std::size_t end) {
  const Operation& operation = *edits.find({Kind::replace, Kind::remove, Kind::remove_line});
  insert_until(end, operation.value);
  written_.gone.push_back({node, tree_[node].subtree_end});
  walk_.skip_children();
}

void EditWriter::write_start_tag(NodeIndex node, const NodeEdits& edits) {
  const NodeRecord& record = tree_[node];
  if (record.kind != NodeKind::element || guard_.keeps_odd_tag(edits)) {
    return copy_until(record.content_begin);
  }
  if (edits.find({Kind::unwrap}) != nullptr) {
    written_.gone.push_back({node, node + 1});
    return skip_until(record.content_begin);
  }
  TagEdit tag(source_, record.begin, code_, guard_, budget_);
  for (const Operation* operation : edits.operations) tag.apply(*operation);
  replace_until(record.content_begin, tag.text());
}

// True when the content is a new one.
bool EditWriter::write_content(NodeIndex node, const NodeEdits& edits) {
  insert(joined(edits, Kind::prepend, true));
  const Operation* const operation = edits.find({Kind::set_text, Kind::set_html});
  const NodeRecord& record = tree_[node];
  if (operation == nullptr) {
    const bool is_section = record.kind == NodeKind::cdata || record.kind == NodeKind::comment;
    if (is_section) write_substituted(node, edits);
    return false;
  }
  insert_until(record.kind == NodeKind::text ? record.end : record.content_end,
               content_of(edits, *operation), operation->kind == Kind::set_text);
  return true;
}

// Plain text where references count, else the text as it is.
std::string EditWriter::content_of(const NodeEdits& edits, const Operation& operation) const {
  const NodeRecord& node = tree_[edits.node];
  const ContentModel model = node.kind == NodeKind::text ? content_model(tree_[node.parent])
                                                         : content_model_after(tree_, edits);
  if (operation.kind == Kind::set_html || model == ContentModel::rawtext) return operation.value;
  const std::string text = escaped_text(operation.value, *tree_.dialect);
  const Operation* const rename = edits.find({Kind::rename});
  const Tag name = rename == nullptr ? node.tag : find_tag(rename->name);
  const bool loses_line_break = text.substr(0, 1) == "\n" && drops_line_break(name);
  return loses_line_break ? "\n" + text : text;
}

void EditWriter::write_end_tag(NodeIndex node, const NodeEdits& edits) {
  const NodeRecord& record = tree_[node];
  if (record.content_end == record.end || record.kind != NodeKind::element) {
    return copy_until(record.end);
  }
  if (edits.find({Kind::unwrap}) != nullptr) return skip_until(record.end);
  if (const Operation* const rename = edits.find({Kind::rename})) {
    const Range name = end_tag_name(source_, record.content_end, code_);
    copy_until(name.begin);
    replace_until(name.end, rename->name);
  }
  copy_until(record.end);
}

// Each insertion goes right beside the node, so that earlier ones are farther away. Returns the
// place in `insertions`.
std::size_t EditWriter::write_before(const NodeEdits& edits) {
  std::string text;
  for (const Operation* operation : edits.operations) {
    if (operation->kind == Kind::insert_before) text += operation->value;
    if (operation->kind == Kind::wrap) text += halves_of(*operation).first;
  }
  const std::size_t place = written_.insertions.size();
  insert(text);
  return written_.insertions.size() > place ? place : no_insertion;
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
  if (first_half == no_insertion || edits.find({Kind::wrap}) == nullptr) return;
  written_.insertions[first_half].second_begin = begin;
  written_.insertions[first_half].second_end = written_.source.size();
  written_.insertions[first_half].wrappers = levels;
}

const Halves& EditWriter::halves_of(const Operation& wrap) {
  const auto found = halves_.find(&wrap);
  if (found != halves_.end()) return found->second;
  return halves_.emplace(&wrap, split_wrapper(wrap.value, tree_.options)).first->second;
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

// The new text takes the place of the old one, but for what both begin with and end with.
void EditWriter::replace_until(std::size_t end, std::string_view text) {
  const std::string_view old_text = source_.substr(position_, end - position_);
  const Common common = in_common(old_text, text);
  const std::size_t written = written_.source.size();
  written_.source += text;
  if (common.begin + common.end < std::max(old_text.size(), text.size())) {
    written_.changes.push_back({position_ + common.begin, end - common.end, written + common.begin,
                                written_.source.size() - common.end,
                                NodeAccess::node(tree_, current_->node)});
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
