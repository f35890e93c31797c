// What :lang() asks for.

#ifndef QO_PAGE_SELECTORS_LANGUAGES_H
#define QO_PAGE_SELECTORS_LANGUAGES_H

#include <string>
#include <string_view>

#include <qo_page/selectors/syntax.h>
#include <qo_page/tree/tree.h>

namespace qo::selectors {

// The attribute that tells the element's own language; null when it has none.
const AttributeRecord* language_attribute(const Tree& tree, NodeIndex node);

// The language that <meta http-equiv="content-language"> gives the page; empty when none does.
std::string page_language(const Tree& tree);

// Whether the language is within one of the ranges ("en" has "en-GB", "*-CH" has "de-CH").
bool matches(const LanguageTest& test, std::string_view language);

}  // namespace qo::selectors

#endif
