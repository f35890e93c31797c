// Where tags end in the text of a page.

#ifndef QO_CLI_TAG_SCANNER_H
#define QO_CLI_TAG_SCANNER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

struct TagExtent {
  std::size_t end;  // behind the tag
  bool slash;       // it has a slash that counts: it ends an element, or is one without content
  std::vector<std::string> dropped;  // attributes that lose a value, since it has no quotes
};

// The tag at `begin`, where its "<" stands, for which the parser has made or closed an element
// called `name`. Follows the parser's rules of where names and attributes end.
TagExtent scan_tag(std::string_view html, std::size_t begin, std::string_view name, bool is_void);

// Behind the comment that stands at `begin`; `begin` itself when there is none.
std::size_t skip_comment(std::string_view html, std::size_t begin);

}  // namespace cli

#endif
