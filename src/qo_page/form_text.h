// Texts of forms as a browser reads them, with template code as it is written.

#ifndef QO_PAGE_FORM_TEXT_H
#define QO_PAGE_FORM_TEXT_H

#include <string>
#include <string_view>

#include <qo_page/decode.h>
#include <qo_page/node.h>

namespace qo {

// The source of a page, and whether it may have template code.
struct FormSource {
  std::string_view text;
  bool templates;

  bool has_code(std::string_view written) const;

  // With its references decoded, and line feeds for its line breaks.
  std::string decoded(std::string_view written, DecodeMode mode) const;

  // The value of an attribute; empty when there is none of that name.
  std::string attribute(const Node& node, std::string_view name) const;

  // The content of a textarea.
  std::string content(const Node& textarea) const;

  // That of an option: without scripts and comments, its blanks collapsed.
  std::string label(const Node& option) const;
};

}  // namespace qo

#endif
