// A page as a subcommand sees it: read by its own tags or, with --host, by the library.

#ifndef QO_CLI_PAGE_VIEW_H
#define QO_CLI_PAGE_VIEW_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <qo_page/page.h>

#include "args/options.h"
#include "io/files.h"

namespace cli {

class PageView {
 public:
  virtual ~PageView() = default;

  // What the selector finds, in document order; where that saves time, not more than `most`.
  virtual std::vector<_qo_html*> matches(std::size_t most = SIZE_MAX) const = 0;

  // Of a node of the page. The bytes are as written or, for the library, as it writes them.
  virtual std::string html(_qo_html* node) const = 0;
  virtual std::string inner_html(_qo_html* node) const = 0;
  virtual std::string text(_qo_html* node) const = 0;
  virtual std::optional<std::string> attribute(_qo_html* node, const std::string& name) const = 0;
  virtual std::string value(const Attribute& attribute) const = 0;

  // Null for the library, which keeps no places and no source.
  virtual const qo::Page* page() const = 0;
};

// Takes the text of the input along.
using PageReader = std::function<std::unique_ptr<PageView>(Input&)>;

// A reader with a selector, which is read at once; it may be called by several threads. Throws what
// is wrong with the selector; the reader throws Failure for a page that cannot be read.
PageReader make_reader(const Options& options, const std::string& selector, qo::TextForm form);

// The page itself. Throws Failure.
qo::Page read_page(Input& input, const Options& options);

}  // namespace cli

#endif
