// The loop over points, for packs of one width; included once by each source file that has one.
//
// A pack takes regular points: numbers that no formula leaves the range of doubles with.
// Others, and a point or two alone, go one by one through the same formulas.

#ifndef KZGIS_CHART_CONVERT_H
#define KZGIS_CHART_CONVERT_H

#include <bit>
#include <cfloat>

#include "chart/azimuthal.h"
#include "chart/conic.h"
#include "chart/cylindrical.h"
#include "chart/families.h"
#include "chart/globe.h"
#include "chart/pseudoconic.h"

KZGIS_CHART_TARGET_BEGIN

namespace kzgis::chart::KZGIS_CHART_NAMESPACE {

template <class Real>
Mask<Real> is_finite(Real a) {
  return magnitude(a) <= DBL_MAX;
}

/// A longitude brought into [-180, 180) that is no more than a turn outside.
template <class Real>
Real once_round(Real lon) {
  return select(lon >= 180.0, lon - 360.0, select(lon < -180.0, lon + 360.0, lon));
}

/// A longitude below 720 brought there; the turns are taken off without an error.
template <class Real>
Real brought_round(Real lon) {
  return once_round(lon - 360.0 * ((lon * (1.0 / 360.0) + kRounder) - kRounder));
}

// Each way of a projection offers
//   Mask<Real> regular(Real a, Real b, Real c): what packs take,
//   Mask<Real> convert(Real& a, Real& b, Real& c): regular points in place, and which have one,
//   bool convert_any(double& a, double& b, double& c): the same for any numbers,
//   double missing(): c of a call without altitudes.

/// From degrees to a flat map.
template <class Flat>
class There {
 public:
  explicit There(const ChartConstants& constants) : k_(constants) {}

  template <class Real>
  static Mask<Real> regular(Real lat, Real lon, Real alt) {
    return both(both(magnitude(lat) <= 90.0, magnitude(lon) < 720.0), is_finite(alt));
  }
  template <class Real>
  Mask<Real> convert(Real& lat, Real& lon, Real&) const {
    // Brought near to 0 first, where the difference of two longitudes keeps its digits.
    const Real dlon = once_round(brought_round(lon) - k_.base_lon_deg);
    Real x{};
    Real y{};
    const Mask<Real> placed = Flat::forward(k_, lat, dlon, x, y);
    lat = x * k_.radius;
    lon = y * k_.radius;
    return both(placed, both(is_finite(lat), is_finite(lon)));
  }
  bool convert_any(double& lat, double& lon, double& alt) const {
    if (!(std::fabs(lat) <= 90.0 && std::isfinite(lon) && std::isfinite(alt))) return false;
    lon = wrap(lon);
    return convert(lat, lon, alt);
  }
  static double missing() { return 0.0; }

 private:
  ChartConstants k_;
};

/// Packs square what is no larger than this, nor smaller than its inverse.
inline constexpr double kSquarable = 1e100;

template <class Real>
Mask<Real> is_squarable(Real a) {
  return both(a < kSquarable, either(a > 1.0 / kSquarable, a == 0.0));
}

/// From a flat map to degrees.
template <class Flat>
class Back {
 public:
  explicit Back(const ChartConstants& constants)
      : k_(constants), inverse_radius_(1.0 / constants.radius) {}

  template <class Real>
  Mask<Real> regular(Real x, Real y, Real z) const {
    return both(is_squarable(greatest(magnitude(x), magnitude(y)) * inverse_radius_), is_finite(z));
  }
  template <class Real>
  Mask<Real> convert(Real& x, Real& y, Real&) const {
    Real lat{};
    Real dlon{};
    const Mask<Real> placed =
        Flat::inverse(k_, x * inverse_radius_, y * inverse_radius_, lat, dlon);
    x = greatest(least(lat, all<Real>(90.0)), all<Real>(-90.0));
    y = once_round(k_.base_lon_deg + dlon);
    return both(placed, both(is_finite(lat), is_finite(dlon)));
  }
  bool convert_any(double& x, double& y, double& z) const {
    if (!(std::isfinite(x * inverse_radius_) && std::isfinite(y * inverse_radius_) &&
          std::isfinite(z))) {
      return false;
    }
    return convert(x, y, z);
  }
  static double missing() { return 0.0; }

