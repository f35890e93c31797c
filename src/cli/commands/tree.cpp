#include <algorithm>
#include <optional>
#include <string_view>

#include <qo_html/qo_html_walk.h>

#include <qo_page/selector.h>

#include "commands/commands.h"
#include "host/host_page.h"
#include "host/selectors.h"
#include "io/text.h"
#include "page_view.h"
#include "session.h"
#include "viewer/tree_page.h"

namespace cli {

namespace {

constexpr std::size_t text_length = 72;  // of a text that is shown
constexpr std::size_t most_indented = 60;

// Indentation stops growing at some level, so that the outline of a deep page is no larger than the
// page; the level is then written out.
std::string indentation(std::size_t level) {
  std::string blanks(2 * std::min(level, most_indented), ' ');
  if (level > most_indented) blanks += std::to_string(level) + ": ";
  return blanks;
}

class Outline {
 public:
  // `page`: what the nodes belong to; null when they are the library's.
  Outline(const Options& options, Output& out, const qo::Page* page)
      : options_(options), out_(out), page_(page) {}

  void write(_qo_html* document) {
    TreeWalk walk(document);
    walk.next();
    while (_qo_html* node = walk.next()) {
      if (node->isComment || node->isCdata) walk.skip_children();
      if (node->isText && !options_.blanks && is_blank(node->text)) continue;
      out_.write(indentation(walk.depth() - 1));
      write_node(*node);
      out_.write("\n");
    }
  }

 private:
  void write_node(_qo_html& node) {
    if (node.isText) return out_.write(quoted(node.text, text_length));
    if (node.isComment) return section("comment ", node.textContent());
    if (node.isCdata) return section("cdata ", node.textContent());
    if (page_ == nullptr) return tag(node.tag, node.formatAttribute(), ">");
    if (page_->kind(&node) == qo::NodeKind::code) return section("code ", page_->html(&node));
    written_tag(node);
  }

  void section(const char* kind, std::string_view content) {
    out_.paint("2", kind);
    out_.write(quoted(content, text_length));
  }

  // The start tag, as its author wrote it.
  void written_tag(const _qo_html& node) {
    const qo::Extent extent = page_->extent(&node);
    const std::size_t size = extent.content_begin - extent.begin;
    std::string_view rest = std::string_view(page_->source()).substr(extent.begin, size);
    const std::string_view name = rest.substr(1, node.tag.size());
    rest.remove_prefix(1 + name.size());
    const std::size_t end = rest.empty() || rest.back() != '>' ? rest.size() : rest.size() - 1;
    tag(name, rest.substr(0, end), rest.substr(end));
  }

  void tag(std::string_view name, std::string_view attributes, std::string_view end) {
    out_.paint("34", "<" + printable(name));
    out_.paint("33", printable(attributes));
    out_.paint("34", end);
  }

  const Options& options_;
  Output& out_;
  const qo::Page* page_;
};

void write_outline(const Options& options, Input& input, Output& out) {
  if (options.host) {
    const Document document = parse_page(input, options.drop_comments);
    Outline(options, out, nullptr).write(document.get());
  } else {
    const qo::Page page = read_page(input, options);
    Outline(options, out, &page).write(page.document());
  }
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
      out.write(tree_page(input, options, selector));
    } else {
      write_outline(options, input, out);
    }
    return Found::something;
  });
}

}  // namespace cli
