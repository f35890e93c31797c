#include <qo_page/page.h>

#include <qo_page/base/ascii.h>
#include <qo_page/base/byte_encoding.h>
#include <qo_page/selector.h>
#include <qo_page/text/node_text.h>
#include <qo_page/tree/node.h>
#include <qo_page/tree/tree_builder.h>

namespace qo {

struct Page::State {
  std::string source;
  PageOptions options;
  std::unique_ptr<DocumentNode> document;
};

Page::Page(std::string source, PageOptions options) : state_(std::make_unique<State>()) {
  const std::string encoding(encoding_beyond_ascii(source));
  if (!encoding.empty()) {
    throw Error(
        "the text is " + encoding + "; iconv -f " + encoding + " -t UTF-8 makes it readable", 0);
  }
  state_->source = std::move(source);
  state_->options = options;
  state_->document = TreeBuilder(state_->source, options.templates).build();
}

Page::~Page() = default;
Page::Page(Page&&) noexcept = default;
Page& Page::operator=(Page&&) noexcept = default;

const std::string& Page::source() const {
  return state_->source;
}
const PageOptions& Page::options() const {
  return state_->options;
}
_qo_html* Page::document() const {
  return state_->document.get();
}

std::vector<_qo_html*> Page::select(const Selector& selector, std::size_t most) const {
  return selector.select(document(), most);
}

NodeKind Page::kind(const _qo_html* node) const {
  return as_node(node)->kind;
}
Extent Page::extent(const _qo_html* node) const {
  return as_node(node)->extent;
}

std::string_view Page::html(const _qo_html* node) const {
  const Extent& extent = as_node(node)->extent;
  return std::string_view(source()).substr(extent.begin, extent.end - extent.begin);
}

std::string_view Page::inner_html(const _qo_html* node) const {
  const Extent& extent = as_node(node)->extent;
  return std::string_view(source()).substr(extent.content_begin,
                                           extent.content_end - extent.content_begin);
}

std::string Page::text(const _qo_html* node, TextForm form) const {
  const NodeKind what = kind(node);
  if (what == NodeKind::code || what == NodeKind::doctype) return std::string(html(node));
  return text_of(*as_node(node), form);
}

std::optional<std::string> Page::attribute(const _qo_html* node, std::string_view name,
                                           TextForm form) const {
  for (const Attribute& attribute : node->attributes) {
    if (!equals_without_case(attribute.name, name)) continue;
    return value_of(attribute, form);
  }
  return std::nullopt;
}

}  // namespace qo
