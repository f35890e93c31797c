#include "viewer/tree_page.h"

#include <unordered_set>
#include <utility>
#include <vector>

#include <qo_html/qo_html_walk.h>

#include "host/host_page.h"
#include "host/selectors.h"
#include "io/json_text.h"
#include "io/text.h"
#include "page_view.h"
#include "viewer.h"

namespace cli {

namespace {

using Nodes = std::vector<_qo_html*>;

// --- Rows ---

// As viewer.js calls them. `page`: what the node belongs to; null when it is the library's.
const char* kind_of(const _qo_html& node, const qo::Page* page) {
  if (node.isText) return is_blank(node.text) ? "blank" : "text";
  if (node.isComment) return "comment";
  if (node.isCdata) return "cdata";
  if (page != nullptr && page->kind(&node) == qo::NodeKind::code) return "code";
  if (page != nullptr && page->kind(&node) == qo::NodeKind::doctype) return "doctype";
  if (node.isDeclaration) return "declaration";
  return page == nullptr && node.isVoid ? "void" : "element";
}

std::string content_of(_qo_html& node, const qo::Page* page) {
  if (node.isText || node.isComment || node.isCdata) return node.textContent();
  return page != nullptr && node.isDeclaration ? std::string(page->html(&node)) : node.tag;
}

// [depth, kind, name or text, [[attribute, value or null]...], the number of matches]
Json::Value row(_qo_html& node, const qo::Page* page, std::size_t depth, unsigned matches) {
  Json::Value attributes(Json::arrayValue);
  for (const Attribute& attribute : node.attributes) {
    Json::Value pair(Json::arrayValue);
    pair.append(json_string(attribute.name));
    pair.append(attribute.hasValue != 0 ? json_string(attribute.value) : Json::Value());
    attributes.append(std::move(pair));
  }
  Json::Value row(Json::arrayValue);
  row.append(Json::Value::UInt64(depth));
  row.append(kind_of(node, page));
  row.append(json_string(content_of(node, page)));
  row.append(std::move(attributes));
  row.append(matches);
  return row;
}

// Nothing of the data can end the element that it is in.
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

std::string text_in_script(std::string_view text) {
  return in_script(JsonWriter("").write(json_string(text)));
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
std::string rows(_qo_html* document, const qo::Page* page, const Nodes& matches) {
  const NodeSet among(matches.begin(), matches.end());
  JsonWriter writer("");
  std::string out;
  TreeWalk walk(document);
  walk.next();
  while (_qo_html* node = walk.next()) {
    if (node->isComment || node->isCdata) walk.skip_children();
    out += out.empty() ? "\n" : ",\n";
    out += in_script(writer.write(row(*node, page, walk.depth() - 1, count_matches(node, among))));
  }
  return "[" + out + "]";
}

// --- Readings ---

std::string page_rows(const qo::Page& page, const std::optional<qo::Selector>& selector) {
  Nodes matches;
  if (selector) matches = page.select(*selector);
  return rows(page.document(), &page, matches);
}

// The library's tree, or why there is none.
std::string host_rows(const std::string& source, const Options& options) {
  const Document document = try_to_parse(source, options.drop_comments);
  if (document == nullptr) {
    const Refusal refusal = find_refusal(source);
    return text_in_script(place_of(source, refusal.offset) + ": " + refusal.reason);
  }
  Nodes matches;
  if (options.host) matches = find_matches(document.get(), options.selector);
  return rows(document.get(), nullptr, matches);
}

}  // namespace

std::string tree_page(Input& input, const Options& options,
                      const std::optional<qo::Selector>& selector) {
  const qo::Page page = read_page(input, options);
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
         ",\n\"selector\":" + text_in_script(options.selector) + ",\n\"selected\":\"" +
         (options.host ? "host" : "page") + "\",\n\"source\":" + text_in_script(page.source()) +
         ",\n\"page\":" + page_rows(page, selector) +
         ",\n\"host\":" + host_rows(page.source(), options) + "}\n</script>\n<script>" +
         viewer_script + "</script>\n</body>\n</html>\n";
}

}  // namespace cli
