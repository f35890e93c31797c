#include "commands/unified_diff.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <vector>

namespace cli {

namespace {

constexpr std::size_t context_lines = 3;

bool at_line_start(std::string_view text, std::size_t offset) {
  return offset == 0 || text[offset - 1] == '\n';
}

// After the end of the line that the offset lies in.
std::size_t line_end(std::string_view text, std::size_t offset) {
  const std::size_t end = text.find('\n', offset);
  return end == std::string_view::npos ? text.size() : end + 1;
}

// The changes, each widened to whole lines, and those that then meet made one.
std::vector<qo::Change> whole_lines(std::string_view old_text, const qo::EditedSource& edited) {
  std::vector<qo::Change> out;
  for (qo::Change change : edited.changes) {
    if (!at_line_start(old_text, change.old_end) || !at_line_start(edited.source, change.new_end)) {
      const bool on_last_line = !out.empty() && change.old_end < out.back().old_end;
      const std::size_t end =
          on_last_line ? out.back().old_end : line_end(old_text, change.old_end);
      const std::size_t rest = end - change.old_end;
      change.old_end += rest;
      change.new_end += rest;
    }
    if (!out.empty() && change.old_begin <= out.back().old_end) {
      out.back().old_end = change.old_end;
      out.back().new_end = change.new_end;
      continue;
    }
    const std::size_t line_start = old_text.substr(0, change.old_begin).rfind('\n') + 1;
    change.new_begin -= change.old_begin - line_start;
    change.old_begin = line_start;
    out.push_back(change);
  }
  return out;
}

std::size_t count_lines(std::string_view text) {
  const auto ends = std::count(text.begin(), text.end(), '\n');
  return static_cast<std::size_t>(ends) + (at_line_start(text, text.size()) ? 0 : 1);
}

std::string_view first_lines(std::string_view text, std::size_t count) {
  std::size_t end = 0;
  while (count-- > 0) end = line_end(text, end);
  return text.substr(0, end);
}

std::string_view last_lines(std::string_view text, std::size_t count) {
  std::size_t start = text.size();
  while (count-- > 0 && start > 0) start = text.substr(0, start - 1).rfind('\n') + 1;
  return text.substr(start);
}

// Some changes with the lines around them.
class Hunk {
 public:
  Hunk(std::size_t old_line, std::size_t new_line) : old_line_(old_line), new_line_(new_line) {}

  void keep(std::string_view text) {
    const std::size_t count = append(' ', text);
    old_count_ += count;
    new_count_ += count;
  }
  void remove(std::string_view text) { old_count_ += append('-', text); }
  void add(std::string_view text) { new_count_ += append('+', text); }

  std::string text() const {
    return "@@ -" + range(old_line_, old_count_) + " +" + range(new_line_, new_count_) + " @@\n" +
           lines_;
  }

 private:
  std::size_t append(char mark, std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); ++count) {
      const std::string_view line = first_lines(text, 1);
      lines_ += mark;
      lines_ += line;
      if (line.back() != '\n') lines_ += "\n\\ No newline at end of file\n";
      text.remove_prefix(line.size());
    }
    return count;
  }

  static std::string range(std::size_t line, std::size_t count) {
    return std::to_string(count == 0 ? line - 1 : line) + "," + std::to_string(count);
  }

  std::size_t old_line_, new_line_;  // the first ones, from 1
  std::size_t old_count_ = 0;
  std::size_t new_count_ = 0;
  std::string lines_;
};

// As patch reads it: a name with odd characters is in quotes, with escapes, and a tab tells where
// one with blanks ends.
std::string header_name(const std::string& name) {
  std::string escaped;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      escaped += {'\\', c};
    } else if (byte < 0x20 || byte == 0x7F) {
      char escape[5];
      std::snprintf(escape, sizeof escape, "\\%03o", static_cast<unsigned>(byte));
      escaped += escape;
    } else {
      escaped += c;
    }
  }
  if (escaped != name) return '"' + escaped + '"';
  return name.find(' ') == std::string::npos ? name : name + "\t";
}

}  // namespace

std::string unified_diff(std::string_view old_text, const qo::EditedSource& edited,
                         const std::string& name) {
  std::string out;
  std::optional<Hunk> hunk;
  std::size_t position = 0;
  std::size_t old_line = 1;
  std::size_t new_line = 1;
  for (const qo::Change& change : whole_lines(old_text, edited)) {
    const std::string_view between = old_text.substr(position, change.old_begin - position);
    const std::size_t lines = count_lines(between);
    old_line += lines;
    new_line += lines;
    if (!hunk || lines > 2 * context_lines) {
      if (hunk) {
        hunk->keep(first_lines(between, context_lines));
        out += hunk->text();
      }
      const std::size_t shown = std::min(lines, context_lines);
      hunk.emplace(old_line - shown, new_line - shown);
      hunk->keep(last_lines(between, context_lines));
    } else {
      hunk->keep(between);
    }
    const std::string_view removed =
        old_text.substr(change.old_begin, change.old_end - change.old_begin);
    const std::string_view added =
        std::string_view(edited.source).substr(change.new_begin, change.new_end - change.new_begin);
    hunk->remove(removed);
    hunk->add(added);
    old_line += count_lines(removed);
    new_line += count_lines(added);
    position = change.old_end;
  }
  if (!hunk) return out;
  hunk->keep(first_lines(old_text.substr(position), context_lines));
  const std::string shown = header_name(name);
  return "--- " + shown + "\n+++ " + shown + "\n" + out + hunk->text();
}

}  // namespace cli
