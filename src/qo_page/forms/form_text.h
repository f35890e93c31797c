// Texts of forms as a browser reads them, with template code as it is written.

#ifndef QO_PAGE_FORMS_FORM_TEXT_H
#define QO_PAGE_FORMS_FORM_TEXT_H

#include <string>
#include <string_view>

#include <qo_page/text/decoded_text.h>
#include <qo_page/tree/node.h>

namespace qo {

// The source of a page, and whether it may have template code. Line breaks of the source are line
// feeds in what it gives.
struct FormSource {
  std::string_view text;
  bool templates;

  // Whether there is code in the value of an attribute.
  bool has_code(std::string_view value) const;

  // The value of an attribute; empty when there is none of that name.
  std::string attribute(const Node& node, std::string_view name) const;

  // The content of a textarea.
  std::string content(const Node& textarea) const;

  // The text of an option, its blanks collapsed; without scripts, and without what only another
  // select offers. Code in a tag of its own is in it where it stands for text.
  std::string label(const Node& option) const;

 private:
  DecodedText decoded(std::string_view written, WrittenText::Kind kind) const;
};

}  // namespace qo

#endif
