#include <qo_page/edits/tag_edit.h>

#include <algorithm>

#include <qo_page/base/ascii.h>
#include <qo_page/base/words.h>
#include <qo_page/decode.h>
#include <qo_page/edits/attribute_names.h>
#include <qo_page/edits/edit_error.h>
#include <qo_page/edits/substituter.h>
#include <qo_page/edits/value_code.h>
#include <qo_page/edits/value_spelling.h>
#include <qo_page/text/escape.h>
#include <qo_page/tokenizer/odd_attributes.h>
#include <qo_page/tokenizer/tag_reader.h>

namespace qo {

TagEdit::TagEdit(std::string_view source, std::size_t begin, CodeScanner& code, EditGuard& guard,
                 PatternBudget& budget)
    : source_(source), dialect_(code.dialect()), guard_(guard), budget_(budget) {
  token_.extent.begin = begin;
  TagReader(source, code, token_).read(begin + 1);
  name_ = token_.name.in(source);
  const std::string_view tag = token_.extent.in(source);
  may_have_code_ = dialect_.has_code() && tag.find_first_of("{<[@#", 1) != std::string_view::npos;
  if (dialect_.has_code() && (may_have_code_ || token_.may_be_odd)) {
    attribute_code_.emplace(source, token_, CodeBlocks(tag), code.ahead());
  }
  if (!dialect_.is_exact) check_attributes(source, token_, dialect_);
  for (const AttributeToken& attribute : token_.attributes) {
    if (attribute.quote != 0) {
      tag_quote_ = attribute.quote;
      break;
    }
  }
  slots_.reserve(token_.attributes.size());
  for (const AttributeToken& attribute : token_.attributes) {
    slots_.push_back({&attribute, std::string(attribute.name.in(source)),
                      std::string(attribute.value.in(source)), attribute.has_value, attribute.quote,
                      false, false});
  }
}

void TagEdit::apply(const Operation& operation) {
  switch (operation.kind) {
    case Operation::Kind::set_attribute:
      return set(find_or_add(operation.name), operation.value);
    case Operation::Kind::set_bare_attribute:
      return set_bare(find_or_add(operation.name));
    case Operation::Kind::remove_attribute:
      return remove(operation.name);
    case Operation::Kind::add_class:
      return add_token("class", operation.value);
    case Operation::Kind::remove_class:
      return remove_token("class", operation.value);
    case Operation::Kind::add_token:
      return add_token(operation.name, operation.value);
    case Operation::Kind::remove_token:
      return remove_token(operation.name, operation.value);
    case Operation::Kind::rename:
      name_ = operation.name;
      return;
    case Operation::Kind::substitute_value:
      return substitute(operation.name, *operation.substitution);
    default:
      return;
  }
}

// The first of that name: it is the one that counts.
TagEdit::Slot* TagEdit::find(std::string_view name) {
  const auto found = std::find_if(slots_.begin(), slots_.end(), [name](const Slot& slot) {
    return !slot.is_removed && equals_without_case(slot.name, name);
  });
  return found == slots_.end() ? nullptr : &*found;
}

TagEdit::Slot& TagEdit::find_or_add(std::string_view name) {
  Slot* const found = find(name);
  if (found != nullptr) {
    check_is_always(*found);
    if (found->written != nullptr) check_is_first(name, found->written->name.begin);
    return *found;
  }
  check_is_first(name, token_.extent.end);
  slots_.push_back({nullptr, std::string(name), std::string(), false, 0, true, false});
  return slots_.back();
}

// What holds in one branch of a block would not hold in the others.
void TagEdit::check_is_always(const Slot& slot) const {
  if (!may_have_code_ || slot.written == nullptr) return;
  const std::optional<CodePiece> branch =
      guard_.blocks()->branch_at(slot.written->name.begin, token_.extent.begin);
  if (!branch) return;
  const std::string code(source_.substr(branch->begin, branch->end - branch->begin));
  throw Error("the attribute \"" + slot.name + "\" is there only under " + shortened(code),
              token_.extent.begin);
}

// Of two attributes of one name, a browser drops the second.
void TagEdit::check_is_first(std::string_view name, std::size_t offset) const {
  if (!attribute_code_) return;
  const std::string_view writer = attribute_code_->writer_of(name, offset);
  if (writer.empty()) return;
  throw Error(shortened(writer) + " may write an attribute \"" + std::string(name) + "\" as well",
              token_.extent.begin);
}

// Quotes would turn an expression into a text.
void TagEdit::check_is_no_code(const Slot& slot) const {
  const bool is_text = !dialect_.has_code() || (dialect_.is_exact && dialect_.quotes_keep_code);
  if (is_text || slot.quote != 0 || !is_expression(slot.value)) return;
  throw Error("the value of \"" + slot.name + "\" is an expression: " + shortened(slot.value),
              token_.extent.begin);
}

// What stays the same at both ends of the value keeps its spelling.
void TagEdit::set(Slot& slot, const std::string& value) {
  const bool is_new = slot.written == nullptr && !slot.has_value;
  if (!is_new && decode(slot.value, DecodeMode::attribute) == value) return;
  const bool had_no_quotes =
      slot.has_value && slot.quote == 0 && !(dialect_.has_code() && is_expression(slot.value));
  const SpelledValue old{slot.value, slot.quote};
  slot.has_value = true;
  slot.is_changed = true;
  if (!had_no_quotes || !fits_without_quotes(value)) {
    slot.quote = quote_for(value, slot.quote == 0 ? tag_quote_ : slot.quote, dialect_);
  }
  slot.value = respelled_value(old, value, slot.quote, dialect_);
}

void TagEdit::set_bare(Slot& slot) {
  slot.is_changed = slot.is_changed || slot.has_value;
  slot.has_value = false;
  slot.value.clear();
  slot.quote = 0;
}

void TagEdit::remove(std::string_view pattern) {
  for (Slot& slot : slots_) {
    if (is_named(slot.name, pattern)) slot.is_removed = true;
  }
}

std::vector<ClassToken> TagEdit::tokens_of(const Slot& slot) const {
  CodeScanner code(slot.value, dialect_);
  return class_tokens(slot.value, {0, slot.value.size()}, code);
}

// Puts the value in quotes that do not occur in it.
void TagEdit::use_quotes(Slot& slot) {
  slot.has_value = true;
  if (slot.quote != 0) return;
  slot.quote = tag_quote_;
  if (slot.value.find(slot.quote) != std::string::npos) slot.quote = slot.quote == '"' ? '\'' : '"';
}

void TagEdit::add_token(const std::string& name, const std::string& token) {
  Slot& slot = find_or_add(name);
  for (const ClassToken& there : tokens_of(slot)) {
    if (there.is_whole && there.is_always && is_token(slot, there, token)) return;
  }
  check_is_no_code(slot);
  use_quotes(slot);
  slot.is_changed = true;
  const std::size_t end = slot.value.find_last_not_of(blanks) + 1;  // npos + 1 is 0
  slot.value.insert(end, (end == 0 ? "" : " ") + escaped_value(token, slot.quote, dialect_));
}

bool TagEdit::is_token(const Slot& slot, const ClassToken& there, const std::string& token) {
  return decode(there.range.in(slot.value), DecodeMode::attribute) == token;
}

// Under conditions, there may be several attributes of one name.
void TagEdit::remove_token(const std::string& name, const std::string& token) {
  for (Slot& slot : slots_) {
    if (!slot.is_removed && equals_without_case(slot.name, name)) remove_token(slot, token);
  }
}

// Takes each such token away with the blanks in front of it, or, where there are none, after it.
void TagEdit::remove_token(Slot& slot, const std::string& token) {
  const std::vector<ClassToken> tokens = tokens_of(slot);
  for (auto there = tokens.rbegin(); there != tokens.rend(); ++there) {
    if (!is_token(slot, *there, token)) continue;
    check_is_no_code(slot);
    if (!there->is_whole) {
      throw Error("template code joins \"" + token + "\" to other characters: it is no " +
                      (equals_without_case(slot.name, "class") ? "class" : "token of its own"),
                  token_.extent.begin);
    }
    std::size_t begin = there->range.begin;
    std::size_t end = there->range.end;
    while (begin > 0 && is_blank(slot.value[begin - 1])) --begin;
    if (begin == there->range.begin) {
      while (end < slot.value.size() && is_blank(slot.value[end])) ++end;
    }
    slot.value.erase(begin, end - begin);
    slot.is_changed = true;
    if (slot.value.empty()) use_quotes(slot);
  }
}

void TagEdit::substitute(const std::string& name, const Substitution& substitution) {
  for (Slot& slot : slots_) {
    const bool is_named = !slot.is_removed && equals_without_case(slot.name, name);
    if (is_named && slot.has_value) substitute(slot, substitution);
  }
}

void TagEdit::substitute(Slot& slot, const Substitution& substitution) {
  const Substituter substituter(substitution, budget_, token_.extent.begin);
  const auto splices = [&] {
    return substituter.splices({slot.value, WrittenText::Kind::value, slot.quote, dialect_});
  };
  std::vector<Splice> made = splices();
  if (made.empty()) return;
  check_is_no_code(slot);
  const bool fits = std::all_of(made.begin(), made.end(), [](const Splice& splice) {
    return splice.text.empty() || fits_without_quotes(splice.text);
  });
  if (slot.quote == 0 && (!fits || spliced(slot.value, made).empty())) {
    use_quotes(slot);
    made = splices();
  }
  slot.value = spliced(slot.value, made);
  slot.is_changed = true;
  check_joins_no_code(slot.value, made, dialect_, token_.extent.begin);
}

// The attribute as it is to be; what is around a "=" that was there stays.
std::string TagEdit::text_of(const Slot& slot) const {
  if (!slot.has_value) return slot.name;
  std::string text = slot.name;
  if (slot.written != nullptr && slot.written->has_value) {
    const std::size_t begin = slot.written->name.end;
    text += source_.substr(begin, slot.written->value.begin - begin);
    if (slot.written->quote != 0) text.pop_back();
  } else {
    text += '=';
  }
  if (slot.quote != 0) text += slot.quote;
  text += slot.value;
  if (slot.quote != 0) text += slot.quote;
  return text;
}

// An attribute goes with the blanks in front of it, unless what follows needs them.
std::size_t TagEdit::removal_begin(std::size_t previous_end,
                                   const AttributeToken& attribute) const {
  std::size_t begin = attribute.name.begin;
  while (begin > previous_end && is_blank(source_[begin - 1])) --begin;
  const char next = source_[attribute.end];
  const char previous = source_[begin - 1];
  const bool joins_slash = next == '/' && previous != '"' && previous != '\'';
  const bool needs_blank = joins_slash || (next != '/' && next != '>' && !is_blank(next));
  return needs_blank ? attribute.name.begin : begin;
}

// Whether the last attribute ends with its "=": it would take what comes after it for its value.
bool TagEdit::is_cut_off() const {
  const auto last = std::find_if(slots_.rbegin(), slots_.rend(),
                                 [](const Slot& slot) { return slot.written != nullptr; });
  return last != slots_.rend() && !last->is_removed && !last->is_changed && last->has_value &&
         last->quote == 0 && last->value.empty();
}

// The attributes as they are to be, in the order in which they are written.
std::vector<const TagEdit::Slot*> TagEdit::order() const {
  std::vector<const Slot*> written;
  std::vector<const Slot*> added;
  for (const Slot& slot : slots_) (slot.written != nullptr ? written : added).push_back(&slot);
  written.insert(written.end() - (is_cut_off() ? 1 : 0), added.begin(), added.end());
  return written;
}

// Where new attributes go.
std::size_t TagEdit::insertion_offset() const {
  if (!is_cut_off()) return token_.items_end;
  std::size_t offset = token_.attributes.back().name.begin;
  while (is_blank(source_[offset - 1])) --offset;
  return offset;
}

// Where the last attribute ends that changes; the end of the tag when one is added.
std::size_t TagEdit::changes_end() const {
  std::size_t end = token_.extent.begin;
  for (const Slot& slot : slots_) {
    const bool is_new = slot.written == nullptr;
    if (is_new && !slot.is_removed) return token_.extent.end;
    if (!is_new && (slot.is_changed || slot.is_removed)) end = std::max(end, slot.written->end);
  }
  return end;
}

// A part of a block may lie in a value, or have its other half outside of the tag. After it, each
// branch may see other attributes.
void TagEdit::check_blocks() const {
  const std::size_t begin = token_.extent.begin;
  const std::size_t end = changes_end();
  if (!may_have_code_ || end == begin) return;
  for (const AttributeToken& attribute : token_.attributes) {
    if (attribute.name.begin >= end) break;
    guard_.check_uncut({attribute.name.begin, attribute.end},
                       "the attribute \"" + std::string(attribute.name.in(source_)) + "\"", begin);
  }
  const bool is_cut = guard_.blocks()->cut(begin, token_.extent.end).has_value();
  if (is_cut) guard_.check_uncut({begin, end}, "the tag <" + name_ + ">", begin);
}

std::string TagEdit::text() const {
  check_blocks();
  std::string out("<");
  out += name_;
  std::size_t position = token_.name.end;
  const auto copy_until = [&](std::size_t end) {
    if (end <= position) return;
    out += source_.substr(position, end - position);
    position = end;
  };
  const std::vector<const Slot*> slots = order();
  const std::size_t insertion = insertion_offset();
  for (const Slot* slot : slots) {
    if (slot->written == nullptr) {
      if (slot->is_removed) continue;
      copy_until(insertion);
      out += " " + text_of(*slot);
    } else if (slot->is_removed) {
      copy_until(removal_begin(position, *slot->written));
      position = slot->written->end;
    } else if (slot->is_changed) {
      copy_until(slot->written->name.begin);
      out += text_of(*slot);
      position = slot->written->end;
    }
  }
  copy_until(token_.extent.end);
  check(out, slots);
  return out;
}

void TagEdit::check(const std::string& text, const std::vector<const Slot*>& slots) const {
  CodeScanner code(text, dialect_);
  Token read{};
  bool is_same = TagReader(text, code, read).read(1) && read.extent.end == text.size() &&
                 read.name.in(text) == name_;
  auto attribute = read.attributes.begin();
  for (const Slot* slot : slots) {
    if (slot->is_removed) continue;
    is_same = is_same && attribute != read.attributes.end() &&
              attribute->name.in(text) == slot->name && attribute->value.in(text) == slot->value &&
              attribute->has_value == slot->has_value;
    if (!is_same) break;
    ++attribute;
  }
  if (!is_same || attribute != read.attributes.end()) {
    throw Error("the tag would not be read as what it is to be", token_.extent.begin);
  }
}

Range end_tag_name(std::string_view source, std::size_t begin, CodeScanner& code) {
  Token token{};
  TagReader(source, code, token).read(begin + 2);
  return token.name;
}

}  // namespace qo
