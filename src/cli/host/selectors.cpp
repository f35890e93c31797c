#include "host/selectors.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <utility>

#include <qo_html/qo_html_walk.h>

#include "io/failure.h"
#include "io/messages.h"
#include "io/text.h"

namespace cli {

namespace {

using Nodes = std::vector<_qo_html*>;

// --- Reading ---

// A simple selector, as the library reads it.
struct Step {
  std::string_view text;  // with the combinators in front of it
  char sigil;             // one of ".#:[*"; 0 for the name of a tag
  std::string_view name;  // after the sigil
  bool has_bracket;       // a "]" ended it
  char stopped_at;        // the character after it; 0 at the end
};

bool is_combinator(char c) {
  return is_blank(c) || c == '>';
}

bool is_one_of(char c, std::string_view characters) {
  return characters.find(c) != std::string_view::npos;
}

// The length of the name that a selector has at `start`.
std::size_t name_length(std::string_view selector, std::size_t start) {
  std::size_t i = start;
  for (; i < selector.size(); ++i) {
    const char c = selector[i];
    if (is_combinator(c) || is_one_of(c, "#.[]")) break;
    if (c == ':' && (i == start || selector[i - 1] != '\\')) break;
  }
  return i - start;
}

std::vector<Step> read_steps(std::string_view selector) {
  std::vector<Step> steps;
  for (std::size_t i = 0; i < selector.size();) {
    const std::size_t start = i;
    while (i < selector.size() && is_combinator(selector[i])) ++i;
    if (i == selector.size()) break;
    const char sigil = is_one_of(selector[i], ".#:[*") ? selector[i++] : '\0';
    const std::size_t length = sigil == '*' ? 0 : name_length(selector, i);
    const std::string_view name = selector.substr(i, length);
    i += length;
    const bool has_bracket = sigil != '*' && i < selector.size() && selector[i] == ']';
    if (has_bracket) ++i;
    const char stopped_at = i < selector.size() ? selector[i] : '\0';
    steps.push_back({selector.substr(start, i - start), sigil, name, has_bracket, stopped_at});
  }
  return steps;
}

// --- Finding ---

// Whether a part of a selector searches all that is below the nodes so far.
bool searches_below(const std::string& part) {
  return std::any_of(part.begin(), part.end(), [](char c) { return is_blank(c); }) &&
         part.find('>') == std::string::npos;
}

enum class Which { all, outermost };

// The nodes in document order, or those of them that are not below others: a search below
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
  bool is_first = true;
  std::string part;
  for (const Step& step : read_steps(selector)) {
    part += step.text;
    if (step.sigil == ':') continue;  // no step of its own
    if (!is_first && query.nodes.empty()) return {};
    if (searches_below(part)) {
      query.nodes = in_document_order(document, query.nodes, Which::outermost);
    }
    query.find(std::exchange(part, std::string()));
    is_first = false;
  }
  Nodes found = in_document_order(document, query.nodes, Which::all);
  found.erase(std::remove(found.begin(), found.end(), document), found.end());
  return found;
}

namespace {

// --- Hints ---

std::string attribute_hint(const Step& step) {
  const std::string shown(step.name);
  if (!step.has_bracket) {
    const std::string reason = step.stopped_at == '\0'
                                   ? std::string("nothing follows")
                                   : quoted(std::string(1, step.stopped_at), 1) + " ends it";
    return "[" + shown + " is read without a \"]\": " + reason + ", in quotes or not";
  }
  const std::size_t equals = shown.find('=');
  if (equals == std::string::npos || equals == 0 || !is_one_of(shown[equals - 1], "^$*|~")) {
    return std::string();
  }
  return "[" + shown + "] looks for an attribute called \"" + shown.substr(0, equals) +
         "\": \"=\" is the only operator";
}

bool has_css_escape(const Step& step) {
  for (std::size_t i = 0; i < step.name.size(); ++i) {
    const char next = i + 1 < step.name.size() ? step.name[i + 1] : step.stopped_at;
    if (step.name[i] == '\\' && next != ':') return true;
  }
  return false;
}

// What a reader of CSS would take otherwise; empty when there is nothing.
std::string hint_on(const Step& step) {
  const std::string name(step.name);
  switch (step.sigil) {
    case '[':
      return attribute_hint(step);
    case ':':
      return ":" + name + " has no effect";
    default: {
      if (has_css_escape(step))
        return "\"" + name + "\": a backslash only takes a \":\" into a name";
      const std::size_t odd = name.find_first_of(",+~()|*^$=\"'");
      if (odd == std::string::npos) return std::string();
      return "\"" + name + "\" is read as one name, \"" + name[odd] + "\" included";
    }
  }
}

}  // namespace

void give_hints(const std::string& selector, bool strict) {
  for (const Step& step : read_steps(selector)) {
    const std::string hint = hint_on(step);
    if (hint.empty()) continue;
    if (strict) throw Failure("selector: " + hint);
    complain("hint: " + hint);
  }
}

}  // namespace cli
