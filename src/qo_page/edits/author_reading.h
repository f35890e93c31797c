// The page as the author of a component reads it, beside the browser's reading that the tree has.

#ifndef QO_PAGE_EDITS_AUTHOR_READING_H
#define QO_PAGE_EDITS_AUTHOR_READING_H

#include <cstddef>
#include <string_view>
#include <vector>

#include <qo_page/tree/tree_builder.h>

namespace qo {

// A tag that may end elsewhere than a browser has it end.
struct OddTag {
  Range tag;      // as far as it may go
  Range bracket;  // that is left open
};

class AuthorReading : private StartTagObserver {
 public:
  // Reads the tree's source once more.
  explicit AuthorReading(const Tree& tree);

  // The odd tag that an offset is in; null when it is in none.
  const OddTag* odd_tag_at(std::size_t offset) const;

  // The node other than text that begins at an offset; null when none does.
  const NodeRecord* node_at(std::size_t offset) const;

  // Whether an end tag at an offset ends anything.
  bool has_end_tag(std::size_t offset) const;

  // A tag that the author reads otherwise, which may be why a node ends elsewhere: the first one in
  // the node, or else the last one before it. Empty when there is none.
  std::string_view reason_for(const Extent& extent) const;

 private:
  void start_tag(const Token& tag, Tag holder) override;

  std::string_view source_;
  Tree tree_;
  std::vector<OddTag> odd_tags_;
  std::vector<Range> reasons_;         // odd tags, components, and what ends in "/>"
  std::vector<std::size_t> end_tags_;  // where they begin
};

}  // namespace qo

#endif
