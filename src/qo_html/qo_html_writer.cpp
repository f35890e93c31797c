#include <qo_html/qo_html_writer.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

#include <qo_html/qo_html_walk.h>

using namespace qo_html_inner;

namespace {

// So many bytes can be read where any std::string has its text, however short that is; 0 where this
// is not known.
#if defined(_GLIBCXX_USE_CXX11_ABI) && _GLIBCXX_USE_CXX11_ABI
constexpr std::size_t block = 16;
#else
constexpr std::size_t block = 0;
#endif

// The end of a string that much is appended to. Room is made once for several pieces, and short
// pieces are copied as whole blocks: the next piece overwrites what was too much.
class Appender {
 public:
  explicit Appender(std::string& out) : out_(out), at_(out.data() + out.size()), end_(at_) {}
  ~Appender() { out_.resize(used()); }
  Appender(const Appender&) = delete;
  Appender& operator=(const Appender&) = delete;

  // For the calls of put() that follow.
  void make_room(std::size_t size) {
    if (static_cast<std::size_t>(end_ - at_) < size + block) grow(size + block);
  }

  void put(char c) { *at_++ = c; }

  void put(std::string_view text) {
    std::memcpy(at_, text.data(), text.size());
    at_ += text.size();
  }

  void put(const std::string& text) {
    const char* const from = text.data();
    const std::size_t size = text.size();
    if (size <= block) {
      std::memcpy(at_, from, block);
    } else if (size <= 2 * block) {  // the two blocks may overlap
      std::memcpy(at_, from, block);
      std::memcpy(at_ + size - block, from + size - block, block);
    } else {
      std::memcpy(at_, from, size);
    }
    at_ += size;
  }

 private:
  std::size_t used() const { return static_cast<std::size_t>(at_ - out_.data()); }

  void grow(std::size_t size) {
    const std::size_t former = used();
    out_.resize(std::max(2 * out_.size(), former + size));
    at_ = out_.data() + former;
    end_ = out_.data() + out_.size();
  }

  std::string& out_;
  char* at_;
  char* end_;
};

enum class Markup { document, text, void_element, cdata, comment, element };

Markup markup_of(const _qo_html& node) {
  if (node.isRoot) return Markup::document;
  if (node.isText) return Markup::text;
  if (node.isVoid) return Markup::void_element;
  if (node.isCdata) return Markup::cdata;
  if (node.isComment) return Markup::comment;
  return Markup::element;
}

void put_attributes(Appender& out, const _qo_html& node) {
  constexpr std::size_t marks = std::string_view(" =\"\"").size();
  for (const Attribute& attribute : node.attributes) {
    out.make_room(attribute.name.size() + attribute.value.size() + marks);
    out.put(' ');
    out.put(attribute.name);
    if (attribute.hasValue == 0) continue;
    out.put('=');
    out.put('"');
    out.put(attribute.value);
    out.put('"');
  }
}

// A tag without attributes.
void put_tag(Appender& out, std::string_view open, const std::string& name,
             std::string_view close) {
  out.make_room(open.size() + name.size() + close.size());
  out.put(open);
  out.put(name);
  out.put(close);
}

void put_mark(Appender& out, std::string_view mark) {
  out.make_room(mark.size());
  out.put(mark);
}

void put_start(Appender& out, const _qo_html& node, Markup markup) {
  switch (markup) {
    case Markup::document:
      break;
    case Markup::text:
      out.make_room(node.text.size());
      out.put(node.text);
      break;
    case Markup::void_element:
      put_tag(out, "<", node.tag, "");
      put_attributes(out, node);
      put_mark(out, node.isDeclaration ? ">" : "/>");
      break;
    case Markup::cdata:
      put_tag(out, "<", node.tag, "");
      break;
    case Markup::comment:
      put_mark(out, "<!--");
      break;
    case Markup::element:
      put_tag(out, "<", node.tag, "");
      put_attributes(out, node);
      put_mark(out, ">");
      break;
  }
}

void put_end(Appender& out, const _qo_html& node, Markup markup) {
  switch (markup) {
    case Markup::document:
    case Markup::text:
    case Markup::void_element:
      break;
    case Markup::cdata:
      put_mark(out, "]]>");
      break;
    case Markup::comment:
      put_mark(out, "-->");
      break;
    case Markup::element:
      put_tag(out, "</", node.tag, ">");
      break;
  }
}

// Writes the start of the node that `walk` has entered, and its end as well when nothing below it
// is written.
void put_entered(Appender& out, TreeWalk& walk) {
  const _qo_html& node = *walk.node();
  const Markup markup = markup_of(node);
  put_start(out, node, markup);
  if (markup == Markup::text || markup == Markup::void_element) {
    walk.skip_children();
  } else if (node.children.empty()) {
    put_end(out, node, markup);
  }
}

}  // namespace

void qo_html_inner::append_markup(std::string& out, _qo_html* start) {
  Appender appender(out);
  TreeWalk walk(start);
  for (;;) {
    switch (walk.step()) {
      case TreeWalk::Event::enter:
        put_entered(appender, walk);
        break;
      case TreeWalk::Event::leave:
        put_end(appender, *walk.node(), markup_of(*walk.node()));
        break;
      case TreeWalk::Event::end:
        return;
    }
  }
}

void qo_html_inner::append_attributes(std::string& out, const _qo_html& node) {
  Appender appender(out);
  put_attributes(appender, node);
}
