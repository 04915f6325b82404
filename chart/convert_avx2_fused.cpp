// Points by packs of four, for processors with AVX2 and fused multiply-adds, with those.

// What a pragma and the preprocessor read.
// NOLINTBEGIN(cppcoreguidelines-macro-usage)
#define KZGIS_CHART_NAMESPACE avx2_fused
#define KZGIS_CHART_TARGET "avx2,fma"
#define KZGIS_CHART_LANES 4
// NOLINTEND(cppcoreguidelines-macro-usage)

#include "chart/families.h"

#if defined(KZGIS_CHART_WIDE)

#include "chart/convert.h"

namespace kzgis::chart {

std::size_t convert_avx2_fused(projType type, Way way, const ChartConstants& constants,
                               const Spans& spans) {
  return avx2_fused::convert_points(type, way, constants, spans);
}

}  // namespace kzgis::chart

#endif
