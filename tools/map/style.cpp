// The roles of layers under their names, and the pens of those that are lines.

#include "tools/map/style.h"

#include <array>
#include <utility>

namespace kzgis::map {
namespace {

const std::array<std::pair<const char*, Role>, 8> kRoles{{{"land", Role::land},
                                                          {"countries", Role::countries},
                                                          {"water", Role::water},
                                                          {"coast", Role::coast},
                                                          {"river", Role::river},
                                                          {"border", Role::border},
                                                          {"province", Role::province},
                                                          {"places", Role::places}}};

}  // namespace

std::optional<Role> role_named(const std::string& name) {
  for (const auto& [known, role] : kRoles) {
    if (name == known) return role;
  }
  return std::nullopt;
}

const char* role_name(Role role) {
  for (const auto& [name, known] : kRoles) {
    if (role == known) return name;
  }
  return "";
}

std::string role_names() {
  std::string names;
  for (const auto& [name, role] : kRoles) names += (names.empty() ? "" : ", ") + std::string(name);
  return names;
}

Role usual_role(LayerKind kind) {
  switch (kind) {
    case LayerKind::polygons:
      return Role::land;
    case LayerKind::lines:
      return Role::coast;
    default:
      return Role::places;
  }
}

bool suits(Role role, LayerKind kind) {
  if (kind == LayerKind::points || role == Role::places) {
    return kind == LayerKind::points && role == Role::places;
  }
  const bool line_role =
      role == Role::coast || role == Role::river || role == Role::border || role == Role::province;
  return kind == LayerKind::polygons || line_role;
}

// Borders and provinces recede behind coasts and rivers, which carry the map.
Pen pen_of(Role role) {
  switch (role) {
    case Role::river:
      return {colours::river, 1.0};
    case Role::border:
      return {colours::border_line, 1.0};
    case Role::province:
      return {colours::province_line, 0.7};
    default:
      return {colours::coast, 0.85};
  }
}

}  // namespace kzgis::map
