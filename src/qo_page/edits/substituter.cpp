#include <qo_page/edits/substituter.h>

#include <algorithm>
#include <optional>
#include <utility>

#include <qo_page/page.h>
#include <qo_page/text/escape.h>

namespace qo {

namespace {

bool is_within(const Stretch& inner, const Stretch& outer) {
  return outer.begin <= inner.begin && inner.end <= outer.end;
}

std::string_view in(const std::string& text, const Stretch& stretch) {
  return std::string_view(text).substr(stretch.begin, stretch.end - stretch.begin);
}

// Whether the code between two iterators is all in the text, in that order.
template <class Iterator>
bool holds_code(const std::string& text, const Dialect& dialect, const std::string& old_text,
                Iterator next, Iterator end) {
  const DecodedText read({text, WrittenText::Kind::text, 0, dialect});
  for (const Stretch& code : read.code()) {
    if (next != end && in(read.text(), code) == in(old_text, *next)) ++next;
  }
  return next == end;
}

// What a change leaves as it is at its ends is not a part of it, and keeps its spelling.
void trim(Splice& change, const DecodedText& decoded) {
  const std::string& text = decoded.text();
  const std::size_t shorter = std::min(change.end - change.begin, change.text.size());
  std::size_t start = 0;
  while (start < shorter && text[change.begin + start] == change.text[start]) ++start;
  while (start > 0 && !decoded.is_uncut(change.begin + start)) --start;
  std::size_t tail = 0;
  while (start + tail < shorter &&
         text[change.end - 1 - tail] == change.text[change.text.size() - 1 - tail]) {
    ++tail;
  }
  while (tail > 0 && !decoded.is_uncut(change.end - tail)) --tail;
  change.text = change.text.substr(start, change.text.size() - start - tail);
  change.begin += start;
  change.end -= tail;
}

enum class Ampersands { where_needed, all };

std::string with_all_ampersands(std::string_view text) {
  std::string out;
  for (const char c : text) {
    out += c;
    if (c == '&') out += "amp;";
  }
  return out;
}

std::string escaped(const WrittenText& written, const std::string& text, Ampersands which) {
  if (written.kind == WrittenText::Kind::literal) return text;
  std::string out = written.kind == WrittenText::Kind::value
                        ? escaped_value(text, written.quote, written.dialect)
                        : escaped_text(text, written.dialect);
  if (which == Ampersands::where_needed || out != text) return out;
  return with_all_ampersands(out);
}

}  // namespace

std::string spliced(std::string_view text, const std::vector<Splice>& splices) {
  std::string out;
  std::size_t position = 0;
  for (const Splice& splice : splices) {
    out += text.substr(position, splice.begin - position);
    out += splice.text;
    position = splice.end;
  }
  out += text.substr(position);
  return out;
}

std::vector<PatternMatch> Substituter::find_matches(const std::string& text) const {
  try {
    return program_.pattern.find_all(text, budget_);
  } catch (const PatternBudget::Exceeded&) {
    throw Error("the regular expression takes too many steps on this page", place_);
  }
}

template <class Replacement>
std::vector<Splice> Substituter::find_changes(const DecodedText& decoded, const Dialect& dialect,
                                              Replacement replacement) const {
  const std::string& text = decoded.text();
  std::vector<Splice> changes;
  auto code = decoded.code().begin();
  for (const PatternMatch& match : find_matches(text)) {
    const Stretch here{match[0].first, match[0].second};
    while (code != decoded.code().end() && code->end <= here.begin) ++code;
    auto last = code;
    while (last != decoded.code().end() && last->begin < here.end) ++last;
    if (code != last && is_within(here, *code)) continue;
    std::string wanted = replacement(match);
    if (in(text, here) == wanted) continue;
    const bool keeps_code =
        std::all_of(code, last, [&here](const Stretch& piece) { return is_within(piece, here); }) &&
        holds_code(wanted, dialect, text, code, last);
    if (!keeps_code) throw Error("the expression would change template code", place_);
    changes.push_back({here.begin, here.end, std::move(wanted)});
  }
  return changes;
}

std::size_t Substituter::written_offset(const DecodedText& decoded, std::size_t offset) const {
  const std::optional<std::size_t> found = decoded.written_offset(offset);
  if (!found) throw Error("the expression matches a part of a reference", place_);
  return *found;
}

std::vector<Splice> Substituter::markup_splices(const WrittenText& written) const {
  const DecodedText decoded(written);
  const auto markup = [&](PatternMatch match) {
    for (auto& [begin, end] : match) {
      if (begin == std::string::npos) continue;
      begin = written_offset(decoded, begin);
      end = written_offset(decoded, end);
    }
    return program_.replacement_of(match, written.text);
  };
  std::vector<Splice> splices = find_changes(decoded, written.dialect, markup);
  for (Splice& splice : splices) {
    splice.begin = written_offset(decoded, splice.begin);
    splice.end = written_offset(decoded, splice.end);
  }
  return splices;
}

std::vector<Splice> Substituter::splices(const WrittenText& written) const {
  const DecodedText decoded(written);
  const auto text_of = [&](const PatternMatch& match) {
    return program_.replacement_of(match, decoded.text());
  };
  std::vector<Splice> changes = find_changes(decoded, written.dialect, text_of);
  std::vector<Splice> wanted;
  for (Splice& change : changes) {
    written_offset(decoded, change.begin);
    written_offset(decoded, change.end);
    trim(change, decoded);
    wanted.push_back(
        {written_offset(decoded, change.begin), written_offset(decoded, change.end), change.text});
  }
  if (wanted.empty()) return wanted;
  const std::string result = spliced(decoded.text(), changes);
  for (const Ampersands which : {Ampersands::where_needed, Ampersands::all}) {
    std::vector<Splice> splices = wanted;
    for (Splice& splice : splices) splice.text = escaped(written, splice.text, which);
    const std::string text = spliced(written.text, splices);
    if (DecodedText({text, written.kind, written.quote, written.dialect}).text() == result) {
      return splices;
    }
  }
  throw Error("the result would be read otherwise than as asked", place_);
}

}  // namespace qo
