// Fuzzes `Chart` and `project_classic`: any parameters, any points, there and back; and the points
// as rings and lines, drawn on the plane.
//
// Input: a byte for the projection, a byte of flags, six numbers for the parameters; with a
// window its four numbers; the rest are points of three numbers each.  A number is a double as it
// stands in memory, or, under the first flag, 32 bits for a part of half a turn: nearly all of
// those have a place on a map.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numbers>
#include <optional>
#include <span>
#include <vector>

#include "fuzz/harness.h"
#include "kzgis/chart.h"
#include "kzgis/outline.h"

namespace {

using kzgis::Chart;
using kzgis::ChartParameters;
using Numbers = std::vector<double>;

constexpr double kDegree = std::numbers::pi / 180.0;

enum Flags : unsigned {
  kParts = 1,
  kFirst = 2,
  kSecond = 4,
  kReach = 8,
  kWindow = 16,
  kRadius = 32,
  kCoarse = 64
};

class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
  void use_parts(bool parts) { parts_ = parts; }
  unsigned byte() {
    std::uint8_t value = 0;
    take(&value, sizeof value);
    return value;
  }
  /// @param most  the end of the range of parts
  double number(double most) {
    if (parts_) {
      std::int32_t part = 0;
      take(&part, sizeof part);
      return part * (most / 2147483648.0);
    }
    double value = 0.0;
    take(&value, sizeof value);
    return value;
  }
  bool at_end() const { return size_ == 0; }

 private:
  /// What is behind the end is 0.
  void take(void* to, std::size_t bytes) {
    const std::size_t there = std::min(bytes, size_);
    if (there > 0) std::memcpy(to, data_, there);
    data_ += there;
    size_ -= there;
  }

  const std::uint8_t* data_;
  std::size_t size_;
  bool parts_ = false;
};

/// Two or three coordinates of every point.
struct Points {
  Numbers a, b, c;
};

bool same_bits(const Numbers& one, const Numbers& other) {
  return one.empty() || std::memcmp(one.data(), other.data(), one.size() * sizeof(double)) == 0;
}
bool operator==(const Points& one, const Points& other) {
  return same_bits(one.a, other.a) && same_bits(one.b, other.b) && same_bits(one.c, other.c);
}

/// Points without a place are NaN in all coordinates, the others in none, and they are counted.
void check_count(const Points& points, std::size_t refused) {
  std::size_t counted = 0;
  for (std::size_t i = 0; i < points.a.size(); ++i) {
    const bool placed = std::isfinite(points.a[i]);
    require(placed || std::isnan(points.a[i]));
    for (const Numbers* const numbers : {&points.b, &points.c}) {
      if (numbers->empty()) continue;
      require(placed ? std::isfinite((*numbers)[i]) : std::isnan((*numbers)[i]));
    }
    if (!placed) ++counted;
  }
  require(counted == refused);
}

/// Takes points there or back in several ways, which must agree.
///
/// @param convert  (a, b, c, to_a, to_b, to_c): how many points have no place
template <class Convert>
Points converted(const Points& given, bool flat, Convert convert) {
  const std::size_t n = given.a.size();
  Points apart{Numbers(n), Numbers(n), Numbers(flat ? 0 : n)};
  const std::size_t refused = convert(given.a, given.b, given.c, apart.a, apart.b, apart.c);
  check_count(apart, refused);

  Points here = given;
  if (flat) here.c.clear();
  require(convert(here.a, here.b, here.c, here.a, here.b, here.c) == refused);
  require(here == apart);

  Points turned = given;
  if (flat) {
    turned.c.clear();
    require(convert(turned.a, turned.b, turned.c, turned.b, turned.a, turned.c) == refused);
    require((Points{turned.b, turned.a, {}}) == apart);
  } else {
    require(convert(turned.a, turned.b, turned.c, turned.b, turned.c, turned.a) == refused);
    require((Points{turned.b, turned.c, turned.a}) == apart);
  }
  return apart;
}

/// The angle between two points of the globe, in degrees; good for short ways.
double apart_deg(double lat1, double lon1, double lat2, double lon2) {
  const double s = std::sin(0.5 * (lat1 - lat2) * kDegree);
  const double t = std::sin(0.5 * std::remainder(lon1 - lon2, 360.0) * kDegree);
  const double h = s * s + std::cos(lat1 * kDegree) * std::cos(lat2 * kDegree) * t * t;
  return 2.0 * std::asin(std::min(std::sqrt(h), 1.0)) / kDegree;
}

