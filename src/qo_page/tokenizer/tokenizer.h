// The tokens of a page: where the HTML standard's tokenizer sees tags, comments and text begin and
// end, with template code opaque.

#ifndef QO_PAGE_TOKENIZER_TOKENIZER_H
#define QO_PAGE_TOKENIZER_TOKENIZER_H

#include <cstddef>
#include <string_view>
#include <vector>

#include <qo_page/base/finder.h>
#include <qo_page/base/tags.h>
#include <qo_page/range.h>
#include <qo_page/template/template_code.h>
#include <qo_page/tokenizer/raw_content.h>

namespace qo {

struct AttributeToken {
  Range name;
  Range value;      // without its quotes
  bool has_value;   // there is a "="
  char quote;       // around the value; 0 when there is none
  std::size_t end;  // after the value and its quote, or after the name
};

// Whose eyes tags are read with.
enum class Reader {
  browser,  // a tag ends at the first ">", and only svg and math know "/>"
  author    // of a component: brackets in a tag hold any character, and "/>" ends an element
};

enum class TokenKind : unsigned char { text, start_tag, end_tag, comment, doctype, cdata, code };

struct Token {
  TokenKind kind;
  Range extent;
  Range name;         // of a tag
  Range content;      // of a comment or section
  bool self_closing;  // a start tag ends in "/>"
  std::vector<AttributeToken> attributes;
  bool may_be_odd;     // a name or value has brackets or ends where another begins
  Range open_bracket;  // as the author reads it, what a browser ends a name or value in; or empty
  std::size_t items_end;  // of a start tag: after its last attribute or piece of code, or its name
  bool is_cut_off;        // the source ends before what ends the token; a tag is text then
};

// The tokens in order are the source: each begins where the one before it ends. A tag that the end
// of the source cuts off is text.
class Tokenizer {
 public:
  Tokenizer(std::string_view source, const Dialect& dialect, Reader reader = Reader::browser)
      : source_(source), code_(source, dialect), reader_(reader) {}

  // Goes to a place between two tokens.
  void begin_at(std::size_t offset) { position_ = offset; }

  // Reads the next token; false at the end of the source.
  bool next(Token& token);

  // After the start tag of such an element.
  void begin_raw_content(const RawElement& element) { raw_ = element; }

  // Whether <![CDATA[ begins a section, or a comment.
  void allow_cdata(bool allowed) { cdata_ = allowed; }

  CodeScanner& code() { return code_; }

 private:
  enum class Markup { none, tag, other };

  bool front_matter(Token& token) const;
  void text(Token& token);
  bool raw_content(Token& token);
  Markup markup(Token& token);
  Markup declaration(Token& token);
  void comment(Token& token);
  void bogus_comment(Token& token, std::size_t content_begin);
  Markup until(Token& token, TokenKind kind, std::size_t content_begin, std::string_view closer);
  Markup question(Token& token);
  Markup percent(Token& token);
  Markup tag(Token& token, TokenKind kind, std::size_t name_begin);

  std::size_t next_markup(std::size_t from);
  bool may_begin_markup(std::size_t at) const;
  char at(std::size_t i) const { return i < source_.size() ? source_[i] : '\0'; }

  std::string_view source_;
  CodeScanner code_;
  Reader reader_;
  Finder comment_end_{"-->"};
  std::size_t position_ = 0;
  RawElement raw_;  // whose content comes next; without a name: none
  bool cdata_ = false;
};

}  // namespace qo

#endif
