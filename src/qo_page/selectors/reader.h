// The characters of a selector: names, strings and escapes as CSS has them.

#ifndef QO_PAGE_SELECTORS_READER_H
#define QO_PAGE_SELECTORS_READER_H

#include <cstddef>
#include <string>
#include <string_view>

namespace qo::selectors {

class Reader {
 public:
  explicit Reader(const std::string& text) : text_(text) {}

  std::size_t offset() const { return offset_; }
  bool at_end() const { return offset_ == text_.size(); }

  // The character `ahead` of the next one; 0 after the end.
  char peek(std::size_t ahead = 0) const {
    return offset_ + ahead < text_.size() ? text_[offset_ + ahead] : '\0';
  }
  void skip(std::size_t count = 1) { offset_ += count; }
  void go_to(std::size_t offset) { offset_ = offset; }

  // Takes the text if it is next.
  bool take(std::string_view expected);

  // Takes the text or throws; `what` follows "expected".
  void expect(std::string_view expected, const std::string& what);

  // Skips comments; blanks as well, and tells whether there were any.
  void skip_comments();
  bool skip_blanks();

  bool at_name() const;
  bool at_quote() const { return peek() == '"' || peek() == '\''; }

  // A name, with its escapes undone; `what` follows "expected" where none is next.
  std::string name(const std::string& what);

  // What is between quotes, which are next, with its escapes undone.
  std::string quoted();

  // What is between quotes, which are next, as written. A backslash keeps a quote from being
  // the end.
  std::string quoted_as_written();

  // All up to the ")" that ends an argument, as written or with escapes undone, without blanks
  // around it. Parentheses within come in pairs.
  std::string bare(bool as_written);

  [[noreturn]] void fail(const std::string& message) const { fail(message, offset_); }
  [[noreturn]] void fail(const std::string& message, std::size_t offset) const;

  // At a "|" that is no part of an operator.
  [[noreturn]] void fail_for_namespace() const;

  // What is next, for a message.
  std::string found() const;

 private:
  bool starts_escape(std::size_t ahead) const;
  bool starts_name_character(std::size_t ahead) const;
  void append_escape(std::string& out);
  std::size_t newline_length() const;

  const std::string& text_;
  std::size_t offset_ = 0;
};

}  // namespace qo::selectors

#endif
