// What a selector is made of.

#ifndef QO_PAGE_SELECTORS_SYNTAX_H
#define QO_PAGE_SELECTORS_SYNTAX_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include <qo_page/base/pattern.h>
#include <qo_page/base/tags.h>
#include <qo_page/selectors/needle.h>

namespace qo::selectors {

struct Complex;
using List = std::vector<Complex>;

// The positions a*n + b for n = 0, 1, 2, ...
struct Nth {
  std::int64_t a = 0, b = 1;

  bool contains(std::int64_t position) const {
    const std::int64_t distance = position - b;
    return a == 0 ? distance == 0 : distance % a == 0 && distance / a >= 0;
  }
};

// --- Tests of one node ---

// A name that is not among those of tags.h.
struct NameTest {
  std::string name;
};

struct ClassTest {
  std::string name;
};

struct IdTest {
  std::string id;
};

struct AttributeTest {
  enum class Operator { exists, equals, has_word, begins_word, begins, ends, contains };

  std::string name;
  Operator op = Operator::exists;
  std::string value;
  bool ignores_case = false;          // of all elements
  bool ignores_case_in_html = false;  // of HTML's own
};

struct PositionTest {
  Nth nth;
  bool from_end = false;
  bool of_type = false;
};

// :nth-child() and :nth-last-child() with "of".
struct CountTest {
  Nth nth;
  bool from_end = false;
  List of;
};

// :is(), :where() and :not().
struct AnyTest {
  bool negated = false;
  List list;
};

// The combinator before the first part of each tells where to look.
struct HasTest {
  List list;
};

struct TextTest {
  bool own = false;
  Needle needle;
};

struct PatternTest {
  std::shared_ptr<const Pattern> pattern;
  std::size_t offset = 0;
};

// The nearest element, from the node itself upwards, that matches `having` must match `being` as
// well.
struct NearestTest {
  List having, being;  // one compound each
};

struct LanguageTest {
  std::vector<std::string> ranges;
};

struct DirectionTest {
  bool rtl = false;
};

// What needs no more than the node and its place.
enum class Fact {
  html,  // an element of HTML's own vocabulary
  root,
  scope,
  empty,
  textless,  // an element whose text is empty
  comment,
  default_button,
  has_language,
  has_direction,
};

// What a step of the program found out about the node.
struct SlotTest {
  unsigned slot;
};

using Test = std::variant<NameTest, ClassTest, IdTest, AttributeTest, PositionTest, CountTest,
                          AnyTest, HasTest, TextTest, PatternTest, NearestTest, LanguageTest,
                          DirectionTest, Fact, SlotTest>;

// All that one node has to be.
struct Compound {
  Tag tag = Tag::unknown;     // unless unknown
  std::string name;           // as written; empty: any
  bool has_comments = false;  // there may be comments among what it is for
  bool of_comments = false;   // a comment may match; otherwise elements alone
  std::vector<Test> tests;
  std::size_t offset = 0;
};

// How a part follows from the one before it.
enum class Combinator { none, descendant, child, next_sibling, later_sibling };

struct Part {
  Combinator combinator = Combinator::none;
  Compound compound;
};

struct Complex {
  std::vector<Part> parts;
};

}  // namespace qo::selectors

#endif
