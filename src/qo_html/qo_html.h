// qo_html: HTML text to a tree of nodes, and back.
//
// The tree is exactly the nesting that the tags describe. Nothing is decoded while parsing and
// nothing is escaped while writing; names, ids, classes and values compare byte for byte. Strings
// are byte strings.
//
// Ownership: a node owns its children. The caller owns what a factory or parseHtml returns and what
// detach() takes out of a tree, and ends it with `delete`. Node lists never own their nodes.
//
// Errors: an operation that can refuse answers false and, but for add_child, leaves everything as
// it was; a lookup answers with null or an empty string. A failed allocation reaches the caller as
// std::bad_alloc, with the tree unchanged, unless the operation says otherwise.
//
// Threads: no operation locks or shares state. Different trees may be used on different threads at
// once; one tree, or one query, must not be used from two threads at once.

#ifndef QO_HTML_H
#define QO_HTML_H

#include <functional>
#include <string>
#include <vector>

#include <qo_html/qo_html_export.h>
#include <qo_html/qo_html_version.h>

namespace Json {
class Value;
}

// An attribute of an element.
struct Attribute {
  std::string name;   // as written, case kept
  int hasValue;       // 1: name="value"; 0: a bare name, such as `disabled`
  std::string value;  // empty when hasValue is 0
};

// A node of any kind: document, element, text, comment or CDATA section. The flags tell which.
class QO_HTML_API _qo_html {
 public:
  _qo_html* parent;       // null for a document and for a node outside any tree
  _qo_html* nextSibling;  // text nodes included; null for the last child
  _qo_html* prevSibling;  // text nodes included; null for the first child
  std::string text;       // the characters of a text node
  std::string tag;        // the tag name as written; empty on documents and text nodes

  // One byte each. The content of a comment or CDATA section lies in its children.
  bool isComment;
  bool isText;
  bool isRoot;
  bool isCdata;
  bool isVoid;         // has no content and no end tag: br, img, the declarations, ...
  bool closed;         // complete, as is all that a factory or a finished parse has made
  bool isDeclaration;  // !doctype or ?xml

  std::string source;                 // what qo_html_document_new was given; never interpreted
  std::vector<_qo_html*> children;    // in document order; owned
  std::vector<Attribute> attributes;  // in the order in which they were added; names are unique
  std::vector<std::string> classes;   // the class tokens

  // An empty node of no kind, outside any tree. Calls qo_object_ref_increment as its last step.
  _qo_html();

  // Destroys the subtree below, children first to last, without recursion and without allocating. A
  // node without a parent takes the chain of siblings after it along. The node is not taken out of
  // its parent's children: detach() it first. A subclass's destructor runs before the nodes below
  // go where the node itself is deleted, and after they have gone where a node above it is.
  virtual ~_qo_html();

  _qo_html(const _qo_html&) = delete;
  _qo_html& operator=(const _qo_html&) = delete;

  // "textNode" for a text node, "documentRoot" for a document, otherwise `tag`.
  std::string tagName();

  // The nearest following (preceding) sibling that is not a text node, or null.
  _qo_html* next();
  _qo_html* prev();

  // The child at a 0-based position, text nodes counted, or null when there are not so many.
  _qo_html* get_child_at(unsigned long index);

  // --- Editing the tree ---
  // A node that is put in must be outside any tree and must not be an ancestor of its new place;
  // on success it belongs to its new parent, on refusal it still belongs to the caller.

  // Appends `child`. Checks with qo_assertion_faild that it is not null; refuses null. Refuses as
  // well, with the line "child next is already set before?" on standard output, when the last child
  // here already has a next sibling; `child->parent` is then set all the same.
  bool add_child(_qo_html* child);

  // Takes this node, with its subtree, out of its parent and its sibling chain; the caller owns it
  // from then on. Time grows with the number of siblings.
  void detach();

