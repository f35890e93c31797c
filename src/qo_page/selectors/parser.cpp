#include <qo_page/selectors/parser.h>

#include <algorithm>
#include <utility>

#include <qo_page/base/ascii.h>
#include <qo_page/selectors/attribute.h>
#include <qo_page/selectors/nth.h>
#include <qo_page/selectors/pseudo_classes.h>
#include <qo_page/selectors/reader.h>

namespace qo::selectors {

namespace {

constexpr int deepest_nesting = 32;

// Where a part is, and what it may therefore be.
enum class Place {
  top,
  inside,     // of :is() and its like
  has,        // of :has(), which does not nest
  positions,  // of :nth-child(... of ...), which counts elements
};

// One function for each production:
//
//   list      = complex ("," complex)*
//   complex   = compound (combinator compound)*      after a combinator of its own in :has()
//   compound  = (name | "*")? (id | class | attribute | pseudo)*      not empty
//   attribute = "[" ... "]"                                as attribute.h has it
//   pseudo    = ":" name ("(" argument ")")?
class Parser {
 public:
  Parser(const std::string& text, bool is_definition)
      : reader_(text), is_definition_(is_definition) {}

  List whole() {
    List found = list(Place::top);
    if (!reader_.at_end()) reader_.fail("expected the end of the selector, not " + reader_.found());
    return found;
  }

 private:
  List list(Place place) {
    if (++nesting_ > deepest_nesting) {
      reader_.fail("this nests deeper than " + std::to_string(deepest_nesting) + " levels");
    }
    List found;
    do {
      found.push_back(complex(place));
    } while (reader_.take(","));
    --nesting_;
    return found;
  }

  Complex complex(Place place) {
    Complex found;
    reader_.skip_blanks();
    Combinator next = Combinator::none;
    if (place == Place::has) next = explicit_combinator(Combinator::descendant);
    do {
      require_elements(found);
      found.parts.push_back({next, compound(place)});
      next = combinator();
    } while (next != Combinator::none);
    return found;
  }

  // Only the last part of a complex selector may be a comment.
  void require_elements(const Complex& before) const {
    if (before.parts.empty() || !before.parts.back().compound.has_comments) return;
    reader_.fail("nothing is below or beside a comment: :comment is for the last part",
                 before.parts.back().compound.offset);
  }

  Combinator explicit_combinator(Combinator otherwise) {
    Combinator found = otherwise;
    if (reader_.take(">")) {
      found = Combinator::child;
    } else if (reader_.take("+")) {
      found = Combinator::next_sibling;
    } else if (reader_.take("~")) {
      found = Combinator::later_sibling;
    }
    reader_.skip_blanks();
    return found;
  }

  // `none` at the end of a complex selector.
  Combinator combinator() {
    const bool has_blanks = reader_.skip_blanks();
    const char next = reader_.peek();
    if (reader_.at_end() || next == ',' || next == ')') return Combinator::none;
    if (next == '|') reader_.fail_for_namespace();
    const Combinator found =
        explicit_combinator(has_blanks ? Combinator::descendant : Combinator::none);
    if (found == Combinator::none) reader_.fail("expected a combinator, not " + reader_.found());
    return found;
  }

  Compound compound(Place place) {
    Compound found;
    found.offset = reader_.offset();
    const bool is_any = reader_.take("*");
    if (!is_any && reader_.at_name()) element_name(found);
    if (reader_.peek() == '|') reader_.fail_for_namespace();
    while (simple(found, place)) {
    }
    if (reader_.offset() == found.offset) {
      reader_.fail("expected a selector, not " + reader_.found());
    }
    const bool is_neutral = !is_any && found.tag == Tag::unknown &&
                            std::all_of(found.tests.begin(), found.tests.end(), is_neutral_test);
    if (!is_neutral) check_no_comment(found);
    found.has_comments = found.has_comments && is_neutral;
    found.of_comments = found.has_comments || (is_neutral && place == Place::inside);
    return found;
  }

