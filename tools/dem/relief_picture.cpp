// The picture of a quadrangle: its relief, and around it what a reader needs.

#include "tools/dem/relief_picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tools/dem/tint.h"
#include "tools/picture/colour.h"
#include "tools/support/areas.h"

namespace kzgis::tools {

namespace {

// The sheet, in pixels: the map has this long side, the rest lies around it.
constexpr double kMapSide = 1100.0;
constexpr double kLargestCell = 12.0;  ///< small grids stay small: there is no more to see
constexpr double kMargin = 40.0;
constexpr double kHead = 92.0;
constexpr double kFoot = 96.0;
constexpr double kNarrowest = 620.0;  ///< what title and legend need

template <typename... Values>
std::string text_of(const char* format, Values... values) {
  std::array<char, 160> text{};
  std::snprintf(text.data(), text.size(), format, values...);
  return text.data();
}

/// 1, 2 or 5 times a power of ten, the largest not above `most`.
double round_step(double most) {
  const double power = std::pow(10.0, std::floor(std::log10(most)));
  for (const double factor : {5.0, 2.0}) {
    if (factor * power <= most) return factor * power;
  }
  return power;
}

const char* unit_name(ElevationUnit unit) {
  switch (unit) {
    case ElevationUnit::feet:
      return "feet";
    case ElevationUnit::metres:
      return "metres";
    default:
      return "";
  }
}

std::string ground_text(const ElevationGrid& grid) {
  switch (grid.plan) {
    case GroundPlan::geographic:
      return text_of("%.6g\" grid", grid.step_y * 3600.0);
    case GroundPlan::utm:
      return text_of("%.6g m grid, UTM zone %d", grid.step_y, std::abs(grid.zone)) +
             (grid.zone < 0 ? " south" : "");
    default:
      return text_of("grid of %.6g", grid.step_y) + (grid.ground_unit == GroundUnit::feet ? " feet"
                                                     : grid.ground_unit == GroundUnit::metres ? " m"
                                                                                              : "");
  }
}

/// Fills the cells around the quadrangle's rim from their neighbours: its sides run across
/// cells, and what lies beyond them is cut off when the picture is drawn.
ElevationGrid with_rim(const ElevationGrid& grid) {
  ElevationGrid wider = grid;
  for (std::int32_t column = 0; column < grid.columns; ++column) {
    std::int32_t first = 0;
    std::int32_t last = grid.rows - 1;
    while (first <= last && std::isnan(grid.at(first, column))) ++first;
    while (last >= first && std::isnan(grid.at(last, column))) --last;
    for (std::int32_t row = 0; row < grid.rows; ++row) {
      if (row >= first && row <= last) continue;  // a void within stays one
      for (const auto& [down, right] : {std::pair{1, 0}, {-1, 0}, {0, 1}, {0, -1}}) {
        const float beside = grid.at(row + down, column + right);
        if (std::isnan(beside)) continue;
        const auto cell = static_cast<std::size_t>(row) * static_cast<std::size_t>(grid.columns) +
                          static_cast<std::size_t>(column);
        wider.elevations[cell] = beside;
        break;
      }
    }
  }
  return wider;
}

/// The parts of the picture, drawn from the back to the front.
class Sheet {
 public:
  Sheet(const ElevationGrid& grid, const ReliefStyle& style) : grid_(grid), style_(style) {
    const CellSize cell = cell_size(grid);
    const double width_m = cell.x_m * static_cast<double>(grid.columns);
    const double height_m = cell.y_m * static_cast<double>(grid.rows);
    metres_per_pixel_ = std::max({width_m / kMapSide, height_m / kMapSide, cell.x_m / kLargestCell,
                                  cell.y_m / kLargestCell});
    map_width_ = std::max(1.0, width_m / metres_per_pixel_);
    map_height_ = std::max(1.0, height_m / metres_per_pixel_);
  }

  double width() const { return std::round(std::max(map_width_, kNarrowest) + 2.0 * kMargin); }
  double height() const { return std::round(map_height_ + kHead + kFoot); }

  void draw(cairo_t* cairo) {
    cairo_ = cairo;
    set({1.0, 1.0, 1.0});
    cairo_paint(cairo_);
    draw_map();
    draw_head();
    if (style_.tinted && grid_.highest > grid_.lowest) draw_colour_scale();
    if (grid_.ground_unit != GroundUnit::unknown) draw_distance_scale();
  }

 private:
  double map_left() const { return 0.5 * (width() - map_width_); }

