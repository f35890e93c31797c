#include "args/command_table.h"

#include <algorithm>

namespace cli {

const std::vector<CommandRow>& command_table() {
  static const std::vector<CommandRow> rows = {
      {Command::select,
       "select",
       "SEL [FILE...]",
       "Print the elements that a selector finds, one a line",
       "Each once, in the order of the page, as it is written.",
       {{"All links of some pages, with their texts", "qo select -a href,:text a *.html"},
        {"The pages of a folder that have images without alt",
         "qo select -r -l 'img:not([alt])' site"}}},
      {Command::table,
       "table",
       "[SEL] [FILE...]",
       "Print tables as lines of cells, with tabs between them",
       "_SEL_ tells which; an element that is not a table means those in it. A cell fills all "
       "places that it spans. Tables "
       "in tables are apart. Between two tables is an empty line. A first argument is a _FILE_ if "
       "there is such a file, if it "
       "ends in *.html* or *.htm*, or if it has a \"/\" and no \"[\" in it.",
       {{"A table for a spreadsheet", "qo table --csv '#prices' page.html"}}},
      {Command::form,
       "form",
       "[SEL] [FILE...]",
       "Print what a browser would send of a form, as JSON",
       "Names such as *user[mail]* and *tags[]* make objects and arrays; so does a plain name that "
       "comes several times. _SEL_ tells which "
       "element to take for a form; of a page, the first is printed. A _FILE_ is known as with "
       "*table*. No "
       "contents of files are read.",
       {{"Send a form again", "qo form --urlencoded '#search' page.html | curl -d @- URL"}}},
      {Command::edit,
       "edit",
       "SEL OPERATION... [FILE...]",
       "Change the elements that a selector finds, and nothing else of the page",
       "The operations are carried out on every match, in the order in which they are given, and "
       "the page is printed. Exactly the bytes of "
       "what an operation names change: a value between its quotes, one class, a name in both "
       "tags. Operations on matches within "
       "what another operation replaces or takes away have no effect. Operations that contradict "
       "each other are refused.\n\n"
       "The result is read again. Where anything that was not named would be read otherwise, as "
       "after markup that "
       "opens what it does not close, or where the result is not what was asked, the page is "
       "refused with place and "
       "reason, and nothing is written.\n\n"
       "_TEXT_, _VALUE_ and _CLASS_ are plain text, which is escaped where needed; template "
       "code in them stays as given. "
       "_MARKUP_ goes in as given.",
       {{"What an edit would change",
         "qo edit -n 'img:not([loading])' --attr loading=lazy index.html"},
        {"All links of a folder to https",
         "qo edit -r -i 'a[href^=\"http:\"]' --sub-attr href '^http:' https: site"}}},
      {Command::check,
       "check",
       "[FILE...]",
       "Tell where a host process reads pages otherwise than qo",
       "For those who write hosts, which read pages with the library alone. Prints a line "
       "_FILE_:_LINE_:_COLUMN_ (columns are bytes) for "
       "each place where the page is refused, a value is lost, or elements nest otherwise.",
       {{"Which templates a host refuses", "qo check -r templates | grep refused"}}},
      {Command::tree,
       "tree",
       "[FILE]",
       "Print an outline of a page's tree",
       "",
       {{"The tree in a browser", "qo tree --html --select .note page.html > tree.html"}}},
      {Command::decode,
       "decode",
       "[FILE]",
       "Replace character references",
       "As a browser does in text.",
       {{"A text without references", "qo select --inner h1 page.html | qo decode"}}},
  };
  return rows;
}

const CommandRow& row_of(Command command) {
  return *std::find_if(command_table().begin(), command_table().end(),
                       [command](const CommandRow& row) { return row.command == command; });
}

}  // namespace cli
