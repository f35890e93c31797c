#include "pages/own_matches.h"

#include <utility>

#include "pages/attributes.h"

namespace cli {

OwnMatches::OwnMatches(qo::Page page, const qo::Selector& selector, std::size_t most,
                       qo::TextForm form)
    : page_(std::move(page)),
      nodes_(page_.select(selector, most)),
      size_(nodes_.size()),
      form_(form) {}

std::string_view OwnMatches::name(std::size_t match, std::string& /*buffer*/) const {
  const qo::Node node = nodes_[match];
  return node.kind() == qo::NodeKind::comment ? "!--" : node.name();
}

std::string_view OwnMatches::html(std::size_t match, std::string& /*buffer*/) const {
  return nodes_[match].html();
}

std::string_view OwnMatches::inner_html(std::size_t match, std::string& /*buffer*/) const {
  return nodes_[match].inner_html();
}

std::string_view OwnMatches::text(std::size_t match, std::string& buffer) const {
  buffer = nodes_[match].text(form_);
  return buffer;
}

std::optional<std::string_view> OwnMatches::attribute(std::size_t match, const std::string& name,
                                                      std::string& buffer) const {
  std::optional<std::string> found = nodes_[match].attribute(name, form_);
  if (!found) return std::nullopt;
  buffer = std::move(*found);
  return buffer;
}

JsonLine OwnMatches::attributes(std::size_t match) const {
  // Values stay as they are in JSON where texts are squeezed.
  const bool is_written = form_ == qo::TextForm::written;
  const qo::TextForm form = is_written ? form_ : qo::TextForm::decoded;
  AttributeMembers members;
  for (const qo::Attribute& attribute : first_attributes(nodes_[match])) {
    if (attribute.has_value()) {
      members.add(attribute.name(), attribute.value(form));
    } else {
      members.add_bare(attribute.name());
    }
  }
  return members.take();
}

qo::Range OwnMatches::range(std::size_t match) const {
  const qo::Extent extent = nodes_[match].extent();
  return {extent.begin, extent.end};
}

qo::Position OwnMatches::position(std::size_t match) {
  if (!lines_) lines_.emplace(page_.source());
  return lines_->position(range(match).begin);
}

std::string OwnMatches::path(std::size_t match) {
  if (!nodes_[match].is_element()) return std::string();
  if (!paths_) paths_.emplace(page_);
  return paths_->path(nodes_[match]);
}

std::optional<std::size_t> OwnMatches::below(std::size_t match, const qo::Selector& selector) {
  const std::vector<qo::Node> found = selector.select(nodes_[match], 1);
  if (found.empty()) return std::nullopt;
  nodes_.resize(size_);
  nodes_.push_back(found.front());
  return size_;
}

}  // namespace cli
