// Template code among the attributes of a tag, which may write attributes of its own.

#ifndef QO_PAGE_EDITS_ATTRIBUTE_CODE_H
#define QO_PAGE_EDITS_ATTRIBUTE_CODE_H

#include <cstddef>
#include <string_view>
#include <vector>

#include <qo_page/template/code_blocks.h>
#include <qo_page/tokenizer/tokenizer.h>

namespace qo {

class AttributeCode {
 public:
  // `blocks`: of the tag alone. The source must outlive the object.
  AttributeCode(std::string_view source, const Token& tag, const CodeBlocks& blocks,
                CodeScanner& code);

  // The first piece in front of an offset that may write an attribute of that name; empty when
  // there is none. Any output may be a class; for other names, the code has to name them.
  std::string_view writer_of(std::string_view name, std::size_t before) const;

 private:
  void add(Range piece, const Token& tag, const CodeBlocks& blocks);

  std::string_view source_;
  std::vector<Range> writers_;
};

}  // namespace qo

#endif
