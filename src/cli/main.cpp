// The command-line tool.

#include <csignal>
#include <exception>
#include <new>
#include <string>

#include <qo_page/selector.h>

#include "args/command_line.h"
#include "commands/commands.h"
#include "host/host_page.h"
#include "io/failure.h"
#include "io/messages.h"
#include "session.h"

namespace {

int run(const cli::Options& options) {
  switch (options.command) {
    case cli::Command::select:
      return cli::run_select(options);
    case cli::Command::table:
      return cli::run_table(options);
    case cli::Command::form:
      return cli::run_form(options);
    case cli::Command::edit:
      return cli::run_edit(options);
    case cli::Command::check:
      return cli::run_check(options);
    case cli::Command::tree:
      return cli::run_tree(options);
    default:
      return cli::run_decode(options);
  }
}

}  // namespace

int main(int argc, char** argv) {
  // Nobody to read the results is a quiet end, whatever the caller set.
  std::signal(SIGPIPE, SIG_DFL);
  try {
    const std::optional<cli::Options> options = cli::read_command_line(argc, argv);
    if (!options) return cli::status_found;
    cli::silence_library();
    return run(*options);
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
