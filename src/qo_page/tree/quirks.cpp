#include <qo_page/tree/quirks.h>

#include <algorithm>
#include <optional>
#include <string>

#include <qo_page/base/ascii.h>

namespace qo {

namespace {

// The public identifiers of quirky pages: their beginnings, in lower case.
constexpr std::string_view quirky_beginnings[] = {
    "+//silmaril//dtd html pro v0r11 19970101//",
    "-//as//dtd html 3.0 aswedit + extensions//",
    "-//advasoft ltd//dtd html 3.0 aswedit + extensions//",
    "-//ietf//dtd html 2.0 level 1//",
    "-//ietf//dtd html 2.0 level 2//",
    "-//ietf//dtd html 2.0 strict level 1//",
    "-//ietf//dtd html 2.0 strict level 2//",
    "-//ietf//dtd html 2.0 strict//",
    "-//ietf//dtd html 2.0//",
    "-//ietf//dtd html 2.1e//",
    "-//ietf//dtd html 3.0//",
    "-//ietf//dtd html 3.2 final//",
    "-//ietf//dtd html 3.2//",
    "-//ietf//dtd html 3//",
    "-//ietf//dtd html level 0//",
    "-//ietf//dtd html level 1//",
    "-//ietf//dtd html level 2//",
    "-//ietf//dtd html level 3//",
    "-//ietf//dtd html strict level 0//",
    "-//ietf//dtd html strict level 1//",
    "-//ietf//dtd html strict level 2//",
    "-//ietf//dtd html strict level 3//",
    "-//ietf//dtd html strict//",
    "-//ietf//dtd html//",
    "-//metrius//dtd metrius presentational//",
    "-//microsoft//dtd internet explorer 2.0 html strict//",
    "-//microsoft//dtd internet explorer 2.0 html//",
    "-//microsoft//dtd internet explorer 2.0 tables//",
    "-//microsoft//dtd internet explorer 3.0 html strict//",
    "-//microsoft//dtd internet explorer 3.0 html//",
    "-//microsoft//dtd internet explorer 3.0 tables//",
    "-//netscape comm. corp.//dtd html//",
    "-//netscape comm. corp.//dtd strict html//",
    "-//o'reilly and associates//dtd html 2.0//",
    "-//o'reilly and associates//dtd html extended 1.0//",
    "-//o'reilly and associates//dtd html extended relaxed 1.0//",
    "-//sq//dtd html 2.0 hotmetal + extensions//",
    "-//softquad software//dtd hotmetal pro 6.0::19990601::extensions to html 4.0//",
    "-//softquad//dtd hotmetal pro 4.0::19971010::extensions to html 4.0//",
    "-//spyglass//dtd html 2.0 extended//",
    "-//sun microsystems corp.//dtd hotjava html//",
    "-//sun microsystems corp.//dtd hotjava strict html//",
    "-//w3c//dtd html 3 1995-03-24//",
    "-//w3c//dtd html 3.2 draft//",
    "-//w3c//dtd html 3.2 final//",
    "-//w3c//dtd html 3.2//",
    "-//w3c//dtd html 3.2s draft//",
    "-//w3c//dtd html 4.0 frameset//",
    "-//w3c//dtd html 4.0 transitional//",
    "-//w3c//dtd html experimental 19960712//",
    "-//w3c//dtd html experimental 970421//",
    "-//w3c//dtd w3 html//",
    "-//w3o//dtd w3 html 3.0//",
    "-//webtechs//dtd mozilla html 2.0//",
    "-//webtechs//dtd mozilla html//"};

constexpr std::string_view quirky_names[] = {"-//w3o//dtd w3 html strict 3.0//en//",
                                             "-/w3c/dtd html 4.0 transitional/en", "html"};

// Quirky where no system identifier follows.
constexpr std::string_view half_quirky_beginnings[] = {"-//w3c//dtd html 4.01 frameset//",
                                                       "-//w3c//dtd html 4.01 transitional//"};

constexpr std::string_view quirky_system =
    "http://www.ibm.com/data/dtd/v11/ibmxhtml1-transitional.dtd";

template <std::size_t count>
bool begins_with_any(std::string_view text, const std::string_view (&beginnings)[count]) {
  return std::any_of(beginnings, beginnings + count, [text](std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
  });
}

class DoctypeReader {
 public:
  explicit DoctypeReader(std::string_view text) : rest_(text) {}

  std::string_view word() {
    skip_blanks();
    std::size_t length = 0;
    while (length < rest_.size() && !is_blank(rest_[length])) ++length;
    return take(length);
  }

  // A text in quotes; nothing when none follows.
  std::optional<std::string> quoted() {
    skip_blanks();
    if (rest_.empty() || (rest_[0] != '"' && rest_[0] != '\'')) return std::nullopt;
    const char quote = take(1)[0];
    std::string text = lower(take(std::min(rest_.find(quote), rest_.size())));
    if (!rest_.empty()) take(1);
    return text;
  }

  // The keyword, after which an identifier may follow without a blank.
  bool keyword(std::string_view name) {
    skip_blanks();
    const bool found = equals_without_case(rest_.substr(0, name.size()), name);
    if (found) take(name.size());
    return found;
  }

 private:
  void skip_blanks() {
    while (!rest_.empty() && is_blank(rest_[0])) rest_.remove_prefix(1);
  }

  std::string_view take(std::size_t length) {
    const std::string_view taken = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return taken;
  }

  std::string_view rest_;
};

bool has_quirky_public(const std::string& name, bool has_system) {
  return begins_with_any(name, quirky_beginnings) ||
         std::find(std::begin(quirky_names), std::end(quirky_names), name) !=
             std::end(quirky_names) ||
         (!has_system && begins_with_any(name, half_quirky_beginnings));
}

}  // namespace

bool is_quirky(std::string_view doctype) {
  DoctypeReader reader(doctype);
  if (!equals_without_case(reader.word(), "html")) return true;
  std::optional<std::string> public_name;
  if (reader.keyword("public")) {
    public_name = reader.quoted();
    if (!public_name) return true;
  } else if (!reader.keyword("system")) {
    return false;
  }
  const std::optional<std::string> system_name = reader.quoted();
  if (system_name == quirky_system) return true;
  return public_name && has_quirky_public(*public_name, system_name.has_value());
}

}  // namespace qo
