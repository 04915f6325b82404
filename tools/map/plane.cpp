// What each projection needs so that a printed map comes of it.  The formulas are the
// library's; here are the limits within which they draw something worth looking at.

#include "tools/map/plane.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>
#include <string>

#include "tools/support/command_error.h"

namespace kzgis::map {
namespace {

constexpr double kDegree = std::numbers::pi / 180.0;

// Bonne's and Werner's formulas divide by zero at a pole, and the library's longitudes wrap
// at 360: we keep this far from both, a hundred metres on the ground.
constexpr double kNudge_deg = 1e-3;

// A disc stops this short of the antipode, where every direction is the right one.
constexpr double kFullDisc_deg = 179.9;

struct Disc {
  double usual_deg;    // the limb when the user names none
  double largest_deg;  // beyond this the projection has nothing to show
};

std::optional<Disc> disc_of(projType type) {
  switch (type) {
    case GnomonicProj:
      return Disc{60.0, 85.0};
    case StereographicProj:
      return Disc{90.0, 160.0};
    case OrthographicProj:
    case GlobeProj:
      return Disc{90.0, 90.0};
    case PostelProj:
    case LambertAzimuthalProj:
      return Disc{180.0, 180.0};
    default:
      return std::nullopt;
  }
}

Window window_of(projType type) {
  switch (type) {
    case MercatorProj:
      return {-180.0, 180.0, -78.0, 84.0};  // the poles lie at infinity
    case LambertConicProj:
      return {-180.0, 180.0, -30.0, 90.0};  // grows without bound towards the south
    case AlbersProj:
      return {-180.0, 180.0, -60.0, 90.0};
    case CassiniSoldnerProj:
      return {-60.0, 60.0, -90.0, 90.0};  // a series about the central meridian
    case BonneProj:
    case WernerProj:
      return {-180.0, 180.0, -90.0 + kNudge_deg, 90.0 - kNudge_deg};
    default:
      return {-180.0, 180.0, -90.0, 90.0};
  }
}

// Fit for the library's conics, which lay out the world on a cone only when the parallels
// differ: with equal ones they measure y from each parallel's own height.
std::pair<double, double> distinct_parallels(std::pair<double, double> parallels) {
  constexpr double kApart_deg = 1e-3;
  const double first = std::clamp(parallels.first, 0.01, 89.99);
  double second = std::clamp(parallels.second, 0.01, 89.99);
  if (std::fabs(first - second) < kApart_deg) {
    second = first + (first < 45.0 ? kApart_deg : -kApart_deg);
  }
  return {first, second};
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

std::string number(double value) {
  std::string text = std::to_string(value);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

}  // namespace

Plane::Plane(const PlaneRequest& request) : type_(request.type) {
  if (request.base) {
    base_lat_ = request.base->first;
    base_lon_ = wrapped(request.base->second);
  } else if (request.box) {
    base_lat_ = 0.5 * (request.box->south + request.box->north);
    base_lon_ = wrapped(request.box->west + 0.5 * eastward(request.box->west, request.box->east));
  } else if (type_ == BonneProj) {
    base_lat_ = 45.0;
  }
  if (const std::optional<Disc> disc = disc_of(type_)) {
    limb_deg_ = request.horizon_deg.value_or(disc->usual_deg);
    set_up_disc(request, disc->largest_deg);
  } else {
    set_up_window(request);
  }
}

void Plane::set_up_disc(const PlaneRequest& request, double largest_deg) {
  if (request.box) {
    throw tools::UsageError("--box: azimuthal maps are round; --base and --horizon set them");
  }
  if (!(limb_deg_ > 0.0 && limb_deg_ <= largest_deg)) {
    throw tools::UsageError("--horizon: this projection reaches above 0 and up to " +
                            number(largest_deg) + " degrees, not " + number(limb_deg_));
  }
  limb_deg_ = std::min(limb_deg_, kFullDisc_deg);
  projection_ = Projection(type_, 1.0, base_lat_, 0.0);
  // On the equator the first coordinate is the distance from the centre.
  Projection equatorial(type_ == GlobeProj ? OrthographicProj : type_, 1.0, 0.0, 0.0);
  double* xyz = nullptr;
  equatorial.FromTo(LatLon(0.0, limb_deg_), &xyz);
  limb_radius_ = xyz[0];
  delete[] xyz;
}

void Plane::set_up_window(const PlaneRequest& request) {
  if (request.horizon_deg) {
    throw tools::UsageError("--horizon: only azimuthal maps and the globe have one");
  }
  if (type_ == BonneProj && std::fabs(base_lat_) < 0.1) {
    throw tools::UsageError("--base: bonne has no map for a base latitude of " + number(base_lat_) +
                            "; on the equator it is sanson-flamsteed");
  }
  window_ = window_of(type_);
  if (request.box) narrow_window(*request.box);

  if (type_ == CartesianProj) {
    // The library wraps the longitude difference into 0 to 360 here: the base is the left
    // edge.  It also clamps the latitude difference, which must be the latitude itself.
    projection_ = Projection(type_, 1.0, 0.0, 0.0);
    return;
  }
  // Elsewhere the library leaves longitude differences as they are: with the base on
  // meridian 180 and map longitudes shifted along, they run from -180 to 180.  The conics
  // take any base latitude but 0, and it moves nothing but the origin.
  const bool shaped_by_latitude = type_ == BonneProj || type_ == WernerProj;
  constexpr double kAnyLatitude = 45.0;
  projection_ = Projection(type_, 1.0, shaped_by_latitude ? base_lat_ : kAnyLatitude, 180.0);
  if (type_ == LambertConicProj || type_ == AlbersProj) {
    const auto [first, second] =
        distinct_parallels(request.parallels.value_or(std::pair{20.0, 60.0}));
    projection_.setFirstPar(first);
    projection_.setSecondPar(second);
  }
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

PlanePoint Plane::place(const Geo& position) {
  if (is_disc()) return place_on_disc(position);
  constexpr double kJustBelow360 = 360.0 - 1e-9;
  const double lon = std::clamp(position.lon + 180.0, 0.0, kJustBelow360);
  double* xyz = nullptr;
  projection_.FromTo(LatLon(position.lat, lon), &xyz);
  const PlanePoint point{xyz[0], xyz[1], window_.holds(position)};
  delete[] xyz;
  return point;
}

PlanePoint Plane::place_on_disc(const Geo& position) {
  const LatLon point(position.lat, position.lon);
  double* xyz = nullptr;
  globe_.FromTo(point, &xyz);
  // Seen from the base point: x to the right, y up, z towards the eye.
  const double sin0 = std::sin(base_lat_ * kDegree);
  const double cos0 = std::cos(base_lat_ * kDegree);
  const double x = xyz[1];
  const double y = xyz[2] * cos0 - xyz[0] * sin0;
  const double z = xyz[0] * cos0 + xyz[2] * sin0;
  const double across = std::hypot(x, y);
  const double angle_deg = std::atan2(across, z) / kDegree;

  PlanePoint placed{x, y, angle_deg <= limb_deg_};
  if (!placed.visible) {
    const double beyond = (angle_deg - limb_deg_) / (180.0 - limb_deg_);
    const double radius = limb_radius_ * (1.0 + beyond);
    placed = {x / across * radius, y / across * radius, false};
  } else if (type_ != GlobeProj) {  // the globe in parallel rays is x and y as they are
    projection_.FromTo(point, &xyz);
    placed = {xyz[0], xyz[1], true};
  }
  delete[] xyz;
  return placed;
}

Geo Plane::position_at(double angle_deg, double azimuth_deg) const {
  const double sin0 = std::sin(base_lat_ * kDegree);
  const double cos0 = std::cos(base_lat_ * kDegree);
  const double x = std::sin(angle_deg * kDegree) * std::sin(azimuth_deg * kDegree);
  const double y = std::sin(angle_deg * kDegree) * std::cos(azimuth_deg * kDegree);
  const double z = std::cos(angle_deg * kDegree);
  const double towards_meridian = z * cos0 - y * sin0;
  const double towards_pole = z * sin0 + y * cos0;
  return {std::atan2(x, towards_meridian) / kDegree,
          std::asin(std::clamp(towards_pole, -1.0, 1.0)) / kDegree};
}

}  // namespace kzgis::map
