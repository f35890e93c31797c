#include <qo_page/tokenizer/component_names.h>

#include <algorithm>

#include <qo_page/base/words.h>

namespace qo {

namespace {

bool is_small(char c) {
  return is_letter(c) && lower(c) == c;
}

}  // namespace

bool may_name_component(std::string_view name) {
  const bool has_capital = !name.empty() && lower(name[0]) != name[0];
  if (!has_capital || find_tag(name) == Tag::unknown) return false;
  return name.size() == 1 || std::any_of(name.begin(), name.end(), is_small);
}

ComponentNames::ComponentNames(std::string_view source) {
  for (std::size_t at = source.find("</"); at != source.npos; at = source.find("</", at + 2)) {
    const std::string_view name = first_word(source.substr(at + 2, 16));
    if (may_name_component(name)) ended_.insert(name);
    has_capitals_ =
        has_capitals_ || (name.size() > 1 && std::none_of(name.begin(), name.end(), is_small));
  }
}

Tag ComponentNames::tag_of(std::string_view name) const {
  const bool is_component = !has_capitals_ && ended_.count(name) != 0;
  return is_component ? Tag::unknown : find_tag(name);
}

}  // namespace qo
