#include "host/differences.h"

#include <algorithm>
#include <initializer_list>
#include <unordered_map>
#include <utility>

#include "host/compared_reading.h"
#include "io/text.h"

namespace cli {

namespace {

constexpr std::size_t none = ComparedReading::none;
constexpr std::size_t excerpt_length = 30;
constexpr char for_host[] = " for a host";
constexpr char for_qo[] = " for qo";

// --- Nodes ---

// Whether a host reads the content of the element, if it has any, as text.
bool is_raw_element(const PlacedNode& node) {
  return is_element(node) && (node.name == "script" || node.name == "SCRIPT" ||
                              node.name == "style" || node.name == "STYLE");
}

const char* kind_name(const PlacedNode& node) {
  switch (node.kind) {
    case PlacedKind::text:
      return "text";
    case PlacedKind::comment:
      return "a comment";
    case PlacedKind::section:
      return "a CDATA section";
    case PlacedKind::declaration:
      return "a declaration";
    case PlacedKind::code:
      return "template code";
    default:
      return "an element";
  }
}

// What markup is that lies within the node.
std::string part_of(const PlacedNode& node) {
  if (is_text(node)) return "text";
  return std::string("part of ") + (is_element(node) ? "a tag" : kind_name(node));
}

std::string joined(std::initializer_list<std::string_view> parts) {
  std::string out;
  for (const std::string_view part : parts) out += part;
  return out;
}

// Finds the attributes of a node by name.
class AttributesByName {
 public:
  AttributesByName(const PlacedAttribute* begin, const PlacedAttribute* end)
      : begin_(begin), end_(end) {
    if (!has_many()) return;
    for (const PlacedAttribute* one = begin; one != end; ++one) index_.emplace(one->name, one);
  }

  // Null for none.
  const PlacedAttribute* find(std::string_view name) const {
    if (has_many()) {
      const auto found = index_.find(name);
      return found == index_.end() ? nullptr : found->second;
    }
    const auto found = std::find_if(
        begin_, end_, [name](const PlacedAttribute& other) { return other.name == name; });
    return found == end_ ? nullptr : found;
  }

 private:
  bool has_many() const { return end_ - begin_ >= 16; }

  const PlacedAttribute *begin_, *end_;
  std::unordered_map<std::string_view, const PlacedAttribute*> index_;
};

// --- Comparing ---

class Comparison {
 public:
  Comparison(const Reading& page, const Reading& host, std::string_view source,
             const qo::LineIndex& lines)
      : page_(page), host_(host), source_(source), lines_(lines) {}

  std::vector<Difference> run() {
    const qo::Extent& read = host_[0].extent;
    pair_up(read.content_end);
    go_over(read.content_end);
    if (read.content_end < read.end) tell(read.content_end, "here a host stops reading");
    return std::move(differences_);
  }

 private:
  void pair_up(std::size_t end) {
    host_.set_twin(0, 0);
    page_.set_twin(0, 0);
    std::size_t p = 1;
    for (std::size_t h = 1; h < host_.size(); ++h) {
      if (host_[h].is_blank) continue;
      const std::size_t begin = std::min(host_[h].extent.begin, end);
      while (p < page_.size() && (page_[p].is_blank || page_[p].extent.begin < begin)) ++p;
      if (p == page_.size() || page_[p].extent.begin != begin) continue;
      host_.set_twin(h, p);
      page_.set_twin(p, h);
    }
  }

  void go_over(std::size_t end) {
    host_.advance();
    page_.advance();
    for (;;) {
      const std::size_t host_offset = host_.next_offset(end);
      const std::size_t page_offset = page_.next_offset(end);
      if (std::min(host_offset, page_offset) == end) return;
      const std::size_t h = host_.next();
      const std::size_t p = page_.next();
      if (host_offset <= page_offset) host_.advance();
      if (page_offset <= host_offset) page_.advance();
      if (host_offset < page_offset) {
        only_host(h);
      } else if (page_offset < host_offset) {
        only_page(p);
      } else {
        both(h, p);
      }
    }
  }

