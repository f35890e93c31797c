// Decoded values of attributes.

#ifndef QO_PAGE_TEXT_ATTRIBUTE_VALUE_H
#define QO_PAGE_TEXT_ATTRIBUTE_VALUE_H

#include <string>
#include <string_view>

#include <qo_page/base/ascii.h>
#include <qo_page/decode.h>
#include <qo_page/tree/tree.h>

namespace qo {

// The decoded value; it is in `buffer` where it differs from the written one.
inline std::string_view decoded_value(const Tree& tree, const AttributeRecord& attribute,
                                      std::string& buffer) {
  const std::string_view written = tree.written_value(attribute);
  if (written.find('&') == std::string_view::npos) return written;
  buffer = decode(written, DecodeMode::attribute);
  return buffer;
}

inline bool has_attribute(const Tree& tree, NodeIndex node, std::string_view name) {
  return tree.find_attribute(node, name) != nullptr;
}

// Whether there is that attribute, with that value in any case.
inline bool has_value(const Tree& tree, NodeIndex node, std::string_view name,
                      std::string_view value) {
  const AttributeRecord* const attribute = tree.find_attribute(node, name);
  std::string buffer;
  return attribute != nullptr &&
         equals_without_case(decoded_value(tree, *attribute, buffer), value);
}

}  // namespace qo

#endif
