// Azimuthal projections about the base point, on the globe of radius 1, after J. P. Snyder, "Map
// Projections: A Working Manual", USGS Professional Paper 1395 (1987), chapters 20 to 22, 24 and
// 25.
//
// A point of the globe is seen from the base point as a direction in space: `east`, `north` and
// `up`, whose squares have the sum 1.  `up` is the cosine of the angular distance c from the
// base, and the length of (east, north) its sine.  All five projections stretch (east, north) by
// a factor that depends on c alone; poles need no formulas of their own.

#include "chart/families.h"

namespace kzgis::chart {
namespace {

/// The antipode of the base, where east and north vanish as they do at the base.
bool is_antipode(double sin_c, double cos_c) { return cos_c < 0.0 && sin_c <= kEdge; }

/// 1 + cos c, which keeps its digits near the antipode.
double one_plus_cos(double sin_c, double cos_c) {
  return cos_c >= 0.0 ? 1.0 + cos_c : sin_c * sin_c / (1.0 - cos_c);
}

// Each projection: the factor, or false where there is no place; and sine and cosine of c from
// the distance on the map, or false where that is outside.

struct Gnomonic {
  static bool stretch(double, double cos_c, double& factor) {
    factor = 1.0 / cos_c;
    return cos_c > kEdge;
  }
  static bool angle(double rho, double& sin_c, double& cos_c) {
    const double secant = std::hypot(1.0, rho);
    sin_c = rho / secant;
    cos_c = 1.0 / secant;
    return true;
  }
};

struct Stereographic {
  static bool stretch(double sin_c, double cos_c, double& factor) {
    factor = 2.0 / one_plus_cos(sin_c, cos_c);
    return !is_antipode(sin_c, cos_c);
  }
  static bool angle(double rho, double& sin_c, double& cos_c) {
    // tan(c/2), or its inverse when that is the smaller one: no square is too large.
    const bool near = rho <= 2.0;
    const double t = near ? rho / 2.0 : 2.0 / rho;
    const double secant = 1.0 + t * t;
    sin_c = 2.0 * t / secant;
    cos_c = (near ? 1.0 - t * t : t * t - 1.0) / secant;
    return true;
  }
};

struct Orthographic {
  static bool stretch(double, double cos_c, double& factor) {
    factor = 1.0;
    return cos_c >= -kEdge;
  }
  static bool angle(double rho, double& sin_c, double& cos_c) {
    if (!fit(rho, 1.0)) return false;
    sin_c = rho;
    cos_c = std::sqrt((1.0 - rho) * (1.0 + rho));
    return true;
  }
};

struct Postel {
  static bool stretch(double sin_c, double cos_c, double& factor) {
    factor = sin_c > 0.0 ? std::atan2(sin_c, cos_c) / sin_c : 1.0;
    return !is_antipode(sin_c, cos_c);
  }
  static bool angle(double rho, double& sin_c, double& cos_c) {
    if (!fit(rho, kPi)) return false;
    sin_c = std::sin(rho);
    cos_c = std::cos(rho);
    return true;
  }
};

struct LambertAzimuthal {
  static bool stretch(double sin_c, double cos_c, double& factor) {
    factor = std::sqrt(2.0 / one_plus_cos(sin_c, cos_c));
    return !is_antipode(sin_c, cos_c);
  }
  static bool angle(double rho, double& sin_c, double& cos_c) {
    if (!fit(rho, 2.0)) return false;
    const double half = rho / 2.0;  // the sine of c/2
    sin_c = 2.0 * half * std::sqrt((1.0 - half) * (1.0 + half));
    cos_c = 1.0 - 2.0 * half * half;
    return true;
  }
};

template <class Stretch>
struct Azimuthal {
  static bool forward(const ChartConstants& k, double lat_deg, double dlon_deg, double& x,
                      double& y) {
    const SinCos lat = sin_cos(lat_deg);
    const SinCos dlon = sin_cos(dlon_deg);
    const double toward_base = lat.cos * dlon.cos;
    const double east = lat.cos * dlon.sin;
    const double north = lat.sin * k.cos_base - toward_base * k.sin_base;
    const double up = lat.sin * k.sin_base + toward_base * k.cos_base;
    double factor = 0.0;
    const bool placed = Stretch::stretch(std::hypot(east, north), up, factor);
    x = east * factor;
    y = north * factor;
    return placed;
  }
  static bool inverse(const ChartConstants& k, double x, double y, double& lat_deg,
                      double& dlon_deg) {
    const double rho = std::hypot(x, y);
    double sin_c = 0.0;
    double up = 1.0;
    if (!Stretch::angle(rho, sin_c, up)) return false;
    // The base itself lies in no direction.
    const double east = rho > 0.0 ? x / rho * sin_c : 0.0;
    const double north = rho > 0.0 ? y / rho * sin_c : 0.0;
    // Two-argument arc tangents are right in every quadrant, and lose no digits at the poles.
    const double toward_base = up * k.cos_base - north * k.sin_base;
    const double toward_pole = up * k.sin_base + north * k.cos_base;
    lat_deg = std::atan2(toward_pole, std::hypot(east, toward_base)) / kDegree;
    dlon_deg = std::atan2(east, toward_base) / kDegree;
    return true;
  }
};

}  // namespace

std::size_t convert_azimuthal(projType type, Way way, const ChartConstants& constants,
                              const Spans& spans) {
  switch (type) {
    case GnomonicProj:
      return convert_each<Azimuthal<Gnomonic>>(way, constants, spans);
    case StereographicProj:
      return convert_each<Azimuthal<Stereographic>>(way, constants, spans);
    case OrthographicProj:
      return convert_each<Azimuthal<Orthographic>>(way, constants, spans);
    case PostelProj:
      return convert_each<Azimuthal<Postel>>(way, constants, spans);
    default:
      return convert_each<Azimuthal<LambertAzimuthal>>(way, constants, spans);
  }
}

}  // namespace kzgis::chart
