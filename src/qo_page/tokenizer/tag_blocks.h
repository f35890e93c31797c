// The blocks of template code that end within a tag.

#ifndef QO_PAGE_TOKENIZER_TAG_BLOCKS_H
#define QO_PAGE_TOKENIZER_TAG_BLOCKS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

#include <qo_page/template/template_code.h>

namespace qo {

class TagBlocks {
 public:
  // Reads from `begin`, which is within a tag but in no value, to the end of the tag.
  TagBlocks(std::string_view source, std::size_t begin, CodeScanner& code);

  // Whether a block that begins with `opener` ends after `offset`.
  bool ends_after(std::string_view opener, std::size_t offset) const;

 private:
  void add(std::string_view code, std::size_t offset);

  std::unordered_map<std::string, std::size_t> last_ends_;  // by what ends a block
};

}  // namespace qo

#endif
