#include <qo_html/qo_html.h>

#include <qo_page/decode.h>

#include "commands/commands.h"
#include "session.h"

namespace cli {

int run_decode(const Options& options) {
  Session session(options);
  return session.run([&](Input& input, Output& out) {
    if (options.host) {
      qo_decode_html_entities(input.text);
      out.write(input.text);
    } else {
      out.write(qo::decode(input.text));
    }
    return Found::something;
  });
}

}  // namespace cli
