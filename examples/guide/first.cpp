#include <iostream>

#include <qo_page/page.h>

int main() {
  const qo::Page page("<p>See <a href=/?a=1&amp;b=2>this</a> or <a href='{{ url }}'>that");
  for (const qo::Node link : page.select("a[href]")) {
    std::cout << *link.attribute("href") << "\t" << link.text() << "\n";
  }
}