 private:
  ChartConstants k_;
  double inverse_radius_;
};

/// From degrees and altitudes to space.
class GlobeThere {
 public:
  explicit GlobeThere(const ChartConstants& constants) : radius_(constants.radius) {}

  template <class Real>
  static Mask<Real> regular(Real lat, Real lon, Real) {
    return both(magnitude(lat) <= 90.0, magnitude(lon) < 720.0);
  }
  template <class Real>
  Mask<Real> convert(Real& a, Real& b, Real& c) const {
    const Real r = radius_ + c;
    return both(Globe::forward(a, brought_round(b), r, a, b, c), is_finite(r));
  }
  bool convert_any(double& lat, double& lon, double& alt) const {
    if (!(std::fabs(lat) <= 90.0 && std::isfinite(lon))) return false;
    lon = wrap(lon);
    return convert(lat, lon, alt);
  }
  static double missing() { return kNoPlace; }  // the globe is not flat

 private:
  double radius_;
};

/// From space to degrees and altitudes.
class GlobeBack {
 public:
  explicit GlobeBack(const ChartConstants& constants) : radius_(constants.radius) {}

  template <class Real>
  static Mask<Real> regular(Real x, Real y, Real z) {
    return both(is_squarable(magnitude(x)),
                both(is_squarable(magnitude(y)), is_squarable(magnitude(z))));
  }
  template <class Real>
  Mask<Real> convert(Real& a, Real& b, Real& c) const {
    Real lat{};
    Real lon{};
    Real r{};
    const Mask<Real> placed = Globe::inverse(a, b, c, lat, lon, r);
    a = lat;
    b = once_round(lon);
    c = r - radius_;
    return both(placed, is_finite(r));
  }
  bool convert_any(double& x, double& y, double& z) const {
    return std::isfinite(x) && std::isfinite(y) && std::isfinite(z) && convert(x, y, z);
  }
  static double missing() { return kNoPlace; }