  // --- A node of both readings ---

  void both(std::size_t h, std::size_t p) {
    const PlacedNode& ours = page_[p];
    const PlacedNode& theirs = host_[h];
    if (theirs.kind != ours.kind) return other_kind(h, p);
    if (is_element(theirs) && theirs.name != ours.name) {
      tell(page_[p], {" is called ", quoted(theirs.name, excerpt_length), for_host});
    } else if (!is_text(theirs) && token_end(h, h, host_) != token_end(p, h, page_)) {
      tell(page_[p], {" ends at ", place(token_end(h, h, host_)), for_host, ", at ",
                      place(token_end(p, h, page_)), for_qo});
      tell_within(h, p);
    } else if (is_element(theirs)) {
      content(h, p);
      attributes(h, p);
    }
    parents(h, p);
  }

  void other_kind(std::size_t h, std::size_t p) {
    tell(is_text(host_[h]) ? page_[p] : host_[h],
         {" is ", kind_name(host_[h]), for_host, ", ", kind_name(page_[p]), for_qo});
    tell_within(h, p);
    host_.discount(h);
    page_.discount(p);
  }

  void tell_within(std::size_t h, std::size_t p) {
    host_.tell_within(h);
    page_.tell_within(p);
  }

  // The end of the node's one token, or of what is no markup in it.
  std::size_t token_end(std::size_t i, std::size_t h, const ComparedReading& side) const {
    const qo::Extent& extent = side[i].extent;
    if (is_raw_element(host_[h]) && host_.has_children(h)) return extent.content_end;
    return is_element(side[i]) ? extent.content_begin : extent.end;
  }

  void content(std::size_t h, std::size_t p) {
    const qo::Extent& ours = page_[p].extent;
    const qo::Extent& theirs = host_[h].extent;
    if (host_[h].is_closed_at_once && ours.content_begin < ours.end) {
      tell(page_[p], {" is empty", for_host, ", and open", for_qo});
      page_.discount(p);
    } else if (has_end_tag(page_[p]) && has_end_tag(host_[h]) &&
               ours.content_end == theirs.content_end && ours.end != theirs.end) {
      tell(ours.content_end,
           joined({token(ours.content_end, ours.end), " ends at ", place(theirs.end), for_host,
                   ", at ", place(ours.end), for_qo}));
    }
  }

  void attributes(std::size_t h, std::size_t p) {
    const AttributesByName theirs(host_.attributes_begin(h), host_.attributes_end(h));
    for (auto ours = page_.attributes_begin(p); ours != page_.attributes_end(p); ++ours) {
      const PlacedAttribute* const found = theirs.find(ours->name);
      if (found != nullptr && found->value == ours->value) continue;
      const std::string name = quoted(ours->name, excerpt_length);
      const std::size_t begin = page_[p].extent.begin;
      if (found == nullptr) {
        tell(begin, joined({name, " is missing", for_host}));
      } else {
        tell(begin, joined({name, " is ", quoted(found->value, excerpt_length), for_host, ", ",
                            quoted(ours->value, excerpt_length), for_qo}));
      }
    }
  }

  // What was told of elements that end elsewhere may be why the parents are not the same.
  void parents(std::size_t h, std::size_t p) {
    const std::size_t host_parent = host_[h].parent;
    const std::size_t page_parent = page_[p].parent;
    if (host_.twin(host_parent) == page_parent) return;
    std::size_t above = host_.counted(host_parent);
    std::size_t ours = page_.counted(page_parent);
    if (host_.twin(above) == ours) return;
    tell(page_[p],
         {" is ", inside(host_, host_parent), for_host, ", ", inside(page_, page_parent), for_qo});
    while (above != 0 && !page_.contains(host_.twin(above), ours)) {
      above = discounted(host_, above);
    }
    while (ours != 0 && ours != host_.twin(above)) ours = discounted(page_, ours);
  }

