// The changes of a page, as a diff.

#ifndef QO_CLI_COMMANDS_UNIFIED_DIFF_H
#define QO_CLI_COMMANDS_UNIFIED_DIFF_H

#include <string>
#include <string_view>

#include <qo_page/edits.h>

namespace cli {

// A unified diff, with three lines around each change; empty when there are none.
std::string unified_diff(std::string_view old_text, const qo::EditedSource& edited,
                         const std::string& name);

}  // namespace cli

#endif
