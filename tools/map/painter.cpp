// Colours, widths and the order of drawing.

#include "tools/map/painter.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>

#include "tools/map/coasts.h"
#include "tools/map/mosaic.h"
#include "tools/support/progress.h"

namespace kzgis::map {
namespace {

// Everything on a sheet is measured in this: a pixel on a sheet of the usual size.  A strip
// of a sheet counts by its short side, lest margin and title leave no room for the map.
double unit_of(const Sheet& sheet) {
  const double short_side = std::min(sheet.width, sheet.height);
  return std::min(std::sqrt(sheet.width * sheet.height), 2.0 * short_side) / 1100.0;
}

struct Margins {
  double side;
  double top;
};

Margins margins_of(const Sheet& sheet) {
  const double side = 26.0 * unit_of(sheet);
  return {side, sheet.title.empty() ? side : side + 44.0 * unit_of(sheet)};
}

// On a small sheet lines get no thinner than this, lest they fade.
constexpr double kThinnest_px = 0.55;

/// Draws on one sheet, from the paper up; the order of the calls is the order of the layers.
class Painter {
 public:
  Painter(cairo_t* cairo, const Page& page, const Sheet& sheet)
      : cairo_(cairo), page_(page), sheet_(sheet), unit_(unit_of(sheet)) {
    cairo_set_line_join(cairo_, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_cap(cairo_, CAIRO_LINE_CAP_ROUND);
    cairo_set_fill_rule(cairo_, CAIRO_FILL_RULE_EVEN_ODD);
  }

  void paper() {
    set(colours::paper);
    cairo_paint(cairo_);
  }

  /// @param filled  layers cover the land; without them, the colour of the sea would say
  ///                that there is none
  void begin_map(bool filled) {
    frame_ = page_.frame();
    set(filled ? colours::ocean : colours::chart);
    cairo_paint(cairo_);
  }

  /// Polygons: the areas, borders between neighbours, the mesh, and the coasts over everything.
  void fills(const StyledLayer& styled) {
    const std::vector<Outline>& records = styled.layer.records;
    std::vector<Outline> coasts;
    std::vector<Outline> seams;
    for (const Outline& record : records) {
      auto [real, closing] = coasts_of(record.rings());
      coasts.push_back(std::move(real));
      seams.push_back(std::move(closing));
    }
    Mosaic mosaic;
    std::vector<std::size_t> tint;
    if (styled.role == Role::countries) {
      mosaic = take_mosaic(coasts);
      tint = assign_tints(mosaic, tools::kTints.size());
    }

    tools::Progress progress("drawing", records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
      progress.update(i);
      const Colour colour = styled.role == Role::countries ? tools::kTints[tint[i]]
                            : styled.role == Role::water   ? colours::ocean
                                                           : colours::land;
      // Two records may be halves of one land: the fill's colour over what parts them at the
      // antimeridian hides the hairline there.
      stroke(seams[i], colour, 1.2);
      add(page_.area(records[i].rings()), true);
      set(colour);
      cairo_fill(cairo_);
    }
    stroke(mosaic.borders, colours::border, 1.0);
    mesh(styled);
    const Colour shore = styled.role == Role::water ? colours::river : colours::coast;
    for (const Outline& coast : coasts) stroke(coast, shore, 0.85);
  }

  void lines(const StyledLayer& styled) {
    const auto [colour, width] = pen_of(styled.role);
    for (const Outline& record : styled.layer.records) {
      const bool closed = styled.layer.kind == LayerKind::polygons;
      stroke(closed ? coasts_of(record.rings()).real : record, colour, width);
    }
    mesh(styled);
  }

  void mesh(const StyledLayer& styled) {
    for (const Outline& sides : styled.mesh) stroke(sides, colours::mesh, 0.5);
  }

  void points(const StyledLayer& styled) {
    for (const Outline& record : styled.layer.records) {
      for (std::size_t i = 0; i < record.x.size(); ++i) point(record.x[i], record.y[i]);
    }
  }

  void draw_graticule() {
    if (sheet_.graticule_deg <= 0.0) return;
    add(page_.graticule(sheet_.graticule_deg), false);
    set(colours::graticule, 0.33);
    cairo_set_line_width(cairo_, 0.75 * unit_);
    cairo_stroke(cairo_);
  }

  void end_map() {
    if (sheet_.globe) shade_globe();
    // What lies beyond the frame is covered with paper: clipped to it instead, every
    // stroke would carry a copy of the frame into an SVG or PDF.
    add(frame_, true);
    cairo_rectangle(cairo_, 0.0, 0.0, sheet_.width, sheet_.height);
    set(colours::paper);
    cairo_fill(cairo_);
    add(frame_, true);
    set(colours::frame);
    cairo_set_line_width(cairo_, 1.5 * unit_);
    cairo_stroke(cairo_);
  }

  void title() {
    if (sheet_.title.empty()) return;
    cairo_select_font_face(cairo_, "serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cairo_, 30.0 * unit_);
    cairo_text_extents_t extents;
    cairo_text_extents(cairo_, sheet_.title.c_str(), &extents);
    set(colours::text);
    cairo_move_to(cairo_, 0.5 * sheet_.width - 0.5 * extents.width - extents.x_bearing,
                  margins_of(sheet_).side + 28.0 * unit_);
    cairo_show_text(cairo_, sheet_.title.c_str());
  }

 private:
  void set(const Colour& c, double alpha = 1.0) {
    cairo_set_source_rgba(cairo_, c.red, c.green, c.blue, alpha);
  }

  /// Makes rings or lines on the page the current path.
  void add(const Outline& path, bool close) {
    cairo_new_path(cairo_);
    std::size_t line = 0;
    for (std::size_t i = 0; i < path.x.size(); ++i) {
      if (line < path.starts.size() && static_cast<std::size_t>(path.starts[line]) == i) {
        if (close && i > 0) cairo_close_path(cairo_);
        cairo_move_to(cairo_, path.x[i], path.y[i]);
        ++line;
      } else {
        cairo_line_to(cairo_, path.x[i], path.y[i]);
      }
    }
    if (close) cairo_close_path(cairo_);
  }

  /// Draws lines in degrees.
  void stroke(const Outline& lines, const Colour& colour, double width) {
    const Outline path = page_.lines(lines.rings());
    if (path.x.empty()) return;
    add(path, false);
    set(colour);
    cairo_set_line_width(cairo_, std::max(width * unit_, kThinnest_px));
    cairo_stroke(cairo_);
  }

  /// A dot with a rim that sets it off from what lies below.
  void point(double lon, double lat) {
    const std::optional<Pixel> at = page_.place(lon, lat);
    if (!at) return;
    cairo_new_path(cairo_);
    cairo_arc(cairo_, at->x, at->y, 2.1 * unit_, 0.0, 2.0 * M_PI);
    set(colours::places);
    cairo_fill_preserve(cairo_);
    set(colours::paper, 0.9);
    cairo_set_line_width(cairo_, 0.7 * unit_);
    cairo_stroke(cairo_);
  }

  // Light from the upper left; the plain orthographic map stays flat.
  void shade_globe() {
    const Pixel c = page_.centre();
    const double r = page_.radius();
    cairo_pattern_t* light = cairo_pattern_create_radial(c.x - 0.38 * r, c.y - 0.42 * r, 0.0,
                                                         c.x - 0.12 * r, c.y - 0.14 * r, 1.22 * r);
    cairo_pattern_add_color_stop_rgba(light, 0.0, 1.0, 1.0, 1.0, 0.42);
    cairo_pattern_add_color_stop_rgba(light, 0.35, 1.0, 1.0, 1.0, 0.0);
    cairo_pattern_add_color_stop_rgba(light, 0.55, 0.06, 0.14, 0.24, 0.0);
    cairo_pattern_add_color_stop_rgba(light, 0.85, 0.06, 0.14, 0.24, 0.22);
    cairo_pattern_add_color_stop_rgba(light, 1.0, 0.04, 0.10, 0.18, 0.5);
    cairo_set_source(cairo_, light);
    cairo_paint(cairo_);
    cairo_pattern_destroy(light);
  }

  cairo_t* cairo_;
  const Page& page_;
  const Sheet& sheet_;
  double unit_;
  Outline frame_;
};

bool is_filled(const StyledLayer& styled) {
  return styled.role == Role::land || styled.role == Role::countries || styled.role == Role::water;
}

}  // namespace

void set_usual_size(Sheet& sheet, const Chart& chart) {
  constexpr double kLongSide = 1600.0;
  const double ratio = aspect(chart);
  sheet.width = ratio >= 1.0 ? kLongSide : std::max(1.0, std::round(kLongSide * ratio));
  sheet.height = ratio >= 1.0 ? std::max(1.0, std::round(kLongSide / ratio)) : kLongSide;
  const Margins margins = margins_of(sheet);
  sheet.height = std::round(sheet.height + margins.top - margins.side);
}

Page lay_out(const Chart& chart, const Sheet& sheet) {
  const Margins margins = margins_of(sheet);
  return Page(chart, margins.side, margins.top, sheet.width - 2.0 * margins.side,
              sheet.height - margins.top - margins.side);
}

void paint(cairo_t* cairo, const Page& page, const Sheet& sheet,
           const std::vector<StyledLayer>& layers) {
  Painter painter(cairo, page, sheet);
  painter.paper();
  painter.begin_map(std::any_of(layers.begin(), layers.end(), is_filled));
  for (const StyledLayer& styled : layers) {
    if (is_filled(styled)) painter.fills(styled);
  }
  painter.draw_graticule();
  for (const StyledLayer& styled : layers) {
    if (styled.role == Role::places) {
      painter.points(styled);
    } else if (!is_filled(styled)) {
      painter.lines(styled);
    }
  }
  painter.end_map();
  painter.title();
}

}  // namespace kzgis::map
