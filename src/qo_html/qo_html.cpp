#include <qo_html/qo_html.h>

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <json/json.h>

#include <qo_html/qo_html_ascii.h>
#include <qo_html/qo_html_host.h>
#include <qo_html/qo_html_node.h>
#include <qo_html/qo_html_parser.h>
#include <qo_html/qo_html_selector.h>
#include <qo_html/qo_html_walk.h>
#include <qo_html/qo_html_writer.h>

using namespace qo_html_inner;

namespace {

// --- Reading a node ---

// The value of an attribute; empty as well when it is bare or missing.
std::string_view attribute_value(_qo_html& node, std::string_view name) {
  const Attribute* attribute = find_attribute(node, name);
  return attribute == nullptr ? std::string_view() : attribute->value;
}

bool has_token(const std::vector<std::string>& tokens, std::string_view token) {
  return std::find(tokens.begin(), tokens.end(), token) != tokens.end();
}

_qo_html* skip_text(_qo_html* node, _qo_html* _qo_html::*link) {
  while (node != nullptr && node->isText) node = node->*link;
  return node;
}

// --- Destroying ---

// Destroys everything below `top`, in document order. The nodes themselves hold what is still to
// do: a child vector is turned round when it is entered, then drained from its back.
void destroy_children(_qo_html* top) noexcept {
  NodeStream stream;
  _qo_html* node = top;
  std::reverse(node->children.begin(), node->children.end());
  for (;;) {
    _qo_html* done = nullptr;
    if (!node->children.empty()) {
      _qo_html* child = node->children.back();
      if (child != nullptr) {
        child->parent = node;
        if (!child->children.empty()) {
          std::reverse(child->children.begin(), child->children.end());
          node = child;
          continue;
        }
      }
      done = child;
    } else if (node != top) {
      done = node;
      node = node->parent;
    } else {
      return;
    }
    node->children.pop_back();
    stream.follow(done);
    if (!node->children.empty()) TreeWalk::prefetch(node->children.back());
    delete done;
  }
}

// A node without a parent owns the siblings after it, up to the first that has a parent.
void destroy_following_siblings(_qo_html* node) noexcept {
  while (node->nextSibling != nullptr) {
    _qo_html* sibling = node->nextSibling;
    node->nextSibling = nullptr;
    if (sibling->parent == nullptr) std::swap(node->nextSibling, sibling->nextSibling);
    delete sibling;
  }
}

// --- Editing ---

using ChildPosition = std::vector<_qo_html*>::iterator;

ChildPosition find_child(_qo_html* parent, const _qo_html* child) {
  return std::find(parent->children.begin(), parent->children.end(), child);
}

// Where a child is listed: in whose child vector, and at what position.
struct Place {
  _qo_html* parent = nullptr;  // null: nowhere
  ChildPosition position;
};

Place place_in(_qo_html* parent, const _qo_html* child) {
  if (parent == nullptr) return {};
  const ChildPosition position = find_child(parent, child);
  return position == parent->children.end() ? Place() : Place{parent, position};
}

bool has_ancestor(const _qo_html* node, const _qo_html* ancestor) {
  const _qo_html* above = node->parent;
  while (above != nullptr && above != ancestor) above = above->parent;
  return above != nullptr;
}

// Whether the child vectors lead from `top` to `node`, as the parent pointers have it.
bool is_reached(const _qo_html* node, const _qo_html* top) {
  while (node != top && place_in(node->parent, node).parent != nullptr) node = node->parent;
  return node == top;
}

// Where `ref` is below `top`; where `top` is itself when `ref` is `top`. Only child vectors count;
// the parent pointers are a short cut to the right one.
Place find_place(_qo_html* top, const _qo_html* ref) {
  if (ref == top) {
    const Place place = place_in(top->parent, top);
    if (place.parent != nullptr) return place;
  }
  if (top->children.empty()) return {};
  if (has_ancestor(ref, top)) {
    const Place place = place_in(ref->parent, ref);
    if (place.parent != nullptr && is_reached(place.parent, top)) return place;
  }
  for (TreeWalk walk(top); _qo_html* node = walk.next();) {
    const Place place = place_in(node, ref);
    if (place.parent != nullptr) return place;
  }
  return {};
}

void link(_qo_html* previous, _qo_html* next) {
  if (previous != nullptr) previous->nextSibling = next;
  if (next != nullptr) next->prevSibling = previous;
}

// --- Attributes and classes ---

void append_tokens(std::vector<std::string>& tokens, std::string_view value) {
  while (!value.empty()) {
    const std::string_view token = value.substr(0, value.find(' '));
    if (!token.empty()) tokens.push_back(std::string(token));
    value.remove_prefix(std::min(token.size() + 1, value.size()));
  }
}

void put_record(_qo_html& node, Attribute* existing, std::string_view name, int has_value,
                std::string_view value) {
  if (existing != nullptr) {
    existing->value.assign(value);
    existing->hasValue = has_value;
    return;
  }
  node.attributes.push_back({std::string(name), has_value, std::string(value)});
}

void put_record(_qo_html& node, std::string_view name, int has_value, std::string_view value) {
  put_record(node, find_attribute(node, name), name, has_value, value);
}

// An empty token in front of all others leaves no trace.
void append_joined(std::string& joined, std::string_view token) {
  if (!joined.empty()) joined += ' ';
  joined += token;
}

void set_class_attribute(_qo_html& node, const std::string& joined) {
  if (joined.empty()) {
    node.remove_attribute("class");
  } else {
    put_record(node, "class", 1, joined);
  }
}

// --- Text ---

void append_text(std::string& out, _qo_html* start) {
  for (TreeWalk walk(start); _qo_html* node = walk.next();) {
    if (!node->isText) continue;
    out.append(node->text);
    walk.skip_children();
  }
}

// --- Searching ---

struct HasTagName {
  std::string_view name;
  bool any = name == "*";
  bool operator()(_qo_html& node) const { return any ? !node.isText : tag_name(node) == name; }
};

struct HasId {
  std::string_view id;
  bool operator()(_qo_html& node) const {
    const Attribute* attribute = find_attribute(node, "id");
    return attribute != nullptr && attribute->value == id;
  }
};

struct HasClass {
  std::string_view name;
  bool operator()(_qo_html& node) const { return has_token(node.classes, name); }
};

struct HasAttribute {
  std::string_view name;
  std::string_view value;
  bool match_value;
  bool operator()(_qo_html& node) const {
    const Attribute* attribute = find_attribute(node, name);
    return attribute != nullptr && (!match_value || attribute->value == value);
  }
};

template <class Test>
void search(_qo_html* start, std::vector<_qo_html*>& out, const _qo_html* child_of, Test test) {
  for (TreeWalk walk(start); _qo_html* node = walk.next();) {
    if (test(*node) && (child_of == nullptr || node->parent == child_of)) out.push_back(node);
  }
}

template <class Test>
void search_children(_qo_html* parent, std::vector<_qo_html*>& out, Test test) {
  for (_qo_html* node : parent->children) {
    if (node != nullptr && node->parent == parent && test(*node)) out.push_back(node);
  }
}

// --- Queries ---

bool is_simple(const std::unique_ptr<htmlSelector>& step) {
  return step->type != SEL_DESCENDANT && step->type != SEL_CHILD && step->type != SEL_PSEUDO;
}

// Evaluates a selector chain, step by step, on a set of its own.
class Selection {
 public:
  Selection(_qo_html* context, const std::vector<_qo_html*>& nodes)
      : context_(context), set_(nodes) {}

