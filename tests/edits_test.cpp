// Edits: what goes together, what fits which node, where a refusal is. docs/pages.md holds what edits give.

#include <qo_page/edits.h>

#include <qo_page/edits/composed_changes.h>

#include <random>

#include <gtest/gtest.h>

namespace {

using Kind = qo::Operation::Kind;

// The first node that starts with `start` in the source.
qo::Node find(const qo::Page& page, const std::string& start) {
  for (const qo::Node node : page.document().descendants()) {
    if (node.html().substr(0, start.size()) == start) return node;
  }
  return qo::Node();
}

// The new source, or the offset and text of the error.
template <class Add>
std::string result(const std::string& source, Add add) {
  const qo::Page page(source);
  qo::Edits edits(page);
  try {
    add(edits, page);
    return edits.apply().source;
  } catch (const qo::Error& error) {
    return std::to_string(error.offset()) + ": " + error.what();
  }
}

std::string edited(const std::string& source, const std::string& start, const std::vector<qo::Operation>& operations) {
  return result(source, [&](qo::Edits& edits, const qo::Page& page) { edits.add(find(page, start), operations); });
}

TEST(Edits, FitTheKindOfTheNode) {
  const std::string source = "a<!--b--><?c?><p>d</p><br><svg><g/></svg>";
  const qo::Operation text{Kind::set_text, "", "x"}, name{Kind::rename, "x", ""}, append{Kind::append, "", "x"};
  struct {
    const char* node;
    qo::Operation operation;
    const char* result;
  } const cases[] = {
      {"a", text, "x<!--b--><?c?><p>d</p><br><svg><g/></svg>"},
      {"a", {Kind::wrap, "", "<b></b>"}, "<b>a</b><!--b--><?c?><p>d</p><br><svg><g/></svg>"},
      {"<!--", text, "a<!--x--><?c?><p>d</p><br><svg><g/></svg>"},
      {"<!--", {Kind::set_text, "", "-->"}, "5: the new text would not stay in the comment"},
      {"<!--", name, "1: only elements have tags to edit"},
      {"<!--", append, "1: no content"},
      {"<?c", {Kind::remove, "", ""}, "a<!--b--><p>d</p><br><svg><g/></svg>"},
      {"<?c", {Kind::insert_after, "", "<i></i>"}, "a<!--b--><?c?><i></i><p>d</p><br><svg><g/></svg>"},
      {"<?c", text, "9: no content"},
      {"<br", append, "22: <br> has no content"},
      {"<br", {Kind::unwrap, "", ""}, "22: <br> has no content"},
      {"<g", text, "31: <g> has no content"},
      {"d", name, "17: only elements have tags to edit"},
      {"d", {Kind::insert_before, "", "</p>"}, "17: </p> would end <p>"},
      {"d", {Kind::set_text, "", "{{ a<b }}<"}, "a<!--b--><?c?><p>{{ a<b }}&lt;</p><br><svg><g/></svg>"},
  };
  for (const auto& test : cases) EXPECT_EQ(edited(source, test.node, {test.operation}), test.result) << test.node;
  EXPECT_EQ(result(source, [&](qo::Edits& edits, const qo::Page& page) { edits.add(page.document(), {text}); }),
            "0: the document itself cannot be edited");
}

TEST(Edits, KeepTheBlanksOfTags) {
  const qo::Operation add{Kind::set_attribute, "k", "v"}, remove{Kind::remove_attribute, "a", ""};
  struct {
    const char* source;
    qo::Operation operation;
    const char* result;
  } const cases[] = {
      {"<p a >", add, "<p a k=\"v\" >"},
      {"<p a = 'b' >", add, "<p a = 'b' k='v' >"},
      {"<p a />", add, "<p a k=\"v\" />"},
      {"<p  a  b >", remove, "<p  b >"},
      {"<p k=x>", {Kind::set_attribute, "k", ""}, "<p k=\"\">"},
      {"<p class=a\"b>", {Kind::add_class, "", "k"}, "<p class='a\"b k'>"},
  };
  for (const auto& test : cases) EXPECT_EQ(edited(test.source, "<p", {test.operation}), test.result) << test.source;
}

TEST(Edits, BringNoCharactersThatThePageWouldReadOtherwise) {
  const qo::Operation text{Kind::set_text, "", "\xC3\xA9"}, token{Kind::add_class, "", "k"};
  const std::string refused = "characters beyond ASCII would be UTF-8, ";
  struct {
    const char* source;
    qo::Operation operation;
    std::string result;
  } const cases[] = {
      {"<i>a</i>\xE9", text, "3: " + refused + "which the page is not"},
      {"<i title=\xE9>a</i>", token, "<i title=\xE9 class=\"k\">a</i>"},
      {"<i class=\xE9>a</i>", token, "<i class=\"\xE9 k\">a</i>"},
      {"<i>a</i><meta charset={{x}}><meta charset=latin1>", text,
       "<i>\xC3\xA9</i><meta charset={{x}}><meta charset=latin1>"},
      {"<meta charset='Windows-1252'><i>a</i>", text,
       "32: " + refused + "and the page says that it is \"Windows-1252\""},
      {"<body><i>a</i><meta charset=latin1>", text, "<body><i>\xC3\xA9</i><meta charset=latin1>"},
  };
  for (const auto& test : cases) EXPECT_EQ(edited(test.source, "<i", {test.operation}), test.result);
}

TEST(Edits, AreReadAsTheyWereMeant) {
  const auto text = [](const char* value) { return qo::Operation{Kind::set_text, "", value}; };
  struct {
    const char* source;
    const char* node;
    qo::Operation operation;
    const char* result;
  } const cases[] = {
      {"<pre>o</pre>", "<pre", text("\na"), "<pre>\n\na</pre>"},
      {"<p>o</p>", "<p", text("\na"), "<p>\na</p>"},
      {"<p>o</p>", "<p", text("{{ a<b }}"), "<p>{{ a<b }}</p>"},
      {"<p>o</p>", "<p", text("'{{' a<b }}"), "4: what is on both sides of the edit would together be read as a tag"},
      {"x<b>y</b> #}",
       "x",
       {Kind::insert_before, "", "{# "},
       "0: what is on both sides of the edit would together be read as template code"},
  };
  for (const auto& test : cases) EXPECT_EQ(edited(test.source, test.node, {test.operation}), test.result);
}

TEST(Edits, RefuseWhatContradictsItself) {
  const qo::Operation attribute{Kind::set_attribute, "a", "1"}, text{Kind::set_text, "", "x"},
      append{Kind::append, "", "y"}, remove{Kind::remove, "", ""}, replace{Kind::replace, "", "r"},
      unwrap{Kind::unwrap, "", ""}, before{Kind::insert_before, "", "b"}, wrap{Kind::wrap, "", "<i></i>"},
      rename{Kind::rename, "q", ""};
  const auto contradiction = [](const char* first, const char* second, int index = 1) {
    return std::to_string(index) + ": \"" + first + "\" and \"" + second + "\" contradict each other";
  };
  struct {
    std::vector<qo::Operation> operations;
    std::string result;
  } const cases[] = {
      {{remove, text}, contradiction("remove", "set the text")},
      {{text, remove}, contradiction("set the text", "remove")},
      {{attribute, before, unwrap}, contradiction("set an attribute", "unwrap", 2)},
      {{replace, remove}, contradiction("replace", "remove")},
      {{append, text}, contradiction("append", "set the text")},
      {{text, text}, contradiction("set the text", "set the text")},
      {{wrap, remove}, contradiction("wrap", "remove")},
      {{qo::substitute_text({"a", "b"}), qo::substitute_html({"a", "b"})},
       contradiction("substitute in texts", "substitute by markup")},
      {{qo::add_token("rel", "a b")}, "0: \"a b\" is not one token"},
      {{rename, {Kind::rename, "z", ""}}, contradiction("rename", "rename")},
      {{text, append}, "<p>xy</p>"},
      {{append, {Kind::prepend, "", "1"}, {Kind::append, "", "z"}, {Kind::prepend, "", "2"}}, "<p>21oyz</p>"},
      {{before, remove}, "b"},
      {{unwrap, wrap, text}, "<i>x</i>"},
      {{rename, rename, attribute, {Kind::remove_attribute, "A", ""}}, "<q>o</q>"},
      {{{Kind::set_attribute, "a b", ""}}, "0: \"a b\" is no attribute name"},
      {{{Kind::add_class, "", ""}}, "0: \"\" is not one class"},
      {{{Kind::rename, "1", ""}}, "0: \"1\" is no name of an element"},
  };
  for (const auto& test : cases) EXPECT_EQ(edited("<p>o</p>", "<p", test.operations), test.result);
  // In several calls as well; then the place is that of the node.
  EXPECT_EQ(result("ab<p>c</p>",
                   [&](qo::Edits& edits, const qo::Page& page) {
                     edits.add(find(page, "<p"), {text});
                     edits.add(find(page, "<p"), {remove});
                   }),
            "2: \"set the text\" and \"remove\" contradict each other");
}

TEST(Edits, ComeInTheOrderOfTheSource) {
  EXPECT_EQ(result("<div><p>a</p></div><br>",
                   [](qo::Edits& edits, const qo::Page& page) {
                     edits.add(find(page, "<br"), {{Kind::insert_before, "", "3"}});
                     edits.add(find(page, "<p"), {{Kind::append, "", "1"}});
                     edits.add(find(page, "<div"), {{Kind::append, "", "2"}});
                     edits.add(find(page, "<p"), {{Kind::append, "", "!"}, {Kind::add_class, "", "k"}});
                   }),
            "<div><p class=\"k\">a1!</p>2</div>3<br>");
  // What is replaced is no longer touched, whatever came first.
  EXPECT_EQ(result("<div><p>a</p></div><p>b</p>",
                   [](qo::Edits& edits, const qo::Page& page) {
                     edits.add(find(page, "<p>a"), {{Kind::set_text, "", "c"}});
                     edits.add(find(page, "<div"), {{Kind::set_html, "", "<p>d</p>"}});
                     edits.add(find(page, "<p>b"), {{Kind::remove, "", ""}});
                   }),
            "<div><p>d</p></div>");
}

TEST(Edits, LeaveWhatIsBesideThemAsItWasRead) {
  const qo::Operation remove{Kind::remove, "", ""}, unwrap{Kind::unwrap, "", ""};
  const auto after = [](const char* markup) { return qo::Operation{Kind::insert_after, "", markup}; };
  const auto together = [](const char* what) {
    return std::string("what is on both sides of the edit would together be read as ") + what;
  };
  const std::string code = together("template code"), reference = together("a character reference"),
                    tag = together("a tag"), beside = "the edit would change how the template code beside it is read";
  struct {
    const char* source;
    const char* node;
    qo::Operation operation;
    std::string result;
  } const cases[] = {
      {"<i>x</i>{ y }}", "<i", after("{"), "8: " + code},
      {"a{<i>x</i>% y %}", "<i", remove, "2: " + code},
      {"<i>{{</i> }}", "<i", unwrap, "5: " + code},
      {"\"<i></i>{{\"x\"}}", "<i", remove, "8: " + beside},
      {"<i></i>{{\"x\"}}", "<i", after("\""), "7: " + beside},
      {"{{ a }}<i></i>{{ b }}", "<i", remove, "{{ a }}{{ b }}"},
      {"A &lt<i></i>; B", "<i", remove, "5: " + reference},
      {"&not<i>in;</i>", "<i", unwrap, "4: " + reference},
      {"<i>a</i>p; B", "<i", after("&am"), "8: " + reference},
      {"&lt;<i></i>&gt;", "<i", remove, "&lt;&gt;"},
      {"<textarea>a</textarea>p;", "a", {Kind::insert_before, "", "&am"}, "<textarea>&ama</textarea>p;"},
      {"<script>&am</script>", "<script", {Kind::append, "", "p;"}, "<script>&amp;</script>"},
      {"a <<i></i>/b z", "<i", remove, "3: " + tag},
      {"a <<i></i> b", "<i", remove, "a < b"},
      {"<i></i>r>", "<i", {Kind::insert_before, "", "<b"}, "0: " + tag},
      {"<pre><i></i>\na</pre>", "<i", remove, "12: the line break after the edit would no longer be read"},
      {"<pre><i>b</i>\na</pre>", "<i", unwrap, "<pre>b\na</pre>"},
      {"<script>", "<script", {Kind::append, "", "<!-- <b x='"}, "<script><!-- <b x='"},
      {"<!-- a", "<!--", {Kind::set_text, "", "<b"}, "<!--<b"},
      {"<style>a &lt; b</style>",
       "<style",
       {Kind::rename, "title", ""},
       "0: the edit would change how the references in <style> are read"},
      {"<title>a &lt; b</title>", "<title", {Kind::rename, "p", ""}, "<p>a &lt; b</p>"},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(edited(test.source, test.node, {test.operation}), test.result) << test.source;
  }
  // A new text is written as its new name reads it.
  EXPECT_EQ(edited("<style>a</style>", "<style", {{Kind::rename, "p", ""}, {Kind::set_text, "", "&lt;"}}),
            "<p>&amp;lt;</p>");
}

TEST(Edits, TakeNoLineThatOtherEditsAreOn) {
  const auto edited = [](const char* second) {
    return result("<p>a\n <b>b</b>\nc</p>", [second](qo::Edits& edits, const qo::Page& page) {
      edits.add(find(page, "<b"), {qo::remove_line()});
      edits.add(find(page, second), {qo::substitute_text({"[ac]?\\s+[ac]?", "_"})});
    });
  };
  EXPECT_EQ(edited("\nc"), "<p>a\n _</p>");
  EXPECT_EQ(edited("a"), "<p>_\nc</p>");
}

TEST(Edits, TellTheirChanges) {
  const qo::Page page("<p class=\"a b\">c</p>");
  qo::Edits edits(page);
  EXPECT_TRUE(edits.apply().changes.empty());
  const qo::Node p = find(page, "<p");
  edits.add(p, {{Kind::add_class, "", "a"}, {Kind::set_text, "", "c"}, {Kind::remove_attribute, "id", ""}});
  EXPECT_TRUE(edits.apply().changes.empty());
  edits.add(p, {{Kind::remove_class, "", "a"}, {Kind::append, "", "d"}});
  const qo::EditedSource edited = edits.apply();
  EXPECT_EQ(edited.source, "<p class=\"b\">cd</p>");
  ASSERT_EQ(edited.changes.size(), 2u);
  EXPECT_EQ(edited.changes[0].old_end - edited.changes[0].old_begin, 2u);
  EXPECT_EQ(edited.changes[0].new_end, edited.changes[0].new_begin);
  EXPECT_EQ(edited.changes[1].old_begin, 16u);
  EXPECT_EQ(edited.source.substr(edited.changes[1].new_begin, 1), "d");
  EXPECT_EQ(page.source(), "<p class=\"a b\">c</p>");
}

struct EditRow {
  const char* source;
  std::vector<std::pair<const char*, std::vector<qo::Operation>>> edits;  // node, operations
  std::string result;
};

TEST(Edits, OfSeveralNodesDoNotMix) {
  const qo::Substitution to_b("a", "b");
  const EditRow rows[] = {
      // At one place.
      {"<i></i><b></b>", {{"<b", {qo::insert_before("2")}}, {"<i", {qo::insert_after("1")}}}, "<i></i>12<b></b>"},
      {"<i></i><b></b>", {{"<i", {qo::remove()}}, {"<b", {qo::insert_before("x"), qo::remove()}}}, "x"},
      {"<i></i>x", {{"<i", {qo::insert_before("<br>"), qo::replace("{{ y }}")}}}, "<br>{{ y }}x"},
      {"<i></i>{{ x }}", {{"<i", {qo::insert_before("{{ y }}"), qo::replace("{{ z }}")}}}, "{{ y }}{{ z }}{{ x }}"},
      {"<p><i></i></p>", {{"<i", {qo::insert_after("1")}}, {"<p", {qo::append("2")}}}, "<p><i></i>12</p>"},
      {"<p><i></i></p>", {{"<i", {qo::insert_before("2")}}, {"<p", {qo::prepend("1")}}}, "<p>12<i></i></p>"},
      // One in the other.
      {"<div><p><b>a</b></p></div>",
       {{"<p", {qo::unwrap()}}, {"<div", {qo::unwrap()}}, {"<b", {qo::unwrap(), qo::wrap("<i></i>")}}},
       "<i>a</i>"},
      {"<p><b>a</b></p>",
       {{"<b", {qo::set_text("c")}}, {"<p", {qo::wrap("<u></u>"), qo::unwrap()}}},
       "<u><b>c</b></u>"},
      // Elements that end with what is in them.
      {"<ul><li>a<li>b</ul>",
       {{"<li>a", {qo::append("1")}}, {"<li>b", {qo::append("2")}}, {"<ul", {qo::append("<li>3")}}},
       "<ul><li>a1<li>b2<li>3</ul>"},
      {"<ul><li>a<li>b</ul>",
       {{"<li>a", {qo::remove()}}, {"<li>b", {qo::rename("li"), qo::prepend("1")}}},
       "<ul><li>1b</ul>"},
      {"<ul><li>a<li><i>b</i></ul>", {{"<i", {qo::remove()}}, {"<li>a", {qo::set_text("")}}}, "<ul><li><li></ul>"},
      {"<p>a<b>c",
       {{"<b", {qo::append("1")}}, {"<p", {qo::append("2")}}},
       "4: <b> has no end tag: what comes after it would become a part of it"},
      // Two of something.
      {"<i></i>", {{"<i", {qo::wrap("<u></u>"), qo::wrap("<s></s>")}}}, "<u><s><i></i></s></u>"},
      {"<i></i><b></b>",
       {{"<i", {qo::wrap("<u></u>")}}, {"<b", {qo::wrap("<s>1</s>")}}},
       "<u><i></i></u><s>1<b></b></s>"},
      {"<i></i><b></b>",
       {{"<i", {qo::append("1")}}, {"<b", {qo::append("2")}}, {"<i", {qo::append("3")}}, {"<b", {qo::append("4")}}},
       "<i>13</i><b>24</b>"},
      {"<i></i><b></b>",
       {{"<i", {qo::add_class("k")}},
        {"<i", {qo::append("1")}},
        {"<b", {qo::insert_before("2")}},
        {"<b", {qo::remove()}}},
       "<i class=\"k\">1</i>2"},
      {"<i class=a{% if b %} id=c{% endif %} title=d{% if e %} dir=f{% endif %}>",
       {{"<i", {qo::add_class("k"), qo::set_attribute("title", "g")}}},
       "<i class=\"a k\"{% if b %} id=c{% endif %} title=g{% if e %} dir=f{% endif %}>"},
      {"<i a='1' b='2' A='3' B='4'>", {{"<i", {qo::remove_attribute("a"), qo::remove_attribute("b")}}}, "<i>"},
      {"<i>a</i><b>c</b>\xE9",
       {{"<i", {qo::set_text("x")}}, {"<b", {qo::set_text("\xC3\xA9")}}},
       "11: characters beyond ASCII would be UTF-8, which the page is not"},
      {"<i>a</i><b>c</b>",
       {{"<i", {qo::set_text("\xC3\xA9")}}, {"<b", {qo::set_text("y")}}},
       "<i>\xC3\xA9</i><b>y</b>"},
      // What is no element.
      {"<p>a<!--a--><svg><![CDATA[a<a]]></svg>&#97;</p>",
       {{"<p", {qo::substitute_text(to_b)}}},
       "<p>b<!--a--><svg><![CDATA[b<b]]></svg>b</p>"},
      {"<!--a--><!--a--><p>a</p>",
       {{"<!--", {qo::substitute_text(to_b), qo::insert_after("<br>")}}, {"<p", {qo::substitute_text(to_b)}}},
       "<!--b--><br><!--a--><p>b</p>"},
      {"<p>a a</p>",
       {{"<p", {qo::substitute_text(to_b), qo::substitute_text(qo::Substitution("b", "c"))}}},
       "<p>c c</p>"},
      {"<!--a-->",
       {{"<!--", {qo::substitute_text(qo::Substitution("a", "-->"))}}},
       "4: the new text would not stay in the comment"},
  };
  for (const auto& [source, edits, expected] : rows) {
    const auto add = [&rows = edits](qo::Edits& all, const qo::Page& page) {
      for (const auto& [node, operations] : rows) all.add(find(page, node), operations);
    };
    EXPECT_EQ(result(source, add), expected) << source;
  }
}

// Of each kind of operation: what it uses, and on which of these pages it is refused for the node "<b".
TEST(Edits, OfEachKindUseAndAreRefusedWhatTheyShould) {
  const char* const pages[] = {
      "{a && <b>c</b>}",
      "<b v-if=d>c</b><i v-else></i>",
      "<b v-else>c</b>",
      "<b>{% if d %}</b>{% endif %}",
      "<div>{% if d %}<b></div>{% endif %}",
      "<b a={d > 1}>c</b>",
      "<b/>c",
      "<p>a<b>c</p>d",
      "<b {{ d }}>c</b>",
      "<b {% if d %}k=1 class=y{% endif %}>c</b>",
  };
  const qo::Substitution substitution("c", "z");
  const struct {
    Kind kind;
    const char* fields;   // n: name, v: value, s: substitution
    const char* refused;  // x: on that page
  } rows[] = {
      {Kind::set_attribute, "nv", ".....x...x"},
      {Kind::set_bare_attribute, "n", ".....x...x"},
      {Kind::remove_attribute, "n", ".....x...."},
      {Kind::add_class, "v", ".....x..xx"},
      {Kind::remove_class, "v", ".....x...."},
      {Kind::rename, "n", "...x.xx..."},
      {Kind::substitute_value, "ns", ".....x...."},
      {Kind::substitute_text, "s", ".....x...."},
      {Kind::unwrap, "", "xxxx.xx..."},
      {Kind::set_text, "v", "...x.xx..."},
      {Kind::set_html, "v", "...x.xx..."},
      {Kind::prepend, "v", ".....xx..."},
      {Kind::append, "v", ".....xx..."},
      {Kind::insert_before, "v", "x.x......."},
      {Kind::insert_after, "v", "xx..xxxx.."},
      {Kind::wrap, "v", ".xxx.xx..."},
      {Kind::replace, "v", ".x.x.xx..."},
      {Kind::remove, "", "xx.x.xx..."},
  };
  for (const auto& row : rows) {
    const std::string fields = row.fields;
    const auto uses = [&fields](char field) { return fields.find(field) != fields.npos; };
    qo::Operation good{row.kind, uses('n') ? "k" : "", uses('v') ? "y" : ""};
    if (uses('s')) good.substitution = substitution;
    if (row.kind == Kind::wrap) good.value = "<u></u>";
    if (row.kind == Kind::rename) good.name = "u";
    const std::string message = edited("<b>c</b>", "<b", {good});
    EXPECT_EQ(message[0] == '0' && message[1] == ':', false) << message;
    for (const char field : {'n', 'v', 's'}) {
      qo::Operation other = good;
      if (field == 'n') other.name = uses('n') ? "" : "k";
      if (field == 'v') other.value = uses('v') ? good.value : "y";
      if (field == 's') other.substitution = uses('s') ? std::nullopt : std::optional(substitution);
      const bool is_fine = field == 'v' && uses('v');
      if (is_fine) continue;
      try {
        qo::check_operations({qo::unwrap(), other});
        ADD_FAILURE() << static_cast<int>(row.kind) << field;
      } catch (const qo::Error& error) {
        EXPECT_EQ(error.offset(), 1u);
        EXPECT_EQ(error.place(), qo::Error::Place::operations);
      }
    }
    std::string refused;
    for (const char* page : pages) {
      const std::string given = edited(page, "<b", {good});
      refused += given.find(": ") != given.npos && given[0] >= '0' && given[0] <= '9' ? 'x' : '.';
    }
    EXPECT_EQ(refused, row.refused) << static_cast<int>(row.kind);
  }
}

TEST(Edits, AreToldOfTheirNodes) {
  const qo::Page page("<p>a<b>c</b></p><script>d</script>");
  const qo::Node p = find(page, "<p"), b = find(page, "<b"), script = find(page, "<script");
  qo::Edits edits(page);
  EXPECT_EQ(edits.apply_to_page().page.node_count(), page.node_count());
  EXPECT_TRUE(edits.operations(p).empty());
  edits.add({p, b}, {qo::add_class("1"), qo::append("2")});
  EXPECT_THROW(edits.add({b, page.document()}, {qo::append("3")}), qo::EditError);
  edits.add(b, {qo::append("4")});
  std::string shown;
  for (const qo::Node node : {b, p, script}) {
    for (const qo::Operation* operation : edits.operations(node)) shown += operation->value;
    shown += "|";
  }
  EXPECT_EQ(shown, "124|12||");
  const qo::EditedPage edited = edits.apply_to_page();
  EXPECT_EQ(edited.page.first("b").html(), "<b class=\"1\">c24</b>");
  ASSERT_EQ(edited.changes.size(), 4u);
  EXPECT_EQ(edited.changes[0].node, p);
  EXPECT_EQ(edited.changes[1].node, b);
  EXPECT_EQ(edited.changes[3].node, p);

  const struct {
    std::vector<std::pair<qo::Node, qo::Operation>> edits;
    qo::Node node;
  } refused[] = {
      {{{b, qo::append("</p>")}}, b},
      {{{p, qo::add_class("k")}, {b, qo::insert_after("<i>")}}, b},
      {{{script, qo::set_text("</script>")}, {b, qo::remove()}}, script},
      {{{p, qo::add_class("k")}, {b, qo::append("x")}, {p, qo::unwrap()}}, p},
      {{{b, qo::add_class("k")}, {page.document(), qo::append("x")}}, page.document()},
  };
  for (const auto& row : refused) {
    try {
      qo::Edits wrong(page);
      for (const auto& [node, operation] : row.edits) wrong.add(node, {operation});
      wrong.apply();
      ADD_FAILURE() << row.node.html();
    } catch (const qo::EditError& error) {
      EXPECT_EQ(error.node(), row.node) << error.what();
    }
  }
  const qo::Page other("<p>");
  EXPECT_THROW(edits.operations(other.first("p")), qo::Error);
  EXPECT_THROW(edits.add(other.first("p"), {qo::remove()}), qo::Error);
}

TEST(Edits, OfDataBringNoCode) {
  const qo::Page page("<p title='a'>a</p>");
  for (const std::string mark : {"{{ x }}", "{% x %}", "{# x #}", "<? x ?>", "<% x %>", "{{{ x }}}"}) {
    const qo::Operation texts[] = {qo::set_text(mark), qo::set_attribute("k", mark), qo::add_class(mark.substr(0, 2)),
                                   qo::substitute_text(qo::Substitution("a", mark)),
                                   qo::substitute_value("title", qo::Substitution("a", mark))};
    for (const qo::Operation& operation : texts) {
      qo::Edits kept(page), refused(page, qo::CodeInText::refuse);
      EXPECT_NO_THROW(kept.add(page.first("p"), {operation}));
      try {
        refused.add(page.first("p"), {qo::insert_before(mark), operation});
        ADD_FAILURE() << mark << static_cast<int>(operation.kind);
      } catch (const qo::Error& error) {
        EXPECT_EQ(error.offset(), 1u);
      }
    }
    qo::Edits markup(page, qo::CodeInText::refuse);
    markup.add(page.first("p"), {qo::set_html(mark), qo::insert_before("b"), qo::remove_class("{{")});
    EXPECT_EQ(markup.apply().source, "b<p title='a'>" + mark + "</p>");
  }
}

TEST(Edits, MoveNodesToOnePlaceInTheirOrder) {
  const std::string source = "<ul><li>a</li><li id=t>t</li></ul><ol></ol><p>x<!--c--><b>y</b></p>";
  using Move = qo::Operation (*)(qo::Node);
  const auto moved = [&source](const char* node, Move move, const char* target) {
    return result(source, [&](qo::Edits& edits, const qo::Page& page) {
      edits.add(find(page, "<b"), {move(find(page, target))});
      edits.add(find(page, node), {move(find(page, target))});
    });
  };
  struct {
    const char* node;
    Move move;
    const char* target;
    const char* result;
  } const cases[] = {
      {"<!--", qo::move_before, "<li id", "<ul><li>a</li><!--c--><b>y</b><li id=t>t</li></ul><ol></ol><p>x</p>"},
      {"<li>", qo::move_into, "<ol", "<ul><li id=t>t</li></ul><ol><li>a</li><b>y</b></ol><p>x<!--c--></p>"},
      {"<li>", qo::move_after, "<ol", "<ul><li id=t>t</li></ul><ol></ol><li>a</li><b>y</b><p>x<!--c--></p>"},
      {"<ul", qo::move_into, "<li id", "0: <ul> cannot be moved into itself"},
      {"<li>", qo::move_before, "<li>", "4: <li> cannot be moved beside itself"},
      {"<p", qo::move_before, "<ol", "55: <b> is in an element that is moved as well"},
      {"<li>", qo::move_before, "x", "55: a text is no place to move to"},
      {"x", qo::move_before, "<ol", "46: a text cannot be moved alone"},
      {"<ol", qo::move_into, "<!--", "55: the comment has no content to move to"},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(moved(test.node, test.move, test.target), test.result) << test.node;
  }
}

TEST(Edits, MoveNodesOnceAllElseIsDone) {
  const auto moved = [](const char* node, const qo::Operation& operation) {
    return result("<ul><li>a</li></ul><p>b</p><i></i>", [&](qo::Edits& edits, const qo::Page& page) {
      edits.add(find(page, "<li"), {qo::move_after(find(page, "<p")), qo::add_class("k")});
      edits.add(find(page, node), {operation});
    });
  };
  EXPECT_EQ(moved("<li", qo::set_text("c")), "<ul></ul><p>b</p><li class=\"k\">c</li><i></i>");
  EXPECT_EQ(moved("<p", qo::insert_after("d")), "<ul></ul><p>b</p><li class=\"k\">a</li>d<i></i>");
  EXPECT_EQ(moved("<ul", qo::remove()), "<p>b</p><i></i>");
  EXPECT_EQ(moved("<p", qo::remove()), "4: the place to move to is taken away");
  EXPECT_EQ(moved("<p", qo::unwrap()), "4: the place to move to is taken away");
  EXPECT_EQ(moved("<li", qo::wrap("<b></b>")), "4: \"move\" and \"wrap\" contradict each other");
  const qo::Page page("<i></i><b></b>");
  qo::Edits edits(page);
  edits.add(find(page, "<i"), {qo::move_before(find(page, "<b"))});
  EXPECT_TRUE(edits.apply().changes.empty());
}

// Replaces some random stretches.
std::string changed(const std::string& text, std::mt19937& random, std::vector<qo::Change>& changes) {
  std::string out;
  std::size_t position = 0;
  while (position < text.size() && random() % 4 != 0) {
    const std::size_t begin = position + random() % 6, end = begin + random() % 4;
    if (end > text.size()) break;
    out += text.substr(position, begin - position);
    const std::size_t fewest = begin == end ? 1 : 0;
    const std::string put(fewest + random() % 3, static_cast<char>('A' + random() % 26));
    changes.push_back({begin, end, out.size(), out.size() + put.size(), qo::Node()});
    out += put;
    position = end + 1 > text.size() ? end : end + 1;
    out += text.substr(end, position - end);
  }
  return out + text.substr(position);
}

TEST(ComposedChanges, LeadAllTheWay) {
  std::mt19937 random(7);
  for (int round = 0; round < 5000; ++round) {
    const std::string first = "abcdefghijklmnopqrstuvwxyz";
    std::vector<qo::Change> one, two;
    const std::string second = changed(first, random, one), third = changed(second, random, two);
    std::string made;
    std::size_t old_end = 0, new_end = 0;
    for (const qo::Change& change : qo::composed(one, two)) {
      ASSERT_LE(old_end, change.old_begin);
      ASSERT_LE(change.old_begin, change.old_end);
      ASSERT_LE(change.new_begin, change.new_end);
      ASSERT_EQ(change.old_begin - old_end, change.new_begin - new_end);
      made += first.substr(old_end, change.old_begin - old_end);
      made += third.substr(change.new_begin, change.new_end - change.new_begin);
      old_end = change.old_end;
      new_end = change.new_end;
    }
    ASSERT_EQ(made + first.substr(old_end), third);
  }
}

}  // namespace
