// Checks: invariants that are reported to the host whether or not they hold.
//
// A report hands the host three strings by value, most of them too long for the small-string
// buffer, and the parser makes some four reports a node: making the strings anew each time costs
// more than all the rest of parsing. So they are kept, for as long as a Check lives (one parse, or
// one operation), and lent to each call. Under the Itanium C++ ABI a parameter of class type that
// is not trivially copyable is passed as the address of an object that the caller has made and will
// destroy; a function that takes it by value and one that takes it by reference are therefore
// called alike. The host may do with its parameter what it likes, move from it included: before
// each report the strings are compared with what they must be, and mended.
//
// Where that ABI is not known to be in use, or with QO_HTML_LEND_ARGUMENTS=0, the strings are
// passed by value.

#ifndef QO_HTML_CHECKS_H
#define QO_HTML_CHECKS_H

#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include <qo_html/qo_html_host.h>

#ifndef QO_HTML_LEND_ARGUMENTS
#if defined(__GXX_ABI_VERSION) && defined(__ELF__) && defined(_GLIBCXX_USE_CXX11_ABI)
#define QO_HTML_LEND_ARGUMENTS _GLIBCXX_USE_CXX11_ABI
#else
#define QO_HTML_LEND_ARGUMENTS 0
#endif
#endif

#if QO_HTML_LEND_ARGUMENTS
// qo_assertion_faild under its own symbol, with its parameters as the ABI passes them.
QO_HTML_API void
qo_assertion_faild_lent(bool condition, std::string& condition_text, std::string& message, std::string& file, int line) __asm__(
    "_Z18qo_assertion_faildbNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEES4_S4_i");
#endif

struct CheckTexts {
  std::string_view condition;
  std::string_view message;  // a report may append what it is about
  std::string_view file;
};

// One check and the arguments of its reports. Making these is the one thing that can fail for want
// of memory: prepare() does it ahead of a report that must not fail.
template <const CheckTexts& texts>
class Check {
 public:
  void prepare(std::string_view subject = {}) {
    mend(condition_, texts.condition);
    if (subject.empty()) {
      mend(message_, texts.message);
    } else {
      mend(message_, texts.message, subject);
    }
    mend(file_, texts.file);
  }

  void report(bool condition, std::string_view subject = {}, int line = __builtin_LINE()) {
    prepare(subject);
#if QO_HTML_LEND_ARGUMENTS
    qo_assertion_faild_lent(condition, condition_, message_, file_, line);
#else
    qo_assertion_faild(condition, std::move(condition_), std::move(message_), std::move(file_),
                       line);
#endif
  }

 private:
  // The texts are known to the compiler here: once inlined, comparing takes a few instructions.
  [[gnu::always_inline]] static bool begins_with(const std::string& kept, std::string_view text) {
    return kept.size() >= text.size() && std::memcmp(kept.data(), text.data(), text.size()) == 0;
  }

  [[gnu::always_inline]] static void mend(std::string& kept, std::string_view text) {
    if (kept.size() != text.size() || !begins_with(kept, text)) kept.assign(text);
  }

  // Reports in a row are mostly about different subjects: the text stays, the subject is written
  // anew.
  [[gnu::always_inline]] static void mend(std::string& kept, std::string_view text,
                                          std::string_view subject) {
    if (!begins_with(kept, text)) kept.assign(text);
    kept.resize(text.size() + subject.size());
    subject.copy(&kept[text.size()], subject.size());
  }

  std::string condition_;
  std::string message_;
  std::string file_;
};

#endif
