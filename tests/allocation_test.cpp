// Fails the first, second, third, ... allocation of an operation until it succeeds. Whatever fails
// must leave the tree as it was, or done; write no other line than its own; and leave nothing
// behind.

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <new>

#include <gtest/gtest.h>
#include <json/json.h>

#include <qo_page/edits.h>
#include <qo_page/selector.h>

#include "test_host.h"

namespace {

thread_local long allocations_left = -1;  // before the one that fails; negative: none fails
thread_local std::size_t bytes_allocated = 0;

void* allocate(std::size_t size) {
  if (allocations_left == 0) {
    allocations_left = -1;
    throw std::bad_alloc();
  }
  if (allocations_left > 0) --allocations_left;
  bytes_allocated += size;
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return allocate(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

// Long enough for no small-string buffer.
const char long_text[] = "a text that is longer than any buffer for small strings";
const std::string long_name = "a_name_that_is_longer_than_any_buffer_for_small_strings";
const std::string page_html = "<p class='" + std::string(long_text) + "' hidden>" + long_text + "<" + long_name +
                              "></" + long_name + "><!--" + long_text + "--></p><ul><li>1</li><li>2</li></ul>";
const std::string every_kind = page_html + "<script>" + long_text + "</script><style>" + long_text +
                               "</style><![CDATA[" + long_text + "]]><br " + long_name + "/></" + long_name + ">";

struct Setting {
  Owned page = parse(page_html);
  _qo_html* p = page->children[0];
  _qo_html* ul = page->children[1];
  Owned node{qo_html_element_new("n")};
  qo_html_query query{page.get()};
  Json::Value values;
  std::string result = "-";

  Setting() {
    for (_qo_html* parent : {page.get(), p, ul}) parent->children.shrink_to_fit();
  }

  // The tree owns what it has accepted.
  void placed(bool accepted) {
    if (accepted) static_cast<void>(node.release());
  }

  std::string state() {
    std::string out = dump(page.get()) + " " + dump(node.get()) + " " + broken_links(page.get());
    for (const _qo_html* one : {p, node.get()}) {
      for (const std::string& token : one->classes) out += "," + token;
    }
    return out + " " + std::to_string(query.length()) + " " + result;
  }
};

struct Operation {
  const char* name;
  std::function<void(Setting&)> run;
  const char* line = "";  // on standard error or output, when an allocation fails and the operation takes it
};

const char parse_lines[] =
    "||exception in parse html content\n|exception in parse_comment_node\n|exception in "
    "parse_cdata_node\n"
    "|exception in parse_script_node\n|exception in get element tag\n|";

const Operation operations[] = {
    {"document", [](Setting&) { Owned(qo_html_document_new(long_text)); }},
    {"element", [](Setting&) { Owned(qo_html_element_new(long_text)); }},
    {"text node", [](Setting&) { Owned(qo_html_text_node_new(long_text)); }},
    {"add_child", [](Setting& s) { s.placed(s.p->add_child(s.node.get())); }},
    {"insert_after", [](Setting& s) { s.placed(s.page->insert_after(s.node.get(), s.ul->children[0])); }},
    {"insert_before", [](Setting& s) { s.placed(s.page->insert_before(s.node.get(), s.ul)); }},
    {"replace_with", [](Setting& s) { s.placed(s.page->replace_with(s.ul->children[1], s.node.get())); }},
    {"set_text", [](Setting& s) { s.p->set_text(long_text); }},
    {"set_text of a leaf", [](Setting& s) { s.node->set_text(long_text); }},
    {"addAttribute", [](Setting& s) { s.p->addAttribute(long_name, long_text); }},
    {"addAttribute class", [](Setting& s) { s.node->addAttribute("class", std::string("x y ") + long_name); }},
    {"set_attribute", [](Setting& s) { s.p->set_attribute("class", std::string("x") + long_text); }},
    {"bare attribute", [](Setting& s) { s.p->set_attribute(long_name); }},
    {"add_class", [](Setting& s) { s.p->add_class(long_name); }},
    {"add_class to none", [](Setting& s) { s.node->add_class(long_name); }},
    {"remove_class", [](Setting& s) { s.p->remove_class("text"); }},
    {"find", [](Setting& s) { s.query.find("ul > li.none [class=x]"); }},
    {"use_one", [](Setting& s) { s.query.use_one(5); }},
    {"innerHTML", [](Setting& s) { s.result = s.page->innerHTML(); }},
    {"textContent", [](Setting& s) { s.result = s.page->textContent(); }},
    {"outerHTML", [](Setting& s) { s.result = s.page->outerHTML(); }, "fuck bad alloc outer HTML: documentRoot\n"},
    {"outerHTML of a text", [](Setting& s) { s.result = s.p->children[0]->outerHTML(); }, "bad alloc textContent: \n"},
    {"textContent of a text", [](Setting& s) { s.result = s.p->children[0]->textContent(); },
     "bad alloc textContent: \n"},
    {"formatAttribute", [](Setting& s) { s.result = s.p->formatAttribute(); }, "bad alloc formatAttribute\n"},
};

// Runs the operation with its n-th allocation failing; false when it had fewer. `lines` is what it
// wrote.
bool run_with_failure(const Operation& operation, Setting& setting, long n, bool& thrown, std::string& written) {
  const Lines lines;
  thrown = false;
  allocations_left = n;
  try {
    operation.run(setting);
  } catch (const std::bad_alloc&) {
    thrown = true;
  }
  const bool failed = allocations_left < 0;
  allocations_left = -1;
  written = lines.err() + (lines.out().empty() ? "" : "out: " + lines.out());
  return failed;
}

TEST(Allocation, FailureLeavesATreeAsItWasOrDone) {
  for (const Operation& operation : operations) {
    for (long n = 0;; ++n) {
      ASSERT_LT(n, 1000) << operation.name;
      Setting setting;
      const std::string before = setting.state();
      bool thrown;
      std::string written;
      if (!run_with_failure(operation, setting, n, thrown, written)) {
        EXPECT_EQ(written, "") << operation.name;
        EXPECT_GT(n, 0) << operation.name << " allocates nothing";
        break;
      }
      if (thrown) {
        EXPECT_EQ(written, "") << operation.name << " " << n;
        EXPECT_EQ(setting.state(), before) << operation.name << " " << n;
      } else {
        EXPECT_EQ(written, operation.line) << operation.name << " " << n;
        EXPECT_TRUE(setting.result.empty()) << operation.name << " " << n;
      }
    }
  }
}

TEST(Allocation, FailureInTheParserGivesFalseAndItsLine) {
  for (const bool in_set_html : {false, true}) {
    for (long n = 0;; ++n) {
      ASSERT_LT(n, 10000);
      Setting setting;
      const std::string before = setting.state();
      _qo_html* out = nullptr;
      bool parsed = false;
      const Operation operation = {"parse", [&](Setting& s) {
                                     parsed = in_set_html ? s.p->set_html(every_kind)
                                                          : parseHtml(out, every_kind, long_text, false, false);
                                   }};
      bool thrown;
      std::string written;
      const bool failed = run_with_failure(operation, setting, n, thrown, written);
      const Owned document(out);
      if (!failed) {
        EXPECT_TRUE(parsed && written.empty());
        break;
      }
      // Where a name or an attribute is cut short, the parser says so and goes on.
      const bool goes_on =
          written == "exception in getElementTagName\n" || written == "out: exception in parse attribute\n";
      if (goes_on) {
        _qo_html* const read = in_set_html ? setting.p : document.get();
        EXPECT_TRUE(parsed) << n;
        EXPECT_EQ(broken_links(read), "") << n;
        continue;
      }
      EXPECT_FALSE(parsed) << n << written;
      EXPECT_NE(std::string(parse_lines).find("|" + written + "|"), std::string::npos) << n << written;
      EXPECT_EQ(thrown, written.empty()) << n;
      EXPECT_EQ(setting.state(), before) << n;
    }
  }
}

TEST(Allocation, ParsingCopiesATextOnlyToItsNode) {
  const std::size_t size = 1000000;
  for (const char* frame : {"%", "<b>%</b>", "<!--%-->", "<script>%</script>", "<![CDATA[%]]>", "<b c=\"%\">"}) {
    std::string html = frame;
    html.replace(html.find('%'), 1, std::string(size, 'x'));
    const std::size_t before = bytes_allocated;
    _qo_html* document = nullptr;
    EXPECT_TRUE(parseHtml(document, std::move(html), "", false, false));
    EXPECT_LT(bytes_allocated - before, size + size / 10) << frame;
    delete document;
  }
}

// What was read whole stays, a line tells of it, and the rest of the tag is read as text.
TEST(Allocation, FailureInAnAttributeKeepsThoseBeforeIt) {
  const std::string attributes = " a='1' b='" + std::string(long_text) + "''" + long_text + "' c>";
  const std::string rest = "]{'" + attributes + "x'}";
  std::vector<std::string> seen;
  for (long n = 0;; ++n) {
    std::string html = "<p" + attributes + "x";
    _qo_html* document = nullptr;
    const Lines lines;
    allocations_left = n;
    try {
      parseHtml(document, std::move(html), "", false, false);
    } catch (const std::bad_alloc&) {
    }
    const bool failed = allocations_left < 0;
    allocations_left = -1;
    const Owned owned(document);
    if (!failed) break;
    if (document == nullptr || lines.out().empty()) continue;
    EXPECT_EQ(lines.out() + lines.err(), "exception in parse attribute\n");
    seen.push_back(dump(document));
  }
  // The first attribute fails once, for want of the list's block; after it the value of the second, copied and stored.
  const auto times = [&seen](const std::string& tree) { return std::count(seen.begin(), seen.end(), tree); };
  EXPECT_EQ(times("p{'" + attributes + "x'}"), 1);
  EXPECT_GT(times("p[a='1'" + rest), 1);
}

TEST(Allocation, FailureInFormValuesKeepsWhatWasStored) {
  const std::string form = "<i name='a' value='1'></i><i name='b[]' value='" + std::string(long_text) +
                           "'></i><i name='c[k]' value='3'></i>";
  const std::string b = R"({"a":"1","b":[)", filled = b + '"' + long_text + '"';
  const std::string states[] = {"null", "{}", R"({"a":"1"})", b + "]}", filled + "]}", filled + R"(],"c":{}})"};
  std::ptrdiff_t furthest = 0;
  for (long n = 0;; ++n) {
    ASSERT_LT(n, 1000);
    Setting setting;
    setting.page = parse(form);
    const Operation operation = {"form", [](Setting& s) { s.page->get_form_values(s.values); }};
    bool thrown;
    std::string written;
    const bool failed = run_with_failure(operation, setting, n, thrown, written);
    EXPECT_EQ(thrown, failed);
    if (!failed) break;
    const auto stored = std::find(std::begin(states), std::end(states), compact(setting.values));
    EXPECT_NE(stored, std::end(states)) << n << compact(setting.values);
    EXPECT_GE(stored - states, furthest) << n;
    furthest = std::max(furthest, stored - states);
  }
  EXPECT_GT(furthest, 2);
}

// Reads a page, finds, edits and reads texts: all of it, or std::bad_alloc with nothing left behind.
TEST(Allocation, FailureInAPageThrows) {
  const std::string source = every_kind + "<svg><x-" + long_name + "></svg>";
  const std::string expected = "<" + long_name + " class=\"k\"></" + long_name + ">";
  const Operation operation = {
      "page", [&](Setting& setting) {
        const qo::Page page(source);
        const auto found = page.select(qo::Selector("p:has(> :not(b)) > :nth-child(1 of *)"));
        qo::Edits edits(page);
        edits.add(found, {{qo::Operation::Kind::add_class, "", "k"}, {qo::Operation::Kind::wrap, "", "<i></i>"}});
        const std::string text = page.document().text();
        setting.result = edits.apply().source;
        ASSERT_EQ(page.source(), source);
      }};
  for (long n = 0;; ++n) {
    ASSERT_LT(n, 10000);
    Setting setting;
    const long live = test_host().live;
    bool thrown;
    std::string written;
    const bool failed = run_with_failure(operation, setting, n, thrown, written);
    EXPECT_EQ(test_host().live, live) << n;
    EXPECT_EQ(written, "");
    if (thrown) {
      EXPECT_EQ(setting.result, "-") << n;
      continue;
    }
    EXPECT_NE(setting.result.find("<i>" + expected + "</i>"), std::string::npos);
    if (!failed) break;  // else the work found another way
  }
}

}  // namespace
