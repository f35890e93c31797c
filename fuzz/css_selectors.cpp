// Any bytes as a selector, in the first line, and as a page, in the others. What is no selector is
// refused with a place in it; what one finds is compared with what plain recursion finds.

#include <algorithm>
#include <vector>

#include <qo_page/base/ascii.h>
#include <qo_page/selector.h>
#include <qo_page/selectors/attribute_match.h>
#include <qo_page/selectors/default_buttons.h>
#include <qo_page/selectors/languages.h>
#include <qo_page/selectors/parser.h>
#include <qo_page/text/attribute_value.h>
#include <qo_page/text/direction.h>
#include <qo_page/text/node_text.h>
#include <qo_page/tree/node_access.h>

#include "support.h"

namespace {

using namespace qo::selectors;
using qo::Node;
using qo::NodeAccess;
using qo::NodeKind;

const char own_page[] =
    "<!DOCTYPE html><html lang=de><head><!--c--><title>t</title><script>s</script></head><body "
    "class='a b' id=i>"
    "<p class=a>x<b n=v>y</b>z<p><a href=x b='' n>z</a><!--x--><div dir=auto>1<p "
    "id>w<bdi>\xd7\x90</bdi></p></div>"
    "<form><input type=checkbox checked><button disabled>ok</button><fieldset "
    "disabled><legend><input id=i></legend>"
    "<input></fieldset><select><option selected>1<option>2</select><textarea "
    "placeholder=p>\n</textarea></form>"
    "<ul><li>1<li class=b>2<li lang=en>3<svg:r></svg:r></ul><svg><a "
    "xlink:href=x><b/></a></svg></body></html>";
constexpr std::size_t longest_selector = 100, longest_page = 600;

bool is_element(Node node) {
  return node && node.is_element();
}

const qo::NodeRecord& record_of(Node node) {
  return NodeAccess::record(node);
}

Node before(Node node) {
  return node.previous_sibling();
}

Node after(Node node) {
  return node.next_sibling();
}

// The nearest element before (after) the node, beside it.
Node beside(Node node, Node (*next)(Node)) {
  Node found = next(node);
  while (found && !found.is_element()) found = next(found);
  return found;
}

class Reference {
 public:
  explicit Reference(const qo::Page& page) : tree_(qo::PageAccess::tree(page)) {}

  bool matches(const List& list, Node node) {
    return std::any_of(list.begin(), list.end(), [&](const Complex& complex) {
      return matches(complex, complex.parts.size() - 1, node);
    });
  }

 private:
  bool matches(const Complex& complex, std::size_t last, Node node) {
    if (!matches(complex.parts[last].compound, node)) return false;
    const auto follows = [&](Node other) {
      return is_element(other) && matches(complex, last - 1, other);
    };
    switch (complex.parts[last].combinator) {
      case Combinator::none:
        return true;
      case Combinator::child:
        return follows(node.parent());
      case Combinator::next_sibling:
        return follows(beside(node, before));
      case Combinator::later_sibling:
        for (Node at = node; (at = beside(at, before));) {
          if (follows(at)) return true;
        }
        return false;
      default:
        for (Node at = node.parent(); at; at = at.parent()) {
          if (follows(at)) return true;
        }
        return false;
    }
  }

  bool matches(const Compound& compound, Node node) {
    if (compound.tag != qo::Tag::unknown && compound.tag != record_of(node).tag) {
      return false;
    }
    const bool is_comment = node.kind() == NodeKind::comment;
    if (!is_element(node) && !(compound.of_comments && is_comment)) return false;
    return std::all_of(compound.tests.begin(), compound.tests.end(), [&](const Test& test) {
      return std::visit([&](const auto& one) { return holds(one, node); }, test);
    });
  }

  template <class LocalTest>
  bool holds(const LocalTest& test, Node node) {
    return qo::selectors::matches(test, tree_, NodeAccess::index(node));
  }

  bool holds(const PositionTest& test, Node node) {
    return position(node, test.nth, test.from_end, [&](Node other) {
      return !test.of_type || (record_of(other).space == record_of(node).space &&
                               qo::equals_without_case(other.name(), node.name()));
    });
  }

  bool holds(const CountTest& test, Node node) {
    const auto counts = [&](Node other) { return matches(test.of, other); };
    return is_element(node) && counts(node) && position(node, test.nth, test.from_end, counts);
  }

  template <class Counts>
  bool position(Node node, Nth nth, bool from_end, Counts counts) {
    if (!is_element(node)) return false;
    int place = 1;
    for (Node other = node; (other = beside(other, from_end ? after : before));) {
      place += counts(other) ? 1 : 0;
    }
    for (int n = 0; n <= 2 * place + 100; ++n) {
      if (nth.a * n + nth.b == place) return true;
    }
    return false;
  }

  bool holds(const AnyTest& test, Node node) { return matches(test.list, node) != test.negated; }

  bool holds(const HasTest& test, Node node) {
    return std::any_of(test.list.begin(), test.list.end(),
                       [&](const Complex& complex) { return leads(complex, 0, node); });
  }

