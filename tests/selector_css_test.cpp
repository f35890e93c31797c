// CSS selectors on pages.

#include <qo_page/selector.h>

#include <fstream>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

#include "doc_rows.h"

namespace {

// The ids of the nodes, or their names where they have none.
std::string shown(const std::vector<qo::Node>& nodes) {
  std::string out;
  for (const qo::Node node : nodes) {
    const bool is_comment = node.kind() == qo::NodeKind::comment;
    const std::string name = is_comment ? "*comment*" : node.attribute("id").value_or(std::string(node.name()));
    out += (out.empty() ? "" : " ") + name;
  }
  return out.empty() ? "*nothing*" : out;
}

std::string found(const qo::Page& page, const std::string& selector) {
  try {
    return shown(page.select(selector));
  } catch (const qo::SelectorError& error) {
    return "*" + std::string(error.what()) + "*";
  }
}

std::string found(const std::string& html, const std::string& selector) { return found(qo::Page(html), selector); }

std::string repeated(const std::string& piece, int count) {
  std::string out;
  for (int i = 0; i < count; ++i) out += piece;
  return out;
}

std::string read_documentation() {
  std::ifstream file(QO_HTML_DOCS_DIR "/css.md");
  return {std::istreambuf_iterator<char>(file), {}};
}

void replace_all(std::string& text, const std::string& from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size()) text.replace(at, from.size(), to);
}

TEST(CssSelector, DoesWhatTheDocumentationSays) {
  const std::string text = read_documentation();
  const std::size_t begin = text.find("```html\n") + 8;
  const qo::Page page(text.substr(begin, text.find("```", begin) - begin));
  std::istringstream lines(text);
  int rows = 0;
  for (std::string line; std::getline(lines, line);) {
    replace_all(line, "\\|", "|");
    const auto row = cells(line);
    if (row.empty()) continue;
    ++rows;
    ASSERT_GE(row.size(), 2u) << line;
    std::string selectors = row[0];
    const bool is_error = row[1].find(' ') != row[1].npos && row[1][0] == '*';
    // "`a`, `b`" finds both together
    replace_all(selectors, "`, `", is_error ? "`" : ", ");
    EXPECT_EQ(found(page, selectors), row[1]) << row[0];
  }
  EXPECT_GT(rows, 60);
}

struct Row {
  const char* html;
  const char* selector;
  const char* found;
};

void expect_rows(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    const qo::Page page(row.html);
    EXPECT_EQ(found(page, row.selector), row.found) << row.selector << " in " << row.html;
    try {
      const qo::Selector selector(row.selector);
      for (const qo::Node node : page.select(selector)) EXPECT_TRUE(selector.matches(node)) << row.selector;
      EXPECT_FALSE(selector.matches(page.document()));
    } catch (const qo::SelectorError&) {
    }
  }
}

TEST(CssSelector, ComparesWhatABrowserReads) {
  expect_rows({
      {"<p class='a&#32;b&amp;c'>", ".a.b\\&c", "p"},
      {"<p class='{{x}} a'>", ".a", "p"},
      {"<p id='&eacute;'>", "#\xc3\xa9", "\xc3\xa9"},
      {"<p ID=a id=b>", "#b", "*nothing*"},
      {"<p a>", "[a='']", "p"},
      {"<p a>", "[a^=''], [a$=''], [a*=''], [a~='']", "*nothing*"},
      {"<p a='x y'>", "[a~='x y']", "*nothing*"},
      {"<p a='en-'>", "[a|=en]", "p"},
      {"<p a='enx'>", "[a|=en]", "*nothing*"},
      {"<input type=TEXT><svg type=TEXT>", "[type=text]", "input"},
      {"<input type=TEXT>", "[type=text s], [type='TEX't]", "*expected \"]\", not \"t\"*"},
      {"<p a='B'>", "[a='b'i]", "p"},
      {"<X-Y id=a></x-y><xy id=b>", "x-y, XY", "a b"},
      {"<p class=-a>", ".-a", "p"},
      {"<p class=1a>", ".\\31 a, .\\000031a", "p"},
      {"<p a='(\")'>", "[a=\"(\\\")\"]", "p"},
      {"<p a=xy>", "[a='x\\\ny']", "p"},
      {"<p><b>", " /**/ p /* > */ b/**/:/**/root ", "*expected the name of a pseudo-class after \":\", not \"/\"*"},
      {"<p><b>", " /**/ p/**/ /* > */ b/**/ ", "b"},
  });
}

