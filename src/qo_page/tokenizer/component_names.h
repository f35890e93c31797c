// Names of components that HTML has, too: <Link>...</Link> is not the void <link>.

#ifndef QO_PAGE_TOKENIZER_COMPONENT_NAMES_H
#define QO_PAGE_TOKENIZER_COMPONENT_NAMES_H

#include <string_view>
#include <unordered_set>

#include <qo_page/base/tags.h>

namespace qo {

// Whether a name of HTML begins with a capital and has small letters, or has no other letter.
bool may_name_component(std::string_view name);

// Whether an element may stand for others, which a browser never sees.
inline bool may_be_component(Tag tag) {
  return tag == Tag::unknown || tag == Tag::slot_;
}

class ComponentNames {
 public:
  // The source must outlive the object.
  explicit ComponentNames(std::string_view source);

  // What HTML knows of a name; nothing, when the source has end tags with just these letters, and
  // it may be that of a component.
  Tag tag_of(std::string_view name) const;

 private:
  std::unordered_set<std::string_view> ended_;
  bool has_capitals_ = false;  // the page has end tags in capitals, which components have not
};

}  // namespace qo

#endif
