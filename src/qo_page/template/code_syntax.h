// Strings, comments and brackets of the languages that template code is written in.

#ifndef QO_PAGE_TEMPLATE_CODE_SYNTAX_H
#define QO_PAGE_TEMPLATE_CODE_SYNTAX_H

#include <cstddef>
#include <string_view>

namespace qo {

// What may hold a closer that closes nothing. Empty texts stand for what a language has not.
struct CodeSyntax {
  std::string_view quotes;         // each begins a string, which the same character ends
  bool has_escapes = false;        // in a string, a backslash takes the next character along
  bool has_template_text = false;  // `text ${code} text`
  bool has_regexes = false;        // /text/
  bool has_brackets = false;       // (), [] and {} belong together
  std::string_view line_comment;   // begins a comment that ends with its line
  std::string_view comment_begin;  // begins one that ends with the next
  std::string_view comment_end;
};

// No strings, no comments: the first closer ends the code.
constexpr CodeSyntax no_syntax{};

constexpr CodeSyntax javascript{"\"'", true, true, true, true, "//", "/*", "*/"};

// Strings with escapes, and brackets that nest.
constexpr CodeSyntax expressions{"\"'", true, false, false, true, "", "", ""};

// Strings alone.
constexpr CodeSyntax escaped_strings{"\"'", true, false, false, false, "", "", ""};

// Where the code ends that goes on at `begin`: after its closer. An empty closer is that of the
// bracket in front of `begin`, which `syntax` must know. npos when the source ends first, or
// `limit` characters were read.
std::size_t code_end(std::string_view source, std::size_t begin, std::string_view closer,
                     const CodeSyntax& syntax, std::size_t limit);

}  // namespace qo

#endif
