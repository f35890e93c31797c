#include <qo_page/page.h>

#include <algorithm>

#include <qo_page/base/byte_encoding.h>
#include <qo_page/selector.h>
#include <qo_page/tree/node_access.h>
#include <qo_page/tree/tree_builder.h>

namespace qo {

namespace {

constexpr std::size_t most_bytes = std::size_t{1} << 32;
}  // namespace

Page::Page(std::string source, PageOptions options) {
  const std::string encoding(encoding_beyond_ascii(source));
  if (!encoding.empty()) {
    throw Error(
        "the text is " + encoding + "; iconv -f " + encoding + " -t UTF-8 makes it readable", 0);
  }
  if (source.size() >= most_bytes) throw Error("the text has 4 GiB or more", most_bytes);
  const Dialect* const dialect = find_dialect(options.dialect);
  if (dialect == nullptr) throw Error("there is no dialect \"" + options.dialect + '"');
  auto tree = std::make_unique<Tree>();
  tree->dialect = dialect;
  tree->source = std::move(source);
  tree->options = std::move(options);
  TreeBuilder(*tree).build();
  tree_ = std::move(tree);
}

Page::Page(std::unique_ptr<Tree> tree) : tree_(std::move(tree)) {}
std::string_view dialect_of(std::string_view path, std::string_view source) {
  return dialect_of_file(path, source).name;
}

std::vector<DialectInfo> dialects() {
  std::vector<DialectInfo> rows;
  for (const Dialect& row : all_dialects()) rows.push_back({row.name, row.endings, row.has_case});
  return rows;
}

Page::~Page() = default;
Page::Page(Page&&) noexcept = default;
Page& Page::operator=(Page&&) noexcept = default;

const std::string& Page::source() const& {
  return PageAccess::tree(*this).source;
}
const PageOptions& Page::options() const& {
  return PageAccess::tree(*this).options;
}
Node Page::document() const& {
  return NodeAccess::node(PageAccess::tree(*this), document_index);
}

std::vector<Node> Page::select(const Selector& selector, std::size_t most) const& {
  return selector.select(document(), most);
}
std::vector<Node> Page::select(std::string_view selector, std::size_t most) const& {
  return select(Selector(selector), most);
}

Node Page::first(const Selector& selector) const& {
  const std::vector<Node> found = select(selector, 1);
  return found.empty() ? Node() : found[0];
}
Node Page::first(std::string_view selector) const& {
  return first(Selector(selector));
}

Node Page::closest(Node node, const Selector& selector) const& {
  NodeAccess::index_in(PageAccess::tree(*this), node);
  const std::vector<Node> found = select(selector);
  while (node && !std::binary_search(found.begin(), found.end(), node)) node = node.parent();
  return node;
}
Node Page::closest(Node node, std::string_view selector) const& {
  return closest(node, Selector(selector));
}

Node Page::node_at(std::size_t index) const& {
  if (index >= node_count()) throw Error("there is no node of that number");
  return NodeAccess::node(PageAccess::tree(*this), static_cast<NodeIndex>(index));
}
std::size_t Page::node_count() const {
  return PageAccess::tree(*this).size();
}

Position Page::position_of(std::size_t offset) const {
  const std::string_view source = PageAccess::tree(*this).source;
  if (offset > source.size()) throw Error("the offset is beyond the source", offset);
  const std::string_view before = source.substr(0, offset);
  const auto breaks = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
  return {breaks + 1, offset - (before.rfind('\n') + 1) + 1};  // npos + 1 is 0
}

}  // namespace qo
