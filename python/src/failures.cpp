// Which error is which exception; those of the package itself are written in Python.

#include "python/src/failures.h"

#include <pybind11/pybind11.h>

#include <exception>

#include "python/src/arrays.h"

namespace kzgis::python {

namespace py = pybind11;

namespace {

void raise(const Failure& failure) {
  const py::object raised =
      py::module_::import("kzgis._errors")
          .attr("exception_of")(static_cast<int>(failure.flaw.kind), to_text(failure.flaw.message),
                                failure.of_polygon, failure.flaw.ring, failure.flaw.vertex,
                                to_text(failure.path));
  PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(raised.ptr())), raised.ptr());
}

}  // namespace

void translate_failures() {
  py::register_local_exception_translator([](std::exception_ptr pointer) {
    try {
      if (pointer) std::rethrow_exception(pointer);
    } catch (const Failure& failure) {
      try {
        raise(failure);
      } catch (py::error_already_set& error) {  // no memory for it, say
        error.restore();
      }
    }
  });
}

}  // namespace kzgis::python
