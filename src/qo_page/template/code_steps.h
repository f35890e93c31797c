// What a piece of template code is: what it begins, ends and divides, or that it stands for text.

#ifndef QO_PAGE_TEMPLATE_CODE_STEPS_H
#define QO_PAGE_TEMPLATE_CODE_STEPS_H

#include <string_view>
#include <vector>

#include <qo_page/template/dialect.h>

namespace qo {

// One piece may do several of these: "} else {", "<% end; if x %>".
struct CodeStep {
  enum class Kind { open, middle, close };

  Kind kind;
  std::string_view name;    // what a closing is to have, too; "end" closes whatever is `by_end`
  bool by_end = false;      // of an opening
  bool is_loop = false;     // of an opening: what is in it may be there several times
  bool is_default = false;  // of a middle: one of the branches is always taken
  bool is_sure = true;      // it cannot be anything else
};

constexpr std::string_view any_end = "end";

// The steps of a piece of code, in order. One that may begin a block, such as {% include x %} as
// far as its form tells, is an opening; without a closing it is none after all.
std::vector<CodeStep> steps_of(std::string_view code);

// What a piece of code does, as far as its first step tells.
enum class CodeRole {
  output,   // stands for text: {{ x }}, <?= $x ?>
  opening,  // stands for nothing, and may begin a block: {% if x %}, <% x.each do |y| %>
  closing   // ends a block, or begins its next branch: {% endif %}, <?php } ?>
};

CodeRole role_of(std::string_view code);

// The same for a piece of code of that dialect.
CodeRole role_of(std::string_view code, const Dialect& dialect);

// Whether a piece of code that is no part of a block may write something: comments do not.
bool may_write(std::string_view code);

// The same as steps_of() for the inside of <?...?> and <%...%>. Strings and comments hold no steps.
std::vector<CodeStep> steps_of_program(std::string_view program, bool is_php);

}  // namespace qo

#endif
