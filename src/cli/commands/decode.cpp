#include <utility>

#include <qo_page/decode.h>

#include "commands/commands.h"
#include "host/host_page.h"
#include "session.h"

namespace cli {

int run_decode(const Options& options) {
  Session session(options);
  return session.run([&](Input& input, Output& out) {
    out.write(options.host ? decode_as_host(std::move(input.text)) : qo::decode(input.text));
    return Found::something;
  });
}

}  // namespace cli
