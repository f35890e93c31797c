#include <algorithm>
#include <optional>
#include <set>

#include "commands.h"
#include "page.h"
#include "page_editor.h"
#include "selectors.h"
#include "session.h"
#include "text.h"

namespace cli {

namespace {

// Where in the page as written the kept text first fails to read back as what the edit made of it;
// nothing when it does read back.
std::optional<std::size_t> first_failure(const EditedPage& page) {
  const Document document = try_to_parse(page.kept.text(), false);
  if (document == nullptr) return page.kept.changes().front().old_begin;
  const std::string back = document->outerHTML();
  require_memory();
  const std::string& expected = page.rewritten.text();
  if (back == expected) return std::nullopt;
  const auto first =
      std::mismatch(expected.begin(), expected.end(), back.begin(), back.end()).first;
  return page.rewritten.original_offset(static_cast<std::size_t>(first - expected.begin()));
}

void warn_of(const DroppedValues& drops) {
  if (drops.count > 0) complain(drops.warning());
}

const EditedText& accepted(const EditOptions& options, const Input& input, const EditedPage& page) {
  const std::optional<std::size_t> failure = first_failure(page);
  if (failure && !options.allow_rewrite) {
    throw Failure(input.name + ":" + place_of(input.text, *failure) +
                  ": this edit cannot keep the page as written (--allow-rewrite rewrites it)");
  }
  warn_of(page.kept_drops);
  if (!failure) return page.kept;
  warn_of(page.other_drops);
  return page.rewritten;
}

class Editing {
 public:
  explicit Editing(const EditOptions& options)
      : options_(options), edit_(make_edit(options)), session_(options) {
    if (!options.in_place) return;
    for (const std::string& file : options.files) pages_.insert(resolved(file));
  }

  int run() {
    for (const std::string& warning : edit_.warnings) complain(warning);
    return session_.run(options_.files, [this](Input& input) { return page(input); });
  }

 private:
  Found page(const Input& input) {
    const Document document = parse_page(input, options_.drop_comments);
    const std::vector<_qo_html*> matches = find_matches(document.get(), options_.selector);
    if (matches.empty() && !options_.drop_comments) {
      if (prints_pages()) session_.out().write(input.text);
      return Found::nothing;
    }
    const EditedPage edited =
        edit_page(input, document.get(), matches, edit_, options_.drop_comments);
    write(input, accepted(options_, input, edited));
    return matches.empty() ? Found::nothing : Found::something;
  }

  bool prints_pages() const { return !options_.show_diff && !options_.in_place; }

  void write(const Input& input, const EditedText& edited) {
    if (prints_pages()) return session_.out().write(edited.text());
    if (options_.show_diff) return write_diff(unified_diff(input.text, edited, input.name));
    if (edited.text() == input.text) return;
    if (!is_regular_file(input.name)) throw Failure(input.name + ": is no regular file");
    if (!written_.insert(resolved(input.name)).second) {
      throw Failure(input.name + ": has been edited already");
    }
    if (!options_.backup_suffix.empty()) back_up(input);
    replace_file(input.name, edited.text());
  }

  // No page that is yet to be edited, or has been, is overwritten by the old text of another.
  void back_up(const Input& input) const {
    const std::string backup = input.name + options_.backup_suffix;
    if (pages_.count(resolved(backup)) != 0) {
      throw Failure(input.name + ": " + backup + " is to be edited, too");
    }
    back_up_file(input.name, options_.backup_suffix, input.text);
  }

  void write_diff(std::string_view diff) {
    for (bool in_hunk = false; !diff.empty();) {
      const std::string_view line = diff.substr(0, diff.find('\n'));
      in_hunk = in_hunk || line.substr(0, 2) == "@@";
      session_.out().paint(color_of(line, in_hunk), line);
      session_.out().write("\n");
      diff.remove_prefix(line.size() + 1);
    }
  }

  static const char* color_of(std::string_view line, bool in_hunk) {
    if (!in_hunk) return "1";
    switch (line[0]) {
      case '@':
        return "36";
      case '-':
        return "31";
      case '+':
        return "32";
      default:
        return "";
    }
  }

  const EditOptions& options_;
  const Edit edit_;
  Session session_;
  std::set<std::string> pages_;    // all that -i is to write, without links
  std::set<std::string> written_;  // of these, so far
};

}  // namespace

int run(const EditOptions& options) {
  give_hints(options.selector, options.strict);
  return Editing(options).run();
}

}  // namespace cli