/// How far the way there and back may take a point: the table in the header.
double allowed_deg(const Chart& chart, double lat, double lon) {
  constexpr double kElsewhere = 1e-9;
  const ChartParameters& p = chart.parameters();
  const double from_base = apart_deg(p.base_lat, p.base_lon, lat, lon);
  const double from_pole = 90.0 - std::fabs(lat);
  switch (chart.type()) {
    case LambertCylindricalProj:
      return from_pole < 0.01 ? 3e-6 : kElsewhere;
    case OrthographicProj:
      return std::fabs(from_base - 90.0) < 0.01 ? 3e-6 : kElsewhere;
    case LambertAzimuthalProj:
      return from_base > 180.0 - 0.02 ? 1e-5 : kElsewhere;
    case AlbersProj:
      return from_pole < 0.05 ? 2e-5 : kElsewhere;
    default:
      return kElsewhere;
  }
}

bool within(double value, double limit) { return std::fabs(value) <= limit; }

/// Whether the table holds: not for longitudes that have lost their digits, nor for Lambert
/// conics whose base or parallels lie near to the pole without a place.
bool comes_back(const Chart& chart) {
  const ChartParameters& p = chart.parameters();
  if (!within(p.base_lon, 720.0) || p.radius < 1e-6 || p.radius > 1e12) return false;
  return chart.type() != LambertConicProj ||
         (within(p.base_lat, 60.0) && within(*p.first_parallel, 60.0) &&
          within(*p.second_parallel, 60.0));
}

void check_round_trip(const Chart& chart, const Points& from, const Points& there,
                      const Points& back) {
  const double radius = chart.parameters().radius;
  for (std::size_t i = 0; i < from.a.size(); ++i) {
    if (std::isnan(there.a[i]) || !within(from.b[i], 720.0)) continue;
    if (!from.c.empty() && !(from.c[i] >= -0.9 * radius && from.c[i] <= 10.0 * radius)) continue;
    require(!std::isnan(back.a[i]));
    require(apart_deg(from.a[i], from.b[i], back.a[i], back.b[i]) <
            allowed_deg(chart, from.a[i], from.b[i]));
  }
}

void check_degrees(const Points& points) {
  for (std::size_t i = 0; i < points.a.size(); ++i) {
    if (std::isnan(points.a[i])) continue;
    require(within(points.a[i], 90.0) && points.b[i] >= -180.0 && points.b[i] < 180.0);
  }
}

void check_both_ways(const Chart& chart, const Points& degrees, const Points& world) {
  const auto there_flat = [&chart](const Numbers& a, const Numbers& b, const Numbers&,
                                   Numbers& to_a, Numbers& to_b,
                                   Numbers&) { return chart.project(a, b, to_a, to_b); };
  const auto there = [&chart](const Numbers& a, const Numbers& b, const Numbers& c, Numbers& to_a,
                              Numbers& to_b,
                              Numbers& to_c) { return chart.project(a, b, c, to_a, to_b, to_c); };
  const auto back_flat = [&chart](const Numbers& a, const Numbers& b, const Numbers&, Numbers& to_a,
                                  Numbers& to_b,
                                  Numbers&) { return chart.unproject(a, b, to_a, to_b); };
  const auto back = [&chart](const Numbers& a, const Numbers& b, const Numbers& c, Numbers& to_a,
                             Numbers& to_b,
                             Numbers& to_c) { return chart.unproject(a, b, c, to_a, to_b, to_c); };
  const Points placed = converted(degrees, false, there);
  const Points placed_flat = converted(degrees, true, there_flat);
  const Points returned = converted(placed, false, back);
  const Points returned_flat = converted(placed_flat, true, back_flat);
  if (comes_back(chart)) {
    check_round_trip(chart, degrees, placed, returned);
    check_round_trip(chart, {degrees.a, degrees.b, {}}, placed_flat, returned_flat);
  }
  check_degrees(converted(world, false, back));
  check_degrees(converted(world, true, back_flat));
}

