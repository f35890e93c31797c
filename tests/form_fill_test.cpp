// Forms that are filled in send what they were filled with.

#include <qo_page/form_data.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <random>

#include <gtest/gtest.h>
#include <qo_page/edits.h>

namespace {

using Values = std::vector<qo::FieldValues>;

std::string filled(const std::string& html, const Values& values) {
  const qo::Page page(html);
  qo::Edits edits(page);
  for (const auto& [node, operation] : qo::FormControls(page).fill(page.first("form"), values)) {
    edits.add(node, {operation});
  }
  return edits.apply().source;
}

// What the source becomes, or the offset and the reason of a refusal.
std::string filled_or_refused(const std::string& html, const Values& values) {
  try {
    return filled(html, values);
  } catch (const qo::Error& error) {
    return std::to_string(error.offset()) + ": " + error.what();
  }
}

TEST(FormFill, ChangesWhatSendsOtherValues) {
  const struct {
    const char* html;
    Values values;
    const char* filled;
  } rows[] = {
      // Texts.
      {"<form><input name=a>", {{"a", {"x"}}}, "<form><input name=a value=\"x\">"},
      {"<form><input name=a value='1'>", {{"a", {"b'\"&lt;"}}}, "<form><input name=a value='b&#39;\"&amp;lt;'>"},
      {"<form><input type=hidden name=a value=1>", {{"a", {"2"}}}, "<form><input type=hidden name=a value=2>"},
      {"<form><textarea name=a>\nx</textarea>",
       {{"a", {"\n</textarea>\n"}}},
       "<form><textarea name=a>\n\n&lt;/textarea>\n</textarea>"},
      {"<form><input type=date name=a value='{{ a }}'>",
       {{"a", {"{{ b }}"}}},
       "<form><input type=date name=a value='{{ b }}'>"},
      {"<form><input name=a><input name=b><input name=a>",
       {{"a", {"1"}}, {"a", {"2"}}},
       "<form><input name=a value=\"1\"><input name=b><input name=a value=\"2\">"},
      // What has its value stays as it is.
      {"<form><input name=a value='&#x78;'><input type=range name=b><input type=color name=c><select name=d><option>x",
       {{"a", {"x"}}, {"b", {"50"}}, {"c", {"#000000"}}, {"d", {"x"}}},
       "<form><input name=a value='&#x78;'><input type=range name=b><input type=color name=c><select name=d><option>x"},
      {"<form><input type=file name=a><input name=b disabled value=1><input name=b>",
       {{"a", {""}}, {"b", {""}}},
       "<form><input type=file name=a><input name=b disabled value=1><input name=b>"},
      // Checkboxes, by their values and in any order.
      {"<form><input type=checkbox name=a checked='x'>", {{"a", {}}}, "<form><input type=checkbox name=a>"},
      {"<form><input type=checkbox name=a value=1><input type=checkbox name=a value=2 checked><input type=checkbox "
       "name=a value=3>",
       {{"a", {"3", "1"}}},
       "<form><input type=checkbox name=a value=1 checked><input type=checkbox name=a value=2><input type=checkbox "
       "name=a value=3 checked>"},
      {"<form><input type=hidden name=a value=0><input type=checkbox name=a value=1>",
       {{"a", {"1"}}},
       "<form><input type=hidden name=a value=0><input type=checkbox name=a value=1 checked>"},
      {"<form><input type=hidden name=a value=0><input type=checkbox name=a value=1 checked>",
       {{"a", {"0"}}},
       "<form><input type=hidden name=a value=0><input type=checkbox name=a value=1>"},
      // Radio buttons: one of a group.
      {"<form><input type=radio name=a value=1><input type=radio name=a value=2 checked><input type=radio name=a "
       "checked disabled></form><input type=radio name=a checked>",
       {{"a", {"1"}}},
       "<form><input type=radio name=a value=1 checked><input type=radio name=a value=2><input type=radio name=a "
       "disabled></form><input type=radio name=a checked>"},
      {"<form><input type=radio name=a value=1 checked><input type=radio name=a value=2 checked>",
       {{"a", {}}},
       "<form><input type=radio name=a value=1><input type=radio name=a value=2>"},
      {"<form><input type=radio name=a value=1><template><input type=radio name=a value=1 checked></template>",
       {{"a", {"1"}}},
       "<form><input type=radio name=a value=1 checked><template><input type=radio name=a value=1 checked></template>"},
      // Options.
      {"<form><select name=a><option selected>1<option value=2>b<option selected disabled>3</select>",
       {{"a", {"2"}}},
       "<form><select name=a><option>1<option value=2 selected>b<option disabled>3</select>"},
      {"<form><select name=a size=2><option selected>1</select>",
       {{"a", {}}},
       "<form><select name=a size=2><option>1</select>"},
      {"<form><select name=a multiple><option>1<option selected>2<option selected>3</select>",
       {{"a", {"1", "3"}}},
       "<form><select name=a multiple><option selected>1<option>2<option selected>3</select>"},
      {"<form><select name=a><option>1<option>2</select><select name=a><option>1<option>2</select>",
       {{"a", {"2", "1"}}},
       "<form><select name=a><option>1<option selected>2</select><select name=a><option>1<option>2</select>"},
  };
  for (const auto& row : rows) EXPECT_EQ(filled_or_refused(row.html, row.values), row.filled) << row.html;
}

TEST(FormFill, RefusesWhatCannotBeExact) {
  const struct {
    const char* html;
    Values values;
    const char* message;
  } rows[] = {
      {"<p><form>", {{"a\nb", {}}}, "3: the form has no control of the name \"a b\""},
      {"<form><input name=a disabled><input>", {{"a", {"x"}}}, "6: the control \"a\" is disabled"},
      {"<form><fieldset disabled><input name=a>", {{"a", {"x"}}}, "25: the control \"a\" is disabled"},
      {"<form><button name=a>", {{"a", {"x"}}}, "6: the control \"a\" is a button: it is pressed, not filled in"},
      {"<form><input name=a type=file>", {{"a", {"x"}}}, "6: a page cannot say which file to send"},
      {"<form><input name=_charset_ type=hidden>", {{"_charset_", {"x"}}}, "6: the input sends the page's encoding"},
      {"<form><input name=a>", {{"a", {}}}, "6: 0 values for 1 control of the name \"a\""},
      {"<form><select name=a><option>1</select>", {{"a", {"1", "1"}}}, "6: 2 values for 1 control of the name \"a\""},
      {"<form><input name=a type=date>", {{"a", {"x"}}}, "6: an input of the type date does not take \"x\""},
      {"<form><input name=a>", {{"a", {"x\ny"}}}, "6: an input of the type text does not take \"x y\""},
      {"<form><textarea name=a>", {{"a", {"x\ry"}}}, "6: the value \"x y\" cannot be written in a page"},
      {"<form><select name=a><option>1", {{"a", {"2"}}}, "6: the select has no option \"2\""},
      {"<form><select name=a><option disabled>1", {{"a", {"1"}}}, "21: the option \"1\" is disabled"},
      {"<form><select name=a multiple><option disabled>1",
       {{"a", {"1"}}},
       "30: the control of the value \"1\" is disabled"},
      {"<form><input type=radio name=a value=1>",
       {{"a", {"2"}}},
       "6: no control of the name \"a\" has the value \"2\""},
      {"<form><input type=radio name=a disabled><input type=radio name=a value=1>",
       {{"a", {"on"}}},
       "6: the control of the value \"on\" is disabled"},
      {"<form><input type=radio name=a value=1><input type=radio name=a value=2>",
       {{"a", {"1", "2"}}},
       "39: another radio button of the group is checked"},
      {"<form><input type=checkbox name=a>", {{"a", {"on", "on"}}}, "6: the value \"on\" is wanted too often"},
      {"<form><input type=checkbox name=a><input type=checkbox name=a>",
       {{"a", {"on"}}},
       "34: several controls of that name have the value \"on\""},
      {"<form><input name=a><input type=checkbox name=a>",
       {{"a", {"x"}}},
       "20: the controls of the name \"a\" take values in different ways"},
      {"<form><input type=hidden name=a value=0><input name=a>",
       {{"a", {"1", "2"}}},
       "6: a hidden input beside other controls of its name stays as it is"},
  };
  for (const auto& row : rows) EXPECT_EQ(filled_or_refused(row.html, row.values), row.message) << row.html;
  const qo::Page page("<form>"), other("<form>");
  EXPECT_THROW(qo::FormControls(page).fill(other.first("form"), {}), qo::Error);
}

TEST(FormFill, ListsTheControls) {
  const qo::Page page(
      "<form><input name=a value=1><input type=checkbox name=b><fieldset disabled><input type=RADIO name=c value=2 "
      "checked></fieldset><select><option>3</select><select multiple name=d><option selected>4<option selected>5"
      "</select><textarea name=e>6</textarea><button>x</button><button type=reset></button><button command=x value=7>"
      "</button><datalist><input></datalist></form><input type=image form=f>");
  std::string shown;
  for (const qo::FormControl& control : qo::FormControls(page).controls(page.document())) {
    shown += control.name + " " + control.type + (control.is_disabled ? " disabled" : "") +
             (control.is_checked ? " checked" : "");
    for (const std::string& value : control.values) shown += " " + value;
    shown += " " + std::string(control.node.name()) + "\n";
  }
  EXPECT_EQ(shown,
            "a text 1 input\nb checkbox on input\nc radio disabled checked 2 input\n select-one 3 select\n"
            "d select-multiple 4 5 select\ne textarea 6 textarea\n submit  button\n reset button\n button button\n"
            " image input\n");
}

TEST(FormFill, KnowsAllTypes) {
  for (const char* type :
       {"button", "checkbox", "color",    "date",  "datetime-local", "email", "file",   "hidden", "image",
        "month",  "number",   "password", "radio", "range",          "reset", "search", "submit", "tel",
        "text",   "time",     "url",      "week"}) {
    const qo::Page page("<input type='" + std::string(type) + "'><input type='" + type + " '>");
    const std::vector<qo::FormControl> controls = qo::FormControls(page).controls(page.document());
    EXPECT_EQ(controls.at(0).type, type);
    EXPECT_EQ(controls.at(1).type, "text") << type;
  }
}

// --- Random forms ---

class FormMaker {
 public:
  explicit FormMaker(unsigned seed) : random_(seed) {}

