#include "support.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include <qo_html/qo_html_host.h>

static long live = 0;

void qo_object_ref_increment(std::string tag) {
  require(tag == "[qo_html]", "tag of the counters");
  ++live;
}

void qo_object_ref_decrement(std::string) {
  --live;
}

// Takes its arguments apart, as any host may.
void qo_assertion_faild(bool, std::string text, std::string message, std::string file, int line) {
  require(!text.empty() && !message.empty() && line > 0, "arguments of a check");
  require(file.compare(0, 19, "src/qo_html/qo_html") == 0, "file of a check");
  const std::string taken = std::move(text);
  message.assign("scribbled over");
  file[0] = '!';
}

void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "violated: %s\n", what);
  std::abort();
}

long live_nodes() {
  return live;
}

namespace {

void write_attributes(const _qo_html* node, std::string& out) {
  for (const Attribute& attribute : node->attributes) {
    out += " " + attribute.name;
    if (attribute.hasValue != 0) out += "=\"" + attribute.value + "\"";
  }
}

void write_children(const _qo_html* node, std::string& out);

void write(const _qo_html* node, std::string& out) {
  if (node->isRoot) return write_children(node, out);
  if (node->isText) {
    out += node->text;
    return;
  }
  out += node->isComment && !node->isVoid && !node->isCdata ? "<!--" : "<" + node->tag;
  if (node->isVoid || (!node->isCdata && !node->isComment)) write_attributes(node, out);
  if (node->isVoid) {
    out += node->isDeclaration ? ">" : "/>";
    return;
  }
  if (!node->isCdata && !node->isComment) out += ">";
  write_children(node, out);
  out += node->isCdata ? "]]>" : node->isComment ? "-->" : "</" + node->tag + ">";
}

void write_children(const _qo_html* node, std::string& out) {
  for (const _qo_html* child : node->children) write(child, out);
}

void write_text(const _qo_html* node, std::string& out) {
  if (node->isText) {
    out += node->text;
    return;
  }
  for (const _qo_html* child : node->children) write_text(child, out);
}

long check_links(const _qo_html* top) {
  long count = 1;
  const _qo_html* previous = nullptr;
  for (const _qo_html* child : top->children) {
    require(child->parent == top, "parent");
    require(child->prevSibling == previous, "prevSibling");
    require(previous == nullptr || previous->nextSibling == child, "nextSibling");
    count += check_links(child);
    previous = child;
  }
  require(previous == nullptr || previous->nextSibling == nullptr, "nextSibling of the last child");
  return count;
}

}  // namespace

long check_tree(_qo_html* top) {
  std::string markup, inner, text;
  write(top, markup);
  write_children(top, inner);
  write_text(top, text);
  require(top->outerHTML() == markup, "outerHTML");
  require(top->innerHTML() == (top->isText ? text : inner), "innerHTML");
  require(top->textContent() == text, "textContent");
  return check_links(top);
}

Owned parse(const std::string& html, bool drop_comments) {
  const Quiet quiet;
  _qo_html* document = nullptr;
  const bool parsed = parseHtml(document, html, "", drop_comments, false);
  require(parsed == (document != nullptr), "result of parseHtml");
  return Owned(document);
}
