#include <qo_page/forms/number_value.h>

#include <algorithm>
#include <charconv>
#include <optional>

#include <qo_page/base/ascii.h>

namespace qo {

namespace {

__extension__ typedef __int128 Integer;

constexpr int most_digits = 18;   // of a number that is read
constexpr int shown_digits = 15;  // of a fraction that is written: what a double keeps
constexpr int far_exponent = 1000;

// coefficient * 10 ^ exponent
struct Decimal {
  Integer coefficient = 0;
  int exponent = 0;
};

int read_exponent(std::string_view digits) {
  const bool is_negative = digits.front() == '-';
  if (is_negative || digits.front() == '+') digits.remove_prefix(1);
  int number = 0;
  for (const char digit : digits) number = std::min(number * 10 + (digit - '0'), far_exponent);
  return is_negative ? -number : number;
}

// Digits beyond those that count are dropped.
Decimal read_decimal(std::string_view text) {
  const std::size_t mark = std::min(text.find_first_of("eE"), text.size());
  Decimal out;
  int digits = 0;
  bool in_fraction = false;
  for (const char c : text.substr(0, mark)) {
    if (c == '.') in_fraction = true;
    if (!is_digit(c)) continue;
    const bool counts = digits < most_digits;
    if (counts) out.coefficient = out.coefficient * 10 + (c - '0');
    if (counts && out.coefficient != 0) ++digits;
    if (counts == in_fraction) out.exponent += counts ? -1 : 1;
  }
  if (text.front() == '-') out.coefficient = -out.coefficient;
  if (mark < text.size()) out.exponent += read_exponent(text.substr(mark + 1));
  if (out.coefficient == 0) return {};
  for (; out.coefficient % 10 == 0; ++out.exponent) out.coefficient /= 10;
  return out;
}

std::optional<Decimal> decimal(std::string_view text) {
  return is_number(text) ? std::optional<Decimal>(read_decimal(text)) : std::nullopt;
}

// Brings numbers to one exponent.
class Scale {
 public:
  void include(const Decimal& number) { exponent_ = std::min(exponent_, number.exponent); }

  Integer operator()(const Decimal& number) {
    const int shift = number.coefficient == 0 ? 0 : number.exponent - exponent_;
    if (shift > most_digits) is_exceeded_ = true;
    Integer out = number.coefficient;
    for (int i = 0; i < std::min(shift, most_digits); ++i) out *= 10;
    return out;
  }

  int exponent() const { return exponent_; }
  bool is_exceeded() const { return is_exceeded_; }

 private:
  int exponent_ = 0;
  bool is_exceeded_ = false;
};

std::string digits_of(Integer number) {
  std::string out;
  for (; number != 0; number /= 10) out += static_cast<char>('0' + static_cast<int>(number % 10));
  std::reverse(out.begin(), out.end());
  return out.empty() ? "0" : out;
}

// A fraction is rounded to what counts, and has no zeros at its end.
void round_fraction(Decimal& number) {
  const auto drop_digit = [&number] {
    const int last = static_cast<int>(number.coefficient % 10);
    number.coefficient /= 10;
    ++number.exponent;
    return last;
  };
  Integer limit = 1;
  for (int i = 0; i < shown_digits; ++i) limit *= 10;
  int dropped = 0;
  while (number.exponent < 0 && number.coefficient >= limit) dropped = drop_digit();
  if (dropped >= 5) ++number.coefficient;
  while (number.exponent < 0 && number.coefficient % 10 == 0) drop_digit();
}

// With a power of ten where it begins with many zeros.
std::string written(Decimal number) {
  if (number.coefficient == 0) return "0";
  const std::string sign = number.coefficient < 0 ? "-" : "";
  if (!sign.empty()) number.coefficient = -number.coefficient;
  round_fraction(number);
  std::string digits = digits_of(number.coefficient);
  const int point = static_cast<int>(digits.size()) + number.exponent;
  if (number.exponent == 0) return sign + digits;
  if (point > 0) return sign + digits.insert(static_cast<std::size_t>(point), ".");
  if (point > -6) return sign + "0." + std::string(static_cast<std::size_t>(-point), '0') + digits;
  if (digits.size() > 1) digits.insert(1, ".");
  return sign + digits + "e" + std::to_string(point - 1);
}

// The nearest number in whole steps from `base` within the limits; of two equally near ones, the
// one that is farther from `base`.
Integer on_step(Integer value, Integer base, Integer step, Integer min, Integer max) {
  const Integer half = value < base ? -step : step;
  const Integer steps = (2 * (value - base) + half) / (2 * step);
  const Integer rounded = base + steps * step;
  const Integer clamped = rounded > max ? rounded - step : rounded < min ? rounded + step : rounded;
  return clamped < min || clamped > max ? value : clamped;
}

}  // namespace

// A sign, digits and a point that no text ends with, a power of ten; none that is infinite.
bool is_number(std::string_view value) {
  const std::size_t first = value.substr(0, 1) == "-" ? 1 : 0;
  const bool begins = first < value.size() && (value[first] == '.' || is_digit(value[first]));
  if (!begins || value.back() == '.') return false;
  double number = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
  if (end != value.data() + value.size() || error == std::errc::invalid_argument) return false;
  const bool is_tiny = value.find("e-") != value.npos || value.find("E-") != value.npos;
  return error != std::errc::result_out_of_range || is_tiny;
}

std::string range_value(const std::string& value, const RangeLimits& limits) {
  const auto written_value = decimal(value);
  const auto written_min = decimal(limits.min);
  const auto written_step = decimal(limits.step);
  const Decimal min_limit = written_min.value_or(Decimal{0, 0});
  const Decimal max_limit = decimal(limits.max).value_or(Decimal{100, 0});
  const bool has_step = !equals_without_case(limits.step, "any");
  const Decimal one = {1, 0};
  const Decimal step_size = written_step && written_step->coefficient > 0 ? *written_step : one;
  const Decimal base_number = written_min ? *written_min : written_value.value_or(Decimal{0, 0});

  Scale scale;
  for (const Decimal& number : {min_limit, max_limit, step_size, base_number}) {
    scale.include(number);
  }
  if (written_value) scale.include(*written_value);
  scale.include({0, scale.exponent() - 1});  // for the middle
  const Integer min = scale(min_limit);
  const Integer max = std::max(min, scale(max_limit));
  const Integer wanted = written_value ? scale(*written_value) : (min + max) / 2;
  const Integer step = scale(step_size);
  const Integer base = scale(base_number);
  if (scale.is_exceeded()) return value;

  const Integer inside = std::max(min, std::min(wanted, max));
  return written({has_step ? on_step(inside, base, step, min, max) : inside, scale.exponent()});
}

}  // namespace qo
