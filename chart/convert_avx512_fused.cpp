// Points by packs of eight, for processors with AVX-512, with fused multiply-adds.

// What a pragma and the preprocessor read.
// NOLINTBEGIN(cppcoreguidelines-macro-usage)
#define KZGIS_CHART_NAMESPACE avx512_fused
#define KZGIS_CHART_TARGET "avx512f,avx512dq,fma"
#define KZGIS_CHART_LANES 8
// NOLINTEND(cppcoreguidelines-macro-usage)

#include "chart/families.h"

#if defined(KZGIS_CHART_WIDE)

#include "chart/convert.h"

namespace kzgis::chart {

std::size_t convert_avx512_fused(projType type, Way way, const ChartConstants& constants,
                                 const Spans& spans) {
  return avx512_fused::convert_points(type, way, constants, spans);
}

}  // namespace kzgis::chart

#endif
