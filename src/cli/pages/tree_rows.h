// The tree of a page as rows of JSON, for the viewer.

#ifndef QO_CLI_PAGES_TREE_ROWS_H
#define QO_CLI_PAGES_TREE_ROWS_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <qo_page/page.h>
#include <qo_page/selector.h>

namespace cli {

// A JSON string of which nothing can end the script that it is in.
std::string string_in_script(std::string_view text);

// One row a node, in document order, so that the depth of the page does not matter:
// [level, kind, name or text, [[attribute, value or null]...], the number of matches]
class TreeRows {
 public:
  // `kind` as the viewer calls it.
  void begin_row(std::size_t level, std::string_view kind, std::string_view content);
  void add_attribute(std::string_view name, std::optional<std::string_view> value);
  void end_row(std::size_t matches);

  std::string take() { return "[" + rows_ + "]"; }

 private:
  std::string rows_;
  bool has_attributes_ = false;  // in this row
};

// That of a text.
inline std::string_view text_kind(bool is_blank) {
  return is_blank ? "blank" : "text";
}

// The rows of a page by its own tags.
std::string tree_rows(const qo::Page& page, const std::optional<qo::Selector>& selector);

}  // namespace cli

#endif