  void apply(const htmlSelector& step) {
    switch (step.type) {
      case SEL_DESCENDANT:
        if (reach_ == Reach::members) reach_ = Reach::subtrees;
        break;
      case SEL_CHILD:
        reach_ = Reach::children;
        break;
      case SEL_PSEUDO:
        break;
      default:
        apply_simple(step);
        reach_ = Reach::members;
        break;
    }
  }

  std::vector<_qo_html*> take() { return std::move(set_); }

 private:
  // Where the next simple selector looks, as the combinator before it says.
  enum class Reach { members, subtrees, children };

  void apply_simple(const htmlSelector& step) {
    switch (step.type) {
      case SEL_CLASS:
        select(HasClass{step.token});
        break;
      case SEL_ID:
        // As a filter, an empty id fits a node that has none.
        select(HasId{step.token},
               [&step](_qo_html& node) { return attribute_value(node, "id") == step.token; });
        break;
      case SEL_ATTR: {
        std::string name;
        std::string value;
        const bool match_value = split_attribute_selector(step.token, name, value);
        select(HasAttribute{name, value, match_value});
        break;
      }
      default:
        // As a filter, "*" keeps text nodes.
        select(HasTagName{step.token}, [&step](_qo_html& node) {
          return step.token == "*" || tag_name(node) == step.token;
        });
        break;
    }
  }

