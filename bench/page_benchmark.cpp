#include "page_benchmark.h"

#include <benchmark/benchmark.h>
#include <libxml/HTMLparser.h>
#include <libxml/xpath.h>
#include <malloc.h>

#include <memory>
#include <utility>
#include <vector>

#include <qo_page/edits.h>
#include <qo_page/page.h>
#include <qo_page/selector.h>

namespace {

using benchmark::DoNotOptimize;
using benchmark::State;

template <class Work>
void run(const std::string& name, Work work) {
  benchmark::RegisterBenchmark(name.c_str(), [work](State& state) {
    work(state);
  })->Unit(benchmark::kMillisecond);
}

// --- On real pages ---

// The pages are read before the clock starts.
template <class Work>
void run_on_pages(const std::string& name, const Pages& pages, Work work) {
  run(name, [&pages, work](State& state) {
    std::vector<qo::Page> read;
    for (const std::string& text : pages.texts) read.emplace_back(text);
    for (auto _ : state) {
      for (const qo::Page& page : read) work(page);
    }
  });
}

void run_select(const std::string& name, const Pages& pages, const char* text) {
  run_on_pages(name, pages, [selector = qo::Selector(text)](const qo::Page& page) {
    DoNotOptimize(page.select(selector).size());
  });
}

void run_walk(const std::string& name, const Pages& pages) {
  run_on_pages(name, pages, [](const qo::Page& page) {
    std::size_t count = 0;
    for (const qo::Node node : page.document().descendants()) {
      count += node.kind() == qo::NodeKind::text ? 0 : 1;
    }
    DoNotOptimize(count);
  });
}

void run_xpath(const std::string& name, const Pages& pages, const char* expression) {
  run(name, [&pages, expression](State& state) {
    std::vector<std::unique_ptr<xmlDoc, void (*)(xmlDoc*)>> documents;
    for (const std::string& text : pages.texts) {
      documents.emplace_back(
          htmlReadMemory(text.data(), static_cast<int>(text.size()), "", nullptr,
                         HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_RECOVER),
          xmlFreeDoc);
    }
    xmlXPathCompExpr* const compiled =
        xmlXPathCompile(reinterpret_cast<const xmlChar*>(expression));
    for (auto _ : state) {
      for (const auto& document : documents) {
        xmlXPathContext* const context = xmlXPathNewContext(document.get());
        xmlXPathObject* const found = xmlXPathCompiledEval(compiled, context);
        DoNotOptimize(found);
        xmlXPathFreeObject(found);
        xmlXPathFreeContext(context);
      }
    }
    xmlXPathFreeCompExpr(compiled);
  });
}

// --- At two sizes ---

std::string repeated(const std::string& piece, std::size_t count) {
  std::string out;
  out.reserve(piece.size() * count);
  for (std::size_t i = 0; i < count; ++i) out += piece;
  return out;
}

struct Growth {
  const char* name;
  const char* piece;
  const char* end;
  std::size_t size;      // the number of pieces; a quarter of it is measured as well
  const char* selector;  // null: the page is read
};

constexpr Growth growths[] = {
    {"read_nested", "<div>", "", 1000000, nullptr},
    {"read_unclosed", "<b><p>", "", 500000, nullptr},
    {"read_stray_end_tags", "</x>", "", 1000000, nullptr},
    {"read_openers", "{{", "", 500000, nullptr},
    {"read_attributes", " a{{x}}b=1", ">", 100000, nullptr},
    {"siblings_nth_last_child", "<li>", "", 1000000, "li:nth-last-child(2n)"},
    {"siblings_after_each_other", "<li>", "", 1000000, "li ~ li"},
    {"siblings_has_later", "<li>", "", 1000000, "li:has(~ p)"},
    {"levels_descendants", "<div>", "<p>", 100000, "div div div div p"},
    {"levels_not_has", "<div>", "<p>", 100000, "div:not(:has(b))"},
};

std::string text_of(const Growth& growth, std::size_t size) {
  const bool is_tag = *growth.end == '>';
  return (is_tag ? "<p" : "<div>") + repeated(growth.piece, size) + growth.end;
}

void register_growth(const Growth& growth, std::size_t size) {
  run("growth/" + std::string(growth.name) + "/" + std::to_string(size),
      [&growth, size](State& state) {
        const std::string text = text_of(growth, size);
        if (growth.selector == nullptr) {
          for (auto _ : state) DoNotOptimize(qo::Page(text).node_count());
          return;
        }
        const qo::Page page(text);
        const qo::Selector selector(growth.selector);
        for (auto _ : state) DoNotOptimize(page.select(selector).size());
      });
}

// --- An edit of a large page ---

constexpr std::size_t large_rows = 200000;

// 50 MB, with two cells to edit in each row.
const std::string& large_text() {
  static const std::string text = [] {
    std::string out = "<!DOCTYPE html>\n<table>\n";
    for (std::size_t i = 0; i < large_rows; ++i) {
      const std::string n = std::to_string(i);
      out += "<tr class=\"item\" id=\"r" + n + "\"><td class=\"name\">Item " + n +
             ", with some words on what it is for</td><td class='price'><a href=\"/item/" + n +
             "?a=1&amp;b=2\">4.50</a></td><th>" + std::string(100, 'x') + "</th></tr>\n";
    }
    return out + "</table>\n";
  }();
  return text;
}

void register_large_edit() {
  run("page/edit_large/read", [](State& state) {
    for (auto _ : state) DoNotOptimize(qo::Page(large_text()).node_count());
  });
  run("page/edit_large/qo_page", [](State& state) {
    for (auto _ : state) {
      const qo::Page page(large_text());
      qo::Edits edits(page);
      edits.add(page.select(qo::Selector("td")), {{qo::Operation::Kind::add_class, "", "cell"}});
      DoNotOptimize(edits.apply().source.size());
    }
  });
}

std::size_t heap_in_use() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

}  // namespace

void register_page_benchmarks(const Pages& pages) {
  run("page/read/qo_page", [&pages](State& state) {
    for (auto _ : state) {
      for (const std::string& text : pages.texts) DoNotOptimize(qo::Page(text).node_count());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(pages.bytes));
  });
  run_walk("page/select_a_href/walk", pages);
  run_select("page/select_a_href/qo_page", pages, "a[href]");
  run_xpath("page/select_a_href/libxml2", pages, "//a[@href]");
  run_select("page/select_has/qo_page", pages,
             "div:has(> a[href]):not(.x) > p:nth-child(2n+1 of .y)");
  register_large_edit();
  for (const Growth& growth : growths) {
    register_growth(growth, growth.size / 4);
    register_growth(growth, growth.size);
  }
}

std::size_t heap_of_page(const std::string& text) {
  const std::size_t before = heap_in_use();
  const qo::Page page(text);
  return heap_in_use() - before;
}
