#include "host/host_tree.h"

#include <string_view>
#include <unordered_set>
#include <vector>

#include <qo_html/qo_html_walk.h>

#include "host/host_page.h"
#include "host/selectors.h"
#include "io/text.h"
#include "pages/tree_rows.h"

namespace cli {

namespace {

using NodeSet = std::unordered_set<_qo_html*>;

// The nodes below a document, but for the texts that comments and sections hold: a node shows these
// itself.
class ShownNodes {
 public:
  explicit ShownNodes(_qo_html* document) : walk_(document) { walk_.next(); }

  // Null when there is none left.
  _qo_html* next() {
    _qo_html* const node = walk_.next();
    if (node != nullptr && (node->isComment || node->isCdata)) walk_.skip_children();
    return node;
  }

  // Of the last one; 0 for a child of the document.
  std::size_t level() const { return walk_.depth() - 1; }

 private:
  TreeWalk walk_;
};

std::string_view kind_of(const _qo_html& node) {
  if (node.isText) return text_kind(is_blank(node.text));
  if (node.isComment) return "comment";
  if (node.isCdata) return "cdata";
  if (node.isDeclaration) return "declaration";
  return node.isVoid ? "void" : "element";
}

std::string content_of(_qo_html& node) {
  return node.isText || node.isComment || node.isCdata ? node.textContent() : node.tag;
}

// The matches that a row stands for: those of a comment or section may lie in it.
std::size_t count_matches(_qo_html* node, const NodeSet& matches) {
  std::size_t count = matches.count(node);
  if (node->isComment || node->isCdata) {
    for (_qo_html* text : node->children) count += matches.count(text);
  }
  return count;
}

std::string rows_of(_qo_html* document, const std::vector<_qo_html*>& matches) {
  const NodeSet among(matches.begin(), matches.end());
  TreeRows rows;
  ShownNodes nodes(document);
  while (_qo_html* node = nodes.next()) {
    rows.begin_row(nodes.level(), kind_of(*node), content_of(*node));
    for (const Attribute& attribute : node->attributes) {
      const bool has_value = attribute.hasValue != 0;
      rows.add_attribute(attribute.name, has_value
                                             ? std::optional<std::string_view>(attribute.value)
                                             : std::nullopt);
    }
    rows.end_row(count_matches(node, among));
  }
  return rows.take();
}

}  // namespace

void write_host_outline(const Input& input, const Options& options, Outline& outline) {
  const Document document = parse_page(input, options.drop_comments);
  ShownNodes nodes(document.get());
  while (_qo_html* node = nodes.next()) {
    if (node->isText) {
      outline.text(nodes.level(), node->text);
    } else if (node->isComment) {
      outline.section(nodes.level(), "comment ", node->textContent());
    } else if (node->isCdata) {
      outline.section(nodes.level(), "cdata ", node->textContent());
    } else {
      outline.tag(nodes.level(), node->tag, node->formatAttribute(), ">");
    }
  }
  require_memory();
}

std::string host_tree_rows(const std::string& source, const Options& options) {
  const Document document = try_to_parse(source, options.drop_comments);
  if (document == nullptr) {
    const Refusal refusal = find_refusal(source);
    return string_in_script(place_of(source, refusal.offset) + ": " + refusal.reason);
  }
  std::vector<_qo_html*> matches;
  if (options.host) matches = find_matches(document.get(), options.selector);
  std::string rows = rows_of(document.get(), matches);
  require_memory();
  return rows;
}

}  // namespace cli
