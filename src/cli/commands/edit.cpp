#include <algorithm>
#include <atomic>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <qo_page/edits.h>
#include <qo_page/selector.h>

#include "commands/commands.h"
#include "commands/composed_changes.h"
#include "commands/unified_diff.h"
#include "io/failure.h"
#include "io/text.h"
#include "pages/read_page.h"
#include "session.h"

namespace cli {

namespace {

// An edit whose selector was read.
struct CompiledEdit {
  qo::Selector selector;
  const std::vector<qo::Operation>& operations;
  const std::string& origin;
};

std::vector<CompiledEdit> compile(const std::vector<Edit>& edits) {
  std::vector<CompiledEdit> compiled;
  for (const Edit& edit : edits) {
    try {
      compiled.push_back({qo::Selector(edit.selector), edit.operations, edit.origin});
    } catch (const qo::SelectorError& error) {
      if (edit.origin.empty()) throw;
      throw Failure(edit.origin + "selector: " + error.what());
    }
  }
  return compiled;
}

class Editing {
 public:
  explicit Editing(const Options& options)
      : options_(options), edits_(compile(options.edits)), session_(options) {
    if (!options.in_place) return;
    for (const std::string& file : session_.files()) targets_.push_back(resolved(file));
    for (std::size_t i = 0; i < targets_.size(); ++i) pages_.emplace(targets_[i], i);
  }

  int run() {
    const int status = session_.run([this](Input& input, Output& out) { return page(input, out); });
    if (linked_ > 0) {
      complain(std::to_string(linked_) +
               " of the files had other names (hard links), which keep the old pages");
    }
    if (options_.in_place && session_.files().size() > 1) {
      complain("changed " + std::to_string(written_) + " of " +
               std::to_string(session_.files().size()) + " files");
    }
    return status;
  }

 private:
  Found page(Input& input, Output& out) {
    const qo::Page page = read_page(input, options_);
    const qo::EditedSource edited = this->edited(input.name, page);
    if (options_.show_diff) {
      write_diff(unified_diff(page.source(), edited, input.name), out);
    } else if (!options_.in_place) {
      out.write(edited.source);
    } else if (!edited.changes.empty()) {
      write_back(input, page.source(), edited.source);
    }
    return edited.changes.empty() ? Found::nothing : Found::something;
  }

  // Each edit works on what the one before it gives.
  qo::EditedSource edited(const std::string& name, const qo::Page& page) const {
    qo::EditedSource all = edited_once(name, page, edits_.front(), true);
    for (std::size_t i = 1; i < edits_.size(); ++i) {
      const qo::Page next(all.source, page.options());
      qo::EditedSource step = edited_once(name, next, edits_[i], false);
      if (step.changes.empty()) continue;
      all = {std::move(step.source), composed(all.changes, step.changes)};
    }
    return all;
  }

  qo::EditedSource edited_once(const std::string& name, const qo::Page& page,
                               const CompiledEdit& edit, bool is_first) const {
    std::vector<qo::Node> matches = page.select(edit.selector);
    if (options_.first_only && matches.size() > 1) matches.resize(1);
    if (matches.empty()) return {page.source(), {}};
    try {
      qo::Edits edits(page);
      edits.add(matches, edit.operations);
      return edits.apply();
    } catch (const qo::Error& error) {
      // What no node can be given is told of the first. The text between two edits of a script is
      // one that the user never sees.
      const bool has_place = error.place() == qo::Error::Place::source;
      const std::size_t offset = has_place ? error.offset() : matches.front().extent().begin;
      const std::string place = is_first ? ":" + place_of(page.source(), offset) : "";
      throw Failure(name + place + ": " + edit.origin + "refused: " + error.what());
    }
  }

  void write_back(const Input& input, const std::string& old_text, const std::string& text) {
    const std::string& name = input.name;
    const std::string& target = targets_[input.index];
    if (pages_.at(target) != input.index) throw Failure(name + ": has been edited already");
    if (!options_.backup_suffix.empty() && is_regular_file(target)) back_up(name, old_text);
    if (cli::write_back(target, name, text, flush()) > 1) ++linked_;
    ++written_;
  }

  // No page that is yet to be edited, or has been, is overwritten by the old text of another.
  void back_up(const std::string& name, const std::string& text) const {
    const std::string backup = name + options_.backup_suffix;
    if (pages_.count(resolved(backup)) != 0) {
      throw Failure(name + ": " + backup + " is to be edited, too");
    }
    back_up_file(name, options_.backup_suffix, text, flush());
  }

  // To wait for the disk with each of many pages takes longer than all the rest.
  Flush flush() const { return session_.files().size() == 1 ? Flush::yes : Flush::no; }

  static void write_diff(std::string_view diff, Output& out) {
    for (bool in_hunk = false; !diff.empty();) {
      const std::string_view line = diff.substr(0, diff.find('\n'));
      in_hunk = in_hunk || line.substr(0, 2) == "@@";
      out.paint(color_of(line, in_hunk), line);
      out.write("\n");
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

  const Options& options_;
  const std::vector<CompiledEdit> edits_;
  Session session_;
  std::vector<std::string> targets_;  // of each file that -i is to write: where its links lead
  std::unordered_map<std::string_view, std::size_t> pages_;  // of each target, the first file
  std::atomic<std::size_t> written_ = 0;
  std::atomic<std::size_t> linked_ = 0;  // of these, files with other names
};

}  // namespace

int run_edit(const Options& options) {
  return Editing(options).run();
}

}  // namespace cli
