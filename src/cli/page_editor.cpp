#include "page_editor.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

#include <qo_html/qo_html_walk.h>

#include "page.h"
#include "tag_scanner.h"
#include "text.h"

namespace cli {

namespace {

using Kind = EditOperation::Kind;

std::string escaped(std::string_view text, std::string_view characters) {
  std::string out;
  for (const char c : text) {
    if (characters.find(c) == std::string_view::npos) {
      out += c;
      continue;
    }
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      default:
        out += "&quot;";
        break;
    }
  }
  return out;
}

// --- The tokens of a node ---

// What has content that is not markup.
bool is_raw(const _qo_html& node) {
  return node.isComment || node.isCdata || node.tag == "script" || node.tag == "SCRIPT" ||
         node.tag == "style" || node.tag == "STYLE";
}

std::string start_tag(const _qo_html& node, const std::string& attributes) {
  if (node.isComment || node.isCdata) return "<" + node.tag;
  return "<" + node.tag + attributes + (node.isVoid && !node.isDeclaration ? "/>" : ">");
}

std::string end_tag(const _qo_html& node) {
  if (node.isComment) return "-->";
  if (node.isCdata) return "]]>";
  return node.isVoid || node.isText || node.isRoot ? "" : "</" + node.tag + ">";
}

// The attributes as the library writes them, but in quotes that the value does not have.
std::string safe_attributes(const _qo_html& node) {
  std::string out;
  for (const Attribute& attribute : node.attributes) {
    out += " " + attribute.name;
    if (attribute.hasValue == 0) continue;
    const char quote = attribute.value.find('"') == std::string::npos ? '"' : '\'';
    out += std::string("=") + quote + attribute.value + quote;
  }
  return out;
}

// Whether `content` can stand in the raw node without ending it.
bool fits_raw(const _qo_html& node, const std::string& content) {
  const std::string markup = start_tag(node, "") + content + end_tag(node);
  const Document document = try_to_parse(markup, false);
  return document != nullptr && document->children.size() == 1 &&
         document->textContent() == content && document->outerHTML() == markup;
}

void set_attribute(_qo_html& node, const EditOperation& operation) {
  if (operation.name == "class") node.classes.clear();
  node.addAttribute(operation.name, escaped(operation.value, "&\""));
}

void change_attributes(_qo_html& node, const std::vector<EditOperation>& operations) {
  for (const EditOperation& operation : operations) {
    switch (operation.kind) {
      case Kind::set_attribute:
        set_attribute(node, operation);
        break;
      case Kind::set_bare_attribute:
        if (operation.name == "class") node.classes.clear();
        node.set_attribute(operation.name);
        break;
      case Kind::delete_attribute:
        if (operation.name == "class") node.classes.clear();
        node.remove_attribute(operation.name);
        break;
      case Kind::add_class:
        node.add_class(escaped(operation.value, "\""));
        break;
      case Kind::delete_class:
        node.remove_class(escaped(operation.value, "\""));
        break;
      default:
        break;
    }
  }
}

// --- The walk ---

// Goes over the page's text and its tree side by side, and writes both new texts.
class PageEditor {
 public:
  PageEditor(const Input& input, const std::vector<_qo_html*>& matches, const Edit& edit,
             bool drop_comments)
      : name_(input.name),
        source_(input.text),
        matches_(matches.begin(), matches.end()),
        edit_(edit),
        drop_comments_(drop_comments),
        page_(input.text) {}

  EditedPage run(_qo_html* document) {
    TreeWalk walk(document);
    for (;;) {
      switch (walk.step()) {
        case TreeWalk::Event::enter:
          enter(*walk.node());
          break;
        case TreeWalk::Event::leave:
          leave(*walk.node(), false);
          break;
        case TreeWalk::Event::end:
          skip_dropped_comments(*document);
          page_.kept.keep(position_, source_.size());  // what the parser has not read
          page_.kept.finish();
          page_.rewritten.finish();
          return std::move(page_);
      }
    }
  }

 private:
  struct Token {
    std::size_t begin, end;
  };

