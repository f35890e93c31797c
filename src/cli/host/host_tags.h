// Tags in the text of a page, by the rules of the library's parser.

#ifndef QO_CLI_HOST_HOST_TAGS_H
#define QO_CLI_HOST_HOST_TAGS_H

#include <cstddef>
#include <string_view>

namespace cli {

// The name of the start tag at `begin`, where its "<" is.
std::string_view host_tag_name(std::string_view html, std::size_t begin);

struct HostTag {
  std::size_t end;
  bool slash;  // it has a slash that counts: it ends an element, or is one without content
};

// The tag at `begin`, for which the parser has made or closed an element called `name`.
HostTag scan_host_tag(std::string_view html, std::size_t begin, std::string_view name,
                      bool is_void);

}  // namespace cli

#endif
