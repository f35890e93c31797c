// Prints the values of a page's forms as JSON, one form a line. Reads standard input.

#include <iostream>
#include <iterator>
#include <memory>
#include <string>

#include <json/json.h>
#include <qo_html/qo_html.h>

int main() {
  std::string text((std::istreambuf_iterator<char>(std::cin)), std::istreambuf_iterator<char>());
  _qo_html* parsed = nullptr;
  if (!parseHtml(parsed, std::move(text), "", true, false)) return 2;
  const std::unique_ptr<_qo_html> document(parsed);

  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  qo_html_query(parsed).find("form").each([&](unsigned long, _qo_html* form) {
    Json::Value values;
    try {
      form->get_form_values(values);
      std::cout << Json::writeString(writer, values) << std::endl;
    } catch (const Json::Exception& error) {
      // One name, used as name="a" and as name="a[]".
      std::cerr << "a form's names contradict each other: " << error.what() << std::endl;
    }
    return true;
  });
}
