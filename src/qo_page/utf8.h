// UTF-8 in texts that may hold anything.

#ifndef QO_PAGE_UTF8_H
#define QO_PAGE_UTF8_H

#include <cstddef>
#include <string_view>

namespace qo {

inline unsigned char byte_at(std::string_view text, std::size_t i) {
  return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
}

// The length of the UTF-8 sequence at `i`; 0 when there is none.
inline std::size_t sequence_length(std::string_view text, std::size_t i) {
  struct LeadByte {  // of a sequence, and what its second byte may be
    unsigned char first, last;
    std::size_t length;
    unsigned char second_first, second_last;
  };
  static constexpr LeadByte lead_bytes[] = {
      {0x00, 0x7F, 1, 0, 0},       {0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF},
      {0xE1, 0xEC, 3, 0x80, 0xBF}, {0xED, 0xED, 3, 0x80, 0x9F}, {0xEE, 0xEF, 3, 0x80, 0xBF},
      {0xF0, 0xF0, 4, 0x90, 0xBF}, {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F}};
  const unsigned char first = byte_at(text, i);
  for (const LeadByte& lead : lead_bytes) {
    if (first < lead.first || first > lead.last) continue;
    if (lead.length == 1) return 1;
    const unsigned char second = byte_at(text, i + 1);
    if (second < lead.second_first || second > lead.second_last) return 0;
    for (std::size_t k = 2; k < lead.length; ++k) {
      if ((byte_at(text, i + k) & 0xC0) != 0x80) return 0;
    }
    return lead.length;
  }
  return 0;
}

}  // namespace qo

#endif
