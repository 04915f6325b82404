// Charts: their parameters, and the family that each projection belongs to.

#include "kzgis/chart.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>

#include "chart/elementary.h"
#include "chart/families.h"

namespace kzgis {
namespace {

using chart::Spans;
using chart::text_of;
using chart::Way;

enum class Family { cylindrical, azimuthal, conic, pseudoconic, globe };

/// How far from the base a map reaches, in degrees; `most` is 0 where that is not asked.
struct Reach {
  double usual;
  double most;
  bool most_included;
};

struct Kind {
  Family family;
  Reach reach;
};

constexpr Reach kNoReach{0.0, 0.0, false};

// Indexed by projType.
constexpr std::array<Kind, 15> kKinds{{
    {Family::cylindrical, kNoReach},            // Cartesian
    {Family::cylindrical, kNoReach},            // Mercator
    {Family::cylindrical, kNoReach},            // Lambert cylindrical
    {Family::azimuthal, {60.0, 90.0, false}},   // gnomonic
    {Family::azimuthal, {90.0, 180.0, false}},  // stereographic
    {Family::azimuthal, {90.0, 90.0, true}},    // orthographic
    {Family::azimuthal, {180.0, 180.0, true}},  // Postel
    {Family::azimuthal, {180.0, 180.0, true}},  // Lambert azimuthal
    {Family::conic, kNoReach},                  // Lambert conic
    {Family::conic, kNoReach},                  // Albers
    {Family::cylindrical, kNoReach},            // Cassini-Soldner
    {Family::pseudoconic, kNoReach},            // Bonne
    {Family::pseudoconic, kNoReach},            // Werner
    {Family::cylindrical, kNoReach},            // Sanson-Flamsteed
    {Family::globe, {90.0, 90.0, true}},        // globe
}};

bool is_legal(projType type) { return type >= CartesianProj && type <= GlobeProj; }

const Kind& kind_of(projType type) { return kKinds[static_cast<std::size_t>(type)]; }

bool is_latitude(double deg) { return deg >= -90.0 && deg <= 90.0; }  // NaN is none

/// Why parameters are out of their ranges; empty when they are not.
std::string complaint(projType type, const ChartParameters& p) {
  if (!is_legal(type)) {
    return "there is no projection number " + std::to_string(static_cast<std::int32_t>(type)) +
           ": they run from 0 to 14";
  }
  if (!is_latitude(p.base_lat)) {
    return "the base latitude " + text_of(p.base_lat) + " does not lie within -90 to 90";
  }
  if (!std::isfinite(p.base_lon)) {
    return "the base longitude " + text_of(p.base_lon) + " is not a finite number";
  }
  for (const std::optional<double>& parallel : {p.first_parallel, p.second_parallel}) {
    if (parallel && !is_latitude(*parallel)) {
      return "the parallel " + text_of(*parallel) + " does not lie within -90 to 90";
    }
  }
  if (!(std::isfinite(p.radius) && p.radius > 0.0)) {
    return "the radius " + text_of(p.radius) + " is not a finite number above 0";
  }
  if (p.reach_deg) {
    const Reach& asked = kind_of(type).reach;
    const Reach reach = asked.most > 0.0 ? asked : Reach{180.0, 180.0, true};
    if (!(*p.reach_deg > 0.0 && *p.reach_deg <= reach.most) ||
        (*p.reach_deg == reach.most && !reach.most_included)) {
      return "the reach " + text_of(*p.reach_deg) + " does not lie above 0 and " +
             (reach.most_included ? "up to " : "below ") + text_of(reach.most);
    }
  }
  if (p.window) {
    const Box& w = *p.window;
    if (!(w.min_x >= -180.0 && w.min_x < w.max_x && w.max_x <= 180.0)) {
      return "the window's longitudes " + text_of(w.min_x) + " to " + text_of(w.max_x) +
             " from the base do not ascend within -180 to 180";
    }
    if (!(w.min_y >= -90.0 && w.min_y < w.max_y && w.max_y <= 90.0)) {
      return "the window's latitudes " + text_of(w.min_y) + " to " + text_of(w.max_y) +
             " do not ascend within -90 to 90";
    }
  }
  return {};
}

/// What a map shows that has no reach: as far as its scale is bearable.
Box usual_window(projType type, const ChartParameters& p) {
  constexpr double kSquare = 85.0511287798066;  // makes Mercator's map a square
  const double side =
      kind_of(type).family == Family::conic && *p.first_parallel + *p.second_parallel < 0.0 ? -1.0
                                                                                            : 1.0;
  double south = -90.0;
  if (type == LambertConicProj) south = -30.0;
  if (type == AlbersProj) south = -60.0;
  if (type == MercatorProj) return {-180.0, -kSquare, 180.0, kSquare};
  return side > 0.0 ? Box{-180.0, south, 180.0, 90.0} : Box{-180.0, -90.0, 180.0, -south};
}

/// Fills in what is left open and the projection uses.
ChartParameters filled_in(projType type, ChartParameters p) {
  const Kind& kind = kind_of(type);
  if (kind.family == Family::conic) {
    const double side = p.base_lat < 0.0 ? -1.0 : 1.0;
    if (!p.first_parallel && !p.second_parallel) {
      p.first_parallel = side * 20.0;
      p.second_parallel = side * 60.0;
    }
    if (!p.first_parallel) p.first_parallel = p.second_parallel;
    if (!p.second_parallel) p.second_parallel = p.first_parallel;
  }
  if (type == MercatorProj && !p.first_parallel) p.first_parallel = 0.0;
  if (kind.reach.most > 0.0 && !p.reach_deg) p.reach_deg = kind.reach.usual;
  if (kind.reach.most == 0.0 && !p.window) p.window = usual_window(type, p);
  return p;
}

std::string prepare(projType type, const ChartParameters& parameters, ChartConstants& constants) {
  switch (kind_of(type).family) {
    case Family::cylindrical:
      return chart::prepare_cylindrical(type, parameters, constants);
    case Family::conic:
      return chart::prepare_conic(type, parameters, constants);
    case Family::pseudoconic:
      return chart::prepare_pseudoconic(type, parameters, constants);
    default:
      return {};
  }
}

std::size_t convert(projType type, Way way, Arithmetic arithmetic, const ChartConstants& constants,
                    const Spans& spans) {
  // Wide packs are not worth it for a few points; the digits are the same.
  constexpr std::size_t kFew = 4;
  if (spans.size() < kFew) return chart::convert_plain(type, way, constants, spans);
  static const chart::Convert exact = chart::fastest_convert(Arithmetic::exact);
  static const chart::Convert fast = chart::fastest_convert(Arithmetic::fast);
  return (arithmetic == Arithmetic::fast ? fast : exact)(type, way, constants, spans);
}

}  // namespace

std::string chart::text_of(double number) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", number);
  if (std::strtod(text, nullptr) != number) std::snprintf(text, sizeof text, "%.17g", number);
  // Hosts differ in whether a NaN has a sign.
  return std::isnan(number) ? "nan" : text;
}

