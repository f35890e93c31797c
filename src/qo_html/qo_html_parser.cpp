#include <qo_html/qo_html_parser.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <iostream>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <qo_html/qo_html_ascii.h>
#include <qo_html/qo_html_node.h>

using namespace qo_html_inner;

namespace {

// --- Character classes ---

enum CharClass : std::uint8_t {
  in_element_name = 1 << 0,    // allowed in the name of an ordinary element
  in_attribute_name = 1 << 1,  // goes on with an attribute name
  in_tag_name = 1 << 2         // goes on with a tag name, once that has begun
};

constexpr auto make_char_classes() {
  std::array<std::uint8_t, 256> classes{};
  for (std::size_t i = 0; i < classes.size(); ++i) {
    const char c = static_cast<char>(i);
    const bool ends_name = c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '/' || c == '>';
    std::uint8_t bits = 0;
    if (is_letter_or_digit(c) || c == ':' || c == '_') bits |= in_element_name;
    if (!ends_name && c != '=') bits |= in_attribute_name;
    if (!ends_name && c != '-' && c != '[') bits |= in_tag_name;
    classes[i] = bits;
  }
  return classes;
}

constexpr std::array<std::uint8_t, 256> char_classes = make_char_classes();

bool is(char c, CharClass char_class) {
  return (char_classes[static_cast<unsigned char>(c)] & char_class) != 0;
}

// --- Tag names ---

struct TagName {
  std::size_t position;    // where scanning goes on
  std::size_t start;       // of the name
  std::size_t length = 0;  // of the name; 0 when there is none
  bool ended = false;      // by a byte that ends names, not by the end of the text
  bool attributes_follow = false;
  bool saw_slash = false;
};

// Skips the blanks and slashes in front of a name; tells whether there were slashes.
bool skip_to_name(const std::string& html, std::size_t& position) {
  bool slash = false;
  for (; position < html.size(); ++position) {
    if (html[position] == '/') {
      slash = true;
    } else if (html[position] != ' ') {
      break;
    }
  }
  return slash;
}

void end_name(TagName& name, std::size_t end) {
  name.length = end - name.start;
  name.ended = true;
}

TagName scan_tag_name(const std::string& html, std::size_t start) {
  TagName name{start, start};
  std::size_t& i = name.position;
  const bool leading_slash = skip_to_name(html, i);
  name.saw_slash = leading_slash;
  if (i >= html.size()) return name;
  name.start = i;
  int markers = html[i] == '!' ? 1 : 0;  // a leading "!", and every "-" and "["
  for (;;) {
    while (i < html.size() && is(html[i], in_tag_name)) ++i;
    if (i == html.size()) return name;
    switch (html[i]) {
      case '/':
        name.saw_slash = true;
        break;
      case '-':
      case '[':  // the third belongs to the name: "!--" and "![CDATA["
        if (++markers < 3) break;
        end_name(name, i + 1);
        ++i;
        return name;
      case '>':  // the slash of a self-closing tag is the last byte in front of it
        end_name(name, name.saw_slash && !leading_slash ? i - 1 : i);
        ++i;
        return name;
      default:  // white space
        end_name(name, i);
        name.attributes_follow = true;
        return name;
    }
    ++i;
  }
}

constexpr std::string_view void_tags[] = {"br",   "input",  "img",   "hr",     "area",
                                          "base", "col",    "embed", "keygen", "link",
                                          "meta", "source", "track", "wbr"};

// By kind code, from 2.
constexpr std::string_view declarations[] = {"!doctype", "?xml"};

bool equals_lowered(std::string_view name, std::string_view lower) {
  if (name.size() != lower.size()) return false;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (to_lower(name[i]) != lower[i]) return false;
  }
  return true;
}

// For each length of a name, a bit for every letter that a void tag or declaration of that length
// begins with: few other names need more than a look here.
constexpr std::uint32_t first_letter_bit(char c) {
  return std::uint32_t{1} << (c & 31);
}

constexpr auto make_first_letters() {
  std::array<std::uint32_t, 9> letters{};
  for (const std::string_view tag : void_tags) letters[tag.size()] |= first_letter_bit(tag[0]);
  for (const std::string_view tag : declarations) letters[tag.size()] |= first_letter_bit(tag[0]);
  return letters;
}

