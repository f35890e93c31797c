// What a selector found in a page, whoever read it.

#ifndef QO_CLI_PAGES_MATCHES_H
#define QO_CLI_PAGES_MATCHES_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <qo_page/line_index.h>
#include <qo_page/range.h>
#include <qo_page/selector.h>

#include "io/json_text.h"

namespace cli {

// Matches go by their number, from 0, in document order. What is said of one is a view of the page
// or of `buffer`, whose former content is lost: the caller gives the same one again and again.
class Matches {
 public:
  virtual ~Matches() = default;

  virtual std::size_t size() const = 0;

  virtual std::string_view name(std::size_t match, std::string& buffer) const = 0;

  // The bytes as written or, for the library, as it writes them.
  virtual std::string_view html(std::size_t match, std::string& buffer) const = 0;
  virtual std::string_view inner_html(std::size_t match, std::string& buffer) const = 0;

  virtual std::string_view text(std::size_t match, std::string& buffer) const = 0;

  // Nothing when there is none of that name; empty for one without a value.
  virtual std::optional<std::string_view> attribute(std::size_t match, const std::string& name,
                                                    std::string& buffer) const = 0;

  // The values by name; true for one without.
  virtual JsonLine attributes(std::size_t match) const = 0;

  // Where in the source it is, and a selector that finds it alone. The library keeps neither places
  // nor sources: asked of its matches, these throw Failure.
  virtual qo::Range range(std::size_t match) const;
  virtual qo::Position position(std::size_t match);
  virtual std::string path(std::size_t match);

  // The first match of a selector below a match, which can be asked like one until the next call;
  // nothing when there is none.
  virtual std::optional<std::size_t> below(std::size_t match, const qo::Selector& selector);
};

// Makes an object of attributes.
class AttributeMembers {
 public:
  void add(std::string_view name, std::string_view value) { members_.add(unique(name), value); }
  void add_bare(std::string_view name) { members_.add_true(unique(name)); }

  JsonLine take() { return std::move(members_); }

 private:
  std::string unique(std::string_view name) { return names_.unique(name); }

  JsonLine members_;
  MemberNames names_;
};

}  // namespace cli

#endif
