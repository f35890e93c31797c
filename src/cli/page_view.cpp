#include "page_view.h"

#include <utility>

#include <qo_page/decode.h>
#include <qo_page/selector.h>

#include "host/host_page.h"
#include "host/selectors.h"
#include "io/failure.h"

namespace cli {

namespace {

class OwnView : public PageView {
 public:
  OwnView(qo::Page page, const qo::Selector& selector, qo::TextForm form)
      : page_(std::move(page)), selector_(selector), form_(form) {}

  std::vector<_qo_html*> matches(std::size_t most) const override {
    return page_.select(selector_, most);
  }
  std::string html(_qo_html* node) const override { return std::string(page_.html(node)); }
  std::string inner_html(_qo_html* node) const override {
    return std::string(page_.inner_html(node));
  }
  std::string text(_qo_html* node) const override { return page_.text(node, form_); }
  std::optional<std::string> attribute(_qo_html* node, const std::string& name) const override {
    return page_.attribute(node, name, form_);
  }
  std::string value(const Attribute& attribute) const override {
    return form_ == qo::TextForm::written ? attribute.value
                                          : qo::decode(attribute.value, qo::DecodeMode::attribute);
  }
  const qo::Page* page() const override { return &page_; }

 private:
  qo::Page page_;
  qo::Selector selector_;
  qo::TextForm form_;
};

class HostView : public PageView {
 public:
  HostView(Document document, std::string selector)
      : document_(std::move(document)), selector_(std::move(selector)) {}

  std::vector<_qo_html*> matches(std::size_t /*most*/) const override {
    return find_matches(document_.get(), selector_);
  }
  std::string html(_qo_html* node) const override { return node->outerHTML(); }
  std::string inner_html(_qo_html* node) const override { return node->innerHTML(); }
  std::string text(_qo_html* node) const override { return node->textContent(); }
  std::optional<std::string> attribute(_qo_html* node, const std::string& name) const override {
    if (!node->has_attribute(name)) return std::nullopt;
    return node->get_attribute(name);
  }
  std::string value(const Attribute& attribute) const override { return attribute.value; }
  const qo::Page* page() const override { return nullptr; }

 private:
  Document document_;
  std::string selector_;
};

}  // namespace

qo::Page read_page(Input& input, const Options& options) {
  try {
    return qo::Page(std::move(input.text), qo::PageOptions{options.templates});
  } catch (const qo::Error& error) {
    throw Failure(input.name + ": " + error.what());
  }
}

PageReader make_reader(const Options& options, const std::string& selector, qo::TextForm form) {
  if (options.host) {
    give_hints(selector, options.strict);
    return [&options, selector](Input& input) {
      return std::make_unique<HostView>(parse_page(input, options.drop_comments), selector);
    };
  }
  return [&options, form, compiled = qo::Selector(selector)](Input& input) {
    return std::make_unique<OwnView>(read_page(input, options), compiled, form);
  };
}

}  // namespace cli
