// Checks: invariants that are reported to the host whether or not they hold.
//
// A report hands the host three strings by value, most of them too long for the small-string
// buffer, and the parser makes some four reports a node: making the strings anew each time costs
// more than all the rest of parsing. So they are kept, for as long as a Check lives (one parse, or
// one operation), and lent to each call. The host may do with its parameters what it likes, move
// from them included: before each report the strings are compared with what they must be, and
// mended.

#ifndef QO_HTML_CHECKS_H
#define QO_HTML_CHECKS_H

#include <cstring>
#include <string>
#include <string_view>

namespace qo_html_inner {

// Reports one check to the host. The strings are used up: afterwards they hold anything.
void report_check(bool condition, std::string& condition_text, std::string& message,
                  std::string& file, int line);

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
    report_check(condition, condition_, message_, file_, line);
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

}  // namespace qo_html_inner

#endif
