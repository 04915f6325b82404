// Which way round the globe sides go, and with them their rings.

#include "chart/sides.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "chart/angles.h"

namespace kzgis::chart {
namespace {

bool on_poles(double lat, double other) {
  return std::fabs(lat) >= 90.0 && std::fabs(other) >= 90.0;
}

/// How far to the east a side goes.
///
/// @param as_given  not the short way
double way(double lon, double lat, double end_lon, double end_lat, bool as_given) {
  double d = end_lon - lon;
  if (!(std::fabs(d) <= 720.0)) d = wrap(end_lon) - wrap(lon);
  // Two turns along a pole are none, by the odd-even rule.
  if (on_poles(lat, end_lat) || as_given) {
    return std::fabs(d) <= 360.0 ? d : d - 720.0 * std::round(d / 720.0);
  }
  return std::fabs(d) <= 180.0 ? d : d - 360.0 * std::round(d / 360.0);
}

class Builder {
 public:
  Builder(std::span<const double> lon, std::span<const double> lat, double base_lon)
      : raw_lon_(lon), n_(lat.size()) {
    const double base = wrap(base_lon);
    course_.lon.reserve(n_);
    course_.lat.reserve(n_);
    for (std::size_t i = 0; i < n_; ++i) {
      course_.lon.push_back(wrap(wrap(lon[i]) - base));
      course_.lat.push_back(std::clamp(lat[i], -90.0, 90.0));
    }
  }

  /// Adds the sides between vertices that follow each other.
  void add(std::size_t sides, bool as_given) {
    course_.sides.clear();
    course_.sides.reserve(sides);
    turns_ = 0;
    for (std::size_t i = 0; i < sides; ++i) add_side(i, i + 1 == n_ ? 0 : i + 1, as_given);
  }

  /// Closes a ring.
  void close() {
    add(n_, false);
    if (falls_flat()) add(n_, true);
    if (turns_ % 2 != 0) {
      double sum = 0.0;
      for (const double lat : course_.lat) sum += lat;
      course_.pole = sum < 0.0 ? -1 : 1;
    }
  }

  Course course() { return std::move(course_); }

 private:
  void add_side(std::size_t a, std::size_t b, bool as_given) {
    const std::vector<double>& lon = course_.lon;
    const std::vector<double>& lat = course_.lat;
    const double d = way(raw_lon_[a], lat[a], raw_lon_[b], lat[b], as_given);
    const double beyond = lon[a] + d - lon[b];
    const auto turns =
        std::fabs(beyond) < 180.0 ? 0 : static_cast<std::int32_t>(std::lround(beyond / 360.0));
    turns_ += turns;
    if (lat[a] == lat[b] && lon[a] == lon[b] && turns == 0) return;
    const auto from = static_cast<std::uint32_t>(a);
    const auto to = static_cast<std::uint32_t>(b);
    const bool reversed = lat[a] != lat[b]   ? lat[b] < lat[a]
                          : lon[a] != lon[b] ? lon[b] < lon[a]
                                             : turns < 0;
    if (reversed) {
      course_.sides.push_back({lon[b], lat[b], lon[a], lat[a], -turns, true, from, to});
    } else {
      course_.sides.push_back({lon[a], lat[a], lon[b], lat[b], turns, false, from, to});
    }
  }

  /// Whether the ring, apart from poles, lies on one meridian only because its sides go the short
  /// way.
  bool falls_flat() const {
    bool wide = false;
    for (std::size_t i = 0; i < n_; ++i) {
      const std::size_t j = i + 1 == n_ ? 0 : i + 1;
      const double a = course_.lat[i];
      const double b = course_.lat[j];
      constexpr double kNothing = 1e-9;
      if (!on_poles(a, b) && std::fabs(way(raw_lon_[i], a, raw_lon_[j], b, false)) > kNothing) {
        return false;
      }
      wide = wide || std::fabs(raw_lon_[j] - raw_lon_[i]) > 180.0;
    }
    return wide;
  }

  std::span<const double> raw_lon_;
  std::size_t n_;
  Course course_;
  std::int64_t turns_ = 0;
};

}  // namespace

Course ring_course(std::span<const double> lon, std::span<const double> lat, double base_lon) {
  std::size_t n = lon.size();
  while (n > 1 && lon[n - 1] == lon[0] && lat[n - 1] == lat[0]) --n;
  if (n < 3) return {};
  Builder builder(lon.first(n), lat.first(n), base_lon);
  builder.close();
  return builder.course();
}

Course line_course(std::span<const double> lon, std::span<const double> lat, double base_lon) {
  Builder builder(lon, lat, base_lon);
  if (lon.size() > 1) builder.add(lon.size() - 1, false);
  return builder.course();
}

}  // namespace kzgis::chart