TEST(CssSelector, CountsSiblings) {
  const char* const list =
      "<i id=1></i>x<b id=2 class=s></b><!----><i id=3 class=s></i><i id=4></i><b id=5 class=s></b>";
  const std::pair<const char*, const char*> cases[] = {
      {":nth-child(odd)", "1 3 5"},
      {":nth-child(EVEN)", "2 4"},
      {":nth-child(n)", "1 2 3 4 5"},
      {":nth-child(-n+3)", "1 2 3"},
      {":nth-child( 3N - 1 )", "2 5"},
      {":nth-child(+3)", "3"},
      {":nth-child(0n+1), :nth-child(0), :nth-child(-1)", "1"},
      {":nth-child(99999999999n+2)", "2"},
      {":nth-child(18446744073709551617)", "*nothing*"},
      {":nth-child(n of .s)", "2 3 5"},
      {":nth-child(2 of .s)", "3"},
      {":nth-last-child(2 of .s, :nth-child(4))", "4"},
      {":nth-last-child(1 of :has(+ b))", "4"},
      {":nth-child(1 of :nth-last-child(2 of :nth-child(n of .s)))", "3"},
      {":nth-child(2 of i + i, b)", "4"},
      {"i:nth-of-type(2)", "3"},
      {":nth-last-of-type(2)", "2 3"},
      {"i:first-of-type, b:last-of-type, :only-of-type", "1 5"},
      {":has(~ :nth-last-of-type(2))", "1 2"},
      {":has(+ :nth-child(3))", "2"},
      {":not(:last-child):not(:first-child)", "2 3 4"},
      {":nth-child(2n+)", "*expected a number, not \")\"*"},
      {":nth-child(2 n)", "*expected \")\", not \"n\"*"},
      {":nth-child(1of i)", "*expected \")\", not \"o\"*"},
  };
  const qo::Page page(list);
  for (const auto& [selector, expected] : cases) EXPECT_EQ(found(page, selector), expected) << selector;
  EXPECT_EQ(found("<p><b></b><b id=1></b></p><p><b id=2></b><i></i></p>", "b:last-of-type"), "1 2");
  EXPECT_EQ(found("<A-b></a-B><a-B id=3></a-b><a-c>", "a-b:last-of-type"), "3");
}

// What is counted in one parent does not count in the next one, nor in the one around it.
TEST(CssSelector, CountsTheChildrenOfEachParent) {
  const qo::Page page(
      "<div class=x id=1><i class=x id=2></i><i class=x id=3></i><p><i class=x id=4></i></p><b class=x id=5></b></div>"
      "<div id=6><i id=7></i><i class=x id=8></i><x-y id=9></x-y><x-y class=x id=a></x-y></div><div class=x "
      "id=b></div>");
  const std::pair<const char*, const char*> rows[] = {
      {"[id]:nth-child(1 of .x)", "1 2 4 8"},
      {"[id]:nth-child(2 of .x)", "3 a b"},
      {"[id]:nth-last-child(1 of .x)", "4 5 a b"},
      {":nth-child(2 of .x):nth-last-child(1 of .x)", "a b"},
      {":nth-child(1 of .x) :nth-child(1 of .x)", "2 4"},
      {":nth-child(2 of :nth-child(n+1 of .x))", "3 a b"},
      {"[id]:nth-of-type(2)", "3 6 8 a"},
      {"[id]:nth-last-of-type(1)", "3 4 5 8 a b"},
      {"[id]:nth-last-of-type(2)", "2 6 7 9"},
      {"[id]:first-of-type", "1 2 4 5 7 9"},
      {"[id]:nth-child(2)", "3 6 8"},
      {":has(> :nth-child(2 of .x))", "1 6"},
  };
  for (const auto& [selector, expected] : rows) EXPECT_EQ(found(page, selector), expected) << selector;
}