  template <class Test>
  void select(Test test) {
    select(test, test);
  }

  template <class Test, class Filter>
  void select(Test test, Filter stays) {
    if (set_.empty()) {
      if (context_ != nullptr) search_from(context_, test);
    } else if (reach_ != Reach::members) {
      std::vector<_qo_html*> former;
      former.swap(set_);
      for (_qo_html* node : former) search_from(node, test);
    } else {
      set_.erase(std::remove_if(set_.begin(), set_.end(),
                                [&stays](_qo_html* node) { return !stays(*node); }),
                 set_.end());
    }
  }

  template <class Test>
  void search_from(_qo_html* node, Test test) {
    if (reach_ == Reach::children) {
      search_children(node, set_, test);
    } else {
      search(node, set_, nullptr, test);
    }
  }

  _qo_html* context_;
  std::vector<_qo_html*> set_;
  Reach reach_ = Reach::members;
};

// --- Form values ---

// Where a control's value goes: name="name", name="name[]" or name="name[key]".
struct Member {
  Json::ValueType kind = Json::stringValue;
  std::string name;
  std::string key;
};

Member split_member_name(std::string_view name) {
  const std::size_t open = name.find('[');
  const std::size_t close = open == name.npos ? name.npos : name.find(']', open);
  if (close == name.npos) return {Json::stringValue, std::string(name), {}};
  const std::string_view key = name.substr(open + 1, close - open - 1);
  return {key.empty() ? Json::arrayValue : Json::objectValue, std::string(name.substr(0, open)),
          std::string(key)};
}

bool is_safe_byte(char c) {
  return is_letter_or_digit(c) || c == ',' || c == '-' || c == '.' || c == '@' || c == '_';
}

std::string plain_value(std::string value) {
  if (std::all_of(value.begin(), value.end(), is_safe_byte)) return value;
  qo_decode_html_entities(value);
  return "<![CDATA[" + value + "]]>";
}

void store_value(Json::Value& result, const Member& member, std::string value) {
  switch (member.kind) {
    case Json::arrayValue:
      if (!result.isMember(member.name)) result[member.name] = Json::Value(Json::arrayValue);
      result[member.name].append(Json::Value(value));
      break;
    case Json::objectValue:
      if (!result.isMember(member.name)) result[member.name] = Json::Value(Json::objectValue);
      result[member.name][member.key] = Json::Value(value);
      break;
    default:
      result[member.name] = Json::Value(plain_value(std::move(value)));
      break;
  }
}

// A walk over a form that knows the first option below each select. A second walk, ahead of the
// first, finds it: one for all selects of the form, nested ones included.
class FormWalk {
 public:
  explicit FormWalk(_qo_html* form) : walk_(form), ahead_(form) {}

  _qo_html* next() {
    ++index_;
    return walk_.next();
  }

  // The first option below the current node, or null.
  _qo_html* first_option() {
    while (ahead_index_ <= index_ || !at_option()) {
      if (ahead_.next() == nullptr) return nullptr;
      ++ahead_index_;
    }
    const std::size_t depth = walk_.depth();
    const bool is_below = depth < ahead_.depth() && ahead_.path(depth) == walk_.node();
    return is_below ? ahead_.node() : nullptr;
  }

 private:
  bool at_option() const {
    return ahead_.node() != nullptr && tag_name(*ahead_.node()) == "option";
  }

