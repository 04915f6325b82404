// How many chords a curve takes.
//
// A side is halved until the curve lies within a sixteenth of the tolerance about chords, between
// points that are fine enough then to stand for the curve.  From the first of them, the chord to
// the farthest one is taken that all between them are near enough to, and from there on again: so
// no chord could be longer.  Most sides of real maps are shorter than the tolerance and never come
// so far.

#include "chart/tracer.h"

#include <algorithm>
#include <cmath>

#include "chart/angles.h"

namespace kzgis::chart {
namespace {

// A curve over more than this may bend one way and back about the middle of its chord.
constexpr double kLongStep_deg = 2.0;
// Over no more than this, a curve is as far from its chord in the middle as it gets.
constexpr double kShortStep_deg = 0.5;
constexpr double kFine = 1.0 / 16.0;
constexpr int kDeepest = 40;

double distance(const Point& p, const Point& a, const Point& b) {
  const double ux = b.x - a.x;
  const double uy = b.y - a.y;
  const double length2 = ux * ux + uy * uy;
  double t = length2 > 0.0 ? ((p.x - a.x) * ux + (p.y - a.y) * uy) / length2 : 0.0;
  t = std::clamp(t, 0.0, 1.0);
  const double dx = p.x - a.x - t * ux;
  const double dy = p.y - a.y - t * uy;
  return std::sqrt(dx * dx + dy * dy);  // outlines take no radius whose square is out of range
}

/// The points of one side, close to each other.
class Curve {
 public:
  Curve(const Tracer& tracer, double lon, double lat, double end_lon, double end_lat,
        double tolerance)
      : tracer_(tracer),
        lon_(lon),
        lat_(lat),
        width_(end_lon - lon),
        height_(end_lat - lat),
        span_(std::max(std::fabs(width_), std::fabs(height_))),
        tolerance_(tolerance) {}

  Point at(double t) const { return tracer_.place(lon_ + t * width_, lat_ + t * height_); }

  /// Appends the points after t0, with the last one.
  void halve(double t0, const Point& p0, double t1, const Point& p1, const Point& middle,
             int depth) {
    const double t = 0.5 * (t0 + t1);
    const Point quarter = at(0.5 * (t0 + t));
    const Point three_quarters = at(0.5 * (t + t1));
    // What is no number departs from nothing.
    const auto departs = [&](const Point& p) { return distance(p, p0, p1) > kFine * tolerance_; };
    const bool straight = span_ * (t1 - t0) <= kLongStep_deg && !departs(quarter) &&
                          !departs(middle) && !departs(three_quarters);
    if (straight || depth == 0) {
      points_.push_back(p1);
      return;
    }
    halve(t0, p0, t, middle, quarter, depth - 1);
    halve(t, middle, t1, p1, three_quarters, depth - 1);
  }

  /// Appends the ends of the longest chords from `start` on but the last.
  void thin_out(const Point& start, std::vector<Point>& out) const {
    Point from = start;
    std::size_t first = 0;
    while (first < points_.size()) {
      std::size_t last = first;
      while (last + 1 < points_.size() && reaches(from, first, last + 1)) ++last;
      if (last + 1 < points_.size()) out.push_back(points_[last]);
      from = points_[last];
      first = last + 1;
    }
  }

 private:
  bool reaches(const Point& from, std::size_t first, std::size_t last) const {
    for (std::size_t i = first; i < last; ++i) {
      if (!(distance(points_[i], from, points_[last]) <= (1.0 - kFine) * tolerance_)) return false;
    }
    return true;
  }

  const Tracer& tracer_;
  double lon_, lat_, width_, height_, span_;
  double tolerance_;
  std::vector<Point> points_;
};

bool is_torn(projType type) {
  switch (type) {
    case GnomonicProj:
    case StereographicProj:
    case OrthographicProj:
    case PostelProj:
    case LambertAzimuthalProj:
    case CassiniSoldnerProj:
      return false;
    default:
      return true;
  }
}

ChartParameters from_base(ChartParameters parameters) {
  parameters.base_lon = 0.0;
  return parameters;
}

}  // namespace

Tracer::Tracer(const Chart& chart, double tolerance)
    : chart_(Chart::make(chart.type(), from_base(chart.parameters())).value()),
      tolerance_(std::max(tolerance, 1e-12 * chart.parameters().radius)),
      radius_(chart.parameters().radius),
      is_torn_(is_torn(chart.type())) {}

Point Tracer::place(double lon, double lat) const {
  // The chart has the meridian opposite to the base in the west alone.
  if (is_torn_) lon = std::min(lon, std::nextafter(180.0, 0.0));
  Point p{};
  chart_.project({&lat, 1}, {&lon, 1}, {&p.x, 1}, {&p.y, 1});
  return p;
}

void Tracer::place(const std::vector<double>& lon, const std::vector<double>& lat,
                   std::vector<Point>& points) {
  x_.resize(lon.size());
  y_.resize(lon.size());
  chart_.project(lat, lon, x_, y_);
  points.resize(lon.size());
  for (std::size_t i = 0; i < points.size(); ++i) points[i] = {x_[i], y_[i]};
}

void Tracer::draw(double lon, double lat, Point start, double end_lon, double end_lat, Point end,
                  std::vector<Point>& points) const {
  if (chart_.type() == CartesianProj) return;  // straight in degrees is straight on the map
  const double width = std::fabs(end_lon - lon);
  const double height = std::fabs(end_lat - lat);
  const double chord = std::fabs(end.x - start.x) + std::fabs(end.y - start.y);
  const double arc = (width + height) * kDegree * radius_;
  // No point of a curve is farther from its ends than half its length.
  if (std::max(chord, arc) <= tolerance_) return;
  Curve curve(*this, lon, lat, end_lon, end_lat, tolerance_);
  const Point middle = curve.at(0.5);
  if (std::max(width, height) <= kShortStep_deg &&
      distance(middle, start, end) <= 0.5 * tolerance_) {
    return;
  }
  curve.halve(0.0, start, 1.0, end, middle, kDeepest);
  curve.thin_out(start, points);
}

double Tracer::chords_of_circle(double radius) const {
  // Where the globe is seen from the side, degrees of it lie within the tolerance of the limb:
  // finer chords keep what lies there from crossing them.
  const double tolerance = chart_.type() == OrthographicProj ? tolerance_ / 64.0 : tolerance_;
  const double step = 2.0 * std::acos(std::max(0.5, 1.0 - tolerance / radius));
  return std::ceil(2.0 * kPi / step);
}

}  // namespace kzgis::chart
