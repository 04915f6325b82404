// What layers can show, and how each is drawn.

#ifndef KZGIS_TOOLS_MAP_STYLE_H
#define KZGIS_TOOLS_MAP_STYLE_H

#include <optional>
#include <string>

#include "tools/map/layer.h"
#include "tools/picture/colour.h"

namespace kzgis::map {

/// What a layer shows, and so how it is drawn.
enum class Role { land, countries, water, coast, river, border, province, places };

/// The role of that name; nothing when there is none.
std::optional<Role> role_named(const std::string& name);
/// The name of a role.
const char* role_name(Role role);
/// "land, countries, ...", for help and messages.
std::string role_names();

/// Land, coast or places, for polygons, lines or points.
Role usual_role(LayerKind kind);
/// Points can only be places, and need to be points; lines have no inside to fill.
bool suits(Role role, LayerKind kind);

using tools::Colour;
namespace colours = tools::colours;

/// How lines are drawn; the width is in pixels of a picture of the usual size.
struct Pen {
  Colour colour;
  double width;
};

/// The pen of a coast, river, border or province.
Pen pen_of(Role role);

}  // namespace kzgis::map

#endif
