// The command-line tool.

#include <csignal>
#include <exception>
#include <new>
#include <string>

#include <qo_page/selector.h>

#include "commands.h"
#include "host_page.h"
#include "session.h"
#include "text.h"

int main(int argc, char** argv) {
  // Nobody to read the results is a quiet end, whatever the caller set.
  std::signal(SIGPIPE, SIG_DFL);
  try {
    const std::optional<cli::Options> options = cli::read_command_line(argc, argv);
    if (!options) return cli::status_found;
    cli::silence_library();
    return std::visit([](const auto& chosen) { return cli::run(chosen); }, *options);
  } catch (const qo::SelectorError& error) {
    cli::complain(std::string("selector: ") + error.what());
    cli::complain_of_place(error.shown());
  } catch (const cli::Failure& failure) {
    cli::complain(failure.what());
  } catch (const std::bad_alloc&) {
    cli::complain("out of memory");
  } catch (const std::exception& error) {
    cli::complain(error.what());
  }
  return cli::status_failed;
}