  std::size_t below(std::size_t most) { return random_() % most; }

  std::string form() {
    std::string out = "<form>";
    for (std::size_t i = 1 + below(8); i > 0; --i) out += control();
    return out + "</form>";
  }

  const char* one_of(const std::vector<const char*>& texts) { return texts[below(texts.size())]; }

 private:
  std::string control() {
    const std::string name = " name=" + std::string(one_of({"a", "b", "c", "d", "e"}));
    const std::string disabled = one_of({"", "", "", " disabled"});
    const std::string checked = one_of({"", " checked", " checked=x"});
    const std::string value = one_of({"", " value", " value=1", " value='&#49;'", " value='{{ x }}'", " value=\"2'\""});
    switch (below(8)) {
      case 0:
        return "<input type=checkbox" + name + value + checked + disabled + ">";
      case 1:
        return "<input type=radio" + name + value + checked + disabled + ">";
      case 2:
        return "<select" + name + disabled + one_of({"", " multiple", " size=2"}) + ">" + options() + "</select>";
      case 3:
        return "<textarea" + name + disabled + ">" + one_of({"", "\n", "x", "\n\nx&lt;", "{{ x }}"}) + "</textarea>";
      case 4:
        return "<fieldset" + disabled + "><input" + name + value + "></fieldset>";
      case 5:
        return "<template><input type=radio" + name + value + checked + "></template>";
      default:
        return "<input type=" + std::string(one_of({"text", "hidden", "number", "range", "file", "submit"})) + name +
               value + disabled + ">";
    }
  }

