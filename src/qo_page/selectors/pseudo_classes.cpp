#include <qo_page/selectors/pseudo_classes.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace qo::selectors {

namespace {

template <class T>
struct Named {
  std::string_view name;
  T meaning;
};

constexpr Named<Fact> facts[] = {
    {"root", Fact::root},
    {"scope", Fact::scope},
    {"empty", Fact::empty},
    {"comment", Fact::comment},
    {"-qo-html", Fact::html},
    {"-qo-textless", Fact::textless},
    {"-qo-default-button", Fact::default_button},
};

constexpr Named<Function> functions[] = {
    {"is", Function::any},
    {"where", Function::any},
    {"not", Function::negation},
    {"has", Function::has},
    {"nth-child", Function::nth_child},
    {"nth-last-child", Function::nth_last_child},
    {"nth-of-type", Function::nth_of_type},
    {"nth-last-of-type", Function::nth_last_of_type},
    {"contains", Function::contains},
    {"contains-own", Function::contains_own},
    {"matches", Function::matches},
    {"lang", Function::language},
    {"dir", Function::direction},
    {"-qo-nearest", Function::nearest},
};

// A fieldset disables what is in it, but for what is in its first legend;
// an optgroup or a select, its options.
constexpr Named<std::string_view> definitions[] = {
    {"first-child", ":nth-child(1)"},
    {"last-child", ":nth-last-child(1)"},
    {"only-child", ":nth-child(1):nth-last-child(1)"},
    {"first-of-type", ":nth-of-type(1)"},
    {"last-of-type", ":nth-last-of-type(1)"},
    {"only-of-type", ":nth-of-type(1):nth-last-of-type(1)"},
    {"any-link", ":is(a, area)[href], a[xlink\\:href]:not(:-qo-html)"},
    {"link", ":any-link"},
    {"checked", ":-qo-html:is(input:is([type=checkbox], [type=radio])[checked], option[selected])"},
    {"default", ":checked, :-qo-default-button"},
    {"-qo-disabled-control",
     ":-qo-html:is(:is(button, input, select, textarea, fieldset)[disabled],"
     "fieldset[disabled] > :is(button, input, select, textarea, fieldset),"
     "fieldset[disabled] > :not(legend:first-of-type)"
     " :is(button, input, select, textarea, fieldset))"},
    {"disabled",
     ":-qo-disabled-control, :-qo-html:is(:is(optgroup, option)[disabled],"
     "optgroup[disabled] option, select:-qo-disabled-control :is(optgroup, option))"},
    {"enabled",
     ":-qo-html:is(button, input, select, textarea, fieldset, optgroup, option):not(:disabled)"},
    {"required",
     ":-qo-html:is(select, textarea, input:not([type=hidden], [type=range], [type=color],"
     "[type=submit], [type=image], [type=reset], [type=button]))[required]"},
    {"optional", ":-qo-html:is(button, input, select, textarea):not(:required)"},
    {"read-write",
     ":-qo-html:is(textarea, input:not([type=hidden], [type=range], [type=color], [type=checkbox],"
     "[type=radio], [type=file], [type=submit], [type=image], [type=reset], [type=button]))"
     ":not([readonly], :disabled),"
     ":-qo-html:not(input, textarea):-qo-nearest(:-qo-html:is([contenteditable=''],"
     "[contenteditable=true i], [contenteditable=plaintext-only i], [contenteditable=false i]),"
     ":not([contenteditable=false i]))"},
    {"read-only", ":-qo-html:not(:read-write)"},
    {"placeholder-shown",
     ":-qo-html[placeholder]:is(textarea:-qo-textless,"
     "input:not([type=hidden], [type=range], [type=color], [type=checkbox], [type=radio],"
     "[type=file], [type=submit], [type=image], [type=reset], [type=button], [type=date],"
     "[type=month], [type=week], [type=time], [type=datetime-local]):is([value=''], "
     ":not([value])))"},
};

struct Reason {
  std::string_view text;
  std::string_view names;  // with a blank before and after each
};

constexpr Reason reasons[] = {
    {"asks for what a visitor does, which no source tells",
     " hover active focus focus-within focus-visible visited target target-within local-link "
     "current past future playing paused seeking buffering stalled muted volume-locked fullscreen "
     "modal picture-in-picture popover-open open autofill valid invalid user-valid user-invalid "
     "in-range out-of-range indeterminate blank active-view-transition "},
    {"asks for what scripts make, which no source tells",
     " defined host host-context has-slotted state "},
    {"is a pseudo-element, which is no node of a page", " before after first-line first-letter "},
};

template <class Table>
auto find(const Table& table, std::string_view name) {
  return std::find_if(std::begin(table), std::end(table),
                      [name](const auto& row) { return row.name == name; });
}

template <class T, std::size_t count>
std::optional<T> meaning(const Named<T> (&table)[count], std::string_view name) {
  const auto* row = find(table, name);
  return row == std::end(table) ? std::nullopt : std::optional<T>(row->meaning);
}

constexpr std::size_t longest_name = 40;
constexpr std::size_t furthest = 3;  // names that differ more are no typing errors

// The number of characters to insert, delete, change or swap that leads from one to the other.
std::size_t distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> before, last, now(b.size() + 1);
  std::iota(now.begin(), now.end(), 0);
  for (std::size_t i = 1; i <= a.size(); ++i) {
    before = std::exchange(last, now);
    now[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const bool same = a[i - 1] == b[j - 1];
      now[j] = std::min({last[j] + 1, now[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
      const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (swapped) now[j] = std::min(now[j], before[j - 2] + 1);
    }
  }
  return now[b.size()];
}

bool is_private(std::string_view name) {
  return name.front() == '-';
}

}  // namespace

std::optional<Fact> find_fact(std::string_view name) {
  return meaning(facts, name);
}

std::optional<Function> find_function(std::string_view name) {
  return meaning(functions, name);
}

std::string_view find_definition(std::string_view name) {
  return meaning(definitions, name).value_or(std::string_view());
}

std::string reason_against(std::string_view name) {
  const std::string word = " " + std::string(name) + " ";
  for (const Reason& reason : reasons) {
    if (reason.names.find(word) != std::string_view::npos) return std::string(reason.text);
  }
  return "";
}

std::string nearest_name(std::string_view name) {
  if (name.size() > longest_name) return "";
  std::size_t best = std::min(furthest, name.size());
  std::string_view nearest;
  const auto consider = [&](const auto& table) {
    for (const auto& row : table) {
      if (is_private(row.name)) continue;
      const std::size_t far = distance(name, row.name);
      if (far >= best) continue;
      best = far;
      nearest = row.name;
    }
  };
  consider(definitions);
  consider(facts);
  consider(functions);
  return nearest.empty() ? "" : ":" + std::string(nearest);
}

}  // namespace qo::selectors
