#include <qo_page/tree/tree_builder.h>

#include <algorithm>
#include <utility>

#include <qo_page/base/ascii.h>

namespace qo {

namespace {

using tag_flags::breakout;
using tag_flags::cell;
using tag_flags::closes_p;
using tag_flags::formatting;
using tag_flags::head_content;
using tag_flags::heading;
using tag_flags::raw_text;
using tag_flags::rcdata;
using tag_flags::row_group;
using tag_flags::scoped_end;
using tag_flags::table_part;
using tag_flags::void_content;

constexpr std::size_t none = OpenElements::none;

std::size_t innermost_of(std::initializer_list<std::size_t> indexes) {
  std::size_t innermost = none;
  for (const std::size_t index : indexes) {
    if (index != none && (innermost == none || index > innermost)) innermost = index;
  }
  return innermost;
}

}  // namespace

TreeBuilder::TreeBuilder(Tree& tree, Reader reader, StartTagObserver* observer)
    : tree_(tree),
      source_(tree.source),
      reader_(reader),
      dialect_(*tree.dialect),
      observer_(observer),
      tokenizer_(tree.source, *tree.dialect, reader),
      open_(tree.dialect->has_case) {
  if (reader == Reader::author) components_.emplace(source_);
}

void TreeBuilder::build() {
  append(NodeKind::document, {0, 0});
  Token token{};
  for (;;) {
    tokenizer_.allow_cdata(dialect_.is_xml || open_.top_is_foreign());
    if (!tokenizer_.next(token)) break;
    take(token);
  }
  const std::size_t end = source_.size();
  if (!open_.empty()) close_through(0, {end, end});
  end_node(document_index, {end, end});
  append(NodeKind::text, {end, end});
  tree_.nodes.trim();
  tree_.attributes.trim();
}

void TreeBuilder::take(const Token& token) {
  switch (token.kind) {
    case TokenKind::text:
      return text(token);
    case TokenKind::start_tag:
      return start_tag(token);
    case TokenKind::end_tag:
      return end_tag(token);
    case TokenKind::comment:
    case TokenKind::cdata:
      return section(token);
    case TokenKind::doctype:
    case TokenKind::code:
      return declaration(token);
  }
}

// --- Start tags ---

void TreeBuilder::start_tag(const Token& token) {
  if (observer_ != nullptr) {
    observer_->start_tag(token, open_.empty() ? Tag::unknown : open_.top_type().tag);
  }
  const Tag tag = tag_of(token);
  if (dialect_.is_xml) return start_element(token, tag, Namespace::xml);
  tree_.has_odd_tags = tree_.has_odd_tags || is_odd(token, tag);
  const bool stays = dialect_.is_strict || !breaks_out(token, tag);
  if (is_foreign_content(tag) && stays) {
    return start_element(token, tag, open_.top_type().space);
  }
  while (is_foreign_content(tag)) close_top(token.extent.begin);
  html_start_tag(token, tag);
}

void TreeBuilder::html_start_tag(const Token& token, Tag tag) {
  const Namespace space = tag == Tag::svg_    ? Namespace::svg
                          : tag == Tag::math_ ? Namespace::math
                                              : Namespace::html;
  const ElementType type{token.name.in(source_), tag, space};
  if (!dialect_.is_strict && is_repeated(tag)) {
    append_element(token, type);
    return;
  }
  if (!dialect_.is_strict) end_before(tag, token.extent.begin);
  const bool is_empty = is_without_content(token, tag);
  if (tag == Tag::form_ && !in_template() && !ends_itself(token, tag)) begin_form(token);
  if (is_empty) {
    append_element(token, type);
    return;
  }
  const bool is_block = is_raw_block(token, type.name);
  open(token, type);
  tree_.nodes.back().is_raw_block = is_block;
  tree_.has_odd_tags = tree_.has_odd_tags || (token.self_closing && !dialect_.is_exact);
  if (is_block || has(tag, rcdata | raw_text) || tag == Tag::plaintext_) {
    tokenizer_.begin_raw_content({type.name, tag == Tag::script_, tag == Tag::plaintext_});
  }
}

// An element that no rule of HTML's applies to.
void TreeBuilder::start_element(const Token& token, Tag tag, Namespace space) {
  const ElementType type{token.name.in(source_), tag, space};
  if (!token.self_closing) return open(token, type);
  append_element(token, type);
}

// What is at the top of a component's file is in a language of its own, but for <template>, unless
// that says so, too.
bool TreeBuilder::is_raw_block(const Token& token, std::string_view name) const {
  if (!dialect_.has_raw_blocks || !open_.empty()) return false;
  if (name != "template") return true;
  return std::any_of(
      token.attributes.begin(), token.attributes.end(), [this](const AttributeToken& attribute) {
        return attribute.name.in(source_) == "lang" && attribute.value.in(source_) != "html";
      });
}

// What a browser only takes attributes from, or nothing at all: a second html, head or body, a form
// in a form, a select in a select.
bool TreeBuilder::is_repeated(Tag tag) {
  switch (tag) {
    case Tag::html_:
      return std::exchange(has_html_, true);
    case Tag::head_:
      return std::exchange(has_head_, true);
    case Tag::body_:
      return std::exchange(has_body_, true);
    case Tag::form_:
      return form_ != no_node && !in_template();
    default:
      return false;
  }
}

void TreeBuilder::begin_form(const Token& token) {
  form_ = next_index();
  tree_.form_ranges.push_back({token.extent.begin, source_.size()});
}

Tag TreeBuilder::tag_of(const Token& token) const {
  const std::string_view name = token.name.in(source_);
  if (dialect_.has_case) return find_tag_as_written(name);
  return components_ ? components_->tag_of(name) : find_tag(name);
}

// Whether its author may read the tag otherwise.
bool TreeBuilder::is_odd(const Token& token, Tag tag) const {
  if (dialect_.is_exact) return false;
  const bool ends_holder =
      may_be_component(tag) && (open_.top_is(Tag::head_) || open_.top_is(Tag::colgroup_));
  return token.may_be_odd || ends_holder || may_name_component(token.name.in(source_));
}

// Whether the start tag is all of the element, whatever its name means in HTML.
bool TreeBuilder::ends_itself(const Token& token, Tag tag) const {
  if (!token.self_closing) return false;
  if (reader_ == Reader::author || dialect_.self_closing == SelfClosing::all) return true;
  return dialect_.self_closing == SelfClosing::custom && tag == Tag::unknown;
}

// Void elements, what closes itself in svg and math, a tag of a template's own that does, such as
// <c:out/>, and a form between the parts of a table.
bool TreeBuilder::is_without_content(const Token& token, Tag tag) {
  if (has(tag, void_content) || ends_itself(token, tag)) return true;
  const bool has_prefix = token.name.in(source_).find(':') != std::string_view::npos;
  if (has_prefix && token.self_closing) return tokenizer_.code().enabled();
  if (tag == Tag::svg_ || tag == Tag::math_) return token.self_closing;
  return tag == Tag::form_ &&
         (open_.top_is(Tag::table_) || open_.top_is(Tag::tr_) || open_.top_has(row_group));
}

// Whether a start tag here makes an element of svg or math.
bool TreeBuilder::is_foreign_content(Tag tag) const {
  if (!open_.top_is_foreign()) return false;
  const ElementType& top = open_.top_type();
  if (is_annotation(top)) return tag != Tag::svg_ && !is_annotation_of_html();
  if (top.space == Namespace::math && (tag == Tag::mglyph_ || tag == Tag::malignmark_)) return true;
  return !holds_html(top);
}

// Whether the innermost open element says that it holds HTML.
bool TreeBuilder::is_annotation_of_html() const {
  const AttributeRecord* const encoding = tree_.find_attribute(open_.top(), "encoding");
  if (encoding == nullptr) return false;
  const std::string_view value = tree_.written_value(*encoding);
  return equals_without_case(value, "text/html") ||
         equals_without_case(value, "application/xhtml+xml");
}

bool TreeBuilder::breaks_out(const Token& token, Tag tag) const {
  if (tag != Tag::font_) return has(tag, breakout);
  return std::any_of(
      token.attributes.begin(), token.attributes.end(), [this](const AttributeToken& attribute) {
        const std::string_view name = attribute.name.in(source_);
        return equals_without_case(name, "color") || equals_without_case(name, "face") ||
               equals_without_case(name, "size");
      });
}

// --- What a start tag ends ---

void TreeBuilder::end_before(Tag tag, std::size_t at) {
  const bool may_stay = reader_ == Reader::author && may_be_component(tag);
  if (open_.top_is(Tag::head_) && !has(tag, head_content) && !may_stay) close_top(at);
  if (open_.top_is(Tag::colgroup_) && !may_stay && tag != Tag::col_ && tag != Tag::template_)
    close_top(at);
  switch (tag) {
    case Tag::li_:
    case Tag::dd_:
    case Tag::dt_:
      end_item(tag, at);
      break;
    case Tag::option_:
    case Tag::optgroup_:
      end_options(tag, at);
      break;
    case Tag::button_:
      close_through(open_.nearest_within(Tag::button_, Bound::scope), {at, at});
      break;
    case Tag::a_:
      end_formatting(open_.nearest_within(Tag::a_, Bound::marker), {at, at});
      break;
    case Tag::nobr_:
      end_formatting(open_.nearest_within(Tag::nobr_, Bound::scope), {at, at});
      break;
    case Tag::select_:
    case Tag::input_:
    case Tag::keygen_:
    case Tag::textarea_:
      close_through(open_.nearest_within(Tag::select_, Bound::scope), {at, at});
      break;
    case Tag::rb_:
    case Tag::rtc_:
    case Tag::rp_:
    case Tag::rt_:
      if (open_.nearest_within(Tag::ruby_, Bound::scope) != none) {
        end_implied(tag == Tag::rb_ || tag == Tag::rtc_, at);
      }
      break;
    case Tag::table_:
      end_table_in_table(at);
      if (!is_quirky_) end_paragraph(at);
      break;
    default:
      if (has(tag, table_part)) end_table_parts(tag, at);
      break;
  }
  if (has(tag, closes_p)) end_paragraph(at);
  if (has(tag, heading) && open_.top_has(heading)) close_top(at);
}

void TreeBuilder::end_paragraph(std::size_t at) {
  close_through(open_.nearest_within(Tag::p_, Bound::button_scope), {at, at});
}

void TreeBuilder::end_item(Tag tag, std::size_t at) {
  const std::size_t item = tag == Tag::li_
                               ? open_.nearest(tag)
                               : innermost_of({open_.nearest(Tag::dd_), open_.nearest(Tag::dt_)});
  close_through(open_.inside(item, Bound::item), {at, at});
}

void TreeBuilder::end_options(Tag tag, std::size_t at) {
  if (open_.top_is(Tag::option_)) close_top(at);
  const bool in_select = open_.nearest_within(Tag::select_, Bound::scope) != none;
  if (tag == Tag::optgroup_ && in_select && open_.top_is(Tag::optgroup_)) close_top(at);
}

void TreeBuilder::end_implied(bool with_rtc, std::size_t at) {
  static constexpr Tag implied[] = {Tag::dd_, Tag::dt_, Tag::li_, Tag::optgroup_, Tag::option_,
                                    Tag::p_,  Tag::rb_, Tag::rp_, Tag::rt_};
  const auto is_implied = [this, with_rtc] {
    return (with_rtc && open_.top_is(Tag::rtc_)) ||
           std::any_of(std::begin(implied), std::end(implied),
                       [this](Tag tag) { return open_.top_is(tag); });
  };
  while (is_implied()) close_top(at);
}

// The innermost open element of that name inside the bound.
std::size_t TreeBuilder::innermost_table_part(Tag tag, std::size_t bound) const {
  const std::size_t index = open_.nearest(tag);
  return index != none && (bound == none || index > bound) ? index : none;
}

// A cell ends the cell before it, a row the row, a group the group; each goes into the innermost
// part that can hold it, and ends what is open inside that.
void TreeBuilder::end_table_parts(Tag tag, std::size_t at) {
  const std::size_t bound = open_.innermost(Bound::table_scope);
  const auto inside = [this, bound](Tag name) { return innermost_table_part(name, bound); };
  const std::size_t table = bound != none && open_.tag_at(bound) == Tag::table_ ? bound : none;
  const std::size_t group =
      innermost_of({inside(Tag::tbody_), inside(Tag::thead_), inside(Tag::tfoot_)});
  const std::size_t row = inside(Tag::tr_);
  const std::size_t a_cell = innermost_of({inside(Tag::td_), inside(Tag::th_)});
  const bool is_row = tag == Tag::tr_;
  const bool is_cell = has(tag, cell);
  const std::size_t ended = is_cell ? a_cell : is_row ? row : group != none ? group : row;
  const std::size_t holder = is_cell  ? innermost_of({row, group, table})
                             : is_row ? innermost_of({group, table})
                                      : table;
  if (tag == Tag::col_ && open_.top_is(Tag::colgroup_)) return;
  if (ended != none && (holder == none || ended > holder)) close_through(ended, {at, at});
  if (holder != none) close_above(holder, at);
}

// A table between the parts of another one, not in a cell of it, ends it.
void TreeBuilder::end_table_in_table(std::size_t at) {
  const std::size_t table = open_.nearest(Tag::table_);
  const std::size_t innermost =
      innermost_of({table, open_.nearest(Tag::td_), open_.nearest(Tag::th_),
                    open_.nearest(Tag::caption_), open_.nearest(Tag::template_)});
  if (table != none && innermost == table) close_through(table, {at, at});
}

// --- End tags ---

void TreeBuilder::end_tag(const Token& token) {
  const std::string_view name = token.name.in(source_);
  const Tag tag = tag_of(token);
  if (dialect_.is_xml)
    return close_through(open_.nearest({name, tag, Namespace::xml}), token.extent);
  if (!dialect_.is_strict && (tag == Tag::p_ || tag == Tag::br_)) {
    while (is_foreign_content(tag)) close_top(token.extent.begin);
  }
  if (open_.top_is_foreign()) {
    const std::size_t index = open_.nearest({name, Tag::unknown, open_.top_type().space});
    const std::size_t html = open_.innermost_html();
    if (index != none && (html == none || index > html)) {
      return close_through(index, token.extent);
    }
  }
  html_end_tag(token, tag);
}

void TreeBuilder::html_end_tag(const Token& token, Tag tag) {
  const std::size_t named = open_.nearest({token.name.in(source_), tag, Namespace::html});
  if (dialect_.is_strict) return close_through(named, token.extent);
  const auto close_within = [&](Bound bound) {
    close_through(open_.inside(named, bound), token.extent);
  };
  switch (tag) {
    case Tag::html_:
    case Tag::head_:
    case Tag::frameset_:
    case Tag::template_:
      return close_through(named, token.extent);
    case Tag::form_:
      return end_form(token);
    case Tag::p_:
      return close_within(Bound::button_scope);
    case Tag::li_:
      return close_within(Bound::list_scope);
    case Tag::body_:
      return close_within(Bound::scope);
    case Tag::table_:
      return close_within(Bound::table_scope);
    default:
      break;
  }
  if (has(tag, heading)) return close_through(heading_in_scope(), token.extent);
  if (has(tag, table_part)) return close_within(Bound::table_scope);
  if (has(tag, scoped_end)) return close_within(Bound::scope);
  if (has(tag, formatting)) {
    return end_formatting(open_.inside(named, Bound::scope), token.extent);
  }
  close_within(Bound::special);
}

std::size_t TreeBuilder::heading_in_scope() const {
  std::size_t innermost = none;
  for (const Tag tag : {Tag::h1_, Tag::h2_, Tag::h3_, Tag::h4_, Tag::h5_, Tag::h6_}) {
    innermost = innermost_of({innermost, open_.nearest_within(tag, Bound::scope)});
  }
  return innermost;
}

// Ends the form, but nothing that is open inside it. In a template, forms are like other elements.
void TreeBuilder::end_form(const Token& token) {
  const std::size_t index = open_.nearest_within(Tag::form_, Bound::scope);
  if (in_template()) return close_through(index, token.extent);
  if (form_ == no_node) return;
  const NodeIndex form = std::exchange(form_, no_node);
  tree_.form_ranges.back().end = token.extent.begin;
  if (index == none || open_.at(index) != form) return;
  end_implied(true, token.extent.begin);
  if (open_.size() == index + 1) {
    close_through(index, token.extent);
  } else {
    open_.end_later(index);
  }
}

// What is open across blocks ends with the block.
void TreeBuilder::end_formatting(std::size_t index, Range tag) {
  if (index == none) return;
  if (open_.inside(index, Bound::special) != none) {
    close_through(index, tag);
  } else {
    open_.end_later(index);
  }
}

// --- Open elements ---

void TreeBuilder::open(const Token& token, const ElementType& type) {
  const NodeIndex node = append_element(token, type);
  tree_.nodes[node].has_content = true;
  open_.push(node, type);
}

// All ends of open elements are here.
void TreeBuilder::close_top(Range tag) {
  const NodeIndex node = open_.top();
  open_.pop();
  end_node(node, tag);
}

void TreeBuilder::close_above(std::size_t index, std::size_t at) {
  while (open_.size() > index + 1) close_top({at, at});
}

// Ends an open element, and all that is open inside it, at an end tag, or at an offset (an empty
// range). Nothing, when the index is none.
void TreeBuilder::close_through(std::size_t index, Range tag) {
  if (index == none) return;
  close_above(index, tag.begin);
  close_top(tag);
  while (open_.ends_now()) close_top({tag.end, tag.end});
}

}  // namespace qo
