#include "commands/node_path.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include <qo_html/qo_html_walk.h>

namespace cli {

namespace {

std::string lower(std::string text) {
  for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
  return text;
}

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

NodePaths::NodePaths(const qo::Page& page) : page_(page) {
  TreeWalk walk(page.document());
  while (_qo_html* node = walk.next()) {
    if (page.kind(node) != qo::NodeKind::element) continue;
    ++names_[lower(node->tag)];
    if (const std::optional<std::string> id = page.attribute(node, "id")) ++ids_[lower(*id)];
  }
}

bool NodePaths::has_own_id(const _qo_html* element, std::string& id) const {
  id = page_.attribute(element, "id").value_or("");
  return !id.empty() && ids_.at(lower(id)) == 1 && id.find('\0') == std::string::npos;
}

std::string NodePaths::path(const _qo_html* element) {
  std::vector<std::string> steps;
  for (; !element->isRoot; element = element->parent) {
    std::string id;
    if (has_own_id(element, id)) {
      steps.push_back("#" + escaped_name(id));
      break;
    }
    if (names_.at(lower(element->tag)) == 1) {
      steps.push_back(escaped_name(lower(element->tag)));
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

std::string NodePaths::step(const _qo_html* element) {
  const std::string name = lower(element->tag);
  std::string step = escaped_name(name);
  if (element->parent->isRoot && names_.at(name) > 1) step += ":root";
  const Position position = this->position(element);
  if (position.count > 1) step += ":nth-of-type(" + std::to_string(position.index) + ")";
  return step;
}

NodePaths::Position NodePaths::position(const _qo_html* element) {
  if (positions_.count(element) == 0) count_children(element->parent);
  return positions_.at(element);
}

void NodePaths::count_children(const _qo_html* parent) {
  std::unordered_map<std::string, std::size_t> counts;
  for (const _qo_html* child : parent->children) {
    if (page_.kind(child) != qo::NodeKind::element) continue;
    positions_[child] = {++counts[lower(child->tag)], 0};
  }
  for (const _qo_html* child : parent->children) {
    if (page_.kind(child) != qo::NodeKind::element) continue;
    positions_[child].count = counts[lower(child->tag)];
  }
}

}  // namespace cli
