// Pairs of coordinates, which NumPy's users keep in rows and the library in columns.

#include "python/src/arrays.h"

#include <stdexcept>

namespace kzgis::python {

py::str to_text(const std::string& bytes) {
  PyObject* const text =
      PyUnicode_DecodeUTF8(bytes.data(), static_cast<py::ssize_t>(bytes.size()), "surrogateescape");
  if (text == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::str>(text);
}

void expect_rows(const py::array& array, py::ssize_t width, const char* what) {
  if (array.ndim() == 2 && array.shape(1) == width) return;
  throw std::invalid_argument(std::string(what) + " must have the shape (n, " +
                              std::to_string(width) + ")");
}

std::vector<double> interleave(std::span<const double> x, std::span<const double> y) {
  std::vector<double> pairs(2 * x.size());
  for (std::size_t i = 0; i < x.size(); ++i) {
    pairs[2 * i] = x[i];
    pairs[2 * i + 1] = y[i];
  }
  return pairs;
}

Outline copy_rings(std::span<const double> pairs, std::span<const std::int32_t> starts) {
  Outline rings;
  const std::size_t count = pairs.size() / 2;
  rings.x.resize(count);
  rings.y.resize(count);
  for (std::size_t i = 0; i < count; ++i) {
    rings.x[i] = pairs[2 * i];
    rings.y[i] = pairs[2 * i + 1];
  }
  rings.starts.assign(starts.begin(), starts.end());
  return rings;
}

py::tuple to_tuple(const Outline& outline) {
  return py::make_tuple(to_rows(interleave(outline.x, outline.y), 2), to_array(outline.starts));
}

}  // namespace kzgis::python