  void set(const Colour& c) { set_colour(cairo_, c); }

  void say(double x, double y, double size, const std::string& text, double align) {
    cairo_select_font_face(cairo_, "serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cairo_, size);
    cairo_text_extents_t extents;
    cairo_text_extents(cairo_, text.c_str(), &extents);
    set(colours::text);
    cairo_move_to(cairo_, x - align * extents.width - extents.x_bearing, y);
    cairo_show_text(cairo_, text.c_str());
  }

  /// The colour of a place by its height and its light; level ground of one height takes the
  /// middle of the ramp.
  Colour colour_of(float elevation, float light) const {
    const double span = static_cast<double>(grid_.highest) - grid_.lowest;
    const double share = span > 0.0 ? (elevation - grid_.lowest) / span : 0.5;
    const Colour ground = style_.tinted ? tint(share) : Colour{0.94, 0.94, 0.94};
    return style_.shaded ? lit(ground, light) : ground;
  }

  /// The outline of the quadrangle on the sheet; false when the header's corners are not
  /// those of the elevations, to within a cell.
  bool trace_quadrangle() {
    const double cells_right = map_width_ / static_cast<double>(grid_.columns);
    const double cells_down = map_height_ / static_cast<double>(grid_.rows);
    std::array<GroundPoint, 4> cells{};  // the corners, in cells from the north-west
    cairo_new_path(cairo_);
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const GroundPoint& corner = grid_.corners[i];
      cells[i] = {(corner.x - grid_.west) / grid_.step_x + 0.5,
                  (grid_.north - corner.y) / grid_.step_y + 0.5};
      if (!(std::fabs(cells[i].x) < 1e6 && std::fabs(cells[i].y) < 1e6)) return false;
      cairo_line_to(cairo_, map_left() + cells[i].x * cells_right, kHead + cells[i].y * cells_down);
    }
    cairo_close_path(cairo_);
    const auto filled = static_cast<double>(grid_.elevations.size() - grid_.empty_cells);
    const double rim = static_cast<double>(2 * (grid_.columns + grid_.rows));
    const double area = 0.5 * std::fabs(twice_ring_area(
                                  cells.size(), [&](std::size_t i) { return cells[i].x; },
                                  [&](std::size_t i) { return cells[i].y; }));
    // Corners are points: those of a single row or column enclose nothing to be seen.
    return std::fabs(area - filled) <= rim && area >= 0.5 * filled;
  }

  /// The relief, cut to the quadrangle that the header describes where that can be believed.
  void draw_map() {
    cairo_save(cairo_);
    const bool framed = trace_quadrangle();
    cairo_path_t* const quadrangle = cairo_copy_path(cairo_);
    if (framed) cairo_clip(cairo_);
    cairo_new_path(cairo_);  // or the next shape to be filled would have it too
    draw_cells(framed ? with_rim(grid_) : grid_);
    cairo_restore(cairo_);
    if (framed) {
      cairo_append_path(cairo_, quadrangle);
      set(colours::frame);
      cairo_set_line_width(cairo_, 1.0);
      cairo_stroke(cairo_);
    }
    cairo_path_destroy(quadrangle);
  }

  /// One cell becomes a square of pixels; the grid is refined so that these are about a pixel
  /// each, and Cairo scales only the rest.
  void draw_cells(const ElevationGrid& coarse) {
    const double pixels = map_width_ / static_cast<double>(grid_.columns);
    const ElevationGrid cells =
        refine(coarse, std::max(1, static_cast<std::int32_t>(std::lround(pixels))));
    const CairoSurface image =
        make_image(static_cast<int>(cells.columns), static_cast<int>(cells.rows));
    paint_cells(image.get(), cells);
    cairo_translate(cairo_, map_left(), kHead);
    cairo_scale(cairo_, map_width_ / static_cast<double>(cells.columns),
                map_height_ / static_cast<double>(cells.rows));
    cairo_set_source_surface(cairo_, image.get(), 0.0, 0.0);
    cairo_pattern_set_filter(cairo_get_source(cairo_), CAIRO_FILTER_GOOD);
    cairo_paint(cairo_);
  }

