// Charts: points, and polygons and lines on them.

#include <kzgis/chart.h>
#include <kzgis/outline.h>
#include <pybind11/stl.h>

#include <array>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "python/src/arrays.h"
#include "python/src/failures.h"
#include "python/src/module.h"

namespace kzgis::python {

namespace {

using Doubles = InputArray<double>;
using NoGil = py::gil_scoped_release;

std::vector<std::string> projection_names() {
  std::vector<std::string> names;
  for (int type = CartesianProj; type <= GlobeProj; ++type) {
    names.emplace_back(projection_name(static_cast<projType>(type)));
  }
  return names;
}

std::optional<std::string> canonical_name(const std::string& name) {
  const auto type = find_projection(name);
  return type ? std::optional<std::string>(projection_name(*type)) : std::nullopt;
}

/// @param window  south, west, north, east
Chart make_chart(const std::string& name, double base_lat, double base_lon,
                 std::optional<double> first_parallel, std::optional<double> second_parallel,
                 double radius, std::optional<double> reach,
                 const std::optional<std::array<double, 4>>& window) {
  const auto type = find_projection(name);
  if (!type) throw std::invalid_argument(name + " is no projection");
  ChartParameters parameters{base_lat, base_lon, first_parallel, second_parallel,
                             radius,   reach,    std::nullopt};
  if (window) {
    parameters.window = Box{(*window)[1], (*window)[0], (*window)[3], (*window)[2]};
  }
  return value_of(Chart::make(*type, parameters));
}

/// (first_parallel, second_parallel, reach, window) as the chart uses them.
py::tuple settings_of(const Chart& chart) {
  const ChartParameters& set = chart.parameters();
  py::object window = py::none();
  if (set.window) {
    window =
        py::make_tuple(set.window->min_y, set.window->min_x, set.window->max_y, set.window->max_x);
  }
  return py::make_tuple(set.first_parallel, set.second_parallel, set.reach_deg, window);
}

void expect_alike(const Doubles& a, const Doubles& b) {
  bool alike = a.ndim() == b.ndim();
  for (py::ssize_t i = 0; alike && i < a.ndim(); ++i) alike = a.shape(i) == b.shape(i);
  if (!alike) throw std::invalid_argument("coordinates must have one shape");
}

Doubles like(const Doubles& array) {
  return Doubles(std::vector<py::ssize_t>(array.shape(), array.shape() + array.ndim()));
}

std::span<double> room_of(Doubles& array) {
  return {array.mutable_data(), static_cast<std::size_t>(array.size())};
}

// Both directions have the same two signatures.
using Flat = std::size_t (Chart::*)(std::span<const double>, std::span<const double>,
                                    std::span<double>, std::span<double>, Arithmetic) const;
using Spatial = std::size_t (Chart::*)(std::span<const double>, std::span<const double>,
                                       std::span<const double>, std::span<double>,
                                       std::span<double>, std::span<double>, Arithmetic) const;

Arithmetic arithmetic(bool fast) { return fast ? Arithmetic::fast : Arithmetic::exact; }

template <Flat Convert>
py::tuple convert_flat(const Chart& chart, const Doubles& a, const Doubles& b, bool fast) {
  expect_alike(a, b);
  Doubles u = like(a), v = like(a);
  const auto to_u = room_of(u), to_v = room_of(v);
  {
    const NoGil unlocked;
    (chart.*Convert)(values_of(a), values_of(b), to_u, to_v, arithmetic(fast));
  }
  return py::make_tuple(std::move(u), std::move(v));
}

template <Spatial Convert>
py::tuple convert_spatial(const Chart& chart, const Doubles& a, const Doubles& b, const Doubles& c,
                          bool fast) {
  expect_alike(a, b);
  expect_alike(a, c);
  Doubles u = like(a), v = like(a), w = like(a);
  const auto to_u = room_of(u), to_v = room_of(v), to_w = room_of(w);
  {
    const NoGil unlocked;
    (chart.*Convert)(values_of(a), values_of(b), values_of(c), to_u, to_v, to_w, arithmetic(fast));
  }
  return py::make_tuple(std::move(u), std::move(v), std::move(w));
}

using Project = Result<Outline, Flaw> (*)(const Chart&, const Rings&, double);

template <Project Draw>
py::tuple draw(const Chart& chart, const Doubles& points, const InputArray<std::int32_t>& starts,
               double tolerance) {
  expect_rows(points, 2, "points");
  Outline outline;
  {
    const NoGil unlocked;
    const Outline degrees = copy_rings(values_of(points), values_of(starts));
    outline = value_of(Draw(chart, degrees.rings(), tolerance));
  }
  return to_tuple(outline);
}

template <class Draw>
py::tuple without_gil(Draw draw) {
  Outline outline;
  {
    const NoGil unlocked;
    outline = value_of(draw());
  }
  return to_tuple(outline);
}

}  // namespace

void add_chart(py::module_& module) {
  module.def("projection_names", &projection_names);
  module.def("canonical_name", &canonical_name, py::arg("name"));
  py::class_<Chart>(module, "Chart")
      .def(py::init(&make_chart), py::arg("name"), py::arg("base_lat"), py::arg("base_lon"),
           py::arg("first_parallel"), py::arg("second_parallel"), py::arg("radius"),
           py::arg("reach"), py::arg("window"))
      .def("settings", &settings_of)
      .def("project", &convert_flat<&Chart::project>, py::arg("lat"), py::arg("lon"),
           py::arg("fast"))
      .def("project_with_altitude", &convert_spatial<&Chart::project>, py::arg("lat"),
           py::arg("lon"), py::arg("alt"), py::arg("fast"))
      .def("unproject", &convert_flat<&Chart::unproject>, py::arg("x"), py::arg("y"),
           py::arg("fast"))
      .def("unproject_with_altitude", &convert_spatial<&Chart::unproject>, py::arg("x"),
           py::arg("y"), py::arg("z"), py::arg("fast"))
      .def("project_area", &draw<&project_area>, py::arg("points"), py::arg("starts"),
           py::arg("tolerance"))
      .def("project_lines", &draw<&project_lines>, py::arg("points"), py::arg("starts"),
           py::arg("tolerance"))
      .def(
          "frame",
          [](const Chart& chart, double tolerance) {
            return without_gil([&] { return chart_frame(chart, tolerance); });
          },
          py::arg("tolerance"))
      .def(
          "graticule",
          [](const Chart& chart, double step, double tolerance) {
            return without_gil([&] { return graticule(chart, step, tolerance); });
          },
          py::arg("step"), py::arg("tolerance"));
}

}  // namespace kzgis::python
