#include "selectors.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

#include <qo_html/qo_html_ascii.h>
#include <qo_html/qo_html_walk.h>

#include "session.h"
#include "text.h"

namespace cli {

namespace {

using Nodes = std::vector<_qo_html*>;

bool is_combinator(char c) {
  return is_space(c) || c == '>';
}

// Cuts a selector in front of its combinators, so that its parts, applied one after the other, do
// what the whole does. A pseudo-class that stands alone stays with what follows: it is no step.
std::vector<std::string> split_steps(const std::string& selector) {
  std::vector<std::string> steps;
  std::size_t start = 0;
  for (std::size_t i = 0; i < selector.size();) {
    while (i < selector.size() && is_combinator(selector[i])) ++i;
    const bool is_step = i < selector.size() && selector[i] != ':';
    while (i < selector.size() && !is_combinator(selector[i])) ++i;
    if (!is_step) continue;
    steps.push_back(selector.substr(start, i - start));
    start = i;
  }
  if (start < selector.size()) steps.push_back(selector.substr(start));
  return steps;
}

bool searches_below(const std::string& step) {
  return is_space(step[0]) && step.find('>') == std::string::npos;
}

enum class Which { all, outermost };

// The nodes in document order, or those of them that do not stand below others: a search below
// these finds what a search below all finds, once.
Nodes in_document_order(_qo_html* document, const Nodes& nodes, Which which) {
  const std::unordered_set<_qo_html*> among(nodes.begin(), nodes.end());
  Nodes found;
  TreeWalk walk(document);
  while (found.size() < among.size()) {
    _qo_html* const node = walk.next();
    if (node == nullptr) break;
    if (among.count(node) == 0) continue;
    found.push_back(node);
    if (which == Which::outermost) walk.skip_children();
  }
  return found;
}

}  // namespace

Nodes find_matches(_qo_html* document, const std::string& selector) {
  qo_html_query query(document);
  for (const std::string& step : split_steps(selector)) {
    if (searches_below(step)) {
      query.nodes = in_document_order(document, query.nodes, Which::outermost);
    }
    query.find(step);
  }
  Nodes found = in_document_order(document, query.nodes, Which::all);
  found.erase(std::remove(found.begin(), found.end(), document), found.end());
  return found;
}

namespace {

// Reads a selector as the library does, and notes what a reader of CSS would take otherwise.
class HintFinder {
 public:
  explicit HintFinder(std::string_view selector) : rest_(selector) {}

  std::vector<std::string> find() {
    while (!rest_.empty()) {
      if (is_combinator(rest_[0]) || rest_[0] == '*') {
        rest_.remove_prefix(1);
      } else {
        simple_selector();
      }
    }
    return std::move(hints_);
  }

 private:
  void simple_selector() {
    const char sigil = rest_[0];
    const bool has_sigil = std::string_view(".#:[").find(sigil) != std::string_view::npos;
    if (has_sigil) rest_.remove_prefix(1);
    const std::string_view name = take_name();
    switch (has_sigil ? sigil : '\0') {
      case '[':
        return attribute(name);
      case ':':
        return add(":" + std::string(name) + " has no effect");
      default:
        return plain_name(name);
    }
  }

  // As far as the library reads a name; a "]" ends it and is skipped.
  std::string_view take_name() {
    std::size_t length = 0;
    for (; length < rest_.size(); ++length) {
      const char c = rest_[length];
      if (c == ']' || std::string_view("#.[>").find(c) != std::string_view::npos || is_space(c))
        break;
      if (c == ':' && (length == 0 || rest_[length - 1] != '\\')) break;
    }
    const std::string_view name = rest_.substr(0, length);
    ended_by_bracket_ = length < rest_.size() && rest_[length] == ']';
    rest_.remove_prefix(length + (ended_by_bracket_ ? 1 : 0));
    return name;
  }

  void attribute(std::string_view token) {
    const std::string shown(token);
    if (!ended_by_bracket_) {
      const std::string reason = rest_.empty() ? std::string("nothing follows")
                                               : quoted(rest_.substr(0, 1), 1) + " ends it";
      return add("[" + shown + " is read without a \"]\": " + reason + ", in quotes or not");
    }
    const std::size_t equals = token.find('=');
    if (equals == std::string_view::npos || equals == 0) return;
    if (std::string_view("^$*|~").find(token[equals - 1]) != std::string_view::npos) {
      add("[" + shown + "] looks for an attribute called \"" +
          std::string(token.substr(0, equals)) + "\": \"=\" is the only operator");
    }
  }

  void plain_name(std::string_view name) {
    const std::size_t odd = name.find_first_of(",+~()|*^$=\"'");
    if (odd == std::string_view::npos) return;
    add("\"" + std::string(name) + "\" is read as one name, \"" + std::string(1, name[odd]) +
        "\" included");
  }

  void add(std::string hint) { hints_.push_back(std::move(hint)); }

  std::string_view rest_;
  bool ended_by_bracket_ = false;
  std::vector<std::string> hints_;
};

}  // namespace

std::vector<std::string> selector_hints(const std::string& selector) {
  return HintFinder(selector).find();
}

void give_hints(const std::string& selector, bool strict) {
  for (const std::string& hint : selector_hints(selector)) {
    if (strict) throw Failure("selector: " + hint);
    complain("hint: " + hint);
  }
}

}  // namespace cli
