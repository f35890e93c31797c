#include <qo_page/edits/edit_check.h>

#include <algorithm>
#include <string>
#include <vector>

#include <qo_page/edits/edit_error.h>
#include <qo_page/tree/reading.h>
#include <qo_page/tree/tree_builder.h>

namespace qo {

namespace {

bool is_same_extent(const Extent& a, const Extent& b) {
  return a.begin == b.begin && a.content_begin == b.content_begin &&
         a.content_end == b.content_end && a.end == b.end;
}

// Goes over the nodes of the new page beside what is wanted.
class EditCheck : public TreeObserver {
 public:
  EditCheck(const WrittenEdit& written, std::string_view old_source, bool templates)
      : written_(written),
        wrappers_(written.insertions.size()),
        seams_(written.source, old_source, templates, written.seams) {}

  void token(const Token& token, const Node& holder) override {
    last_ = {token.kind, token.extent, token.name};
    const bool is_content = token.kind == TokenKind::text && reading_of(holder) != Reading::markup;
    if (token.is_cut_off && !is_content) {
      const Insertion* const insertion = insertion_at(token.extent.begin);
      if (insertion != nullptr) fail_unclosed(what_is(token.kind), *insertion);
    }
    seams_.token(token, holder);
  }

  void begin(const Node& node) override {
    const Insertion* const insertion = insertion_at(node.extent.begin);
    if (insertion == nullptr && next_kept_ == written_.kept.size()) fail_at(node.extent.begin);
    wanted_.push_back({insertion, insertion == nullptr ? &written_.kept[next_kept_++] : nullptr});
  }

  void end(const Node& node) override {
    const Wanted wanted = wanted_.back();
    wanted_.pop_back();
    if (wanted.insertion != nullptr) {
      inserted(node, *wanted.insertion);
    } else {
      kept(node, *wanted.kept);
    }
  }

  void finish() const {
    for (std::size_t i = 0; i < wrappers_.size(); ++i) {
      const Insertion& insertion = written_.insertions[i];
      if (wrappers_[i] == insertion.wrappers) continue;
      throw Error("what is wrapped would end an element of the markup around it",
                  insertion.old_begin);
    }
    if (next_kept_ < written_.kept.size()) fail_at(written_.kept[next_kept_].extent.begin);
  }

 private:
  // What an open node is to be: a part of what was put in, or a node that was there.
  struct Wanted {
    const Insertion* insertion;
    const KeptNode* kept;
  };

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

  void inserted(const Node& node, const Insertion& insertion) {
    if (insertion.is_text && node.kind != NodeKind::code) {
      throw Error("the new text would be read as markup", insertion.old_begin);
    }
    const std::size_t end = node.extent.end;
    const bool is_wrapper = end > insertion.second_begin && end <= insertion.second_end;
    const bool is_open = reading_of(node) != Reading::markup && node.extent.content_end == end;
    if ((end > insertion.end && !is_wrapper) || is_open) fail_unclosed(named(node), insertion);
    if (is_wrapper) ++wrappers_[static_cast<std::size_t>(&insertion - written_.insertions.data())];
  }

  [[noreturn]] static void fail_unclosed(const std::string& what, const Insertion& insertion) {
    throw Error("the markup opens " + what + " and does not close it", insertion.old_begin);
  }

  void kept(const Node& node, const KeptNode& wanted) const {
    const bool is_same = node.kind == wanted.node->kind &&
                         is_same_extent(node.extent, wanted.extent) &&
                         node.has_content == wanted.node->has_content &&
                         (wanted.is_renamed || node.tag == wanted.node->tag);
    if (is_same) return;
    fail_on_text(wanted);
    fail_on_ends(node, wanted);
    fail_at(wanted.extent.begin, wanted.node);
  }

  // What was put in or taken away may be what decided where a node ends.
  void fail_on_ends(const Node& node, const KeptNode& wanted) const {
    const Extent& old_extent = wanted.node->extent;
    const std::size_t end = node.extent.end;
    const bool is_open = old_extent.content_end == old_extent.end && node.has_content;
    if (node.extent.begin != wanted.extent.begin) return;
    if (end > wanted.extent.end && is_open) {
      const bool is_beside = std::any_of(
          written_.insertions.begin(), written_.insertions.end(),
          [&wanted](const Insertion& insertion) { return insertion.begin == wanted.extent.end; });
      throw Error(named(*wanted.node) +
                      " has no end tag: what comes after it would become a part of it" +
                      (is_beside ? "; append does that" : ""),
                  old_extent.begin);
    }
    const bool is_tag = last_.kind == TokenKind::start_tag || last_.kind == TokenKind::end_tag;
    const bool is_text = last_.kind == TokenKind::text && last_.extent.begin == end;
    if (end >= wanted.extent.end || !(is_tag || is_text)) return;
    const std::string slash(last_.kind == TokenKind::end_tag ? "/" : "");
    const std::string ender =
        is_text ? "text" : "<" + slash + std::string(last_.name.in(written_.source)) + ">";
    throw Error(ender + " would end " + named(*wanted.node), old_place(end));
  }

  static std::string what_is(TokenKind kind) {
    switch (kind) {
      case TokenKind::text:
        return "a tag";
      case TokenKind::comment:
        return "a comment";
      case TokenKind::code:
        return "template code";
      default:
        return "a declaration";
    }
  }

  // A new text may end what it was put in.
  void fail_on_text(const KeptNode& wanted) const {
    for (const Insertion& insertion : written_.insertions) {
      if (insertion.is_text && insertion.begin == wanted.extent.content_begin) {
        throw Error("the new text would not stay in " + named(*wanted.node), insertion.old_begin);
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

  [[noreturn]] void fail_at(std::size_t offset, const Node* node = nullptr) const {
    const std::string what = node != nullptr ? named(*node) : "what is around it";
    throw Error("the edit would change how " + what + " is read", old_place(offset));
  }

  // The token that ends a node, or begins the next one.
  struct LastToken {
    TokenKind kind;
    Range extent, name;
  };

  const WrittenEdit& written_;
  std::vector<std::size_t> wrappers_;  // found, for each insertion
  SeamCheck seams_;
  LastToken last_{TokenKind::text, {}, {}};
  std::vector<Wanted> wanted_;
  std::size_t next_insertion_ = 0;
  std::size_t next_kept_ = 0;
};

}  // namespace

void check_edit(const WrittenEdit& written, const Page& page) {
  const bool templates = page.options().templates;
  EditCheck check(written, page.source(), templates);
  TreeBuilder(written.source, templates).observe(check);
  check.finish();
}

}  // namespace qo
