#include "pages/node_path.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "io/text.h"

namespace cli {

namespace {

bool is_name_character(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '-' || static_cast<unsigned char>(c) >= 0x80;
}

// Whether a selector can have the name as it is. What needs a backslash is written in another way:
// in the lines of a table, a backslash is doubled.
bool is_plain(std::string_view name) {
  const std::string_view start = name.substr(name.substr(0, 1) == "-" ? 1 : 0);
  return !start.empty() && !(start[0] >= '0' && start[0] <= '9') &&
         std::all_of(name.begin(), name.end(), is_name_character);
}

bool fits_in_quotes(std::string_view text) {
  const auto is_awkward = [](char c) {
    return c == '\\' || static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
  };
  return std::none_of(text.begin(), text.end(), is_awkward) &&
         (text.find('"') == text.npos || text.find('\'') == text.npos);
}

std::string id_step(const std::string& id) {
  if (is_plain(id)) return "#" + id;
  const char quote = id.find('"') == id.npos ? '"' : '\'';
  return std::string("[id=") + quote + id + quote + "]";
}

}  // namespace

NodePaths::NodePaths(const qo::Page& page) {
  for (const qo::DialectInfo& dialect : qo::dialects()) {
    if (dialect.name == page.options().dialect) has_case_ = dialect.has_case;
  }
  for (const qo::Node node : page.document().descendants()) {
    if (!node.is_element()) continue;
    ++names_[key_of(node)];
    if (const std::optional<std::string> id = node.attribute("id")) ++ids_[lower(*id)];
  }
}

// The same for elements whose names a selector does not tell apart.
std::string NodePaths::key_of(qo::Node element) const {
  return has_case_ ? std::string(element.name()) : lower(element.name());
}

bool NodePaths::has_own_id(qo::Node element, std::string& id) const {
  id = element.attribute("id").value_or("");
  return !id.empty() && ids_.at(lower(id)) == 1 && fits_in_quotes(id);
}

std::string NodePaths::path(qo::Node element) {
  std::vector<std::string> steps;
  for (; element.is_element(); element = element.parent()) {
    std::string id;
    if (has_own_id(element, id)) {
      steps.push_back(id_step(id));
      break;
    }
    const std::string name = key_of(element);
    if (names_.at(name) == 1 && is_plain(name)) {
      steps.push_back(name);
      break;
    }
    steps.push_back(step(element));
  }
  std::string path;
  for (auto one = steps.rbegin(); one != steps.rend(); ++one) {
    path += (path.empty() ? "" : " > ") + *one;
  }
  return path;
}

std::string NodePaths::step(qo::Node element) {
  const std::string name = key_of(element);
  const bool has_name = is_plain(name);
  const Position position = this->position(element);
  std::string step = has_name ? name : std::string();
  const bool may_be_elsewhere = !has_name || names_.at(name) > 1;
  if (!element.parent().is_element() && may_be_elsewhere) step += ":root";
  if (!has_name) return step + ":nth-child(" + std::to_string(position.place) + ")";
  if (position.count > 1) step += ":nth-of-type(" + std::to_string(position.index) + ")";
  return step;
}

NodePaths::Position NodePaths::position(qo::Node element) {
  if (positions_.count(element) == 0) count_children(element.parent());
  return positions_.at(element);
}

void NodePaths::count_children(qo::Node parent) {
  std::unordered_map<std::string, std::size_t> counts;
  std::size_t place = 0;
  for (const qo::Node child : parent.children()) {
    if (!child.is_element()) continue;
    positions_[child] = {++place, ++counts[key_of(child)], 0};
  }
  for (const qo::Node child : parent.children()) {
    if (!child.is_element()) continue;
    positions_[child].count = counts[key_of(child)];
  }
}

}  // namespace cli