  std::string options() {
    std::string out;
    for (std::size_t i = below(4); i > 0; --i) {
      out += "<option" + std::string(one_of({"", "", " selected", " selected=x"})) + one_of({"", "", " disabled"}) +
             one_of({"", " value=1", " value=2"}) + ">" + one_of({"1", "2", " 3 "});
    }
    return out;
  }

  std::mt19937 random_;
};

using ByName = std::map<std::string, std::vector<std::string>>;

ByName by_name(const std::string& html) {
  const qo::Page page(html);
  ByName out;
  for (const qo::FormEntry& entry : qo::FormControls(page).entries(page.first("form"))) {
    out[entry.name].push_back(entry.value);
  }
  return out;
}

Values fields(const ByName& values) {
  Values out;
  for (const auto& [name, all] : values) out.push_back({name, all});
  return out;
}

// A form that is filled with what it sends stays as it is.
TEST(FormFill, LeavesFormsAloneThatSendTheValues) {
  for (unsigned seed = 0; seed < 2000; ++seed) {
    const std::string html = FormMaker(seed).form();
    EXPECT_EQ(filled(html, fields(by_name(html))), html);
  }
}

// The controls of one name, as far as they tell what may be sent.
struct Controls {
  std::string name;
  std::vector<std::string> hidden;  // what hidden inputs send
  bool has_choices = false;         // and any order will do
};

Controls controls_of_some_name(const std::string& html, FormMaker& maker) {
  const qo::Page page(html);
  const std::vector<qo::FormControl> all = qo::FormControls(page).controls(page.first("form"));
  if (all.empty()) return {"a", {}};
  Controls out{all[maker.below(all.size())].name, {}};
  for (const qo::FormControl& control : all) {
    if (control.name != out.name || control.is_disabled) continue;
    if (control.type == "hidden") out.hidden.push_back(control.values.at(0));
    out.has_choices |= control.type == "checkbox" || control.type == "radio" || control.type == "select-multiple";
  }
  return out;
}

// Whether these are the values, in their order where that counts; hidden inputs may send some more.
bool are_values(std::vector<std::string> sent, std::vector<std::string> wanted, const Controls& controls) {
  if (!controls.has_choices && controls.hidden.empty()) return sent == wanted;
  std::vector<std::string> hidden = controls.hidden, more, missing;
  for (auto* list : {&sent, &wanted, &hidden}) std::sort(list->begin(), list->end());
  std::set_difference(sent.begin(), sent.end(), wanted.begin(), wanted.end(), std::back_inserter(more));
  std::set_difference(wanted.begin(), wanted.end(), sent.begin(), sent.end(), std::back_inserter(missing));
  return missing.empty() && std::includes(hidden.begin(), hidden.end(), more.begin(), more.end());
}

// Filled with other values, a form sends these, and for other names what it did, or is refused.
TEST(FormFill, MakesFormsSendTheValues) {
  int filled_forms = 0;
  for (unsigned seed = 0; seed < 4000; ++seed) {
    FormMaker maker(seed);
    const std::string html = maker.form();
    const Controls controls = controls_of_some_name(html, maker);
    std::vector<std::string> values;
    for (std::size_t i = (1 + maker.below(5)) / 2; i > 0; --i) {
      values.push_back(maker.one_of({"1", "2", "2'", "3", "on", "x&lt;\"y", "{{ x }}", "\nz", ""}));
    }
    std::string after;
    try {
      after = filled(html, {{controls.name, values}});
    } catch (const qo::Error&) {
      continue;
    }
    if (after != html) ++filled_forms;
    ByName before = by_name(html), now = by_name(after);
    EXPECT_TRUE(are_values(now[controls.name], values, controls)) << html << "\n" << after;
    now.erase(controls.name);
    before.erase(controls.name);
    EXPECT_EQ(now, before) << html << "\n" << after;
  }
  EXPECT_GT(filled_forms, 500);
}

}  // namespace
