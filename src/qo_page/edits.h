// Changes of a page that leave every byte alone that nobody named.

#ifndef QO_PAGE_EDITS_H
#define QO_PAGE_EDITS_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <qo_page/page.h>
#include <qo_page/substitution.h>

namespace qo {

// What is done to a node. `name` and `value` are empty where a kind does not use them.
//
// Values of attributes, classes and texts are plain text, which is escaped as far as needed;
// template code in them stays as given. Markup goes in as given.
struct Operation {
  // Beside each: what it uses.
  enum class Kind {
    // Of elements:
    set_attribute,       // name, value. In the quotes that are there; a new one after the last one
    set_bare_attribute,  // name. Without a value
    remove_attribute,    // name
    add_class,           // value: one token, added unless it is there whatever way a template takes
    remove_class,        // value: one token
    rename,              // name: of both tags
    substitute_value,    // name, substitution: in the values of the attributes of that name
    substitute_text,  // substitution: in each text of the element, but for what text() leaves out
    unwrap,           // takes the tags away and leaves the content
    // Of elements that have content; the first two of comments, sections and texts as well:
    set_text,  // value
    set_html,  // value: markup
    prepend,   // value: markup
    append,    // value: markup
    // Of all nodes but the document:
    insert_before,  // value: markup, right in front of the node
    insert_after,   // value: markup, right after the node
    wrap,           // value: markup, whose innermost first element the node goes into
    replace,        // value: markup
    remove
  };

  Kind kind;                                                // what to do
  std::string name;                                         // of an attribute or element
  std::string value;                                        // plain text or markup
  std::optional<Substitution> substitution = std::nullopt;  // what is substituted by what
};

// Throws Error when two operations contradict each other, since one wipes out what the other does,
// or when a name or class is none. The offset is the index of the operation.
QO_PAGE_API void check_operations(const std::vector<Operation>& operations);

// A stretch of the page's source that became a stretch of the new one; either may be empty. Between
// two changes, both texts are the same.
struct Change {
  std::size_t old_begin;  // in the page's source
  std::size_t old_end;    // after it
  std::size_t new_begin;  // in the new source
  std::size_t new_end;    // after it
};

// What Edits make of a page.
struct EditedSource {
  std::string source;           // the new one
  std::vector<Change> changes;  // in order
};

// Collects operations on the nodes of one page, and makes the new source of them. What an operation
// on an outer node replaces, operations on nodes within it no longer touch. The page must outlive
// the object.
class QO_PAGE_API Edits {
 public:
  // No operations yet.
  explicit Edits(const Page& page);
  ~Edits();
  Edits(const Edits&) = delete;
  Edits& operator=(const Edits&) = delete;

  // Adds operations on nodes of the page, for each node after those that it already has; they are
  // carried out in this order. Throws Error as check_operations() does, or when an operation does
  // not fit the kind of a node, with the node's offset; nothing was then added.
  void add(Node node, const std::vector<Operation>& operations);
  void add(const std::vector<Node>& nodes, const std::vector<Operation>& operations);

  // The new source. It was read again: all that was not named is as before, tags, attributes and
  // nesting, and what was named is as asked. Otherwise, as with markup that opens what it does not
  // close or a text that ends its script, throws Error with a place in the page's source; also when
  // operations from several calls contradict each other, when a node holds a part of a block of
  // template code, and when an attribute that is to be set is there only in a branch of one. Takes
  // time and memory as reading the new source does. The page and this object stay as they are.
  EditedSource apply() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace qo

#endif
