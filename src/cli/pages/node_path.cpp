#include "pages/node_path.h"

#include <cstdio>
#include <vector>

#include "io/text.h"

namespace cli {

namespace {

bool is_name_character(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '-' || static_cast<unsigned char>(c) >= 0x80;
}

// The text as a name in a selector.
std::string escaped_name(const std::string& text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool begins_number = c >= '0' && c <= '9' && (i == 0 || (i == 1 && text[0] == '-'));
    const bool is_control = static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
    if (begins_number || is_control) {
      char escape[5];
      std::snprintf(escape, sizeof escape, "\\%x ", static_cast<unsigned>(c));
      out += escape;
    } else {
      if (!is_name_character(c) || text == "-") out += '\\';
      out += c;
    }
  }
  return out;
}

}  // namespace

NodePaths::NodePaths(const qo::Page& page) {
  for (const qo::Node node : page.document().descendants()) {
    if (!node.is_element()) continue;
    ++names_[lower(node.name())];
    if (const std::optional<std::string> id = node.attribute("id")) ++ids_[lower(*id)];
  }
}

bool NodePaths::has_own_id(qo::Node element, std::string& id) const {
  id = element.attribute("id").value_or("");
  return !id.empty() && ids_.at(lower(id)) == 1 && id.find('\0') == std::string::npos;
}

std::string NodePaths::path(qo::Node element) {
  std::vector<std::string> steps;
  for (; element.is_element(); element = element.parent()) {
    std::string id;
    if (has_own_id(element, id)) {
      steps.push_back("#" + escaped_name(id));
      break;
    }
    const std::string name = lower(element.name());
    if (names_.at(name) == 1) {
      steps.push_back(escaped_name(name));
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
  const std::string name = lower(element.name());
  std::string step = escaped_name(name);
  if (!element.parent().is_element() && names_.at(name) > 1) step += ":root";
  const Position position = this->position(element);
  if (position.count > 1) step += ":nth-of-type(" + std::to_string(position.index) + ")";
  return step;
}

NodePaths::Position NodePaths::position(qo::Node element) {
  if (positions_.count(element) == 0) count_children(element.parent());
  return positions_.at(element);
}

void NodePaths::count_children(qo::Node parent) {
  std::unordered_map<std::string, std::size_t> counts;
  for (const qo::Node child : parent.children()) {
    if (child.is_element()) positions_[child] = {++counts[lower(child.name())], 0};
  }
  for (const qo::Node child : parent.children()) {
    if (child.is_element()) positions_[child].count = counts[lower(child.name())];
  }
}

}  // namespace cli
