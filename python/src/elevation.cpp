// Elevation grids: read from files or made from arrays, shaded and triangulated.

#include <kzgis/elevation.h>
#include <kzgis/terrain.h>
#include <pybind11/stl.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "python/src/arrays.h"
#include "python/src/failures.h"
#include "python/src/module.h"
#include "tools/dem/grid_file.h"
#include "tools/dem/relief.h"
#include "tools/support/command_error.h"

namespace kzgis::python {

namespace {

using NoGil = py::gil_scoped_release;

ElevationGrid read_grid(const std::string& path) {
  const NoGil unlocked;
  const auto fail = [&](ErrorKind kind, const char* message) {
    Flaw flaw;
    flaw.kind = kind;
    flaw.message = message;
    return Failure{flaw, false, path};
  };
  try {
    return tools::read_grid(path);
  } catch (const tools::BadDataError& error) {
    throw fail(ErrorKind::bad_data, error.what());
  } catch (const tools::CommandError& error) {
    throw fail(ErrorKind::cannot_read, error.what());
  }
}

void count_cells(ElevationGrid& grid) {
  constexpr float kNone = std::numeric_limits<float>::quiet_NaN();
  grid.empty_cells = 0;
  grid.lowest = grid.highest = kNone;
  for (const float elevation : grid.elevations) {
    if (std::isnan(elevation)) {
      ++grid.empty_cells;
      continue;
    }
    if (!(elevation >= grid.lowest)) grid.lowest = elevation;
    if (!(elevation <= grid.highest)) grid.highest = elevation;
  }
}

ElevationGrid make_grid(const InputArray<float>& elevations, double west, double north,
                        double step_x, double step_y, const std::string& name, int plan, int zone,
                        int ground_unit, int elevation_unit) {
  if (elevations.ndim() != 2) {
    throw std::invalid_argument("elevations must have the shape (rows, columns)");
  }
  constexpr py::ssize_t kMostCells = py::ssize_t{1} << 28;
  if (elevations.size() > kMostCells || elevations.shape(0) > kMostCells ||
      elevations.shape(1) > kMostCells) {
    throw std::invalid_argument("a grid has up to 2^28 elevations");
  }
  if (!(step_x > 0.0 && step_y > 0.0 && std::isfinite(step_x) && std::isfinite(step_y) &&
        std::isfinite(west) && std::isfinite(north))) {
    throw std::invalid_argument("west and north must be finite, steps above 0");
  }
  ElevationGrid grid;
  grid.name = name;
  grid.plan = static_cast<GroundPlan>(plan);
  grid.zone = zone;
  grid.ground_unit = static_cast<GroundUnit>(ground_unit);
  grid.elevation_unit = static_cast<ElevationUnit>(elevation_unit);
  grid.rows = static_cast<kz_long>(elevations.shape(0));
  grid.columns = static_cast<kz_long>(elevations.shape(1));
  grid.west = west;
  grid.north = north;
  grid.step_x = step_x;
  grid.step_y = step_y;
  const auto values = values_of(elevations);
  grid.elevations.assign(values.begin(), values.end());
  count_cells(grid);
  const double east = grid.x(grid.columns - 1);
  const double south = grid.y(grid.rows - 1);
  grid.corners = {GroundPoint{west, south}, GroundPoint{west, north}, GroundPoint{east, north},
                  GroundPoint{east, south}};
  return grid;
}

/// The grid's own elevations, which live as long as the array.
py::array_t<float> elevations_of(const py::object& self) {
  const auto& grid = self.cast<const ElevationGrid&>();
  py::array_t<float> view({grid.rows, grid.columns}, grid.elevations.data(), self);
  view.attr("setflags")(py::arg("write") = false);
  return view;
}

py::array hillshade(const ElevationGrid& grid, double azimuth_deg, double altitude_deg) {
  std::vector<float> light;
  {
    const NoGil unlocked;
    light = tools::shade(grid, {azimuth_deg, altitude_deg});
  }
  return to_array(std::move(light), {grid.rows, grid.columns});
}

/// (vertices, triangles)
py::tuple triangulate_grid(const ElevationGrid& grid, double tolerance) {
  Terrain terrain;
  std::vector<double> vertices;
  {
    const NoGil unlocked;
    terrain = value_of(triangulate_terrain(grid, tolerance));
    vertices.reserve(3 * terrain.x.size());
    for (std::size_t i = 0; i < terrain.x.size(); ++i) {
      vertices.insert(vertices.end(), {terrain.x[i], terrain.y[i], terrain.z[i]});
    }
  }
  return py::make_tuple(to_rows(std::move(vertices), 3), to_rows(std::move(terrain.triangles), 3));
}

/// Metres in the grid's units: along x, along y at the middle, upwards.
py::tuple unit_metres(const ElevationGrid& grid) {
  const tools::CellSize cell = tools::cell_size(grid);
  return py::make_tuple(cell.x_m / grid.step_x, cell.y_m / grid.step_y,
                        tools::elevation_unit_m(grid));
}

}  // namespace

void add_elevation(py::module_& module) {
  py::class_<ElevationGrid>(module, "ElevationGrid")
      .def(py::init(&make_grid), py::arg("elevations"), py::arg("west"), py::arg("north"),
           py::arg("step_x"), py::arg("step_y"), py::arg("name"), py::arg("plan"), py::arg("zone"),
           py::arg("ground_unit"), py::arg("elevation_unit"))
      .def_readonly("west", &ElevationGrid::west)
      .def_readonly("north", &ElevationGrid::north)
      .def_readonly("step_x", &ElevationGrid::step_x)
      .def_readonly("step_y", &ElevationGrid::step_y)
      .def_property_readonly("name", [](const ElevationGrid& g) { return to_text(g.name); })
      .def_readonly("zone", &ElevationGrid::zone)
      .def_property_readonly("plan",
                             [](const ElevationGrid& g) { return static_cast<int>(g.plan); })
      .def_property_readonly("ground_unit",
                             [](const ElevationGrid& g) { return static_cast<int>(g.ground_unit); })
      .def_property_readonly(
          "elevation_unit",
          [](const ElevationGrid& g) { return static_cast<int>(g.elevation_unit); })
      .def("elevations", &elevations_of)
      .def("hillshade", &hillshade, py::arg("azimuth"), py::arg("altitude"))
      .def("triangulate", &triangulate_grid, py::arg("tolerance"))
      .def("unit_metres", &unit_metres);
  module.def("read_dem", &read_grid, py::arg("path"));
}

}  // namespace kzgis::python