  void enter(_qo_html& node) {
    if (node.isRoot) return;
    skip_dropped_comments(*node.parent);
    if (node.isText) return text(node);
    const TagExtent tag = scan_tag(source_, position_, node.tag, node.isVoid);
    const bool whole_element = tag.slash && !node.isVoid && node.children.empty();
    const Token token = take(tag.end);
    if (hidden_by_ == nullptr) start(node, token, whole_element, tag.dropped);
    if (node.children.empty()) leave(node, whole_element);
  }

  void text(_qo_html& node) {
    const Token token = take(position_ + node.text.size());
    if (!is_match(node)) return keep(token, node.text);
    add(edit_.before);
    if (edit_.whole) {
      add(*edit_.whole, token);
    } else if (edit_.content) {
      add(content_for(*node.parent, token), token);
    } else {
      keep(token, node.text);
    }
    add(edit_.after);
  }

  // `whole_element`: the token is end tag and start tag in one. `dropped`: the attributes that lose
  // a value.
  void start(_qo_html& node, Token token, bool whole_element,
             const std::vector<std::string>& dropped) {
    const std::string end = whole_element ? end_tag(node) : std::string();
    const std::string former = start_tag(node, node.formatAttribute());
    if (!is_match(node)) return untouched(token, former + end, dropped);
    add(edit_.before);
    if (edit_.whole) return replace(node, token, former + end, dropped);
    change_attributes(node, edit_.attributes);
    const std::string form = start_tag(node, node.formatAttribute());
    const std::string* const content = edit_.content ? &content_for(node, token) : nullptr;
    const bool new_content = content != nullptr && *content != node.innerHTML();
    const bool is_touched = form != former || (whole_element && new_content);
    if (is_touched) {
      note(page_.kept_drops, without_edited(dropped), token);
      page_.kept.add(start_tag(node, safe_attributes(node)));
      page_.rewritten.add(form);
    } else {
      untouched(token, form + end, dropped);
    }
    if (new_content) {
      add(*content);
      hidden_by_ = &node;
    } else if (content != nullptr) {
      settled_by_ = &node;
    }
    if (is_touched) add(end);
  }

  // What takes the node's place may be the node as it is.
  void replace(_qo_html& node, Token token, const std::string& form,
               const std::vector<std::string>& dropped) {
    if (!edit_.whole->empty() && node.outerHTML() == *edit_.whole) {
      settled_by_ = &node;
      return untouched(token, form, dropped);
    }
    add(*edit_.whole);
    hidden_by_ = &node;
  }

  void untouched(Token token, const std::string& form, const std::vector<std::string>& dropped) {
    note(page_.other_drops, dropped, token);
    keep(token, form);
  }

  // Without those that an operation sets or deletes.
  std::vector<std::string> without_edited(std::vector<std::string> names) const {
    const auto is_edited = [this](const std::string& name) {
      return std::any_of(edit_.attributes.begin(), edit_.attributes.end(),
                         [&name](const EditOperation& operation) {
                           return !operation.name.empty() && operation.name == name;
                         });
    };
    names.erase(std::remove_if(names.begin(), names.end(), is_edited), names.end());
    return names;
  }

  void note(DroppedValues& drops, const std::vector<std::string>& names, Token token) const {
    if (drops.count == 0 && !names.empty()) drops.first = place(token) + ": \"" + names[0] + "\"";
    drops.count += names.size();
  }

  std::string place(Token token) const { return name_ + ":" + place_of(source_, token.begin); }

  const std::string& content_for(const _qo_html& node, Token token) const {
    if (node.isVoid) throw Failure(place(token) + ": <" + node.tag + "> has no content to set");
    if (!is_raw(node)) return edit_.content_markup;
    if (fits_raw(node, *edit_.content)) return *edit_.content;
    throw Failure(place(token) + ": the new content would not stay in " + start_tag(node, ""));
  }

  // Behind the content of a node.
  void leave(_qo_html& node, bool whole_element) {
    if (node.isRoot) return;
    const bool hidden_whole = hidden_by_ == &node && edit_.whole;
    Token token{position_, position_};
    if (!node.isVoid && !whole_element) token = take_end(node);
    if (hidden_by_ == &node) hidden_by_ = nullptr;
    if (settled_by_ == &node) settled_by_ = nullptr;
    if (hidden_by_ != nullptr) return;
    if (!node.isVoid && !whole_element && !hidden_whole) end(node, token);
    if (is_match(node)) add(edit_.after);
  }

