#include <qo_page/selectors/needle.h>

#include <utility>

namespace qo::selectors {

Needle::Needle(std::string text) : text_(std::move(text)), borders_(text_.size() + 1, 0) {
  for (std::size_t i = 1, border = 0; i < text_.size(); ++i) {
    while (border > 0 && text_[i] != text_[border]) border = borders_[border];
    if (text_[i] == text_[border]) ++border;
    borders_[i + 1] = border;
  }
}

std::vector<std::size_t> Needle::places_in(std::string_view text) const {
  std::vector<std::size_t> places;
  std::size_t matched = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (matched == 0) {
      i = text.find(text_[0], i);
      if (i == text.npos) break;
    }
    while (matched > 0 && (matched == text_.size() || text[i] != text_[matched])) {
      matched = borders_[matched];
    }
    if (text[i] == text_[matched]) ++matched;
    if (matched == text_.size()) places.push_back(i + 1 - matched);
  }
  return places;
}

}  // namespace qo::selectors
