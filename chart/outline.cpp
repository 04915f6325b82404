// Areas and lines on the plane.
//
// The sides of a ring are cut at the edge of the map.  What is left of the ring are runs, which
// begin and end on the edge, or the whole of it.  Along the edge, inside and outside of a polygon
// change at each end of a run, and what is inside of the edge closes the runs to rings.

#include "kzgis/outline.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "chart/domain.h"
#include "chart/families.h"
#include "chart/sides.h"
#include "chart/tracer.h"

namespace kzgis {
namespace {

using chart::Domain;
using chart::Piece;
using chart::Place;
using chart::Point;
using chart::Tracer;

constexpr std::size_t kMostVertices = 0x10000000;
// Squares of coordinates are to be numbers, and exact arithmetic is to take them.
constexpr double kLeastRadius = 1e-100;
constexpr double kMostRadius = 1e100;

/// Points of rings or lines, one behind the other.
using Way = std::vector<Point>;

/// A part of a ring or a line on the map.
struct Run {
  Way points;
  Place begin, end;  ///< on the edge, or nowhere where the ring or line has a vertex
};

Flaw refusal(ErrorKind kind, std::string message, std::int64_t ring = -1,
             std::int64_t vertex = -1) {
  Flaw flaw;
  flaw.kind = kind;
  flaw.message = std::move(message);
  flaw.ring = static_cast<std::int32_t>(ring);
  flaw.vertex = static_cast<std::int32_t>(vertex);
  return flaw;
}

Flaw too_many() {
  return refusal(ErrorKind::bad_argument, "so small a tolerance takes more than 2^28 vertices");
}

std::optional<Error> complaint(const Chart& chart, double tolerance) {
  if (chart.type() == GlobeProj) {
    return Error{ErrorKind::bad_argument, "the globe is no plane to draw on"};
  }
  const double radius = chart.parameters().radius;
  if (!(radius >= kLeastRadius && radius <= kMostRadius)) {
    return Error{ErrorKind::bad_argument,
                 "the radius " + chart::text_of(radius) + " does not lie within 1e-100 to 1e100"};
  }
  if (!(tolerance > 0.0 && std::isfinite(tolerance))) {
    return Error{ErrorKind::bad_argument,
                 "the tolerance " + chart::text_of(tolerance) + " is not a finite number above 0"};
  }
  return std::nullopt;
}

std::size_t end_of_ring(const Rings& rings, std::size_t ring) {
  return ring + 1 < rings.starts.size() ? static_cast<std::size_t>(rings.starts[ring + 1])
                                        : rings.x.size();
}

std::size_t size_of(const std::vector<Way>& ways) {
  std::size_t size = 0;
  for (const Way& way : ways) size += way.size();
  return size;
}

std::optional<Flaw> complaint(const Rings& rings) {
  const std::size_t n = rings.x.size();
  if (rings.y.size() != n || n >= kMostVertices || rings.starts.size() >= kMostVertices) {
    return refusal(ErrorKind::bad_argument,
                   "x and y are not of one length, or hold 2^28 values or more");
  }
  std::int32_t last = 0;
  for (std::size_t ring = 0; ring < rings.starts.size(); ++ring) {
    const std::int32_t start = rings.starts[ring];
    if (start < last || static_cast<std::size_t>(start) > n) {
      return refusal(ErrorKind::bad_argument,
                     "ring " + std::to_string(ring) + " does not start among the vertices",
                     static_cast<std::int64_t>(ring));
    }
    last = start;
  }
  for (std::size_t ring = 0; ring < rings.starts.size(); ++ring) {
    const auto first = static_cast<std::size_t>(rings.starts[ring]);
    for (std::size_t i = first; i < end_of_ring(rings, ring); ++i) {
      if (std::isfinite(rings.x[i]) && std::isfinite(rings.y[i])) continue;
      return refusal(ErrorKind::bad_data, "vertex " + std::to_string(i) + " is not finite",
                     static_cast<std::int64_t>(ring), static_cast<std::int64_t>(i));
    }
  }
  return std::nullopt;
}

/// The window of a map, up to where its projection has a place for everything.
Box window_of(const Chart& chart) {
  constexpr double kLastLatitude = 89.99;
  Box window = *chart.parameters().window;
  const bool cylinder = chart.type() == MercatorProj;
  const bool cone = chart.type() == LambertConicProj;
  const bool southern =
      cone && *chart.parameters().first_parallel + *chart.parameters().second_parallel < 0.0;
  if (cylinder || (cone && !southern)) window.min_y = std::max(window.min_y, -kLastLatitude);
  if (cylinder || southern) window.max_y = std::min(window.max_y, kLastLatitude);
  return window;
}

std::unique_ptr<Domain> domain_of(const Chart& chart, bool closed) {
  if (chart.parameters().reach_deg) return chart::make_disc(chart, closed);
  const Box window = window_of(chart);
  const bool all = window.min_x == -180.0 && window.max_x == 180.0 && window.min_y == -90.0 &&
                   window.max_y == 90.0;
  if (chart.type() == CassiniSoldnerProj && all) return chart::make_transverse(closed);
  return chart::make_window(window, closed);
}

/// Draws the courses of rings and lines, as far as they are on the map.
class Drawing {
 public:
  Drawing(const Chart& chart, double tolerance, bool closed)
      : tracer_(chart, tolerance), domain_(domain_of(chart, closed)) {}

