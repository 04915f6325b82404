// Sine, logarithm and the like, for a number or a pack: within three units in the last place,
// without a branch, and the same bits everywhere, whatever C library the host has.
//
// After W. J. Cody and W. Waite, "Software Manual for the Elementary Functions" (1980), and J.-M.
// Muller, "Elementary Functions: Algorithms and Implementation": whole quarters or powers of two
// are taken off without an error, a polynomial does the rest.  The polynomials interpolate at
// Chebyshev nodes, calculated with sixty digits: no more than 6e-17 of the function away from it.

#ifndef KZGIS_CHART_ELEMENTARY_H
#define KZGIS_CHART_ELEMENTARY_H

#include "chart/angles.h"
#include "chart/lanes.h"

KZGIS_CHART_TARGET_BEGIN

namespace kzgis::chart::KZGIS_CHART_NAMESPACE {

/// c0 + c1 z + c2 z^2 ...
template <class Real>
Real polynomial(Real, double c) {
  return all<Real>(c);
}
template <class Real, class... More>
Real polynomial(Real z, double c, More... more) {
  return c + z * polynomial(z, more...);
}

/// Added to a number below 2^51 it rounds it to a whole one, which its last bits then hold.
inline constexpr double kRounder = 6755399441055744.0;

template <class Real>
struct SinesOf {
  Real sin, cos;
};

/// @param rest     an angle of up to an eighth of a turn
/// @param quarter  how many quarters of a turn are to be added, in the last two bits
template <class Real>
SinesOf<Real> sines_after(Real rest, Bits<Real> quarter) {
  const Real z = rest * rest;
  const Real s =
      rest + rest * z *
                 polynomial(z, -0.16666666666666666, 0.008333333333330925, -0.00019841269836722418,
                            2.755731608381636e-06, -2.5051127944014188e-08, 1.5917848524808262e-10);
  const Real half = 0.5 * z;
  const Real w = 1.0 - half;
  const Real c =
      w + (((1.0 - w) - half) + z * z *
                                    polynomial(z, 0.041666666666666664, -0.0013888888888887382,
                                               2.480158729874307e-05, -2.7557317260008837e-07,
                                               2.0876143827993133e-09, -1.1382456778061306e-11));
  const auto odd = (quarter & 1U) != 0U;
  const Real sine = select(odd, c, s);
  const Real cosine = select(odd, s, c);
  // Taken from 0, so that 0 is never -0, which would take points of the far equator or a pole to
  // the other end of a map.
  return {select((quarter & 2U) != 0U, 0.0 - sine, sine),
          select(((quarter + 1U) & 2U) != 0U, 0.0 - cosine, cosine)};
}

/// Of an angle in degrees, of up to two turns.
///
/// The whole quarters are taken off before degrees become radians, and that subtraction is
/// exact: multiples of 90 degrees give 1 and 0 themselves, and the cosine of a latitude keeps its
/// digits up to the pole.
template <class Real>
SinesOf<Real> sines_of_degrees(Real angle_deg) {
  const Real shifted = angle_deg * (1.0 / 90.0) + kRounder;
  const Real rest = (angle_deg - 90.0 * (shifted - kRounder)) * kDegree;
  return sines_after(rest, bits(shifted));
}

/// The sine of an angle of -90 to 90 degrees.
template <class Real>
Real sine_to_quarter(Real angle_deg) {
  const Real x = angle_deg * kDegree;
  const Real z = x * x;
  return x + x * z *
                 polynomial(z, -0.16666666666666666, 0.008333333333333316, -0.00019841269841254955,
                            2.755731921915843e-06, -2.5052107616384595e-08, 1.6058977272815506e-10,
                            -7.643969031052769e-13, 2.731428986122616e-15);
}

/// The cosine of an angle of -90 to 90 degrees, which keeps its digits up to the ends.
template <class Real>
Real cosine_to_quarter(Real angle_deg) {
  return sine_to_quarter(90.0 - magnitude(angle_deg));
}

/// Of an angle in radians, of up to a few turns.
template <class Real>
SinesOf<Real> sines_of(Real angle) {
  constexpr double kQuarterTurn = 1.5707963267341256;  // 33 bits, and the rest
  constexpr double kRest = 6.077100506506192e-11;
  const Real shifted = angle * (1.0 / kHalfPi) + kRounder;
  const Real quarters = shifted - kRounder;
  return sines_after((angle - quarters * kQuarterTurn) - quarters * kRest, bits(shifted));
}

/// The arc tangent of y / x where 0 <= y <= x: 0 where both are 0.
template <class Real>
Real flat_angle(Real y, Real x) {
  const auto steep = y > 0.41421356237309503 * x;  // more than half of an eighth of a turn
  const Real above = select(steep, y - x, y);
  const Real below = select(steep, y + x, x);
  const Real t = above / select(below == 0.0, all<Real>(1.0), below);
  const Real z = t * t;
  const Real angle =
      t + t * z *
              polynomial(z, -0.3333333333333333, 0.19999999999995438, -0.14285714284649173,
                         0.11111111013860688, -0.0909090452147169, 0.07692181876036845,
                         -0.06664492945806264, 0.05857988350245762, -0.05084610357631765,
                         0.03920743321261196, -0.019147248964611764);
  return select(steep, 0.5 * kHalfPi + angle, angle);
}

/// The direction of (x, y), in every quadrant; 0 where both are 0.
template <class Real>
Real direction_of(Real y, Real x) {
  const Real across = magnitude(y);
  const Real along = magnitude(x);
  const auto steep = across > along;
  Real angle = flat_angle(select(steep, along, across), select(steep, across, along));
  angle = select(steep, kHalfPi - angle, angle);
  angle = select(x < 0.0, kPi - angle, angle);
  return with_sign_of(angle, y);
}

/// ln(n / d) of numbers above 0; anything for others.
///
/// @param apart  n - d: where both are close, they may have lost digits that it has
template <class Real>
Real logarithm_of_ratio(Real n, Real d, Real apart) {
  // n / d = 2^k m with m near 1: about the root of a half to that of 2, as bits of numbers grow
  // about as their logarithms do.
  constexpr unsigned kBias = 1023;
  const Bits<Real> k_moved = (bits(n) - bits(d) + 0x3ff8000000000000U) >> 52U;
  const Real scaled = number(bits(n) - ((k_moved - kBias) << 52U));
  const Real k = number(k_moved | 0x4330000000000000U) - (4503599627370496.0 + kBias);
  // ln(m) = 2 artanh((m - 1) / (m + 1)).
  const Real s = select(k_moved == kBias, apart, scaled - d) / (scaled + d);
  const Real z = s * s;
  const Real rest =
      s * z *
      polynomial(z, 0.6666666666666695, 0.3999999999931283, 0.2857142884359623, 0.22222181873963923,
                 0.18184658411383475, 0.15282531372574545, 0.1512909820992346);
  constexpr double kLn2 = 0.6931471804855391;  // 33 bits, and the rest
  constexpr double kLn2Rest = 7.440617110012397e-11;
  return k * kLn2 + (2.0 * s + (rest + k * kLn2Rest));
}

/// exp(x) - 1; -1 and what is not finite where exp(x) leaves the range of numbers.
template <class Real>
Real growth(Real exponent) {
  constexpr double kLn2 = 0.6931471804855391;
  constexpr double kLn2Rest = 7.440617110012397e-11;
  const Real x = greatest(least(exponent, all<Real>(710.0)), all<Real>(-708.0));
  const Real shifted = x * (1.0 / 0.69314718055994530942) + kRounder;
  const Real k = shifted - kRounder;
  const Real r = (x - k * kLn2) - k * kLn2Rest;
  const Real rest =
      r + r * r *
              polynomial(r, 0.5000000000000001, 0.16666666666666669, 0.041666666666623824,
                         0.008333333333330039, 0.0013888888917367081, 0.00019841269863171557,
                         2.4801521057868204e-05, 2.7557268276905696e-06, 2.7620201591031547e-07,
                         2.5100472505694996e-08);
  const Real scale = number((bits(shifted) + 1023U) << 52U);
  return scale * rest + (scale - 1.0);
}

/// The isometric latitude ln tan(lat/2 + 45 degrees), without its loss of digits near the equator;
/// the poles are infinite.
template <class Real>
Real isometric(const SinesOf<Real>& lat) {
  // The tangent is (1 + s) / c, and (1 + c + s) / (1 + c - s) too.
  const Real s = magnitude(lat.sin);
  const Real c = lat.cos;
  const auto far = s > 0.5;
  const Real psi =
      logarithm_of_ratio(select(far, 1.0 + s, 1.0 + c + s), select(far, c, 1.0 + c - s), 2.0 * s);
  return with_sign_of(select(c > 0.0, psi, all<Real>(HUGE_VAL)), lat.sin);
}

/// The latitude of an isometric latitude: 2 artan(tanh(psi / 2)).
template <class Real>
Real latitude_of(Real psi) {
  const Real e = growth(least(magnitude(psi), all<Real>(50.0)));  // the pole, for doubles
  return with_sign_of(2.0 * flat_angle(e, e + 2.0), psi);
}

/// The length of (a, b), neither of them beyond 1e150.
template <class Real>
Real length(Real a, Real b) {
  return root(a * a + b * b);
}

/// The length of any finite (a, b).  Packs hold nothing whose square leaves the range of numbers.
inline double distance(double a, double b) {
  const double square = a * a + b * b;
  return square > 1e-280 && square < 1e280 ? std::sqrt(square) : std::hypot(a, b);
}
#if defined(KZGIS_CHART_PACKS)
inline Pack distance(Pack a, Pack b) { return length(a, b); }
#endif

}  // namespace kzgis::chart::KZGIS_CHART_NAMESPACE

KZGIS_CHART_TARGET_END

#endif
