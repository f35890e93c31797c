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
#include <qo_page/tree/node.h>

#include "support.h"

namespace {

using namespace qo::selectors;
using qo::as_node;
using qo::Node;
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

bool is_element(const Node* node) {
  return node != nullptr && node->kind == NodeKind::element;
}

std::vector<const Node*> children_of(const Node& node) {
  std::vector<const Node*> out;
  for (const _qo_html* child : node.children) out.push_back(as_node(child));
  return out;
}

// The nearest element before (after) the node, beside it.
const Node* beside(const Node& node, _qo_html* _qo_html::*next) {
  const Node* found = as_node(node.*next);
  while (found != nullptr && !is_element(found)) found = as_node(found->*next);
  return found;
}

class Reference {
 public:
  explicit Reference(const qo::Page& page) : page_(page), document_(*as_node(page.document())) {}

  bool matches(const List& list, const Node& node) {
    return std::any_of(list.begin(), list.end(), [&](const Complex& complex) {
      return matches(complex, complex.parts.size() - 1, node);
    });
  }

 private:
  bool matches(const Complex& complex, std::size_t last, const Node& node) {
    if (!matches(complex.parts[last].compound, node)) return false;
    const auto before = [&](const Node* other) {
      return is_element(other) && matches(complex, last - 1, *other);
    };
    switch (complex.parts[last].combinator) {
      case Combinator::none:
        return true;
      case Combinator::child:
        return before(as_node(node.parent));
      case Combinator::next_sibling:
        return before(beside(node, &_qo_html::prevSibling));
      case Combinator::later_sibling:
        for (const Node* at = &node; (at = beside(*at, &_qo_html::prevSibling)) != nullptr;) {
          if (before(at)) return true;
        }
        return false;
      default:
        for (const Node* at = as_node(node.parent); at != nullptr; at = as_node(at->parent)) {
          if (before(at)) return true;
        }
        return false;
    }
  }

  bool matches(const Compound& compound, const Node& node) {
    if (compound.tag != qo::Tag::unknown && compound.tag != node.name) return false;
    if (!is_element(&node) && !(compound.of_comments && node.isComment)) return false;
    return std::all_of(compound.tests.begin(), compound.tests.end(), [&](const Test& test) {
      return std::visit([&](const auto& one) { return holds(one, node); }, test);
    });
  }

  template <class LocalTest>
  bool holds(const LocalTest& test, const Node& node) {
    return qo::selectors::matches(test, node);
  }

  bool holds(const PositionTest& test, const Node& node) {
    return position(node, test.nth, test.from_end, [&](const Node& other) {
      return !test.of_type ||
             (other.space == node.space && qo::equals_without_case(other.tag, node.tag));
    });
  }

  bool holds(const CountTest& test, const Node& node) {
    const auto counts = [&](const Node& other) { return matches(test.of, other); };
    return is_element(&node) && counts(node) && position(node, test.nth, test.from_end, counts);
  }

  template <class Counts>
  bool position(const Node& node, Nth nth, bool from_end, Counts counts) {
    if (!is_element(&node)) return false;
    int place = 1;
    const auto next = from_end ? &_qo_html::nextSibling : &_qo_html::prevSibling;
    for (const Node* other = &node; (other = beside(*other, next)) != nullptr;)
      place += counts(*other) ? 1 : 0;
    for (int n = 0; n <= 2 * place + 100; ++n) {
      if (nth.a * n + nth.b == place) return true;
    }
    return false;
  }

  bool holds(const AnyTest& test, const Node& node) {
    return matches(test.list, node) != test.negated;
  }

  bool holds(const HasTest& test, const Node& node) {
    return std::any_of(test.list.begin(), test.list.end(),
                       [&](const Complex& complex) { return leads(complex, 0, node); });
  }

  // Whether the parts from `first` on can be found from the node.
  bool leads(const Complex& complex, std::size_t first, const Node& node) {
    if (first == complex.parts.size()) return true;
    const Part& part = complex.parts[first];
    const auto goes_on = [&](const Node& next) {
      return matches(part.compound, next) && leads(complex, first + 1, next);
    };
    switch (part.combinator) {
      case Combinator::child:
      case Combinator::descendant:
        return leads_down(node, part.combinator == Combinator::descendant, goes_on);
      default:
        for (const Node* next = as_node(node.nextSibling); next != nullptr;
             next = as_node(next->nextSibling)) {
          if (goes_on(*next)) return true;
          if (part.combinator == Combinator::next_sibling && is_element(next)) return false;
        }
        return false;
    }
  }

