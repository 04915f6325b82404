// The globe itself: positions in space from its centre.  Altitudes are part of them, so that
// the formulas work with the radius and not on a globe of radius 1.

#include "chart/families.h"

namespace kzgis::chart {
namespace {

std::size_t project_globe(const ChartConstants& given, const Spans& spans) {
  const double radius = given.radius;
  std::size_t without_place = 0;
  const std::size_t n = spans.size();
  for (std::size_t i = 0; i < n; ++i) {
    const double lat_deg = spans.from_a[i];
    const double lon_deg = spans.from_b[i];
    const double r = spans.has_c ? radius + spans.from_c[i] : kNoPlace;
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    const bool placed =
        std::fabs(lat_deg) <= 90.0 && std::isfinite(lon_deg) && std::isfinite(r) && r > 0.0;
    if (placed) {
      const SinCos lat = sin_cos(lat_deg);
      const SinCos lon = sin_cos(wrap(lon_deg));
      x = r * lat.cos * lon.cos;
      y = r * lat.cos * lon.sin;
      z = r * lat.sin;
    }
    without_place += put(spans, i, placed, x, y, z);
  }
  return without_place;
}

std::size_t unproject_globe(const ChartConstants& given, const Spans& spans) {
  const double radius = given.radius;
  std::size_t without_place = 0;
  const std::size_t n = spans.size();
  for (std::size_t i = 0; i < n; ++i) {
    const double x = spans.from_a[i];
    const double y = spans.from_b[i];
    const double z = spans.has_c ? spans.from_c[i] : kNoPlace;
    const double from_axis = std::hypot(x, y);
    const double r = std::hypot(from_axis, z);
    const double lat_deg = std::atan2(z, from_axis) / kDegree;
    const double lon_deg = std::atan2(y, x) / kDegree;
    const bool placed = std::isfinite(r) && r > 0.0;
    without_place += put(spans, i, placed, std::clamp(lat_deg, -90.0, 90.0),
                         placed ? wrap(lon_deg) : 0.0, r - radius);
  }
  return without_place;
}

}  // namespace

std::size_t convert_globe(Way way, const ChartConstants& constants, const Spans& spans) {
  return way == Way::there ? project_globe(constants, spans) : unproject_globe(constants, spans);
}

}  // namespace kzgis::chart
