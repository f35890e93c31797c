#include <qo_page/edits/encoding.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>

#include <qo_page/base/ascii.h>
#include <qo_page/base/words.h>
#include <qo_page/edits/edit_error.h>
#include <qo_page/text/node_text.h>
#include <qo_page/utf8.h>

namespace qo {

namespace {

std::string beyond_ascii(std::string_view text) {
  std::string out;
  std::copy_if(text.begin(), text.end(), std::back_inserter(out),
               [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
  return out;
}

bool is_utf8(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = sequence_length(text, i);
    if (length == 0) return false;
    i += length;
  }
  return true;
}

std::string_view without_quotes(std::string_view label) {
  constexpr std::string_view around = " \t\r\n\f\"'";
  label = without_leading(label, around);
  return label.substr(0, label.find_last_not_of(around) + 1);
}

// What a <meta> says; empty when it says nothing of the encoding.
std::string encoding_of(const Tree& tree, NodeIndex meta) {
  const auto value_of_named = [&](std::string_view name) -> std::optional<std::string> {
    const AttributeRecord* const attribute = tree.find_attribute(meta, name);
    if (attribute == nullptr) return std::nullopt;
    return value_of(tree, *attribute, TextForm::decoded);
  };
  if (const auto charset = value_of_named("charset")) return std::string(without_quotes(*charset));
  const auto content = value_of_named("content");
  const auto about = value_of_named("http-equiv");
  const bool is_type = about && equals_without_case(*about, "content-type");
  if (!content || !is_type) return {};
  const std::string value = lower(*content);
  constexpr std::string_view key = "charset";
  const std::size_t begin = value.find(key);
  if (begin == std::string::npos) return {};
  const std::string_view rest =
      without_leading(std::string_view(value).substr(begin + key.size()), blanks);
  if (!begins_with(rest, "=")) return {};
  return std::string(without_quotes(rest.substr(1, rest.find(';') - 1)));
}

// The encoding that the head of a page names; empty when there is none.
std::string declared_encoding(const Tree& tree) {
  for (NodeIndex node = document_index; node < tree.size(); ++node) {
    const Tag tag = tree[node].tag;
    if (tag == Tag::body_) break;
    const std::string encoding = tag == Tag::meta_ ? encoding_of(tree, node) : std::string();
    if (!encoding.empty()) return encoding;
  }
  return {};
}

bool names_utf8(std::string_view encoding) {
  const bool is_code = encoding.find_first_of("{<") != std::string_view::npos;
  return is_code || equals_without_case(encoding, "utf-8") || equals_without_case(encoding, "utf8");
}

// What a page has beyond ASCII tells more than what it says of itself.
void check(const Tree& tree, std::size_t offset) {
  if (!is_utf8(tree.source)) {
    throw Error("characters beyond ASCII would be UTF-8, which the page is not", offset);
  }
  if (!beyond_ascii(tree.source).empty()) return;
  const std::string encoding = declared_encoding(tree);
  if (encoding.empty() || names_utf8(encoding)) return;
  throw Error(
      "characters beyond ASCII would be UTF-8, and the page says that it is " + shortened(encoding),
      offset);
}

}  // namespace

void check_encoding(const WrittenEdit& written, const Tree& tree) {
  const std::string_view before = tree.source;
  const std::string_view after = written.source;
  for (const Change& change : written.changes) {
    const std::string added =
        beyond_ascii(after.substr(change.new_begin, change.new_end - change.new_begin));
    if (added.empty()) continue;
    const std::string_view taken =
        before.substr(change.old_begin, change.old_end - change.old_begin);
    if (added != beyond_ascii(taken)) return check(tree, change.old_begin);
  }
}

}  // namespace qo