  // Puts `node` right after (before) `ref`, which is this node itself, if that has a parent, or any
  // node below it. False when an argument is null or `ref` is not found. Time: at most that of
  // going over everything below this node, and up from `ref`.
  bool insert_after(_qo_html* node, _qo_html* ref);
  bool insert_before(_qo_html* node, _qo_html* ref);

  // Puts `newNode` in the place of `oldNode` (found like `ref` above), and destroys `oldNode` with
  // its subtree; when that is this node, the call leaves no object to go on with. False as for
  // insert_before.
  bool replace_with(_qo_html* oldNode, _qo_html* newNode);

  // On a text node, replaces its text. On any other node, destroys all children and puts one text
  // node (with `closed` false) in their place; false on a void element. When the host's counter
  // throws, the exception passes and the node is left without children.
  bool set_text(std::string text);

  // Destroys all children and puts the nodes parsed from `html` in their place, without comments.
  // False, with nothing changed, when this node is void or parseHtml refuses the text.
  bool set_html(std::string html);

  // --- Attributes ---
  // Setting an attribute that exists changes it in place; a new one goes to the end. References
  // into `attributes` and `classes` do not survive a call that changes them.

  // Sets a valued (bare) attribute. With the name "class" and a value, also appends the value's
  // space-separated tokens to `classes`; what `classes` held stays.
  void addAttribute(std::string name, std::string value);
  void addAttribute(std::string name);

  // The same, but never touches `classes`: has_class and `.class` selectors do not see a "class"
  // that is set in this way, and the next add_class or remove_class overwrites it.
  void set_attribute(std::string name, std::string value);
  void set_attribute(std::string name);

  // Removes the attribute, if there is one; never touches `classes`.
  void remove_attribute(std::string name);

  // Whether there is an attribute of that name, valued or bare.
  bool has_attribute(std::string name);

  // The value; empty as well for a bare attribute and for one that is not there.
  std::string get_attribute(std::string name);

  // get_attribute("id").
  std::string id();

  // --- Classes ---

  // Adds a token that is not there (removes the first one equal to `cls`) and then rewrites the
  // "class" attribute from `classes`, removing it when it would be empty. Otherwise nothing
  // changes.
  void add_class(std::string cls);
  void remove_class(std::string cls);

  // Whether `classes` has that token.
  bool has_class(std::string cls);

  // --- Writing out ---
  // Everything is written as stored, nothing is escaped and no white space is added. When memory
  // runs out, formatAttribute and outerHTML write one line to standard error and answer with the
  // empty string; innerHTML and textContent let std::bad_alloc pass.

  // The attributes as in a start tag, each with one space in front.
  std::string formatAttribute();

  // This node with its markup and all that is below it. Void elements end in "/>", declarations in
  // ">"; what may be below these and below text nodes is not written, nor are the attributes of
  // comments and CDATA sections.
  std::string outerHTML();

  // The outerHTML() of all children; on a text node, its text.
  std::string innerHTML();

  // The text of all text nodes, those in comments, CDATA sections, scripts and styles included.
  // When the text of the text node that this is called on cannot be copied for want of memory, a
  // line on standard error says so and the text is left out.
  std::string textContent();

  // --- Searching ---
  // Each appends to `out`, in document order, the nodes that match among this node and all nodes
  // below it; if `childOf` is not null, only those whose parent it is. `out` is never cleared and
  // may list a node twice; when memory runs out it keeps what was found so far.

  // By tagName(); "*" matches every node but text nodes.
  void getElementsByTagName(std::string name, std::vector<_qo_html*>& out, _qo_html* childOf);

  // By the value of an "id" attribute, which must be there.
  void getElementsById(std::string id, std::vector<_qo_html*>& out, _qo_html* childOf);

  // By presence of an attribute and, if `matchValue` is set, its value (that of a bare one is
  // empty).
  void getElementsByAttr(std::string name, std::vector<_qo_html*>& out, _qo_html* childOf,
                         std::string value, bool matchValue);

  // By one whole token of `classes`.
  void getElementsByClassName(std::string name, std::vector<_qo_html*>& out, _qo_html* childOf);

