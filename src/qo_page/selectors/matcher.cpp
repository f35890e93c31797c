#include <qo_page/selectors/matcher.h>

#include <algorithm>

#include <qo_page/selector.h>
#include <qo_page/selectors/attribute_match.h>
#include <qo_page/selectors/default_buttons.h>
#include <qo_page/selectors/languages.h>
#include <qo_page/text/attribute_value.h>
#include <qo_page/text/direction.h>
#include <qo_page/text/node_text.h>

namespace qo::selectors {

namespace {

// Comments and code are no content; neither is a line break that a browser drops.
bool is_empty(const Tree& tree, NodeIndex node) {
  for (NodeIndex child = node + 1; child < tree[node].subtree_end; ++child) {
    const NodeKind kind = tree[child].kind;
    if (kind == NodeKind::element || kind == NodeKind::cdata) return false;
    if (kind == NodeKind::text && !characters_of(tree, child).empty()) return false;
  }
  return true;
}

}  // namespace

bool Matcher::matches_tests(const Compound& compound, const Here& here) {
  for (const Test& test : compound.tests) {
    if (!std::visit([&](const auto& one) { return matches_one(one, here); }, test)) return false;
  }
  return true;
}

// Names, classes, ids and attributes.
template <class LocalTest>
bool Matcher::matches_one(const LocalTest& test, const Here& here) {
  return selectors::matches(test, tree_, here.node);
}

bool Matcher::matches_one(const PositionTest& test, const Here& here) {
  if (!tree_.is_element(here.node)) return false;
  const auto mirrored = [&] {
    if (*here.siblings == 0) *here.siblings = positions_.count(tree_.parent(here.node));
    return *here.siblings - here.place + 1;
  };
  if (!test.of_type) {
    return test.nth.contains(test.from_end == here.is_backward ? here.place : mirrored());
  }
  const std::uint32_t place = here.is_backward ? mirrored() : here.place;
  const Position position = positions_.among_type(here.node, here.depth, place);
  return test.nth.contains(test.from_end ? position.from_end : position.from_start);
}

bool Matcher::matches_one(const AnyTest& test, const Here& here) {
  const bool any = std::any_of(test.list.begin(), test.list.end(), [&](const Complex& complex) {
    return matches(complex.parts[0].compound, here);
  });
  return any != test.negated;
}

PageText& Matcher::page_text() {
  if (!text_) text_.emplace(tree_);
  return *text_;
}

bool Matcher::matches_one(const TextTest& test, const Here& here) {
  return page_text().contains(here.node, test);
}

bool Matcher::matches_one(const PatternTest& test, const Here& here) {
  std::string buffer;
  if (!budget_) budget_.emplace(page_text().size());
  try {
    return test.pattern->find(page_text().of(here.node, buffer), *budget_) != std::string::npos;
  } catch (const PatternBudget::Exceeded&) {
    throw SelectorError("the regular expression takes too many steps on this page", test.offset,
                        program_.text);
  }
}

bool Matcher::matches_one(const LanguageTest& test, const Here& here) {
  std::string buffer;
  const AttributeRecord& attribute = *language_attribute(tree_, here.node);
  return selectors::matches(test, decoded_value(tree_, attribute, buffer));
}

bool Matcher::matches_one(const DirectionTest& test, const Here& here) {
  return is_rtl(tree_, here.node) == test.rtl;
}

bool Matcher::matches_page(const Compound& compound) {
  return std::all_of(compound.tests.begin(), compound.tests.end(),
                     [&](const Test& test) { return matches_page(test); });
}

bool Matcher::matches_page(const Test& test) {
  if (const auto* language = std::get_if<LanguageTest>(&test)) {
    return selectors::matches(*language, page_language(tree_));
  }
  if (const auto* direction = std::get_if<DirectionTest>(&test)) return !direction->rtl;
  return false;
}

bool Matcher::matches_one(const Fact& fact, const Here& here) {
  const NodeIndex node = here.node;
  const bool is_element = tree_.is_element(node);
  switch (fact) {
    case Fact::html:
      return is_element && tree_[node].space == Namespace::html;
    case Fact::root:
      return is_element && is_at_top(node);
    case Fact::scope:
      return is_element && (scope_ == no_node ? is_at_top(node) : node == scope_);
    case Fact::empty:
      return is_element && is_empty(tree_, node);
    case Fact::textless: {
      std::string buffer;
      return page_text().of(node, buffer).empty();
    }
    case Fact::comment:
      return !is_element;
    case Fact::default_button:
      return is_default_button(node);
    case Fact::has_language:
      return language_attribute(tree_, node) != nullptr;
    case Fact::has_direction:
      return has_direction(tree_, node);
  }
  return false;
}

bool Matcher::matches_one(const SlotTest& test, const Here& here) {
  return (here.slots & slot_bit(test.slot)) != 0;
}

bool Matcher::is_default_button(NodeIndex node) {
  if (tree_[node].tag != Tag::button_ && tree_[node].tag != Tag::input_) return false;
  if (!default_buttons_) default_buttons_ = find_default_buttons(tree_);
  return std::binary_search(default_buttons_->begin(), default_buttons_->end(), node);
}

}  // namespace qo::selectors
