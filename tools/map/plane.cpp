// What each projection needs so that a printed map comes of it.  The formulas are the
// library's; here are the limits within which they draw something worth looking at.

#include "tools/map/plane.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "tools/support/command_error.h"

namespace kzgis::map {
namespace {

constexpr double kDegree = std::numbers::pi / 180.0;

// A disc stops this short of the antipode, where every direction is the right one.
constexpr double kFullDisc_deg = 179.9;

Window window_of(projType type) {
  switch (type) {
    case MercatorProj:
      return {-180.0, 180.0, -78.0, 84.0};  // the poles lie at infinity
    case LambertConicProj:
      return {-180.0, 180.0, -30.0, 90.0};  // grows without bound towards the south
    case AlbersProj:
      return {-180.0, 180.0, -60.0, 90.0};
    case CassiniSoldnerProj:
      // Half the globe: the other half is torn along the equator, and at 90 degrees a point of it
      // is drawn as a whole side.
      return {-89.99, 89.99, -90.0, 90.0};
    default:
      return {-180.0, 180.0, -90.0, 90.0};
  }
}

double wrapped(double lon) {
  const double rest = std::remainder(lon, 360.0);
  return std::isfinite(rest) ? rest : 0.0;
}

/// How far east of one meridian another lies: above 0, up to 360.
double eastward(double from, double to) {
  const double way = wrapped(to - from);
  return way > 0.0 ? way : way + 360.0;
}

/// A chart of the unit globe with its base at the longitude 0.
ChartParameters from_base(ChartParameters parameters) {
  parameters.base_lon = 0.0;
  parameters.radius = 1.0;
  return parameters;
}

ChartParameters parameters_of(const PlaneRequest& request) {
  ChartParameters parameters = tools::chart_parameters(request);
  if (request.box && !request.base) {
    const Window& box = *request.box;
    parameters.base_lat = 0.5 * (box.south + box.north);
    parameters.base_lon = box.west + 0.5 * eastward(box.west, box.east);
  }
  return parameters;
}

Chart directions_about(double base_lat) {
  ChartParameters parameters;
  parameters.base_lat = base_lat;
  return tools::make_chart(PostelProj, from_base(parameters));
}

// The globe is seen from far away.
projType drawn_as(projType type) { return type == GlobeProj ? OrthographicProj : type; }

PlanePoint project(const Chart& chart, const Geo& position) {
  PlanePoint point{};
  point.visible =
      chart.project({&position.lat, 1}, {&position.lon, 1}, {&point.x, 1}, {&point.y, 1}) == 0;
  return point;
}

}  // namespace

Plane::Plane(const PlaneRequest& request)
    : type_(request.type),
      base_lat_(parameters_of(request).base_lat),
      base_lon_(wrapped(parameters_of(request).base_lon)),
      chart_(tools::make_chart(drawn_as(type_), from_base(parameters_of(request)))),
      directions_(directions_about(base_lat_)) {
  if (chart_.parameters().reach_deg) {
    set_up_disc(request);
  } else {
    set_up_window(request);
  }
}

void Plane::set_up_disc(const PlaneRequest& request) {
  if (request.box) {
    throw tools::UsageError("--box: azimuthal maps are round; --base and --horizon set them");
  }
  // On the equator x is the distance from the middle.
  ChartParameters equatorial = from_base({});
  equatorial.reach_deg = request.horizon_deg;
  const Result<Chart> chart = Chart::make(chart_.type(), equatorial);
  if (!chart) throw tools::UsageError("--horizon", chart.error().message);
  limb_deg_ = std::min(*chart->parameters().reach_deg, kFullDisc_deg);
  limb_radius_ = project(*chart, {limb_deg_, 0.0}).x;
}

void Plane::set_up_window(const PlaneRequest& request) {
  if (request.horizon_deg) {
    throw tools::UsageError("--horizon: only azimuthal maps and the globe have one");
  }
  window_ = window_of(type_);
  const bool conic = type_ == LambertConicProj || type_ == AlbersProj;
  if (conic && *chart_.parameters().first_parallel + *chart_.parameters().second_parallel < 0.0) {
    window_ = {window_.west, window_.east, -window_.north, -window_.south};
  }
  if (request.box) narrow_window(*request.box);
}

void Plane::narrow_window(const Window& box) {
  const double west = wrapped(box.west - base_lon_);
  const double east = west + eastward(box.west, box.east);
  if (east > 180.0) {
    throw tools::UsageError("--box: the map is torn opposite to --base, inside the box");
  }
  window_ = {std::max(window_.west, west), std::min(window_.east, east),
             std::max(window_.south, box.south), std::min(window_.north, box.north)};
  if (!(window_.west < window_.east && window_.south < window_.north)) {
    throw tools::UsageError("--box: this projection shows nothing of it");
  }
}

PlanePoint Plane::place(const Geo& position) const {
  if (is_disc()) return place_on_disc(position);
  // A chart draws the meridian opposite to the base in the west; here its eastern end is meant.
  const double lon = std::clamp(position.lon, -180.0, std::nextafter(180.0, 0.0));
  PlanePoint point = project(chart_, {lon, position.lat});
  point.visible = point.visible && window_.holds(position);
  return point;
}

PlanePoint Plane::place_on_disc(const Geo& position) const {
  const PlanePoint direction = project(directions_, position);
  const double angle = std::hypot(direction.x, direction.y);
  const double angle_deg = angle / kDegree;
  if (angle_deg <= limb_deg_) return project(chart_, position);
  const double beyond = (angle_deg - limb_deg_) / (180.0 - limb_deg_);
  const double radius = limb_radius_ * (1.0 + beyond);
  return {direction.x / angle * radius, direction.y / angle * radius, false};
}

Geo Plane::position_at(double angle_deg, double azimuth_deg) const {
  const double x = angle_deg * kDegree * std::sin(azimuth_deg * kDegree);
  const double y = angle_deg * kDegree * std::cos(azimuth_deg * kDegree);
  Geo position{};
  directions_.unproject({&x, 1}, {&y, 1}, {&position.lat, 1}, {&position.lon, 1});
  return position;
}

}  // namespace kzgis::map
