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
// Values of attributes, classes and texts are plain text, which is escaped where needed; template
// code in them stays as given. Markup goes in as given.
struct Operation {
  // Beside each: what it uses.
  enum class Kind {
    // Of elements:
    set_attribute,       // name, value. In the quotes that are there; a new one after the last one
    set_bare_attribute,  // name. Without a value
    remove_attribute,    // name; a "*" after its first character is any text, "*" alone any name
    add_class,           // value: one token, added unless it is there whatever way a template takes
    remove_class,        // value: one token
    add_token,           // name, value: what add_class is for "class", as for "rel"
    remove_token,        // name, value
    rename,              // name: of both tags
    substitute_value,    // name, substitution: in the values of the attributes of that name
    substitute_text,  // substitution: in each text of the element, but for what text() leaves out
    substitute_html,  // substitution: the same, by markup; groups go in as they are written
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
    move_before,    // target: a node outside, right in front of which it goes as it is written
    move_after,     // target
    move_into,      // target: an element that has content, at whose end it goes
    remove_line,    // with the blanks and the line break of its lines, if nothing else is on them
    remove
  };

  Kind kind;                                                // what to do
  std::string name;                                         // of an attribute or element
  std::string value;                                        // plain text or markup
  std::optional<Substitution> substitution = std::nullopt;  // what is substituted by what
  Node target = Node();                                     // where a node goes
};

// The operation of that kind, with just what it uses.
QO_PAGE_API Operation set_attribute(std::string name, std::string value);
QO_PAGE_API Operation set_bare_attribute(std::string name);
QO_PAGE_API Operation remove_attribute(std::string name);
QO_PAGE_API Operation add_class(std::string token);
QO_PAGE_API Operation remove_class(std::string token);
QO_PAGE_API Operation add_token(std::string name, std::string token);
QO_PAGE_API Operation remove_token(std::string name, std::string token);
QO_PAGE_API Operation rename(std::string name);
QO_PAGE_API Operation substitute_value(std::string name, Substitution substitution);
QO_PAGE_API Operation substitute_text(Substitution substitution);
QO_PAGE_API Operation substitute_html(Substitution substitution);
QO_PAGE_API Operation unwrap();
QO_PAGE_API Operation set_text(std::string text);
QO_PAGE_API Operation set_html(std::string markup);
QO_PAGE_API Operation prepend(std::string markup);
QO_PAGE_API Operation append(std::string markup);
QO_PAGE_API Operation insert_before(std::string markup);
QO_PAGE_API Operation insert_after(std::string markup);
QO_PAGE_API Operation wrap(std::string markup);
QO_PAGE_API Operation replace(std::string markup);
QO_PAGE_API Operation move_before(Node target);
QO_PAGE_API Operation move_after(Node target);
QO_PAGE_API Operation move_into(Node target);
QO_PAGE_API Operation remove_line();
QO_PAGE_API Operation remove();

// Throws Error when one operation wipes out what another one does, when a name or class is not one,
// or when an operation has a field that its kind does not use. The offset is the index of the
// operation.
QO_PAGE_API void check_operations(const std::vector<Operation>& operations);

// Thrown when an edit is refused, since its result would not be just what was asked.
class QO_PAGE_API EditError : public Error {
 public:
  // `offset` is in the source of the page of `node`.
  EditError(const std::string& message, std::size_t offset, Node node)
      : Error(message, offset), node_(node) {}

  // The node whose operations are refused; the offset is the place in its page's source.
  Node node() const { return node_; }

 private:
  Node node_;
};

// Whether template code in plain text stays code: {{ name }} in a text that was set. Texts that
// come from data are safe only with `refuse`.
enum class CodeInText { keep, refuse };

// A stretch of the page's source that became a stretch of the new one; either may be empty. Between
// two changes, both texts are the same.
struct Change {
  std::size_t old_begin;  // in the page's source
  std::size_t old_end;    // after it
  std::size_t new_begin;  // in the new source
  std::size_t new_end;    // after it
  Node node;              // whose operations made the change; none where moves came after
};

// What Edits make of a page.
struct EditedSource {
  std::string source;           // the new one
  std::vector<Change> changes;  // in order
};

// The same, read.
struct EditedPage {
  Page page;                    // the new one
  std::vector<Change> changes;  // in order
};

// Collects operations on the nodes of one page, and makes the new source of them. Operations on
// nodes within what another operation replaces or takes away have no effect. Nodes move once all
// else is done, those with one target in their order. The page must outlive the object, and may be
// moved.
class QO_PAGE_API Edits {
 public:
  // No operations yet.
  explicit Edits(const Page& page, CodeInText code = CodeInText::keep);
  explicit Edits(const Page&& page, CodeInText code = CodeInText::keep) = delete;
  ~Edits();
  Edits(const Edits&) = delete;
  Edits& operator=(const Edits&) = delete;

  // Adds operations on nodes of the page. Those on one node are carried out in the order in which
  // they were added. Throws Error as check_operations() does, for a node of another page, and for
  // template code in plain text when that is refused; EditError when an operation does not fit the
  // kind of a node. Nothing is then added.
  void add(Node node, const std::vector<Operation>& operations);
  void add(const std::vector<Node>& nodes, const std::vector<Operation>& operations);

  // The operations on a node so far, in their order. They live until the next call of add().
  std::vector<const Operation*> operations(Node node) const;

  // The new source. It was read again: tags, attributes and nesting of all that was not named are
  // as before, and what was named is as asked. Throws EditError where that cannot be: for a text
  // that ends its script, markup that opens what it does not close, operations from several calls
  // that contradict each other, a node that holds a part of a block of template code, a node that
  // goes into itself or into what moves as well, or an attribute to be set that is there only in
  // one branch of such a block. Takes the time and memory of reading the new source. The page and
  // this object stay as they are.
  EditedSource apply() const;

  // The same, as the page that was read to check it.
  EditedPage apply_to_page() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace qo

#endif
