// Any bytes as markup: the first one chooses whether comments are dropped, the rest is parsed.

#include <json/json.h>

#include <vector>

#include "support.h"

static void check_flags(_qo_html* document, bool drop_comments) {
  std::vector<_qo_html*> nodes;
  document->getElementsByTagName("*", nodes, nullptr);
  document->getElementsByTagName("textNode", nodes, nullptr);
  for (const _qo_html* node : nodes) {
    require(node->closed, "closed");
    require(!drop_comments || !node->isComment, "dropped comments");
    require(!node->isDeclaration || node->isVoid, "isDeclaration");
    require(!node->isVoid || node->children.empty(), "content of void elements");
  }
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const bool drop_comments = (data[0] & 1) != 0;
  const std::string html(reinterpret_cast<const char*>(data) + 1, size - 1);
  if (const Owned document = parse(html, drop_comments)) {
    require(check_tree(document.get()) == live_nodes(), "count of nodes");
    check_flags(document.get(), drop_comments);
    Json::Value values;
    try {
      document->get_form_values(values);
    } catch (const Json::LogicError&) {  // one name used in two ways
    }
    const Quiet quiet;
    const Owned other(qo_html_element_new("p"));
    require(other->set_html(html), "set_html of what parses");
    check_tree(other.get());
  }
  require(live_nodes() == 0, "nodes left behind");
  return 0;
}
