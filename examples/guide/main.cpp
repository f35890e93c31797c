// What the guide shows: each function is a job that programs have with pages.
// usage: guide PAGE

#include <fstream>
#include <future>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <qo_page/edits.h>
#include <qo_page/form_data.h>
#include <qo_page/line_index.h>
#include <qo_page/page.h>
#include <qo_page/selector.h>
#include <qo_page/tables.h>

namespace {

// --- Reading ---

qo::Page read(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw qo::Error("cannot read " + path);
  std::string source(std::istreambuf_iterator<char>(file), {});
  qo::PageOptions options;
  options.dialect = qo::dialect_of(path, source);
  return qo::Page(std::move(source), options);
}

// --- Walking ---

// Every element's name, two blanks in front of it for each level.
void print_outline(const qo::Page& page) {
  std::vector<std::size_t> ends;  // of the elements around
  for (const qo::Node node : page.document().descendants()) {
    if (!node.is_element()) continue;
    while (!ends.empty() && ends.back() <= node.extent().begin) ends.pop_back();
    std::cout << std::string(2 * ends.size(), ' ') << node.name() << "\n";
    ends.push_back(node.extent().end);
  }
}

void print_attributes(qo::Node element) {
  for (const qo::Attribute attribute : element.attributes()) {
    std::cout << attribute.name() << " is " << attribute.value() << ", written "
              << attribute.value(qo::TextForm::written) << "\n";
  }
}

// --- Selecting ---

struct Rule {
  qo::Selector selector;
  const char* complaint;
};

// A line for each fault, as compilers print them. Gives how many there are.
std::size_t lint(const std::string& name, const qo::Page& page, const std::vector<Rule>& rules) {
  const qo::LineIndex lines(page.source());
  std::size_t faults = 0;
  for (const Rule& rule : rules) {
    for (const qo::Node node : page.select(rule.selector)) {
      const qo::Position place = lines.position(node.extent().begin);
      std::cout << name << ":" << place.line << ":" << place.column << ": " << rule.complaint
                << "\n";
      ++faults;
    }
  }
  return faults;
}

// --- Editing ---

std::string modernized(const qo::Page& page) {
  qo::Edits edits(page);
  edits.add(page.select("center"), {qo::rename("div"), qo::add_class("centered")});
  edits.add(page.select("a[target=_blank]:not([rel])"), {qo::set_attribute("rel", "noopener")});
  edits.add(page.select("img:not([alt])"), {qo::set_attribute("alt", "")});
  return edits.apply().source;
}

void print_changes(const qo::Page& page) {
  qo::Edits edits(page);
  edits.add(page.first("title"), {qo::set_text("Timetable")});
  const qo::EditedSource edited = edits.apply();
  for (const qo::Change& change : edited.changes) {
    std::cout << page.position_of(change.old_begin).line << ": "
              << page.source().substr(change.old_begin, change.old_end - change.old_begin)
              << " became "
              << edited.source.substr(change.new_begin, change.new_end - change.new_begin) << "\n";
  }
}

// The text comes from a user: what looks like template code in it is refused, not kept.
std::string with_title(const qo::Page& page, const std::string& text) {
  qo::Edits edits(page, qo::CodeInText::refuse);
  edits.add(page.first("title"), {qo::set_text(text)});
  return edits.apply().source;
}

qo::Page without_comments(const qo::Page& page) {
  qo::Edits edits(page);
  edits.add(page.select(":comment"), {qo::remove()});
  return edits.apply_to_page().page;
}

// --- Tables ---

std::vector<std::vector<std::string>> rows_of(qo::Node element) {
  const qo::Table table(element);
  std::vector<std::vector<std::string>> rows;
  for (std::size_t row = table.header_rows(); row < table.rows(); ++row) {
    rows.emplace_back();
    for (std::size_t column = 0; column < table.columns(); ++column) {
      rows.back().push_back(table.text(row, column));
    }
  }
  return rows;
}

// --- Forms ---

std::string filled_in(const qo::Page& page) {
  const qo::FormControls controls(page);
  const std::vector<qo::FieldValues> wanted = {{"to", {"Cape"}}, {"extra", {"bike", "dog"}}};
  qo::Edits edits(page);
  for (const auto& [node, operation] : controls.fill(page.first("form"), wanted)) {
    edits.add(node, {operation});
  }
  return edits.apply().source;
}

std::string sent_by(const qo::Page& page) {
  return qo::urlencoded(qo::FormControls(page).entries(page.first("form")));
}

// --- Errors ---

void print_what_is_refused(const qo::Page& page) {
  try {
    page.select("a[href");
  } catch (const qo::SelectorError& error) {
    std::cout << error.what() << "\n" << error.shown() << "\n";
  }
  try {
    qo::Edits edits(page);
    edits.add(page.first("a"), {qo::insert_after("<i>")});
    edits.apply();
  } catch (const qo::EditError& error) {
    std::cout << "line " << page.position_of(error.offset()).line << ", <" << error.node().name()
              << ">: " << error.what() << "\n";
  }
}

// --- Threads ---

// How many links each page has: the pages are looked at in parallel, with one selector.
std::vector<std::size_t> count_links(const std::vector<qo::Page>& pages) {
  const qo::Selector links("a[href]");
  std::vector<std::future<std::size_t>> tasks;
  for (const qo::Page& page : pages) {
    tasks.push_back(std::async(std::launch::async, [&] { return page.select(links).size(); }));
  }
  std::vector<std::size_t> counts;
  for (std::future<std::size_t>& task : tasks) counts.push_back(task.get());
  return counts;
}

void run(const std::string& path) {
  const qo::Page page = read(path);
  const std::string name = path.substr(path.rfind('/') + 1);

  print_outline(page);
  print_attributes(page.first("a"));

  const std::vector<Rule> rules = {{qo::Selector("img:not([alt])"), "an image without a text"},
                                   {qo::Selector("center, font"), "markup for looks"}};
  const std::size_t faults = lint(name, page, rules);
  std::cout << faults << " faults\n";

  std::cout << modernized(page);
  print_changes(page);
  std::cout << with_title(page, "Ferries & more").substr(0, 45) << "\n";
  try {
    with_title(page, "{{ secret }}");
  } catch (const qo::Error& error) {
    std::cout << error.what() << "\n";
  }

  for (const std::vector<std::string>& row : rows_of(page.first("table"))) {
    for (const std::string& cell : row) std::cout << "| " << cell << " ";
    std::cout << "|\n";
  }

  std::cout << sent_by(page) << "\n";
  std::cout << sent_by(qo::Page(filled_in(page))) << "\n";

  print_what_is_refused(page);

  std::vector<qo::Page> pages;
  pages.push_back(without_comments(page));
  pages.push_back(read(path));
  for (const std::size_t count : count_links(pages)) std::cout << count << " link\n";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: guide PAGE" << std::endl;
    return 2;
  }
  try {
    run(argv[1]);
  } catch (const qo::Error& error) {
    std::cerr << error.what() << std::endl;
    return 1;
  }
}