  TreeWalk walk_;
  TreeWalk ahead_;
  std::size_t index_ = 0;  // of the node of walk_, from 1
  std::size_t ahead_index_ = 0;
};

class FormReader {
 public:
  FormReader(_qo_html* form, Json::Value& result) : form_(form), walk_(form), result_(result) {}

  void read() {
    while (_qo_html* node = walk_.next()) {
      const Attribute* name = find_attribute(*node, "name");
      if (name != nullptr && node != form_) read_control(*node, name->value);
    }
  }

 private:
  void read_control(_qo_html& control, std::string_view name) {
    if (find_attribute(control, "disabled") != nullptr) return;
    const std::string_view type = attribute_value(control, "type");
    const bool checkable = type == "checkbox" || type == "radio";
    if (checkable && find_attribute(control, "checked") == nullptr) return;
    const Member member = split_member_name(name);
    if (member.name.empty()) return;
    store_value(result_, member, std::string(control_value(control, type, checkable ? "1" : "")));
  }

  std::string_view control_value(_qo_html& control, std::string_view type,
                                 std::string_view otherwise) {
    if (type.empty() && tag_name(control) == "select") {
      _qo_html* const option = walk_.first_option();
      return option == nullptr ? std::string_view() : attribute_value(*option, "value");
    }
    const Attribute* value = find_attribute(control, "value");
    return value == nullptr ? otherwise : value->value;
  }

  _qo_html* form_;
  FormWalk walk_;
  Json::Value& result_;
};

}  // namespace

// --- Nodes ---

_qo_html::_qo_html()
    : parent(nullptr),
      nextSibling(nullptr),
      prevSibling(nullptr),
      isComment(false),
      isText(false),
      isRoot(false),
      isCdata(false),
      isVoid(false),
      closed(false),
      isDeclaration(false) {
  qo_object_ref_increment("[qo_html]");
}

_qo_html::~_qo_html() {
  if (!children.empty()) destroy_children(this);
  attributes.clear();
  classes.clear();
  if (parent == nullptr) destroy_following_siblings(this);
  nextSibling = nullptr;
  prevSibling = nullptr;
  parent = nullptr;
  qo_object_ref_decrement("[qo_html]");
}

_qo_html* qo_html_document_new(std::string source) {
  _qo_html* const node = new _qo_html;
  node->isRoot = true;
  node->source = std::move(source);
  node->closed = true;
  return node;
}

_qo_html* qo_html_element_new(std::string name) {
  NodeOwner node(new _qo_html);
  node->tag = std::move(name);
  int kind = 1;
  node->isVoid = is_void_tag(node->tag, &kind);
  node->isDeclaration = kind != 1;
  node->closed = true;
  return node.release();
}

_qo_html* qo_html_text_node_new(std::string text) {
  _qo_html* const node = new _qo_html;
  node->closed = true;
  node->isText = true;
  node->text = std::move(text);
  return node;
}

std::string _qo_html::tagName() {
  return std::string(tag_name(*this));
}

_qo_html* _qo_html::next() {
  return skip_text(nextSibling, &_qo_html::nextSibling);
}

_qo_html* _qo_html::prev() {
  return skip_text(prevSibling, &_qo_html::prevSibling);
}

_qo_html* _qo_html::get_child_at(unsigned long index) {
  return index < children.size() ? children[index] : nullptr;
}

// --- Editing ---

bool qo_html_inner::append_child(_qo_html* parent, _qo_html* child, ChildCheck& check) {
  check.report(child != nullptr);
  if (child == nullptr) return false;
  std::vector<_qo_html*>& children = parent->children;
  _qo_html* const last = children.empty() ? nullptr : children.back();
  if (last != nullptr && last->nextSibling != nullptr) {
    child->parent = parent;
    std::cout << "child next is already set before?" << std::endl;
    return false;
  }
  // The smallest heap block holds three pointers.
  if (children.capacity() == 0) children.reserve(3);
  children.push_back(child);
  child->parent = parent;
  if (last != nullptr) {
    child->prevSibling = last;
    last->nextSibling = child;
  }
  return true;
}

bool _qo_html::add_child(_qo_html* child) {
  ChildCheck check;
  return append_child(this, child, check);
}