  const Tracer& tracer() const { return tracer_; }
  const Domain& domain() const { return *domain_; }
  bool is_full() const { return drawn_ >= kMostVertices; }
  std::vector<Run>& runs() { return runs_; }
  bool takes_start() { return domain_->takes_start(); }

  void add_line(const chart::Course& course) {
    draw(course);
    finish();
  }

  /// Before: `rings` gets those that no edge cuts.
  void add_ring(const chart::Course& course, std::vector<Way>& rings) {
    const std::size_t before = runs_.size();
    draw(course);
    if (course.pole != 0) {
      // All round the globe: the rest of the way round is at the pole, which no map draws.
      const double pole = 90.0 * course.pole;
      pieces_.clear();
      domain_->cut({-180.0, pole, -180.0, pole, 1, false, 0, 0}, pieces_);
    }
    if (!is_open_) return;
    is_open_ = false;
    if (run_.begin.on_edge()) {
      // The ring began inside of the map, with the first of its runs.
      Run& first = runs_[before];
      run_.points.insert(run_.points.end(), first.points.begin() + 1, first.points.end());
      run_.end = first.end;
      first = std::move(run_);
    } else {
      rings.push_back(std::move(run_.points));
    }
    run_ = {};
  }

 private:
  void draw(const chart::Course& course) {
    tracer_.place(course.lon, course.lat, vertices_);
    drawn_ += vertices_.size();
    for (const chart::Side& side : course.sides) {
      pieces_.clear();
      domain_->cut(side, pieces_);
      if (side.reversed) std::reverse(pieces_.begin(), pieces_.end());
      for (const Piece& piece : pieces_) add(piece, side);
      if (is_full()) return;
    }
  }

  /// Goes on along a piece of a side, in the direction of the ring.
  void add(const Piece& piece, const chart::Side& side) {
    const Point first =
        end_of(piece.place, piece.lon, piece.lat, side.reversed ? side.to : side.from);
    const Point last =
        end_of(piece.end_place, piece.end_lon, piece.end_lat, side.reversed ? side.from : side.to);
    const Place& begin = side.reversed ? piece.end_place : piece.place;
    const Place& end = side.reversed ? piece.place : piece.end_place;
    if (begin.on_edge() || !is_open_) {
      finish();
      run_.begin = begin;
      run_.points.push_back(side.reversed ? last : first);
      is_open_ = true;
    }
    const std::size_t before = run_.points.size();
    tracer_.draw(piece.lon, piece.lat, first, piece.end_lon, piece.end_lat, last, run_.points);
    if (side.reversed) {
      std::reverse(run_.points.begin() + static_cast<std::ptrdiff_t>(before), run_.points.end());
    }
    run_.points.push_back(side.reversed ? first : last);
    drawn_ += run_.points.size() - before;
    run_.end = end;
    if (end.on_edge()) finish();
  }