 private:
  double radius_;
};

/// @return how many points from `first` up to `last` have no place
template <class Conversion>
std::size_t convert_singly(const Conversion& conversion, const Spans& spans, std::size_t first,
                           std::size_t last) {
  std::size_t without_place = 0;
  for (std::size_t i = first; i < last; ++i) {
    double a = spans.from_a[i];
    double b = spans.from_b[i];
    double c = spans.has_c ? spans.from_c[i] : Conversion::missing();
    const bool placed = conversion.convert_any(a, b, c);
    without_place += put(spans, i, placed, a, b, c);
  }
  return without_place;
}

#if defined(KZGIS_CHART_PACKS)

/// Converts `kLanes` points, in place.
template <class Conversion>
std::size_t convert_pack(const Conversion& conversion, Pack& a, Pack& b, Pack& c) {
  constexpr unsigned kAll = (1U << kLanes) - 1U;
  const Mask<Pack> regular = conversion.regular(a, b, c);
  Pack to_a = select(regular, a, Pack{});
  Pack to_b = select(regular, b, Pack{});
  Pack to_c = select(regular, c, Pack{});
  const Mask<Pack> placed = both(regular, conversion.convert(to_a, to_b, to_c));
  to_a = select(placed, to_a, all<Pack>(kNoPlace));
  to_b = select(placed, to_b, all<Pack>(kNoPlace));
  to_c = select(placed, to_c, all<Pack>(kNoPlace));
  unsigned without_place = ~lanes_of(placed) & kAll;
  if (without_place != 0) {
    const unsigned irregular = ~lanes_of(regular) & kAll;
    for (unsigned lane = 0; lane < kLanes && irregular != 0; ++lane) {
      if ((irregular >> lane & 1U) == 0) continue;
      double one_a = a[lane];
      double one_b = b[lane];
      double one_c = c[lane];
      if (!conversion.convert_any(one_a, one_b, one_c)) continue;
      to_a[lane] = one_a;
      to_b[lane] = one_b;
      to_c[lane] = one_c;
      without_place &= ~(1U << lane);
    }
  }
  a = to_a;
  b = to_b;
  c = to_c;
  return static_cast<std::size_t>(std::popcount(without_place));
}

template <class Conversion>
std::size_t convert_all(const Conversion& given, const Spans& spans) {
  const Conversion conversion = given;  // its own, which what is written cannot change
  const std::size_t n = spans.size();
  const double* const from_a = spans.from_a.data();
  const double* const from_b = spans.from_b.data();
  const double* const from_c = spans.has_c ? spans.from_c.data() : nullptr;
  double* const to_a = spans.to_a.data();
  double* const to_b = spans.to_b.data();
  double* const to_c = spans.has_c ? spans.to_c.data() : nullptr;
  std::size_t without_place = 0;
  std::size_t i = 0;
  for (; n - i >= kLanes; i += kLanes) {
    Pack a;
    Pack b;
    Pack c = all<Pack>(Conversion::missing());
    std::memcpy(&a, from_a + i, sizeof a);
    std::memcpy(&b, from_b + i, sizeof b);
    if (from_c != nullptr) std::memcpy(&c, from_c + i, sizeof c);
    without_place += convert_pack(conversion, a, b, c);
    std::memcpy(to_a + i, &a, sizeof a);
    std::memcpy(to_b + i, &b, sizeof b);
    if (to_c != nullptr) std::memcpy(to_c + i, &c, sizeof c);
  }
  return without_place + convert_singly(conversion, spans, i, n);
}

#else

template <class Conversion>
std::size_t convert_all(const Conversion& conversion, const Spans& spans) {
  return convert_singly(conversion, spans, 0, spans.size());
}

#endif

template <class Flat>
std::size_t convert_flat(Way way, const ChartConstants& constants, const Spans& spans) {
  return way == Way::there ? convert_all(There<Flat>(constants), spans)
                           : convert_all(Back<Flat>(constants), spans);
}

inline std::size_t convert_points(projType type, Way way, const ChartConstants& constants,
                                  const Spans& spans) {
  switch (type) {
    case MercatorProj:
      return convert_flat<Mercator>(way, constants, spans);
    case LambertCylindricalProj:
      return convert_flat<LambertCylindrical>(way, constants, spans);
    case GnomonicProj:
      return convert_flat<Azimuthal<Gnomonic>>(way, constants, spans);
    case StereographicProj:
      return convert_flat<Azimuthal<Stereographic>>(way, constants, spans);
    case OrthographicProj:
      return convert_flat<Azimuthal<Orthographic>>(way, constants, spans);
    case PostelProj:
      return convert_flat<Azimuthal<Postel>>(way, constants, spans);
    case LambertAzimuthalProj:
      return convert_flat<Azimuthal<LambertAzimuthal>>(way, constants, spans);
    case LambertConicProj:
      return convert_flat<LambertConic>(way, constants, spans);
    case AlbersProj:
      return convert_flat<Albers>(way, constants, spans);
    case CassiniSoldnerProj:
      return convert_flat<CassiniSoldner>(way, constants, spans);
    case BonneProj:
    case WernerProj:
      return convert_flat<PseudoConic>(way, constants, spans);
    case SansonFlamsteedProj:
      return convert_flat<SansonFlamsteed>(way, constants, spans);
    case GlobeProj:
      return way == Way::there ? convert_all(GlobeThere(constants), spans)
                               : convert_all(GlobeBack(constants), spans);
    default:
      return convert_flat<Cartesian>(way, constants, spans);
  }
}

}  // namespace kzgis::chart::KZGIS_CHART_NAMESPACE

KZGIS_CHART_TARGET_END

#endif
