#include <qo_page/template/block_words.h>

#include <qo_page/base/ascii.h>

namespace qo {

namespace {

using Kind = CodeStep::Kind;

constexpr unsigned statement = languages::statement, section = languages::section,
                   action = languages::action, php = languages::php, script = languages::script,
                   toolkit = languages::toolkit, basic = languages::basic, brace = languages::brace,
                   anywhere = languages::anywhere;
constexpr unsigned by_end = BlockWord::by_end, loop = BlockWord::loop,
                   is_default = BlockWord::is_default;

constexpr BlockWord words[] = {
    // Beginnings.
    {"apply", statement, Kind::open, by_end},
    {"asyncAll", statement, Kind::open, loop, "all"},
    {"asyncEach", statement, Kind::open, loop, "each"},
    {"begin", script, Kind::open, by_end},
    {"block", statement | action, Kind::open, by_end},
    {"case", script, Kind::open, by_end},
    {"class", script | basic, Kind::open, by_end},
    {"declare", php, Kind::open},
    {"def", script, Kind::open, by_end},
    {"define", action, Kind::open, by_end},
    {"do", basic, Kind::open, loop, "loop"},
    {"do", script | anywhere, Kind::open, by_end | loop},
    {"each", statement | section | anywhere, Kind::open, loop},
    {"fn", script, Kind::open, by_end},
    {"for", basic, Kind::open, loop, "next"},
    {"for", php | section, Kind::open, loop},
    {"for", statement | script | anywhere, Kind::open, by_end | loop},
    {"foreach", script, Kind::open, by_end | loop},
    {"foreach", statement | section | php | anywhere, Kind::open, loop},
    {"function", basic, Kind::open, by_end},
    {"if", php, Kind::open},
    {"if", statement | action | script | basic, Kind::open, by_end},
    {"ifAsync", statement, Kind::open, 0, "if"},
    {"loop", statement | section, Kind::open, loop},
    {"module", script, Kind::open, by_end},
    {"property", basic, Kind::open, by_end},
    {"range", action, Kind::open, by_end | loop},
    {"range", statement | section, Kind::open, loop},
    {"select", basic, Kind::open, by_end},
    {"sub", basic, Kind::open, by_end},
    {"switch", php, Kind::open},
    {"tablerow", statement | section, Kind::open, loop},
    {"try", statement, Kind::open, by_end},
    {"unless", script, Kind::open, by_end},
    {"until", script | anywhere, Kind::open, by_end | loop},
    {"until", statement | section, Kind::open, loop},
    {"while", basic, Kind::open, loop, "wend"},
    {"while", php | section, Kind::open, loop},
    {"while", statement | script | anywhere, Kind::open, by_end | loop},
    {"with", action | basic, Kind::open, by_end},
    {"BLOCK", toolkit, Kind::open, by_end},
    {"FILTER", toolkit, Kind::open, by_end},
    {"FOR", toolkit | anywhere, Kind::open, by_end | loop},
    {"FOREACH", toolkit | anywhere, Kind::open, by_end | loop},
    {"IF", toolkit, Kind::open, by_end},
    {"PERL", toolkit, Kind::open, by_end},
    {"RAWPERL", toolkit, Kind::open, by_end},
    {"SWITCH", toolkit, Kind::open, by_end},
    {"TRY", toolkit, Kind::open, by_end},
    {"UNLESS", toolkit, Kind::open, by_end},
    {"VIEW", toolkit, Kind::open, by_end},
    {"WHILE", toolkit | anywhere, Kind::open, by_end | loop},
    {"WRAPPER", toolkit, Kind::open, by_end},
    // What divides.
    {"case", php | basic, Kind::middle},
    {"catch", statement | brace, Kind::middle},
    {"default", statement | php, Kind::middle, is_default},
    {"elif", statement | brace, Kind::middle},
    {"else", statement | action | php | script | basic | brace, Kind::middle, is_default},
    {"elseif", statement | php | script | basic | brace, Kind::middle},
    {"elsif", statement | script | brace, Kind::middle},
    {"empty", statement, Kind::middle, is_default},
    {"ensure", script, Kind::middle},
    {"except", statement, Kind::middle},
    {"finally", statement | brace, Kind::middle},
    {"plural", statement, Kind::middle, is_default},
    {"pluralize", statement, Kind::middle, is_default},
    {"rescue", script, Kind::middle},
    {"when", statement | script, Kind::middle},
    {"CASE", toolkit, Kind::middle},
    {"CATCH", toolkit, Kind::middle},
    {"ELSE", toolkit, Kind::middle, is_default},
    {"ELSIF", toolkit, Kind::middle},
    {"FINAL", toolkit, Kind::middle},
    // Ends. Those of statements and of PHP are "end" and the name of the block.
    {"end", statement | action | script | basic, Kind::close, 0, any_end},
    {"loop", basic, Kind::close},
    {"next", basic, Kind::close},
    {"wend", basic, Kind::close},
    {"END", toolkit, Kind::close, 0, any_end},
};

}  // namespace

const BlockWord* find_block_word(std::string_view word, unsigned languages) {
  const bool any_case = (languages & (php | basic)) != 0;
  for (const BlockWord& row : words) {
    if ((row.languages & languages) == 0) continue;
    if (any_case ? equals_without_case(row.word, word) : row.word == word) return &row;
  }
  return nullptr;
}

bool is_loop_word(std::string_view word, unsigned languages) {
  const BlockWord* const row = find_block_word(word, languages);
  return row != nullptr && (row->traits & loop) != 0;
}

}  // namespace qo
