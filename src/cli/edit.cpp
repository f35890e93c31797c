#include <set>

#include <qo_page/edits.h>
#include <qo_page/selector.h>

#include "commands.h"
#include "page_view.h"
#include "session.h"
#include "text.h"
#include "unified_diff.h"

namespace cli {

namespace {

class Editing {
 public:
  explicit Editing(const EditOptions& options)
      : options_(options), selector_(options.selector), session_(options) {
    if (!options.in_place) return;
    for (const std::string& file : options.files) pages_.insert(resolved(file));
  }

  int run() {
    const int status = session_.run(options_.files, [this](Input& input) { return page(input); });
    if (options_.in_place && options_.files.size() > 1) {
      complain("changed " + std::to_string(written_.size()) + " of " +
               std::to_string(options_.files.size()) + " files");
    }
    return status;
  }

 private:
  Found page(Input& input) {
    const qo::Page page = read_page(input, options_);
    const std::vector<_qo_html*> matches = page.select(selector_);
    if (matches.empty()) {
      if (prints_pages()) session_.out().write(page.source());
      return Found::nothing;
    }
    write(input.name, page, edited(input.name, page, matches));
    return Found::something;
  }

  qo::EditedSource edited(const std::string& name, const qo::Page& page,
                          const std::vector<_qo_html*>& matches) const {
    try {
      qo::Edits edits(page);
      edits.add(matches, options_.operations);
      return edits.apply();
    } catch (const qo::Error& error) {
      throw Failure(name + ":" + place_of(page.source(), error.offset()) +
                    ": refused: " + error.what());
    }
  }

  bool prints_pages() const { return !options_.show_diff && !options_.in_place; }

  void write(const std::string& name, const qo::Page& page, const qo::EditedSource& edited) {
    if (prints_pages()) return session_.out().write(edited.source);
    if (options_.show_diff) return write_diff(unified_diff(page.source(), edited, name));
    if (edited.changes.empty()) return;
    if (!is_regular_file(name)) throw Failure(name + ": is no regular file");
    if (written_.count(resolved(name)) != 0) throw Failure(name + ": has been edited already");
    if (!options_.backup_suffix.empty()) back_up(name, page.source());
    replace_file(name, edited.source);
    written_.insert(resolved(name));
  }

  // No page that is yet to be edited, or has been, is overwritten by the old text of another.
  void back_up(const std::string& name, const std::string& text) const {
    const std::string backup = name + options_.backup_suffix;
    if (pages_.count(resolved(backup)) != 0) {
      throw Failure(name + ": " + backup + " is to be edited, too");
    }
    back_up_file(name, options_.backup_suffix, text);
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
  const qo::Selector selector_;
  Session session_;
  std::set<std::string> pages_;    // all that -i is to write, without links
  std::set<std::string> written_;  // of these, so far
};

}  // namespace

int run(const EditOptions& options) {
  return Editing(options).run();
}

}  // namespace cli
