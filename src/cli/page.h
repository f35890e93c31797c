// Pages as the library sees them.

#ifndef QO_CLI_PAGE_H
#define QO_CLI_PAGE_H

#include <memory>
#include <string>

#include <qo_html/qo_html.h>

#include "files.h"

namespace cli {

using Document = std::unique_ptr<_qo_html>;

// From here on, nothing that the library writes to std::cout and std::cerr reaches the user; what
// the tool writes goes around both.
void silence_library();

// The library answers some calls with an empty text, or goes on without an attribute, when memory
// runs out, and writes a line: throws std::bad_alloc if it has done so since the last call.
void require_memory();

// Null when the parser refuses the page. Throws std::bad_alloc.
Document try_to_parse(std::string html, bool drop_comments);

// Throws Failure with place and reason when the parser refuses the page, and std::bad_alloc.
Document parse_page(const Input& input, bool drop_comments);

}  // namespace cli

#endif
