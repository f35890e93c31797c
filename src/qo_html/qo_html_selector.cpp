#include <qo_html/qo_html_selector.h>

#include <cstring>
#include <utility>

#include <qo_html/qo_html_ascii.h>

using namespace qo_html_inner;

namespace {

// Builds the chain, one step after the other.
class ChainBuilder {
 public:
  htmlSelector* last() const { return steps_.empty() ? nullptr : steps_.back().get(); }

  void add(SelectorKind kind, std::string token) {
    htmlSelector* previous = last();
    steps_.push_back(std::make_unique<htmlSelector>(kind, std::move(token)));
    last()->prevSelector = previous;
    if (previous != nullptr) previous->nextSelector = last();
  }

  void add_descendant() {
    if (last() == nullptr || last()->type != SEL_DESCENDANT) add(SEL_DESCENDANT, " ");
  }

  // A child combinator is first or comes after a descendant step.
  void add_child() {
    if (last() != nullptr) add_descendant();
    add(SEL_CHILD, ">");
  }

  SelectorChain take() { return std::move(steps_); }

 private:
  SelectorChain steps_;
};

struct Sigil {
  char character;
  SelectorKind kind;
};

constexpr Sigil sigils[] = {{'.', SEL_CLASS}, {'#', SEL_ID}, {':', SEL_PSEUDO}, {'[', SEL_ATTR}};

// The kind of a simple selector that has a name; moves past its sigil.
SelectorKind read_kind(const char*& cursor) {
  for (const Sigil& sigil : sigils) {
    if (*cursor == sigil.character) {
      ++cursor;
      return sigil.kind;
    }
  }
  return SEL_TAG;
}

}  // namespace

htmlSelector::htmlSelector(std::int32_t kind, std::string text)
    : type(kind), token(std::move(text)), prevSelector(nullptr), nextSelector(nullptr) {}

htmlSelector::~htmlSelector() = default;

SelectorChain qo_html_inner::parse_selector(const std::string& selector) {
  ChainBuilder chain;
  for (const char* cursor = selector.c_str(); *cursor != '\0';) {
    if (is_space(*cursor)) {
      chain.add_descendant();
      ++cursor;
    } else if (*cursor == '>') {
      chain.add_child();
      ++cursor;
    } else if (*cursor == '*') {
      chain.add(SEL_ANY, "*");
      ++cursor;
    } else {
      const SelectorKind kind = read_kind(cursor);
      chain.add(kind, read_selector_name(cursor));
    }
  }
  return chain.take();
}

std::string read_selector_name(const char*& cursor) {
  std::string name;
  for (char previous = ' '; *cursor != '\0'; previous = *cursor++) {
    const char c = *cursor;
    if (c == ']') {
      ++cursor;
      break;
    }
    if (std::strchr("#.[>", c) != nullptr || is_space(c)) break;
    if (c == ':' && previous != '\\') break;
    if (c != '\\') name += c;
  }
  return name;
}

bool split_attribute_selector(const std::string& text, std::string& name, std::string& value) {
  bool in_single_quotes = false;
  bool in_double_quotes = false;
  bool split = false;
  for (const char c : text) {
    if (c == '\'') {
      in_single_quotes = !in_single_quotes;
    } else if (c == '"') {
      in_double_quotes = !in_double_quotes;
    } else if (c == '=' && !split && !in_single_quotes && !in_double_quotes) {
      split = true;
    } else {
      (split ? value : name) += c;
    }
  }
  return split;
}
