// Any bytes as selectors, one find() for each line, compared with a plain evaluation of the chain.

#include <qo_html/qo_html_selector.h>

#include <algorithm>
#include <sstream>
#include <vector>

#include "support.h"

namespace {

using Nodes = std::vector<_qo_html*>;

const char page[] =
    "<div class='a b' id='i'><p class='a'>x<b n='v'>y</b></p><a b='' n>z</a><div><p id>w</p></div>"
    "<!--c--><input name='n' n='n=v'/></div><p n='v' class='b'><svg:r></svg:r></p>";

bool matches(const htmlSelector& step, _qo_html* node, bool searching) {
  std::string name, value;
  switch (step.type) {
    case SEL_CLASS:
      return node->has_class(step.token);
    case SEL_ID:
      return (!searching || node->has_attribute("id")) && node->id() == step.token;
    case SEL_ATTR:
      return split_attribute_selector(step.token, name, value)
                 ? node->has_attribute(name) && node->get_attribute(name) == value
                 : node->has_attribute(name);
    default:
      return node->tagName() == step.token || (step.token == "*" && !(searching && node->isText));
  }
}

void search(const htmlSelector& step, _qo_html* node, const _qo_html* child_of, Nodes& out) {
  if (matches(step, node, true) && (child_of == nullptr || node->parent == child_of)) {
    out.push_back(node);
  }
  for (_qo_html* child : node->children) search(step, child, child_of, out);
}

void find(_qo_html* context, const std::string& selector, Nodes& nodes) {
  bool descend = false, child_only = false;
  for (const auto& step : qo_html_inner::parse_selector(selector)) {
    if (step->type == SEL_PSEUDO) continue;
    if (step->type == SEL_CHILD || step->type == SEL_DESCENDANT) {
      descend = true;
      child_only = child_only || step->type == SEL_CHILD;
      continue;
    }
    Nodes next;
    if (nodes.empty()) {
      search(*step, context, child_only ? context : nullptr, next);
    } else {
      for (_qo_html* node : nodes) {
        if (descend) {
          search(*step, node, child_only ? node : nullptr, next);
        } else if (matches(*step, node, false)) {
          next.push_back(node);
        }
      }
    }
    nodes = next;
    descend = child_only = false;
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  {
    const Owned document = parse(page, false);
    qo_html_query query(document.get());
    Nodes expected;
    std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
    // Nested matches multiply with every combinator: the list is kept short.
    for (std::string line; expected.size() < 1000 && std::getline(lines, line);) {
      line.resize(std::min<std::size_t>(line.size(), 16));
      find(document.get(), line, expected);
      require(query.find(line).nodes == expected, "result of find");
    }
  }
  require(live_nodes() == 0, "nodes left behind");
  return 0;
}
