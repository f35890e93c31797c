// Pages: tokens, trees, extents, texts. docs/pages.md holds the plain cases.

#include <qo_page/page.h>
#include <qo_page/template/code_steps.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <functional>
#include <unordered_set>

#include <gtest/gtest.h>
#include <qo_page/selector.h>
#include <qo_page/template/template_code.h>

#include "doc_rows.h"
#include "page_dump.h"

namespace {

// What is wrong with the links of the nodes; empty when nothing is.
std::string broken_links(const qo::Page& page) {
  std::size_t count = 1;
  for (std::size_t i = 0; i < page.node_count(); ++i) {
    const qo::Node node = page.node_at(i);
    qo::Node previous;
    for (const qo::Node child : node.children()) {
      ++count;
      if (child.parent() != node) return "parent of " + label(child);
      if (child.previous_sibling() != previous) return "previous_sibling of " + label(child);
      if (previous && previous.next_sibling() != child) return "next_sibling of " + label(previous);
      previous = child;
    }
    if (previous && previous.next_sibling()) return "next_sibling of " + label(previous);
  }
  return count == page.node_count() ? "" : "nodes that are no children";
}

TEST(Page, DoesWhatTheDocumentationSays) {
  std::ifstream file(QO_HTML_DOCS_DIR "/pages.md");
  int rows = 0;
  for (std::string line; std::getline(file, line) && line != "## What an edit gives";) {
    const auto row = cells(line);
    if (row.empty()) continue;
    ++rows;
    const qo::Page page(unescaped(row[0]));
    EXPECT_EQ(dump(page.document()), row[1]) << row[0];
    EXPECT_EQ(broken_links(page), "") << row[0];
  }
  EXPECT_GT(rows, 60);
}

qo::Node find(const qo::Page& page, std::string_view name) {
  const auto nodes = page.document().descendants();
  const auto found = std::find_if(nodes.begin(), nodes.end(), [&](qo::Node node) { return node.name() == name; });
  return found == nodes.end() ? qo::Node() : *found;
}

qo::Node first_child(const qo::Page& page) { return page.document().first_child(); }

// "!--": the first comment.
qo::Node node_of(const qo::Page& page, const std::string& tag) {
  return tag == "!--" ? page.first(":comment") : find(page, tag);
}

// The section says the dialect; tables of edits are for the tool's tests.
TEST(Page, ReadsDialectsAsTheDocumentationSays) {
  std::ifstream file(QO_HTML_DOCS_DIR "/dialects.md");
  std::string dialect;
  bool is_of_trees = false;
  int rows = 0;
  for (std::string line; std::getline(file, line);) {
    if (line.rfind("## ", 0) == 0) dialect = line.substr(3);
    if (line.rfind("| source", 0) == 0) is_of_trees = line.find("| tree |") != line.npos;
    const auto row = cells(line);
    if (row.empty() || !is_of_trees) continue;
    ++rows;
    const qo::Page page(unescaped(row[0]), {dialect});
    EXPECT_EQ(dump(page.document()), row[1]) << dialect << ": " << row[0];
    EXPECT_EQ(broken_links(page), "") << dialect << ": " << row[0];
  }
  EXPECT_GT(rows, 14);
}

TEST(Page, TellsWhereNodesAre) {
  struct {
    const char* source;
    const char* tag;
    qo::Extent extent;
  } const cases[] = {
      {"a<p b>c</p >d", "p", {1, 6, 7, 12}},
      {"<ul><li>a\n<li>b</ul>", "li", {4, 8, 10, 10}},
      {"<script><!--><script></script>a</script>", "script", {0, 8, 21, 30}},
      {"<ul><li><address>a<li>b</ul>", "li", {4, 8, 18, 18}},
      {"<svg><g / a>b</g></svg>", "g", {5, 12, 13, 17}},
      {"<!--->a-->", "!--", {0, 4, 4, 6}},
      {"<!-->a-->", "!--", {0, 4, 4, 5}},
      {"<p>a<br/>b", "br", {4, 9, 9, 9}},
      {"<p>a", "p", {0, 3, 4, 4}},
      {"<b><p>x</b>y</p>z", "b", {0, 3, 16, 16}},
      {"a<!-- b --!>c", "!--", {1, 5, 8, 12}},
      {"<?php x ?>", "?php", {0, 10, 10, 10}},
      {"<body><body a>b", "body", {0, 6, 15, 15}},
  };
  for (const auto& test : cases) {
    const qo::Page page(test.source);
    const qo::Extent found = node_of(page, test.tag).extent();
    EXPECT_EQ(found.begin, test.extent.begin) << test.source;
    EXPECT_EQ(found.content_begin, test.extent.content_begin) << test.source;
    EXPECT_EQ(found.content_end, test.extent.content_end) << test.source;
    EXPECT_EQ(found.end, test.extent.end) << test.source;
  }
  const qo::Page page("x<p a>y</p>");
  EXPECT_EQ(find(page, "p").html(), "<p a>y</p>");
  EXPECT_EQ(find(page, "p").inner_html(), "y");
  EXPECT_EQ(page.document().html(), page.source());
}

TEST(Page, GivesTextsAsUsersSeeThem) {
  struct {
    const char* source;  // the text is that of its first node
    const char* text;
    const char* written;
  } const cases[] = {
      {"<p>a &lt; <b>b</b><!-- c --><script>d</script><?php e ?></p>", "a < b", "a &lt; b"},
      {"<script>a &lt; b</script>", "a &lt; b", "a &lt; b"},
      {"<title>a &lt; b</title>", "a < b", "a &lt; b"},
      {"<xmp>&lt;</xmp>", "&lt;", "&lt;"},
      {"<svg><title>&lt;</title><![CDATA[&lt;]]></svg>", "<&lt;", "&lt;&lt;"},
      {"<!-- &lt; -->", " &lt; ", " &lt; "},
      {"<?php a ?>", "<?php a ?>", "<?php a ?>"},
      {"<pre>a<b></b>\nc</pre>", "a\nc", "a\nc"},
      {"<pre>\n\na</pre>", "\na", "\n\na"},
      {"<pre>&#10;&#10;a</pre>", "\na", "&#10;&#10;a"},
      {"<textarea>\r\na</textarea>", "a", "\r\na"},
      {"<p>&notin; &notit; {{ a }}</p>", "\xE2\x88\x89 \xC2\xACit; {{ a }}", "&notin; &notit; {{ a }}"},
  };
  for (const auto& test : cases) {
    const qo::Page page(test.source);
    const qo::Node node = first_child(page);
    EXPECT_EQ(node.text(), test.text) << test.source;
    EXPECT_EQ(node.text(qo::TextForm::written), test.written) << test.source;
  }
  const qo::Page page("<a HREF='?a&lt=1&amp;b' b>");
  const qo::Node a = first_child(page);
  EXPECT_EQ(a.attribute("href"), "?a&lt=1&b");
  EXPECT_EQ(a.attribute("href", qo::TextForm::written), "?a&lt=1&amp;b");
  EXPECT_EQ(a.attribute("b"), "");
  EXPECT_EQ(a.attribute("c"), std::nullopt);
}

// As a name in a selector.
std::string escaped(const std::string& name) {
  std::string out;
  for (const char c : name) out += std::string(std::isalnum(c) || c == '-' ? "" : "\\") + c;
  return out;
}

TEST(Page, ReadsClassesAroundCode) {
  struct {
    const char* value;
    std::vector<std::string> classes;
  } const cases[] = {
      {" a\n b ", {"a", "b"}},
      {"a{% if x %} b{% endif %} c", {"a", "b", "c"}},
      {"a{% if x %} b{% endif %}c d", {"d"}},  // what is joined to other characters is none
      {"a{% if x %} b{% endif %}", {"a", "b"}},
      {"a {% if x %}b{% elif y %}c{% else %}d{% endif %}", {"a", "b", "c", "d"}},
      {"a b-{% if x %}c{% else %}d{% endif %}", {"a"}},
      {"a{% if x %}{% else %}{% endif %} b", {"a", "b"}},
      {"a{% if x %} {% else %} {% endif %}b", {"a", "b"}},
      {"a{% if x %} {% elif y %} {% endif %}b", {}},
      {"a{% if x %}{% if y %}b{% endif %} {% endif %}", {}},
      {"{% for x in y %}a{% endfor %} {% for x in y %} b{% endfor %}", {"b"}},
      {"{% for x in y %}{% if x %} {% endif %}a {% endfor %}", {"a"}},
      {"a{# c #} b{% set x = 1 %} c{% include x %}", {"a", "b"}},
      {"{{#x}}a{{/x}} {{#if x}}b-{{else}}c{{/if}}d", {"a"}},
      {"<?php if (a) echo 'b' ?>c d<?php } ?>", {}},
      {"<% if x %>a<% else %>b<% end %> c<% if x %>d<% end %>", {"a", "b"}},
      {"col-{{ n }} {{ x y }}", {"col-{{ n }}", "{{ x y }}"}},
      {"<?php if (a) { ?>b<?php } ?>", {"b"}},
  };
  for (const auto& test : cases) {
    const qo::Page page(std::string("<p class='") + test.value + "'>");
    for (const char* name : {"a", "b", "c", "d", "b-c", "cd", "ab", "{{", "x"}) {
      const bool is_class = std::count(test.classes.begin(), test.classes.end(), name) != 0;
      EXPECT_EQ(!page.select(std::string(".") + escaped(name)).empty(), is_class) << test.value << " " << name;
    }
    for (const std::string& name : test.classes) EXPECT_TRUE(page.first("." + escaped(name))) << test.value;
  }
}

TEST(Code, EndsWithItsCloserAndOpensOrClosesABlock) {
  struct {
    const char* source;
    std::size_t end;  // 0: no code
    qo::CodeRole role;
  } const cases[] = {
      {"<?php if (a): ?> b", 16, qo::CodeRole::opening},
      {"<?php endif ?> b", 14, qo::CodeRole::closing},
      {"<?php } else { ?>", 17, qo::CodeRole::closing},
      {"<?php echo $a ?>", 16, qo::CodeRole::output},
      {"<?= $a ?>b", 9, qo::CodeRole::output},
      {"<% if a %>b", 10, qo::CodeRole::opening},
      {"<%- end %>b", 10, qo::CodeRole::closing},
      {"{% elif a %}b", 12, qo::CodeRole::closing},
      {"{%- else %}b", 11, qo::CodeRole::closing},
      {"{% for a in b %}", 16, qo::CodeRole::opening},
      {"{{ a }} b }}", 7, qo::CodeRole::output},
      {"{{{ a }}} b", 9, qo::CodeRole::output},
      {"{{{ a }} b", 8, qo::CodeRole::output},
      {"{{#if a}}b", 9, qo::CodeRole::opening},
      {"{{/if}}b", 7, qo::CodeRole::closing},
      {"{{ range .a }}b", 14, qo::CodeRole::opening},
      {"{{ end }}b", 9, qo::CodeRole::closing},
      {"{# a #}b", 7, qo::CodeRole::opening},
      {"{{ a {{ b }}", 0, qo::CodeRole::output},
      {"{% a {% b %}", 0, qo::CodeRole::output},
      {"{{ a <b> }}", 0, qo::CodeRole::output},
      {"{% 1 %}", 0, qo::CodeRole::output},
      {"{#1}", 0, qo::CodeRole::output},
      {"{ a }", 0, qo::CodeRole::output},
  };
  for (const auto& test : cases) {
    const std::string source = test.source;
    EXPECT_EQ(qo::CodeScanner(source, qo::html_dialect()).end_of(0, qo::CodeScanner::Place::text), test.end) << source;
    EXPECT_EQ(qo::CodeScanner(source, *qo::find_dialect("plain")).end_of(0, qo::CodeScanner::Place::text), 0u)
        << source;
    if (test.end == 0) continue;
    EXPECT_EQ(qo::role_of(source.substr(0, test.end)), test.role) << source;
  }
}

TEST(Page, KnowsWhoseTablesEndAParagraph) {
  const std::string transitional = "<!DOCTYPE html PUBLIC \"-//W3C//DTD HTML 4.01 Transitional//EN\"";
  const std::pair<std::string, bool> cases[] = {
      {"<!DOCTYPE html>", true},
      {"<!doctype HTML system 'about:legacy-compat'>", true},
      {"<!DOCTYPE html SYSTEM \"http://www.ibm.com/data/dtd/v11/ibmxhtml1-transitional.dtd\">", false},
      {transitional + ">", false},
      {transitional + " \"http://www.w3.org/TR/html4/loose.dtd\">", true},
      {"<!DOCTYPE html PUBLIC \"-//W3C//DTD HTML 4.0 Transitional//EN\" 'x'>", false},
      {"<!DOCTYPE html PUBLIC>", false},
      {"<!DOCTYPE page>", false},
  };
  for (const auto& [doctype, ends] : cases) {
    const qo::Page page(doctype + "<p><table>");
    const auto children = page.document().children();
    EXPECT_EQ(std::distance(children.begin(), children.end()), ends ? 3 : 2) << doctype;
  }
}

// The standard's lists of names: what an element of each does that no other does.
TEST(Page, KnowsTheListsOfTheStandard) {
  const auto has_own_parent = [](const std::string& source, const char* around) {
    const qo::Page page(source);
    const qo::Node found = page.first("[k]");
    return found && found.parent().name() == around;
  };
  const auto finds = [](const std::string& source, const char* selector) {
    const qo::Page page(source);
    return static_cast<bool>(page.first(selector));
  };
  struct {
    const char* what;
    std::function<bool(const std::string&)> test;
    const char* names;
  } const lists[] = {
      {"has no content",
       [](const std::string& name) {
         const qo::Page page("<" + name + "><!---->");
         return page.document().first_child().extent().end < page.source().size();
       },
       "area base basefont bgsound br col embed frame hr image img input keygen link meta param source track wbr"},
      {"has no tags in it", [&](const std::string& name) { return !finds("<" + name + "><q k>", "[k]"); },
       "iframe noembed noframes plaintext script style textarea title xmp"},
      {"has references in it",
       [](const std::string& name) {
         const qo::Page page("<" + name + ">&lt;<q>");
         return page.document().text() == "<<q>";
       },
       "textarea title"},
      {"ends svg", [&](const std::string& name) { return !has_own_parent("<svg><" + name + " k>", "svg"); },
       "b big blockquote body br center code dd div dl dt em embed h1 h2 h3 h4 h5 h6 head hr i img li listing menu "
       "meta "
       "nobr ol p pre ruby s small span strike strong sub sup table tt u ul var"},
      {"ends math", [&](const std::string& name) { return !has_own_parent("<math><" + name + " k>", "math"); },
       "b big blockquote body br center code dd div dl dt em embed h1 h2 h3 h4 h5 h6 head hr i img li listing menu "
       "meta "
       "nobr ol p pre ruby s small span strike strong sub sup table tt u ul var"},
      {"holds HTML in svg",
       [&](const std::string& name) { return finds("<svg><" + name + "><p>", ("svg > " + name + " > p").c_str()); },
       "desc foreignobject title"},
      {"holds HTML in math",
       [&](const std::string& name) { return finds("<math><" + name + "><p>", ("math > " + name + " > p").c_str()); },
       "mi mn mo ms mtext"},
      {"ends a paragraph",
       [&](const std::string& name) { return !has_own_parent("<!DOCTYPE html><p><" + name + " k>", "p"); },
       "address article aside blockquote center dd details dialog dir div dl dt fieldset figcaption figure footer form "
       "h1 h2 h3 h4 h5 h6 header hgroup hr li listing main menu nav ol p plaintext pre search section summary table ul "
       "xmp"},
      {"may be in a head", [&](const std::string& name) { return has_own_parent("<head><" + name + " k>", "head"); },
       "base basefont bgsound head link meta noframes noscript script style template title"},
      {"drops a line break",
       [](const std::string& name) {
         const qo::Page page("<" + name + ">\nx");
         return page.document().text() == "x";
       },
       "listing pre textarea"},
  };
  for (const auto& list : lists) {
    std::string found;
    for (const qo::TagRow& row : qo::tag_flags::rows) {
      if (row.name.empty() || !list.test(std::string(row.name))) continue;
      found += (found.empty() ? "" : " ") + std::string(row.name);
    }
    EXPECT_EQ(found, list.names) << list.what;
  }
  for (const auto& [attribute, ends] :
       {std::pair<const char*, bool>("color", true), {"FACE", true}, {"size", true}, {"class", false}}) {
    EXPECT_EQ(!has_own_parent("<svg><font k " + std::string(attribute) + ">", "svg"), ends) << attribute;
  }
  for (const auto& [encoding, holds] :
       {std::pair<const char*, bool>("text/HTML", true), {"application/xhtml+xml", true}, {"text/xml", false}}) {
    const std::string source = "<math><annotation-xml encoding=" + std::string(encoding) + "><p k>";
    EXPECT_EQ(has_own_parent(source, "annotation-xml"), holds) << encoding;
  }
}

TEST(Page, RefusesOnlyEncodingsBeyondAscii) {
  using namespace std::string_literals;
  struct {
    std::string source;
    const char* encoding;  // empty: the page is read
  } const cases[] = {
      {"\xFF\xFE<\0"s, "UTF-16"},
      {"\xFE\xFF\0<"s, "UTF-16"},
      {"<\0p\0>\0"s, "UTF-16"},
      {"\0<\0p\0>"s, "UTF-16"},
      {"<p>\x1B$B$\"<\x1B(B</p>", "ISO-2022-JP"},
      {"<p>\x1B(J~\x1B(B</p>", "ISO-2022-JP"},
      {"<p>\x1B$)C\x0E", "ISO-2022-KR"},
      {"<meta charset=iso-2022-jp><p>a \x1B[1m</p>", ""},
      {"<META Charset='HZ-GB-2312'>~{<:Ky~}", "HZ"},
      {"<meta charset=utf-8>~{<:Ky~}", ""},
      {"<meta content='text/html; charset = utf-7'>+ADw-", "UTF-7"},
      {"<meta charset=utf-8>+ADw-", ""},
      {"<p>\0\xFF"s, ""},
      {"", ""},
  };
  for (const auto& test : cases) {
    std::string message;
    try {
      const qo::Page page(test.source);
      EXPECT_EQ(page.source(), test.source);
    } catch (const qo::Error& error) {
      message = error.what();
    }
    const std::string encoding(test.encoding);
    EXPECT_EQ(message, encoding.empty()
                           ? ""
                           : "the text is " + encoding + "; iconv -f " + encoding + " -t UTF-8 makes it readable")
        << test.source;
  }
  const qo::Page page("<p>\0\xFF"s);
  EXPECT_EQ(dump(page.document()), "p{'\0\xFF'}"s);
}

TEST(Node, OfNoPageHasNothing) {
  const qo::Node none;
  const qo::Page page("");
  EXPECT_FALSE(none);
  EXPECT_EQ(none, qo::Node());
  const std::function<void()> calls[] = {
      [&] { none.kind(); },
      [&] { none.name(); },
      [&] { none.extent(); },
      [&] { none.html(); },
      [&] { none.text(); },
      [&] { none.parent(); },
      [&] { none.children(); },
      [&] { none.descendants(); },
      [&] { none.previous_sibling(); },
      [&] { none.attributes(); },
      [&] { none.attribute("a"); },
      [&] { qo::Selector("a").select(none); },
      [&] { page.closest(none, "a"); },
      [&] { qo::Selector("a").matches(none); },
  };
  for (const auto& call : calls) EXPECT_THROW(call(), qo::Error);
}

TEST(Node, OfAnEmptyPageIsTheDocumentAlone) {
  const qo::Page page("");
  EXPECT_EQ(page.node_count(), 1u);
  EXPECT_EQ(page.document().name(), "");
  EXPECT_EQ(page.document().html(), "");
}

TEST(Node, LivesAsLongAsItsPageWhereverThatIs) {
  qo::Page page("<p>a</p>");
  const qo::Node p = find(page, "p");
  qo::Page moved = std::move(page);
  EXPECT_EQ(p.text(), "a");
  EXPECT_EQ(p, moved.first("p"));
  EXPECT_EQ(moved.closest(p, "p"), p);
  for (const std::function<void()>& call : std::vector<std::function<void()>>{
           [&] { page.source(); }, [&] { page.document(); }, [&] { page.node_count(); }, [&] { page.select("p"); },
           [&] { page.position_of(0); }, [&] { page.closest(p, "p"); }}) {
    EXPECT_THROW(call(), qo::Error);
  }
  const qo::Page other("<p>a</p>");
  EXPECT_THROW(other.closest(p, "p"), qo::Error);
  EXPECT_NE(find(other, "p"), p);
  EXPECT_NE(find(other, "p") < p, p < find(other, "p"));
  page = qo::Page("<b>");
  EXPECT_EQ(dump(page.document()), "b");
}

TEST(Node, IsOneOfAnOrderedRange) {
  const qo::Page page("<ul><li>a<b>c</b><li><!--d--></ul><p>");
  const qo::Node ul = find(page, "ul"), b = find(page, "b"), p = find(page, "p");
  const auto names = [](auto range) {
    std::string out;
    for (const qo::Node node : range) out += (out.empty() ? "" : " ") + std::string(node.name());
    return out;
  };
  EXPECT_EQ(names(ul.children()), "li li");
  EXPECT_EQ(names(b.ancestors()), "li ul ");  // the document has no name
  EXPECT_EQ(names(ul.descendants()), "li  b  li ");
  EXPECT_TRUE(p.children().empty() && p.descendants().empty() && page.document().ancestors().empty());
  EXPECT_EQ(b.children().begin()->kind(), qo::NodeKind::text);
  EXPECT_EQ(p.previous_sibling(), ul);
  EXPECT_EQ(b.previous_sibling().html(), "a");
  EXPECT_FALSE(ul.previous_sibling());
  EXPECT_FALSE(page.document().previous_sibling());
  EXPECT_TRUE(page.document() < ul && ul < b && b <= b && p > b && p >= p);
  std::unordered_set<qo::Node> set;
  for (std::size_t i = 0; i < page.node_count(); ++i) {
    EXPECT_EQ(page.node_at(i).index(), i);
    set.insert(page.node_at(i));
  }
  EXPECT_EQ(set.size(), page.node_count());
  EXPECT_EQ(set.count(ul), 1u);
  const qo::Page other(page.source());
  EXPECT_EQ(set.count(find(other, "ul")), 0u);
  EXPECT_THROW(page.node_at(page.node_count()), qo::Error);
}

TEST(Node, HasAllAttributesThatAreWritten) {
  const qo::Page page("<p a=1 A='2' {% if x %}b=\"&amp;\"{% else %}b{% endif %} c = d><i>");
  struct {
    const char* name;
    const char* value;
    char quote;
    const char* written;
  } const expected[] = {{"a", "1", '\0', "a=1"},
                        {"A", "2", '\'', "A='2'"},
                        {"b", "&", '"', "b=\"&amp;\""},
                        {"b", "", '\0', "b"},
                        {"c", "d", '\0', "c = d"}};
  const qo::Node p = find(page, "p");
  ASSERT_EQ(p.attributes().size(), 5u);
  const auto* row = expected;
  for (const qo::Attribute attribute : p.attributes()) {
    EXPECT_EQ(attribute.name(), row->name);
    EXPECT_EQ(attribute.value(), row->value);
    EXPECT_EQ(attribute.quote(), row->quote);
    EXPECT_EQ(attribute.range().in(page.source()), row->written);
    EXPECT_EQ(attribute.has_value(), std::string(row->written) != row->name);
    ++row;
  }
  EXPECT_EQ(p.attribute("A"), "1");
  EXPECT_TRUE(find(page, "i").attributes().empty() && page.document().attributes().empty());
}

// Longer than the numbers that records have for lengths.
TEST(Node, MayHaveLongNamesAndValues) {
  for (const std::size_t size : {254u, 255u, 256u, 65534u, 65535u, 65536u, 70000u}) {
    const std::string x(size, 'x'), blanks(size, ' ');
    const qo::Page page("<a" + x + " b" + x + blanks + "=" + blanks + "'" + x + "' c><!" + x + "><?" + x + " y?>");
    const qo::Node node = first_child(page);
    EXPECT_EQ(node.name(), "a" + x);
    ASSERT_EQ(node.attributes().size(), 2u);
    const qo::Attribute attribute = *node.attributes().begin();
    EXPECT_EQ(attribute.name(), "b" + x);
    EXPECT_EQ(attribute.value(), x);
    EXPECT_EQ(attribute.quote(), '\'');
    EXPECT_EQ(attribute.range().end, node.extent().content_begin - 3);
    EXPECT_EQ(node.attribute("B" + x), x);
    EXPECT_EQ(page.first("[b" + x + "]"), node);
    EXPECT_EQ(page.first("A" + x + "[c]"), node);
    EXPECT_EQ(find(page, "?" + x).kind(), qo::NodeKind::code);
  }
}

TEST(Page, ReadsCodeAsTextWhenTold) {
  const qo::Page page("<a b=\"{{ \"c\" }}\"><?php d > e ?><% f", qo::PageOptions{"plain"});
  EXPECT_EQ(dump(page.document()), "a[b='{{ ' c\" }}\"]{#comment{'?php d '} ' e ?><% f'}");
}

}  // namespace