  template <class GoesOn>
  bool leads_down(const Node& node, bool deep, GoesOn goes_on) {
    for (const Node* child : children_of(node)) {
      if (goes_on(*child) || (deep && leads_down(*child, deep, goes_on))) return true;
    }
    return false;
  }

  bool holds(const TextTest& test, const Node& node) {
    std::string text;
    for (const Node* child : children_of(node)) {
      if (test.own && child->isText) text += page_.text(child);
    }
    return (test.own ? text : page_.text(&node)).find(test.needle.text()) != std::string::npos;
  }

  bool holds(const PatternTest& test, const Node& node) {
    const std::string text = page_.text(&node);
    qo::PatternBudget budget(text.size());
    return test.pattern->find(text, budget) != std::string::npos;
  }

  bool holds(const NearestTest& test, const Node& node) {
    for (const Node* at = &node; is_element(at); at = as_node(at->parent)) {
      if (matches(test.having, *at)) return matches(test.being, *at);
    }
    const Test& being = test.being[0].parts[0].compound.tests[0];
    if (const auto* language = std::get_if<LanguageTest>(&being)) {
      return qo::selectors::matches(*language, page_language(document_));
    }
    const auto* direction = std::get_if<DirectionTest>(&being);
    return direction != nullptr && !direction->rtl;
  }

  bool holds(const LanguageTest& test, const Node& node) {
    std::string buffer;
    return qo::selectors::matches(test, std::string(value_of(*language_attribute(node), buffer)));
  }

  bool holds(const DirectionTest& test, const Node& node) { return is_rtl(node) == test.rtl; }

  bool holds(const Fact& fact, const Node& node) {
    const bool is_top = is_element(&node) && as_node(node.parent)->kind == NodeKind::document;
    const auto children = children_of(node);
    switch (fact) {
      case Fact::html:
        return is_element(&node) && node.space == qo::Space::html;
      case Fact::root:
      case Fact::scope:
        return is_top;
      case Fact::empty:
        return is_element(&node) &&
               std::none_of(children.begin(), children.end(), [&](const Node* child) {
                 return is_element(child) || child->isCdata ||
                        (child->isText && !page_.text(child).empty());
               });
      case Fact::textless:
        return page_.text(&node).empty();
      case Fact::comment:
        return node.isComment;
      case Fact::default_button:
        return find_default_buttons(document_).count(&node) != 0;
      case Fact::has_language:
        return language_attribute(node) != nullptr;
      default:
        return has_direction(node);
    }
  }

  bool holds(const SlotTest&, const Node&) { return false; }  // only in what is compiled

  const qo::Page& page_;
  const Node& document_;
};

void search(Reference& reference, const List& list, const Node& node,
            std::vector<const _qo_html*>& found) {
  for (const Node* child : children_of(node)) {
    if (reference.matches(list, *child)) found.push_back(child);
    search(reference, list, *child, found);
  }
}

void compare(const qo::Page& page, const qo::Selector& selector) {
  const List list = parse(selector.text());
  Reference reference(page);
  std::vector<const _qo_html*> expected;
  try {
    search(reference, list, *as_node(page.document()), expected);
  } catch (const qo::PatternBudget::Exceeded&) {
    return;
  }
  const std::vector<_qo_html*> found = page.select(selector);
  require(std::equal(found.begin(), found.end(), expected.begin(), expected.end()),
          "what a selector finds");
  for (const _qo_html* child : page.document()->children) {
    const bool is_found = std::find(found.begin(), found.end(), child) != found.end();
    require(selector.matches(const_cast<_qo_html*>(child)) == is_found, "whether a node matches");
  }
  if (!found.empty()) require(selector.matches(found.back()), "whether what was found matches");
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
  require(live_nodes() == 0, "nodes left behind");
  return 0;
}
