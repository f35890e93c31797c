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

struct AuthorNode {
  Extent extent;
  bool has_content;
};

class AuthorReading : public TreeObserver {
 public:
  AuthorReading(std::string_view source, bool templates);

  // The odd tag that an offset is in; null when it is in none.
  const OddTag* odd_tag_at(std::size_t offset) const;

  // The node that begins at an offset; null when none does.
  const AuthorNode* node_at(std::size_t offset) const;

  // Whether an end tag at an offset ends anything.
  bool has_end_tag(std::size_t offset) const;

  // A tag that is read otherwise, and may be why a node's end is: the first one in it, or else the
  // last one before it. Empty when there is none.
  std::string_view reason_for(const Extent& extent) const;

  void token(const Token& token, const Node& holder) override;
  void begin(const Node& node) override;
  void end(const Node& node) override;

 private:
  std::string_view source_;
  std::vector<OddTag> odd_tags_;
  std::vector<Range> reasons_;         // odd tags, components, and what ends in "/>"
  std::vector<AuthorNode> nodes_;      // in document order
  std::vector<std::size_t> open_;      // indexes of nodes
  std::vector<std::size_t> end_tags_;  // where they begin
};

}  // namespace qo

#endif
