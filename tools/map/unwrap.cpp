// From a shapefile's edges, which are straight in longitude and latitude, to rings and lines
// that know nothing of the antimeridian any more.

#include "tools/map/unwrap.h"

#include <cmath>
#include <cstddef>

#include "tools/support/areas.h"

namespace kzgis::map {
namespace {

// Files write the seam as 180 or as 179.99999...
constexpr double kSeamTolerance_deg = 1e-6;

bool on_pole(const Geo& p) { return std::fabs(p.lat) >= 90.0 - kSeamTolerance_deg; }

bool on_antimeridian(const Geo& p) {
  return std::fabs(std::fabs(std::remainder(p.lon, 360.0)) - 180.0) <= kSeamTolerance_deg;
}

bool closes_only(const Geo& a, const Geo& b) {
  if (on_pole(a) && on_pole(b)) return true;
  return on_antimeridian(a) && on_antimeridian(b) &&
         std::fabs(a.lon - b.lon) <= 2.0 * kSeamTolerance_deg;
}

// What to add to b's longitude so that the edge from a goes the short way.
double turn(const Geo& a, const Geo& b) {
  const double d = b.lon - a.lon;
  if (std::fabs(d) <= 180.0 || (on_pole(a) && on_pole(b))) return 0.0;
  return -360.0 * std::round(d / 360.0);
}

GeoLine finite_points(const GeoLine& line) {
  GeoLine out;
  out.reserve(line.size() + 3);  // room for a way by the pole
  for (const Geo& p : line) {
    if (std::isfinite(p.lon) && std::isfinite(p.lat)) out.push_back(p);
  }
  return out;
}

double area_of(const GeoLine& ring) {
  return 0.5 * std::fabs(tools::twice_ring_area(
                   ring.size(), [&](std::size_t i) { return ring[i].lon; },
                   [&](std::size_t i) { return ring[i].lat; }));
}

void add_line(std::vector<GeoLine>& lines, const Geo& a, const Geo& b, bool continues) {
  if (continues) {
    lines.back().push_back(b);
  } else {
    lines.push_back({a, b});
  }
}

}  // namespace

void shift_longitudes(std::vector<GeoLine>& lines, double base_lon) {
  for (GeoLine& line : lines) {
    for (Geo& p : line) p.lon -= base_lon;
  }
}

GeoLine unwrap_line(const GeoLine& line) {
  GeoLine out = finite_points(line);
  for (std::size_t i = 1; i < out.size(); ++i) out[i].lon += turn(out[i - 1], out[i]);
  return out;
}

Ring unwrap_ring(const GeoLine& source) {
  GeoLine raw = finite_points(source);
  while (raw.size() > 1 && raw.front().lon == raw.back().lon && raw.front().lat == raw.back().lat) {
    raw.pop_back();
  }
  if (raw.size() < 3) return {};

  Ring ring;
  ring.points = unwrap_line(raw);
  ring.first_added_edge = ring.points.size();
  const Geo first = ring.points.front();
  const Geo last = ring.points.back();
  const double shift = turn(last, first);
  if (shift == 0.0) {
    // A band round the whole globe, given by its corners alone: its long edges look like
    // crossings of the antimeridian, and taken so they leave nothing.
    constexpr double kNothing = 1e-9;
    if (area_of(ring.points) < kNothing && area_of(raw) > kNothing) ring.points = raw;
    return ring;
  }

  double lat_sum = 0.0;
  for (const Geo& p : ring.points) lat_sum += p.lat;
  const double pole = lat_sum < 0.0 ? -90.0 : 90.0;
  ring.points.push_back({first.lon + shift, first.lat});
  ring.points.push_back({first.lon + shift, pole});
  ring.points.push_back({first.lon, pole});
  return ring;
}

Shape prepare_polygon(const std::vector<GeoLine>& parts, double base_lon) {
  Shape shape;
  for (const GeoLine& part : parts) {
    const Ring ring = unwrap_ring(part);
    const std::size_t n = ring.points.size();
    if (n == 0) continue;
    bool previous_is_real = false;
    bool previous_is_seam = false;
    for (std::size_t i = 0; i < n; ++i) {
      const Geo& a = ring.points[i];
      const Geo& b = ring.points[(i + 1) % n];
      const bool seam = i >= ring.first_added_edge || closes_only(a, b);
      if (seam) {
        add_line(shape.seams, a, b, previous_is_seam);
      } else {
        add_line(shape.outlines, a, b, previous_is_real);
      }
      previous_is_seam = seam;
      previous_is_real = !seam;
    }
    shape.rings.push_back(ring.points);
  }
  shift_longitudes(shape.rings, base_lon);
  shift_longitudes(shape.outlines, base_lon);
  shift_longitudes(shape.seams, base_lon);
  return shape;
}

std::vector<GeoLine> prepare_lines(const std::vector<GeoLine>& parts, double base_lon) {
  std::vector<GeoLine> lines;
  for (const GeoLine& part : parts) {
    GeoLine line = unwrap_line(part);
    if (line.size() >= 2) lines.push_back(std::move(line));
  }
  shift_longitudes(lines, base_lon);
  return lines;
}

}  // namespace kzgis::map
