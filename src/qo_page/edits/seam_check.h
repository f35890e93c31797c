// Whether what is beside a change of the content is read as before.

#ifndef QO_PAGE_EDITS_SEAM_CHECK_H
#define QO_PAGE_EDITS_SEAM_CHECK_H

#include <cstddef>
#include <string_view>
#include <vector>

#include <qo_page/template/template_code.h>
#include <qo_page/tokenizer/tokenizer.h>
#include <qo_page/tree/node.h>

namespace qo {

// Where what was there meets what was put in, or what is left after something went.
struct Seam {
  std::size_t offset;      // in the new source
  std::size_t old_offset;  // in the old one
  bool is_end;             // what was there comes after it
};

class SeamCheck {
 public:
  // `seams` are in order.
  SeamCheck(std::string_view source, std::string_view old_source, bool templates,
            const std::vector<Seam>& seams);

  // To be called for each token of the new source. Throws Error when a tag, a piece of code or a
  // reference lies across a seam, or when code right after one is no longer the same. What becomes
  // a node, or no longer is one, is for others to see.
  void token(const Token& token, const Node& holder);

 private:
  using Iterator = std::vector<Seam>::const_iterator;

  void text(const Token& token, const Node& holder, Iterator first, Iterator last);
  void line_break(const Node& holder, Iterator seam, Iterator last) const;
  void code(Range text, Iterator seam, Iterator last);
  void references(Range text, Iterator seam, Iterator last) const;
  void code_after(const Seam& seam);

  std::string_view source_, old_source_;
  CodeScanner code_, code_after_, old_code_;
  Iterator next_, end_;
};

}  // namespace qo

#endif
