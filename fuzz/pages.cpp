// Bytes as an edit of a page, as the tool makes it: the first tells the operation, the second which
// elements, the rest is the page. The edited round trip must be what the library's own operations
// make of the page, and a page that is not touched must stay as it is.

#include <cli/host.h>
#include <cli/page_editor.h>

#include "support.h"

namespace {

using Nodes = std::vector<_qo_html*>;
using Kind = cli::EditOperation::Kind;

struct Operation {
  cli::EditOperation asked;
  void (*reference)(_qo_html* node);
};

void insert(_qo_html* node, bool before) {
  _qo_html* const text = qo_html_text_node_new("t");
  require(before ? node->insert_before(text, node) : node->insert_after(text, node), "insertion");
}

const Operation operations[] = {
    {{Kind::delete_attribute, "none", ""}, [](_qo_html* node) { node->remove_attribute("none"); }},
    {{Kind::add_class, "", "k"}, [](_qo_html* node) { node->add_class("k"); }},
    {{Kind::set_text, "", "t"}, [](_qo_html* node) { node->set_text("t"); }},
    {{Kind::insert_before, "", "t"}, [](_qo_html* node) { insert(node, true); }},
    {{Kind::insert_after, "", "t"}, [](_qo_html* node) { insert(node, false); }},
    {{Kind::remove, "", ""},
     [](_qo_html* node) {
       node->detach();
       delete node;
     }},
};

// Every so many of the elements.
Nodes some_elements(_qo_html* document, unsigned step, bool with_void) {
  qo_html_query all(document);
  all.find("*");
  Nodes chosen;
  for (std::size_t i = 0; i < all.nodes.size(); i += step) {
    _qo_html* const node = all.nodes[i];
    if (!node->isRoot && (with_void || !node->isVoid)) chosen.push_back(node);
  }
  return chosen;
}

}  // namespace

// Tells where a page is refused, which is of no interest here.
std::size_t cli::tags_met() {
  return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const Quiet quiet;
  const Operation& operation = operations[data[0] % std::size(operations)];
  const bool drop_comments = data[0] >= 128;
  const unsigned step = 1 + data[1] % 4;
  const bool with_void = operation.asked.kind != Kind::set_text;
  const cli::Input page{"page", std::string(reinterpret_cast<const char*>(data) + 2, size - 2)};
  const Owned document = parse(page.text, drop_comments);
  if (document == nullptr) return 0;

  const cli::EditedPage same = edit_page(page, document.get(), {}, cli::Edit(), drop_comments);
  require(drop_comments || same.kept.text() == page.text, "an untouched page stays");
  require(same.rewritten.text() == document->outerHTML(), "the plain round trip");

  cli::EditOptions options;
  options.operations = {operation.asked};
  const cli::EditedPage edited =
      edit_page(page, document.get(), some_elements(document.get(), step, with_void),
                make_edit(options), drop_comments);
  unified_diff(page.text, edited.kept, page.name);

  const Owned reference = parse(page.text, drop_comments);
  const Nodes elements = some_elements(reference.get(), step, with_void);
  for (auto node = elements.rbegin(); node != elements.rend(); ++node) operation.reference(*node);
  require(edited.rewritten.text() == reference->outerHTML(), "the edited round trip");
  return 0;
}
