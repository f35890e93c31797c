// Bytes as edits of a tree: three bytes each, the operation, the node and what to do it with.

#include <vector>

#include "support.h"

namespace {

const char* const pieces[] = {"",    "text",  "<p>a</p>", "<b><i>x</i>", "<!--c-->", "<x-y>",
                              "a b", "class", "id",       "<br>",        "div",      "&lt;",
                              "p",   "br",    "<",        "<script>"};

class Editor {
 public:
  Editor() : document_(parse("<div class='a b'>x<p>y</p><br></div>", false)) {}

  void apply(unsigned operation, unsigned place, const std::string& piece) {
    const Quiet quiet;
    _qo_html* const node = pick(place);
    switch (operation % 13) {
      case 0:
        loose_.emplace_back(qo_html_element_new(piece));
        break;
      case 1:
        loose_.emplace_back(qo_html_text_node_new(piece));
        break;
      case 2:
        put([node](_qo_html* loose) { return node->add_child(loose); });
        break;
      case 3:
        put([&](_qo_html* loose) { return document_->insert_before(loose, node); });
        break;
      case 4:
        put([&](_qo_html* loose) { return node->insert_after(loose, node); });
        break;
      case 5:
        put([&](_qo_html* loose) { return document_->replace_with(node, loose); });
        break;
      case 6:
        if (node == document_.get()) break;
        node->detach();
        loose_.emplace_back(node);
        break;
      case 7:
        require(node->set_text(piece) == (node->isText || !node->isVoid), "result of set_text");
        break;
      case 8:
        node->set_html(piece);
        break;
      case 9:
        node->add_class(piece);
        require(node->has_class(piece), "add_class");
        break;
      case 10:
        node->remove_class(piece);
        break;
      case 11:
        node->addAttribute(piece, piece);
        require(node->get_attribute(piece) == piece, "addAttribute");
        break;
      case 12:
        node->remove_attribute(piece);
        require(!node->has_attribute(piece), "remove_attribute");
        break;
    }
    check();
  }

 private:
  // A node of the document, text nodes included, the document itself first.
  _qo_html* pick(unsigned place) {
    std::vector<_qo_html*> nodes;
    document_->getElementsByTagName("*", nodes, nullptr);
    document_->getElementsByTagName("textNode", nodes, nullptr);
    return nodes[place % nodes.size()];
  }

  template <class Put>
  void put(Put put_in) {
    if (loose_.empty()) return;
    _qo_html* const node = loose_.back().get();
    if (!put_in(node)) return;
    static_cast<void>(loose_.back().release());
    loose_.pop_back();
  }

  void check() {
    long count = check_tree(document_.get());
    for (const Owned& node : loose_) count += check_tree(node.get());
    require(count == live_nodes(), "count of nodes");
  }

  Owned document_;
  std::vector<Owned> loose_;
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  {
    Editor editor;
    for (std::size_t i = 0; i + 2 < size && i < 600; i += 3) {
      editor.apply(data[i], data[i + 1], pieces[data[i + 2] % 16]);
    }
  }
  require(live_nodes() == 0, "nodes left behind");
  return 0;
}
