// Parts of the tool that stand on their own: words, cells, texts, suggestions, globs and folders.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "args/arguments.h"
#include "args/edit_script.h"
#include "io/cells.h"
#include "io/failure.h"
#include "io/text.h"

namespace {

TEST(SplitWords, ReadsQuotesAsAShellDoes) {
  struct {
    const char* line;
    std::vector<std::string> words;
  } const cases[] = {
      {"", {}},
      {" a  b\t", {"a", "b"}},
      {"'a b'c \"d 'e'\"", {"a bc", "d 'e'"}},
      {R"("a\"b\\c\d" 'e\f' g\ h \i)", {R"(a"b\c\d)", R"(e\f)", "g h", "i"}},
      {"'' a\"\"", {"", "a"}},
      {"a\\", {"a\\"}},
      {"#id --remove", {"#id", "--remove"}},
  };
  for (const auto& test : cases) EXPECT_EQ(cli::split_words(test.line), test.words) << test.line;
  for (const char* line : {"'a", "a \"b'", "\"a\\\""}) EXPECT_THROW(cli::split_words(line), cli::Failure) << line;
}

TEST(Cells, AreEscapedOrQuoted) {
  struct {
    const char* cell;
    const char* with_tabs;
    const char* with_commas;
  } const cases[] = {
      {"", "x\t", "x,"},
      {"a b", "x\ta b", "x,a b"},
      {"a\tb\r\n\\", "x\ta\\tb\\r\\n\\\\", "x,\"a\tb\r\n\\\""},
      {"a,\"b\"", "x\ta,\"b\"", "x,\"a,\"\"b\"\"\""},
      {"a\rb", "x\ta\\rb", "x,\"a\rb\""},
  };
  for (const auto& test : cases) {
    std::string tabs = "x", commas = "x";
    cli::append_cell(test.cell, false, cli::CellForm::tabs, tabs);
    cli::append_cell(test.cell, false, cli::CellForm::commas, commas);
    EXPECT_EQ(tabs, test.with_tabs);
    EXPECT_EQ(commas, test.with_commas);
  }
}

TEST(Text, IsMadePrintableAndValid) {
  struct {
    std::string text;
    const char* printable;
    const char* valid;
  } const cases[] = {
      {"a\xC3\xA9\xF0\x9F\x98\x80", "a\xC3\xA9\xF0\x9F\x98\x80", "a\xC3\xA9\xF0\x9F\x98\x80"},
      {"\n\t\r\x1b[m\x7f", "\\n\\t\\r\\x1b[m\\x7f", "\n\t\r\x1b[m\x7f"},
      {"\xC2\x9B", "\\xc2\\x9b", "\xC2\x9B"},
      {"\xC0\x80\xE0\x80\x80", "\\xc0\\x80\\xe0\\x80\\x80", "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"\xED\xA0\x80", "\\xed\\xa0\\x80", "\uFFFD\uFFFD\uFFFD"},
      {"\xF4\x90\x80\x80", "\\xf4\\x90\\x80\\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"\xE2\x82", "\\xe2\\x82", "\uFFFD\uFFFD"},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(cli::printable(test.text), test.printable);
    EXPECT_EQ(cli::valid_utf8(test.text), test.valid);
  }
  EXPECT_EQ(cli::quoted("ab\xC3\xA9", 3), "\"ab\"...");
  EXPECT_EQ(cli::quoted("a\"b", 3), "\"a\"b\"");
}

TEST(LineIndex, GivesLinesAndColumns) {
  const std::string text = "a\n\nbc\r\nd";
  const qo::LineIndex index(text);
  struct {
    std::size_t offset;
    const char* place;
  } const cases[] = {{0, "1:1"}, {1, "1:2"}, {2, "2:1"}, {3, "3:1"}, {6, "3:4"}, {7, "4:1"}, {8, "4:2"}};
  for (const auto& test : cases) {
    EXPECT_EQ(cli::shown_place(index.position(test.offset)), test.place);
    EXPECT_EQ(cli::place_of(text, test.offset), test.place);
  }
}

TEST(Suggestion, IsTheNearestName) {
  const std::vector<std::string> names = {"--text", "--text-file", "--html", "-q"};
  struct {
    const char* given;
    const char* suggestion;
  } const cases[] = {{"--txt", "; did you mean --text?"},
                     {"--hmtl", "; did you mean --html?"},
                     {"--text-fil", "; did you mean --text-file?"},
                     {"--remove", ""},
                     {"-x", "; did you mean -q?"}};
  for (const auto& test : cases) EXPECT_EQ(cli::suggestion(test.given, names), test.suggestion) << test.given;
  EXPECT_EQ(cli::suggestion(std::string(1000000, 'x'), names), "");
}

// --- Composed changes ---

TEST(Text, IsSplitOutsideOfBracketsAndQuotes) {
  const std::string text = R"(a[b=","],c:is(d,[e="(,"]),"f,",g\,h,i])";
  std::vector<std::string> parts;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = cli::find_outside(text, ',', begin);
    parts.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  const std::vector<std::string> expected = {R"(a[b=","])", R"(c:is(d,[e="(,"]))", "\"f,\"", "g\\,h", "i]"};
  EXPECT_EQ(parts, expected);
}

}  // namespace
