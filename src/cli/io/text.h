// Small helpers on texts.

#ifndef QO_CLI_IO_TEXT_H
#define QO_CLI_IO_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

#include <qo_page/line_index.h>

namespace cli {

// "LINE:COLUMN", both from 1, columns in bytes; also that of an offset in a text.
std::string shown_place(qo::Position position);
std::string place_of(std::string_view text, std::size_t offset);

// The text on one line: control characters and bytes that are not UTF-8 are shown as escapes.
std::string printable(std::string_view text);

// The same in double quotes, cut to about `most` bytes.
std::string quoted(std::string_view text, std::size_t most);

constexpr char replacement_character[] = "\xEF\xBF\xBD";  // U+FFFD

// The text's first character, with all its bytes.
std::string_view first_character(std::string_view text);

// The text with every byte that is not part of valid UTF-8 replaced by U+FFFD.
std::string valid_utf8(std::string_view text);

void drop_byte_order_mark(std::string& text);

// The text with its ASCII letters in lower case.
std::string lower(std::string_view text);

// White space of any kind.
bool is_blank(char c);
bool is_blank(std::string_view text);

// The offset of a character that is in no brackets, quotes or escape, from `begin` on; the length
// of the text where there is none.
std::size_t find_outside(std::string_view text, char wanted, std::size_t begin);

}  // namespace cli

#endif