TEST(CssSelector, FollowsCombinators) {
  const qo::Page page(
      "<div id=1 class=a><p id=2><b id=3 class=x></b></p></div><div id=4><p id=5><b id=6></b><i id=7></i></p></div>");
  const std::pair<const char*, const char*> cases[] = {
      {".a b, .a + div b, .a ~ div i", "3 6 7"},
      {"div>p>b", "3 6"},
      {"div div, b p, i + b, p ~ p", "*nothing*"},
      {":not(.a b, p)", "1 4 6 7"},
      {"div:not(:has(.x)) > p > :is(b + i)", "7"},
      {":has(p > b + i)", "4"},
      {"p:has(b, i):not(:has(i))", "2"},
      {":has(:is(.a b))", "1 2"},
      {":has(+ div i)", "1"},
      {":is(:is(div) > p, :has(~ i))", "2 5 6"},
      {"div:has(:scope)", "*nothing*"},
      {"* :root", "*nothing*"},
  };
  for (const auto& [selector, expected] : cases) EXPECT_EQ(found(page, selector), expected) << selector;
  const qo::Node second = page.first("div + div");
  for (const auto& [selector, expected] :
       std::vector<std::pair<const char*, const char*>>{{"div b", "6"},
                                                        {":scope > p", "5"},
                                                        {".a ~ div > p", "5"},
                                                        {"div", "*nothing*"},
                                                        {"b:not(:has(i)):nth-last-child(2)", "6"}}) {
    EXPECT_EQ(shown(qo::Selector(selector).select(second)), expected) << selector;
  }
}

TEST(CssSelector, KnowsFormsAndLanguages) {
  expect_rows({
      {"<fieldset disabled id=1><legend><fieldset id=2 disabled><p><input id=3></fieldset><input "
       "id=4></legend><legend><input "
       "id=5></legend></fieldset>",
       ":disabled", "1 2 3 5"},
      {"<select disabled id=1><option id=2><optgroup id=3><option id=4></select>", ":disabled", "1 2 3 4"},
      {"<select><optgroup disabled id=1><option id=2></optgroup><option id=3></select>", "option:enabled", "3"},
      {"<p disabled><a disabled><svg><input-x disabled></svg>", ":disabled, :enabled", "*nothing*"},
      {"<button id=1></button><input type=hidden required id=2><textarea required>", ":optional", "1 2"},
      {"<form id=f><button type=button></button></form><p><input type=submit form=f id=1><button form=f>", ":default",
       "1"},
      {"<form><form><button id=1></button><button>", ":default", "1"},
      {"<form><svg><button></button></svg><button id=1></button>", ":default", "1"},
      {"<textarea placeholder=x id=1>\n</textarea><input placeholder id=2><input placeholder=x value=y>",
       ":placeholder-shown", "1 2"},
      {"<p contenteditable id=1><i id=2></i><b contenteditable=False></b><input readonly><svg>", ":read-write", "1 2"},
      {"<svg id=1>", ":read-only, :read-write", "*nothing*"},
      {"<svg><a id=1 xlink:href=x></svg><a xlink:href=x></a><link href=x>", ":link", "1"},
      {"<meta http-equiv=Content-Language content=fr><p id=1><p lang='' id=2>", "p:lang(fr)", "1"},
      {"<p lang='' id=1><i id=2></i><p id=3 lang=en>", ":lang('')", "1 2"},
      {"<p xml:lang=de><svg xml:lang=de id=1>", ":lang(de)", "1"},
      {"<p lang=de-x-ch id=1><p lang=de-DE-ch id=2>", "[lang]:lang(de-CH)", "2"},
      {"<p dir=auto id=1>1<bdi>a</bdi><script>a</script><i>\xd7\x90</i><p dir=auto id=2>a\xd7\x90", "p:dir(rtl)", "1"},
      {"<p dir=rtl id=1><input type=tel><i dir=x id=2>", ":dir(rtl)", "1 2"},
      {"<input dir=auto value='&#x5d0;' id=1>", ":dir(rtl)", "1"},
  });
}

TEST(CssSelector, LooksForTexts) {
  expect_rows({
      {"<p id=1>a<!--x--><b id=2>b&amp;</b><script>y</script>c", ":contains('ab&c')", "1"},
      {"<p id=1>a<b id=2>aab</b>", ":contains(aaab), b:contains(ab), p:contains-own(ab)", "1 2"},
      {"<p id=1>x</p><p id=2>y</p>", "p:contains(xy)", "*nothing*"},
      {"<p id=1>(a)\\", ":contains((a)\\\\)", "1"},
      {"<pre id=1>\na</pre>", "pre:matches(\\Aa\\z)", "1"},
      {"<title id=1>&lt;b></title><textarea id=2>&lt;b></textarea><xmp id=3>&lt;b></xmp>", ":contains('<b>')", "1 2"},
      {"<!--a--><p><!--b--><i>", ":comment:not(:contains(b), i), i:not(:comment)", "*comment* i"},
      {"<!--a--><p>", ":not(i), :is(:not(.a))", "p"},
      {"<p id=1><!--a--><b id=2></b><!--c--></p>", ":is(:comment, b):not(:contains(c))", "*comment* 2"},
      {"<i></i><!--a--><p id=1>", "i + p, :comment:contains(b)", "1"},
      {"<i id=1></i><!--a--><p>", "i:has(+ p), :comment:contains(b)", "1"},
      {"<i></i><!--a--><p>", "i + :comment, i ~ :comment:matches(^a$), i:has(+ :comment)", "i *comment*"},
      {"<p id=1>\xff z", "p:matches('\\bz')", "1"},
  });
  const std::string run = std::string(60, 'a') + "cb";
  EXPECT_EQ(found("<p>" + run, "p:matches((a+)+b)"), "*the regular expression takes too many steps on this page*");
  EXPECT_EQ(found("<p>" + std::string(1000000, 'a') + " y", "p:matches(a{60000}y)"),
            "*the regular expression takes too many steps on this page*");
}

