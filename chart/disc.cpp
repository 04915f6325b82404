// Maps that show what lies within an angle of the base: what of a side does.
//
// A side that is straight in degrees is none on the globe, and may come over the limb several
// times. How near it comes is measured by haversines, (1 - cos c) / 2 of the distance c, about the
// base or about its antipode, whichever is nearer to the limb: that keeps its digits for small
// distances. Along a side the second derivative of a haversine is at most half the square of the
// sum of its width and height, so that how far it can depart from a straight line is known; where
// that is too little to reach the limb, no more is asked.
//
// The edge is one circle, and begins due south of the base.

#include <algorithm>
#include <cmath>
#include <numbers>

#include "chart/angles.h"
#include "chart/domain.h"
#include "chart/elementary.h"
#include "chart/families.h"

namespace kzgis::chart {
namespace {

/// How near to the antipode maps of the whole globe end, in radians.
constexpr double kLastAngle = 1e-6;
/// What is nearer to the limb than this, in radians, lies on it.
constexpr double kOnLimb = 1e-12;

double haversine(double sin_half) { return sin_half * sin_half; }

class Disc : public Domain {
 public:
  Disc(double base_lat, double reach_deg, bool closed)
      : base_lat_(base_lat),
        reach_deg_(std::min(reach_deg, 180.0 - kLastAngle / kDegree)),
        closed_(closed),
        cos_base_(sines_of_degrees(base_lat).cos) {
    const double reach = reach_deg_ * kDegree;
    about_antipode_ = reach > kHalfPi;
    const double angle = about_antipode_ ? kPi - reach : reach;
    limb_ = haversine(std::sin(0.5 * angle));
    slack_ = 0.5 * std::sin(angle) * kOnLimb;
    const double south = base_lat - reach / kDegree;
    over_pole_ = south < -90.0;
    start_lat_ = over_pole_ ? -180.0 - south : south;
  }

  void cut(const Side& side, std::vector<Piece>& pieces) override {
    side_ = &side;
    end_ = side.end();
    crossings_.clear();
    if (lies_inside(side)) {
      count_start(true);
      pieces.push_back(piece(0.0, false, 1.0, false));
      return;
    }
    steepness_ = (std::fabs(end_ - side.lon) + std::fabs(side.end_lat - side.lat)) * kDegree;
    const double first = inwards_of_vertex(side.lon, side.lat);
    const double last = inwards_of_vertex(side.end_lon, side.end_lat);
    find(0.0, first, 1.0, last);
    count_start(is_in(first));
    bool in = is_in(first);
    double begin = 0.0;
    for (std::size_t i = 0; i <= crossings_.size(); ++i) {
      const double t = i < crossings_.size() ? crossings_[i] : 1.0;
      if (in) pieces.push_back(piece(begin, i > 0, t, i < crossings_.size()));
      begin = t;
      in = !in;
    }
  }

  Place start() const override { return {0, 0.0}; }

  Point at(const Place& place, double, double, const Tracer& tracer) const override {
    return on_limb(place.along, radius_of(tracer));
  }

  void follow(const Place& from, const Place& to, const Tracer& tracer,
              std::vector<Point>& points) const override {
    const double end = from < to ? to.along : to.along + 2.0 * kPi;
    const double radius = radius_of(tracer);
    const double step = 2.0 * kPi / tracer.chords_of_circle(radius);
    // Vertices of the limb are the same for all that ends there, so that neighbours share them.
    for (int i = static_cast<int>(from.along / step); i * step <= end; ++i) {
      if (i * step > from.along || from.along == 0.0) points.push_back(on_limb(i * step, radius));
    }
  }

 private:
  bool is_in(double inwards) const { return closed_ ? inwards > -slack_ : inwards > slack_; }

  /// Whether all of a side is inside by its latitudes and longitudes alone: no position is nearer
  /// to the antipode than its parallel is, or farther from the base than along parallel and
  /// meridian.
  bool lies_inside(const Side& side) const {
    constexpr double kClear_deg = 1e-6;
    if (about_antipode_) {
      const double nearest = 180.0 - reach_deg_ + kClear_deg;
      return std::min(side.lat, side.end_lat) + base_lat_ > nearest ||
             std::max(side.lat, side.end_lat) + base_lat_ < -nearest;
    }
    const double farthest = reach_deg_ - kClear_deg;
    return side.turns == 0 && std::fabs(side.lon) + std::fabs(side.lat - base_lat_) < farthest &&
           std::fabs(side.end_lon) + std::fabs(side.end_lat - base_lat_) < farthest;
  }

  /// How far inside of the limb a position lies: the difference of two haversines.
  double inwards(double lon_deg, double lat_deg) const {
    const double half = 0.5 * kDegree;
    const SinesOf<double> lon = sines_of_degrees(std::remainder(lon_deg, 360.0) * 0.5);
    const double cos_lat = sines_of_degrees(lat_deg).cos;
    if (about_antipode_) {
      return haversine(std::sin((lat_deg + base_lat_) * half)) +
             cos_base_ * cos_lat * haversine(lon.cos) - limb_;
    }
    return limb_ - haversine(std::sin((lat_deg - base_lat_) * half)) -
           cos_base_ * cos_lat * haversine(lon.sin);
  }

  /// The same of a vertex, which sides of a ring have two by two.
  double inwards_of_vertex(double lon, double lat) {
    for (const Vertex& vertex : latest_) {
      if (vertex.lon == lon && vertex.lat == lat) return vertex.inwards;
    }
    latest_[0] = latest_[1];
    latest_[1] = {lon, lat, inwards(lon, lat)};
    return latest_[1].inwards;
  }

