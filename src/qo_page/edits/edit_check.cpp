#include <qo_page/edits/edit_check.h>

#include <algorithm>
#include <string>
#include <vector>

#include <qo_page/edits/edit_error.h>
#include <qo_page/edits/new_places.h>
#include <qo_page/tokenizer/tokenizer.h>
#include <qo_page/tree/content_model.h>
#include <qo_page/tree/node_access.h>
#include <qo_page/tree/tree_walk.h>

namespace qo {

namespace {

bool is_same_extent(const Extent& a, const Extent& b) {
  return a.begin == b.begin && a.content_begin == b.content_begin &&
         a.content_end == b.content_end && a.end == b.end;
}

// Goes over the nodes of the new page beside those of the old one.
class EditCheck {
 public:
  EditCheck(const WrittenEdit& written, const Tree& old_tree, const Tree& new_tree)
      : written_(written),
        old_(old_tree),
        new_(new_tree),
        places_(written, old_tree),
        wrappers_(written.insertions.size()),
        seams_(new_tree, old_tree.source, written.seams) {}

  void run() {
    TreeWalk walk(new_, document_index);
    for (TreeWalk::Event event; (event = walk.step()) != TreeWalk::Event::end;) {
      event == TreeWalk::Event::enter ? enter(walk.node()) : leave(walk.node());
    }
    finish();
  }

 private:
  // What an open node is to be: a part of what was put in, or a node that was there.
  struct Wanted {
    const Insertion* insertion;
    NodeIndex old_node;
  };

  void enter(NodeIndex node) {
    if (node == document_index) return;
    const NodeRecord& record = new_[node];
    pass_stray_tags(record.begin);
    if (record.is_cut_off) check_cut_off(node);
    if (record.kind == NodeKind::text) return enter_text(node);
    if (record.kind == NodeKind::element) seams_.tag({record.begin, record.content_begin});
    position_ = record.kind == NodeKind::element ? record.content_begin : record.end;
    const Insertion* const insertion = insertion_at(record.begin);
    const NodeIndex old_node = insertion == nullptr ? places_.next() : no_node;
    if (insertion == nullptr && old_node == no_node) fail_at(record.begin);
    wanted_.push_back({insertion, old_node});
  }

  // A tag that the end of the source cuts off is the last of it.
  void enter_text(NodeIndex node) {
    const NodeRecord& record = new_[node];
    const std::size_t tag = has_cut_off_tag(record) ? cut_off_tag(record) : record.end;
    if (tag > record.begin) seams_.text({record.begin, tag}, record.parent);
    if (tag < record.end) seams_.tag({tag, record.end});
    position_ = record.end;
  }

  void leave(NodeIndex node) {
    const NodeRecord& record = new_[node];
    if (record.kind == NodeKind::text) return;
    if (record.has_content || node == document_index) {
      pass_stray_tags(record.content_end);
      if (record.content_end < record.end) seams_.tag({record.content_end, record.end});
      position_ = record.end;
    }
    if (node == document_index) return;
    const Wanted wanted = wanted_.back();
    wanted_.pop_back();
    if (wanted.insertion != nullptr) {
      inserted(node, *wanted.insertion);
    } else {
      kept(node, wanted.old_node);
    }
  }

  void pass_stray_tags(std::size_t end) {
    if (position_ < end) seams_.stray_tags({position_, end});
  }

  bool has_cut_off_tag(const NodeRecord& node) const {
    return node.kind == NodeKind::text && node.is_cut_off &&
           content_model(new_[node.parent]) == ContentModel::data;
  }

  // Where in a text a tag begins that the end of the source cuts off.
  std::size_t cut_off_tag(const NodeRecord& text) const {
    Tokenizer tokenizer(new_.source, *new_.dialect);
    tokenizer.begin_at(text.begin);
    Token token{};
    while (tokenizer.next(token)) {
    }
    return token.extent.begin;
  }

  void check_cut_off(NodeIndex node) {
    const NodeRecord& record = new_[node];
    const bool is_text = record.kind == NodeKind::text;
    if (is_text && !has_cut_off_tag(record)) return;
    const std::size_t begin = is_text ? cut_off_tag(record) : record.begin;
    const Insertion* const insertion = insertion_at(begin);
    if (insertion != nullptr) fail_unclosed(what_is(record.kind), *insertion);
  }

  void finish() const {
    for (std::size_t i = 0; i < wrappers_.size(); ++i) {
      const Insertion& insertion = written_.insertions[i];
      if (wrappers_[i] == insertion.wrappers) continue;
      throw Error("what is wrapped would end an element of the markup around it",
                  insertion.old_begin);
    }
    const NodeIndex next = places_.peek();
    if (next != no_node) fail_at(places_.place_of(next).extent.begin);
  }

  // The insertion that an offset of the new source is in, or null. Offsets come in order.
  const Insertion* insertion_at(std::size_t offset) {
    while (next_insertion_ < written_.insertions.size() &&
           written_.insertions[next_insertion_].end <= offset) {
      ++next_insertion_;
    }
    if (next_insertion_ == written_.insertions.size()) return nullptr;
    const Insertion& insertion = written_.insertions[next_insertion_];
    return insertion.begin <= offset ? &insertion : nullptr;
  }

