#include "host/reading.h"

#include <algorithm>
#include <utility>

#include <qo_html/qo_html_walk.h>

#include "host/host_tags.h"
#include "io/text.h"
#include "pages/attributes.h"

namespace cli {

namespace {

PlacedKind declaration_kind(std::string_view name) {
  return name.substr(0, 1) == "!" || name == "?xml" ? PlacedKind::declaration : PlacedKind::code;
}

// --- The library's reading ---

PlacedKind kind_of(const _qo_html& node) {
  if (node.isRoot) return PlacedKind::document;
  if (node.isText) return PlacedKind::text;
  if (node.isComment) return PlacedKind::comment;
  if (node.isCdata) return PlacedKind::section;
  return node.isDeclaration ? declaration_kind(node.tag) : PlacedKind::element;
}

// Goes over the page's text and its tree side by side.
class HostPlaces {
 public:
  HostPlaces(_qo_html* document, std::string_view source) : walk_(document), source_(source) {}

  HostReading run() {
    for (;;) {
      switch (walk_.step()) {
        case TreeWalk::Event::enter:
          enter(*walk_.node());
          break;
        case TreeWalk::Event::leave:
          end(path_.back());
          path_.pop_back();
          break;
        case TreeWalk::Event::end:
          return std::move(reading_);
      }
    }
  }

 private:
  void enter(_qo_html& node) {
    const std::size_t begin = position_;
    bool slash = false;
    if (node.isText) {
      move_to(position_ + node.text.size());
    } else if (!node.isRoot) {
      const HostTag tag = scan_host_tag(source_, position_, node.tag, node.isVoid);
      slash = tag.slash;
      move_to(tag.end);
    }
    const std::size_t i = reading_.nodes.size();
    add(node, {begin, position_, position_, position_});
    reading_.places.nodes[i].is_closed_at_once = slash && !node.isVoid && node.children.empty();
    if (node.isComment || node.isCdata) {
      skip_content(node);
      end(i);
    } else if (node.children.empty()) {
      end(i);
    } else {
      path_.push_back(i);
    }
  }

  void add(_qo_html& node, const qo::Extent& extent) {
    std::vector<PlacedAttribute>& attributes = reading_.places.attributes;
    const std::size_t first = attributes.size();
    for (const Attribute& attribute : node.attributes) {
      attributes.push_back({attribute.name, attribute.value});
    }
    reading_.places.nodes.push_back({kind_of(node), node.isText && is_blank(node.text), false,
                                     node.tag, path_.empty() ? 0 : path_.back(), extent, first,
                                     attributes.size()});
    reading_.nodes.push_back(&node);
  }

  void skip_content(const _qo_html& section) {
    for (const _qo_html* text : section.children) move_to(position_ + text->text.size());
    walk_.skip_children();
  }

  void end(std::size_t i) {
    const _qo_html& node = *reading_.nodes[i];
    PlacedNode& placed = reading_.places.nodes[i];
    placed.extent.content_end = position_;
    if (node.isComment || node.isCdata) {
      move_to(position_ + 3);
      placed.extent.content_begin = placed.extent.content_end = position_;
    } else if (node.isRoot) {
      position_ = source_.size();
    } else if (!node.isText && !node.isVoid && !placed.is_closed_at_once) {
      move_to(end_tag(node.tag));
    }
    placed.extent.end = position_;
  }

  std::size_t end_tag(std::string_view name) const {
    return position_ == source_.size() ? position_
                                       : scan_host_tag(source_, position_, name, false).end;
  }

  void move_to(std::size_t position) { position_ = std::min(position, source_.size()); }

  TreeWalk walk_;
  std::string_view source_;
  std::size_t position_ = 0;
  std::vector<std::size_t> path_;  // the nodes that have children to come
  HostReading reading_;
};

// --- The page's own ---

PlacedKind kind_of(qo::Node node) {
  switch (node.kind()) {
    case qo::NodeKind::document:
      return PlacedKind::document;
    case qo::NodeKind::text:
      return PlacedKind::text;
    case qo::NodeKind::comment:
      return PlacedKind::comment;
    case qo::NodeKind::cdata:
      return PlacedKind::section;
    case qo::NodeKind::element:
      return PlacedKind::element;
    default:
      return declaration_kind(node.name());
  }
}

}  // namespace

HostReading host_reading(_qo_html* document, std::string_view source) {
  return HostPlaces(document, source).run();
}

Reading page_reading(const qo::Page& page) {
  Reading reading;
  reading.nodes.reserve(page.node_count());
  for (std::size_t i = 0; i < page.node_count(); ++i) {
    const qo::Node node = page.node_at(i);
    const PlacedKind kind = kind_of(node);
    const std::size_t first = reading.attributes.size();
    for (const qo::Attribute& attribute : first_attributes(node)) {
      reading.attributes.push_back({attribute.name(), attribute.value_range().in(page.source())});
    }
    reading.nodes.push_back({kind, kind == PlacedKind::text && is_blank(node.html()), false,
                             node.name(), i == 0 ? 0 : node.parent().index(), node.extent(), first,
                             reading.attributes.size()});
  }
  return reading;
}

}  // namespace cli
