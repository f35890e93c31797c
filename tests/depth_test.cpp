// A million nested elements (fewer under sanitizers), in a thread whose stack is far too small for
// recursion.

#include <pthread.h>

#include <functional>

#include <gtest/gtest.h>
#include <json/json.h>

#include <qo_page/edits.h>
#include <qo_page/form_data.h>
#include <qo_page/selector.h>

#include "test_host.h"

namespace {

constexpr std::size_t levels = QO_HTML_DEPTH_LEVELS;
constexpr std::size_t stack_size = 256 * 1024;

void run_with_small_stack(std::function<void()> work) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, stack_size), 0);
  pthread_t thread;
  const auto enter = [](void* argument) -> void* {
    (*static_cast<std::function<void()>*>(argument))();
    EXPECT_EQ(test_host().live, 0);
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, enter, &work), 0);
  ASSERT_EQ(pthread_join(thread, nullptr), 0);
  pthread_attr_destroy(&attributes);
}

std::string repeated(const std::string& piece) {
  std::string out;
  out.reserve(piece.size() * levels);
  for (std::size_t i = 0; i < levels; ++i) out += piece;
  return out;
}

_qo_html* deepest(_qo_html* node) {
  while (!node->children.empty()) node = node->children[0];
  return node;
}

TEST(Depth, EveryOperationWorksOnAMillionLevels) {
  run_with_small_stack([] {
    const std::string open = repeated("<b>"), close = repeated("</b>");
    EXPECT_EQ(test_host().live, 0);
    Owned document = parse(open + "x" + close);
    EXPECT_EQ(test_host().live, static_cast<long>(levels) + 2);
    EXPECT_TRUE(document->outerHTML() == open + "x" + close);
    EXPECT_EQ(document->textContent(), "x");

    std::vector<_qo_html*> found;
    document->getElementsByTagName("b", found, nullptr);
    EXPECT_EQ(found.size(), levels);
    qo_html_query query(document.get());
    EXPECT_EQ(query.find("b").length(), levels);
    EXPECT_EQ(query.find(".none").length(), 0u);
    EXPECT_EQ(query.find("b > textNode").text(), "x");

    _qo_html* const text = deepest(document.get());
    EXPECT_TRUE(document->insert_before(qo_html_element_new("i"), text));
    EXPECT_TRUE(document->replace_with(text, qo_html_element_new("u")));
    _qo_html stranger;
    EXPECT_FALSE(document->insert_after(&stranger, &stranger));
    EXPECT_EQ(dump(deepest(document.get())->parent), "b{i u}");
    EXPECT_TRUE(document->set_html(open));
    EXPECT_TRUE(document->set_text(""));
    EXPECT_EQ(test_host().live, 3);
  });
}

TEST(Depth, NestedControlsAndDroppedCommentsStayLinear) {
  run_with_small_stack([] {
    const Owned comments = parse(repeated("<!---->"), true);
    EXPECT_EQ(test_host().live, 1);
    // Each of these selects has its first option a million levels further down, or none.
    const Owned form = parse(repeated("<select name='a[]'>") + "<option value='v'></option>");
    Json::Value values;
    EXPECT_TRUE(form->get_form_values(values));
    EXPECT_EQ(values["a"].size(), levels);
    EXPECT_EQ(values["a"][static_cast<int>(levels) - 1], "v");
  });
}

TEST(Width, AMillionSiblingsAreDestroyedReplacedAndFilteredInLinearTime) {
  const Owned document = parse(repeated("<b></b><i></i>"));
  qo_html_query query(document.get());
  EXPECT_EQ(query.find("*").find("b").length(), levels);
  EXPECT_TRUE(document->set_html(repeated("<u></u>")));
  EXPECT_EQ(document->children.size(), levels);
  EXPECT_TRUE(document->set_text(""));
}

