#include <qo_page/base/ascii.h>
#include <qo_page/form_data.h>

namespace qo {

namespace {

bool stays(char c) {
  return is_letter(c) || is_digit(c) || c == '*' || c == '-' || c == '.' || c == '_';
}

void append_byte(std::string& out, char c) {
  constexpr char digits[] = "0123456789ABCDEF";
  const auto byte = static_cast<unsigned char>(c);
  if (stays(c)) {
    out += c;
  } else if (c == ' ') {
    out += '+';
  } else {
    out += {'%', digits[byte >> 4], digits[byte & 15]};
  }
}

// Line breaks of any kind are CR LF.
void append_encoded(std::string& out, std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r' && text[i] != '\n') {
      append_byte(out, text[i]);
      continue;
    }
    out += "%0D%0A";
    if (text.substr(i, 2) == "\r\n") ++i;
  }
}

}  // namespace

std::string urlencoded(const std::vector<FormEntry>& entries) {
  std::string out;
  for (const FormEntry& entry : entries) {
    if (!out.empty()) out += '&';
    append_encoded(out, entry.name);
    out += '=';
    append_encoded(out, entry.value);
  }
  return out;
}

}  // namespace qo