Chart::Chart(projType type, const ChartParameters& parameters)
    : type_(type), parameters_(parameters) {
  const chart::SinesOf<double> base = chart::sines_of_degrees(parameters.base_lat);
  constants_.base_lat_deg = parameters.base_lat;
  constants_.base_lon_deg = chart::wrap(parameters.base_lon);
  constants_.radius = parameters.radius;
  constants_.sin_base = base.sin;
  constants_.cos_base = base.cos;
}

Result<Chart> Chart::make(projType type, const ChartParameters& parameters) {
  try {
    std::string reason = complaint(type, parameters);
    if (!reason.empty()) return Error{ErrorKind::bad_argument, std::move(reason)};
    Chart chart(type, filled_in(type, parameters));
    reason = prepare(type, chart.parameters_, chart.constants_);
    if (!reason.empty()) return Error{ErrorKind::bad_argument, std::move(reason)};
    return chart;
  } catch (const std::bad_alloc&) {
    // The reason found no memory; this one a string keeps inside itself.
    return Error{ErrorKind::out_of_memory, "out of memory"};
  }
}

std::size_t Chart::project(std::span<const double> lat, std::span<const double> lon,
                           std::span<double> x, std::span<double> y, Arithmetic arithmetic) const {
  return convert(type_, Way::there, arithmetic, constants_, {lat, lon, {}, x, y, {}, false});
}

std::size_t Chart::project(std::span<const double> lat, std::span<const double> lon,
                           std::span<const double> alt, std::span<double> x, std::span<double> y,
                           std::span<double> z, Arithmetic arithmetic) const {
  return convert(type_, Way::there, arithmetic, constants_, {lat, lon, alt, x, y, z, true});
}

std::size_t Chart::unproject(std::span<const double> x, std::span<const double> y,
                             std::span<double> lat, std::span<double> lon,
                             Arithmetic arithmetic) const {
  return convert(type_, Way::back, arithmetic, constants_, {x, y, {}, lat, lon, {}, false});
}

std::size_t Chart::unproject(std::span<const double> x, std::span<const double> y,
                             std::span<const double> z, std::span<double> lat,
                             std::span<double> lon, std::span<double> alt,
                             Arithmetic arithmetic) const {
  return convert(type_, Way::back, arithmetic, constants_, {x, y, z, lat, lon, alt, true});
}

}  // namespace kzgis
