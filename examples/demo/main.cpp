// Reads a page, shows its tree, queries it, collects its form, edits it and writes it back out.
// usage: demo PAGE, such as signup.html

#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include <json/json.h>
#include <qo_html/qo_html.h>
#include <qo_html/qo_html_default_host.h>

namespace {

bool read_file(const char* path, std::string& text) {
  std::ifstream file(path, std::ios::binary);
  text.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  return file && !text.empty();
}

// One line for a node: text in quotes, elements as their start tag.
std::string label(_qo_html* node) {
  if (node->isComment) return "a comment";
  if (node->isCdata) return "a CDATA section";
  if (!node->isText) return "<" + node->tagName() + node->formatAttribute() + ">";
  std::string text = node->text;
  for (std::size_t end; (end = text.find('\n')) != text.npos;) text.replace(end, 1, "\\n");
  return "\"" + text + "\"";
}

bool is_blank(_qo_html* node) {
  return node->isText && node->text.find_first_not_of(" \n") == std::string::npos;
}

// The node after `node` in document order, found over the links alone; `depth` follows.
_qo_html* next_in_tree(_qo_html* node, int& depth) {
  if (!node->children.empty()) {
    ++depth;
    return node->children[0];
  }
  while (node != nullptr && node->nextSibling == nullptr) {
    --depth;
    node = node->parent;
  }
  return node == nullptr ? nullptr : node->nextSibling;
}

void print_tree(_qo_html* top) {
  int depth = 0;
  for (_qo_html* node = top; node != nullptr; node = next_in_tree(node, depth)) {
    if (!is_blank(node))
      std::cout << std::string(2 * static_cast<std::size_t>(depth), ' ') << label(node) << '\n';
  }
}

void print_matches(_qo_html* document, const char* selector) {
  std::cout << "\n--- " << selector << '\n';
  qo_html_query(document).find(selector).each([](unsigned long i, _qo_html* node) {
    std::cout << i << ": " << node->outerHTML() << '\n';
    return true;
  });
}

// Null when nothing matches.
_qo_html* first(_qo_html* document, const char* selector) {
  return qo_html_query(document).find(selector).get(0);
}

void print_form(_qo_html* document) {
  Json::Value values;
  if (_qo_html* const form = first(document, "form")) form->get_form_values(values);
  std::cout << "\n--- the form\n" << values << '\n';
}

void edit(_qo_html* document) {
  if (_qo_html* const notes = first(document, "#notes")) {
    notes->set_text("Opening hours: 9 to 5.");
  }
  if (_qo_html* const banner = first(document, "p.banner")) banner->add_class("seen");
  _qo_html* const thanks = qo_html_element_new("p");
  thanks->set_html("Thank you, <em>Ada</em>.");
  if (!document->replace_with(first(document, "#signup"), thanks)) delete thanks;
}

}  // namespace

int main(int argc, char** argv) {
  std::string text;
  if (argc != 2 || !read_file(argv[1], text)) {
    std::cerr << (argc == 2 ? "demo: cannot read " + std::string(argv[1]) : "usage: demo PAGE")
              << std::endl;
    return 2;
  }
  _qo_html* document = nullptr;
  if (!parseHtml(document, text, argv[1], false, false)) {
    std::cerr << "demo: " << argv[1] << " does not parse" << std::endl;
    return 2;
  }

  std::cout << "--- the tree, without blank text\n";
  print_tree(document);
  print_matches(document, "label > input[type=checkbox]");
  print_matches(document, ".note a[href]");
  print_form(document);

  edit(document);
  std::cout << "\n--- the page after an edit\n" << document->outerHTML();

  delete document;
  std::cout << "\n--- live nodes: " << qo_object_ref_count("[qo_html]") << std::endl;
}
