// Points by packs of four, for processors with AVX2.

// What a pragma and the preprocessor read.
// NOLINTBEGIN(cppcoreguidelines-macro-usage)
#define KZGIS_CHART_NAMESPACE avx2
#define KZGIS_CHART_TARGET "avx2"
#define KZGIS_CHART_LANES 4
// NOLINTEND(cppcoreguidelines-macro-usage)

#include "chart/families.h"

#if defined(KZGIS_CHART_WIDE)

#include "chart/convert.h"

namespace kzgis::chart {

std::size_t convert_avx2(projType type, Way way, const ChartConstants& constants,
                         const Spans& spans) {
  return avx2::convert_points(type, way, constants, spans);
}

}  // namespace kzgis::chart

#endif
