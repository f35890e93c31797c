#include <qo_page/text/class_tokens.h>

#include <qo_page/base/ascii.h>
#include <qo_page/base/words.h>
#include <qo_page/template/code_blocks.h>

namespace qo {

namespace {

// A part of a value.
struct Item {
  enum class Kind { fragment, blanks, code };  // code: that stands for no text

  Kind kind;
  Range range;
};

std::vector<Item> items_of(std::string_view source, Range value, CodeScanner& code) {
  std::vector<Item> items;
  const auto add = [&items](Item::Kind kind, std::size_t begin, std::size_t end) {
    const bool goes_on = !items.empty() && items.back().kind == kind && kind != Item::Kind::code;
    if (goes_on) {
      items.back().range.end = end;
    } else {
      items.push_back({kind, {begin, end}});
    }
  };
  for (std::size_t i = value.begin; i < value.end;) {
    const bool may_be_code = code.may_begin(source[i]);
    const std::size_t code_end = may_be_code ? code.end_of(i, CodeScanner::Place::quoted) : 0;
    const std::size_t end = code_end == 0 ? i + 1 : code_end;
    const bool is_statement =
        code_end != 0 && role_of(source.substr(i, end - i), code.dialect()) != CodeRole::output;
    const bool is_gap = code_end == 0 && is_blank(source[i]);
    add(is_statement ? Item::Kind::code
        : is_gap     ? Item::Kind::blanks
                     : Item::Kind::fragment,
        i, end);
    i = end;
  }
  return items;
}

// A program may write text of its own besides.
bool writes(std::string_view code) {
  return code[0] == '<' && (code.find("echo") != std::string_view::npos ||
                            code.find("print") != std::string_view::npos);
}

// Which items may come right after which: the ways through the template.
class Ways {
 public:
  Ways(std::string_view value, const std::vector<Item>& items, std::size_t offset)
      : items_(items),
        blocks_(value),
        is_block_(items.size()),
        is_solid_(items.size()),
        next_(items.size()),
        previous_(items.size() + 1) {
    find_pieces(offset);
    for (const CodeBlock& block : blocks_.blocks()) add_block(block);
    for (std::size_t i = 0; i < items_.size(); ++i) add_item(i, value, offset);
  }

  const CodeBlocks& blocks() const { return blocks_; }

  // The items that other characters may come right in front of, or right after.
  std::vector<bool> touched_in_front() const { return touched(true); }
  std::vector<bool> touched_after() const { return touched(false); }

 private:
  void find_pieces(std::size_t offset) {
    const std::vector<CodePiece>& pieces = blocks_.pieces();
    item_of_.assign(pieces.size(), none);
    std::size_t i = 0;
    for (std::size_t piece = 0; piece < pieces.size(); ++piece) {
      const std::size_t begin = pieces[piece].begin + offset;
      while (i < items_.size() && items_[i].range.begin < begin) ++i;
      const bool is_found =
          i < items_.size() && items_[i].range.begin == begin && items_[i].kind == Item::Kind::code;
      if (is_found) item_of_[piece] = i;
    }
  }

  void add_item(std::size_t i, std::string_view value, std::size_t offset) {
    const Item& item = items_[i];
    is_solid_[i] = item.kind == Item::Kind::fragment;
    if (item.kind == Item::Kind::code) {
      const std::string_view code =
          value.substr(item.range.begin - offset, item.range.end - item.range.begin);
      is_solid_[i] = is_block_[i] ? writes(code) : may_write(code);
    }
    if (!is_block_[i]) lead(i, i + 1);
  }

  void lead(std::size_t from, std::size_t to) {
    next_[from].push_back(to);
    previous_[to].push_back(from);
  }

  // A block leads from its beginning into each branch or past the block, from the end of each
  // branch past the block, and from the end of a loop into any branch again.
  void add_block(const CodeBlock& block) {
    for (const std::size_t piece : block.pieces) {
      if (item_of_[piece] == none) return;
    }
    const std::size_t begin = item_of_[block.pieces.front()];
    const std::size_t end = item_of_[block.pieces.back()];
    for (const std::size_t piece : block.pieces) {
      const std::size_t item = item_of_[piece];
      is_block_[item] = true;
      if (item != end) lead(begin, item + 1);
      if (item != begin) lead(item, end + 1);
      if (item != begin && block.is_loop) lead(item, begin);
    }
    if (!block.has_default) lead(begin, end + 1);
  }

  std::vector<bool> touched(bool forwards) const {
    std::vector<bool> seen(items_.size() + 1);
    std::vector<std::size_t> waiting;
    const auto leave = [&](std::size_t item) {
      for (const std::size_t to : forwards ? next_[item] : previous_[item]) {
        if (!seen[to]) waiting.push_back(to);
        seen[to] = true;
      }
    };
    for (std::size_t i = 0; i < items_.size(); ++i) {
      if (is_solid_[i]) leave(i);
    }
    while (!waiting.empty()) {
      const std::size_t item = waiting.back();
      waiting.pop_back();
      if (item < items_.size() && items_[item].kind == Item::Kind::code) leave(item);
    }
    return seen;
  }

  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  const std::vector<Item>& items_;
  CodeBlocks blocks_;
  std::vector<std::size_t> item_of_;  // each piece of code; none: it is within other text
  std::vector<bool> is_block_;        // each item: begins, divides or ends a block
  std::vector<bool> is_solid_;        // each item: writes characters
  std::vector<std::vector<std::size_t>> next_, previous_;
};

}  // namespace

std::vector<ClassToken> class_tokens(std::string_view source, Range value, CodeScanner& code) {
  const std::vector<Item> items = items_of(source, value, code);
  std::vector<ClassToken> tokens;
  bool has_code = false;
  for (const Item& item : items) {
    has_code = has_code || item.kind == Item::Kind::code;
    if (item.kind == Item::Kind::fragment) tokens.push_back({item.range, true, true});
  }
  if (!has_code) return tokens;
  const Ways ways(value.in(source), items, value.begin);
  const std::vector<bool> in_front = ways.touched_in_front();
  const std::vector<bool> after = ways.touched_after();
  auto token = tokens.begin();
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (items[i].kind != Item::Kind::fragment) continue;
    token->is_whole = !in_front[i] && !after[i];
    token->is_always = !ways.blocks().branch_at(token->range.begin - value.begin);
    ++token;
  }
  return tokens;
}

}  // namespace qo
