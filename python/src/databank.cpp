// Outlines of a data bank, all segments one behind the other.

#include <kzgis/databank.h>
#include <pybind11/stl.h>

#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "python/src/arrays.h"
#include "python/src/failures.h"
#include "python/src/module.h"

namespace kzgis::python {

namespace {

/// (latitudes, longitudes, offsets, continents, themes, levels, damaged): arc-seconds; where each
/// segment begins, and the end; numbers of continent, theme and level; (path, message) each.
///
/// @param box  south, west, north, east
py::tuple read_segments(const std::string& directory, const std::vector<int>& themes,
                        const std::vector<int>& continents, const std::vector<int>& levels,
                        const std::optional<std::array<double, 4>>& box) {
  std::vector<std::int32_t> lat, lon, where, what, ranks;
  std::vector<std::int64_t> offsets{0};
  Databank bank;
  {
    const py::gil_scoped_release unlocked;
    DatabankQuery query;
    for (const int theme : themes) query.themes.push_back(static_cast<Theme>(theme));
    for (const int number : continents) {
      query.continents.push_back(static_cast<Continent>(number));
    }
    query.levels = levels;
    if (box) query.box = Box{(*box)[1], (*box)[0], (*box)[3], (*box)[2]};
    bank = value_of(read_databank(directory, query), directory);
    for (const Segment& segment : bank.segments) {
      lat.insert(lat.end(), segment.lat.begin(), segment.lat.end());
      lon.insert(lon.end(), segment.lon.begin(), segment.lon.end());
      offsets.push_back(static_cast<std::int64_t>(lat.size()));
      where.push_back(static_cast<std::int32_t>(segment.continent));
      what.push_back(static_cast<std::int32_t>(segment.theme));
      ranks.push_back(segment.level);
    }
  }
  py::list damaged;
  for (const DamagedFile& file : bank.damaged) {
    damaged.append(py::make_tuple(to_text(file.path), to_text(file.error.message)));
  }
  return py::make_tuple(to_array(std::move(lat)), to_array(std::move(lon)),
                        to_array(std::move(offsets)), to_array(std::move(where)),
                        to_array(std::move(what)), to_array(std::move(ranks)), damaged);
}

}  // namespace

void add_databank(py::module_& module) {
  module.def("read_databank", &read_segments, py::arg("directory"), py::arg("themes"),
             py::arg("continents"), py::arg("levels"), py::arg("box"));
}

}  // namespace kzgis::python
