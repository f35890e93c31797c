// The characters of a written text, and where each of them was.

#ifndef QO_PAGE_TEXT_DECODED_TEXT_H
#define QO_PAGE_TEXT_DECODED_TEXT_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <qo_page/template/dialect.h>

namespace qo {

// What kind of text it is.
struct WrittenText {
  enum class Kind { text, value, literal };  // literal: without references

  std::string_view text;
  Kind kind;
  char quote;  // around a value; 0: none
  const Dialect& dialect;
};

struct Stretch {
  std::size_t begin, end;
};

class DecodedText {
 public:
  explicit DecodedText(const WrittenText& written);

  const std::string& text() const { return text_; }

  // Where template code is in it, which is as it was written.
  const std::vector<Stretch>& code() const { return code_; }

  // Where an offset of the decoded text is in the written one; nothing within a reference.
  std::optional<std::size_t> written_offset(std::size_t offset) const;

  // Whether an offset of the decoded text is within no reference and no code.
  bool is_uncut(std::size_t offset) const;

 private:
  struct Reference {
    Stretch decoded, written;
  };

  std::string text_;
  std::vector<Stretch> code_;
  std::vector<Reference> references_;
};

}  // namespace qo

#endif
