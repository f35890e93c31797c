// Editing a page in a way that keeps its author's bytes.
//
// The library writes a page back in its own form: <br> becomes <br/>, quotes become double. So an
// edit is made of three texts, token by token (a tag, the marks of a comment, a run of text): the
// page as written; its round trip, in which each token has the library's form; and the edited round
// trip. A token whose form is the same in both round trips stays as written, any other takes its
// edited form. The nodes of the parsed page tell which token of one text is which of the others.

#ifndef QO_CLI_PAGE_EDITOR_H
#define QO_CLI_PAGE_EDITOR_H

#include <optional>
#include <string>
#include <vector>

#include <qo_html/qo_html.h>

#include "edited_text.h"
#include "files.h"
#include "options.h"

namespace cli {

// What is done to every node that matches.
struct Edit {
  std::vector<EditOperation> attributes;  // operations on attributes and classes
  std::optional<std::string> content;     // the new one, as given
  std::string content_markup;             // the same as the library writes it back
  std::optional<std::string> whole;       // takes the place of the node; empty: it is removed
  std::string before;
  std::string after;
  std::vector<std::string> warnings;  // on values that the given markup loses
};

// Markup and text are brought into the library's form. Throws Failure when it refuses the markup.
Edit make_edit(const EditOptions& options);

// Values that were lost because the parser drops what has no quotes.
struct DroppedValues {
  std::size_t count = 0;
  std::string first;  // the place and name of the first

  // Empty when there are none.
  std::string warning() const;
};

struct EditedPage {
  explicit EditedPage(std::string_view source) : kept(source), rewritten(source) {}

  EditedText kept;            // as written where nothing was touched
  EditedText rewritten;       // all of it in the library's form: the edited round trip
  DroppedValues kept_drops;   // in tags that the edit touched
  DroppedValues other_drops;  // in all other tags
};

// Edits the page that was parsed from `source`, without its comments if `drop_comments` is set;
// `matches` are nodes of it. Changes the attributes of the nodes, and nothing else of the tree.
// Throws Failure when an edit does not fit a node. The source must outlive the result.
EditedPage edit_page(const Input& source, _qo_html* document, const std::vector<_qo_html*>& matches,
                     const Edit& edit, bool drop_comments);

}  // namespace cli

#endif
