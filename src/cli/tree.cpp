#include <algorithm>

#include <qo_html/qo_html_walk.h>

#include "commands.h"
#include "page.h"
#include "selectors.h"
#include "session.h"
#include "text.h"
#include "tree_page.h"

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
  Outline(const TreeOptions& options, Output& out) : options_(options), out_(out) {}

  void write(_qo_html* document) {
    TreeWalk walk(document);
    walk.next();
    while (_qo_html* node = walk.next()) {
      const bool is_section = node->isComment || node->isCdata;
      if (is_section) walk.skip_children();
      if (node->isText && !options_.blanks && is_blank(node->text)) continue;
      out_.write(indentation(walk.depth() - 1));
      if (is_section) {
        section(*node);
      } else if (node->isText) {
        out_.write(quoted(node->text, text_length));
      } else {
        element(*node);
      }
      out_.write("\n");
    }
  }

 private:
  void section(_qo_html& node) {
    out_.paint("2", node.isComment ? "comment " : "cdata ");
    out_.write(quoted(node.textContent(), text_length));
  }

  void element(_qo_html& node) {
    out_.paint("34", "<" + printable(node.tag));
    out_.paint("33", printable(node.formatAttribute()));
    out_.paint("34", ">");
  }

  const TreeOptions& options_;
  Output& out_;
};

}  // namespace

int run(const TreeOptions& options) {
  give_hints(options.selector, options.strict);
  Session session(options);
  return session.run({options.file}, [&](Input& input) {
    const Document document = parse_page(input, options.drop_comments);
    if (options.html) {
      const std::vector<_qo_html*> matches = find_matches(document.get(), options.selector);
      session.out().write(tree_page(input, document.get(), options.selector, matches));
    } else {
      Outline(options, session.out()).write(document.get());
    }
    return Found::something;
  });
}

}  // namespace cli
