// The parser: names, attributes, raw content, the main loop. docs/markup.md holds the plain cases.

#include <qo_html/qo_html_parser.h>

#include <algorithm>
#include <ctime>
#include <fstream>
#include <limits>

#include <gtest/gtest.h>

#include "doc_rows.h"
#include "test_host.h"

namespace {

TEST(Parser, DoesWhatTheDocumentationSays) {
  std::ifstream file(QO_HTML_DOCS_DIR "/markup.md");
  int rows = 0;
  for (std::string line; std::getline(file, line);) {
    const auto row = cells(line);
    if (row.empty()) continue;
    ++rows;
    ASSERT_GE(row.size(), 2u) << line;
    const Lines lines;
    const Owned document = parse(unescaped(row[0]));
    EXPECT_EQ(document ? dump(document.get()) : "*refused*", row[1]) << row[0];
    EXPECT_EQ(document ? broken_links(document.get()) : "", "") << row[0];
  }
  EXPECT_GT(rows, 50);
}

TEST(TagName, IsCutOutAsWritten) {
  struct {
    const char* html;
    std::size_t position;
    const char* name;
    char has_attributes;  // '0', '1', or '-': left alone
    bool slash;
    const char* line;
  } const cases[] = {
      {"div class", 3, "div", '1', false, ""},
      {"DIV>", 4, "DIV", '0', false, ""},
      {"br/>", 4, "br", '0', true, ""},
      {"br/ >", 3, "br/", '1', true, ""},
      {"/p>", 3, "p", '0', true, ""},
      {" / /p\r>", 5, "p", '1', true, ""},
      {" p>", 3, "p", '0', false, ""},
      {"a/b>", 4, "a/", '0', true, ""},
      {"!-- x", 3, "!--", '0', false, ""},
      {"![CDATA[x", 8, "![CDATA[", '0', false, ""},
      {"a!-->", 5, "a!--", '0', false, ""},
      {"a-b-c-d>", 6, "a-b-c-", '0', false, ""},
      {">", 1, "", '0', false, "unable to get element tag name: >\n"},
      {"/>", 2, "", '0', true, "unable to get element tag name: >\n"},
      {"\tp>", 0, "", '1', false, "unable to get element tag name: \tp>\n"},
      {"div", 3, "", '-', false, "unable to get element tag name: div\n"},
      {"", 0, "", '-', false, "unable to get element tag name: \n"},
      {" 12345678901234567890123", 24, "", '-', false, "unable to get element tag name: 12345678901234567890\n"},
  };
  for (const auto& test : cases) {
    for (const bool before : {false, true}) {
      std::string html = "<" + std::string(test.html);
      std::size_t position = 1, start = 99, length = 99;
      bool has_attributes = before, slash = !test.slash;
      const Lines lines;
      EXPECT_EQ(getElementTagName(html, position, start, length, has_attributes, slash), test.name) << html;
      EXPECT_EQ(position, test.position + 1) << html;
      EXPECT_EQ(has_attributes, test.has_attributes == '-' ? before : test.has_attributes == '1') << html;
      EXPECT_EQ(slash, test.slash) << html;
      EXPECT_EQ(html.substr(start, length), test.name) << html;
      EXPECT_EQ(lines.out(), test.line) << html;
    }
  }
}

TEST(TagName, KindsAndPredicates) {
  int kind = 0;
  EXPECT_TRUE(is_void_tag("Br", &kind) && kind == 1);
  EXPECT_TRUE(is_void_tag("!DocType", &kind) && kind == 2);
  EXPECT_TRUE(is_void_tag("?XML", &kind) && kind == 3);
  for (const std::string name : {"br", "input", "img", "hr", "area", "base", "col", "embed", "keygen", "link", "meta",
                                 "source", "track", "wbr", "!doctype", "?xml"}) {
    EXPECT_TRUE(is_void_tag(name, &kind)) << name;
    EXPECT_EQ(kind, name == "!doctype" ? 2 : name == "?xml" ? 3 : 1) << name;
    EXPECT_FALSE(is_void_tag(name + "s", &kind)) << name;
    EXPECT_FALSE(is_void_tag(name.substr(0, name.size() - 1), &kind)) << name;
  }
  for (const char* name : {"param", "br/", "", "b", "brr", "?xml-stylesheet"}) {
    kind = 0;
    EXPECT_FALSE(is_void_tag(name, &kind)) << name;
    EXPECT_EQ(kind, 1) << name;
  }
  EXPECT_FALSE(is_void_tag(std::string("br\0", 3), &kind));
  EXPECT_TRUE(is_script_tag("script") && is_script_tag("SCRIPT"));
  EXPECT_TRUE(is_style_tag("style") && is_style_tag("STYLE"));
  EXPECT_FALSE(is_script_tag("Script") || is_script_tag("script ") || is_style_tag("sTyle"));
  EXPECT_TRUE(is_comment_tag("!--") && is_cdata_tag("![CDATA["));
  EXPECT_FALSE(is_comment_tag("!-") || is_cdata_tag("![cdata["));
}

TEST(Attributes, AreLexedByteByByte) {
  struct {
    const char* text;
    const char* node;  // "?" after it: not closed by a "/"
    std::size_t left;  // bytes not read
  } const cases[] = {
      {" id=\"a\" class='b c' hidden>rest", "n[id='a' class='b c' hidden]?", 4},
      {" disabled >", "n[disabled]?", 0},
      {" class=\"x\" />", "n[class='x']", 0},
      {" class=\"x\"/>", "n[class='x']", 0},
      {" a b/c>", "n[a bc]", 0},
      {" a=b>", "n[a='']?", 0},
      {" a=\"1\"'2'\"3\"b>", "n[a='123' b]?", 0},
      {" a=\"1\"/b>", "n[a='1' b]", 0},
      {" a=\"\"/b>", "n[a='']", 0},
      {" a=x\"1\">", "n[a='1']?", 0},
      {" a=\"x\"\tb>", "n[a='x' b]?", 0},
      {" a=\"\"\nb>", "n[a='' b]?", 0},
      {" a= b>", "n[a='' b]?", 0},
      {" =\"x\">", "n[='x']?", 0},
      {" a=\"x\"=\"y\">", "n[a='x' ='y']?", 0},
      {" \"q\">", "n[\"q\"]?", 0},
      {" disabled\nvalue=\"x\">", "n[disabledvalue='x']?", 0},
      {" a=\"x\"\r\nb\r\n c\r>", "n[a='x' b c]?", 0},
      {" a\r\nb>", "n[ab]?", 0},
      {" a=\r\n'x'>", "n[a='x']?", 0},
      {" a=\"x\" b", "n[a='x']?", 0},
      {" a=\"x / >", "n?", 0},
      {" a='1' / b='2", "n[a='1']?", 0},
      {"", "n?", 0},
  };
  for (const auto& test : cases) {
    Owned node(qo_html_element_new("n"));
    node->closed = false;
    std::string html = std::string("<n") + test.text;
    std::size_t position = 2;
    _qo_html* element = node.get();
    parse_attribute(element, html, position);
    EXPECT_EQ(dump(element), test.node) << html;
    EXPECT_EQ(html.size() - position, test.left) << html;
  }
}

TEST(Attributes, AreUniqueHoweverMany) {
  std::string html = "<p";
  for (int i = 0; i < 300; ++i) html += " n" + std::to_string(i % 100) + "='" + std::to_string(i) + "'";
  const Owned document = parse(html + " n7 class='a' class='b'>");
  _qo_html* const p = document->children[0];
  ASSERT_EQ(p->attributes.size(), 101u);
  for (std::size_t i = 0; i < 100; ++i) {
    EXPECT_EQ(p->attributes[i].name, "n" + std::to_string(i));
    EXPECT_EQ(p->attributes[i].value, i == 7 ? "" : std::to_string(200 + i));
    EXPECT_EQ(p->attributes[i].hasValue, i == 7 ? 0 : 1);
  }
  EXPECT_EQ(p->get_attribute("class"), "b");
  EXPECT_EQ(p->classes, (std::vector<std::string>{"a", "b"}));
}

// Ticks of this process for 64,000 attributes, so many of them in each tag, at best.
std::clock_t reading_time(int in_each_tag) {
  std::string html;
  for (int i = 0; i < 64000; ++i) html += (i % in_each_tag == 0 ? "><p n" : " n") + std::to_string(i);
  html += '>';
  std::clock_t best = std::numeric_limits<std::clock_t>::max();
  for (int round = 0; round < 3; ++round) {
    const std::clock_t start = std::clock();
    const Owned document = parse(html);
    best = std::min(best, std::clock() - start);
  }
  return best;
}

TEST(Attributes, TakeTimeThatGrowsWithTheirNumber) {
  EXPECT_LT(reading_time(64000), 50 * reading_time(10));  // some 3 times as long; with the square, some 300 times
}

TEST(Parser, RawReadersStopAfterTheEndMarker) {
  using Reader = bool (*)(_qo_html*&, std::string&, std::size_t&);
  struct {
    Reader read;
    const char* html;
    const char* text;      // null: no end marker
    std::size_t position;  // afterwards
  } const cases[] = {
      {parse_script_node, "x</script>y", "x", 10},
      {parse_script_node, "'\"</script>'\"'\"</SCRIPT>", "'\"</script>'\"'\"", 24},
      {parse_script_node, "'\\'</script>", "'\\'", 12},
      {parse_script_node, "<</Script></script", nullptr, 18},
      {parse_style_node, "</styles></style>", "</styles>", 17},
      {parse_style_node, "'</STYLE>'", "'", 9},
      {parse_style_node, "</style", nullptr, 7},
      {parse_cdata_node, "]]]>", "]", 4},
      {parse_cdata_node, "]]", nullptr, 2},
  };
  for (const auto& test : cases) {
    _qo_html node;
    _qo_html* element = &node;
    std::string html = test.html;
    std::size_t position = 0;
    EXPECT_EQ(test.read(element, html, position), test.text != nullptr) << html;
    EXPECT_EQ(position, test.position) << html;
    EXPECT_EQ(node.textContent(), test.text ? test.text : "") << html;
    EXPECT_EQ(node.closed, test.text != nullptr);
    EXPECT_EQ(node.isCdata, test.read == parse_cdata_node && test.text != nullptr);
    position = 99;
    EXPECT_FALSE(test.read(element, html, position));
    EXPECT_EQ(position, 99u);
  }
  std::string html = "<!-- a -- b -->c";
  std::size_t position = 4;
  const Owned comment(parse_comment_node(html, position));
  EXPECT_EQ(dump(comment.get()), "#comment{' a -- b '}");
  EXPECT_EQ(position, 15u);
  EXPECT_EQ(parse_comment_node(html, position), nullptr);
  EXPECT_EQ(position, html.size());
}

TEST(Parser, DropsCommentsOnRequest) { EXPECT_EQ(dump(parse("a<!-- b -->c<p><!----></p>", true).get()), "'a' 'c' p"); }

TEST(Parser, ReportsEveryCheckToTheHost) {
  test_host().record();
  const Owned document = parse("a<p b>c</p><br></x><![CDATA[d]]><!--e--><i j/>", true);
  const auto events = test_host().take();
  std::string log;
  for (const std::string& event : events) {
    const std::string at = "src/qo_html/qo_html";
    const bool check = event.compare(0, at.size(), at) == 0;
    log += check ? event.substr(at.size()) + "\n" : event + "\n";
  }
  const std::string name = "_parser: tagName.length(): tagName find fail\n";
  const std::string child = ": child != nullptr: child must not be null bre some\n";
  const std::string in_p = "_parser: root->parent !=nullptr: element must have a parent p\n";
  const std::string open =
      "_parser: root->closed == false: root element must not be closed before appending child "
      "documentRoot\n";
  EXPECT_EQ(log,
            "+\n"  // the document
            "+\n" +
                child + name + "+\n" + open + child +                // a<p b>
                in_p + "+\n" + child + name +                        // c</p>
                "_parser: root != nullptr: root must not be null\n"  //
                "_parser: root->closed == false: should not close same tag twice\n" +
                name + "+\n" + child +  // <br>
                name +
                "_parser: root != nullptr: root must not be null\n"  // </x>
                "+\n" +
                child +                                                                                         //
                name + "+\n" +                                                                                  // CDATA
                "_parser: !has_attributes: CDATA section must not have attributes\n" + "+\n" + child + child +  //
                name + "+\n+\n" + child + "-\n-\n" +  // the dropped comment
                name + "+\n" + open + child +         // <i j/>
                "_parser: root->closed==false: Next root must not be closed\n"
                "_parser: root->isRoot: MUST END WITH THE ROOT\n"
                "_parser: root->parent == nullptr: root must not have parent\n");
  EXPECT_EQ(dump(document.get()), "'a' p[b]{'c'} br/ x #cdata{'d'} i[j]");

  test_host().record();
  const Lines lines;
  parse("<");
  EXPECT_EQ(test_host().take()[1], "FAILED src/qo_html/qo_html_parser: tagName.length(): tagName find fail");
}

TEST(Parser, ReportsTheSameToAHostThatTakesTheArgumentsApart) {
  const char html[] = "<p>a<b>c</b><!--d--></p></x><br><script></script><e/><![CDATA[f]]><>";
  std::vector<std::string> events[2];
  for (const bool thieving : {false, true}) {
    const Lines lines;
    test_host().thieving = thieving;
    test_host().record();
    const Owned document = parse(html);
    document->children[0]->set_text("g");
    events[thieving] = test_host().take();
  }
  EXPECT_GT(events[0].size(), 50u);
  EXPECT_EQ(events[0], events[1]);
}

TEST(Parser, RefusesWithoutTouchingTheResult) {
  struct {
    const char* html;
    const char* out;
  } const cases[] = {
      {"<p><my-widget>", "invalid tag name 1: 'my-widget' at char index: 2 '-'\n"},
      {"<\xC3\xA9>", "invalid tag name 1: '\xC3\xA9' at char index: 0 '\xC3'\n"},
      {"<p><!-- a -- >", ""},
      {"<p><script></p>", ""},
  };
  for (const auto& test : cases) {
    _qo_html placeholder;
    _qo_html* out = &placeholder;
    const Lines lines;
    EXPECT_FALSE(parseHtml(out, test.html, "", false, true)) << test.html;
    EXPECT_EQ(out, &placeholder);
    EXPECT_EQ(lines.out(), test.out);
    EXPECT_EQ(lines.err(), "");
  }
}

TEST(SetHtml, ReplacesTheContent) {
  const Owned document = parse("<div a>old<b></b></div><br>");
  _qo_html* const div = document->children[0];
  EXPECT_TRUE(div->set_html("<i>x</i><!-- c -->y"));
  EXPECT_EQ(dump(document.get()), "div[a]{i{'x'} 'y'} br/");
  const Lines lines;
  EXPECT_FALSE(div->set_html("<!-- c"));
  EXPECT_FALSE(document->children[1]->set_html("x"));
  EXPECT_EQ(dump(document.get()), "div[a]{i{'x'} 'y'} br/");
  EXPECT_TRUE(div->set_html(""));
  EXPECT_TRUE(document->set_html("<u>"));
  EXPECT_EQ(dump(document.get()), "u");
  EXPECT_EQ(broken_links(document.get()), "");
}

TEST(Parser, GivesBackWhatItRead) {
  struct {
    const char* html;
    const char* written;  // null: as read
  } const cases[] = {
      {"<!DOCTYPE html><html>\n<p class=\"a b\" hidden>x<br/></p><!-- c --></html>", nullptr},
      {"<?xml version=\"1.0\"?>", "<?xml version=\"1.0\" ?>"},
      {"<script>a < b && c</script><style></style><![CDATA[x]]y]]>", nullptr},
      {"<p\r\nclass='a'\r\n\tb>x\r\n</p>\r\n", "<p class=\"a\" b>x\r\n</p>\r\n"},
      {"<br><img src='a\"b'><p>x", "<br/><img src=\"a\"b\"/><p>x</p>"},
      {"</x>", "<x></x>"},
      {"", nullptr},
  };
  for (const auto& test : cases) {
    const Owned document = parse(test.html);
    EXPECT_EQ(document->outerHTML(), test.written ? test.written : test.html);
    EXPECT_EQ(document->outerHTML(), document->innerHTML());
  }
}

TEST(Serialiser, ReadsTheFlagsInOrder) {
  const Owned document = parse("<a b c=''>t<u>v</u></a>");
  _qo_html* const a = document->children[0];
  EXPECT_EQ(a->formatAttribute(), " b c=\"\"");
  EXPECT_EQ(document->formatAttribute(), "");
  EXPECT_EQ(a->textContent(), "tv");
  EXPECT_EQ(a->children[0]->outerHTML() + a->children[0]->innerHTML(), "tt");
  struct {
    bool _qo_html::*flag;
    const char* outer;
  } const cases[] = {
      {&_qo_html::isComment, "<!--t<u>v</u>-->"}, {&_qo_html::isCdata, "<at<u>v</u>]]>"},
      {&_qo_html::isVoid, "<a b c=\"\"/>"},       {&_qo_html::isText, ""},
      {&_qo_html::isRoot, "t<u>v</u>"},
  };
  for (const auto& test : cases) {  // each outranks those before it
    a->*test.flag = true;
    EXPECT_EQ(a->outerHTML(), test.outer);
    EXPECT_EQ(a->innerHTML(), a->isText ? "" : "t<u>v</u>");
    EXPECT_EQ(document->outerHTML(), test.outer);
    EXPECT_EQ(document->textContent(), a->isText ? "" : "tv");
  }
}

TEST(Serialiser, WritesPiecesOfEveryLength) {
  std::string all;
  for (std::size_t size = 1; size < 100; ++size) {
    const std::string name(size, 'n');
    const std::string html = "<" + name + " " + name + "=\"" + std::string(size - 1, 'v') + "\" a" + name + ">" +
                             std::string(size, 't') + "<br " + name + "=\"\"/></" + name + ">";
    EXPECT_EQ(parse(html)->outerHTML(), html);
    all += html;
  }
  EXPECT_EQ(parse(all)->innerHTML(), all);

  // Marks alone, with nothing between them.
  std::string starts, ends;
  const Owned document = parse("");
  for (_qo_html* node = document.get(); starts.size() < 400; node = node->children[0]) {
    ASSERT_TRUE(node->add_child(new _qo_html));
    node->children[0]->isComment = true;
    starts += "<!--";
    ends += "-->";
    EXPECT_EQ(document->outerHTML(), starts + ends);
  }
}

}  // namespace