void _qo_html::detach() {
  if (parent != nullptr) {
    const Place place = place_in(parent, this);
    if (place.parent != nullptr) parent->children.erase(place.position);
    parent = nullptr;
  }
  link(prevSibling, nextSibling);
  nextSibling = nullptr;
  prevSibling = nullptr;
}

bool _qo_html::insert_after(_qo_html* node, _qo_html* ref) {
  if (node == nullptr || ref == nullptr) return false;
  const Place place = find_place(this, ref);
  if (place.parent == nullptr) return false;
  std::vector<_qo_html*>& siblings = place.parent->children;
  const ChildPosition inserted = siblings.insert(std::next(place.position), node);
  const ChildPosition following = std::next(inserted);
  node->parent = place.parent;
  link(ref, node);
  link(node, following == siblings.end() ? nullptr : *following);
  return true;
}

bool _qo_html::insert_before(_qo_html* node, _qo_html* ref) {
  if (node == nullptr || ref == nullptr) return false;
  const Place place = find_place(this, ref);
  if (place.parent == nullptr) return false;
  place.parent->children.insert(place.position, node);
  node->parent = place.parent;
  link(ref->prevSibling, node);
  link(node, ref);
  return true;
}

bool _qo_html::replace_with(_qo_html* oldNode, _qo_html* newNode) {
  if (!insert_before(newNode, oldNode)) return false;
  oldNode->detach();
  delete oldNode;
  return true;
}

bool _qo_html::set_text(std::string content) {
  if (isText) {
    text = std::move(content);
    return true;
  }
  if (isVoid) return false;
  // Whatever can fail for want of memory comes before the old children go.
  std::unique_ptr<void, void (*)(void*)> storage(::operator new(sizeof(_qo_html)),
                                                 [](void* memory) { ::operator delete(memory); });
  children.reserve(1);
  ChildCheck check;
  check.prepare();
  destroy_children(this);
  NodeOwner node(new (storage.get()) _qo_html);
  storage.release();
  node->isText = true;
  node->text = std::move(content);
  if (append_child(this, node.get(), check)) node.release();
  return true;
}

bool _qo_html::set_html(std::string html) {
  if (isVoid) return false;
  _qo_html* parsed = nullptr;
  if (!parseHtml(parsed, std::move(html), source, true, false)) return false;
  const NodeOwner document(parsed);
  destroy_children(this);
  children.swap(document->children);
  for (_qo_html* child : children) child->parent = this;
  return true;
}

// --- Attributes and classes ---

void qo_html_inner::add_attribute(_qo_html& node, Attribute* existing, std::string_view name,
                                  int has_value, std::string_view value) {
  if (has_value == 0 || name != "class") {
    put_record(node, existing, name, has_value, value);
    return;
  }
  const std::size_t former = node.classes.size();
  try {
    append_tokens(node.classes, value);
    put_record(node, existing, name, has_value, value);
  } catch (...) {
    node.classes.resize(former);
    throw;
  }
}

void _qo_html::addAttribute(std::string name, std::string value) {
  add_attribute(*this, find_attribute(*this, name), name, 1, value);
}

void _qo_html::addAttribute(std::string name) {
  set_attribute(std::move(name));
}

void _qo_html::set_attribute(std::string name, std::string value) {
  put_record(*this, name, 1, value);
}

void _qo_html::set_attribute(std::string name) {
  put_record(*this, name, 0, {});
}

void _qo_html::remove_attribute(std::string name) {
  if (Attribute* attribute = find_attribute(*this, name)) {
    attributes.erase(attributes.begin() + (attribute - attributes.data()));
  }
}

bool _qo_html::has_attribute(std::string name) {
  return find_attribute(*this, name) != nullptr;
}

std::string _qo_html::get_attribute(std::string name) {
  return std::string(attribute_value(*this, name));
}

std::string _qo_html::id() {
  return std::string(attribute_value(*this, "id"));
}

void _qo_html::add_class(std::string cls) {
  if (has_token(classes, cls)) return;
  std::string joined;
  for (const std::string& token : classes) append_joined(joined, token);
  append_joined(joined, cls);
  classes.push_back(std::move(cls));
  try {
    set_class_attribute(*this, joined);
  } catch (...) {
    classes.pop_back();
    throw;
  }
}