  double lon_at(double t) const { return side_->lon + t * (end_ - side_->lon); }
  double lat_at(double t) const { return side_->lat + t * (side_->end_lat - side_->lat); }
  double inwards_at(double t) const { return inwards(lon_at(t), lat_at(t)); }

  /// Lists where the side comes over the limb between two of its points.
  void find(double t0, double in0, double t1, double in1) {
    constexpr double kLeastStep = 1e-15;  // for maps of next to nothing
    const double step = steepness_ * (t1 - t0);
    const double bulge = t1 - t0 > kLeastStep ? step * step / 16.0 : 0.0;
    if (is_in(in0) == is_in(in1)) {
      const double limb = closed_ ? -slack_ : slack_;
      if (std::min(std::fabs(in0 - limb), std::fabs(in1 - limb)) > bulge || bulge <= slack_) return;
    } else if (bulge <= slack_) {
      crossings_.push_back(bisect(t0, t1, is_in(in0)));
      return;
    }
    const double t = 0.5 * (t0 + t1);
    const double in = inwards_at(t);
    // Along the limb.
    if (std::fabs(in0) <= slack_ && std::fabs(in) <= slack_ && std::fabs(in1) <= slack_) return;
    find(t0, in0, t, in);
    find(t, in, t1, in1);
  }

  double bisect(double t0, double t1, bool in0) const {
    for (;;) {
      const double t = 0.5 * (t0 + t1);
      if (t <= t0 || t >= t1 || t1 - t0 < 0x1p-60) return t;
      (is_in(inwards_at(t)) == in0 ? t0 : t1) = t;
    }
  }

  Piece piece(double t0, bool cut0, double t1, bool cut1) const {
    Piece piece{side_->lon, side_->lat, end_, side_->end_lat, {}, {}};
    if (cut0) {
      piece.lon = lon_at(t0);
      piece.lat = lat_at(t0);
      piece.place = place_of(piece.lon, piece.lat);
    }
    if (cut1) {
      piece.end_lon = lon_at(t1);
      piece.end_lat = lat_at(t1);
      piece.end_place = place_of(piece.end_lon, piece.end_lat);
    }
    return piece;
  }

  /// The place on the edge in the direction of a position: counter-clockwise from the south.
  Place place_of(double lon_deg, double lat_deg) const {
    const SinesOf<double> lat = sines_of_degrees(lat_deg);
    const SinesOf<double> lon = sines_of_degrees(std::remainder(lon_deg, 360.0));
    const SinesOf<double> base = sines_of_degrees(base_lat_);
    const double east = lat.cos * lon.sin;
    const double north = lat.sin * base.cos - lat.cos * lon.cos * base.sin;
    double angle = std::atan2(east, -north);
    if (angle < 0.0) angle += 2.0 * kPi;
    // Near the beginning, the longitude says on which hand of it the place lies, as it does where
    // sides are counted.
    constexpr double kNear = 1e-9;
    const double from_start = std::remainder(lon_deg - (over_pole_ ? 180.0 : 0.0), 360.0);
    if (std::min(angle, 2.0 * kPi - angle) < kNear) {
      const bool after = (from_start >= 0.0) != over_pole_;
      if (after && angle > kPi) angle = 0.0;
      if (!after && angle < kPi) angle = 2.0 * kPi;
    }
    return {0, angle};
  }

  /// The edge begins where the meridian of the base, or that opposite to it, comes over the limb:
  /// sides that cross this meridian farther south part it from the south pole, where nothing is
  /// inside.  Close to the limb, that a side is inside of it or outside tells which way it passes.
  void count_start(bool in_first) {
    const double meridian = over_pole_ ? 180.0 : 0.0;
    const auto turn_of = [&](double lon) {
      return static_cast<int>(std::floor((lon - meridian) / 360.0));
    };
    const int first = turn_of(side_->lon);
    const int last = turn_of(side_->end_lon) + side_->turns;
    for (int turn = std::min(first, last) + 1; turn <= std::max(first, last); ++turn) {
      const double lon = meridian + 360.0 * turn;
      const double t = (lon - side_->lon) / (end_ - side_->lon);
      const double lat = lat_at(t);
      bool south = lat < start_lat_;
      constexpr double kNear_deg = 1e-6;
      if (std::fabs(lat - start_lat_) < kNear_deg) {
        bool in = in_first;
        for (const double crossing : crossings_) {
          if (crossing <= t) in = !in;
        }
        south = in == over_pole_;
      }
      if (south) flip();
    }
  }

  static Point on_limb(double along, double radius) {
    return {radius * std::cos(along - kHalfPi), radius * std::sin(along - kHalfPi)};
  }

  double radius_of(const Tracer& tracer) const {
    const Point start = tracer.place(over_pole_ ? 180.0 : 0.0, start_lat_);
    return std::hypot(start.x, start.y);
  }

  double base_lat_;
  double reach_deg_;
  bool closed_;
  double cos_base_;
  bool about_antipode_ = false;
  double limb_ = 0.0;   // a haversine
  double slack_ = 0.0;  // of haversines at the limb
  bool over_pole_ = false;
  double start_lat_ = 0.0;

  struct Vertex {
    double lon, lat, inwards;
  };
  Vertex latest_[2] = {{kNoPlace, 0.0, 0.0}, {kNoPlace, 0.0, 0.0}};

  // Of the side at hand.
  const Side* side_ = nullptr;
  double end_ = 0.0;
  double steepness_ = 0.0;
  std::vector<double> crossings_;
};

}  // namespace

std::unique_ptr<Domain> make_disc(const Chart& chart, bool closed) {
  return std::make_unique<Disc>(chart.parameters().base_lat, *chart.parameters().reach_deg, closed);
}

}  // namespace kzgis::chart
