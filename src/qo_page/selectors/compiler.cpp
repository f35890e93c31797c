#include <qo_page/selector.h>
#include <qo_page/selectors/parser.h>
#include <qo_page/selectors/program.h>

#include <algorithm>
#include <utility>

namespace qo::selectors {

namespace {

// Puts a slot in the place of every test that takes a walk, from the inside out.
class Compiler {
 public:
  explicit Compiler(const std::string& text) { program_.text = text; }

  Program run() {
    List list = parse(program_.text);
    std::size_t pass = 0;
    for (Complex& complex : list) {
      offset_ = complex.parts.front().compound.offset;
      pass = std::max(pass, resolve(complex));
    }
    pass = turn(pass, Direction::forward);
    for (Complex& complex : list) {
      offset_ = complex.parts.front().compound.offset;
      program_.outputs.push_back(chain(complex, pass));
    }
    pass_at(pass);
    return std::move(program_);
  }

 private:
  enum class Direction { forward, backward };

  // The first pass from `pass` on that goes in that direction.
  static std::size_t turn(std::size_t pass, Direction direction) {
    return pass + (pass % 2 == (direction == Direction::forward ? 0 : 1) ? 0 : 1);
  }

  Pass& pass_at(std::size_t pass) {
    if (program_.passes.size() <= pass) program_.passes.resize(pass + 1);
    return program_.passes[pass];
  }

  // Changes the compound so that a node and its slots suffice to test it. Returns the first pass in
  // which they do.
  std::size_t resolve(Compound& compound) {
    program_.has_comments = program_.has_comments || compound.has_comments;
    std::size_t pass = 0;
    for (Test& test : compound.tests) {
      pass = std::max(pass, std::visit([&](auto& found) { return resolve(found, test); }, test));
    }
    std::stable_sort(compound.tests.begin(), compound.tests.end(),
                     [](const Test& a, const Test& b) { return cost(a) < cost(b); });
    return pass;
  }

  std::size_t resolve(Complex& complex) {
    std::size_t pass = 0;
    for (Part& part : complex.parts) pass = std::max(pass, resolve(part.compound));
    return pass;
  }

  static int cost(const Test& test) {
    if (std::holds_alternative<PatternTest>(test)) return 2;
    return std::holds_alternative<TextTest>(test) ? 1 : 0;
  }

  template <class Other>
  std::size_t resolve(Other&, Test&) {
    return 0;
  }

  std::size_t resolve(PositionTest&, Test&) {
    program_.has_positions = true;
    return 0;
  }

  // Alternatives of one part stay as they are; others become one part that is a slot.
  std::size_t resolve(AnyTest& any, Test&) {
    std::size_t pass = 0;
    for (Complex& complex : any.list) {
      pass = std::max(pass, complex.parts.size() == 1 ? resolve(complex) : resolve_chain(complex));
    }
    return pass;
  }

  std::size_t resolve_chain(Complex& complex) {
    const std::size_t pass = turn(resolve(complex), Direction::forward);
    const bool of_comments = complex.parts.back().compound.of_comments;
    complex = alone(add(pass, chain(complex, pass)), of_comments);
    return pass;
  }

  // Adds a step for each part but the last, and returns the step of that.
  Step chain(Complex& complex, std::size_t pass) {
    Step step;
    for (Part& part : complex.parts) {
      if (part.combinator != Combinator::none) {
        program_.has_links = true;
        step.from = add(pass, std::move(step));
      }
      step = matching(std::move(part.compound), part.combinator, step.from);
    }
    return step;
  }

  static Step matching(Compound compound, Combinator link, unsigned from) {
    Step step;
    step.compound = std::move(compound);
    step.link = link;
    step.from = from;
    return step;
  }

  // Backward, each part asks for the one after it, and the node itself for the first.
  std::size_t resolve(HasTest& has, Test& test) {
    std::size_t pass = 0;
    for (Complex& complex : has.list) pass = std::max(pass, resolve(complex));
    pass = turn(pass, Direction::backward);
    program_.has_links = true;
    AnyTest any;
    for (Complex& complex : has.list) any.list.push_back(backward_chain(complex, pass));
    test = std::move(any);
    return pass;
  }

  Complex backward_chain(Complex& complex, std::size_t pass) {
    Combinator link = Combinator::none;
    unsigned from = 0;
    for (auto part = complex.parts.rbegin(); part != complex.parts.rend(); ++part) {
      from = add(pass, matching(std::move(part->compound), link, from));
      link = part->combinator;
    }
    return alone(add(pass, matching(Compound(), link, from)), false);
  }

  std::size_t resolve(CountTest& count, Test& test) {
    Compound counted = any_of(std::move(count.of));
    Step step;
    step.kind = Step::Kind::count;
    step.nth = count.nth;
    const Direction direction = count.from_end ? Direction::backward : Direction::forward;
    const std::size_t pass = turn(resolve(counted), direction);
    step.compound = std::move(counted);
    step.counter = program_.counters++;
    program_.has_positions = true;
    test = SlotTest{add(pass, std::move(step))};
    return pass;
  }

  std::size_t resolve(NearestTest& nearest, Test& test) {
    Step step;
    step.kind = Step::Kind::inherit;
    step.having = std::move(nearest.having[0].parts[0].compound);
    step.compound = std::move(nearest.being[0].parts[0].compound);
    const std::size_t pass =
        turn(std::max(resolve(step.having), resolve(step.compound)), Direction::forward);
    program_.has_links = true;
    test = SlotTest{add(pass, std::move(step))};
    return pass;
  }

  static Compound any_of(List list) {
    if (list.size() == 1 && list[0].parts.size() == 1) return std::move(list[0].parts[0].compound);
    Compound found;
    found.tests.push_back(AnyTest{false, std::move(list)});
    return found;
  }

  // A part that has the slot.
  static Complex alone(unsigned slot, bool of_comments) {
    Complex found;
    Compound& compound = found.parts.emplace_back().compound;
    compound.of_comments = of_comments;
    compound.tests.push_back(SlotTest{slot});
    return found;
  }

  unsigned add(std::size_t pass, Step step) {
    if (next_slot_ == slot_count) {
      throw SelectorError("this selector has more than " + std::to_string(slot_count) +
                              " parts that depend on other nodes",
                          offset_, program_.text);
    }
    step.slot = next_slot_++;
    pass_at(pass).steps.push_back(std::move(step));
    return next_slot_ - 1;
  }

  Program program_;
  unsigned next_slot_ = 0;
  std::size_t offset_ = 0;  // of the complex selector at hand
};

}  // namespace

Program compile(const std::string& text) {
  return Compiler(text).run();
}

}  // namespace qo::selectors