  static bool is_comment_test(const Test& test) {
    return std::holds_alternative<Fact>(test) && std::get<Fact>(test) == Fact::comment;
  }

  // Whether it may hold for a comment, which has nothing but a text.
  static bool is_neutral_test(const Test& test) {
    return is_comment_test(test) || std::holds_alternative<TextTest>(test) ||
           std::holds_alternative<PatternTest>(test) || std::holds_alternative<AnyTest>(test);
  }

  void check_no_comment(const Compound& compound) const {
    if (std::none_of(compound.tests.begin(), compound.tests.end(), is_comment_test)) return;
    reader_.fail(
        "a comment has no name, no attributes and no position: :comment goes with texts alone",
        compound.offset);
  }

  void element_name(Compound& compound) {
    const std::string name = reader_.name("the name of an element");
    compound.name = name;
    compound.tag = find_tag(name);
    if (compound.tag == Tag::unknown) compound.tests.push_back(NameTest{name});
  }

  // Appends a test of the compound; false when none is next.
  bool simple(Compound& compound, Place place) {
    reader_.skip_comments();
    switch (reader_.peek()) {
      case '#':
        compound.tests.push_back(IdTest{name_after('#', "an id")});
        return true;
      case '.':
        compound.tests.push_back(ClassTest{name_after('.', "the name of a class")});
        return true;
      case '[':
        compound.tests.push_back(read_attribute(reader_));
        return true;
      case ':':
        pseudo(compound, place);
        return true;
      default:
        return false;
    }
  }

  std::string name_after(char sign, const std::string& what) {
    reader_.skip();
    if (is_digit(reader_.peek())) {
      const std::string digit(1, reader_.peek());
      reader_.fail("expected " + what + ": a name begins with a digit only as \"\\3" + digit +
                   " \"");
    }
    return reader_.name(what + " after \"" + sign + "\"");
  }

  // --- What begins with a colon ---

  void pseudo(Compound& compound, Place place) {
    const std::size_t start = reader_.offset();
    reader_.skip();
    if (reader_.peek() == ':') reader_.fail("a pseudo-element is no node of a page", start);
    const std::string written = reader_.name("the name of a pseudo-class after \":\"");
    const std::string name = lower(written);
    const bool has_argument = reader_.peek() == '(';
    const std::optional<Function> function = find_function(name);
    const std::optional<Fact> fact = find_fact(name);
    const std::string_view definition = find_definition(name);
    const bool is_private = name.rfind("-qo-", 0) == 0 && !is_definition_;
    if (is_private || (!function && !fact && definition.empty())) fail_for_name(written, start);
    if (function.has_value() != has_argument) {
      reader_.fail(":" + name + (has_argument ? " takes no argument" : " needs an argument"),
                   start);
    }
    if (function) {
      argument(compound, *function, place, start);
    } else if (fact) {
      add_fact(compound, *fact, place, start);
    } else {
      compound.tests.push_back(AnyTest{false, Parser(std::string(definition), true).whole()});
    }
  }

  [[noreturn]] void fail_for_name(const std::string& name, std::size_t offset) const {
    const std::string reason = reason_against(lower(name));
    if (!reason.empty()) reader_.fail(":" + name + " " + reason, offset);
    const std::string nearest = nearest_name(lower(name));
    reader_.fail("there is no pseudo-class :" + name +
                     (nearest.empty() ? "" : "; did you mean " + nearest + "?"),
                 offset);
  }

  void add_fact(Compound& compound, Fact fact, Place place, std::size_t start) {
    if (fact == Fact::comment) {
      if (place == Place::positions) reader_.fail("positions count elements alone", start);
      compound.has_comments = true;
    }
    compound.tests.push_back(fact);
  }

