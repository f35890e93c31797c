// What :lang() and :dir() ask for.

#ifndef QO_PAGE_SELECTORS_LANGUAGES_H
#define QO_PAGE_SELECTORS_LANGUAGES_H

#include <string>

#include <qo_page/base/pattern.h>
#include <qo_page/selectors/syntax.h>
#include <qo_page/tree/node.h>

namespace qo::selectors {

// The attribute that tells the element's own language; null when it has none.
const Attribute* language_attribute(const Node& node);

// The language that <meta http-equiv="content-language"> gives the page; empty when none does.
std::string page_language(const Node& document);

// Whether the language is within one of the ranges ("en" has "en-GB", "*-CH" has "de-CH").
bool matches(const LanguageTest& test, const std::string& language);

// Whether the element has a direction of its own: one that is written, or one that its text tells.
bool has_direction(const Node& node);

// Whether that direction is from right to left. Time grows with the text of the element up to the
// first letter that tells; elements within that have a direction of their own are passed over.
bool is_rtl(const Node& node);

}  // namespace qo::selectors

#endif