  void inserted(NodeIndex node, const Insertion& insertion) {
    const NodeRecord& record = new_[node];
    if (insertion.is_text && record.kind != NodeKind::code) {
      throw Error("the new text would be read as markup", insertion.old_begin);
    }
    const std::size_t end = record.end;
    const bool is_wrapper = end > insertion.second_begin && end <= insertion.second_end;
    // Formatting that is not ended goes on after the block that it is in.
    const bool is_formatting = new_.is_element(node) && record.space == Namespace::html &&
                               has(record.tag, tag_flags::formatting);
    const bool needs_end = content_model(record) != ContentModel::data || is_formatting;
    const bool is_open = needs_end && record.content_end == end;
    if ((end > insertion.end && !is_wrapper) || is_open) {
      fail_unclosed(named(new_, node), insertion);
    }
    if (is_wrapper) ++wrappers_[static_cast<std::size_t>(&insertion - written_.insertions.data())];
  }

  [[noreturn]] static void fail_unclosed(const std::string& what, const Insertion& insertion) {
    throw Error("the markup opens " + what + " and does not close it", insertion.old_begin);
  }

  void kept(NodeIndex node, NodeIndex old_node) const {
    const NewPlaces::Place wanted = places_.place_of(old_node);
    const NodeRecord& now = new_[node];
    const NodeRecord& before = old_[old_node];
    const bool is_same = now.kind == before.kind &&
                         is_same_extent(new_.extent(node), wanted.extent) &&
                         now.has_content == before.has_content &&
                         (wanted.is_renamed || new_.name(node) == old_.name(old_node));
    if (is_same) return;
    fail_on_text(old_node, wanted.extent);
    fail_on_ends(now, old_node, wanted.extent);
    fail_at(wanted.extent.begin, old_node);
  }

  // What was put in or taken away may be what decided where a node ends.
  void fail_on_ends(const NodeRecord& node, NodeIndex old_node, const Extent& wanted) const {
    const NodeRecord& before = old_[old_node];
    const bool is_open = before.content_end == before.end && node.has_content;
    if (node.begin != wanted.begin) return;
    if (node.end > wanted.end && is_open) {
      const Node itself = NodeAccess::node(old_, old_node);
      const bool is_beside =
          std::any_of(written_.changes.begin(), written_.changes.end(), [&](const Change& change) {
            return change.new_begin == wanted.end && change.node == itself;
          });
      throw Error(named(old_, old_node) +
                      " has no end tag: what comes after it would become a part of it" +
                      (is_beside ? "; append does that" : ""),
                  before.begin);
    }
    if (node.end >= wanted.end) return;
    const std::string ender = ender_of(node);
    if (ender.empty()) return;
    throw Error(ender + " would end " + named(old_, old_node), old_place(node.end));
  }

  // What ends a node of the new page: its end tag or what comes after it.
  std::string ender_of(const NodeRecord& node) const {
    const std::size_t begin = node.content_end < node.end ? node.content_end : node.end;
    Tokenizer tokenizer(new_.source, *new_.dialect);
    tokenizer.begin_at(begin);
    Token token{};
    tokenizer.next(token);
    switch (token.kind) {
      case TokenKind::text:
        return "text";
      case TokenKind::start_tag:
        return "<" + std::string(token.name.in(new_.source)) + ">";
      case TokenKind::end_tag:
        return "</" + std::string(token.name.in(new_.source)) + ">";
      default:
        return {};
    }
  }

  static std::string what_is(NodeKind kind) {
    switch (kind) {
      case NodeKind::text:
        return "a tag";
      case NodeKind::comment:
        return "a comment";
      case NodeKind::code:
        return "template code";
      default:
        return "a declaration";
    }
  }

  // A new text may end the element that it was put into.
  void fail_on_text(NodeIndex old_node, const Extent& wanted) const {
    for (const Insertion& insertion : written_.insertions) {
      if (insertion.is_text && insertion.begin == wanted.content_begin) {
        throw Error("the new text would not stay in " + named(old_, old_node), insertion.old_begin);
      }
    }
  }

  // The edit that is nearest in front of an offset of the new source is what did it.
  std::size_t old_place(std::size_t offset) const {
    const auto next = std::upper_bound(
        written_.changes.begin(), written_.changes.end(), offset,
        [](std::size_t wanted, const Change& change) { return wanted < change.new_begin; });
    if (next != written_.changes.begin()) return std::prev(next)->old_begin;
    return written_.changes.empty() ? 0 : next->old_begin;
  }

  [[noreturn]] void fail_at(std::size_t offset, NodeIndex node = no_node) const {
    const std::string what = node != no_node ? named(old_, node) : "what is around it";
    throw Error("the edit would change how " + what + " is read", old_place(offset));
  }

  const WrittenEdit& written_;
  const Tree& old_;
  const Tree& new_;
  NewPlaces places_;
  std::vector<std::size_t> wrappers_;  // found, for each insertion
  SeamCheck seams_;
  std::vector<Wanted> wanted_;
  std::size_t next_insertion_ = 0;
  std::size_t position_ = 0;  // after the last tag or text
};

}  // namespace

void check_edit(const WrittenEdit& written, const Tree& old_tree, const Tree& new_tree) {
  EditCheck(written, old_tree, new_tree).run();
}

}  // namespace qo
