// The services that the host process supplies.
//
// libqo_html.so declares these three functions and defines none of them: they are resolved from the
// process that loads it, as are the jsoncpp functions that form values need. A host without wishes
// of its own links qo_html::default_host, which defines all three.

#ifndef QO_HTML_HOST_H
#define QO_HTML_HOST_H

#include <string>

#include <qo_html/qo_html_export.h>

// Live-object counters. The library calls the first once at the end of the construction of every
// node and the second once in the destruction of every node, on the thread that does it, with `tag`
// "[qo_html]". An exception from the first makes the construction fail; one from the second ends
// the process.
QO_HTML_API void qo_object_ref_increment(std::string tag);
QO_HTML_API void qo_object_ref_decrement(std::string tag);

// Assertion reporter. Called at every check of the library, whether or not it holds, with the value
// of the condition, its text, a message, the source file (without extension) and line of the check.
// When it returns, the library goes on, also after a failed check.
QO_HTML_API void qo_assertion_faild(bool condition, std::string condition_text, std::string message,
                                    std::string file, int line);

#endif
