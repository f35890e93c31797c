#include "pages/matches.h"

#include "io/failure.h"

namespace cli {

namespace {

[[noreturn]] void fail() {
  throw Failure("the library keeps no places");
}

}  // namespace

qo::Range Matches::range(std::size_t /*match*/) const {
  fail();
}
qo::Position Matches::position(std::size_t /*match*/) {
  fail();
}
std::string Matches::path(std::size_t /*match*/) {
  fail();
}
std::optional<std::size_t> Matches::below(std::size_t /*match*/, const qo::Selector& /*selector*/) {
  throw Failure("the library's selectors find no columns");
}

}  // namespace cli