/// The classic class refuses all points or none; what it gives need not be finite.
void check_classic(projType type, const ChartParameters& parameters, const Points& degrees) {
  Projection projection(type, parameters.base_lat, parameters.base_lon);
  projection.setFirstPar(parameters.first_parallel.value_or(20.0));
  projection.setSecondPar(parameters.second_parallel.value_or(60.0));
  const std::size_t n = degrees.a.size();
  Points apart{Numbers(n), Numbers(n), Numbers(n)};
  const std::size_t refused = kzgis::project_classic(projection, degrees.a, degrees.b, degrees.c,
                                                     apart.a, apart.b, apart.c);
  require(refused == 0 || refused == n);
  Points here = degrees;
  require(kzgis::project_classic(projection, here.a, here.b, here.c, here.a, here.b, here.c) ==
          refused);
  require(here == apart);
}

/// The points as rings, a new one where an altitude is negative: valid areas come of them, and of
/// nothing that is not finite.
void check_outlines(const Chart& chart, const Points& degrees, double tolerance) {
  // As many as can be swept in a moment, however they cross.
  constexpr std::size_t kMost = 200;
  const std::size_t n = std::min(degrees.a.size(), kMost);
  std::vector<std::int32_t> starts;
  bool finite = true;
  for (std::size_t i = 0; i < n; ++i) {
    if (i == 0 || degrees.c[i] < 0.0) starts.push_back(static_cast<std::int32_t>(i));
    finite = finite && std::isfinite(degrees.a[i]) && std::isfinite(degrees.b[i]);
  }
  const kzgis::Rings rings{std::span(degrees.b).first(n), std::span(degrees.a).first(n), starts};
  const auto area = kzgis::project_area(chart, rings, tolerance);
  const auto lines = kzgis::project_lines(chart, rings, tolerance);
  const double radius = chart.parameters().radius;
  const bool drawn = finite && chart.type() != GlobeProj && radius >= 1e-100 && radius <= 1e100;
  require(area.has_value() == drawn);
  require(lines.has_value() == area.has_value());
  if (!area) return;
  for (const kzgis::Outline* const outline : {&*area, &*lines}) {
    for (const double x : outline->x) require(std::isfinite(x));
    for (const double y : outline->y) require(std::isfinite(y));
  }
  const auto nesting = kzgis::nest(area->rings());
  require(nesting.has_value());
  for (const std::int32_t depth : nesting->depth) require(depth > 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  silence();
  Input input(data, size);
  const projType type = static_cast<projType>(input.byte() % (GlobeProj + 1));
  const unsigned flags = input.byte();
  input.use_parts((flags & kParts) != 0);
  ChartParameters parameters;
  parameters.base_lat = input.number(90.0);
  parameters.base_lon = input.number(360.0);
  const double first = input.number(90.0);
  const double second = input.number(90.0);
  const double radius = std::fabs(input.number(2e7));
  const double reach = input.number(180.0);
  if ((flags & kFirst) != 0) parameters.first_parallel = first;
  if ((flags & kSecond) != 0) parameters.second_parallel = second;
  if ((flags & kRadius) != 0) parameters.radius = radius;
  if ((flags & kReach) != 0) parameters.reach_deg = reach;
  if ((flags & kWindow) != 0) {
    const double min_x = input.number(180.0);
    const double min_y = input.number(90.0);
    const double max_x = input.number(180.0);
    parameters.window = kzgis::Box{min_x, min_y, max_x, input.number(90.0)};
  }
  Points degrees;
  Points world;
  while (!input.at_end()) {
    degrees.a.push_back(input.number(90.0));
    degrees.b.push_back(input.number(360.0));
    degrees.c.push_back(input.number(1e8));
    const double unit = (flags & kParts) != 0 ? parameters.radius / 60.0 : 1.0;
    world.a.push_back(degrees.b.back() * unit);
    world.b.push_back(degrees.a.back() * unit);
    world.c.push_back(degrees.c.back());
  }

  const kzgis::Result<Chart> chart = Chart::make(type, parameters);
  if (chart) {
    check_both_ways(*chart, degrees, world);
    check_classic(type, parameters, degrees);
    check_outlines(*chart, degrees, parameters.radius * ((flags & kCoarse) != 0 ? 0.1 : 0.001));
  } else {
    require(chart.error().kind == kzgis::ErrorKind::bad_argument && !chart.error().message.empty());
  }
  return 0;
}
