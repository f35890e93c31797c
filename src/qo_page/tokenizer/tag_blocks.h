// The blocks of template code that end within a tag.

#ifndef QO_PAGE_TOKENIZER_TAG_BLOCKS_H
#define QO_PAGE_TOKENIZER_TAG_BLOCKS_H

#include <cstddef>
#include <string_view>
#include <unordered_map>

namespace qo {

// Where the last piece of code of a tag is that ends a block of some name.
class TagBlocks {
 public:
  void add(std::string_view code, std::size_t offset);

  // Whether a block that begins with `opener` ends after `offset`.
  bool ends_after(std::string_view opener, std::size_t offset) const;

 private:
  bool has_end(std::string_view name, std::size_t offset) const;

  std::unordered_map<std::string_view, std::size_t> last_ends_;  // by the name of the block
};

}  // namespace qo

#endif
