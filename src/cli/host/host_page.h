// Pages as a host process sees them: read by the library.

#ifndef QO_CLI_HOST_HOST_PAGE_H
#define QO_CLI_HOST_HOST_PAGE_H

#include <cstddef>
#include <memory>
#include <string>

#include <qo_html/qo_html.h>

#include "io/files.h"

namespace cli {

using Document = std::unique_ptr<_qo_html>;

// From here on, nothing that the library writes to std::cout and std::cerr reaches the user; what
// the tool writes goes around both.
void silence_library();

// When memory runs out, the library answers some calls with an empty text, or goes on without an
// attribute, and writes a line. This throws std::bad_alloc if it has done so since the last call.
void require_memory();

// Null when the parser refuses the page. Throws std::bad_alloc.
Document try_to_parse(std::string html, bool drop_comments);

// Why the parser refuses a page, and where the tag is at which it gives up.
struct Refusal {
  std::size_t offset;
  std::string reason;
};

// Of a page that the parser refuses.
Refusal find_refusal(const std::string& html);

// The text with its references replaced as the library does it.
std::string decode_as_host(std::string text);

// Throws Failure with place and reason when the parser refuses the page, and std::bad_alloc.
Document parse_page(const Input& input, bool drop_comments);

}  // namespace cli

#endif
