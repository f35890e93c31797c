// The matches of a page that the library reads.

#ifndef QO_CLI_HOST_HOST_MATCHES_H
#define QO_CLI_HOST_HOST_MATCHES_H

#include <vector>

#include "args/options.h"
#include "host/host_page.h"
#include "pages/matches.h"

namespace cli {

// Its functions throw std::bad_alloc when memory ran out in the library.
class HostMatches final : public Matches {
 public:
  // The first `most`. Throws Failure for a page that the library refuses.
  HostMatches(const Input& input, const Options& options, std::size_t most);

  std::size_t size() const override { return nodes_.size(); }
  std::string_view name(std::size_t match, std::string& buffer) const override;
  std::string_view html(std::size_t match, std::string& buffer) const override;
  std::string_view inner_html(std::size_t match, std::string& buffer) const override;
  std::string_view text(std::size_t match, std::string& buffer) const override;
  std::optional<std::string_view> attribute(std::size_t match, const std::string& name,
                                            std::string& buffer) const override;
  JsonLine attributes(std::size_t match) const override;

  _qo_html& operator[](std::size_t match) const { return *nodes_[match]; }

 private:
  Document document_;
  std::vector<_qo_html*> nodes_;
};

}  // namespace cli

#endif
