// Character references and form values.

#include <chrono>

#include <gtest/gtest.h>
#include <json/json.h>

#include "test_host.h"

namespace {

std::string decoded(std::string text) {
  qo_decode_html_entities(text);
  return text;
}

TEST(Entities, DecodeInPlace) {
  struct {
    const char *text, *expected;
  } const cases[] = {
      {"", ""},
      {"no reference", "no reference"},
      {"a &lt; b", "a < b"},
      {"&lt;&gt;&quot;&QUOT;&Quot;", "<>\"\"&Quot;"},
      {"&eacute;&EACUTE;", "\xC3\xA9&EACUTE;"},
      {"&CounterClockwiseContourIntegral;", "\xE2\x88\xB3"},
      {"&CounterClockwiseContourIntegralx;", "&CounterClockwiseContourIntegralx;"},
      // what is looked at again
      {"&amp;lt;", "<"},
      {"&amp;amp;", "&"},
      {"&AMP;amp;amp;lt;x", "<x"},
      {"&amp;#39;&amp; &amp;l", "&#39;& &l"},
      {"&am&semi;p;", "&am;p;"},
      {"&l&amp;t;", "&l&t;"},
      // what is none
      {"Tom & Jerry &", "Tom & Jerry &"},
      {"&#39;&#x27;&unknown;&;", "&#39;&#x27;&unknown;&;"},
      {"&lt &gt;", "&lt >"},
      {"&x&lt;&&gt;", "&x<&>"},
      {"&l\nt;&lt\t;", "&l\nt;&lt\t;"},
      {"&lt", "&lt"},
      // replacements of its own
      {"[&nbsp;&Tab;&ThinSpace;&NewLine;]", "[   \r\n]"},
      {"&OverBar;&UnderBar;&race;", "\xC2\xAF\xCC\xB2\xE2\xA7\x9A"},
      {"&epsi;&epsiv;&varepsilon;&epsilon;", "\xCF\xB5\xCE\xB5\xCE\xB5\xCE\xB5"},
      {"&phiv;&varphi;&ohm;&angst;", "\xCF\x86\xCF\x86\xE2\x84\xA6\xE2\x84\xAB"},
      // left out: beyond the basic plane, two characters, and two more
      {"&Afr;&acE;&fjlig;&bsolhsub;&suphsol;", "&Afr;&acE;&fjlig;&bsolhsub;&suphsol;"},
  };
  for (const auto& test : cases) EXPECT_EQ(decoded(test.text), test.expected) << test.text;
  EXPECT_EQ(decoded(std::string("&lt\0;&gt;", 9)), std::string("&lt\0;>", 6));
}

TEST(Entities, TakeTimeThatGrowsWithTheText) {
  const std::size_t count = 2000000;
  std::string references, chain = "&";
  for (std::size_t i = 0; i < count / 4; ++i) references += "&lt;", chain += "amp;";
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(decoded(references), std::string(count / 4, '<'));
  EXPECT_EQ(decoded(chain), "&");
  EXPECT_EQ(decoded(std::string(count, '&')).size(), count);
  EXPECT_EQ(decoded("&" + std::string(count, 'a')).size(), count + 1);
  // Going over the rest of the text once for each of them would take minutes.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST(Form, CollectsControls) {
  struct {
    const char *controls, *json;
  } const cases[] = {
      {"", "{}"},
      {"<input name='a' value='1'/><input name='b'/>", R"({"a":"1","b":""})"},
      {"<input name='a' value='1'/><input name='a' value='2'/>", R"({"a":"2"})"},
      {"<input value='1'/><input name value='2'/><input name='' value='3'/>", "{}"},
      {"<input name='a' value='1' disabled='false'/><input name='b' value='1' disabled/>", "{}"},
      {"<a name='x'></a><button name='y' type='submit' value='go'></button>", R"({"x":"","y":"go"})"},
      {"<textarea name='t'>content</textarea><textarea name='u' value='v'></textarea>", R"({"t":"","u":"v"})"},
      // check boxes and radio buttons
      {"<input type='checkbox' name='a'/><input type='checkbox' name='b' checked/>", R"({"b":"1"})"},
      {"<input type='radio' name='r' value='x' checked/><input type='radio' name='r' value='y'/>", R"({"r":"x"})"},
      {"<input type='radio' name='r' value='x' checked/><input type='radio' name='r' value='y' "
       "checked/>",
       R"({"r":"y"})"},
      {"<input type='checkbox' name='c' value checked/>", R"({"c":""})"},
      {"<input type='CHECKBOX' name='c' value='v'/>", R"({"c":"v"})"},
      // names with brackets
      {"<i name='t[]' value='a b'></i><i name='t[]' value='&lt;'></i>", R"({"t":["a b","&lt;"]})"},
      {"<i name='a[x]' value='1'></i><i name='a[y]' value='2'></i><i name='a[x]' value='3'></i>",
       R"({"a":{"x":"3","y":"2"}})"},
      {"<i name='a[b][c]' value='1'></i><i name='x[y' value='2'></i>", R"({"a":{"b":"1"},"x[y":"2"})"},
      {"<i name='a]b[c]d' value='1'></i><i name='[z]' value='2'></i><i name='[]' value='3'></i>",
       R"({"a]b":{"c":"1"}})"},
      {"<i name='a[]' value='1'></i><i name='a' value='2'></i>", R"({"a":"2"})"},
      // selects
      {"<select name='s'><option value='1'></option><option value='2' selected></option></select>", R"({"s":"1"})"},
      {"<select name='s' value='v'></select><select name='t'><option>x</option></select>", R"({"s":"","t":""})"},
      {"<select name='s' type='x' value='v'><option value='1'></option></select>", R"({"s":"v"})"},
      {"<select name='s' type><optgroup><option value='1'></option></optgroup></select>", R"({"s":"1"})"},
      {"<SELECT name='s'><option value='1'></option></SELECT>", R"({"s":""})"},
      {"<select name='s'></select><option value='1'></option><select name='t'></select>", R"({"s":"","t":""})"},
      {"<p><p><select name='s'></select></p></p><option value='1'></option>", R"({"s":""})"},
      {"<select name='s'><select name='t'></select><option value='1'></option><select name='u'>"
       "<option value='2'></option></select></select>",
       R"({"s":"1","t":"","u":"2"})"},
      {"<select name='s'><select name='t'><option value='1' name='o'></option></select></select>",
       R"({"o":"1","s":"1","t":"1"})"},
      // plain values
      {"<i name='a' value='x-1_y.z,w@V'></i><i name='b' value='John Smith'></i>",
       R"({"a":"x-1_y.z,w@V","b":"<![CDATA[John Smith]]>"})"},
      {"<i name='a' value='Tom &amp; Jerry'></i><i name='b' value='\xC3\xA9'></i>",
       "{\"a\":\"<![CDATA[Tom & Jerry]]>\",\"b\":\"<![CDATA[\xC3\xA9]]>\"}"},
  };
  for (const auto& test : cases) {
    const Owned document = parse("<form name='f'>" + std::string(test.controls) + "</form>");
    Json::Value result(42);
    EXPECT_TRUE(document->children[0]->get_form_values(result));
    EXPECT_EQ(compact(result), test.json) << test.controls;
  }
}

TEST(Form, AddsToAnObject) {
  const Owned document = parse("<i name='a' value='1'></i><i name='b[]' value='2'></i>");
  Json::Value result(Json::objectValue);
  result["a"] = "old";
  result["b"].append("old");
  result["c"] = "old";
  EXPECT_TRUE(document->get_form_values(result));
  EXPECT_EQ(compact(result), R"({"a":"1","b":["old","2"],"c":"old"})");
}

TEST(Form, MixedUseOfANameReachesTheCaller) {
  for (const char* second : {"a[]", "a[k]"}) {
    const Owned document =
        parse(std::string("<i name='a' value='1'></i><i name='") + second + "'></i><i name='z'></i>");
    Json::Value result;
    EXPECT_THROW(document->get_form_values(result), Json::LogicError);
    EXPECT_EQ(compact(result), R"({"a":"1"})");
  }
}

}  // namespace