void _qo_html::remove_class(std::string cls) {
  const auto removed = std::find(classes.begin(), classes.end(), cls);
  if (removed == classes.end()) return;
  std::string joined;
  for (auto token = classes.begin(); token != classes.end(); ++token) {
    if (token != removed) append_joined(joined, *token);
  }
  set_class_attribute(*this, joined);
  classes.erase(removed);
}

bool _qo_html::has_class(std::string cls) {
  return has_token(classes, cls);
}

// --- Writing out ---

std::string _qo_html::formatAttribute() {
  std::string out;
  try {
    append_attributes(out, *this);
  } catch (...) {
    std::cerr << "bad alloc formatAttribute" << std::endl;
    out.clear();
  }
  return out;
}

std::string _qo_html::outerHTML() {
  const bool plain_text = isText && !isRoot;
  try {
    if (plain_text) return textContent();
    std::string out;
    append_markup(out, this);
    return out;
  } catch (...) {
    if (plain_text) {
      std::cerr << "bad alloc innerHtml  TextContent" << std::endl;
    } else {
      std::cerr << "fuck bad alloc outer HTML: " << tag_name(*this) << std::endl;
    }
    return std::string();
  }
}

std::string _qo_html::innerHTML() {
  if (isText) return textContent();
  std::string out;
  for (_qo_html* child : children) append_markup(out, child);
  return out;
}

std::string _qo_html::textContent() {
  if (isText) {
    try {
      return text;
    } catch (...) {
      std::cerr << "bad alloc textContent: " << std::endl;
    }
  }
  std::string out;
  for (_qo_html* child : children) append_text(out, child);
  return out;
}

// --- Searching ---

void _qo_html::getElementsByTagName(std::string name, std::vector<_qo_html*>& out,
                                    _qo_html* childOf) {
  search(this, out, childOf, HasTagName{name});
}

void _qo_html::getElementsById(std::string id, std::vector<_qo_html*>& out, _qo_html* childOf) {
  search(this, out, childOf, HasId{id});
}

void _qo_html::getElementsByAttr(std::string name, std::vector<_qo_html*>& out, _qo_html* childOf,
                                 std::string value, bool matchValue) {
  search(this, out, childOf, HasAttribute{name, value, matchValue});
}

void _qo_html::getElementsByClassName(std::string name, std::vector<_qo_html*>& out,
                                      _qo_html* childOf) {
  search(this, out, childOf, HasClass{name});
}

// --- Queries ---

qo_html_query::qo_html_query(_qo_html* node) : context(node) {}

qo_html_query::~qo_html_query() {
  context = nullptr;
}

qo_html_query& qo_html_query::find(std::string selector) {
  const SelectorChain chain = parse_selector(selector);
  if (std::none_of(chain.begin(), chain.end(), is_simple)) return *this;
  Selection selection(context, nodes);
  for (const auto& step : chain) selection.apply(*step);
  nodes = selection.take();
  return *this;
}

qo_html_query& qo_html_query::each(std::function<bool(unsigned long, _qo_html*)> visit) {
  const unsigned long count = nodes.size();
  for (unsigned long i = 0; i < count && visit(i, nodes[i]); ++i) {
  }
  return *this;
}

std::string qo_html_query::text() {
  std::string out;
  for (_qo_html* node : nodes) append_text(out, node);
  return out;
}

unsigned long qo_html_query::length() {
  return nodes.size();
}

_qo_html* qo_html_query::get(unsigned long index) {
  return index < nodes.size() ? nodes[index] : nullptr;
}

qo_html_query& qo_html_query::use_one(unsigned long index) {
  if (index < nodes.size()) context = nodes[index];
  nodes.clear();
  if (context != nullptr) nodes.push_back(context);
  return *this;
}

// --- Form values ---

bool _qo_html::get_form_values(Json::Value& result) {
  if (!result.isObject()) result = Json::Value(Json::objectValue);
  FormReader(this, result).read();
  return true;
}
