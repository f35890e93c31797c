// Searches, selectors, queries.

#include <functional>

#include <gtest/gtest.h>

#include <qo_html/qo_html_selector.h>

#include "test_host.h"

using namespace qo_html_inner;

namespace {

using Nodes = std::vector<_qo_html*>;

// The page that most tests share. Elements are told by their title, text nodes by their text.
const char page_html[] =
    "<div title='d1' class='box x' id='main'>"
    "<ul title='u1' name='list'><li title='l1' class='x'>one</li>"
    "<li title='l2'><ul title='u2'><li title='l3' class='x y' id>two</li></ul></li></ul>"
    "<a title='a1' href='p'>p</a><a title='a2' href='a.html'>q</a><a title='a3' href></a>"
    "<LI title='l4' id=''></LI><!--c--></div>"
    "<input title='i1' type='text' name='n'/><input title='i2' type name=''/><input title='i3' "
    "type='Text'/>"
    "<svg:rect title='s1'></svg:rect><p title='p1'><b title='b1' id='main'>b</b></p>";

std::string names(const Nodes& nodes) {
  std::string out;
  for (_qo_html* node : nodes) {
    const std::string name = node->isText ? "'" + node->text + "'" : node->get_attribute("title");
    out += (out.empty() ? "" : " ") + (name.empty() ? node->tagName() : name);
  }
  return out;
}

TEST(Search, TestsEveryNodeInDocumentOrder) {
  const Owned page = parse(page_html);
  using Search = std::function<void(_qo_html*, Nodes&)>;
  struct {
    Search search;
    const char* expected;
  } const cases[] = {
      {[](_qo_html* n, Nodes& out) { n->getElementsByTagName("li", out, nullptr); }, "l1 l2 l3"},
      {[](_qo_html* n, Nodes& out) { n->getElementsByTagName("LI", out, nullptr); }, "l4"},
      {[](_qo_html* n, Nodes& out) { n->getElementsByTagName("textNode", out, nullptr); },
       "'one' 'two' 'p' 'q' 'c' 'b'"},
      {[](_qo_html* n, Nodes& out) { n->getElementsByTagName("*", out, nullptr); },
       "documentRoot d1 u1 l1 l2 u2 l3 a1 a2 a3 l4 !-- i1 i2 i3 s1 p1 b1"},
      {[](_qo_html* n, Nodes& out) { n->children[0]->getElementsByTagName("div", out, nullptr); }, "d1"},
      {[](_qo_html* n, Nodes& out) { n->getElementsByTagName("li", out, n->children[0]->children[0]); }, "l1 l2"},
      {[](_qo_html* n, Nodes& out) { n->getElementsByTagName("*", out, n); }, "d1 i1 i2 i3 s1 p1"},
      {[](_qo_html* n, Nodes& out) { n->getElementsByTagName("", out, nullptr); }, ""},
      {[](_qo_html* n, Nodes& out) { n->getElementsById("main", out, nullptr); }, "d1 b1"},
      {[](_qo_html* n, Nodes& out) { n->getElementsById("", out, nullptr); }, "l3 l4"},
      {[](_qo_html* n, Nodes& out) { n->getElementsByClassName("x", out, nullptr); }, "d1 l1 l3"},
      {[](_qo_html* n, Nodes& out) { n->getElementsByClassName("x y", out, nullptr); }, ""},
      {[](_qo_html* n, Nodes& out) { n->getElementsByClassName("X", out, nullptr); }, ""},
      {[](_qo_html* n, Nodes& out) { n->getElementsByAttr("name", out, nullptr, "?", false); }, "u1 i1 i2"},
      {[](_qo_html* n, Nodes& out) { n->getElementsByAttr("type", out, nullptr, "text", true); }, "i1"},
      {[](_qo_html* n, Nodes& out) { n->getElementsByAttr("type", out, nullptr, "", true); }, "i2"},
      {[](_qo_html* n, Nodes& out) {
         n->getElementsById("main", out, n);
         n->getElementsById("main", out, nullptr);
       },
       "d1 d1 b1"},
  };
  for (const auto& test : cases) {
    Nodes out;
    test.search(page.get(), out);
    EXPECT_EQ(names(out), test.expected);
  }
}

TEST(Selector, EveryStringGivesAChain) {
  struct {
    const char* selector;
    const char* chain;  // kind:token, kinds as in the table of sigils; "_" and ">" for the combinators
  } const cases[] = {
      {"", ""},
      {"div", "T:div"},
      {"div.note#main", "T:div C:note I:main"},
      {"ul \t\n\v\f\r li", "T:ul _ T:li"},
      {" li ", "_ T:li _"},
      {"ul>li", "T:ul _ > T:li"},
      {"ul > li", "T:ul _ > _ T:li"},
      {">li", "> T:li"},
      {" >li", "_ > T:li"},
      {">>", "> _ >"},
      {"a:hover", "T:a P:hover"},
      {"svg\\:rect", "T:svg:rect"},
      {"a\\.b\\c", "T:a C:bc"},
      {"\\:x.\\:y", "T::x C::y"},
      {".:x", "C: P:x"},
      {"::before", "P: P:before"},
      {"\\", "T:"},
      {"*.x", "A:* C:x"},
      {"a*b", "T:a*b"},
      {"#", "I:"},
      {"[name]", "R:name"},
      {"[name", "R:name"},
      {"[type=text]b", "R:type=text T:b"},
      {"[title=a b]", "R:title=a _ T:b"},
      {"[href=a.html]", "R:href=a C:html"},
      {"]a", "T: T:a"},
      {"h1,h2+h3~h4", "T:h1,h2+h3~h4"},
      {"a:not(.x)", "T:a P:not( C:x)"},
      {"a\xC2\xA0m", "T:a\xC2\xA0m"},
  };
  const std::string letters = "?TACIPR>_";
  for (const auto& test : cases) {
    const SelectorChain chain = parse_selector(test.selector);
    std::string out;
    const htmlSelector* previous = nullptr;
    for (const auto& step : chain) {
      EXPECT_EQ(step->prevSelector, previous);
      EXPECT_TRUE(previous == nullptr || previous->nextSelector == step.get());
      previous = step.get();
      out += (out.empty() ? "" : " ") + letters.substr(static_cast<std::size_t>(step->type), 1);
      if (step->type < SEL_CHILD) out += ":" + step->token;
    }
    EXPECT_TRUE(previous == nullptr || previous->nextSelector == nullptr);
    EXPECT_EQ(out, test.chain) << test.selector;
  }
  EXPECT_EQ(parse_selector(std::string("a\0b", 3)).size(), 1u);
}

TEST(Selector, SplitsAttributeTests) {
  struct {
    const char *text, *name, *value;
    bool split;
  } const cases[] = {
      {"name", "name", "", false},
      {"type=text", "type", "text", true},
      {"a=b=c", "a", "b=c", true},
      {"type=", "type", "", true},
      {"=", "", "", true},
      {"href^=x", "href^", "x", true},
      {"t='a\"=b'", "t", "a=b", true},
      {"'a=b'=c", "a=b", "c", true},
      {"\"a=b", "a=b", "", false},
  };
  for (const auto& test : cases) {
    std::string name, value;
    EXPECT_EQ(split_attribute_selector(test.text, name, value), test.split) << test.text;
    EXPECT_EQ(name + "|" + value, std::string(test.name) + "|" + test.value) << test.text;
  }
}

TEST(Query, SelectorsFillFilterAndDescend) {
  const Owned page = parse(page_html);
  struct {
    std::vector<const char*> selectors;  // one find each, on one query
    const char* expected;
  } const cases[] = {
      {{"li"}, "l1 l2 l3"},
      {{"ul li"}, "l1 l2 l3 l3"},
      {{"ul > li"}, "l1 l2 l3"},
      {{"ul>li"}, "l1 l2 l3"},
      {{">div"}, "d1"},
      {{">li"}, ""},
      {{"div > ul li"}, "l1 l2 l3"},  // ">" counts for one step alone
      {{"div > *"}, "u1 a1 a2 a3 l4 !--"},
      {{"div .x"}, "d1 l1 l3"},
      {{"li.x#"}, "l1 l3"},
      {{"li#"}, "l1 l2 l3"},
      {{"li.none b"}, "b1"},
      {{"li.none.y"}, "l3"},
      {{"a:hover"}, "a1 a2 a3"},
      {{"ul :x li"}, "l1 l2 l3 l3"},
      {{"a[href]"}, "a1 a2 a3"},
      {{"a[href='p']"}, "a1"},
      {{"a[href=]"}, "a3"},
      {{"a[href=a\\:b]"}, ""},
      {{"[type=\"Text\"]"}, "i3"},
      {{"svg\\:rect"}, "s1"},
      {{"#main.box"}, "d1"},
      {{"p *"}, "p1 b1"},
      {{"textNode*"}, ""},
      {{"div textNode", "*"}, "'one' 'two' 'p' 'q' 'c'"},
      {{"li", ".x"}, "l1 l3"},
      {{"ul", "li"}, ""},
      {{"ul", " li"}, "l1 l2 l3 l3"},
      {{"ul", ">li"}, "l1 l2 l3"},
      {{"ul", "", " ", " > "}, "u1 u2"},
      {{"*", "*", "p"}, "p1"},
  };
  for (const auto& test : cases) {
    qo_html_query query(page.get());
    for (const char* selector : test.selectors) query.find(selector);
    EXPECT_EQ(names(query.nodes), test.expected) << test.selectors[0];
    EXPECT_EQ(query.context, page.get());
  }
}

TEST(Query, ReadsAndNarrowsItsList) {
  const Owned page = parse(page_html);
  qo_html_query query(page.get());
  EXPECT_EQ(query.length(), 0u);
  EXPECT_EQ(query.text(), "");
  query.each(nullptr);  // nothing to call it with

  EXPECT_EQ(query.find("li").text(), "onetwotwo");
  EXPECT_EQ(query.length(), 3u);
  EXPECT_EQ(query.get(1)->get_attribute("title"), "l2");
  EXPECT_EQ(query.get(3), nullptr);
  std::string seen;
  const auto visit = [&](unsigned long i, _qo_html* node) {
    seen += std::to_string(i) + node->get_attribute("title") + " ";
    return i < 1;
  };
  EXPECT_EQ(query.each(visit).length(), 3u);
  EXPECT_EQ(seen, "0l1 1l2 ");
  EXPECT_THROW(query.each(nullptr), std::bad_function_call);

  qo_html_query copy = query;
  EXPECT_EQ(names(copy.use_one(7).nodes), "documentRoot");
  EXPECT_EQ(names(query.use_one(1).nodes), "l2");
  EXPECT_EQ(names(query.find("ul").nodes), "");
  EXPECT_EQ(names(query.find("li").nodes), "l2 l3");
}

TEST(Search, PassesOverNullChildren) {
  const Owned page = parse("<p>a</p><p>b</p>");
  page->children.insert(page->children.begin() + 1, nullptr);
  page->children.push_back(nullptr);
  EXPECT_EQ(page->outerHTML() + page->innerHTML(), "<p>a</p><p>b</p><p>a</p><p>b</p>");
  EXPECT_EQ(page->textContent(), "ab");
  qo_html_query query(page.get());
  EXPECT_EQ(query.find("> p").length(), 2u);
  EXPECT_EQ(query.text(), "ab");
  EXPECT_TRUE(page->insert_before(qo_html_element_new("i"), page->children[2]->children[0]));
}

TEST(Search, GoesDownFurtherThanItsInlineLevels) {
  std::string open, close;
  for (int i = 0; i < 3000; ++i) open += "<b>", close += "</b>";
  const Owned page = parse(open + "x" + close);
  EXPECT_EQ(page->outerHTML(), open + "x" + close);
  EXPECT_EQ(qo_html_query(page.get()).find("b").length(), 3000u);
}

TEST(Query, OfANullNodeStaysEmpty) {
  qo_html_query query(nullptr);
  EXPECT_EQ(query.find("*").find(" li").find("> a").length(), 0u);
  EXPECT_EQ(query.use_one(0).length(), 0u);
}

}  // namespace
