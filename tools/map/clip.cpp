// Clipping against the map's window, in degrees, before anything is projected.

#include "tools/map/clip.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace kzgis::map {
namespace {

using Coordinate = double Geo::*;

// Keeps what lies on one side of a border: `sign` +1 keeps coordinates >= limit, -1 those
// <= limit.
GeoLine clip_to_side(const GeoLine& ring, Coordinate axis, double limit, double sign) {
  const Coordinate other = axis == &Geo::lon ? &Geo::lat : &Geo::lon;
  GeoLine out;
  out.reserve(ring.size() + 4);
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const Geo& a = ring[i == 0 ? ring.size() - 1 : i - 1];
    const Geo& b = ring[i];
    const double side_a = sign * (a.*axis - limit);
    const double side_b = sign * (b.*axis - limit);
    if ((side_a < 0.0) != (side_b < 0.0)) {
      Geo crossing{};
      crossing.*axis = limit;  // exactly, so that border edges are seen to lie on the border
      crossing.*other = a.*other + (b.*other - a.*other) * (side_a / (side_a - side_b));
      out.push_back(crossing);
    }
    if (side_b >= 0.0) out.push_back(b);
  }
  return out;
}

}  // namespace

Window bounds(const GeoLine& line) {
  Window box{line.front().lon, line.front().lon, line.front().lat, line.front().lat};
  for (const Geo& p : line) {
    box.west = std::min(box.west, p.lon);
    box.east = std::max(box.east, p.lon);
    box.south = std::min(box.south, p.lat);
    box.north = std::max(box.north, p.lat);
  }
  return box;
}

GeoLine clip_ring(const GeoLine& ring, const Window& window) {
  if (ring.empty()) return {};
  const Window box = bounds(ring);
  if (box.west > window.east || box.east < window.west || box.south > window.north ||
      box.north < window.south) {
    return {};
  }
  GeoLine out = ring;
  if (box.west < window.west) out = clip_to_side(out, &Geo::lon, window.west, 1.0);
  if (box.east > window.east) out = clip_to_side(out, &Geo::lon, window.east, -1.0);
  if (box.south < window.south) out = clip_to_side(out, &Geo::lat, window.south, 1.0);
  if (box.north > window.north) out = clip_to_side(out, &Geo::lat, window.north, -1.0);
  return out;
}

std::optional<std::pair<Geo, Geo>> clip_segment(const Geo& a, const Geo& b, const Window& window) {
  const double d_lon = b.lon - a.lon;
  const double d_lat = b.lat - a.lat;
  // Each border as: where the segment enters or leaves is value / slope.
  struct Border {
    double slope;
    double value;
  };
  const std::array<Border, 4> borders{{{-d_lon, a.lon - window.west},
                                       {d_lon, window.east - a.lon},
                                       {-d_lat, a.lat - window.south},
                                       {d_lat, window.north - a.lat}}};
  double enter = 0.0;
  double leave = 1.0;
  for (const Border& border : borders) {
    if (border.slope == 0.0) {
      if (border.value <= 0.0) return std::nullopt;  // outside, or along the border
    } else if (border.slope < 0.0) {
      enter = std::max(enter, border.value / border.slope);
    } else {
      leave = std::min(leave, border.value / border.slope);
    }
  }
  if (enter >= leave) return std::nullopt;
  const auto at = [&](double t) { return Geo{a.lon + t * d_lon, a.lat + t * d_lat}; };
  return std::pair{enter == 0.0 ? a : at(enter), leave == 1.0 ? b : at(leave)};
}

}  // namespace kzgis::map
