// What each projection needs so that a printed map comes of it.  The formulas are the library's;
// here are the limits within which they draw something worth looking at.

#include "tools/map/map_chart.h"

#include <algorithm>
#include <cmath>

#include "tools/support/command_error.h"

namespace kzgis::map {
namespace {

double wrapped(double lon) {
  const double rest = std::remainder(lon, 360.0);
  return std::isfinite(rest) ? rest : 0.0;
}

/// How far east of one meridian another lies: above 0, up to 360.
double eastward(double from, double to) {
  const double way = wrapped(to - from);
  return way > 0.0 ? way : way + 360.0;
}

ChartParameters parameters_of(const MapRequest& request) {
  ChartParameters parameters = tools::chart_parameters(request);
  parameters.radius = 1.0;
  if (request.box && !request.base) {
    const Box& box = *request.box;
    parameters.base_lat = 0.5 * (box.min_y + box.max_y);
    parameters.base_lon = box.min_x + 0.5 * eastward(box.min_x, box.max_x);
  }
  return parameters;
}

/// The window of a picture without a box.
Box usual_window(const Chart& chart) {
  Box window = *chart.parameters().window;
  if (chart.type() == MercatorProj) {
    window.min_y = -78.0;
    window.max_y = 84.0;
  }
  // Half the globe: the other half is torn along the equator.
  if (chart.type() == CassiniSoldnerProj) {
    window.min_x = -90.0;
    window.max_x = 90.0;
  }
  return window;
}

Box narrowed(const Box& window, const Box& box, double base_lon) {
  const double west = wrapped(box.min_x - base_lon);
  const double east = west + eastward(box.min_x, box.max_x);
  if (east > 180.0) {
    throw tools::UsageError("--box: the map is torn opposite to --base, inside the box");
  }
  const Box both{std::max(window.min_x, west), std::max(window.min_y, box.min_y),
                 std::min(window.max_x, east), std::min(window.max_y, box.max_y)};
  if (!(both.min_x < both.max_x && both.min_y < both.max_y)) {
    throw tools::UsageError("--box: this projection shows nothing of it");
  }
  return both;
}

}  // namespace

Chart map_chart(const MapRequest& request) {
  const projType type = request.type == GlobeProj ? OrthographicProj : request.type;
  ChartParameters parameters = parameters_of(request);
  const Chart usual = tools::make_chart(type, parameters);
  if (usual.parameters().reach_deg) {
    if (request.box) {
      throw tools::UsageError("--box: azimuthal maps are round; --base and --horizon set them");
    }
    if (!request.horizon_deg) return usual;
    parameters.reach_deg = request.horizon_deg;
    const Result<Chart> chart = Chart::make(type, parameters);
    if (!chart) throw tools::UsageError("--horizon", chart.error().message);
    return *chart;
  }
  if (request.horizon_deg) {
    throw tools::UsageError("--horizon: only azimuthal maps and the globe have one");
  }
  parameters.window = usual_window(usual);
  if (request.box) {
    parameters.window = narrowed(*parameters.window, *request.box, parameters.base_lon);
  }
  return tools::make_chart(type, parameters);
}

}  // namespace kzgis::map