  /// Cairo keeps a pixel as 0xAARRGGBB in the byte order of the host.
  void paint_cells(cairo_surface_t* image, const ElevationGrid& cells) const {
    const std::vector<float> light = shade(cells, style_.sun);
    cairo_surface_flush(image);
    unsigned char* const bytes = cairo_image_surface_get_data(image);
    const int stride = cairo_image_surface_get_stride(image);
    std::size_t cell = 0;
    for (std::int32_t row = 0; row < cells.rows; ++row) {
      auto* const pixels = reinterpret_cast<std::uint32_t*>(bytes + std::ptrdiff_t{row} * stride);
      for (std::int32_t column = 0; column < cells.columns; ++column, ++cell) {
        const float elevation = cells.elevations[cell];
        if (std::isnan(elevation)) continue;  // stays transparent
        const Colour c = colour_of(elevation, light[cell]);
        const auto byte = [](double part) {
          return static_cast<std::uint32_t>(std::lround(part * 255.0));
        };
        pixels[column] = 0xFF000000U | byte(c.red) << 16U | byte(c.green) << 8U | byte(c.blue);
      }
    }
    cairo_surface_mark_dirty(image);
  }

  void draw_head() {
    const double middle = 0.5 * width();
    say(middle, 44.0, 26.0, grid_.name, 0.5);
    std::string line = ground_text(grid_) + "; " + range_text(grid_);
    if (style_.shaded) {
      line += text_of("; light from %.6g\u00B0, %.6g\u00B0 high", style_.sun.azimuth_deg,
                      style_.sun.altitude_deg);
    }
    say(middle, 72.0, 15.0, line, 0.5);
  }

  /// The ramp with a tick at every round height.
  void draw_colour_scale() {
    const double left = kMargin + 4.0;
    const double top = height() - kFoot + 30.0;
    const double length = 0.5 * (width() - 2.0 * kMargin);
    constexpr double kThick = 16.0;
    for (int x = 0; x < length; ++x) {
      set(tint(x / length));
      cairo_rectangle(cairo_, left + x, top, std::min(1.0, length - x), kThick);
      cairo_fill(cairo_);
    }
    set(colours::frame);
    cairo_set_line_width(cairo_, 0.8);
    cairo_rectangle(cairo_, left, top, length, kThick);
    cairo_stroke(cairo_);
    const double span = static_cast<double>(grid_.highest) - grid_.lowest;
    const double step = round_step(span / 3.0);
    const double first = std::ceil(grid_.lowest / step);
    const double last = std::floor(grid_.highest / step);
    for (int i = 0; first + i <= last; ++i) {
      const double z = (first + i) * step;
      const double x = left + (z - grid_.lowest) / span * length;
      cairo_move_to(cairo_, x, top + kThick);
      cairo_line_to(cairo_, x, top + kThick + 5.0);
      set(colours::frame);
      cairo_stroke(cairo_);
      say(x, top + kThick + 21.0, 14.0, text_of("%.6g", z + 0.0), 0.5);
    }
    say(left + length + 10.0, top + 13.0, 14.0, unit_name(grid_.elevation_unit), 0.0);
  }

  /// A round length of about a quarter of the sheet.
  void draw_distance_scale() {
    const double length_m = round_step(0.25 * width() * metres_per_pixel_);
    const double length = length_m / metres_per_pixel_;
    const double right = width() - kMargin - 4.0;
    const double y = height() - kFoot + 46.0;
    set(colours::frame);
    cairo_set_line_width(cairo_, 1.4);
    cairo_move_to(cairo_, right - length, y - 7.0);
    cairo_line_to(cairo_, right - length, y);
    cairo_line_to(cairo_, right, y);
    cairo_line_to(cairo_, right, y - 7.0);
    cairo_stroke(cairo_);
    say(right - 0.5 * length, y + 21.0, 14.0,
        length_m >= 1000.0 ? text_of("%.6g km", length_m / 1000.0) : text_of("%.6g m", length_m),
        0.5);
  }

  const ElevationGrid& grid_;
  const ReliefStyle& style_;
  cairo_t* cairo_ = nullptr;
  double metres_per_pixel_ = 1.0;
  double map_width_ = 1.0;
  double map_height_ = 1.0;
};

}  // namespace

std::string range_text(const ElevationGrid& grid) {
  if (grid.empty_cells == grid.elevations.size()) return "no elevations";
  return text_of("%.6g to %.6g ", grid.lowest, grid.highest) + unit_name(grid.elevation_unit);
}

void draw_relief(std::ostream& out, PictureFormat format, const ElevationGrid& grid,
                 const ReliefStyle& style) {
  Sheet sheet(grid, style);
  render(out, format, sheet.width(), sheet.height(),
         [&sheet](cairo_t* cairo) { sheet.draw(cairo); });
}

}  // namespace kzgis::tools
