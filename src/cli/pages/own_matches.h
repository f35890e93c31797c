// The matches of a page that is read by its own tags.

#ifndef QO_CLI_PAGES_OWN_MATCHES_H
#define QO_CLI_PAGES_OWN_MATCHES_H

#include <vector>

#include <qo_page/page.h>
#include <qo_page/selector.h>

#include "pages/matches.h"
#include "pages/node_path.h"

namespace cli {

class OwnMatches final : public Matches {
 public:
  // The first `most`. Texts and values are given in `form`.
  OwnMatches(qo::Page page, const qo::Selector& selector, std::size_t most, qo::TextForm form);

  std::size_t size() const override { return size_; }
  std::string_view name(std::size_t match, std::string& buffer) const override;
  std::string_view html(std::size_t match, std::string& buffer) const override;
  std::string_view inner_html(std::size_t match, std::string& buffer) const override;
  std::string_view text(std::size_t match, std::string& buffer) const override;
  std::optional<std::string_view> attribute(std::size_t match, const std::string& name,
                                            std::string& buffer) const override;
  JsonLine attributes(std::size_t match) const override;
  qo::Range range(std::size_t match) const override;
  qo::Position position(std::size_t match) override;
  std::string path(std::size_t match) override;
  std::optional<std::size_t> below(std::size_t match, const qo::Selector& selector) override;

 private:
  qo::Page page_;
  std::vector<qo::Node> nodes_;  // after the matches, one that was found below one of them
  std::size_t size_;
  qo::TextForm form_;

  // Made when they are first asked.
  std::optional<qo::LineIndex> lines_;
  std::optional<NodePaths> paths_;
};

}  // namespace cli

#endif