constexpr std::array<std::uint32_t, 9> first_letters = make_first_letters();

bool may_be_void(std::string_view name) {
  return !name.empty() && name.size() < first_letters.size() &&
         (first_letters[name.size()] & first_letter_bit(name[0])) != 0;
}

}  // namespace

std::string getElementTagName(std::string& html, std::size_t& position, std::size_t& nameStart,
                              std::size_t& nameLength, bool& has_attributes, bool& sawSlash) {
  try {
    const TagName name = scan_tag_name(html, position);
    position = name.position;
    nameStart = name.start;
    nameLength = name.length;
    sawSlash = name.saw_slash;
    if (name.ended) has_attributes = name.attributes_follow;
    if (nameLength > 0) return html.substr(nameStart, nameLength);
    const std::string_view rest =
        std::string_view(html).substr(std::min(nameStart, html.size()), 20);
    std::cout << "unable to get element tag name: " << rest << std::endl;
  } catch (...) {
    std::cerr << "exception in getElementTagName" << std::endl;
  }
  return std::string();
}

bool is_void_tag(const std::string& name, int* kind) {
  *kind = 1;
  if (!may_be_void(name)) return false;
  for (const std::string_view tag : void_tags) {
    if (equals_lowered(name, tag)) return true;
  }
  for (int i = 0; i < 2; ++i) {
    if (equals_lowered(name, declarations[i])) *kind = 2 + i;
  }
  return *kind != 1;
}

bool is_script_tag(const std::string& name) {
  return std::string_view(name) == "script" || std::string_view(name) == "SCRIPT";
}

bool is_style_tag(const std::string& name) {
  return std::string_view(name) == "style" || std::string_view(name) == "STYLE";
}

bool is_comment_tag(const std::string& name) {
  return std::string_view(name) == "!--";
}

bool is_cdata_tag(const std::string& name) {
  return std::string_view(name) == "![CDATA[";
}

// --- Attributes ---

namespace {

// Text collected run by run. As long as it is one run, which it nearly always is, it stays where it
// is in the markup.
class Collected {
 public:
  void append(const char* start, const char* end) {
    const std::string_view run(start, static_cast<std::size_t>(end - start));
    if (text_.empty()) {
      text_ = run;
      return;
    }
    if (!is_copy()) copy_.assign(text_);
    text_ = copy_.append(run);
  }

  void clear() {
    text_ = {};
    copy_.clear();
  }

  bool empty() const { return text_.empty(); }
  bool is_copy() const { return !copy_.empty(); }
  std::string_view text() const { return text_; }

 private:
  std::string_view text_;
  std::string copy_;
};

// Adds the attributes of one start tag to a node, as addAttribute does. They wait in batches, so
// that most nodes get their attributes into one block of the right size; and when they are many, an
// index finds those of the same name.
class AttributeAdder {
 public:
  explicit AttributeAdder(_qo_html* node) : node_(*node) {}

  // What the views point to must stay until flush().
  void add(std::string_view name, int has_value, std::string_view value) {
    waiting_[count_++] = {name.data(), name.size(), value.data(), value.size(), has_value};
    if (count_ == batch) flush();
  }

  void flush() {
    if (node_.attributes.empty()) node_.attributes.reserve(count_);
    for (std::size_t i = 0; i < count_; ++i) {
      const Waiting& next = waiting_[i];
      const std::string_view name(next.name, next.name_size);
      add_attribute(node_, find(name), name, next.has_value, {next.value, next.value_size});
    }
    count_ = 0;
  }

 private:
  struct Waiting {  // bare pointers, so that an array of it costs nothing to make
    const char* name;
    std::size_t name_size;
    const char* value;
    std::size_t value_size;
    int has_value;
  };

  using Index = std::unordered_map<std::string, std::size_t>;  // positions by name

  static constexpr std::size_t batch = 8;
  static constexpr std::size_t most_without_index = 16;

  Attribute* find(std::string_view name) {
    std::vector<Attribute>& attributes = node_.attributes;
    if (attributes.size() < most_without_index) return find_attribute(node_, name);
    if (index_ == nullptr) index_ = std::make_unique<Index>();
    for (; indexed_ < attributes.size(); ++indexed_) {
      index_->emplace(attributes[indexed_].name, indexed_);
    }
    const auto found = index_->find(std::string(name));
    return found == index_->end() ? nullptr : &attributes[found->second];
  }

