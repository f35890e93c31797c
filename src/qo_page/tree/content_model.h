// How the text of a content is read.

#ifndef QO_PAGE_TREE_CONTENT_MODEL_H
#define QO_PAGE_TREE_CONTENT_MODEL_H

#include <qo_page/tree/tree.h>

namespace qo {

enum class ContentModel {
  data,    // with references, and with tags
  rcdata,  // without tags
  rawtext  // without either
};

// In an element of HTML with that name.
inline ContentModel content_model(Tag tag) {
  if (has(tag, tag_flags::raw_text) || tag == Tag::plaintext_) return ContentModel::rawtext;
  return has(tag, tag_flags::rcdata) ? ContentModel::rcdata : ContentModel::data;
}

inline ContentModel content_model(const NodeRecord& node) {
  if (node.kind == NodeKind::comment || node.kind == NodeKind::cdata) return ContentModel::rawtext;
  if (node.is_raw_block) return ContentModel::rawtext;
  const bool is_html = node.kind == NodeKind::element && node.space == Namespace::html;
  return is_html ? content_model(node.tag) : ContentModel::data;
}

}  // namespace qo

#endif
