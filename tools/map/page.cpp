// How large a map is on its chart, and where on the page that lies.

#include "tools/map/page.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "tools/support/command_error.h"

namespace kzgis::map {
namespace {

/// What was drawn, or the end of the subcommand.
template <typename E>
Outline drawn(Result<Outline, E> outline) {
  if (!outline) tools::fail(outline.error());
  return std::move(*outline);
}

Box bounds_of_frame(const Chart& chart, double tolerance) {
  const Outline frame = drawn(chart_frame(chart, tolerance));
  if (frame.x.empty()) throw tools::UsageError("--box: this projection shows nothing of it");
  const auto [west, east] = std::minmax_element(frame.x.begin(), frame.x.end());
  const auto [south, north] = std::minmax_element(frame.y.begin(), frame.y.end());
  return {*west, *south, *east, *north};
}

double width_of(const Box& box) { return box.max_x - box.min_x; }
double height_of(const Box& box) { return box.max_y - box.min_y; }

/// The rectangle about the map, to a fraction of a pixel of a large page.
Box extent_of(const Chart& chart) {
  const Box about = bounds_of_frame(chart, 1e-2);
  return bounds_of_frame(chart, 1e-5 * std::max(width_of(about), height_of(about)));
}

bool holds(const Box& box, double x, double y) {
  return box.min_x <= x && x <= box.max_x && box.min_y <= y && y <= box.max_y;
}

}  // namespace

double aspect(const Chart& chart) {
  const Box extent = extent_of(chart);
  return width_of(extent) / height_of(extent);
}

Page::Page(const Chart& chart, double left, double top, double width, double height)
    : chart_(chart) {
  const Box extent = extent_of(chart);
  scale_ = std::min(width / width_of(extent), height / height_of(extent));
  left_ = left + 0.5 * width - 0.5 * (extent.min_x + extent.max_x) * scale_;
  top_ = top + 0.5 * height + 0.5 * (extent.min_y + extent.max_y) * scale_;
  radius_ = 0.5 * width_of(extent);
}

Outline Page::area(const Rings& degrees) const {
  return to_page(drawn(project_area(chart_, degrees, tolerance())));
}

Outline Page::lines(const Rings& degrees) const {
  return to_page(drawn(project_lines(chart_, degrees, tolerance())));
}

Outline Page::graticule(double step_deg) const {
  return to_page(drawn(kzgis::graticule(chart_, step_deg, tolerance())));
}

// So long and even a curve shows its chords sooner than coasts do.
Outline Page::frame() const { return to_page(drawn(chart_frame(chart_, 0.1 * tolerance()))); }

std::optional<Pixel> Page::place(double lon, double lat) const {
  double x = 0.0;
  double y = 0.0;
  if (chart_.project({&lat, 1}, {&lon, 1}, {&x, 1}, {&y, 1}) != 0) return std::nullopt;
  const ChartParameters& shown = chart_.parameters();
  const bool is_shown =
      shown.reach_deg ? std::hypot(x, y) <= radius_
                      : holds(*shown.window, std::remainder(lon - shown.base_lon, 360.0), lat);
  if (!is_shown) return std::nullopt;
  return Pixel{left_ + x * scale_, top_ - y * scale_};
}

double Page::tolerance() const {
  constexpr double kTolerance_px = 0.12;
  return kTolerance_px / scale_;
}

Outline Page::to_page(Outline drawn) const {
  for (std::size_t i = 0; i < drawn.x.size(); ++i) {
    drawn.x[i] = left_ + drawn.x[i] * scale_;
    drawn.y[i] = top_ - drawn.y[i] * scale_;
  }
  return drawn;
}

}  // namespace kzgis::map