  Token take_end(_qo_html& node) {
    if (node.isComment || node.isCdata) return take(position_ + 3);
    skip_dropped_comments(node);
    if (position_ == source_.size()) return take(position_);
    return take(scan_tag(source_, position_, node.tag, false).end);
  }

  // An end tag that the page does not have is only written when something follows it.
  void end(_qo_html& node, Token token) {
    if (token.begin == token.end) {
      page_.kept.imply(end_tag(node));
      page_.rewritten.add(end_tag(node));
    } else {
      keep(token, end_tag(node));
    }
  }

  Token take(std::size_t end) {
    const Token token{position_, std::min(end, source_.size())};
    position_ = token.end;
    return token;
  }

  // Comments that were dropped have no node. In raw content there are none.
  void skip_dropped_comments(const _qo_html& parent) {
    if (!drop_comments_ || is_raw(parent)) return;
    for (std::size_t end; (end = skip_comment(source_, position_)) != position_;) position_ = end;
  }

  // A token that was not touched, and its form in the round trips.
  void keep(Token token, const std::string& form) {
    if (hidden_by_ != nullptr) return;
    page_.kept.keep(token.begin, token.end);
    page_.rewritten.add(form, token.begin, token.end);
  }

  void add(const std::string& form) {
    page_.kept.add(form);
    page_.rewritten.add(form);
  }

  // In the place of a token, which stays where it is just that.
  void add(const std::string& form, Token token) {
    page_.kept.add(form, token.begin, token.end);
    page_.rewritten.add(form, token.begin, token.end);
  }

  bool is_match(_qo_html& node) const {
    return hidden_by_ == nullptr && settled_by_ == nullptr && matches_.count(&node) != 0;
  }

  const std::string& name_;
  std::string_view source_;
  std::unordered_set<_qo_html*> matches_;
  const Edit& edit_;
  bool drop_comments_;
  EditedPage page_;
  std::size_t position_ = 0;       // in the source
  _qo_html* hidden_by_ = nullptr;  // the node whose content is not written
  // The node that already is what the edit makes of it: what is done to matches below it would be
  // lost with them.
  _qo_html* settled_by_ = nullptr;
};

}  // namespace

std::string DroppedValues::warning() const {
  if (count == 0) return std::string();
  const std::string others = count == 1 ? "" : " (and " + std::to_string(count - 1) + " more)";
  return first + " loses its value, which has no quotes" + others;
}

Edit make_edit(const EditOptions& options) {
  Edit edit;
  const auto markup = [&](const char* option, const std::string& text) {
    const Input input{option, text};
    const Document document = parse_page(input, options.drop_comments);
    const EditedPage page = edit_page(input, document.get(), {}, Edit(), options.drop_comments);
    if (page.other_drops.count > 0) edit.warnings.push_back(page.other_drops.warning());
    return page.rewritten.text();
  };
  for (const EditOperation& operation : options.operations) {
    switch (operation.kind) {
      case Kind::set_text:
        edit.content = operation.value;
        edit.content_markup = escaped(operation.value, "&<>");
        break;
      case Kind::set_html:
        edit.content = operation.value;
        edit.content_markup = markup("--html", operation.value);
        break;
      case Kind::replace:
        edit.whole = markup("--replace", operation.value);
        break;
      case Kind::remove:
        edit.whole = std::string();
        break;
      case Kind::insert_before:
        edit.before += markup("--before", operation.value);
        break;
      case Kind::insert_after:
        edit.after += markup("--after", operation.value);
        break;
      default:
        edit.attributes.push_back(operation);
        break;
    }
  }
  return edit;
}

EditedPage edit_page(const Input& source, _qo_html* document, const std::vector<_qo_html*>& matches,
                     const Edit& edit, bool drop_comments) {
  return PageEditor(source, matches, edit, drop_comments).run(document);
}

}  // namespace cli
