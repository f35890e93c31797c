// Substitutions in texts and values.

#include <gtest/gtest.h>
#include <qo_page/edits.h>
#include <qo_page/selector.h>

namespace {

using Kind = qo::Operation::Kind;

// The new source, or what went wrong.
std::string substituted(const std::string& source, const std::string& selector, const std::string& attribute,
                        const std::string& expression, const std::string& replacement) {
  try {
    const qo::Page page(source);
    qo::Edits edits(page);
    const Kind kind = attribute.empty() ? Kind::substitute_text : Kind::substitute_value;
    edits.add(page.select(qo::Selector(selector)), {{kind, attribute, "", qo::Substitution(expression, replacement)}});
    return edits.apply().source;
  } catch (const qo::Error& error) {
    return std::to_string(error.offset()) + ": " + error.what();
  }
}

TEST(Substitution, ChangesOnlyWhatWasMatched) {
  struct {
    const char* source;
    const char* attribute;  // empty: in texts
    const char* expression;
    const char* replacement;
    const char* result;
  } const cases[] = {
      // Values: in the quotes that are there, or in some where they are needed.
      {"<p t='a b a'>", "t", "a", "c", "<p t='c b c'>"},
      {"<p T=aba>", "t", "b", "'", "<p T=\"a'a\">"},
      {"<p t=aba>", "t", "^a", "x", "<p t=xba>"},
      {"<p t=a>", "t", "a", "", "<p t=\"\">"},
      {"<p t=\"a\">", "t", "a", "\"'<&lt", "<p t=\"&quot;'<&amp;lt\">"},
      {"<p t='&copy;a&lt;'>", "t", "a", "b", "<p t='&copy;b&lt;'>"},
      {"<p t='a&amp;b'>", "t", "&b", "&c", "<p t='a&amp;c'>"},
      {"<p t='a&amp;b;'>", "t", "b", "lt", "<p t='a&amp;lt;'>"},
      {"<p t='&ltx;'>", "t", "x", "y", "<p t='&lty;'>"},
      {"<p t='&am1p;'>", "t", "1", "", "0: the result would be read otherwise than as asked"},
      {"<p t><p>", "t", "^", "a", "<p t><p>"},
      {"<p t='{{ a }}a'>", "t", "a", "b", "<p t='{{ a }}b'>"},
      {"<p t='/{{ a }}.png'>", "t", "/(.*)\\.png", "$1.gif", "<p t='{{ a }}.gif'>"},
      {"<p t='/{{ a }}.png'>", "t", ".*", "x", "0: the expression would change template code"},
      {"<p t='x{{ a }}'>", "t", "x..", "", "0: the expression would change template code"},
      {"<p t='x'>", "t", "x", "{{ y \"z\" }}", "<p t='{{ y \"z\" }}'>"},
      {"<p t='x'>", "t", "x", "{{ 'z' }}", "<p t='{{ 'z' }}'>"},
      // Texts: each alone, and once, whatever matches are nested.
      {"<p>ab<p>b<b>ab</b></p>", "", "a?b", "c", "<p>c<p>c<b>c</b></p>"},
      {"<p>a&amp;lt;<!-- a --><script>a</script>{# a #}<?a?>", "", "a|&", "<",
       "<p>&lt;&lt;lt;<!-- a --><script>a</script>{# a #}<?a?>"},
      {"<p>aé</p>", "", "", "-", "<p>-a-é-</p>"},
      {"<p>abc</p>", "", ".*", "x", "<p>x</p>"},
      {"<p>abbc</p>", "", "b*", "x", "<p>xaxcx</p>"},
      {"<p>café</p>", "", "\\bcaf\\b|[^\\w]", "x", "<p>café</p>"},
      {"<p>\xff\xC3</p>", "", ".", "-", "<p>\xff\xC3</p>"},
      {"<p>one two</p>", "", "(?<first>\\w+) (\\w+)", "${2} ${first}$$", "<p>two one$</p>"},
      {"<p>a</p>", "", "(a)|(b)", "[$2]", "<p>[]</p>"},
      {"<p>&NotEqualTilde;x</p>", "", "\u0338", "", "3: the expression matches a part of a reference"},
      {"<p>&lt;b></p>", "", "<b", "<i", "<p>&lt;i></p>"},
  };
  for (const auto& test : cases) {
    const std::string result = substituted(test.source, "p", test.attribute, test.expression, test.replacement);
    EXPECT_EQ(result, test.result) << test.source;
  }
  EXPECT_EQ(substituted("<div>a<p>a</p></div>", "div, p", "", "a", "aa"), "<div>aa<p>aa</p></div>");
  EXPECT_EQ(substituted("<script>a</script>", "script", "", "a", "b && c<d"), "<script>b && c<d</script>");
  EXPECT_EQ(substituted("<script>a</script>", "script", "", "a", "</script>"),
            "8: the new text would not stay in <script>");
  EXPECT_EQ(substituted("<textarea>a</textarea>", "textarea", "", "a", "</textarea>"),
            "<textarea>&lt;/textarea></textarea>");
}

TEST(Substitution, IsRefusedOrBounded) {
  struct {
    const char* expression;
    const char* replacement;
    const char* message;
  } const cases[] = {
      {"(", "", "1: the expression: missing closing parenthesis"},
      {"a", "b$1", "1: the replacement: the expression has no group 1"},
      {"a", "${x}", "0: the replacement: the expression has no group \"x\""},
      {"a", "${x", "0: the replacement: \"${\" has no \"}\""},
      {"(?<first>a) (b)", "${2} $first$$",
       "5: the replacement: after \"$\" comes a group, or \"$$\" for a \"$\" itself"},
      {"a", "$", "0: the replacement: after \"$\" comes a group, or \"$$\" for a \"$\" itself"},
      {"a", "$99999999999999999999", "0: the replacement: the expression has no group 99999999999999999999"}};
  for (const auto& test : cases) {
    EXPECT_EQ(substituted("<p>a", "p", "", test.expression, test.replacement), test.message);
  }
  EXPECT_EQ(substituted("<p>" + std::string(50, 'a') + "b", "p", "", "^(a+)+$", ""),
            "3: the regular expression takes too many steps on this page");
  const qo::Page page("<p>");
  qo::Edits edits(page);
  EXPECT_THROW(edits.add(page.select(qo::Selector("p")), {{Kind::substitute_text, "", ""}}), qo::Error);
}

}  // namespace
