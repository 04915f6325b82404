// From lines in degrees to curves on the page.

#include "tools/map/path.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "tools/map/clip.h"

namespace kzgis::map {
namespace {

// No edge is drawn straight over more than this, so that a curve symmetric about an edge's
// middle is not taken for straight.
constexpr double kLongestStep_deg = 2.0;
constexpr double kTolerance_px = 0.12;
// A chord this short is taken as it is.
constexpr double kShortChord_px = 0.6;
// Two ends this far apart may be neighbours on either side of the antipode.
constexpr double kLongestChord_px = 40.0;
// 720 degrees halve to the longest step in 9; the rest is for edges that bend sharply.  An
// edge over a point where the projection breaks down ends here too.
constexpr int kDeepestSplit = 20;

double squared_distance(const Pixel& a, const Pixel& b) {
  return (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y);
}

double distance_to_chord(const Pixel& p, const Pixel& a, const Pixel& b) {
  const double length2 = squared_distance(a, b);
  if (length2 == 0.0) return std::sqrt(squared_distance(p, a));
  const double t =
      std::clamp(((p.x - a.x) * (b.x - a.x) + (p.y - a.y) * (b.y - a.y)) / length2, 0.0, 1.0);
  return std::sqrt(squared_distance(p, {a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)}));
}

/// Appends the points that follow `a` on the edge to `b`, `b` included.
class Tracer {
 public:
  Tracer(const Page& page, std::vector<PagePoint>& out) : page_(page), out_(out) {}

  void edge(const Geo& a, const PagePoint& pa, const Geo& b, const PagePoint& pb,
            int depth = kDeepestSplit) {
    const bool long_step =
        std::max(std::fabs(b.lon - a.lon), std::fabs(b.lat - a.lat)) > kLongestStep_deg;
    if (depth > 0 && (long_step || !is_short(pa, pb))) {
      const Geo middle{0.5 * (a.lon + b.lon), 0.5 * (a.lat + b.lat)};
      const PagePoint pm = page_.place(middle);
      // An edge over the limb is halved until it is short: its far end may stand on the other
      // side of the disc.  What nobody sees needs no smooth curve.
      const bool over_limb = pa.visible != pm.visible || pm.visible != pb.visible;
      const bool bent =
          pm.visible && (distance_to_chord(pm.at, pa.at, pb.at) > kTolerance_px ||
                         squared_distance(pa.at, pb.at) > kLongestChord_px * kLongestChord_px);
      if (long_step || over_limb || bent) {
        edge(a, pa, middle, pm, depth - 1);
        edge(middle, pm, b, pb, depth - 1);
        return;
      }
    }
    if (pb.finite()) out_.push_back(pb);
  }

 private:
  static bool is_short(const PagePoint& a, const PagePoint& b) {
    return squared_distance(a.at, b.at) < kShortChord_px * kShortChord_px;
  }

