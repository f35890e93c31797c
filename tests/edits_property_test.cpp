// Several edits at once give what they give one after the other, on random pages.

#include <qo_page/edits.h>

#include <map>
#include <random>

#include <gtest/gtest.h>

#include "page_dump.h"

namespace {

using Kind = qo::Operation::Kind;
using Random = std::mt19937;

const std::string& pick(Random& random, const std::vector<std::string>& all) { return all[random() % all.size()]; }

// "@" stands for a number that is in the page once: it tells a node again in an edited page.
std::string random_page(Random& random) {
  static const std::vector<std::string> pieces = {
      "<div k=@>", "<div k=@>", "</div>",   "<p k=@>",   "<p k=@>",        "</p>",  "<b k=@>",        "</b>",
      "<ul k=@>",  "<li k=@>",  "</ul>",    "<br k=@>",  "<i k=@>",        "</i>",  "<textarea k=@>", "</textarea>",
      "<svg k=@>", "</svg>",    "<g k=@/>", "<!--a@-->", "<![CDATA[a@]]>", "<?@?>", "{% if @ %}",     "{% endif %}",
      "a@",        "a@",        "&amp;",    "&lt",       "{{ @ }}",        "\n",    "<pre k=@>",      "<h@ k=@></h@>"};
  std::string page;
  for (unsigned number = 100, end = number + 4 + random() % 16; number < end; ++number) {
    std::string piece = pick(random, pieces);
    for (std::size_t at; (at = piece.find('@')) != piece.npos;) piece.replace(at, 1, std::to_string(number));
    page += piece;
  }
  return page;
}

// What tells a node from all others; empty where nothing does.
std::string key_of(qo::Node node) {
  switch (node.kind()) {
    case qo::NodeKind::element:
      return node.attribute("k").value_or("");
    case qo::NodeKind::comment:
    case qo::NodeKind::cdata:
    case qo::NodeKind::code: {
      const std::size_t begin = node.html().find_first_of("123456789");
      return begin == std::string_view::npos ? "" : std::string(node.html().substr(begin, 3));
    }
    default:
      return "";
  }
}

std::map<std::string, qo::Node> nodes_by_key(const qo::Page& page) {
  std::map<std::string, qo::Node> nodes;
  for (const qo::Node node : page.document().descendants()) {
    if (const std::string key = key_of(node); !key.empty()) nodes[key] = node;
  }
  return nodes;
}

qo::Operation random_operation(Random& random) {
  static const std::vector<std::string> markup = {"x",    "<u>y</u>", "<p>z</p>", "",
                                                  "<br>", "{{ v }}",  "&gt;",     "w<s></s>"};
  const std::string& value = pick(random, markup);
  switch (const auto kind = static_cast<Kind>(random() % (static_cast<unsigned>(Kind::remove) + 1))) {
    case Kind::set_attribute:
      return {kind, random() % 2 == 0 ? "t" : "u", value + "'"};
    case Kind::set_bare_attribute:
    case Kind::remove_attribute:
      return {kind, random() % 2 == 0 ? "t" : "u", ""};
    case Kind::add_class:
    case Kind::remove_class:
      return {kind, "", random() % 2 == 0 ? "c" : "d"};
    case Kind::add_token:
    case Kind::remove_token:
      return {kind, "t", random() % 2 == 0 ? "c" : "1"};
    case Kind::rename:
      return {kind, pick(random, {"div", "em", "x-y"}), ""};
    case Kind::substitute_value:
      return {kind, "t", "", qo::Substitution("[xv]", "&")};
    case Kind::substitute_text:
      return {kind, "", "", qo::Substitution("a(?=1)", "<&")};
    case Kind::wrap:
      return {kind, "", pick(random, {"<div></div>", "<u>q<s></s></u>"})};
    case Kind::unwrap:
    case Kind::remove:
      return {kind, "", ""};
    case Kind::substitute_html:  // what these give depends on the order
    case Kind::move_before:
    case Kind::move_after:
    case Kind::move_into:
    case Kind::remove_line:
      return random_operation(random);
    default:
      return {kind, "", value};
  }
}

struct Edit {
  std::string key;
  qo::Operation operation;
};

// A substitution is of the texts that are there, and what takes a node away comes last.
int turn(const Edit& edit) {
  switch (edit.operation.kind) {
    case Kind::substitute_text:
      return 0;
    case Kind::set_text:
    case Kind::set_html:
      return 1;
    case Kind::unwrap:
    case Kind::replace:
    case Kind::remove:
      return 3;
    default:
      return 2;
  }
}

std::string shown(const qo::Page& page, const std::vector<Edit>& edits) {
  std::string out = page.source();
  for (const auto& [key, operation] : edits) {
    out += "\n  " + key + ": kind " + std::to_string(static_cast<int>(operation.kind)) + " " + operation.name + " '" +
           operation.value + "'";
  }
  return out;
}

// The innermost nodes around each that are in another page as well.
std::map<std::string, std::string> holders(const qo::Page& page, const std::map<std::string, qo::Node>& wanted) {
  std::map<std::string, std::string> found;
  for (const auto& [key, node] : nodes_by_key(page)) {
    if (wanted.count(key) == 0) continue;
    std::string& holder = found[key];
    for (const qo::Node around : node.ancestors()) {
      if (wanted.count(holder = key_of(around)) != 0) break;
      holder.clear();
    }
  }
  return found;
}

bool fits(const qo::Page& page, qo::Node node, const qo::Operation& operation) {
  try {
    qo::Edits(page).add(node, {operation});
    return true;
  } catch (const qo::EditError& error) {
    EXPECT_EQ(error.node(), node);
    return false;
  }
}

struct Result {
  std::optional<std::string> source;
  std::string refusal;
};

Result all_at_once(const qo::Page& page, const std::vector<Edit>& edits) {
  const auto nodes = nodes_by_key(page);
  try {
    qo::Edits together(page);
    for (const Edit& edit : edits) together.add(nodes.at(edit.key), {edit.operation});
    const qo::EditedPage edited = together.apply_to_page();
    EXPECT_EQ(together.apply().source, edited.page.source());
    const qo::Page again(edited.page.source());
    EXPECT_EQ(dump(edited.page.document()), dump(again.document()));
    const auto left = nodes_by_key(again);
    EXPECT_EQ(holders(page, left), holders(again, left)) << shown(page, edits);
    return {edited.page.source(), ""};
  } catch (const qo::EditError& error) {
    EXPECT_TRUE(error.node()) << error.what();
    return {std::nullopt, error.what()};
  }
}

// What is no longer there, because it was in what another edit replaced, is left out.
std::optional<std::string> one_by_one(std::string source, std::vector<Edit> edits) {
  std::stable_sort(edits.begin(), edits.end(), [](const Edit& a, const Edit& b) { return turn(a) < turn(b); });
  for (const Edit& edit : edits) {
    const qo::Page page(source);
    const auto nodes = nodes_by_key(page);
    const auto found = nodes.find(edit.key);
    if (found == nodes.end()) continue;
    try {
      qo::Edits alone(page);
      alone.add(found->second, {edit.operation});
      source = alone.apply().source;
    } catch (const qo::Error&) {
      return std::nullopt;
    }
  }
  return source;
}

TEST(EditsProperty, TogetherGiveWhatTheyGiveOneAfterTheOther) {
  Random random(7);
  int given = 0, refused = 0;
  for (int round = 0; round < 15000; ++round) {
    const qo::Page page(random_page(random));
    const auto nodes = nodes_by_key(page);
    std::vector<std::string> keys;
    for (const auto& [key, node] : nodes) keys.push_back(key);
    std::vector<Edit> edits;
    for (std::size_t i = 0, count = 1 + random() % 4; i < count && !keys.empty(); ++i) {
      Edit edit{pick(random, keys), random_operation(random)};
      const qo::Node node = nodes.at(edit.key);
      const bool loses_key = edit.operation.kind == Kind::set_text || edit.operation.kind == Kind::set_html;
      if (loses_key && !node.is_element()) edit.operation.value += edit.key;
      if (fits(page, node, edit.operation)) edits.push_back(edit);
    }
    const Result together = all_at_once(page, edits);
    if (together.refusal.find("contradict") != std::string::npos) continue;
    const std::optional<std::string> apart = one_by_one(page.source(), edits);
    together.source ? ++given : ++refused;
    // What needs another edit as well is refused one by one, and may be refused together.
    if (apart) {
      ASSERT_EQ(together.source.value_or(together.refusal), *apart) << shown(page, edits);
    }
  }
  EXPECT_GT(given, 5000);
  EXPECT_GT(refused, 1000);
}

}  // namespace
