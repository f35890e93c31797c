#include <optional>
#include <string>

#include <qo_page/selector.h>

#include "commands/commands.h"
#include "host/host_tree.h"
#include "host/selectors.h"
#include "pages/outline.h"
#include "pages/read_page.h"
#include "pages/tree_rows.h"
#include "session.h"
#include "viewer/tree_page.h"

namespace cli {

namespace {

void print_outline(const Options& options, Input& input, Output& out) {
  Outline outline(options.blanks, out);
  if (options.host) {
    write_host_outline(input, options, outline);
  } else {
    write_outline(read_page(input, options), outline);
  }
}

// `selector`: the one for the page's own tree.
void print_page(const Options& options, Input& input, const std::optional<qo::Selector>& selector,
                Output& out) {
  const qo::Page page = read_page(input, options);
  out.write(shown({input.name, options.selector, options.host, page.source(),
                   tree_rows(page, selector), host_tree_rows(page.source(), options)}));
}

}  // namespace

int run_tree(const Options& options) {
  std::optional<qo::Selector> selector;
  if (options.host) {
    give_hints(options.selector, options.strict);
  } else if (!options.selector.empty()) {
    selector.emplace(options.selector);
  }
  Session session(options);
  return session.run([&](Input& input, Output& out) {
    if (options.tree_page) {
      print_page(options, input, selector, out);
    } else {
      print_outline(options, input, out);
    }
    return Found::something;
  });
}

}  // namespace cli
