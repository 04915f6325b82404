#ifndef KZGIS_TOOLS_MAP_STYLE_H
#define KZGIS_TOOLS_MAP_STYLE_H

#include <optional>
#include <string>
#include <vector>

#include "tools/map/layer.h"

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

struct Colour {
  double red, green, blue;
};

namespace colours {
inline constexpr Colour paper{1.0, 1.0, 1.0};
inline constexpr Colour ocean{0.816, 0.894, 0.937};
inline constexpr Colour chart{0.984, 0.976, 0.949};  // under outlines alone
inline constexpr Colour land{0.945, 0.914, 0.835};
inline constexpr Colour coast{0.376, 0.533, 0.631};
inline constexpr Colour river{0.435, 0.635, 0.761};
inline constexpr Colour border{0.996, 0.992, 0.980};       // between tinted countries
inline constexpr Colour border_line{0.620, 0.525, 0.545};  // a layer of its own
inline constexpr Colour province_line{0.765, 0.702, 0.714};
inline constexpr Colour graticule{0.302, 0.443, 0.541};
inline constexpr Colour frame{0.290, 0.369, 0.427};
inline constexpr Colour mesh{0.502, 0.565, 0.604};
inline constexpr Colour places{0.690, 0.263, 0.204};
inline constexpr Colour text{0.220, 0.259, 0.290};
}  // namespace colours

/// How lines are drawn; the width is in pixels of a picture of the usual size.
struct Pen {
  Colour colour;
  double width;
};

/// The pen of a coast, river, border or province.
Pen pen_of(Role role);

/// Soft tints for countries.
const std::vector<Colour>& tints();

}  // namespace kzgis::map

#endif
