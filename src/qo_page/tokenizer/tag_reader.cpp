#include <qo_page/tokenizer/tag_reader.h>

#include <algorithm>

#include <qo_page/base/ascii.h>
#include <qo_page/template/code_steps.h>
#include <qo_page/tokenizer/brackets.h>

namespace qo {

namespace {

// After these, code goes on with a name: data-{{ x }}, col-{% if y %}6{% endif %}.
bool wants_more(std::string_view name) {
  return !name.empty() && std::string_view("-:_.").find(name.back()) != std::string_view::npos;
}

// The code after "h" in <h{{ level }}> belongs to the name; that after "div" in <div{{ attributes
// }}> does not.
bool is_part_of_tag_name(std::string_view name) {
  return wants_more(name) || (name.size() == 1 && find_tag(name) == Tag::unknown);
}

using Characters = TagCharacters;

constexpr unsigned ends_name = Characters::blank | Characters::slash | Characters::tag_end;

}  // namespace

bool TagReader::read(std::size_t begin) {
  position_ = begin;
  token_.attributes.clear();
  token_.self_closing = false;
  token_.may_be_odd = false;
  token_.open_bracket = {};
  blocks_.reset();
  tag_name();
  token_.items_end = position_;
  items();
  if (at_end()) return false;
  ++position_;
  token_.extent.end = position_;
  return true;
}

void TagReader::items() {
  for (;;) {
    skip_blanks();
    if (at_end() || source_[position_] == '>') return;
    item();
  }
}

std::size_t TagReader::code_end(CodeScanner::Place place) {
  const std::size_t end = code_.end_of(position_, place);
  if (looks_ahead_ && end != 0) blocks_->add(code_until(end), position_);
  return end;
}

void TagReader::skip_blanks() {
  while (!at_end() && is_blank(source_[position_])) ++position_;
}

void TagReader::skip_until(unsigned characters) {
  const TagCharacters& table = code_.dialect().characters;
  const char* const end = source_.data() + source_.size();
  const char* at = source_.data() + position_;
  while (at != end && !table.has(*at, characters)) ++at;
  position_ = static_cast<std::size_t>(at - source_.data());
}

void TagReader::tag_name() {
  const std::size_t begin = position_;
  bool has_code = false;
  for (;;) {
    skip_until(ends_name | Characters::code);
    if (at_end() || is(ends_name)) break;
    const std::size_t end = code_end(CodeScanner::Place::tag);
    if (end == 0) {
      ++position_;
      continue;
    }
    const std::string_view name = source_.substr(begin, position_ - begin);
    if (!name.empty() && !has_code && !is_part_of_tag_name(name)) break;
    has_code = true;
    position_ = end;
  }
  token_.name = {begin, position_};
}

// A slash, a piece of code, or an attribute.
void TagReader::item() {
  if (source_[position_] == '/') {
    ++position_;
    token_.self_closing = !at_end() && source_[position_] == '>';
    return;
  }
  const std::size_t end = is(Characters::code) ? code_end(CodeScanner::Place::tag) : 0;
  if (end != 0 && role_until(end) != CodeRole::output) {
    position_ = end;
    token_.items_end = end;
    return;
  }
  attribute();
}

void TagReader::attribute() {
  AttributeToken attribute{};
  attribute.name.begin = position_;
  const bool is_code = !attribute_name();
  attribute.name.end = position_;
  attribute.end = position_;
  const std::size_t after_name = position_;
  skip_blanks();
  if (!at_end() && source_[position_] == '=') {
    ++position_;
    attribute.has_value = true;
    value(attribute);
    attribute.end = position_;
  } else {
    position_ = after_name;
  }
  token_.items_end = position_;
  if (!is_code || attribute.has_value) token_.attributes.push_back(attribute);
}

// A "=" at the start belongs to the name. False when the name is nothing but code.
bool TagReader::attribute_name() {
  const std::size_t begin = position_;
  bool has_block = false;
  bool is_named = false;
  for (;;) {
    const std::size_t before = position_;
    skip_until(ends_name | Characters::equals | Characters::bracket | Characters::code);
    is_named = is_named || position_ != before;
    if (at_end() || is(ends_name) || (is(Characters::equals) && position_ != begin)) break;
    const std::size_t end = is(Characters::code) ? code_end(CodeScanner::Place::tag) : 0;
    if (end == 0) {
      is_named = true;
      take_character(true);
      continue;
    }
    const bool is_output = role_until(end) == CodeRole::output;
    const bool goes_on =
        has_block || is_output || wants_more(source_.substr(begin, position_ - begin));
    if (!goes_on) break;
    has_block = has_block || !is_output;
    position_ = end;
  }
  return is_named;
}

void TagReader::value(AttributeToken& attribute) {
  skip_blanks();
  attribute.value = {position_, position_};
  if (at_end() || source_[position_] == '>') return;
  if (source_[position_] == '"' || source_[position_] == '\'') {
    quoted_value(attribute);
  } else {
    unquoted_value(attribute);
  }
}

void TagReader::quoted_value(AttributeToken& attribute) {
  attribute.quote = source_[position_++];
  attribute.value.begin = position_;
  until_quote(attribute.quote);
  const bool is_glued = position_ + 1 < source_.size() && !is_blank(source_[position_ + 1]) &&
                        source_[position_ + 1] != '>' && source_[position_ + 1] != '/';
  token_.may_be_odd = token_.may_be_odd || is_glued;
  if (is_glued && is_for_author()) glued_value(attribute);
  attribute.value.end = position_;
  if (!at_end()) ++position_;
}

void TagReader::until_quote(char quote) {
  const unsigned closer = quote == '"' ? Characters::double_quote : Characters::single_quote;
  for (;;) {
    skip_until(closer | Characters::code);
    if (at_end() || is(closer)) return;
    position_ = std::max(position_ + 1, code_end(CodeScanner::Place::quoted));
  }
}

// The quote that ends a value may be one of code in it: class="@f("a b")".
void TagReader::glued_value(AttributeToken& attribute) {
  CodeScanner& code = code_.ahead();
  const std::size_t bracket = qo::open_bracket(source_, attribute.value.begin, position_, code);
  if (bracket == std::string_view::npos) return;
  const std::size_t found = bracket_end(source_, bracket, code).end;
  const std::size_t end = std::max(found, bracket + 1);
  if (token_.open_bracket.empty()) token_.open_bracket = {bracket, end};
  if (end <= position_) return;
  position_ = end;
  until_quote(attribute.quote);
}

// A character of a name, or of a value without quotes.
void TagReader::take_character(bool in_name) {
  const bool is_bracket = opens_bracket(source_[position_]);
  token_.may_be_odd = token_.may_be_odd || is_bracket;
  const bool is_lost = token_.open_bracket.end == token_.open_bracket.begin + 1;
  if (is_bracket && !is_lost && is_for_author()) return take_bracket(in_name);
  ++position_;
}

// What is in brackets belongs together, whatever ends a name or value for a browser.
void TagReader::take_bracket(bool in_name) {
  const BracketEnd found = bracket_end(source_, position_, code_.ahead());
  const bool is_cut =
      found.end == 0 || found.has_blank || found.has_tag_end || (in_name && found.has_name_end);
  const std::size_t end = std::max(found.end, position_ + 1);
  if (is_cut && token_.open_bracket.empty()) token_.open_bracket = {position_, end};
  position_ = end;
}

// Whether a block begins with the code in front of `end` and ends within the tag: {% if x %} does,
// {% url x %} does not.
bool TagReader::is_block(std::string_view opener, std::size_t end) {
  if (looks_ahead_) return true;
  if (blocks_ == nullptr) blocks_ = blocks_from(end);
  return blocks_->ends_after(opener, end);
}

// What follows an opener is read alike, whether or not it is one: a blank or the end of the tag.
std::unique_ptr<TagBlocks> TagReader::blocks_from(std::size_t begin) {
  Token rest{};
  TagReader reader(source_, code_.ahead(), rest);
  reader.looks_ahead_ = true;
  reader.blocks_ = std::make_unique<TagBlocks>();
  reader.position_ = begin;
  reader.items();
  return std::move(reader.blocks_);
}

// A piece of code that ends a block ends the value as well, unless the block began in it; one that
// begins a block at the end of the value is no part of it either.
void TagReader::unquoted_value(AttributeToken& attribute) {
  bool has_block = false;
  constexpr unsigned ends_value = Characters::blank | Characters::tag_end;
  const unsigned slash = code_.dialect().slash_ends_values ? Characters::slash : 0;
  for (;;) {
    skip_until(ends_value | slash | Characters::bracket | Characters::code);
    if (at_end() || is(ends_value) || (is(slash) && source_.substr(position_, 2) == "/>")) break;
    const std::size_t end = is(Characters::code) ? code_end(CodeScanner::Place::unquoted) : 0;
    if (end == 0) {
      take_character(false);
      continue;
    }
    const CodeRole role = role_until(end);
    const bool is_first = position_ == attribute.value.begin;
    if (role == CodeRole::closing && !has_block && !is_first) break;
    const bool at_value_end =
        end >= source_.size() || is_blank(source_[end]) || source_[end] == '>';
    const bool may_open = role == CodeRole::opening && !has_block && !is_first && at_value_end;
    if (may_open && is_block(code_until(end), end)) break;
    has_block = has_block || role == CodeRole::opening;
    position_ = end;
  }
  attribute.value.end = position_;
}

}  // namespace qo
