// The tree of a page: its own elements, nested as a browser would nest them.

#ifndef QO_PAGE_TREE_TREE_BUILDER_H
#define QO_PAGE_TREE_TREE_BUILDER_H

#include <memory>
#include <optional>
#include <string_view>

#include <qo_page/tokenizer/component_names.h>
#include <qo_page/tokenizer/tokenizer.h>
#include <qo_page/tree/node.h>
#include <qo_page/tree/open_elements.h>

namespace qo {

// Is told of each token and, as far as it makes them so, of each node but texts: when it begins, in
// the order of the source, and when it ends, those inside it first. Its extent is whole when it has
// ended.
class TreeObserver {
 public:
  virtual ~TreeObserver() = default;
  virtual void token(const Token& token, const Node& holder) = 0;  // the innermost open node
  virtual void begin(const Node& node) = 0;
  virtual void end(const Node& node) = 0;
};

class TreeBuilder {
 public:
  TreeBuilder(std::string_view source, bool templates, Reader reader = Reader::browser);

  // Reads the whole source. To be called once, as is the next.
  std::unique_ptr<DocumentNode> build();

  // The same for an observer, without a tree: nodes have neither texts nor attributes, and what is
  // inside one is gone after it has ended. Takes little more memory than is open at once.
  void observe(TreeObserver& observer);

 private:
  void read();
  void take(const Token& token);

  // --- Nodes (nodes.cpp) ---
  std::unique_ptr<Node> make_element(const Token& token, Tag tag, Space space);
  void add_attributes(Node& node, const Token& token);
  Node* append(std::unique_ptr<Node> node);
  void append_whole(std::unique_ptr<Node> node);
  void end_node(Node& node, std::size_t content_end, std::size_t end);
  void text(const Token& token);
  void section(const Token& token);
  void declaration(const Token& token);

  // --- Start tags ---
  void start_tag(const Token& token);
  void html_start_tag(const Token& token, Tag tag);
  void foreign_start_tag(const Token& token, Tag tag);
  bool is_foreign_content(Tag tag) const;
  bool breaks_out(const Token& token, Tag tag) const;
  Tag tag_of(const Token& token) const;
  bool is_odd(const Token& token) const;
  bool is_closed_by_author(const Token& token) const;
  bool is_without_content(const Token& token, Tag tag);
  bool is_repeated(Tag tag);
  void begin_form(const Token& token);
  bool in_template() const { return open_.nearest(Tag::template_) != OpenElements::none; }

  // --- What a start tag ends, at the offset where it begins ---
  void end_before(Tag tag, std::size_t at);
  void end_paragraph(std::size_t at);
  void end_item(Tag tag, std::size_t at);
  void end_options(Tag tag, std::size_t at);
  void end_implied(bool with_rtc, std::size_t at);
  void end_table_parts(Tag tag, std::size_t at);
  void end_table_in_table(std::size_t at);
  std::size_t innermost_table_part(Tag tag, std::size_t bound) const;

  // --- End tags ---
  void end_tag(const Token& token);
  void html_end_tag(const Token& token, Tag tag);
  void end_form(const Token& token);
  void end_formatting(std::size_t index, Range tag);
  std::size_t heading_in_scope() const;

  // --- Open elements ---
  void open(std::unique_ptr<Node> node);
  void close_top(Range tag);
  void close_top(std::size_t at) { close_through(open_.size() - 1, {at, at}); }
  void close_above(std::size_t index, std::size_t at);
  void close_through(std::size_t index, Range tag);
  Node* current() const { return open_.empty() ? document_.get() : open_.top(); }

  static constexpr std::size_t no_form = static_cast<std::size_t>(-1);

  std::string_view source_;
  Reader reader_;
  std::optional<ComponentNames> components_;  // of an author's reading
  Tokenizer tokenizer_;
  std::unique_ptr<DocumentNode> document_;
  OpenElements open_;
  TreeObserver* observer_ = nullptr;
  std::size_t form_ = no_form;  // where the last form is that no end tag has ended
  bool has_html_ = false, has_head_ = false, has_body_ = false;
  bool is_quirky_ = true;
};

}  // namespace qo

#endif