  const Page& page_;
  std::vector<PagePoint>& out_;
};

std::vector<PagePoint> trace(const Page& page, const GeoLine& line, bool close) {
  std::vector<PagePoint> out;
  if (line.empty()) return out;
  Tracer tracer(page, out);
  const PagePoint first = page.place(line.front());
  if (first.finite()) out.push_back(first);
  PagePoint previous = first;
  for (std::size_t i = 1; i < line.size(); ++i) {
    const PagePoint next = page.place(line[i]);
    tracer.edge(line[i - 1], previous, line[i], next);
    previous = next;
  }
  if (close) tracer.edge(line.back(), previous, line.front(), first);
  return out;
}

/// By how many whole turns a range of longitudes must be shifted to reach another one.
struct Turns {
  int first;
  int last;
};

Turns turns_between(double low, double high, double west, double east) {
  return {static_cast<int>(std::ceil((west - high) / 360.0)),
          static_cast<int>(std::floor((east - low) / 360.0))};
}

Geo turned(const Geo& p, int turns) { return {p.lon + 360.0 * turns, p.lat}; }

// A ring round a pole takes two copies, one over both ends of the map three.  A ring that
// winds round the globe again and again is no area, and must not cost a copy for each turn.
constexpr int kMostCopies = 8;

PagePath window_fill(const Page& page, const std::vector<GeoLine>& rings) {
  PagePath path;
  const Window& window = page.plane().window();
  for (const GeoLine& ring : rings) {
    if (ring.empty()) continue;
    const Window box = bounds(ring);
    const Turns turns = turns_between(box.west, box.east, window.west, window.east);
    const int last = std::min(turns.last, turns.first + kMostCopies - 1);
    for (int turn = turns.first; turn <= last; ++turn) {
      GeoLine copy;
      copy.reserve(ring.size());
      for (const Geo& p : ring) copy.push_back(turned(p, turn));
      const GeoLine inside = clip_ring(copy, window);
      if (inside.size() < 3) continue;
      std::vector<Pixel>& piece = path.emplace_back();
      for (const PagePoint& p : trace(page, inside, true)) piece.push_back(p.at);
    }
  }
  return path;
}

// Beyond the limb, two points may stand on opposite sides of the disc: the way from one to
// the other leads around it.
void go_round(const Page& page, const Pixel& a, const Pixel& b, std::vector<Pixel>& piece) {
  const Pixel c = page.centre();
  const double angle_a = std::atan2(a.y - c.y, a.x - c.x);
  const double swing =
      std::remainder(std::atan2(b.y - c.y, b.x - c.x) - angle_a, 2.0 * std::numbers::pi);
  const double radius_a = std::hypot(a.x - c.x, a.y - c.y);
  const double radius_b = std::hypot(b.x - c.x, b.y - c.y);
  constexpr double kStep = 3.0 * std::numbers::pi / 180.0;  // a chord this short stays outside
  const int steps = static_cast<int>(std::fabs(swing) / kStep);
  for (int i = 1; i <= steps; ++i) {
    const double t = static_cast<double>(i) / (steps + 1);
    const double radius = radius_a + t * (radius_b - radius_a);
    piece.push_back({c.x + radius * std::cos(angle_a + t * swing),
                     c.y + radius * std::sin(angle_a + t * swing)});
  }
}

bool crosses_northwards_of(double x, double y, double ax, double ay, double bx, double by) {
  return (ax > x) != (bx > x) && ay + (x - ax) / (bx - ax) * (by - ay) > y;
}

bool holds(const PagePath& path, const Pixel& p) {
  bool inside = false;
  for (const std::vector<Pixel>& piece : path) {
    for (std::size_t i = 0, j = piece.size() - 1; i < piece.size(); j = i++) {
      if (crosses_northwards_of(p.x, p.y, piece[j].x, piece[j].y, piece[i].x, piece[i].y)) {
        inside = !inside;
      }
    }
  }
  return inside;
}

bool holds(const std::vector<GeoLine>& rings, const Geo& position) {
  bool inside = false;
  for (const GeoLine& ring : rings) {
    for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
      const auto [low, high] = std::minmax(ring[j].lon, ring[i].lon);
      const Turns turns = turns_between(position.lon, position.lon, low, high);
      for (int turn = turns.first; turn <= turns.last; ++turn) {
        if (crosses_northwards_of(position.lon + 360.0 * turn, position.lat, ring[j].lon,
                                  ring[j].lat, ring[i].lon, ring[i].lat)) {
          inside = !inside;
        }
      }
    }
  }
  return inside;
}

// On the plane, what a ring encloses is the side away from the antipode; a record that
// covers the antipode comes out with land and sea exchanged.  Sample positions tell: where
// most of them are land in degrees and sea on the page, or the other way, the record is
// inside out.  A majority decides, for a sample may lie on a coast.
bool is_inside_out(const Page& page, const std::vector<GeoLine>& rings, const PagePath& path) {
  constexpr int kSamples = 7;
  const double reach = std::min(page.plane().limb_deg(), 150.0);
  int wrong = 0;
  for (int i = 0; i < kSamples; ++i) {
    const Geo sample =
        page.plane().position_at(reach * (i + 0.5) / kSamples, 137.50776 * (i + 0.37));
    if (holds(rings, sample) != holds(path, page.place(sample).at)) ++wrong;
  }
  return 2 * wrong > kSamples;
}

std::vector<Pixel> circle(const Pixel& centre, double radius) {
  constexpr int kCorners = 720;
  std::vector<Pixel> corners;
  for (int i = 0; i < kCorners; ++i) {
    const double angle = 2.0 * std::numbers::pi * i / kCorners;
    corners.push_back({centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)});
  }
  return corners;
}

PagePath disc_fill(const Page& page, const std::vector<GeoLine>& rings) {
  PagePath path;
  for (const GeoLine& ring : rings) {
    const std::vector<PagePoint> points = trace(page, ring, true);
    std::vector<Pixel> piece;
    for (std::size_t i = 0; i < points.size(); ++i) {
      const PagePoint& previous = points[i == 0 ? points.size() - 1 : i - 1];
      if (!previous.visible && !points[i].visible) {
        go_round(page, previous.at, points[i].at, piece);
      }
      piece.push_back(points[i].at);
    }
    if (!piece.empty()) path.push_back(std::move(piece));
  }
  constexpr double kAroundEverything = 3.0;  // in limb radii; the plane ends at two
  if (is_inside_out(page, rings, path)) {
    path.push_back(circle(page.centre(), kAroundEverything * page.limb_radius()));
  }
  return path;
}

