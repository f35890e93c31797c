#include "tree_page.h"

#include <unordered_set>

#include <qo_html/qo_html_walk.h>

#include "json_text.h"
#include "text.h"
#include "viewer.h"

namespace cli {

namespace {

// As viewer.js calls them.
const char* kind_of(const _qo_html& node) {
  if (node.isText) return is_blank(node.text) ? "blank" : "text";
  if (node.isComment) return "comment";
  if (node.isCdata) return "cdata";
  if (node.isDeclaration) return "declaration";
  return node.isVoid ? "void" : "element";
}

// [depth, kind, name or text, [[attribute, value or null]...], the number of matches]
Json::Value row(_qo_html& node, std::size_t depth, unsigned matches) {
  const bool is_text = node.isText || node.isComment || node.isCdata;
  Json::Value attributes(Json::arrayValue);
  for (const Attribute& attribute : node.attributes) {
    Json::Value pair(Json::arrayValue);
    pair.append(json_string(attribute.name));
    pair.append(attribute.hasValue != 0 ? json_string(attribute.value) : Json::Value());
    attributes.append(std::move(pair));
  }
  Json::Value row(Json::arrayValue);
  row.append(Json::Value::UInt64(depth));
  row.append(kind_of(node));
  row.append(json_string(is_text ? node.textContent() : node.tag));
  row.append(std::move(attributes));
  row.append(matches);
  return row;
}

// Nothing of the data can end the element that it stands in.
std::string in_script(const std::string& json) {
  std::string out;
  for (const char c : json) {
    if (c == '<') {
      out += "\\u003c";
    } else {
      out += c;
    }
  }
  return out;
}

using NodeSet = std::unordered_set<_qo_html*>;

// The matches that a row stands for: those of a comment or section may lie in it.
unsigned count_matches(_qo_html* node, const NodeSet& matches) {
  std::size_t count = matches.count(node);
  if (node->isComment || node->isCdata) {
    for (_qo_html* text : node->children) count += matches.count(text);
  }
  return static_cast<unsigned>(count);
}

// One row a node, in document order, so that the depth of the page does not matter.
std::string rows(_qo_html* document, const std::vector<_qo_html*>& matches) {
  const NodeSet among(matches.begin(), matches.end());
  JsonWriter writer("");
  std::string out;
  TreeWalk walk(document);
  walk.next();
  while (_qo_html* node = walk.next()) {
    if (node->isComment || node->isCdata) walk.skip_children();
    out += out.empty() ? "\n" : ",\n";
    out += in_script(writer.write(row(*node, walk.depth() - 1, count_matches(node, among))));
  }
  return out;
}

std::string text_in_script(std::string_view text) {
  return in_script(JsonWriter("").write(json_string(text)));
}

}  // namespace

std::string tree_page(const Input& input, _qo_html* document, const std::string& selector,
                      const std::vector<_qo_html*>& matches) {
  return std::string() +
         "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
         "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
         "script-src '" +
         viewer_script_hash + "'; style-src '" + viewer_style_hash +
         "'; base-uri 'none'; form-action 'none'\">\n"
         "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
         "<title>Tree</title>\n<style>" +
         viewer_style +
         "</style>\n</head>\n<body>\n<noscript>This page needs scripts.</noscript>\n" +
         "<script type=\"application/json\" id=\"data\">\n{\"name\":" + text_in_script(input.name) +
         ",\n\"selector\":" + text_in_script(selector) +
         ",\n\"source\":" + text_in_script(input.text) + ",\n\"nodes\":[" +
         rows(document, matches) + "]}\n</script>\n<script>" + viewer_script +
         "</script>\n</body>\n</html>\n";
}

}  // namespace cli
