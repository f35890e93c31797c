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
#include "commands/unified_diff.h"
#include "io/failure.h"
#include "io/text.h"
#include "pages/read_page.h"
#include "session.h"

namespace cli {

namespace {

// An edit whose selectors were read.
struct CompiledEdit {
  const Edit& edit;
  qo::Selector selector;
  std::vector<qo::Selector> targets;  // of its moves
};

qo::Selector compile(const std::string& selector, const std::string& origin) {
  try {
    return qo::Selector(selector);
  } catch (const qo::SelectorError& error) {
    if (origin.empty()) throw;
    throw Failure(origin + "selector: " + error.what());
  }
}

std::vector<CompiledEdit> compile(const std::vector<Edit>& edits) {
  std::vector<CompiledEdit> compiled;
  for (const Edit& edit : edits) {
    compiled.push_back({edit, compile(edit.selector, edit.origin), {}});
    for (const MoveTarget& target : edit.targets) {
      compiled.back().targets.push_back(compile(target.selector, edit.origin));
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

  // All edits look at the page as it was.
  qo::EditedSource edited(const std::string& name, const qo::Page& page) const {
    std::vector<std::vector<qo::Node>> matches;
    qo::Edits edits(page);
    bool found = false;
    for (const CompiledEdit& edit : edits_) {
      matches.push_back(page.select(edit.selector));
      std::vector<qo::Node>& nodes = matches.back();
      if (options_.first_only && nodes.size() > 1) nodes.resize(1);
      if (nodes.empty()) continue;
      found = true;
      try {
        edits.add(nodes, operations(page, edit));
      } catch (const qo::Error& error) {
        // What no node can be given is told of the first.
        const bool has_place = error.place() == qo::Error::Place::source;
        const std::size_t offset = has_place ? error.offset() : nodes.front().extent().begin;
        refuse(name, page, offset, edit.edit.origin, error.what());
      }
    }
    if (!found) return {page.source(), {}};
    try {
      return edits.apply();
    } catch (const qo::EditError& error) {
      refuse(name, page, error.offset(), origins_of(error.node(), matches), error.what());
    }
  }

  // Those of an edit, with the places to move to.
  static std::vector<qo::Operation> operations(const qo::Page& page, const CompiledEdit& edit) {
    std::vector<qo::Operation> operations = edit.edit.operations;
    for (std::size_t i = 0; i < edit.targets.size(); ++i) {
      const MoveTarget& target = edit.edit.targets[i];
      const std::vector<qo::Node> found = page.select(edit.targets[i]);
      if (found.size() != 1) {
        throw qo::Error("the place to move to has to be one element: " +
                            quoted(target.selector, 40) + " finds " + std::to_string(found.size()),
                        0, qo::Error::Place::operations);
      }
      operations[target.operation].target = found.front();
    }
    return operations;
  }

  // The lines of a script that name a node, or else the innermost one around it that some name.
  std::string origins_of(qo::Node node, const std::vector<std::vector<qo::Node>>& matches) const {
    std::string origins;
    for (; node && origins.empty(); node = node.parent()) {
      for (std::size_t i = 0; i < edits_.size(); ++i) {
        const bool is_named =
            std::find(matches[i].begin(), matches[i].end(), node) != matches[i].end();
        if (is_named) origins += edits_[i].edit.origin;
      }
    }
    return origins;
  }

  [[noreturn]] static void refuse(const std::string& name, const qo::Page& page, std::size_t offset,
                                  const std::string& origin, const std::string& why) {
    throw Failure(name + ":" + place_of(page.source(), offset) + ": " + origin + "refused: " + why);
  }

  void write_back(const Input& input, const std::string& old_text, const std::string& text) {
    const std::string& name = input.name;
    const std::string& target = targets_[input.index];
    if (pages_.at(target) != input.index) throw Failure(name + ": has been edited already");
    if (!options_.backup_suffix.empty() && is_regular_file(target)) back_up(name, old_text);
    if (cli::write_back(target, name, text, flush()) > 1) ++linked_;
    ++written_;
  }

  // A backup must not overwrite another page of the run.
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