/// Collects the pieces of a line that lie inside a window and follow each other.
class WindowPen {
 public:
  WindowPen(const Page& page, PagePath& path) : page_(page), path_(path) {}

  void draw(const Geo& a, const Geo& b) {
    const auto inside = clip_segment(a, b, page_.plane().window());
    if (!inside) return;
    const bool follows = !run_.empty() && run_.back().lon == a.lon && run_.back().lat == a.lat;
    if (!follows) {
      lift();
      run_.push_back(inside->first);
    }
    run_.push_back(inside->second);
  }

  void lift() {
    if (run_.empty()) return;
    std::vector<Pixel>& piece = path_.emplace_back();
    for (const PagePoint& p : trace(page_, run_, false)) piece.push_back(p.at);
    run_.clear();
  }

 private:
  const Page& page_;
  PagePath& path_;
  GeoLine run_;
};

PagePath window_stroke(const Page& page, const std::vector<GeoLine>& lines) {
  PagePath path;
  const Window& window = page.plane().window();
  for (const GeoLine& line : lines) {
    WindowPen pen(page, path);
    for (std::size_t i = 1; i < line.size(); ++i) {
      const Geo& a = line[i - 1];
      const Geo& b = line[i];
      const auto [low, high] = std::minmax(a.lon, b.lon);
      const Turns turns = turns_between(low, high, window.west, window.east);
      // An edge over the tear is drawn where it comes from first: eastwards that is the
      // copy furthest to the east.
      for (int turn = turns.first; turn <= turns.last; ++turn) {
        const int next = a.lon < b.lon ? turns.first + turns.last - turn : turn;
        pen.draw(turned(a, next), turned(b, next));
      }
    }
    pen.lift();
  }
  return path;
}

PagePath disc_stroke(const Page& page, const std::vector<GeoLine>& lines) {
  PagePath path;
  for (const GeoLine& line : lines) {
    const std::vector<PagePoint> points = trace(page, line, false);
    bool drawing = false;
    for (std::size_t i = 1; i < points.size(); ++i) {
      // A segment with one end beyond the limb runs into it; the frame clips the rest.
      if (!points[i - 1].visible && !points[i].visible) {
        drawing = false;
        continue;
      }
      if (!drawing) path.push_back({points[i - 1].at});
      path.back().push_back(points[i].at);
      drawing = true;
    }
  }
  return path;
}

}  // namespace

PagePath fill_path(const Page& page, const std::vector<GeoLine>& rings) {
  return page.plane().is_disc() ? disc_fill(page, rings) : window_fill(page, rings);
}

PagePath stroke_path(const Page& page, const std::vector<GeoLine>& lines) {
  return page.plane().is_disc() ? disc_stroke(page, lines) : window_stroke(page, lines);
}

PagePath frame_path(const Page& page) {
  if (page.plane().is_disc()) return {circle(page.centre(), page.limb_radius())};
  const Window& w = page.plane().window();
  const GeoLine border{{w.west, w.south}, {w.east, w.south}, {w.east, w.north}, {w.west, w.north}};
  PagePath path(1);
  for (const PagePoint& p : trace(page, border, true)) path.front().push_back(p.at);
  return path;
}

std::vector<GeoLine> graticule(double step_deg, double base_lon) {
  std::vector<GeoLine> lines;
  const double last_parallel = std::floor((90.0 - 1e-9) / step_deg) * step_deg;
  const int meridians = static_cast<int>(std::ceil((360.0 - 1e-9) / step_deg));
  for (int i = 0; i < meridians; ++i) {
    const double lon = i * step_deg;
    const bool to_pole = std::fabs(std::remainder(lon, 90.0)) < 1e-9;
    const double end = to_pole ? 90.0 : last_parallel;
    lines.push_back({{lon - base_lon, -end}, {lon - base_lon, end}});
  }
  const int parallels = static_cast<int>(std::lround(last_parallel / step_deg));
  for (int i = -parallels; i <= parallels; ++i) {
    lines.push_back({{-180.0, i * step_deg}, {180.0, i * step_deg}});
  }
  return lines;
}

}  // namespace kzgis::map