TEST(CssSelector, SaysWhatIsWrongAndWhere) {
  struct {
    std::string selector;
    std::size_t offset;
    const char* message;
  } const cases[] = {
      {"", 0, "expected a selector, not the end"},
      {"a,", 2, "expected a selector, not the end"},
      {"a > > b", 4, "expected a selector, not \">\""},
      {"> a", 0, "expected a selector, not \">\""},
      {"a)", 1, "expected the end of the selector, not \")\""},
      {"a**", 1, "expected a combinator, not \"*\""},
      {"a||b", 1, "there are no columns here"},
      {"[x|y]", 2,
       "there are no namespaces here: names are as the source has them, and \"\\:\" takes a colon into a name"},
      {"[a!=b]", 2, "CSS has no \"!=\": write :not([name=value])"},
      {"[a=\"b\nc\"]", 3, "a string ends in the line in which it begins"},
      {"p:is(a", 6, "expected \")\", not the end"},
      {"p:not", 1, ":not needs an argument"},
      {"p:root()", 1, ":root takes no argument"},
      {".1a", 1, "expected the name of a class: a name begins with a digit only as \"\\31 \""},
      {"a/*", 1, "this comment has no end"},
      {"a:BEFORE", 1, ":BEFORE is a pseudo-element, which is no node of a page"},
      {"a:-qo-html", 1, "there is no pseudo-class :-qo-html"},
      {"a:containsown(x)", 1, "there is no pseudo-class :containsown; did you mean :contains-own?"},
      {"a:zzzzzz", 1, "there is no pseudo-class :zzzzzz"},
      {"p:comment", 0, "a comment has no name, no attributes and no position: :comment goes with texts alone"},
      {":nth-child(1 of :comment)", 16, "positions count elements alone"},
      {":contains('')", 10, "expected a text"},
      {"p:matches('x[')", 13, "in the regular expression: missing terminating ] for character class"},
      {"a\\", 1, "expected a combinator, not \"\\\""},
      {std::string("a\0", 2), 1, "expected a combinator, not \"\0\""},
      {repeated(":not(", 40) + "a" + repeated(")", 40), 160, "this nests deeper than 32 levels"},
      {"b, a" + repeated(" a", 65), 3, "this selector has more than 64 parts that depend on other nodes"},
  };
  for (const auto& row : cases) {
    try {
      const qo::Selector selector(row.selector);
      ADD_FAILURE() << row.selector;
    } catch (const qo::SelectorError& error) {
      EXPECT_EQ(std::string(error.what()).substr(0, std::string(row.message).size()), row.message) << row.selector;
      EXPECT_EQ(error.offset(), row.offset) << row.selector;
      EXPECT_EQ(error.place(), qo::Error::Place::selector);
    }
  }
  try {
    qo::Selector("b,\n\t\xc3\xa9:hover");
  } catch (const qo::SelectorError& error) {
    EXPECT_EQ(error.shown(), "\t\xc3\xa9:hover\n\t ^");
  }
}

TEST(CssSelector, ServesSeveralThreads) {
  const qo::Page page("<ul>" + repeated("<li>a</li><li class=x>b</li>", 100) + "</ul>");
  const qo::Selector selector("ul:has(.x) > li:nth-child(2n of :contains(b)):not(:matches(c)):dir(ltr)");
  std::vector<std::size_t> sizes(4);
  std::vector<std::thread> threads;
  for (std::size_t& size : sizes) threads.emplace_back([&] { size = page.select(selector).size(); });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(sizes, std::vector<std::size_t>(4, 50));
}

}  // namespace
