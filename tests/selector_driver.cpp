// What scripts/compare_selectors.mjs compares with: reads selectors, one in each line, and prints a page's tree and
// what each selector finds in it, one JSON text in each line. usage: selector_driver PAGE <SELECTORS
//
// The first line lists the nodes in document order: {"kind", "parent"}, elements with "tag", "space" and "attrs",
// others with "text"; "parent" is a position in the list. Each line after it lists such positions, or is {"error",
// "offset"}.

#include <fstream>
#include <iostream>
#include <iterator>
#include <unordered_map>

#include <json/json.h>

#include <qo_html/qo_html_walk.h>

#include <qo_page/base/ascii.h>
#include <qo_page/selector.h>
#include <qo_page/tree/node.h>

namespace {

using Positions = std::unordered_map<const _qo_html*, int>;

Json::Value described(const qo::Page& page, const qo::Node& node) {
  static const char* const kinds[] = {"document", "element", "text", "comment", "doctype", "cdata", "code"};
  static const char* const spaces[] = {"html", "svg", "math"};
  Json::Value out;
  out["kind"] = kinds[static_cast<int>(node.kind)];
  if (node.kind != qo::NodeKind::element) {
    if (node.kind != qo::NodeKind::document) out["text"] = page.text(&node);
    return out;
  }
  out["tag"] = qo::lower(node.tag);
  out["space"] = spaces[static_cast<int>(node.space)];
  out["attrs"] = Json::objectValue;
  for (const Attribute& attribute : node.attributes) {
    const std::string name = qo::lower(attribute.name);
    out["attrs"][name] = *page.attribute(&node, name);
  }
  return out;
}

// The texts of comments and CDATA sections go with these.
Json::Value tree(const qo::Page& page, Positions& positions) {
  Json::Value out(Json::arrayValue);
  TreeWalk walk(page.document());
  while (const _qo_html* node = walk.next()) {
    Json::Value described_node = described(page, *qo::as_node(node));
    if (node->parent != nullptr) described_node["parent"] = positions.at(node->parent);
    positions[node] = static_cast<int>(out.size());
    out.append(described_node);
    if (node->isComment || node->isCdata) walk.skip_children();
  }
  return out;
}

Json::Value found(const qo::Page& page, const std::string& selector, const Positions& positions) {
  Json::Value out(Json::arrayValue);
  try {
    for (const _qo_html* node : page.select(qo::Selector(selector))) out.append(positions.at(node));
  } catch (const qo::SelectorError& error) {
    out = Json::objectValue;
    out["error"] = error.what();
    out["offset"] = static_cast<Json::UInt64>(error.offset());
  }
  return out;
}

}  // namespace

int main(int, char** argv) {
  std::ifstream file(argv[1], std::ios::binary);
  const qo::Page page(std::string(std::istreambuf_iterator<char>(file), {}));
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  Positions positions;
  std::cout << Json::writeString(writer, tree(page, positions)) << '\n';
  for (std::string selector; std::getline(std::cin, selector);) {
    std::cout << Json::writeString(writer, found(page, selector, positions)) << '\n';
  }
}
