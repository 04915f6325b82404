// Files that cut polygons at the antimeridian close the rings along it, and by way of a pole.

#include "tools/map/coasts.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

namespace kzgis::map {
namespace {

// Files write the seam as 180 or as 179.99999...
constexpr double kSeamTolerance_deg = 1e-6;

bool on_pole(double lat) { return std::fabs(lat) >= 90.0 - kSeamTolerance_deg; }

bool on_antimeridian(double lon) {
  return std::fabs(std::fabs(std::remainder(lon, 360.0)) - 180.0) <= kSeamTolerance_deg;
}

/// A ring, without its repeated end.
struct Ring {
  std::span<const double> lon, lat;

  std::size_t size() const { return lon.size(); }
  std::size_t after(std::size_t i) const { return i + 1 == size() ? 0 : i + 1; }
  double width(std::size_t side) const { return std::fabs(lon[after(side)] - lon[side]); }

  bool closes_only(std::size_t side) const {
    const std::size_t end = after(side);
    if (on_pole(lat[side]) && on_pole(lat[end])) return true;
    return on_antimeridian(lon[side]) && on_antimeridian(lon[end]) &&
           width(side) <= 2.0 * kSeamTolerance_deg;
  }

  /// Whether it is a band round the whole globe, given by its corners alone.
  bool is_band() const {
    bool is_round = false;
    for (std::size_t i = 0; i < size(); ++i) {
      if (width(i) != 0.0 && width(i) != 360.0) return false;
      is_round = is_round || width(i) != 0.0;
    }
    return is_round;
  }
};

Ring ring_of(const Rings& rings, std::size_t index) {
  const auto first = static_cast<std::size_t>(rings.starts[index]);
  std::size_t end = index + 1 < rings.starts.size()
                        ? static_cast<std::size_t>(rings.starts[index + 1])
                        : rings.x.size();
  while (end > first + 1 && rings.x[end - 1] == rings.x[first] &&
         rings.y[end - 1] == rings.y[first]) {
    --end;
  }
  return {rings.x.subspan(first, end - first), rings.y.subspan(first, end - first)};
}

}  // namespace

void begin_line(Outline& lines, double lon, double lat) {
  lines.starts.push_back(static_cast<std::int32_t>(lines.x.size()));
  go_to(lines, lon, lat);
}

void go_to(Outline& lines, double lon, double lat) {
  lines.x.push_back(lon);
  lines.y.push_back(lat);
}

void go_all_the_way_to(Outline& lines, double lon, double lat) {
  const double from_lon = lines.x.back();
  const double from_lat = lines.y.back();
  const int pieces = static_cast<int>(std::ceil(std::fabs(lon - from_lon) / 180.0));
  for (int i = 1; i < pieces; ++i) {
    const double t = static_cast<double>(i) / pieces;
    go_to(lines, from_lon + t * (lon - from_lon), from_lat + t * (lat - from_lat));
  }
  go_to(lines, lon, lat);
}

Coasts coasts_of(const Rings& rings) {
  Coasts coasts;
  for (std::size_t r = 0; r < rings.starts.size(); ++r) {
    const Ring ring = ring_of(rings, r);
    if (ring.size() < 3) continue;
    const bool is_band = ring.is_band();
    Outline* previous = nullptr;
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const std::size_t end = ring.after(i);
      Outline& lines = ring.closes_only(i) ? coasts.seams : coasts.real;
      if (&lines != previous) begin_line(lines, ring.lon[i], ring.lat[i]);
      (is_band ? go_all_the_way_to : go_to)(lines, ring.lon[end], ring.lat[end]);
      previous = &lines;
    }
  }
  return coasts;
}

}  // namespace kzgis::map
