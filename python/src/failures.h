// The library's errors on their way to Python's exceptions.

#ifndef KZGIS_PYTHON_FAILURES_H
#define KZGIS_PYTHON_FAILURES_H

#include <kzgis/mesh.h>
#include <kzgis/result.h>

#include <string>
#include <utility>

namespace kzgis::python {

/// An error in flight.  Needs no interpreter: it may be thrown without its lock.
struct Failure {
  Flaw flaw;         ///< without a place where the error has none
  bool of_polygon;   ///< a `PolygonError`
  std::string path;  ///< of the file that it is about; empty without one
};

/// The value of a result; throws `Failure`.
template <class T>
T value_of(Result<T> result, const std::string& path = {}) {
  if (result) return *std::move(result);
  Flaw flaw;
  flaw.kind = result.error().kind;
  flaw.message = std::move(result.error().message);
  throw Failure{std::move(flaw), false, path};
}

template <class T>
T value_of(Result<T, Flaw> result) {
  if (result) return *std::move(result);
  const bool of_polygon = result.error().kind == ErrorKind::bad_data;
  throw Failure{std::move(result.error()), of_polygon, {}};
}

/// Has Python told of `Failure`.
void translate_failures();

}  // namespace kzgis::python

#endif
