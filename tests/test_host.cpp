#include "test_host.h"

#include <stdexcept>

#include <gtest/gtest.h>
#include <json/json.h>

TestHost& test_host() {
  static thread_local TestHost host;
  return host;
}

void qo_object_ref_increment(std::string tag) {
  if (test_host().refusing) throw std::runtime_error("no more nodes");
  ++test_host().live;
  if (test_host().recording) test_host().events.push_back(tag == "[qo_html]" ? "+" : "+ " + tag);
}

void qo_object_ref_decrement(std::string tag) {
  --test_host().live;
  if (test_host().recording) test_host().events.push_back(tag == "[qo_html]" ? "-" : "- " + tag);
}

void qo_assertion_faild(bool condition, std::string text, std::string message, std::string file, int line) {
  if (test_host().recording) {
    EXPECT_GT(line, 0);
    test_host().events.push_back((condition ? "" : "FAILED ") + file + ": " + text + ": " + message);
  }
  if (test_host().thieving) {
    static thread_local std::string stolen;
    static thread_local int way = 0;
    switch (way = (way + 1) % 3) {
      case 0:
        stolen = std::move(text);
        message[0] = '?';
        message += " and more, so that the text has to move";
        file = std::string(file.size(), '?');
        break;
      case 1:
        for (std::string* argument : {&text, &message, &file}) argument->pop_back();
        break;
      default:
        for (std::string* argument : {&text, &message, &file}) *argument += '?';
        break;
    }
  }
}

Owned parse(const std::string& html, bool drop_comments) {
  _qo_html* document = nullptr;
  const bool parsed = parseHtml(document, html, "source", drop_comments, false);
  EXPECT_EQ(parsed, document != nullptr);
  return Owned(document);
}

namespace {

std::string quoted(const std::string& text) {
  std::string out = "'";
  for (const char c : text) {
    if (c == '\n') {
      out += "\\n";
    } else if (c == '\r') {
      out += "\\r";
    } else if (c == '\t') {
      out += "\\t";
    } else {
      out += c;
    }
  }
  return out + "'";
}

std::string attribute_list(const _qo_html* node) {
  std::string out;
  for (const Attribute& attribute : node->attributes) {
    out += (out.empty() ? "" : " ") + attribute.name;
    if (attribute.hasValue != 0) out += "=" + quoted(attribute.value);
  }
  return out.empty() ? out : "[" + out + "]";
}

std::string label(const _qo_html* node) {
  if (node->isText) return quoted(node->text);
  if (node->isComment) return "#comment";
  if (node->isCdata) return "#cdata";
  std::string out = node->tag.empty() ? "#unnamed" : node->tag;
  if (node->isVoid) out += node->isDeclaration ? "!" : "/";
  return out + attribute_list(node);
}

}  // namespace

std::string dump(const _qo_html* top) {
  std::string children;
  for (const _qo_html* child : top->children) children += (children.empty() ? "" : " ") + dump(child);
  const std::string open = top->closed ? "" : "?";
  if (top->isRoot) return children + open;
  return label(top) + (children.empty() ? "" : "{" + children + "}") + open;
}

std::string compact(const Json::Value& value) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "";
  builder["emitUTF8"] = true;
  return Json::writeString(builder, value);
}

std::string broken_links(const _qo_html* top) {
  const _qo_html* previous = nullptr;
  for (const _qo_html* child : top->children) {
    if (child->parent != top) return "parent of " + label(child);
    if (child->prevSibling != previous) return "prevSibling of " + label(child);
    if (previous != nullptr && previous->nextSibling != child) return "nextSibling of " + label(previous);
    if (const std::string below = broken_links(child); !below.empty()) return below;
    previous = child;
  }
  return previous == nullptr || previous->nextSibling == nullptr ? "" : "nextSibling of " + label(previous);
}

namespace {

class NoLiveNodes : public testing::EmptyTestEventListener {
  void OnTestEnd(const testing::TestInfo&) override {
    EXPECT_EQ(test_host().live, 0) << "nodes left behind";
    test_host() = TestHost();
  }
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  // In front of the printer, so that what it finds counts for the test at hand.
  auto& listeners = testing::UnitTest::GetInstance()->listeners();
  auto* printer = listeners.Release(listeners.default_result_printer());
  listeners.Append(new NoLiveNodes);
  listeners.Append(printer);
  return RUN_ALL_TESTS();
}