  static std::size_t discounted(ComparedReading& side, std::size_t i) {
    side.discount(i);
    return side.counted(i);
  }

  std::string inside(const ComparedReading& side, std::size_t i) const {
    return i == 0 ? "at the top" : "in " + element(side, i);
  }

  // --- A node of one reading ---

  void only_host(std::size_t h) {
    if (is_text(host_[h])) return;
    const std::size_t offset = host_[h].extent.begin;
    const std::size_t around = page_.around(offset);
    const std::size_t closed = page_.closed_at(offset);
    if (around != none) {
      if (!page_.tell_within(around)) {
        tell(host_[h],
             {" is ", kind_name(host_[h]), for_host, ", ", part_of(page_[around]), for_qo});
      }
    } else if (closed != none) {
      end_tag_of_page(h, closed);
    } else if (source_.substr(offset, 2) == "</") {
      tell(host_[h], {" closes nothing, and is an element", for_host});
    } else {
      tell(host_[h], {" is ", kind_name(host_[h]), for_host, " only"});
    }
    host_.discount(h);
  }

  // The node `h` is the end tag of `closed` on the page.
  void end_tag_of_page(std::size_t h, std::size_t closed) {
    if (page_.is_discounted(closed)) return;
    std::size_t open = host_.counted(host_[h].parent);
    const bool is_same = host_.twin(open) == closed;
    if (is_same ? open == host_[h].parent : is_within(open, closed)) {
      tell(host_[h], {" closes nothing", for_host, ": ", element(host_, open),
                      is_same ? " has another name" : " is open"});
    }
    while (is_within(open, closed)) open = discounted(host_, open);
  }

  bool is_within(std::size_t h, std::size_t p) const {
    return h != 0 && page_.contains(p, host_.twin(h));
  }

  void only_page(std::size_t p) {
    if (is_text(page_[p])) return;
    const std::size_t offset = page_[p].extent.begin;
    const std::size_t around = host_.around(offset);
    const std::size_t closed = host_.closed_at(offset);
    if (around != none) {
      if (!host_.tell_within(around)) {
        tell(page_[p], {" is ", part_of(host_[around]), for_host});
      }
    } else if (closed != none) {
      tell(page_[p], {" closes ", element(host_, closed), for_host});
      if (host_.twin(closed) != none) page_.discount(host_.twin(closed));
    } else {
      tell(page_[p], {" is nothing", for_host});
    }
    page_.discount(p);
  }

  // --- Telling ---

  std::string token(std::size_t begin, std::size_t end) const {
    return quoted(source_.substr(begin, end - begin), excerpt_length);
  }

  std::string element(const ComparedReading& side, std::size_t i) const {
    return quoted(joined({"<", side[i].name, ">"}), excerpt_length) + " (" +
           place(side[i].extent.begin) + ")";
  }

  std::string place(std::size_t offset) const { return shown_place(lines_.position(offset)); }

  void tell(std::size_t offset, std::string what) {
    differences_.push_back({offset, std::move(what)});
  }

  // What is so of a node.
  void tell(const PlacedNode& node, std::initializer_list<std::string_view> what) {
    const qo::Extent& extent = node.extent;
    const std::size_t end = is_element(node) ? extent.content_begin : extent.end;
    tell(extent.begin, token(extent.begin, end) + joined(what));
  }

  ComparedReading page_;
  ComparedReading host_;
  std::string_view source_;
  const qo::LineIndex& lines_;
  std::vector<Difference> differences_;
};

}  // namespace

std::vector<Difference> find_differences(const Reading& page, const Reading& host,
                                         std::string_view source, const qo::LineIndex& lines) {
  return Comparison(page, host, source, lines).run();
}

}  // namespace cli
