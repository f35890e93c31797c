// What a browser sends for forms. tests/form_browser_test.py compares random forms with a browser's.

#include <qo_page/form_data.h>

#include <gtest/gtest.h>

namespace {

// name=value, with commas between them.
std::string shown(const std::vector<qo::FormEntry>& entries) {
  std::string out;
  for (const qo::FormEntry& entry : entries) out += (out.empty() ? "" : ",") + entry.name + "=" + entry.value;
  return out;
}

// What the first element that is found sends.
std::string sent(const std::string& html, const std::string& selector = "form",
                 std::optional<std::string_view> submitter = std::nullopt) {
  const qo::Page page(html);
  return shown(qo::FormControls(page).entries(page.first(selector), submitter));
}

struct Row {
  const char* html;
  const char* sent;
};

TEST(FormData, HasTheControlsOfTheForm) {
  const Row rows[] = {
      // By place: where the browser's parser has seen the form begin and not end.
      {"<form><p><input name=a></form><input name=b>", "a="},
      {"<table><form><tr><td><input name=a></table></form><input name=b>", "a="},
      {"<div><form></div><input name=a></form>", "a="},
      {"<form><div></form><input name=a></div><input name=b>", "a="},
      {"<form><input name=a><form><input name=b></form><input name=c>", "a=,b="},
      {"<form><template><input name=a></template><template></form></template><input name=b></form><input name=c>",
       "b="},
      // By name, which only the first element of that id has, and that only if it is a form.
      {"<form id=f></form><form id=f><input name=a></form><input form=f name=b>", "b="},
      {"<form id='&amp;'><input name=a form></form><input form=& name=b><input form=F name=c>", "b="},
      {"<b id=f></b><form id=f></form><input form=f name=a>", ""},
      {"<form id=f></form><template><input form=f name=a></template>", ""},
      {"<form id=-1></form><input form=-1 name=a><form id='&#45;1'><input form='&#45;1' name=b>", "a=,b="},
      // What is in a template is in no form outside it.
      {"<form id=f><template><form><input name=a></form><input form=f name=b></template><input name=c></form>", "c="},
      // Disabled ones and those of a list.
      {"<form><input name=a disabled=false><input name=b readonly><datalist><input name=c></datalist>", "b="},
      {"<form><fieldset disabled><p><legend><input name=a></legend></p><legend><input name=b><input disabled name=c>"
       "<fieldset disabled><input name=d></fieldset></legend><legend><input name=e></legend></fieldset>",
       "b="},
      {"<form><fieldset disabled><fieldset><legend><input name=a></legend></fieldset></fieldset>", ""},
      // Of other vocabularies, without a name, and what is no control.
      {"<form><svg><input name=a></svg><output name=b>x</output><input value=x><input name='' value=x></form>", ""},
      {"<FORM><INPUT NAME=a VALUE=1><Select Name=b><OPTION>2</Select><TEXTAREA NAME=c>3</TEXTAREA>", "a=1,b=2,c=3"},
  };
  for (const Row& row : rows) EXPECT_EQ(sent(row.html), row.sent) << row.html;
  EXPECT_EQ(sent("<form><template><form><input name=a></form><input name=b></template></form>", "template form"), "a=");
  EXPECT_EQ(sent("<template><form></template><form><input name=a></form>", "template + form"), "a=");
  const std::string templates =
      "<template><form><input type=radio name=a value=1 checked></form></template><form id=o><input type=radio name=a "
      "value=0 checked></form><template><form id=f><input type=radio name=a value=2 checked><template><form "
      "id=g><input "
      "type=radio name=a value=3 checked></form></template></form><input form=f name=b></template>";
  for (const auto& [selector, entries] : {std::pair("form", "a=1"), {"#o", "a=0"}, {"#f", "a=2"}, {"#g", "a=3"}}) {
    EXPECT_EQ(sent(templates, selector), entries) << selector;
  }
  EXPECT_EQ(sent("<table><form></table></form><form id=f><input name=a></form>", "#f"), "a=");
  EXPECT_EQ(sent("<template><b id=f></b></template><input name=a form=f><form id=f></form>"), "a=");
}

TEST(FormData, HasTheCheckedTheSelectedAndThePressed) {
  const Row rows[] = {
      {"<form><input type=checkbox name=a><input type=CHECKBOX name=b checked><input type=checkbox name=c value "
       "checked>",
       "b=on,c="},
      // One of a group: that of a name, and of a form.
      {"<form><input type=radio name=a value=1 checked><input type=radio name=a value=2 checked><input type=radio "
       "name=A "
       "checked>",
       "a=2,A=on"},
      {"<form><input type=radio name=a value=1 checked><input type=radio name=a checked disabled></form>", ""},
      {"<form><input type=radio name=a checked></form><form><input type=radio name=a checked></form>", "a=on"},
      {"<form><input type=radio name=a value=1 checked><template><input type=radio name=a checked></template></form>",
       "a=1"},
      // The option that a select shows.
      {"<form><select name=a><option disabled>1<optgroup disabled><option>2</optgroup><option>3<option>4", "a=3"},
      {"<form><select name=a><option selected>1<option selected>2<option>3", "a=2"},
      {"<form><select name=a><option selected>1<option selected disabled>2", ""},
      {"<form><select name=a size=' +2x'><option>1</select><select name=b size=01><option>1</select><select name=c "
       "size=x><option>1</select><select name=d size=0><option>1",
       "b=1,c=1,d=1"},
      {"<form><select name=a multiple><option>0<option selected>1<option selected disabled>2<optgroup disabled><option "
       "selected>3</optgroup><option selected value>4",
       "a=1,a="},
      {"<form><select name=a><datalist><option>1</datalist><option>  x  <b>y</b>\n z<!-- c --><script>d</script>"
       "<style>s</style>&nbsp; ",
       "a=x y zs\xC2\xA0"},
      // Buttons are sent when they are pressed.
      {"<form><button name=a></button><input type=submit name=b><input type=reset name=c><input type=button name=d>"
       "<input type=image name=e><input type=file name=f value=x>",
       "f="},
  };
  for (const Row& row : rows) EXPECT_EQ(sent(row.html), row.sent) << row.html;

  const std::string form =
      "<form><input name=a><button name=b value=1 disabled></button><button name=b value=2></button>"
      "<button name=b value=3></button><input type=submit name=c><input type=image name=d>"
      "<input type=image><button name=e type=button></button><button name=f commandfor=x></button>"
      "</form><button name=g></button>";
  const struct {
    const char* submitter;
    const char* sent;
  } pressed[] = {{"b", "a=,b=2"},    {"b=3", "a=,b=3"}, {"b=1", "a="}, {"c", "a=,c=Submit"}, {"d", "a=,d.x=0,d.y=0"},
                 {"", "a=,x=0,y=0"}, {"e", "a="},       {"f", "a="},   {"g", "a="}};
  const qo::Page page(form);
  for (const auto& row : pressed) {
    EXPECT_EQ(sent(form, "form", row.submitter), row.sent) << row.submitter;
    EXPECT_EQ(qo::FormControls(page).has_button(page.document().first_child(), row.submitter),
              std::string(row.sent) != "a=");
  }
}

TEST(FormData, HasValuesAsABrowserReadsThem) {
  const Row rows[] = {
      {"<form><input type=hidden name='a&amp;\r\nb' value='x&#13;&#10;\r\ny\rz'>", "a&\nb=x\r\n\ny\nz"},
      {"<form><textarea name=a>\r\n\r\n&lt;b>&#13;</textarea><textarea name=b>&#10;x</textarea>", "a=\n<b>\n,b=x"},
      {"<form><input type=hidden name=_CHARSET_ value=x><input name=_charset_ value=x>", "_CHARSET_=UTF-8,_charset_=x"},
      {"<form><p dir=rtl><input name=a dirname=d><input name=b type=tel dirname=d><input name=c dirname=d dir=auto "
       "value='-&#x5d0;'><input type=number name=e dirname=d></p><textarea name=f dirname=d></textarea><input "
       "dirname=d>",
       "a=,d=rtl,b=,d=ltr,c=-\xD7\x90,d=rtl,e=,f=,d=ltr"},
      // Template code stays, and what has some is not judged.
      {"<form><input name='{{ \"&amp;\" }}&amp;' value='{{ a }}\n'><input type=date name=a value='<?= $d ?>'>",
       "{{ \"&amp;\" }}&={{ a }}\n,a=<?= $d ?>"},
      {"<form><select name=a><option> {{ x   y }}  z <?php if (1) { ?><?= $b ?></select><textarea name=b>{% c %}&lt;"
       "</textarea>",
       "a={{ x   y }} z <?= $b ?>,b={% c %}<"},
  };
  for (const Row& row : rows) EXPECT_EQ(sent(row.html), row.sent) << row.html;
  const qo::Page plain("<form><input type=number name=a value='{{ x }}'>", qo::PageOptions{"plain"});
  EXPECT_EQ(shown(qo::FormControls(plain).entries(plain.document().first_child())), "a=");
}

TEST(FormData, SanitizesValuesByType) {
  const struct {
    const char* type;
    std::vector<std::pair<const char*, const char*>> values;
  } rows[] = {
      {"what", {{" a\nb&#13; ", " ab "}}},
      {"url", {{" a\n b ", "a b"}}},
      {"email", {{" a , b ", "a , b"}}},
      {"email multiple", {{" a , b,, c&#10; ", "a,b,,c"}}},
      {"number",
       {{"-.5", "-.5"},
        {"1e3", "1e3"},
        {"1.", ""},
        {"+1", ""},
        {" 1", ""},
        {"1e999", ""},
        {"1e-999", "1e-999"},
        {"inf", ""},
        {"-", ""},
        {"1x", ""},
        {"-inf", ""}}},
      {"range", {{"", "50"}, {"x", "50"}, {"101", "100"}, {"-1", "0"}, {"33.5", "33.5"}, {"007", "7"}}},
      {"range min=0 step=0.1 max=1", {{"0.33", "0.3"}, {"", "0.5"}, {"0.25", "0.3"}}},
      {"range min=1 step=4 max=10", {{"3", "5"}, {"10", "9"}}},
      {"range min=10 max=5", {{"7", "10"}}},
      {"range min=-10 max=-5", {{"", "-7"}}},
      {"range min=0 step=any max=1e-8", {{"0.0000000015", "1.5e-9"}, {"", "5e-9"}}},
      {"range min=0 step=7 max=1000", {{"1", "0"}, {"4", "7"}, {"1000", "994"}}},
      {"range min=0 step=-1 max=9", {{"1.5", "2"}}},
      {"range max=1e30", {{"1e25", "1e25"}}},
      {"date",
       {{"2024-02-29", "2024-02-29"},
        {"2023-02-29", ""},
        {"1900-02-29", ""},
        {"2000-02-29", "2000-02-29"},
        {"0000-01-01", ""},
        {"2024-1-01", ""},
        {"2024-01-00", ""},
        {"275760-09-13", "275760-09-13"},
        {"275760-09-14", ""},
        {"99999999999-01-01", ""},
        {"2024-01-01 ", ""}}},
      {"month", {{"2024-12", "2024-12"}, {"2024-13", ""}, {"275760-10", ""}}},
      {"week",
       {{"2020-W53", "2020-W53"}, {"2021-W53", ""}, {"2026-W53", "2026-W53"}, {"2024-W00", ""}, {"2024-w01", ""}}},
      {"time",
       {{"23:59:59.999", "23:59:59.999"}, {"24:00", ""}, {"12:34:", ""}, {"12:34:56.", ""}, {"12:34:56.7890", ""}}},
      {"datetime-local",
       {{"2024-02-29 12:34:00.000", "2024-02-29T12:34"},
        {"02024-01-01T12:34:00.500", "2024-01-01T12:34:00.5"},
        {"2024-01-01t12:34", ""},
        {"275760-09-13T00:01", ""},
        {"0001-01-01T00:00", "0001-01-01T00:00"},
        {"2024-01-01T", ""}}},
      {"color", {{"#aBc", "#aabbcc"}, {" #AABBCCDD ", "#aabbcc"}, {"#12345", "#000000"}, {"", "#000000"}}},
  };
  for (const auto& row : rows) {
    for (const auto& [value, expected] : row.values) {
      EXPECT_EQ(sent("<form><input name=a value='" + std::string(value) + "' type=" + row.type + ">"),
                "a=" + std::string(expected))
          << row.type << " " << value;
    }
  }
}

TEST(FormData, OfOtherElementsIsThatOfWhatIsBelowThem) {
  const std::string html =
      "<p><input name=a><input form=f name=b></p><form id=f><input type=radio name=r value=1 checked>"
      "<input type=radio name=r value=2 checked></form><template><input name=c></template>";
  const Row rows[] = {{"p", "a=,b="}, {"#f", "b=,r=2"}, {"template", "c="}, {"input", ""}};
  for (const Row& row : rows) EXPECT_EQ(sent(html, row.html), row.sent) << row.html;
  const qo::Page page(html);
  EXPECT_EQ(shown(qo::FormControls(page).entries(page.document())), "a=,b=,r=2");
}

TEST(FormData, IsUrlencoded) {
  EXPECT_EQ(qo::urlencoded({{"a b", "\xC3\xBC+&=%~"}, {"*-._9Z", "\r\n\n\r"}, {"", ""}}),
            "a+b=%C3%BC%2B%26%3D%25%7E&*-._9Z=%0D%0A%0D%0A%0D%0A&=");
  EXPECT_EQ(qo::urlencoded({}), "");
}

}  // namespace
