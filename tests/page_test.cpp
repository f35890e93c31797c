// Pages: tokens, trees, extents, texts. docs/pages.md holds the plain cases.

#include <qo_page/page.h>

#include <fstream>

#include <gtest/gtest.h>
#include <qo_page/template/template_code.h>

#include "doc_rows.h"
#include "test_host.h"

namespace {

TEST(Page, DoesWhatTheDocumentationSays) {
  std::ifstream file(QO_HTML_DOCS_DIR "/pages.md");
  int rows = 0;
  for (std::string line; std::getline(file, line) && line != "## What an edit gives";) {
    const auto row = cells(line);
    if (row.empty()) continue;
    ++rows;
    const qo::Page page(unescaped(row[0]));
    EXPECT_EQ(dump(page.document()), row[1]) << row[0];
    EXPECT_EQ(broken_links(page.document()), "") << row[0];
  }
  EXPECT_GT(rows, 60);
}

_qo_html* find(_qo_html* below, const std::string& tag) {
  std::vector<_qo_html*> found;
  below->getElementsByTagName(tag, found, nullptr);
  return found.empty() ? nullptr : found[0];
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
    const qo::Extent found = page.extent(find(page.document(), test.tag));
    EXPECT_EQ(found.begin, test.extent.begin) << test.source;
    EXPECT_EQ(found.content_begin, test.extent.content_begin) << test.source;
    EXPECT_EQ(found.content_end, test.extent.content_end) << test.source;
    EXPECT_EQ(found.end, test.extent.end) << test.source;
  }
  const qo::Page page("x<p a>y</p>");
  EXPECT_EQ(page.html(page.document()->children[1]), "<p a>y</p>");
  EXPECT_EQ(page.inner_html(page.document()->children[1]), "y");
  EXPECT_EQ(page.html(page.document()), page.source());
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
    _qo_html* const node = page.document()->children[0];
    EXPECT_EQ(page.text(node), test.text) << test.source;
    EXPECT_EQ(page.text(node, qo::TextForm::written), test.written) << test.source;
  }
  const qo::Page page("<a HREF='?a&lt=1&amp;b' b>");
  _qo_html* const a = page.document()->children[0];
  EXPECT_EQ(page.attribute(a, "href"), "?a&lt=1&b");
  EXPECT_EQ(page.attribute(a, "href", qo::TextForm::written), "?a&lt=1&amp;b");
  EXPECT_EQ(page.attribute(a, "b"), "");
  EXPECT_EQ(page.attribute(a, "c"), std::nullopt);
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
    EXPECT_EQ(page.document()->children[0]->classes, test.classes) << test.value;
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
    EXPECT_EQ(qo::CodeScanner(source, true).end_of(0, qo::CodeScanner::Place::text), test.end) << source;
    EXPECT_EQ(qo::CodeScanner(source, false).end_of(0, qo::CodeScanner::Place::text), 0u) << source;
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
    EXPECT_EQ(page.document()->children.size(), ends ? 3u : 2u) << doctype;
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
      EXPECT_EQ(qo::Page(test.source).source(), test.source);
    } catch (const qo::Error& error) {
      message = error.what();
    }
    const std::string encoding(test.encoding);
    EXPECT_EQ(message, encoding.empty()
                           ? ""
                           : "the text is " + encoding + "; iconv -f " + encoding + " -t UTF-8 makes it readable")
        << test.source;
  }
  EXPECT_EQ(dump(qo::Page("<p>\0\xFF"s).document()), "p{'\0\xFF'}"s);
}

TEST(Page, ReadsCodeAsTextWhenTold) {
  const qo::Page page("<a b=\"{{ \"c\" }}\"><?php d > e ?><% f", qo::PageOptions{false});
  EXPECT_EQ(dump(page.document()), "a[b='{{ ' c\" }}\"]{#comment{'?php d '} ' e ?><% f'}");
}

}  // namespace
