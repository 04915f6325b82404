// Meridians and parallels.

#include <cmath>
#include <cstdint>
#include <new>
#include <string>
#include <vector>

#include "chart/angles.h"
#include "chart/elementary.h"
#include "chart/families.h"
#include "kzgis/outline.h"

namespace kzgis {
namespace {

constexpr double kLeastStep_deg = 1.0 / 60.0;
// Steps are often quotients: what is so near to a whole number is meant to be one.
constexpr double kRounding = 1e-9;

/// Lines in degrees, laid end to end.
class Lines {
 public:
  void begin() { starts_.push_back(static_cast<std::int32_t>(lon_.size())); }
  void add(double lon, double lat) {
    lon_.push_back(lon);
    lat_.push_back(lat);
  }
  Rings rings() const { return {lon_, lat_, starts_}; }

 private:
  std::vector<double> lon_, lat_;
  std::vector<std::int32_t> starts_;
};

/// The numbers of meridians, in fewer and fewer lots: each divides the next, and all of them a
/// quarter of the globe.
std::vector<int> spacings(double step_deg) {
  const double quarter = 90.0 / step_deg;
  const auto whole = static_cast<int>(std::lround(quarter));
  std::vector<int> result{1};
  if (std::fabs(quarter - whole) > kRounding * quarter) return result;
  for (int divisor = 2; result.back() < whole;) {
    if (whole / result.back() % divisor == 0) {
      result.push_back(result.back() * divisor);
    } else {
      ++divisor;
    }
  }
  return result;
}

/// The last parallel on which meridians so far apart are not yet crowded: as at 75 degrees where
/// all of them are drawn, which leaves maps on cylinders in peace.
double last_parallel(double step_deg, double spacing_deg) {
  const auto parallels = static_cast<int>(std::ceil((90.0 - kRounding) / step_deg)) - 1;
  for (int i = parallels; i > 0; --i) {
    const double lat = i * step_deg;
    if (spacing_deg * chart::sines_of_degrees(lat).cos >= 0.25 * step_deg) return lat;
  }
  return 0.0;
}

Lines lines_of(double step_deg) {
  Lines lines;
  const std::vector<int> lots = spacings(step_deg);
  std::vector<double> ends;
  ends.reserve(lots.size());
  for (const int lot : lots) ends.push_back(last_parallel(step_deg, lot * step_deg));
  const auto meridians = static_cast<int>(std::ceil((360.0 - kRounding) / step_deg));
  for (int i = 0; i < meridians; ++i) {
    const double lon = i * step_deg;
    std::size_t lot = lots.size() - 1;
    while (i % lots[lot] != 0) --lot;
    const bool meets = std::fabs(std::remainder(lon, 90.0)) < kRounding;
    const double end = meets ? 90.0 : ends[lot];
    lines.begin();
    lines.add(lon, -end);
    lines.add(lon, end);
  }
  const auto parallels = static_cast<int>(std::ceil((90.0 - kRounding) / step_deg)) - 1;
  for (int i = -parallels; i <= parallels; ++i) {
    lines.begin();
    for (const double lon : {-180.0, -90.0, 0.0, 90.0, 180.0}) lines.add(lon, i * step_deg);
  }
  return lines;
}

}  // namespace

Result<Outline> graticule(const Chart& chart, double step_deg, double tolerance) {
  try {
    if (!(step_deg >= kLeastStep_deg * (1.0 - kRounding) && step_deg <= 90.0)) {
      return Error{ErrorKind::bad_argument, "the step " + chart::text_of(step_deg) +
                                                " does not lie within 1/60 to 90 degrees"};
    }
    const Lines lines = lines_of(step_deg);
    auto drawn = project_lines(chart, lines.rings(), tolerance);
    if (!drawn) return Error{drawn.error().kind, drawn.error().message};
    return std::move(*drawn);
  } catch (const std::bad_alloc&) {
    return Error{ErrorKind::out_of_memory, "out of memory"};
  }
}

}  // namespace kzgis
