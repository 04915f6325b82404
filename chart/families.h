// What the families of projections offer to the chart, and the loop over points that all of
// the flat ones share.

#ifndef KZGIS_CHART_FAMILIES_H
#define KZGIS_CHART_FAMILIES_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
#include <string>

#include "chart/angles.h"
#include "kzgis/chart.h"

namespace kzgis::chart {

/// Which way points go: from degrees to the map, or from the map to degrees.
enum class Way { there, back };

/// The spans of one call.  In degrees a is the latitude, b the longitude and c the altitude; on
/// the map they are x, y and z.  A call without altitudes has no c at all.
struct Spans {
  std::span<const double> from_a, from_b, from_c;
  std::span<double> to_a, to_b, to_c;
  bool has_c;

  std::size_t size() const {
    std::size_t n = std::min({from_a.size(), from_b.size(), to_a.size(), to_b.size()});
    if (has_c) n = std::min({n, from_c.size(), to_c.size()});
    return n;
  }
};

inline constexpr double kNoPlace = std::numeric_limits<double>::quiet_NaN();

/// Writes point i.  All of it has been read by then, so that arrays may be the same.
/// @return 1 when there is no place for it, else 0
inline std::size_t put(const Spans& spans, std::size_t i, bool placed, double a, double b,
                       double c) {
  if (!placed) a = b = c = kNoPlace;
  spans.to_a[i] = a;
  spans.to_b[i] = b;
  if (spans.has_c) spans.to_c[i] = c;
  return placed ? 0 : 1;
}

/// Projects every point by a flat projection on the globe of radius 1,
///   static bool Flat::forward(const ChartConstants&, double lat_deg, double dlon_deg,
///                             double& x, double& y);
/// it gets latitudes within -90 to 90 and longitudes from the base in [-180, 180), and answers
/// false when there is no place for them.
template <class Flat>
std::size_t project_each(const ChartConstants& given, const Spans& spans) {
  const ChartConstants k = given;  // its own, which what is written cannot change
  std::size_t without_place = 0;
  const std::size_t n = spans.size();
  for (std::size_t i = 0; i < n; ++i) {
    const double lat = spans.from_a[i];
    const double lon = spans.from_b[i];
    const double alt = spans.has_c ? spans.from_c[i] : 0.0;
    double x = 0.0;
    double y = 0.0;
    bool placed = std::fabs(lat) <= 90.0 && std::isfinite(lon) && std::isfinite(alt);
    if (placed) {
      // Brought near to 0 first, where the difference of two longitudes keeps its digits.
      placed = Flat::forward(k, lat, wrap(wrap(lon) - k.base_lon_deg), x, y);
    }
    x *= k.radius;
    y *= k.radius;
    placed = placed && std::isfinite(x) && std::isfinite(y);
    without_place += put(spans, i, placed, x, y, alt);
  }
  return without_place;
}

/// The way back, by
///   static bool Flat::inverse(const ChartConstants&, double x, double y,
///                             double& lat_deg, double& dlon_deg);
/// it gets finite numbers, and answers false when no point of the globe lies there.
template <class Flat>
std::size_t unproject_each(const ChartConstants& given, const Spans& spans) {
  const ChartConstants k = given;
  std::size_t without_place = 0;
  const std::size_t n = spans.size();
  for (std::size_t i = 0; i < n; ++i) {
    const double x = spans.from_a[i] / k.radius;
    const double y = spans.from_b[i] / k.radius;
    const double z = spans.has_c ? spans.from_c[i] : 0.0;
    double lat = 0.0;
    double dlon = 0.0;
    bool placed = std::isfinite(x) && std::isfinite(y) && std::isfinite(z) &&
                  Flat::inverse(k, x, y, lat, dlon);
    placed = placed && std::isfinite(lat) && std::isfinite(dlon);
    if (placed) {
      lat = std::clamp(lat, -90.0, 90.0);
      dlon = wrap(k.base_lon_deg + dlon);
    }
    without_place += put(spans, i, placed, lat, dlon, z);
  }
  return without_place;
}

template <class Flat>
std::size_t convert_each(Way way, const ChartConstants& constants, const Spans& spans) {
  return way == Way::there ? project_each<Flat>(constants, spans)
                           : unproject_each<Flat>(constants, spans);
}

// Each family prepares what a projection of it needs of the parameters, which lie in their ranges
// and are filled in (the answer is empty, or says why there is no such chart), and converts
// points, with one choice of the projection for all of them.

std::string prepare_cylindrical(projType, const ChartParameters&, ChartConstants&);
std::size_t convert_cylindrical(projType, Way, const ChartConstants&, const Spans&);

std::size_t convert_azimuthal(projType, Way, const ChartConstants&, const Spans&);

std::string prepare_conic(projType, const ChartParameters&, ChartConstants&);
std::size_t convert_conic(projType, Way, const ChartConstants&, const Spans&);

std::string prepare_pseudoconic(projType, const ChartParameters&, ChartConstants&);
std::size_t convert_pseudoconic(Way, const ChartConstants&, const Spans&);

std::size_t convert_globe(Way, const ChartConstants&, const Spans&);

/// A number as a message shows it: with as many digits as tell it from others.
std::string text_of(double number);

}  // namespace kzgis::chart

#endif
