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

const std::vector<Colour>& tints() {
  static const std::vector<Colour> list{{0.953, 0.878, 0.757},   // sand
                                        {0.863, 0.898, 0.765},   // pale green
                                        {0.949, 0.831, 0.780},   // rose
                                        {0.886, 0.855, 0.910},   // lavender
                                        {0.965, 0.929, 0.757},   // straw
                                        {0.800, 0.875, 0.824},   // mint
                                        {0.914, 0.843, 0.796}};  // clay
  return list;
}

}  // namespace kzgis::map
