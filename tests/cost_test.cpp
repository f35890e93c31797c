// Sources that are large enough for a cost that grows with the square of them to take minutes: the
// limit of time on the whole program is what tells.

#include <string>

#include <gtest/gtest.h>

#include <qo_page/decode.h>
#include <qo_page/edits.h>
#include <qo_page/selector.h>

namespace {

using Kind = qo::Operation::Kind;

std::string repeated(std::size_t times, const std::string& piece) {
  std::string out;
  out.reserve(piece.size() * times);
  for (std::size_t i = 0; i < times; ++i) out += piece;
  return out;
}

std::string edited(const std::string& source, const char* selector, const qo::Operation& operation) {
  const qo::Page page(source);
  qo::Edits edits(page);
  edits.add(page.select(qo::Selector(selector)), {operation});
  return edits.apply().source;
}

TEST(Cost, OfTagsWithCodeGrowsWithTheSource) {
  const std::string source = repeated(200'000, "<p x=a{% if b %} y=c\"=\"d>");
  EXPECT_EQ(edited(source, "p:nth-child(2)", {Kind::set_text, "", "e"}).size(), source.size() + 1);
}

TEST(Cost, OfAmpersandsGrowsWithTheText) {
  const std::string text = repeated(2'000'000, "& ");
  const qo::Operation operation{Kind::substitute_text, "", "", qo::Substitution("x(.*)y", "$1&")};
  EXPECT_EQ(edited("<p>x" + text + "ylt;</p>", "p", operation).substr(0, 14), "<p>&amp; &amp;");
}

// A reference is not read again from each of its characters.
TEST(Cost, OfUnfinishedReferencesGrowsWithTheText) {
  const std::size_t count = 1'000'000;
  for (const char* unit : {"&", "&#", "&#x", "&CounterClockwise", "&;"}) {
    const std::string text = repeated(count, unit);
    EXPECT_EQ(qo::decode(text), text);
  }
  EXPECT_EQ(qo::decode("&#" + repeated(count, "1")), "\uFFFD");
  EXPECT_EQ(qo::decode("&#x" + repeated(count, "0") + "41"), "A");
  EXPECT_EQ(qo::decode("&" + repeated(count, "a")).size(), count + 1);
}

TEST(Cost, OfSelectorsGrowsWithThePage) {
  constexpr std::size_t count = 100'000;
  const struct {
    std::string source;
    std::vector<const char*> all, none;  // found as often as the piece is there, or never
  } pages[] = {
      {repeated(count, "<b>x</b><!---->"),
       {},
       {"b:has(~ p)", ":comment:contains(y)", "b:contains(xxx)", "b:not(b, b ~ b)"}},
      {repeated(count, "<div>a"),
       {"div:not(:has(b))", ":dir(ltr)", ":only-of-type", ":nth-last-child(1 of div)"},
       {"div div div div p", ":has(div div p)", ":contains(aaab)", ":lang(en)", ":dir(rtl)", ":disabled",
        "div:is(p div, i > div)"}},
      {repeated(count, "<ul><li>a<li><b>c</b>"),
       {"li:has(b) > b", ":has(+ li b)", "li:nth-last-of-type(1)", "b:nth-last-child(1 of b)"},
       {}},
      // An opener without a closer, in each value.
      {repeated(count, "<b class='{{ a'>x</b>"), {".a"}, {".a > .a"}},
      {"<p>" + repeated(count, "ab"), {}, {"p:contains(abababababababababababababababb)"}},
  };
  for (const auto& [source, all, none] : pages) {
    const qo::Page page(source);
    for (const char* selector : all) EXPECT_EQ(page.select(selector).size(), count) << selector;
    for (const char* selector : none) EXPECT_EQ(page.select(selector).size(), 0u) << selector;
  }
  const qo::Page wide(pages[0].source);
  for (const char* selector : {"b:nth-last-child(2n)", "b:nth-last-of-type(odd)", ":nth-last-child(2n of b)"}) {
    EXPECT_EQ(wide.select(selector).size(), count / 2) << selector;
  }
  EXPECT_EQ(wide.select("b ~ b, b:last-child").size(), count - 1);
  const qo::Page text(pages[4].source);
  EXPECT_TRUE(text.select("p:contains(" + repeated(count / 2, "ab") + "b)").empty());
}

}  // namespace
