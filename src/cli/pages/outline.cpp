#include "pages/outline.h"

#include <algorithm>
#include <string>

#include "io/text.h"
#include "pages/levels.h"

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

// A start tag or doctype, as its author wrote it.
void write_tag(qo::Node node, std::size_t level, Outline& outline) {
  const qo::Extent extent = node.extent();
  std::string_view rest = node.html().substr(0, extent.content_begin - extent.begin);
  const std::string_view name = node.name();
  rest.remove_prefix(1 + name.size());
  const std::size_t end = rest.empty() || rest.back() != '>' ? rest.size() : rest.size() - 1;
  outline.tag(level, name, rest.substr(0, end), rest.substr(end));
}

}  // namespace

void Outline::text(std::size_t level, std::string_view text) {
  if (!shows_blanks_ && is_blank(text)) return;
  out_.write(indentation(level));
  out_.write(quoted(text, text_length));
  out_.write("\n");
}

void Outline::section(std::size_t level, const char* kind, std::string_view content) {
  out_.write(indentation(level));
  out_.paint("2", kind);
  out_.write(quoted(content, text_length));
  out_.write("\n");
}

void Outline::tag(std::size_t level, std::string_view name, std::string_view attributes,
                  std::string_view end) {
  out_.write(indentation(level));
  out_.paint("34", "<" + printable(name));
  out_.paint("33", printable(attributes));
  out_.paint("34", end);
  out_.write("\n");
}

void write_outline(const qo::Page& page, Outline& outline) {
  Levels levels;
  for (const qo::Node node : page.document().descendants()) {
    const std::size_t level = levels.of_next(node);
    switch (node.kind()) {
      case qo::NodeKind::text:
        outline.text(level, node.html());
        break;
      case qo::NodeKind::comment:
        outline.section(level, "comment ", node.inner_html());
        break;
      case qo::NodeKind::cdata:
        outline.section(level, "cdata ", node.inner_html());
        break;
      case qo::NodeKind::code:
        outline.section(level, "code ", node.html());
        break;
      default:
        write_tag(node, level, outline);
    }
  }
}

}  // namespace cli