  _qo_html& node_;
  Waiting waiting_[batch];
  std::size_t count_ = 0;
  std::unique_ptr<Index> index_;
  std::size_t indexed_ = 0;  // attributes
};

// The state machine that reads the attributes of one start tag. Runs of bytes that mean nothing to
// it are taken at once.
class AttributeLexer {
 public:
  AttributeLexer(_qo_html* node, const std::string& html, std::size_t position)
      : node_(node), adder_(node), i_(html.data() + position), end_(html.data() + html.size()) {}

  void read() {
    while (i_ != end_ && !finished_) {
      if (!in_value_) {
        name_state();
      } else if (quote_ != '\0') {
        quoted_run();
      } else {
        value_state();
      }
    }
    adder_.flush();
    if (finished_ && self_closing_) node_->closed = true;
  }

  const char* stopped_at() const { return i_; }

 private:
  void name_state() {
    switch (*i_) {
      case '\r':
      case '\n':
        break;
      case '\t':
      case ' ':
        add_bare();
        break;
      case '/':
        self_closing_ = true;
        break;
      case '>':
        add_bare();
        finished_ = true;
        break;
      case '=':
        in_value_ = true;
        break;
      default:
        name_run();
        return;
    }
    ++i_;
  }

  void name_run() {
    const char* const start = i_;
    while (i_ != end_ && is(*i_, in_attribute_name)) ++i_;
    collect(name_, start);
    if (end_ - i_ > 1 && i_[0] == '=' && (i_[1] == '"' || i_[1] == '\'')) enter_quoted_value();
  }

  // What nearly every attribute does, in one step.
  void enter_quoted_value() {
    in_value_ = true;
    quote_ = i_[1];
    i_ += 2;
    quoted_run();
  }

  // Outside quotes.
  void value_state() {
    switch (*i_) {
      case '\'':
      case '"':
        quote_ = *i_;
        break;
      case '/':
        self_closing_ = true;
        quote_closed_ = false;
        break;
      case '>':
        add_valued();
        finished_ = true;
        break;
      case ' ':
        add_valued();
        break;
      default:
        // What follows a value begins the next name; what precedes it is dropped.
        if (quote_closed_ || !value_.empty()) {
          add_valued();
          return;
        }
        break;
    }
    ++i_;
  }

  void quoted_run() {
    const char* const start = i_;
    const void* close = std::memchr(i_, quote_, static_cast<std::size_t>(end_ - i_));
    i_ = close == nullptr ? end_ : static_cast<const char*>(close);
    collect(value_, start);
    if (close == nullptr) return;
    quote_ = '\0';
    quote_closed_ = true;
    ++i_;
  }

  // A further run is copied, for which memory may be missing: what was read whole is stored first.
  void collect(Collected& collected, const char* start) {
    if (!collected.empty()) adder_.flush();
    collected.append(start, i_);
  }

  void add_bare() {
    if (!name_.empty()) add(0);
  }

  void add_valued() {
    add(1);
    in_value_ = false;
    quote_closed_ = false;
  }

  void add(int has_value) {
    adder_.add(name_.text(), has_value, value_.text());
    if (name_.is_copy() || value_.is_copy()) adder_.flush();
    name_.clear();
    value_.clear();
  }

  _qo_html* node_;
  AttributeAdder adder_;
  const char* i_;
  const char* end_;
  Collected name_;
  Collected value_;
  char quote_ = '\0';  // the quote character that the value is in
  bool in_value_ = false;
  bool quote_closed_ = false;
  bool self_closing_ = false;
  bool finished_ = false;
};

}  // namespace

void parse_attribute(_qo_html*& node, std::string& html, std::size_t& position) {
  if (position >= html.size()) return;
  try {
    AttributeLexer lexer(node, html, position);
    lexer.read();
    position = static_cast<std::size_t>(lexer.stopped_at() - html.data());
  } catch (...) {
    std::cout << "exception in parse attribute" << std::endl;
  }
}

// --- Raw content ---

