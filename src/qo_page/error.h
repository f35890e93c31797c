// What ends an operation.

#ifndef QO_PAGE_ERROR_H
#define QO_PAGE_ERROR_H

#include <cstddef>
#include <stdexcept>
#include <string>

#include <qo_page/qo_page_export.h>

namespace qo {

class QO_PAGE_API Error : public std::runtime_error {
 public:
  // What the offset is one of.
  enum class Place {
    none,       // there is no offset: the call itself was wrong
    source,     // a byte of the page's source
    selector,   // a byte of the selector's text
    pattern,    // a byte of a substitution's pattern or replacement
    operations  // one of the operations of a list, counted from 0
  };

  // `message` is one line for people.
  explicit Error(const std::string& message) : std::runtime_error(message) {}
  Error(const std::string& message, std::size_t offset, Place place = Place::source)
      : std::runtime_error(message), offset_(offset), place_(place) {}

  // Where the trouble is, and what that is an offset into.
  std::size_t offset() const { return offset_; }
  Place place() const { return place_; }

 private:
  std::size_t offset_ = 0;
  Place place_ = Place::none;
};

}  // namespace qo

#endif
