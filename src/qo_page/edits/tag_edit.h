// Changes of one tag.

#ifndef QO_PAGE_EDITS_TAG_EDIT_H
#define QO_PAGE_EDITS_TAG_EDIT_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <qo_page/base/pattern.h>
#include <qo_page/edits.h>
#include <qo_page/edits/attribute_code.h>
#include <qo_page/edits/edit_guard.h>
#include <qo_page/text/class_tokens.h>
#include <qo_page/tokenizer/tokenizer.h>

namespace qo {

// Carries out operations on the attributes, classes and name of one start tag.
class TagEdit {
 public:
  // `begin`: where the tag is in the source.
  TagEdit(std::string_view source, std::size_t begin, CodeScanner& code, EditGuard& guard,
          PatternBudget& budget);

  // An operation of any other kind changes nothing.
  void apply(const Operation& operation);

  // The new tag. Throws Error when it would not be read as what was asked.
  std::string text() const;

 private:
  // An attribute as it is to be. One that was written and is not changed has no text of its own.
  struct Slot {
    const AttributeToken* written;  // null: a new one
    std::string name;
    std::string value;  // as to be written, without quotes
    bool has_value;
    char quote;
    bool is_changed;
    bool is_removed;
  };

  Slot* find(std::string_view name);
  Slot& find_or_add(std::string_view name);
  void check_is_always(const Slot& slot) const;
  void check_is_first(std::string_view name, std::size_t offset) const;
  void check_is_no_code(const Slot& slot) const;
  std::size_t changes_end() const;
  void check_blocks() const;
  void set(Slot& slot, const std::string& value);
  void set_bare(Slot& slot);
  void remove(std::string_view pattern);
  void add_token(const std::string& name, const std::string& token);
  void remove_token(const std::string& name, const std::string& token);
  void substitute(const std::string& name, const Substitution& substitution);
  void use_quotes(Slot& slot);
  static bool is_token(const Slot& slot, const ClassToken& there, const std::string& token);
  void remove_token(Slot& slot, const std::string& token);
  void substitute(Slot& slot, const Substitution& substitution);
  std::vector<ClassToken> tokens_of(const Slot& slot) const;

  std::string text_of(const Slot& slot) const;
  std::size_t removal_begin(std::size_t previous_end, const AttributeToken& attribute) const;
  bool is_cut_off() const;
  std::vector<const Slot*> order() const;
  std::size_t insertion_offset() const;
  void check(const std::string& text, const std::vector<const Slot*>& slots) const;

  std::string_view source_;
  const Dialect& dialect_;
  EditGuard& guard_;
  PatternBudget& budget_;
  Token token_{};
  std::string name_;
  char tag_quote_ = '"';  // of the first attribute that has quotes
  bool may_have_code_;
  std::optional<AttributeCode> attribute_code_;  // if it has
  std::vector<Slot> slots_;
};

// Where the name is in the end tag at `begin`.
Range end_tag_name(std::string_view source, std::size_t begin, CodeScanner& code);

}  // namespace qo

#endif