namespace {

constexpr std::size_t not_found = std::string::npos;

NodeOwner new_text_node(std::string_view text) {
  NodeOwner node(new _qo_html);
  node->closed = true;
  node->isText = true;
  node->text.assign(text);
  return node;
}

// Appends html[start, end) to `node` as one text child.
bool append_raw_text(_qo_html* node, const std::string& html, std::size_t start, std::size_t end,
                     ChildCheck& check) {
  NodeOwner text = new_text_node(std::string_view(html).substr(start, end - start));
  if (!append_child(node, text.get(), check)) return false;
  text.release();
  return true;
}

void move_to_end(const std::string& html, std::size_t& position) {
  position = std::max(position, html.size());
}

constexpr std::string_view comment_end = "-->";
constexpr std::string_view cdata_end = "]]>";
constexpr std::string_view end_tag_start = "</";
constexpr std::size_t script_length = std::string_view("script").size();
constexpr std::size_t style_length = std::string_view("style").size();

using TagTest = bool (*)(const std::string& name);

// Whether an end tag "</name>" whose name is `length` bytes long is at `at`, where a "<" is.
bool end_tag_at(const std::string& html, std::size_t at, std::size_t length, TagTest accepts) {
  const std::size_t name = at + end_tag_start.size();
  const std::size_t bracket = name + length;
  return bracket < html.size() && html[at + 1] == '/' && html[bracket] == '>' &&
         accepts(html.substr(name, length));
}

// Gives `node` the content up to `end`, where the end tag of a name of `length` bytes is.
bool read_raw_element(_qo_html* node, const std::string& html, std::size_t& position,
                      std::size_t end, std::size_t length, ChildCheck& check) {
  if (end == not_found) {
    move_to_end(html, position);
    return false;
  }
  node->closed = true;
  if (!append_raw_text(node, html, position, end, check)) return false;
  position = end + end_tag_start.size() + length + 1;
  return true;
}

// Runs a reader; an exception costs a line on standard error and gives null or false.
template <class Reader>
auto guarded(const char* complaint, Reader reader) -> decltype(reader()) {
  try {
    return reader();
  } catch (...) {
    std::cerr << complaint << std::endl;
    return {};
  }
}

// The end tag of a script is not looked for within quotes. They know nothing of escapes and
// comments.
std::size_t find_script_end(const std::string& html, std::size_t from) {
  for (std::size_t i = from; i < html.size(); ++i) {
    const char c = html[i];
    if (c == '\'' || c == '"') {
      i = html.find(c, i + 1);
      if (i == not_found) break;
    } else if (c == '<' && end_tag_at(html, i, script_length, is_script_tag)) {
      return i;
    }
  }
  return not_found;
}

std::size_t find_style_end(const std::string& html, std::size_t from) {
  std::size_t i = html.find('<', from);
  while (i != not_found && !end_tag_at(html, i, style_length, is_style_tag)) {
    i = html.find('<', i + 1);
  }
  return i;
}

// The readers of raw content, with a check that serves many calls.

_qo_html* read_comment(const std::string& html, std::size_t& position, ChildCheck& check) {
  return guarded("exception in parse_comment_node", [&]() -> _qo_html* {
    const std::size_t end = html.find(comment_end, position);
    if (end == not_found) {
      move_to_end(html, position);
      return nullptr;
    }
    NodeOwner comment(new _qo_html);
    comment->isComment = true;
    comment->closed = true;
    append_raw_text(comment.get(), html, position, end, check);
    position = end + comment_end.size();
    return comment.release();
  });
}

bool read_cdata(_qo_html* node, const std::string& html, std::size_t& position, ChildCheck& check) {
  return guarded("exception in parse_cdata_node", [&] {
    const std::size_t end = html.find(cdata_end, position);
    if (end == not_found) {
      move_to_end(html, position);
      return false;
    }
    node->closed = true;
    node->isCdata = true;
    if (!append_raw_text(node, html, position, end, check)) return false;
    position = end + cdata_end.size();
    return true;
  });
}

bool read_script(_qo_html* node, const std::string& html, std::size_t& position,
                 ChildCheck& check) {
  return guarded("exception in parse_script_node", [&] {
    return read_raw_element(node, html, position, find_script_end(html, position), script_length,
                            check);
  });
}

bool read_style(_qo_html* node, const std::string& html, std::size_t& position, ChildCheck& check) {
  return guarded("exception in get element tag", [&] {
    return read_raw_element(node, html, position, find_style_end(html, position), style_length,
                            check);
  });
}

}  // namespace

