#include "args/arguments.h"

#include <getopt.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "io/failure.h"
#include "io/text.h"

namespace cli {

namespace {

constexpr int first_long = 256;  // codes of options without a letter begin here
constexpr int positional = 1;    // what getopt_long() returns for other arguments

std::vector<std::string> words(const char* text) {
  std::vector<std::string> words;
  const char* const end = text + std::strlen(text);
  while (text < end) {
    const char* const word_end = std::find(text, end, ' ');
    words.emplace_back(text, word_end);
    text = word_end == end ? end : word_end + 1;
  }
  return words;
}

int argument_kind(const OptionRow& row) {
  if (*row.values == '\0') return no_argument;
  return row.may_lack_value ? optional_argument : required_argument;
}

// What getopt_long() wants to know of the options.
struct GetoptTables {
  std::vector<const OptionRow*> rows;
  std::vector<::option> longs;
  std::string shorts = "-:";  // other arguments in their places, and a missing value apart

  void add(const OptionRow& row) {
    const int kind = argument_kind(row);
    const int code = first_long + static_cast<int>(rows.size());
    rows.push_back(&row);
    longs.push_back({row.name, kind, nullptr, code});
    if (row.letter == '\0') return;
    shorts += row.letter;
    shorts.append(static_cast<std::size_t>(kind), ':');
  }

  const OptionRow* row_of(int code) const {
    if (code >= first_long) return rows[static_cast<std::size_t>(code - first_long)];
    const auto found = std::find_if(rows.begin(), rows.end(), [code](const OptionRow* row) {
      return row->letter != '\0' && row->letter == code;
    });
    return found == rows.end() ? nullptr : *found;
  }
};

// The number of changes of one character that make one text the other.
std::size_t distance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t k = 0; k <= b.size(); ++k) row[k] = k;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i);
    for (std::size_t k = 1; k <= b.size(); ++k) {
      const std::size_t changed = diagonal + (a[i - 1] == b[k - 1] ? 0 : 1);
      diagonal = std::exchange(row[k], std::min({changed, row[k] + 1, row[k - 1] + 1}));
    }
  }
  return row[b.size()];
}

class Reader {
 public:
  Reader(const std::vector<std::string>& arguments, Options& options,
         bool (*accepts)(const OptionRow& option, Command command))
      : options_(options), texts_(arguments) {
    texts_.insert(texts_.begin(), "qo");
    for (std::string& text : texts_) argv_.push_back(text.data());
    argv_.push_back(nullptr);
    for (const OptionRow& row : option_table()) {
      if (accepts(row, options.command)) tables_.add(row);
    }
    tables_.longs.push_back({nullptr, 0, nullptr, 0});
  }

  Arguments read() {
    optind = 0;  // begins anew
    opterr = 0;
    const int argc = static_cast<int>(texts_.size());
    for (;;) {
      const int code =
          getopt_long(argc, argv_.data(), tables_.shorts.c_str(), tables_.longs.data(), nullptr);
      if (code == -1) break;
      if (code == positional) {
        read_.positional.emplace_back(optarg);
      } else if (code == '?') {
        refuse();
      } else if (code == ':') {
        throw Failure(shown_name(*tables_.row_of(optopt)) + " needs " +
                      tables_.row_of(optopt)->values);
      } else {
        set(*tables_.row_of(code));
      }
    }
    read_.positional.insert(read_.positional.end(), argv_.begin() + optind, argv_.end() - 1);
    return std::move(read_);
  }

 private:
  void set(const OptionRow& row) {
    if (row.set == nullptr) {
      read_.wants_help = true;
      return;
    }
    const std::size_t wanted = words(row.values).size();
    std::vector<std::string> values;
    if (wanted > 0 && optarg != nullptr) values.emplace_back(optarg);
    while (!row.may_lack_value && values.size() < wanted) {
      if (argv_[static_cast<std::size_t>(optind)] == nullptr) {
        throw Failure(shown_name(row) + " needs " + row.values);
      }
      values.emplace_back(argv_[static_cast<std::size_t>(optind++)]);
    }
    check_choice(row, values);
    row.set(options_, values);
  }

  static void check_choice(const OptionRow& row, const std::vector<std::string>& values) {
    const std::vector<std::string> choices = words(row.choices);
    const bool is_one =
        choices.empty() || std::find(choices.begin(), choices.end(), values[0]) != choices.end();
    if (!is_one)
      throw Failure(shown_name(row) + ": " + quoted(values[0], 40) + " is none of " + row.choices);
  }

  // After what getopt_long() does not take.
  [[noreturn]] void refuse() const {
    if (optopt >= first_long) {
      throw Failure(std::string("--") + tables_.row_of(optopt)->name + " has no value");
    }
    if (optopt != 0)
      throw Failure("there is no option " +
                    quoted(std::string{'-', static_cast<char>(optopt)}, 40));
    const std::string given = argv_[static_cast<std::size_t>(optind - 1)];
    const std::string name = given.substr(2, given.find('=') - 2);
    std::vector<std::string> names, begun;
    for (const OptionRow* row : tables_.rows) {
      names.push_back(std::string("--") + row->name);
      if (std::string(row->name).compare(0, name.size(), name) == 0) begun.push_back(names.back());
    }
    if (begun.size() > 1) {
      std::string all;
      for (const std::string& one : begun) all += (all.empty() ? "" : ", ") + one;
      throw Failure(quoted("--" + name, 40) + " can be " + all);
    }
    throw Failure("there is no option " + quoted("--" + name, 40) + suggestion("--" + name, names));
  }

  Options& options_;
  std::vector<std::string> texts_;
  std::vector<char*> argv_;
  GetoptTables tables_;
  Arguments read_;
};

}  // namespace

Arguments read_arguments(const std::vector<std::string>& arguments, Options& options,
                         bool (*accepts)(const OptionRow& option, Command command)) {
  return Reader(arguments, options, accepts).read();
}

std::string suggestion(const std::string& given, const std::vector<std::string>& names) {
  constexpr std::size_t longest = 40;
  const std::string* nearest = nullptr;
  std::size_t best = 3;
  for (const std::string& name : names) {
    const std::size_t here = given.size() > longest ? best : distance(given, name);
    if (here < best && here < name.size()) {
      best = here;
      nearest = &name;
    }
  }
  return nearest == nullptr ? std::string() : "; did you mean " + *nearest + "?";
}

}  // namespace cli
