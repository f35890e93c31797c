// How fast the library is, beside libxml2's HTML parser, gumbo and the floor of its own design.
// usage: benchmark PAGES_FOLDER [--warm-heap] [Google Benchmark's options]
//
// A name is work/who or work/text/who. "floor" is what the work cannot do without: for parsing, one
// new and delete of a node-sized object for each node, with its strings and attributes ("record":
// with its child vector and class tokens as well); for searching, a bare walk over the same tree;
// for decoding, a look-up in a hash table.

#include <benchmark/benchmark.h>
#include <gumbo.h>
#include <json/json.h>
#include <libxml/HTMLparser.h>
#include <libxml/HTMLtree.h>
#include <libxml/xpath.h>
#include <malloc.h>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <qo_html/qo_html.h>

#include "page_benchmark.h"
#include "pages.h"

namespace {

using benchmark::DoNotOptimize;
using benchmark::State;

// --- The parsers ---

struct QoHtml {
  using Document = std::unique_ptr<_qo_html>;
  static Document parse(const std::string& text) {
    _qo_html* document = nullptr;
    parseHtml(document, text, "", false, false);
    return Document(document);
  }
};

struct Libxml2 {
  struct Free {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
  };
  using Document = std::unique_ptr<xmlDoc, Free>;
  static Document parse(const std::string& text) {
    return Document(htmlReadMemory(text.data(), static_cast<int>(text.size()), "", nullptr,
                                   HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_RECOVER));
  }
};

void ignore_error(void*, const char*, ...) {}

struct Gumbo {
  struct Free {
    void operator()(GumboOutput* output) const {
      gumbo_destroy_output(&kGumboDefaultOptions, output);
    }
  };
  using Document = std::unique_ptr<GumboOutput, Free>;
  static Document parse(const std::string& text) {
    return Document(gumbo_parse_with_options(&kGumboDefaultOptions, text.data(), text.size()));
  }
};

template <class Parser>
std::vector<typename Parser::Document> parse_all(const Pages& pages) {
  std::vector<typename Parser::Document> documents;
  for (const std::string& text : pages.texts) documents.push_back(Parser::parse(text));
  return documents;
}

// --- The floor of parsing ---

// The record of a node, without its behaviour.
struct BareNode {
  BareNode *parent = nullptr, *next = nullptr, *previous = nullptr;
  std::string text, tag;
  bool flags[7] = {};
  std::string source;
  std::vector<BareNode*> children;
  std::vector<Attribute> attributes;
  std::vector<std::string> classes;
};

template <class Visit>
void walk(_qo_html* node, Visit visit) {
  visit(node);
  for (_qo_html* child : node->children) walk(child, visit);
}

// --- Scattered trees ---

// The node alone, with no child.
std::unique_ptr<_qo_html> copy_of(const _qo_html& node) {
  auto copy = std::make_unique<_qo_html>();
  copy->text = node.text;
  copy->tag = node.tag;
  copy->isComment = node.isComment;
  copy->isText = node.isText;
  copy->isRoot = node.isRoot;
  copy->isCdata = node.isCdata;
  copy->isVoid = node.isVoid;
  copy->isDeclaration = node.isDeclaration;
  copy->attributes = node.attributes;
  copy->classes = node.classes;
  return copy;
}

// The same trees with their nodes anywhere in memory, as after long editing: a parser's nodes lie
// one after the other.
std::vector<QoHtml::Document> scattered(const std::vector<QoHtml::Document>& documents) {
  std::vector<_qo_html*> nodes;
  for (const auto& document : documents) {
    walk(document.get(), [&nodes](_qo_html* node) { nodes.push_back(node); });
  }
  std::vector<_qo_html*> shuffled = nodes;
  std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(1));
  std::unordered_map<const _qo_html*, _qo_html*> copies;
  for (const _qo_html* node : shuffled) copies[node] = copy_of(*node).release();
  for (const _qo_html* node : nodes) {
    for (const _qo_html* child : node->children) copies[node]->add_child(copies[child]);
  }
  std::vector<QoHtml::Document> made;
  for (const auto& document : documents) made.emplace_back(copies[document.get()]);
  return made;
}

// --- Reporting ---

