// Points by the chart, lines and polygons by outline.h.

#include "tools/project/map_feature.h"

#include <kzgis/outline.h>

#include <algorithm>
#include <numeric>
#include <utility>

#include "tools/support/degrees.h"

namespace kzgis::tools {

namespace {

void draw_points(const ShapeRecord& record, const Chart& chart, MapFeature& feature) {
  for (std::size_t i = 0; i < record.x.size(); ++i) {
    double x = 0.0;
    double y = 0.0;
    if (chart.project(record.y.subspan(i, 1), record.x.subspan(i, 1), {&x, 1}, {&y, 1}) > 0) {
      ++feature.placeless;
      continue;
    }
    feature.parts.x.push_back(x);
    feature.parts.y.push_back(y);
  }
}

/// Puts holes behind the rings that they lie in.
Error sort_rings(MapFeature& feature) {
  const auto nesting = nest(feature.parts.rings());
  if (!nesting) return {nesting.error().kind, nesting.error().message};
  const std::size_t count = feature.parts.starts.size();
  const auto is_hole = [&](std::size_t ring) { return nesting->depth[ring] % 2 == 0; };
  const auto outer = [&](std::size_t ring) {
    return is_hole(ring) ? static_cast<std::size_t>(nesting->parent[ring]) : ring;
  };
  std::vector<std::size_t> order(count);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return std::pair(outer(a), is_hole(a)) < std::pair(outer(b), is_hole(b));
  });
  Outline sorted;
  for (const std::size_t ring : order) {
    const auto begin = static_cast<std::ptrdiff_t>(feature.parts.starts[ring]);
    const auto end = static_cast<std::ptrdiff_t>(feature.end_of(ring));
    sorted.starts.push_back(static_cast<std::int32_t>(sorted.x.size()));
    const std::vector<double>& x = feature.parts.x;
    const std::vector<double>& y = feature.parts.y;
    sorted.x.insert(sorted.x.end(), x.begin() + begin, x.begin() + end);
    sorted.y.insert(sorted.y.end(), y.begin() + begin, y.begin() + end);
    feature.is_hole.push_back(is_hole(ring));
  }
  feature.parts = std::move(sorted);
  return {};
}

}  // namespace

std::size_t MapFeature::end_of(std::size_t part) const {
  return part + 1 < parts.starts.size() ? static_cast<std::size_t>(parts.starts[part + 1])
                                        : parts.x.size();
}

Result<MapFeature> draw_record(const ShapeRecord& record, const Chart& chart, double tolerance) {
  std::string wrong = why_not_degrees(record.x, record.y);
  if (!wrong.empty()) return Error{ErrorKind::bad_argument, std::move(wrong)};
  MapFeature feature;
  feature.record = record.number;
  feature.kind = kind_of(record.type).value_or(ShapeKind::null);
  if (feature.kind == ShapeKind::points) {
    feature.many = holds_many(record.type);
    draw_points(record, chart, feature);
    return feature;
  }
  const bool lines = feature.kind == ShapeKind::lines;
  auto drawn = lines ? project_lines(chart, record.rings(), tolerance)
                     : project_area(chart, record.rings(), tolerance);
  if (!drawn) return Error{drawn.error().kind, drawn.error().message};
  feature.parts = *std::move(drawn);
  if (!lines) {
    if (Error error = sort_rings(feature)) return error;
  }
  return feature;
}

}  // namespace kzgis::tools
