// Names, ids, classes and attributes of elements, as CSS compares them.

#ifndef QO_PAGE_SELECTORS_ATTRIBUTE_MATCH_H
#define QO_PAGE_SELECTORS_ATTRIBUTE_MATCH_H

#include <qo_page/selectors/syntax.h>
#include <qo_page/tree/tree.h>

namespace qo::selectors {

bool matches(const NameTest& test, const Tree& tree, NodeIndex node);
bool matches(const ClassTest& test, const Tree& tree, NodeIndex node);
bool matches(const IdTest& test, const Tree& tree, NodeIndex node);
bool matches(const AttributeTest& test, const Tree& tree, NodeIndex node);

}  // namespace qo::selectors

#endif
