// Prints the values of a page's forms as JSON, one form a line. Reads standard input.

#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>

#include <json/json.h>
#include <qo_html/qo_html.h>

namespace {

int print_forms(std::string page, std::ostream& results) {
  _qo_html* parsed = nullptr;
  if (!parseHtml(parsed, std::move(page), "", true, false)) return 2;
  const std::unique_ptr<_qo_html> document(parsed);

  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  qo_html_query(parsed).find("form").each([&](unsigned long, _qo_html* form) {
    Json::Value values;
    try {
      form->get_form_values(values);
      results << Json::writeString(writer, values) << std::endl;
    } catch (const Json::Exception& error) {
      // One name, used as name="a" and as name="a[]".
      std::cerr << "a form's names contradict each other: " << error.what() << std::endl;
    }
    return true;
  });
  return 0;
}

}  // namespace

int main() {
  std::string page((std::istreambuf_iterator<char>(std::cin)), std::istreambuf_iterator<char>());
  // The library writes diagnostic lines to std::cout: they go to a string, results go around it.
  std::ostringstream lines;
  std::ostream results(std::cout.rdbuf(lines.rdbuf()));
  const int status = print_forms(std::move(page), results);
  std::cout.rdbuf(results.rdbuf());
  if (status != 0) std::cerr << "the page does not parse: " << lines.str() << std::endl;
  return status;
}