  void argument(Compound& compound, Function function, Place place, std::size_t start) {
    reader_.skip();
    reader_.skip_blanks();
    std::vector<Test>& tests = compound.tests;
    switch (function) {
      case Function::any:
      case Function::negation:
        any(compound, function == Function::negation, place);
        break;
      case Function::has:
        tests.push_back(has(start));
        break;
      case Function::nth_child:
      case Function::nth_last_child:
        tests.push_back(nth_child(function == Function::nth_last_child));
        break;
      case Function::nth_of_type:
      case Function::nth_last_of_type:
        tests.push_back(
            PositionTest{read_nth(reader_), function == Function::nth_last_of_type, true});
        break;
      case Function::contains:
      case Function::contains_own:
        tests.push_back(text(function == Function::contains_own));
        break;
      case Function::matches:
        tests.push_back(pattern());
        break;
      case Function::language:
        tests.push_back(language());
        break;
      case Function::direction:
        tests.push_back(direction());
        break;
      case Function::nearest:
        tests.push_back(nearest());
        break;
    }
    reader_.skip_blanks();
    reader_.expect(")", "\")\"");
  }

  void any(Compound& compound, bool negated, Place place) {
    AnyTest test{negated, list(place == Place::positions ? place : Place::inside)};
    const auto has_comments = [](const Complex& complex) {
      return complex.parts.back().compound.has_comments;
    };
    if (!negated && std::any_of(test.list.begin(), test.list.end(), has_comments)) {
      compound.has_comments = true;
    }
    compound.tests.push_back(std::move(test));
  }

  HasTest has(std::size_t start) {
    if (std::exchange(is_in_has_, true)) reader_.fail(":has() does not nest", start);
    HasTest test{list(Place::has)};
    is_in_has_ = false;
    return test;
  }

  Test nth_child(bool from_end) {
    const Nth nth = read_nth(reader_);
    const bool has_blanks = reader_.skip_blanks();
    if (!has_blanks || lower(reader_.peek()) != 'o' || lower(reader_.peek(1)) != 'f') {
      return PositionTest{nth, from_end, false};
    }
    reader_.skip(2);
    if (reader_.at_name() || is_digit(reader_.peek()))
      reader_.fail("expected a blank after \"of\"");
    return CountTest{nth, from_end, list(Place::positions)};
  }

  TextTest text(bool own) {
    const std::size_t start = reader_.offset();
    const std::string wanted = reader_.at_quote() ? reader_.quoted() : reader_.bare(false);
    if (wanted.empty()) reader_.fail("expected a text", start);
    return TextTest{own, Needle(wanted)};
  }

  // Escapes are those of the expression alone.
  PatternTest pattern() {
    const bool has_quotes = reader_.at_quote();
    const std::size_t start = reader_.offset() + (has_quotes ? 1 : 0);
    const std::string wanted = has_quotes ? reader_.quoted_as_written() : reader_.bare(true);
    if (wanted.empty()) reader_.fail("expected a regular expression", start);
    try {
      return {std::make_shared<const Pattern>(wanted), start};
    } catch (const PatternError& error) {
      reader_.fail(std::string("in the regular expression: ") + error.what(),
                   start + error.offset());
    }
  }

  NearestTest language() {
    LanguageTest test;
    do {
      reader_.skip_blanks();
      test.ranges.push_back(reader_.at_quote() ? reader_.quoted()
                                               : reader_.name("a language such as en"));
      reader_.skip_blanks();
    } while (reader_.take(","));
    return {alone(Fact::has_language), alone(test)};
  }

  NearestTest direction() {
    const std::size_t start = reader_.offset();
    const std::string name = lower(reader_.name("ltr or rtl"));
    if (name != "ltr" && name != "rtl") reader_.fail("expected ltr or rtl", start);
    return {alone(Fact::has_direction), alone(DirectionTest{name == "rtl"})};
  }

  static List alone(Test test) {
    Complex complex;
    complex.parts.emplace_back();
    complex.parts[0].compound.tests.push_back(std::move(test));
    return {complex};
  }

  NearestTest nearest() {
    List both = list(Place::inside);
    return {{both[0]}, {both[1]}};
  }

  Reader reader_;
  bool is_definition_;
  bool is_in_has_ = false;
  int nesting_ = 0;
};

}  // namespace

List parse(const std::string& text) {
  return Parser(text, false).whole();
}

}  // namespace qo::selectors
