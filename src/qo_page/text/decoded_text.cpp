#include <qo_page/text/decoded_text.h>

#include <qo_page/decode.h>
#include <qo_page/template/template_code.h>

namespace qo {

namespace {

CodeScanner::Place place_of(const WrittenText& written) {
  switch (written.kind) {
    case WrittenText::Kind::literal:
      return CodeScanner::Place::raw_text;
    case WrittenText::Kind::value:
      return written.quote == 0 ? CodeScanner::Place::unquoted : CodeScanner::Place::quoted;
    default:
      return CodeScanner::Place::fragment;
  }
}

}  // namespace

DecodedText::DecodedText(const WrittenText& written) {
  const std::string_view source = written.text;
  const bool is_literal = written.kind == WrittenText::Kind::literal;
  const DecodeMode mode =
      written.kind == WrittenText::Kind::value ? DecodeMode::attribute : DecodeMode::text;
  const CodeScanner::Place place = place_of(written);
  CodeScanner code(source, written.dialect);
  for (std::size_t i = 0; i < source.size();) {
    const std::size_t begin = text_.size();
    if (const std::size_t code_end = code.end_of(i, place)) {
      text_ += source.substr(i, code_end - i);
      code_.push_back({begin, text_.size()});
      i = code_end;
      continue;
    }
    const bool may_refer = source[i] == '&' && !is_literal;
    const std::size_t length = may_refer ? reference_length(source, i, mode) : 0;
    if (length != 0) {
      text_ += decode(source.substr(i, length), DecodeMode::text);
      references_.push_back({{begin, text_.size()}, {i, i + length}});
      i += length;
    } else {
      text_ += source[i++];
    }
  }
}

std::optional<std::size_t> DecodedText::written_offset(std::size_t offset) {
  while (next_ < references_.size() && references_[next_].decoded.end <= offset) {
    past_ = references_[next_++];
  }
  const bool is_within = next_ < references_.size() && references_[next_].decoded.begin < offset;
  if (is_within) return std::nullopt;
  return past_.written.end + (offset - past_.decoded.end);
}

}  // namespace qo
