// The tree of a page: its own elements, nested as a browser would nest them.

#ifndef QO_PAGE_TREE_TREE_BUILDER_H
#define QO_PAGE_TREE_TREE_BUILDER_H

#include <cstddef>
#include <optional>
#include <string_view>

#include <qo_page/tokenizer/component_names.h>
#include <qo_page/tokenizer/tokenizer.h>
#include <qo_page/tree/open_elements.h>
#include <qo_page/tree/tree.h>

namespace qo {

// Is told of each start tag, in their order, and of the innermost element that is open.
class StartTagObserver {
 public:
  virtual ~StartTagObserver() = default;
  virtual void start_tag(const Token& tag, Tag holder) = 0;
};

class TreeBuilder {
 public:
  // Fills in the index of a tree that has its source and options, and nothing else.
  explicit TreeBuilder(Tree& tree, Reader reader = Reader::browser,
                       StartTagObserver* observer = nullptr);

  // Reads the whole source. To be called once.
  void build();

 private:
  void take(const Token& token);

  // --- Records (records.cpp) ---
  NodeIndex append(NodeKind kind, Range extent);
  NodeIndex append_element(const Token& token, const ElementType& type);
  void append_attributes(const Token& token);
  void end_node(NodeIndex node, Range tag);
  void text(const Token& token);
  void section(const Token& token);
  void declaration(const Token& token);

  // --- Start tags ---
  void start_tag(const Token& token);
  void html_start_tag(const Token& token, Tag tag);
  void start_element(const Token& token, Tag tag, Namespace space);
  bool is_raw_block(const Token& token, std::string_view name) const;
  bool is_foreign_content(Tag tag) const;
  bool is_annotation_of_html() const;
  bool breaks_out(const Token& token, Tag tag) const;
  Tag tag_of(const Token& token) const;
  bool is_odd(const Token& token, Tag tag) const;
  bool ends_itself(const Token& token, Tag tag) const;
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
  void open(const Token& token, const ElementType& type);
  void close_top(Range tag);
  void close_top(std::size_t at) { close_through(open_.size() - 1, {at, at}); }
  void close_above(std::size_t index, std::size_t at);
  void close_through(std::size_t index, Range tag);
  NodeIndex current() const { return open_.empty() ? document_index : open_.top(); }
  NodeIndex next_index() const { return static_cast<NodeIndex>(tree_.nodes.size()); }

  Tree& tree_;
  std::string_view source_;
  Reader reader_;
  const Dialect& dialect_;
  StartTagObserver* observer_;
  std::optional<ComponentNames> components_;  // of an author's reading
  Tokenizer tokenizer_;
  OpenElements open_;
  NodeIndex form_ = no_node;  // the last one that no end tag has ended
  bool has_html_ = false, has_head_ = false, has_body_ = false;
  bool is_quirky_ = true;
};

}  // namespace qo

#endif
