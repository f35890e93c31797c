// Checks: invariants that are reported to the host whether or not they hold.

#ifndef QO_HTML_CHECKS_H
#define QO_HTML_CHECKS_H

#include <string>
#include <utility>

#include <qo_html/qo_html_host.h>

// The arguments of one report, made ahead of it, so that making them can fail before anything has
// changed.
struct Check {
  std::string condition_text;
  std::string message;
  std::string file;

  void report(bool condition, int line = __builtin_LINE()) && {
    qo_assertion_faild(condition, std::move(condition_text), std::move(message), std::move(file),
                       line);
  }
};

#endif
