// What scripts/compare_selectors.mjs compares with: reads selectors, one in each line, and prints a page's tree and
// what each selector finds in it, one JSON text in each line. usage: selector_driver PAGE <SELECTORS
//
// The first line lists the nodes in document order: {"kind", "parent"}, elements with "tag", "space" and "attrs",
// others with "text"; "parent" is a position in the list. Each line after it lists such positions, or is {"error",
// "offset"}.

#include <fstream>
#include <iostream>
#include <iterator>

#include <json/json.h>

#include <qo_page/base/ascii.h>
#include <qo_page/selector.h>
#include <qo_page/tree/node_access.h>

namespace {

Json::Value described(qo::Node node) {
  static const char* const kinds[] = {"document", "element", "text", "comment", "doctype", "cdata", "code"};
  static const char* const spaces[] = {"html", "svg", "math"};
  Json::Value out;
  out["kind"] = kinds[static_cast<int>(node.kind())];
  if (!node.is_element()) {
    if (node.kind() != qo::NodeKind::document) out["text"] = node.text();
    return out;
  }
  out["tag"] = qo::lower(node.name());
  out["space"] = spaces[static_cast<int>(qo::NodeAccess::record(node).space)];
  out["attrs"] = Json::objectValue;
  for (const qo::Attribute attribute : node.attributes()) {
    const std::string name = qo::lower(attribute.name());
    out["attrs"][name] = *node.attribute(name);
  }
  return out;
}

Json::Value tree(const qo::Page& page) {
  Json::Value out(Json::arrayValue);
  for (std::size_t i = 0; i < page.node_count(); ++i) {
    const qo::Node node = page.node_at(i);
    Json::Value described_node = described(node);
    if (i != 0) described_node["parent"] = static_cast<Json::UInt64>(node.parent().index());
    out.append(described_node);
  }
  return out;
}

Json::Value found(const qo::Page& page, const std::string& selector) {
  Json::Value out(Json::arrayValue);
  try {
    for (const qo::Node node : page.select(selector)) out.append(static_cast<Json::UInt64>(node.index()));
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
  std::cout << Json::writeString(writer, tree(page)) << '\n';
  for (std::string selector; std::getline(std::cin, selector);) {
    std::cout << Json::writeString(writer, found(page, selector)) << '\n';
  }
}
