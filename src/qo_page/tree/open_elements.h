// The elements that are open while a tree is built, and the standard's questions about them, each
// answered without a walk.

#ifndef QO_PAGE_TREE_OPEN_ELEMENTS_H
#define QO_PAGE_TREE_OPEN_ELEMENTS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <qo_page/tree/node.h>

namespace qo {

// What bounds the look for an open element: the nearest open one of some kind.
enum class Bound { special, item, scope, list_scope, button_scope, table_scope, marker, count };

// The element of math that holds HTML where an attribute says so.
bool is_annotation(const Node& node);

// Whether an element of svg or math holds HTML, annotations included.
bool holds_html(const Node& node);

class OpenElements {
 public:
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  OpenElements();

  bool empty() const { return elements_.empty(); }
  std::size_t size() const { return elements_.size(); }
  Node* top() const { return elements_.back().node; }
  Node* at(std::size_t index) const { return elements_[index].node; }

  // Whether the innermost open element is an HTML element of that name, or one of those names.
  bool top_is(Tag tag) const { return !empty() && is_html(top()) && top()->name == tag; }
  bool top_has(TagFlags flags) const {
    return !empty() && is_html(top()) && has(top()->name, flags);
  }

  void push(Node* node);
  void pop();

  // The innermost open element of that name, or none.
  std::size_t nearest(Tag tag) const { return latest_[static_cast<std::size_t>(tag)]; }
  std::size_t nearest(std::string_view name, Tag tag, Space space) const;

  // The same, when no bound is inside it.
  std::size_t nearest_within(Tag tag, Bound bound) const { return inside(nearest(tag), bound); }

  // The index, unless a bound is inside the element there.
  std::size_t inside(std::size_t index, Bound bound) const {
    return index != none && (innermost(bound) == none || innermost(bound) <= index) ? index : none;
  }

  // The innermost open element that is such a bound, or none.
  std::size_t innermost(Bound bound) const {
    const std::vector<std::size_t>& found = bounds_[static_cast<std::size_t>(bound)];
    return found.empty() ? none : found.back();
  }

  // The innermost open element that is no svg or math one, or none.
  std::size_t innermost_html() const;

  // From now on, no end tag finds the element, which ends as soon as what is open inside it does.
  void end_later(std::size_t index);
  bool ends_now() const { return !empty() && elements_.back().ended; }

  static bool is_html(const Node* node) { return node->space == Space::html; }

 private:
  struct Element {
    Node* node;
    std::uint32_t name;    // Tag, or a number for any other name
    std::size_t previous;  // the next outer one of that name
    std::size_t foreign;   // the outermost of the svg and math elements around it, without a gap
    bool ended;
  };

  std::uint32_t number_of(const Node& node);

  std::vector<Element> elements_;
  std::vector<std::size_t> latest_;  // by name
  std::vector<std::size_t> bounds_[static_cast<std::size_t>(Bound::count)];
  std::unordered_map<std::string, std::uint32_t> numbers_;
};

}  // namespace qo

#endif
