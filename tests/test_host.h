// The host that the tests run in, and what they look at a tree with.

#ifndef QO_HTML_TESTS_TEST_HOST_H
#define QO_HTML_TESTS_TEST_HOST_H

#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <qo_html/qo_html.h>
#include <qo_html/qo_html_host.h>

namespace Json {
class Value;
}

// What the library asked of its host. After every test the number of live nodes must be 0.
struct TestHost {
  long live = 0;
  bool recording = false;
  bool thieving = false;            // moves the arguments of checks away, and scribbles on what is left
  bool refusing = false;            // throws instead of counting up
  std::vector<std::string> events;  // "+", "-" and "file: text: message", failed checks with "FAILED " in front

  // Starts afresh and records until the result is taken.
  void record() {
    events.clear();
    recording = true;
  }
  std::vector<std::string> take() {
    recording = false;
    return std::move(events);
  }
};

TestHost& test_host();  // of this thread

// Catches the diagnostic lines of its lifetime.
class Lines {
 public:
  Lines() : former_out_(std::cout.rdbuf(out_.rdbuf())), former_err_(std::cerr.rdbuf(err_.rdbuf())) {}
  ~Lines() {
    std::cout.rdbuf(former_out_);
    std::cerr.rdbuf(former_err_);
  }
  std::string out() const { return out_.str(); }
  std::string err() const { return err_.str(); }

 private:
  std::ostringstream out_, err_;
  std::streambuf* former_out_;
  std::streambuf* former_err_;
};

using Owned = std::unique_ptr<_qo_html>;

// The parsed document; null when the text is refused.
Owned parse(const std::string& html, bool drop_comments = false);

// A subtree in one line: 'text', tag[name='value' bare]{children}, void/, #comment{...},
// #cdata{...}; a document is the list of its children. A node that is not closed has a "?" after
// it.
std::string dump(const _qo_html* top);

// On one line.
std::string compact(const Json::Value& value);

// What is wrong with the links below `top`; empty when nothing is.
std::string broken_links(const _qo_html* top);

#endif
