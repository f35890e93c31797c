// Texts of forms as a browser reads them, with template code as it is written.

#ifndef QO_PAGE_FORMS_FORM_TEXT_H
#define QO_PAGE_FORMS_FORM_TEXT_H

#include <string>
#include <string_view>

#include <qo_page/text/decoded_text.h>
#include <qo_page/tree/tree.h>

namespace qo {

// Line breaks of the source are line feeds in what it gives.
class FormText {
 public:
  explicit FormText(const Tree& tree) : tree_(tree) {}

  // Whether there is code in the value of an attribute.
  bool has_code(std::string_view value) const;

  // The value of an attribute; empty when there is none of that name.
  std::string attribute(NodeIndex node, std::string_view name) const;

  std::string value_of(std::string_view written) const;

  // The content of a textarea.
  std::string content(NodeIndex textarea) const { return content_of(tree_.inner_html(textarea)); }
  std::string content_of(std::string_view written) const;

  // The text of an option, its blanks collapsed; without scripts, and without what only another
  // select offers. Code in a tag of its own is in it where it stands for text.
  std::string label(NodeIndex option) const;

 private:
  DecodedText decoded(std::string_view written, WrittenText::Kind kind) const;

  const Tree& tree_;
};

}  // namespace qo

#endif
