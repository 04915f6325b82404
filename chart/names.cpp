// The fifteen projections by name.

#include <array>

#include "kzgis/chart.h"

namespace kzgis {
namespace {

// Indexed by projType.
constexpr std::array<std::string_view, 15> kNames{
    "cartesian", "mercator",          "lambert cylindrical",
    "gnomonic",  "stereographic",     "orthographic",
    "postel",    "lambert azimuthal", "lambert conic conformal",
    "albers",    "cassini-soldner",   "bonne",
    "werner",    "sanson-flamsteed",  "globe"};

/// A character with its case and the ways to part words taken away.  Letters beyond ASCII stay,
/// whatever the host's language.
char plain(char c) {
  if (c >= 'A' && c <= 'Z') return static_cast<char>(c - 'A' + 'a');
  return c == '-' || c == '_' ? ' ' : c;
}

bool are_alike(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (plain(a[i]) != plain(b[i])) return false;
  }
  return true;
}

}  // namespace

std::string_view projection_name(projType type) {
  if (type < CartesianProj || type > GlobeProj) return {};
  return kNames[static_cast<std::size_t>(type)];
}

std::optional<projType> find_projection(std::string_view name) {
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    if (are_alike(kNames[i], name)) return static_cast<projType>(i);
  }
  return std::nullopt;
}

}  // namespace kzgis
