#include <qo_page/forms/date_value.h>

#include <algorithm>

#include <qo_page/base/ascii.h>

namespace qo {

namespace {

constexpr int last_year = 275760;
constexpr int last_month = 9;
constexpr int last_day = 13;
constexpr int last_week = 37;

// Reads from the front of a text. What does not fit gives -1 or false.
class Reader {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  bool at_end() const { return rest_.empty(); }
  std::string_view rest() const { return rest_; }

  bool skip(char c) {
    if (rest_.empty() || rest_.front() != c) return false;
    rest_.remove_prefix(1);
    return true;
  }

  std::string_view digits() {
    const std::size_t size = std::min(rest_.find_first_not_of("0123456789"), rest_.size());
    const std::string_view found = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return found;
  }

  // Two digits, from `least` to `most`.
  int pair(int least, int most) {
    if (rest_.size() < 2 || !is_digit(rest_[0]) || !is_digit(rest_[1])) return -1;
    const int number = (rest_[0] - '0') * 10 + (rest_[1] - '0');
    rest_.remove_prefix(2);
    return number >= least && number <= most ? number : -1;
  }

  // Four digits or more.
  int year() {
    const std::string_view all = digits();
    int number = 0;
    for (const char digit : all) number = std::min(number * 10 + (digit - '0'), last_year + 1);
    return all.size() >= 4 && number >= 1 && number <= last_year ? number : -1;
  }

 private:
  std::string_view rest_;
};

bool is_leap(int year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int days_of(int year, int month) {
  constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return days[month - 1] + (month == 2 && is_leap(year) ? 1 : 0);
}

// A year has 53 weeks when it begins on a Thursday, or on a Wednesday in a leap year.
int weeks_of(int year) {
  const int before = year - 1;
  const int first_day = (1 + before + before / 4 - before / 100 + before / 400) % 7;  // 0: Sunday
  return first_day == 4 || (first_day == 3 && is_leap(year)) ? 53 : 52;
}

struct Date {
  int year = -1;
  int month = -1;
  int day = -1;

  bool is_valid() const { return day > 0; }
  bool is_last() const { return year == last_year && month == last_month && day == last_day; }
};

bool read_month(Reader& reader, Date& date) {
  date.year = reader.year();
  if (date.year < 0 || !reader.skip('-')) return false;
  date.month = reader.pair(1, date.year == last_year ? last_month : 12);
  return date.month > 0;
}

Date read_date(Reader& reader) {
  Date date;
  if (!read_month(reader, date) || !reader.skip('-')) return date;
  const bool is_last_month = date.year == last_year && date.month == last_month;
  date.day = reader.pair(1, is_last_month ? last_day : days_of(date.year, date.month));
  return date;
}

struct Time {
  bool is_valid = false;
  int second = 0;
  std::string_view fraction;  // its digits
};

Time read_time(Reader& reader) {
  Time time;
  if (reader.pair(0, 23) < 0 || !reader.skip(':') || reader.pair(0, 59) < 0) return time;
  if (reader.skip(':')) {
    time.second = reader.pair(0, 59);
    if (time.second < 0) return time;
    if (reader.skip('.')) {
      time.fraction = reader.digits();
      if (time.fraction.empty() || time.fraction.size() > 3) return time;
    }
  }
  time.is_valid = reader.at_end();
  return time;
}

}  // namespace

bool is_date(std::string_view value) {
  Reader reader(value);
  return read_date(reader).is_valid() && reader.at_end();
}

bool is_month(std::string_view value) {
  Reader reader(value);
  Date date;
  return read_month(reader, date) && reader.at_end();
}

bool is_week(std::string_view value) {
  Reader reader(value);
  const int year = reader.year();
  if (year < 0 || !reader.skip('-') || !reader.skip('W')) return false;
  return reader.pair(1, year == last_year ? last_week : weeks_of(year)) > 0 && reader.at_end();
}

bool is_time(std::string_view value) {
  Reader reader(value);
  return read_time(reader).is_valid;
}

std::string local_date_time(std::string_view value) {
  Reader reader(value);
  const Date date = read_date(reader);
  if (!date.is_valid() || (!reader.skip('T') && !reader.skip(' '))) return "";
  std::string day(value.substr(0, value.size() - reader.rest().size() - 1));
  day.erase(0, std::min(day.find_first_not_of('0'), day.find('-') - 4));  // four digits are enough
  const std::string_view written = reader.rest();
  Time time = read_time(reader);
  while (!time.fraction.empty() && time.fraction.back() == '0') time.fraction.remove_suffix(1);
  const bool is_midnight = written.substr(0, 5) == "00:00" && time.second == 0;
  if (!time.is_valid || (date.is_last() && !(is_midnight && time.fraction.empty()))) return "";
  constexpr std::size_t minutes = 5;  // characters of 12:34
  const bool has_seconds = time.second != 0 || !time.fraction.empty();
  std::string out = day + "T" + std::string(written.substr(0, has_seconds ? minutes + 3 : minutes));
  if (!time.fraction.empty()) out += "." + std::string(time.fraction);
  return out;
}

}  // namespace qo
