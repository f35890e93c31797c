// Any bytes as text with character references, compared with plain rescanning from a map.

#include <map>

#include "support.h"

namespace {

struct Row {
  const char *name, *value;
};

constexpr Row rows[] = {
#include <qo_html/qo_html_entities_table.inc>
};

const std::map<std::string, std::string>& table() {
  static const auto made = [] {
    std::map<std::string, std::string> map;
    for (const Row& row : rows) map["&" + std::string(row.name)] = row.value;
    return map;
  }();
  return made;
}

std::string decoded(std::string text) {
  std::size_t at = text.find('&');
  while (at != text.npos) {
    const std::size_t end = text.find_first_of("; ", at);
    const bool terminated = end != text.npos && text[end] == ';';
    const auto found = terminated ? table().find(text.substr(at, end - at)) : table().end();
    if (found == table().end()) {
      at = text.find('&', at + 1);
    } else {
      text.replace(at, end + 1 - at, found->second);
      at = text.find('&', at);
    }
  }
  return text;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  std::string in_place = text;
  qo_decode_html_entities(in_place);
  require(in_place == decoded(text), "decoded text");
  return 0;
}
