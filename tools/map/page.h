// A chart on the page.

#ifndef KZGIS_TOOLS_MAP_PAGE_H
#define KZGIS_TOOLS_MAP_PAGE_H

#include <kzgis/chart.h>
#include <kzgis/outline.h>

#include <optional>

namespace kzgis::map {

/// A point on the page, x to the right and y down, in pixels (points in a PDF).
struct Pixel {
  double x;
  double y;
};

/// Width over height of what a chart shows.  Throws `UsageError` when that is nothing.
double aspect(const Chart& chart);

/// A chart fitted into a rectangle of the page and centred there.
///
/// What it draws comes in pixels, cut at the edge of the map; curves are followed to a fraction of
/// a pixel.  What the library refuses to draw ends the subcommand.
class Page {
 public:
  /// Throws `UsageError` when the chart shows nothing.
  Page(const Chart& chart, double left, double top, double width, double height);

  const Chart& chart() const { return chart_; }

  /// Rings to be filled with the even-odd rule.
  Outline area(const Rings& degrees) const;
  Outline lines(const Rings& degrees) const;
  Outline graticule(double step_deg) const;
  /// The edge of the map, as rings.
  Outline frame() const;

  /// Where a position lands; nothing when the map does not show it.
  std::optional<Pixel> place(double lon, double lat) const;

  /// The middle of a round map, and its radius in pixels.
  Pixel centre() const { return {left_, top_}; }
  double radius() const { return radius_ * scale_; }

 private:
  /// How far curves may be from their chords, on the chart.
  double tolerance() const;
  Outline to_page(Outline drawn) const;

  Chart chart_;
  double scale_;  // pixels per globe radius
  double left_;   // where the origin of the chart is
  double top_;
  double radius_;
};

}  // namespace kzgis::map

#endif
