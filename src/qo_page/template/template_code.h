// Where template code ends.

#ifndef QO_PAGE_TEMPLATE_TEMPLATE_CODE_H
#define QO_PAGE_TEMPLATE_TEMPLATE_CODE_H

#include <array>
#include <cstddef>
#include <memory>
#include <string_view>

#include <qo_page/base/finder.h>
#include <qo_page/template/dialect.h>

namespace qo {

// What template code may begin with.
constexpr std::string_view code_openers[] = {"<?", "<%", "{{", "{%", "{#"};

// Finds the ends of template code. Calls should come in the order of the source: what was found is
// remembered, so that all of them take time in proportion to the source.
class CodeScanner {
 public:
  // Where the code is: a fragment is a text of its own, that goes into a page.
  enum class Place { text, fragment, tag, unquoted, quoted, raw_text };

  // All must outlive the object.
  CodeScanner(std::string_view source, const Dialect& dialect);

  // The offset after the code that begins at `at`; 0 when none does: an opener without a fitting
  // closer is plain characters.
  std::size_t end_of(std::size_t at, Place place);

  // The next offset from `at` on where code may begin that has no "<" in front; npos when there is
  // none.
  std::size_t next_start(std::size_t at);

  // Whether code may begin with the character.
  bool may_begin(char c) const { return dialect_.characters.may_begin_code(c); }

  bool enabled() const { return dialect_.has_code(); }
  const Dialect& dialect() const { return dialect_; }

  // One of the same source that may be further on.
  CodeScanner& ahead();

 private:
  enum Wanted {
    php_end,
    percent_end,
    percent_comment_end,
    brace_end,
    brace_comment_end,
    percent_brace_end,
    hash_brace_end,
    question_begin,
    brace_begin,
    percent_brace_begin,
    hash_brace_begin,
    wanted_count
  };

  std::size_t find(Wanted wanted, std::size_t from);
  std::size_t end_of_mark(std::size_t at, Place place);
  std::size_t end_of_words(std::size_t at, Place place);
  std::size_t end_of_known(std::size_t at, Place place);
  std::size_t close_after(std::size_t begin, std::string_view closer, const CodeSyntax& syntax);
  std::size_t end_of_question(std::size_t at, Place place);
  std::size_t end_of_php(std::size_t at, std::size_t close, Place place);
  std::size_t end_of_percent(std::size_t at, Place place);
  bool is_quoted_opener(std::size_t at, Place place) const;
  std::size_t end_of_braces(std::size_t at);
  std::size_t end_of_statement(std::size_t at);
  std::size_t end_of_comment(std::size_t at);
  std::size_t string_end(std::size_t at) const;
  std::size_t close_outside_strings(std::size_t begin, std::string_view closer) const;
  std::size_t real_close(std::size_t begin, std::size_t close, std::string_view closer) const;
  bool is_closed(std::size_t at, Wanted opener, std::size_t opener_length, std::size_t close);

  std::string_view source_;
  const Dialect& dialect_;
  std::array<Finder, wanted_count> finders_;
  std::size_t php_begin_ = static_cast<std::size_t>(-1);  // of the code read last
  std::size_t php_end_ = 0;                               // its "?>"
  std::size_t start_ = 0;                                 // what next_start() found last
  bool start_is_set_ = false;
  std::size_t lost_ = 0;  // how much was read for nothing, after openers without a closer
  std::unique_ptr<CodeScanner> ahead_;
};

// That of code_places.
unsigned place_bit(CodeScanner::Place place);

}  // namespace qo

#endif
