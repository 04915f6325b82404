// Several numbers at once: a pack has one number in each of its lanes, and calculates in all of
// them as a single double does.
//
// Formulas are templates over `Real`, which is `double` or `Pack`.  They do not branch but
// calculate both sides and select.  Sums, products, quotients and roots are rounded as IEEE 754
// says, in a lane as outside of one: unless products and sums are contracted, which is for
// `Arithmetic::fast` alone, the same formula gives the same bits on every processor, by packs of
// any width and one by one.
//
// How wide a pack is, each source file that converts points says for itself before it includes
// this: all that it compiles lies in a namespace of its own, KZGIS_CHART_NAMESPACE, so that the
// linker never takes a function made for one processor for another.  Other files get what works
// on all of them.

#ifndef KZGIS_CHART_LANES_H
#define KZGIS_CHART_LANES_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "chart/angles.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

// What a pragma and the preprocessor read is a macro.
// NOLINTBEGIN(cppcoreguidelines-macro-usage)

#ifndef KZGIS_CHART_NAMESPACE
#define KZGIS_CHART_NAMESPACE inline plain
#endif

// Functions from here to KZGIS_CHART_TARGET_END are compiled for the processor that
// KZGIS_CHART_TARGET names.
#define KZGIS_CHART_PRAGMA(text) _Pragma(#text)
#if !defined(KZGIS_CHART_TARGET)
#define KZGIS_CHART_TARGET_BEGIN
#define KZGIS_CHART_TARGET_END
#elif defined(__clang__)
#define KZGIS_CHART_TARGET_(text) \
  KZGIS_CHART_PRAGMA(clang attribute push(__attribute__((target(text))), apply_to = function))
#define KZGIS_CHART_TARGET_BEGIN KZGIS_CHART_TARGET_(KZGIS_CHART_TARGET)
#define KZGIS_CHART_TARGET_END KZGIS_CHART_PRAGMA(clang attribute pop)
#else
#define KZGIS_CHART_TARGET_(text) KZGIS_CHART_PRAGMA(GCC target(text))
#define KZGIS_CHART_TARGET_BEGIN \
  KZGIS_CHART_PRAGMA(GCC push_options) KZGIS_CHART_TARGET_(KZGIS_CHART_TARGET)
#define KZGIS_CHART_TARGET_END KZGIS_CHART_PRAGMA(GCC pop_options)
#endif

// NOLINTEND(cppcoreguidelines-macro-usage)

KZGIS_CHART_TARGET_BEGIN

namespace kzgis::chart::KZGIS_CHART_NAMESPACE {

/// The 64 bits of a number; of a pack, those of every lane.
template <class Real>
struct BitsOf;
template <>
struct BitsOf<double> {
  using type = std::uint64_t;
};
template <class Real>
using Bits = typename BitsOf<Real>::type;

/// What a comparison gives: `bool`, or all bits of a lane alike.
template <class Real>
using Mask = decltype(Real{} < Real{});

inline double select(bool which, double a, double b) { return which ? a : b; }
inline bool either(bool a, bool b) { return a || b; }
inline bool both(bool a, bool b) { return a && b; }
inline double root(double a) { return std::sqrt(a); }
inline std::uint64_t bits(double a) {
  std::uint64_t b = 0;
  std::memcpy(&b, &a, sizeof b);
  return b;
}
inline double number(std::uint64_t b) {
  double a = 0.0;
  std::memcpy(&a, &b, sizeof a);
  return a;
}

// Other compilers go point by point.
#if defined(__GNUC__)
#define KZGIS_CHART_PACKS

#ifndef KZGIS_CHART_LANES
#define KZGIS_CHART_LANES 2  // NOLINT(cppcoreguidelines-macro-usage)
#endif

inline constexpr std::size_t kLanes = KZGIS_CHART_LANES;
using Pack = double __attribute__((vector_size(8 * KZGIS_CHART_LANES)));
using PackBits = std::uint64_t __attribute__((vector_size(8 * KZGIS_CHART_LANES)));
template <>
struct BitsOf<Pack> {
  using type = PackBits;
};

inline Pack select(Mask<Pack> which, Pack a, Pack b) { return which ? a : b; }
inline Mask<Pack> either(Mask<Pack> a, Mask<Pack> b) { return a | b; }
inline Mask<Pack> both(Mask<Pack> a, Mask<Pack> b) { return a & b; }
inline PackBits bits(Pack a) { return reinterpret_cast<PackBits>(a); }
inline Pack number(PackBits b) { return reinterpret_cast<Pack>(b); }

// Roots, and a bit for every lane that holds: vectors of the language have no words for these.
#if KZGIS_CHART_LANES == 8
inline Pack root(Pack a) { return _mm512_maskz_sqrt_pd(0xff, a); }
inline unsigned lanes_of(Mask<Pack> m) {
  return _mm512_movepi64_mask(reinterpret_cast<__m512i>(m));
}
#elif KZGIS_CHART_LANES == 4
inline Pack root(Pack a) { return _mm256_sqrt_pd(a); }
inline unsigned lanes_of(Mask<Pack> m) {
  return static_cast<unsigned>(_mm256_movemask_pd(reinterpret_cast<__m256d>(m)));
}
#elif defined(__x86_64__)
inline Pack root(Pack a) { return _mm_sqrt_pd(a); }
inline unsigned lanes_of(Mask<Pack> m) {
  return static_cast<unsigned>(_mm_movemask_pd(reinterpret_cast<__m128d>(m)));
}
#else
inline Pack root(Pack a) { return Pack{std::sqrt(a[0]), std::sqrt(a[1])}; }
inline unsigned lanes_of(Mask<Pack> m) { return (m[0] != 0 ? 1U : 0U) | (m[1] != 0 ? 2U : 0U); }
#endif

#endif  // packs

inline double magnitude(double a) { return std::fabs(a); }
#if defined(KZGIS_CHART_PACKS)
// By bits and not by comparing: NaN stays, and 0 loses its sign.
inline Pack magnitude(Pack a) { return number(bits(a) & 0x7fffffffffffffffU); }
#endif

template <class Real>
Real least(Real a, Real b) {
  return select(a < b, a, b);
}
template <class Real>
Real greatest(Real a, Real b) {
  return select(a > b, a, b);
}
template <class Real>
Real all(double a) {
  return Real{} + a;
}
/// `a`, or `-a` where b < 0; never -0.
template <class Real>
Real with_sign_of(Real a, Real b) {
  return select(b < 0.0, 0.0 - a, a);
}

template <class Real>
Mask<Real> everywhere() {
  return Real{} <= Real{};
}
/// Brings values that rounding took out of -limit to limit back to it.
/// @return where they lie no farther outside than `tolerance`
template <class Real>
Mask<Real> fit(Real& value, Real limit, double tolerance = kEdge) {
  const Mask<Real> inside = magnitude(value) <= limit + tolerance;
  value = greatest(least(value, limit), -limit);
  return inside;
}

}  // namespace kzgis::chart::KZGIS_CHART_NAMESPACE

KZGIS_CHART_TARGET_END

#endif
