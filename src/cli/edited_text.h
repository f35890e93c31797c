// A text made out of another one.

#ifndef QO_CLI_EDITED_TEXT_H
#define QO_CLI_EDITED_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// A stretch of the original that became a stretch of the new text; either may be empty. Between two
// changes, both texts are the same.
struct Change {
  std::size_t old_begin, old_end;
  std::size_t new_begin, new_end;
};

// Takes runs of the original, from front to back, and other text between them.
class EditedText {
 public:
  // The original must stay until the last call.
  explicit EditedText(std::string_view original) : original_(original) {}

  // Takes the original from `begin` to `end`.
  void keep(std::size_t begin, std::size_t end);

  // Puts in `text`; where it is what the original has from `begin` to `end`, that is kept.
  void add(std::string_view text);
  void add(std::string_view text, std::size_t begin, std::size_t end);

  // Puts in `text` as soon as anything follows it.
  void imply(std::string_view text) { implied_ += text; }

  // Closes the text: nothing may follow.
  void finish() { note_change(original_.size()); }

  const std::string& text() const { return text_; }
  const std::vector<Change>& changes() const { return changes_; }

  // Where in the original an offset of the new text comes from, or the change that it lies in.
  std::size_t original_offset(std::size_t offset) const;

 private:
  void write_implied();
  void note_change(std::size_t old_end);

  std::string_view original_;
  std::string text_;
  std::string implied_;
  std::vector<Change> changes_;
  std::size_t old_position_ = 0;  // up to here, everything is kept or noted as a change
  std::size_t new_position_ = 0;
};

// The changes as a unified diff; empty when there are none.
std::string unified_diff(std::string_view old_text, const EditedText& edited,
                         const std::string& name);

}  // namespace cli

#endif
