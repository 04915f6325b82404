// Every point of a triangle, row after row.

#include "mesh/deviation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>

#include "exact/predicates.h"

namespace kzgis::mesh {

namespace {

/// What rounding can do to a comparison, as a share of the doubled area.
double slack_of(const HeightField& field) {
  double lowest = std::numeric_limits<double>::infinity();
  double highest = -lowest;
  double unit = 0x1p+127;  // a power of two of which all elevations are whole multiples
  for (const float elevation : field.elevations()) {
    if (!std::isfinite(elevation)) continue;
    const double z = elevation;
    lowest = std::min(lowest, z);
    highest = std::max(highest, z);
    while (z / unit != std::trunc(z / unit)) unit /= 2.0;
  }
  if (!(lowest < highest)) return 0.0;
  const double range = highest - lowest;
  const double units = range / unit * 2.0 * static_cast<double>(field.size());
  return units <= 0x1p+53 ? 0.0 : 8.0 * std::numeric_limits<double>::epsilon() * range;
}

/// A whole number that changes by steps eastwards and southwards: twice the area between two
/// corners and a point, which is nowhere negative in the triangle.
struct Area {
  std::int64_t by_column, by_row;
  std::int64_t value;  ///< at the west of the row that is looked at

  /// @param x, y  the place of the first value
  Area(const exact::Point& from, const exact::Point& to, double x, double y)
      : by_column(static_cast<std::int64_t>(from.y - to.y)),
        by_row(static_cast<std::int64_t>(from.x - to.x)),
        value(static_cast<std::int64_t>((to.x - from.x) * (y - from.y) -
                                        (to.y - from.y) * (x - from.x))) {}

  /// Narrows a range of columns to those where the value is not negative.
  void narrow(std::int64_t& first, std::int64_t& last) const {
    if (by_column > 0 && value < 0) {
      first = std::max(first, (-value + by_column - 1) / by_column);
    } else if (by_column < 0) {
      last = value < 0 ? -1 : std::min(last, value / -by_column);
    }
  }

  double at(std::int64_t column) const { return static_cast<double>(value + column * by_column); }
};

}  // namespace

Judge::Judge(const HeightField& field, double tolerance)
    : field_(&field), slack_(slack_of(field)), bearable_(tolerance - slack_) {}

Deviation Judge::worst(std::uint32_t a, std::uint32_t b, std::uint32_t c) const {
  const std::span<const exact::Point> points = field_->points();
  const std::span<const float> z = field_->elevations();
  const exact::Point& pa = points[a];
  const exact::Point& pb = points[b];
  const exact::Point& pc = points[c];
  const double west = std::min({pa.x, pb.x, pc.x});
  const double north = std::max({pa.y, pb.y, pc.y});
  Area of_a(pb, pc, west, north);
  Area of_b(pc, pa, west, north);
  Area of_c(pa, pb, west, north);
  const double area = static_cast<double>(of_a.value + of_b.value + of_c.value);
  Deviation worst;
  if (area == 1.0) return worst;  // no point of the grid but its corners

  const double za = z[a];
  const double zb = z[b] - za;
  const double zc = z[c] - za;
  // The largest double that is no larger than the product.
  double most = bearable_ * area;
  if (std::fma(bearable_, area, -most) < 0.0) most = std::nextafter(most, 0.0);

  const auto columns = static_cast<std::int64_t>(std::max({pa.x, pb.x, pc.x}) - west);
  const auto rows = static_cast<std::int64_t>(north - std::min({pa.y, pb.y, pc.y}));
  std::int64_t start = (field_->rows() - 1 - static_cast<std::int64_t>(north)) * field_->columns() +
                       static_cast<std::int64_t>(west);
  for (std::int64_t row = 0; row <= rows; ++row, start += field_->columns()) {
    std::int64_t first = 0;
    std::int64_t last = columns;
    for (const Area* side : {&of_a, &of_b, &of_c}) side->narrow(first, last);
    double at_b = of_b.at(first);
    double at_c = of_c.at(first);
    for (std::int64_t column = first; column <= last; ++column) {
      const auto point = static_cast<std::uint32_t>(start + column);
      const double deviation = std::fabs(at_b * zb + at_c * zc - area * (z[point] - za));
      if (deviation > most ||
          (deviation == most && worst.point != kNone && turn_of(point) < turn_of(worst.point))) {
        most = deviation;
        worst.point = point;
      }
      at_b += static_cast<double>(of_b.by_column);
      at_c += static_cast<double>(of_c.by_column);
    }
    for (Area* side : {&of_a, &of_b, &of_c}) side->value += side->by_row;
  }
  if (worst.point != kNone) worst.height = most / area;
  return worst;
}

}  // namespace kzgis::mesh
