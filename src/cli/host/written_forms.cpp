#include "host/written_forms.h"

#include <algorithm>
#include <string>

#include "io/text.h"

namespace cli {

namespace {

constexpr std::size_t excerpt_length = 30;
constexpr std::size_t lead_length = 12;  // of an excerpt, in front of the difference

std::string start_tag(_qo_html& node) {
  return "<" + node.tag + node.formatAttribute() +
         (node.isVoid && !node.isDeclaration ? "/>" : ">");
}

std::string end_tag(const _qo_html& node) {
  return "</" + node.tag + ">";
}

// What is around the first difference.
std::string excerpt(std::string_view text, std::size_t difference) {
  return quoted(text.substr(difference - std::min(difference, lead_length)), excerpt_length);
}

class WrittenForms {
 public:
  WrittenForms(std::string_view source, std::vector<Difference>& out)
      : source_(source), out_(out) {}

  void add(const PlacedNode& placed, _qo_html& node) {
    const qo::Extent& extent = placed.extent;
    if (node.isText || node.isRoot) return;
    if (node.isComment || node.isCdata) {
      return compare(extent.begin, extent.end, node.outerHTML());
    }
    compare(extent.begin, extent.content_begin,
            start_tag(node) + (placed.is_closed_at_once ? end_tag(node) : std::string()));
    if (extent.content_end < extent.end) compare(extent.content_end, extent.end, end_tag(node));
  }

  // The end tags of what only the end of the page closes; the innermost is the last of the reading.
  void add_end(const HostReading& host) {
    std::string added;
    for (std::size_t i = host.nodes.size(); i-- > 0;) {
      const _qo_html& node = *host.nodes[i];
      const PlacedNode& placed = host.places.nodes[i];
      const bool is_open = !node.isText && !node.isRoot && !node.isVoid && !node.isComment &&
                           !node.isCdata && !placed.is_closed_at_once &&
                           placed.extent.content_end == placed.extent.end;
      if (is_open) added += end_tag(node);
      if (added.size() > excerpt_length) break;
    }
    if (!added.empty()) {
      out_.push_back({source_.size(), "comes back with " + quoted(added, excerpt_length)});
    }
  }

 private:
  void compare(std::size_t begin, std::size_t end, const std::string& form) {
    const std::string_view token = source_.substr(begin, end - begin);
    if (token == form) return;
    const auto first = std::mismatch(token.begin(), token.end(), form.begin(), form.end()).first;
    const std::size_t difference = static_cast<std::size_t>(first - token.begin());
    out_.push_back(
        {begin, excerpt(token, difference) + " comes back as " + excerpt(form, difference)});
  }

  std::string_view source_;
  std::vector<Difference>& out_;
};

}  // namespace

void add_written_forms(const HostReading& host, std::string_view source, bool is_all,
                       std::vector<Difference>& out) {
  WrittenForms forms(source, out);
  for (std::size_t i = 0; i < host.nodes.size(); ++i)
    forms.add(host.places.nodes[i], *host.nodes[i]);
  if (is_all) forms.add_end(host);
}

}  // namespace cli
