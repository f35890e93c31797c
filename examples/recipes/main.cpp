// Small things that most hosts need: text as markup, markup as text, a walk, a copy.

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <qo_html/qo_html.h>
#include <qo_html/qo_html_walk.h>
#include <qo_page/decode.h>

namespace {

// Text as markup, for content and for values alike.
std::string escaped(const std::string& text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '<':
        out += "&lt;";
        break;
      case '&':
        out += "&amp;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

// Every element's name, two blanks in front of it for each level.
void print_outline(_qo_html* top, std::ostream& out) {
  for (TreeWalk walk(top); _qo_html* node = walk.next();) {
    if (node->isComment || node->isCdata) {
      walk.skip_children();
    } else if (!node->isText && !node->isRoot) {
      out << std::string(2 * walk.depth(), ' ') << node->tag << "\n";
    }
  }
}

std::unique_ptr<_qo_html> copy_without_children(const _qo_html& node) {
  auto copy = std::make_unique<_qo_html>();
  copy->text = node.text;
  copy->tag = node.tag;
  copy->isComment = node.isComment;
  copy->isText = node.isText;
  copy->isRoot = node.isRoot;
  copy->isCdata = node.isCdata;
  copy->isVoid = node.isVoid;
  copy->closed = node.closed;
  copy->isDeclaration = node.isDeclaration;
  copy->source = node.source;
  copy->attributes = node.attributes;
  copy->classes = node.classes;
  return copy;
}

// A copy of a node and of all that is below it, outside any tree.
std::unique_ptr<_qo_html> copy_of(_qo_html* top) {
  TreeWalk walk(top);
  std::unique_ptr<_qo_html> copy = copy_without_children(*walk.next());
  std::vector<_qo_html*> path = {copy.get()};
  while (const _qo_html* node = walk.next()) {
    path.resize(walk.depth());
    std::unique_ptr<_qo_html> child = copy_without_children(*node);
    path.back()->add_child(child.get());
    path.push_back(child.release());
  }
  return copy;
}

}  // namespace

int main() {
  _qo_html* parsed = nullptr;
  if (!parseHtml(parsed, "<ul><li title=''>?<br></li></ul>", "", false, false)) return 1;
  const std::unique_ptr<_qo_html> document(parsed);
  _qo_html* const list = document->get_child_at(0);
  _qo_html* const item = list->get_child_at(0);

  std::unique_ptr<_qo_html> second = copy_of(item);
  item->set_text(escaped("salt & <pepper>"));
  second->set_attribute("title", escaped("6\" long"));
  list->add_child(second.release());

  std::cout << document->outerHTML() << "\n";
  std::cout << qo::decode(item->textContent()) << "\n";
  print_outline(document.get(), std::cout);
}
