// Mesh files, by the writers of the command.

#include <pybind11/stl.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "python/src/arrays.h"
#include "python/src/module.h"
#include "tools/mesh_files/mesh_writer.h"
#include "tools/support/command_error.h"

namespace kzgis::python {

namespace {

constexpr std::array kFormats = {
    std::pair{"glb", tools::MeshFormat::glb},         std::pair{"stl", tools::MeshFormat::stl},
    std::pair{"ply", tools::MeshFormat::ply},         std::pair{"obj", tools::MeshFormat::obj},
    std::pair{"geojson", tools::MeshFormat::geojson}, std::pair{"svg", tools::MeshFormat::svg},
    std::pair{"png", tools::MeshFormat::png}};

std::vector<std::string> format_names() {
  std::vector<std::string> names;
  names.reserve(kFormats.size());
  for (const auto& [name, format] : kFormats) names.emplace_back(name);
  return names;
}

tools::MeshFormat format_named(const std::string& name) {
  for (const auto& [known, format] : kFormats) {
    if (name == known) return format;
  }
  throw std::invalid_argument(name + " is no format of mesh files");
}

using Vertices = InputArray<double>;
using Triangles = InputArray<std::uint32_t>;

tools::MeshPart make_part(std::uint32_t record, const Vertices& vertices,
                          const Triangles& triangles, const std::string& attributes) {
  if (vertices.ndim() != 2 || (vertices.shape(1) != 2 && vertices.shape(1) != 3)) {
    throw std::invalid_argument("vertices must have the shape (n, 2) or (n, 3)");
  }
  expect_rows(triangles, 3, "triangles");
  const auto width = static_cast<std::size_t>(vertices.shape(1));
  const auto values = values_of(vertices);
  std::vector<WorldPoint> points(values.size() / width);
  for (std::size_t i = 0; i < points.size(); ++i) {
    const double* const row = &values[i * width];
    points[i] = {row[0], row[1], width == 3 ? row[2] : 0.0};
  }
  const auto numbers = values_of(triangles);
  if (std::any_of(numbers.begin(), numbers.end(),
                  [&](std::uint32_t number) { return number >= points.size(); })) {
    throw std::invalid_argument("a triangle has a vertex that is not there");
  }
  tools::MeshPart part = tools::make_mesh_part(record, points, numbers);
  part.attributes = nlohmann::ordered_json::parse(attributes);
  return part;
}

using PartTuple = std::tuple<std::uint32_t, Vertices, Triangles, std::string>;

/// The bytes of a mesh file.
///
/// @param parts  (record from 1 or 0, vertices, triangles, attributes as JSON) each
py::bytes mesh_file(const std::string& format, const std::vector<PartTuple>& parts, bool spatial) {
  const tools::MeshFormat chosen = format_named(format);
  std::vector<tools::MeshPart> made;
  made.reserve(parts.size());
  for (const auto& [record, vertices, triangles, attributes] : parts) {
    made.push_back(make_part(record, vertices, triangles, attributes));
  }
  std::ostringstream out;
  try {
    const py::gil_scoped_release unlocked;
    const auto writer = tools::make_mesh_writer(chosen, out, spatial);
    for (tools::MeshPart& part : made) writer->add(std::move(part));
    writer->finish();
  } catch (const tools::CommandError& error) {
    throw std::invalid_argument(error.what());
  }
  return py::bytes(std::move(out).str());
}

}  // namespace

void add_mesh_file(py::module_& module) {
  module.def("mesh_formats", &format_names);
  module.def("mesh_file", &mesh_file, py::arg("format"), py::arg("parts"), py::arg("spatial"));
}

}  // namespace kzgis::python
