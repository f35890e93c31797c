// The tree of a page as lines: a line for each node, indented by its level.

#ifndef QO_CLI_PAGES_OUTLINE_H
#define QO_CLI_PAGES_OUTLINE_H

#include <cstddef>
#include <string_view>

#include <qo_page/page.h>

#include "io/output.h"

namespace cli {

class Outline {
 public:
  // `shows_blanks`: texts that are nothing but white space, too.
  Outline(bool shows_blanks, Output& out) : shows_blanks_(shows_blanks), out_(out) {}

  // Nodes in document order; those at the top have level 0.
  void text(std::size_t level, std::string_view text);
  void section(std::size_t level, const char* kind, std::string_view content);
  void tag(std::size_t level, std::string_view name, std::string_view attributes,
           std::string_view end);

 private:
  bool shows_blanks_;
  Output& out_;
};

// The outline of a page by its own tags, which are shown as they are written.
void write_outline(const qo::Page& page, Outline& outline);

}  // namespace cli

#endif
