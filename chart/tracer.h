// Sides in degrees, drawn as chords of the curves that they are on the plane.

#ifndef KZGIS_CHART_TRACER_H
#define KZGIS_CHART_TRACER_H

#include <cstddef>
#include <vector>

#include "kzgis/chart.h"

namespace kzgis::chart {

/// A point on the plane.
struct Point {
  double x, y;
};

class Tracer {
 public:
  /// Longitudes are counted from the base.
  Tracer(const Chart& chart, double tolerance);

  /// A position on the plane.  The meridian 180 degrees to the east lies in the east where the map
  /// is torn along it.
  Point place(double lon, double lat) const;

  /// The same for many, in the same order.
  void place(const std::vector<double>& lon, const std::vector<double>& lat,
             std::vector<Point>& points);

  /// Appends the points that a side needs between its ends, which lie at `start` and `end`.
  void draw(double lon, double lat, Point start, double end_lon, double end_lat, Point end,
            std::vector<Point>& points) const;

  /// Into how many chords a circle about the origin is divided.
  double chords_of_circle(double radius) const;

  double radius() const { return radius_; }

 private:
  Chart chart_;
  double tolerance_;
  double radius_;
  bool is_torn_;
  std::vector<double> x_, y_;  // kept for their memory
};

}  // namespace kzgis::chart

#endif
