#include <iostream>

#include <default_host/qo_html_default_host.h>
#include <json/json.h>
#include <qo_html/qo_html.h>

int main() {
  _qo_html* document = nullptr;
  if (!parseHtml(document, "<form><a>x</a><input name=\"n\" value=\"v\"/></form>", "", false, false)) return 1;
  _qo_html* const link = qo_html_query(document).find("form > a").get(0);
  link->set_attribute("href", "/");
  std::cout << link->outerHTML() << ' ';

  Json::Value values;
  document->get_form_values(values);
  Json::StreamWriterBuilder compact;
  compact["indentation"] = "";
  std::cout << Json::writeString(compact, values) << ' ';

  delete document;
  std::cout << qo_object_ref_count("[qo_html]") << std::endl;
}
