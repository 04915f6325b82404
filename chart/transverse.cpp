// Cassini-Soldner's map: all of the globe, torn along the equator beyond 90 degrees from the base.
//
// The tear lies opposite to the base meridian as a cylinder about this meridian has it, and is the
// northern edge of the map for what lies north of it, the southern edge for the rest.  The points
// of the equator 90 degrees from the base are the whole eastern and western edges.  Edges: 0 the
// northern one, 1 the western, 2 the southern, 3 the eastern.

#include <algorithm>
#include <cmath>

#include "chart/angles.h"
#include "chart/domain.h"

namespace kzgis::chart {
namespace {

enum Edge { kNorth, kWest, kSouth, kEast };

/// A longitude in [-180, 180].
double turned(double lon) { return std::remainder(lon, 360.0); }

bool on_tear(double lon) { return std::fabs(turned(lon)) > 90.0; }

/// Along the tear, to the east.
double along(double lon) {
  const double from_base = turned(lon);
  return (from_base < 0.0 ? from_base + 360.0 : from_base) - 90.0;
}

Place place_on(Edge edge, double lon) {
  switch (edge) {
    case kNorth:
      return {edge, along(lon)};
    case kSouth:
      return {edge, -along(lon)};
    default:
      return {edge, 0.0};
  }
}

class Transverse : public Domain {
 public:
  explicit Transverse(bool closed) : closed_(closed) {}

  void cut(const Side& side, std::vector<Piece>& pieces) override {
    const Piece whole{side.lon, side.lat, side.end(), side.end_lat, {}, {}};
    const bool crosses = side.lat < 0.0 && side.end_lat > 0.0;
    const double crossing =
        side.lon - side.lat / (side.end_lat - side.lat) * (whole.end_lon - side.lon);
    count_start(side, crosses, crossing);
    if (side.lat == 0.0 && side.end_lat == 0.0 && !closed_) {
      cut_on_equator(whole, pieces);
    } else if (crosses && on_tear(crossing)) {
      pieces.push_back(whole);
      end_at(pieces.back(), kSouth, crossing);
      pieces.push_back(whole);
      begin_at(pieces.back(), kNorth, crossing);
    } else {
      pieces.push_back(whole);
      if (side.lat == 0.0 && on_tear(side.lon)) begin_at(pieces.back(), kNorth, side.lon);
      if (side.end_lat == 0.0 && on_tear(side.end_lon) && side.lat < 0.0) {
        end_at(pieces.back(), kSouth, whole.end_lon);
      }
    }
  }

  Place start() const override { return {kNorth, 0.0}; }

  Point at(const Place& place, double lon, double, const Tracer& tracer) const override {
    const Point top = tracer.place(180.0, 0.0);
    const double half = kPi * tracer.radius();
    switch (place.edge) {
      case kNorth:
        return {tracer.place(lon, 0.0).x, top.y};
      case kWest:
        return {-0.5 * half, top.y - half};
      case kSouth:
        return {tracer.place(lon, 0.0).x, top.y - 2.0 * half};
      default:
        return {0.5 * half, top.y - half};
    }
  }

  void follow(const Place& from, const Place& to, const Tracer& tracer,
              std::vector<Point>& points) const override {
    const double top = tracer.place(180.0, 0.0).y;
    const double half = kPi * tracer.radius();
    const double bottom = top - 2.0 * half;
    const Point corners[] = {
        {-0.5 * half, top}, {-0.5 * half, bottom}, {0.5 * half, bottom}, {0.5 * half, top}};
    int edge = from.edge;
    for (bool ahead = from < to; edge != to.edge || !ahead; edge = (edge + 1) % 4) {
      points.push_back(corners[edge]);
      ahead = true;
    }
  }

 private:
  static void begin_at(Piece& piece, Edge edge, double lon) {
    piece.lon = lon;
    piece.lat = 0.0;
    piece.place = place_on(edge, lon);
  }
  static void end_at(Piece& piece, Edge edge, double lon) {
    piece.end_lon = lon;
    piece.end_lat = 0.0;
    piece.end_place = place_on(edge, lon);
  }

  /// What lies within 90 degrees of the base, of a side along the equator.
  static void cut_on_equator(const Piece& whole, std::vector<Piece>& pieces) {
    const bool eastwards = whole.lon <= whole.end_lon;
    const double west = std::min(whole.lon, whole.end_lon);
    const double east = std::max(whole.lon, whole.end_lon);
    const std::size_t before = pieces.size();
    for (int turn = -2; turn <= 2; ++turn) {
      const double middle = 360.0 * turn;
      const double low = std::max(west, middle - 90.0);
      const double high = std::min(east, middle + 90.0);
      if (low > high) continue;
      Piece piece = whole;
      (eastwards ? piece.lon : piece.end_lon) = low;
      (eastwards ? piece.end_lon : piece.lon) = high;
      if (low > west) (eastwards ? piece.place : piece.end_place) = {kWest, 0.0};
      if (high < east) (eastwards ? piece.end_place : piece.place) = {kEast, 0.0};
      pieces.push_back(piece);
    }
    if (!eastwards)
      std::reverse(pieces.begin() + static_cast<std::ptrdiff_t>(before), pieces.end());
  }

  /// The edge begins at the eastern end of the tear, seen from the north: sides that come across
  /// the meridian there, a hair farther east, on the equator or south of it, part it from the south
  /// pole.
  void count_start(const Side& side, bool crosses, double crossing) {
    if (side.lat > 0.0 || (side.lat == 0.0 && side.end_lat > 0.0)) return;
    const auto turn_of = [](double lon) {
      return static_cast<int>(std::ceil((lon - 90.0) / 360.0));
    };
    const int first = turn_of(side.lon);
    const int last = turn_of(side.end_lon) + side.turns;
    for (int turn = std::min(first, last); turn < std::max(first, last); ++turn) {
      const double meridian = 90.0 + 360.0 * turn;
      if (!crosses || (first < last ? crossing > meridian : crossing <= meridian)) flip();
    }
  }

  bool closed_;
};

}  // namespace

std::unique_ptr<Domain> make_transverse(bool closed) {
  return std::make_unique<Transverse>(closed);
}

}  // namespace kzgis::chart
