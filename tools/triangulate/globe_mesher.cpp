// Triangles on the globe are made on a plane: that of the stereographic projection about a point of
// each record's own.  It takes circles to circles, so that Delaunay triangles there are Delaunay on
// the sphere, and shortens nothing, so that no side is longer on the sphere.  The point opposite to
// the middle has no place on that plane; it must lie outside of the polygon.
//
// Which part of the globe is inside, whatever rings do at the poles and the antimeridian, is known
// on the plane of longitude and latitude.  The rings that bound it there are cut into pieces, alike
// on both sides of the antimeridian, where they then meet vertex for vertex: by the odd-even rule
// such sides are none.  So are those that run along a pole or to one and back.

#include "tools/triangulate/globe_mesher.h"

#include <kzgis/outline.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/mesh_files/float_point.h"

namespace kzgis::tools {

namespace {

constexpr double kDegree = std::numbers::pi / 180.0;
// Files miss the antimeridian by their last digits; this is a tenth of a millimetre.
constexpr double kNothing_deg = 1e-9;
constexpr double kPiece_deg = 1.0;

struct Place {
  double lon, lat;
};

Chart make(projType type, const Place& base, double radius) {
  ChartParameters parameters;
  parameters.base_lat = base.lat;
  parameters.base_lon = base.lon;
  parameters.radius = radius;
  return Chart::make(type, parameters).value();
}

WorldPoint on_globe(const Chart& globe, const Place& place) {
  constexpr double kAltitude = 0.0;
  WorldPoint p{};
  globe.project({&place.lat, 1}, {&place.lon, 1}, {&kAltitude, 1}, {&p.x, 1}, {&p.y, 1}, {&p.z, 1});
  return p;
}

double dot(const WorldPoint& a, const WorldPoint& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

/// Moves a longitude onto the antimeridian that lies next to it; in whatever turn.
double on_antimeridian(double lon) {
  const double there = 360.0 * std::round((lon - 180.0) / 360.0) + 180.0;
  return std::fabs(lon - there) < kNothing_deg ? there : lon;
}

/// The latitudes of vertices on the antimeridian, in ascending order.
std::vector<double> latitudes_on_seam(const Outline& outline) {
  std::vector<double> latitudes;
  for (std::size_t i = 0; i < outline.x.size(); ++i) {
    if (std::fabs(outline.x[i]) == 180.0) latitudes.push_back(outline.y[i]);
  }
  std::sort(latitudes.begin(), latitudes.end());
  return latitudes;
}

/// The polygon's boundary in degrees, from -180 to 180 and pole to pole, valid there.
Result<Outline, Flaw> in_degrees(const Rings& rings) {
  const Chart plane = make(CartesianProj, {0.0, 0.0}, 1.0 / kDegree);
  constexpr double kTolerance_deg = 1.0;  // nothing is bent
  std::vector<double> x(rings.x.begin(), rings.x.end());
  for (double& lon : x) lon = on_antimeridian(lon);
  auto outline = project_area(plane, {x, rings.y, rings.starts}, kTolerance_deg);
  if (!outline) return outline;
  for (double& lon : outline->x) lon = on_antimeridian(lon);
  const std::vector<double> seam = latitudes_on_seam(*outline);
  for (std::size_t i = 0; i < outline->x.size(); ++i) {
    double& lat = outline->y[i];
    // The same on both sides: the first of those that are next to each other.
    if (std::fabs(outline->x[i]) == 180.0) {
      lat = *std::lower_bound(seam.begin(), seam.end(), lat - kNothing_deg);
    }
  }
  for (double& lat : outline->y) {
    if (90.0 - std::fabs(lat) < kNothing_deg) lat = std::copysign(90.0, lat);
  }
  return outline;
}

std::size_t end_of(const Outline& outline, std::size_t ring) {
  return ring + 1 < outline.starts.size() ? static_cast<std::size_t>(outline.starts[ring + 1])
                                          : outline.x.size();
}

/// Cuts sides into pieces.
class Pieces {
 public:
  Pieces(const Outline& outline, double longest_deg)
      : longest_deg_(longest_deg), seam_(latitudes_on_seam(outline)) {}

  /// Appends a side's beginning and the ends of its pieces but the last.
  void append(const Place& from, const Place& to, Outline& pieces) const {
    // What is calculated of a side is the same for both polygons that it parts.
    const bool reversed = std::pair(to.lat, to.lon) < std::pair(from.lat, from.lon);
    std::vector<Place> places{reversed ? to : from};
    const Place end = reversed ? from : to;
    if (from.lon == to.lon && std::fabs(from.lon) == 180.0) {
      const auto first = std::upper_bound(seam_.begin(), seam_.end(), places[0].lat);
      for (auto lat = first; lat != seam_.end() && *lat < end.lat; ++lat) {
        cut({end.lon, *lat}, places);
      }
    }
    cut(end, places);
    if (reversed) std::reverse(places.begin(), places.end());
    places.pop_back();
    for (const Place& place : places) {
      pieces.x.push_back(place.lon);
      pieces.y.push_back(place.lat);
    }
  }

 private:
  /// Goes on to a place, in pieces.
  void cut(const Place& to, std::vector<Place>& places) const {
    const Place from = places.back();
    const double width = to.lon - from.lon;
    const double height = to.lat - from.lat;
    const bool on_pole = std::fabs(from.lat) == 90.0 && from.lat == to.lat;
    const auto count = static_cast<std::size_t>(
        on_pole ? 1.0 : std::ceil(std::hypot(width, height) / longest_deg_));
    for (std::size_t i = 1; i < count; ++i) {
      const double t = static_cast<double>(i) / static_cast<double>(count);
      places.push_back({from.lon + width * t, from.lat + height * t});
    }
    places.push_back(to);
  }

  double longest_deg_;
  std::vector<double> seam_;  // latitudes of the vertices on the antimeridian
};

/// How long all sides are together, in degrees; those from the end of a ring to the next one's
/// beginning included.
double length_of(const Outline& outline) {
  double length = 0.0;
  for (std::size_t i = 1; i < outline.x.size(); ++i) {
    length += std::hypot(outline.x[i] - outline.x[i - 1], outline.y[i] - outline.y[i - 1]);
  }
  for (std::size_t ring = 0; ring < outline.starts.size(); ++ring) {
    const auto begin = static_cast<std::size_t>(outline.starts[ring]);
    const std::size_t last = end_of(outline, ring) - 1;
    length += std::hypot(outline.x[begin] - outline.x[last], outline.y[begin] - outline.y[last]);
  }
  return length;
}

Outline in_pieces(const Outline& outline, double longest_deg) {
  const Pieces pieces(outline, longest_deg);
  Outline result;
  for (std::size_t ring = 0; ring < outline.starts.size(); ++ring) {
    const auto begin = static_cast<std::size_t>(outline.starts[ring]);
    const std::size_t end = end_of(outline, ring);
    result.starts.push_back(static_cast<std::int32_t>(result.x.size()));
    for (std::size_t i = begin; i < end; ++i) {
      const std::size_t next = i + 1 < end ? i + 1 : begin;
      pieces.append({outline.x[i], outline.y[i]}, {outline.x[next], outline.y[next]}, result);
    }
  }
  return result;
}

/// Whether a place is inside of rings on the plane of longitude and latitude.
bool is_inside(const Outline& outline, const Place& place) {
  bool inside = false;
  for (std::size_t ring = 0; ring < outline.starts.size(); ++ring) {
    const auto begin = static_cast<std::size_t>(outline.starts[ring]);
    const std::size_t end = end_of(outline, ring);
    for (std::size_t i = begin, last = end - 1; i < end; last = i++) {
      const bool above = outline.y[i] > place.lat;
      if (above == (outline.y[last] > place.lat)) continue;
      const double t = (place.lat - outline.y[i]) / (outline.y[last] - outline.y[i]);
      if (outline.x[i] + t * (outline.x[last] - outline.x[i]) > place.lon) inside = !inside;
    }
  }
  return inside;
}

/// The middle of the plane: opposite to a place outside of the polygon, and far from its sides.
class Middle {
 public:
  explicit Middle(const Outline& pieces)
      : pieces_(pieces), globe_(make(GlobeProj, {0.0, 0.0}, 1.0)) {
    for (std::size_t i = 0; i < pieces.x.size(); ++i) {
      sides_.push_back(on_globe(globe_, {pieces.x[i], pieces.y[i]}));
    }
  }

  /// Nothing where no place outside is found.
  std::optional<Place> choose() {
    try_opposite_to_mean();
    constexpr double kFarEnough = 0.5;  // the cosine of 60 degrees
    if (opposite_ && nearest_ < kFarEnough) return middle();
    constexpr int kSteps = 24;  // from pole to pole
    for (int row = 0; row < kSteps; ++row) {
      for (int column = 0; column < 2 * kSteps; ++column) {
        try_opposite(
            {(column + 0.5) * 180.0 / kSteps - 180.0, (row + 0.5) * 180.0 / kSteps - 90.0});
      }
    }
    return opposite_ ? std::optional(middle()) : std::nullopt;
  }

 private:
  void try_opposite_to_mean() {
    WorldPoint sum{};
    for (const WorldPoint& p : sides_) sum = {sum.x + p.x, sum.y + p.y, sum.z + p.z};
    const double level = std::hypot(sum.x, sum.y);
    if (!(std::hypot(level, sum.z) > 0.0)) return;
    try_opposite({std::atan2(-sum.y, -sum.x) / kDegree, std::atan2(-sum.z, level) / kDegree});
  }

  void try_opposite(const Place& place) {
    const WorldPoint p = on_globe(globe_, place);
    double nearest = -1.0;
    for (const WorldPoint& side : sides_) {
      nearest = std::max(nearest, dot(side, p));
      if (opposite_ && nearest >= nearest_) return;
    }
    if (is_inside(pieces_, place)) return;
    opposite_ = place;
    nearest_ = nearest;
  }

  Place middle() const { return {opposite_->lon + 180.0, -opposite_->lat}; }

  const Outline& pieces_;
  Chart globe_;
  std::vector<WorldPoint> sides_;  // their vertices on the globe of radius 1
  std::optional<Place> opposite_;  // the best one so far
  double nearest_ = 1.0;           // the cosine of its distance from the sides
};

// Triangles over the far side of the globe, of vertices on this side alone, would lie inside out:
// in radians, what keeps them from it.
constexpr double kLongestBeyond = 60.0 * kDegree;

/// Whether anything lies more than 90 degrees from the middle, which is 2 radii on the plane.
bool is_beyond_hemisphere(const std::vector<double>& x, const std::vector<double>& y) {
  for (std::size_t i = 0; i < x.size(); ++i) {
    if (std::hypot(x[i], y[i]) > 2.0) return true;
  }
  return false;
}

double area_of(const RecordMesh& mesh) {
  double twice = 0.0;
  for (std::size_t i = 0; i + 2 < mesh.triangles.size(); i += 3) {
    const WorldPoint across =
        cross_product(mesh.points[mesh.triangles[i]], mesh.points[mesh.triangles[i + 1]],
                      mesh.points[mesh.triangles[i + 2]]);
    twice += std::hypot(across.x, across.y, across.z);
  }
  return 0.5 * twice;
}

}  // namespace

Result<RecordMesh> mesh_on_globe(const Rings& degrees, const MeshOptions& options,
                                 const Chart& globe) {
  const auto outline = in_degrees(degrees);
  if (!outline) return Error{outline.error().kind, outline.error().message};
  if (outline->x.empty()) return RecordMesh{};
  const double longest_deg = std::min(kPiece_deg, 0.5 * options.longest_side);
  if (length_of(*outline) / longest_deg > static_cast<double>(options.most_triangles)) {
    return Error{ErrorKind::bad_data, "the mesh needs more than " +
                                          std::to_string(options.most_triangles) + " triangles"};
  }
  const Outline pieces = in_pieces(*outline, longest_deg);
  const auto middle = Middle(pieces).choose();
  if (!middle) return Error{ErrorKind::bad_data, "it covers the whole globe"};

  const Chart plane = make(StereographicProj, *middle, 1.0);
  std::vector<double> x(pieces.x.size());
  std::vector<double> y(pieces.x.size());
  if (plane.project(pieces.y, pieces.x, x, y) > 0) {
    return Error{ErrorKind::bad_data, "it covers the whole globe"};
  }
  MeshOptions flat = options;
  flat.split_crossings = true;
  flat.longest_side = options.longest_side * kDegree;
  if (is_beyond_hemisphere(x, y)) flat.longest_side = std::min(flat.longest_side, kLongestBeyond);
  auto mesh = triangulate({x, y, pieces.starts}, flat);
  if (!mesh) return Error{mesh.error().kind, mesh.error().message};

  RecordMesh result;
  for (std::size_t i = 0; i < pieces.x.size(); ++i) {
    result.points.push_back(on_globe(globe, {pieces.x[i], pieces.y[i]}));
  }
  for (std::size_t i = 0; i < mesh->new_x.size(); ++i) {
    Place place{};
    plane.unproject({&mesh->new_x[i], 1}, {&mesh->new_y[i], 1}, {&place.lat, 1}, {&place.lon, 1});
    result.points.push_back(on_globe(globe, place));
  }
  result.crossings = mesh->crossings;
  result.added = mesh->new_x.size();
  result.triangles = std::move(mesh->triangles);
  result.area = area_of(result);
  return result;
}

}  // namespace kzgis::tools
