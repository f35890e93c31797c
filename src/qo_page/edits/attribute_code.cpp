#include <qo_page/edits/attribute_code.h>

#include <algorithm>

#include <qo_page/base/words.h>
#include <qo_page/tokenizer/brackets.h>

namespace qo {

namespace {

constexpr std::size_t npos = std::string_view::npos;

// A name without a value that is code of an unknown kind: {...rest}, @class($list), ${attributes}.
bool may_be_code(std::string_view name) {
  return std::any_of(name.begin(), name.end(), opens_bracket);
}

bool is_name_character(char c) {
  return is_word_character(c) || c == '-' || c == ':';
}

// Whether a text has a name as a word of its own.
bool mentions(std::string_view text, std::string_view name) {
  for (std::size_t begin = 0; begin < text.size();) {
    std::size_t end = begin;
    while (end < text.size() && is_name_character(text[end])) ++end;
    if (equals_without_case(text.substr(begin, end - begin), name)) return true;
    begin = end + 1;
  }
  return false;
}

// A program that only assigns writes nothing.
bool is_assignment(std::string_view code) {
  if (begins_with(code, "<?php")) code.remove_prefix(3);
  const std::string_view inner = without_leading(code.substr(2), blanks);
  if (!begins_with(inner, "$") || inner.find(';') + 1 < inner.rfind(';') + 1) return false;
  const std::string_view rest =
      without_leading(inner.substr(1 + first_word(inner.substr(1)).size()), blanks);
  return rest.size() > 1 && rest[0] == '=' && rest[1] != '=';
}

// Code of a block that begins or ends outside of the tag: it writes nothing itself.
bool is_control(std::string_view code) {
  static constexpr std::string_view words[] = {"if",     "for",  "foreach", "while",
                                               "unless", "case", "switch",  "with"};
  if (role_of(code) == CodeRole::closing) return true;
  const std::string_view inner = without_leading(code.substr(2), "-+~#^ \t\r\n");
  return code[0] == '{' && is_one_of(first_word(inner), words);
}

// A template that extends this one may give a named block another text.
bool is_overridden(std::string_view code) {
  const std::string_view word = first_word(without_leading(code.substr(2), "-+~ \t\r\n"));
  return word == "block" || word == "section";
}

bool begins_block(const CodeBlocks& blocks, std::size_t offset) {
  const std::vector<CodeBlock>& all = blocks.blocks();
  return std::any_of(all.begin(), all.end(), [&](const CodeBlock& block) {
    return std::any_of(block.pieces.begin(), block.pieces.end(),
                       [&](std::size_t piece) { return blocks.pieces()[piece].begin == offset; });
  });
}

}  // namespace

AttributeCode::AttributeCode(std::string_view source, const Token& tag, const CodeBlocks& blocks,
                             CodeScanner& code)
    : source_(source) {
  std::size_t position = tag.name.end;
  const auto add_until = [&](std::size_t end) {
    while (position < end) {
      const std::size_t code_end = code.end_of(position, CodeScanner::Place::tag);
      if (code_end != 0) add({position, code_end}, tag, blocks);
      position = std::max(position + 1, code_end);
    }
  };
  for (const AttributeToken& attribute : tag.attributes) {
    add_until(attribute.name.begin);
    if (!attribute.has_value && may_be_code(attribute.name.in(source))) {
      writers_.push_back(attribute.name);
    }
    position = attribute.end;
  }
  add_until(tag.extent.end);
}

void AttributeCode::add(Range piece, const Token& tag, const CodeBlocks& blocks) {
  const std::string_view code = piece.in(source_);
  const bool prints = code[0] == '<' && (code.find("echo") != npos || code.find("print") != npos);
  const bool is_silent = !may_write(code) || is_assignment(code) || is_control(code) ||
                         begins_block(blocks, piece.begin - tag.extent.begin);
  if (prints || !is_silent || is_overridden(code)) writers_.push_back(piece);
}

std::string_view AttributeCode::writer_of(std::string_view name, std::size_t before) const {
  for (const Range& writer : writers_) {
    if (writer.begin >= before) break;
    const std::string_view code = writer.in(source_);
    if (equals_without_case(name, "class") || mentions(code, name)) return code;
  }
  return std::string_view();
}

}  // namespace qo
