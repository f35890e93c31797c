#include "host/host_matches.h"

#include <utility>

#include "host/selectors.h"

namespace cli {

namespace {

std::string_view kept(std::string text, std::string& buffer) {
  require_memory();
  buffer = std::move(text);
  return buffer;
}

}  // namespace

HostMatches::HostMatches(const Input& input, const Options& options, std::size_t most)
    : document_(parse_page(input, options.drop_comments)),
      nodes_(find_matches(document_.get(), options.selector)) {
  require_memory();
  if (nodes_.size() > most) nodes_.resize(most);
}

std::string_view HostMatches::name(std::size_t match, std::string& buffer) const {
  return kept(nodes_[match]->tagName(), buffer);
}

std::string_view HostMatches::html(std::size_t match, std::string& buffer) const {
  return kept(nodes_[match]->outerHTML(), buffer);
}

std::string_view HostMatches::inner_html(std::size_t match, std::string& buffer) const {
  return kept(nodes_[match]->innerHTML(), buffer);
}

std::string_view HostMatches::text(std::size_t match, std::string& buffer) const {
  return kept(nodes_[match]->textContent(), buffer);
}

std::optional<std::string_view> HostMatches::attribute(std::size_t match, const std::string& name,
                                                       std::string& buffer) const {
  _qo_html& node = *nodes_[match];
  if (!node.has_attribute(name)) return std::nullopt;
  return kept(node.get_attribute(name), buffer);
}

JsonLine HostMatches::attributes(std::size_t match) const {
  AttributeMembers members;
  for (const Attribute& attribute : nodes_[match]->attributes) {
    if (attribute.hasValue != 0) {
      members.add(attribute.name, attribute.value);
    } else {
      members.add_bare(attribute.name);
    }
  }
  return members.take();
}

}  // namespace cli