TEST(Depth, PagesOfAnyShapeAreReadAndEdited) {
  run_with_small_stack([] {
    for (const std::string& source :
         {repeated("<b>"), repeated("<div>"), repeated("<span><li>"), repeated("<a><p>"), repeated("<svg><p>")}) {
      const qo::Page page(source + "<i>x</i>");
      EXPECT_EQ(page.document().text(), "x");
      qo::Edits edits(page);
      edits.add(page.select(qo::Selector("i")), {{qo::Operation::Kind::add_class, "", "k"}});
      EXPECT_TRUE(edits.apply().source == source + "<i class=\"k\">x</i>");
    }
  });
}

TEST(Depth, FormsOfAnyShapeAreReadInLinearTime) {
  run_with_small_stack([] {
    for (const char* piece : {"<fieldset disabled><legend><input name=a>", "<form><div></form><input name=a>",
                              "<div dir=auto><input name=a dirname=d>", "<object><select name=a><option>",
                              "<legend></legend><input type=radio name=a form=f checked>"}) {
      const qo::Page page("<form id=f><fieldset disabled></fieldset>" + repeated(piece));
      const qo::FormControls controls(page);
      EXPECT_LE(controls.entries(page.document()).size(), 2 * levels);
      EXPECT_LE(controls.entries(page.document().first_child()).size(), 2 * levels);
    }
  });
}

TEST(Width, PagesWithoutEndsAreReadInLinearTime) {
  for (const char* piece :
       {"</x>", "{{", "{% a", "<% ", "<?x ", "{{ < ", "{# ", "<a b={{ ", "<!", "<script><!--", "<li>", "<td>",
        "{{ <b> ", "<p a='", "<x-y>", "<form>", "<option>", "<p x{{a}}", "<script><!--</script>"}) {
    const qo::Page page(repeated(piece));
    EXPECT_EQ(page.document().extent().end, page.source().size());
    EXPECT_EQ(qo::Edits(page).apply().source, page.source());
  }
}

using Kind = qo::Operation::Kind;

TEST(Width, ManyBlocksOfCodeAreJoinedInLinearTime) {
  const std::string end = "<i>{% endx %}</i>";
  for (const char* piece :
       {"{% if a %}", "{% else %}{% endif %}", "{{#a}}{{end}}", "<?php } if (a): { ?>", "<% if a do b { %>"}) {
    const qo::Page page(repeated(piece) + end);
    qo::Edits edits(page);
    edits.add(page.select(qo::Selector("i")), {{Kind::remove, "", ""}});
    try {
      edits.apply();
    } catch (const qo::Error& error) {
      EXPECT_EQ(error.offset(), page.source().size() - end.size()) << piece;
    }
  }
  for (const char* piece : {"a{% if b %}", "{% if b %}a{% endif %}", "{% for b in c %}a", "{% if b %}{% else %}"}) {
    const qo::Page page("<p class='" + repeated(piece) + "'>");
    EXPECT_LE(page.select(".a").size(), 1u);
  }
  // One statement of a program, as long as it can be.
  const qo::Page page("<i><?php " + repeated("if (a) <<<A { ") + "?></i>");
  qo::Edits edits(page);
  edits.add(page.select(qo::Selector("i")), {{Kind::remove, "", ""}});
  EXPECT_EQ(edits.apply().source, "");
}

TEST(Width, ManyEditsTakeLinearTime) {
  const qo::Page page("<p>a</p>");
  std::vector<qo::Operation> operations;
  for (std::size_t i = 0; i < levels / 10; ++i) {
    for (const Kind kind : {Kind::prepend, Kind::append, Kind::insert_before, Kind::insert_after}) {
      operations.push_back({kind, "", "b"});
    }
    operations.push_back({Kind::wrap, "", "<i></i>"});
  }
  qo::Edits edits(page);
  for (const qo::Operation& operation : operations) edits.add(page.document().first_child(), {operation});
  EXPECT_EQ(edits.apply().source.size(), page.source().size() + levels / 10 * 11);
  // Each leaves its seams in one text.
  for (const char* piece : {"&amp<b></b>", "a<b></b>", "&<b></b>", "{<b></b> "}) {
    const qo::Page many(repeated(piece));
    qo::Edits removal(many);
    removal.add(many.select(qo::Selector("b")), {{Kind::remove, "", ""}});
    EXPECT_EQ(removal.apply().changes.size(), levels);
  }
}

}  // namespace