  Point end_of(const Place& place, double lon, double lat, std::uint32_t vertex) const {
    if (place.on_edge()) return domain_->at(place, lon, lat, tracer_);
    // A line may end on the meridian where the map is torn, at either end of the map.
    return lon == 180.0 ? tracer_.place(lon, lat) : vertices_[vertex];
  }

  void finish() {
    if (is_open_) runs_.push_back(std::exchange(run_, {}));
    is_open_ = false;
  }

  Tracer tracer_;
  std::unique_ptr<Domain> domain_;
  std::size_t drawn_ = 0;
  std::vector<Run> runs_;
  Run run_;  // the last one, while it goes on
  bool is_open_ = false;
  // Of the course and the side at hand, kept for their memory.
  std::vector<Point> vertices_;
  std::vector<Piece> pieces_;
};

/// Closes runs along the edge.
class Closer {
 public:
  /// @param starts_inside  the beginning of the edge is inside
  Closer(const Drawing& drawing, const std::vector<Run>& runs, bool starts_inside)
      : drawing_(drawing), runs_(runs) {
    for (std::uint32_t run = 0; run < runs.size(); ++run) {
      ends_.push_back({runs[run].begin, run, true});
      ends_.push_back({runs[run].end, run, false});
    }
    std::stable_sort(ends_.begin(), ends_.end(),
                     [](const End& a, const End& b) { return a.place < b.place; });
    end_of_run_.resize(2 * runs.size());
    for (std::uint32_t e = 0; e < ends_.size(); ++e) {
      end_of_run_[2 * ends_[e].run + (ends_[e].begins ? 0 : 1)] = e;
    }
    // What is inside lies between the first end and the second, the third and the fourth, or, if it
    // is there at the beginning, between the second and the third, the last and the first.
    first_ = starts_inside ? 1 : 0;
  }

  void close(std::vector<Way>& rings) {
    if (ends_.empty()) {
      if (first_ == 0) return;
      const Place start = drawing_.domain().start();
      Way ring;
      follow(start, start, ring);
      rings.push_back(std::move(ring));
      return;
    }
    std::vector<bool> used(runs_.size(), false);
    for (std::uint32_t start = 0; start < runs_.size(); ++start) {
      if (used[start]) continue;
      Way ring;
      std::uint32_t run = start;
      bool forwards = true;
      while (!used[run]) {
        used[run] = true;
        const Way& points = runs_[run].points;
        if (forwards) {
          ring.insert(ring.end(), points.begin(), points.end());
        } else {
          ring.insert(ring.end(), points.rbegin(), points.rend());
        }
        const std::uint32_t next = along_edge(end_of_run_[2 * run + (forwards ? 1 : 0)], ring);
        run = ends_[next].run;
        forwards = ends_[next].begins;
      }
      rings.push_back(std::move(ring));
    }
  }

 private:
  struct End {
    Place place;
    std::uint32_t run;
    bool begins;
  };

  /// Goes along the edge to the other end of the inside between two ends.
  std::uint32_t along_edge(std::uint32_t end, Way& ring) const {
    const auto count = static_cast<std::uint32_t>(ends_.size());
    const bool counter_clockwise = end % 2 == first_;
    const std::uint32_t other = (counter_clockwise ? end + 1 : end + count - 1) % count;
    const std::uint32_t from = counter_clockwise ? end : other;
    const std::uint32_t to = counter_clockwise ? other : end;
    const bool is_nothing = from < to && !(ends_[from].place < ends_[to].place);
    if (is_nothing) return other;
    const std::size_t before = ring.size();
    follow(ends_[from].place, ends_[to].place, ring);
    if (!counter_clockwise) {
      std::reverse(ring.begin() + static_cast<std::ptrdiff_t>(before), ring.end());
    }
    return other;
  }

  void follow(const Place& from, const Place& to, Way& ring) const {
    drawing_.domain().follow(from, to, drawing_.tracer(), ring);
  }

