// Whether what is on both sides of a change is read as before.

#ifndef QO_PAGE_EDITS_SEAM_CHECK_H
#define QO_PAGE_EDITS_SEAM_CHECK_H

#include <cstddef>
#include <string_view>
#include <vector>

#include <qo_page/template/template_code.h>
#include <qo_page/tree/tree.h>

namespace qo {

// Where what was there meets what was put in, or what is left after something went.
struct Seam {
  std::size_t offset;      // in the new source
  std::size_t old_offset;  // in the old one
  bool is_end;             // what was there comes after it
};

// To be asked of the tags and texts of the new page, in their order. Nodes that appear or go are
// checked elsewhere.
class SeamCheck {
 public:
  // `seams` are in order.
  SeamCheck(const Tree& tree, std::string_view old_source, const std::vector<Seam>& seams);

  // Throws Error when a seam is within the tag.
  void tag(Range tag);

  // Throws Error when a piece of code or a reference lies across a seam, or when code right after
  // one is no longer the same. `holder` is what the text is in.
  void text(Range text, NodeIndex holder);

  // The same for a stretch between nodes. It has only end tags that end nothing.
  void stray_tags(Range tags);

 private:
  using Iterator = std::vector<Seam>::const_iterator;

  Iterator take_until(std::size_t end);
  bool is_followed_at_once(Iterator seam) const;
  void line_break(NodeIndex holder, Iterator seam, Iterator last) const;
  void code(Range text, Iterator seam, Iterator last);
  void references(Range text, Iterator seam, Iterator last) const;
  void code_after(const Seam& seam);

  const Tree& tree_;
  std::string_view source_, old_source_;
  CodeScanner code_, code_after_, old_code_;
  Iterator next_, end_;
};

}  // namespace qo

#endif
