// The elements that are open while a tree is built, and the standard's questions about them, each
// answered without a walk.

#ifndef QO_PAGE_TREE_OPEN_ELEMENTS_H
#define QO_PAGE_TREE_OPEN_ELEMENTS_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <qo_page/tree/tree.h>

namespace qo {

// What bounds the look for an open element: the nearest open one of some kind.
enum class Bound { special, item, scope, list_scope, button_scope, table_scope, marker, count };

// What an element is, as far as its content and its end depend on it.
struct ElementType {
  std::string_view name;  // as written
  Tag tag;
  Namespace space;
};

// The element of math that holds HTML where an attribute says so.
bool is_annotation(const ElementType& type);

// Whether an element of svg or math holds HTML, annotations included.
bool holds_html(const ElementType& type);

class OpenElements {
 public:
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  // `has_case`: whether names that HTML does not know differ by case.
  explicit OpenElements(bool has_case);

  bool empty() const { return elements_.empty(); }
  std::size_t size() const { return elements_.size(); }
  NodeIndex top() const { return elements_.back().node; }
  const ElementType& top_type() const { return elements_.back().type; }
  NodeIndex at(std::size_t index) const { return elements_[index].node; }
  Tag tag_at(std::size_t index) const { return elements_[index].type.tag; }

  // Whether the innermost open element is an HTML element of that name, or one of those names.
  bool top_is(Tag tag) const { return top_is_html() && top_type().tag == tag; }
  bool top_has(TagFlags flags) const { return top_is_html() && has(top_type().tag, flags); }
  bool top_is_html() const { return !empty() && top_type().space == Namespace::html; }
  bool top_is_foreign() const { return !empty() && top_type().space != Namespace::html; }

  void push(NodeIndex node, const ElementType& type);
  void pop();

  // The innermost open element of that name, or none.
  std::size_t nearest(Tag tag) const { return latest_[static_cast<std::size_t>(tag)]; }
  std::size_t nearest(const ElementType& type) const;

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
  bool ends_now() const { return !empty() && elements_.back().is_ended; }

 private:
  struct Element {
    ElementType type;
    NodeIndex node;
    std::uint32_t name;    // Tag, or a number for any other name
    std::size_t previous;  // the next outer one of that name
    std::size_t foreign;   // the outermost of the svg and math elements around it, without a gap
    unsigned bounds;       // a bit for each Bound that it is
    bool is_ended;
  };

  // HTML's own names have their numbers; other names of HTML are told apart from those of svg and
  // math.
  struct Name {
    std::string_view text;
    bool is_html;
  };
  struct NameHash {
    std::size_t operator()(const Name& name) const;
  };
  struct NameEqual {
    bool operator()(const Name& a, const Name& b) const;
    bool has_case;
  };

  std::uint32_t number_of(const ElementType& type);

  std::vector<Element> elements_;
  std::vector<std::size_t> latest_;  // by name
  std::vector<std::size_t> bounds_[static_cast<std::size_t>(Bound::count)];
  std::unordered_map<Name, std::uint32_t, NameHash, NameEqual> numbers_;
};

}  // namespace qo

#endif