void report(State& state, const Pages& pages) {
  const auto rounds = static_cast<double>(state.iterations());
  state.SetBytesProcessed(static_cast<std::int64_t>(rounds * static_cast<double>(pages.bytes)));
  state.counters["ns_per_node"] =
      benchmark::Counter(rounds * static_cast<double>(pages.nodes) * 1e-9,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

template <class Work>
void run(const std::string& name, const Pages& pages, Work work) {
  benchmark::RegisterBenchmark(name.c_str(), [&pages, work](State& state) {
    work(state);
    report(state, pages);
  })->Unit(benchmark::kMillisecond);
}

// --- The work ---

template <class Parser>
void run_parse(const std::string& name, const Pages& pages) {
  run(name, pages, [&pages](State& state) {
    for (auto _ : state) {
      for (const std::string& text : pages.texts) DoNotOptimize(Parser::parse(text));
    }
  });
}

// With `whole_record`, child vectors and class tokens are made as well.
void run_parse_floor(const std::string& name, const Pages& pages, bool whole_record) {
  run(name, pages, [&pages, whole_record](State& state) {
    const auto documents = parse_all<QoHtml>(pages);
    std::vector<std::vector<_qo_html*>> models;
    for (const auto& document : documents) {
      models.emplace_back();
      walk(document.get(), [&](_qo_html* node) { models.back().push_back(node); });
    }
    std::vector<BareNode*> made;
    for (auto _ : state) {
      for (const auto& model : models) {
        made.clear();
        for (const _qo_html* node : model) {
          auto* bare = new BareNode;
          bare->text = node->text;
          bare->tag = node->tag;
          bare->attributes = node->attributes;
          if (whole_record) {
            bare->classes = node->classes;
            bare->children.reserve(node->children.size());
          }
          made.push_back(bare);
        }
        for (BareNode* bare : made) delete bare;
      }
    }
  });
}

// Runs `work` on every document, all of them parsed before the clock starts.
template <class Parser, class Work>
void run_on_documents(const std::string& name, const Pages& pages, Work work) {
  run(name, pages, [&pages, work](State& state) {
    const auto documents = parse_all<Parser>(pages);
    for (auto _ : state) {
      for (const auto& document : documents) work(document.get());
    }
  });
}

// The number of nodes that a selector finds.
struct Query {
  const char* selector;
  void operator()(_qo_html* document) const {
    DoNotOptimize(qo_html_query(document).find(selector).length());
  }
};

struct WriteOut {
  void operator()(_qo_html* document) const { DoNotOptimize(document->outerHTML()); }
};

void run_xpath(const std::string& name, const Pages& pages, const char* expression) {
  const auto compiled = std::shared_ptr<xmlXPathCompExpr>(
      xmlXPathCompile(reinterpret_cast<const xmlChar*>(expression)), xmlXPathFreeCompExpr);
  run_on_documents<Libxml2>(name, pages, [compiled](xmlDoc* document) {
    xmlXPathContext* const context = xmlXPathNewContext(document);
    xmlXPathObject* const found = xmlXPathCompiledEval(compiled.get(), context);
    DoNotOptimize(found);
    xmlXPathFreeObject(found);
    xmlXPathFreeContext(context);
  });
}

void run_bare_walk(const std::string& name, const Pages& pages) {
  run_on_documents<QoHtml>(name, pages, [](_qo_html* document) {
    std::size_t count = 0;
    walk(document, [&count](_qo_html* node) { count += node->isText ? 0 : 1; });
    DoNotOptimize(count);
  });
}

void register_parsing(const std::string& text, const Pages& pages, bool with_floor) {
  run_parse<QoHtml>("parse/" + text + "/qo_html", pages);
  run_parse<Libxml2>("parse/" + text + "/libxml2", pages);
  run_parse<Gumbo>("parse/" + text + "/gumbo", pages);
  if (!with_floor) return;
  run_parse_floor("parse/" + text + "/floor", pages, false);
  run_parse_floor("parse/" + text + "/record", pages, true);
}

template <class Work>
void run_on_scattered(const std::string& name, const Pages& pages, Work work) {
  run(name, pages, [&pages, work](State& state) {
    const auto documents = scattered(parse_all<QoHtml>(pages));
    for (auto _ : state) {
      for (const auto& document : documents) work(document.get());
    }
  });
}

void register_trees(const Pages& pages) {
  run_on_documents<QoHtml>("serialise/pages/qo_html", pages, WriteOut());
  run_on_documents<Libxml2>("serialise/pages/libxml2", pages, [](xmlDoc* document) {
    xmlChar* text = nullptr;
    int size = 0;
    htmlDocDumpMemoryFormat(document, &text, &size, 0);
    xmlFree(text);
  });
  run_on_documents<QoHtml>("text/pages/qo_html", pages,
                           [](_qo_html* document) { DoNotOptimize(document->textContent()); });
  run_on_documents<Libxml2>("text/pages/libxml2", pages, [](xmlDoc* document) {
    xmlFree(xmlNodeGetContent(reinterpret_cast<xmlNode*>(document)));
  });
  run_on_documents<QoHtml>("find_a_href/pages/qo_html", pages, Query{"a[href]"});
  run_xpath("find_a_href/pages/libxml2", pages, "//a[@href]");
  run_bare_walk("find_a_href/pages/floor", pages);
  run_on_documents<QoHtml>("find_ul_li/pages/qo_html", pages, Query{"ul > li"});
  run_xpath("find_ul_li/pages/libxml2", pages, "//ul/li");
  run_on_documents<QoHtml>("all_elements/pages/qo_html", pages, [](_qo_html* document) {
    std::vector<_qo_html*> found;
    document->getElementsByTagName("*", found, nullptr);
    DoNotOptimize(found.data());
  });
  run_xpath("all_elements/pages/libxml2", pages, "//*");
  run_on_scattered("serialise/scattered/qo_html", pages, WriteOut());
  run_on_scattered("find_a_href/scattered/qo_html", pages, Query{"a[href]"});
}

// --- References and forms ---

const std::vector<std::string>& reference_names() {
  static const std::vector<std::string> names = {"lt",     "gt",    "amp",    "quot", "nbsp",
                                                 "eacute", "mdash", "hellip", "copy", "rarr"};
  return names;
}

const Pages& reference_text() {
  static const Pages pages = [] {
    Pages made;
    std::string text;
    for (int i = 0; i < 10000; ++i) text += "text &" + reference_names()[i % 10] + "; ";
    made.add(text);
    made.nodes = 10000;  // ns_per_node is the time for a reference here
    return made;
  }();
  return pages;
}

void register_references() {
  const Pages& pages = reference_text();
  run("decode/references/qo_html", pages, [&pages](State& state) {
    for (auto _ : state) {
      std::string text = pages.texts[0];
      qo_decode_html_entities(text);
      DoNotOptimize(text.data());
    }
  });
  run("decode/references/floor", pages, [](State& state) {
    std::unordered_map<std::string_view, const char*> table;
    std::vector<std::string> keys;
    for (int i = 0; i < 1898; ++i) keys.push_back("name" + std::to_string(i));
    for (const std::string& key : keys) table[key] = "x";
    for (const std::string& name : reference_names()) table[name] = "x";
    for (auto _ : state) {
      for (int i = 0; i < 10000; ++i) DoNotOptimize(table.find(reference_names()[i % 10]));
    }
  });
}

const Pages& form_page() {
  static const Pages pages = [] {
    Pages made;
    std::string text = "<form>";
    for (int i = 0; i < 1000; ++i) {
      const std::string n = std::to_string(i);
      text += "<input type=\"text\" name=\"a" + n + "\" value=\"Tom &amp; Jerry\"/>";
      text += "<input type=\"checkbox\" name=\"b[]\" value=\"" + n + "\" checked/>";
      text += "<select name=\"c[" + n + "]\"><option value=\"1\">one</option></select>";
    }
    made.add(text + "</form>");
    return made;
  }();
  return pages;
}

void register_forms() {
  run_on_documents<QoHtml>("form_values/form/qo_html", form_page(), [](_qo_html* document) {
    Json::Value values;
    document->get_form_values(values);
    DoNotOptimize(values);
  });
}

// --- Memory ---

std::size_t heap_in_use() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

// What the tree of the largest page takes, beyond its text.
void print_memory(const Pages& pages) {
  const std::string* largest = &pages.texts[0];
  for (const std::string& text : pages.texts) {
    if (text.size() > largest->size()) largest = &text;
  }
  Pages alone;
  alone.add(*largest);
  const std::size_t before = heap_in_use();
  const auto document = QoHtml::parse(*largest);
  const double taken = static_cast<double>(heap_in_use() - before);
  benchmark::AddCustomContext("largest_page_bytes", std::to_string(largest->size()));
  benchmark::AddCustomContext("heap_bytes_per_node",
                              std::to_string(taken / static_cast<double>(alone.nodes)));
  benchmark::AddCustomContext("page_heap_ratio",
                              std::to_string(static_cast<double>(heap_of_page(*largest)) / taken));
}

void use_warm_heap() {
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
  mallopt(M_TOP_PAD, 64 << 20);
  mallopt(M_MMAP_MAX, 0);
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const bool warm = argc == 3 && std::strcmp(argv[2], "--warm-heap") == 0;
  if (argc < 2 || argc > 3 || (argc == 3 && !warm)) {
    std::cerr << "usage: benchmark PAGES_FOLDER [--warm-heap] [options]" << std::endl;
    return 2;
  }
  if (warm) use_warm_heap();
  xmlSetGenericErrorFunc(nullptr, ignore_error);
  std::size_t refused = 0;
  const Pages pages = read_pages(argv[1], refused);
  if (pages.texts.empty()) {
    std::cerr << "benchmark: no pages in " << argv[1] << std::endl;
    return 2;
  }
  benchmark::AddCustomContext("heap", warm ? "warm" : "default");
  benchmark::AddCustomContext("pages", std::to_string(pages.texts.size()));
  benchmark::AddCustomContext("pages_refused", std::to_string(refused));
  benchmark::AddCustomContext("page_bytes", std::to_string(pages.bytes));
  benchmark::AddCustomContext("page_nodes", std::to_string(pages.nodes));
  print_memory(pages);

  register_parsing("pages", pages, true);
  register_trees(pages);
  register_references();
  register_forms();
  register_page_benchmarks(pages);
  std::vector<std::unique_ptr<Pages>> adversarial;
  for (const char* kind : {"deep", "flat", "comments", "ampersands", "attributes"}) {
    adversarial.push_back(std::make_unique<Pages>(adversarial_text(kind)));
    register_parsing(kind, *adversarial.back(), false);
  }
  for (const std::size_t count : {1000, 10000, 100000}) {
    adversarial.push_back(std::make_unique<Pages>());
    adversarial.back()->add(many_attributes(count));
    run_parse<QoHtml>("attributes/" + std::to_string(count) + "/qo_html", *adversarial.back());
  }
  benchmark::RunSpecifiedBenchmarks();
}
