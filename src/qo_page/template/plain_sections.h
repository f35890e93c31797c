// Blocks in {{ }} that begin with what might be a variable: {{each x}} ... {{/each}}.

#ifndef QO_PAGE_TEMPLATE_PLAIN_SECTIONS_H
#define QO_PAGE_TEMPLATE_PLAIN_SECTIONS_H

#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <qo_page/template/cut_index.h>

namespace qo {

class PlainSections {
 public:
  // A piece that is no known step.
  void add(std::string_view code, CodePiece piece);

  // The last piece that a block of that name may begin with. It is taken only once.
  std::optional<CodePiece> take(std::string_view name);

 private:
  std::unordered_map<std::string_view, std::vector<CodePiece>> by_name_;
};

// What a piece would end: "if" of {{ endif }}; empty when it is none of that form.
std::string_view plain_end(std::string_view code);

}  // namespace qo

#endif
