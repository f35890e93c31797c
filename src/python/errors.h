// What the library throws, as Python's exceptions.

#ifndef QO_PYTHON_ERRORS_H
#define QO_PYTHON_ERRORS_H

#include <string>

#include <qo_page/edits.h>
#include <qo_page/error.h>
#include <qo_page/selector.h>

#include "document.h"

namespace qo_python {

// Each throws the exception for Python. `document` is the page that the offset is one of, if any.
[[noreturn]] void raise(const qo::Error& error, const Document* document);
[[noreturn]] void raise(const qo::SelectorError& error);

// The exception for a refused edit, not thrown.
py::object refusal(const qo::Error& error, const DocumentPointer& document, qo::Node node);

// Throws that exception, of type EditRefused.
[[noreturn]] void raise_refused(const py::object& refused);

// Does it while other threads of Python run; it must not touch Python's objects.
template <class Work>
auto unlocked(const Document* document, Work work) {
  try {
    const py::gil_scoped_release release;
    return work();
  } catch (const qo::SelectorError& error) {
    raise(error);
  } catch (const qo::Error& error) {
    raise(error, document);
  }
}

}  // namespace qo_python

#endif
