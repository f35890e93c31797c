// Selectors as the tool uses them.

#ifndef QO_CLI_HOST_SELECTORS_H
#define QO_CLI_HOST_SELECTORS_H

#include <string>
#include <vector>

#include <qo_html/qo_html.h>

namespace cli {

// The nodes that the selector finds below `document`, each once and in document order. Unlike in
// the library, a step that finds nothing ends the search: the next one does not begin at the
// document again. Takes time in proportion to the page for each step, however deep the page is.
std::vector<_qo_html*> find_matches(_qo_html* document, const std::string& selector);

// Tells the user what in the selector means something in CSS, but is read as plain characters or
// ignored here; `strict` makes a Failure of the first such thing.
void give_hints(const std::string& selector, bool strict);

}  // namespace cli

#endif
