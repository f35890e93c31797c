// What is between the "<" and the ">" of a tag.

#ifndef QO_PAGE_TOKENIZER_TAG_READER_H
#define QO_PAGE_TOKENIZER_TAG_READER_H

#include <cstddef>
#include <memory>
#include <string_view>

#include <qo_page/template/code_steps.h>
#include <qo_page/tokenizer/tag_blocks.h>
#include <qo_page/tokenizer/tokenizer.h>

namespace qo {

// Reads one tag from its name on.
class TagReader {
 public:
  TagReader(std::string_view source, CodeScanner& code, Token& token,
            Reader reader = Reader::browser)
      : source_(source), code_(code), token_(token), reader_(reader) {}

  // Fills the token in, from the name at `begin` to the end of the tag; false when the end of the
  // source comes first.
  bool read(std::size_t begin);

 private:
  void tag_name();
  void item();
  void attribute();
  bool attribute_name();
  void value(AttributeToken& attribute);
  void quoted_value(AttributeToken& attribute);
  void until_quote(char quote);
  void glued_value(AttributeToken& attribute);
  void unquoted_value(AttributeToken& attribute);
  bool is_block(std::string_view opener, std::size_t end);
  std::unique_ptr<TagBlocks> blocks_from(std::size_t begin);

  void take_character(bool in_name);
  void take_bracket(bool in_name);
  bool is_for_author() const { return reader_ == Reader::author && code_.enabled(); }

  void items();
  std::size_t code_end(CodeScanner::Place place);
  CodeRole role_until(std::size_t end) const { return role_of(code_until(end), code_.dialect()); }
  void skip_until(unsigned characters);
  bool is(unsigned characters) const {
    return code_.dialect().characters.has(source_[position_], characters);
  }
  std::string_view code_until(std::size_t end) const {
    return source_.substr(position_, end - position_);
  }
  bool at_end() const { return position_ >= source_.size(); }
  void skip_blanks();

  std::string_view source_;
  CodeScanner& code_;
  Token& token_;
  Reader reader_;
  std::size_t position_ = 0;
  std::unique_ptr<TagBlocks> blocks_;  // from where they were first asked for
  bool looks_ahead_ = false;           // for the blocks of another reader's tag
};

}  // namespace qo

#endif
