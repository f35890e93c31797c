#include "pages/attributes.h"

#include <algorithm>
#include <string>
#include <unordered_set>

#include "io/text.h"

namespace cli {

namespace {

constexpr std::size_t many = 16;  // from which on comparing each with each takes long

bool is_same_name(std::string_view a, std::string_view b) {
  return a.size() == b.size() && lower(a) == lower(b);
}

bool has_name(const std::vector<qo::Attribute>& attributes, std::string_view name) {
  return std::any_of(attributes.begin(), attributes.end(), [name](const qo::Attribute& attribute) {
    return is_same_name(attribute.name(), name);
  });
}

}  // namespace

std::vector<qo::Attribute> first_attributes(qo::Node node) {
  const qo::Attributes all = node.attributes();
  std::vector<qo::Attribute> first;
  std::unordered_set<std::string> names;
  first.reserve(all.size());
  for (const qo::Attribute& attribute : all) {
    const bool is_new = all.size() > many ? names.insert(lower(attribute.name())).second
                                          : !has_name(first, attribute.name());
    if (is_new) first.push_back(attribute);
  }
  return first;
}

}  // namespace cli
