// Sources that are large enough for a cost that grows with the square of them to take minutes: the
// limit of time on the whole program is what tells.

#include <string>

#include <gtest/gtest.h>

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

}  // namespace
