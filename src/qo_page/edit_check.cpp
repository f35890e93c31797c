#include <qo_page/edit_check.h>

#include <algorithm>
#include <string>
#include <vector>

#include <qo_page/edit_error.h>
#include <qo_page/tree_builder.h>

namespace qo {

namespace {

bool is_same_extent(const Extent& a, const Extent& b) {
  return a.begin == b.begin && a.content_begin == b.content_begin &&
         a.content_end == b.content_end && a.end == b.end;
}

// Goes over the nodes of the new page beside what is wanted.
class EditCheck : public TreeObserver {
 public:
  explicit EditCheck(const WrittenEdit& written) : written_(written) {}

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

  void inserted(const Node& node, const Insertion& insertion) const {
    if (insertion.is_text && node.kind != NodeKind::code) {
      throw Error("the new text would be read as markup", insertion.old_begin);
    }
    const std::size_t end = node.extent.end;
    const bool is_wrapper = end > insertion.second_begin && end <= insertion.second_end;
    if (end > insertion.end && !is_wrapper) {
      throw Error("the markup opens " + named(node) + " and does not close it",
                  insertion.old_begin);
    }
  }

  void kept(const Node& node, const KeptNode& wanted) const {
    const bool is_same = node.kind == wanted.node->kind &&
                         is_same_extent(node.extent, wanted.extent) &&
                         node.has_content == wanted.node->has_content &&
                         (wanted.is_renamed || node.tag == wanted.node->tag);
    if (is_same) return;
    fail_on_text(wanted);
    fail_at(wanted.extent.begin, wanted.node);
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
  [[noreturn]] void fail_at(std::size_t offset, const Node* node = nullptr) const {
    const auto next = std::upper_bound(
        written_.changes.begin(), written_.changes.end(), offset,
        [](std::size_t wanted, const Change& change) { return wanted < change.new_begin; });
    const std::size_t place = next == written_.changes.begin()
                                  ? (written_.changes.empty() ? 0 : next->old_begin)
                                  : std::prev(next)->old_begin;
    const std::string what = node != nullptr ? named(*node) : "what is around it";
    throw Error("the edit would change how " + what + " is read", place);
  }

  const WrittenEdit& written_;
  std::vector<Wanted> wanted_;
  std::size_t next_insertion_ = 0;
  std::size_t next_kept_ = 0;
};

}  // namespace

void check_edit(const WrittenEdit& written, const PageOptions& options) {
  EditCheck check(written);
  TreeBuilder(written.source, options.templates).observe(check);
  check.finish();
}

}  // namespace qo
