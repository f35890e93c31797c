// Nodes: record, lifecycle, editing, attributes, classes.

#include <functional>
#include <stdexcept>

#include <gtest/gtest.h>

#include "test_host.h"

namespace {

using Events = std::vector<std::string>;

const char child_check[] = "src/qo_html/qo_html: child != nullptr: child must not be null bre some";

// <p> of three elements a, b, c, of which b holds d.
struct Family {
  Owned p{qo_html_element_new("p")};
  _qo_html* a = qo_html_element_new("a");
  _qo_html* b = qo_html_element_new("b");
  _qo_html* c = qo_html_element_new("c");
  _qo_html* d = qo_html_element_new("d");
  Family() {
    for (_qo_html* child : {a, b, c}) EXPECT_TRUE(p->add_child(child));
    EXPECT_TRUE(b->add_child(d));
  }
  std::string state() { return dump(p.get()) + broken_links(p.get()); }
};

TEST(Node, FactoriesMarkWhatTheyMake) {
  struct {
    const char* name;
    bool is_void, is_declaration;
  } const cases[] = {{"div", false, false},  {"param", false, false},  {"br/", false, false},
                     {"", false, false},     {"img", true, false},     {"WBR", true, false},
                     {"?xml", true, true},   {"!DOCTYPE", true, true}, {"!doctypes", false, false},
                     {"kEyGeN", true, false}};
  for (const auto& test : cases) {
    const Owned node(qo_html_element_new(test.name));
    EXPECT_EQ(node->isVoid, test.is_void) << test.name;
    EXPECT_EQ(node->isDeclaration, test.is_declaration) << test.name;
    EXPECT_TRUE(node->closed);
    EXPECT_EQ(node->tagName(), test.name);
  }
  const Owned document(qo_html_document_new("where"));
  EXPECT_TRUE(document->isRoot && document->closed);
  EXPECT_EQ(document->source, "where");
  EXPECT_EQ(document->tagName(), "documentRoot");
  document->isText = true;
  EXPECT_EQ(document->tagName(), "textNode");
}

TEST(Node, NextAndPrevSkipText) {
  const Owned document = parse("x<a></a>y z<b></b>w");
  _qo_html* const first = document->get_child_at(0);
  _qo_html* const a = first->next();
  _qo_html* const b = a->next();
  EXPECT_EQ(b->tag, "b");
  EXPECT_EQ(b->next(), nullptr);
  EXPECT_EQ(b->prev(), a);
  EXPECT_EQ(a->prev(), nullptr);
  EXPECT_EQ(document->get_child_at(4)->text, "w");
  EXPECT_EQ(document->get_child_at(5), nullptr);
}

struct Logged : _qo_html {
  Logged(std::string& log, char name) : log_(log), name_(name) {}
  ~Logged() override { log_ += name_; }
  std::string& log_;
  char name_;
};

TEST(Node, DestroysItsSubtreeInDocumentOrder) {
  std::string log;
  Owned top(qo_html_document_new(""));
  for (const char name : {'a', 'b', 'c'}) {
    _qo_html* const branch = qo_html_element_new("x");
    top->add_child(branch);
    branch->add_child(new Logged(log, name));
    branch->add_child(new Logged(log, static_cast<char>(name - 'a' + 'A')));
  }
  top->children.insert(top->children.begin() + 1, nullptr);
  auto* const parent = new Logged(log, 'd');
  top->add_child(parent);
  parent->add_child(new Logged(log, 'D'));
  auto* const detached = new Logged(log, 'e');
  detached->add_child(new Logged(log, 'E'));
  test_host().record();
  top.reset();
  EXPECT_EQ(log, "aAbBcCDd");
  EXPECT_EQ(test_host().take(), Events(12, "-"));
  delete detached;
  EXPECT_EQ(log, "aAbBcCDdeE");
}

TEST(Node, DestroysWhatItListsWhateverTheParentPointersSay) {
  const Owned elsewhere(qo_html_element_new("e"));
  elsewhere->add_child(qo_html_element_new("x"));
  {
    const Family family;
    family.b->parent = elsewhere.get();
  }
  EXPECT_EQ(test_host().live, 2);
  EXPECT_EQ(dump(elsewhere.get()), "e{x}");
}

TEST(Node, WithoutParentTakesTheFollowingSiblingsAlong) {
  std::string log;
  auto* a = new Logged(log, 'a');
  auto* b = new Logged(log, 'b');
  auto* c = new Logged(log, 'c');
  const Owned parent(qo_html_element_new("p"));
  auto* d = new Logged(log, 'd');
  a->nextSibling = b;
  b->nextSibling = c;
  c->nextSibling = d;
  parent->add_child(d);
  d->parent = nullptr;
  c->parent = parent.get();  // the chain goes no further
  delete a;
  EXPECT_EQ(log, "abc");
  d->parent = parent.get();
}

TEST(AddChild, ReportsItsCheckAndRefuses) {
  Family family;
  test_host().record();
  EXPECT_FALSE(family.p->add_child(nullptr));
  EXPECT_EQ(test_host().take(), Events{"FAILED " + std::string(child_check)});
  EXPECT_EQ(family.state(), "p{a b{d} c}");

  const Owned refused(qo_html_element_new("r"));
  family.c->nextSibling = refused.get();
  Lines lines;
  test_host().record();
  EXPECT_FALSE(family.p->add_child(refused.get()));
  EXPECT_EQ(test_host().take(), Events{child_check});
  EXPECT_EQ(lines.out(), "child next is already set before?\n");
  EXPECT_EQ(refused->parent, family.p.get());
  EXPECT_EQ(family.p->children.size(), 3u);
  family.c->nextSibling = nullptr;
}

TEST(Editing, InsertsAroundAReference) {
  using Insert = std::function<bool(Family&, _qo_html*)>;
  struct {
    const char* what;
    Insert insert;
    const char* tree;  // null: refused
  } const cases[] = {
      {"before first", [](Family& f, _qo_html* n) { return f.p->insert_before(n, f.a); }, "p{n a b{d} c}"},
      {"before middle", [](Family& f, _qo_html* n) { return f.p->insert_before(n, f.b); }, "p{a n b{d} c}"},
      {"after middle", [](Family& f, _qo_html* n) { return f.p->insert_after(n, f.b); }, "p{a b{d} n c}"},
      {"after last", [](Family& f, _qo_html* n) { return f.p->insert_after(n, f.c); }, "p{a b{d} c n}"},
      {"two levels down", [](Family& f, _qo_html* n) { return f.p->insert_after(n, f.d); }, "p{a b{d n} c}"},
      {"after itself", [](Family& f, _qo_html* n) { return f.b->insert_after(n, f.b); }, "p{a b{d} n c}"},
      {"before itself", [](Family& f, _qo_html* n) { return f.c->insert_before(n, f.c); }, "p{a b{d} n c}"},
      {"replace", [](Family& f, _qo_html* n) { return f.p->replace_with(f.b, n); }, "p{a n c}"},
      {"replace below", [](Family& f, _qo_html* n) { return f.p->replace_with(f.d, n); }, "p{a b{n} c}"},
      {"replace itself", [](Family& f, _qo_html* n) { return f.a->replace_with(f.a, n); }, "p{n b{d} c}"},
      {"null reference", [](Family& f, _qo_html* n) { return f.p->insert_before(n, nullptr); }, nullptr},
      {"null node", [](Family& f, _qo_html*) { return f.p->insert_after(nullptr, f.a); }, nullptr},
      {"replace null", [](Family& f, _qo_html* n) { return f.p->replace_with(nullptr, n); }, nullptr},
      {"not below", [](Family& f, _qo_html* n) { return f.b->insert_after(n, f.a); }, nullptr},
      {"the root", [](Family& f, _qo_html* n) { return f.p->insert_after(n, f.p.get()); }, nullptr},
      {"replace not below", [](Family& f, _qo_html* n) { return f.a->replace_with(f.c, n); }, nullptr},
  };
  for (const auto& test : cases) {
    Family family;
    Owned node(qo_html_element_new("n"));
    const bool inserted = test.insert(family, node.get());
    EXPECT_EQ(inserted, test.tree != nullptr) << test.what;
    if (inserted) node.release();
    EXPECT_EQ(family.state(), inserted ? test.tree : "p{a b{d} c}") << test.what;
  }
}

TEST(Editing, FindsAReferenceThatOnlyTheChildVectorsKnow) {
  Family family;
  _qo_html elsewhere;
  family.d->parent = &elsewhere;
  _qo_html* const node = qo_html_element_new("n");
  EXPECT_TRUE(family.p->insert_before(node, family.d));
  EXPECT_EQ(dump(family.p.get()), "p{a b{n d} c}");
  // Nor do they all together, where one of those above is not listed.
  family.d->parent = family.b;
  family.p->children.erase(family.p->children.begin() + 1);
  _qo_html lost;
  EXPECT_FALSE(family.p->insert_before(&lost, family.d));
  family.p->children.insert(family.p->children.begin() + 1, family.b);
  // A parent pointer alone does not make a place.
  const Owned stray(qo_html_element_new("s"));
  stray->parent = family.p.get();
  const Owned other(qo_html_element_new("o"));
  for (_qo_html* start : {family.p.get(), stray.get()}) {
    EXPECT_FALSE(start->insert_after(other.get(), stray.get()));
    EXPECT_FALSE(start->insert_before(other.get(), stray.get()));
    EXPECT_FALSE(start->replace_with(stray.get(), other.get()));
  }
  EXPECT_EQ(other->parent, nullptr);
}

TEST(Editing, ReplaceDestroysAWholeSubtree) {
  Family family;
  _qo_html* const node = qo_html_element_new("n");
  test_host().record();
  EXPECT_TRUE(family.p->replace_with(family.b, node));
  EXPECT_EQ(test_host().take(), Events(2, "-"));
}

TEST(Editing, DetachLeavesTheRestLinked) {
  Family family;
  family.b->detach();
  const Owned b(family.b);
  EXPECT_EQ(family.state(), "p{a c}");
  EXPECT_EQ(dump(b.get()), "b{d}");
  EXPECT_TRUE(b->parent == nullptr && b->nextSibling == nullptr && b->prevSibling == nullptr);
}

TEST(SetText, ReplacesTheContent) {
  Family family;
  test_host().record();
  EXPECT_TRUE(family.p->set_text("new"));
  EXPECT_EQ(test_host().take(), (Events{"-", "-", "-", "-", "+", child_check}));
  EXPECT_EQ(family.state(), "p{'new'?}");
  EXPECT_TRUE(family.p->children[0]->set_text("newer"));
  EXPECT_EQ(family.state(), "p{'newer'?}");
  const Owned image(qo_html_element_new("img"));
  EXPECT_FALSE(image->set_text("x"));
  EXPECT_EQ(dump(image.get()), "img/");
}

TEST(SetText, LeavesNoChildrenWhenTheCounterThrows) {
  Family family;
  test_host().refusing = true;
  EXPECT_THROW(family.p->set_text("new"), std::runtime_error);
  test_host().refusing = false;
  EXPECT_EQ(family.state(), "p");
  EXPECT_TRUE(family.p->set_text("newer"));
}

// --- Attributes and classes ---

// The attributes, then " | " and the classes with "," between them.
std::string state(const _qo_html& node) {
  std::string out = dump(&node).substr(1) + " | ";
  for (const std::string& token : node.classes) out += token + ",";
  return out;
}

TEST(Attributes, KeepOrderAndUniqueNames) {
  struct {
    std::function<void(_qo_html&)> run;
    const char* expected;
  } const cases[] = {
      {[](_qo_html& n) { n.addAttribute("a", "1"), n.addAttribute("b"), n.addAttribute("a", "2"); }, "[a='2' b] | "},
      {[](_qo_html& n) { n.addAttribute("a", "1"), n.addAttribute("a"); }, "[a] | "},
      {[](_qo_html& n) { n.addAttribute("a"), n.set_attribute("a", ""); }, "[a=''] | "},
      {[](_qo_html& n) { n.set_attribute("a", "1"), n.set_attribute("A"); }, "[a='1' A] | "},
      {[](_qo_html& n) { n.addAttribute("a"), n.addAttribute("b"), n.addAttribute("c"), n.remove_attribute("b"); },
       "[a c] | "},
      {[](_qo_html& n) { n.remove_attribute("a"); }, " | "},
      {[](_qo_html& n) { n.addAttribute("class", "a  b c"); }, "[class='a  b c'] | a,b,c,"},
      {[](_qo_html& n) { n.addAttribute("class", " a a\t "); }, "[class=' a a\\t '] | a,a\t,"},
      {[](_qo_html& n) { n.addAttribute("class", "a\nb c\r\n"); }, "[class='a\\nb c\\r\\n'] | a\nb,c\r\n,"},
      {[](_qo_html& n) { n.addAttribute("class", ""); }, "[class=''] | "},
      {[](_qo_html& n) { n.addAttribute("class", "x"), n.addAttribute("class", "y"); }, "[class='y'] | x,y,"},
      {[](_qo_html& n) { n.set_attribute("class", "x y"); }, "[class='x y'] | "},
      {[](_qo_html& n) { n.addAttribute("CLASS", "x"); }, "[CLASS='x'] | "},
      {[](_qo_html& n) { n.addAttribute("class", "x"), n.remove_attribute("class"); }, " | x,"},
      {[](_qo_html& n) { n.addAttribute("class", "x"), n.addAttribute("class"); }, "[class] | x,"},
      // add_class and remove_class
      {[](_qo_html& n) { n.add_class("x"); }, "[class='x'] | x,"},
      {[](_qo_html& n) { n.addAttribute("class", "x  y"), n.add_class("y"); }, "[class='x  y'] | x,y,"},
      {[](_qo_html& n) { n.addAttribute("class", "a b c"), n.remove_class("b"); }, "[class='a c'] | a,c,"},
      {[](_qo_html& n) { n.addAttribute("class", "a b a"), n.remove_class("a"); }, "[class='b a'] | b,a,"},
      {[](_qo_html& n) { n.add_class("a"), n.addAttribute("k"), n.remove_class("a"); }, "[k] | "},
      {[](_qo_html& n) { n.set_attribute("class", "p"), n.add_class("q"); }, "[class='q'] | q,"},
      {[](_qo_html& n) { n.addAttribute("class", "x y"), n.remove_class("z"); }, "[class='x y'] | x,y,"},
      {[](_qo_html& n) { n.add_class(""), n.add_class("a"), n.classes.push_back(""), n.add_class("b"); },
       "[class='a  b'] | ,a,,b,"},
      {[](_qo_html& n) { n.addAttribute("class", "x"), n.classes[0] = "", n.remove_class("x"); }, "[class='x'] | ,"},
  };
  for (const auto& test : cases) {
    const Owned node(qo_html_element_new("n"));
    test.run(*node);
    EXPECT_EQ(state(*node), test.expected);
  }
}

TEST(Attributes, LookUpsAreExact) {
  const Owned node(qo_html_element_new("n"));
  node->addAttribute("ID", "upper");
  EXPECT_EQ(node->id(), "");
  node->addAttribute("id", "lower");
  node->addAttribute("bare");
  node->addAttribute("class", "Big");
  EXPECT_EQ(node->id(), "lower");
  EXPECT_TRUE(node->has_attribute("bare"));
  EXPECT_EQ(node->get_attribute("bare"), "");
  EXPECT_FALSE(node->has_attribute("Bare"));
  EXPECT_TRUE(node->has_class("Big"));
  EXPECT_FALSE(node->has_class("big"));
}

}  // namespace
