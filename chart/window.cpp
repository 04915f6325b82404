// Maps that show a rectangle in degrees: what of a side lies in it.
//
// Edges: 0 the southern one, 1 the eastern, 2 the northern, 3 the western; places on them go on to
// the east, to the north, to the west and to the south.

#include <algorithm>
#include <cmath>

#include "chart/domain.h"

namespace kzgis::chart {
namespace {

class Window : public Domain {
 public:
  Window(const Box& box, bool closed) : box_(box), closed_(closed) {}

  void cut(const Side& side, std::vector<Piece>& pieces) override {
    if (side.turns == 0 && holds(side.lon, side.lat) && holds(side.end_lon, side.end_lat)) {
      pieces.push_back({side.lon, side.lat, side.end_lon, side.end_lat, {}, {}});
      return;
    }
    // Copies of the cylinder, unrolled, that the side runs over.
    const int step = side.turns < 0 ? -1 : 1;
    for (int turn = 0; turn != side.turns + step; turn += step) cut_copy(side, turn, pieces);
  }

  Place start() const override { return {0, start_of(0)}; }

  Point at(const Place&, double lon, double lat, const Tracer& tracer) const override {
    return tracer.place(lon, lat);
  }

  void follow(const Place& from, const Place& to, const Tracer& tracer,
              std::vector<Point>& points) const override {
    Place place = from;
    Point start = corner_or(place, tracer);
    for (int edges = 0; edges < 5; ++edges) {
      const bool arrives = place.edge == to.edge && (edges > 0 || from < to);
      const Place next = arrives ? to : Place{place.edge, end_of(place.edge)};
      const Point end = corner_or(next, tracer);
      tracer.draw(lon_of(place), lat_of(place), start, lon_of(next), lat_of(next), end, points);
      if (arrives) return;
      points.push_back(end);
      place = {(place.edge + 1) % 4, start_of((place.edge + 1) % 4)};
      start = end;
    }
  }

 private:
  bool holds(double lon, double lat) const {
    return box_.min_x < lon && lon < box_.max_x && box_.min_y < lat && lat < box_.max_y;
  }

  /// Cuts the side as it lies when the cylinder has been turned back `turn` times.
  void cut_copy(const Side& side, int turn, std::vector<Piece>& pieces) {
    // The ends without rounding where they lie in the copy.
    const double a = turn == 0 ? side.lon : side.lon - 360.0 * turn;
    const double b = turn == side.turns ? side.end_lon : side.end_lon + 360.0 * (side.turns - turn);
    count_start(side, a, b);
    double t0 = 0.0;
    double t1 = 1.0;
    Place place;
    Place end_place;
    const auto enter = [&](double t, Place at) {
      if (t >= t0) {
        t0 = t;
        place = at;
      }
    };
    const auto leave = [&](double t, Place at) {
      if (t <= t1) {
        t1 = t;
        end_place = at;
      }
    };
    // From one border to the other, by the coordinate that grows along the side or does not.
    const auto between = [&](double from, double to, double low, double high, int low_edge,
                             int high_edge) {
      if (is_out(from, low) && is_out(to, low)) return false;
      if (is_out(-from, -high) && is_out(-to, -high)) return false;
      if (is_out(from, low)) enter(share(from, to, low), {low_edge, 0.0});
      if (is_out(to, low)) leave(share(from, to, low), {low_edge, 0.0});
      if (is_out(-from, -high)) enter(share(from, to, high), {high_edge, 0.0});
      if (is_out(-to, -high)) leave(share(from, to, high), {high_edge, 0.0});
      return true;
    };
    if (!between(a, b, box_.min_x, box_.max_x, 3, 1)) return;
    if (!between(side.lat, side.end_lat, box_.min_y, box_.max_y, 0, 2)) return;
    if (!(closed_ ? t0 <= t1 : t0 < t1)) return;
    Piece piece{a, side.lat, b, side.end_lat, place, end_place};
    if (place.on_edge()) settle(side, a, b, t0, piece.place, piece.lon, piece.lat);
    if (end_place.on_edge()) settle(side, a, b, t1, piece.end_place, piece.end_lon, piece.end_lat);
    pieces.push_back(piece);
  }

  /// How much of the way between two coordinates lies before a third.
  static double share(double from, double to, double at) { return (at - from) / (to - from); }

  /// Whether a coordinate lies outside of a lower border.
  bool is_out(double value, double low) const { return closed_ ? value < low : value <= low; }

  /// Finds where on an edge the point t of a side lies.
  void settle(const Side& side, double a, double b, double t, Place& place, double& lon,
              double& lat) const {
    lon = std::clamp(a + t * (b - a), box_.min_x, box_.max_x);
    lat = std::clamp(side.lat + t * (side.end_lat - side.lat), box_.min_y, box_.max_y);
    switch (place.edge) {
      case 0:
        lat = box_.min_y;
        place.along = lon;
        break;
      case 1:
        lon = box_.max_x;
        place.along = lat;
        break;
      case 2:
        lat = box_.max_y;
        place.along = -lon;
        break;
      default:
        lon = box_.min_x;
        place.along = -lat;
        break;
    }
  }

  /// The edge begins in the south-west: sides that pass south of there part it from the outside.
  ///
  /// Asked in the words in which the side is cut, or rounding would turn a map inside out.
  void count_start(const Side& side, double a, double b) {
    if ((a <= box_.min_x) == (b <= box_.min_x) || side.lat > box_.min_y) return;
    const double at_west = share(a, b, box_.min_x);
    if (side.end_lat <= box_.min_y || at_west <= share(side.lat, side.end_lat, box_.min_y)) flip();
  }

  double start_of(int edge) const {
    switch (edge) {
      case 0:
        return box_.min_x;
      case 1:
        return box_.min_y;
      case 2:
        return -box_.max_x;
      default:
        return -box_.max_y;
    }
  }
  double end_of(int edge) const {
    switch (edge) {
      case 0:
        return box_.max_x;
      case 1:
        return box_.max_y;
      case 2:
        return -box_.min_x;
      default:
        return -box_.min_y;
    }
  }
  double lon_of(const Place& place) const {
    switch (place.edge) {
      case 0:
        return place.along;
      case 1:
        return box_.max_x;
      case 2:
        return -place.along;
      default:
        return box_.min_x;
    }
  }
  double lat_of(const Place& place) const {
    switch (place.edge) {
      case 0:
        return box_.min_y;
      case 1:
        return place.along;
      case 2:
        return box_.max_y;
      default:
        return -place.along;
    }
  }
  Point corner_or(const Place& place, const Tracer& tracer) const {
    return tracer.place(lon_of(place), lat_of(place));
  }

  Box box_;
  bool closed_;
};

}  // namespace

std::unique_ptr<Domain> make_window(const Box& window, bool closed) {
  return std::make_unique<Window>(window, closed);
}

}  // namespace kzgis::chart
