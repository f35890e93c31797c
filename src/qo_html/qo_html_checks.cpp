#include <qo_html/qo_html_checks.h>

// Under the Itanium C++ ABI a parameter of class type that is not trivially copyable is passed as
// the address of an object that the caller has made and will destroy: a function that takes it by
// value and one that takes it by reference are called alike. So the host's reporter is declared
// here with references, and the caller's strings are lent to it. Nothing else in this file may
// declare it as the host does, and the file stays out of link-time optimisation, which would see
// two types of one function.
//
// Where that ABI is not known to be in use, or with QO_HTML_LEND_ARGUMENTS=0, the strings are
// passed by value.

#ifndef QO_HTML_LEND_ARGUMENTS
#if defined(__GXX_ABI_VERSION) && defined(__ELF__) && defined(_GLIBCXX_USE_CXX11_ABI)
#define QO_HTML_LEND_ARGUMENTS _GLIBCXX_USE_CXX11_ABI
#else
#define QO_HTML_LEND_ARGUMENTS 0
#endif
#endif

#if QO_HTML_LEND_ARGUMENTS

#include <qo_html/qo_html_export.h>

QO_HTML_API void
host_reporter(bool condition, std::string& condition_text, std::string& message, std::string& file, int line) __asm__(
    "_Z18qo_assertion_faildbNSt7__cxx1112basic_stringIcSt11char_traits"
    "IcESaIcEEES4_S4_i");

void qo_html_inner::report_check(bool condition, std::string& condition_text, std::string& message,
                                 std::string& file, int line) {
  host_reporter(condition, condition_text, message, file, line);
}

#else

#include <utility>

#include <qo_html/qo_html_host.h>

void qo_html_inner::report_check(bool condition, std::string& condition_text, std::string& message,
                                 std::string& file, int line) {
  qo_assertion_faild(condition, std::move(condition_text), std::move(message), std::move(file),
                     line);
}

#endif