_qo_html* parse_comment_node(std::string& html, std::size_t& position) {
  ChildCheck check;
  return read_comment(html, position, check);
}

bool parse_cdata_node(_qo_html*& node, std::string& html, std::size_t& position) {
  ChildCheck check;
  return read_cdata(node, html, position, check);
}

bool parse_script_node(_qo_html*& node, std::string& html, std::size_t& position) {
  ChildCheck check;
  return read_script(node, html, position, check);
}

bool parse_style_node(_qo_html*& node, std::string& html, std::size_t& position) {
  ChildCheck check;
  return read_style(node, html, position, check);
}

// --- The main loop ---

namespace {

constexpr std::string_view this_file = "src/qo_html/qo_html_parser";

constexpr CheckTexts parent_texts = {"root->parent !=nullptr", "element must have a parent ",
                                     this_file};
constexpr CheckTexts name_texts = {"tagName.length()", "tagName find fail", this_file};
constexpr CheckTexts root_texts = {"root != nullptr", "root must not be null", this_file};
constexpr CheckTexts close_texts = {"root->closed == false", "should not close same tag twice",
                                    this_file};
constexpr CheckTexts cdata_texts = {"!has_attributes", "CDATA section must not have attributes",
                                    this_file};
constexpr CheckTexts open_texts = {
    "root->closed == false", "root element must not be closed before appending child ", this_file};
constexpr CheckTexts next_root_texts = {"root->closed==false", "Next root must not be closed",
                                        this_file};
constexpr CheckTexts end_texts = {"root->isRoot", "MUST END WITH THE ROOT", this_file};
constexpr CheckTexts no_parent_texts = {"root->parent == nullptr", "root must not have parent",
                                        this_file};

class ContentParser {
 public:
  ContentParser(_qo_html*& root, std::string& html, bool drop_comments)
      : root_(root), html_(html), drop_comments_(drop_comments) {}

  bool run() {
    for (;;) {
      const std::size_t start = position_;
      position_ = std::min(html_.find('<', start), html_.size());
      if (position_ == html_.size()) return end_of_text(start);
      switch (markup(start)) {
        case Outcome::go_on:
          break;
        case Outcome::finished:
          return true;
        case Outcome::failed:
          return false;
      }
    }
  }

 private:
  enum class Outcome { go_on, finished, failed };

  // At a "<"; the text in front of it begins at `text_start`.
  Outcome markup(std::size_t text_start) {
    if (!root_->isRoot) {
      parent_check_.report(root_->parent != nullptr, tag_name(*root_));
    }
    append_pending_text(text_start);
    ++position_;
    bool saw_slash = false;
    has_attributes_ = false;
    const std::string name =
        getElementTagName(html_, position_, name_start_, name_length_, has_attributes_, saw_slash);
    name_check_.report(!name.empty());

    int kind = 1;
    if (is_void_tag(name, &kind)) return void_element(kind);
    if (saw_slash) return end_tag(name);
    if (is_cdata_tag(name)) return cdata_section();
    if (is_script_tag(name)) return raw_element(read_script);
    if (is_style_tag(name)) return raw_element(read_style);
    if (!is_comment_tag(name)) return ordinary_element();
    return comment();
  }

  Outcome void_element(int kind) {
    NodeOwner node = new_element();
    node->isDeclaration = kind != 1;
    node->closed = true;
    node->isVoid = true;
    read_attributes(node);
    append(std::move(node));
    return Outcome::go_on;
  }

  // Only an end tag named like the current node closes anything.
  Outcome end_tag(const std::string& name) {
    root_check_.report(root_ != nullptr);
    return name == tag_name(*root_) ? close_root() : stray_end_tag(name);
  }

  Outcome stray_end_tag(const std::string& name) {
    NodeOwner node(new _qo_html);
    node->closed = true;
    node->tag = name;
    append(std::move(node));
    return Outcome::go_on;
  }

  Outcome close_root() {
    close_check_.report(!root_->closed);
    root_->closed = true;
    if (root_->parent == nullptr) return root_->isRoot ? Outcome::finished : Outcome::failed;
    if (root_->parent->closed) return Outcome::failed;
    root_ = root_->parent;
    return Outcome::go_on;
  }

