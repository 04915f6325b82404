// The coordinate value.

#include <kzgis/latlon.h>
#include <pybind11/operators.h>

#include <array>
#include <sstream>
#include <string>

#include "python/src/arrays.h"
#include "python/src/module.h"

namespace kzgis::python {

namespace {

constexpr std::array kDirections = {"north",      "north-east", "east",       "south-east", "south",
                                    "south-west", "west",       "north-west", "same place"};

py::tuple dms_of(const LatLon& point) {
  double deg = 0.0, min = 0.0, sec = 0.0;
  point.fetchLat(&deg, &min, &sec);
  const py::tuple lat = py::make_tuple(deg, min, sec);
  point.fetchLon(&deg, &min, &sec);
  return py::make_tuple(lat, py::make_tuple(deg, min, sec));
}

py::tuple arcsec_of(const LatLon& point) {
  int lat = 0, lon = 0;
  point.fetchLat(&lat);
  point.fetchLon(&lon);
  return py::make_tuple(lat, lon);
}

std::string text_of(const LatLon& point) {
  std::ostringstream text;
  text << point;
  return text.str();
}

std::string code_of(const LatLon& point) {
  const auto number = [](double value) { return py::repr(py::float_(value)).cast<std::string>(); };
  return "LatLon(" + number(point.fetchLat()) + ", " + number(point.fetchLon()) +
         (point.fetchAltitude() == 0.0 ? "" : ", " + number(point.fetchAltitude())) + ")";
}

constexpr const char* kClassText = R"(A point on the globe: latitude, longitude, altitude.

The latitude is clamped into [-90, 90], the longitude wrapped into [0, 360).

Parameters
----------
lat, lon : float
    Degrees.
altitude : float, optional
    In any unit; it is kept as it is.

Examples
--------
>>> import kzgis
>>> vienna = kzgis.LatLon(48.2, 16.37)
>>> vienna
LatLon(48.2, 16.37)
>>> vienna.direction(kzgis.LatLon(47.8, 13.05))
'south-west'
>>> kzgis.LatLon(-45.5, -10).dms
((-45.0, -30.0, 0.0), (350.0, 0.0, 0.0))
)";

constexpr const char* kDistanceText =
    R"(The squared distance in square arc-seconds, on the flat plane of latitude and longitude.

No cosine of the latitude, no way round across longitude 0, no altitude: good only for comparing.

Parameters
----------
other : LatLon

Returns
-------
float
)";

constexpr const char* kDirectionText =
    R"(Where another point lies, seen from this one.

By comparison of the stored angles: longitude 1 lies to the west of longitude 359.

Parameters
----------
other : LatLon

Returns
-------
str
    'north', 'north-east', 'east', 'south-east', 'south', 'south-west', 'west', 'north-west' or
    'same place', also when a coordinate is not a number.
)";

}  // namespace

void add_latlon(py::module_& module) {
  py::class_<LatLon>(module, "LatLon", kClassText)
      .def(py::init<double, double, double>(), py::arg("lat"), py::arg("lon"),
           py::arg("altitude") = 0.0)
      .def_static(
          "from_dms",
          [](const std::array<double, 3>& lat, const std::array<double, 3>& lon, double altitude) {
            return LatLon(lat.data(), lon.data(), altitude);
          },
          py::arg("lat"), py::arg("lon"), py::arg("altitude") = 0.0,
          "From (degrees, minutes, seconds) each, every component with its own sign.")
      .def_static(
          "from_arcsec",
          [](std::int64_t lat, std::int64_t lon, double altitude) {
            return LatLon(lat, lon, altitude);
          },
          py::arg("lat"), py::arg("lon"), py::arg("altitude") = 0.0,
          "From whole arc-seconds, 3600 to a degree.")
      .def_property_readonly(
          "lat", [](const LatLon& point) { return point.fetchLat(); }, "Degrees, [-90, 90].")
      .def_property_readonly(
          "lon", [](const LatLon& point) { return point.fetchLon(); }, "Degrees, [0, 360).")
      .def_property_readonly(
          "altitude", [](const LatLon& point) { return point.fetchAltitude(); }, "As it was given.")
      .def_property_readonly("dms", &dms_of,
                             "Two triples of degrees, minutes and seconds, all with the sign.")
      .def_property_readonly("arcsec", &arcsec_of,
                             "Whole arc-seconds, truncated; -2147483648 for what is not finite.")
      .def(
          "distance_squared", [](const LatLon& a, const LatLon& b) { return a.distanceSQ(b); },
          py::arg("other"), kDistanceText)
      .def(
          "direction",
          [](const LatLon& a, const LatLon& b) {
            return kDirections.at(static_cast<std::size_t>(a.whichWay(b)));
          },
          py::arg("other"), kDirectionText)
      .def(
          "__add__", [](LatLon a, const LatLon& b) { return a += b; }, py::is_operator())
      .def(
          "__sub__", [](LatLon a, const LatLon& b) { return a -= b; }, py::is_operator())
      .def(
          "__eq__", [](const LatLon& a, const LatLon& b) { return a == b; }, py::is_operator())
      .def(
          "__ne__", [](const LatLon& a, const LatLon& b) { return a != b; }, py::is_operator())
      .def("__hash__",
           [](const LatLon& point) {
             return py::hash(py::make_tuple(point.fetchLat(), point.fetchLon()));
           })
      .def("__str__", &text_of)
      .def("__repr__", &code_of)
      .def(py::pickle(
          [](const LatLon& point) {
            return py::make_tuple(point.fetchLat(), point.fetchLon(), point.fetchAltitude());
          },
          [](const py::tuple& state) {
            return LatLon(state[0].cast<double>(), state[1].cast<double>(),
                          state[2].cast<double>());
          }));
}

}  // namespace kzgis::python
