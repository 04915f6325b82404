// NumPy's arrays on their way in and out.
//
// What comes in is copied where the library's algorithms rely on it standing still: another thread
// of Python may write to an array while a call works on it without the interpreter's lock.  What
// goes out is handed over without a copy; the array owns it.

#ifndef KZGIS_PYTHON_ARRAYS_H
#define KZGIS_PYTHON_ARRAYS_H

#include <kzgis/mesh.h>
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace kzgis::python {

namespace py = pybind11;

/// An array in the order and the type that the library takes; others are converted.
template <class T>
using InputArray = py::array_t<T, py::array::c_style | py::array::forcecast>;

/// Any number of values, whatever the shape.
template <class T>
std::span<const T> values_of(const InputArray<T>& array) {
  return {array.data(), static_cast<std::size_t>(array.size())};
}

/// Hands over a vector.
template <class T>
py::array_t<T> to_array(std::vector<T> values, std::vector<py::ssize_t> shape) {
  auto held = std::make_unique<std::vector<T>>(std::move(values));
  T* const data = held->data();
  const py::capsule owner(held.get(), [](void* p) { delete static_cast<std::vector<T>*>(p); });
  (void)held.release();  // NOLINT(bugprone-unused-return-value): the capsule deletes it
  return py::array_t<T>(std::move(shape), data, owner);
}

template <class T>
py::array_t<T> to_array(std::vector<T> values) {
  const auto size = static_cast<py::ssize_t>(values.size());
  return to_array(std::move(values), {size});
}

/// Points or triangles: rows of `width` values.
template <class T>
py::array_t<T> to_rows(std::vector<T> values, py::ssize_t width) {
  const auto rows = static_cast<py::ssize_t>(values.size()) / width;
  return to_array(std::move(values), {rows, width});
}

/// Text of unknown origin, such as a file's name: bytes that are no UTF-8 become the surrogates
/// that Python's `os.fsencode` turns back.
py::str to_text(const std::string& bytes);

/// Throws `std::invalid_argument` unless the array has rows of `width` values.
void expect_rows(const py::array& array, py::ssize_t width, const char* what);

/// x and y apart, in one row of pairs.
std::vector<double> interleave(std::span<const double> x, std::span<const double> y);

/// Rings of its own.
Outline copy_rings(std::span<const double> pairs, std::span<const std::int32_t> starts);

/// (points, starts) of an outline.
py::tuple to_tuple(const Outline& outline);

}  // namespace kzgis::python

#endif
