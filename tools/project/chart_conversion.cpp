// The library's charts, one point at a time.

#include "tools/project/conversion.h"

namespace kzgis::tools {

Conversion chart_conversion(const ProjectionOptions& options, bool inverse) {
  const Chart chart = make_chart(options.type, chart_parameters(options));
  return [chart, inverse](const Triple& from) -> std::optional<Triple> {
    const auto in = [&](std::size_t i) { return std::span(&from.at(i), 1); };
    Triple to{};
    const auto out = [&](std::size_t i) { return std::span(&to.at(i), 1); };
    const std::size_t without_place =
        inverse ? chart.unproject(in(0), in(1), in(2), out(0), out(1), out(2))
                : chart.project(in(0), in(1), in(2), out(0), out(1), out(2));
    if (without_place > 0) return std::nullopt;
    return to;
  };
}

}  // namespace kzgis::tools