  const Drawing& drawing_;
  const std::vector<Run>& runs_;
  std::vector<End> ends_;                  // in their order on the edge
  std::vector<std::uint32_t> end_of_run_;  // of each run the end at which it begins, and the other
  std::uint32_t first_ = 0;
};

/// A coordinate; smaller ones than exact arithmetic takes are as good as none.
double taken(double coordinate) { return std::fabs(coordinate) < 0x1p-480 ? 0.0 : coordinate; }

Outline laid_out(const std::vector<Way>& ways) {
  Outline outline;
  outline.x.reserve(size_of(ways));
  outline.y.reserve(size_of(ways));
  outline.starts.reserve(ways.size());
  for (const Way& way : ways) {
    outline.starts.push_back(static_cast<std::int32_t>(outline.x.size()));
    for (const Point& p : way) {
      outline.x.push_back(taken(p.x));
      outline.y.push_back(taken(p.y));
    }
  }
  return outline;
}

/// Rings that cross where the curves did not, made valid.
Result<Outline, Flaw> valid(const std::vector<Way>& rings) {
  if (size_of(rings) >= kMostVertices) return too_many();
  const Outline outline = laid_out(rings);
  return make_valid(outline.rings());
}

Result<Outline, Flaw> draw_area(const Chart& chart, const Rings& degrees, double tolerance) {
  if (auto error = complaint(chart, tolerance)) return refusal(error->kind, error->message);
  if (auto flaw = complaint(degrees)) return std::move(*flaw);
  Drawing drawing(chart, tolerance, false);
  std::vector<Way> rings;
  for (std::size_t ring = 0; ring < degrees.starts.size(); ++ring) {
    const auto first = static_cast<std::size_t>(degrees.starts[ring]);
    const std::size_t count = end_of_ring(degrees, ring) - first;
    drawing.add_ring(
        chart::ring_course(degrees.x.subspan(first, count), degrees.y.subspan(first, count),
                           chart.parameters().base_lon),
        rings);
    if (drawing.is_full()) return too_many();
  }
  const bool starts_inside = drawing.takes_start();
  Closer(drawing, drawing.runs(), starts_inside).close(rings);
  return valid(rings);
}

Result<Outline, Flaw> draw_lines(const Chart& chart, const Rings& degrees, double tolerance) {
  if (auto error = complaint(chart, tolerance)) return refusal(error->kind, error->message);
  if (auto flaw = complaint(degrees)) return std::move(*flaw);
  Drawing drawing(chart, tolerance, true);
  for (std::size_t line = 0; line < degrees.starts.size(); ++line) {
    const auto first = static_cast<std::size_t>(degrees.starts[line]);
    const std::size_t count = end_of_ring(degrees, line) - first;
    drawing.add_line(chart::line_course(degrees.x.subspan(first, count),
                                        degrees.y.subspan(first, count),
                                        chart.parameters().base_lon));
    if (drawing.is_full()) return too_many();
  }
  std::vector<Way> lines;
  for (Run& run : drawing.runs()) {
    const auto is_here = [&run](const Point& p) {
      return p.x == run.points[0].x && p.y == run.points[0].y;
    };
    if (!std::all_of(run.points.begin(), run.points.end(), is_here)) {
      lines.push_back(std::move(run.points));
    }
  }
  return laid_out(lines);
}

Result<Outline> draw_frame(const Chart& chart, double tolerance) {
  if (auto error = complaint(chart, tolerance)) return std::move(*error);
  const Drawing drawing(chart, tolerance, false);
  std::vector<Way> rings;
  Closer(drawing, {}, true).close(rings);
  auto frame = valid(rings);
  if (!frame) return Error{frame.error().kind, frame.error().message};
  return std::move(*frame);
}

}  // namespace

Result<Outline, Flaw> project_area(const Chart& chart, const Rings& degrees, double tolerance) {
  try {
    return draw_area(chart, degrees, tolerance);
  } catch (const std::bad_alloc&) {
    return refusal(ErrorKind::out_of_memory, "out of memory");
  }
}

Result<Outline, Flaw> project_lines(const Chart& chart, const Rings& degrees, double tolerance) {
  try {
    return draw_lines(chart, degrees, tolerance);
  } catch (const std::bad_alloc&) {
    return refusal(ErrorKind::out_of_memory, "out of memory");
  }
}

Result<Outline> chart_frame(const Chart& chart, double tolerance) {
  try {
    return draw_frame(chart, tolerance);
  } catch (const std::bad_alloc&) {
    return Error{ErrorKind::out_of_memory, "out of memory"};
  }
}

}  // namespace kzgis
