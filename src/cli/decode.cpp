#include "commands.h"
#include "session.h"

#include <qo_html/qo_html.h>

namespace cli {

int run(const DecodeOptions& options) {
  Session session(options);
  return session.run({options.file}, [&](Input& input) {
    qo_decode_html_entities(input.text);
    session.out().write(input.text);
    return Found::something;
  });
}

}  // namespace cli
