// Points by packs that every processor has, and the choice of wider ones.

#include "chart/convert.h"

namespace kzgis::chart {

std::size_t convert_plain(projType type, Way way, const ChartConstants& constants,
                          const Spans& spans) {
  return convert_points(type, way, constants, spans);
}

Convert fastest_convert(Arithmetic arithmetic) {
  const bool fused = arithmetic == Arithmetic::fast;
#if defined(KZGIS_CHART_WIDE)
  if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq")) {
    return fused ? convert_avx512_fused : convert_avx512;
  }
  if (__builtin_cpu_supports("avx2")) {
    return fused && __builtin_cpu_supports("fma") ? convert_avx2_fused : convert_avx2;
  }
#endif
  static_cast<void>(fused);
  return convert_plain;
}

}  // namespace kzgis::chart
