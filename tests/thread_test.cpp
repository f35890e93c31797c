// Two threads, each with a tree of its own: nothing is shared. Meant for the thread sanitizer.

#include <thread>

#include <gtest/gtest.h>
#include <json/json.h>

#include <qo_page/edits.h>
#include <qo_page/selector.h>

#include "test_host.h"

namespace {

void use_everything(const std::string& name) {
  for (int round = 0; round < 200; ++round) {
    const Owned document = parse("<form><p class='a b'>&lt;x<!--c--><input name='" + name +
                                 "' value='&amp;'/><select name='s'><option value='1'></p></form>");
    qo_html_query query(document.get());
    query.find("p.a [name]").each([](unsigned long, _qo_html* node) {
      node->add_class("seen");
      return true;
    });
    Json::Value values;
    document->get_form_values(values);
    EXPECT_EQ(values[name], "<![CDATA[&]]>");
    query.get(0)->parent->set_html("<b>new</b>");
    EXPECT_EQ(document->outerHTML(), "<form><p class=\"a b\"><b>new</b></p></form>");
    const qo::Page page("<p>{{ a }}<li class=" + name + ">&lt;");
    qo::Edits edits(page);
    edits.add(page.select(qo::Selector("li:matches('<')")), {{qo::Operation::Kind::add_class, "", "k"}});
    EXPECT_EQ(edits.apply().source, "<p>{{ a }}<li class=\"" + name + " k\">&lt;");
  }
}

TEST(Threads, WorkOnTreesOfTheirOwn) {
  std::thread first([] { use_everything("first"); });
  std::thread second([] { use_everything("second"); });
  first.join();
  second.join();
}

}  // namespace
