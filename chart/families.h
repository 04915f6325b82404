// What the families of projections and the loops over points offer to the chart.

#ifndef KZGIS_CHART_FAMILIES_H
#define KZGIS_CHART_FAMILIES_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
#include <string>

#include "chart/angles.h"
#include "kzgis/chart.h"

namespace kzgis::chart {

/// Which way points go: from degrees to the map, or from the map to degrees.
enum class Way { there, back };

/// The spans of one call.  In degrees a is the latitude, b the longitude and c the altitude; on
/// the map they are x, y and z.  A call without altitudes has no c at all.
struct Spans {
  std::span<const double> from_a, from_b, from_c;
  std::span<double> to_a, to_b, to_c;
  bool has_c;

  std::size_t size() const {
    std::size_t n = std::min({from_a.size(), from_b.size(), to_a.size(), to_b.size()});
    if (has_c) n = std::min({n, from_c.size(), to_c.size()});
    return n;
  }
};

inline constexpr double kNoPlace = std::numeric_limits<double>::quiet_NaN();

/// Writes point i.  All of it has been read by then, so that arrays may be the same.
/// @return 1 when there is no place for it, else 0
inline std::size_t put(const Spans& spans, std::size_t i, bool placed, double a, double b,
                       double c) {
  if (!placed) a = b = c = kNoPlace;
  spans.to_a[i] = a;
  spans.to_b[i] = b;
  if (spans.has_c) spans.to_c[i] = c;
  return placed ? 0 : 1;
}

// Families with constants of their own prepare what a projection of them needs of the parameters,
// which lie in their ranges and are filled in.  The answer is empty, or says why there is no such
// chart.

std::string prepare_cylindrical(projType, const ChartParameters&, ChartConstants&);
std::string prepare_conic(projType, const ChartParameters&, ChartConstants&);
std::string prepare_pseudoconic(projType, const ChartParameters&, ChartConstants&);

/// Converts all points, with one choice of the projection for all of them.
/// @return how many have no place
using Convert = std::size_t (*)(projType, Way, const ChartConstants&, const Spans&);

// Packs of every width give the same bits.  The wide ones are for processors that have them.
std::size_t convert_plain(projType, Way, const ChartConstants&, const Spans&);
#if defined(__GNUC__) && defined(__x86_64__)
#define KZGIS_CHART_WIDE
std::size_t convert_avx2(projType, Way, const ChartConstants&, const Spans&);
std::size_t convert_avx512(projType, Way, const ChartConstants&, const Spans&);
// These leave out the rounding between a product and a sum, and give other bits.
std::size_t convert_avx2_fused(projType, Way, const ChartConstants&, const Spans&);
std::size_t convert_avx512_fused(projType, Way, const ChartConstants&, const Spans&);
#endif

/// The fastest one on this processor.
Convert fastest_convert(Arithmetic);

/// A number as a message shows it: with as many digits as tell it from others.
std::string text_of(double number);

}  // namespace kzgis::chart

#endif