  // --- Forms ---

  // Adds the values of the named controls below this node to `result`, which is first replaced by
  // an empty object unless it is one. Members are strings (name="a"), arrays of strings ("a[]") or
  // objects of strings ("a[k]"). Disabled controls and unchecked check boxes and radio buttons are
  // left out; a plain value with characters other than letters, digits and `,-.@_` has its
  // character references decoded and is wrapped in <![CDATA[ ]]>. Returns true. Using one name as
  // an array or object after another of the three ways makes jsoncpp throw; `result` then keeps
  // what was stored before.
  bool get_form_values(Json::Value& result);
};

// Factories. Each returns a closed node, outside any tree, that the caller owns.
QO_HTML_API _qo_html* qo_html_document_new(std::string source);
QO_HTML_API _qo_html* qo_html_element_new(std::string name);  // its name tells if it is void
QO_HTML_API _qo_html* qo_html_text_node_new(std::string text);

// Parses `html` into a new document, which `out` then points to and the caller owns; `source` is
// kept in the document. `dropComments` leaves comments out; `reservedFlag` changes nothing. False,
// with `out` as it was and nothing left behind, when a comment, CDATA section, script or style has
// no end, or when an element's name has a character other than letters, digits, ':' and '_', which
// a line on standard output tells. (A tag without a name is accepted, with a line on standard
// output as well.) A failed allocation gives a line and false as well; where it hits an attribute
// or a long name, the line alone, and the parser goes on without; where it hits the document,
// std::bad_alloc.
QO_HTML_API bool parseHtml(_qo_html*& out, std::string html, std::string source, bool dropComments,
                           bool reservedFlag);

// Replaces, in place, the named character references that end in ';' (&lt; &eacute; ...) by UTF-8
// text. What a replaced &amp; makes together with the text after it is decoded again. Spaces of all
// kinds, "nbsp" and "Tab" among them, become a blank and "NewLine" becomes CR LF; numeric
// references, names of characters beyond U+FFFF and nearly all names of two characters stay.
// Allocates nothing; time grows with the length of the text.
QO_HTML_API void qo_decode_html_entities(std::string& text);

// A node to search from and an ordered list of nodes, which selectors fill, narrow or search below.
// Neither is owned: the nodes must outlive every use of the query, and deleting one that is listed
// leaves the query unfit for anything but destruction.
class QO_HTML_API qo_html_query {
 public:
  _qo_html* context;             // where an empty list is filled from; null: it stays empty
  std::vector<_qo_html*> nodes;  // the result; may list a node more than once

  // A query with `node` as its context and an empty list. A copy has a list of its own.
  explicit qo_html_query(_qo_html* node);
  ~qo_html_query();
  qo_html_query(const qo_html_query&) = default;
  qo_html_query& operator=(const qo_html_query&) = default;

  // Applies a selector made of `tag`, `*`, `.class`, `#id`, `[name]`, `[name=value]`, blanks and
  // `>`; `:name` has no effect. A part of it that meets an empty list fills it from `context`; one
  // after a blank or `>` replaces each listed node by what it finds below it (the node itself
  // included after a blank); any other filters the list. Every string has a meaning: what is no
  // selector matches little or nothing. If it throws, the list is as it was.
  qo_html_query& find(std::string selector);

  // Calls `visit` with 0-based position and node, in order, until it returns false. `visit` must
  // not change this query. An empty function throws std::bad_function_call, unless the list is
  // empty.
  qo_html_query& each(std::function<bool(unsigned long, _qo_html*)> visit);

  // The textContent() of every listed node, one after the other.
  std::string text();

  // The number of listed nodes, repeated ones counted.
  unsigned long length();

  // The node at a 0-based position, or null when the list is not so long.
  _qo_html* get(unsigned long index);

  // Makes the node at that position the context and the only listed node; when the list is not so
  // long, the context stays and becomes the only listed node.
  qo_html_query& use_one(unsigned long index);
};

#endif
