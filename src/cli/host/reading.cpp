#include "host/reading.h"

#include <algorithm>
#include <utility>

#include <qo_html/qo_html_walk.h>

#include "host/host_tags.h"

namespace cli {

namespace {

// Lists nodes as a walk enters and leaves them.
class ReadingList {
 public:
  PlacedNode& add(_qo_html& node, const qo::Extent& extent) {
    const std::size_t parent = path_.empty() ? 0 : path_.back();
    reading_.push_back({&node, parent, extent, false});
    if (!node.children.empty()) path_.push_back(reading_.size() - 1);
    return reading_.back();
  }

  // The node of which all children were added.
  PlacedNode& leave() {
    PlacedNode& left = reading_[path_.back()];
    path_.pop_back();
    return left;
  }

  Reading take() { return std::move(reading_); }

 private:
  Reading reading_;
  std::vector<std::size_t> path_;
};

// Goes over the page's text and its tree side by side.
class HostPlaces {
 public:
  HostPlaces(_qo_html* document, std::string_view source) : walk_(document), source_(source) {}

  Reading run() {
    for (;;) {
      switch (walk_.step()) {
        case TreeWalk::Event::enter:
          enter(*walk_.node());
          break;
        case TreeWalk::Event::leave:
          end(list_.leave());
          break;
        case TreeWalk::Event::end:
          return list_.take();
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
    PlacedNode& placed = list_.add(node, {begin, position_, position_, position_});
    placed.is_closed_at_once = slash && !node.isVoid && node.children.empty();
    if (node.children.empty()) end(placed);
  }

  void end(PlacedNode& placed) {
    const _qo_html& node = *placed.node;
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
  ReadingList list_;
};

}  // namespace

Reading host_reading(_qo_html* document, std::string_view source) {
  return HostPlaces(document, source).run();
}

Reading page_reading(const qo::Page& page) {
  ReadingList list;
  TreeWalk walk(page.document());
  for (;;) {
    switch (walk.step()) {
      case TreeWalk::Event::enter:
        list.add(*walk.node(), page.extent(walk.node()));
        break;
      case TreeWalk::Event::leave:
        list.leave();
        break;
      case TreeWalk::Event::end:
        return list.take();
    }
  }
}

}  // namespace cli