  // Whether the parts from `first` on can be found from the node.
  bool leads(const Complex& complex, std::size_t first, Node node) {
    if (first == complex.parts.size()) return true;
    const Part& part = complex.parts[first];
    const auto goes_on = [&](Node next) {
      return matches(part.compound, next) && leads(complex, first + 1, next);
    };
    switch (part.combinator) {
      case Combinator::child:
      case Combinator::descendant:
        return leads_down(node, part.combinator == Combinator::descendant, goes_on);
      default:
        for (Node next = node.next_sibling(); next; next = next.next_sibling()) {
          if (goes_on(next)) return true;
          if (part.combinator == Combinator::next_sibling && is_element(next)) return false;
        }
        return false;
    }
  }

  template <class GoesOn>
  bool leads_down(Node node, bool deep, GoesOn goes_on) {
    for (const Node child : node.children()) {
      if (goes_on(child) || (deep && leads_down(child, deep, goes_on))) return true;
    }
    return false;
  }

  bool holds(const TextTest& test, Node node) {
    std::string text;
    for (const Node child : node.children()) {
      if (qo::is_text(record_of(child))) text += child.text();
    }
    return (test.own && is_element(node) ? text : node.text()).find(test.needle.text()) !=
           std::string::npos;
  }

  bool holds(const PatternTest& test, Node node) {
    const std::string text = node.text();
    qo::PatternBudget budget(text.size());
    return test.pattern->find(text, budget) != std::string::npos;
  }

  bool holds(const NearestTest& test, Node node) {
    for (Node at = node; is_element(at); at = at.parent()) {
      if (matches(test.having, at)) return matches(test.being, at);
    }
    const Test& being = test.being[0].parts[0].compound.tests[0];
    if (const auto* language = std::get_if<LanguageTest>(&being)) {
      return qo::selectors::matches(*language, page_language(tree_));
    }
    const auto* direction = std::get_if<DirectionTest>(&being);
    return direction != nullptr && !direction->rtl;
  }

  bool holds(const LanguageTest& test, Node node) {
    std::string buffer;
    const qo::AttributeRecord& language = *language_attribute(tree_, NodeAccess::index(node));
    return qo::selectors::matches(test, decoded_value(tree_, language, buffer));
  }

  bool holds(const DirectionTest& test, Node node) {
    return is_rtl(tree_, NodeAccess::index(node)) == test.rtl;
  }

  bool holds(const Fact& fact, Node node) {
    const bool is_top = is_element(node) && node.parent().kind() == NodeKind::document;
    const auto children = node.children();
    const qo::NodeIndex index = NodeAccess::index(node);
    switch (fact) {
      case Fact::html:
        return is_element(node) && record_of(node).space == qo::Namespace::html;
      case Fact::root:
      case Fact::scope:
        return is_top;
      case Fact::empty:
        return is_element(node) && std::none_of(children.begin(), children.end(), [](Node child) {
                 return is_element(child) || child.kind() == NodeKind::cdata ||
                        (child.kind() == NodeKind::text && !child.text().empty());
               });
      case Fact::textless:
        return node.text().empty();
      case Fact::comment:
        return node.kind() == NodeKind::comment;
      case Fact::default_button:
        return is_default_button(index);
      case Fact::has_language:
        return language_attribute(tree_, index) != nullptr;
      default:
        return has_direction(tree_, index);
    }
  }

  bool holds(const SlotTest&, const Node&) { return false; }  // only in what is compiled

  bool is_default_button(qo::NodeIndex node) const {
    const std::vector<qo::NodeIndex> buttons = find_default_buttons(tree_);
    return std::find(buttons.begin(), buttons.end(), node) != buttons.end();
  }

  const qo::Tree& tree_;
};

void compare(const qo::Page& page, const qo::Selector& selector) {
  const List list = parse(selector.text());
  Reference reference(page);
  std::vector<Node> expected;
  try {
    for (const Node node : page.document().descendants()) {
      if (reference.matches(list, node)) expected.push_back(node);
    }
  } catch (const qo::PatternBudget::Exceeded&) {
    return;
  }
  const std::vector<Node> found = page.select(selector);
  require(found == expected, "what a selector finds");
  for (const Node child : page.document().children()) {
    const bool is_found = std::find(found.begin(), found.end(), child) != found.end();
    require(selector.matches(child) == is_found, "whether a node matches");
  }
  if (found.empty()) return;
  require(selector.matches(found.back()), "whether what was found matches");
  const Node root = found.front();
  if (selector.text().find(":scope") != std::string::npos) return;
  std::vector<Node> below;
  for (const Node node : found) {
    if (node > root && node.index() < record_of(root).subtree_end) below.push_back(node);
  }
  require(selector.select(root) == below, "what a selector finds below a node");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const std::size_t line = std::min(input.find('\n'), input.size());
  const std::string text = input.substr(0, std::min(line, longest_selector));
  std::string source = input.substr(std::min(line + 1, input.size())).substr(0, longest_page);
  if (source.size() < 4) source = own_page;
  try {
    const qo::Selector selector(text);
    compare(qo::Page(source), selector);
  } catch (const qo::SelectorError& error) {
    require(error.offset() <= text.size(), "place of an error");
    require(error.shown().back() == '^', "how an error is shown");
  } catch (const qo::Error&) {
    // a page in UTF-16
  }
  return 0;
}