  Outcome cdata_section() {
    NodeOwner node = new_element();
    node->isCdata = true;
    cdata_check_.report(!has_attributes_);
    _qo_html* const section = node.get();
    if (!read_cdata(section, html_, position_, child_check_) || !append(std::move(node))) {
      return Outcome::failed;
    }
    return section->closed ? Outcome::go_on : Outcome::failed;
  }

  using ContentReader = bool (*)(_qo_html* node, const std::string& html, std::size_t& position,
                                 ChildCheck& check);

  Outcome raw_element(ContentReader reader) {
    NodeOwner node = new_element();
    read_attributes(node);
    _qo_html* const element = node.get();
    if (!reader(element, html_, position_, child_check_) || !append(std::move(node))) {
      return Outcome::failed;
    }
    if (!element->closed) root_ = element;
    return Outcome::go_on;
  }

  Outcome ordinary_element() {
    NodeOwner node = new_element();
    read_attributes(node);
    open_check_.report(!root_->closed, tag_name(*root_));
    _qo_html* const element = node.get();
    if (!append(std::move(node)) || !name_is_valid(element->tag)) return Outcome::failed;
    if (element->closed) {
      next_root_check_.report(!root_->closed);
    } else {
      root_ = element;
    }
    return Outcome::go_on;
  }

  Outcome comment() {
    NodeOwner node(read_comment(html_, position_, child_check_));
    if (node == nullptr) return Outcome::failed;
    if (drop_comments_) return Outcome::go_on;
    set_tag(*node);
    node->isComment = true;
    return append(std::move(node)) ? Outcome::go_on : Outcome::failed;
  }

  // Whatever is still open is closed here.
  bool end_of_text(std::size_t text_start) {
    append_pending_text(text_start);
    while (!root_->isRoot) {
      root_->closed = true;
      if (root_->parent == nullptr) break;
      root_ = root_->parent;
    }
    Check<end_texts>().report(root_->isRoot);
    Check<no_parent_texts>().report(root_->parent == nullptr);
    root_->closed = true;
    return true;
  }

  void append_pending_text(std::size_t start) {
    if (start == position_) return;
    append(new_text_node(std::string_view(html_).substr(start, position_ - start)));
  }

  // A node named as written in the tag.
  NodeOwner new_element() {
    NodeOwner node(new _qo_html);
    set_tag(*node);
    return node;
  }

  void set_tag(_qo_html& node) { node.tag.assign(html_, name_start_, name_length_); }

  void read_attributes(const NodeOwner& node) {
    _qo_html* element = node.get();
    if (has_attributes_) parse_attribute(element, html_, position_);
  }

  // Gives the node to the current node; a refused one is destroyed.
  bool append(NodeOwner node) {
    if (!append_child(root_, node.get(), child_check_)) return false;
    node.release();
    return true;
  }

  static bool name_is_valid(const std::string& name) {
    for (std::size_t i = 0; i < name.size(); ++i) {
      if (is(name[i], in_element_name)) continue;
      std::cout << "invalid tag name 1: '" << name << "' at char index: " << std::to_string(i)
                << " '" << name[i] << "'" << std::endl;
      return false;
    }
    return true;
  }

  _qo_html*& root_;
  std::string& html_;
  const bool drop_comments_;
  std::size_t position_ = 0;

  // The tag at hand.
  std::size_t name_start_ = 0;
  std::size_t name_length_ = 0;
  bool has_attributes_ = false;

  Check<parent_texts> parent_check_;
  Check<name_texts> name_check_;
  Check<root_texts> root_check_;
  Check<close_texts> close_check_;
  Check<cdata_texts> cdata_check_;
  Check<open_texts> open_check_;
  Check<next_root_texts> next_root_check_;
  ChildCheck child_check_;
};

}  // namespace

bool parse_html_content(_qo_html*& root, std::string& html, bool dropComments,
                        bool /*reservedFlag*/) {
  return guarded("exception in parse html content",
                 [&] { return ContentParser(root, html, dropComments).run(); });
}

bool parseHtml(_qo_html*& out, std::string html, std::string source, bool dropComments,
               bool reservedFlag) {
  NodeOwner document(qo_html_document_new(std::move(source)));
  document->closed = false;
  _qo_html* root = document.get();
  if (!parse_html_content(root, html, dropComments, reservedFlag)) return false;
  document.release();
  out = root;
  return true;
}
