#include <qo_page/tokenizer/component_names.h>

#include <algorithm>

#include <qo_page/base/words.h>

namespace qo {

bool may_name_component(std::string_view name) {
  const auto is_small = [](char c) { return is_letter(c) && lower(c) == c; };
  return !name.empty() && lower(name[0]) != name[0] &&
         std::any_of(name.begin(), name.end(), is_small) && find_tag(name) != Tag::unknown;
}

ComponentNames::ComponentNames(std::string_view source) {
  for (std::size_t at = source.find("</"); at != source.npos; at = source.find("</", at + 2)) {
    const std::string_view name = first_word(source.substr(at + 2, 16));
    if (may_name_component(name)) ended_.insert(name);
  }
}

Tag ComponentNames::tag_of(std::string_view name) const {
  return ended_.count(name) == 0 ? find_tag(name) : Tag::unknown;
}

}  // namespace qo
