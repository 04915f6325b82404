// The part of the globe that a chart draws, and the edge of the map around it.

#ifndef KZGIS_CHART_DOMAIN_H
#define KZGIS_CHART_DOMAIN_H

#include <memory>
#include <vector>

#include "chart/sides.h"
#include "chart/tracer.h"
#include "kzgis/chart.h"

namespace kzgis::chart {

/// A place on the edge of the map: edges are numbered counter-clockwise, and so do places run along
/// each of them.
struct Place {
  int edge = -1;  ///< -1 for a place that is not on the edge of the map
  double along = 0.0;

  bool on_edge() const { return edge >= 0; }
  friend bool operator<(const Place& a, const Place& b) {
    return a.edge != b.edge ? a.edge < b.edge : a.along < b.along;
  }
};

/// A part of a side inside of the map, from its beginning to its end; longitudes are such that the
/// map has them in one piece.
struct Piece {
  double lon, lat, end_lon, end_lat;
  Place place, end_place;  ///< where the side enters and leaves the map, if it does
};

/// What lies on the map.
///
/// Everything is open: what only touches the edge of the map, or runs along it, lies outside.  So
/// of a polygon that is odd-even the edge is inside just where points next to it are.
class Domain {
 public:
  virtual ~Domain() = default;

  /// Appends the parts of a side inside of the map, in its direction.  Whether points next to the
  /// edge's beginning are inside is counted up.
  virtual void cut(const Side& side, std::vector<Piece>& pieces) = 0;

  /// Whether, by the sides that have been cut since the last call, the inside of a polygon lies
  /// at the beginning of the edge.
  bool takes_start() {
    const bool odd = odd_;
    odd_ = false;
    return odd;
  }

  /// The beginning of the edge.
  virtual Place start() const = 0;

  /// Where a piece that ends at a place does so on the plane.
  virtual Point at(const Place& place, double lon, double lat, const Tracer& tracer) const = 0;

  /// Appends the edge between two places, without them, counter-clockwise; from a place to itself,
  /// all of it.
  virtual void follow(const Place& from, const Place& to, const Tracer& tracer,
                      std::vector<Point>& points) const = 0;

 protected:
  void flip() { odd_ = !odd_; }

 private:
  bool odd_ = false;
};

/// @param closed  what runs along the edge lies on the map, as lines have it
std::unique_ptr<Domain> make_window(const Box& window, bool closed);
std::unique_ptr<Domain> make_disc(const Chart& chart, bool closed);
std::unique_ptr<Domain> make_transverse(bool closed);

}  // namespace kzgis::chart

#endif
