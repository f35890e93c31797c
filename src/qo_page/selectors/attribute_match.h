// Names, ids, classes and attributes of elements, as CSS compares them.

#ifndef QO_PAGE_SELECTORS_ATTRIBUTE_MATCH_H
#define QO_PAGE_SELECTORS_ATTRIBUTE_MATCH_H

#include <string>
#include <string_view>

#include <qo_page/selectors/syntax.h>
#include <qo_page/tree/node.h>

namespace qo::selectors {

// Null when there is no attribute of that name.
const Attribute* find_attribute(const Node& node, std::string_view name);

// The decoded value, in `buffer` where it is not the one that is written.
std::string_view value_of(const Attribute& attribute, std::string& buffer);

// Whether there is that attribute, with that value in any case.
bool has_value(const Node& node, std::string_view name, std::string_view value);

bool matches(const NameTest& test, const Node& node);
bool matches(const ClassTest& test, const Node& node);
bool matches(const IdTest& test, const Node& node);
bool matches(const AttributeTest& test, const Node& node);

}  // namespace qo::selectors

#endif
