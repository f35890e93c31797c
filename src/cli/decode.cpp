#include <qo_html/qo_html.h>

#include <qo_page/decode.h>

#include "commands.h"
#include "session.h"

namespace cli {

int run(const DecodeOptions& options) {
  Session session(options);
  return session.run({options.file}, [&](Input& input) {
    if (options.host) {
      qo_decode_html_entities(input.text);
      session.out().write(input.text);
    } else {
      session.out().write(qo::decode(input.text));
    }
    return Found::something;
  });
}

}  // namespace cli
